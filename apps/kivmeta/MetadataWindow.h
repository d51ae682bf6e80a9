#pragma once

#include <QMainWindow>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class QTabWidget;
class QPushButton;

namespace kivmetadata {
class FileMetaDataProvider;
class MetaDataProvider;
} // namespace kivmetadata

namespace kivmeta {

// The editing window: one tab per standard panel plus Raw Data, over one
// provider wrapper per file (and a multi-asset provider over the wrappers
// when several files are edited together). OK commits every wrapper and
// saves every file; Cancel writes nothing.
class MetadataWindow : public QMainWindow {
    Q_OBJECT
  public:
    // `inDisplayNames` replace the file names in the title (the built-in
    // sample is shown by its own name, not by its temporary copy).
    explicit MetadataWindow(std::vector<std::shared_ptr<kivmetadata::FileMetaDataProvider>> inFiles,
                            QStringList const &inDisplayNames = {}, QWidget *inParent = nullptr);
    ~MetadataWindow() override;

    QTabWidget *Tabs() const;
    int CountPanels() const;
    // The panel's view name ("Description", ..., "RawData").
    QString PanelName(int inIndex) const;
    // Builds the panel of a tab if it was not built yet (panels are built when
    // first shown, so that opening many files shows the first one quickly).
    void EnsurePanel(int inIndex);
    // What every control is bound to: the single wrapper or the multi-asset
    // provider over the wrappers.
    std::shared_ptr<kivmetadata::MetaDataProvider> EditedProvider() const;

    // Commits the wrappers and saves the files; a file that cannot be saved is
    // named in one message box with its reason, is left as it was, and stays
    // editable in the window. True when every file was saved.
    bool Commit();
    QStringList LastSaveErrors() const;

    QPushButton *OkButton() const;
    QPushButton *CancelButton() const;

  Q_SIGNALS:
    // After the first paint of the first panel.
    void firstPanelPainted();

  protected:
    bool eventFilter(QObject *inWatched, QEvent *inEvent) override;

  private:
    void OnCurrentChanged(int inIndex);
    void OnOk();

    struct Private;
    std::unique_ptr<Private> const d;
};

// The title shown for the edited files: "a.jpg", "a.jpg, b.jpg" or
// "a.jpg, b.jpg, c.jpg and 497 more", followed by " - kivmeta".
QString WindowTitleForFiles(QStringList const &inNames);

} // namespace kivmeta
