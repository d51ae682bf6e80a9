#pragma once

#include <kivmetadata/Path.h>
#include <kivmetadata/kivmetadata_export.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kivmetadata {

// One XMP object (a parsed packet). Move-only: use Clone() for an
// independent deep copy. Option bits are numbered as the XMP toolkit numbers
// them, so values read from packets can be passed back unchanged.
class KIVMETADATA_EXPORT XMPMeta {
public:
    // Property option bits.
    static constexpr std::uint32_t kPropValueIsURI = 0x00000002;
    static constexpr std::uint32_t kPropHasQualifiers = 0x00000010;
    static constexpr std::uint32_t kPropIsQualifier = 0x00000020;
    static constexpr std::uint32_t kPropHasLang = 0x00000040;
    static constexpr std::uint32_t kPropValueIsStruct = 0x00000100;
    static constexpr std::uint32_t kPropValueIsArray = 0x00000200;
    static constexpr std::uint32_t kPropArrayIsOrdered = 0x00000400;
    static constexpr std::uint32_t kPropArrayIsAlternate = 0x00000800;
    static constexpr std::uint32_t kPropArrayIsAltText = 0x00001000;
    static constexpr std::uint32_t kPropIsSchemaNode = 0x80000000;
    static constexpr std::uint32_t kPropCompositeMask = kPropValueIsStruct | kPropValueIsArray;
    // Serialisation option bits.
    static constexpr std::uint32_t kSerializeOmitPacketWrapper = 0x00000010;
    static constexpr std::uint32_t kSerializeReadOnlyPacket = 0x00000020;
    static constexpr std::uint32_t kSerializeUseCompactFormat = 0x00000040;

    // One node met while iterating: a schema node (kPropIsSchemaNode, empty
    // path), a property, a struct field, an array item or a qualifier.
    struct Node {
        std::string mNamespace;
        std::string mPath;
        std::string mValue;
        std::uint32_t mOptions = 0;
    };

    XMPMeta(); // empty
    ~XMPMeta();
    XMPMeta(XMPMeta &&) noexcept;
    XMPMeta &operator=(XMPMeta &&) noexcept;
    XMPMeta(XMPMeta const &) = delete;
    XMPMeta &operator=(XMPMeta const &) = delete;

    // Parses a packet (with or without packet wrapper); null on malformed
    // input, with the toolkit's message in `error`. A packet past the limits
    // kivmeta reads (nesting, properties in one place, items, value length,
    // namespaces, size; see docs/formats.md), or with a DOCTYPE, NUL bytes or
    // invalid UTF-8, is refused before the toolkit sees it, `error` naming
    // the limit.
    static std::unique_ptr<XMPMeta> Parse(std::string_view packet, std::string *error = nullptr);
    // Replaces the content by the parsed packet, refused as Parse refuses; on
    // failure the content is left as it was.
    bool ParseFromBuffer(std::string_view packet, std::string *error = nullptr);

    // A deep copy that shares nothing with this object.
    std::unique_ptr<XMPMeta> Clone() const;
    // RDF/XML text. Option kSerializeOmitPacketWrapper (16) leaves out the
    // <?xpacket?> wrapper; padding is the number of padding bytes.
    std::string Serialize(std::uint32_t options = 0, std::uint32_t padding = 0) const;
    bool Serialize(std::string &out, std::uint32_t options, std::uint32_t padding, std::string *error) const;

    bool IsEmpty() const;

    // Property access by namespace and path (XMP path syntax). Each false
    // return means absent or refused; the toolkit's message goes to `error`.
    bool DoesPropertyExist(std::string const &ns, std::string const &path) const;
    bool GetProperty(std::string const &ns, std::string const &path, std::string &value,
                     std::uint32_t *options = nullptr) const;
    bool SetProperty(std::string const &ns, std::string const &path, std::string const &value,
                     std::uint32_t options = 0, std::string *error = nullptr);
    // Makes an empty struct or array (options name its form).
    bool SetComposite(std::string const &ns, std::string const &path, std::uint32_t options,
                      std::string *error = nullptr);
    bool DeleteProperty(std::string const &ns, std::string const &path);
    bool AppendArrayItem(std::string const &ns, std::string const &arrayPath, std::uint32_t arrayOptions,
                         std::string const &value, std::uint32_t itemOptions = 0, std::string *error = nullptr);
    // Items of the array at `path`; 0 when absent or not an array.
    int CountArrayItems(std::string const &ns, std::string const &path) const;
    // Language alternatives: "x-default" is the default item.
    bool GetLocalizedText(std::string const &ns, std::string const &path, std::string const &lang,
                          std::string &value) const;
    bool SetLocalizedText(std::string const &ns, std::string const &path, std::string const &lang,
                          std::string const &value, std::string *error = nullptr);

    // Visits the nodes in document order, below `ns`/`path` when given.
    // With `leavesOnly`, only simple values (and qualifiers) are reported;
    // with `topLevelOnly`, only schema nodes and top-level properties.
    // Return false from `visit` to stop.
    void Iterate(std::function<bool(Node const &)> const &visit, std::string const &ns = {},
                 std::string const &path = {}, bool topLevelOnly = false) const;
    // Namespace URIs that have at least one property, in document order.
    std::vector<std::string> Namespaces() const;
    // "prefix:name" paths of the top-level properties of a namespace.
    std::vector<std::string> TopLevelProperties(std::string const &ns) const;

    // Namespace registry of the toolkit (process-wide).
    static bool RegisterNamespace(std::string const &ns, std::string const &preferredPrefix,
                                  std::string *registeredPrefix = nullptr);
    static std::string PrefixForNamespace(std::string const &ns);
    static std::string NamespaceForPrefix(std::string const &prefix);

    // The toolkit's handle, for the library's own sources only.
    void *Handle() const;

private:
    bool ParseUnchecked(std::string_view packet, std::string *error);
    struct Private;
    std::unique_ptr<Private> d;
};

// Options of RemoveProperties and AppendProperties, numbered as the XMP
// toolkit numbers them.
inline constexpr std::uint32_t kUtilDoAllProperties = 0x0001;   // internal properties too
inline constexpr std::uint32_t kUtilReplaceOldValues = 0x0002;  // source wins over existing values
inline constexpr std::uint32_t kUtilDeleteEmptyValues = 0x0004; // an empty source value deletes

// Removes one property (ns and name given), all properties of a schema (ns
// only) or all properties (neither). Without kUtilDoAllProperties,
// properties defined as internal are kept.
KIVMETADATA_EXPORT void RemoveProperties(XMPMeta &meta, std::string const &ns, std::string const &name,
                                         std::uint32_t options);
// Copies the properties of `source` into `dest`. A property missing in
// `dest` is copied whole. An existing one is replaced with
// kUtilReplaceOldValues; otherwise structs are merged field by field, arrays
// get the source items they lack appended, and simple values are kept.
KIVMETADATA_EXPORT void AppendProperties(XMPMeta const &source, XMPMeta &dest, std::uint32_t options);

// Makes the top-level property `path` of `dest` a copy of the one in `source`
// (values, qualifiers and forms), or removes it when `source` lacks it.
KIVMETADATA_EXPORT void ReplaceProperty(XMPMeta const &source, XMPMeta &dest, std::string const &ns,
                                        std::string const &path);
// The top-level properties whose subtree differs in any node, value, option
// or qualifier between `before` and `after`, those present in only one of
// them included; in namespace and path order.
KIVMETADATA_EXPORT std::vector<Path> ChangedProperties(XMPMeta const &before, XMPMeta const &after);

} // namespace kivmetadata
