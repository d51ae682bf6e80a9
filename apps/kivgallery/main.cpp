// kivgallery [--check] <folder>
// Writes <folder>/<look>/<page>.png for the looks V5 and V7. With --check the
// exit status says whether every page rendered (for CTest).
#include "Gallery.h"

#include <kivui/OS_ResourceManager.h>
#include <kivui/SkinManager.h>
#include <kivui/drawbot/QtSupplier.h>

#include <QApplication>
#include <QDir>
#include <QTextStream>

#include <cstdio>

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QStringList args = QApplication::arguments().mid(1);
    bool const check = args.removeAll(QStringLiteral("--check")) > 0;
    QTextStream err(stderr);
    if (args.size() != 1) {
        err << "usage: kivgallery [--check] <output folder>\n";
        return 2;
    }
    QString const folder = args.first();
    if (!QDir().mkpath(folder)) {
        err << "cannot create " << folder << "\n";
        return 2;
    }

    using kivui::skins::core::SkinManager;
    using kivui::skins::core::SkinVersion;
    kivui::utility::OS_ResourceManager resources(
        kivui::utility::OS_ResourceManager::ModuleFromAddress(reinterpret_cast<void const *>(&main)));
    kivui::drawbot::QtSupplier supplier;
    kivgallery::Gallery gallery(folder, &resources, &supplier);

    SkinManager::Start(SkinVersion::kV5);
    gallery.RenderAll(QStringLiteral("V5"));
    SkinManager::SetSkinVersion(SkinVersion::kV7);
    gallery.RenderAll(QStringLiteral("V7"));

    QTextStream out(stdout);
    out << "wrote " << gallery.Written().size() << " pictures to " << QDir(folder).absolutePath() << "\n";
    for (QString const &problem : gallery.Problems())
        err << "problem: " << problem << "\n";
    if (check && (!gallery.Problems().isEmpty() || gallery.Written().isEmpty())) return 1;
    return 0;
}
