#include <kivmetadataui/MetadataDialog.h>

#include "AdvancedPage_p.h"
#include "BackgroundJob_p.h"
#include "ModuleResources.h"

#include <kivcore/Localizer.h>
#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadata/MetaDataReadAccess.h>
#include <kivmetadata/MultiMetaDataProvider.h>
#include <kivmetadata/Templates.h>
#include <kivmetadata/ViewDefinition.h>
#include <kivmetadata/ViewDefinitions.h>
#include <kivmetadata/XMPMeta.h>
#include <kivmetadataui/MetadataErrorDialog.h>
#include <kivmetadataui/MetadataLayoutView.h>
#include <kivmetadataui/MetadataProviderWrapper.h>
#include <kivmetadataui/MetadataTemplateImportOptionsDialog.h>
#include <kivmetadataui/PanelConversionDialog.h>
#include <kivui/MessageBoxes.h>
#include <kivui/OS_ResourceManager.h>
#include <kivui/PrefManager.h>
#include <kivui/UI_SubView.h>
#include <kivui/drawbot/QtSupplier.h>

#include <QApplication>
#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QProgressDialog>
#include <QPushButton>
#include <QStyle>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <condition_variable>
#include <mutex>

namespace kivmetadataui {

using kivcore::utility::IntrusivePtr;

namespace {

// How long the progress window waits before it appears, and how often it
// takes the figures from the workers.
constexpr int kProgressDelayMs = 300;
constexpr int kProgressPollMs = 40;
// Committing many wrappers lets the window repaint between slices this long.
constexpr qint64 kCommitSliceMs = 5;
// Lists of file names in messages stop after this many.
constexpr int kNamesListed = 20;

QString Localized(std::string const &key)
{
    return QString::fromStdU16String(kivcore::config::Localizer::Localize(key));
}

QString Localized(std::string const &key, std::initializer_list<QString> args)
{
    QString text = Localized(key);
    int i = 0;
    for (QString const &arg : args)
        text.replace(QStringLiteral("@%1").arg(i++), arg);
    return text;
}

std::shared_ptr<kivmetadata::ViewDefinition> AdvancedDefinition()
{
    auto definition = std::make_shared<kivmetadata::ViewDefinition>();
    definition->mName = "Advanced";
    definition->mLabel = "$$$/kivmetadataui/view/Advanced_label=Advanced";
    return definition;
}

std::shared_ptr<kivmetadata::ViewDefinition> RawDataDefinition()
{
    auto definition = std::make_shared<kivmetadata::ViewDefinition>();
    definition->mName = "RawData";
    definition->mLabel = "$$$/kivmetadataui/view/RawData_label=Raw Data";
    return definition;
}

QString NameList(QStringList const &names)
{
    if (names.size() <= kNamesListed + 1) return names.join(u'\n');
    return names.mid(0, kNamesListed).join(u'\n') + u'\n' +
           Localized("$$$/kivmetadataui/dialog/metadata/andMore=and @0 more",
                     {QString::number(names.size() - kNamesListed)});
}

// The title for the edited files: "a.jpg", "a.jpg, b.jpg" or "a.jpg, b.jpg,
// c.jpg and 497 more".
QString TitleForNames(QStringList const &names)
{
    constexpr int kShown = 3;
    if (names.size() <= kShown + 1) return names.join(QStringLiteral(", "));
    return Localized("$$$/kivmetadataui/dialog/metadata/titleMany=@0 and @1 more",
                     {names.mid(0, kShown).join(QStringLiteral(", ")), QString::number(names.size() - kShown)});
}

enum class PanelKind { kLayout, kAdvanced, kRawData };

struct Panel {
    PanelKind mKind = PanelKind::kLayout;
    std::shared_ptr<kivmetadata::ViewDefinition> mDefinition;
    QWidget *mPage = nullptr;
    IntrusivePtr<kivui::UI_SubView> mRoot;
    IntrusivePtr<MetadataLayoutView> mView;
    AdvancedPage *mAdvanced = nullptr;
};

// One edited asset. While files are read, a worker fills in exactly one
// asset's provider, wrapper and error.
struct Asset {
    QString mName;
    QString mPath;
    std::shared_ptr<kivmetadata::MetaDataProvider> mProvider;
    std::shared_ptr<kivmetadata::FileMetaDataProvider> mFile; // null for other providers
    std::shared_ptr<MetadataProviderWrapper> mWrapper;
    QString mOpenError;
};

// What saving one file came to; written by the worker that saved it.
struct SaveOutcome {
    enum class State { kNotReached, kUnchanged, kSaved, kFailed };
    State mState = State::kNotReached;
    QString mReason;
    std::vector<std::string> mNotices;
};

} // namespace

struct MetadataDialog::Private {
    std::vector<Asset> mAssets;
    std::shared_ptr<kivmetadata::MetaDataProvider> mEdited;
    QStringList mOpenErrors;
    std::unique_ptr<kivui::drawbot::QtSupplier> mSupplier = std::make_unique<kivui::drawbot::QtSupplier>();
    std::vector<Panel> mPanels;
    QVBoxLayout *mLayout = nullptr;
    QTabWidget *mTabs = nullptr;
    QDialogButtonBox *mButtons = nullptr;
    QMenu *mApplyMenu = nullptr;
    QMenu *mDeleteMenu = nullptr;
    QWidget *mFirstPage = nullptr;
    bool mWatchingFirstPaint = false;
    bool mFirstPaintSeen = false;

    // Reading and saving.
    std::unique_ptr<BackgroundJob> mJob;
    bool mJobSaves = false;
    QPointer<QProgressDialog> mProgress;
    QTimer *mPoll = nullptr;
    QEventLoop *mSaveLoop = nullptr;
    std::vector<std::size_t> mSaveItems; // asset indices being saved
    std::vector<SaveOutcome> mOutcomes;
    // How many wrappers (in asset order) are committed; workers wait on it.
    std::mutex mCommitLock;
    std::condition_variable mCommitDone;
    std::size_t mCommitted = 0;
    bool mAbandoned = false;

    QStringList mSaveErrors;
    QStringList mSaved;
    QStringList mUnsaved;
    bool mSaveCancelled = false;
};

MetadataDialog::MetadataDialog(std::vector<std::shared_ptr<kivmetadata::MetaDataProvider>> providers,
                               QStringList const &displayNames, QWidget *parent)
    : QDialog(parent), d(std::make_unique<Private>())
{
    for (std::size_t i = 0; i < providers.size(); ++i) {
        if (!providers[i]) continue;
        Asset asset;
        asset.mProvider = providers[i];
        asset.mFile = std::dynamic_pointer_cast<kivmetadata::FileMetaDataProvider>(providers[i]);
        if (asset.mFile) {
            asset.mPath = QString::fromStdU16String(asset.mFile->FilePath());
            asset.mName = QFileInfo(asset.mPath).fileName();
        } else {
            asset.mName = Localized("$$$/kivmetadataui/dialog/metadata/asset=Asset @0", {QString::number(i + 1)});
        }
        if (displayNames.size() == qsizetype(providers.size())) asset.mName = displayNames[qsizetype(i)];
        asset.mWrapper = std::make_shared<MetadataProviderWrapper>(asset.mProvider);
        d->mAssets.push_back(std::move(asset));
    }
    BuildFrame();
    Bind();
}

MetadataDialog::MetadataDialog(QStringList const &files, kivmetadata::FileOpenOptions const &options,
                               QStringList const &displayNames, QWidget *parent)
    : QDialog(parent), d(std::make_unique<Private>())
{
    for (qsizetype i = 0; i < files.size(); ++i) {
        Asset asset;
        asset.mPath = files[i];
        asset.mName = displayNames.size() == files.size() ? displayNames[i] : QFileInfo(files[i]).fileName();
        d->mAssets.push_back(std::move(asset));
    }
    BuildFrame();
    d->mJobSaves = false;
    d->mJob = std::make_unique<BackgroundJob>(
        d->mAssets.size(),
        [this, options](std::size_t i) {
            Asset &asset = d->mAssets[i];
            std::string error;
            auto file = kivmetadata::FileMetaDataProvider::Open(asset.mPath.toStdU16String(), &error, options);
            if (!file) {
                asset.mOpenError = QString::fromStdString(error);
                return;
            }
            // The working copy is cloned here too: it is the larger part of
            // reading a file, and the provider is this worker's alone.
            asset.mWrapper = std::make_shared<MetadataProviderWrapper>(file);
            asset.mFile = file;
            asset.mProvider = std::move(file);
        },
        [this](std::size_t i) { return d->mAssets[i].mName; });
    StartProgress(int(d->mAssets.size()));
    d->mJob->Start(this, [this] { OnOpenFinished(); });
}

MetadataDialog::~MetadataDialog()
{
    {
        // Workers waiting for a commit that will not come save nothing.
        std::lock_guard guard(d->mCommitLock);
        d->mAbandoned = true;
    }
    d->mCommitDone.notify_all();
    if (d->mJob) {
        d->mJob->Cancel();
        d->mJob->Wait();
    }
    if (d->mWatchingFirstPaint) qApp->removeEventFilter(this);
    // Views go before the providers they are bound to and before the supplier.
    for (Panel &panel : d->mPanels) {
        panel.mView.reset();
        panel.mRoot.reset();
    }
}

void MetadataDialog::BuildFrame()
{
    QStringList names = DisplayNames();
    setWindowTitle(TitleForNames(names));
    setSizeGripEnabled(true);

    d->mLayout = new QVBoxLayout(this);
    auto *menus = new QMenuBar(this);
    d->mLayout->setMenuBar(menus);

    QMenu *templates = menus->addMenu(Localized("$$$/kivmetadataui/dialog/metadata/menu/templates=&Templates"));
    QAction *save = templates->addAction(
        Localized("$$$/kivmetadataui/dialog/metadata/menu/saveTemplate=&Save Metadata as Template..."));
    connect(save, &QAction::triggered, this, &MetadataDialog::OnSaveTemplateChosen);
    d->mApplyMenu =
        templates->addMenu(Localized("$$$/kivmetadataui/dialog/metadata/menu/applyTemplate=&Apply Template"));
    d->mDeleteMenu =
        templates->addMenu(Localized("$$$/kivmetadataui/dialog/metadata/menu/deleteTemplate=&Delete Template"));
    // The lists are read when shown: templates may come and go meanwhile.
    connect(templates, &QMenu::aboutToShow, this, &MetadataDialog::FillTemplateMenus);

    QMenu *tools = menus->addMenu(Localized("$$$/kivmetadataui/dialog/metadata/menu/tools=T&ools"));
    connect(tools->addAction(Localized("$$$/kivmetadataui/dialog/metadata/menu/showErrors=Show &Errors...")),
            &QAction::triggered, this, &MetadataDialog::ShowErrors);
    connect(
        tools->addAction(Localized("$$$/kivmetadataui/dialog/metadata/menu/convertPanels=&Convert Older Panels...")),
        &QAction::triggered, this, &MetadataDialog::ShowPanelConversion);

    d->mTabs = new QTabWidget(this);
    d->mLayout->addWidget(d->mTabs, 1);
    d->mButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    d->mLayout->addWidget(d->mButtons);

    for (auto const &definition : kivmetadata::GetViewDefinitions()) {
        if (definition) d->mPanels.push_back(Panel{PanelKind::kLayout, definition, nullptr, nullptr, nullptr});
    }
    d->mPanels.push_back(Panel{PanelKind::kAdvanced, AdvancedDefinition(), nullptr, nullptr, nullptr});
    d->mPanels.push_back(Panel{PanelKind::kRawData, RawDataDefinition(), nullptr, nullptr, nullptr});
    for (Panel &panel : d->mPanels) {
        panel.mPage = new QWidget(d->mTabs);
        auto *pageLayout = new QVBoxLayout(panel.mPage);
        pageLayout->setContentsMargins(0, 0, 0, 0);
        d->mTabs->addTab(panel.mPage, Localized(panel.mDefinition->mLabel));
    }

    connect(d->mTabs, &QTabWidget::currentChanged, this, &MetadataDialog::EnsurePanel);
    connect(d->mButtons, &QDialogButtonBox::accepted, this, &MetadataDialog::OnOk);
    connect(d->mButtons, &QDialogButtonBox::rejected, this, &MetadataDialog::reject);
    d->mButtons->button(QDialogButtonBox::Ok)->setEnabled(false);
    // Wide enough that every panel's tab shows without scrolling the tab bar.
    QMargins const margins = d->mLayout->contentsMargins();
    int const tabsWidth = d->mTabs->tabBar()->sizeHint().width() + margins.left() + margins.right() +
                          2 * d->mTabs->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, d->mTabs) + 8;
    resize(std::max(840, tabsWidth), 780);
}

void MetadataDialog::Bind()
{
    std::vector<std::shared_ptr<kivmetadata::MetaDataProvider>> wrappers;
    for (Asset const &asset : d->mAssets)
        wrappers.push_back(asset.mWrapper);
    if (wrappers.size() == 1)
        d->mEdited = wrappers.front();
    else if (!wrappers.empty())
        d->mEdited = std::make_shared<kivmetadata::MultiMetaDataProvider>(wrappers);

    // Files that cannot be written say so before anything is edited; files
    // that could not be read say why they are missing.
    QStringList notes = d->mOpenErrors;
    for (Asset const &asset : d->mAssets) {
        if (asset.mFile && !asset.mFile->IsWritable())
            notes << Localized("$$$/kivmetadataui/dialog/metadata/readOnly=@0 is read-only: @1.",
                               {asset.mName, QString::fromStdString(asset.mFile->ReadOnlyReason())});
    }
    if (!notes.isEmpty()) {
        auto *banner = new QLabel(NameList(notes), this);
        banner->setObjectName(QStringLiteral("readOnlyBanner"));
        banner->setWordWrap(true);
        banner->setFrameShape(QFrame::StyledPanel);
        banner->setMargin(6);
        banner->setAccessibleName(Localized("$$$/kivmetadataui/dialog/metadata/readOnlyName=Read-only files"));
        d->mLayout->insertWidget(0, banner);
    }
    d->mButtons->button(QDialogButtonBox::Ok)->setEnabled(bool(d->mEdited));
    if (!d->mEdited) return;

    int const current = std::max(0, d->mTabs->currentIndex());
    EnsurePanel(current);
    if (current < CountPanels() && !d->mFirstPaintSeen) {
        d->mFirstPage = d->mPanels[std::size_t(current)].mPage;
        // The page itself may be covered by opaque children that get the
        // paint events instead, so the first paint of anything on it counts.
        qApp->installEventFilter(this);
        d->mWatchingFirstPaint = true;
    }
}

bool MetadataDialog::IsOpening() const
{
    return d->mJob && !d->mJobSaves;
}

QStringList MetadataDialog::OpenErrors() const
{
    return d->mOpenErrors;
}

QStringList MetadataDialog::DisplayNames() const
{
    QStringList names;
    for (Asset const &asset : d->mAssets)
        names << asset.mName;
    return names;
}

QTabWidget *MetadataDialog::Tabs() const
{
    return d->mTabs;
}

int MetadataDialog::CountPanels() const
{
    return int(d->mPanels.size());
}

QString MetadataDialog::PanelName(int index) const
{
    if (index < 0 || index >= CountPanels()) return {};
    return QString::fromStdString(d->mPanels[std::size_t(index)].mDefinition->mName);
}

std::shared_ptr<kivmetadata::MetaDataProvider> MetadataDialog::EditedProvider() const
{
    return d->mEdited;
}

QPushButton *MetadataDialog::OkButton() const
{
    return d->mButtons->button(QDialogButtonBox::Ok);
}

QPushButton *MetadataDialog::CancelButton() const
{
    return d->mButtons->button(QDialogButtonBox::Cancel);
}

void MetadataDialog::EnsurePanel(int index)
{
    if (index < 0 || index >= CountPanels() || !d->mEdited) return;
    Panel &panel = d->mPanels[std::size_t(index)];
    if (panel.mKind == PanelKind::kAdvanced) {
        if (panel.mAdvanced) {
            panel.mAdvanced->RefreshValues();
        } else {
            panel.mAdvanced = new AdvancedPage(d->mEdited, panel.mPage);
            panel.mPage->layout()->addWidget(panel.mAdvanced);
        }
        return;
    }
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

    switch (panel.mKind) {
    case PanelKind::kRawData:
        panel.mView = CreateRawDataView(panel.mDefinition, d->mEdited, RawDataViewOptions{});
        break;
    case PanelKind::kLayout:
        panel.mView = IntrusivePtr<MetadataLayoutView>(new MetadataLayoutView(panel.mDefinition, d->mEdited));
        break;
    case PanelKind::kAdvanced:
        break;
    }
    if (!panel.mView) return;
    panel.mView->UI_SetLocalRectF(panel.mRoot->UI_GetLocalRectF(false));
    panel.mRoot->ChildPushBack(panel.mView);
    panel.mView->UI_Show(true);
    panel.mView->Refresh();
}

// Reading ------------------------------------------------------------------

void MetadataDialog::OnOpenFinished()
{
    if (!d->mJob || d->mJobSaves) return;
    bool const cancelled = d->mJob->IsCancelled();
    d->mJob.reset();
    EndProgress();
    if (cancelled) {
        d->mOpenErrors << Localized("$$$/kivmetadataui/dialog/metadata/openCancelled=Reading the files was cancelled.");
        d->mAssets.clear();
        Q_EMIT openingCancelled();
        QDialog::reject();
        return;
    }
    std::vector<Asset> readable;
    for (Asset &asset : d->mAssets) {
        if (asset.mWrapper)
            readable.push_back(std::move(asset));
        else
            d->mOpenErrors << QStringLiteral("%1: %2").arg(asset.mName, asset.mOpenError);
    }
    d->mAssets = std::move(readable);
    if (d->mAssets.empty()) {
        Q_EMIT openingFailed(d->mOpenErrors.join(u'\n'));
        return;
    }
    Bind();
    Q_EMIT filesOpened();
}

// Progress -----------------------------------------------------------------

void MetadataDialog::StartProgress(int total)
{
    EndProgress();
    auto *progress = new QProgressDialog(this);
    progress->setObjectName(QStringLiteral("metadataProgress"));
    progress->setWindowTitle(windowTitle());
    progress->setWindowModality(Qt::WindowModal);
    progress->setAutoClose(false);
    progress->setAutoReset(false);
    progress->setRange(0, std::max(1, total));
    progress->setValue(0);
    progress->setMinimumWidth(420);
    // Shown only when the work takes longer than a moment.
    progress->setMinimumDuration(kProgressDelayMs);
    connect(progress, &QProgressDialog::canceled, this, [this] {
        if (!d->mJob) return;
        d->mJob->Cancel();
        if (d->mProgress) {
            d->mProgress->setLabelText(
                d->mJobSaves
                    ? Localized(
                          "$$$/kivmetadataui/dialog/metadata/progress/stopping=Stopping after the files being saved...")
                    : Localized("$$$/kivmetadataui/dialog/metadata/progress/stoppingRead=Stopping..."));
        }
    });
    d->mProgress = progress;
    if (!d->mPoll) {
        d->mPoll = new QTimer(this);
        d->mPoll->setInterval(kProgressPollMs);
        connect(d->mPoll, &QTimer::timeout, this, &MetadataDialog::UpdateProgress);
    }
    d->mPoll->start();
    UpdateProgress();
}

namespace {

QString ProgressText(bool saving, int done, int total, QString const &current)
{
    QString const number = QString::number(std::min(done + 1, total));
    return saving ? Localized("$$$/kivmetadataui/dialog/metadata/progress/saving=Saving file @0 of @1:\n@2",
                              {number, QString::number(total), current})
                  : Localized("$$$/kivmetadataui/dialog/metadata/progress/reading=Reading file @0 of @1:\n@2",
                              {number, QString::number(total), current});
}

} // namespace

void MetadataDialog::UpdateProgress()
{
    if (!d->mJob || !d->mProgress || d->mJob->IsCancelled()) return;
    int const total = int(d->mJob->Count());
    int const done = int(d->mJob->Done());
    d->mProgress->setLabelText(ProgressText(d->mJobSaves, done, total, d->mJob->Current()));
    d->mProgress->setValue(std::min(done, total));
}

void MetadataDialog::EndProgress()
{
    if (d->mPoll) d->mPoll->stop();
    if (d->mProgress) {
        d->mProgress->hide();
        d->mProgress->deleteLater();
        d->mProgress = nullptr;
    }
}

QProgressDialog *MetadataDialog::ProgressDialog() const
{
    return d->mProgress;
}

void MetadataDialog::PreviewProgress(bool saving, int done, int total, QString const &current)
{
    if (d->mJob) return;
    StartProgress(total);
    d->mPoll->stop();
    d->mProgress->setLabelText(ProgressText(saving, done, total, current));
    d->mProgress->setValue(std::clamp(done, 0, total));
    d->mProgress->show();
    // Closed or cancelled, the preview is simply dropped.
    connect(d->mProgress, &QProgressDialog::canceled, this, [this] {
        if (!d->mJob) EndProgress();
    });
}

// Saving -------------------------------------------------------------------

QString MetadataDialog::WriteRefusalReason(kivmetadata::FileMetaDataProvider const &file)
{
    if (!file.IsWritable()) return QString::fromStdString(file.ReadOnlyReason());
    std::u16string const &target = file.SidecarPath().empty() ? file.FilePath() : file.SidecarPath();
    QFileInfo info(QString::fromStdU16String(target));
    if (info.exists()) {
        constexpr auto anyWrite = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
        if (!info.isWritable() || !(info.permissions() & anyWrite))
            return Localized("$$$/kivmetadataui/dialog/metadata/fileReadOnly=the file is read-only");
    } else if (!QFileInfo(info.absolutePath()).isWritable()) {
        return Localized("$$$/kivmetadataui/dialog/metadata/folderReadOnly=the folder cannot be written");
    }
    return {};
}

bool MetadataDialog::IsSaving() const
{
    return d->mJob && d->mJobSaves;
}

void MetadataDialog::CancelSave()
{
    if (IsSaving()) d->mJob->Cancel();
}

QStringList MetadataDialog::LastSaveErrors() const
{
    return d->mSaveErrors;
}

QStringList MetadataDialog::LastSavedFiles() const
{
    return d->mSaved;
}

QStringList MetadataDialog::LastUnsavedFiles() const
{
    return d->mUnsaved;
}

bool MetadataDialog::LastSaveCancelled() const
{
    return d->mSaveCancelled;
}

bool MetadataDialog::Commit()
{
    if (d->mJob || !d->mEdited) return false;
    d->mSaveErrors.clear();
    d->mSaved.clear();
    d->mUnsaved.clear();
    d->mSaveCancelled = false;

    d->mSaveItems.clear();
    for (std::size_t i = 0; i < d->mAssets.size(); ++i) {
        if (d->mAssets[i].mFile) d->mSaveItems.push_back(i);
    }
    d->mOutcomes.assign(d->mSaveItems.size(), SaveOutcome{});
    {
        std::lock_guard guard(d->mCommitLock);
        d->mCommitted = 0;
        d->mAbandoned = false;
    }

    // The workers save while the UI thread still commits: a worker waits for
    // the commit of its file's wrapper, and then has the provider to itself
    // (the model allows a provider on any one thread at a time; the panels
    // read only the wrappers meanwhile).
    d->mJobSaves = true;
    d->mJob = std::make_unique<BackgroundJob>(
        d->mSaveItems.size(),
        [this](std::size_t item) {
            std::size_t const index = d->mSaveItems[item];
            {
                std::unique_lock lock(d->mCommitLock);
                d->mCommitDone.wait(lock, [&] { return d->mCommitted > index || d->mAbandoned; });
                if (d->mAbandoned) return;
            }
            Asset const &asset = d->mAssets[index];
            SaveOutcome &outcome = d->mOutcomes[item];
            kivmetadata::FileMetaDataProvider &file = *asset.mFile;
            if (!file.IsModified()) {
                outcome.mState = SaveOutcome::State::kUnchanged;
                return;
            }
            QString reason = WriteRefusalReason(file);
            if (!reason.isEmpty()) {
                // The model did not see this refusal: the error list must name it.
                kivmetadata::AddErrorInfo(
                    Localized("$$$/kivmetadataui/dialog/metadata/notSaved=The metadata was not saved: @0.", {reason})
                        .toStdString(),
                    asset.mPath.toStdString());
            } else {
                std::string error;
                if (file.Save(&error)) {
                    outcome.mNotices = file.SaveNotices();
                    outcome.mState = SaveOutcome::State::kSaved;
                    return;
                }
                reason = QString::fromStdString(error);
            }
            outcome.mReason = reason;
            outcome.mState = SaveOutcome::State::kFailed;
        },
        [this](std::size_t item) { return d->mAssets[d->mSaveItems[item]].mName; });
    StartProgress(int(d->mSaveItems.size()));
    QPointer<MetadataDialog> self(this);
    d->mJob->Start(this, [this] { OnSaveFinished(); });

    // The wrappers are committed here, on the UI thread that edits them; the
    // window still repaints between slices.
    QElapsedTimer slice;
    slice.start();
    for (std::size_t i = 0; i < d->mAssets.size(); ++i) {
        d->mAssets[i].mWrapper->CommitChanges();
        {
            std::lock_guard guard(d->mCommitLock);
            d->mCommitted = i + 1;
        }
        d->mCommitDone.notify_all();
        if (slice.elapsed() >= kCommitSliceMs) {
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
            if (!self) return false;
            slice.restart();
        }
    }

    // The workers may have finished during the last slice already.
    if (d->mJob) {
        QEventLoop loop;
        d->mSaveLoop = &loop;
        loop.exec();
        if (!self) return false;
        d->mSaveLoop = nullptr;
    }

    ReportSave();
    return d->mSaveErrors.isEmpty() && d->mUnsaved.isEmpty();
}

void MetadataDialog::OnSaveFinished()
{
    if (!d->mJob || !d->mJobSaves) return;
    d->mSaveCancelled = d->mJob->IsCancelled();
    d->mJob.reset();
    d->mJobSaves = false;
    EndProgress();
    if (d->mSaveLoop) d->mSaveLoop->quit();
}

void MetadataDialog::ReportSave()
{
    QStringList notices;
    for (std::size_t item = 0; item < d->mSaveItems.size(); ++item) {
        Asset const &asset = d->mAssets[d->mSaveItems[item]];
        SaveOutcome const &outcome = d->mOutcomes[item];
        switch (outcome.mState) {
        case SaveOutcome::State::kSaved:
            d->mSaved << asset.mName;
            break;
        case SaveOutcome::State::kFailed:
            d->mUnsaved << asset.mName;
            d->mSaveErrors << QStringLiteral("%1: %2").arg(asset.mName, outcome.mReason);
            break;
        case SaveOutcome::State::kNotReached:
            // All wrappers are committed by now: only files with edits count.
            if (asset.mFile->IsModified()) d->mUnsaved << asset.mName;
            break;
        case SaveOutcome::State::kUnchanged:
            break;
        }
        for (std::string const &notice : outcome.mNotices)
            notices << QStringLiteral("%1: %2").arg(asset.mName, QString::fromStdString(notice));
    }
    kivui::UI_Node *parent = nullptr;
    for (Panel const &panel : d->mPanels)
        if (panel.mRoot && !parent) parent = panel.mRoot.get();

    if (!notices.isEmpty()) {
        QString const message = Localized("$$$/kivmetadataui/dialog/metadata/changedMeanwhile=Another program changed "
                                          "these files while they were open. Its changes were kept, except where you "
                                          "edited the same property:\n\n@0",
                                          {notices.join(u'\n')});
        kivui::messagebox::ShowNote(d->mSupplier.get(),
                                    "$$$/kivmetadataui/dialog/metadata/changedMeanwhile/title=Files Changed Meanwhile",
                                    message.toStdU16String(), parent);
    }
    if (d->mSaveCancelled) {
        QStringList notReached;
        for (std::size_t item = 0; item < d->mSaveItems.size(); ++item)
            if (d->mOutcomes[item].mState == SaveOutcome::State::kNotReached &&
                d->mAssets[d->mSaveItems[item]].mFile->IsModified())
                notReached << d->mAssets[d->mSaveItems[item]].mName;
        QString const none = Localized("$$$/kivmetadataui/dialog/metadata/noFiles=(none)");
        QString const message = Localized(
            "$$$/kivmetadataui/dialog/metadata/saveCancelled=Saving was cancelled. These files were saved:\n\n@0\n\n"
            "These files were not saved and keep your edits in the window:\n\n@1",
            {d->mSaved.isEmpty() ? none : NameList(d->mSaved), NameList(notReached)});
        kivui::messagebox::ShowNote(d->mSupplier.get(),
                                    "$$$/kivmetadataui/dialog/metadata/saveCancelled/title=Saving Cancelled",
                                    message.toStdU16String(), parent);
    }
    if (d->mSaveErrors.isEmpty()) return;
    QString const message = Localized("$$$/kivmetadataui/dialog/metadata/saveError=These files could not be saved and "
                                      "were left as they were; your edits are still in the window:\n\n@0",
                                      {NameList(d->mSaveErrors)});
    kivui::dialogs::SimpleErrorMessageBox(d->mSupplier.get(),
                                          "$$$/kivmetadataui/dialog/metadata/saveError/title=Files Not Saved",
                                          message.toStdU16String(), parent);
}

void MetadataDialog::OnOk()
{
    if (Commit()) accept();
}

void MetadataDialog::reject()
{
    // A save under way is stopped from its progress window, never by closing
    // the dialog under it.
    if (IsSaving()) return;
    if (IsOpening()) {
        d->mJob->Cancel();
        return; // closes once the workers have stopped
    }
    QDialog::reject();
}

void MetadataDialog::closeEvent(QCloseEvent *event)
{
    if (IsSaving() || IsOpening()) {
        event->ignore();
        reject();
        return;
    }
    QDialog::closeEvent(event);
}

// Templates ----------------------------------------------------------------

QStringList MetadataDialog::TemplateNames()
{
    QStringList names;
    for (std::u16string const &name : kivmetadata::GetTemplateNames())
        names << QString::fromStdU16String(name);
    return names;
}

bool MetadataDialog::SaveAsTemplate(QString const &name, QString *error)
{
    QString const trimmed = name.trimmed();
    if (trimmed.isEmpty() || !d->mEdited) {
        if (error)
            *error =
                trimmed.isEmpty()
                    ? Localized("$$$/kivmetadataui/dialog/metadata/template/noName=A template needs a name.")
                    : Localized("$$$/kivmetadataui/dialog/metadata/template/noMetadata=There is no metadata to save.");
        return false;
    }
    kivmetadata::MetaDataReadAccess access(d->mEdited);
    kivmetadata::XMPMeta const *meta = access.GetMeta();
    std::string why;
    if (!meta || !kivmetadata::SaveTemplate(trimmed.toStdU16String(), *meta, &why)) {
        if (error)
            *error =
                why.empty()
                    ? Localized("$$$/kivmetadataui/dialog/metadata/template/noMetadata=There is no metadata to save.")
                    : QString::fromStdString(why);
        return false;
    }
    return true;
}

bool MetadataDialog::ApplyTemplate(QString const &name, kivmetadata::TemplateImportOptions options, QString *error)
{
    if (!d->mEdited) return false;
    std::string why;
    std::unique_ptr<kivmetadata::XMPMeta> templ = kivmetadata::LoadTemplate(name.toStdU16String(), &why);
    if (!templ || !kivmetadata::ApplyTemplate(d->mEdited, *templ, options)) {
        if (error)
            *error = why.empty()
                         ? Localized("$$$/kivmetadataui/dialog/metadata/template/notApplied=The template \"@0\" "
                                     "could not be applied.",
                                     {name})
                         : QString::fromStdString(why);
        return false;
    }
    EnsurePanel(d->mTabs->currentIndex());
    return true;
}

void MetadataDialog::FillTemplateMenus()
{
    d->mApplyMenu->clear();
    d->mDeleteMenu->clear();
    QStringList const names = TemplateNames();
    for (QString const &name : names) {
        connect(d->mApplyMenu->addAction(name), &QAction::triggered, this,
                [this, name] { OnApplyTemplateChosen(name); });
        connect(d->mDeleteMenu->addAction(name), &QAction::triggered, this,
                [this, name] { OnDeleteTemplateChosen(name); });
    }
    d->mApplyMenu->setEnabled(!names.isEmpty() && d->mEdited);
    d->mDeleteMenu->setEnabled(!names.isEmpty());
}

void MetadataDialog::OnSaveTemplateChosen()
{
    std::u16string name;
    if (!kivui::dialogs::SimpleInputBox(d->mSupplier.get(),
                                        "$$$/kivmetadataui/dialog/metadata/template/save/title=Save Template",
                                        "$$$/kivmetadataui/dialog/metadata/template/save/label=Template name:", name))
        return;
    QString const chosen = QString::fromStdU16String(name).trimmed();
    if (TemplateNames().contains(chosen) &&
        !kivui::dialogs::SimpleConfirmationBox(
            d->mSupplier.get(), "$$$/kivmetadataui/dialog/metadata/template/replace/title=Replace Template",
            Localized("$$$/kivmetadataui/dialog/metadata/template/replace=A template named \"@0\" exists already. "
                      "Replace it?",
                      {chosen})
                .toStdU16String()))
        return;
    QString error;
    if (!SaveAsTemplate(chosen, &error))
        kivui::dialogs::SimpleErrorMessageBox(
            d->mSupplier.get(), "$$$/kivmetadataui/dialog/metadata/template/error/title=Template Not Saved",
            error.toStdU16String());
}

void MetadataDialog::OnApplyTemplateChosen(QString const &name)
{
    kivmetadata::TemplateImportOptions options{};
    {
        // The process-wide store, not owned: the dialog remembers the choice there.
        std::shared_ptr<kivui::utility::PrefManager> settings(std::shared_ptr<void>(),
                                                              kivui::utility::PrefManager::GetPrefManager());
        IntrusivePtr<MetadataTemplateImportOptionsDialog> ask(
            new MetadataTemplateImportOptionsDialog(d->mSupplier.get(), module::GetResourceManager(), settings));
        if (!ask->RunModal()) return;
        options = ask->GetOptions();
    }
    QString error;
    if (!ApplyTemplate(name, options, &error))
        kivui::dialogs::SimpleErrorMessageBox(
            d->mSupplier.get(), "$$$/kivmetadataui/dialog/metadata/template/applyError/title=Template Not Applied",
            error.toStdU16String());
}

void MetadataDialog::OnDeleteTemplateChosen(QString const &name)
{
    if (!kivui::dialogs::SimpleConfirmationBox(
            d->mSupplier.get(), "$$$/kivmetadataui/dialog/metadata/template/delete/title=Delete Template",
            Localized("$$$/kivmetadataui/dialog/metadata/template/delete=Delete the template \"@0\"?", {name})
                .toStdU16String()))
        return;
    if (!kivmetadata::DeleteTemplate(name.toStdU16String()))
        kivui::dialogs::SimpleErrorMessageBox(
            d->mSupplier.get(), "$$$/kivmetadataui/dialog/metadata/template/deleteError/title=Template Not Deleted",
            Localized(
                "$$$/kivmetadataui/dialog/metadata/template/deleteError=The template \"@0\" could not be deleted.",
                {name})
                .toStdU16String());
}

// Tools --------------------------------------------------------------------

void MetadataDialog::ShowErrors()
{
    // The model's list holds the files that could not be saved too, each
    // with its reason.
    IntrusivePtr<MetadataErrorDialog> errors(new MetadataErrorDialog(d->mSupplier.get(), nullptr, true));
    errors->RunModal();
}

void MetadataDialog::ShowPanelConversion()
{
    IntrusivePtr<sharedui::PanelConversionDialog> conversion(
        new sharedui::PanelConversionDialog(d->mSupplier.get(), nullptr));
    conversion->RunModal();
}

// First paint --------------------------------------------------------------

bool MetadataDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (d->mWatchingFirstPaint && event->type() == QEvent::Paint && d->mFirstPage && watched->isWidgetType() &&
        (watched == d->mFirstPage || d->mFirstPage->isAncestorOf(static_cast<QWidget *>(watched)))) {
        d->mWatchingFirstPaint = false;
        d->mFirstPaintSeen = true;
        qApp->removeEventFilter(this);
        // Queued, so that it follows the paint of the panel's own widgets.
        QTimer::singleShot(0, this, &MetadataDialog::firstPanelPainted);
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace kivmetadataui
