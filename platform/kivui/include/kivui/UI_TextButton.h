#pragma once

#include <kivui/UI_ControlView.h>

#include <string>

class QPushButton;

namespace kivui {

// A push button with a text. A click notifies the NotifyWhenChanged listeners.
class KIVUI_EXPORT UI_TextButton : public UI_ControlView {
public:
    UI_TextButton();
    explicit UI_TextButton(std::u16string const &inText);

    void SetText(std::u16string const &inText);
    std::u16string GetText() const;
    // The default button of its window answers Return.
    void SetDefault(bool inDefault);
    QPushButton *GetButton() const;

protected:
    ~UI_TextButton() override;
};

} // namespace kivui
