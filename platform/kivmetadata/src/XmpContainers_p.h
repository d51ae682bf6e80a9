// Private to kivmetadata, not API: finding and replacing the XMP container of
// JPEG, PNG and TIFF files byte by byte, so that a save changes nothing else
// in the file (Exempi's file handlers also rewrite EXIF, TIFF and IPTC data).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kivmetadata::detail {

enum class XmpContainerKind { kNone, kJpeg, kPng, kTiff };

// The largest standard packet that one JPEG APP1 segment may carry.
inline constexpr std::size_t kJpegMaxStandardPacket = 65502;
// Extended XMP data bytes per JPEG APP1 segment.
inline constexpr std::size_t kJpegExtendedChunk = 65400;

// By magic bytes only: JPEG FF D8 FF, the PNG signature, classic TIFF
// ("II*\0" or "MM\0*"; DNG and TIFF-based raw files are kTiff, BigTIFF is kNone).
XmpContainerKind DetectXmpContainer(std::string_view fileBytes);

struct XmpContainerPacket {
    bool mFound = false;       // the file has a standard XMP packet
    std::string mPacket;       // the standard packet exactly as stored
    std::string mExtended;     // JPEG Extended XMP, reassembled in offset order; empty when none
    std::string mExtendedGuid; // the 32-character GUID of mExtended
    std::size_t mOffset = 0;   // where mPacket starts in the file
};

// Fills `out` (mFound false when the file has no XMP) or returns false with a
// readable reason when the file or its container is damaged.
// JPEG: the first XMP APP1 segment is the standard packet. Extended chunks are
// grouped by GUID; the group whose GUID the standard packet names is used, or
// else the only group there is; that group must add up to its full length
// without gaps or overlaps, while other groups are ignored. Several groups of
// which the packet names none are an error. The GUID is not checked against
// the MD5 of the data (callers compare it with xmpNote:HasExtendedXMP), and
// Extended XMP without a standard packet is ignored.
// PNG: the iTXt chunk with keyword "XML:com.adobe.xmp"; a compressed one or a
// second one is an error. CRCs of the file's chunks are not verified.
// TIFF: tag 700 of IFD0, of type BYTE or UNDEFINED.
bool ReadXmpContainer(std::string_view fileBytes, XmpContainerKind kind, XmpContainerPacket &out, std::string &error);

// Overwrites the packet that ReadXmpContainer found in these same bytes
// (`where`) with `packet`, which must have the old packet's length; PNG gets
// the chunk CRC recomputed. Every other byte stays the same.
bool WriteXmpInPlace(std::string_view fileBytes, XmpContainerKind kind, XmpContainerPacket const &where,
                     std::string_view packet, std::string &out, std::string &error);

// Returns in `out` the whole file with its XMP container replaced, or added
// when it had none. `packet` must not be empty. `extended` (JPEG only) goes
// with `extendedGuid`, 32 characters, normally ExtendedXmpGuid(extended).
// JPEG: every XMP and Extended XMP APP1 segment is dropped; the new ones go
// where the first XMP segment was, or else after the APP0 and Exif APP1
// segments that follow SOI. The packet may have at most kJpegMaxStandardPacket
// bytes; Extended XMP is split into kJpegExtendedChunk-byte chunks.
// PNG: an uncompressed iTXt chunk replaces the first XMP chunk (others are
// dropped), or else goes right after IHDR.
// TIFF: the file is kept and the new bytes are appended. When IFD0 has tag
// 700, only that entry's count and offset change; otherwise a copy of IFD0
// with the new entry is appended and the header points at it.
bool WriteXmpContainer(std::string_view fileBytes, XmpContainerKind kind, std::string_view packet,
                       std::string_view extended, std::string_view extendedGuid, std::string &out, std::string &error);

// True when `written` differs from `original` only in what WriteXmpContainer
// or WriteXmpInPlace may change: the XMP segments of a JPEG, the XMP chunks of
// a PNG; for TIFF the tag-700 entry's count and offset and the old packet
// bytes (or, when IFD0 had no tag 700, the header's IFD0 offset, which must
// point at an appended copy of IFD0 with only tag 700 added), with anything
// else appended after the original bytes. Otherwise false with the reason.
bool OnlyXmpContainerDiffers(std::string_view original, std::string_view written, XmpContainerKind kind,
                             std::string &why);

// The uppercase hexadecimal MD5 of the Extended XMP, its GUID.
std::string ExtendedXmpGuid(std::string_view extended);

} // namespace kivmetadata::detail
