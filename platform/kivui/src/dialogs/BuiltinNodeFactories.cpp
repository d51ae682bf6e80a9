#include "dialogs/BuiltinNodeFactories_p.h"

#include <kivui/UI_AutoCompleteTextEdit.h>
#include <kivui/UI_Checkbox.h>
#include <kivui/UI_Divider.h>
#include <kivui/UI_DragableTextEdit.h>
#include <kivui/UI_HotTextNumber.h>
#include <kivui/UI_MultiColumnTree.h>
#include <kivui/UI_NodeFactory.h>
#include <kivui/UI_PictureButton.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_RadioGroup.h>
#include <kivui/UI_ScrollView.h>
#include <kivui/UI_SectionView.h>
#include <kivui/UI_StarRating.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_SubView.h>
#include <kivui/UI_TextButton.h>
#include <kivui/UI_TextEdit.h>
#include <kivui/UI_TextEdit_MS.h>
#include <kivui/UI_URLEdit.h>

#include <QWidget>

namespace kivui::detail {

namespace {

template <typename T> kivcore::utility::IntrusivePtr<UI_Node> Make(drawbot::SupplierInterface *supplier)
{
    kivcore::utility::IntrusivePtr<UI_Node> node(new T());
    node->UI_SetDrawSupplier(supplier);
    return node;
}

template <typename T> void SetValueText(UI_Node &node, std::u16string const &text)
{
    static_cast<T &>(node).SetValue(text, false);
}

template <typename T> void SetText(UI_Node &node, std::u16string const &text)
{
    static_cast<T &>(node).SetText(text);
}

// A radio group's "text" in an archive lists its buttons, one per line.
void SetRadioButtons(UI_Node &node, std::u16string const &text)
{
    auto &group = static_cast<UI_RadioGroup &>(node);
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(u'\n', start);
        if (end == std::u16string::npos) end = text.size();
        if (end > start) group.AddButton(text.substr(start, end - start));
        start = end + 1;
    }
    // The text was for the buttons, not a property of the group's own widget.
    group.UI_GetWidget()->setProperty("text", QVariant());
}

} // namespace

void RegisterBuiltinNodeFactories()
{
    UI_NodeFactory::Register("kivui::UI_SubView", &Make<UI_SubView>);
    UI_NodeFactory::Register("kivui::UI_ScrollView", &Make<UI_ScrollView>);
    UI_NodeFactory::Register("kivui::UI_SectionView", &Make<UI_SectionView>);
    UI_NodeFactory::Register("kivui::UI_MultiColumnTree", &Make<UI_MultiColumnTree>);
    UI_NodeFactory::Register("kivui::UI_TextEdit", &Make<UI_TextEdit>, &SetValueText<UI_TextEdit>);
    UI_NodeFactory::Register("kivui::UI_TextEdit_MS", &Make<UI_TextEdit_MS>, &SetValueText<UI_TextEdit_MS>);
    // The class name that UI archives use for the multi-line edit with a vertical scroll bar.
    UI_NodeFactory::Register("TextEditMultilineWithVerticalScrollbar", &Make<UI_TextEdit_MS>,
                             &SetValueText<UI_TextEdit_MS>);
    UI_NodeFactory::Register("kivui::UI_AutoCompleteTextEdit", &Make<UI_AutoCompleteTextEdit>,
                             &SetValueText<UI_AutoCompleteTextEdit>);
    UI_NodeFactory::Register("kivui::UI_URLEdit", &Make<UI_URLEdit>, &SetValueText<UI_URLEdit>);
    UI_NodeFactory::Register("kivui::UI_DragableTextEdit", &Make<UI_DragableTextEdit>,
                             &SetValueText<UI_DragableTextEdit>);
    UI_NodeFactory::Register("kivui::UI_StaticText", &Make<UI_StaticText>, &SetText<UI_StaticText>);
    UI_NodeFactory::Register("kivui::UI_Checkbox", &Make<UI_Checkbox>, &SetText<UI_Checkbox>);
    UI_NodeFactory::Register("kivui::UI_TextButton", &Make<UI_TextButton>, &SetText<UI_TextButton>);
    UI_NodeFactory::Register("kivui::UI_Popup", &Make<UI_Popup>);
    UI_NodeFactory::Register("kivui::UI_RadioGroup", &Make<UI_RadioGroup>, &SetRadioButtons);
    UI_NodeFactory::Register("kivui::UI_HotTextNumber", &Make<UI_HotTextNumber>);
    UI_NodeFactory::Register("kivui::UI_StarRating", &Make<UI_StarRating>);
    UI_NodeFactory::Register("kivui::UI_PictureButton", &Make<UI_PictureButton>);
    UI_NodeFactory::Register("kivui::UI_Divider", &Make<UI_Divider>);
}

} // namespace kivui::detail
