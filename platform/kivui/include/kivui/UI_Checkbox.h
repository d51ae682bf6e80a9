#pragma once

#include <kivui/UI_InteractiveControlView.h>

#include <memory>
#include <string>

class QCheckBox;

namespace kivui {

// A check box over QCheckBox with a mixed state for several differing values.
// The user toggles only between checked and unchecked (mixed turns checked).
// A user toggle sends the interactive message 1 and notifies the
// NotifyWhenChanged listeners.
class KIVUI_EXPORT UI_Checkbox : public UI_InteractiveControlView {
public:
    enum CheckboxValue { kUnchecked = 0, kChecked = 1, kMixed = 2 };

    UI_Checkbox();
    explicit UI_Checkbox(std::u16string const &inText);

    CheckboxValue GetValue() const;
    // kMixed makes the value unknown; the others make it known.
    void SetValue(CheckboxValue inValue);
    bool IsChecked() const;
    void SetValueUnknown(bool inUnknown) override;
    void SetText(std::u16string const &inText);
    std::u16string GetText() const;

    // Side of the box in UI units.
    static float DefaultCheckSize();

    QCheckBox *GetCheckBox() const;

protected:
    ~UI_Checkbox() override;

private:
    void UserToggled();
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui
