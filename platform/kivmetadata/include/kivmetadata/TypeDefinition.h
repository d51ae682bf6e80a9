#pragma once

#include <kivmetadata/Choice.h>
#include <kivmetadata/PrimitiveType.h>

#include <optional>
#include <string>
#include <vector>

namespace kivmetadata {

// A named semantic type ("rating", "orientation", "date"): its primitive
// type, choices and range, shared by the properties that name it.
struct TypeDefinition {
    std::string mId;
    std::optional<PrimitiveType> mPrimitiveType;
    std::vector<Choice> mChoices;
    std::optional<double> mMinimum;
    std::optional<double> mMaximum;
};

} // namespace kivmetadata
