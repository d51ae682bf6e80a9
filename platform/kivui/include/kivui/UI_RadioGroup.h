#pragma once

#include <kivui/UI_ControlView.h>

#include <string>

class QButtonGroup;
class QRadioButton;
class QVBoxLayout;

namespace kivui {

// Radio buttons stacked vertically, one of which is chosen. A choice of the
// user notifies the NotifyWhenChanged listeners.
class KIVUI_EXPORT UI_RadioGroup : public UI_ControlView {
public:
    UI_RadioGroup();

    // Returns the new button's index.
    int AddButton(std::u16string const &inText, std::u16string const &inToolTip = {});
    int CountButtons() const;
    // -1 chooses none.
    void SetValue(int inIndex);
    int GetValue() const;
    QRadioButton *GetButton(int inIndex) const;

protected:
    ~UI_RadioGroup() override;

private:
    void FitToButtons();
    QButtonGroup *mGroup = nullptr;
    QVBoxLayout *mLayout = nullptr;
};

} // namespace kivui
