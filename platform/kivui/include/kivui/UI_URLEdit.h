#pragma once

#include <kivui/UI_TextEdit.h>

#include <functional>

class QToolButton;

namespace kivui {

// A one-line text edit for an address, with a button beside it that opens
// the address in the desktop's default application. The button is enabled
// while the text is not empty.
class KIVUI_EXPORT UI_URLEdit : public UI_TextEdit {
public:
    using Opener = std::function<bool(std::u16string const &)>;

    UI_URLEdit();

    QToolButton *GetOpenButton() const;
    // Opens the current address; false when empty or the desktop refused.
    bool OpenURL();
    // Replaces how addresses are opened (tests, hosts with their own browser);
    // an empty function restores kivcore::utility::OpenFileInDefaultApplication.
    static void SetOpener(Opener inOpener);

    void UI_SizeChanged(kivcore::PointF const &oldSize) override;

protected:
    ~UI_URLEdit() override;

private:
    void PlaceParts();
    void UpdateButton();
    QToolButton *mButton = nullptr;
};

} // namespace kivui
