#pragma once
// Declares every exported class and function of kivmetadataui.
#include <kivmetadataui/DateTimeString.h>
#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/XMLNameValidation.h>
#include <kivmetadataui/BindControl.h>
#include <kivmetadataui/Control.h>
#include <kivmetadataui/ControlCreator.h>
#include <kivmetadataui/ControlFactory.h>
#include <kivmetadataui/LayoutItem.h>
#include <kivmetadataui/RowItem.h>
#include <kivmetadataui/TableLayout.h>
#include <kivmetadataui/TableLayoutDelegate.h>
#include <kivmetadataui/MetadataProviderWrapper.h>
#include <kivmetadataui/ModuleInfo.h>
#include <kivmetadataui/MetadataLayoutView.h>
#include <kivmetadataui/UI_DateTextEdit.h>
