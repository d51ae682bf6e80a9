// kivmeta opening 500 JPEG files at once: the file providers, one provider
// wrapper per file, the multi-asset provider over them, the window and the
// first panel, up to its first paint (offscreen). The target is under 2 s.
#include "MetadataWindow.h"
#include "SampleImage.h"

#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/ModuleInfo.h>
#include <kivui/SkinManager.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPixmap>
#include <QTabWidget>
#include <QTemporaryDir>

#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kFileCount = 500;

QByteArray LoadSamplePacket()
{
    // The sample's own packet: as rich as what the panels are made for.
    QFile file(QStringLiteral(KIVMETA_SAMPLE_PACKET));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList const &Files()
{
    static QTemporaryDir folder;
    static QStringList files = [] {
        QStringList made;
        QByteArray const packet = LoadSamplePacket();
        QImage const picture = kivmeta::PaintSamplePicture(QSize(160, 107));
        for (int i = 0; i < kFileCount; ++i) {
            QString const path = folder.filePath(QStringLiteral("photo-%1.jpg").arg(i, 3, 10, QLatin1Char('0')));
            // Each file gets its own title, so the panel shows differing values.
            QByteArray own = packet;
            own.replace("Harbour lights</rdf:li>", QStringLiteral("Harbour lights %1</rdf:li>").arg(i).toUtf8());
            QString error;
            if (!kivmeta::WriteJpegWithMetadata(path, picture, std::string_view(own.constData(), own.size()), error))
                qFatal("%s", qPrintable(error));
            made << path;
        }
        return made;
    }();
    return files;
}

void BM_Kivmeta500FilesToFirstPanelPainted(benchmark::State &state)
{
    QStringList const &files = Files();
    for (auto _ : state) {
        std::vector<std::shared_ptr<kivmetadata::FileMetaDataProvider>> providers;
        providers.reserve(files.size());
        for (QString const &file : files) {
            auto provider = kivmetadata::FileMetaDataProvider::Open(file.toStdU16String());
            if (!provider) {
                state.SkipWithError("a file did not open");
                return;
            }
            providers.push_back(std::move(provider));
        }
        auto window = std::make_unique<kivmeta::MetadataWindow>(providers);
        bool painted = false;
        QObject::connect(window.get(), &kivmeta::MetadataWindow::firstPanelPainted, [&painted] { painted = true; });
        window->show();
        QApplication::processEvents();
        // The offscreen platform paints only on request: render the first
        // panel's page the way the screen would.
        QPixmap const picture = window->Tabs()->widget(0)->grab();
        QApplication::processEvents();
        if (picture.isNull() || !painted) {
            state.SkipWithError(picture.isNull() ? "the first panel could not be rendered"
                                                 : "the first panel was never painted");
            return;
        }
        state.PauseTiming();
        window.reset();
        providers.clear();
        state.ResumeTiming();
    }
    state.counters["files"] = kFileCount;
}
BENCHMARK(BM_Kivmeta500FilesToFirstPanelPainted)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

} // namespace

