#pragma once

#include <kivcore/kivcore_export.h>

#include <stdexcept>
#include <string>

namespace kivcore::config {

// Raised when an object that must exist is missing; names the expected type.
class KIVCORE_EXPORT NullPtrException : public std::runtime_error {
public:
    explicit NullPtrException(std::string typeName);
    std::string const &TypeName() const noexcept { return mTypeName; }

private:
    std::string mTypeName;
};

// An error for the user: a localisation key with its default
// ("$$$/kivcore/utility/Error/InvalidTypeConversion=Invalid type conversion.")
// and an error level (1 = error, 2 = warning, 3 = information).
class KIVCORE_EXPORT ErrorException : public std::runtime_error {
public:
    ErrorException(std::string key, int level);
    std::string const &Key() const noexcept { return mKey; }
    int Level() const noexcept { return mLevel; }
    // The key resolved by the localiser.
    std::u16string LocalizedMessage() const;

private:
    std::string mKey;
    int mLevel;
};

[[noreturn]] KIVCORE_EXPORT void DoThrowNullPtrException(char const *typeName);
[[noreturn]] KIVCORE_EXPORT void DoThrowError(char const *key, int level);

inline constexpr char kInvalidTypeConversionKey[] =
    "$$$/kivcore/utility/Error/InvalidTypeConversion=Invalid type conversion.";

} // namespace kivcore::config
