// Targets: starting the model with all standard definitions under 50 ms;
// opening and reading 1,000 small JPEGs within 1.5x of Exempi alone; reading
// one property from 1,000 open file providers through one multi-asset
// provider under 50 ms.
#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadata/Initialize.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/MultiMetaDataProvider.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ValueAccess.h>

#include <benchmark/benchmark.h>

#include <exempi/xmp.h>

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <memory>
#include <string>
#include <vector>

using namespace kivmetadata;

namespace {

constexpr char kDC[] = "http://purl.org/dc/elements/1.1/";
constexpr int kFileCount = 1000;

// 1,000 copies of a small JPEG carrying a title, keywords and a rating; the
// last half get a different title so that the multi-asset read must compare.
struct Corpus {
    QTemporaryDir dir;
    std::vector<std::u16string> files;
    std::vector<std::string> utf8;

    Corpus()
    {
        QImage image(64, 48, QImage::Format_RGB32);
        image.fill(QColor(10, 90, 160));
        QByteArray jpeg;
        QBuffer buffer(&jpeg);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "JPG", 80);
        for (int variant = 0; variant < 2; ++variant) {
            QString const path = dir.filePath(QStringLiteral("seed%1.jpg").arg(variant));
            QFile out(path);
            out.open(QIODevice::WriteOnly);
            out.write(jpeg);
            out.close();
            auto provider = FileMetaDataProvider::Open(path.toStdU16String());
            MetaDataUpdateAccess access(provider);
            SetValue(Value{false, PathForSchemaNameAndPropertyName(kDC, "title"), provider},
                     variant ? "Harbour at night" : "Harbour");
            SetValue(Value{false, PathForSchemaNameAndPropertyName(kDC, "subject"), provider}, "boat; sea; harbour");
            SetValue(Value{false, PathForSchemaNameAndPropertyName("http://ns.adobe.com/xap/1.0/", "Rating"), provider},
                     3);
            access.AddChange(Path{});
            provider->Save();
        }
        for (int i = 0; i < kFileCount; ++i) {
            QString const path = dir.filePath(QStringLiteral("img%1.jpg").arg(i, 4, 10, QLatin1Char('0')));
            QFile::copy(dir.filePath(QStringLiteral("seed%1.jpg").arg(i >= kFileCount / 2 ? 1 : 0)), path);
            files.push_back(path.toStdU16String());
            utf8.push_back(path.toStdString());
        }
    }
};

Corpus &TheCorpus()
{
    static Corpus corpus;
    return corpus;
}

void BM_Initialize_AllStandardDefinitions(benchmark::State &state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(Initialize());
        state.PauseTiming();
        Terminate();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_Initialize_AllStandardDefinitions)->Unit(benchmark::kMillisecond)->Iterations(20);

void BM_OpenAndRead1000Jpegs_ExempiAlone(benchmark::State &state)
{
    Initialize();
    auto const &corpus = TheCorpus();
    std::size_t found = 0;
    for (auto _ : state) {
        for (auto const &path : corpus.utf8) {
            // The same open as the file provider's: with EXIF/IPTC reconciliation.
            XmpFilePtr file = xmp_files_open_new(path.c_str(), XMP_OPEN_READ);
            XmpPtr meta = xmp_files_get_new_xmp(file);
            XmpStringPtr value = xmp_string_new();
            if (xmp_get_localized_text(meta, kDC, "dc:title", "", "x-default", nullptr, value, nullptr)) ++found;
            xmp_string_free(value);
            xmp_free(meta);
            xmp_files_close(file, XMP_CLOSE_NOOPTION);
            xmp_files_free(file);
        }
    }
    state.counters["files"] = double(corpus.utf8.size());
    benchmark::DoNotOptimize(found);
    Terminate();
}
BENCHMARK(BM_OpenAndRead1000Jpegs_ExempiAlone)->Unit(benchmark::kMillisecond);

void BM_OpenAndRead1000Jpegs_FileProvider(benchmark::State &state)
{
    Initialize();
    auto const &corpus = TheCorpus();
    Path const title = PathForSchemaNameAndPropertyName(kDC, "title");
    std::size_t found = 0;
    for (auto _ : state) {
        for (auto const &path : corpus.files) {
            auto provider = FileMetaDataProvider::Open(path);
            std::string text;
            GetValueResult result;
            if (GetValue(Value{false, title, provider}, text, result)) ++found;
        }
    }
    state.counters["files"] = double(corpus.files.size());
    benchmark::DoNotOptimize(found);
    Terminate();
}
BENCHMARK(BM_OpenAndRead1000Jpegs_FileProvider)->Unit(benchmark::kMillisecond);

// Reading through one multi-asset provider over 1,000 open files: keywords
// are equal everywhere (every asset is compared), titles differ halfway.
void BM_ReadOnePropertyFrom1000Providers_Multi(benchmark::State &state)
{
    Initialize();
    std::vector<std::shared_ptr<MetaDataProvider>> assets;
    for (auto const &path : TheCorpus().files)
        assets.push_back(FileMetaDataProvider::Open(path));
    auto multi = std::make_shared<MultiMetaDataProvider>(assets);
    Value const value{false, PathForSchemaNameAndPropertyName(kDC, state.range(0) ? "title" : "subject"), multi};
    for (auto _ : state) {
        std::string text;
        GetValueResult result;
        GetValue(value, text, result);
        benchmark::DoNotOptimize(text);
        if (result != (state.range(0) ? kGetValueResult_SeveralValues : kGetValueResult_OneValue))
            state.SkipWithError("unexpected result");
    }
    state.counters["assets"] = double(assets.size());
    multi.reset();
    assets.clear();
    Terminate();
}
BENCHMARK(BM_ReadOnePropertyFrom1000Providers_Multi)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    // The corpus is made with the model started once; each benchmark then
    // starts and stops the model itself, so that starting is measured cold.
    Initialize();
    TheCorpus();
    Terminate();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
