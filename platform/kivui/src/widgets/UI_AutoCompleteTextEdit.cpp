#include <kivui/UI_AutoCompleteTextEdit.h>

#include <QCompleter>
#include <QLineEdit>
#include <QStringList>
#include <QStringListModel>

namespace kivui {

UI_AutoCompleteTextEdit::UI_AutoCompleteTextEdit()
{
    mCompleter = new QCompleter(new QStringListModel(GetLineEdit()), GetLineEdit());
    mCompleter->setCaseSensitivity(Qt::CaseInsensitive);
    mCompleter->setCompletionMode(QCompleter::PopupCompletion);
    mCompleter->setModelSorting(QCompleter::UnsortedModel);
    GetLineEdit()->setCompleter(mCompleter);
    UI_GetWidget()->setProperty("kivuiClass", QStringLiteral("UI_AutoCompleteTextEdit"));
}

UI_AutoCompleteTextEdit::~UI_AutoCompleteTextEdit() = default;

void UI_AutoCompleteTextEdit::SetEntryList(std::vector<std::u16string> const &inEntries)
{
    mEntries = inEntries;
    QStringList list;
    list.reserve(int(inEntries.size()));
    for (auto const &e : inEntries) list.push_back(QString::fromStdU16String(e));
    static_cast<QStringListModel *>(mCompleter->model())->setStringList(list);
}

std::vector<std::u16string> const &UI_AutoCompleteTextEdit::GetEntryList() const { return mEntries; }

QCompleter *UI_AutoCompleteTextEdit::GetCompleter() const { return mCompleter; }

} // namespace kivui
