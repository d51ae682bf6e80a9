#include "XmpContainers_p.h"

#include "TestImages.h"

#include <gtest/gtest.h>

#include <QJsonObject>
#include <QSet>
#include <QTemporaryDir>
#include <QtEndian>

#include <zlib.h>

#include <cstdint>
#include <string>

using namespace kivmetadata::detail;
using namespace testimages;
using Kind = XmpContainerKind;
using namespace std::string_view_literals;

namespace {

std::uint32_t Be32(std::string_view s, std::size_t i)
{
    return qFromBigEndian<std::uint32_t>(s.data() + i);
}

// A JPEG segment right after the first one (Qt writes APP0 first).
std::string AfterApp0(std::string const &jpeg, std::string_view segments)
{
    std::size_t const at = 4 + ((std::uint8_t(jpeg[4]) << 8) | std::uint8_t(jpeg[5]));
    return jpeg.substr(0, at) + std::string(segments) + jpeg.substr(at);
}

std::string ExtendedChunk(std::string_view guid, std::uint32_t total, std::uint32_t offset, std::string_view data)
{
    return App1(std::string("http://ns.adobe.com/xmp/extension/\0", 35) + std::string(guid) + Be(total, 4) +
                Be(offset, 4) + std::string(data));
}

constexpr char kRdf[] = "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
                        "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description rdf:about=\"\" ";

// A packet with xmp:Label, padding and, when given, xmpNote:HasExtendedXMP.
std::string Packet(std::string_view label, std::size_t padding = 0, std::string_view guid = {})
{
    return "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n" + std::string(kRdf) +
           "xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\" xmlns:xmpNote=\"http://ns.adobe.com/xmp/note/\" xmp:Label=\"" +
           std::string(label) + (guid.empty() ? "" : "\" xmpNote:HasExtendedXMP=\"" + std::string(guid)) +
           "\"/></rdf:RDF></x:xmpmeta>\n" + std::string(padding, ' ') + "<?xpacket end=\"w\"?>";
}

std::string Extended(std::size_t size)
{
    return kRdf + std::string("xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\" photoshop:Instructions=\"") +
           std::string(size, 'x') + "\"/></rdf:RDF></x:xmpmeta>";
}

std::string Written(std::string_view file, Kind kind, std::string_view packet, std::string_view extended = {})
{
    std::string out, error;
    EXPECT_TRUE(WriteXmpContainer(file, kind, packet, extended, ExtendedXmpGuid(extended), out, error)) << error;
    return out;
}

XmpContainerPacket Read(std::string_view file, Kind kind)
{
    XmpContainerPacket packet;
    std::string error;
    EXPECT_TRUE(ReadXmpContainer(file, kind, packet, error)) << error;
    return packet;
}

bool PngCrcsHold(std::string_view png)
{
    std::size_t pos = 8;
    for (std::uint32_t length; pos + 12 <= png.size(); pos += 12 + length) {
        length = Be32(png, pos);
        if (png.size() - pos - 12 < length ||
            crc32(0, reinterpret_cast<Bytef const *>(&png[pos + 4]), length + 4) != Be32(png, pos + 8 + length))
            break;
    }
    return pos == png.size();
}

struct Fixture {
    char const *mName;
    std::string mFile;
    Kind mKind;
};

std::vector<Fixture> Fixtures()
{
    std::string const jpeg = ImageBytes("JPG").toStdString();
    std::string const exif = App1(std::string("Exif\0\0II*\0\x08\0\0\0\0\0\0\0", 16));
    return {{"jpeg", jpeg, Kind::kJpeg},
            {"jpeg with Exif", AfterApp0(jpeg, exif), Kind::kJpeg},
            {"png", ImageBytes("PNG").toStdString(), Kind::kPng},
            {"tiff II", TiffBytes(true), Kind::kTiff},
            {"tiff MM", TiffBytes(false), Kind::kTiff}};
}

// The warnings exiftool gives for these bytes, written to `path`.
QSet<QString> Warnings(std::string const &bytes, QString const &path)
{
    QSet<QString> set;
    for (QString const &line :
         QString::fromUtf8(RunExiftool({"-validate", "-warning", "-a", "-s", WriteFile(path, bytes)}))
             .split(u'\n', Qt::SkipEmptyParts))
        if (line.startsWith(QStringLiteral("Warning "))) set.insert(line.section(u':', 1).trimmed());
    return set;
}

} // namespace

TEST(XmpContainersTest, AddsReplacesAndOverwritesThePacket)
{
    for (auto const &f : Fixtures()) {
        SCOPED_TRACE(f.mName);
        EXPECT_EQ(DetectXmpContainer(f.mFile), f.mKind);
        EXPECT_FALSE(Read(f.mFile, f.mKind).mFound);
        std::string why;

        std::string const one = Packet("One");
        std::string const added = Written(f.mFile, f.mKind, one);
        XmpContainerPacket const first = Read(added, f.mKind);
        EXPECT_EQ(first.mPacket, one);
        EXPECT_EQ(added.substr(first.mOffset, one.size()), one);
        EXPECT_TRUE(OnlyXmpContainerDiffers(f.mFile, added, f.mKind, why)) << why;
        // One changed byte outside the container: image data, or an entry of
        // TIFF's copied IFD0.
        std::size_t const image = f.mKind == Kind::kJpeg  ? added.size() - 3
                                  : f.mKind == Kind::kPng ? added.find("IDAT") + 5
                                                          : kTiffPixel;
        for (std::size_t at : {image, f.mKind == Kind::kTiff ? kTiffCopy + 2 + 12 * 5 + 9 : 0}) {
            std::string changed = added;
            changed[at] ^= 0x01;
            EXPECT_FALSE(OnlyXmpContainerDiffers(f.mFile, changed, f.mKind, why)) << at;
        }
        // The new container goes after SOI, APP0 and Exif; after IHDR; after
        // the padded file and the copy of IFD0 (tag 700 added).
        std::size_t const expected = f.mKind == Kind::kJpeg  ? f.mFile.find("\xFF\xDB") + 4 + 29
                                     : f.mKind == Kind::kPng ? 8 + 25 + 8 + 22
                                                             : kTiffCopy + 2 + 11 * 12 + 4;
        EXPECT_EQ(first.mOffset, expected);

        std::string const two = Packet("Two, longer", 3000);
        std::string const replaced = Written(added, f.mKind, two);
        XmpContainerPacket const second = Read(replaced, f.mKind);
        EXPECT_EQ(second.mPacket, two);
        EXPECT_TRUE(OnlyXmpContainerDiffers(added, replaced, f.mKind, why)) << why;
        EXPECT_TRUE(OnlyXmpContainerDiffers(f.mFile, replaced, f.mKind, why)) << why;

        std::string const three = Packet("Six, longer", 3000);
        std::string overwritten, error;
        ASSERT_TRUE(WriteXmpInPlace(replaced, f.mKind, second, three, overwritten, error)) << error;
        EXPECT_EQ(overwritten.size(), replaced.size());
        EXPECT_EQ(Read(overwritten, f.mKind).mPacket, three);
        EXPECT_TRUE(OnlyXmpContainerDiffers(replaced, overwritten, f.mKind, why)) << why;
        EXPECT_FALSE(WriteXmpInPlace(replaced, f.mKind, second, one, overwritten, error));
        EXPECT_FALSE(WriteXmpInPlace(f.mFile, f.mKind, second, three, overwritten, error));
        if (f.mKind == Kind::kPng) {
            EXPECT_TRUE(PngCrcsHold(added) && PngCrcsHold(replaced) && PngCrcsHold(overwritten));
        }
    }
}

TEST(XmpContainersTest, ExtendedXmpIsSplitAndReassembled)
{
    EXPECT_EQ(ExtendedXmpGuid(""), "D41D8CD98F00B204E9800998ECF8427E");
    std::string const jpeg = ImageBytes("JPG").toStdString();
    std::string file = jpeg;
    for (std::size_t size : {200000, 70000}) {
        std::string const extended = Extended(size), guid = ExtendedXmpGuid(extended);
        file = Written(file, Kind::kJpeg, Packet("Big", 0, guid), extended);
        XmpContainerPacket const read = Read(file, Kind::kJpeg);
        EXPECT_EQ(read.mExtended, extended);
        EXPECT_EQ(read.mExtendedGuid, guid);
        // Whole chunks, each segment header once, older chunks gone.
        std::size_t const chunks = (extended.size() + kJpegExtendedChunk - 1) / kJpegExtendedChunk;
        EXPECT_EQ(file.size(), jpeg.size() + 4 + 29 + read.mPacket.size() + extended.size() + chunks * (4 + 75));
    }

    std::string const a(32, 'A'), b(32, 'B');
    struct {
        char const *mName;
        std::string mNamed;
        std::string mChunks;
        char const *mExpected; // nullptr: an error
    } const cases[] = {
        {"out of order", a, ExtendedChunk(a, 6, 3, "def") + ExtendedChunk(a, 6, 0, "abc"), "abcdef"},
        {"named GUID wins", b, ExtendedChunk(a, 6, 0, "abc") + ExtendedChunk(b, 2, 0, "xy"), "xy"},
        {"only GUID, unnamed", "", ExtendedChunk(a, 3, 0, "abc"), "abc"},
        {"gap", a, ExtendedChunk(a, 9, 0, "abc") + ExtendedChunk(a, 9, 6, "ghi"), nullptr},
        {"overlap", a, ExtendedChunk(a, 5, 0, "abc") + ExtendedChunk(a, 5, 2, "cde"), nullptr},
        {"short", a, ExtendedChunk(a, 6, 0, "abc"), nullptr},
        {"lengths disagree", a, ExtendedChunk(a, 6, 0, "abc") + ExtendedChunk(a, 7, 3, "def"), nullptr},
        {"several GUIDs, none named", "", ExtendedChunk(a, 1, 0, "a") + ExtendedChunk(b, 1, 0, "b"), nullptr},
        {"truncated header", a, App1(std::string("http://ns.adobe.com/xmp/extension/\0", 35) + a), nullptr},
    };
    for (auto const &c : cases) {
        SCOPED_TRACE(c.mName);
        std::string const chunked = AfterApp0(
            jpeg, App1(std::string("http://ns.adobe.com/xap/1.0/\0", 29) + Packet("x", 0, c.mNamed)) + c.mChunks);
        XmpContainerPacket read;
        std::string error;
        EXPECT_EQ(ReadXmpContainer(chunked, Kind::kJpeg, read, error), c.mExpected != nullptr) << error;
        if (c.mExpected)
            EXPECT_EQ(read.mExtended, c.mExpected);
        else
            EXPECT_FALSE(error.empty());
    }
}

TEST(XmpContainersTest, DamagedFilesGiveErrorsNotCrashes)
{
    auto patch = [](std::string s, std::size_t at, std::string_view bytes) {
        return s.replace(at, bytes.size(), bytes);
    };
    std::string const jpeg = ImageBytes("JPG").toStdString(), png = ImageBytes("PNG").toStdString(),
                      tiff = TiffBytes(true);
    std::string const pngXmp = Written(png, Kind::kPng, Packet("p")), tiffXmp = Written(tiff, Kind::kTiff, Packet("t"));
    std::size_t const pngXmpChunk = pngXmp.find("iTXt") - 4, pngXmpEnd = pngXmpChunk + 12 + Be32(pngXmp, pngXmpChunk);
    struct {
        char const *mName;
        std::string mFile;
        Kind mKind;
        bool mWritable; // the writer replaces the bad container
    } const cases[] = {
        {"JPEG truncated segment", jpeg.substr(0, 12), Kind::kJpeg, false},
        {"JPEG segment past the end", patch(jpeg, 4, "\xFF\xF0"), Kind::kJpeg, false},
        {"JPEG segment length 1", patch(jpeg, 4, "\0\1"sv), Kind::kJpeg, false},
        {"JPEG garbage between segments", patch(jpeg, 4 + 16, "\x12"), Kind::kJpeg, false},
        {"PNG chunk past the end", patch(png, 8, "\0\xFF\xFF\xF0"sv), Kind::kPng, false},
        {"PNG without IEND", png.substr(0, png.size() - 12), Kind::kPng, false},
        {"PNG compressed XMP", patch(pngXmp, pngXmpChunk + 8 + 18, "\x01"), Kind::kPng, true},
        {"PNG XMP twice", pngXmp.substr(0, pngXmpEnd) + pngXmp.substr(pngXmpChunk), Kind::kPng, true},
        {"TIFF IFD0 past the end", patch(tiff, 4, "\xF0\xFF\0\0"sv), Kind::kTiff, false},
        {"TIFF entries past the end", patch(tiff, 8, "\xFF\x00"), Kind::kTiff, false},
        {"TIFF packet past the end", tiffXmp.substr(0, tiffXmp.size() - 1), Kind::kTiff, false},
        {"TIFF tag 700 of type LONG", patch(tiffXmp, kTiffCopy + 2 + 9 * 12 + 2, "\x04"), Kind::kTiff, false},
    };
    for (auto const &c : cases) {
        SCOPED_TRACE(c.mName);
        XmpContainerPacket read;
        std::string out, error;
        EXPECT_FALSE(ReadXmpContainer(c.mFile, c.mKind, read, error));
        EXPECT_FALSE(error.empty());
        EXPECT_EQ(WriteXmpContainer(c.mFile, c.mKind, Packet("new"), {}, {}, out, error), c.mWritable) << error;
    }
}

TEST(XmpContainersTest, ExiftoolReadsOurContainersWithoutNewWarnings)
{
    if (Exiftool().isEmpty()) GTEST_SKIP() << "exiftool is not installed";
    QTemporaryDir dir;
    QString const path = dir.filePath(QStringLiteral("file"));
    std::string const extended = Extended(200000), guid = ExtendedXmpGuid(extended);
    for (auto const &f : Fixtures()) {
        SCOPED_TRACE(f.mName);
        bool const jpeg = f.mKind == Kind::kJpeg;
        std::string const written =
            Written(f.mFile, f.mKind, Packet("Harbour", 0, jpeg ? guid : ""), jpeg ? extended : std::string());
        QJsonObject const tags = ExiftoolJson({"-XMP:all", WriteFile(path, written)});
        EXPECT_EQ(tags.value(QStringLiteral("Label")).toString(), QStringLiteral("Harbour"));
        EXPECT_EQ(tags.value(QStringLiteral("Instructions")).toString().size(), jpeg ? 200000 : 0);
        QSet<QString> const added = Warnings(written, path) - Warnings(f.mFile, path);
        EXPECT_TRUE(added.isEmpty()) << QStringList(added.begin(), added.end()).join(u'|').toStdString();
    }
}
