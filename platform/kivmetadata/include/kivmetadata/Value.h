#pragma once

#include <kivmetadata/Path.h>

#include <memory>

namespace kivmetadata {

class MetaDataProvider;

// One bound value: the property and the provider that holds its packet.
struct Value {
    bool mNotEditable = false; // when set, the value is shown but never edited
    Path mPath;
    std::shared_ptr<MetaDataProvider> mProvider;
};

} // namespace kivmetadata
