#include "PacketText_p.h"

#include <kivmetadata/Initialize.h>
#include <kivmetadata/XMPMeta.h>

#include <gtest/gtest.h>

#include "TestImages.h"

#include <string>

using namespace kivmetadata;
using kivmetadata::detail::PacketText;
using kivmetadata::detail::PropertyElement;

namespace {

std::string Wrap(std::string const &descriptions, std::string const &padding = std::string(300, ' '))
{
    return "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
           "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
           "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n" +
           descriptions + "\n</rdf:RDF>\n</x:xmpmeta>" + padding + "<?xpacket end=\"w\"?>";
}

// Packets written the ways other programs write them.
struct Layout {
    char const *mName;
    std::string mPacket;
};

Layout const kLayouts[] = {
    {"attributes",
     Wrap("<rdf:Description rdf:about=\"uuid:faf5bdd5-ba3d-11da-ad31-d33d75182f1b\" "
          "xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\" xmlns:xap=\"http://ns.adobe.com/xap/1.0/\" "
          "photoshop:Headline=\"Old\" photoshop:City=\"Lyon\" xap:Rating=\"3\"/>")},
    {"elements, odd prefixes and a comment",
     Wrap(" <rdf:Description rdf:about=\"\" xmlns:d=\"http://purl.org/dc/elements/1.1/\">\n"
          "  <!-- kept -->\n"
          "  <d:subject><rdf:Bag><rdf:li>a</rdf:li><rdf:li>b</rdf:li></rdf:Bag></d:subject>\n"
          "  <d:title><rdf:Alt><rdf:li xml:lang=\"x-default\">T</rdf:li><rdf:li xml:lang=\"de\">D</rdf:li>"
          "</rdf:Alt></d:title>\n"
          " </rdf:Description>\n"
          " <rdf:Description rdf:about=\"\" xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\">\n"
          "  <photoshop:Headline>Old</photoshop:Headline>\n"
          "  <photoshop:City>Lyon</photoshop:City>\n"
          " </rdf:Description>")},
    {"an empty struct, a qualifier and an unknown schema, no wrapper",
     "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
     "<rdf:Description rdf:about=\"\" xmlns:Iptc4xmpCore=\"http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/\" "
     "xmlns:foo=\"http://foo.example/ns/\" xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\">"
     "<Iptc4xmpCore:CreatorContactInfo rdf:parseType=\"Resource\"/>"
     "<foo:note rdf:parseType=\"Resource\"><rdf:value>v</rdf:value><foo:by>me</foo:by></foo:note>"
     "<photoshop:Headline>Old</photoshop:Headline>"
     "</rdf:Description></rdf:RDF></x:xmpmeta>"},
};

class PacketTextTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_TRUE(Initialize()); }
    static void TearDownTestSuite() { Terminate(); }
};

} // namespace

// Each edit must give exactly the intended properties (as the toolkit reads
// them) and leave the text of every other property as it was.
TEST_F(PacketTextTest, EditsChangeOnlyTheEditedProperty)
{
    struct Edit {
        char const *mName;
        char const *mNs;
        char const *mPath;
        std::string mValue; // empty: removed
    };
    Edit const edits[] = {
        {"replace", kPhotoshop, "photoshop:Headline", "New & <improved>"},
        {"remove", kPhotoshop, "photoshop:Headline", ""},
        {"add to a known schema", kXMP, "xmp:Label", "Red"},
        {"add an unknown schema", kFoo, "foo:extra", "x"},
    };
    XMPMeta::RegisterNamespace(kFoo, "foo");
    for (Layout const &layout : kLayouts) {
        for (Edit const &edit : edits) {
            SCOPED_TRACE(std::string(layout.mName) + ": " + edit.mName);
            auto original = XMPMeta::Parse(layout.mPacket);
            ASSERT_TRUE(original);
            auto expected = original->Clone();
            XMPMeta source;
            if (!edit.mValue.empty()) source.SetProperty(edit.mNs, edit.mPath, edit.mValue);
            ReplaceProperty(source, *expected, edit.mNs, edit.mPath);

            PacketText text;
            std::string error;
            ASSERT_TRUE(text.Load(layout.mPacket, error)) << error;
            std::string element;
            bool const present = !edit.mValue.empty();
            if (present) {
                ASSERT_TRUE(PropertyElement(source, edit.mNs, edit.mPath, element, error)) << error;
            }
            std::string const local = std::string(edit.mPath).substr(std::string(edit.mPath).find(':') + 1);
            ASSERT_TRUE(text.Replace(edit.mNs, local, present ? &element : nullptr, error)) << error;

            auto actual = XMPMeta::Parse(text.Text(), &error);
            ASSERT_TRUE(actual) << error << "\n" << text.Text();
            EXPECT_TRUE(ChangedProperties(*expected, *actual).empty()) << text.Text();
            // Untouched neighbours keep their exact bytes.
            for (char const *kept :
                 {"photoshop:City=\"Lyon\"", "<!-- kept -->",
                  "<Iptc4xmpCore:CreatorContactInfo rdf:parseType=\"Resource\"/>",
                  "uuid:faf5bdd5-ba3d-11da-ad31-d33d75182f1b",
                  "<d:subject><rdf:Bag><rdf:li>a</rdf:li><rdf:li>b</rdf:li></rdf:Bag></d:subject>"}) {
                if (layout.mPacket.find(kept) != std::string::npos) {
                    EXPECT_NE(text.Text().find(kept), std::string::npos) << kept;
                }
            }
        }
    }
}

TEST_F(PacketTextTest, PaddingGivesAndTakesExactLengths)
{
    std::string const packet = Wrap("<rdf:Description rdf:about=\"\"/>", std::string(50, ' '));
    PacketText text;
    std::string error;
    ASSERT_TRUE(text.Load(packet, error)) << error;
    EXPECT_EQ(text.PaddingSize(), 50u);
    for (std::size_t length : {packet.size() - 50, packet.size() + 1000, packet.size()}) {
        ASSERT_TRUE(text.FitTo(length));
        EXPECT_EQ(text.Text().size(), length);
        EXPECT_TRUE(XMPMeta::Parse(text.Text()));
    }
    EXPECT_FALSE(text.FitTo(packet.size() - 51));
    EXPECT_EQ(text.Text().size(), packet.size());

    // What is not a packet this editor can work on is refused, not guessed at.
    for (std::string const &bad :
         {std::string("<!DOCTYPE x [<!ENTITY a \"b\">]><x/>"), std::string("<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"/>"),
          std::string("<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF")}) {
        EXPECT_FALSE(text.Load(bad, error)) << bad;
    }
}
