#include "PacketLimits_p.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QLocale>
#include <QStringDecoder>

#include <algorithm>
#include <cstring>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace kivmetadata::detail {

namespace {

QLocale const &English()
{
    static QLocale const locale(QLocale::English, QLocale::UnitedStates);
    return locale;
}

std::string Count(qint64 n)
{
    return English().toString(n).toStdString();
}

std::string Size(std::uint64_t bytes)
{
    return English().formattedDataSize(qint64(bytes), 1, QLocale::DataSizeTraditionalFormat).toStdString();
}

std::string Subject(XmlKind kind)
{
    return kind == XmlKind::kXmpPacket ? "the XMP packet" : "the file";
}

// UTF-16 and UTF-32 packets are allowed in XMP; they are checked as UTF-8.
std::optional<QStringConverter::Encoding> WideEncoding(std::string_view bytes)
{
    auto starts = [&](std::initializer_list<unsigned char> prefix) {
        return bytes.size() >= prefix.size() &&
               std::equal(prefix.begin(), prefix.end(), bytes.begin(),
                          [](unsigned char a, char b) { return a == static_cast<unsigned char>(b); });
    };
    if (starts({0x00, 0x00, 0xFE, 0xFF}) || starts({0x00, 0x00, 0x00, '<'})) return QStringConverter::Utf32BE;
    if (starts({0xFF, 0xFE, 0x00, 0x00}) || starts({'<', 0x00, 0x00, 0x00})) return QStringConverter::Utf32LE;
    if (starts({0xFE, 0xFF}) || starts({0x00, '<'})) return QStringConverter::Utf16BE;
    if (starts({0xFF, 0xFE}) || starts({'<', 0x00})) return QStringConverter::Utf16LE;
    return std::nullopt;
}

struct Frame {
    bool mRdf = false;            // rdf:RDF
    bool mTopDescription = false; // rdf:Description directly in rdf:RDF
    int mNamed = 0;
    int mItems = 0;
    std::size_t mText = 0;
    std::size_t mBindings = 0; // namespace bindings in force when it started
};

struct Binding {
    std::string_view mPrefix;
    std::string_view mUri;
};

bool IsSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool EndsName(char c)
{
    return IsSpace(c) || c == '>' || c == '/' || c == '=';
}

// A single pass over the bytes that measures what the XML structure would
// make of them. Well-formedness is left to the parser that comes after (it
// stops at the first error, before building anything that costs); this pass
// only has to see the structure of well-formed text exactly, and it is an
// order of magnitude faster than a full XML reader.
class Scanner {
public:
    Scanner(std::string_view text, XmlKind kind, XmlMeasures &measures)
        : mText(text), mRdfMode(kind == XmlKind::kXmpPacket), mSubject(Subject(kind)), m(measures)
    {
        mStack.reserve(XmlLimits::kMaxDepth + 1);
    }

    std::string Run()
    {
        std::size_t pos = 0;
        std::size_t const size = mText.size();
        while (pos < size) {
            std::size_t const lt = mText.find('<', pos);
            std::size_t const textEnd = lt == std::string_view::npos ? size : lt;
            AddText(pos, textEnd);
            if (lt == std::string_view::npos) break;
            pos = lt;
            std::string_view const rest = mText.substr(pos);
            if (rest.starts_with("<!--")) {
                pos = Skip(pos + 4, "-->");
            } else if (rest.starts_with("<![CDATA[")) {
                std::size_t const close = mText.find("]]>", pos + 9);
                std::size_t const contentEnd = close == std::string_view::npos ? size : close;
                if (!mStack.empty()) mStack.back().mText += contentEnd - (pos + 9);
                NoteValue();
                pos = close == std::string_view::npos ? size : close + 3;
            } else if (rest.starts_with("<?")) {
                pos = Skip(pos + 2, "?>");
            } else if (rest.starts_with("<!")) {
                // DOCTYPE, or a declaration XML allows only inside one.
                return mSubject + " declares a document type (DOCTYPE), which kivmeta does not read";
            } else if (rest.starts_with("</")) {
                EndElement();
                pos = Skip(pos + 2, ">");
            } else {
                std::string refusal;
                pos = StartElement(pos + 1, refusal);
                if (!refusal.empty()) return refusal;
            }
            if (mNodes > XmlLimits::kMaxNodes * 4) break; // enough to refuse; the count is named as "more than"
        }
        while (!mStack.empty())
            EndElement();
        m.mNodes = mNodes;
        m.mNamespaces = int(mUris.size());
        return Verdict();
    }

private:
    std::size_t Skip(std::size_t from, std::string_view terminator) const
    {
        std::size_t const at = mText.find(terminator, from);
        return at == std::string_view::npos ? mText.size() : at + terminator.size();
    }

    void AddText(std::size_t begin, std::size_t end)
    {
        if (mStack.empty() || begin >= end) return;
        std::string_view const text = mText.substr(begin, end - begin);
        if (std::all_of(text.begin(), text.end(), IsSpace)) return;
        mStack.back().mText += text.size();
        NoteValue();
    }

    void NoteValue()
    {
        if (!mStack.empty()) m.mLongestValue = std::max(m.mLongestValue, mStack.back().mText);
    }

    std::string_view Uri(std::string_view prefix) const
    {
        for (auto it = mBindings.rbegin(); it != mBindings.rend(); ++it)
            if (it->mPrefix == prefix) return it->mUri;
        return {};
    }

    static std::pair<std::string_view, std::string_view> Split(std::string_view qname)
    {
        std::size_t const colon = qname.find(':');
        if (colon == std::string_view::npos) return {{}, qname};
        return {qname.substr(0, colon), qname.substr(colon + 1)};
    }

    void CountNamed(Frame &frame, std::string_view uri)
    {
        if (frame.mTopDescription) {
            int const n = ++mTopLevel[uri];
            m.mNamedSiblings = std::max(m.mNamedSiblings, n);
        } else {
            ++frame.mNamed;
        }
    }

    // Reads the start tag whose name begins at `pos`; returns the position
    // after it.
    std::size_t StartElement(std::size_t pos, std::string &refusal)
    {
        std::size_t const size = mText.size();
        std::size_t nameEnd = pos;
        while (nameEnd < size && !EndsName(mText[nameEnd]))
            ++nameEnd;
        std::string_view const qname = mText.substr(pos, nameEnd - pos);
        mAttributes.clear();
        Frame frame;
        frame.mBindings = mBindings.size();
        std::size_t i = nameEnd;
        bool empty = false;
        while (i < size) {
            char const c = mText[i];
            if (IsSpace(c)) {
                ++i;
            } else if (c == '>') {
                ++i;
                break;
            } else if (c == '/') {
                empty = true;
                ++i;
            } else {
                std::size_t const attributeBegin = i;
                while (i < size && !EndsName(mText[i]))
                    ++i;
                std::string_view const name = mText.substr(attributeBegin, i - attributeBegin);
                while (i < size && (IsSpace(mText[i]) || mText[i] == '='))
                    ++i;
                if (i >= size || (mText[i] != '"' && mText[i] != '\'')) {
                    if (i == attributeBegin) ++i; // never stall on malformed text
                    continue;
                }
                char const quote = mText[i];
                std::size_t const close = mText.find(quote, i + 1);
                std::size_t const valueEnd = close == std::string_view::npos ? size : close;
                std::string_view const value = mText.substr(i + 1, valueEnd - i - 1);
                i = close == std::string_view::npos ? size : close + 1;
                m.mLongestValue = std::max(m.mLongestValue, value.size());
                if (name == "xmlns" || name.starts_with("xmlns:")) {
                    mBindings.push_back({name.size() > 5 ? name.substr(6) : std::string_view(), value});
                    mUris.insert(value);
                } else {
                    mAttributes.push_back({name, value.size()});
                }
            }
        }
        ++mNodes;
        if (int(mStack.size()) >= XmlLimits::kMaxDepth) {
            refusal = mSubject + " nests elements more than " + Count(XmlLimits::kMaxDepth) +
                      " levels deep; kivmeta reads at most " + Count(XmlLimits::kMaxDepth);
            return size;
        }
        auto const [prefix, local] = Split(qname);
        bool const inRdf = mRdfMode && Uri(prefix) == kRdfUri;
        if (!mStack.empty()) {
            Frame &parent = mStack.back();
            if (!mRdfMode || (inRdf && local == "li"))
                ++parent.mItems;
            else
                CountNamed(parent, Uri(prefix));
            frame.mTopDescription = mRdfMode && parent.mRdf && inRdf && local == "Description";
        }
        frame.mRdf = inRdf && local == "RDF";
        if (mRdfMode) {
            for (auto const &attribute : mAttributes) {
                auto const [attributePrefix, attributeLocal] = Split(attribute.mName);
                if (attributePrefix.empty() || attributePrefix == "xml") continue;
                std::string_view const uri = Uri(attributePrefix);
                if (uri == kRdfUri) continue;
                ++mNodes; // a property written as an attribute
                CountNamed(frame, uri);
            }
        }
        mStack.push_back(frame);
        m.mDepth = std::max(m.mDepth, int(mStack.size()));
        if (empty) EndElement();
        return i;
    }

    void EndElement()
    {
        if (mStack.empty()) return;
        Frame const &frame = mStack.back();
        m.mNamedSiblings = std::max(m.mNamedSiblings, frame.mNamed);
        m.mArrayItems = std::max(m.mArrayItems, frame.mItems);
        mBindings.resize(frame.mBindings);
        mStack.pop_back();
    }

    std::string Verdict() const
    {
        std::string const &subject = mSubject;
        bool const rdf = mRdfMode;
        if (m.mNamedSiblings > XmlLimits::kMaxNamedSiblings)
            return subject + " has " + Count(m.mNamedSiblings) + (rdf ? " properties" : " entries") +
                   " in one place; kivmeta reads at most " + Count(XmlLimits::kMaxNamedSiblings);
        if (m.mArrayItems > XmlLimits::kMaxArrayItems)
            return subject + " has " + Count(m.mArrayItems) + (rdf ? " items in one array" : " entries in one list") +
                   "; kivmeta reads at most " + Count(XmlLimits::kMaxArrayItems);
        if (m.mNodes > XmlLimits::kMaxNodes)
            return subject + " has " + (m.mNodes > XmlLimits::kMaxNodes * 4 ? "more than " : "") + Count(m.mNodes) +
                   (rdf ? " properties and items" : " entries") + " in all; kivmeta reads at most " +
                   Count(XmlLimits::kMaxNodes);
        if (m.mLongestValue > XmlLimits::kMaxValueLength)
            return subject + " has a value of " + Count(qint64(m.mLongestValue)) +
                   " bytes; kivmeta reads values of at most " + Count(qint64(XmlLimits::kMaxValueLength));
        if (m.mNamespaces > XmlLimits::kMaxNamespaces)
            return subject + " declares " + Count(m.mNamespaces) + " namespaces; kivmeta reads at most " +
                   Count(XmlLimits::kMaxNamespaces);
        return {};
    }

    static constexpr std::string_view kRdfUri = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";

    std::string_view mText;
    bool mRdfMode;
    std::string mSubject;
    XmlMeasures &m;
    std::vector<Frame> mStack;
    std::vector<Binding> mBindings;
    struct AttributeSeen {
        std::string_view mName;
        std::size_t mValueLength;
    };
    std::vector<AttributeSeen> mAttributes;
    std::unordered_set<std::string_view> mUris;
    std::unordered_map<std::string_view, int> mTopLevel;
    int mNodes = 0;
};

} // namespace

std::string SizeRefusal(std::uint64_t size, XmlKind kind)
{
    if (size <= XmlLimits::kMaxBytes) return {};
    return Subject(kind) + " is " + Size(size) + "; kivmeta reads at most " + Size(XmlLimits::kMaxBytes);
}

std::string XmlRefusal(std::string_view bytes, XmlKind kind, XmlMeasures *measures)
{
    XmlMeasures local;
    XmlMeasures &m = measures ? *measures : local;
    m = XmlMeasures{};
    if (std::string refusal = SizeRefusal(bytes.size(), kind); !refusal.empty()) return refusal;
    std::string const subject = Subject(kind);
    QByteArray utf8;
    if (auto const wide = WideEncoding(bytes)) {
        QStringDecoder decode(*wide);
        QString const text = decode(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
        if (decode.hasError()) return subject + " is not valid Unicode text";
        utf8 = text.toUtf8();
    } else {
        utf8 = QByteArray::fromRawData(bytes.data(), qsizetype(bytes.size()));
    }
    qsizetype end = utf8.size();
    while (end > 0 && utf8.at(end - 1) == '\0')
        --end;
    QByteArrayView const text(utf8.constData(), end);
    if (qsizetype const nul = text.indexOf('\0'); nul >= 0)
        return subject + " contains a NUL byte (at byte " + Count(nul) + "), which text may not hold";
    if (!text.isValidUtf8()) return subject + " is not valid UTF-8 text";
    // No packet at all; the readers say themselves what they miss.
    if (text.trimmed().isEmpty()) return {};
    return Scanner(std::string_view(text.data(), std::size_t(text.size())), kind, m).Run();
}

std::string WrappedPacketsRefusal(std::string_view bytes)
{
    constexpr std::string_view kBegin = "<?xpacket begin";
    constexpr std::string_view kEnd = "<?xpacket end";
    std::size_t at = 0;
    while ((at = bytes.find(kBegin, at)) != std::string_view::npos) {
        std::size_t const end = bytes.find(kEnd, at + kBegin.size());
        std::size_t close = end == std::string_view::npos ? end : bytes.find("?>", end);
        // An unterminated wrapper: the toolkit's scanner would not take it.
        if (close == std::string_view::npos) return {};
        close += 2;
        if (std::string refusal = PacketRefusal(bytes.substr(at, close - at)); !refusal.empty()) return refusal;
        at = close;
    }
    return {};
}

} // namespace kivmetadata::detail
