#include "V7DateTextEditSkin.h"

namespace kivmetadataui::skins::v7 {

V7DateTextEditSkin::V7DateTextEditSkin() = default;
V7DateTextEditSkin::~V7DateTextEditSkin() = default;

std::string V7DateTextEditSkin::GetDescription() const
{
    // The date edit marks its line edit with the property kivDateTextEdit.
    return R"(QLineEdit[kivDateTextEdit="true"] {
    background: #1f1f1f;
    color: #e8e8e8;
    border: 1px solid #4a4a4a;
    border-radius: 3px;
    padding: 1px 4px;
    selection-background-color: #2f6fbf;
    selection-color: #ffffff;
}
QLineEdit[kivDateTextEdit="true"]:focus {
    border: 1px solid #4b9cf5;
}
QLineEdit[kivDateTextEdit="true"][kivDateInvalid="true"] {
    border: 1px solid #e5534b;
    background: #2a1c1b;
}
QLineEdit[kivDateTextEdit="true"][readOnly="true"] {
    background: transparent;
    border: 1px solid transparent;
    color: #b5b5b5;
}
)";
}

} // namespace kivmetadataui::skins::v7
