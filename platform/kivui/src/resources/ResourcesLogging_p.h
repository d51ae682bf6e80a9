#pragma once
// Private to kivui: not installed, not API.
#include <QLoggingCategory>

// "kiv.ui.resources": silent unless enabled with QT_LOGGING_RULES.
Q_DECLARE_LOGGING_CATEGORY(lcKivUiResources)
