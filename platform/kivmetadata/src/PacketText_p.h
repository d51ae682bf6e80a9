// Private to kivmetadata: edits an XMP packet as text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kivmetadata {
class XMPMeta;
}

namespace kivmetadata::detail {

// An XMP packet kept as the bytes that were stored. Whole top-level
// properties are removed or replaced; every other byte stays as it was, so
// property order, prefixes, RDF forms, qualifiers and comments survive an
// edit. The packet must be well-formed XML in UTF-8 (the caller has parsed it
// with the toolkit before).
class PacketText {
public:
    struct Occurrence {
        std::string mNamespace;
        std::string mLocalName;
        std::size_t mBegin = 0; // an element, or an attribute of its description
        std::size_t mEnd = 0;
        bool mAttribute = false;
        int mDescription = 0;
    };

    // False with a reason when the text is not a packet this editor can edit
    // (DOCTYPE, no rdf:RDF, an unterminated construct).
    bool Load(std::string text, std::string &error);
    std::string const &Text() const { return mText; }

    // Every top-level property as it stands in the text (a property may stand
    // more than once, in several descriptions).
    std::vector<Occurrence> const &Properties() const { return mOccurrences; }
    bool Contains(std::string const &ns, std::string const &localName) const;

    // Removes every occurrence of the property and, when `element` is given,
    // puts that element (a standalone property element, see PropertyElement)
    // where the property stood, or into the description that holds the
    // namespace's other properties, or the last one.
    bool Replace(std::string const &ns, std::string const &localName, std::string const *element, std::string &error);

    // Bytes of whitespace padding after the packet's root element.
    std::size_t PaddingSize() const { return mPaddingEnd - mPaddingBegin; }
    // Grows or shrinks the padding so that the text is exactly `length` bytes
    // long; false when there is not enough padding to give up.
    bool FitTo(std::size_t length);

private:
    struct Description {
        std::string mQName;
        std::size_t mStartTagBegin = 0;
        std::size_t mStartTagEnd = 0; // just past '>'
        bool mEmpty = false;          // <rdf:Description .../>
        std::size_t mEndTagBegin = 0;
        std::vector<std::pair<std::string, std::string>> mScope; // prefix -> URI in force inside
    };
    bool Scan(std::string &error);
    std::string Indentation(std::size_t position) const;
    std::string WithDeclarations(std::string const &element, Description const &target) const;

    std::string mText;
    std::vector<Occurrence> mOccurrences;
    std::vector<Description> mDescriptions;
    std::size_t mRdfEndTagBegin = std::string::npos;
    std::size_t mPaddingBegin = 0;
    std::size_t mPaddingEnd = 0;
};

// The property at the top-level `path` of `meta`, serialised by the toolkit
// as one RDF/XML element that declares the namespaces it uses itself, so it
// can stand in any description. False when the property is absent.
bool PropertyElement(XMPMeta const &meta, std::string const &ns, std::string const &path, std::string &element,
                     std::string &error);

} // namespace kivmetadata::detail
