#include "ArrayControl.h"

#include "MetadataViewBuilder.h"

#include <kivmetadataui/Control.h>
#include <kivmetadataui/ControlFactory.h>
#include <kivmetadataui/TableLayout.h>

#include <kivmetadata/MetaDataProvider.h>
#include <kivmetadata/MetaDataReadAccess.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadata/XMPMeta.h>

#include <kivcore/Localizer.h>
#include <kivcore/StringUtils.h>
#include <kivui/UI_ControlView.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_TextButton.h>
#include <kivui/drawbot/Drawbot.h>

#include <QListWidget>
#include <QListWidgetItem>
#include <QLocale>

#include <algorithm>
#include <cmath>

namespace kivmetadataui::layout {

using kivcore::RectF;
using kivcore::config::Localizer;
using kivcore::utility::IntrusivePtr;
using kivmetadata::Path;
using kivmetadata::PropertyDefinition;
using kivmetadata::ValueForm;
using kivui::UI_SubView;

namespace {

constexpr float kButtonGap = 6.0f;

// The list of items: a control view over QListWidget.
class ArrayListView : public kivui::UI_ControlView {
public:
    ArrayListView() : UI_ControlView(new QListWidget) {}
    QListWidget *List() const { return static_cast<QListWidget *>(UI_GetWidget()); }

protected:
    ~ArrayListView() override = default;
};

std::uint32_t ArrayOptions(PropertyDefinition const &inDefinition)
{
    using kivmetadata::XMPMeta;
    switch (inDefinition.mForm) {
    case ValueForm::kSeq:
        return XMPMeta::kPropValueIsArray | XMPMeta::kPropArrayIsOrdered;
    case ValueForm::kAlt:
        return XMPMeta::kPropValueIsArray | XMPMeta::kPropArrayIsOrdered | XMPMeta::kPropArrayIsAlternate;
    default:
        return XMPMeta::kPropValueIsArray;
    }
}

kivcore::PointF PreferredSize(kivui::UI_ControlView const &inView, kivui::drawbot::SupplierInterface const *inSupplier)
{
    if (!inSupplier) return inView.GetPreferredSize(nullptr);
    kivui::drawbot::Drawbot drawbot(*inSupplier);
    return inView.GetPreferredSize(&drawbot);
}

// Gives a view its preferred size, rounded up, keeping its origin.
void SizeToFit(kivui::UI_ControlView &ioView, kivui::drawbot::SupplierInterface const *inSupplier)
{
    auto const size = PreferredSize(ioView, inSupplier);
    ioView.UI_SetLocalRectF(RectF{0, 0, std::ceil(size.x), std::ceil(size.y)});
}

} // namespace

std::shared_ptr<TableLayout> ArrayControl::Create(kivmetadata::Value const &inValue,
                                                  PropertyDefinition const &inDefinition, std::u16string const &inLabel,
                                                  kivui::drawbot::SupplierInterface const *inSupplier,
                                                  std::function<void()> inRelayout)
{
    IntrusivePtr<ArrayControl> control(new ArrayControl(inValue, inDefinition, inSupplier, std::move(inRelayout)));
    control->mLabel->SetText(inLabel);
    SizeToFit(*control->mLabel, inSupplier);

    auto table = std::make_shared<TableLayout>(control);
    table->SetMargins(kivcore::Flags<unsigned char>(0));
    table->SetLabelWidthMode(1);
    control->mTable = table;

    auto listRow = std::make_shared<RowItem>();
    auto labelItem = std::make_shared<LayoutItem>(IntrusivePtr<UI_SubView>(control->mLabel));
    labelItem->mLayoutFunction = MetadataViewBuilder::LabelLayoutFunction(
        control->mLabel.get(), control->mLabel->UI_GetLocalRectF(false).Size(), control->mList);
    listRow->SetColumnItem(0, labelItem);
    listRow->SetColumnItem(1, std::make_shared<LayoutItem>(control->mList));
    table->InsertRow(listRow);

    auto buttonRow = std::make_shared<RowItem>();
    buttonRow->SetColumnItem(1, std::make_shared<LayoutItem>(control->mButtons));
    table->InsertRow(buttonRow);

    auto editorItem = std::make_shared<LayoutItem>(control->mEditorView);
    ArrayControl *self = control.get();
    editorItem->mLayoutFunction = [self](UI_SubView &inView, RectF &ioRect) {
        bool const open = self->IsEditorOpen();
        inView.UI_Show(open);
        if (!open) {
            ioRect.height = 0.0f;
            return;
        }
        inView.UI_SetLocalRectF(ioRect);
        ioRect.height = self->mEditorTable->Layout();
    };
    auto editorRow = std::make_shared<RowItem>();
    editorRow->SetColumnItem(1, editorItem);
    table->InsertRow(editorRow);
    control->mButtonRow = buttonRow;
    control->UpdateEditorSpacing();

    control->RefreshItems();
    return table;
}

ArrayControl::ArrayControl(kivmetadata::Value const &inValue, PropertyDefinition const &inDefinition,
                           kivui::drawbot::SupplierInterface const *inSupplier, std::function<void()> inRelayout)
    : mValue(inValue), mDefinition(std::make_shared<PropertyDefinition>(inDefinition)), mSupplier(inSupplier),
      mRelayout(std::move(inRelayout)), mLabel(new kivui::UI_StaticText), mList(new ArrayListView),
      mButtons(new UI_SubView), mInsert(new kivui::UI_TextButton(Localizer::Localize(kInsertKey))),
      mDelete(new kivui::UI_TextButton(Localizer::Localize(kDeleteKey))), mEditorView(new UI_SubView),
      mClose(new kivui::UI_TextButton(Localizer::Localize(kCloseKey)))
{
    UI_SetNodeID("ArrayControl");
    UI_SetLayoutsChildren(true);
    mLabel->SetAlignment(kivui::UI_StaticText::kAlignRight);
    mList->UI_SetLocalRectF(RectF{0, 0, 200, 40});
    mList->UI_SetNodeID("ArrayControl.list");

    float x = 0.0f;
    float height = 0.0f;
    for (auto const &button : {mInsert, mDelete}) {
        SizeToFit(*button, mSupplier);
        RectF rect = button->UI_GetLocalRectF(false);
        rect.width = std::max(rect.width, 70.0f);
        rect.x = x;
        button->UI_SetLocalRectF(rect);
        x += rect.width + kButtonGap;
        height = std::max(height, rect.height);
        mButtons->ChildPushBack(button);
    }
    mButtons->UI_SetLocalRectF(RectF{0, 0, x, height});
    SizeToFit(*mClose, mSupplier);
    mEditorView->UI_Show(false);

    auto handler = [this](void (ArrayControl::*inAction)()) {
        auto h = std::make_shared<std::function<void(kivui::Message *)>>(
            [this, inAction](kivui::Message *) { (this->*inAction)(); });
        mHandlers.push_back(h);
        return h;
    };
    mInsert->NotifyWhenChanged(handler(&ArrayControl::InsertItem));
    mDelete->NotifyWhenChanged(handler(&ArrayControl::DeleteSelectedItem));
    mClose->NotifyWhenChanged(handler(&ArrayControl::CloseEditor));
    mOnEdited = std::make_shared<std::function<void(kivui::Message *)>>([this](kivui::Message *) { RefreshItems(); });

    QObject::connect(GetListWidget(), &QListWidget::currentRowChanged, GetListWidget(), [this](int inRow) {
        if (inRow != mSelected && inRow < kMaxListedItems) SelectItem(inRow);
    });
}

ArrayControl::~ArrayControl()
{
    // Widgets outlive this body; cut every path back into this object.
    QObject::disconnect(GetListWidget(), nullptr, nullptr, nullptr);
    for (auto const &h : mHandlers)
        *h = nullptr;
    *mOnEdited = nullptr;
}

QListWidget *ArrayControl::GetListWidget() const
{
    return static_cast<ArrayListView *>(mList.get())->List();
}

int ArrayControl::CountItems() const
{
    kivmetadata::MetaDataReadAccess access(mValue.mProvider);
    return kivmetadata::CountArrayItems(access.GetMeta(), mValue.mPath);
}

std::u16string ArrayControl::ItemText(int inIndex) const
{
    Path const itemPath = kivmetadata::CreatePathFromArrayItem(mValue.mPath, inIndex + 1);
    std::string text;
    kivmetadata::GetValueResult result{};
    if (mDefinition->mItemForm == ValueForm::kStruct) {
        std::u16string joined;
        for (auto const &field : mDefinition->mFields) {
            if (!field) continue;
            std::string fieldText;
            kivmetadata::Value fieldValue{false, kivmetadata::CreatePathFromStructField(itemPath, *field),
                                          mValue.mProvider};
            kivmetadata::GetValue(fieldValue, fieldText, result);
            if (fieldText.empty()) continue;
            if (!joined.empty()) joined += MetadataViewBuilder::SeparatorText();
            joined += kivcore::utility::Utf8ToUtf16(fieldText);
        }
        return Localizer::Localize(kItemKey, {joined});
    }
    kivmetadata::GetValue(kivmetadata::Value{false, itemPath, mValue.mProvider}, text, result);
    return Localizer::Localize(kItemKey, {kivcore::utility::Utf8ToUtf16(text)});
}

std::vector<std::u16string> ArrayControl::GetItemTexts() const
{
    std::vector<std::u16string> texts;
    int const count = std::min(CountItems(), kMaxListedItems);
    texts.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        texts.push_back(ItemText(i));
    return texts;
}

void ArrayControl::RefreshItems()
{
    QListWidget *list = GetListWidget();
    auto const texts = GetItemTexts();
    int const total = CountItems();
    QSignalBlocker block(list);
    list->clear();
    for (auto const &text : texts)
        list->addItem(QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size())));
    if (total > static_cast<int>(texts.size())) {
        QLocale locale;
        if (locale.language() == QLocale::C) locale = QLocale(QLocale::English); // C omits group separators
        std::u16string const more = Localizer::Localize(
            kMoreItemsKey, {locale.toString(total - static_cast<int>(texts.size())).toStdU16String(),
                            locale.toString(total).toStdU16String()});
        auto *item = new QListWidgetItem(QString::fromStdU16String(more));
        item->setFlags(Qt::NoItemFlags);
        list->addItem(item);
    }
    if (mSelected >= total) mSelected = -1;
    // Room for up to five items; more scroll.
    int const shown = std::clamp(list->count(), 1, 5);
    int const rowHeight = list->count() > 0 ? list->sizeHintForRow(0) : list->fontMetrics().height() + 2;
    RectF rect = mList->UI_GetLocalRectF(true);
    rect.height = static_cast<float>(shown * std::max(rowHeight, 1) + 2 * list->frameWidth() + 4);
    mList->UI_SetLocalRectF(rect);
    list->setCurrentRow(mSelected < static_cast<int>(texts.size()) ? mSelected : -1);
    UpdateButtons();
}

void ArrayControl::UpdateButtons()
{
    bool const editable = mValue.mProvider && !mValue.mNotEditable && mValue.mProvider->AcceptsPath(mValue, true);
    mInsert->SetDisabled(!editable);
    mDelete->SetDisabled(!editable || mSelected < 0);
}

bool ArrayControl::IsEditorOpen() const
{
    return mSelected >= 0 && mEditorTable != nullptr;
}

void ArrayControl::SelectItem(int inIndex)
{
    if (inIndex < -1 || inIndex >= CountItems()) inIndex = -1;
    mSelected = inIndex;
    {
        QSignalBlocker block(GetListWidget());
        // An item past the listed ones (one just inserted) is edited without a row.
        GetListWidget()->setCurrentRow(inIndex < kMaxListedItems ? inIndex : -1);
    }
    BuildEditor();
    UpdateButtons();
    Relayout();
}

void ArrayControl::CloseEditor()
{
    SelectItem(-1);
}

void ArrayControl::BuildEditor()
{
    // The Close button may be the sender of this call: let it live until the
    // event loop runs again.
    mClose->UI_DeferRelease();
    if (mClose->UI_GetParent()) mClose->UI_GetParent()->ChildRemove(mClose.get());
    mEditorView->DeleteChildren();
    mEditorControls.clear();
    mEditorTable.reset();
    if (mSelected < 0) {
        UpdateEditorSpacing();
        return;
    }

    auto table = std::make_shared<TableLayout>(mEditorView);
    table->SetMargins(kivcore::Flags<unsigned char>(0));
    Path const itemPath = kivmetadata::CreatePathFromArrayItem(mValue.mPath, mSelected + 1);

    auto addRow = [&](std::string const &inLabel, Path const &inPath) {
        kivmetadata::Value value{mValue.mNotEditable, inPath, mValue.mProvider};
        auto control = ControlFactory(value, IntrusivePtr<kivui::UI_Node>(), false, mOnEdited, nullptr);
        if (!control || !control->GetView()) return;
        auto view = control->GetView();
        if (view->UI_GetLocalRectF(false).height == 0.0f)
            if (auto *cv = dynamic_cast<kivui::UI_ControlView *>(view.get()))
                view->UI_SetLocalRectF(RectF{0, 0, 0, std::ceil(PreferredSize(*cv, mSupplier).y)});
        IntrusivePtr<kivui::UI_StaticText> label(new kivui::UI_StaticText(MetadataViewBuilder::LabelText(inLabel)));
        label->SetAlignment(kivui::UI_StaticText::kAlignRight);
        SizeToFit(*label, mSupplier);
        auto row = std::make_shared<RowItem>();
        row->SetColumnItem(0, std::make_shared<LayoutItem>(IntrusivePtr<UI_SubView>(label)));
        row->SetColumnItem(1, std::make_shared<LayoutItem>(control));
        table->InsertRow(row);
        mEditorControls.push_back(control);
    };

    if (mDefinition->mItemForm == ValueForm::kStruct) {
        for (auto const &field : mDefinition->mFields)
            if (field) addRow(field->mLabel, kivmetadata::CreatePathFromStructField(itemPath, *field));
    } else {
        addRow(mDefinition->mLabel, itemPath);
    }

    auto closeItem = std::make_shared<LayoutItem>(IntrusivePtr<UI_SubView>(mClose));
    closeItem->mWidth = mClose->UI_GetLocalRectF(false).width;
    table->InsertRow(1, closeItem);
    table->UpdateLabelWidth(
        [this](LayoutItem const &inItem) { return MetadataViewBuilder::MeasureItem(mSupplier, inItem); });
    mEditorTable = table;
    mEditorView->UI_Show(true);
    UpdateEditorSpacing();
}

void ArrayControl::UpdateEditorSpacing()
{
    // A closed editor's row measures 0; the row above gives back the row gap
    // so that it leaves no space.
    if (auto row = mButtonRow.lock()) row->SetSpaceAfter(IsEditorOpen() ? 0.0f : -TableLayout::kRowGap);
}

void ArrayControl::InsertItem()
{
    if (!mValue.mProvider) return;
    int const count = CountItems();
    {
        kivmetadata::MetaDataUpdateAccess access(mValue.mProvider);
        std::uint32_t const itemOptions =
            mDefinition->mItemForm == ValueForm::kStruct ? kivmetadata::XMPMeta::kPropValueIsStruct : 0u;
        std::string const &ns = mValue.mPath.mNamespace;
        std::string const &path = mValue.mPath.mPath;
        bool changed = false;
        for (kivmetadata::XMPMeta *meta : mValue.mProvider->AllMetas()) {
            if (!meta) continue;
            if (itemOptions == 0) {
                changed |= meta->AppendArrayItem(ns, path, ArrayOptions(*mDefinition), std::string());
                continue;
            }
            // The toolkit refuses to append a struct item with a value: make
            // the array if needed, then the struct one past its last item.
            if (!meta->DoesPropertyExist(ns, path) && !meta->SetComposite(ns, path, ArrayOptions(*mDefinition)))
                continue;
            int const next = meta->CountArrayItems(ns, path) + 1;
            changed |= meta->SetComposite(ns, path + '[' + std::to_string(next) + ']', itemOptions);
        }
        if (changed) access.AddChange(mValue.mPath);
    }
    RefreshItems();
    if (CountItems() > count) SelectItem(count);
}

void ArrayControl::DeleteSelectedItem()
{
    if (!mValue.mProvider || mSelected < 0) return;
    Path const itemPath = kivmetadata::CreatePathFromArrayItem(mValue.mPath, mSelected + 1);
    {
        kivmetadata::MetaDataUpdateAccess access(mValue.mProvider);
        if (kivmetadata::DeleteValue(kivmetadata::Value{false, itemPath, mValue.mProvider}))
            access.AddChange(mValue.mPath);
    }
    mSelected = -1;
    RefreshItems();
    SelectItem(-1);
}

void ArrayControl::Relayout()
{
    if (mRelayout) {
        mRelayout();
    } else if (auto table = mTable.lock()) {
        table->Layout();
    }
}

} // namespace kivmetadataui::layout
