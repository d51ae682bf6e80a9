#pragma once

#include <kivui/UI_InteractiveControlView.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

class QComboBox;

namespace kivui {

// A pop-up menu over QComboBox. Separators count as items (they have an
// index, no text and cannot be chosen). Popup type 1 is editable: the user
// may type a text that is not among the items.
//
// A choice of the user sends the interactive message 1 and notifies the
// NotifyWhenChanged listeners; in an editable popup typing begins an edit
// (0) and Return or leaving the field ends it (2, then the change notice).
class KIVUI_EXPORT UI_Popup : public UI_InteractiveControlView {
public:
    enum PopupType : int { kPopupTypeMenu = 0, kPopupTypeEditable = 1 };

    UI_Popup();

    void DeleteAllItems();
    void AddItem(std::u16string const &inText, std::optional<std::string> inChoiceData = {});
    void AddSeparator();
    void DisableItem(int inIndex);
    bool IsItemEnabled(int inIndex) const;
    int CountItems() const;
    std::u16string GetItemText(int inIndex) const;
    std::optional<std::string> GetItemData(int inIndex) const;
    // The first item whose choice data equals inData, or -1.
    int FindItemByData(std::string const &inData) const;

    // -1 selects nothing.
    void SetValue(int inIndex);
    int GetValue() const;
    // Selects the item with that text; an editable popup shows any text.
    void SetValueString(std::u16string const &inText);
    std::u16string GetValueString() const;
    void SetValueUnknown(bool inUnknown) override;

    void SetPopupType(int inType);
    int GetPopupType() const;
    void SetEditTextFlags(std::uint32_t inFlags);
    std::uint32_t GetEditTextFlags() const;
    void SetAllowEmpty(bool inAllow);
    bool GetAllowEmpty() const;
    void SetUnknownStateText(std::u16string const &inText);
    std::u16string const &GetUnknownStateText() const;

    QComboBox *GetComboBox() const;

protected:
    ~UI_Popup() override;

private:
    friend class PopupEditWatcher;
    void UserChose(int inIndex);
    void CommitEdit();
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui
