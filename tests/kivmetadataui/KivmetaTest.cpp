// kivmeta end to end: the program run on JPEG files that the tests make,
// checked by reading the files back (with the metadata model, with exiftool
// when it is installed, and byte for byte where nothing may change), and the
// window driven in-process.
#include "Application.h"
#include "BindingTestSupport.h"
#include "CommandLine.h"
#include "MetadataDump.h"
#include "PropertyEditor.h"
#include "SampleImage.h"
#include "Screenshots.h"

#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadata/XMPMeta.h>
#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/MetadataDialog.h>
#include <kivui/UI_SubView.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

using kivmeta::PropertyEdit;
using kivtest::FileValue;
using kivtest::ReadAll;

// A packet with the kinds of values the panels show: language alternatives,
// ordered and unordered arrays, a struct, an array of structs, numbers,
// dates, choices and a read-only rational.
std::string const kPacket = kivtest::Packet(
    R"(<photoshop:City>Bergen</photoshop:City><photoshop:Urgency>3</photoshop:Urgency><xmp:Rating>3</xmp:Rating>)"
    R"(<xmp:CreateDate>2024-06-14T18:42:07+02:00</xmp:CreateDate><exif:FNumber>28/10</exif:FNumber>)"
    R"(<tiff:Make xmlns:tiff="http://ns.adobe.com/tiff/1.0/">Fjordcam</tiff:Make>)"
    R"(<dc:title><rdf:Alt><rdf:li xml:lang="x-default">Harbour</rdf:li></rdf:Alt></dc:title>)"
    R"(<dc:creator><rdf:Seq><rdf:li>Kari Nordmann</rdf:li></rdf:Seq></dc:creator>)"
    R"(<dc:subject><rdf:Bag><rdf:li>harbour</rdf:li><rdf:li>boats</rdf:li></rdf:Bag></dc:subject>)"
    R"(<Iptc4xmpCore:CreatorContactInfo rdf:parseType="Resource")"
    R"( xmlns:Iptc4xmpCore="http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/">)"
    R"(<Iptc4xmpCore:CiAdrCity>Bergen</Iptc4xmpCore:CiAdrCity></Iptc4xmpCore:CreatorContactInfo>)"
    R"(<Iptc4xmpExt:LocationShown xmlns:Iptc4xmpExt="http://iptc.org/std/Iptc4xmpExt/2008-02-29/"><rdf:Bag>)"
    R"(<rdf:li rdf:parseType="Resource"><Iptc4xmpExt:City>Bergen</Iptc4xmpExt:City></rdf:li>)"
    R"(</rdf:Bag></Iptc4xmpExt:LocationShown>)");

struct Outcome {
    int mStatus = -1;
    QString mOut;
    QString mErr;
};

Outcome RunKivmeta(QStringList const &arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KIVMETA_BINARY), arguments);
    if (!process.waitForFinished(120000)) return {-1, {}, QStringLiteral("timed out")}; // QProcess kills it
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()), QString::fromUtf8(process.readAllStandardError())};
}

// The lines of a dump or of exiftool's output, without the metadata date,
// which every save sets.
std::set<QString> Lines(QString const &text)
{
    std::set<QString> lines;
    for (QString const &line : text.split(u'\n', Qt::SkipEmptyParts)) {
        if (!line.startsWith(QLatin1String("xmp:MetadataDate=")) &&
            !line.simplified().contains(QLatin1String("] MetadataDate :")))
            lines.insert(line);
    }
    return lines;
}

// Lines in `a` and not in `b`.
std::set<QString> Minus(std::set<QString> const &a, std::set<QString> const &b)
{
    std::set<QString> out;
    std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::inserter(out, out.end()));
    return out;
}

// The library (and with it the XMP toolkit) is started once for the binary.
class LibraryEnvironment : public ::testing::Environment {
public:
    void SetUp() override { kivmetadataui::Initialize(); }
    void TearDown() override { kivmetadataui::Terminate(); }
};
::testing::Environment *const gLibrary = ::testing::AddGlobalTestEnvironment(new LibraryEnvironment);

class KivmetaTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(mFolder.isValid()); }

    QString MakeJpeg(QString const &name, std::string packet = kPacket)
    {
        QString const path = mFolder.filePath(name);
        QString error;
        EXPECT_TRUE(kivmeta::WriteJpegWithMetadata(path, kivmeta::PaintSamplePicture(QSize(64, 48)), packet, error))
            << error.toStdString();
        return path;
    }

    std::set<QString> Dump(QString const &path)
    {
        Outcome run = RunKivmeta({QStringLiteral("--dump"), path});
        EXPECT_EQ(run.mStatus, 0) << run.mErr.toStdString();
        return Lines(run.mOut);
    }

    QTemporaryDir mFolder;
};

constexpr char kDc[] = "http://purl.org/dc/elements/1.1/";
constexpr char kPhotoshop[] = "http://ns.adobe.com/photoshop/1.0/";

TEST(KivmetaCommandLineTest, ParsesOptionsAndRefusesMalformedOnes)
{
    kivmeta::CommandLine line;
    QString error;
    ASSERT_TRUE(kivmeta::ParseCommandLine(
        {"--set", "dc:title=a=b", "--delete=dc:subject", "--set=xmp:Rating=", "f.jpg", "--", "--odd.jpg"}, line, error))
        << error.toStdString();
    ASSERT_EQ(line.mEdits.size(), 3u);
    EXPECT_EQ(line.mEdits[0].mProperty, "dc:title");
    EXPECT_EQ(line.mEdits[0].mValue, "a=b"); // only the first '=' separates
    EXPECT_EQ(line.mEdits[1].mKind, PropertyEdit::Kind::Delete);
    EXPECT_EQ(line.mEdits[2].mValue, ""); // an empty value is a value
    EXPECT_EQ(line.mFiles, QStringList({"f.jpg", "--odd.jpg"}));

    ASSERT_TRUE(kivmeta::ParseCommandLine({"--screenshot", "shots", "--dump", "a.jpg"}, line, error));
    EXPECT_EQ(line.mScreenshotDir.value_or(""), "shots");
    EXPECT_EQ(line.mDumpFiles, QStringList({"a.jpg"}));

    QStringList const refused[] = {
        {"--set", "dc:title", "f.jpg"}, // no value
        {"--set", "title=x", "f.jpg"},  // no prefix
        {"--set", ":title=x", "f.jpg"}, // empty prefix
        {"--delete", "dc:", "f.jpg"},   // empty name
        {"--set"},                      // missing argument
        {"--screenshot"},               // missing folder
        {"--bogus"},                    // unknown option
        {"--set", "dc:title=x"},        // edits without a file
        {"--screenshot", "d", "--set", "dc:title=x", "f.jpg"},
    };
    for (QStringList const &arguments : refused) {
        error.clear();
        EXPECT_FALSE(kivmeta::ParseCommandLine(arguments, line, error)) << arguments.join(' ').toStdString();
        EXPECT_FALSE(error.isEmpty()) << arguments.join(' ').toStdString();
    }
}

TEST(KivmetaNamesTest, ScreenshotFileNamesAndWindowTitles)
{
    std::pair<QString, QString> const stems[] = {{"Description", "description"}, {"IPTC Core", "iptc-core"},
                                                 {"Audio/Video", "audio-video"}, {"Raw Data", "raw-data"},
                                                 {" GPS  Data ", "gps-data"},    {"***", "panel"}};
    for (auto const &[label, stem] : stems)
        EXPECT_EQ(kivmeta::PanelFileStem(label), stem) << label.toStdString();

    EXPECT_EQ(kivmeta::WindowTitleForFiles({"a.jpg"}), "a.jpg - kivmeta");
    EXPECT_EQ(kivmeta::WindowTitleForFiles({"a.jpg", "b.jpg", "c.jpg", "d.jpg"}),
              "a.jpg, b.jpg, c.jpg, d.jpg - kivmeta");
    QStringList many;
    for (int i = 0; i < 500; ++i)
        many << QStringLiteral("%1.jpg").arg(i);
    EXPECT_EQ(kivmeta::WindowTitleForFiles(many), "0.jpg, 1.jpg, 2.jpg and 497 more - kivmeta");
}

TEST(KivmetaDumpTest, ListsLeavesSortedWithItemsInNumericOrder)
{
    std::string body = "<dc:subject><rdf:Bag>";
    for (int i = 1; i <= 11; ++i)
        body += "<rdf:li>s" + std::to_string(i) + "</rdf:li>";
    body += R"(</rdf:Bag></dc:subject>
       <dc:description><rdf:Alt><rdf:li xml:lang="x-default">line one
line two \ end</rdf:li></rdf:Alt></dc:description>
       <Iptc4xmpCore:CreatorContactInfo rdf:parseType="Resource"
        xmlns:Iptc4xmpCore="http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/">
        <Iptc4xmpCore:CiAdrCity>Bergen</Iptc4xmpCore:CiAdrCity></Iptc4xmpCore:CreatorContactInfo>)";
    std::string error;
    auto meta = kivmetadata::XMPMeta::Parse(kivtest::Packet(body), &error);
    ASSERT_TRUE(meta) << error;
    QStringList lines = kivmeta::DumpLines(*meta);

    EXPECT_TRUE(lines.contains("Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiAdrCity=Bergen"))
        << lines.join('\n').toStdString();
    EXPECT_TRUE(lines.contains("dc:description[1]=line one\\nline two \\\\ end"));
    EXPECT_TRUE(lines.contains("dc:description[1]/?xml:lang=x-default"));
    // Items 1..11 in numeric order, and the whole list sorted.
    QStringList subjects = lines.filter(QStringLiteral("dc:subject["));
    ASSERT_EQ(subjects.size(), 11);
    for (int i = 0; i < 11; ++i)
        EXPECT_EQ(subjects[i], QStringLiteral("dc:subject[%1]=s%1").arg(i + 1));
    EXPECT_LT(lines.indexOf("Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiAdrCity=Bergen"),
              lines.indexOf("dc:description[1]=line one\\nline two \\\\ end"));
}

// Sets, and deletes of a whole property, a struct and a field in an array
// of structs, in one run: the dump differs in exactly those lines.
TEST_F(KivmetaTest, EditsChangeExactlyThosePropertiesAndNothingElse)
{
    QString const file = MakeJpeg("edit.jpg");
    std::set<QString> const before = Dump(file);
    ASSERT_TRUE(before.count("photoshop:City=Bergen"));

    Outcome run =
        RunKivmeta({"--set", "photoshop:City=Tromsø", "--set", "xmp:Rating=5", "--set", "dc:subject=sea; fjord",
                    "--delete", "dc:title", "--delete", "Iptc4xmpCore:CreatorContactInfo", "--delete",
                    "Iptc4xmpExt:LocationShown[1]/Iptc4xmpExt:City", file});
    ASSERT_EQ(run.mStatus, 0) << run.mErr.toStdString();

    std::set<QString> const after = Dump(file);
    EXPECT_EQ(Minus(before, after),
              (std::set<QString>{"photoshop:City=Bergen", "xmp:Rating=3", "dc:subject[1]=harbour",
                                 "dc:subject[2]=boats", "dc:title[1]=Harbour", "dc:title[1]/?xml:lang=x-default",
                                 "Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiAdrCity=Bergen",
                                 "Iptc4xmpExt:LocationShown[1]/Iptc4xmpExt:City=Bergen"}));
    EXPECT_EQ(Minus(after, before),
              (std::set<QString>{"photoshop:City=Tromsø", "xmp:Rating=5", "dc:subject[1]=sea", "dc:subject[2]=fjord"}));
}

TEST_F(KivmetaTest, ExiftoolSeesTheEditAndNothingElse)
{
    QString const exiftool = QStandardPaths::findExecutable(QStringLiteral("exiftool"));
    if (exiftool.isEmpty()) GTEST_SKIP() << "exiftool is not installed";
    auto readTags = [&exiftool](QString const &path) {
        QProcess process;
        // -a: exiftool otherwise hides XMP tags that share a name with IPTC ones.
        process.start(exiftool, {"-a", "-G1", "-s", "-XMP:All", "-charset", "UTF8", path});
        process.waitForFinished(60000);
        std::set<QString> tags;
        for (QString const &line : Lines(QString::fromUtf8(process.readAllStandardOutput())))
            tags.insert(line.simplified());
        return tags;
    };
    QString const file = MakeJpeg("exiftool.jpg");
    std::set<QString> const before = readTags(file);
    ASSERT_FALSE(before.empty());

    Outcome run = RunKivmeta({"--set", "dc:title=Harbour at night", "--delete", "photoshop:City", file});
    ASSERT_EQ(run.mStatus, 0) << run.mErr.toStdString();

    std::set<QString> const after = readTags(file);
    EXPECT_EQ(Minus(before, after), (std::set<QString>{"[XMP-dc] Title : Harbour", "[XMP-photoshop] City : Bergen"}));
    EXPECT_EQ(Minus(after, before), (std::set<QString>{"[XMP-dc] Title : Harbour at night"}));
}

TEST_F(KivmetaTest, RefusedValuesLeaveTheFileByteForByte)
{
    QString const file = MakeJpeg("refused.jpg");
    QByteArray const original = ReadAll(file);
    QStringList const refused[] = {
        {"--set", "xmp:Rating=abc"},                    // not a number
        {"--set", "photoshop:Urgency=12"},              // not one of the choices
        {"--set", "xmp:CreateDate=yesterday"},          // not a date
        {"--set", "exif:FNumber=2"},                    // a rational: read-only
        {"--set", "nope:Thing=1"},                      // unknown prefix
        {"--set", "dc:noSuchProperty=1"},               // unknown property
        {"--set", "Iptc4xmpCore:CreatorContactInfo=x"}, // a struct as a whole
        // A good edit before a bad one must not be saved either.
        {"--set", "photoshop:City=Oslo", "--set", "xmp:Rating=abc"},
    };
    for (QStringList arguments : refused) {
        arguments << file;
        Outcome run = RunKivmeta(arguments);
        EXPECT_NE(run.mStatus, 0) << arguments.join(' ').toStdString();
        EXPECT_TRUE(run.mErr.contains("kivmeta:"))
            << arguments.join(' ').toStdString() << ": " << run.mErr.toStdString();
        EXPECT_EQ(ReadAll(file), original) << arguments.join(' ').toStdString();
    }
}

TEST_F(KivmetaTest, UnwritableFilesAreReportedAndKept)
{
    QString const file = MakeJpeg("readonly.jpg");
    QByteArray const original = ReadAll(file);
    ASSERT_TRUE(QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    Outcome run = RunKivmeta({"--set", "dc:title=changed", file});
    QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
    EXPECT_NE(run.mStatus, 0);
    EXPECT_TRUE(run.mErr.contains("readonly.jpg")) << run.mErr.toStdString();
    EXPECT_EQ(ReadAll(file), original);

    Outcome missing = RunKivmeta({"--set", "dc:title=changed", mFolder.filePath("missing.jpg")});
    EXPECT_NE(missing.mStatus, 0);
    EXPECT_TRUE(missing.mErr.contains("missing.jpg")) << missing.mErr.toStdString();
}

TEST_F(KivmetaTest, DamagedPacketIsReportedAndNeverRewritten)
{
    QString const file = MakeJpeg("damaged.jpg");
    QByteArray bytes = ReadAll(file);
    qsizetype const at = bytes.indexOf("</rdf:RDF>");
    ASSERT_GT(at, 0);
    bytes[at + 2] = 'X'; // the packet no longer parses; the file keeps its size
    {
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
        out.write(bytes);
    }
    Outcome dump = RunKivmeta({"--dump", file});
    EXPECT_NE(dump.mStatus, 0);
    EXPECT_TRUE(dump.mErr.contains("damaged.jpg")) << dump.mErr.toStdString();

    Outcome set = RunKivmeta({"--set", "dc:title=x", file});
    EXPECT_NE(set.mStatus, 0);
    EXPECT_TRUE(set.mErr.contains("damaged.jpg")) << set.mErr.toStdString();
    EXPECT_EQ(ReadAll(file), bytes);
}

TEST_F(KivmetaTest, SeveralFilesGetTheEditAndKeepTheirOwnValues)
{
    QString const a = MakeJpeg("a.jpg");
    std::string packetB = kPacket;
    packetB.replace(packetB.find("Bergen"), 6, "Narvik"); // photoshop:City differs
    QString const b = MakeJpeg("b.jpg", packetB);

    Outcome run = RunKivmeta({"--set", "dc:title=Shared", a, b});
    ASSERT_EQ(run.mStatus, 0) << run.mErr.toStdString();
    EXPECT_EQ(FileValue(a, {kDc, "dc:title"}), "Shared");
    EXPECT_EQ(FileValue(b, {kDc, "dc:title"}), "Shared");
    EXPECT_EQ(FileValue(a, {kPhotoshop, "photoshop:City"}), "Bergen");
    EXPECT_EQ(FileValue(b, {kPhotoshop, "photoshop:City"}), "Narvik");

    Outcome dump = RunKivmeta({"--dump", a, "--dump", b});
    EXPECT_EQ(dump.mStatus, 0);
    EXPECT_TRUE(dump.mOut.contains("==> " + a + " <==") && dump.mOut.contains("==> " + b + " <=="));
}

// Without a file the window opens the embedded sample; the screenshots show
// one PNG per tab in both looks.
TEST_F(KivmetaTest, ScreenshotsOfTheEmbeddedSampleOnePngPerTabInBothLooks)
{
    QString const dir = mFolder.filePath("shots");
    Outcome run = RunKivmeta({"--screenshot", dir});
    ASSERT_EQ(run.mStatus, 0) << run.mErr.toStdString();

    // The same count per look as the window has tabs (whatever file it shows),
    // named <nn>-<panel>.png.
    auto provider = kivmetadata::FileMetaDataProvider::Open(MakeJpeg("any.jpg").toStdU16String());
    ASSERT_TRUE(provider);
    kivmetadataui::MetadataDialog window({provider});
    int const panels = window.CountPanels();
    ASSERT_GE(panels, 2);
    QString const firstPng = "01-" + kivmeta::PanelFileStem(window.Tabs()->tabText(0)) + ".png";
    for (QString look : {"v7", "v5"}) {
        QStringList pngs = QDir(dir + "/" + look).entryList({"[0-9][0-9]-*.png"}, QDir::Files, QDir::Name);
        ASSERT_EQ(pngs.size(), panels) << look.toStdString();
        EXPECT_EQ(pngs.first(), firstPng);
        EXPECT_EQ(pngs.last(), QStringLiteral("%1-raw-data.png").arg(panels, 2, 10, QLatin1Char('0')));
        for (QString const &png : pngs) {
            QImage image(dir + "/" + look + "/" + png);
            EXPECT_FALSE(image.isNull()) << png.toStdString();
            EXPECT_GT(image.width(), 300);
        }
        EXPECT_FALSE(QImage(dir + "/" + look + "/progress-saving.png").isNull()) << look.toStdString();
    }
    // The looks really differ.
    EXPECT_NE(ReadAll(dir + "/v7/" + firstPng), ReadAll(dir + "/v5/" + firstPng));
}

TEST_F(KivmetaTest, WindowEditsReachFilesOnlyOnOk)
{
    QString const a = MakeJpeg("wa.jpg");
    std::string packetB = kPacket;
    packetB.replace(packetB.find("Bergen"), 6, "Narvik");
    QString const b = MakeJpeg("wb.jpg", packetB);
    QByteArray const originalA = ReadAll(a), originalB = ReadAll(b);
    auto open = [](QString const &path) { return kivmetadata::FileMetaDataProvider::Open(path.toStdU16String()); };
    kivcore::utility::IntrusivePtr<kivui::UI_SubView> parent(new kivui::UI_SubView());

    {
        kivmetadataui::MetadataDialog window({open(a), open(b)});
        EXPECT_TRUE(window.windowTitle().contains("wa.jpg") && window.windowTitle().contains("wb.jpg"));
        QString error;
        ASSERT_TRUE(kivmeta::ApplyEdit(window.EditedProvider(), parent.get(),
                                       {PropertyEdit::Kind::Set, "dc:title", "Edited"}, error))
            << error.toStdString();
        // Cancel: the window goes, nothing is written.
    }
    EXPECT_EQ(ReadAll(a), originalA);
    EXPECT_EQ(ReadAll(b), originalB);

    {
        kivmetadataui::MetadataDialog window({open(a), open(b)});
        QString error;
        ASSERT_TRUE(kivmeta::ApplyEdit(window.EditedProvider(), parent.get(),
                                       {PropertyEdit::Kind::Set, "dc:title", "Edited"}, error));
        EXPECT_TRUE(window.Commit()) << window.LastSaveErrors().join('\n').toStdString();
    }
    EXPECT_EQ(FileValue(a, {kDc, "dc:title"}), "Edited");
    EXPECT_EQ(FileValue(b, {kDc, "dc:title"}), "Edited");
    EXPECT_EQ(FileValue(b, {kPhotoshop, "photoshop:City"}), "Narvik");
}

} // namespace
