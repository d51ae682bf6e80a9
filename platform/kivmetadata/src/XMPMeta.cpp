#include <kivmetadata/XMPMeta.h>

#include "PacketLimits_p.h"
#include "PropertySnapshot_p.h"
#include "XmpHandles_p.h"

#include <kivmetadata/Definitions.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>

#include <exempi/xmpconsts.h>

#include <cstring>
#include <map>

namespace kivmetadata {

namespace detail {

std::string XmpErrorText(int code)
{
    switch (code) {
    case 0:
        return "unknown error";
    case -1:
        return "unknown error";
    case -2:
        return "TBD";
    case -3:
        return "unavailable";
    case -4:
        return "bad object";
    case -5:
        return "bad parameter";
    case -6:
        return "bad value";
    case -7:
        return "assertion failure";
    case -8:
        return "enforce failure";
    case -9:
        return "unimplemented";
    case -10:
        return "internal failure";
    case -11:
        return "deprecated";
    case -12:
        return "external failure";
    case -13:
        return "user abort";
    case -14:
        return "standard exception";
    case -15:
        return "unknown exception";
    case -16:
        return "out of memory";
    case -101:
        return "schema namespace and prefix do not match";
    case -102:
        return "bad property path";
    case -103:
        return "bad options";
    case -104:
        return "bad index";
    case -105:
        return "bad iteration position";
    case -106:
        return "bad parse";
    case -107:
        return "bad serialisation";
    case -108:
        return "bad file format";
    case -109:
        return "no file handler";
    case -110:
        return "file too large for JPEG";
    case -111:
        return "no file";
    case -112:
        return "file permission denied";
    case -113:
        return "disk space";
    case -114:
        return "read error";
    case -115:
        return "write error";
    case -116:
        return "bad block format";
    case -117:
        return "file path is not a file";
    case -118:
        return "file is not accessible";
    case -201:
        return "malformed XML";
    case -202:
        return "malformed RDF";
    case -203:
        return "malformed XMP";
    case -204:
        return "empty iterator";
    case -205:
        return "bad Unicode";
    case -206:
        return "bad TIFF";
    case -207:
        return "bad JPEG";
    case -208:
        return "bad PSD";
    case -209:
        return "bad PSIR";
    case -210:
        return "bad IPTC";
    case -211:
        return "bad MPEG";
    default:
        return "XMP toolkit error " + std::to_string(code);
    }
}

} // namespace detail

using detail::XmpErrorText;
using detail::XmpIterator;
using detail::XmpString;

struct XMPMeta::Private {
    XmpPtr ptr = nullptr;
    explicit Private(XmpPtr p) : ptr(p) {}
    ~Private()
    {
        if (ptr) xmp_free(ptr);
    }
};

namespace {

void SetError(std::string *error, int code)
{
    if (error) *error = XmpErrorText(code);
}

std::string StripColon(std::string prefix)
{
    if (!prefix.empty() && prefix.back() == ':') prefix.pop_back();
    return prefix;
}

} // namespace

XMPMeta::XMPMeta() : d(std::make_unique<Private>(xmp_new_empty())) {}
XMPMeta::~XMPMeta() = default;
XMPMeta::XMPMeta(XMPMeta &&other) noexcept : d(std::move(other.d))
{
    other.d = std::make_unique<Private>(xmp_new_empty());
}
XMPMeta &XMPMeta::operator=(XMPMeta &&other) noexcept
{
    std::swap(d, other.d);
    return *this;
}

std::unique_ptr<XMPMeta> XMPMeta::Parse(std::string_view packet, std::string *error)
{
    auto meta = std::make_unique<XMPMeta>();
    if (!meta->ParseFromBuffer(packet, error)) return nullptr;
    return meta;
}

bool XMPMeta::ParseFromBuffer(std::string_view packet, std::string *error)
{
    if (std::string refusal = detail::PacketRefusal(packet); !refusal.empty()) {
        if (error) *error = std::move(refusal);
        return false;
    }
    return ParseUnchecked(packet, error);
}

bool XMPMeta::ParseUnchecked(std::string_view packet, std::string *error)
{
    // Parse into a fresh object so that a failure leaves this one intact.
    XmpPtr fresh = xmp_new_empty();
    if (!fresh) {
        SetError(error, xmp_get_error());
        return false;
    }
    if (!packet.empty() && !xmp_parse(fresh, packet.data(), packet.size())) {
        int code = xmp_get_error();
        xmp_free(fresh);
        SetError(error, code);
        return false;
    }
    if (d->ptr) xmp_free(d->ptr);
    d->ptr = fresh;
    return true;
}

std::unique_ptr<XMPMeta> XMPMeta::Clone() const
{
    // xmp_copy shares the tree with the original; serialising and parsing
    // again gives an independent one.
    std::string text;
    if (!Serialize(text, kSerializeOmitPacketWrapper, 0, nullptr)) return std::make_unique<XMPMeta>();
    // Our own serialisation: edits may have grown it past the limits that
    // guard packets from outside, and a copy must never lose any of it.
    auto copy = std::make_unique<XMPMeta>();
    copy->ParseUnchecked(text, nullptr);
    return copy;
}

std::string XMPMeta::Serialize(std::uint32_t options, std::uint32_t padding) const
{
    std::string out;
    Serialize(out, options, padding, nullptr);
    return out;
}

bool XMPMeta::Serialize(std::string &out, std::uint32_t options, std::uint32_t padding, std::string *error) const
{
    XmpString buffer;
    if (!xmp_serialize(d->ptr, buffer, options, padding)) {
        SetError(error, xmp_get_error());
        return false;
    }
    out = buffer.str();
    return true;
}

bool XMPMeta::IsEmpty() const
{
    bool empty = true;
    Iterate(
        [&](Node const &) {
            empty = false;
            return false;
        },
        {}, {}, true);
    return empty;
}

bool XMPMeta::DoesPropertyExist(std::string const &ns, std::string const &path) const
{
    if (ns.empty() || path.empty()) return false;
    return xmp_has_property(d->ptr, ns.c_str(), path.c_str());
}

bool XMPMeta::GetProperty(std::string const &ns, std::string const &path, std::string &value,
                          std::uint32_t *options) const
{
    if (ns.empty() || path.empty()) return false;
    XmpString buffer;
    uint32_t opts = 0;
    if (!xmp_get_property(d->ptr, ns.c_str(), path.c_str(), buffer, &opts)) return false;
    value = buffer.str();
    if (options) *options = opts;
    return true;
}

bool XMPMeta::SetProperty(std::string const &ns, std::string const &path, std::string const &value,
                          std::uint32_t options, std::string *error)
{
    if (ns.empty() || path.empty()) {
        if (error) *error = "empty property path";
        return false;
    }
    if (!xmp_set_property(d->ptr, ns.c_str(), path.c_str(), value.c_str(), options)) {
        SetError(error, xmp_get_error());
        return false;
    }
    return true;
}

bool XMPMeta::SetComposite(std::string const &ns, std::string const &path, std::uint32_t options, std::string *error)
{
    // Exempi crashes on a null value: composites get an empty one.
    return SetProperty(ns, path, std::string(), options & ~kPropIsSchemaNode, error);
}

bool XMPMeta::DeleteProperty(std::string const &ns, std::string const &path)
{
    if (!DoesPropertyExist(ns, path)) return false;
    return xmp_delete_property(d->ptr, ns.c_str(), path.c_str());
}

bool XMPMeta::AppendArrayItem(std::string const &ns, std::string const &arrayPath, std::uint32_t arrayOptions,
                              std::string const &value, std::uint32_t itemOptions, std::string *error)
{
    if (ns.empty() || arrayPath.empty()) return false;
    if (!xmp_append_array_item(d->ptr, ns.c_str(), arrayPath.c_str(), arrayOptions, value.c_str(), itemOptions)) {
        SetError(error, xmp_get_error());
        return false;
    }
    return true;
}

int XMPMeta::CountArrayItems(std::string const &ns, std::string const &path) const
{
    std::string value;
    std::uint32_t options = 0;
    if (!GetProperty(ns, path, value, &options) || !(options & kPropValueIsArray)) return 0;
    // Count the children of the array node only.
    int count = 0;
    XmpIterator it(xmp_iterator_new(d->ptr, ns.c_str(), path.c_str(), XMP_ITER_JUSTCHILDREN));
    if (!it) return 0;
    XmpString schema, propPath, propValue;
    uint32_t opts = 0;
    while (xmp_iterator_next(it.get(), schema, propPath, propValue, &opts)) {
        if (!(opts & kPropIsQualifier)) ++count;
    }
    return count;
}

bool XMPMeta::GetLocalizedText(std::string const &ns, std::string const &path, std::string const &lang,
                               std::string &value) const
{
    if (ns.empty() || path.empty()) return false;
    XmpString actualLang, buffer;
    uint32_t opts = 0;
    if (!xmp_get_localized_text(d->ptr, ns.c_str(), path.c_str(), "", lang.c_str(), actualLang, buffer, &opts))
        return false;
    value = buffer.str();
    return true;
}

bool XMPMeta::SetLocalizedText(std::string const &ns, std::string const &path, std::string const &lang,
                               std::string const &value, std::string *error)
{
    if (ns.empty() || path.empty()) return false;
    if (!xmp_set_localized_text(d->ptr, ns.c_str(), path.c_str(), "", lang.c_str(), value.c_str(), 0)) {
        SetError(error, xmp_get_error());
        return false;
    }
    return true;
}

void XMPMeta::Iterate(std::function<bool(Node const &)> const &visit, std::string const &ns, std::string const &path,
                      bool topLevelOnly) const
{
    XmpIteratorPtr raw = nullptr;
    bool skipBelowTopLevel = false;
    if (topLevelOnly && !ns.empty() && path.empty()) {
        raw = xmp_iterator_new(d->ptr, ns.c_str(), nullptr, XMP_ITER_JUSTCHILDREN);
    } else {
        skipBelowTopLevel = topLevelOnly;
        raw = xmp_iterator_new(d->ptr, ns.empty() ? nullptr : ns.c_str(), path.empty() ? nullptr : path.c_str(),
                               XMP_ITER_PROPERTIES);
    }
    XmpIterator it(raw);
    if (!it) return;
    XmpString schema, propPath, propValue;
    uint32_t options = 0;
    Node node;
    while (xmp_iterator_next(it.get(), schema, propPath, propValue, &options)) {
        node.mNamespace = schema.str();
        node.mPath = propPath.str();
        node.mValue = propValue.str();
        node.mOptions = options;
        if (!visit(node)) return;
        if (skipBelowTopLevel && !(options & kPropIsSchemaNode)) xmp_iterator_skip(it.get(), XMP_ITER_SKIPSUBTREE);
    }
}

std::vector<std::string> XMPMeta::Namespaces() const
{
    std::vector<std::string> result;
    XmpIterator it(xmp_iterator_new(d->ptr, nullptr, nullptr, XMP_ITER_JUSTCHILDREN));
    if (!it) return result;
    XmpString schema, propPath, propValue;
    uint32_t options = 0;
    while (xmp_iterator_next(it.get(), schema, propPath, propValue, &options))
        result.push_back(schema.str());
    return result;
}

std::vector<std::string> XMPMeta::TopLevelProperties(std::string const &ns) const
{
    std::vector<std::string> result;
    if (ns.empty()) return result;
    Iterate(
        [&](Node const &node) {
            if (!(node.mOptions & kPropIsSchemaNode) && !node.mPath.empty()) result.push_back(node.mPath);
            return true;
        },
        ns, {}, true);
    return result;
}

bool XMPMeta::RegisterNamespace(std::string const &ns, std::string const &preferredPrefix,
                                std::string *registeredPrefix)
{
    XmpString actual;
    if (!xmp_register_namespace(ns.c_str(), preferredPrefix.c_str(), actual)) return false;
    if (registeredPrefix) *registeredPrefix = StripColon(actual.str());
    return true;
}

std::string XMPMeta::PrefixForNamespace(std::string const &ns)
{
    XmpString prefix;
    if (ns.empty() || !xmp_namespace_prefix(ns.c_str(), prefix)) return {};
    return StripColon(prefix.str());
}

std::string XMPMeta::NamespaceForPrefix(std::string const &prefix)
{
    XmpString ns;
    if (prefix.empty() || !xmp_prefix_namespace_uri(prefix.c_str(), ns)) return {};
    return ns.str();
}

void *XMPMeta::Handle() const
{
    return d->ptr;
}

// --- Remove-all and append-all utilities -----------------------------------

namespace {

bool IsInternal(std::string const &ns, std::string const &path)
{
    auto definition = PathEntryDefinition(Path{ns, path});
    return definition && definition->mInternal;
}

// Copies the subtree at ns/path of `source` into `dest`, which lacks it.
void CopySubtree(XMPMeta const &source, XMPMeta &dest, std::string const &ns, std::string const &path)
{
    source.Iterate(
        [&](XMPMeta::Node const &node) {
            if (node.mOptions & XMPMeta::kPropIsSchemaNode) return true;
            if (node.mOptions & XMPMeta::kPropIsQualifier) {
                dest.SetProperty(ns, node.mPath, node.mValue, 0);
            } else if (node.mOptions & XMPMeta::kPropCompositeMask) {
                dest.SetComposite(ns, node.mPath,
                                  node.mOptions & ~(XMPMeta::kPropHasQualifiers | XMPMeta::kPropHasLang));
            } else {
                dest.SetProperty(ns, node.mPath, node.mValue, node.mOptions & XMPMeta::kPropValueIsURI);
            }
            return true;
        },
        ns, path);
}

struct Item {
    std::string mValue; // simple items; a serialised form for composite items
    std::string mLang;
    std::uint32_t mOptions = 0;
};

std::vector<Item> ArrayItems(XMPMeta const &meta, std::string const &ns, std::string const &path)
{
    std::vector<Item> items;
    int count = meta.CountArrayItems(ns, path);
    for (int i = 1; i <= count; ++i) {
        std::string itemPath = path + '[' + std::to_string(i) + ']';
        Item item;
        meta.GetProperty(ns, itemPath, item.mValue, &item.mOptions);
        if (item.mOptions & XMPMeta::kPropCompositeMask) {
            // Compare composite items by their leaves.
            item.mValue.clear();
            meta.Iterate(
                [&](XMPMeta::Node const &node) {
                    item.mValue += node.mPath.substr(itemPath.size()) + '=' + node.mValue + '\n';
                    return true;
                },
                ns, itemPath);
        }
        if (item.mOptions & XMPMeta::kPropHasLang) meta.GetProperty(ns, itemPath + "/?xml:lang", item.mLang);
        items.push_back(std::move(item));
    }
    return items;
}

void MergeNode(XMPMeta const &source, XMPMeta &dest, std::string const &ns, std::string const &path,
               std::uint32_t options)
{
    std::string sourceValue, destValue;
    std::uint32_t sourceOptions = 0, destOptions = 0;
    if (!source.GetProperty(ns, path, sourceValue, &sourceOptions)) return;
    bool const sourceEmpty =
        !(sourceOptions & XMPMeta::kPropCompositeMask)
            ? sourceValue.empty()
            : ((sourceOptions & XMPMeta::kPropValueIsArray) && source.CountArrayItems(ns, path) == 0);
    if (!dest.GetProperty(ns, path, destValue, &destOptions)) {
        if (sourceEmpty && (options & kUtilDeleteEmptyValues)) return;
        CopySubtree(source, dest, ns, path);
        return;
    }
    if (sourceEmpty && (options & kUtilDeleteEmptyValues)) {
        dest.DeleteProperty(ns, path);
        return;
    }
    bool const sameForm = (sourceOptions & XMPMeta::kPropCompositeMask) == (destOptions & XMPMeta::kPropCompositeMask);
    if ((options & kUtilReplaceOldValues) || !sameForm) {
        if (!(options & kUtilReplaceOldValues)) return; // different forms: keep what is there
        dest.DeleteProperty(ns, path);
        CopySubtree(source, dest, ns, path);
        return;
    }
    if (sourceOptions & XMPMeta::kPropValueIsStruct) {
        source.Iterate(
            [&](XMPMeta::Node const &node) {
                if (node.mOptions & XMPMeta::kPropIsQualifier) return true;
                // Direct fields only: deeper nodes are merged by the field's own call.
                if (node.mPath.size() <= path.size() + 1) return true;
                std::string_view const rest = std::string_view(node.mPath).substr(path.size() + 1);
                if (rest.find_first_of("/[") != std::string_view::npos) return true;
                MergeNode(source, dest, ns, node.mPath, options);
                return true;
            },
            ns, path, false);
        return;
    }
    if (sourceOptions & XMPMeta::kPropValueIsArray) {
        auto const destItems = ArrayItems(dest, ns, path);
        auto const sourceItems = ArrayItems(source, ns, path);
        bool const altText = sourceOptions & XMPMeta::kPropArrayIsAltText;
        for (std::size_t i = 0; i < sourceItems.size(); ++i) {
            auto const &item = sourceItems[i];
            bool present = false;
            for (auto const &existing : destItems) {
                if (altText ? existing.mLang == item.mLang
                            : (existing.mValue == item.mValue && existing.mLang == item.mLang)) {
                    present = true;
                    break;
                }
            }
            if (present) continue;
            if (altText) {
                dest.SetLocalizedText(ns, path, item.mLang.empty() ? "x-default" : item.mLang, item.mValue);
                continue;
            }
            std::string const target = path + '[' + std::to_string(dest.CountArrayItems(ns, path) + 1) + ']';
            std::string const from = path + '[' + std::to_string(i + 1) + ']';
            if (item.mOptions & XMPMeta::kPropCompositeMask) {
                dest.SetComposite(ns, target, item.mOptions & XMPMeta::kPropCompositeMask);
                source.Iterate(
                    [&](XMPMeta::Node const &node) {
                        if (node.mPath == from) return true;
                        std::string const relocated = target + node.mPath.substr(from.size());
                        if (node.mOptions & XMPMeta::kPropCompositeMask)
                            dest.SetComposite(ns, relocated, node.mOptions & XMPMeta::kPropCompositeMask);
                        else
                            dest.SetProperty(ns, relocated, node.mValue,
                                             node.mOptions & XMPMeta::kPropIsQualifier
                                                 ? 0
                                                 : (node.mOptions & XMPMeta::kPropValueIsURI));
                        return true;
                    },
                    ns, from);
            } else {
                dest.SetProperty(ns, target, item.mValue, item.mOptions & XMPMeta::kPropValueIsURI);
                if (!item.mLang.empty()) dest.SetProperty(ns, target + "/?xml:lang", item.mLang);
            }
        }
        return;
    }
    // Simple values: the existing one stays unless replacing.
}

} // namespace

void RemoveProperties(XMPMeta &meta, std::string const &ns, std::string const &name, std::uint32_t options)
{
    bool const all = options & kUtilDoAllProperties;
    if (!name.empty()) {
        if (ns.empty()) return;
        // The toolkit takes a qualified name; a bare local name is accepted too.
        std::string const path =
            name.find(':') == std::string::npos ? PathForSchemaNameAndPropertyName(ns, name).mPath : name;
        if (all || !IsInternal(ns, path)) meta.DeleteProperty(ns, path);
        return;
    }
    std::vector<std::pair<std::string, std::string>> doomed;
    meta.Iterate(
        [&](XMPMeta::Node const &node) {
            if (node.mOptions & XMPMeta::kPropIsSchemaNode) return true;
            if (all || !IsInternal(node.mNamespace, node.mPath)) doomed.emplace_back(node.mNamespace, node.mPath);
            return true;
        },
        ns, {}, true);
    for (auto const &[propertyNs, path] : doomed)
        meta.DeleteProperty(propertyNs, path);
}

void AppendProperties(XMPMeta const &source, XMPMeta &dest, std::uint32_t options)
{
    bool const all = options & kUtilDoAllProperties;
    std::vector<std::pair<std::string, std::string>> properties;
    source.Iterate(
        [&](XMPMeta::Node const &node) {
            if (node.mOptions & XMPMeta::kPropIsSchemaNode) return true;
            if (all || !IsInternal(node.mNamespace, node.mPath)) properties.emplace_back(node.mNamespace, node.mPath);
            return true;
        },
        {}, {}, true);
    for (auto const &[ns, path] : properties) {
        std::string prefix = path.substr(0, path.find(':'));
        // The prefix of a parsed packet is registered by the toolkit; make sure
        // the destination's toolkit agrees before writing.
        if (XMPMeta::NamespaceForPrefix(prefix) != ns) continue;
        MergeNode(source, dest, ns, path, options);
    }
}

void ReplaceProperty(XMPMeta const &source, XMPMeta &dest, std::string const &ns, std::string const &path)
{
    dest.DeleteProperty(ns, path);
    if (source.DoesPropertyExist(ns, path)) CopySubtree(source, dest, ns, path);
}

namespace detail {

PropertySnapshot TakeSnapshot(XMPMeta const &meta)
{
    PropertySnapshot signatures;
    std::string *current = nullptr;
    std::string currentNs, currentTop;
    meta.Iterate([&](XMPMeta::Node const &node) {
        if (node.mOptions & XMPMeta::kPropIsSchemaNode) return true;
        std::size_t const end = node.mPath.find_first_of("/[");
        std::string_view const top = std::string_view(node.mPath).substr(0, end);
        if (!current || node.mNamespace != currentNs || top != currentTop) {
            currentNs = node.mNamespace;
            currentTop = std::string(top);
            current = &signatures[Path{currentNs, currentTop}];
        }
        *current += node.mPath;
        *current += '\x1f';
        *current += node.mValue;
        *current += '\x1f';
        *current += std::to_string(node.mOptions);
        *current += '\x1e';
        return true;
    });
    return signatures;
}

std::vector<Path> Differences(PropertySnapshot const &a, PropertySnapshot const &b)
{
    std::vector<Path> changed;
    auto i = a.begin();
    auto j = b.begin();
    while (i != a.end() || j != b.end()) {
        if (j == b.end() || (i != a.end() && i->first < j->first)) {
            changed.push_back((i++)->first);
        } else if (i == a.end() || j->first < i->first) {
            changed.push_back((j++)->first);
        } else {
            if (i->second != j->second) changed.push_back(i->first);
            ++i;
            ++j;
        }
    }
    return changed;
}

} // namespace detail

std::vector<Path> ChangedProperties(XMPMeta const &before, XMPMeta const &after)
{
    return detail::Differences(detail::TakeSnapshot(before), detail::TakeSnapshot(after));
}

} // namespace kivmetadata
