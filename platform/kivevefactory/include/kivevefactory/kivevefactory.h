#pragma once
// Everything kivevefactory exports is declared by the headers beside this one.
#include <kivevefactory/kivevefactory_export.h>
#include <kivevefactory/UI_EveViewBase.h>
