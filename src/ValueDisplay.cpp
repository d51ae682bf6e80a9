#include "ValueDisplay_p.h"

#include <kivmetadataui/DateTimeString.h>

#include <kivcore/Localizer.h>
#include <kivcore/StringUtils.h>
#include <kivmetadata/DateTime.h>
#include <kivmetadata/PropertyDefinition.h>

#include <QString>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>

namespace kivmetadataui {
namespace {

using kivcore::config::Localizer;

constexpr char kExifNS[] = "http://ns.adobe.com/exif/1.0/";
constexpr char kAuxNS[] = "http://ns.adobe.com/exif/1.0/aux/";

constexpr char kFNumberKey[] = "$$$/kivmetadataui/ValueDisplay/FNumber=f/@0";
constexpr char kMillimetresKey[] = "$$$/kivmetadataui/ValueDisplay/Millimetres=@0 mm";
constexpr char kSecondsKey[] = "$$$/kivmetadataui/ValueDisplay/Seconds=@0 s";
constexpr char kEVKey[] = "$$$/kivmetadataui/ValueDisplay/ExposureValue=@0 EV";
constexpr char kMetresKey[] = "$$$/kivmetadataui/ValueDisplay/Metres=@0 m";
constexpr char kDegreesKey[] = "$$$/kivmetadataui/ValueDisplay/Degrees=@0°";
constexpr char kCoordinateKey[] = "$$$/kivmetadataui/ValueDisplay/Coordinate=@0° @1′ @2";
constexpr char kCoordinateSecondsKey[] = "$$$/kivmetadataui/ValueDisplay/CoordinateSeconds=@0° @1′ @2″ @3";

// Beyond this a double no longer holds every digit it would show.
constexpr double kLargestShown = 1e15;
// APEX values outside this range are not camera settings.
constexpr double kLargestApex = 64.0;

struct NamedForm {
    char const *mNamespace;
    char const *mName;
    DisplayForm mForm;
};

constexpr NamedForm kNamedForms[] = {
    {kExifNS, "FNumber", DisplayForm::kFNumber},
    {kExifNS, "ApertureValue", DisplayForm::kApexAperture},
    {kExifNS, "MaxApertureValue", DisplayForm::kApexAperture},
    {kExifNS, "FocalLength", DisplayForm::kFocalLength},
    {kExifNS, "ExposureTime", DisplayForm::kExposureTime},
    {kExifNS, "ShutterSpeedValue", DisplayForm::kApexShutterSpeed},
    {kExifNS, "ExposureBiasValue", DisplayForm::kExposureBias},
    {kAuxNS, "FlashCompensation", DisplayForm::kExposureBias},
    {kExifNS, "GPSAltitude", DisplayForm::kMetres},
    {kExifNS, "GPSHPositioningError", DisplayForm::kMetres},
    {kExifNS, "SubjectDistance", DisplayForm::kMetres},
    {kAuxNS, "ApproximateFocusDistance", DisplayForm::kMetres},
    {kExifNS, "GPSImgDirection", DisplayForm::kDegrees},
    {kExifNS, "GPSTrack", DisplayForm::kDegrees},
    {kExifNS, "GPSDestBearing", DisplayForm::kDegrees},
};

std::u16string Localized(char const *inKey, std::u16string const &inArgument)
{
    return Localizer::Localize(inKey, {inArgument});
}

std::string_view Trimmed(std::string_view inText)
{
    while (!inText.empty() && (inText.front() == ' ' || inText.front() == '\t'))
        inText.remove_prefix(1);
    while (!inText.empty() && (inText.back() == ' ' || inText.back() == '\t'))
        inText.remove_suffix(1);
    return inText;
}

std::optional<std::int64_t> Integer(std::string_view inText)
{
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(inText.data(), inText.data() + inText.size(), value);
    if (error != std::errc() || end != inText.data() + inText.size() || inText.empty()) return std::nullopt;
    return value;
}

// "n/d" with whole numbers; nothing for a zero or missing denominator, or a
// value too large to show exactly.
std::optional<double> Rational(std::string_view inText)
{
    inText = Trimmed(inText);
    const std::size_t slash = inText.find('/');
    if (slash == std::string_view::npos) return std::nullopt;
    const auto numerator = Integer(inText.substr(0, slash));
    const auto denominator = Integer(inText.substr(slash + 1));
    if (!numerator || !denominator || *denominator == 0) return std::nullopt;
    const double value = static_cast<double>(*numerator) / static_cast<double>(*denominator);
    if (!std::isfinite(value) || std::fabs(value) >= kLargestShown) return std::nullopt;
    return value;
}

// A plain decimal number ("51.3"), not negative.
std::optional<double> Decimal(std::string_view inText)
{
    if (inText.empty() || inText.front() == '-' || inText.front() == '+') return std::nullopt;
    double value = 0;
    const auto [end, error] = std::from_chars(inText.data(), inText.data() + inText.size(), value);
    if (error != std::errc() || end != inText.data() + inText.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

// At most `inDecimals` decimals, without trailing zeros; never "-0".
std::u16string Number(double inValue, int inDecimals)
{
    QString text = QString::number(inValue, 'f', inDecimals);
    if (text.contains(u'.')) {
        while (text.endsWith(u'0'))
            text.chop(1);
        if (text.endsWith(u'.')) text.chop(1);
    }
    if (text == QStringLiteral("-0")) text = QStringLiteral("0");
    return text.toStdU16String();
}

std::u16string ExposureTime(double inSeconds)
{
    if (inSeconds < 1.0) {
        const double reciprocal = 1.0 / inSeconds;
        const double whole = std::round(reciprocal);
        // Cameras store short times as 1/n; anything near that reads as 1/n.
        if (inSeconds <= 0.25 || std::fabs(reciprocal - whole) <= 0.01 * whole)
            return Localized(kSecondsKey, u"1/" + Number(whole, 0));
    }
    return Localized(kSecondsKey, Number(inSeconds, 1));
}

// Thirds and halves of a stop as fractions ("+1 1/3"), other values as
// decimals; a sign on every value but zero.
std::u16string ExposureBias(double inStops)
{
    const double sixths = std::round(inStops * 6.0);
    std::u16string magnitude;
    if (std::fabs(inStops * 6.0 - sixths) < 0.01) {
        const auto total = static_cast<std::int64_t>(std::fabs(sixths));
        const std::int64_t whole = total / 6;
        const std::int64_t rest = total % 6;
        static constexpr char16_t const *kFractions[] = {u"", nullptr, u"1/3", u"1/2", u"2/3", nullptr};
        if (kFractions[rest]) {
            if (rest == 0)
                magnitude = Number(static_cast<double>(whole), 0);
            else if (whole == 0)
                magnitude = kFractions[rest];
            else
                magnitude = Number(static_cast<double>(whole), 0) + u" " + kFractions[rest];
        }
    }
    if (magnitude.empty()) magnitude = Number(std::fabs(inStops), 2);
    if (magnitude == u"0") return Localized(kEVKey, magnitude);
    return Localized(kEVKey, (inStops < 0 ? u"-" : u"+") + magnitude);
}

// "DDD,MM,SSk" or "DDD,MM.mmk", k one of N, S, E, W.
std::optional<std::u16string> Coordinate(std::string_view inText)
{
    inText = Trimmed(inText);
    if (inText.size() < 4) return std::nullopt;
    const char direction = inText.back();
    const bool latitude = direction == 'N' || direction == 'S';
    if (!latitude && direction != 'E' && direction != 'W') return std::nullopt;
    inText.remove_suffix(1);
    const std::size_t comma = inText.find(',');
    if (comma == std::string_view::npos) return std::nullopt;
    const auto degrees = Integer(inText.substr(0, comma));
    if (!degrees || *degrees < 0 || *degrees > (latitude ? 90 : 180)) return std::nullopt;
    std::string_view rest = inText.substr(comma + 1);
    const std::size_t secondComma = rest.find(',');
    const auto minutes = Decimal(rest.substr(0, secondComma));
    if (!minutes || *minutes >= 60.0) return std::nullopt;
    const std::u16string shownDirection(1, static_cast<char16_t>(direction));
    if (secondComma == std::string_view::npos) {
        return Localizer::Localize(kCoordinateKey,
                                   {Number(static_cast<double>(*degrees), 0), Number(*minutes, 4), shownDirection});
    }
    // With seconds the minutes are whole.
    const auto wholeMinutes = Integer(rest.substr(0, secondComma));
    const auto seconds = Decimal(rest.substr(secondComma + 1));
    if (!wholeMinutes || !seconds || *seconds >= 60.0) return std::nullopt;
    return Localizer::Localize(kCoordinateSecondsKey,
                               {Number(static_cast<double>(*degrees), 0), Number(static_cast<double>(*wholeMinutes), 0),
                                Number(*seconds, 2), shownDirection});
}

std::optional<std::u16string> Date(std::string_view inText)
{
    kivmetadata::XMP_DateTime date;
    if (!ParseDateTimeStr(kivcore::utility::Utf8ToUtf16(std::string(inText)), date)) return std::nullopt;
    std::u16string shown = FormatDateTimeStr(date);
    if (shown.empty()) return std::nullopt;
    return shown;
}

} // namespace

DisplayForm DisplayFormOf(kivmetadata::PropertyDefinition const &inDefinition)
{
    for (NamedForm const &named : kNamedForms) {
        if (inDefinition.mName == named.mName && inDefinition.mNamespace == named.mNamespace) return named.mForm;
    }
    if (inDefinition.mTypeId == "date") return DisplayForm::kDate;
    if (inDefinition.mTypeId == "gpsCoordinate") return DisplayForm::kGPSCoordinate;
    if (inDefinition.mTypeId == "rational") return DisplayForm::kNumber;
    return DisplayForm::kRaw;
}

std::optional<std::u16string> FormatForDisplay(DisplayForm inForm, std::string_view inRaw)
{
    switch (inForm) {
    case DisplayForm::kRaw:
        return std::nullopt;
    case DisplayForm::kDate:
        return Date(inRaw);
    case DisplayForm::kGPSCoordinate:
        return Coordinate(inRaw);
    default:
        break;
    }
    const std::optional<double> value = Rational(inRaw);
    if (!value) return std::nullopt;
    switch (inForm) {
    case DisplayForm::kNumber:
        return Number(*value, 3);
    case DisplayForm::kFNumber:
        if (*value <= 0) return std::nullopt;
        return Localized(kFNumberKey, Number(*value, 1));
    case DisplayForm::kApexAperture:
        if (std::fabs(*value) > kLargestApex) return std::nullopt;
        return Localized(kFNumberKey, Number(std::pow(2.0, *value / 2.0), 1));
    case DisplayForm::kFocalLength:
        if (*value <= 0) return std::nullopt;
        return Localized(kMillimetresKey, Number(*value, 1));
    case DisplayForm::kExposureTime:
        if (*value <= 0) return std::nullopt;
        return ExposureTime(*value);
    case DisplayForm::kApexShutterSpeed:
        if (std::fabs(*value) > kLargestApex) return std::nullopt;
        return ExposureTime(std::pow(2.0, -*value));
    case DisplayForm::kExposureBias:
        return ExposureBias(*value);
    case DisplayForm::kMetres:
        return Localized(kMetresKey, Number(*value, 1));
    case DisplayForm::kDegrees:
        return Localized(kDegreesKey, Number(*value, 2));
    case DisplayForm::kRaw:
    case DisplayForm::kDate:
    case DisplayForm::kGPSCoordinate:
        break;
    }
    return std::nullopt;
}

} // namespace kivmetadataui
