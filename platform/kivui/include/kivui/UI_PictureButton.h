#pragma once

#include <kivui/UI_ControlView.h>

#include <QIcon>

class QToolButton;

namespace kivui {

// A button showing a picture; a toggling button shows its second picture
// while on. A click by the user notifies the NotifyWhenChanged listeners.
class KIVUI_EXPORT UI_PictureButton : public UI_ControlView {
public:
    UI_PictureButton();

    void SetImages(QIcon const &inOff, QIcon const &inOn = QIcon());
    void SetToggles(bool inToggles);
    bool GetToggles() const;
    void SetOn(bool inOn);
    bool IsOn() const;
    QToolButton *GetButton() const;

protected:
    ~UI_PictureButton() override;

private:
    void ShowImage();
    QToolButton *mButton = nullptr;
    QIcon mOff;
    QIcon mOn;
};

} // namespace kivui
