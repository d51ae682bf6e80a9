#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <QDialog>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class QProgressDialog;
class QPushButton;
class QTabWidget;

namespace kivmetadata {
class FileMetaDataProvider;
class MetaDataProvider;
struct FileOpenOptions;
enum TemplateImportOptions : int;
} // namespace kivmetadata

namespace kivmetadataui {

// The main metadata dialog: one tab per standard panel, the "Advanced" tree
// of every schema and property, and Raw Data, over one provider wrapper per
// asset (and a multi-asset provider over the wrappers when several assets
// are edited together, so that differing values show "<Multiple Values>").
// Panels are built when their tab is first shown.
//
// OK commits every wrapper on the UI thread, then saves the files on worker
// threads behind a progress window whose Cancel stops after the files being
// saved; Cancel writes nothing. A file that cannot be saved is left as it
// was, its reason is shown and kept in the error list, and its edits stay in
// the dialog. The Templates menu saves the metadata shown as a named
// template and applies or deletes templates; the Tools menu shows the error
// list and converts older panels.
class KIVMETADATAUI_EXPORT MetadataDialog : public QDialog {
    Q_OBJECT
public:
    // Edits providers that are already open. `inDisplayNames` (one per
    // provider) replace the file names shown (a temporary copy is shown by
    // its own name).
    explicit MetadataDialog(std::vector<std::shared_ptr<kivmetadata::MetaDataProvider>> inProviders,
                            QStringList const &inDisplayNames = {}, QWidget *inParent = nullptr);
    // Reads the files on worker threads and fills in once they are read (see
    // filesOpened). A progress window appears when reading takes longer than
    // a moment, and its Cancel closes the dialog. Files that cannot be read
    // are left out and listed by OpenErrors.
    MetadataDialog(QStringList const &inFiles, kivmetadata::FileOpenOptions const &inOptions,
                   QStringList const &inDisplayNames = {}, QWidget *inParent = nullptr);
    ~MetadataDialog() override;

    // True while files are being read.
    bool IsOpening() const;
    // "name: reason" for each file that could not be read.
    QStringList OpenErrors() const;
    // The names shown for the assets, in the order given.
    QStringList DisplayNames() const;

    QTabWidget *Tabs() const;
    int CountPanels() const;
    // The panel's view name ("Description", ..., "Advanced", "RawData").
    QString PanelName(int inIndex) const;
    // Builds the panel of a tab if it was not built yet, else refreshes it
    // (another tab may have changed values).
    void EnsurePanel(int inIndex);
    // What every control is bound to: the single wrapper or the multi-asset
    // provider over the wrappers. Null while the files are being read.
    std::shared_ptr<kivmetadata::MetaDataProvider> EditedProvider() const;

    // Commits the wrappers and saves the files in the background, keeping the
    // UI responsive until the save is over. True when every edited file was
    // saved (and the save not cancelled).
    bool Commit();
    // Stops a running save after the files being saved.
    void CancelSave();
    bool IsSaving() const;
    // Of the last Commit: "name: reason" for every file that failed, the
    // names of the files written, and those not written (failed, refused or
    // not reached after Cancel).
    QStringList LastSaveErrors() const;
    QStringList LastSavedFiles() const;
    QStringList LastUnsavedFiles() const;
    bool LastSaveCancelled() const;
    // The progress window of the reading or saving under way; null when idle.
    QProgressDialog *ProgressDialog() const;
    // Shows the progress window as it looks while saving (or reading) file
    // `inDone` + 1 of `inTotal`, without any work behind it: for screenshots
    // and previews. Hidden again by the next real operation or by closing it.
    void PreviewProgress(bool inSaving, int inDone, int inTotal, QString const &inCurrentName);

    // Templates: files in the per-user template folder. Saving takes the
    // metadata shown (the first asset's when several are edited); applying
    // merges the template into every asset through the wrappers, so that it
    // reaches the files only on OK. False with a reason on failure.
    bool SaveAsTemplate(QString const &inName, QString *outError = nullptr);
    bool ApplyTemplate(QString const &inName, kivmetadata::TemplateImportOptions inOptions,
                       QString *outError = nullptr);
    static QStringList TemplateNames();

    // The error list of the metadata model, which names every file that
    // could not be saved with its reason (Tools > Show Errors...).
    void ShowErrors();
    // The converter of older custom panels (Tools > Convert Older Panels...).
    void ShowPanelConversion();

    // The reason OK would refuse to write the file, or empty. A file without
    // any write permission bit is refused even for a user whom the system
    // would let write, so that marking a file read-only protects it.
    static QString WriteRefusalReason(kivmetadata::FileMetaDataProvider const &inFile);

    QPushButton *OkButton() const;
    QPushButton *CancelButton() const;

Q_SIGNALS:
    // After the first paint of the first panel.
    void firstPanelPainted();
    // The files were read; the panels are bound (also when some files failed).
    void filesOpened();
    // No file could be read; the message names each with its reason.
    void openingFailed(QString const &inMessage);
    // Reading was cancelled; the dialog closes (rejected).
    void openingCancelled();

protected:
    bool eventFilter(QObject *inWatched, QEvent *inEvent) override;
    void closeEvent(QCloseEvent *inEvent) override;
    void reject() override;

private:
    void BuildFrame();
    void Bind();
    void OnOpenFinished();
    void OnSaveFinished();
    void OnOk();
    void StartProgress(int inTotal);
    void UpdateProgress();
    void EndProgress();
    void FillTemplateMenus();
    void OnSaveTemplateChosen();
    void OnApplyTemplateChosen(QString const &inName);
    void OnDeleteTemplateChosen(QString const &inName);
    void ReportSave();

    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui
