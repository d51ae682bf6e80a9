#include <kivmetadataui/MetadataLayoutView.h>

#include "MetadataViewBuilder.h"

#include <kivmetadataui/TableLayout.h>

#include <kivmetadata/MetaDataProvider.h>
#include <kivmetadata/MetaDataReadAccess.h>
#include <kivmetadata/ViewDefinition.h>
#include <kivmetadata/ViewDefinitions.h>
#include <kivmetadata/XMPMeta.h>

#include <kivcore/Assert.h>
#include <kivcore/Localizer.h>
#include <kivcore/StringUtils.h>
#include <kivui/UI_LayoutBinding.h>
#include <kivui/UI_ScrollBar.h>
#include <kivui/UI_ScrollView.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_TextEdit_MS.h>
#include <kivui/drawbot/Drawbot.h>

#include <QFontDatabase>
#include <QPlainTextEdit>

#include <algorithm>
#include <cmath>

namespace kivmetadataui {

using kivcore::PointF;
using kivcore::RectF;
using kivcore::config::Localizer;
using kivcore::utility::IntrusivePtr;
using kivui::UI_SubView;

namespace {

constexpr char kUnit[] = "src/MetadataLayoutView";
constexpr std::uint32_t kBindFollowParent = kivui::kBindWidth | kivui::kBindHeight; // 12
constexpr std::uint32_t kBindTopLeft = kivui::kBindLeft | kivui::kBindTop;          // 48

constexpr char kRawDataLabelKey[] = "$$$/kivmetadataui/view/RawData_label=Raw Data";
constexpr char kRawDataLimitKey[] =
    "$$$/kivmetadataui/view/RawDataLimit=Cannot display raw metadata,contents too large";
// Larger packets are not shown: a text edit holding megabytes of XML is too
// slow to be of use.
constexpr std::size_t kRawDataLimit = 1000000;
constexpr float kCaptionGap = 4.0f;

std::u16string RawDataText(std::shared_ptr<kivmetadata::MetaDataProvider> const &inProvider)
{
    std::string packet;
    {
        kivmetadata::MetaDataReadAccess access(inProvider);
        if (kivmetadata::XMPMeta *meta = access.GetMeta())
            meta->Serialize(packet, kivmetadata::XMPMeta::kSerializeOmitPacketWrapper, 0, nullptr);
    }
    if (packet.size() > kRawDataLimit) return Localizer::Localize(kRawDataLimitKey);
    return kivcore::utility::Utf8ToUtf16(packet);
}

// The raw-data panel: a caption and the packet text instead of rows.
class RawDataView : public MetadataLayoutView {
public:
    RawDataView(std::shared_ptr<kivmetadata::ViewDefinition> inDefinition,
                std::shared_ptr<kivmetadata::MetaDataProvider> inProvider, RawDataViewOptions inOptions)
        : MetadataLayoutView(std::move(inDefinition), std::move(inProvider)), mOptions(inOptions)
    {
        if (auto const &provider = GetMetadataProvider()) {
            mOnChanged = std::make_shared<kivmetadata::MetaDataProvider::ChangeListener>(
                [this](kivmetadata::XMPMeta *) { UpdateText(); });
            provider->AddChangeListener(mOnChanged);
        }
    }

    void Layout() override
    {
        kivui::drawbot::SupplierInterface *supplier = UI_GetDrawSupplier();
        if (!supplier) return;
        DeleteChildren();
        mText.reset();

        RectF const bounds = UI_GetLocalRectF(false);
        float top = 0.0f;
        if (mOptions.mShowLabel) {
            IntrusivePtr<kivui::UI_StaticText> caption(new kivui::UI_StaticText(Localizer::Localize(kRawDataLabelKey)));
            caption->UI_SetNodeID("RawDataView.label");
            kivui::drawbot::Drawbot drawbot(*supplier);
            PointF const size = caption->GetPreferredSize(&drawbot);
            caption->UI_SetLocalRectF(RectF{0, 0, std::ceil(size.x), std::ceil(size.y)});
            caption->UI_SetLayoutBinding(kivui::LayoutBinding(kBindTopLeft));
            ChildPushBack(caption);
            caption->UI_Show(true);
            top = std::ceil(size.y) + kCaptionGap;
        }

        IntrusivePtr<kivui::UI_TextEdit_MS> text(new kivui::UI_TextEdit_MS);
        text->UI_SetNodeID("RawDataView.text");
        text->SetReadOnlyMode(true);
        if (QPlainTextEdit *edit = text->GetPlainTextEdit()) {
            edit->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
            edit->setLineWrapMode(mOptions.mWrapLines ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
            edit->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        }
        text->UI_SetLocalRectF(RectF{0, top, bounds.width, std::max(0.0f, bounds.height - top)});
        text->UI_SetLayoutBinding(kivui::LayoutBinding(kBindFollowParent));
        ChildPushBack(text);
        text->UI_Show(true);
        mText = text;
        UpdateText();
    }

protected:
    ~RawDataView() override
    {
        if (mOnChanged) *mOnChanged = nullptr;
    }

private:
    void UpdateText()
    {
        if (mText) mText->SetValue(RawDataText(GetMetadataProvider()), false);
    }

    RawDataViewOptions mOptions;
    IntrusivePtr<kivui::UI_TextEdit_MS> mText;
    std::shared_ptr<kivmetadata::MetaDataProvider::ChangeListener> mOnChanged;
};

} // namespace

struct MetadataLayoutView::Private {
    Private(std::shared_ptr<kivmetadata::MetaDataProvider> inProvider,
            std::shared_ptr<kivmetadata::ViewDefinition> inDefinition)
        : mMetadataProvider(std::move(inProvider)), mViewDefinition(std::move(inDefinition))
    {
    }

    // Initialize's checks, made here so that the reported conditions name the members.
    void AssertInputs() const
    {
        KIV_ASSERT_MSG(kUnit, "kivmetadataui::MetadataLayoutView::Initialize", mMetadataProvider,
                       "MetadataLayoutView(): no metadata provider");
        KIV_ASSERT_MSG(kUnit, "kivmetadataui::MetadataLayoutView::Initialize", mViewDefinition,
                       "MetadataLayoutView(): no view definition");
    }

    std::shared_ptr<kivmetadata::MetaDataProvider> mMetadataProvider;
    std::shared_ptr<kivmetadata::ViewDefinition> mViewDefinition;
    std::shared_ptr<layout::TableLayout> mTableLayout;
    kivcore::Flags<unsigned char> mMargins;
};

MetadataLayoutView::MetadataLayoutView(std::string const &inViewName,
                                       std::shared_ptr<kivmetadata::MetaDataProvider> inProvider)
    : d(std::make_unique<Private>(std::move(inProvider), kivmetadata::GetViewDefinitionForName(inViewName)))
{
    Initialize();
}

MetadataLayoutView::MetadataLayoutView(std::shared_ptr<kivmetadata::ViewDefinition> inDefinition,
                                       std::shared_ptr<kivmetadata::MetaDataProvider> inProvider)
    : d(std::make_unique<Private>(std::move(inProvider), std::move(inDefinition)))
{
    Initialize();
}

MetadataLayoutView::~MetadataLayoutView() = default;

std::shared_ptr<kivmetadata::ViewDefinition> const &MetadataLayoutView::GetViewDefinition() const
{
    return d->mViewDefinition;
}

std::shared_ptr<kivmetadata::MetaDataProvider> const &MetadataLayoutView::GetMetadataProvider() const
{
    return d->mMetadataProvider;
}

void MetadataLayoutView::SetMargins(kivcore::Flags<unsigned char> inMargins)
{
    d->mMargins = inMargins;
}

kivcore::Flags<unsigned char> MetadataLayoutView::GetMargins() const
{
    return d->mMargins;
}

std::shared_ptr<layout::TableLayout> const &MetadataLayoutView::GetTableLayout() const
{
    return d->mTableLayout;
}

void MetadataLayoutView::Initialize()
{
    d->mMargins = kivcore::Flags<unsigned char>(255);
    d->AssertInputs();
    UI_SetNodeID(kNodeID);
    UI_SetLayoutsChildren(true);
    UI_SetLayoutBinding(kivui::LayoutBinding(kBindFollowParent));
}

std::string MetadataLayoutView::GetViewName() const
{
    return d->mViewDefinition ? d->mViewDefinition->mName : std::string();
}

std::string MetadataLayoutView::GetDisplayName() const
{
    if (!d->mViewDefinition) return {};
    return kivcore::utility::Utf16ToUtf8(Localizer::Localize(d->mViewDefinition->mLabel));
}

void MetadataLayoutView::SetViewDefinition(std::shared_ptr<kivmetadata::ViewDefinition> inDefinition)
{
    if (!inDefinition) return;
    d->mViewDefinition = std::move(inDefinition);
    Refresh();
}

void MetadataLayoutView::SetViewDefinitionByName(std::string const &inName)
{
    if (inName.empty()) return;
    SetViewDefinition(kivmetadata::GetViewDefinitionForName(inName));
}

float MetadataLayoutView::BuilderWidth()
{
    return std::max(layout::MetadataViewBuilder::kMinimumWidth, 500.0f - kivui::UI_ScrollBar::GetDefaultSize() - 26.0f);
}

void MetadataLayoutView::Refresh()
{
    d->mTableLayout.reset();
    DeleteChildren();
    Layout();
}

void MetadataLayoutView::Layout()
{
    kivui::drawbot::SupplierInterface *supplier = UI_GetDrawSupplier();
    if (!supplier) return;

    // No incremental path: values are read again on every rebuild.
    d->mTableLayout.reset();
    DeleteChildren();

    std::shared_ptr<layout::MetadataViewBuilder> builder =
        std::make_shared<layout::MetadataViewBuilder>(d->mMetadataProvider, supplier);
    builder->SetWidth(500.0f - kivui::UI_ScrollBar::GetDefaultSize() - 26.0f);
    builder->SetMargins(d->mMargins);
    kivmetadata::BuildView(d->mViewDefinition, *builder);
    d->mTableLayout = builder->GetTableLayout();

    IntrusivePtr<UI_SubView> content;
    if (d->mTableLayout->CountRows() == 0) {
        IntrusivePtr<UI_SubView> placeholder(new UI_SubView);
        placeholder->UI_SetLayoutsChildren(true);
        IntrusivePtr<kivui::UI_StaticText> text(new kivui::UI_StaticText);
        text->SetAlignment(kivui::UI_StaticText::kAlignCenter);
        text->SetFontSize(14.0f);
        text->SetText(Localizer::Localize(kNoDataKey));
        text->UI_Show(true);
        kivui::drawbot::Drawbot drawbot(*supplier);
        PointF const size = text->GetPreferredSize(&drawbot);
        RectF const rect{0.0f, 0.0f, std::ceil(size.x), std::ceil(size.y)};
        text->UI_SetLocalRectF(rect);
        text->UI_SetLayoutBinding(kivui::LayoutBinding(kBindTopLeft));
        placeholder->ChildPushBack(text);
        placeholder->UI_SetLocalRectF(rect);
        content = placeholder;
    } else {
        content = d->mTableLayout->GetView();
    }

    content->UI_SetLocalRectF(UI_GetLocalRectF(false));
    content->UI_SetLayoutBinding(kivui::LayoutBinding(kBindFollowParent));
    ChildPushBack(content);
    content->UI_Show(true);
    builder.reset();
}

bool MetadataLayoutView::UI_DoKeyboardEvent(kivui::UI_Node *inFocusNode, kivui::KeyboardEvent const &inEvent)
{
    if (!inEvent.CompareShortcut(kivui::KeyboardCode(3), kivcore::Flags<std::uint32_t>(0u)) &&
        !inEvent.CompareShortcut(kivui::KeyboardCode(3), kivcore::Flags<std::uint32_t>(2u)))
        return false;
    if (!inFocusNode || !d->mTableLayout) return false;
    auto *scroll = dynamic_cast<kivui::UI_ScrollView *>(d->mTableLayout->GetView().get());
    if (!scroll) return false;

    auto const content = scroll->GetContentView();
    RectF rect = inFocusNode->UI_GetSelfToSpecificParentMatrix(content.get())
                     .TransformRect(inFocusNode->UI_GetLocalRectF(false))
                     .Normalized();
    // Some room above and below, so the control is not glued to the edge.
    rect.y -= 5.0f;
    rect.height += 10.0f;
    scroll->ScrollIntoView(rect, true);
    return true;
}

void MetadataLayoutView::UI_LayoutChildren()
{
    UI_SubView::UI_LayoutChildren();
}

void MetadataLayoutView::UI_NodeChanged()
{
    UI_Node::UI_NodeChanged();
}

void MetadataLayoutView::UI_SizeChanged(PointF const &inOldSize)
{
    UI_SubView::UI_SizeChanged(inOldSize);
}

IntrusivePtr<MetadataLayoutView> CreateRawDataView(std::shared_ptr<kivmetadata::ViewDefinition> inDefinition,
                                                   std::shared_ptr<kivmetadata::MetaDataProvider> inProvider,
                                                   RawDataViewOptions inOptions)
{
    if (!inDefinition) {
        inDefinition = std::make_shared<kivmetadata::ViewDefinition>();
        inDefinition->mName = "RawData";
        inDefinition->mLabel = kRawDataLabelKey;
    }
    return IntrusivePtr<MetadataLayoutView>(new RawDataView(std::move(inDefinition), std::move(inProvider), inOptions));
}

} // namespace kivmetadataui
