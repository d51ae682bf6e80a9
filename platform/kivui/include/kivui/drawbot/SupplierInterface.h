#pragma once

#include <kivui/kivui_export.h>

#include <kivcore/Geometry.h>

#include <string>
#include <string_view>

class QFont;

namespace kivui::drawbot {

// Fonts and text measuring for one look of the toolkit. A font size of 0 (or
// less) means the supplier's default size; a style is a word such as "Bold",
// "Italic" or "BoldItalic" (empty: regular). Measured widths and heights are
// rounded up to whole units so that text laid out by them is never clipped.
class KIVUI_EXPORT SupplierInterface {
public:
    virtual ~SupplierInterface();

    virtual QFont GetFont(float fontSize = 0.0f, std::string_view style = {}) const = 0;
    virtual float GetDefaultFontSize() const = 0;

    // Width and height of `text` on one line (line breaks are not honoured).
    virtual kivcore::PointF MeasureText(std::u16string_view text, float fontSize = 0.0f,
                                        std::string_view style = {}) const = 0;
    // Height of one line of text: ascent plus descent, rounded up.
    virtual float GetLineHeight(float fontSize = 0.0f, std::string_view style = {}) const = 0;
    virtual float GetAscent(float fontSize = 0.0f, std::string_view style = {}) const = 0;

protected:
    SupplierInterface() = default;
    SupplierInterface(SupplierInterface const &) = default;
    SupplierInterface &operator=(SupplierInterface const &) = default;
};

} // namespace kivui::drawbot
