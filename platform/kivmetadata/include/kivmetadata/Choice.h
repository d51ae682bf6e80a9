#pragma once

#include <string>

namespace kivmetadata {

// One entry of a choice list: the raw XMP value and what people see
// (a localisation key with its default, "$$$/kivmetadata/type/orientation/1=Horizontal").
struct Choice {
    std::string mRawValue;
    std::string mDisplay;

    friend bool operator==(Choice const &, Choice const &) = default;
};

} // namespace kivmetadata
