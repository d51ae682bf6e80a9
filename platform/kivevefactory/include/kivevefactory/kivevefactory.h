#pragma once
// Everything kivevefactory exports is declared by the headers beside this one.
#include <kivevefactory/UI_EveViewBase.h>
#include <kivevefactory/kivevefactory_export.h>
