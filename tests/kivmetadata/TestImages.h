// Namespaces, small image files made at run time, file helpers and exiftool
// runners, shared by the tests of kivmetadata.
#pragma once

#include <gtest/gtest.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>

#include <cstdint>
#include <string>
#include <string_view>

// Namespaces of the schemas the tests use.
inline constexpr char kDC[] = "http://purl.org/dc/elements/1.1/";
inline constexpr char kXMP[] = "http://ns.adobe.com/xap/1.0/";
inline constexpr char kPhotoshop[] = "http://ns.adobe.com/photoshop/1.0/";
inline constexpr char kIptc[] = "http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/";
inline constexpr char kExif[] = "http://ns.adobe.com/exif/1.0/";
inline constexpr char kRights[] = "http://ns.adobe.com/xap/1.0/rights/";
inline constexpr char kCrs[] = "http://ns.adobe.com/camera-raw-settings/1.0/";
inline constexpr char kFoo[] = "http://foo.example/ns/"; // declared by no standard

namespace testimages {

// A 16x8 image as Qt writes it: "JPG" (APP0 first) or "PNG".
inline QByteArray ImageBytes(char const *format)
{
    QImage image(16, 8, QImage::Format_RGB32);
    image.fill(QColor(40, 120, 200));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

// Writes `bytes` to `path`, making its folder; returns the path.
inline QString WriteFile(QString const &path, QByteArrayView bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes.data(), bytes.size()) == bytes.size())
        << path.toStdString();
    return path;
}

inline QByteArray ReadFile(QString const &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// exiftool's path, or the empty string when it is not installed.
inline QString Exiftool()
{
    return QStandardPaths::findExecutable(QStringLiteral("exiftool"));
}

// exiftool's standard output for these arguments.
inline QByteArray RunExiftool(QStringList const &arguments)
{
    QProcess process;
    process.start(Exiftool(), arguments);
    process.waitForFinished(120000);
    return process.readAllStandardOutput();
}

// exiftool's JSON output (-j) for one file.
inline QJsonObject ExiftoolJson(QStringList const &arguments)
{
    return QJsonDocument::fromJson(RunExiftool(QStringList{QStringLiteral("-j")} + arguments)).array().at(0).toObject();
}

// `v` big-endian in `bytes` bytes.
inline std::string Be(std::uint32_t v, int bytes)
{
    std::string s;
    for (int i = bytes - 1; i >= 0; --i)
        s.push_back(char((v >> (8 * i)) & 0xFF));
    return s;
}

// A JPEG APP1 segment.
inline std::string App1(std::string_view payload)
{
    return "\xFF\xE1" + Be(std::uint32_t(payload.size() + 2), 2) + std::string(payload);
}

// One grey pixel with Software (an offset value) before and Copyright (an
// inline value) after where tag 700 goes, and an IFD1; 165 bytes.
constexpr std::size_t kTiffPixel = 164;
constexpr std::size_t kTiffCopy = 166; // where our writer puts a copy of IFD0

inline std::string TiffBytes(bool little)
{
    std::string b = little ? std::string("II*\0", 4) : std::string("MM\0*", 4);
    auto put = [&](std::uint32_t v, int bytes) {
        std::string const be = Be(v, bytes);
        b += little ? std::string(be.rbegin(), be.rend()) : be;
    };
    put(8, 4);
    struct Entry {
        std::uint16_t tag, type;
        std::uint32_t count, value;
    } const entries[] = {{256, 3, 1, 1},   {257, 3, 1, 1}, {258, 3, 1, 8}, {259, 3, 1, 1},    {262, 3, 1, 1},
                         {273, 4, 1, 164}, {278, 3, 1, 1}, {279, 4, 1, 1}, {305, 2, 12, 152}, {33432, 2, 4, 0}};
    put(std::size(entries), 2);
    for (auto const &e : entries) {
        put(e.tag, 2), put(e.type, 2), put(e.count, 4);
        // Inline values sit at the start of the field: SHORTs, and "(c)".
        put(e.tag == 33432 ? (little ? 0x00296328 : 0x28632900) : e.type == 3 && !little ? e.value << 16 : e.value, 4);
    }
    put(134, 4);
    put(1, 2), put(254, 2), put(4, 2), put(1, 4), put(1, 4), put(0, 4);
    b += std::string("kivtest 1.0\0", 12) + char(0x80);
    return b;
}

} // namespace testimages
