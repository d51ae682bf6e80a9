#include <kivmetadata/Definitions.h>
#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/Initialize.h>
#include <kivmetadata/MemoryMetaDataProvider.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/MultiMetaDataProvider.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/Templates.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadata/XMPMeta.h>

#include <gtest/gtest.h>

#include "TestImages.h"

using namespace kivmetadata;

namespace {

class ValueAccessTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(Initialize());
        mProvider = std::make_shared<MemoryMetaDataProvider>();
        ClearErrorInfos();
    }
    void TearDown() override
    {
        mProvider.reset();
        Terminate();
    }
    Value V(char const *ns, char const *name, std::shared_ptr<MetaDataProvider> const &provider = {}) const
    {
        return Value{false, PathForSchemaNameAndPropertyName(ns, name), provider ? provider : mProvider};
    }
    static std::string Text(Value const &value)
    {
        std::string text;
        GetValueResult result;
        GetValue(value, text, result);
        return text;
    }
    std::string Packet() const { return mProvider->GetMeta()->Serialize(XMPMeta::kSerializeOmitPacketWrapper, 0); }

    std::shared_ptr<MetaDataProvider> mProvider;
};

TEST_F(ValueAccessTest, TypedValuesRoundTripInTheirXmpForm)
{
    EXPECT_TRUE(SetValue(V(kXMP, "Rating"), 3));
    EXPECT_TRUE(SetValue(V(kRights, "Marked"), true));
    EXPECT_TRUE(SetValue(V(kExif, "FNumber"), 2.8));
    EXPECT_TRUE(SetValue(V(kDC, "subject"), "boat; sea ;; harbour"));
    EXPECT_TRUE(SetValue(V(kDC, "title"), std::string("Harbour")));
    EXPECT_TRUE(SetValue(V(kPhotoshop, "City"), "Kiel"));

    auto meta = mProvider->GetMeta();
    std::string raw;
    meta->GetProperty(kRights, "xmpRights:Marked", raw);
    EXPECT_EQ(raw, "True");
    EXPECT_EQ(meta->CountArrayItems(kDC, "dc:subject"), 3); // an array, not a text with separators
    EXPECT_TRUE(meta->GetLocalizedText(kDC, "dc:title", "x-default", raw));
    EXPECT_EQ(raw, "Harbour");

    GetValueResult result;
    bool flag = false;
    double number = 0;
    std::int64_t integer = 0;
    EXPECT_TRUE(GetValue(V(kRights, "Marked"), flag, result));
    EXPECT_TRUE(flag);
    EXPECT_TRUE(GetValue(V(kExif, "FNumber"), number, result));
    EXPECT_DOUBLE_EQ(number, 2.8);
    EXPECT_TRUE(GetValue(V(kXMP, "Rating"), integer, result));
    EXPECT_EQ(integer, 3);
    EXPECT_EQ(Text(V(kDC, "subject")), "boat; sea; harbour");
    EXPECT_EQ(Text(V(kDC, "title")), "Harbour");

    // Reading a number from a text that is none, or an absent value.
    EXPECT_FALSE(GetValue(V(kPhotoshop, "City"), number, result));
    EXPECT_EQ(result, kGetValueResult_Unreadable);
    EXPECT_FALSE(GetValue(V(kDC, "rights"), flag, result));
    EXPECT_EQ(result, kGetValueResult_Absent);
    EXPECT_FALSE(GetValue(Value{false, Path{kDC, "dc:subject"}, nullptr}, number, result));
    EXPECT_EQ(result, kGetValueResult_Unreadable);
    EXPECT_TRUE(GetErrorInfos().empty());
}

TEST_F(ValueAccessTest, MinimalFloatTextIsTheShortestExactForm)
{
    struct Case {
        double value;
        char const *text;
    } const cases[] = {{3, "3"},
                       {2.5, "2.5"},
                       {-0.0, "0"},
                       {0.1, "0.1"},
                       {1e21, "1000000000000000000000"},
                       {-4.25, "-4.25"},
                       {1.0 / 3.0, "0.3333333333333333"}};
    for (auto const &c : cases)
        EXPECT_EQ(MinimalFloatText(c.value), c.text) << c.value;
}

TEST_F(ValueAccessTest, ValuesOfTheWrongTypeAreRefusedWithARecordAndChangeNothing)
{
    ASSERT_TRUE(SetValue(V(kXMP, "Rating"), 2));
    ASSERT_TRUE(SetValue(V(kPhotoshop, "Urgency"), "1"));
    std::string const before = Packet();
    struct Case {
        char const *ns;
        char const *name;
        char const *text;
    } const cases[] = {
        {kXMP, "Rating", "seven"},                                                  // not a number
        {kXMP, "Rating", "9"},                                                      // above the rating type's maximum
        {kRights, "Marked", "perhaps"},                                             // not a boolean
        {kPhotoshop, "Urgency", "42"},                                              // not one of the closed choices
        {kXMP, "CreateDate", "yesterday"},                                          // not a date
        {"http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/", "CreatorContactInfo", "x"}, // a struct
    };
    for (auto const &c : cases) {
        ClearErrorInfos();
        EXPECT_FALSE(SetValue(V(c.ns, c.name), c.text)) << c.name << " " << c.text;
        ASSERT_EQ(GetErrorInfos().size(), 1u) << c.name;
        EXPECT_NE(GetErrorInfos()[0].mContext.find(c.name), std::string::npos);
    }
    EXPECT_FALSE(SetValue(V(kXMP, "Rating"), true));
    EXPECT_FALSE(SetValue(V(kRights, "Marked"), 1.5));
    EXPECT_FALSE(SetValue(V(kXMP, "Rating"), std::numeric_limits<double>::quiet_NaN()));
    Value notEditable = V(kXMP, "Label");
    notEditable.mNotEditable = true;
    EXPECT_FALSE(SetValue(notEditable, "x"));
    EXPECT_EQ(Packet(), before);
}

TEST_F(ValueAccessTest, WritesReportNoChangeForTheSameValueAndDeleteRemoves)
{
    EXPECT_TRUE(SetValue(V(kDC, "subject"), "a; b"));
    EXPECT_FALSE(SetValue(V(kDC, "subject"), "a;b"));
    EXPECT_TRUE(SetValue(V(kDC, "subject"), "b; a"));
    EXPECT_TRUE(SetValue(V(kDC, "title"), "T"));
    EXPECT_FALSE(SetValue(V(kDC, "title"), "T"));
    EXPECT_TRUE(DeleteValue(V(kDC, "subject")));
    EXPECT_FALSE(DeleteValue(V(kDC, "subject")));
    EXPECT_TRUE(DeleteValue(mProvider->GetMeta(), Path{kDC, "dc:title"}));
    EXPECT_TRUE(mProvider->GetMeta()->IsEmpty());
    EXPECT_FALSE(SetValue(Value{false, Path{kTransientNamespace, "kivtransient:subject"}, mProvider}, "x"));
}

TEST_F(ValueAccessTest, UpdateAccessesNestAndTellListenersOnceAtTheEnd)
{
    struct Recorder : MemoryMetaDataProvider {
        void OnMetadataChanged(std::set<Path> const &changes) override { mSeen.push_back(changes); }
        std::vector<std::set<Path>> mSeen;
    };
    auto recorder = std::make_shared<Recorder>();
    int calls = 0;
    XMPMeta *told = nullptr;
    auto listener = std::make_shared<MetaDataProvider::ChangeListener>([&](XMPMeta *meta) {
        ++calls;
        told = meta;
    });
    auto emptied = std::make_shared<MetaDataProvider::ChangeListener>([&](XMPMeta *) { ADD_FAILURE(); });
    recorder->AddChangeListener(listener);
    recorder->AddChangeListener(emptied);
    *emptied = nullptr; // disconnects in place
    {
        MetaDataUpdateAccess outer(recorder);
        {
            MetaDataUpdateAccess inner(recorder);
            inner.AddChange(Path{kDC, "dc:title"});
        }
        EXPECT_EQ(calls, 0);
        outer.AddChange(Path{kDC, "dc:subject"});
        outer.AddChange(Path{kDC, "dc:title"});
    }
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(told, recorder->GetMeta());
    ASSERT_EQ(recorder->mSeen.size(), 1u);
    EXPECT_EQ(recorder->mSeen[0].size(), 2u);
    {
        MetaDataUpdateAccess nothing(recorder);
    }
    EXPECT_EQ(calls, 1);
}

TEST_F(ValueAccessTest, SeveralAssetsAnswerSeveralValuesAndTakeEveryWrite)
{
    auto a = std::make_shared<MemoryMetaDataProvider>();
    auto b = std::make_shared<MemoryMetaDataProvider>();
    SetValue(V(kXMP, "Rating", a), 2);
    SetValue(V(kXMP, "Rating", b), 2);
    SetValue(V(kDC, "subject", a), "boat; sea");
    SetValue(V(kDC, "subject", b), "sea; harbour");
    SetValue(V(kPhotoshop, "City", a), "Kiel");
    auto multi = std::make_shared<MultiMetaDataProvider>(std::vector<std::shared_ptr<MetaDataProvider>>{a, b});
    mProvider = multi;

    GetValueResult result;
    std::int64_t rating = 0;
    EXPECT_TRUE(GetValue(V(kXMP, "Rating"), rating, result));
    EXPECT_EQ(rating, 2);
    std::string text;
    EXPECT_FALSE(GetValue(V(kDC, "subject"), text, result));
    EXPECT_EQ(result, kGetValueResult_SeveralValues);
    EXPECT_FALSE(GetValue(V(kPhotoshop, "City"), text, result)); // present in one asset only
    EXPECT_EQ(result, kGetValueResult_SeveralValues);
    EXPECT_FALSE(GetValue(V(kDC, "rights"), text, result));
    EXPECT_EQ(result, kGetValueResult_Absent);
    // The union of differing keyword lists, in first-seen order.
    EXPECT_TRUE(GetValue(V(kTransientNamespace, "subject"), text, result));
    EXPECT_EQ(text, "boat; sea; harbour");
    EXPECT_FALSE(multi->AcceptsPath(Value{false, Path{kTransientNamespace, "kivtransient:subject"}, multi}, true));

    int told = 0;
    auto listener = std::make_shared<MetaDataProvider::ChangeListener>([&](XMPMeta *) { ++told; });
    b->AddChangeListener(listener);
    {
        MetaDataUpdateAccess access(multi);
        ASSERT_TRUE(SetValue(V(kDC, "subject"), "one; two"));
        access.AddChange(V(kDC, "subject").mPath);
    }
    EXPECT_EQ(told, 1); // each asset hears of the change
    EXPECT_TRUE(GetValue(V(kDC, "subject"), text, result));
    EXPECT_EQ(text, "one; two");
    EXPECT_TRUE(DeleteValue(V(kPhotoshop, "City")));
    EXPECT_FALSE(GetValue(V(kPhotoshop, "City"), text, result));
    EXPECT_EQ(result, kGetValueResult_Absent);
    EXPECT_EQ(multi->GetMeta(), a->GetMeta());

    auto templ = XMPMeta::Parse("");
    templ->SetProperty(kPhotoshop, "photoshop:Credit", "Agency");
    EXPECT_TRUE(ApplyTemplate(std::shared_ptr<MetaDataProvider>(multi), *templ, kTemplateImport_KeepAndReplace));
    EXPECT_EQ(told, 2);
    EXPECT_TRUE(GetValue(V(kPhotoshop, "Credit"), text, result));
    EXPECT_EQ(text, "Agency");
}

TEST_F(ValueAccessTest, UndeclaredNamespacesShowAsDynamicSchemas)
{
    auto provider = MemoryMetaDataProvider::FromPacket(
        R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
<rdf:Description rdf:about="" xmlns:acme="http://acme.example/1.0/" xmlns:dc="http://purl.org/dc/elements/1.1/">
 <dc:format>image/jpeg</dc:format>
 <acme:Job>42</acme:Job>
 <acme:Tags><rdf:Seq><rdf:li>x</rdf:li></rdf:Seq></acme:Tags>
 <acme:Where rdf:parseType="Resource"><acme:Room>7</acme:Room></acme:Where>
</rdf:Description></rdf:RDF></x:xmpmeta>)");
    ASSERT_TRUE(provider);
    auto const schemas = provider->DynamicSchemaDefinitions();
    ASSERT_EQ(schemas.size(), 1u);
    EXPECT_EQ(schemas[0]->mNamespace, "http://acme.example/1.0/");
    EXPECT_TRUE(schemas[0]->mProperties.empty());
    std::vector<std::shared_ptr<PropertyDefinition>> properties;
    provider->GetAllPathsForDynamicSchema(schemas[0]->mNamespace, properties);
    ASSERT_EQ(properties.size(), 3u);
    EXPECT_EQ(properties[1]->mForm, ValueForm::kSeq);
    EXPECT_EQ(properties[2]->mForm, ValueForm::kStruct);
    Path const room{"http://acme.example/1.0/", "acme:Where/acme:Room"};
    EXPECT_TRUE(IsPropertyUISupported(room));
    EXPECT_EQ(PrimitiveTypeOfPath(Path{"http://acme.example/1.0/", "acme:Tags"}), kPrimitiveType_TextSeq);
    EXPECT_EQ(ChildPaths(Path{"http://acme.example/1.0/", "acme:Where"}), std::vector<Path>{room});
    EXPECT_EQ(MemoryMetaDataProvider::FromPacket("<broken"), nullptr);
}

} // namespace
