#include "XmpContainers_p.h"

#include <QByteArrayView>
#include <QCryptographicHash>

#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace kivmetadata::detail {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kJpegXmpSignature = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view kJpegExtendedSignature = "http://ns.adobe.com/xmp/extension/\0"sv;
constexpr std::string_view kJpegExifSignature = "Exif\0\0"sv;
constexpr std::size_t kGuidLength = 32;
// Signature, GUID, full length, offset.
constexpr std::size_t kExtendedHeader = kJpegExtendedSignature.size() + kGuidLength + 8;
constexpr std::size_t kJpegMaxPayload = 0xFFFF - 2;

constexpr std::string_view kPngSignature = "\x89PNG\r\n\x1a\n"sv;
constexpr std::string_view kPngXmpKeyword = "XML:com.adobe.xmp\0"sv;
// Keyword, compression flag and method, empty language tag and translated keyword.
constexpr std::string_view kPngXmpHeader = "XML:com.adobe.xmp\0\0\0\0\0"sv;
constexpr std::uint32_t kPngMaxChunk = 0x7FFFFFFF;

constexpr std::uint16_t kTiffXmpTag = 700;
constexpr std::uint16_t kTiffByte = 1;
constexpr std::uint16_t kTiffUndefined = 7;
constexpr std::size_t kTiffEntry = 12;

std::uint8_t Byte(std::string_view s, std::size_t i)
{
    return static_cast<std::uint8_t>(s[i]);
}

std::uint32_t Be16(std::string_view s, std::size_t i)
{
    return std::uint32_t(Byte(s, i)) << 8 | Byte(s, i + 1);
}

std::uint32_t Be32(std::string_view s, std::size_t i)
{
    return Be16(s, i) << 16 | Be16(s, i + 2);
}

void AppendBe(std::string &out, std::uint32_t v, int bytes)
{
    for (int i = bytes - 1; i >= 0; --i)
        out.push_back(char((v >> (8 * i)) & 0xFF));
}

std::string AtByte(std::size_t offset)
{
    return " at byte " + std::to_string(offset);
}

std::string Hex2(std::uint8_t v)
{
    static constexpr char kDigits[] = "0123456789ABCDEF";
    return {kDigits[v >> 4], kDigits[v & 0xF]};
}

// ---- JPEG ----

enum class JpegRole { kOther, kXmp, kExtended };

struct JpegSegment {
    std::size_t mBegin;   // first byte, fill bytes included
    std::size_t mPayload; // after the length field
    std::size_t mEnd;
    std::uint8_t mMarker;
    JpegRole mRole;
};

struct JpegLayout {
    std::vector<JpegSegment> mSegments; // between SOI and SOS (or EOI)
    std::size_t mTail = 0;              // the SOS or EOI marker: copied verbatim from here
};

bool ParseJpeg(std::string_view f, JpegLayout &layout, std::string &error)
{
    if (f.size() < 3 || Byte(f, 0) != 0xFF || Byte(f, 1) != 0xD8 || Byte(f, 2) != 0xFF) {
        error = "not a JPEG file";
        return false;
    }
    std::size_t pos = 2;
    while (pos < f.size()) {
        std::size_t const begin = pos;
        if (Byte(f, pos) != 0xFF) {
            error = "JPEG: no marker" + AtByte(pos);
            return false;
        }
        while (pos + 1 < f.size() && Byte(f, pos + 1) == 0xFF)
            ++pos;
        if (pos + 1 >= f.size()) break;
        std::uint8_t const marker = Byte(f, pos + 1);
        pos += 2;
        if (marker == 0xDA || marker == 0xD9) {
            layout.mTail = begin;
            return true;
        }
        if (marker == 0x00) {
            error = "JPEG: no marker" + AtByte(begin);
            return false;
        }
        if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) {
            layout.mSegments.push_back({begin, pos, pos, marker, JpegRole::kOther});
            continue;
        }
        if (pos + 2 > f.size()) {
            error = "JPEG: truncated segment FF" + Hex2(marker) + AtByte(begin);
            return false;
        }
        std::size_t const length = Be16(f, pos);
        if (length < 2 || length > f.size() - pos) {
            error = "JPEG: segment FF" + Hex2(marker) + AtByte(begin) +
                    (length < 2 ? " has a length below 2" : " runs past the end of the file");
            return false;
        }
        JpegSegment segment{begin, pos + 2, pos + length, marker, JpegRole::kOther};
        std::string_view const payload = f.substr(segment.mPayload, segment.mEnd - segment.mPayload);
        if (marker == 0xE1 && payload.starts_with(kJpegXmpSignature)) segment.mRole = JpegRole::kXmp;
        if (marker == 0xE1 && payload.starts_with(kJpegExtendedSignature)) segment.mRole = JpegRole::kExtended;
        layout.mSegments.push_back(segment);
        pos = segment.mEnd;
    }
    error = "JPEG: the file ends before the image data";
    return false;
}

std::string_view Payload(std::string_view f, JpegSegment const &s)
{
    return f.substr(s.mPayload, s.mEnd - s.mPayload);
}

bool ReadJpeg(std::string_view f, XmpContainerPacket &out, std::string &error)
{
    JpegLayout layout;
    if (!ParseJpeg(f, layout, error)) return false;
    struct Chunk {
        std::uint32_t mOffset;
        std::string_view mData;
    };
    struct Group {
        std::uint32_t mLength;
        std::vector<Chunk> mChunks;
    };
    std::map<std::string, Group, std::less<>> groups;
    for (JpegSegment const &s : layout.mSegments) {
        std::string_view const payload = Payload(f, s);
        if (s.mRole == JpegRole::kXmp && !out.mFound) {
            out.mFound = true;
            out.mOffset = s.mPayload + kJpegXmpSignature.size();
            out.mPacket = payload.substr(kJpegXmpSignature.size());
        } else if (s.mRole == JpegRole::kExtended) {
            if (payload.size() < kExtendedHeader) {
                error = "JPEG: Extended XMP segment" + AtByte(s.mBegin) + " is too short";
                return false;
            }
            std::size_t const at = kJpegExtendedSignature.size() + kGuidLength;
            std::uint32_t const length = Be32(payload, at);
            auto const [group, added] = groups.try_emplace(
                std::string(payload.substr(kJpegExtendedSignature.size(), kGuidLength)), Group{length, {}});
            if (group->second.mLength != length) {
                error = "JPEG: Extended XMP chunks of GUID " + group->first + " disagree on the full length";
                return false;
            }
            group->second.mChunks.push_back({Be32(payload, at + 4), payload.substr(kExtendedHeader)});
        }
    }
    if (!out.mFound || groups.empty()) return true;

    auto chosen = std::find_if(groups.begin(), groups.end(),
                               [&](auto const &g) { return out.mPacket.find(g.first) != std::string::npos; });
    if (chosen == groups.end()) {
        if (groups.size() > 1) {
            error = "JPEG: Extended XMP of several GUIDs, none of them named by the standard packet";
            return false;
        }
        chosen = groups.begin();
    }
    auto &[guid, group] = *chosen;
    std::stable_sort(group.mChunks.begin(), group.mChunks.end(),
                     [](Chunk const &a, Chunk const &b) { return a.mOffset < b.mOffset; });
    std::uint64_t covered = 0;
    for (Chunk const &c : group.mChunks) {
        if (c.mOffset != covered) {
            error = "JPEG: Extended XMP chunks of GUID " + guid + " do not add up at offset " + std::to_string(covered);
            return false;
        }
        covered += c.mData.size();
    }
    if (covered != group.mLength) {
        error = "JPEG: Extended XMP of GUID " + guid + " has " + std::to_string(covered) + " of its " +
                std::to_string(group.mLength) + " bytes";
        return false;
    }
    out.mExtended.reserve(group.mLength);
    for (Chunk const &c : group.mChunks)
        out.mExtended.append(c.mData);
    out.mExtendedGuid = guid;
    return true;
}

std::string JpegApp1(std::string_view signature, std::string_view header, std::string_view data)
{
    std::string s("\xFF\xE1", 2);
    AppendBe(s, std::uint32_t(2 + signature.size() + header.size() + data.size()), 2);
    s.append(signature).append(header).append(data);
    return s;
}

bool WriteJpeg(std::string_view f, std::string_view packet, std::string_view extended, std::string_view guid,
               std::string &out, std::string &error)
{
    if (packet.size() > kJpegMaxStandardPacket) {
        error = "JPEG: the XMP packet has " + std::to_string(packet.size()) + " bytes, more than the " +
                std::to_string(kJpegMaxStandardPacket) + " that one segment holds";
        return false;
    }
    if (!extended.empty() && guid.size() != kGuidLength) {
        error = "JPEG: the Extended XMP GUID must have 32 characters";
        return false;
    }
    if (extended.size() > std::numeric_limits<std::uint32_t>::max()) {
        error = "JPEG: the Extended XMP is larger than 4 GB";
        return false;
    }
    JpegLayout layout;
    if (!ParseJpeg(f, layout, error)) return false;

    std::string container = JpegApp1(kJpegXmpSignature, {}, packet);
    for (std::size_t offset = 0; offset < extended.size(); offset += kJpegExtendedChunk) {
        std::string header(guid);
        AppendBe(header, std::uint32_t(extended.size()), 4);
        AppendBe(header, std::uint32_t(offset), 4);
        container += JpegApp1(kJpegExtendedSignature, header, extended.substr(offset, kJpegExtendedChunk));
    }
    static_assert(kExtendedHeader + kJpegExtendedChunk <= kJpegMaxPayload);
    static_assert(kJpegXmpSignature.size() + kJpegMaxStandardPacket <= kJpegMaxPayload);

    auto const &segments = layout.mSegments;
    auto at =
        std::find_if(segments.begin(), segments.end(), [](JpegSegment const &s) { return s.mRole == JpegRole::kXmp; });
    if (at == segments.end()) {
        // After JFIF and Exif, where readers look first; stale Extended XMP
        // in between is dropped anyway.
        at = std::find_if(segments.begin(), segments.end(), [&](JpegSegment const &s) {
            return s.mRole == JpegRole::kOther && s.mMarker != 0xE0 &&
                   !(s.mMarker == 0xE1 && Payload(f, s).starts_with(kJpegExifSignature));
        });
    }
    out.clear();
    out.reserve(f.size() + container.size());
    out.append(f.substr(0, 2));
    for (auto it = segments.begin(); it != segments.end(); ++it) {
        if (it == at) out += container;
        if (it->mRole == JpegRole::kOther) out.append(f.substr(it->mBegin, it->mEnd - it->mBegin));
    }
    if (at == segments.end()) out += container;
    out.append(f.substr(layout.mTail));
    return true;
}

// ---- PNG ----

struct PngChunk {
    std::size_t mBegin;
    std::size_t mEnd;
    std::string_view mType;
    std::string_view mData;
    bool mXmp;
};

struct PngLayout {
    std::vector<PngChunk> mChunks; // IHDR to IEND
    std::size_t mTail = 0;         // after IEND
};

bool ParsePng(std::string_view f, PngLayout &layout, std::string &error)
{
    if (!f.starts_with(kPngSignature)) {
        error = "not a PNG file";
        return false;
    }
    std::size_t pos = kPngSignature.size();
    for (;;) {
        if (f.size() - pos < 12) {
            error = pos == f.size() ? "PNG: no IEND chunk" : "PNG: truncated chunk" + AtByte(pos);
            return false;
        }
        std::uint32_t const length = Be32(f, pos);
        if (length > kPngMaxChunk || length > f.size() - pos - 12) {
            error = "PNG: the length of the chunk" + AtByte(pos) + " runs past the end of the file";
            return false;
        }
        PngChunk chunk{pos, pos + 12 + length, f.substr(pos + 4, 4), f.substr(pos + 8, length), false};
        chunk.mXmp = chunk.mType == "iTXt" && chunk.mData.starts_with(kPngXmpKeyword);
        if (layout.mChunks.empty() && chunk.mType != "IHDR") {
            error = "PNG: the first chunk is not IHDR";
            return false;
        }
        layout.mChunks.push_back(chunk);
        pos = chunk.mEnd;
        if (chunk.mType == "IEND") {
            layout.mTail = pos;
            return true;
        }
    }
}

bool ReadPng(std::string_view f, XmpContainerPacket &out, std::string &error)
{
    PngLayout layout;
    if (!ParsePng(f, layout, error)) return false;
    for (PngChunk const &c : layout.mChunks) {
        if (!c.mXmp) continue;
        if (out.mFound) {
            error = "PNG: a second XMP iTXt chunk" + AtByte(c.mBegin);
            return false;
        }
        std::size_t pos = kPngXmpKeyword.size();
        if (c.mData.size() < pos + 2 || c.mData[pos] != 0 || c.mData[pos + 1] != 0) {
            error = "PNG: the XMP iTXt chunk" + AtByte(c.mBegin) + " is compressed";
            return false;
        }
        pos += 2;
        for (int field = 0; field < 2; ++field) { // language tag, translated keyword
            std::size_t const end = c.mData.find('\0', pos);
            if (end == std::string_view::npos) {
                error = "PNG: the XMP iTXt chunk" + AtByte(c.mBegin) + " is malformed";
                return false;
            }
            pos = end + 1;
        }
        out.mFound = true;
        out.mOffset = c.mBegin + 8 + pos;
        out.mPacket = c.mData.substr(pos);
    }
    return true;
}

std::uint32_t PngCrc(std::string_view typeAndData)
{
    uLong crc = crc32(0L, Z_NULL, 0);
    crc = crc32(crc, reinterpret_cast<Bytef const *>(typeAndData.data()), uInt(typeAndData.size()));
    return std::uint32_t(crc);
}

bool WritePng(std::string_view f, std::string_view packet, std::string &out, std::string &error)
{
    if (packet.size() > kPngMaxChunk - kPngXmpHeader.size()) {
        error = "PNG: the XMP packet is too large for a chunk";
        return false;
    }
    PngLayout layout;
    if (!ParsePng(f, layout, error)) return false;
    std::string chunk;
    AppendBe(chunk, std::uint32_t(kPngXmpHeader.size() + packet.size()), 4);
    chunk.append("iTXt").append(kPngXmpHeader).append(packet);
    AppendBe(chunk, PngCrc(std::string_view(chunk).substr(4)), 4);

    auto const &chunks = layout.mChunks;
    auto at = std::find_if(chunks.begin(), chunks.end(), [](PngChunk const &c) { return c.mXmp; });
    bool const replace = at != chunks.end();
    if (!replace) at = chunks.begin() + 1;
    out.clear();
    out.reserve(f.size() + chunk.size());
    out.append(kPngSignature);
    for (auto it = chunks.begin(); it != chunks.end(); ++it) {
        if (it == at) out += chunk;
        if (!it->mXmp) out.append(f.substr(it->mBegin, it->mEnd - it->mBegin));
    }
    out.append(f.substr(layout.mTail));
    return true;
}

// ---- TIFF ----

struct Tiff {
    bool mLittle = true;

    std::uint32_t U16(std::string_view s, std::size_t i) const
    {
        return mLittle ? std::uint32_t(Byte(s, i)) | std::uint32_t(Byte(s, i + 1)) << 8 : Be16(s, i);
    }
    std::uint32_t U32(std::string_view s, std::size_t i) const
    {
        return mLittle ? U16(s, i) | U16(s, i + 2) << 16 : Be32(s, i);
    }
    void Put(std::string &s, std::size_t i, std::uint32_t v, int bytes) const
    {
        for (int k = 0; k < bytes; ++k) {
            int const shift = mLittle ? 8 * k : 8 * (bytes - 1 - k);
            s[i + k] = char((v >> shift) & 0xFF);
        }
    }
};

struct TiffLayout {
    Tiff mTiff;
    std::size_t mIfd0 = 0;
    std::size_t mCount = 0;
    std::optional<std::size_t> mXmpEntry; // file offset of the tag-700 entry
    std::size_t mPacket = 0;
    std::size_t mPacketLength = 0;

    std::size_t Entry(std::size_t i) const { return mIfd0 + 2 + kTiffEntry * i; }
    std::size_t IfdEnd() const { return Entry(mCount) + 4; }
};

bool ParseTiff(std::string_view f, TiffLayout &layout, std::string &error)
{
    if (f.starts_with("II*\0"sv)) {
        layout.mTiff.mLittle = true;
    } else if (f.starts_with("MM\0*"sv)) {
        layout.mTiff.mLittle = false;
    } else {
        error = "not a classic TIFF file";
        return false;
    }
    Tiff const &t = layout.mTiff;
    if (f.size() < 8) {
        error = "TIFF: truncated header";
        return false;
    }
    layout.mIfd0 = t.U32(f, 4);
    if (layout.mIfd0 < 8 || layout.mIfd0 > f.size() - 2) {
        error = "TIFF: the IFD0 offset " + std::to_string(layout.mIfd0) + " is outside the file";
        return false;
    }
    layout.mCount = t.U16(f, layout.mIfd0);
    if (layout.IfdEnd() > f.size()) {
        error = "TIFF: IFD0" + AtByte(layout.mIfd0) + " runs past the end of the file";
        return false;
    }
    for (std::size_t i = 0; i < layout.mCount; ++i) {
        std::size_t const entry = layout.Entry(i);
        if (t.U16(f, entry) != kTiffXmpTag) continue;
        if (layout.mXmpEntry) {
            error = "TIFF: IFD0 has tag 700 twice";
            return false;
        }
        std::uint32_t const type = t.U16(f, entry + 2);
        if (type != kTiffByte && type != kTiffUndefined) {
            error = "TIFF: tag 700 has type " + std::to_string(type) + ", not BYTE or UNDEFINED";
            return false;
        }
        layout.mXmpEntry = entry;
        layout.mPacketLength = t.U32(f, entry + 4);
        layout.mPacket = layout.mPacketLength <= 4 ? entry + 8 : t.U32(f, entry + 8);
        if (layout.mPacket > f.size() || layout.mPacketLength > f.size() - layout.mPacket) {
            error = "TIFF: the XMP packet of tag 700 runs past the end of the file";
            return false;
        }
        // Written in place, such a packet would overwrite the file's structure.
        if (layout.mPacketLength > 4 &&
            (layout.mPacket < 8 ||
             (layout.mPacket < layout.IfdEnd() && layout.mPacket + layout.mPacketLength > layout.mIfd0))) {
            error = "TIFF: the XMP packet of tag 700 overlaps the header or IFD0";
            return false;
        }
    }
    return true;
}

bool ReadTiff(std::string_view f, XmpContainerPacket &out, std::string &error)
{
    TiffLayout layout;
    if (!ParseTiff(f, layout, error)) return false;
    if (layout.mXmpEntry) {
        out.mFound = true;
        out.mOffset = layout.mPacket;
        out.mPacket = f.substr(layout.mPacket, layout.mPacketLength);
    }
    return true;
}

// A tag-700 entry's count and value, the packet going inline when it fits.
void SetTiffXmpValue(Tiff const &t, std::string &out, std::size_t entry, std::string_view packet)
{
    t.Put(out, entry + 4, std::uint32_t(packet.size()), 4);
    if (packet.size() <= 4) {
        out.replace(entry + 8, 4, 4, '\0');
        out.replace(entry + 8, packet.size(), packet);
    } else {
        t.Put(out, entry + 8, std::uint32_t(out.size()), 4);
        out.append(packet);
    }
}

bool WriteTiff(std::string_view f, std::string_view packet, std::string &out, std::string &error)
{
    TiffLayout layout;
    if (!ParseTiff(f, layout, error)) return false;
    if (!layout.mXmpEntry && layout.mCount == 0xFFFF) {
        error = "TIFF: IFD0 has no room for another entry";
        return false;
    }
    std::size_t const ifdSize = 2 + kTiffEntry * (layout.mCount + 1) + 4;
    if (f.size() + 1 + ifdSize + packet.size() > std::numeric_limits<std::uint32_t>::max()) {
        error = "TIFF: the file would grow past 4 GB";
        return false;
    }
    Tiff const &t = layout.mTiff;
    out.assign(f);
    // Appended values start on a word boundary.
    bool const inline4 = layout.mXmpEntry && packet.size() <= 4;
    if (out.size() % 2 && !inline4) out.push_back('\0');
    if (layout.mXmpEntry) {
        SetTiffXmpValue(t, out, *layout.mXmpEntry, packet);
        return true;
    }
    std::size_t const copy = out.size();
    out.resize(copy + ifdSize, '\0');
    t.Put(out, copy, std::uint32_t(layout.mCount + 1), 2);
    std::size_t entry = copy + 2;
    std::size_t xmpEntry = 0;
    bool inserted = false;
    for (std::size_t i = 0; i < layout.mCount; ++i, entry += kTiffEntry) {
        if (!inserted && t.U16(f, layout.Entry(i)) > kTiffXmpTag) {
            xmpEntry = entry;
            entry += kTiffEntry;
            inserted = true;
        }
        out.replace(entry, kTiffEntry, f.substr(layout.Entry(i), kTiffEntry));
    }
    if (!inserted) xmpEntry = entry;
    out.replace(copy + ifdSize - 4, 4, f.substr(layout.Entry(layout.mCount), 4));
    t.Put(out, xmpEntry, kTiffXmpTag, 2);
    t.Put(out, xmpEntry + 2, kTiffByte, 2);
    SetTiffXmpValue(t, out, xmpEntry, packet);
    t.Put(out, 4, std::uint32_t(copy), 4);
    return true;
}

// ---- comparing ----

struct Piece {
    std::size_t mOffset;
    std::string_view mBytes;
};

bool SamePieces(std::vector<Piece> const &a, std::vector<Piece> const &b, char const *what, std::string &why)
{
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        if (a[i].mBytes != b[i].mBytes) {
            why = std::string(what) + AtByte(a[i].mOffset) + " of the original changed";
            return false;
        }
    }
    if (a.size() != b.size()) {
        why = std::string("the number of ") + what + "s outside the XMP container changed";
        return false;
    }
    return true;
}

std::optional<std::vector<Piece>> JpegPieces(std::string_view f, std::string &error)
{
    JpegLayout layout;
    if (!ParseJpeg(f, layout, error)) return std::nullopt;
    std::vector<Piece> pieces{{0, f.substr(0, 2)}};
    for (JpegSegment const &s : layout.mSegments) {
        if (s.mRole == JpegRole::kOther) pieces.push_back({s.mBegin, f.substr(s.mBegin, s.mEnd - s.mBegin)});
    }
    pieces.push_back({layout.mTail, f.substr(layout.mTail)});
    return pieces;
}

std::optional<std::vector<Piece>> PngPieces(std::string_view f, std::string &error)
{
    PngLayout layout;
    if (!ParsePng(f, layout, error)) return std::nullopt;
    std::vector<Piece> pieces{{0, f.substr(0, kPngSignature.size())}};
    for (PngChunk const &c : layout.mChunks) {
        if (!c.mXmp) pieces.push_back({c.mBegin, f.substr(c.mBegin, c.mEnd - c.mBegin)});
    }
    pieces.push_back({layout.mTail, f.substr(layout.mTail)});
    return pieces;
}

bool TiffOnlyXmpDiffers(std::string_view original, std::string_view written, std::string &why)
{
    TiffLayout a, b;
    if (!ParseTiff(original, a, why)) {
        why = "the original: " + why;
        return false;
    }
    if (!ParseTiff(written, b, why)) {
        why = "the written file: " + why;
        return false;
    }
    if (written.size() < original.size()) {
        why = "the written file is shorter than the original";
        return false;
    }
    if (a.mTiff.mLittle != b.mTiff.mLittle) {
        why = "the byte order changed";
        return false;
    }
    if (!b.mXmpEntry) {
        why = "the written file has no tag 700";
        return false;
    }
    std::vector<std::pair<std::size_t, std::size_t>> changeable; // [begin, end) in the original
    if (a.mXmpEntry) {
        if (b.mIfd0 != a.mIfd0) {
            why = "the IFD0 offset changed although IFD0 had tag 700";
            return false;
        }
        changeable.emplace_back(*a.mXmpEntry + 4, *a.mXmpEntry + kTiffEntry);
        changeable.emplace_back(a.mPacket, a.mPacket + a.mPacketLength);
    } else {
        if (b.mIfd0 < original.size() || b.mCount != a.mCount + 1) {
            why = "IFD0 was not replaced by an appended copy with one more entry";
            return false;
        }
        // The copy holds the old entries in order around the new one, and the
        // same next-IFD offset.
        for (std::size_t i = 0, j = 0; j < b.mCount; ++j) {
            if (b.Entry(j) == *b.mXmpEntry) continue;
            if (original.substr(a.Entry(i), kTiffEntry) != written.substr(b.Entry(j), kTiffEntry)) {
                why = "entry " + std::to_string(i) + " of IFD0 changed in its copy";
                return false;
            }
            ++i;
        }
        if (original.substr(a.IfdEnd() - 4, 4) != written.substr(b.IfdEnd() - 4, 4)) {
            why = "the next-IFD offset changed in the copy of IFD0";
            return false;
        }
        changeable.emplace_back(4, 8);
    }
    std::sort(changeable.begin(), changeable.end());
    std::size_t pos = 0;
    auto const compareUpTo = [&](std::size_t end) {
        if (end > pos) {
            auto const [x, y] = std::mismatch(original.begin() + pos, original.begin() + end, written.begin() + pos);
            if (x != original.begin() + end) {
                why = "byte " + std::to_string(x - original.begin()) + " of the original changed";
                return false;
            }
        }
        pos = std::max(pos, end);
        return true;
    };
    for (auto const &[begin, end] : changeable) {
        if (!compareUpTo(begin)) return false;
        pos = std::max(pos, end);
    }
    return compareUpTo(original.size());
}

} // namespace

XmpContainerKind DetectXmpContainer(std::string_view f)
{
    if (f.size() >= 3 && Byte(f, 0) == 0xFF && Byte(f, 1) == 0xD8 && Byte(f, 2) == 0xFF) return XmpContainerKind::kJpeg;
    if (f.starts_with(kPngSignature)) return XmpContainerKind::kPng;
    if (f.starts_with("II*\0"sv) || f.starts_with("MM\0*"sv)) return XmpContainerKind::kTiff;
    return XmpContainerKind::kNone;
}

bool ReadXmpContainer(std::string_view fileBytes, XmpContainerKind kind, XmpContainerPacket &out, std::string &error)
{
    out = XmpContainerPacket{};
    switch (kind) {
    case XmpContainerKind::kJpeg:
        return ReadJpeg(fileBytes, out, error);
    case XmpContainerKind::kPng:
        return ReadPng(fileBytes, out, error);
    case XmpContainerKind::kTiff:
        return ReadTiff(fileBytes, out, error);
    case XmpContainerKind::kNone:
        break;
    }
    error = "not a JPEG, PNG or TIFF file";
    return false;
}

bool WriteXmpInPlace(std::string_view fileBytes, XmpContainerKind kind, XmpContainerPacket const &where,
                     std::string_view packet, std::string &out, std::string &error)
{
    XmpContainerPacket now;
    if (!ReadXmpContainer(fileBytes, kind, now, error)) return false;
    if (!now.mFound || !where.mFound) {
        error = "the file has no XMP packet to overwrite";
        return false;
    }
    if (now.mOffset != where.mOffset || now.mPacket != where.mPacket) {
        error = "the file is not the one whose XMP packet was read";
        return false;
    }
    if (packet.size() != now.mPacket.size()) {
        error = "a packet written in place must have the old packet's " + std::to_string(now.mPacket.size()) +
                " bytes, not " + std::to_string(packet.size());
        return false;
    }
    out.assign(fileBytes);
    out.replace(now.mOffset, packet.size(), packet);
    if (kind == XmpContainerKind::kPng) {
        PngLayout layout;
        ParsePng(out, layout, error);
        for (PngChunk const &c : layout.mChunks) {
            if (c.mBegin < now.mOffset && now.mOffset < c.mEnd) {
                std::string crc;
                AppendBe(crc, PngCrc(std::string_view(out).substr(c.mBegin + 4, c.mEnd - c.mBegin - 8)), 4);
                out.replace(c.mEnd - 4, 4, crc);
            }
        }
    }
    return true;
}

bool WriteXmpContainer(std::string_view fileBytes, XmpContainerKind kind, std::string_view packet,
                       std::string_view extended, std::string_view extendedGuid, std::string &out, std::string &error)
{
    if (packet.empty()) {
        error = "the XMP packet is empty";
        return false;
    }
    if (!extended.empty() && kind != XmpContainerKind::kJpeg) {
        error = "only JPEG files carry Extended XMP";
        return false;
    }
    switch (kind) {
    case XmpContainerKind::kJpeg:
        return WriteJpeg(fileBytes, packet, extended, extendedGuid, out, error);
    case XmpContainerKind::kPng:
        return WritePng(fileBytes, packet, out, error);
    case XmpContainerKind::kTiff:
        return WriteTiff(fileBytes, packet, out, error);
    case XmpContainerKind::kNone:
        break;
    }
    error = "not a JPEG, PNG or TIFF file";
    return false;
}

bool OnlyXmpContainerDiffers(std::string_view original, std::string_view written, XmpContainerKind kind,
                             std::string &why)
{
    auto const pieces = [&](std::string_view f, std::string const &name) {
        std::optional<std::vector<Piece>> p;
        if (kind == XmpContainerKind::kJpeg) p = JpegPieces(f, why);
        if (kind == XmpContainerKind::kPng) p = PngPieces(f, why);
        if (!p) why = name + ": " + why;
        return p;
    };
    switch (kind) {
    case XmpContainerKind::kJpeg:
    case XmpContainerKind::kPng: {
        auto const a = pieces(original, "the original");
        if (!a) return false;
        auto const b = pieces(written, "the written file");
        if (!b) return false;
        return SamePieces(*a, *b, kind == XmpContainerKind::kJpeg ? "the JPEG segment" : "the PNG chunk", why);
    }
    case XmpContainerKind::kTiff:
        return TiffOnlyXmpDiffers(original, written, why);
    case XmpContainerKind::kNone:
        break;
    }
    why = "not a JPEG, PNG or TIFF file";
    return false;
}

std::string ExtendedXmpGuid(std::string_view extended)
{
    QByteArray const md5 =
        QCryptographicHash::hash(QByteArrayView(extended.data(), qsizetype(extended.size())), QCryptographicHash::Md5);
    return md5.toHex().toUpper().toStdString();
}

} // namespace kivmetadata::detail
