// The main metadata dialog on 1,000 JPEG files, as kivmeta uses it:
// - opened on the files (read on worker threads) up to the first panel
//   painted (target under 1 s), with the longest the UI thread went without
//   running its timers meanwhile;
// - saving all of them after one edit (OK), with the longest gap between UI
//   timer ticks during the save (target under 50 ms), against the
//   command-line batch on the same files (kivmeta --set; target: the dialog
//   at most 1.2 times as long).
#include "PropertyEditor.h"
#include "SampleImage.h"

#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadataui/MetadataDialog.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QPixmap>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kFileCount = 1000;
constexpr char kPhotoshop[] = "http://ns.adobe.com/photoshop/1.0/";

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
            QString const path = folder.filePath(QStringLiteral("photo-%1.jpg").arg(i, 4, 10, QLatin1Char('0')));
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

// The longest time between two ticks of a UI timer while it runs: how long
// the UI thread was kept from its events.
class TickGap {
public:
    TickGap()
    {
        mTimer.setInterval(2);
        QObject::connect(&mTimer, &QTimer::timeout, [this] { mLongest = std::max(mLongest, mClock.restart()); });
    }
    void Start()
    {
        mLongest = 0;
        mClock.start();
        mTimer.start();
    }
    qint64 Stop()
    {
        mTimer.stop();
        return std::max(mLongest, mClock.elapsed());
    }

private:
    QTimer mTimer;
    QElapsedTimer mClock;
    qint64 mLongest = 0;
};

void BM_DialogOpens1000FilesToFirstPanelPainted(benchmark::State &state)
{
    QStringList const &files = Files();
    qint64 longestGap = 0;
    for (auto _ : state) {
        TickGap gap;
        gap.Start();
        auto dialog = std::make_unique<kivmetadataui::MetadataDialog>(files, kivmetadata::FileOpenOptions{});
        bool painted = false;
        QObject::connect(dialog.get(), &kivmetadataui::MetadataDialog::firstPanelPainted,
                         [&painted] { painted = true; });
        QEventLoop loop;
        QObject::connect(dialog.get(), &kivmetadataui::MetadataDialog::filesOpened, &loop, &QEventLoop::quit);
        QObject::connect(dialog.get(), &kivmetadataui::MetadataDialog::openingFailed, &loop, &QEventLoop::quit);
        dialog->show();
        loop.exec();
        // The offscreen platform paints only on request: render the first
        // panel's page the way the screen would.
        QPixmap const picture = dialog->Tabs()->widget(0)->grab();
        QApplication::processEvents();
        longestGap = std::max(longestGap, gap.Stop());
        if (picture.isNull() || !painted || dialog->EditedProvider() == nullptr) {
            state.SkipWithError("the first panel was never painted");
            return;
        }
        state.PauseTiming();
        dialog.reset();
        QApplication::processEvents();
        state.ResumeTiming();
    }
    state.counters["files"] = kFileCount;
    state.counters["longest_ui_gap_ms"] = double(longestGap);
}
BENCHMARK(BM_DialogOpens1000FilesToFirstPanelPainted)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

void BM_DialogSaves1000EditedFiles(benchmark::State &state)
{
    QStringList const &files = Files();
    qint64 longestGap = 0;
    int round = 0;
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<std::shared_ptr<kivmetadata::MetaDataProvider>> providers;
        for (QString const &file : files)
            providers.push_back(kivmetadata::FileMetaDataProvider::Open(file.toStdU16String()));
        auto dialog = std::make_unique<kivmetadataui::MetadataDialog>(providers);
        dialog->show();
        QApplication::processEvents();
        {
            std::shared_ptr<kivmetadata::MetaDataProvider> const edited = dialog->EditedProvider();
            kivmetadata::Path const city{kPhotoshop, "photoshop:City"};
            kivmetadata::MetaDataUpdateAccess access(edited);
            kivmetadata::SetValue(kivmetadata::Value{false, city, edited}, "Dialog " + std::to_string(++round));
            access.AddChange(city);
        }
        TickGap gap;
        gap.Start();
        state.ResumeTiming();

        bool const saved = dialog->Commit();

        state.PauseTiming();
        longestGap = std::max(longestGap, gap.Stop());
        if (!saved || dialog->LastSavedFiles().size() != kFileCount) {
            state.SkipWithError("not every file was saved");
            return;
        }
        dialog.reset();
        providers.clear();
        state.ResumeTiming();
    }
    state.counters["files"] = kFileCount;
    state.counters["longest_ui_gap_ms"] = double(longestGap);
}
BENCHMARK(BM_DialogSaves1000EditedFiles)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

// What the dialog's save is measured against: kivmeta --set on the same
// files (the same code, in-process).
void BM_CommandLineSets1000Files(benchmark::State &state)
{
    QStringList const &files = Files();
    int round = 0;
    for (auto _ : state) {
        QString errors, output;
        QTextStream err(&errors), out(&output);
        std::vector<kivmeta::PropertyEdit> const edits{{kivmeta::PropertyEdit::Kind::Set,
                                                        QStringLiteral("photoshop:City"),
                                                        QStringLiteral("Batch %1").arg(++round)}};
        if (kivmeta::RunEdits(files, edits, false, err, out) != 0) {
            state.SkipWithError(qPrintable(errors));
            return;
        }
    }
    state.counters["files"] = kFileCount;
}
BENCHMARK(BM_CommandLineSets1000Files)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

} // namespace
