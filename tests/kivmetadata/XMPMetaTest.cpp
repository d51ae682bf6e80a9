#include <kivmetadata/Initialize.h>
#include <kivmetadata/Templates.h>
#include <kivmetadata/XMPMeta.h>

#include <gtest/gtest.h>

#include "TestImages.h"

#include <string>

using namespace kivmetadata;

namespace {

constexpr char kPacket[] =
    R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
<rdf:Description rdf:about="" xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:xmp="http://ns.adobe.com/xap/1.0/"
  xmlns:foo="http://foo.example/ns/" xmlns:Iptc4xmpCore="http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/"
  xmlns:xmpMM="http://ns.adobe.com/xap/1.0/mm/">
 <dc:title><rdf:Alt><rdf:li xml:lang="x-default">Harbour</rdf:li><rdf:li xml:lang="de">Hafen</rdf:li></rdf:Alt></dc:title>
 <dc:subject><rdf:Bag><rdf:li>boat</rdf:li><rdf:li>sea</rdf:li></rdf:Bag></dc:subject>
 <xmp:Rating>3</xmp:Rating>
 <foo:secret>kept</foo:secret>
 <xmpMM:DocumentID>doc-1</xmpMM:DocumentID>
 <Iptc4xmpCore:CreatorContactInfo rdf:parseType="Resource">
  <Iptc4xmpCore:CiEmailWork>ann@example.org</Iptc4xmpCore:CiEmailWork>
 </Iptc4xmpCore:CreatorContactInfo>
</rdf:Description></rdf:RDF></x:xmpmeta>)";

class XMPMetaTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(Initialize()); }
    void TearDown() override { Terminate(); }

    static std::unique_ptr<XMPMeta> Sample()
    {
        auto meta = XMPMeta::Parse(kPacket);
        EXPECT_TRUE(meta);
        return meta;
    }
    static std::string Get(XMPMeta const &meta, char const *ns, char const *path)
    {
        std::string value;
        meta.GetProperty(ns, path, value);
        return value;
    }
};

TEST_F(XMPMetaTest, MalformedPacketsAreRefusedWithAReasonAndLeaveTheObjectIntact)
{
    for (char const *bad : {"<x:xmpmeta", "garbage<<", "<rdf:RDF><unclosed></rdf:RDF>"}) {
        std::string error;
        EXPECT_EQ(XMPMeta::Parse(bad, &error), nullptr) << bad;
        EXPECT_FALSE(error.empty()) << bad;
    }
    auto meta = Sample();
    std::string error;
    EXPECT_FALSE(meta->ParseFromBuffer("<x:xmpmeta", &error));
    EXPECT_EQ(Get(*meta, kXMP, "xmp:Rating"), "3");
    EXPECT_TRUE(XMPMeta::Parse("")->IsEmpty());
}

TEST_F(XMPMetaTest, CloneIsDeepAndSerialisationRoundTrips)
{
    auto meta = Sample();
    auto copy = meta->Clone();
    copy->SetProperty(kXMP, "xmp:Rating", "5");
    copy->DeleteProperty(kDC, "dc:subject");
    EXPECT_EQ(Get(*meta, kXMP, "xmp:Rating"), "3");
    EXPECT_EQ(meta->CountArrayItems(kDC, "dc:subject"), 2);

    std::string const text = meta->Serialize(XMPMeta::kSerializeOmitPacketWrapper, 0);
    EXPECT_EQ(text.find("<?xpacket"), std::string::npos);
    EXPECT_NE(meta->Serialize().find("<?xpacket"), std::string::npos);
    auto again = XMPMeta::Parse(text);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->Serialize(XMPMeta::kSerializeOmitPacketWrapper, 0), text);
}

TEST_F(XMPMetaTest, IterationAndArrayCounting)
{
    auto meta = Sample();
    auto const namespaces = meta->Namespaces();
    EXPECT_NE(std::find(namespaces.begin(), namespaces.end(), kFoo), namespaces.end());
    auto const dc = meta->TopLevelProperties(kDC);
    EXPECT_EQ(dc, (std::vector<std::string>{"dc:title", "dc:subject"}));
    EXPECT_EQ(meta->CountArrayItems(kDC, "dc:title"), 2); // language qualifiers are not items
    EXPECT_EQ(meta->CountArrayItems(kXMP, "xmp:Rating"), 0);
    EXPECT_EQ(meta->CountArrayItems(kXMP, "xmp:Nothing"), 0);
    int leaves = 0;
    meta->Iterate([&](XMPMeta::Node const &node) {
        if (!(node.mOptions & (XMPMeta::kPropCompositeMask | XMPMeta::kPropIsSchemaNode | XMPMeta::kPropIsQualifier)))
            ++leaves;
        return true;
    });
    EXPECT_EQ(leaves, 8);
}

TEST_F(XMPMetaTest, RemovePropertiesByNameSchemaOrAllAndKeepsInternalOnesUnlessAskedToo)
{
    auto meta = Sample();
    RemoveProperties(*meta, kDC, "dc:subject", 0);
    EXPECT_FALSE(meta->DoesPropertyExist(kDC, "dc:subject"));
    RemoveProperties(*meta, kXMP, "Rating", 0);
    EXPECT_FALSE(meta->DoesPropertyExist(kXMP, "xmp:Rating"));
    meta->SetProperty(kXMP, "xmp:Rating", "3");
    EXPECT_TRUE(meta->DoesPropertyExist(kDC, "dc:title"));

    RemoveProperties(*meta, kDC, {}, 0);
    EXPECT_TRUE(meta->TopLevelProperties(kDC).empty());
    EXPECT_TRUE(meta->DoesPropertyExist(kXMP, "xmp:Rating"));

    // xmpMM:DocumentID is defined as internal: kept without option 1.
    RemoveProperties(*meta, {}, {}, 0);
    EXPECT_TRUE(meta->DoesPropertyExist("http://ns.adobe.com/xap/1.0/mm/", "xmpMM:DocumentID"));
    EXPECT_FALSE(meta->DoesPropertyExist(kFoo, "foo:secret"));
    RemoveProperties(*meta, {}, {}, kUtilDoAllProperties);
    EXPECT_TRUE(meta->IsEmpty());
}

TEST_F(XMPMetaTest, AppendPropertiesCopiesAllAndMergesArraysStructsAndLanguages)
{
    auto dest = Sample();
    XMPMeta empty;
    AppendProperties(*dest, empty, kUtilDoAllProperties);
    EXPECT_EQ(empty.Serialize(XMPMeta::kSerializeOmitPacketWrapper, 0),
              dest->Serialize(XMPMeta::kSerializeOmitPacketWrapper, 0));

    auto source = XMPMeta::Parse("");
    source->AppendArrayItem(kDC, "dc:subject", XMPMeta::kPropValueIsArray, "sea");
    source->AppendArrayItem(kDC, "dc:subject", XMPMeta::kPropValueIsArray, "harbour");
    source->SetProperty(kXMP, "xmp:Rating", "5");
    source->SetProperty(kIptc, "Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiUrlWork", "https://example.org");
    source->SetLocalizedText(kDC, "dc:title", "fr", "Port");

    auto kept = dest->Clone();
    AppendProperties(*source, *kept, kUtilDoAllProperties);
    std::string joined;
    for (int i = 1; i <= kept->CountArrayItems(kDC, "dc:subject"); ++i)
        joined += Get(*kept, kDC, ("dc:subject[" + std::to_string(i) + "]").c_str()) + ",";
    EXPECT_EQ(joined, "boat,sea,harbour,");
    EXPECT_EQ(Get(*kept, kXMP, "xmp:Rating"), "3"); // simple values stay
    EXPECT_EQ(Get(*kept, kIptc, "Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiEmailWork"), "ann@example.org");
    EXPECT_EQ(Get(*kept, kIptc, "Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiUrlWork"), "https://example.org");
    std::string french;
    EXPECT_TRUE(kept->GetLocalizedText(kDC, "dc:title", "fr", french));
    EXPECT_EQ(french, "Port");

    auto replaced = dest->Clone();
    AppendProperties(*source, *replaced, kUtilDoAllProperties | kUtilReplaceOldValues);
    EXPECT_EQ(Get(*replaced, kXMP, "xmp:Rating"), "5");
    EXPECT_EQ(replaced->CountArrayItems(kDC, "dc:subject"), 2);
    EXPECT_FALSE(replaced->DoesPropertyExist(kIptc, "Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiEmailWork"));
    EXPECT_EQ(Get(*replaced, kFoo, "foo:secret"), "kept");
}

TEST_F(XMPMetaTest, ApplyTemplateHonoursTheThreeImportOptions)
{
    auto templ = XMPMeta::Parse("");
    templ->SetProperty(kXMP, "xmp:Rating", "1");
    templ->AppendArrayItem(kDC, "dc:subject", XMPMeta::kPropValueIsArray, "template");

    struct Case {
        TemplateImportOptions option;
        char const *rating;
        int subjects;
        bool keepsOthers;
    } const cases[] = {
        {kTemplateImport_ClearAndReplace, "1", 1, false},
        {kTemplateImport_KeepAndReplace, "1", 1, true},
        {kTemplateImport_KeepAndAppend, "3", 3, true},
    };
    for (auto const &c : cases) {
        auto meta = Sample();
        EXPECT_TRUE(ApplyTemplate(*meta, *templ, c.option));
        EXPECT_EQ(Get(*meta, kXMP, "xmp:Rating"), c.rating) << c.option;
        EXPECT_EQ(meta->CountArrayItems(kDC, "dc:subject"), c.subjects) << c.option;
        EXPECT_EQ(meta->DoesPropertyExist(kFoo, "foo:secret"), c.keepsOthers) << c.option;
    }
}

} // namespace
