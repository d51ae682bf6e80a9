#include <kivui/UI_ArchivedDialog.h>

#include <kivui/ResourceManager.h>
#include <kivui/UI_NodeFactory.h>

#include "dialogs/ModalRun_p.h"

#include <kivcore/Localizer.h>
#include <kivcore/StringUtils.h>

#include <QBuffer>
#include <QComboBox>
#include <QDialog>
#include <QLayout>
#include <QPointer>
#include <QUiLoader>
#include <QVBoxLayout>

#include <cxxabi.h>

#include <cstdlib>
#include <map>

namespace kivui {

namespace detail {

std::string ReadableTypeName(std::type_info const &type)
{
    int status = 0;
    char *demangled = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
    std::string name = status == 0 && demangled ? demangled : type.name();
    std::free(demangled);
    return name;
}

} // namespace detail

namespace {

struct ArchiveNode {
    std::string className;
    kivcore::utility::IntrusivePtr<UI_Node> node;
};

// Makes kivui controls for the kivui classes that an archive names and plain
// Qt widgets for the rest.
class ArchiveLoader : public QUiLoader {
public:
    ArchiveLoader(UI_Container *owner, drawbot::SupplierInterface *supplier, QWidget *topParent)
        : mOwner(owner), mSupplier(supplier), mTopParent(topParent)
    {
    }

    QWidget *createWidget(QString const &className, QWidget *parent, QString const &name) override
    {
        std::string const cls = className.toStdString();
        if (UI_NodeFactory::IsRegistered(cls)) {
            if (auto node = UI_NodeFactory::Create(cls, mSupplier)) {
                QWidget *widget = node->UI_GetWidget();
                // The dialog is the control's node parent, so keys and the draw
                // supplier reach it through the dialog; the widget itself goes
                // where the archive puts it (before the loader adds it to a layout).
                mOwner->ChildPushBack(node);
                if (parent) widget->setParent(parent);
                widget->setObjectName(name);
                nodes.emplace(name.toStdString(), ArchiveNode{cls, node});
                return widget;
            }
        }
        // The archive's outer element becomes the dialog's content, not a second window.
        if (parent == mTopParent && !mTopMade) {
            mTopMade = true;
            if (className == QLatin1String("QDialog") || className == QLatin1String("QMainWindow")) {
                return QUiLoader::createWidget(QStringLiteral("QWidget"), parent, name);
            }
        }
        return QUiLoader::createWidget(className, parent, name);
    }

    std::map<std::string, ArchiveNode> nodes;

private:
    UI_Container *mOwner;
    drawbot::SupplierInterface *mSupplier;
    QWidget *mTopParent;
    bool mTopMade = false;
};

QString Localized(QString const &text)
{
    if (!text.startsWith(QLatin1String("$$$/"))) return text;
    return QString::fromStdU16String(kivcore::config::Localizer::Localize(text.toStdString()));
}

void LocalizeWidget(QWidget *widget)
{
    static char const *const kTextProperties[] = {"text",        "title",     "toolTip",  "placeholderText",
                                                  "windowTitle", "statusTip", "whatsThis"};
    for (char const *property : kTextProperties) {
        QVariant const value = widget->property(property);
        if (value.typeId() != QMetaType::QString) continue;
        QString const text = value.toString();
        if (text.startsWith(QLatin1String("$$$/"))) widget->setProperty(property, Localized(text));
    }
    if (auto *combo = qobject_cast<QComboBox *>(widget)) {
        for (int i = 0; i < combo->count(); ++i)
            combo->setItemText(i, Localized(combo->itemText(i)));
    }
}

} // namespace

struct UI_ArchivedDialog::Private {
    utility::ResourceManager const *resources = nullptr;
    QPointer<QWidget> content;
    std::map<std::string, ArchiveNode> nodes;
};

UI_ArchivedDialog::UI_ArchivedDialog(drawbot::SupplierInterface *inSupplier,
                                     utility::ResourceManager const *inResources, std::string const &inArchiveName,
                                     dialogs::DialogText const &inTitle, UI_Node *inParent)
    : UI_Dialog(inSupplier, inTitle, inParent), d(std::make_unique<Private>())
{
    d->resources = inResources;
    QByteArray archive;
    if (inResources) archive = inResources->GetUIArchive(inArchiveName);
    if (archive.isEmpty()) qCWarning(lcKivUiDialogs) << "UI archive missing:" << inArchiveName.c_str();
    Build(archive, inTitle);
}

UI_ArchivedDialog::UI_ArchivedDialog(drawbot::SupplierInterface *inSupplier, QByteArray const &inArchive,
                                     dialogs::DialogText const &inTitle, UI_Node *inParent)
    : UI_Dialog(inSupplier, inTitle, inParent), d(std::make_unique<Private>())
{
    Build(inArchive, inTitle);
}

UI_ArchivedDialog::~UI_ArchivedDialog()
{
    // The archive's nodes own their widgets, which sit inside the content widget.
    d->nodes.clear();
}

void UI_ArchivedDialog::Build(QByteArray const &inArchive, dialogs::DialogText const &inTitle)
{
    if (inArchive.isEmpty()) return;
    QDialog *dialog = GetDialog();
    ArchiveLoader loader(this, UI_GetDrawSupplier(), dialog);
    QByteArray bytes = inArchive;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QWidget *content = loader.load(&buffer, dialog);
    if (!content) {
        qCWarning(lcKivUiDialogs) << "unreadable UI archive:" << loader.errorString();
        return;
    }
    d->content = content;
    d->nodes = std::move(loader.nodes);

    QList<QWidget *> widgets = content->findChildren<QWidget *>();
    widgets.prepend(content);
    for (QWidget *widget : widgets)
        LocalizeWidget(widget);
    for (auto &[id, entry] : d->nodes) {
        entry.node->UI_SetNodeID(id);
        QVariant const text = entry.node->UI_GetWidget()->property("text");
        if (text.typeId() == QMetaType::QString) {
            UI_NodeFactory::SetText(entry.className, *entry.node, Localized(text.toString()).toStdU16String());
        }
    }

    // The archive's own title unless the caller gave one.
    if (inTitle.Resolve().empty()) dialog->setWindowTitle(Localized(content->windowTitle()));

    QSize const designed = content->size();
    auto *layout = new QVBoxLayout(dialog);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(content);
    layout->activate();
    QSize const size = designed.expandedTo(dialog->minimumSizeHint());
    UI_SetLocalRectF(kivcore::RectF{0.0f, 0.0f, static_cast<float>(size.width()), static_cast<float>(size.height())});
}

bool UI_ArchivedDialog::HasArchive() const
{
    return d->content != nullptr;
}

utility::ResourceManager const *UI_ArchivedDialog::GetResourceManager() const
{
    return d->resources;
}

UI_Node *UI_ArchivedDialog::FindNode(std::string const &inID) const
{
    auto const it = d->nodes.find(inID);
    return it == d->nodes.end() ? nullptr : it->second.node.get();
}

QWidget *UI_ArchivedDialog::FindWidget(std::string const &inID) const
{
    if (UI_Node *node = FindNode(inID)) return node->UI_GetWidget();
    if (!d->content) return nullptr;
    QString const name = QString::fromStdString(inID);
    if (d->content->objectName() == name) return d->content;
    return d->content->findChild<QWidget *>(name);
}

QWidget *UI_ArchivedDialog::GetArchiveContent() const
{
    return d->content;
}

} // namespace kivui
