#include <kivmetadataui/MetadataView.h>

#include "BindControl_p.h"
#include "ModuleResources.h"
#include "PathSelection_p.h"

#include <kivmetadataui/Control.h>
#include <kivmetadataui/ControlFactory.h>
#include <kivmetadataui/FocusMover.h>
#include <kivmetadataui/MetadataViewCell.h>
#include <kivmetadataui/MetadataView_LinkDelegate.h>

#include <kivcore/Assert.h>
#include <kivcore/Localizer.h>
#include <kivcore/StringUtils.h>
#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadata/MetaDataProvider.h>
#include <kivmetadata/MetaDataReadAccess.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadata/XMPMeta.h>
#include <kivui/ImageProvider.h>
#include <kivui/UI_Checkbox.h>
#include <kivui/UI_LayoutBinding.h>
#include <kivui/UI_PictureButton.h>
#include <kivui/UI_StaticText.h>

#include <QIcon>
#include <QPixmap>
#include <QPointer>
#include <QTreeView>
#include <QWidget>

#include <algorithm>
#include <cstddef>
#include <unordered_map>

namespace kivmetadataui {

using kivcore::RectF;
using kivcore::utility::IntrusivePtr;
using kivmetadata::Path;
using kivmetadata::PropertyDefinition;
using kivmetadata::SchemaDefinition;
using kivui::UI_MultiColumnTreeRow;
using Row = UI_MultiColumnTreeRow;
using RowPtr = MetadataView::RowPtr;

namespace {

constexpr char kUnit[] = "src/MetadataView";
constexpr float kRowHeightWithValues = 24.0f;
constexpr float kRowHeightLabelsOnly = 20.0f;

float gSharedLabelWidth = 165.0f;

// The three states that equivalent paths follow: on, off, or whatever the
// path itself is now.
enum class Tribool { kFalse, kTrue, kIndeterminate };

// Rapid find compares case-folded, normalised texts.
std::u16string Canonical(std::u16string_view inText)
{
    return kivcore::utility::NormalizedString(kivcore::utility::FoldCase(inText));
}

kivui::UI_Checkbox::CheckboxValue AsCheckboxValue(CheckState inState)
{
    switch (inState) {
    case CheckState::Unchecked:
        return kivui::UI_Checkbox::kUnchecked;
    case CheckState::Checked:
        return kivui::UI_Checkbox::kChecked;
    case CheckState::Mixed:
        return kivui::UI_Checkbox::kMixed;
    }
    return kivui::UI_Checkbox::kUnchecked;
}

// Rows below an array stand for items taken from the packet; they are no
// properties one could choose.
bool IsInsideArray(Path const &inPath)
{
    return inPath.mPath.find('[') != std::string::npos;
}

// Adds every leaf path of the schema: the paths are made from the
// definitions in hand, not looked up one by one (a look-up searches the
// schema, and a packet may hold thousands of unknown properties).
void IncludeLeavesOf(Path const &inPath, PropertyDefinition const &inDefinition, std::set<Path> &ioPaths)
{
    if (!inDefinition.IsStruct() || inDefinition.mFields.empty()) {
        ioPaths.insert(inPath);
        return;
    }
    for (auto const &field : inDefinition.mFields)
        if (field) IncludeLeavesOf(kivmetadata::CreatePathFromStructField(inPath, *field), *field, ioPaths);
}

void IncludeAllLeaves(SchemaDefinition const &inSchema, std::set<Path> &ioPaths)
{
    for (auto const &property : inSchema.mProperties)
        if (property)
            IncludeLeavesOf(kivmetadata::CreatePathFromSchemaProperty(inSchema, *property), *property, ioPaths);
}

void ExcludeAllLeaves(SchemaDefinition const &inSchema, std::set<Path> &ioPaths)
{
    std::set<Path> leaves;
    IncludeAllLeaves(inSchema, leaves);
    for (Path const &leaf : leaves)
        ioPaths.erase(leaf);
}

QIcon IconNamed(char const *inName)
{
    kivui::utility::ImageProvider const *images = module::GetImageProvider();
    if (!images) return {};
    QImage const image = images->GetImage(inName);
    return image.isNull() ? QIcon() : QIcon(QPixmap::fromImage(image));
}

// Gives the focus to the widget, or to its first child that takes focus by Tab.
void FocusInto(kivui::UI_Node *inNode)
{
    QWidget *widget = inNode ? inNode->UI_GetWidget() : nullptr;
    if (!widget) return;
    if (!(widget->focusPolicy() & Qt::TabFocus)) {
        for (QWidget *child : widget->findChildren<QWidget *>()) {
            if ((child->focusPolicy() & Qt::TabFocus) && child->isEnabled()) {
                widget = child;
                break;
            }
        }
    }
    widget->setFocus(Qt::TabFocusReason);
}

} // namespace

// ---------------------------------------------------------------------------

struct MetadataView::Private {
    explicit Private(MetadataView &inView) : mView(inView) {}

    using DefinitionPtr = std::shared_ptr<PropertyDefinition>;
    // Paths to append under one parent row, with their definitions (taken
    // from the parent's definition: a look-up by path costs a search of the
    // schema, which for thousands of properties is what a rebuild would cost)
    // and whether the rapid find still applies below them.
    struct Candidates {
        std::vector<Path> mPaths;
        std::vector<DefinitionPtr> mDefinitions;
        std::vector<char> mFilter;
    };

    // Building.
    void Rebuild();
    void ClearRows();
    void SetupTreeCharacteristics();
    void AppendSchema(std::shared_ptr<SchemaDefinition> const &inSchema, bool inIncludeAll);
    bool ShouldAppendPathToTree(Path const &inPath, DefinitionPtr const &inDefinition, bool inIncludeAll, bool inFilter,
                                bool *outLabelMatched = nullptr);
    bool ShouldAppendStructPathToTree(Path const &inPath, PropertyDefinition const &inDefinition);
    void AppendPathToTree(RowPtr const &inParentRow, Candidates const &inCandidates, bool inIncludeAll);
    void FillPathRow(RowPtr const &inRow, Path const &inPath, DefinitionPtr const &inDefinition, bool inIncludeAll,
                     bool inFilter);
    void AppendArrayToTree(RowPtr const &inRow, Path const &inPath, PropertyDefinition const &inDefinition,
                           bool inFilter);
    void AppendDynamicSchemas();
    void CreateViewForRow_Schema(RowPtr const &inRow, std::shared_ptr<SchemaDefinition> const &inSchema);
    void CreateViewForRow_Path(RowPtr const &inRow, Path const &inPath);
    void CreateViewForRow_PathLabel(MetadataViewCell &inCell, Path const &inPath);
    void CreateViewForRow_PathValue(RowPtr const &inRow, MetadataViewCell &inCell, Path const &inPath);
    void CreateViewForRow_PathLinkButton(MetadataViewCell &inCell, Path const &inPath);
    std::u16string CreateLabelText(Path const &inPath, PropertyDefinition const *inDefinition = nullptr) const;
    std::u16string ValueText(Path const &inPath, PropertyDefinition const &inDefinition) const;
    void UpdateCheckboxInRow(RowPtr const &inRow);
    void PopulateTreeValues();
    void UpdateDynamicSchemas();
    void RemoveSchemaRow(std::string const &inNamespace);
    void ForgetRow(Row *inRow);
    void OpenRecordedRows();
    void RowsChanged();

    // Check boxes.
    void OnSchemaCheckbox(kivui::Message *inMessage, Row *inRow);
    void OnPathCheckbox(kivui::Message *inMessage, Row *inRow, Path const &inPath);
    void SetRecursiveCheckboxState(RowPtr const &inRow);
    void UpdateAncestorCheckboxes(RowPtr const &inRow);
    void UpdateEquivalentCheckBoxes(RowPtr const &inRow, Path const &inPath, Tribool inValue);
    void PictureButtonChanged(kivui::UI_PictureButton *inButton, Path const &inPath);
    void UpdateLinkButton(kivui::UI_PictureButton &inButton, Path const &inPath);

    // Focus.
    void HackAdvanceFocus(bool inForward, kivui::UI_Node *inFromNode);
    void MoveOutToNextNodeFocusOrder(bool inForward);
    bool HandleTab(kivui::UI_Node *inFocusNode, kivui::KeyboardEvent const &inEvent);

    bool Matches(std::u16string_view inText) const
    {
        return Canonical(inText).find(mRapidFind) != std::u16string::npos;
    }

    MetadataView &mView;
    IntrusivePtr<kivui::UI_MultiColumnTree> mTree;

    PathSet mIncluded;
    PathSet mSelected;
    PathSet mForcedOn;
    PathSet mDisabled;
    PathSet mReadOnly;
    EquivalenceMap mEquivalence;
    bool mAllowPropertySelection = false;
    bool mDisplayPropertyValue = true;
    bool mDisableDynamicSchema = false;
    bool mAllReadOnly = false;
    std::u16string mRapidFind;
    std::shared_ptr<kivmetadata::MetaDataProvider> mProvider;
    SchemaList mDisplaySchemas;
    SchemaList mDynamicSchemas;

    std::unordered_map<Row const *, std::shared_ptr<SchemaDefinition>> mRowToSchema;
    std::unordered_map<Row const *, Path> mRowToPath;
    std::map<Path, Row *> mPathToRow;
    std::unordered_map<kivui::UI_Node const *, Row *> mCellToRow;
    std::unordered_map<Row const *, std::shared_ptr<Control>> mControls;
    std::map<Path, std::size_t> mDescendantCountCache;

    std::shared_ptr<MetadataView_LinkDelegate> mLinkDelegate;
    std::shared_ptr<FocusMover> mFocusMover;
    QPointer<QWidget> mFocusPrevious;
    QPointer<QWidget> mFocusNext;
    RowChangedFxn mRowChanged;
    OpenedRowData mOpened;

    bool mDynamicSchemasStale = true;
    // Simple values of the packet by namespace and path, read when first
    // searched and again after the packet changed.
    mutable std::unordered_map<std::string, std::string> mPacketValues;
    mutable bool mPacketValuesRead = false;
    std::shared_ptr<kivmetadata::MetaDataProvider::ChangeListener> mPacketListener;

    void ListenToProvider()
    {
        if (mPacketListener) *mPacketListener = nullptr; // the former provider drops it
        mPacketValuesRead = false;
        if (!mProvider) return;
        mPacketListener = std::make_shared<kivmetadata::MetaDataProvider::ChangeListener>(
            [this](kivmetadata::XMPMeta *) { mPacketValuesRead = false; });
        mProvider->AddChangeListener(mPacketListener);
    }
    int mSuspendCount = 0;
    bool mRebuildPending = false;
    bool mUpdatingEquivalents = false;
};

// ---------------------------------------------------------------- building

void MetadataView::Private::Rebuild()
{
    if (mSuspendCount > 0) {
        mRebuildPending = true;
        return;
    }
    mRebuildPending = false;
    bool const wasQuiet = mTree->IsQuiet();
    mTree->SetIsQuiet(true);
    ClearRows();
    SetupTreeCharacteristics();
    mDescendantCountCache.clear();
    for (auto const &schema : mDisplaySchemas)
        if (schema) AppendSchema(schema, false);
    // The packet's unknown namespaces are looked for again only when the
    // values may have changed (PopulateTreeValues); a search or a new choice
    // of paths shows the ones found last time.
    if (!mDisableDynamicSchema) {
        if (mDynamicSchemasStale)
            UpdateDynamicSchemas();
        else
            AppendDynamicSchemas();
    }
    OpenRecordedRows();
    mTree->SetIsQuiet(wasQuiet);
    mTree->Layout();
    RowsChanged();
}

void MetadataView::Private::RowsChanged()
{
    if (mRowChanged && *mRowChanged) (*mRowChanged)(&mView);
}

void MetadataView::Private::ClearRows()
{
    // Controls first: their bindings end before their views leave.
    mControls.clear();
    mRowToSchema.clear();
    mRowToPath.clear();
    mPathToRow.clear();
    mCellToRow.clear();
    mTree->DeleteAllRows();
}

void MetadataView::Private::SetupTreeCharacteristics()
{
    mTree->SetColumnCount(1);
    mTree->SetShowHeader(false);
    mTree->SetRootIsDecorated(true);
    mTree->SetSelectionMode(kivui::UI_MultiColumnTree::SelectionMode::kNone);
    mTree->SetColumnsAutoResize(true);
    mTree->SetDefaultRowHeight(mDisplayPropertyValue ? kRowHeightWithValues : kRowHeightLabelsOnly);
}

void MetadataView::Private::AppendSchema(std::shared_ptr<SchemaDefinition> const &inSchema, bool inIncludeAll)
{
    bool const searching = !mRapidFind.empty();
    // A schema whose own label matches shows all its properties.
    bool const filter =
        searching && !Matches(LocalizeIfKey(inSchema->mLabel.empty() ? inSchema->mPrefix : inSchema->mLabel));
    Candidates candidates;
    for (auto const &property : inSchema->mProperties) {
        if (!property) continue;
        Path const path = kivmetadata::CreatePathFromSchemaProperty(*inSchema, *property);
        bool labelMatched = false;
        if (!ShouldAppendPathToTree(path, property, inIncludeAll, filter, &labelMatched)) continue;
        candidates.mPaths.push_back(path);
        candidates.mDefinitions.push_back(property);
        candidates.mFilter.push_back(filter && !labelMatched);
    }
    if (candidates.mPaths.empty()) return;
    RowPtr const row = mTree->AppendRow();
    mRowToSchema[row.get()] = inSchema;
    AppendPathToTree(row, candidates, inIncludeAll);
}

bool MetadataView::Private::ShouldAppendPathToTree(Path const &inPath, DefinitionPtr const &inDefinition,
                                                   bool inIncludeAll, bool inFilter, bool *outLabelMatched)
{
    DefinitionPtr const definition = inDefinition ? inDefinition : kivmetadata::PathEntryDefinition(inPath);
    // Supported by the UI: known and not excluded by the client.
    if (!definition || kivmetadata::IsPropertyExcludedForClient(inPath)) return false;
    bool const isStruct = definition->IsStruct();
    if (!inIncludeAll) {
        if (isStruct) {
            auto cached = mDescendantCountCache.find(inPath);
            if (cached == mDescendantCountCache.end())
                cached = mDescendantCountCache.emplace(inPath, CountIncludedDescendantPaths(inPath, mIncluded)).first;
            if (cached->second == 0) return false;
        } else if (!mIncluded.count(inPath)) {
            return false;
        }
    }
    if (!mProvider) return false;
    KIV_ASSERT(kUnit, "kivmetadataui::MetadataView::ShouldAppendPathToTree", definition);
    if (!inFilter || mRapidFind.empty()) return true;
    if (Matches(CreateLabelText(inPath, definition.get()))) {
        if (outLabelMatched) *outLabelMatched = true;
        return true;
    }
    if (isStruct || definition->IsArray()) return ShouldAppendStructPathToTree(inPath, *definition);
    std::u16string const text = ValueText(inPath, *definition);
    return !text.empty() && Matches(text);
}

std::u16string MetadataView::Private::ValueText(Path const &inPath, PropertyDefinition const &inDefinition) const
{
    std::string text;
    if (inDefinition.mForm == kivmetadata::ValueForm::kSimple) {
        // A simple value reads the same straight from the packet. The packet
        // is walked once per search: looking properties up one by one costs
        // a search of the namespace each, which thousands of them make slow.
        if (!mPacketValuesRead) {
            mPacketValuesRead = true;
            mPacketValues.clear();
            kivmetadata::MetaDataReadAccess access(mProvider);
            if (kivmetadata::XMPMeta const *meta = access.GetMeta()) {
                meta->Iterate([this](kivmetadata::XMPMeta::Node const &inNode) {
                    if (!inNode.mValue.empty()) mPacketValues[inNode.mNamespace + '\n' + inNode.mPath] = inNode.mValue;
                    return true;
                });
            }
        }
        auto const found = mPacketValues.find(inPath.mNamespace + '\n' + inPath.mPath);
        if (found != mPacketValues.end()) text = found->second;
    } else {
        kivmetadata::GetValueResult result = kivmetadata::kGetValueResult_Unreadable;
        kivmetadata::GetValue(kivmetadata::Value{false, inPath, mProvider}, text, result);
    }
    return kivcore::utility::Utf8ToUtf16(text);
}

bool MetadataView::Private::ShouldAppendStructPathToTree(Path const &inPath, PropertyDefinition const &inDefinition)
{
    if (inDefinition.IsArray()) {
        DefinitionPtr const itemDefinition = inDefinition.ItemDefinition();
        if (!itemDefinition) return false;
        int count = 0;
        {
            kivmetadata::MetaDataReadAccess access(mProvider);
            count = kivmetadata::CountArrayItems(access.GetMeta(), inPath);
        }
        for (int i = 1; i <= count; ++i) {
            Path const item = kivmetadata::CreatePathFromArrayItem(inPath, i);
            if (!itemDefinition->IsStruct()) {
                if (ShouldAppendPathToTree(item, itemDefinition, true, true)) return true;
                continue;
            }
            for (auto const &field : itemDefinition->mFields)
                if (field &&
                    ShouldAppendPathToTree(kivmetadata::CreatePathFromStructField(item, *field), field, true, true))
                    return true;
        }
        return false;
    }
    for (auto const &field : inDefinition.mFields)
        if (field && ShouldAppendPathToTree(kivmetadata::CreatePathFromStructField(inPath, *field), field, true, true))
            return true;
    return false;
}

void MetadataView::Private::AppendPathToTree(RowPtr const &inParentRow, Candidates const &inCandidates,
                                             bool inIncludeAll)
{
    // One model update for all siblings.
    std::vector<RowPtr> const rows = mTree->AppendRows(inParentRow, static_cast<int>(inCandidates.mPaths.size()));
    for (std::size_t i = 0; i < rows.size(); ++i)
        FillPathRow(rows[i], inCandidates.mPaths[i], inCandidates.mDefinitions[i], inIncludeAll,
                    inCandidates.mFilter[i] != 0);
}

void MetadataView::Private::FillPathRow(RowPtr const &inRow, Path const &inPath, DefinitionPtr const &inDefinition,
                                        bool inIncludeAll, bool inFilter)
{
    mRowToPath[inRow.get()] = inPath;
    mPathToRow[inPath] = inRow.get();
    if (inDefinition->IsArray()) {
        AppendArrayToTree(inRow, inPath, *inDefinition, inFilter);
        return;
    }
    Candidates candidates;
    for (auto const &field : inDefinition->mFields) {
        if (!field || !inDefinition->IsStruct()) continue;
        Path const child = kivmetadata::CreatePathFromStructField(inPath, *field);
        bool labelMatched = false;
        if (!ShouldAppendPathToTree(child, field, inIncludeAll, inFilter, &labelMatched)) continue;
        candidates.mPaths.push_back(child);
        candidates.mDefinitions.push_back(field);
        candidates.mFilter.push_back(inFilter && !labelMatched);
    }
    if (!candidates.mPaths.empty()) AppendPathToTree(inRow, candidates, inIncludeAll);
}

void MetadataView::Private::AppendArrayToTree(RowPtr const &inRow, Path const &inPath,
                                              PropertyDefinition const &inDefinition, bool inFilter)
{
    DefinitionPtr const itemDefinition = inDefinition.ItemDefinition();
    if (!itemDefinition) return;
    int count = 0;
    {
        kivmetadata::MetaDataReadAccess access(mProvider);
        count = kivmetadata::CountArrayItems(access.GetMeta(), inPath);
    }
    Candidates candidates;
    for (int i = 1; i <= count; ++i) {
        Path const item = kivmetadata::CreatePathFromArrayItem(inPath, i);
        bool labelMatched = false;
        if (!ShouldAppendPathToTree(item, itemDefinition, true, inFilter, &labelMatched)) continue;
        candidates.mPaths.push_back(item);
        candidates.mDefinitions.push_back(itemDefinition);
        candidates.mFilter.push_back(inFilter && !labelMatched);
    }
    if (!candidates.mPaths.empty()) AppendPathToTree(inRow, candidates, true);
}

std::u16string MetadataView::Private::CreateLabelText(Path const &inPath, PropertyDefinition const *inDefinition) const
{
    DefinitionPtr looked;
    if (!inDefinition) {
        looked = kivmetadata::PathEntryDefinition(inPath);
        inDefinition = looked.get();
    }
    std::u16string label;
    if (inDefinition) label = LocalizeIfKey(inDefinition->mLabel.empty() ? inDefinition->mName : inDefinition->mLabel);
    std::string const &text = inPath.mPath;
    std::size_t const open = text.rfind('[');
    if (open != std::string::npos && open > 0 && !text.empty() && text.back() == ']')
        label += u' ' + kivcore::utility::Utf8ToUtf16(text.substr(open));
    if (mProvider && inDefinition && inDefinition->IsArray()) {
        int count = 0;
        {
            kivmetadata::MetaDataReadAccess access(mProvider);
            count = kivmetadata::CountArrayItems(access.GetMeta(), inPath);
        }
        if (count > 0) {
            label += u' ';
            label += kivcore::config::Localizer::Localize(kEntriesKey,
                                                          {kivcore::utility::Utf8ToUtf16(std::to_string(count))});
        }
    }
    return label;
}

void MetadataView::Private::UpdateDynamicSchemas()
{
    for (auto const &schema : mDynamicSchemas) {
        RemoveSchemaRow(schema->mNamespace);
        ExcludeAllLeaves(*schema, mIncluded);
    }
    mDynamicSchemas.clear();
    mDynamicSchemasStale = false;
    if (!mProvider) return;
    for (auto const &dynamicTemplate : mProvider->DynamicSchemaDefinitions()) {
        if (!dynamicTemplate) continue;
        auto schema = std::make_shared<SchemaDefinition>(*dynamicTemplate);
        schema->mProperties.clear();
        mProvider->GetAllPathsForDynamicSchema(schema->mNamespace, schema->mProperties);
        if (schema->mProperties.empty()) continue;
        IncludeAllLeaves(*schema, mIncluded);
        AppendSchema(schema, false);
        mDynamicSchemas.push_back(schema);
    }
}

void MetadataView::Private::AppendDynamicSchemas()
{
    for (auto const &schema : mDynamicSchemas) {
        IncludeAllLeaves(*schema, mIncluded);
        AppendSchema(schema, false);
    }
}

void MetadataView::Private::ForgetRow(Row *inRow)
{
    for (int i = 0; i < inRow->CountChildRows(); ++i)
        ForgetRow(inRow->GetChildRow(i).get());
    mControls.erase(inRow);
    mRowToSchema.erase(inRow);
    if (auto path = mRowToPath.find(inRow); path != mRowToPath.end()) {
        if (auto back = mPathToRow.find(path->second); back != mPathToRow.end() && back->second == inRow)
            mPathToRow.erase(back);
        mRowToPath.erase(path);
    }
    if (auto cell = inRow->GetCellView()) mCellToRow.erase(cell.get());
}

void MetadataView::Private::RemoveSchemaRow(std::string const &inNamespace)
{
    for (int i = 0; i < mTree->CountRows(); ++i) {
        RowPtr const row = mTree->GetRow(i);
        auto schema = mRowToSchema.find(row.get());
        if (schema == mRowToSchema.end() || !schema->second || schema->second->mNamespace != inNamespace) continue;
        ForgetRow(row.get());
        mTree->RemoveRow(row);
        return;
    }
}

void MetadataView::Private::OpenRecordedRows()
{
    // While searching every row is opened, so that each match is in sight;
    // the record of what the user opened stays as it was.
    bool const searching = !mRapidFind.empty();
    bool const wasQuiet = mTree->IsQuiet();
    mTree->SetIsQuiet(true);
    std::function<void(RowPtr const &)> open = [&](RowPtr const &row) {
        if (row->CountChildRows() == 0) return;
        bool opened = searching;
        if (!opened) {
            if (auto schema = mRowToSchema.find(row.get()); schema != mRowToSchema.end())
                opened = schema->second && mOpened.mSchemas.count(schema->second->mNamespace);
            else if (auto path = mRowToPath.find(row.get()); path != mRowToPath.end())
                opened = mOpened.mPaths.count(path->second) != 0;
        }
        if (opened != row->IsOpened()) mTree->OpenRow(row, opened);
        for (int i = 0; i < row->CountChildRows(); ++i)
            open(row->GetChildRow(i));
    };
    for (int i = 0; i < mTree->CountRows(); ++i)
        open(mTree->GetRow(i));
    mTree->SetIsQuiet(wasQuiet);
}

void MetadataView::Private::PopulateTreeValues()
{
    // The packet may have gained or lost properties, array items and unknown
    // namespaces: the rows are made again, and each cell shows the value it
    // reads when it comes into view.
    mPacketValuesRead = false;
    if (!mDisableDynamicSchema) mDynamicSchemasStale = true;
    Rebuild();
}

// ---------------------------------------------------------------- cells

void MetadataView::Private::CreateViewForRow_Schema(RowPtr const &inRow,
                                                    std::shared_ptr<SchemaDefinition> const &inSchema)
{
    IntrusivePtr<MetadataViewCell> cell(new MetadataViewCell);
    if (mAllowPropertySelection) {
        IntrusivePtr<kivui::UI_Checkbox> box(new kivui::UI_Checkbox);
        Row *row = inRow.get();
        box->NotifyWhenChanged(std::make_shared<std::function<void(kivui::Message *)>>(
            [this, row](kivui::Message *inMessage) { OnSchemaCheckbox(inMessage, row); }));
        cell->SetChild_Checkbox(box);
    }
    IntrusivePtr<kivui::UI_StaticText> label(
        new kivui::UI_StaticText(LocalizeIfKey(inSchema->mLabel.empty() ? inSchema->mPrefix : inSchema->mLabel)));
    label->SetFontStyle("Bold");
    cell->SetChild_Label(label);
    mCellToRow[cell.get()] = inRow.get();
    inRow->SetCellView(cell);
    UpdateCheckboxInRow(inRow);
}

void MetadataView::Private::CreateViewForRow_Path(RowPtr const &inRow, Path const &inPath)
{
    inRow->SetCellView(IntrusivePtr<kivui::UI_SubView>(new MetadataViewCell));
    MetadataViewCell *cellView = mView.MetadataCellForRow(inRow);
    KIV_ASSERT(kUnit, "kivmetadataui::MetadataView::CreateViewForRow_Path", cellView != NULL);
    if (!cellView) return;
    mCellToRow[cellView] = inRow.get();
    cellView->SetIndent(static_cast<float>(inRow->GetDepth() * mTree->GetTreeView()->indentation()));
    if (mAllowPropertySelection && !IsInsideArray(inPath)) {
        IntrusivePtr<kivui::UI_Checkbox> box(new kivui::UI_Checkbox);
        Row *row = inRow.get();
        box->NotifyWhenChanged(std::make_shared<std::function<void(kivui::Message *)>>(
            [this, row, inPath](kivui::Message *inMessage) { OnPathCheckbox(inMessage, row, inPath); }));
        cellView->SetChild_Checkbox(box);
    }
    CreateViewForRow_PathLabel(*cellView, inPath);
    if (mDisplayPropertyValue) CreateViewForRow_PathValue(inRow, *cellView, inPath);
    if (mLinkDelegate) CreateViewForRow_PathLinkButton(*cellView, inPath);
    if (mDisabled.count(inPath)) cellView->UI_SetEnabled(false);
    UpdateCheckboxInRow(inRow);
}

void MetadataView::Private::CreateViewForRow_PathLabel(MetadataViewCell &inCell, Path const &inPath)
{
    std::u16string const text = CreateLabelText(inPath);
    IntrusivePtr<kivui::UI_StaticText> label(new kivui::UI_StaticText(text));
    label->SetTextMode(kivui::UI_StaticText::kTextModePlain);
    // A long label ends in an ellipsis at the value column; the tip shows it whole.
    label->SetElided(true);
    label->SetToolTip(text + u" (" + kivcore::utility::Utf8ToUtf16(inPath.mPath) + u")");
    inCell.SetChild_Label(label);
}

void MetadataView::Private::CreateViewForRow_PathValue(RowPtr const &inRow, MetadataViewCell &inCell,
                                                       Path const &inPath)
{
    // Structures and arrays of structures show their parts in child rows.
    if (!mProvider || !kivmetadata::PrimitiveTypeOfPath(inPath)) return;
    bool const readOnly = mAllReadOnly || mReadOnly.count(inPath) != 0;
    std::shared_ptr<Control> control =
        ControlFactory(kivmetadata::Value{false, inPath, mProvider}, IntrusivePtr<kivui::UI_Node>(&inCell), readOnly,
                       nullptr, nullptr);
    if (!control || !control->GetView()) return;
    if (mAllReadOnly)
        if (auto *view = dynamic_cast<kivui::UI_ControlView *>(control->GetView().get())) view->SetDisabled(true);
    inCell.SetChild_Value(control->GetView());
    mControls[inRow.get()] = std::move(control);
}

void MetadataView::Private::CreateViewForRow_PathLinkButton(MetadataViewCell &inCell, Path const &inPath)
{
    IntrusivePtr<kivui::UI_PictureButton> button(new kivui::UI_PictureButton);
    button->SetToggles(true);
    // Off shows the broken link, on the closed one.
    button->SetImages(IconNamed("Unlink_Sm"), IconNamed("Link_Sm"));
    kivui::UI_PictureButton *raw = button.get();
    button->NotifyWhenChanged(std::make_shared<std::function<void(kivui::Message *)>>(
        [this, raw, inPath](kivui::Message *) { PictureButtonChanged(raw, inPath); }));
    UpdateLinkButton(*button, inPath);
    inCell.SetChild_Link(button);
}

void MetadataView::Private::UpdateLinkButton(kivui::UI_PictureButton &inButton, Path const &inPath)
{
    bool const enabled = mLinkDelegate->IsLinkingEnabled() && !mAllReadOnly;
    inButton.SetOn(enabled && mLinkDelegate->IsPathLinked(inPath));
    inButton.UI_SetEnabled(enabled);
}

void MetadataView::Private::PictureButtonChanged(kivui::UI_PictureButton *inButton, Path const &inPath)
{
    if (mLinkDelegate) mLinkDelegate->SetPathLinked(inPath, inButton->IsOn());
}

// ---------------------------------------------------------------- check boxes

void MetadataView::Private::UpdateCheckboxInRow(RowPtr const &inRow)
{
    kivui::UI_Checkbox *box = mView.CheckboxForRow(inRow);
    if (!box) return;
    CheckState state = CheckState::Unchecked;
    if (auto schema = mRowToSchema.find(inRow.get()); schema != mRowToSchema.end()) {
        state = SchemaCheckState(*schema->second, mSelected);
    } else if (auto found = mRowToPath.find(inRow.get()); found != mRowToPath.end()) {
        Path const path = found->second;
        bool forcedOn = false;
        state = PathCheckState(path, mForcedOn, mSelected, &forcedOn);
        if (forcedOn) box->UI_SetEnabled(false);
        UpdateEquivalentCheckBoxes(inRow, path, Tribool::kIndeterminate);
        if (state == CheckState::Unchecked)
            mSelected.erase(path);
        else
            mSelected.insert(path);
    }
    box->SetValue(AsCheckboxValue(state));
    if (mAllReadOnly)
        box->SetDisabled(true);
    else
        box->SetEnabled(true);
}

void MetadataView::Private::SetRecursiveCheckboxState(RowPtr const &inRow)
{
    for (int i = 0; i < inRow->CountChildRows(); ++i) {
        RowPtr const child = inRow->GetChildRow(i);
        UpdateCheckboxInRow(child);
        SetRecursiveCheckboxState(child);
    }
}

void MetadataView::Private::UpdateAncestorCheckboxes(RowPtr const &inRow)
{
    for (RowPtr parent = inRow->GetParentRow(); parent; parent = parent->GetParentRow())
        UpdateCheckboxInRow(parent);
}

void MetadataView::Private::OnPathCheckbox(kivui::Message *inMessage, Row *inRow, Path const &inPath)
{
    if (!mRowToPath.count(inRow)) return;
    RowPtr const row(inRow);
    bool const on = !mSelected.count(inPath);
    if (on)
        mSelected.insert(inPath);
    else
        mSelected.erase(inPath);
    if (!kivmetadata::ChildPaths(inPath).empty()) {
        SetDescendantLeavesSelected(inPath, on, mSelected);
        for (Path const &forced : mForcedOn)
            mSelected.insert(forced);
        SetRecursiveCheckboxState(row);
    }
    UpdateCheckboxInRow(row);
    UpdateAncestorCheckboxes(row);
    if (inMessage) UpdateEquivalentCheckBoxes(row, inPath, on ? Tribool::kTrue : Tribool::kFalse);
}

void MetadataView::Private::OnSchemaCheckbox(kivui::Message *inMessage, Row *inRow)
{
    (void)inMessage;
    auto schema = mRowToSchema.find(inRow);
    if (schema == mRowToSchema.end() || !schema->second) return;
    RowPtr const row(inRow);
    kivui::UI_Checkbox *box = mView.CheckboxForRow(row);
    bool const on = box && box->GetValue() == kivui::UI_Checkbox::kChecked;
    SetDescendantLeavesSelected(*schema->second, on, mSelected);
    // Clearing a schema never clears a forced-on path.
    for (Path const &forced : mForcedOn)
        mSelected.insert(forced);
    SetRecursiveCheckboxState(row);
    UpdateCheckboxInRow(row);
}

void MetadataView::Private::UpdateEquivalentCheckBoxes(RowPtr const &inRow, Path const &inPath, Tribool inValue)
{
    (void)inRow;
    if (mUpdatingEquivalents) return;
    auto const equivalents = mEquivalence.find(inPath);
    if (equivalents == mEquivalence.end() || !equivalents->second) return;
    bool const on = inValue == Tribool::kIndeterminate ? (mSelected.count(inPath) || mForcedOn.count(inPath))
                                                       : inValue == Tribool::kTrue;
    mUpdatingEquivalents = true;
    for (Path const &other : *equivalents->second) {
        if (other == inPath || mForcedOn.count(other)) continue;
        if (on)
            mSelected.insert(other);
        else
            mSelected.erase(other);
        if (RowPtr const otherRow = mView.FindRowForPath(other)) {
            UpdateCheckboxInRow(otherRow);
            UpdateAncestorCheckboxes(otherRow);
        } else {
            // Its schema row may be on screen though the path's row is not.
            for (auto const &[row, schema] : mRowToSchema) {
                if (schema && schema->mNamespace == other.mNamespace)
                    UpdateCheckboxInRow(RowPtr(const_cast<Row *>(row)));
            }
        }
    }
    mUpdatingEquivalents = false;
}

// ---------------------------------------------------------------- focus

void MetadataView::Private::HackAdvanceFocus(bool inForward, kivui::UI_Node *inFromNode)
{
    RowPtr const from = mView.FindRowThatHoldsMetadataViewCell(inFromNode);
    RowPtr const next = mView.NextFocusableRow(inForward, from);
    if (!next) {
        MoveOutToNextNodeFocusOrder(inForward);
        return;
    }
    mTree->ScrollRowIntoView(next);
    if (!next->GetCellView()) mView.OnRowVisibilityChanged(next);
    if (MetadataViewCell *cell = mView.MetadataCellForRow(next)) FocusInto(cell->GetChild_Value().get());
}

void MetadataView::Private::MoveOutToNextNodeFocusOrder(bool inForward)
{
    if (QWidget *target = inForward ? mFocusNext.data() : mFocusPrevious.data()) {
        FocusInto(kivui::UI_Node::FromWidget(target));
        return;
    }
    if (mFocusMover) {
        mFocusMover->MoveOutToNextNodeFocusOrder(inForward);
        return;
    }
    // Without a focus order, the next widget of the window's chain outside
    // the view takes the focus.
    QWidget *const self = mView.UI_GetWidget();
    QWidget *widget = self;
    for (int guard = 0; guard < 10000; ++guard) {
        widget = inForward ? widget->nextInFocusChain() : widget->previousInFocusChain();
        if (!widget || widget == self) return;
        if (self->isAncestorOf(widget)) continue;
        if ((widget->focusPolicy() & Qt::TabFocus) && widget->isEnabled() && widget->isVisibleTo(widget->window())) {
            widget->setFocus(inForward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return;
        }
    }
}

bool MetadataView::Private::HandleTab(kivui::UI_Node *inFocusNode, kivui::KeyboardEvent const &inEvent)
{
    bool forward = true;
    if (inEvent.CompareShortcut(kivui::KeyboardCode::kTab))
        forward = true;
    else if (inEvent.CompareShortcut(kivui::KeyboardCode::kTab, kivcore::Flags<std::uint32_t>(kivui::kModifierShift)))
        forward = false;
    else
        return false;
    if (!inFocusNode || !(inFocusNode == &mView || mView.UI_IsAncestorOf(inFocusNode))) return false;
    HackAdvanceFocus(forward, inFocusNode);
    return true;
}

// ---------------------------------------------------------------------------
// MetadataView

MetadataView::SuspendTreeRebuild::SuspendTreeRebuild(MetadataView *inView) : mView(inView)
{
    if (mView) ++mView->d->mSuspendCount;
}

MetadataView::SuspendTreeRebuild::~SuspendTreeRebuild()
{
    if (!mView) return;
    if (--mView->d->mSuspendCount == 0 && mView->d->mRebuildPending) mView->d->Rebuild();
}

MetadataView::MetadataView(SchemaList inDisplaySchemas, std::shared_ptr<kivmetadata::MetaDataProvider> inProvider)
    : d(std::make_unique<Private>(*this))
{
    UI_SetNodeID("MetadataView");
    d->mDisplaySchemas = std::move(inDisplaySchemas);
    d->mProvider = std::move(inProvider);
    d->ListenToProvider();
    d->mTree = IntrusivePtr<kivui::UI_MultiColumnTree>(new kivui::UI_MultiColumnTree);
    d->mTree->UI_SetNodeID("MetadataView.tree");
    d->mTree->SetRowVisibilityChangedFxn([this](RowPtr const &inRow) { OnRowVisibilityChanged(inRow); });
    d->mTree->SetRowDisclosureChangedFxn(
        [this](RowPtr const &inRow, bool inOpened) { OnRowDisclosureChanged(inRow, inOpened); });
    ChildPushBack(d->mTree);
    d->mTree->UI_Show(true);
    d->Rebuild();
}

MetadataView::~MetadataView()
{
    if (d->mPacketListener) *d->mPacketListener = nullptr;
    d->mTree->SetRowVisibilityChangedFxn(nullptr);
    d->mTree->SetRowDisclosureChangedFxn(nullptr);
    d->ClearRows();
}

void MetadataView::UI_LayoutChildren()
{
    d->mTree->UI_SetLocalRectF(UI_GetLocalRectF(false));
}

void MetadataView::SetIncludedPaths(PathSet const &inPaths)
{
    if (inPaths == d->mIncluded) return;
    d->mIncluded = inPaths;
    d->Rebuild();
}
MetadataView::PathSet const &MetadataView::GetIncludedPaths() const
{
    return d->mIncluded;
}

void MetadataView::SetSelectedPaths(PathSet const &inPaths)
{
    PathSet selected = inPaths;
    // Forced-on paths are always selected.
    selected.insert(d->mForcedOn.begin(), d->mForcedOn.end());
    if (selected == d->mSelected) return;
    d->mSelected = std::move(selected);
    d->Rebuild();
}
MetadataView::PathSet const &MetadataView::GetSelectedPaths() const
{
    return d->mSelected;
}

void MetadataView::SetForcedOnPaths(PathSet const &inPaths)
{
    if (inPaths == d->mForcedOn) return;
    d->mForcedOn = inPaths;
    d->mSelected.insert(inPaths.begin(), inPaths.end());
    d->Rebuild();
}
MetadataView::PathSet const &MetadataView::GetForcedOnPaths() const
{
    return d->mForcedOn;
}

void MetadataView::SetDisabledPaths(PathSet const &inPaths)
{
    if (inPaths == d->mDisabled) return;
    d->mDisabled = inPaths;
    d->Rebuild();
}
MetadataView::PathSet const &MetadataView::GetDisabledPaths() const
{
    return d->mDisabled;
}

void MetadataView::SetReadOnlyPaths(PathSet const &inPaths)
{
    if (inPaths == d->mReadOnly) return;
    d->mReadOnly = inPaths;
    d->Rebuild();
}
MetadataView::PathSet const &MetadataView::GetReadOnlyPaths() const
{
    return d->mReadOnly;
}

void MetadataView::SetEquivalenceMap(EquivalenceMap const &inMap)
{
    d->mEquivalence = inMap;
    d->Rebuild();
}
MetadataView::EquivalenceMap const &MetadataView::GetEquivalenceMap() const
{
    return d->mEquivalence;
}

void MetadataView::SetAllowPropertySelection(bool inAllow)
{
    if (inAllow == d->mAllowPropertySelection) return;
    d->mAllowPropertySelection = inAllow;
    d->Rebuild();
}
bool MetadataView::GetAllowPropertySelection() const
{
    return d->mAllowPropertySelection;
}

void MetadataView::SetDisplayPropertyValue(bool inDisplay)
{
    if (inDisplay == d->mDisplayPropertyValue) return;
    d->mDisplayPropertyValue = inDisplay;
    d->Rebuild();
}
bool MetadataView::GetDisplayPropertyValue() const
{
    return d->mDisplayPropertyValue;
}

void MetadataView::SetDisableDynamicSchema(bool inDisable)
{
    if (inDisable == d->mDisableDynamicSchema) return;
    d->mDisableDynamicSchema = inDisable;
    d->mDynamicSchemasStale = true;
    d->Rebuild();
}
bool MetadataView::GetDisableDynamicSchema() const
{
    return d->mDisableDynamicSchema;
}

void MetadataView::SetAllReadOnly(bool inReadOnly)
{
    if (inReadOnly == d->mAllReadOnly) return;
    d->mAllReadOnly = inReadOnly;
    d->Rebuild();
}
bool MetadataView::GetAllReadOnly() const
{
    return d->mAllReadOnly;
}

void MetadataView::SetDisplaySchemas(SchemaList inSchemas)
{
    d->mDisplaySchemas = std::move(inSchemas);
    d->Rebuild();
}
MetadataView::SchemaList const &MetadataView::GetDisplaySchemas() const
{
    return d->mDisplaySchemas;
}

void MetadataView::SetProvider(std::shared_ptr<kivmetadata::MetaDataProvider> inProvider)
{
    d->mProvider = std::move(inProvider);
    d->mDynamicSchemasStale = true;
    d->ListenToProvider();
    d->Rebuild();
}
std::shared_ptr<kivmetadata::MetaDataProvider> const &MetadataView::GetProvider() const
{
    return d->mProvider;
}

void MetadataView::ShowMetadataForFilePath(std::u16string const &inFilePath)
{
    SetProvider(kivmetadata::FileMetaDataProvider::Open(inFilePath));
}

void MetadataView::SetLinkDelegate(std::shared_ptr<MetadataView_LinkDelegate> inDelegate)
{
    d->mLinkDelegate = std::move(inDelegate);
    d->Rebuild();
}
std::shared_ptr<MetadataView_LinkDelegate> const &MetadataView::GetLinkDelegate() const
{
    return d->mLinkDelegate;
}

void MetadataView::SetFocusMover(std::shared_ptr<FocusMover> inMover)
{
    d->mFocusMover = std::move(inMover);
}

void MetadataView::SetFocusOrder(kivui::UI_Node *inPrevious, kivui::UI_Node *inNext)
{
    d->mFocusPrevious = inPrevious ? inPrevious->UI_GetWidget() : nullptr;
    d->mFocusNext = inNext ? inNext->UI_GetWidget() : nullptr;
}

void MetadataView::SetMetadataViewRowChangedFxn(RowChangedFxn inFxn)
{
    d->mRowChanged = std::move(inFxn);
}
void MetadataView::SetIsQuiet(bool inQuiet)
{
    d->mTree->SetIsQuiet(inQuiet);
}

void MetadataView::SetSharedLabelWidth(float inWidth)
{
    gSharedLabelWidth = inWidth;
}
float MetadataView::GetSharedLabelWidth()
{
    return gSharedLabelWidth;
}

void MetadataView::AppendSchemaToPropertiesTree(std::shared_ptr<SchemaDefinition> const &inSchema, bool inIncludeAll)
{
    if (!inSchema) return;
    d->AppendSchema(inSchema, inIncludeAll);
    d->OpenRecordedRows();
    d->mTree->Layout();
}

void MetadataView::RemoveSchemaFromPropertiesTree(std::shared_ptr<SchemaDefinition> const &inSchema)
{
    if (inSchema) d->RemoveSchemaRow(inSchema->mNamespace);
}

void MetadataView::EnsureSchemaIsPresent(std::shared_ptr<SchemaDefinition> const &inSchema)
{
    if (!inSchema) return;
    for (auto const &schema : d->mDisplaySchemas)
        if (schema == inSchema || (schema && schema->mNamespace == inSchema->mNamespace)) return;
    d->mDisplaySchemas.push_back(inSchema);
    d->Rebuild();
}

void MetadataView::AppendSchemaPropertiesToIncludedPaths(SchemaDefinition const &inSchema)
{
    kivmetadata::IncludeAllDescendantPaths(inSchema, d->mIncluded);
    d->Rebuild();
}

void MetadataView::RemoveSchemaPropertiesFromIncludedPaths(SchemaDefinition const &inSchema)
{
    kivmetadata::VisitDescendantLeafPaths(inSchema, [this](Path const &leaf) { d->mIncluded.erase(leaf); });
    d->Rebuild();
}

void MetadataView::SetOpenedSchemaRows(SchemaSet const &inSchemas)
{
    d->mOpened.mSchemas.clear();
    for (auto const &schema : inSchemas)
        if (schema) d->mOpened.mSchemas.insert(schema->mNamespace);
    d->OpenRecordedRows();
    d->mTree->Layout();
}

MetadataView::SchemaSet MetadataView::GetOpenedSchemaRows() const
{
    SchemaSet schemas;
    for (SchemaList const *list : {&d->mDisplaySchemas, &d->mDynamicSchemas})
        for (auto const &schema : *list)
            if (schema && d->mOpened.mSchemas.count(schema->mNamespace)) schemas.insert(schema);
    return schemas;
}

MetadataView::OpenedRowData MetadataView::GetOpenedRows() const
{
    return d->mOpened;
}

void MetadataView::OpenRows(OpenedRowData const &inRows)
{
    d->mOpened.mSchemas.insert(inRows.mSchemas.begin(), inRows.mSchemas.end());
    d->mOpened.mPaths.insert(inRows.mPaths.begin(), inRows.mPaths.end());
    d->OpenRecordedRows();
    d->mTree->Layout();
}

void MetadataView::SetOpenedRows(OpenedRowData const &inRows)
{
    d->mOpened = inRows;
    d->OpenRecordedRows();
    d->mTree->Layout();
}

void MetadataView::SetRapidFindString(std::u16string const &inText)
{
    std::u16string const canonical = Canonical(inText);
    if (canonical == d->mRapidFind) return;
    d->mRapidFind = canonical;
    d->Rebuild();
}

std::u16string const &MetadataView::GetRapidFindString() const
{
    return d->mRapidFind;
}
bool MetadataView::UserIsSearchingForRows() const
{
    return !d->mRapidFind.empty();
}
void MetadataView::RefilterMetadataFieldsForRapidFindString()
{
    d->Rebuild();
}

void MetadataView::PopulateTreeValues()
{
    d->PopulateTreeValues();
}

void MetadataView::UpdateAllLinkButtons()
{
    if (!d->mLinkDelegate) return;
    for (RowPtr const &row : d->mTree->GetOpenedRows()) {
        if (!row->IsVisible()) continue;
        auto path = d->mRowToPath.find(row.get());
        if (path == d->mRowToPath.end()) continue;
        MetadataViewCell *cell = MetadataCellForRow(row);
        auto *button = cell ? dynamic_cast<kivui::UI_PictureButton *>(cell->GetChild_Link().get()) : nullptr;
        if (button) d->UpdateLinkButton(*button, path->second);
    }
}

float MetadataView::GetOpenHeight() const
{
    return d->mTree->GetFullOpenedRowsHeight();
}

kivui::UI_MultiColumnTree *MetadataView::GetTree() const
{
    return d->mTree.get();
}

kivui::UI_Checkbox *MetadataView::CheckboxForRow(RowPtr const &inRow) const
{
    MetadataViewCell *cell = MetadataCellForRow(inRow);
    return cell ? cell->GetChild_Checkbox().get() : nullptr;
}

MetadataViewCell *MetadataView::MetadataCellForRow(RowPtr const &inRow) const
{
    return inRow ? dynamic_cast<MetadataViewCell *>(inRow->GetCellView().get()) : nullptr;
}

bool MetadataView::FindPathForRow(RowPtr const &inRow, Path &outPath) const
{
    auto found = d->mRowToPath.find(inRow.get());
    if (found == d->mRowToPath.end()) return false;
    outPath = found->second;
    return true;
}

std::shared_ptr<SchemaDefinition> MetadataView::FindSchemaForRow(RowPtr const &inRow) const
{
    auto found = d->mRowToSchema.find(inRow.get());
    return found == d->mRowToSchema.end() ? nullptr : found->second;
}

RowPtr MetadataView::FindRowThatHoldsMetadataViewCell(kivui::UI_Node const *inNode) const
{
    for (kivui::UI_Node const *node = inNode; node; node = node->UI_GetParent()) {
        if (node == this) break;
        if (auto found = d->mCellToRow.find(node); found != d->mCellToRow.end()) return RowPtr(found->second);
    }
    return {};
}

RowPtr MetadataView::FindRowForPath(Path const &inPath) const
{
    auto found = d->mPathToRow.find(inPath);
    return found == d->mPathToRow.end() ? RowPtr() : RowPtr(found->second);
}

void MetadataView::OnRowVisibilityChanged(RowPtr const &inRow)
{
    if (!inRow || inRow->GetCellView()) return;
    auto &mRowToSchema = d->mRowToSchema;
    auto &mRowToPath = d->mRowToPath;
    auto const schemaIt = mRowToSchema.find(inRow.get());
    auto const pathIt = mRowToPath.find(inRow.get());
    KIV_ASSERT(kUnit, "kivmetadataui::MetadataView::OnRowVisibilityChanged",
               schemaIt != mRowToSchema.end() || pathIt != mRowToPath.end());
    if (schemaIt != mRowToSchema.end())
        d->CreateViewForRow_Schema(inRow, schemaIt->second);
    else if (pathIt != mRowToPath.end())
        d->CreateViewForRow_Path(inRow, Path(pathIt->second));
}

void MetadataView::OnRowDisclosureChanged(RowPtr const &inRow, bool inOpened)
{
    if (auto schema = d->mRowToSchema.find(inRow.get()); schema != d->mRowToSchema.end() && schema->second) {
        if (inOpened)
            d->mOpened.mSchemas.insert(schema->second->mNamespace);
        else
            d->mOpened.mSchemas.erase(schema->second->mNamespace);
    } else if (auto path = d->mRowToPath.find(inRow.get()); path != d->mRowToPath.end()) {
        if (inOpened)
            d->mOpened.mPaths.insert(path->second);
        else
            d->mOpened.mPaths.erase(path->second);
    }
}

bool MetadataView::IsFocusableRow(RowPtr const &inRow) const
{
    auto found = d->mRowToPath.find(inRow.get());
    if (found == d->mRowToPath.end() || !d->mProvider || !d->mDisplayPropertyValue) return false;
    Path const &path = found->second;
    if (d->mAllReadOnly || d->mReadOnly.count(path) || d->mDisabled.count(path)) return false;
    if (!kivmetadata::PrimitiveTypeOfPath(path)) return false;
    return kivmetadata::IsAllMetadataForcedWritable() || IsPropertySupportedForWriting(path);
}

RowPtr MetadataView::NextFocusableRow(bool inForward, RowPtr const &inRow) const
{
    std::vector<RowPtr> const rows = d->mTree->GetOpenedRows();
    auto const count = static_cast<std::ptrdiff_t>(rows.size());
    std::ptrdiff_t index = inForward ? -1 : count;
    if (inRow) {
        auto const found = std::find(rows.begin(), rows.end(), inRow);
        if (found != rows.end()) index = found - rows.begin();
    }
    for (index += inForward ? 1 : -1; index >= 0 && index < count; index += inForward ? 1 : -1)
        if (IsFocusableRow(rows[static_cast<std::size_t>(index)])) return rows[static_cast<std::size_t>(index)];
    return {};
}

void MetadataView::DumpRow(RowPtr const &inRow, std::string &outText) const
{
    if (!inRow) return;
    outText.append(static_cast<std::size_t>(2 * inRow->GetDepth()), ' ');
    if (auto schema = FindSchemaForRow(inRow))
        outText += "schema " + schema->mNamespace;
    else if (Path path; FindPathForRow(inRow, path))
        outText += path.mNamespace + ' ' + path.mPath;
    else
        outText += "unknown row";
    if (inRow->IsOpened()) outText += " opened";
    if (kivui::UI_Checkbox *box = CheckboxForRow(inRow))
        outText += box->IsValueUnknown() ? " [-]" : box->IsChecked() ? " [x]" : " [ ]";
    outText += '\n';
    for (int i = 0; i < inRow->CountChildRows(); ++i)
        DumpRow(inRow->GetChildRow(i), outText);
}

bool MetadataView::UI_DoPreKeyboardEvent(kivui::UI_Node *inFocusNode, kivui::KeyboardEvent const &inEvent)
{
    if (d->HandleTab(inFocusNode, inEvent)) return true;
    return UI_SubView::UI_DoPreKeyboardEvent(inFocusNode, inEvent);
}

bool MetadataView::UI_DoKeyboardEvent(kivui::UI_Node *inFocusNode, kivui::KeyboardEvent const &inEvent)
{
    if (d->HandleTab(inFocusNode, inEvent)) return true;
    return UI_SubView::UI_DoKeyboardEvent(inFocusNode, inEvent);
}

} // namespace kivmetadataui
