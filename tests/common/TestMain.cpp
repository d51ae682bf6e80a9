// Shared main of the test binaries: no display needed, and the per-user
// configuration and data folders point into a fresh temporary folder.
#include <gtest/gtest.h>

#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>

#ifdef KIV_TEST_GUI
#include <QApplication>
using App = QApplication;
#else
#include <QCoreApplication>
using App = QCoreApplication;
#endif

#include <cstdlib>

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", QDir(home.path()).filePath(QStringLiteral("config")).toUtf8());
    qputenv("XDG_DATA_HOME", QDir(home.path()).filePath(QStringLiteral("data")).toUtf8());
    qputenv("XDG_CACHE_HOME", QDir(home.path()).filePath(QStringLiteral("cache")).toUtf8());
    qputenv("KIV_TEST_HOME", home.path().toUtf8());
    ::testing::InitGoogleTest(&argc, argv);
    App app(argc, argv);
    App::setOrganizationName(QStringLiteral("kivtest"));
    App::setApplicationName(QStringLiteral("kivtest"));
    return RUN_ALL_TESTS();
}
