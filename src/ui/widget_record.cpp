// SPDX-License-Identifier: MIT
#include "ui/widget_record.h"

WidgetRecord widgets;
