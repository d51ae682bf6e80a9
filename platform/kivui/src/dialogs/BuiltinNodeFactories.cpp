#include "dialogs/BuiltinNodeFactories_p.h"

#include <kivui/UI_MultiColumnTree.h>
#include <kivui/UI_NodeFactory.h>
#include <kivui/UI_ScrollView.h>
#include <kivui/UI_SectionView.h>
#include <kivui/UI_SubView.h>
#include <kivui/UI_TextEdit.h>
#include <kivui/UI_TextEdit_MS.h>

namespace kivui::detail {

namespace {

template <typename T>
kivcore::utility::IntrusivePtr<UI_Node> Make(drawbot::SupplierInterface *supplier)
{
    kivcore::utility::IntrusivePtr<UI_Node> node(new T());
    node->UI_SetDrawSupplier(supplier);
    return node;
}

template <typename T>
void SetValueText(UI_Node &node, std::u16string const &text)
{
    static_cast<T &>(node).SetValue(text, false);
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
}

} // namespace kivui::detail
