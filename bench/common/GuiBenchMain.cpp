// Shared main of the benchmarks that need widgets: offscreen unless a
// platform is chosen, and, for the library's own benchmarks, the library
// started in the look the host application uses.
#include <benchmark/benchmark.h>

#include <QApplication>

#ifdef KIV_BENCH_METADATAUI
#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/ModuleInfo.h>
#include <kivui/SkinManager.h>
#endif

int main(int argc, char **argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
#ifdef KIV_BENCH_METADATAUI
    kivmetadataui::Initialize();
    kivmetadataui::ModuleInfo::Get();
    kivui::skins::core::SkinManager::Start(kivui::skins::core::SkinVersion::kV7);
#endif
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
#ifdef KIV_BENCH_METADATAUI
    kivmetadataui::Terminate();
#endif
    return 0;
}
