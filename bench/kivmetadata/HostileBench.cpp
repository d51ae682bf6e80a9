// Hostile and huge packets, from opening the file to the first panel
// painted: every packet, hostile or just within the limits, is meant to take
// under a second and under 200 MB (peak_rss_MB, the process's peak resident
// memory during that benchmark). The check that guards the toolkit is meant
// to take under 10 ms on a 1 MB packet. BM_Hostile_FirstPanel is the panel
// alone over the opened file (target 100 ms).
#include "HostilePackets.h"
#include "PacketLimits_p.h"

#include <kivmetadataui/MetadataLayoutView.h>

#include <kivmetadata/FileMetaDataProvider.h>

#include <kivui/UI_SubView.h>
#include <kivui/drawbot/QtSupplier.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QFile>
#include <QPixmap>
#include <QTemporaryDir>
#include <QWidget>

#include <functional>
#include <string>

#include <sys/resource.h>

using kivcore::RectF;
using kivcore::utility::IntrusivePtr;

namespace {

double PeakRssMB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024.0;
}

// Lets each benchmark report its own peak instead of the process's.
void ResetPeakRss()
{
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    if (clear.open(QIODevice::WriteOnly)) clear.write("5");
}

// The panel alone: built and painted over a file opened beforehand.
void PaintPanel(std::shared_ptr<kivmetadata::FileMetaDataProvider> const &provider, std::string const &panel)
{
    kivui::drawbot::QtSupplier supplier;
    IntrusivePtr<kivui::UI_SubView> host(new kivui::UI_SubView);
    host->UI_SetLocalRectF(RectF{0, 0, 640, 900});
    host->UI_SetDrawSupplier(&supplier);
    IntrusivePtr<kivmetadataui::MetadataLayoutView> view(new kivmetadataui::MetadataLayoutView(panel, provider));
    view->UI_SetLocalRectF(RectF{0, 0, 640, 900});
    host->ChildPushBack(view);
    view->Layout();
    QPixmap shot = host->UI_GetWidget()->grab();
    benchmark::DoNotOptimize(shot);
    QApplication::processEvents();
}

void OpenToFirstPaint(benchmark::State &state, std::function<std::string()> const &make, bool panelOnly,
                      std::string const &panel)
{
    QTemporaryDir dir;
    QString const path = dir.filePath(QStringLiteral("packet.xmp"));
    std::string const packet = make();
    {
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(packet.data(), qint64(packet.size()));
    }
    ResetPeakRss();
    bool writable = false;
    std::shared_ptr<kivmetadata::FileMetaDataProvider> opened;
    if (panelOnly) opened = kivmetadata::FileMetaDataProvider::Open(path.toStdU16String());
    for (auto _ : state) {
        auto provider = panelOnly ? opened : kivmetadata::FileMetaDataProvider::Open(path.toStdU16String());
        writable = provider && provider->IsWritable();
        PaintPanel(provider, panel);
    }
    state.counters["packet_MB"] = double(packet.size()) / (1 << 20);
    state.counters["peak_rss_MB"] = PeakRssMB();
    state.counters["writable"] = writable ? 1 : 0;
}

void BM_PacketCheck_1MB(benchmark::State &state)
{
    std::string const packet = hostile::Items(19000); // about 1 MB of keywords
    for (auto _ : state)
        benchmark::DoNotOptimize(kivmetadata::detail::PacketRefusal(packet));
    state.counters["packet_MB"] = double(packet.size()) / (1 << 20);
}

void Register()
{
    using namespace hostile;
    struct Row {
        char const *name;
        std::function<std::string()> make;
        char const *panel = "Description";
    } const rows[] = {
        // Refused: read-only, nothing shown.
        {"Deep20000", [] { return Deep(20000); }},
        {"Wide50000", [] { return Wide(50000); }},
        {"Fields5000", [] { return WideStruct(5000); }},
        {"Items100001", [] { return Items(100001); }},
        {"Nodes210000", [] { return ManyArrays(30, 7000); }},
        {"Value8M", [] { return LongValue(8000001); }},
        {"Namespaces600", [] { return Namespaces(600); }},
        {"InvalidUtf8", [] { return InvalidUtf8(); }},
        {"Nul", [] { return WithNul(); }},
        {"Doctype", [] { return Doctype(); }},
        // Just within the limits: opened and editable.
        {"Deep48", [] { return Deep(48); }},
        {"Wide2990", [] { return Wide(2990); }},
        {"Items99999", [] { return Items(99999); }},
        {"Nodes149000", [] { return ManyArrays(2, 74500); }},
        {"Value7999999", [] { return LongValue(7999999); }},
        {"Namespaces490", [] { return Namespaces(490); }},
        {"RealSized", [] { return RealSized(400, 5000, 30000); }},
        // Long values in the Description panel's own fields.
        {"Keywords50000", [] { return Packet(Bag("dc:subject", 50000)); }},
        {"Format1MB", [] { return LongValue(1000000); }},
        // An array of structs in the array editor of its panel.
        {"Locations40000", [] { return Packet(Locations(40000), kIptcExt); }, "IPTCExtension"},
    };
    for (bool const panelOnly : {false, true})
        for (auto const &row : rows)
            benchmark::RegisterBenchmark(
                (std::string(panelOnly ? "BM_Hostile_FirstPanel/" : "BM_Hostile_OpenToFirstPaint/") + row.name).c_str(),
                [make = row.make, panelOnly, panel = std::string(row.panel)](benchmark::State &state) {
                    OpenToFirstPaint(state, make, panelOnly, panel);
                })
                ->Unit(benchmark::kMillisecond)
                ->Iterations(1);
}

int const registered = (Register(), 0);

} // namespace

BENCHMARK(BM_PacketCheck_1MB)->Unit(benchmark::kMillisecond);
