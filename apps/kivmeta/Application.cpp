#include "Application.h"

#include "CommandLine.h"
#include "PropertyEditor.h"
#include "Screenshots.h"

#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/MetadataDialog.h>
#include <kivmetadataui/ModuleInfo.h>
#include <kivui/MessageBoxes.h>
#include <kivui/SkinManager.h>
#include <kivui/drawbot/QtSupplier.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTextStream>

#include <csignal>
#include <cstdio>
#include <memory>

namespace kivmeta {

namespace {

constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

// Starts and stops the library around everything that uses it.
struct LibraryScope {
    LibraryScope() { kivmetadataui::Initialize(); }
    ~LibraryScope() { kivmetadataui::Terminate(); }
};

QtMessageHandler gDefaultMessageHandler = nullptr;

// The offscreen platform says, for every top-level window it lays out, that
// it cannot pass size hints on; harmless there, and it would bury the
// program's own messages.
void FilterOffscreenNoise(QtMsgType type, QMessageLogContext const &context, QString const &message)
{
    if (type == QtWarningMsg && message == u"This plugin does not support propagateSizeHints()") return;
    if (gDefaultMessageHandler) gDefaultMessageHandler(type, context, message);
}

bool IsHeadlessPlatform()
{
    QString const name = QGuiApplication::platformName();
    return name == u"offscreen" || name == u"minimal";
}

// The built-in sample lives in the program's resources; the file provider
// needs a real file, so it works on a copy in a temporary folder.
QString CopySample(QTemporaryDir &folder, QString &error)
{
    QString const resource = QStringLiteral(":/kivmeta/sample.jpg");
    if (!QFile::exists(resource)) {
        error = QStringLiteral("this build has no built-in sample file");
        return {};
    }
    if (!folder.isValid()) {
        error = QStringLiteral("cannot make a temporary folder: %1").arg(folder.errorString());
        return {};
    }
    QString const copy = folder.filePath(QStringLiteral("sample.jpg"));
    if (!QFile::copy(resource, copy) || !QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner)) {
        error = QStringLiteral("cannot copy the built-in sample to %1").arg(copy);
        return {};
    }
    return copy;
}

bool OpenFiles(QStringList const &files, bool sidecar,
               std::vector<std::shared_ptr<kivmetadata::FileMetaDataProvider>> &providers, QString &error)
{
    kivmetadata::FileOpenOptions options;
    options.mUseSidecar = sidecar;
    for (QString const &file : files) {
        std::string openError;
        auto provider = kivmetadata::FileMetaDataProvider::Open(file.toStdU16String(), &openError, options);
        if (!provider) {
            error = QStringLiteral("cannot open %1: %2").arg(file, QString::fromStdString(openError));
            return false;
        }
        providers.push_back(std::move(provider));
    }
    return true;
}

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

bool HasDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

int Run(int argc, char **argv)
{
    QTextStream out(stdout);
    QTextStream err(stderr);

    // A file-size limit must fail a write, not kill the process halfway
    // through a save and leave a temporary file behind.
    std::signal(SIGXFSZ, SIG_IGN);

    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    CommandLine line;
    QString parseError;
    if (!ParseCommandLine(arguments, line, parseError)) {
        err << "kivmeta: " << parseError << "\n\n" << UsageText();
        return kExitUsage;
    }
    if (line.mHelp) {
        out << UsageText();
        return 0;
    }

    // Nothing is shown for batch work and screenshots; without a display the
    // window cannot be shown either, and the screenshots are written instead.
    bool const forceOffscreen = line.IsBatch() || line.mScreenshotDir.has_value();
    if (forceOffscreen || (!HasDisplay() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    QApplication app(argc, argv);
    if (IsHeadlessPlatform()) gDefaultMessageHandler = qInstallMessageHandler(FilterOffscreenNoise);
    QApplication::setApplicationName(QStringLiteral("kivmeta"));
    QApplication::setOrganizationName(QStringLiteral("kivmetadataui"));
    LibraryScope library;

    if (line.mVersion) {
        out << "kivmeta " << kivmetadataui::Version() << '\n';
        return 0;
    }

    if (line.IsBatch()) {
        int status = 0;
        if (!line.mEdits.empty()) status = RunEdits(line.mFiles, line.mEdits, line.mSidecar, err, out);
        err.flush();
        if (status == 0 && !line.mDumpFiles.isEmpty()) status = RunDumps(line.mDumpFiles, out, err);
        return status;
    }

    if (!line.mScreenshotDir && IsHeadlessPlatform()) {
        line.mScreenshotDir = QStringLiteral("screenshots");
        err << "kivmeta: no display; writing the screenshots to " << *line.mScreenshotDir << "/\n";
        err.flush();
    }

    QTemporaryDir sampleFolder;
    QStringList files = line.mFiles;
    QStringList displayNames;
    if (files.isEmpty()) {
        QString error;
        QString sample = CopySample(sampleFolder, error);
        if (sample.isEmpty()) {
            err << "kivmeta: " << error << '\n';
            return kExitFailure;
        }
        files << sample;
        displayNames << QStringLiteral("sample.jpg");
    }

    kivmetadataui::ModuleInfo::Get();
    QStringList const &names = displayNames;

    if (line.mScreenshotDir) {
        std::vector<std::shared_ptr<kivmetadata::FileMetaDataProvider>> providers;
        QString openError;
        if (!OpenFiles(files, line.mSidecar, providers, openError)) {
            err << "kivmeta: " << openError << '\n';
            return kExitFailure;
        }
        auto makeWindow = [&providers, &names] {
            auto window = std::make_unique<kivmetadataui::MetadataDialog>(
                std::vector<std::shared_ptr<kivmetadata::MetaDataProvider>>(providers.begin(), providers.end()), names);
            window->setWindowTitle(WindowTitleForFiles(window->DisplayNames()));
            return window;
        };
        QStringList written;
        QString error;
        bool ok = WriteScreenshots(makeWindow, *line.mScreenshotDir, written, error);
        out << "kivmeta: wrote " << written.size() << " screenshots to " << QDir(*line.mScreenshotDir).absolutePath()
            << '\n';
        if (!ok) {
            err << "kivmeta: " << error << '\n';
            return kExitFailure;
        }
        return 0;
    }

    kivui::skins::core::SkinManager::Start(kivui::skins::core::SkinVersion::kV7);
    // The files are read on worker threads while the window is already up.
    kivmetadata::FileOpenOptions options;
    options.mUseSidecar = line.mSidecar;
    auto window = std::make_unique<kivmetadataui::MetadataDialog>(files, options, names);
    window->setWindowTitle(WindowTitleForFiles(window->DisplayNames()));
    int status = 0;
    auto fail = [&](QString const &message, bool ask) {
        err << "kivmeta: " << message << '\n';
        err.flush();
        if (ask) {
            kivui::drawbot::QtSupplier supplier;
            kivui::dialogs::SimpleErrorMessageBox(&supplier, "$$$/kivmeta/OpenError/title=Cannot Open File",
                                                  message.toStdU16String(), nullptr);
        }
        status = kExitFailure;
        QApplication::exit(kExitFailure);
    };
    QObject::connect(window.get(), &kivmetadataui::MetadataDialog::openingFailed, window.get(),
                     [&](QString const &message) { fail(message, true); });
    QObject::connect(window.get(), &kivmetadataui::MetadataDialog::openingCancelled, window.get(),
                     [&] { fail(QStringLiteral("reading the files was cancelled"), false); });
    // A file that cannot be read stops kivmeta: editing the others would
    // leave the user believing every file was edited.
    QObject::connect(window.get(), &kivmetadataui::MetadataDialog::filesOpened, window.get(), [&] {
        if (window->OpenErrors().isEmpty()) return;
        QStringList lines;
        for (QString const &error : window->OpenErrors())
            lines << QStringLiteral("cannot open %1").arg(error);
        window->hide();
        fail(lines.join(u'\n'), true);
    });
    QObject::connect(window.get(), &QDialog::finished, &app, [&status](int) { QApplication::exit(status); });
    window->show();
    int const result = app.exec();
    window.reset();
    return status ? status : result;
}

} // namespace kivmeta
