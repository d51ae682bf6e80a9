#include "AdvancedPage_p.h"

#include <kivmetadataui/MetadataPreferencesDialog.h>
#include <kivmetadataui/MetadataView.h>

#include <kivcore/Localizer.h>
#include <kivcore/StringUtils.h>
#include <kivmetadata/Definitions.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/ViewSettings.h>
#include <kivui/PrefManager.h>
#include <kivui/UI_LayoutBinding.h>
#include <kivui/UI_SubView.h>
#include <kivui/drawbot/QtSupplier.h>

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kivmetadataui {

using kivcore::utility::IntrusivePtr;

namespace {

QString Localized(char const *inKey)
{
    return QString::fromStdU16String(kivcore::config::Localizer::Localize(inKey));
}

// The kept choice, or every property of every known schema when nothing
// (or nothing readable) was kept.
MetadataView::PathSet LoadSelection(MetadataView::SchemaList const &inSchemas)
{
    MetadataView::PathSet paths;
    if (auto *prefs = kivui::utility::PrefManager::GetPrefManager()) {
        if (auto text = prefs->GetString(AdvancedPage::kSelectionPrefKey)) {
            if (kivmetadata::ReadIncludedLeafPathsAsXMLString(paths, kivcore::utility::Utf16ToUtf8(*text)))
                return paths;
            paths.clear();
        }
    }
    for (auto const &schema : inSchemas)
        if (schema) kivmetadata::IncludeAllDescendantPaths(*schema, paths);
    return paths;
}

void SaveSelection(MetadataView::PathSet const &inPaths)
{
    auto *prefs = kivui::utility::PrefManager::GetPrefManager();
    std::string text;
    if (!prefs || !kivmetadata::IncludedLeafPathsAsXMLString(inPaths, text)) return;
    prefs->SetString(AdvancedPage::kSelectionPrefKey, kivcore::utility::Utf8ToUtf16(text));
    prefs->Sync();
}

} // namespace

struct AdvancedPage::Private {
    std::unique_ptr<kivui::drawbot::QtSupplier> mSupplier = std::make_unique<kivui::drawbot::QtSupplier>();
    IntrusivePtr<kivui::UI_SubView> mRoot{new kivui::UI_SubView};
    IntrusivePtr<MetadataView> mView;
    MetadataView::PathSet mSelection;
    QLineEdit *mSearch = nullptr;
    QPushButton *mViewSettings = nullptr;
};

AdvancedPage::AdvancedPage(std::shared_ptr<kivmetadata::MetaDataProvider> inEdited, QWidget *inParent)
    : QWidget(inParent), d(std::make_unique<Private>())
{
    setObjectName(QStringLiteral("AdvancedPage"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->setSpacing(6);

    d->mSearch = new QLineEdit(this);
    d->mSearch->setObjectName(QStringLiteral("AdvancedPage.search"));
    d->mSearch->setPlaceholderText(Localized(kSearchPlaceholderKey));
    d->mSearch->setClearButtonEnabled(true);
    layout->addWidget(d->mSearch);

    MetadataView::SchemaList schemas = kivmetadata::GetSchemaDefinitions();
    d->mSelection = LoadSelection(schemas);
    d->mView = IntrusivePtr<MetadataView>(new MetadataView(std::move(schemas), std::move(inEdited)));
    {
        MetadataView::SuspendTreeRebuild suspend(d->mView.get());
        d->mView->SetIncludedPaths(d->mSelection);
    }
    d->mRoot->UI_SetDrawSupplier(d->mSupplier.get());
    d->mRoot->ChildPushBack(d->mView);
    d->mView->UI_SetLayoutBinding(kivui::LayoutBinding(kivui::kBindBoth));
    d->mView->UI_Show(true);
    layout->addWidget(d->mRoot->UI_GetWidget(), 1);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    d->mViewSettings = new QPushButton(Localized(kViewSettingsKey), this);
    d->mViewSettings->setObjectName(QStringLiteral("AdvancedPage.viewSettings"));
    d->mViewSettings->setAutoDefault(false);
    buttons->addWidget(d->mViewSettings);
    layout->addLayout(buttons);

    QObject::connect(d->mSearch, &QLineEdit::textChanged, this,
                     [this](QString const &inText) { d->mView->SetRapidFindString(inText.toStdU16String()); });
    QObject::connect(d->mViewSettings, &QPushButton::clicked, this, [this] { EditViewSettings(); });
}

AdvancedPage::~AdvancedPage()
{
    d->mRoot->DeleteChildren();
}

void AdvancedPage::SetSearchText(QString const &inText)
{
    if (d->mSearch->text() != inText)
        d->mSearch->setText(inText); // textChanged filters
    else
        d->mView->SetRapidFindString(inText.toStdU16String());
}

MetadataView *AdvancedPage::View() const
{
    return d->mView.get();
}

void AdvancedPage::RefreshValues()
{
    d->mView->PopulateTreeValues();
}

QLineEdit *AdvancedPage::SearchField() const
{
    return d->mSearch;
}
QPushButton *AdvancedPage::ViewSettingsButton() const
{
    return d->mViewSettings;
}

bool AdvancedPage::EditViewSettings()
{
    MetadataView::PathSet selected = d->mSelection;
    SchemaDefinitionSet opened = d->mView->GetOpenedSchemaRows();
    SchemaDefinitionList const schemas = kivmetadata::GetSchemaDefinitions();
    if (!DoMetadataPreferencesDialog(selected, d->mSupplier.get(), d->mRoot.get(), opened,
                                     kivmetadata::ViewSettingsDirectory(), schemas.begin(), schemas.end()))
        return false;
    d->mSelection = selected;
    SaveSelection(d->mSelection);
    MetadataView::SuspendTreeRebuild suspend(d->mView.get());
    // The dialog may have made custom schemas.
    d->mView->SetDisplaySchemas(kivmetadata::GetSchemaDefinitions());
    d->mView->SetIncludedPaths(d->mSelection);
    d->mView->SetOpenedSchemaRows(opened);
    return true;
}

} // namespace kivmetadataui
