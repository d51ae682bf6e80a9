// Private to kivmetadata: the limits a packet or one of our own XML files must
// keep before it is parsed for real. The XMP toolkit is quadratic in the
// number of named siblings and in nesting depth, so a hostile packet of a
// megabyte could freeze the host for minutes; one pass over the bytes
// measures it in milliseconds first. (QXmlStreamReader reads about 12 MB/s
// here, too slow for a check that runs on every open.)
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kivmetadata::detail {

// Chosen from what real files hold and what the toolkit parses in well under
// a second (docs/formats.md has the measurements).
struct XmlLimits {
    static constexpr std::size_t kMaxBytes = 32u << 20;
    static constexpr int kMaxDepth = 100;                   // XML elements, about 50 levels of XMP
    static constexpr int kMaxNamedSiblings = 3000;          // properties or fields in one place
    static constexpr int kMaxArrayItems = 100000;           // items of one array
    static constexpr int kMaxNodes = 150000;                // elements and property attributes
    static constexpr std::size_t kMaxValueLength = 8000000; // bytes
    static constexpr int kMaxNamespaces = 500;              // distinct namespace URIs
};

enum class XmlKind {
    kXmpPacket, // RDF: rdf:li children are array items, other children named properties
    kUserFile,  // our own formats: every child is a list entry
};

struct XmlMeasures {
    int mDepth = 0;
    int mNamedSiblings = 0; // the most in one place (top-level properties counted per namespace)
    int mArrayItems = 0;    // the most in one array
    int mNodes = 0;
    std::size_t mLongestValue = 0;
    int mNamespaces = 0;
};

// Empty when `bytes` keeps every limit and is well-formed; otherwise one
// sentence fragment that names what was found and the limit, such as "the XMP
// packet has 50,000 properties in one place; kivmeta reads at most 3,000".
// Refuses a DOCTYPE, NUL bytes and invalid UTF-8 too. Trailing NUL bytes,
// which some writers leave after a packet, are ignored. Well-formedness is
// left to the reader that comes next.
std::string XmlRefusal(std::string_view bytes, XmlKind kind, XmlMeasures *measures = nullptr);

inline std::string PacketRefusal(std::string_view packet, XmlMeasures *measures = nullptr)
{
    return XmlRefusal(packet, XmlKind::kXmpPacket, measures);
}

// The refusal for a file or packet of `size` bytes before it is read; empty
// when the size is within kMaxBytes.
std::string SizeRefusal(std::uint64_t size, XmlKind kind);

// Every XMP packet wrapper ("<?xpacket begin" to "<?xpacket end ...?>") found
// in `bytes`, checked with PacketRefusal; the first refusal, or empty. Used
// before the toolkit's own handlers or scanner read a file, since they parse
// what they find.
std::string WrappedPacketsRefusal(std::string_view bytes);

} // namespace kivmetadata::detail
