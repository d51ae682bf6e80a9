#pragma once
// Internal to kivmetadataui: not part of the installed API (exported only so
// that the library's own tests can reach it).

#include "kivmetadataui_test_export_p.h"

#include <kivmetadata/Value.h>

#include <kivui/Message.h>
#include <kivui/UI_SubView.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QListWidget;

namespace kivmetadata {
struct PropertyDefinition;
}

namespace kivui {
class UI_StaticText;
class UI_TextButton;
} // namespace kivui

namespace kivui::drawbot {
class SupplierInterface;
}

namespace kivmetadataui {
class Control;
}

namespace kivmetadataui::layout {

class RowItem;
class TableLayout;

// The array editor of the metadata panels: the array's items in a list
// ("  @0" each), Insert and Delete buttons, and below the list an editor of
// the chosen item (its value, or one row per field of a struct item) with a
// Close button. Every change goes to the value's provider through an update
// access and is recorded with AddChange.
//
// The control is the view of its own table (label | list, then the buttons,
// then the item editor); the table is held by whoever shows the control, the
// control keeps only a weak reference to it.
class KIVMETADATAUI_TEST_EXPORT ArrayControl : public kivui::UI_SubView {
public:
    static constexpr char kInsertKey[] = "$$$/kivmetadataui/ArrayControl/Array/Insert=Insert";
    static constexpr char kDeleteKey[] = "$$$/kivmetadataui/ArrayControl/Array/Delete=Delete";
    static constexpr char kCloseKey[] = "$$$/kivmetadataui/ArrayControl/Close=Close";
    static constexpr char kItemKey[] = "$$$/kivmetadataui/ArrayControl/Item=  @0";
    // The list shows this many items at most (a panel with 40,000 listed
    // items took 1.8 s to build); a last, inactive row says how many more
    // there are. Items past it are still written by Insert, never rewritten.
    static constexpr int kMaxListedItems = 1000;
    static constexpr char kMoreItemsKey[] =
        "$$$/kivmetadataui/ArrayControl/MoreItems=  #{hellip} @0 more items (@1 in all)";

    // Makes the control and its table (label-width mode 1, no margins).
    // inRelayout is called after the control changed its own height.
    static std::shared_ptr<TableLayout> Create(kivmetadata::Value const &inValue,
                                               kivmetadata::PropertyDefinition const &inDefinition,
                                               std::u16string const &inLabel,
                                               kivui::drawbot::SupplierInterface const *inSupplier,
                                               std::function<void()> inRelayout);

    kivmetadata::Value const &GetValue() const { return mValue; }
    kivcore::utility::IntrusivePtr<kivui::UI_StaticText> const &GetLabelView() const { return mLabel; }

    // The texts of the listed items (at most kMaxListedItems), read again
    // from the provider.
    std::vector<std::u16string> GetItemTexts() const;
    int CountItems() const;
    // Selects an item (0-based) and opens its editor; -1 closes the editor.
    void SelectItem(int inIndex);
    int GetSelectedItem() const { return mSelected; }
    bool IsEditorOpen() const;
    // The bound controls of the open editor.
    std::vector<std::shared_ptr<Control>> const &GetEditorControls() const { return mEditorControls; }

    // The buttons' actions.
    void InsertItem();
    void DeleteSelectedItem();
    void CloseEditor();

    // Re-reads the items into the list.
    void RefreshItems();

    kivui::UI_TextButton *GetInsertButton() const { return mInsert.get(); }
    kivui::UI_TextButton *GetDeleteButton() const { return mDelete.get(); }
    kivui::UI_TextButton *GetCloseButton() const { return mClose.get(); }
    QListWidget *GetListWidget() const;

protected:
    ~ArrayControl() override;

private:
    ArrayControl(kivmetadata::Value const &inValue, kivmetadata::PropertyDefinition const &inDefinition,
                 kivui::drawbot::SupplierInterface const *inSupplier, std::function<void()> inRelayout);
    std::u16string ItemText(int inIndex) const;
    void BuildEditor();
    void Relayout();
    void UpdateButtons();
    void UpdateEditorSpacing();

    kivmetadata::Value mValue;
    std::shared_ptr<kivmetadata::PropertyDefinition const> mDefinition;
    kivui::drawbot::SupplierInterface const *mSupplier;
    std::function<void()> mRelayout;
    std::weak_ptr<TableLayout> mTable;
    std::weak_ptr<RowItem> mButtonRow;

    kivcore::utility::IntrusivePtr<kivui::UI_StaticText> mLabel;
    kivcore::utility::IntrusivePtr<kivui::UI_SubView> mList;
    kivcore::utility::IntrusivePtr<kivui::UI_SubView> mButtons;
    kivcore::utility::IntrusivePtr<kivui::UI_TextButton> mInsert;
    kivcore::utility::IntrusivePtr<kivui::UI_TextButton> mDelete;
    kivcore::utility::IntrusivePtr<kivui::UI_SubView> mEditorView;
    kivcore::utility::IntrusivePtr<kivui::UI_TextButton> mClose;
    std::shared_ptr<TableLayout> mEditorTable;
    std::vector<std::shared_ptr<Control>> mEditorControls;
    std::vector<kivui::MessageHandler> mHandlers;
    std::shared_ptr<std::function<void(kivui::Message *)>> mOnEdited;
    int mSelected = -1;
};

} // namespace kivmetadataui::layout
