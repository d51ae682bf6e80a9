// The JPEG, PNG and TIFF container code on any bytes. Whenever a file reads:
// - the packet is the bytes stored at its offset;
// - writing a new container (twice over) gives a file that reads back with
//   exactly the new packet (and Extended XMP) and that
//   OnlyXmpContainerDiffers accepts;
// - writing a packet of the same length in place changes no byte but the
//   packet's (and a PNG chunk's CRC), and reads back the same way.
#include "FuzzRequire.h"
#include "XmpContainers_p.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using namespace kivmetadata::detail;
using Kind = XmpContainerKind;

std::string Filled(std::size_t length, std::string_view pattern)
{
    std::string s(length, ' ');
    for (std::size_t i = 0; i < length; ++i)
        s[i] = pattern[i % pattern.size()];
    return s;
}

// Lengths around the TIFF inline limit (4 bytes), and longer ones.
std::string NewPacket(std::size_t seed)
{
    static constexpr std::size_t kLengths[] = {1, 4, 5, 64, 1001};
    return Filled(kLengths[seed % std::size(kLengths)], "<x:xmpmeta xmlns:x='adobe:ns:meta/'/> ");
}

// None, one chunk, two chunks.
std::string NewExtended(std::size_t seed)
{
    static constexpr std::size_t kLengths[] = {0, 100, kJpegExtendedChunk + 7};
    return Filled(kLengths[seed % std::size(kLengths)], "extended ");
}

bool WriteAndReadBack(std::string_view file, Kind kind, std::string const &packet, std::string const &extended,
                      std::string &written)
{
    std::string const guid = extended.empty() ? std::string() : ExtendedXmpGuid(extended);
    std::string error;
    if (!WriteXmpContainer(file, kind, packet, extended, guid, written, error)) {
        // The one refusal a file that reads may get.
        REQUIRE(kind == Kind::kTiff && error.find("no room") != std::string::npos);
        return false;
    }
    XmpContainerPacket back;
    REQUIRE(ReadXmpContainer(written, kind, back, error));
    REQUIRE(back.mFound && back.mPacket == packet && back.mExtended == extended);
    REQUIRE(extended.empty() || back.mExtendedGuid == guid);
    REQUIRE(written.compare(back.mOffset, packet.size(), packet) == 0);
    REQUIRE(OnlyXmpContainerDiffers(file, written, kind, error));
    return true;
}

void CheckInPlace(std::string_view file, Kind kind, XmpContainerPacket const &before)
{
    // Spelled from the Extended XMP's GUID when there is one, so that the
    // packet still names it (the JPEG reader picks the group by it).
    std::string const packet =
        Filled(before.mPacket.size(), before.mExtendedGuid.empty() ? "in place " : before.mExtendedGuid);
    std::string out, error;
    REQUIRE(WriteXmpInPlace(file, kind, before, packet, out, error));
    REQUIRE(out.size() == file.size());
    std::size_t const begin = before.mOffset, end = begin + packet.size();
    REQUIRE(out.compare(begin, packet.size(), packet) == 0);
    for (std::size_t i = 0; i < file.size(); ++i) {
        if ((i >= begin && i < end) || out[i] == file[i]) continue;
        // The CRC right after the packet, which ends its chunk.
        REQUIRE(kind == Kind::kPng && i >= end && i < end + 4);
    }
    REQUIRE(OnlyXmpContainerDiffers(file, out, kind, error));

    XmpContainerPacket back;
    if (!ReadXmpContainer(out, kind, back, error)) {
        // Only when the new text happens to name another group's GUID.
        REQUIRE(!before.mExtendedGuid.empty() && error.rfind("JPEG: Extended XMP", 0) == 0);
        return;
    }
    REQUIRE(back.mFound && back.mOffset == before.mOffset && back.mPacket == packet);
    if (back.mExtendedGuid == before.mExtendedGuid) REQUIRE(back.mExtended == before.mExtended);
}

void Check(std::string_view file, Kind kind)
{
    XmpContainerPacket before;
    std::string error;
    if (!ReadXmpContainer(file, kind, before, error)) return;
    if (before.mFound) {
        REQUIRE(before.mOffset <= file.size() && file.substr(before.mOffset, before.mPacket.size()) == before.mPacket);
        CheckInPlace(file, kind, before);
    } else {
        REQUIRE(before.mPacket.empty() && before.mExtended.empty());
    }

    std::string const packet = NewPacket(file.size());
    std::string const extended = kind == Kind::kJpeg ? NewExtended(file.size() / 5) : std::string();
    std::string written;
    if (!WriteAndReadBack(file, kind, packet, extended, written)) return;
    // Over its own output, with other lengths.
    std::string again;
    WriteAndReadBack(written, kind, NewPacket(file.size() + 2),
                     kind == Kind::kJpeg ? NewExtended(file.size() / 5 + 1) : std::string(), again);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    std::string_view const file(reinterpret_cast<char const *>(data), size);
    // Every reader sees every input: each must refuse what is not its kind.
    for (Kind kind : {Kind::kJpeg, Kind::kPng, Kind::kTiff})
        Check(file, kind);
    REQUIRE(DetectXmpContainer(file) != Kind::kNone || [&] {
        XmpContainerPacket ignored;
        std::string error;
        for (Kind kind : {Kind::kJpeg, Kind::kPng, Kind::kTiff})
            if (ReadXmpContainer(file, kind, ignored, error)) return false;
        return true;
    }());
    return 0;
}
