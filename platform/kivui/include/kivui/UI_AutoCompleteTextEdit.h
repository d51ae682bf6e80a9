#pragma once

#include <kivui/UI_TextEdit.h>

#include <vector>

class QCompleter;

namespace kivui {

// A one-line text edit that offers the entries of its list that begin with
// what was typed (case-insensitive).
class KIVUI_EXPORT UI_AutoCompleteTextEdit : public UI_TextEdit {
public:
    UI_AutoCompleteTextEdit();

    void SetEntryList(std::vector<std::u16string> const &inEntries);
    std::vector<std::u16string> const &GetEntryList() const;
    QCompleter *GetCompleter() const;

protected:
    ~UI_AutoCompleteTextEdit() override;

private:
    std::vector<std::u16string> mEntries;
    QCompleter *EnsureCompleter() const;
    mutable QCompleter *mCompleter = nullptr;
};

} // namespace kivui
