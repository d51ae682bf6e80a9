#include <kivmetadata/ValueAccess.h>

#include "Registry_p.h"
#include "ValueIO_p.h"

#include <kivmetadata/DateTime.h>
#include <kivmetadata/Definitions.h>
#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/MetaDataProvider.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/TypeDefinition.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/XMPMeta.h>

#include <kivcore/StringUtils.h>

#include <charconv>
#include <cmath>
#include <limits>

namespace kivmetadata {

using namespace detail;

namespace {

bool ParseInteger(std::string const &text, std::int64_t &out)
{
    std::string const trimmed = kivcore::utility::Trim(text);
    char const *begin = trimmed.data();
    char const *end = begin + trimmed.size();
    if (begin != end && *begin == '+') ++begin;
    auto [ptr, ec] = std::from_chars(begin, end, out);
    return ec == std::errc() && ptr == end && begin != end;
}

bool ParseReal(std::string const &text, double &out)
{
    std::string const trimmed = kivcore::utility::Trim(text);
    char const *begin = trimmed.data();
    char const *end = begin + trimmed.size();
    if (begin != end && *begin == '+') ++begin;
    auto [ptr, ec] = std::from_chars(begin, end, out);
    if (ec == std::errc() && ptr == end && begin != end && std::isfinite(out)) return true;
    // Rationals as the toolkit writes EXIF values: "28/10".
    auto slash = trimmed.find('/');
    std::int64_t numerator = 0, denominator = 0;
    if (slash != std::string::npos && ParseInteger(trimmed.substr(0, slash), numerator) &&
        ParseInteger(trimmed.substr(slash + 1), denominator) && denominator != 0) {
        out = static_cast<double>(numerator) / static_cast<double>(denominator);
        return true;
    }
    return false;
}

bool ParseBool(std::string const &text, bool &out)
{
    std::string lower = kivcore::utility::Trim(text);
    for (char &c : lower)
        c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    if (lower == "true" || lower == "1") {
        out = true;
        return true;
    }
    if (lower == "false" || lower == "0") {
        out = false;
        return true;
    }
    return false;
}

GetValueResult Read(Value const &value, std::string &text)
{
    if (!value.mProvider) return kGetValueResult_Unreadable;
    if (!value.mProvider->AcceptsPath(value, false)) return kGetValueResult_Unreadable;
    return value.mProvider->ReadValue(value.mPath, text);
}

bool Refuse(Value const &value, std::string const &why)
{
    AddErrorInfo("The value was refused: " + why + ".", DescribePath(value.mPath));
    return false;
}

// Checks a text against the property's definition; the text may be
// normalised (booleans).
bool Validate(Value const &value, std::string &text)
{
    auto const definition = PathEntryDefinition(value.mPath);
    if (!definition) return true; // unknown properties take any text
    auto const type = PrimitiveTypeOfPath(value.mPath);
    if (!type) return Refuse(value, "a structure cannot be written as one text");
    if (text.empty()) return true; // an empty text clears the value
    auto const typeDefinition = TypeIdDefinition(definition->mTypeId);
    std::optional<double> const minimum = definition->mMinimum ? definition->mMinimum
                                          : typeDefinition     ? typeDefinition->mMinimum
                                                               : std::nullopt;
    std::optional<double> const maximum = definition->mMaximum ? definition->mMaximum
                                          : typeDefinition     ? typeDefinition->mMaximum
                                                               : std::nullopt;
    auto checkRange = [&](double number) {
        if (minimum && number < *minimum)
            return Refuse(value, "\"" + text + "\" is below the minimum " + MinimalFloatText(*minimum));
        if (maximum && number > *maximum)
            return Refuse(value, "\"" + text + "\" is above the maximum " + MinimalFloatText(*maximum));
        return true;
    };
    switch (*type) {
    case kPrimitiveType_Integer: {
        std::int64_t number = 0;
        if (!ParseInteger(text, number)) return Refuse(value, "\"" + text + "\" is not a whole number");
        return checkRange(static_cast<double>(number));
    }
    case kPrimitiveType_Real: {
        double number = 0;
        if (!ParseReal(text, number)) return Refuse(value, "\"" + text + "\" is not a number");
        return checkRange(number);
    }
    case kPrimitiveType_Boolean: {
        bool flag = false;
        if (!ParseBool(text, flag)) return Refuse(value, "\"" + text + "\" is not True or False");
        text = flag ? "True" : "False";
        return true;
    }
    case kPrimitiveType_ClosedChoice: {
        auto const &choices =
            !definition->mChoices.empty() || !typeDefinition ? definition->mChoices : typeDefinition->mChoices;
        if (choices.empty()) return true;
        for (auto const &choice : choices)
            if (choice.mRawValue == text) return true;
        return Refuse(value, "\"" + text + "\" is not one of the allowed values");
    }
    default:
        break;
    }
    if (definition->mTypeId == "date" && *type == kPrimitiveType_Text) {
        XMP_DateTime date;
        if (!ConvertToDate(text, date)) return Refuse(value, "\"" + text + "\" is not an ISO 8601 date");
    }
    return true;
}

bool Write(Value const &value, std::string text)
{
    if (!value.mProvider) return false;
    if (value.mNotEditable) return Refuse(value, "the value is not editable");
    if (!value.mProvider->AcceptsPath(value, true)) return Refuse(value, "the property cannot be written here");
    if (!Validate(value, text)) return false;
    return value.mProvider->WriteValue(value.mPath, text);
}

} // namespace

bool GetValue(Value const &value, bool &out, GetValueResult &result)
{
    std::string text;
    result = Read(value, text);
    if (result > kGetValueResult_SeveralValues) return false;
    if (!ParseBool(text, out)) {
        result = kGetValueResult_Unreadable;
        return false;
    }
    return result == kGetValueResult_OneValue;
}

bool GetValue(Value const &value, double &out, GetValueResult &result)
{
    std::string text;
    result = Read(value, text);
    if (result > kGetValueResult_SeveralValues) return false;
    if (!ParseReal(text, out)) {
        result = kGetValueResult_Unreadable;
        return false;
    }
    return result == kGetValueResult_OneValue;
}

bool GetValue(Value const &value, std::int64_t &out, GetValueResult &result)
{
    std::string text;
    result = Read(value, text);
    if (result > kGetValueResult_SeveralValues) return false;
    if (!ParseInteger(text, out)) {
        double real = 0;
        if (!ParseReal(text, real) || real != std::trunc(real) || std::fabs(real) > 9.0e18) {
            result = kGetValueResult_Unreadable;
            return false;
        }
        out = static_cast<std::int64_t>(real);
    }
    return result == kGetValueResult_OneValue;
}

bool GetValue(Value const &value, std::string &out, GetValueResult &result)
{
    std::string text;
    result = Read(value, text);
    if (result > kGetValueResult_SeveralValues) return false;
    out = std::move(text);
    return result == kGetValueResult_OneValue;
}

bool GetValue(XMPMeta const *meta, Path const &path, std::string &text, GetValueResult &result)
{
    result = meta ? ReadText(meta, path, text) : kGetValueResult_Unreadable;
    return result == kGetValueResult_OneValue;
}

std::string MinimalFloatText(double value)
{
    if (!std::isfinite(value)) return {};
    if (value == 0) return "0"; // no "-0"
    char buffer[64];
    auto [ptr, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    if (ec != std::errc()) return {};
    std::string text(buffer, ptr);
    // to_chars picks exponent notation for large and small numbers; XMP
    // readers expect plain decimals.
    if (text.find('e') != std::string::npos) {
        auto [fixedEnd, fixedEc] = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
        if (fixedEc == std::errc()) text.assign(buffer, fixedEnd);
    }
    return text;
}

bool SetValue(Value const &value, bool newValue)
{
    auto const type = PrimitiveTypeOfPath(value.mPath);
    if (type && (*type == kPrimitiveType_Integer || *type == kPrimitiveType_Real))
        return Refuse(value, "a number is expected, not True or False");
    return Write(value, newValue ? "True" : "False");
}

bool SetValue(Value const &value, std::int64_t newValue)
{
    auto const type = PrimitiveTypeOfPath(value.mPath);
    if (type && *type == kPrimitiveType_Boolean) return Refuse(value, "True or False is expected, not a number");
    return Write(value, std::to_string(newValue));
}

bool SetValue(Value const &value, int newValue)
{
    return SetValue(value, static_cast<std::int64_t>(newValue));
}

bool SetValue(Value const &value, double newValue)
{
    std::string const text = MinimalFloatText(newValue);
    if (text.empty()) return Refuse(value, "the number is not finite");
    auto const type = PrimitiveTypeOfPath(value.mPath);
    if (type && *type == kPrimitiveType_Boolean) return Refuse(value, "True or False is expected, not a number");
    return Write(value, text);
}

bool SetValue(Value const &value, std::string const &newValue)
{
    return Write(value, newValue);
}

bool SetValue(Value const &value, char const *newValue)
{
    return Write(value, newValue ? std::string(newValue) : std::string());
}

bool SetMinimalFloatValue(Value const &value, double newValue)
{
    return SetValue(value, newValue);
}

bool DeleteValue(Value const &value)
{
    if (!value.mProvider) return false;
    if (!value.mProvider->AcceptsPath(value, true)) return Refuse(value, "the property cannot be removed here");
    return value.mProvider->RemoveValue(value.mPath);
}

bool DeleteValue(XMPMeta *meta, Path const &path)
{
    return meta && meta->DeleteProperty(path.mNamespace, path.mPath);
}

int CountArrayItems(XMPMeta const *meta, Path const &path)
{
    return meta ? meta->CountArrayItems(path.mNamespace, path.mPath) : 0;
}

} // namespace kivmetadata
