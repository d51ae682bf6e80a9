#pragma once

#include <kivmetadata/kivmetadata_export.h>

#include <string>
#include <vector>

namespace kivmetadata {

// One problem met while reading or writing metadata.
struct ErrorInfo {
    std::string mDescription; // what went wrong, readable
    std::string mContext;     // where: the file, the property, the settings file
};

// Every problem recorded since the last ClearErrorInfos, oldest first (a
// copy). The list keeps the most recent 1000 records.
KIVMETADATA_EXPORT std::vector<ErrorInfo> GetErrorInfos();
KIVMETADATA_EXPORT void AddErrorInfo(std::string description, std::string context);
KIVMETADATA_EXPORT void ClearErrorInfos();

} // namespace kivmetadata
