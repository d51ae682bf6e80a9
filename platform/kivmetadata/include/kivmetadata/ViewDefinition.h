#pragma once

#include <kivmetadata/ViewItem.h>

#include <memory>
#include <string>
#include <vector>

namespace kivmetadata {

// A named panel: sections of properties, structs and arrays.
struct ViewDefinition {
    std::string mName;  // "Description"
    std::string mLabel; // display-name key with default
    std::vector<std::shared_ptr<ViewItem>> mItems;
    std::u16string mFilePath; // the user's panel file; empty for a standard panel
};

} // namespace kivmetadata
