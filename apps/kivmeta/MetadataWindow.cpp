#include "MetadataWindow.h"

#include "PropertyEditor.h"

#include <kivcore/Localizer.h>
#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadata/MultiMetaDataProvider.h>
#include <kivmetadata/ViewDefinition.h>
#include <kivmetadata/ViewDefinitions.h>
#include <kivmetadataui/MetadataLayoutView.h>
#include <kivmetadataui/MetadataProviderWrapper.h>
#include <kivui/MessageBoxes.h>
#include <kivui/UI_SubView.h>
#include <kivui/drawbot/QtSupplier.h>

#include <QApplication>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace kivmeta {

using kivcore::utility::IntrusivePtr;

namespace {

QString Localized(std::string const &key)
{
    return QString::fromStdU16String(kivcore::config::Localizer::Localize(key));
}

std::shared_ptr<kivmetadata::ViewDefinition> RawDataDefinition()
{
    auto definition = std::make_shared<kivmetadata::ViewDefinition>();
    definition->mName = "RawData";
    definition->mLabel = "$$$/kivmetadataui/view/RawData_label=Raw Data";
    return definition;
}

struct Panel {
    std::shared_ptr<kivmetadata::ViewDefinition> mDefinition;
    bool mRawData = false;
    QWidget *mPage = nullptr;
    IntrusivePtr<kivui::UI_SubView> mRoot;
    IntrusivePtr<kivmetadataui::MetadataLayoutView> mView;
};

} // namespace

QString WindowTitleForFiles(QStringList const &names)
{
    constexpr int kShown = 3;
    QString title;
    if (names.size() <= kShown + 1) {
        title = names.join(QStringLiteral(", "));
    } else {
        title = QStringLiteral("%1 and %2 more")
                    .arg(names.mid(0, kShown).join(QStringLiteral(", ")))
                    .arg(names.size() - kShown);
    }
    return title.isEmpty() ? QStringLiteral("kivmeta") : title + QStringLiteral(" - kivmeta");
}

struct MetadataWindow::Private {
    std::vector<std::shared_ptr<kivmetadata::FileMetaDataProvider>> mFiles;
    std::vector<std::shared_ptr<kivmetadataui::MetadataProviderWrapper>> mWrappers;
    std::shared_ptr<kivmetadata::MetaDataProvider> mEdited;
    QStringList mNames;
    std::unique_ptr<kivui::drawbot::QtSupplier> mSupplier = std::make_unique<kivui::drawbot::QtSupplier>();
    std::vector<Panel> mPanels;
    QTabWidget *mTabs = nullptr;
    QDialogButtonBox *mButtons = nullptr;
    QStringList mSaveErrors;
    bool mFirstPaintSeen = false;
};

MetadataWindow::MetadataWindow(std::vector<std::shared_ptr<kivmetadata::FileMetaDataProvider>> files,
                               QStringList const &displayNames, QWidget *parent)
    : QMainWindow(parent), d(std::make_unique<Private>())
{
    d->mFiles = std::move(files);
    std::vector<std::shared_ptr<kivmetadata::MetaDataProvider>> assets;
    for (auto const &file : d->mFiles) {
        auto wrapper = std::make_shared<kivmetadataui::MetadataProviderWrapper>(file);
        d->mWrappers.push_back(wrapper);
        assets.push_back(wrapper);
        d->mNames << QFileInfo(QString::fromStdU16String(file->FilePath())).fileName();
    }
    if (displayNames.size() == int(d->mFiles.size())) d->mNames = displayNames;
    if (assets.size() == 1)
        d->mEdited = assets.front();
    else if (!assets.empty())
        d->mEdited = std::make_shared<kivmetadata::MultiMetaDataProvider>(assets);

    setWindowTitle(WindowTitleForFiles(d->mNames));

    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    // Files that cannot be written say so before anything is edited.
    QStringList readOnly;
    for (std::size_t i = 0; i < d->mFiles.size(); ++i) {
        if (!d->mFiles[i]->IsWritable())
            readOnly << QStringLiteral("%1 is read-only: %2.")
                            .arg(d->mNames.value(int(i)), QString::fromStdString(d->mFiles[i]->ReadOnlyReason()));
    }
    if (!readOnly.isEmpty()) {
        auto *banner = new QLabel(readOnly.join(u'\n'), central);
        banner->setObjectName(QStringLiteral("readOnlyBanner"));
        banner->setWordWrap(true);
        banner->setFrameShape(QFrame::StyledPanel);
        banner->setMargin(6);
        banner->setAccessibleName(QStringLiteral("Read-only files"));
        layout->addWidget(banner);
    }
    d->mTabs = new QTabWidget(central);
    d->mTabs->setDocumentMode(false);
    layout->addWidget(d->mTabs, 1);
    d->mButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, central);
    layout->addWidget(d->mButtons);
    setCentralWidget(central);

    for (auto const &definition : kivmetadata::GetViewDefinitions()) {
        if (definition) d->mPanels.push_back(Panel{definition, false, nullptr, nullptr, nullptr});
    }
    d->mPanels.push_back(Panel{RawDataDefinition(), true, nullptr, nullptr, nullptr});

    for (Panel &panel : d->mPanels) {
        panel.mPage = new QWidget(d->mTabs);
        auto *pageLayout = new QVBoxLayout(panel.mPage);
        pageLayout->setContentsMargins(0, 0, 0, 0);
        d->mTabs->addTab(panel.mPage, Localized(panel.mDefinition->mLabel));
    }

    connect(d->mTabs, &QTabWidget::currentChanged, this, &MetadataWindow::OnCurrentChanged);
    connect(d->mButtons, &QDialogButtonBox::accepted, this, &MetadataWindow::OnOk);
    connect(d->mButtons, &QDialogButtonBox::rejected, this, &QWidget::close);
    resize(840, 780);
    if (!d->mPanels.empty()) {
        EnsurePanel(0);
        // The page itself may be covered by opaque children that get the
        // paint events instead, so the first paint of anything on it counts.
        qApp->installEventFilter(this);
    }
}

MetadataWindow::~MetadataWindow()
{
    if (!d->mFirstPaintSeen) qApp->removeEventFilter(this);
    // Views go before the providers they are bound to and before the supplier.
    for (Panel &panel : d->mPanels) {
        panel.mView.reset();
        panel.mRoot.reset();
    }
}

QTabWidget *MetadataWindow::Tabs() const
{
    return d->mTabs;
}
int MetadataWindow::CountPanels() const
{
    return int(d->mPanels.size());
}

QString MetadataWindow::PanelName(int index) const
{
    if (index < 0 || index >= CountPanels()) return {};
    return QString::fromStdString(d->mPanels[index].mDefinition->mName);
}

std::shared_ptr<kivmetadata::MetaDataProvider> MetadataWindow::EditedProvider() const
{
    return d->mEdited;
}
QPushButton *MetadataWindow::OkButton() const
{
    return d->mButtons->button(QDialogButtonBox::Ok);
}
QPushButton *MetadataWindow::CancelButton() const
{
    return d->mButtons->button(QDialogButtonBox::Cancel);
}
QStringList MetadataWindow::LastSaveErrors() const
{
    return d->mSaveErrors;
}

void MetadataWindow::EnsurePanel(int index)
{
    if (index < 0 || index >= CountPanels() || !d->mEdited) return;
    Panel &panel = d->mPanels[index];
    if (panel.mView) {
        // Other tabs may have changed values since this panel was built.
        panel.mView->Refresh();
        return;
    }
    panel.mRoot = IntrusivePtr<kivui::UI_SubView>(new kivui::UI_SubView());
    panel.mRoot->UI_SetDrawSupplier(d->mSupplier.get());
    panel.mRoot->UI_SetLayoutsChildren(true);
    panel.mPage->layout()->addWidget(panel.mRoot->UI_GetWidget());
    QSize size = panel.mPage->size();
    if (size.width() < 100 || size.height() < 100) size = d->mTabs->size();
    panel.mRoot->UI_SetLocalRectF(kivcore::RectF(0, 0, float(size.width()), float(size.height())));

    if (panel.mRawData) {
        panel.mView =
            kivmetadataui::CreateRawDataView(panel.mDefinition, d->mEdited, kivmetadataui::RawDataViewOptions{});
    } else {
        panel.mView = IntrusivePtr<kivmetadataui::MetadataLayoutView>(
            new kivmetadataui::MetadataLayoutView(panel.mDefinition, d->mEdited));
    }
    if (!panel.mView) return;
    panel.mView->UI_SetLocalRectF(panel.mRoot->UI_GetLocalRectF(false));
    panel.mRoot->ChildPushBack(panel.mView);
    panel.mView->UI_Show(true);
    panel.mView->Refresh();
}

void MetadataWindow::OnCurrentChanged(int index)
{
    EnsurePanel(index);
}

bool MetadataWindow::Commit()
{
    d->mSaveErrors.clear();
    QStringList notices;
    for (std::size_t i = 0; i < d->mFiles.size(); ++i) {
        kivmetadata::FileMetaDataProvider &file = *d->mFiles[i];
        QString const path = QString::fromStdU16String(file.FilePath());
        d->mWrappers[i]->CommitChanges();
        if (!file.IsModified()) continue;
        QString reason = WriteRefusalReason(file);
        std::string saveError;
        if (reason.isEmpty() && !file.Save(&saveError)) reason = QString::fromStdString(saveError);
        if (!reason.isEmpty()) d->mSaveErrors << QStringLiteral("%1: %2").arg(d->mNames.value(int(i), path), reason);
        for (std::string const &notice : file.SaveNotices())
            notices << QStringLiteral("%1: %2").arg(d->mNames.value(int(i), path), QString::fromStdString(notice));
    }
    if (!notices.isEmpty()) {
        QString const message = QStringLiteral("Another program changed these files while they were open. Its "
                                               "changes were kept, except where you edited the same property:\n\n%1")
                                    .arg(notices.join(u'\n'));
        kivui::messagebox::ShowNote(d->mSupplier.get(), "$$$/kivmeta/ChangedMeanwhile/title=Files Changed Meanwhile",
                                 message.toStdU16String());
    }
    if (d->mSaveErrors.isEmpty()) return true;
    QString message = QStringLiteral("These files could not be saved and were left as they were; your edits "
                                     "are still in the window:\n\n%1")
                          .arg(d->mSaveErrors.join(u'\n'));
    kivui::dialogs::SimpleErrorMessageBox(d->mSupplier.get(), "$$$/kivmeta/SaveError/title=Files Not Saved",
                                          message.toStdU16String(),
                                          d->mPanels.empty() ? nullptr : d->mPanels.front().mRoot.get());
    return false;
}

void MetadataWindow::OnOk()
{
    if (Commit()) close();
}

bool MetadataWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (!d->mFirstPaintSeen && event->type() == QEvent::Paint && !d->mPanels.empty() && watched->isWidgetType() &&
        (watched == d->mPanels.front().mPage ||
         d->mPanels.front().mPage->isAncestorOf(static_cast<QWidget *>(watched)))) {
        d->mFirstPaintSeen = true;
        qApp->removeEventFilter(this);
        // Queued, so that it follows the paint of the panel's own widgets.
        QTimer::singleShot(0, this, &MetadataWindow::firstPanelPainted);
    }
    return QMainWindow::eventFilter(watched, event);
}

} // namespace kivmeta
