// The packet text editor on any packet the toolkit parses and the editor
// loads: photoshop:Headline replaced by a new element made by
// PropertyElement, dc:subject removed, the other top-level properties
// rewritten from the model, then the padding fitted to the old length and
// grown, as saving does. After each step the toolkit must read the text as
// the original with the same edits made on the model (ReplaceProperty):
// ChangedProperties finds nothing.
#include "FuzzRequire.h"
#include "PacketText_p.h"

#include <kivmetadata/Initialize.h>
#include <kivmetadata/XMPMeta.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace kivmetadata;
using kivmetadata::detail::PacketText;

constexpr char kDC[] = "http://purl.org/dc/elements/1.1/";
constexpr char kPS[] = "http://ns.adobe.com/photoshop/1.0/";
constexpr char kRdf[] = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
constexpr char kXml[] = "http://www.w3.org/XML/1998/namespace";
constexpr std::size_t kMaxRewritten = 8;

// The editor may refuse an edit it cannot make (an empty rdf:RDF), but never
// produce text it cannot read itself.
bool Edited(PacketText &text, char const *ns, char const *local, std::string const *element)
{
    std::string error;
    if (text.Replace(ns, local, element, error)) return true;
    REQUIRE(error.find("could not be read again") == std::string::npos);
    return false;
}

void RequireSame(XMPMeta const &expected, std::string const &text)
{
    std::string error;
    auto const actual = XMPMeta::Parse(text, &error);
    std::vector<Path> const changed = actual ? ChangedProperties(expected, *actual) : std::vector<Path>{};
    if (!actual || !changed.empty()) {
        std::fprintf(stderr, "edited packet:\n%s\n", text.c_str());
        if (!actual) std::fprintf(stderr, "does not parse: %s\n", error.c_str());
        for (Path const &path : changed)
            std::fprintf(stderr, "differs: %s %s\n", path.mNamespace.c_str(), path.mPath.c_str());
        std::fprintf(stderr, "expected:\n%s\n", expected.Serialize(XMPMeta::kSerializeOmitPacketWrapper).c_str());
        if (actual)
            std::fprintf(stderr, "read:\n%s\n", actual->Serialize(XMPMeta::kSerializeOmitPacketWrapper).c_str());
    }
    REQUIRE(actual != nullptr);
    REQUIRE(changed.empty());
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    REQUIRE(Initialize());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    std::string const packet(reinterpret_cast<char const *>(data), size);
    auto expected = XMPMeta::Parse(packet);
    if (!expected) return 0;
    PacketText text;
    std::string error;
    if (!text.Load(packet, error)) return 0;

    XMPMeta source;
    REQUIRE(source.SetProperty(kPS, "photoshop:Headline", "New & <improved> \"headline\""));
    std::string element;
    REQUIRE(detail::PropertyElement(source, kPS, "photoshop:Headline", element, error));
    ReplaceProperty(source, *expected, kPS, "photoshop:Headline");
    ReplaceProperty(source, *expected, kDC, "dc:subject");
    if (!Edited(text, kPS, "Headline", &element) || !Edited(text, kDC, "subject", nullptr)) return 0;
    RequireSame(*expected, text.Text());

    // Every other top-level property written back from the model, as saving
    // writes an edited one, changes nothing. Left out: properties the toolkit
    // itself does not read back as it wrote them, and those in the RDF and
    // XML namespaces (an rdf:x="" or xml:x="" attribute is a property to the
    // toolkit, syntax to the editor; no schema has them).
    std::vector<Path> properties;
    expected->Iterate(
        [&](XMPMeta::Node const &node) {
            if (!(node.mOptions & XMPMeta::kPropIsSchemaNode) && node.mNamespace != kRdf && node.mNamespace != kXml)
                properties.push_back({node.mNamespace, node.mPath});
            return properties.size() < kMaxRewritten;
        },
        {}, {}, true);
    for (Path const &property : properties) {
        XMPMeta single;
        ReplaceProperty(*expected, single, property.mNamespace, property.mPath);
        auto const again = XMPMeta::Parse(single.Serialize());
        if (!again || !ChangedProperties(single, *again).empty()) continue;
        if (!detail::PropertyElement(*expected, property.mNamespace, property.mPath, element, error)) continue;
        std::string const local = property.mPath.substr(property.mPath.find(':') + 1);
        if (!Edited(text, property.mNamespace.c_str(), local.c_str(), &element)) return 0;
    }
    if (!properties.empty()) RequireSame(*expected, text.Text());

    // In place: back to the old length when the padding allows it.
    if (text.FitTo(packet.size())) {
        REQUIRE(text.Text().size() == packet.size());
        RequireSame(*expected, text.Text());
    }
    std::size_t const grown = text.Text().size() + 150;
    REQUIRE(text.FitTo(grown) && text.Text().size() == grown);
    RequireSame(*expected, text.Text());
    return 0;
}
