#include "PacketText_p.h"

#include <kivmetadata/XMPMeta.h>

#include <algorithm>
#include <cstdint>
#include <map>

namespace kivmetadata::detail {

namespace {

constexpr std::string_view kRdfNs = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
constexpr std::string_view kXmlNs = "http://www.w3.org/XML/1998/namespace";
constexpr std::string_view kMetaNs = "adobe:ns:meta/";

bool IsControl(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

// The toolkit reads every ASCII control character as a blank (it replaces
// them before parsing), so the text's structure is read the same way here.
bool IsSpace(char c)
{
    return c == ' ' || IsControl(c);
}

// Strict UTF-8 without control characters or references. The toolkit
// reads other bytes as Latin-1 characters and controls as blanks, and the
// XML parser expands references and blanks in attribute values; a name or
// namespace URI spelled with any of them would not be found as written.
bool IsPlainText(std::string_view s)
{
    for (std::size_t i = 0; i < s.size();) {
        unsigned char const lead = static_cast<unsigned char>(s[i]);
        if (lead < 0x80) {
            if (IsControl(char(lead)) || lead == '&') return false;
            ++i;
            continue;
        }
        std::size_t const more = lead >= 0xC2 && lead <= 0xDF   ? 1
                                 : lead >= 0xE0 && lead <= 0xEF ? 2
                                 : lead >= 0xF0 && lead <= 0xF4 ? 3
                                                                : 0;
        if (more == 0 || s.size() - i <= more) return false;
        std::uint32_t code = lead & (0x3F >> more);
        for (std::size_t k = 1; k <= more; ++k) {
            unsigned char const next = static_cast<unsigned char>(s[i + k]);
            if ((next & 0xC0) != 0x80) return false;
            code = code << 6 | (next & 0x3F);
        }
        if ((more == 2 && (code < 0x800 || (code >= 0xD800 && code <= 0xDFFF))) ||
            (more == 3 && (code < 0x10000 || code > 0x10FFFF)))
            return false;
        i += more + 1;
    }
    return true;
}

struct Attribute {
    std::string mQName;
    std::string mValue;      // as written, entities not expanded
    std::size_t mSpaceBegin; // the whitespace before the name
    std::size_t mEnd;        // past the closing quote
};

struct Tag {
    enum Kind { kStart, kEnd, kEmpty } mKind = kStart;
    std::string mQName;
    std::vector<Attribute> mAttributes;
    std::size_t mBegin = 0;
    std::size_t mEnd = 0;
};

// Reads the tag at text[pos] == '<' (not a comment, PI, CDATA or DOCTYPE).
bool ReadTag(std::string const &text, std::size_t pos, Tag &tag)
{
    std::size_t const n = text.size();
    tag = Tag{};
    tag.mBegin = pos;
    std::size_t i = pos + 1;
    if (i < n && text[i] == '/') {
        tag.mKind = Tag::kEnd;
        ++i;
    }
    std::size_t const nameBegin = i;
    while (i < n && !IsSpace(text[i]) && text[i] != '>' && text[i] != '/')
        ++i;
    if (i == nameBegin || i >= n) return false;
    tag.mQName = text.substr(nameBegin, i - nameBegin);
    while (true) {
        std::size_t const spaceBegin = i;
        while (i < n && IsSpace(text[i]))
            ++i;
        if (i >= n) return false;
        if (text[i] == '>') {
            tag.mEnd = i + 1;
            return true;
        }
        if (text[i] == '/') {
            if (i + 1 >= n || text[i + 1] != '>' || tag.mKind == Tag::kEnd) return false;
            tag.mKind = Tag::kEmpty;
            tag.mEnd = i + 2;
            return true;
        }
        if (tag.mKind == Tag::kEnd || i == spaceBegin) return false;
        std::size_t const attrBegin = i;
        while (i < n && !IsSpace(text[i]) && text[i] != '=')
            ++i;
        Attribute attribute;
        attribute.mQName = text.substr(attrBegin, i - attrBegin);
        while (i < n && IsSpace(text[i]))
            ++i;
        if (i >= n || text[i] != '=') return false;
        ++i;
        while (i < n && IsSpace(text[i]))
            ++i;
        if (i >= n || (text[i] != '"' && text[i] != '\'')) return false;
        char const quote = text[i++];
        std::size_t const valueBegin = i;
        while (i < n && text[i] != quote)
            ++i;
        if (i >= n) return false;
        attribute.mValue = text.substr(valueBegin, i - valueBegin);
        attribute.mSpaceBegin = spaceBegin;
        attribute.mEnd = ++i;
        tag.mAttributes.push_back(std::move(attribute));
    }
}

std::string_view PrefixOf(std::string_view qname)
{
    auto const colon = qname.find(':');
    return colon == std::string_view::npos ? std::string_view() : qname.substr(0, colon);
}

std::string_view LocalOf(std::string_view qname)
{
    auto const colon = qname.find(':');
    return colon == std::string_view::npos ? qname : qname.substr(colon + 1);
}

// Namespace scopes of the open elements.
class Scopes {
public:
    void Push(Tag const &tag)
    {
        std::vector<std::pair<std::string, std::string>> frame;
        for (auto const &attribute : tag.mAttributes) {
            if (attribute.mQName == "xmlns")
                frame.emplace_back(std::string(), attribute.mValue);
            else if (attribute.mQName.rfind("xmlns:", 0) == 0)
                frame.emplace_back(attribute.mQName.substr(6), attribute.mValue);
        }
        mFrames.push_back(std::move(frame));
    }
    void Pop()
    {
        if (!mFrames.empty()) mFrames.pop_back();
    }
    std::size_t Depth() const { return mFrames.size(); }
    std::string Resolve(std::string_view prefix) const
    {
        if (prefix == "xml") return std::string(kXmlNs);
        for (auto frame = mFrames.rbegin(); frame != mFrames.rend(); ++frame)
            for (auto const &[p, uri] : *frame)
                if (p == prefix) return uri;
        return {};
    }
    std::vector<std::pair<std::string, std::string>> InForce() const
    {
        std::map<std::string, std::string> all;
        for (auto const &frame : mFrames)
            for (auto const &[p, uri] : frame)
                all[p] = uri;
        return {all.begin(), all.end()};
    }

private:
    std::vector<std::vector<std::pair<std::string, std::string>>> mFrames;
};

} // namespace

bool PacketText::Load(std::string text, std::string &error)
{
    mText = std::move(text);
    return Scan(error);
}

bool PacketText::Scan(std::string &error)
{
    mOccurrences.clear();
    mDescriptions.clear();
    mRdfEndTagBegin = std::string::npos;
    std::string const &text = mText;
    std::size_t const n = text.size();
    Scopes scopes;
    std::size_t rdfDepth = 0;       // depth of rdf:RDF once open (depth counts it)
    std::vector<bool> metaElements; // per open element: is it x:xmpmeta (or x:xapmeta)
    std::size_t elementBegin = 0;   // of the property element being read
    std::size_t rootEnd = std::string::npos;
    std::size_t trailer = std::string::npos;
    bool rdfSeen = false;
    std::size_t pos = 0;
    while ((pos = text.find('<', pos)) != std::string::npos) {
        if (text.compare(pos, 4, "<!--") == 0) {
            std::size_t const end = text.find("-->", pos + 4);
            if (end == std::string::npos) return error = "an XML comment is not terminated", false;
            pos = end + 3;
            continue;
        }
        if (text.compare(pos, 9, "<![CDATA[") == 0) {
            std::size_t const end = text.find("]]>", pos + 9);
            if (end == std::string::npos) return error = "a CDATA section is not terminated", false;
            pos = end + 3;
            continue;
        }
        if (text.compare(pos, 2, "<!") == 0) return error = "the packet has a document type declaration", false;
        if (text.compare(pos, 2, "<?") == 0) {
            std::size_t const end = text.find("?>", pos + 2);
            if (end == std::string::npos) return error = "a processing instruction is not terminated", false;
            if (text.compare(pos, 13, "<?xpacket end") == 0) trailer = pos;
            pos = end + 2;
            continue;
        }
        Tag tag;
        if (!ReadTag(text, pos, tag)) return error = "a tag is malformed", false;
        if (tag.mKind == Tag::kEnd) {
            std::size_t const depth = scopes.Depth();
            if (rdfDepth && depth == rdfDepth + 1) {
                mDescriptions.back().mEndTagBegin = tag.mBegin;
            } else if (rdfDepth && depth == rdfDepth + 2) {
                mOccurrences.back().mEnd = tag.mEnd;
            } else if (rdfDepth && depth == rdfDepth) {
                mRdfEndTagBegin = tag.mBegin;
                rdfDepth = 0;
            }
            scopes.Pop();
            if (!metaElements.empty()) metaElements.pop_back();
            if (scopes.Depth() == 0) rootEnd = tag.mEnd;
            pos = tag.mEnd;
            continue;
        }
        scopes.Push(tag);
        std::size_t const depth = scopes.Depth();
        std::string const uri = scopes.Resolve(PrefixOf(tag.mQName));
        bool const inMeta = !metaElements.empty() && metaElements.back();
        metaElements.push_back(uri == kMetaNs &&
                               (LocalOf(tag.mQName) == "xmpmeta" || LocalOf(tag.mQName) == "xapmeta"));
        if (!rdfDepth && uri == kRdfNs && LocalOf(tag.mQName) == "RDF") {
            if (rdfSeen) return error = "the packet has two rdf:RDF elements", false;
            // The toolkit reads an rdf:RDF only right inside x:xmpmeta; edits
            // anywhere else would be lost on reading.
            if (!inMeta) return error = "the packet's rdf:RDF element is not inside x:xmpmeta", false;
            rdfSeen = true;
            rdfDepth = depth;
            if (tag.mKind == Tag::kEmpty) {
                mRdfEndTagBegin = std::string::npos;
                rdfDepth = 0;
            }
        } else if (rdfDepth && depth == rdfDepth + 1) {
            Description description;
            description.mQName = tag.mQName;
            description.mStartTagBegin = tag.mBegin;
            description.mStartTagEnd = tag.mEnd;
            description.mEmpty = tag.mKind == Tag::kEmpty;
            description.mEndTagBegin = tag.mEnd;
            description.mScope = scopes.InForce();
            int const index = int(mDescriptions.size());
            for (auto const &attribute : tag.mAttributes) {
                std::string_view const prefix = PrefixOf(attribute.mQName);
                if (attribute.mQName == "xmlns" || prefix == "xmlns" || prefix.empty()) continue;
                std::string const attributeNs = scopes.Resolve(prefix);
                if (attributeNs == kRdfNs || attributeNs == kXmlNs) continue;
                if (attributeNs.empty()) return error = "a prefix is not declared", false;
                if (!IsPlainText(attributeNs) || !IsPlainText(attribute.mQName))
                    return error = "a property's name or namespace is not plain UTF-8 text", false;
                mOccurrences.push_back({attributeNs, std::string(LocalOf(attribute.mQName)), attribute.mSpaceBegin,
                                        attribute.mEnd, true, index});
            }
            mDescriptions.push_back(std::move(description));
        } else if (rdfDepth && depth == rdfDepth + 2) {
            if (uri.empty()) return error = "a prefix is not declared", false;
            if (!IsPlainText(uri) || !IsPlainText(tag.mQName))
                return error = "a property's name or namespace is not plain UTF-8 text", false;
            elementBegin = tag.mBegin;
            mOccurrences.push_back(
                {uri, std::string(LocalOf(tag.mQName)), elementBegin, tag.mEnd, false, int(mDescriptions.size()) - 1});
        }
        if (tag.mKind == Tag::kEmpty) {
            scopes.Pop();
            metaElements.pop_back();
            if (scopes.Depth() == 0) rootEnd = tag.mEnd;
        }
        pos = tag.mEnd;
    }
    if (!rdfSeen) return error = "the packet has no rdf:RDF element", false;
    if (scopes.Depth() != 0 || rootEnd == std::string::npos) return error = "an element is not closed", false;
    // Padding: the whitespace between the root element and the trailer (or
    // the end of the text).
    mPaddingBegin = rootEnd;
    mPaddingEnd = trailer != std::string::npos && trailer >= rootEnd ? trailer : n;
    for (std::size_t i = mPaddingBegin; i < mPaddingEnd; ++i) {
        if (!IsSpace(text[i])) {
            mPaddingEnd = mPaddingBegin;
            break;
        }
    }
    return true;
}

bool PacketText::Contains(std::string const &ns, std::string const &localName) const
{
    return std::any_of(mOccurrences.begin(), mOccurrences.end(),
                       [&](Occurrence const &o) { return o.mNamespace == ns && o.mLocalName == localName; });
}

std::string PacketText::Indentation(std::size_t position) const
{
    std::size_t begin = position;
    while (begin > 0 && (mText[begin - 1] == ' ' || mText[begin - 1] == '\t'))
        --begin;
    if (begin > 0 && mText[begin - 1] != '\n' && mText[begin - 1] != '\r') return {};
    return mText.substr(begin, position - begin);
}

std::string PacketText::WithDeclarations(std::string const &element, Description const &target) const
{
    // `element` opens with "<qname" followed by its own declarations. Drop
    // the ones the target scope already binds the same way.
    Tag tag;
    if (element.empty() || !ReadTag(element, 0, tag)) return element;
    std::string out = "<" + tag.mQName;
    for (auto const &attribute : tag.mAttributes) {
        if (attribute.mQName.rfind("xmlns:", 0) == 0) {
            std::string const prefix = attribute.mQName.substr(6);
            bool const bound = std::any_of(target.mScope.begin(), target.mScope.end(), [&](auto const &binding) {
                return binding.first == prefix && binding.second == attribute.mValue;
            });
            if (bound) continue;
        }
        out += element.substr(attribute.mSpaceBegin, attribute.mEnd - attribute.mSpaceBegin);
    }
    out += element.substr(tag.mEnd - (tag.mKind == Tag::kEmpty ? 2 : 1));
    return out;
}

bool PacketText::Replace(std::string const &ns, std::string const &localName, std::string const *element,
                         std::string &error)
{
    struct Cut {
        std::size_t mBegin, mEnd;
    };
    std::vector<Cut> cuts;
    std::size_t insertAt = std::string::npos;
    std::string insertIndent;
    int targetDescription = -1;
    for (auto const &occurrence : mOccurrences) {
        if (occurrence.mNamespace != ns || occurrence.mLocalName != localName) continue;
        if (occurrence.mAttribute) {
            cuts.push_back({occurrence.mBegin, occurrence.mEnd});
            if (targetDescription < 0) targetDescription = occurrence.mDescription;
            continue;
        }
        // An element on a line of its own goes with its line break and indent.
        std::string const indent = Indentation(occurrence.mBegin);
        std::size_t begin = occurrence.mBegin - indent.size();
        bool const ownLine = begin > 0 && mText[begin - 1] == '\n';
        if (ownLine) {
            --begin;
            if (begin > 0 && mText[begin - 1] == '\r') --begin;
        }
        cuts.push_back({begin, occurrence.mEnd});
        if (insertAt == std::string::npos) {
            insertAt = begin;
            insertIndent = ownLine ? "\n" + indent : std::string();
            targetDescription = occurrence.mDescription;
        }
    }
    std::string text = mText;
    std::string insertion;
    if (element) {
        if (insertAt == std::string::npos) {
            if (targetDescription < 0) {
                for (std::size_t i = 0; i < mOccurrences.size() && targetDescription < 0; ++i)
                    if (mOccurrences[i].mNamespace == ns) targetDescription = mOccurrences[i].mDescription;
            }
            if (targetDescription < 0) targetDescription = int(mDescriptions.size()) - 1;
        }
        if (targetDescription < 0) {
            // No description at all: one is made inside rdf:RDF.
            if (mRdfEndTagBegin == std::string::npos)
                return error = "the packet's rdf:RDF element is empty and cannot take a property", false;
            std::string const indent = Indentation(mRdfEndTagBegin);
            Description scope;
            insertion = "\n" + indent + " <rdf:Description rdf:about=\"\" xmlns:rdf=\"" + std::string(kRdfNs) +
                        "\">\n" + indent + "  " + WithDeclarations(*element, scope) + "\n" + indent +
                        " </rdf:Description>\n" + indent;
            insertAt = mRdfEndTagBegin;
            std::size_t back = insertAt;
            while (back > 0 && IsSpace(mText[back - 1]))
                --back;
            cuts.push_back({back, insertAt});
            insertAt = back;
        } else {
            Description const &description = mDescriptions[std::size_t(targetDescription)];
            std::string const body = WithDeclarations(*element, description);
            if (insertAt != std::string::npos) {
                insertion = insertIndent + body;
            } else if (description.mEmpty) {
                // <rdf:Description .../> opens up to take the element.
                std::string const indent = Indentation(description.mStartTagBegin);
                std::size_t const slash = description.mStartTagEnd - 2;
                cuts.push_back({slash, description.mStartTagEnd});
                insertAt = slash;
                insertion = ">\n" + indent + " " + body + "\n" + indent + "</" + description.mQName + ">";
            } else {
                std::size_t back = description.mEndTagBegin;
                while (back > description.mStartTagEnd && IsSpace(mText[back - 1]))
                    --back;
                std::string const indent = Indentation(description.mEndTagBegin);
                insertAt = back;
                insertion = "\n" + indent + " " + body;
            }
        }
    }
    if (cuts.empty() && insertion.empty()) return true;
    std::sort(cuts.begin(), cuts.end(), [](Cut const &a, Cut const &b) { return a.mBegin > b.mBegin; });
    // Apply from the end so that earlier offsets stay valid; the insertion
    // point is at the start of a cut or outside all of them.
    bool inserted = insertion.empty();
    for (auto const &cut : cuts) {
        if (!inserted && insertAt >= cut.mEnd) {
            text.insert(insertAt, insertion);
            inserted = true;
        }
        text.erase(cut.mBegin, cut.mEnd - cut.mBegin);
        if (!inserted && insertAt == cut.mBegin) {
            text.insert(insertAt, insertion);
            inserted = true;
        }
    }
    if (!inserted) text.insert(insertAt, insertion);
    std::string previous = std::move(mText);
    mText = std::move(text);
    if (!Scan(error)) {
        mText = std::move(previous);
        std::string ignored;
        Scan(ignored);
        error = "the edited packet could not be read again (" + error + ")";
        return false;
    }
    return true;
}

bool PacketText::FitTo(std::size_t length)
{
    std::size_t const size = mText.size();
    if (length == size) return true;
    if (length < size) {
        std::size_t const excess = size - length;
        if (excess > PaddingSize()) return false;
        mText.erase(mPaddingEnd - excess, excess);
        mPaddingEnd -= excess;
        return true;
    }
    // Lines of 100 characters, as packets are usually padded.
    std::size_t const missing = length - size;
    std::string pad;
    pad.reserve(missing);
    for (std::size_t i = 0; i < missing; ++i)
        pad += (i % 100 == 99 || i + 1 == missing) ? '\n' : ' ';
    mText.insert(mPaddingEnd, pad);
    mPaddingEnd += missing;
    return true;
}

bool PropertyElement(XMPMeta const &meta, std::string const &ns, std::string const &path, std::string &element,
                     std::string &error)
{
    if (!meta.DoesPropertyExist(ns, path)) return error = "the property is absent", false;
    XMPMeta single;
    ReplaceProperty(meta, single, ns, path);
    std::string serialized;
    if (!single.Serialize(serialized, XMPMeta::kSerializeOmitPacketWrapper, 0, &error)) return false;
    PacketText text;
    if (!text.Load(serialized, error)) return false;
    std::string const local = path.substr(path.find(':') + 1);
    auto const &occurrences = text.Properties();
    auto const found = std::find_if(occurrences.begin(), occurrences.end(),
                                    [&](auto const &o) { return o.mNamespace == ns && o.mLocalName == local; });
    if (found == occurrences.end()) return error = "the toolkit did not serialise the property", false;

    // Every binding in force where the toolkit wrote it goes on the element.
    std::string declarations;
    Scopes scopes;
    {
        std::size_t pos = 0;
        Tag tag;
        while ((pos = serialized.find('<', pos)) != std::string::npos && pos < found->mBegin) {
            if (serialized.compare(pos, 2, "<?") == 0 || serialized.compare(pos, 2, "<!") == 0) {
                pos += 2;
                continue;
            }
            if (!ReadTag(serialized, pos, tag)) break;
            if (tag.mKind == Tag::kStart) scopes.Push(tag);
            if (tag.mKind == Tag::kEnd) scopes.Pop();
            pos = tag.mEnd;
        }
    }
    for (auto const &[prefix, uri] : scopes.InForce())
        if (!prefix.empty() && prefix != "x") declarations += " xmlns:" + prefix + "=\"" + uri + "\"";

    if (found->mAttribute) {
        // name="value" becomes <name>value</name>: an attribute value is
        // already escaped for element content.
        std::string const attribute = serialized.substr(found->mBegin, found->mEnd - found->mBegin);
        std::size_t const nameBegin = attribute.find_first_not_of(" \t\r\n");
        std::size_t const equals = attribute.find('=');
        std::size_t const quote = attribute.find_first_of("\"'", equals);
        std::string name = attribute.substr(nameBegin, equals - nameBegin);
        while (!name.empty() && IsSpace(name.back()))
            name.pop_back();
        std::string const value = attribute.substr(quote + 1, attribute.size() - quote - 2);
        element = "<" + name + declarations + ">" + value + "</" + name + ">";
        return true;
    }
    std::string body = serialized.substr(found->mBegin, found->mEnd - found->mBegin);
    // Re-indent continuation lines relative to the element's own indent.
    std::size_t const indent = [&] {
        std::size_t begin = found->mBegin;
        while (begin > 0 && serialized[begin - 1] == ' ')
            --begin;
        return found->mBegin - begin;
    }();
    std::string dedented;
    dedented.reserve(body.size());
    for (std::size_t i = 0; i < body.size(); ++i) {
        dedented += body[i];
        if (body[i] == '\n') {
            std::size_t skip = 0;
            while (skip < indent && i + 1 + skip < body.size() && body[i + 1 + skip] == ' ')
                ++skip;
            i += skip;
        }
    }
    Tag tag;
    if (!ReadTag(dedented, 0, tag)) return error = "the toolkit's element is malformed", false;
    std::size_t const nameEnd = 1 + tag.mQName.size();
    element = dedented.substr(0, nameEnd) + declarations + dedented.substr(nameEnd);
    return true;
}

} // namespace kivmetadata::detail
