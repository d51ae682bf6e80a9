#pragma once
#include <kivevefactory/kivevefactory_export.h>
