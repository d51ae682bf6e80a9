#include "V5DateTextEditSkin.h"

namespace kivmetadataui::skins::v5 {

V5DateTextEditSkin::V5DateTextEditSkin() = default;
V5DateTextEditSkin::~V5DateTextEditSkin() = default;

std::string V5DateTextEditSkin::GetDescription() const
{
    // The date edit marks its line edit with the property kivDateTextEdit.
    return R"(QLineEdit[kivDateTextEdit="true"] {
    background: #ffffff;
    color: #1a1a1a;
    border: 1px solid #8c8c8c;
    border-radius: 0px;
    padding: 1px 3px;
    selection-background-color: #3875d7;
    selection-color: #ffffff;
}
QLineEdit[kivDateTextEdit="true"]:focus {
    border: 1px solid #3875d7;
}
QLineEdit[kivDateTextEdit="true"][kivDateInvalid="true"] {
    border: 1px solid #d0453a;
    background: #fff4f3;
}
QLineEdit[kivDateTextEdit="true"][readOnly="true"] {
    background: transparent;
    border: 1px solid transparent;
    color: #404040;
}
)";
}

} // namespace kivmetadataui::skins::v5
