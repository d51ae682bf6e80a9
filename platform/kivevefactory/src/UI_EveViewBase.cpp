#include <kivevefactory/UI_EveViewBase.h>

#include <kivui/ResourceManager.h>
#include <kivui/UI_NodeFactory.h>

#include <kivcore/Localizer.h>

#include <QBoxLayout>
#include <QDialog>
#include <QHBoxLayout>
#include <QLoggingCategory>
#include <QPushButton>

#include <algorithm>

Q_LOGGING_CATEGORY(lcKivEveFactory, "kiv.evefactory", QtFatalMsg)

namespace kivevefactory {

namespace {

QByteArray LayoutOf(kivui::utility::ResourceManager const *resources, std::string const &name)
{
    if (!resources) return {};
    QByteArray layout = resources->GetLayoutDescription(name);
    if (layout.isEmpty()) qCWarning(lcKivEveFactory) << "no layout description named" << name.c_str();
    return layout;
}

// A standard button when the toolkit's text button class is not available.
class PlainButton : public kivui::UI_Node {
public:
    explicit PlainButton(QString const &text) : kivui::UI_Node(new QPushButton(text)) {}
};

kivcore::utility::IntrusivePtr<kivui::UI_Node> MakeButton(kivui::drawbot::SupplierInterface *supplier,
                                                          char const *textKey, std::string const &id)
{
    std::u16string const text = kivcore::config::Localizer::Localize(textKey);
    auto button = kivui::UI_NodeFactory::Create("kivui::UI_TextButton", supplier);
    if (button)
        kivui::UI_NodeFactory::SetText("kivui::UI_TextButton", *button, text);
    else
        button = kivcore::utility::IntrusivePtr<kivui::UI_Node>(new PlainButton(QString::fromStdU16String(text)));
    button->UI_SetNodeID(id);
    button->UI_SetDrawSupplier(supplier);
    button->UI_GetWidget()->setObjectName(QString::fromStdString(id));
    return button;
}

} // namespace

UI_EveViewBase::UI_EveViewBase(kivui::drawbot::SupplierInterface *inSupplier,
                               kivui::utility::ResourceManager const *inResources, std::string const &inLayoutName,
                               kivui::dialogs::DialogText const &inTitle, kivui::UI_Node *inParent)
    : kivui::UI_ArchivedDialog(inSupplier, LayoutOf(inResources, inLayoutName), inTitle, inParent),
      mLayoutName(inLayoutName)
{
    UI_SetNodeID(inLayoutName);
    if (!HasLayout()) return;

    kivui::UI_Node *ok = FindNode("okButton");
    kivui::UI_Node *cancel = FindNode("cancelButton");
    if (!ok && !cancel) {
        AddStandardButtonRow();
        ok = mOkButton.get();
        cancel = mCancelButton.get();
    }
    SetButtons(ok, cancel);

    QWidget *content = GetArchiveContent();
    kivcore::RectF const built = UI_GetLocalRectF(false);
    SetMinimumSize({built.width, built.height});
    QVariant const resizable = content->property("resizable");
    SetResizable(!resizable.isValid() || resizable.toBool());
}

UI_EveViewBase::~UI_EveViewBase() = default;

std::string const &UI_EveViewBase::GetLayoutName() const
{
    return mLayoutName;
}

void UI_EveViewBase::AddStandardButtonRow()
{
    kivui::drawbot::SupplierInterface *supplier = UI_GetDrawSupplier();
    mOkButton = MakeButton(supplier, "$$$/kivui/dialogs/OK=OK", "okButton");
    mCancelButton = MakeButton(supplier, "$$$/kivui/dialogs/Cancel=Cancel", "cancelButton");

    auto *layout = qobject_cast<QBoxLayout *>(GetDialog()->layout());
    if (!layout) return;
    auto *row = new QHBoxLayout();
    row->setContentsMargins(10, 0, 10, 10);
    row->addStretch(1);
    for (QWidget *button : {mOkButton->UI_GetWidget(), mCancelButton->UI_GetWidget()}) {
        button->setMinimumWidth(80);
        row->addWidget(button);
    }
    float const rowHeight = static_cast<float>(row->sizeHint().height());
    layout->addLayout(row);
    layout->activate();
    QSize const needed = GetDialog()->minimumSizeHint();
    kivcore::RectF rect = UI_GetLocalRectF(false);
    rect.width = std::max(rect.width, static_cast<float>(needed.width()));
    rect.height = std::max(rect.height + rowHeight, static_cast<float>(needed.height()));
    UI_SetLocalRectF(rect);
}

QWidget *UI_EveViewBase::GetDefaultFocusWidget() const
{
    QWidget *content = GetArchiveContent();
    if (!content) return nullptr;
    for (QWidget *widget : content->findChildren<QWidget *>()) {
        if (widget->property("defaultFocus").toBool()) return widget;
    }
    return nullptr;
}

void UI_EveViewBase::DialogShown()
{
    QWidget *focus = GetDefaultFocusWidget();
    if (!focus) return;
    // A control node's widget may be a container: focus what inside it takes focus.
    if (focus->focusPolicy() == Qt::NoFocus) {
        for (QWidget *child : focus->findChildren<QWidget *>()) {
            if (child->focusPolicy() != Qt::NoFocus) {
                focus = child;
                break;
            }
        }
    }
    focus->setFocus(Qt::OtherFocusReason);
}

} // namespace kivevefactory
