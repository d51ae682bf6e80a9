// Speed of the drawing supplier, the image provider, the preference store
// and archived dialogs (offscreen).
#include <kivui/DrawbotImageResourceCache.h>
#include <kivui/ImageProvider.h>
#include <kivui/OS_ResourceManager.h>
#include <kivui/PrefManager.h>
#include <kivui/SkinManager.h>
#include <kivui/UI_ArchivedDialog.h>
#include <kivui/drawbot/QtSupplier.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include <string>

namespace {

template <typename T> using Ptr = kivcore::utility::IntrusivePtr<T>;

void BM_MeasureTextShort(benchmark::State &state)
{
    kivui::drawbot::QtSupplier const supplier;
    for (auto _ : state)
        benchmark::DoNotOptimize(supplier.MeasureText(u"Keywords:"));
}
BENCHMARK(BM_MeasureTextShort);

void BM_MeasureTextParagraph(benchmark::State &state)
{
    kivui::drawbot::QtSupplier const supplier;
    std::u16string text;
    for (int i = 0; i < 20; ++i)
        text += u"The harbour at dusk, boats coming in. ";
    for (auto _ : state)
        benchmark::DoNotOptimize(supplier.MeasureText(text));
}
BENCHMARK(BM_MeasureTextParagraph);

// Labels in several sizes and styles, as a panel measures them.
void BM_MeasureTextMixedFonts(benchmark::State &state)
{
    kivui::drawbot::QtSupplier const supplier;
    float const sizes[] = {0.0f, 10.0f, 12.0f, 14.0f};
    char const *const styles[] = {"", "Bold"};
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(supplier.MeasureText(u"Copyright Notice", sizes[i % 4], styles[(i / 4) % 2]));
        ++i;
    }
}
BENCHMARK(BM_MeasureTextMixedFonts);

void BM_ImageProviderCachedImage(benchmark::State &state)
{
    QTemporaryDir dir;
    QDir(dir.path()).mkpath(QStringLiteral("images"));
    QImage image(16, 16, QImage::Format_ARGB32);
    image.fill(Qt::red);
    image.save(dir.filePath(QStringLiteral("images/Link_Sm.png")));
    kivui::utility::OS_ResourceManager resources(dir.path());
    kivui::utility::DrawbotImageResourceCache cache;
    kivui::utility::ImageProvider provider(&resources, nullptr, &cache);
    for (auto _ : state)
        benchmark::DoNotOptimize(provider.GetImage("Link_Sm"));
}
BENCHMARK(BM_ImageProviderCachedImage);

void BM_PrefWindowRectRoundTrip(benchmark::State &state)
{
    QTemporaryDir dir;
    auto *prefs = kivui::utility::PrefManager::CreateAtPath(dir.filePath(QStringLiteral("bench.ini")));
    float x = 0;
    for (auto _ : state) {
        prefs->SetWindowPositionAndSize("MetadataErrorDialog", {x, 20, 600, 280});
        benchmark::DoNotOptimize(prefs->GetWindowPositionAndSize("MetadataErrorDialog"));
        x += 1;
    }
    kivui::utility::PrefManager::Destroy();
}
BENCHMARK(BM_PrefWindowRectRoundTrip);

QByteArray ArchiveWithRows(int rows)
{
    QByteArray ui = R"(<ui version="4.0"><widget class="QWidget" name="top">
      <property name="geometry"><rect><x>0</x><y>0</y><width>400</width><height>300</height></rect></property>
      <layout class="QFormLayout" name="form">)";
    for (int i = 0; i < rows; ++i) {
        QByteArray const n = QByteArray::number(i);
        ui += R"(<item row=")" + n + R"(" column="0"><widget class="QLabel" name="label)" + n +
              R"("><property name="text"><string>$$$/bench/label)" + n +
              R"(=Label:</string></property></widget></item>)";
        ui += R"(<item row=")" + n + R"(" column="1"><widget class="kivui::UI_TextEdit" name="edit)" + n +
              R"("/></item>)";
    }
    ui += "</layout></widget></ui>";
    return ui;
}

// Building a dialog from a UI archive of label/edit rows, then finding one control.
void BM_ArchivedDialogBuild(benchmark::State &state)
{
    kivui::drawbot::QtSupplier supplier;
    QByteArray const archive = ArchiveWithRows(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        Ptr<kivui::UI_ArchivedDialog> dialog(new kivui::UI_ArchivedDialog(&supplier, archive, u"Bench"));
        benchmark::DoNotOptimize(dialog->FindNode("edit0"));
    }
}
BENCHMARK(BM_ArchivedDialogBuild)->Arg(4)->Arg(32)->Unit(benchmark::kMicrosecond);

void BM_SkinSwitch(benchmark::State &state)
{
    using kivui::skins::core::SkinManager;
    using kivui::skins::core::SkinVersion;
    SkinManager::Start(SkinVersion::kV7);
    bool v5 = true;
    for (auto _ : state) {
        SkinManager::SetSkinVersion(v5 ? SkinVersion::kV5 : SkinVersion::kV7);
        v5 = !v5;
    }
}
BENCHMARK(BM_SkinSwitch)->Unit(benchmark::kMicrosecond);

} // namespace
