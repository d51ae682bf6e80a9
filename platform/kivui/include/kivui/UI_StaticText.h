#pragma once

#include <kivui/UI_ControlView.h>

#include <memory>
#include <string>

class QLabel;

namespace kivui {

// A text label over QLabel.
class KIVUI_EXPORT UI_StaticText : public UI_ControlView {
public:
    enum TextMode : int {
        kTextModePlain = 2,      // plain text, not selectable
        kTextModeSelectable = 3, // selectable, shown like a link (addresses)
    };
    enum Alignment : int { kAlignLeft = 0, kAlignCenter = 1, kAlignRight = 2 };

    UI_StaticText();
    explicit UI_StaticText(std::u16string const &inText);

    void SetText(std::u16string const &inText);
    std::u16string GetText() const;
    void SetTextMode(int inMode);
    int GetTextMode() const;
    void SetAlignment(int inAlignment);
    int GetAlignment() const;
    // In UI units (pixels); 0 restores the default size.
    void SetFontSize(float inSize);
    float GetFontSize() const;
    // "Bold", "Italic", "BoldItalic" or empty.
    void SetFontStyle(std::string const &inStyle);
    std::string const &GetFontStyle() const;
    void SetWordWrap(bool inWrap);
    // A one-line plain text too long for the field ends in an ellipsis
    // instead of being cut off; GetText still answers the whole text.
    void SetElided(bool inElided);

    // Measured with inDrawbot's supplier when given, else with the label's font.
    kivcore::PointF GetPreferredSize(drawbot::Drawbot const *inDrawbot) const override;
    QLabel *GetLabel() const;

    void UI_NodeChanged() override;

protected:
    ~UI_StaticText() override;

private:
    void ApplyFont();
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui
