#pragma once

#include <kivmetadata/Choice.h>
#include <kivmetadata/Path.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kivmetadata {

// One entry of a view definition.
struct ViewItem {
    enum class Kind : int { kSection = 0, kProperty, kStruct, kArray };

    Kind mKind = Kind::kProperty;
    Path mPath;         // empty for a section
    std::string mLabel; // overrides the definition's label when not empty
    // "dropdown", "openChoice", "rating", "size", "readOnly", "multiLines", ...
    std::map<std::string, std::string> mAttributes;
    std::vector<Choice> mChoices;
    std::vector<std::shared_ptr<ViewItem>> mChildren; // items of a section

    bool HasAttribute(std::string const &key) const { return mAttributes.count(key) != 0; }
    std::string Attribute(std::string const &key) const
    {
        auto it = mAttributes.find(key);
        return it == mAttributes.end() ? std::string() : it->second;
    }
};

} // namespace kivmetadata
