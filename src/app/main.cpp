// SPDX-License-Identifier: MIT
#include "app/start_up.h"

int main(int argc, char** argv) {
    return start_up(argc, argv);
}
