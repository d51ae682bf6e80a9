#include "Screenshots.h"

#include <kivmetadataui/MetadataDialog.h>

#include <kivmetadataui/AddSchemaPropertyDialog.h>
#include <kivmetadataui/MetadataErrorDialog.h>
#include <kivmetadataui/MetadataLayoutView.h>
#include <kivmetadataui/MetadataPreferencesDialog.h>
#include <kivmetadataui/MetadataTemplateImportOptionsDialog.h>
#include <kivmetadataui/PanelConversionDialog.h>
#include <kivmetadataui/TriSectionSplitterView.h>
#include <kivmetadataui/XMPIcons.h>

#include <kivmetadata/Definitions.h>
#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/ViewSettings.h>
#include <kivui/ScriptedResponses.h>
#include <kivui/SkinManager.h>
#include <kivui/SkinVersion.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_SubView.h>
#include <kivui/drawbot/QtSupplier.h>

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QProgressDialog>
#include <QRegularExpression>
#include <QTabWidget>

namespace kivmeta {

namespace {

using kivui::skins::core::SkinManager;
using kivui::skins::core::SkinVersion;

void Settle()
{
    // Two rounds: the first delivers the resizes that a tab change posts, the
    // second the paints and layouts that follow from them.
    for (int i = 0; i < 2; ++i)
        QApplication::processEvents();
}

// The view-settings dialog and the add-property dialog, each caught as it opens
// and then cancelled.
bool WritePreferencesDialogs(QDir const &folder, QStringList &written, QString &error)
{
    kivui::drawbot::QtSupplier supplier;
    kivcore::utility::IntrusivePtr<kivui::UI_SubView> parent(new kivui::UI_SubView);
    bool ok = true;
    auto grabInto = [&](QString const &name) {
        return [&, name](QWidget *dialog) {
            QString const file = folder.filePath(name);
            if (dialog->grab().save(file, "PNG")) {
                written << file;
            } else {
                error = QStringLiteral("cannot write %1").arg(file);
                ok = false;
            }
        };
    };
    kivmetadataui::SchemaDefinitionList const schemas = kivmetadata::GetSchemaDefinitions();
    std::set<kivmetadata::Path> selected;
    kivmetadataui::SchemaDefinitionSet opened;
    if (!schemas.empty()) {
        opened.insert(schemas.front());
        auto const &properties = schemas.front()->mProperties;
        for (std::size_t i = 0; i < properties.size() && i < 6; i += 2)
            selected.insert(kivmetadata::CreatePathFromSchemaProperty(*schemas.front(), *properties[i]));
    }
    kivui::dialogs::ScriptedResponses::PushAction(grabInto(QStringLiteral("preferences-dialog.png")),
                                                  kivui::dialogs::ScriptedAnswer::kCancel);
    kivmetadataui::DoMetadataPreferencesDialog(selected, &supplier, parent.get(), opened,
                                               kivmetadata::ViewSettingsDirectory(), schemas.cbegin(), schemas.cend());
    std::u16string name, text;
    std::int32_t type = 0;
    kivui::dialogs::ScriptedResponses::PushAction(grabInto(QStringLiteral("add-property-dialog.png")),
                                                  kivui::dialogs::ScriptedAnswer::kCancel);
    kivmetadataui::DoAddSchemaPropertyDialog(kivmetadata::CreateNewSchema("screenshot", "Screenshot", "", ""), name,
                                             text, type, &supplier, parent.get());
    return ok;
}

// The error, template import options and panel conversion dialogs as they
// open, and the splitter view with a panel, its description and its raw
// packet. The dialogs are shown and grabbed, never closed, so that nothing
// they remember on closing reaches the user's preferences.
bool WriteSplitterAndSmallDialogs(QDir const &folder, std::shared_ptr<kivmetadata::MetaDataProvider> const &provider,
                                  QStringList &written, QString &error)
{
    kivui::drawbot::QtSupplier supplier;
    auto save = [&](QWidget *widget, QString const &name) {
        Settle();
        QString const file = folder.filePath(name);
        if (!widget->grab().save(file, "PNG")) {
            error = QStringLiteral("cannot write %1").arg(file);
            return false;
        }
        written << file;
        return true;
    };
    auto grabDialog = [&](kivui::UI_Dialog &dialog, QString const &name) {
        dialog.Show();
        bool const saved = save(dialog.GetDialog(), name);
        dialog.GetDialog()->hide();
        return saved;
    };

    std::vector<kivmetadata::ErrorInfo> const errors = {
        {"The date \u201C2024-13-01\u201D is not a valid date.", "xmp:CreateDate in harbour-0042.jpg"},
        {"The file is read-only; its metadata cannot be saved.", "/photos/archive/harbour-0007.jpg"},
        {"The XMP packet could not be parsed.", "/photos/scans/letter.tif"},
        {"The view settings file could not be written.", "Basic.xmp_view_settings.xml"},
    };
    kivcore::utility::IntrusivePtr<kivmetadataui::MetadataErrorDialog> errorDialog(
        new kivmetadataui::MetadataErrorDialog(&supplier, nullptr, true, errors));
    if (!grabDialog(*errorDialog, QStringLiteral("error-dialog.png"))) return false;

    kivcore::utility::IntrusivePtr<kivmetadataui::MetadataTemplateImportOptionsDialog> optionsDialog(
        new kivmetadataui::MetadataTemplateImportOptionsDialog(&supplier, nullptr, nullptr));
    if (!grabDialog(*optionsDialog, QStringLiteral("template-import-options-dialog.png"))) return false;

    kivcore::utility::IntrusivePtr<kivmetadataui::sharedui::PanelConversionDialog> conversionDialog(
        new kivmetadataui::sharedui::PanelConversionDialog(&supplier, nullptr));
    conversionDialog->GetVersionPopup()->SetValue(3);
    conversionDialog->OnVersionChanged();
    if (!grabDialog(*conversionDialog, QStringLiteral("panel-conversion-dialog.png"))) return false;

    // The splitter: the Description panel, a word about it, the raw packet.
    kivcore::utility::IntrusivePtr<kivui::UI_SubView> host(new kivui::UI_SubView);
    host->UI_SetDrawSupplier(&supplier);
    host->UI_SetLocalRectF(kivcore::RectF{0, 0, 560, 720});
    using Section = kivcore::utility::IntrusivePtr<kivmetadataui::MetadataSectionView>;
    Section panelSection(new kivmetadataui::MetadataSectionView(u"panel", true));
    Section aboutSection(new kivmetadataui::MetadataSectionView(u"about", true));
    Section rawSection(new kivmetadataui::MetadataSectionView(u"raw", true));
    kivcore::utility::IntrusivePtr<kivmetadataui::TriSectionSplitterView> splitter(
        new kivmetadataui::TriSectionSplitterView(host.get(), panelSection, aboutSection, rawSection));
    splitter->UI_SetLocalRectF(host->UI_GetLocalRectF(false));
    splitter->SetSplitterPercentage(true, 0.5f);
    splitter->SetSplitterPercentage(false, 0.12f);
    splitter->SetSectionPrimaryText(0, u"Description");
    splitter->SetSectionSecondaryText(0, u"Panel");
    QImage const icon =
        kivui::skins::IsRunningV7OrBeyond() ? kivmetadataui::GetXMPIconDark() : kivmetadataui::GetXMPIconLight();
    splitter->SetSectionImages(0, icon, QImage());
    splitter->SetSectionPrimaryText(1, u"About this panel");
    aboutSection->SetPrimaryText(u"About this panel");
    rawSection->SetPrimaryText(u"Raw Data");
    rawSection->SetSecondaryText(u"RDF/XML");
    auto fill = [](Section const &section, kivcore::utility::IntrusivePtr<kivui::UI_Node> const &content) {
        kivcore::utility::IntrusivePtr<kivui::UI_SubView> area = section->GetContentView();
        content->UI_SetLocalRectF(area->UI_GetLocalRectF(false));
        content->UI_SetLayoutBinding(kivui::LayoutBinding(kivui::kBindBoth | kivui::kBindTopLeft));
        area->ChildPushBack(content);
    };
    kivcore::utility::IntrusivePtr<kivmetadataui::MetadataLayoutView> panel(
        new kivmetadataui::MetadataLayoutView(std::string("Description"), provider));
    fill(panelSection, panel);
    kivcore::utility::IntrusivePtr<kivui::UI_StaticText> about(new kivui::UI_StaticText(
        u"Title, author, description, keywords and copyright of the file: the properties most people fill in "
        u"first. The raw packet below shows the same values as they are stored."));
    about->SetWordWrap(true);
    about->GetLabel()->setContentsMargins(8, 4, 8, 4);
    about->GetLabel()->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    fill(aboutSection, about);
    auto raw = kivmetadataui::CreateRawDataView(nullptr, provider, kivmetadataui::RawDataViewOptions{false, true});
    fill(rawSection, raw);
    host->UI_SetGlobalStructureRect(kivcore::RectF{0, 0, 560, 720});
    host->UI_GetWidget()->show();
    Settle();
    panel->Layout();
    raw->Layout();
    bool const saved = save(host->UI_GetWidget(), QStringLiteral("splitter-view.png"));
    host->UI_GetWidget()->hide();
    return saved;
}

} // namespace

QString PanelFileStem(QString const &name)
{
    static QRegularExpression const separators(QStringLiteral("[^a-z0-9]+"));
    QString stem = name.toLower();
    stem.replace(separators, QStringLiteral("-"));
    while (stem.startsWith(u'-'))
        stem.remove(0, 1);
    while (stem.endsWith(u'-'))
        stem.chop(1);
    return stem.isEmpty() ? QStringLiteral("panel") : stem;
}

bool WriteScreenshots(std::function<std::unique_ptr<kivmetadataui::MetadataDialog>()> const &makeWindow,
                      QString const &dir, QStringList &written, QString &error)
{
    struct Look {
        SkinVersion mVersion;
        char const *mFolder;
    };
    Look const looks[] = {{SkinVersion::kV7, "v7"}, {SkinVersion::kV5, "v5"}};
    bool ok = true;
    for (Look const &look : looks) {
        QDir folder(QDir(dir).filePath(QString::fromLatin1(look.mFolder)));
        if (!folder.mkpath(QStringLiteral("."))) {
            error = QStringLiteral("cannot create the folder %1").arg(folder.path());
            ok = false;
            break;
        }
        if (SkinManager::IsStarted())
            SkinManager::SetSkinVersion(look.mVersion);
        else
            SkinManager::Start(look.mVersion);

        std::unique_ptr<kivmetadataui::MetadataDialog> window = makeWindow();
        if (!window) {
            error = QStringLiteral("the window could not be made");
            ok = false;
            break;
        }
        window->show();
        Settle();
        for (int i = 0; i < window->CountPanels(); ++i) {
            window->Tabs()->setCurrentIndex(i);
            Settle();
            // Rebuilt once the page has its final size.
            window->EnsurePanel(i);
            Settle();
            QString const file = folder.filePath(QStringLiteral("%1-%2.png")
                                                     .arg(i + 1, 2, 10, QLatin1Char('0'))
                                                     .arg(PanelFileStem(window->Tabs()->tabText(i))));
            if (!window->grab().save(file, "PNG")) {
                error = QStringLiteral("cannot write %1").arg(file);
                ok = false;
                break;
            }
            written << file;
        }
        // The Advanced page with a search applied.
        if (auto *search = window->findChild<QLineEdit *>(QStringLiteral("AdvancedPage.search")); ok && search) {
            for (int i = 0; i < window->CountPanels(); ++i)
                if (window->Tabs()->widget(i)->isAncestorOf(search)) window->Tabs()->setCurrentIndex(i);
            search->setText(QStringLiteral("harbour"));
            Settle();
            QString const file = folder.filePath(QStringLiteral("advanced-search.png"));
            if (window->grab().save(file, "PNG")) {
                written << file;
            } else {
                error = QStringLiteral("cannot write %1").arg(file);
                ok = false;
            }
            search->clear();
        }
        if (ok) {
            window->PreviewProgress(true, 41, 1000, QStringLiteral("harbour-0042.jpg"));
            Settle();
            QString const file = folder.filePath(QStringLiteral("progress-saving.png"));
            if (!window->ProgressDialog() || !window->ProgressDialog()->grab().save(file, "PNG")) {
                error = QStringLiteral("cannot write %1").arg(file);
                ok = false;
            } else {
                written << file;
            }
        }
        if (ok) ok = WritePreferencesDialogs(folder, written, error);
        if (ok) ok = WriteSplitterAndSmallDialogs(folder, window->EditedProvider(), written, error);
        window->hide();
        window.reset();
        if (!ok) break;
    }
    if (SkinManager::GetSkinVersion() != SkinVersion::kV7) SkinManager::SetSkinVersion(SkinVersion::kV7);
    return ok;
}

} // namespace kivmeta
