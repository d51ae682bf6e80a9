#include <kivevefactory/kivevefactory.h>
