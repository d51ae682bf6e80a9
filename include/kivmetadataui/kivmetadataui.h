#pragma once
// Declares every exported class and function of kivmetadataui.
#include <kivmetadataui/DateTimeString.h>
#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/XMLNameValidation.h>
