#include "Log_p.h"

// Silent by default: enable with QT_LOGGING_RULES="kiv.metadata.debug=true".
Q_LOGGING_CATEGORY(lcKivMetadata, "kiv.metadata", QtWarningMsg)
