#include "Screenshots.h"

#include "MetadataWindow.h"

#include <kivui/SkinManager.h>

#include <QApplication>
#include <QDir>
#include <QPixmap>
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

bool WriteScreenshots(std::function<std::unique_ptr<MetadataWindow>()> const &makeWindow, QString const &dir,
                      QStringList &written, QString &error)
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

        std::unique_ptr<MetadataWindow> window = makeWindow();
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
        window->hide();
        window.reset();
        if (!ok) break;
    }
    if (SkinManager::GetSkinVersion() != SkinVersion::kV7) SkinManager::SetSkinVersion(SkinVersion::kV7);
    return ok;
}

} // namespace kivmeta
