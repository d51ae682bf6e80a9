// Speed of saving edited metadata.
//
// BM_SaveOneEdit1000Jpegs_*: one property set in 1,000 JPEGs of about 0.5 MB
// (EXIF, IPTC and an XMP packet of a dozen properties), by the kivmeta program
// and by exiftool, each run as a process on a fresh copy of the files. The
// time is wall time, start-up of the program included; the exiftool run
// reports how many times slower it is than the kivmeta run ("x_kivmeta"), and
// the program ends with a summary of the ratios. "files" is files per second.
//
// BM_SaveOneFile_*: one such JPEG, one property changed, saved through the
// file provider versus Exempi's own file handler with safe update; argument 0
// changes a short value (the packet fits in its padding), argument 1 writes a
// 10 KB value (the packet must grow).
//
// Every benchmark checks once, outside the timing, that the files it saved
// carry the new value, so that a run which writes nothing cannot pass for a
// fast one.
#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadata/Initialize.h>
#include <kivmetadata/MetaDataReadAccess.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/Path.h>
#include <kivmetadata/XMPMeta.h>

#include <benchmark/benchmark.h>

#include <exempi/xmp.h>

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <system_error>
#include <vector>

using namespace kivmetadata;
namespace fs = std::filesystem;

namespace {

constexpr char kPhotoshopNS[] = "http://ns.adobe.com/photoshop/1.0/";
constexpr char kHeadline[] = "photoshop:Headline";
constexpr char kNewHeadline[] = "Bench";
constexpr int kFileCount = 1000;
constexpr qsizetype kTargetJpegBytes = 512 * 1024;
constexpr int kProcessTimeoutMs = 10 * 60 * 1000;

using Clock = std::chrono::steady_clock;

// Seconds per iteration of each benchmark run, for the ratios.
std::map<std::string, double> &Timings()
{
    static std::map<std::string, double> timings;
    return timings;
}

QString ExiftoolPath()
{
    static QString const path = QStandardPaths::findExecutable(QStringLiteral("exiftool"));
    return path;
}

// Runs a program to its end; false with a message when it could not start,
// timed out or failed.
bool RunProcess(QString const &program, QStringList const &arguments, QProcessEnvironment const &environment,
                std::string &error, QByteArray *output = nullptr)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProgram(program);
    process.setArguments(arguments);
    process.start();
    if (!process.waitForStarted(kProcessTimeoutMs) || !process.waitForFinished(kProcessTimeoutMs)) {
        error = QStringLiteral("%1 did not run: %2").arg(program, process.errorString()).toStdString();
        process.kill();
        process.waitForFinished();
        return false;
    }
    QByteArray const out = process.readAllStandardOutput();
    if (output) *output = out;
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        error = QStringLiteral("%1 failed (exit code %2): %3")
                    .arg(program)
                    .arg(process.exitCode())
                    .arg(QString::fromLocal8Bit(process.readAllStandardError().left(2000)))
                    .toStdString();
        return false;
    }
    return true;
}

// A photograph-like picture (a gradient with grain) whose JPEG at quality 92
// is about 0.5 MB: the grain is raised until the file is large enough.
QByteArray NoisyJpeg()
{
    QByteArray best;
    for (int grain = 4; grain <= 128; grain += grain / 2) {
        QImage image(1600, 1200, QImage::Format_RGB32);
        std::mt19937 random(20240501);
        std::uniform_int_distribution<int> noise(-grain, grain);
        for (int y = 0; y < image.height(); ++y) {
            auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
            for (int x = 0; x < image.width(); ++x) {
                int const n = noise(random);
                line[x] = qRgb(std::clamp(40 + x * 160 / image.width() + n, 0, 255),
                               std::clamp(90 + y * 100 / image.height() + n, 0, 255),
                               std::clamp(160 - x * 60 / image.width() + n, 0, 255));
            }
        }
        QByteArray jpeg;
        QBuffer buffer(&jpeg);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "JPG", 92);
        best = jpeg;
        if (jpeg.size() >= kTargetJpegBytes) break;
    }
    return best;
}

// Without exiftool the seed still gets its XMP packet, through Exempi.
bool WriteXmpWithExempi(std::string const &path, std::string &error)
{
    XmpFilePtr file = xmp_files_open_new(path.c_str(), XMP_OPEN_FORUPDATE);
    if (!file) {
        error = "Exempi cannot open the seed for update";
        return false;
    }
    XmpPtr xmp = xmp_files_get_new_xmp(file);
    constexpr char dc[] = "http://purl.org/dc/elements/1.1/";
    constexpr char xmpNS[] = "http://ns.adobe.com/xap/1.0/";
    xmp_set_localized_text(xmp, dc, "dc:title", "", "x-default", "Harbour at dawn", 0);
    xmp_set_localized_text(xmp, dc, "dc:description", "", "x-default", "Boats in the harbour before sunrise", 0);
    xmp_set_localized_text(xmp, dc, "dc:rights", "", "x-default", "(c) Bench Author", 0);
    xmp_append_array_item(xmp, dc, "dc:creator", XMP_PROP_ARRAY_IS_ORDERED, "Bench Author", 0);
    for (char const *keyword : {"harbour", "boat", "sea"})
        xmp_append_array_item(xmp, dc, "dc:subject", XMP_PROP_VALUE_IS_ARRAY, keyword, 0);
    xmp_set_property(xmp, xmpNS, "xmp:Rating", "3", 0);
    xmp_set_property(xmp, xmpNS, "xmp:CreatorTool", "kivmetadataSaveBench", 0);
    xmp_set_property(xmp, kPhotoshopNS, kHeadline, "Before", 0);
    xmp_set_property(xmp, kPhotoshopNS, "photoshop:City", "Lisbon", 0);
    xmp_set_property(xmp, kPhotoshopNS, "photoshop:Country", "Portugal", 0);
    xmp_set_property(xmp, kPhotoshopNS, "photoshop:Credit", "Bench Agency", 0);
    xmp_set_property(xmp, "http://ns.adobe.com/xap/1.0/rights/", "xmpRights:Marked", "True", 0);
    bool ok = xmp_files_put_xmp(file, xmp);
    if (!ok) error = "Exempi cannot write the seed's XMP";
    xmp_free(xmp);
    ok = xmp_files_close(file, XMP_CLOSE_SAFEUPDATE) && ok;
    xmp_files_free(file);
    return ok;
}

// The seed JPEG: EXIF, IPTC and an XMP packet of a dozen properties (with a
// headline to change), all written once by exiftool.
struct Seed {
    QTemporaryDir dir;
    std::string path;
    std::string error;       // empty when the seed is usable
    bool withLegacy = false; // EXIF and IPTC present (written by exiftool)
    qint64 bytes = 0;

    Seed()
    {
        QString const file = dir.filePath(QStringLiteral("seed.jpg"));
        path = file.toStdString();
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly) || out.write(NoisyJpeg()) < 0) {
            error = "cannot write the seed JPEG";
            return;
        }
        out.close();
        if (ExiftoolPath().isEmpty()) {
            WriteXmpWithExempi(path, error);
        } else {
            QStringList const arguments{
                QStringLiteral("-q"),
                QStringLiteral("-overwrite_original"),
                QStringLiteral("-EXIF:Make=KivBench"),
                QStringLiteral("-EXIF:Model=Bench Camera"),
                QStringLiteral("-EXIF:Software=kivmetadataSaveBench"),
                QStringLiteral("-EXIF:DateTimeOriginal=2024:05:01 06:12:30"),
                QStringLiteral("-EXIF:CreateDate=2024:05:01 06:12:30"),
                QStringLiteral("-EXIF:ExposureTime=1/250"),
                QStringLiteral("-EXIF:FNumber=5.6"),
                QStringLiteral("-EXIF:ISO=200"),
                QStringLiteral("-EXIF:FocalLength=35"),
                QStringLiteral("-EXIF:Artist=Bench Author"),
                QStringLiteral("-EXIF:Copyright=(c) Bench Author"),
                QStringLiteral("-IPTC:CodedCharacterSet=UTF8"),
                QStringLiteral("-IPTC:ObjectName=Harbour at dawn"),
                QStringLiteral("-IPTC:Caption-Abstract=Boats in the harbour before sunrise"),
                QStringLiteral("-IPTC:By-line=Bench Author"),
                QStringLiteral("-IPTC:Keywords=harbour"),
                QStringLiteral("-IPTC:Keywords=boat"),
                QStringLiteral("-IPTC:Keywords=sea"),
                QStringLiteral("-IPTC:City=Lisbon"),
                QStringLiteral("-IPTC:Country-PrimaryLocationName=Portugal"),
                QStringLiteral("-IPTC:Headline=Before"),
                QStringLiteral("-XMP-dc:Title=Harbour at dawn"),
                QStringLiteral("-XMP-dc:Description=Boats in the harbour before sunrise"),
                QStringLiteral("-XMP-dc:Creator=Bench Author"),
                QStringLiteral("-XMP-dc:Rights=(c) Bench Author"),
                QStringLiteral("-XMP-dc:Subject=harbour"),
                QStringLiteral("-XMP-dc:Subject=boat"),
                QStringLiteral("-XMP-dc:Subject=sea"),
                QStringLiteral("-XMP-xmp:Rating=3"),
                QStringLiteral("-XMP-xmp:CreatorTool=kivmetadataSaveBench"),
                QStringLiteral("-XMP-photoshop:Headline=Before"),
                QStringLiteral("-XMP-photoshop:City=Lisbon"),
                QStringLiteral("-XMP-photoshop:Country=Portugal"),
                QStringLiteral("-XMP-photoshop:Credit=Bench Agency"),
                QStringLiteral("-XMP-Iptc4xmpCore:Location=Old harbour"),
                QStringLiteral("-XMP-xmpRights:Marked=True"),
                file,
            };
            withLegacy = RunProcess(ExiftoolPath(), arguments, QProcessEnvironment::systemEnvironment(), error);
        }
        bytes = QFileInfo(file).size();
    }
};

Seed &TheSeed()
{
    static Seed seed;
    return seed;
}

// 1,000 copies of the seed, made once per process.
struct Corpus {
    QTemporaryDir dir;
    std::vector<std::string> names;
    std::string error;

    Corpus()
    {
        Seed const &seed = TheSeed();
        if (!seed.error.empty()) {
            error = seed.error;
            return;
        }
        for (int i = 0; i < kFileCount; ++i) {
            QString const name = QStringLiteral("img%1.jpg").arg(i, 4, 10, QLatin1Char('0'));
            std::error_code ec;
            if (!fs::copy_file(seed.path, dir.filePath(name).toStdString(), ec)) {
                error = "cannot copy the seed: " + ec.message();
                return;
            }
            names.push_back(name.toStdString());
        }
    }
};

Corpus &TheCorpus()
{
    static Corpus corpus;
    return corpus;
}

// Puts fresh copies of the pristine files into `folder`; returns their paths.
bool CopyCorpus(Corpus const &corpus, QTemporaryDir const &folder, QStringList &paths, std::string &error)
{
    paths.clear();
    fs::path const source(corpus.dir.path().toStdString());
    fs::path const target(folder.path().toStdString());
    for (auto const &name : corpus.names) {
        std::error_code ec;
        fs::copy_file(source / name, target / name, fs::copy_options::overwrite_existing, ec);
        if (ec) {
            error = "cannot copy " + name + ": " + ec.message();
            return false;
        }
        paths << QString::fromStdString((target / name).string());
    }
    return true;
}

// The headline as the model reads it back from the file.
std::optional<std::string> ReadHeadline(QString const &path)
{
    auto provider = FileMetaDataProvider::Open(path.toStdU16String());
    if (!provider) return std::nullopt;
    MetaDataReadAccess access(provider);
    std::string value;
    if (!access.GetMeta() || !access.GetMeta()->GetProperty(kPhotoshopNS, kHeadline, value)) return std::nullopt;
    return value;
}

bool CheckHeadline(benchmark::State &state, QString const &path, std::string const &expected, char const *who)
{
    std::optional<std::string> const value = ReadHeadline(path);
    if (value == expected) return true;
    std::string message = std::string(who) + " did not write the headline of " + path.toStdString() + " (read ";
    message += value ? "\"" + value->substr(0, 40) + "\")" : "nothing)";
    state.SkipWithError(message.c_str());
    return false;
}

// Runs one of the two programs on a fresh copy of the 1,000 files per
// iteration; `command` turns the file paths and the folder into a program and
// its arguments.
void SaveOneEdit1000Jpegs(benchmark::State &state, char const *who, QString const &program,
                          QStringList (*arguments)(QStringList const &files, QString const &folder),
                          QProcessEnvironment const &environment)
{
    Corpus const &corpus = TheCorpus();
    if (!corpus.error.empty()) {
        state.SkipWithError(corpus.error.c_str());
        return;
    }
    QTemporaryDir work;
    QStringList files;
    std::string error;
    bool checked = false;
    Clock::duration timed{};
    for (auto _ : state) {
        state.PauseTiming();
        if (!CopyCorpus(corpus, work, files, error)) {
            state.SkipWithError(error.c_str());
            break;
        }
        QStringList const args = arguments(files, work.path());
        state.ResumeTiming();
        auto const start = Clock::now();
        bool const ok = RunProcess(program, args, environment, error);
        timed += Clock::now() - start;
        if (!ok) {
            state.SkipWithError(error.c_str());
            break;
        }
        if (!checked) {
            state.PauseTiming();
            checked = true;
            bool const written = CheckHeadline(state, files.front(), kNewHeadline, who) &&
                                 CheckHeadline(state, files.back(), kNewHeadline, who);
            state.ResumeTiming();
            if (!written) break;
        }
    }
    state.counters["files"] = benchmark::Counter(kFileCount, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["MB_per_file"] = double(TheSeed().bytes) / (1024.0 * 1024.0);
    if (state.iterations() > 0 && !state.error_occurred())
        Timings()[who] = std::chrono::duration<double>(timed).count() / double(state.iterations());
}

QStringList KivmetaArguments(QStringList const &files, QString const &)
{
    return QStringList{QStringLiteral("--set"), QStringLiteral("photoshop:Headline=%1").arg(kNewHeadline)} + files;
}

QStringList ExiftoolArguments(QStringList const &, QString const &folder)
{
    return QStringList{QStringLiteral("-q"), QStringLiteral("-overwrite_original"),
                       QStringLiteral("-XMP-photoshop:Headline=%1").arg(kNewHeadline), folder};
}

// kivmeta keeps user settings (recent values, ...): give it a private home so
// that the benchmark neither reads nor changes the user's.
QProcessEnvironment KivmetaEnvironment()
{
    static QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    for (char const *name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"})
        environment.insert(QString::fromLatin1(name), home.path());
    return environment;
}

void BM_SaveOneEdit1000Jpegs_Kivmeta(benchmark::State &state)
{
    SaveOneEdit1000Jpegs(state, "kivmeta", QStringLiteral(KIV_KIVMETA_PATH), KivmetaArguments, KivmetaEnvironment());
}
BENCHMARK(BM_SaveOneEdit1000Jpegs_Kivmeta)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

void BM_SaveOneEdit1000Jpegs_Exiftool(benchmark::State &state)
{
    if (ExiftoolPath().isEmpty()) {
        state.SkipWithError("exiftool is not on PATH");
        return;
    }
    SaveOneEdit1000Jpegs(state, "exiftool", ExiftoolPath(), ExiftoolArguments,
                         QProcessEnvironment::systemEnvironment());
    auto const &timings = Timings();
    if (timings.count("kivmeta") && timings.count("exiftool"))
        state.counters["x_kivmeta"] = timings.at("exiftool") / timings.at("kivmeta");
}
BENCHMARK(BM_SaveOneEdit1000Jpegs_Exiftool)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

// The new headline: short (the packet keeps its size) or 10 KB (it grows past
// its padding).
std::string NewValue(bool longValue)
{
    if (!longValue) return kNewHeadline;
    std::string value;
    while (value.size() < 10 * 1024)
        value += "Boats in the harbour before sunrise, seen from the old quay. ";
    value.resize(10 * 1024);
    return value;
}

// As kivmeta --set saves: the packet alone. With `showLegacy`, as the window
// opens a file: EXIF, TIFF and IPTC values read too, for display.
bool SaveWithFileProvider(std::string const &path, std::string const &value, std::string &error,
                          bool showLegacy = false)
{
    FileOpenOptions options;
    options.mImportLegacy = showLegacy;
    auto provider = FileMetaDataProvider::Open(QString::fromStdString(path).toStdU16String(), &error, options);
    if (!provider) return false;
    {
        MetaDataUpdateAccess access(provider);
        if (!access.GetMeta()->SetProperty(kPhotoshopNS, kHeadline, value, 0, &error)) return false;
        access.AddChange(Path{kPhotoshopNS, kHeadline});
    }
    return provider->Save(&error);
}

bool SaveWithExempiHandler(std::string const &path, std::string const &value, std::string &error)
{
    XmpFilePtr file = xmp_files_open_new(path.c_str(), XMP_OPEN_FORUPDATE);
    if (!file) {
        error = "xmp_files_open_new failed (" + std::to_string(xmp_get_error()) + ")";
        return false;
    }
    XmpPtr xmp = xmp_files_get_new_xmp(file);
    bool ok = xmp && xmp_set_property(xmp, kPhotoshopNS, kHeadline, value.c_str(), 0);
    ok = ok && xmp_files_put_xmp(file, xmp);
    if (!ok) error = "xmp_files_put_xmp failed (" + std::to_string(xmp_get_error()) + ")";
    if (xmp) xmp_free(xmp);
    if (!xmp_files_close(file, ok ? XMP_CLOSE_SAFEUPDATE : XMP_CLOSE_NOOPTION) && ok) {
        error = "xmp_files_close failed (" + std::to_string(xmp_get_error()) + ")";
        ok = false;
    }
    xmp_files_free(file);
    return ok;
}

void SaveOneFile(benchmark::State &state, char const *who,
                 bool (*save)(std::string const &path, std::string const &value, std::string &error))
{
    Seed const &seed = TheSeed();
    if (!seed.error.empty()) {
        state.SkipWithError(seed.error.c_str());
        return;
    }
    std::string const value = NewValue(state.range(0) != 0);
    QTemporaryDir work;
    QString const path = work.filePath(QStringLiteral("edit.jpg"));
    std::string const pathUtf8 = path.toStdString();
    std::string error;
    bool checked = false;
    Clock::duration timed{};
    for (auto _ : state) {
        state.PauseTiming();
        std::error_code ec;
        fs::copy_file(seed.path, pathUtf8, fs::copy_options::overwrite_existing, ec);
        if (ec) {
            state.SkipWithError(("cannot copy the seed: " + ec.message()).c_str());
            break;
        }
        state.ResumeTiming();
        auto const start = Clock::now();
        bool const ok = save(pathUtf8, value, error);
        timed += Clock::now() - start;
        if (!ok) {
            state.SkipWithError((std::string(who) + ": " + error).c_str());
            break;
        }
        if (!checked) {
            state.PauseTiming();
            checked = true;
            bool const written = CheckHeadline(state, path, value, who);
            state.ResumeTiming();
            if (!written) break;
        }
    }
    state.SetLabel(state.range(0) ? "10 KB value, packet grows" : "short value, fits in place");
    if (state.iterations() > 0 && !state.error_occurred())
        Timings()[std::string(who) + (state.range(0) ? "/grow" : "/fit")] =
            std::chrono::duration<double>(timed).count() / double(state.iterations());
}

void BM_SaveOneFile_OurWriter(benchmark::State &state)
{
    SaveOneFile(state, "file provider", [](std::string const &path, std::string const &value, std::string &error) {
        return SaveWithFileProvider(path, value, error);
    });
}
BENCHMARK(BM_SaveOneFile_OurWriter)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(30);

void BM_SaveOneFile_OurWriterShowingLegacy(benchmark::State &state)
{
    SaveOneFile(state, "file provider showing legacy",
                [](std::string const &path, std::string const &value, std::string &error) {
                    return SaveWithFileProvider(path, value, error, true);
                });
}
BENCHMARK(BM_SaveOneFile_OurWriterShowingLegacy)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(30);

void BM_SaveOneFile_ExempiHandler(benchmark::State &state)
{
    SaveOneFile(state, "Exempi handler", SaveWithExempiHandler);
}
BENCHMARK(BM_SaveOneFile_ExempiHandler)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(30);

void PrintRatio(char const *what, std::string const &slower, std::string const &faster)
{
    auto const &timings = Timings();
    if (!timings.count(slower) || !timings.count(faster) || timings.at(faster) <= 0) return;
    std::printf("%-42s %9.1f ms / %9.1f ms = %5.2fx\n", what, timings.at(slower) * 1000.0, timings.at(faster) * 1000.0,
                timings.at(slower) / timings.at(faster));
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    Initialize();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (!Timings().empty()) {
        if (TheSeed().bytes > 0)
            std::printf("\nFiles: JPEG of %.2f MB, %s.\n", double(TheSeed().bytes) / (1024.0 * 1024.0),
                        TheSeed().withLegacy ? "EXIF, IPTC and XMP written by exiftool" : "XMP only (no exiftool)");
        std::printf("Ratios (per iteration, wall time; above 1 means the second is faster):\n");
        PrintRatio("1,000 JPEGs, exiftool / kivmeta", "exiftool", "kivmeta");
        PrintRatio("one JPEG, fits: Exempi handler / ours", "Exempi handler/fit", "file provider/fit");
        PrintRatio("one JPEG, grows: Exempi handler / ours", "Exempi handler/grow", "file provider/grow");
    }
    Terminate();
    return 0;
}
