#pragma once
#include <kivui/kivui_export.h>
