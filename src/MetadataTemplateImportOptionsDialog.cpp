#include <kivmetadataui/MetadataTemplateImportOptionsDialog.h>

#include "ModuleResources.h"

#include <kivcore/Localizer.h>
#include <kivmetadata/Templates.h>
#include <kivui/OS_ResourceManager.h>
#include <kivui/PrefManager.h>
#include <kivui/UI_RadioGroup.h>

#include <QDialog>
#include <QGuiApplication>
#include <QScreen>

#include <array>

namespace kivmetadataui {

namespace {

struct OptionTexts {
    char const *text;
    char const *toolTip;
};

// In radio-index order, which is also the order of TemplateImportOptions.
constexpr std::array<OptionTexts, 3> kOptionTexts{{
    {"$$$/kivmetadataui/dialog/import/template/option/clearAndReplace=Clear existing properties and replace with "
     "template properties",
     "$$$/kivmetadataui/dialog/import/template/option/clearAndReplace/tooltip=All existing metadata properties will "
     "be cleared and properties from the template file will be added."},
    {"$$$/kivmetadataui/dialog/import/template/option/keepAndReplace=Keep original metadata, but replace matching "
     "properties from template",
     "$$$/kivmetadataui/dialog/import/template/option/keepAndReplace/tooltip=All existing metadata properties will be "
     "kept and properties from the template file will be added. Properties from the template file will overwrite "
     "existing ones."},
    {"$$$/kivmetadataui/dialog/import/template/option/keepAndAppend=Keep original metadata, but append matching "
     "properties from template",
     "$$$/kivmetadataui/dialog/import/template/option/keepAndAppend/tooltip=All existing metadata properties will be "
     "kept and properties from the template file will be added. Properties from the template file will be appended "
     "to the existing ones if possible."},
}};

// The first import offers clear-and-replace.
constexpr std::int64_t kDefaultIndex = 0;

} // namespace

struct MetadataTemplateImportOptionsDialog::Private {
    std::shared_ptr<kivui::utility::PrefManager> settings;
    kivcore::utility::IntrusivePtr<kivui::UI_RadioGroup> group;
};

MetadataTemplateImportOptionsDialog::MetadataTemplateImportOptionsDialog(
    kivui::drawbot::SupplierInterface *inSupplier, kivui::utility::ResourceManager const *inResources,
    std::shared_ptr<kivui::utility::PrefManager> inSettings, kivui::UI_Node *inParent)
    : kivui::UI_ArchivedDialog(inSupplier, inResources ? inResources : module::GetResourceManager(), kArchiveName,
                               kTitleKey, inParent),
      d(std::make_unique<Private>())
{
    d->settings = std::move(inSettings);
    UI_SetNodeID(kNodeID);
    kivcore::RectF const built = UI_GetLocalRectF(false);
    SetMinimumSize(kivcore::PointF{built.width, built.height});

    // Centred over the parent's window, or on the screen without one.
    QDialog *dialog = GetDialog();
    QRect area;
    if (QWidget *parentWindow = dialog->parentWidget() ? dialog->parentWidget()->window() : nullptr) {
        area = parentWindow->frameGeometry();
    } else if (QScreen *screen = QGuiApplication::primaryScreen()) {
        area = screen->availableGeometry();
    }
    if (area.isValid()) {
        QPoint const centre = area.center();
        UI_SetGlobalStructureRect(kivcore::RectF{float(centre.x()) - std::floor(built.width / 2.0f),
                                                 float(centre.y()) - std::floor(built.height / 2.0f), built.width,
                                                 built.height});
    }

    d->group = FindControl<kivui::UI_RadioGroup>(kOptionsGroupID);
    if (d->group->CountButtons() == 0) {
        for (OptionTexts const &option : kOptionTexts) {
            d->group->AddButton(kivcore::config::Localizer::Localize(option.text),
                                kivcore::config::Localizer::Localize(option.toolTip));
        }
    }
    std::int64_t index = kDefaultIndex;
    if (d->settings) index = d->settings->GetInt(kSettingsKey).value_or(kDefaultIndex);
    d->group->SetValue(static_cast<int>(index));

    SetButtons(FindNode(kOkButtonID), FindNode(kCancelButtonID));
}

MetadataTemplateImportOptionsDialog::~MetadataTemplateImportOptionsDialog() = default;

kivmetadata::TemplateImportOptions MetadataTemplateImportOptionsDialog::OptionsForIndex(int inIndex)
{
    switch (inIndex) {
    case 0:
        return kivmetadata::kTemplateImport_ClearAndReplace;
    case 1:
        return kivmetadata::kTemplateImport_KeepAndReplace;
    default:
        return kivmetadata::kTemplateImport_KeepAndAppend;
    }
}

kivmetadata::TemplateImportOptions MetadataTemplateImportOptionsDialog::GetOptions() const
{
    return OptionsForIndex(d->group->GetValue());
}

kivui::UI_RadioGroup *MetadataTemplateImportOptionsDialog::GetOptionsGroup() const
{
    return d->group.get();
}

void MetadataTemplateImportOptionsDialog::StoreSelection() const
{
    if (d->settings) d->settings->SetInt(kSettingsKey, static_cast<std::int64_t>(d->group->GetValue()));
}

void MetadataTemplateImportOptionsDialog::DefaultCloseOk()
{
    StoreSelection();
    kivui::UI_ArchivedDialog::DefaultCloseOk();
}

void MetadataTemplateImportOptionsDialog::DefaultCloseCancel()
{
    // Remembered on Cancel too: the next import offers the same choice.
    StoreSelection();
    kivui::UI_ArchivedDialog::DefaultCloseCancel();
}

} // namespace kivmetadataui
