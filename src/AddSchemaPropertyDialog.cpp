#include <kivmetadataui/AddSchemaPropertyDialog.h>

#include "ModuleResources.h"

#include <kivmetadataui/XMLNameValidation.h>

#include <kivevefactory/UI_EveViewBase.h>
#include <kivmetadata/Definitions.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivui/MessageBoxes.h>
#include <kivui/OS_ResourceManager.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_TextEdit.h>

#include <kivcore/Assert.h>
#include <kivcore/Localizer.h>
#include <kivcore/StringUtils.h>

namespace kivmetadataui {

namespace {

constexpr char kUnit[] = "src/AddSchemaPropertyDialog";

using kivcore::config::Localizer;
using kivcore::utility::IntrusivePtr;

constexpr char const *kTypeItems[] = {
    "$$$/kivmetadataui/AddSchemaPropertyDlg/PropertyTypeMenuItem/Integer=Integer",
    "$$$/kivmetadataui/AddSchemaPropertyDlg/PropertyTypeMenuItem/Real=Real",
    "$$$/kivmetadataui/AddSchemaPropertyDlg/PropertyTypeMenuItem/Text=Text",
    "$$$/kivmetadataui/AddSchemaPropertyDlg/PropertyTypeMenuItem/Boolean=Boolean",
};

// Collects and checks the name and type of a new property; the caller makes it.
class AddSchemaPropertyDialog : public kivevefactory::UI_EveViewBase {
public:
    AddSchemaPropertyDialog(std::shared_ptr<kivmetadata::SchemaDefinition> inSchema,
                            kivui::drawbot::SupplierInterface *inSupplier, kivui::UI_Node *inParent)
        : UI_EveViewBase(inSupplier, module::GetResourceManager(), "AddSchemaPropertyDialog",
                         "$$$/kivmetadataui/AddSchemaPropertyDialog/Title=Add Property", inParent),
          mSchema(std::move(inSchema))
    {
        // A missing control throws the null-pointer exception naming its type.
        mNameTextEdit = FindControl<kivui::UI_TextEdit>("nameTextEdit");
        mTypePopup = FindControl<kivui::UI_Popup>("columnTypePopup");
        FindControl<kivui::UI_Node>("cancelButton");

        mNameTextEdit->SetValue(
            Localizer::Localize("$$$/kivmetadataui/AddSchemaPropertyDlg/NewPropertyName=NewProperty"), false);
        mNameTextEdit->SelectAll();
        for (char const *item : kTypeItems)
            mTypePopup->AddItem(Localizer::Localize(item));
        mTypePopup->SetValue(0);
    }

    void DefaultCloseOk() override
    {
        std::u16string const text = mNameTextEdit->GetValue();
        if (text.empty()) {
            Refuse("$$$/kivmetadataui/AddSchemaPropertyDlg/EmptyPropertyWindow=Missing Property Name",
                   Localizer::Localize("$$$/kivmetadataui/AddSchemaPropertyDlg/EmptyPropertyName=The property must "
                                       "have a name. Please enter a unique name"));
            return;
        }
        std::u16string const name = GenerateXMLNameFromUnicodeString(text);
        // The text as typed is what must be new in the schema, not the generated name.
        if (kivmetadata::PropertyNameDefinition(mSchema, kivcore::utility::Utf16ToUtf8(text))) {
            Refuse("$$$/kivmetadataui/AddSchemaPropertyDlg/DuplicatePropertyWindowTitle=Duplicate Property Name",
                   Localizer::Localize("$$$/kivmetadataui/AddSchemaPropertyDlg/DuplicatePropertyNameTemplate=The "
                                       "name @0 is already being used in the schema. Please re-enter a unique "
                                       "property name",
                                       {text}));
            return;
        }
        mTypeIndex = mTypePopup->GetValue();
        mName = name;
        mEnteredText = text;
        UI_EveViewBase::DefaultCloseOk();
        mAccepted = true;
    }

    bool mAccepted = false;
    std::u16string mName;
    std::u16string mEnteredText;
    std::int32_t mTypeIndex = 0;

protected:
    ~AddSchemaPropertyDialog() override = default;

private:
    void Refuse(char const *inTitle, std::u16string const &inMessage)
    {
        kivui::messagebox::ShowStop(UI_GetDrawSupplier(), inTitle, inMessage, this);
        mNameTextEdit->SelectAll();
        mNameTextEdit->UI_SetFocus();
    }

    std::shared_ptr<kivmetadata::SchemaDefinition> mSchema;
    IntrusivePtr<kivui::UI_TextEdit> mNameTextEdit;
    IntrusivePtr<kivui::UI_Popup> mTypePopup;
};

} // namespace

bool DoAddSchemaPropertyDialog(std::shared_ptr<kivmetadata::SchemaDefinition> const &inSchema, std::u16string &outName,
                               std::u16string &outEnteredText, std::int32_t &outTypeIndex,
                               kivui::drawbot::SupplierInterface *inDrawSupplier, kivui::UI_Node *inParent)
{
    KIV_ASSERT(kUnit, "kivmetadataui::DoAddSchemaPropertyDialog", inDrawSupplier);
    if (!inDrawSupplier) return false;
    IntrusivePtr<AddSchemaPropertyDialog> dialog(new AddSchemaPropertyDialog(inSchema, inDrawSupplier, inParent));
    if (!dialog->Run() || !dialog->mAccepted) return false;
    outName = dialog->mName;
    outEnteredText = dialog->mEnteredText;
    outTypeIndex = dialog->mTypeIndex;
    return true;
}

} // namespace kivmetadataui
