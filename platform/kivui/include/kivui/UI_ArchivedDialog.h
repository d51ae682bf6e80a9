#pragma once

#include <kivui/UI_Dialog.h>

#include <kivcore/Exceptions.h>

#include <QByteArray>

#include <memory>
#include <string>
#include <typeinfo>

namespace kivui {

namespace utility {
class ResourceManager;
}

namespace detail {
// "kivui::UI_Popup" for typeid(kivui::UI_Popup).
KIVUI_EXPORT std::string ReadableTypeName(std::type_info const &type);
} // namespace detail

// A dialog built from a UI archive: a Qt Designer .ui file read through a
// resource manager (<prefix>ui/<name>.ui). Widgets of kivui classes in the
// archive ("kivui::UI_TextEdit", ...) become toolkit controls made by
// UI_NodeFactory; texts that are localisation keys are localised. The
// window's size as built is the archive's size (at least what its layout
// needs). Controls are found by identifier (the widget's object name).
class KIVUI_EXPORT UI_ArchivedDialog : public UI_Dialog {
public:
    // A missing archive gives an empty dialog; check HasArchive().
    UI_ArchivedDialog(drawbot::SupplierInterface *inSupplier, utility::ResourceManager const *inResources,
                      std::string const &inArchiveName, dialogs::DialogText const &inTitle = {},
                      UI_Node *inParent = nullptr);
    // Over the bytes of an archive.
    UI_ArchivedDialog(drawbot::SupplierInterface *inSupplier, QByteArray const &inArchive,
                      dialogs::DialogText const &inTitle = {}, UI_Node *inParent = nullptr);

    bool HasArchive() const;
    utility::ResourceManager const *GetResourceManager() const;

    // The node of the archive control named inID; null when there is none.
    UI_Node *FindNode(std::string const &inID) const;
    // The widget named inID (kivui control or plain Qt widget); null when none.
    QWidget *FindWidget(std::string const &inID) const;

    // The control named inID as a T. No control of that name: the null-pointer
    // exception naming T. A control of another type (or a plain Qt widget):
    // the invalid-type-conversion error at level 1.
    template <typename T> kivcore::utility::IntrusivePtr<T> FindControl(std::string const &inID) const
    {
        UI_Node *node = FindNode(inID);
        if (!node) {
            if (!FindWidget(inID))
                kivcore::config::DoThrowNullPtrException(detail::ReadableTypeName(typeid(T)).c_str());
            kivcore::config::DoThrowError(kivcore::config::kInvalidTypeConversionKey, 1);
        }
        T *control = dynamic_cast<T *>(node);
        if (!control) kivcore::config::DoThrowError(kivcore::config::kInvalidTypeConversionKey, 1);
        return kivcore::utility::IntrusivePtr<T>(control);
    }

protected:
    ~UI_ArchivedDialog() override;
    // The widget made from the archive's top-level element (the content).
    QWidget *GetArchiveContent() const;

private:
    void Build(QByteArray const &inArchive, dialogs::DialogText const &inTitle);
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui
