#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivmetadata/Path.h>
#include <kivui/UI_MultiColumnTree.h>
#include <kivui/UI_SubView.h>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace kivmetadata {
class MetaDataProvider;
struct SchemaDefinition;
} // namespace kivmetadata

namespace kivui {
class UI_Checkbox;
}

namespace kivmetadataui {

class FocusMover;
class MetadataViewCell;
class MetadataView_LinkDelegate;

// A tree of metadata schemas (top-level rows) and their properties, struct
// fields and array items (child rows). It serves as an editing panel (each
// property row carries a control bound to the provider's value) and, with
// property selection allowed, as a check-box tree in which the user chooses
// properties. Its state is a few path sets; rows and check boxes are always
// derived from them.
//
// Rows are made for every shown path at once, their cells only when a row
// first becomes visible, so a tree of thousands of properties costs what
// its visible rows cost. Any setter that changes what is shown rebuilds the
// tree at once (unless a SuspendTreeRebuild is alive), keeping the opened
// rows opened.
class KIVMETADATAUI_EXPORT MetadataView : public kivui::UI_SubView {
public:
    using PathSet = std::set<kivmetadata::Path>;
    using EquivalenceMap = std::map<kivmetadata::Path, std::shared_ptr<PathSet>>;
    using SchemaList = std::vector<std::shared_ptr<kivmetadata::SchemaDefinition>>;
    using SchemaSet = std::set<std::shared_ptr<kivmetadata::SchemaDefinition>>;
    using RowPtr = kivui::UI_MultiColumnTree::RowPtr;
    using RowChangedFxn = std::shared_ptr<std::function<void(MetadataView *)>>;

    static constexpr char kEntriesKey[] = "$$$/kivmetadataui/MetadataView/entries=(@0 entries)";

    // The disclosed rows, by what they stand for: schemas by namespace,
    // properties by path.
    struct OpenedRowData {
        std::set<std::string> mSchemas;
        PathSet mPaths;
    };

    // Holds back rebuilding while alive; the view rebuilds once when the
    // last one ends (and only if something asked for a rebuild meanwhile).
    class KIVMETADATAUI_EXPORT SuspendTreeRebuild {
    public:
        explicit SuspendTreeRebuild(MetadataView *inView);
        ~SuspendTreeRebuild();
        SuspendTreeRebuild(SuspendTreeRebuild const &) = delete;
        SuspendTreeRebuild &operator=(SuspendTreeRebuild const &) = delete;

    private:
        kivcore::utility::IntrusivePtr<MetadataView> mView;
    };

    // The schemas get top-level rows in the given order.
    MetadataView(SchemaList inDisplaySchemas, std::shared_ptr<kivmetadata::MetaDataProvider> inProvider);

    // Path sets (see the class comment).
    void SetIncludedPaths(PathSet const &inPaths);
    PathSet const &GetIncludedPaths() const;
    void SetSelectedPaths(PathSet const &inPaths);
    PathSet const &GetSelectedPaths() const;
    // Always selected; the user cannot clear them.
    void SetForcedOnPaths(PathSet const &inPaths);
    PathSet const &GetForcedOnPaths() const;
    // Their rows' cells are disabled.
    void SetDisabledPaths(PathSet const &inPaths);
    PathSet const &GetDisabledPaths() const;
    // Their value controls are not editable.
    void SetReadOnlyPaths(PathSet const &inPaths);
    PathSet const &GetReadOnlyPaths() const;
    // Paths that stand for one property in several schemas: toggling one
    // toggles the others.
    void SetEquivalenceMap(EquivalenceMap const &inMap);
    EquivalenceMap const &GetEquivalenceMap() const;

    void SetAllowPropertySelection(bool inAllow);
    bool GetAllowPropertySelection() const;
    void SetDisplayPropertyValue(bool inDisplay);
    bool GetDisplayPropertyValue() const;
    // When set, properties that no definition knows are not shown.
    void SetDisableDynamicSchema(bool inDisable);
    bool GetDisableDynamicSchema() const;
    // Disables every check box, link button and value control.
    void SetAllReadOnly(bool inReadOnly);
    bool GetAllReadOnly() const;

    void SetDisplaySchemas(SchemaList inSchemas);
    SchemaList const &GetDisplaySchemas() const;
    void SetProvider(std::shared_ptr<kivmetadata::MetaDataProvider> inProvider);
    std::shared_ptr<kivmetadata::MetaDataProvider> const &GetProvider() const;
    // Opens the file with a file provider and shows it; an unreadable file
    // leaves the view without provider (and without rows).
    void ShowMetadataForFilePath(std::u16string const &inFilePath);

    void SetLinkDelegate(std::shared_ptr<MetadataView_LinkDelegate> inDelegate);
    std::shared_ptr<MetadataView_LinkDelegate> const &GetLinkDelegate() const;
    void SetFocusMover(std::shared_ptr<FocusMover> inMover);
    // Nodes that get the focus when Tab leaves the view backward or forward;
    // when set they win over the focus mover.
    void SetFocusOrder(kivui::UI_Node *inPrevious, kivui::UI_Node *inNext);
    void SetMetadataViewRowChangedFxn(RowChangedFxn inFxn);
    // Passed on to the tree: no callbacks while quiet.
    void SetIsQuiet(bool inQuiet);

    // The label column width that all views share (initially 165).
    static void SetSharedLabelWidth(float inWidth);
    static float GetSharedLabelWidth();

    // Schema rows.
    void AppendSchemaToPropertiesTree(std::shared_ptr<kivmetadata::SchemaDefinition> const &inSchema,
                                      bool inIncludeAll);
    void RemoveSchemaFromPropertiesTree(std::shared_ptr<kivmetadata::SchemaDefinition> const &inSchema);
    // Appends the schema to the display schemas unless it is there already.
    void EnsureSchemaIsPresent(std::shared_ptr<kivmetadata::SchemaDefinition> const &inSchema);
    void AppendSchemaPropertiesToIncludedPaths(kivmetadata::SchemaDefinition const &inSchema);
    void RemoveSchemaPropertiesFromIncludedPaths(kivmetadata::SchemaDefinition const &inSchema);

    // Disclosure.
    void SetOpenedSchemaRows(SchemaSet const &inSchemas);
    SchemaSet GetOpenedSchemaRows() const;
    OpenedRowData GetOpenedRows() const;
    void OpenRows(OpenedRowData const &inRows);
    // Replaces the record of opened rows and opens them.
    void SetOpenedRows(OpenedRowData const &inRows);

    // Rapid find: rows survive when their label, else their value, else one
    // of their descendants contains the text (case-folded, normalised). An
    // unchanged text does nothing.
    void SetRapidFindString(std::u16string const &inText);
    std::u16string const &GetRapidFindString() const;
    bool UserIsSearchingForRows() const;
    void RefilterMetadataFieldsForRapidFindString();

    // Shows the provider's values again, with the array items and the
    // unknown properties that appeared or went meanwhile.
    void PopulateTreeValues();
    void UpdateAllLinkButtons();
    // Height of all opened rows.
    float GetOpenHeight() const;

    // Lookups.
    kivui::UI_MultiColumnTree *GetTree() const;
    // Null until the row has its cell (made when it first becomes visible).
    kivui::UI_Checkbox *CheckboxForRow(RowPtr const &inRow) const;
    MetadataViewCell *MetadataCellForRow(RowPtr const &inRow) const;
    // False for a schema row or an unknown row.
    bool FindPathForRow(RowPtr const &inRow, kivmetadata::Path &outPath) const;
    // The schema a schema row stands for; null for any other row.
    std::shared_ptr<kivmetadata::SchemaDefinition> FindSchemaForRow(RowPtr const &inRow) const;
    // The row whose cell holds the node (the cell itself or a node inside it).
    RowPtr FindRowThatHoldsMetadataViewCell(kivui::UI_Node const *inNode) const;
    // The row that stands for the path; null when the path has no row.
    RowPtr FindRowForPath(kivmetadata::Path const &inPath) const;
    // Gives the row its cell now, as if it had become visible.
    void OnRowVisibilityChanged(RowPtr const &inRow);
    void OnRowDisclosureChanged(RowPtr const &inRow, bool inOpened);

    // Focus order.
    bool IsFocusableRow(RowPtr const &inRow) const;
    RowPtr NextFocusableRow(bool inForward, RowPtr const &inRow) const;

    // Debug output of a row (its path or schema, state and children).
    void DumpRow(RowPtr const &inRow, std::string &outText) const;

protected:
    ~MetadataView() override;

    // Tab and Shift+Tab move between editable rows and out of the view.
    bool UI_DoPreKeyboardEvent(kivui::UI_Node *inFocusNode, kivui::KeyboardEvent const &inEvent) override;
    bool UI_DoKeyboardEvent(kivui::UI_Node *inFocusNode, kivui::KeyboardEvent const &inEvent) override;
    // The tree fills the view.
    void UI_LayoutChildren() override;

private:
    friend class SuspendTreeRebuild;
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui
