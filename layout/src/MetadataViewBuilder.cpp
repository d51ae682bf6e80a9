#include "MetadataViewBuilder.h"

#include "ArrayControl.h"

#include <kivmetadataui/Control.h>
#include <kivmetadataui/ControlFactory.h>

#include <kivmetadata/Definitions.h>
#include <kivmetadata/MetaDataProvider.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ViewDefinition.h>
#include <kivmetadata/ViewItem.h>

#include <kivcore/Assert.h>
#include <kivcore/Localizer.h>
#include <kivcore/StringUtils.h>
#include <kivui/UI_ControlView.h>
#include <kivui/UI_ScrollView.h>
#include <kivui/UI_SectionView.h>
#include <kivui/UI_StaticText.h>
#include <kivui/drawbot/Drawbot.h>

#include <QLabel>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace kivmetadataui::layout {

using kivcore::PointF;
using kivcore::RectF;
using kivcore::config::Localizer;
using kivcore::utility::IntrusivePtr;
using kivui::UI_SubView;

namespace {

constexpr char kUnit[] = "layout/src/MetadataViewBuilder";
// Height of a one-line control: labels are centred on it.
constexpr float kFirstLineHeight = 22.0f;

// Gives a control view its preferred height when it has none yet.
void GiveHeight(UI_SubView &ioView, kivui::drawbot::SupplierInterface const *inSupplier)
{
    RectF rect = ioView.UI_GetLocalRectF(false);
    if (rect.height != 0.0f) return;
    auto *control = dynamic_cast<kivui::UI_ControlView *>(&ioView);
    if (!control) return;
    PointF size;
    if (inSupplier) {
        kivui::drawbot::Drawbot drawbot(*inSupplier);
        size = control->GetPreferredSize(&drawbot);
    } else {
        size = control->GetPreferredSize(nullptr);
    }
    rect.height = std::ceil(size.y);
    ioView.UI_SetLocalRectF(rect);
}

} // namespace

// ---------------------------------------------------------------------------
// Delegates

IntrusivePtr<UI_SubView> ScrollViewLayoutDelegate::GetContainerView(TableLayout &inTable)
{
    if (auto *scroll = dynamic_cast<kivui::UI_ScrollView *>(inTable.GetView().get())) return scroll->GetContentView();
    return inTable.GetView();
}

void ScrollViewLayoutDelegate::SetContentSize(TableLayout &inTable, PointF const &inSize)
{
    auto *scroll_view = dynamic_cast<kivui::UI_ScrollView *>(inTable.GetView().get());
    KIV_ASSERT(kUnit, "kivmetadataui::layout::ScrollViewLayoutDelegate::SetContentSize", scroll_view);
    if (!scroll_view) return;
    scroll_view->SetContentRect(RectF{0.0f, 0.0f, inSize.x, inSize.y});
    scroll_view->Update();
}

IntrusivePtr<UI_SubView> SectionViewLayoutDelegate::GetContainerView(TableLayout &inTable)
{
    if (auto *section = dynamic_cast<kivui::UI_SectionView *>(inTable.GetView().get()))
        return section->GetContentView();
    return inTable.GetView();
}

void SectionViewLayoutDelegate::SetContentSize(TableLayout &inTable, PointF const &inSize)
{
    auto *section_view = dynamic_cast<kivui::UI_SectionView *>(inTable.GetView().get());
    KIV_ASSERT(kUnit, "kivmetadataui::layout::SectionViewLayoutDelegate::SetContentSize", section_view);
    if (!section_view) return;
    PointF const frame = section_view->FrameSizeForContentSize(inSize);
    RectF const current = section_view->UI_GetLocalRectF(true);
    section_view->UI_SetLocalRectF(RectF{current.x, current.y, frame.x, frame.y});
}

// ---------------------------------------------------------------------------
// MetadataViewBuilder

MetadataViewBuilder::MetadataViewBuilder(std::shared_ptr<kivmetadata::MetaDataProvider> inProvider,
                                         kivui::drawbot::SupplierInterface const *inSupplier)
    : mProvider(std::move(inProvider)), mSupplier(inSupplier)
{
    IntrusivePtr<kivui::UI_ScrollView> scroll(new kivui::UI_ScrollView);
    scroll->UI_SetNodeID("MetadataViewBuilder.scroll");
    scroll->GetContentView()->UI_SetLayoutsChildren(true);
    mTableLayout = std::make_shared<TableLayout>(scroll);
    mTableLayout->SetDelegate(std::make_shared<ScrollViewLayoutDelegate>());
    SetWidth(mWidth);
}

MetadataViewBuilder::~MetadataViewBuilder() = default;

void MetadataViewBuilder::SetWidth(float inWidth)
{
    mWidth = std::max(kMinimumWidth, inWidth);
    auto &view = *mTableLayout->GetView();
    RectF rect = view.UI_GetLocalRectF(true);
    rect.width = mWidth;
    view.UI_SetLocalRectF(rect);
    if (auto *scroll = dynamic_cast<kivui::UI_ScrollView *>(&view)) {
        RectF content = scroll->GetContentRect();
        content.width = mWidth;
        scroll->SetContentRect(content);
    }
}

void MetadataViewBuilder::SetMargins(kivcore::Flags<unsigned char> inMask)
{
    mTableLayout->SetMargins(inMask);
}

std::u16string MetadataViewBuilder::LabelText(std::string const &inLabel)
{
    std::u16string const text =
        inLabel.rfind("$$$/", 0) == 0 ? Localizer::Localize(inLabel) : kivcore::utility::Utf8ToUtf16(inLabel);
    return Localizer::Localize(kLabelWithColon, {text});
}

std::u16string MetadataViewBuilder::SeparatorText()
{
    return Localizer::Localize(kDefaultSeparator) + u" ";
}

float MetadataViewBuilder::MeasureItem(kivui::drawbot::SupplierInterface const *inSupplier, LayoutItem const &inItem)
{
    if (!inSupplier || !inItem.mView) return 0.0f;
    kivui::drawbot::Drawbot drawbot(*inSupplier);
    if (inItem.mKind == LayoutItem::kItemKind_Table) {
        auto *array = dynamic_cast<ArrayControl *>(inItem.mView.get());
        return array ? std::ceil(array->GetLabelView()->GetPreferredSize(&drawbot).x) : 0.0f;
    }
    if (auto *control = dynamic_cast<kivui::UI_ControlView *>(inItem.mView.get()))
        return std::ceil(control->GetPreferredSize(&drawbot).x);
    if (QWidget *widget = inItem.mView->UI_GetWidget()) return static_cast<float>(widget->sizeHint().width());
    return 0.0f;
}

TableLayout &MetadataViewBuilder::CurrentTable()
{
    return mStack.empty() ? *mTableLayout : *mStack.back().mTable;
}

std::shared_ptr<LayoutItem> MetadataViewBuilder::MakeLabel(std::string const &inLabel,
                                                           IntrusivePtr<UI_SubView> const &inContent) const
{
    IntrusivePtr<kivui::UI_StaticText> label(new kivui::UI_StaticText(LabelText(inLabel)));
    label->SetAlignment(kivui::UI_StaticText::kAlignRight);
    PointF size;
    if (mSupplier) {
        kivui::drawbot::Drawbot drawbot(*mSupplier);
        size = label->GetPreferredSize(&drawbot);
    } else {
        size = label->GetPreferredSize(nullptr);
    }
    PointF const natural{std::ceil(size.x), std::ceil(size.y)};
    label->UI_SetLocalRectF(RectF{0, 0, natural.x, natural.y});
    auto item = std::make_shared<LayoutItem>(IntrusivePtr<UI_SubView>(label));

    item->mLayoutFunction = LabelLayoutFunction(label.get(), natural, inContent);
    return item;
}

LayoutItem::LayoutFunction MetadataViewBuilder::LabelLayoutFunction(kivui::UI_StaticText *inLabel, PointF inNatural,
                                                                    IntrusivePtr<UI_SubView> inContent)
{
    // A label sits on the first line of its control, and a label wider than
    // the label column wraps instead of being cut off.
    return [text = inLabel, natural = inNatural, content = std::move(inContent)](UI_SubView &, RectF &ioRect) {
        bool const wrap = natural.x > ioRect.width;
        text->SetWordWrap(wrap);
        float height = natural.y;
        if (wrap && text->GetLabel())
            height = std::max(natural.y, static_cast<float>(text->GetLabel()->heightForWidth(int(ioRect.width))));
        float line = kFirstLineHeight;
        if (content) line = std::min(line, content->UI_GetLocalRectF(false).height);
        ioRect.y = std::max(0.0f, std::floor((line - natural.y) * 0.5f));
        ioRect.height = height;
    };
}

void MetadataViewBuilder::BeginView(kivmetadata::ViewDefinition const &)
{
    mStack.clear();
}

void MetadataViewBuilder::EndView()
{
    mStack.clear();
    MeasureAndLayout();
}

void MetadataViewBuilder::MeasureAndLayout()
{
    mTableLayout->UpdateLabelWidth(
        [supplier = mSupplier](LayoutItem const &inItem) { return MeasureItem(supplier, inItem); });
    mTableLayout->Layout();
}

void MetadataViewBuilder::BeginSection(kivmetadata::ViewItem const &inSection)
{
    IntrusivePtr<kivui::UI_SectionView> section(new kivui::UI_SectionView);
    section->SetHeaderText(inSection.mLabel.rfind("$$$/", 0) == 0 ? Localizer::Localize(inSection.mLabel)
                                                                  : kivcore::utility::Utf8ToUtf16(inSection.mLabel));
    section->GetContentView()->UI_SetLayoutsChildren(true);
    auto table = std::make_shared<TableLayout>(section);
    table->SetDelegate(std::make_shared<SectionViewLayoutDelegate>());
    table->SetLabelWidthMode(1);

    // The toggle must not keep the tables alive: the panel owns them.
    std::weak_ptr<TableLayout> weakTable = table;
    std::weak_ptr<TableLayout> weakRoot = mTableLayout;
    section->SetOpenedChangedFxn([weakTable, weakRoot](kivui::UI_SectionView &, bool inOpened) {
        if (auto t = weakTable.lock()) t->SetCollapsed(!inOpened);
        if (auto root = weakRoot.lock()) root->Layout();
    });
    mStack.push_back(Level{table, nullptr});
}

void MetadataViewBuilder::EndSection()
{
    if (mStack.empty() || mStack.back().mRow) return;
    auto table = mStack.back().mTable;
    mStack.pop_back();
    // Sections that lost all their items show nothing.
    if (table->CountRows() > 0) CurrentTable().InsertTable(table);
}

void MetadataViewBuilder::AddProperty(std::shared_ptr<kivmetadata::ViewItem> const &inItem,
                                      kivmetadata::PropertyDefinition const &inDefinition)
{
    if (!inItem) return;
    kivmetadata::Value value{false, inItem->mPath, mProvider};
    std::weak_ptr<TableLayout> weakRoot = mTableLayout;
    auto onSizeChanged = std::make_shared<std::function<void()>>([weakRoot] {
        if (auto root = weakRoot.lock()) root->Layout();
    });
    // Panels ask for a drop-down without listing choices when the property's
    // definition or its type has them.
    std::shared_ptr<kivmetadata::ViewItem> viewItem = inItem;
    if (inItem->HasAttribute("dropdown") && inItem->mChoices.empty()) {
        auto choices = kivmetadata::DefinitionChoices(inDefinition);
        if (!choices.empty()) {
            viewItem = std::make_shared<kivmetadata::ViewItem>(*inItem);
            viewItem->mChoices = std::move(choices);
        }
    }
    auto control = ControlFactory(value, viewItem, IntrusivePtr<kivui::UI_Node>(), false, nullptr, onSizeChanged);
    if (!control || !control->GetView()) return;
    GiveHeight(*control->GetView(), mSupplier);

    auto row = std::make_shared<RowItem>();
    row->SetColumnItem(0, MakeLabel(inItem->mLabel.empty() ? inDefinition.mLabel : inItem->mLabel, control->GetView()));
    row->SetColumnItem(1, std::make_shared<LayoutItem>(control));
    CurrentTable().InsertRow(row);
}

void MetadataViewBuilder::BeginStruct(std::shared_ptr<kivmetadata::ViewItem> const &inItem,
                                      kivmetadata::PropertyDefinition const &inDefinition)
{
    auto row = std::make_shared<RowItem>();
    row->SetColumnItem(0, MakeLabel(inItem && !inItem->mLabel.empty() ? inItem->mLabel : inDefinition.mLabel, nullptr));
    auto table = std::make_shared<TableLayout>(IntrusivePtr<UI_SubView>(new UI_SubView));
    table->SetMargins(kivcore::Flags<unsigned char>(0));
    mStack.push_back(Level{table, row});
}

void MetadataViewBuilder::EndStruct()
{
    if (mStack.empty() || !mStack.back().mRow) return;
    Level level = mStack.back();
    mStack.pop_back();
    if (level.mTable->CountRows() == 0) return;
    level.mRow->SetColumnItem(1, std::make_shared<LayoutItem>(level.mTable));
    CurrentTable().InsertRow(level.mRow);
}

void MetadataViewBuilder::AddArray(std::shared_ptr<kivmetadata::ViewItem> const &inItem,
                                   kivmetadata::PropertyDefinition const &inDefinition)
{
    if (!inItem) return;
    std::weak_ptr<TableLayout> weakRoot = mTableLayout;
    auto table = ArrayControl::Create(kivmetadata::Value{false, inItem->mPath, mProvider}, inDefinition,
                                      LabelText(inItem->mLabel.empty() ? inDefinition.mLabel : inItem->mLabel),
                                      mSupplier, [weakRoot] {
                                          if (auto root = weakRoot.lock()) root->Layout();
                                      });
    CurrentTable().InsertTable(table);
}

} // namespace kivmetadataui::layout
