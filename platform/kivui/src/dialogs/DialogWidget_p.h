#pragma once
// Private to kivui: not installed, not API.
#include <QDialog>

namespace kivui {

class UI_Dialog;

// The QDialog of a UI_Dialog: routes Escape and the close box to the node.
class DialogWidget : public QDialog {
public:
    explicit DialogWidget(QWidget *parent);

    void reject() override;

protected:
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    friend class UI_Dialog;
    UI_Dialog *mOwner = nullptr;
};

} // namespace kivui
