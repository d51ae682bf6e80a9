#pragma once

#include <kivui/drawbot/SupplierInterface.h>

#include <memory>

namespace kivui::drawbot {

// The supplier over Qt's fonts: measures with QFontMetricsF. Font sizes are in
// pixels (UI units). Without a base font it follows the application font, so
// a change of look (which sets the application font) reaches measuring too.
class KIVUI_EXPORT QtSupplier : public SupplierInterface {
public:
    QtSupplier();
    explicit QtSupplier(QFont const &baseFont);
    ~QtSupplier() override;

    QFont GetFont(float fontSize = 0.0f, std::string_view style = {}) const override;
    float GetDefaultFontSize() const override;
    kivcore::PointF MeasureText(std::u16string_view text, float fontSize = 0.0f,
                                std::string_view style = {}) const override;
    float GetLineHeight(float fontSize = 0.0f, std::string_view style = {}) const override;
    float GetAscent(float fontSize = 0.0f, std::string_view style = {}) const override;

private:
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui::drawbot
