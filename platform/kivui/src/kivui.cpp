#include <kivui/kivui.h>
