// The error dialog over a long error log: from construction to its first
// paint (offscreen), 10,000 errors (target 200 ms). The model keeps only its
// latest 1,000 records, so the errors are handed to the dialog directly.
#include <kivmetadataui/MetadataErrorDialog.h>

#include <kivmetadata/ErrorInfo.h>
#include <kivui/drawbot/QtSupplier.h>

#include <QApplication>
#include <QDialog>
#include <QPixmap>

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

void BM_MetadataErrorDialog_10000Errors_FirstPaint(benchmark::State &state)
{
    std::vector<kivmetadata::ErrorInfo> errors;
    errors.reserve(10000);
    for (int i = 0; i < 10000; ++i) {
        errors.push_back(kivmetadata::ErrorInfo{"Invalid date value in property number " + std::to_string(i),
                                                "/photos/session/IMG_" + std::to_string(1000 + i) + ".jpg"});
    }
    kivui::drawbot::QtSupplier supplier;
    for (auto _ : state) {
        kivcore::utility::IntrusivePtr<kivmetadataui::MetadataErrorDialog> dialog(
            new kivmetadataui::MetadataErrorDialog(&supplier, nullptr, true, errors));
        QPixmap const shot = dialog->GetDialog()->grab();
        benchmark::DoNotOptimize(shot);
        if (dialog->CountErrors() != 10000) state.SkipWithError("not every error was listed");
        dialog.reset();
        QApplication::processEvents();
    }
    state.counters["errors"] = 10000;
}

BENCHMARK(BM_MetadataErrorDialog_10000Errors_FirstPaint)->Unit(benchmark::kMillisecond);

} // namespace
