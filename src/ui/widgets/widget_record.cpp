// SPDX-License-Identifier: MIT
#include "ui/widgets/widget_record.h"

WidgetRecord widgets;
