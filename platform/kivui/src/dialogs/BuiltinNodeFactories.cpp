#include "dialogs/BuiltinNodeFactories_p.h"

#include <kivui/UI_NodeFactory.h>
#include <kivui/UI_SubView.h>

namespace kivui::detail {

namespace {

template <typename T>
kivcore::utility::IntrusivePtr<UI_Node> Make(drawbot::SupplierInterface *supplier)
{
    kivcore::utility::IntrusivePtr<UI_Node> node(new T());
    node->UI_SetDrawSupplier(supplier);
    return node;
}

} // namespace

void RegisterBuiltinNodeFactories()
{
    UI_NodeFactory::Register("kivui::UI_SubView", &Make<UI_SubView>);
}

} // namespace kivui::detail
