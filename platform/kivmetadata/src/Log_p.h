// Private to kivmetadata: not part of the API.
#pragma once

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcKivMetadata)
