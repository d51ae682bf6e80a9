#pragma once

#include <kivui/UI_InteractiveControlView.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

class QLineEdit;

namespace kivui {

// A number shown as text that the user edits by typing, by the Up and Down
// keys (one increment), or by dragging horizontally over it (one increment
// per few pixels). A click without a drag starts typing. An empty field is
// NaN when empty fields are allowed.
//
// Interactive messages: 0 when typing or a drag begins, 1 for every step of
// a drag or arrow key, 2 when typing is committed or the drag ends.
// NotifyWhenChanged listeners hear of each committed change.
class KIVUI_EXPORT UI_HotTextNumber : public UI_InteractiveControlView {
public:
    UI_HotTextNumber();

    // NaN empties the field (when allowed; otherwise it keeps its number).
    void SetValue(double inValue);
    double GetValue() const;
    void SetDecimalPlaces(int inPlaces);
    int GetDecimalPlaces() const;
    void SetIncrement(double inIncrement);
    double GetIncrement() const;
    void SetMinMax(std::optional<double> inMin, std::optional<double> inMax);
    std::optional<double> GetMin() const;
    std::optional<double> GetMax() const;
    void SetAllowEmpty(bool inAllow);
    bool GetAllowEmpty() const;
    void SetEditTextFlags(std::uint32_t inFlags);
    std::uint32_t GetEditTextFlags() const;
    void SetUnknownStateText(std::u16string const &inText);
    std::u16string const &GetUnknownStateText() const;
    void SetValueUnknown(bool inUnknown) override;

    // The text for inValue with the control's decimal places.
    std::u16string FormatValue(double inValue) const;
    // Pixels of horizontal drag per increment.
    static constexpr int kPixelsPerStep = 4;

    QLineEdit *GetLineEdit() const;

protected:
    ~UI_HotTextNumber() override;
    void UpdateEnabledState() override;

private:
    friend class HotTextLineEdit;
    double Clamp(double inValue) const;
    void ShowValue();
    void BeginEditing();
    void CommitTyping();
    void Step(int inSteps);
    void DragTo(double inValue);
    void EndDrag(bool inChanged);
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui
