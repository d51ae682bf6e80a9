#include <kivmetadataui/PanelConversionDialog.h>

#include "ModuleResources.h"

#include <kivmetadata/PanelConversion.h>
#include <kivui/OS_ResourceManager.h>
#include <kivui/PrefManager.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_TextButton.h>
#include <kivui/UI_TextEdit_MS.h>

#include <utility>

namespace kivmetadataui::sharedui {

namespace {

// Popup values: the item positions, the separator included.
constexpr int kSelectVersionValue = 0;
constexpr int kGX6Value = 2;
constexpr int kGX5Value = 3;

PanelConversionDialog::Converter &ConverterSlot()
{
    static PanelConversionDialog::Converter converter;
    return converter;
}

} // namespace

struct PanelConversionDialog::Private {
    kivcore::utility::IntrusivePtr<kivui::UI_Popup> popup;
    kivcore::utility::IntrusivePtr<kivui::UI_TextButton> start;
    kivcore::utility::IntrusivePtr<kivui::UI_TextEdit> result;
    kivui::MessageHandler versionHandler;
    kivui::MessageHandler startHandler;
};

PanelConversionDialog::PanelConversionDialog(kivui::drawbot::SupplierInterface *inSupplier, kivui::UI_Node *inParent)
    : kivui::UI_ArchivedDialog(inSupplier, module::GetResourceManager(), kArchiveName,
                               kivui::dialogs::DialogText(std::u16string(u"Generic Panel Converter")), inParent),
      d(std::make_unique<Private>())
{
    UI_SetNodeID(kNodeID);
    kivcore::RectF const built = UI_GetLocalRectF(false);
    SetMinimumSize(kivcore::PointF{built.width, built.height});
    if (kivui::utility::PrefManager *prefs = kivui::utility::PrefManager::GetPrefManager()) {
        kivcore::RectF const saved = prefs->GetWindowPositionAndSize(kNodeID);
        if (saved.width >= 1.0f && saved.height >= 1.0f) UI_SetGlobalStructureRect(saved);
    }

    d->result = FindControl<kivui::UI_TextEdit_MS>(kResultTextID);
    d->result->SetReadOnlyMode(true);
    d->popup = FindControl<kivui::UI_Popup>(kVersionPopupID);
    d->start = FindControl<kivui::UI_TextButton>(kStartButtonID);

    d->popup->DeleteAllItems();
    d->popup->AddItem(u"Select Version...");
    d->popup->AddSeparator();
    d->popup->AddItem(u"GY/GX6");
    d->popup->AddItem(u"GX5");
    d->popup->AddItem(u"GX4");
    d->popup->SetValue(kSelectVersionValue);
    OnVersionChanged();

    d->versionHandler =
        std::make_shared<std::function<void(kivui::Message *)>>([this](kivui::Message *) { OnVersionChanged(); });
    d->popup->NotifyWhenChanged(d->versionHandler);
    d->startHandler =
        std::make_shared<std::function<void(kivui::Message *)>>([this](kivui::Message *) { OnStartClicked(); });
    d->start->NotifyWhenChanged(d->startHandler);

    SetButtons(FindNode(kExitButtonID), nullptr);
}

PanelConversionDialog::~PanelConversionDialog()
{
    // The controls may outlive the dialog in the toolkit's hands for a moment.
    if (d->versionHandler) *d->versionHandler = nullptr;
    if (d->startHandler) *d->startHandler = nullptr;
}

kivmetadata::utility::GXVersion PanelConversionDialog::VersionForPopupValue(int inValue)
{
    switch (inValue) {
    case kGX6Value:
        return kivmetadata::utility::kGXVersion_GX6;
    case kGX5Value:
        return kivmetadata::utility::kGXVersion_GX5;
    default:
        return kivmetadata::utility::kGXVersion_GX4;
    }
}

PanelConversionDialog::Converter PanelConversionDialog::SetConverter(Converter inConverter)
{
    return std::exchange(ConverterSlot(), std::move(inConverter));
}

kivui::UI_Popup *PanelConversionDialog::GetVersionPopup() const
{
    return d->popup.get();
}

kivui::UI_TextButton *PanelConversionDialog::GetStartButton() const
{
    return d->start.get();
}

kivui::UI_TextEdit *PanelConversionDialog::GetResultText() const
{
    return d->result.get();
}

void PanelConversionDialog::OnVersionChanged()
{
    d->start->SetDisabled(d->popup->GetValue() == kSelectVersionValue);
}

void PanelConversionDialog::OnStartClicked()
{
    int const value = d->popup->GetValue();
    if (value == kSelectVersionValue) return;
    std::u16string report;
    Converter const converter = ConverterSlot();
    if (converter)
        converter(VersionForPopupValue(value), report);
    else
        kivmetadata::utility::LoadAndConvertGenericPanels(VersionForPopupValue(value), report);
    d->result->SetValue(report, false);
}

void PanelConversionDialog::StoreWindowRect() const
{
    if (kivui::utility::PrefManager *prefs = kivui::utility::PrefManager::GetPrefManager()) {
        prefs->SetWindowPositionAndSize(kNodeID, UI_GetGlobalStructureRect());
    }
}

void PanelConversionDialog::DefaultCloseOk()
{
    kivui::UI_ArchivedDialog::DefaultCloseOk();
    StoreWindowRect();
}

void PanelConversionDialog::DefaultCloseCancel()
{
    kivui::UI_ArchivedDialog::DefaultCloseCancel();
    StoreWindowRect();
}

} // namespace kivmetadataui::sharedui
