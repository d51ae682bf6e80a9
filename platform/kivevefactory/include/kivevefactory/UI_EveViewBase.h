#pragma once

#include <kivevefactory/kivevefactory_export.h>

#include <kivui/UI_ArchivedDialog.h>

#include <string>

namespace kivevefactory {

// A dialog laid out by a named layout description: a Qt Designer file found
// through a resource manager under layouts/<name>.ui. Its controls are found
// by identifier (UI_ArchivedDialog::FindControl). Conventions of the layout:
//   - the buttons named "okButton" and "cancelButton" are the OK/Cancel row;
//     a layout without them gets the standard row (OK, Cancel) at the bottom
//     right, made of kivui::UI_TextButton with those identifiers;
//   - a widget with the dynamic property defaultFocus=true has the focus when
//     the dialog opens;
//   - the top widget's dynamic property resizable=false fixes the size; its
//     designed size is the minimum size.
// The node identifier is the layout's name, which keys the saved window rectangle.
class KIVEVEFACTORY_EXPORT UI_EveViewBase : public kivui::UI_ArchivedDialog {
public:
    UI_EveViewBase(kivui::drawbot::SupplierInterface *inSupplier, kivui::utility::ResourceManager const *inResources,
                   std::string const &inLayoutName, kivui::dialogs::DialogText const &inTitle = {},
                   kivui::UI_Node *inParent = nullptr);

    std::string const &GetLayoutName() const;
    bool HasLayout() const { return HasArchive(); }

    // Runs the view modally; true when closed with OK.
    bool Run() { return RunModal(); }

    // The control that takes the focus on opening; null when the layout names none.
    QWidget *GetDefaultFocusWidget() const;

protected:
    ~UI_EveViewBase() override;
    void DialogShown() override;

private:
    void AddStandardButtonRow();
    std::string mLayoutName;
    kivcore::utility::IntrusivePtr<kivui::UI_Node> mOkButton;
    kivcore::utility::IntrusivePtr<kivui::UI_Node> mCancelButton;
};

} // namespace kivevefactory
