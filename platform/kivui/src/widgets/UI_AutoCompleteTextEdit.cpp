#include <kivui/UI_AutoCompleteTextEdit.h>

#include <QCompleter>
#include <QLineEdit>
#include <QStringList>
#include <QStringListModel>

namespace kivui {

UI_AutoCompleteTextEdit::UI_AutoCompleteTextEdit()
{
    UI_GetWidget()->setProperty("kivuiClass", QStringLiteral("UI_AutoCompleteTextEdit"));
}

QCompleter *UI_AutoCompleteTextEdit::EnsureCompleter() const
{
    // Made on first need: panels hold dozens of these edits, most of them
    // without entries, and a completer is costly to make.
    if (!mCompleter) {
        mCompleter = new QCompleter(new QStringListModel(GetLineEdit()), GetLineEdit());
        mCompleter->setCaseSensitivity(Qt::CaseInsensitive);
        mCompleter->setCompletionMode(QCompleter::PopupCompletion);
        mCompleter->setModelSorting(QCompleter::UnsortedModel);
        GetLineEdit()->setCompleter(mCompleter);
    }
    return mCompleter;
}

UI_AutoCompleteTextEdit::~UI_AutoCompleteTextEdit() = default;

void UI_AutoCompleteTextEdit::SetEntryList(std::vector<std::u16string> const &inEntries)
{
    mEntries = inEntries;
    if (inEntries.empty() && !mCompleter) return;
    QStringList list;
    list.reserve(int(inEntries.size()));
    for (auto const &e : inEntries)
        list.push_back(QString::fromStdU16String(e));
    static_cast<QStringListModel *>(EnsureCompleter()->model())->setStringList(list);
}

std::vector<std::u16string> const &UI_AutoCompleteTextEdit::GetEntryList() const
{
    return mEntries;
}

QCompleter *UI_AutoCompleteTextEdit::GetCompleter() const
{
    return EnsureCompleter();
}

} // namespace kivui
