#include <kivmetadataui/MetadataWidget.h>

#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/MetadataLayoutView.h>
#include <kivmetadataui/MetadataView.h>

#include <kivmetadata/Definitions.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/ViewDefinition.h>
#include <kivmetadata/ViewDefinitions.h>
#include <kivui/SkinManager.h>
#include <kivui/UI_LayoutBinding.h>
#include <kivui/UI_ScrollBar.h>
#include <kivui/UI_SubView.h>
#include <kivui/drawbot/QtSupplier.h>

#include <QEvent>
#include <QVBoxLayout>

#include <cmath>

namespace kivmetadataui {
namespace {

using kivcore::utility::IntrusivePtr;

// Set by the toolkit on widgets that take its skins' style sheet.
constexpr char kAdoptedProperty[] = "kivSkinAdopted";
// What a field keeps of the skins under the host's look: the mark of a date
// that does not parse. Everything else comes from the host's palette and style.
constexpr char kHostLookSheet[] = "QLineEdit[kivDateInvalid=\"true\"] { border: 1px solid #d0453a; }";
constexpr char kRawDataName[] = "RawData";
constexpr char kTreeName[] = "Tree";
constexpr int kPreferredHeight = 420;
constexpr int kMinimumWidth = 200;
constexpr int kMinimumHeight = 120;

} // namespace

struct MetadataWidget::Private {
    std::shared_ptr<kivmetadata::MetaDataProvider> mProvider;
    std::string mShownName;
    Kind mKind = Kind::kPanel;
    Look mLook = Look::kHost;
    std::unique_ptr<kivui::drawbot::QtSupplier> mSupplier = std::make_unique<kivui::drawbot::QtSupplier>();
    IntrusivePtr<kivui::UI_SubView> mRoot;
    IntrusivePtr<kivui::UI_SubView> mView;
};

MetadataWidget::MetadataWidget(QWidget *inParent) : QWidget(inParent), d(std::make_unique<Private>())
{
    kivmetadataui::Initialize();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    d->mRoot = IntrusivePtr<kivui::UI_SubView>(new kivui::UI_SubView());
    d->mRoot->UI_SetNodeID("MetadataWidget");
    d->mRoot->UI_SetDrawSupplier(d->mSupplier.get());
    d->mRoot->UI_SetLayoutsChildren(true);
    layout->addWidget(d->mRoot->UI_GetWidget());
}

MetadataWidget::MetadataWidget(std::shared_ptr<kivmetadata::MetaDataProvider> inProvider,
                               std::string const &inPanelName, QWidget *inParent)
    : MetadataWidget(inParent)
{
    d->mProvider = std::move(inProvider);
    ShowPanel(inPanelName);
}

MetadataWidget::~MetadataWidget()
{
    // The views go before the supplier they draw with.
    if (d->mRoot) d->mRoot->DeleteChildren();
    d->mView.reset();
    d->mRoot.reset();
    d->mSupplier.reset();
    kivmetadataui::Terminate();
}

void MetadataWidget::SetProvider(std::shared_ptr<kivmetadata::MetaDataProvider> inProvider)
{
    d->mProvider = std::move(inProvider);
    if (!d->mShownName.empty()) Show(d->mShownName, d->mKind);
}

std::shared_ptr<kivmetadata::MetaDataProvider> const &MetadataWidget::GetProvider() const
{
    return d->mProvider;
}

bool MetadataWidget::ShowPanel(std::string const &inPanelName)
{
    if (inPanelName.empty() || !kivmetadata::GetViewDefinitionForName(inPanelName)) return false;
    Show(inPanelName, Kind::kPanel);
    return true;
}

void MetadataWidget::ShowRawData()
{
    Show(kRawDataName, Kind::kRawData);
}

void MetadataWidget::ShowTree()
{
    Show(kTreeName, Kind::kTree);
}

std::string MetadataWidget::GetShownName() const
{
    return d->mShownName;
}

void MetadataWidget::Show(std::string const &inName, Kind inKind)
{
    d->mShownName = inName;
    d->mKind = inKind;
    d->mRoot->DeleteChildren();
    d->mView.reset();
    if (!d->mProvider) return;

    switch (inKind) {
    case Kind::kRawData:
        // A null definition gives the raw view its own name and label.
        d->mView = CreateRawDataView(nullptr, d->mProvider, RawDataViewOptions{false, true});
        break;
    case Kind::kTree: {
        IntrusivePtr<MetadataView> tree(new MetadataView(kivmetadata::GetSchemaDefinitions(), d->mProvider));
        {
            MetadataView::SuspendTreeRebuild suspend(tree.get());
            for (auto const &schema : tree->GetDisplaySchemas()) {
                if (schema) tree->AppendSchemaPropertiesToIncludedPaths(*schema);
            }
        }
        tree->UI_SetLayoutBinding(kivui::LayoutBinding(kivui::kBindWidth | kivui::kBindHeight));
        d->mView = tree;
        break;
    }
    case Kind::kPanel:
        d->mView = IntrusivePtr<MetadataLayoutView>(
            new MetadataLayoutView(kivmetadata::GetViewDefinitionForName(inName), d->mProvider));
        break;
    }
    // The root fills the widget once the host sized it; before that the view
    // starts at the preferred size and follows the host's first resize.
    QSize size = testAttribute(Qt::WA_Resized) ? contentsRect().size() : sizeHint();
    if (size.isEmpty()) size = sizeHint();
    d->mRoot->UI_SetLocalRectF(kivcore::RectF(0, 0, float(size.width()), float(size.height())));
    d->mView->UI_SetLocalRectF(d->mRoot->UI_GetLocalRectF(false));
    d->mRoot->ChildPushBack(d->mView);
    d->mView->UI_Show(true);
    Refresh();
}

void MetadataWidget::Refresh()
{
    if (auto *layoutView = GetLayoutView())
        layoutView->Refresh();
    else if (auto *tree = GetTreeView())
        tree->PopulateTreeValues();
    ApplyLook();
}

void MetadataWidget::SetLook(Look inLook)
{
    d->mLook = inLook;
    ApplyLook();
}

MetadataWidget::Look MetadataWidget::GetLook() const
{
    return d->mLook;
}

MetadataLayoutView *MetadataWidget::GetLayoutView() const
{
    return dynamic_cast<MetadataLayoutView *>(d->mView.get());
}

MetadataView *MetadataWidget::GetTreeView() const
{
    return dynamic_cast<MetadataView *>(d->mView.get());
}

QSize MetadataWidget::sizeHint() const
{
    // The width the panel's rows are built for, with its scroll bar and margins.
    const float width = MetadataLayoutView::BuilderWidth() + kivui::UI_ScrollBar::GetDefaultSize() + 26.0f;
    return QSize(int(std::ceil(width)), kPreferredHeight);
}

QSize MetadataWidget::minimumSizeHint() const
{
    return QSize(kMinimumWidth, kMinimumHeight);
}

void MetadataWidget::showEvent(QShowEvent *inEvent)
{
    QWidget::showEvent(inEvent);
    ApplyLook();
}

void MetadataWidget::changeEvent(QEvent *inEvent)
{
    QWidget::changeEvent(inEvent);
    // A new look of the toolkit gives adopted fields its sheet again.
    if (inEvent->type() == QEvent::StyleChange || inEvent->type() == QEvent::PaletteChange) ApplyLook();
}

void MetadataWidget::ApplyLook()
{
    // The toolkit gives its skins to the fields that adopt them as they are
    // made; under the host's look they get the host sheet instead.
    for (QWidget *widget : findChildren<QWidget *>()) {
        if (!widget->property(kAdoptedProperty).toBool()) continue;
        if (d->mLook == Look::kToolkit) {
            kivui::skins::core::SkinManager::AdoptWidget(widget);
        } else if (widget->styleSheet() != QLatin1String(kHostLookSheet)) {
            widget->setStyleSheet(QLatin1String(kHostLookSheet));
        }
    }
}

} // namespace kivmetadataui
