#include <kivmetadata/Definitions.h>
#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/Initialize.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/TypeDefinition.h>
#include <kivmetadata/UserFolders.h>
#include <kivmetadata/XMPMeta.h>

#include <kivcore/Assert.h>

#include <gtest/gtest.h>

#include "TestImages.h"

#include <QDir>
#include <QTemporaryDir>

using namespace kivmetadata;

namespace {

constexpr char kTest[] = "http://test.example/schema/1.0/";

// A schema written by the test: every form, type and struct nesting the
// model must understand, independent of the shipped definitions.
constexpr char kTestSchema[] = R"(<?xml version="1.0"?>
<schema xmlns="urn:kivmetadata:schema:1" namespace="http://test.example/schema/1.0/" prefix="tst"
        label="$$$/test/label=Test">
  <property name="Count" type="integer" min="0" max="10" label="Count"/>
  <property name="Ratio" type="real" label="Ratio"/>
  <property name="Flag" type="boolean" label="Flag"/>
  <property name="Mood" type="closedChoice" label="Mood">
    <choice value="1" label="$$$/test/mood/1=Happy"/>
    <choice value="2" label="$$$/test/mood/2=Sad"/>
  </property>
  <property name="Tags" form="bag" type="text" label="Tags"/>
  <property name="Steps" form="seq" type="text" label="Steps"/>
  <property name="Caption" form="langAlt" label="Caption"/>
  <property name="Stars" typeId="rating" label="Stars"/>
  <property name="Contact" form="struct" label="Contact">
    <field name="Email" type="text" label="Email"/>
    <field name="Address" form="struct" label="Address">
      <field name="City" type="text" label="City"/>
      <field name="Zip" type="text" label="Zip"/>
    </field>
  </property>
  <property name="Places" form="bag" itemForm="struct" label="Places">
    <field name="Name" type="text" label="Name"/>
  </property>
  <property name="Stamp" internal="true" label="Stamp"/>
</schema>)";

class PathAndDefinitionsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(mHome.isValid());
        SetUserDataDirectory(mHome.path().toStdU16String());
        ASSERT_TRUE(Initialize());
        ClearErrorInfos();
        WriteSchema(u"test.xml", kTestSchema);
        ASSERT_EQ(LoadSchemaDefinitionsFromFolder(mFolder, false), 1);
    }
    void TearDown() override
    {
        Terminate();
        SetUserDataDirectory({});
    }
    void WriteSchema(std::u16string const &name, std::string const &text)
    {
        mFolder = mHome.path().toStdU16String() + u"/defs";
        testimages::WriteFile(QString::fromStdU16String(mFolder + u"/" + name), text);
    }
    static Path P(char const *path) { return Path{kTest, path}; }

    QTemporaryDir mHome;
    std::u16string mFolder;
};

TEST_F(PathAndDefinitionsTest, PathsAreBuiltWithTheToolkitsPrefixes)
{
    EXPECT_EQ(PathForSchemaNameAndPropertyName(kDC, "subject"), (Path{kDC, "dc:subject"}));
    EXPECT_EQ(PathForSchemaNameAndPropertyName(kDC, "dc:subject"), (Path{kDC, "dc:subject"}));
    EXPECT_EQ(CreatePathFromArrayItem(Path{kDC, "dc:subject"}, 2), (Path{kDC, "dc:subject[2]"}));
    // A namespace nobody declared still gives a path the toolkit can write.
    Path const odd = PathForSchemaNameAndPropertyName("http://undeclared.example/", "Thing");
    EXPECT_GT(odd.mPath.find(":Thing"), 0u);
    XMPMeta meta;
    EXPECT_TRUE(meta.SetProperty(odd.mNamespace, odd.mPath, "v"));
    auto schema = NamespaceDefinition(kTest);
    ASSERT_TRUE(schema);
    EXPECT_EQ(CreatePathFromSchemaProperty(*schema, *schema->FindProperty("Count")), P("tst:Count"));
}

TEST_F(PathAndDefinitionsTest, PrimitiveTypesOfEveryKindOfPath)
{
    struct Case {
        char const *path;
        std::optional<PrimitiveType> type;
    } const cases[] = {
        {"tst:Count", kPrimitiveType_Integer},
        {"tst:Ratio", kPrimitiveType_Real},
        {"tst:Flag", kPrimitiveType_Boolean},
        {"tst:Mood", kPrimitiveType_ClosedChoice},
        {"tst:Tags", kPrimitiveType_TextBag},
        {"tst:Steps", kPrimitiveType_TextSeq},
        {"tst:Caption", kPrimitiveType_LangAlt},
        {"tst:Stars", kPrimitiveType_Real}, // from the shipped "rating" type
        {"tst:Tags[3]", kPrimitiveType_Text},
        {"tst:Caption[1]", kPrimitiveType_Text},
        {"tst:Contact", std::nullopt},
        {"tst:Contact/tst:Email", kPrimitiveType_Text},
        {"tst:Contact/tst:Address/tst:City", kPrimitiveType_Text},
        {"tst:Places", std::nullopt},
        {"tst:Places[1]", std::nullopt},
        {"tst:Places[1]/tst:Name", kPrimitiveType_Text},
        {"tst:Unknown", std::nullopt},
        {"tst:Contact/tst:Nope", std::nullopt},
        {"tst:Count[1]", std::nullopt},
        {"not a path", std::nullopt},
    };
    for (auto const &c : cases)
        EXPECT_EQ(PrimitiveTypeOfPath(P(c.path)), c.type) << c.path;
    EXPECT_EQ(PrimitiveTypeOfPath(Path{"http://nowhere/", "x:y"}), std::nullopt);

    EXPECT_TRUE(IsPathAnArray(P("tst:Tags")));
    EXPECT_TRUE(IsPathAnArray(P("tst:Places")));
    EXPECT_FALSE(IsPathAnArray(P("tst:Caption")));
    EXPECT_TRUE(IsPathAnArray(P("tst:Caption"), true));
    EXPECT_FALSE(IsPathAnArray(P("tst:Contact"), true));
}

TEST_F(PathAndDefinitionsTest, EntryDefinitionsOfFieldsAndItems)
{
    auto field = PathEntryDefinition(P("tst:Contact/tst:Address/tst:Zip"));
    ASSERT_TRUE(field);
    EXPECT_EQ(field->mName, "Zip");
    auto item = PathEntryDefinition(P("tst:Places[4]"));
    ASSERT_TRUE(item);
    EXPECT_EQ(item->mForm, ValueForm::kStruct);
    EXPECT_EQ(PathEntryDefinition(P("tst:Tags[1]")), PathEntryDefinition(P("tst:Tags[2]"))); // made once
    auto choice = PathEntryDefinition(P("tst:Mood"));
    ASSERT_TRUE(choice);
    ASSERT_EQ(choice->mChoices.size(), 2u);
    EXPECT_EQ(choice->mChoices[1], (Choice{"2", "$$$/test/mood/2=Sad"}));
    EXPECT_EQ(PathEntryDefinition(P("tst:Count"))->mMaximum, 10.0);
    EXPECT_TRUE(PathEntryDefinition(P("tst:Stamp"))->mInternal);
}

TEST_F(PathAndDefinitionsTest, DescendantLeavesFollowStructsButNotArrays)
{
    EXPECT_EQ(ChildPaths(P("tst:Contact")),
              (std::vector<Path>{P("tst:Contact/tst:Email"), P("tst:Contact/tst:Address")}));
    EXPECT_EQ(ChildPaths(P("tst:Places[2]")), (std::vector<Path>{P("tst:Places[2]/tst:Name")}));
    EXPECT_TRUE(ChildPaths(P("tst:Places")).empty());
    EXPECT_TRUE(ChildPaths(P("tst:Count")).empty());

    std::vector<Path> leaves;
    VisitDescendantLeafPaths(P("tst:Contact"), [&](Path const &p) { leaves.push_back(p); });
    EXPECT_EQ(leaves, (std::vector<Path>{P("tst:Contact/tst:Email"), P("tst:Contact/tst:Address/tst:City"),
                                         P("tst:Contact/tst:Address/tst:Zip")}));
    auto schema = NamespaceDefinition(kTest);
    EXPECT_EQ(CountDescendantLeafPaths(*schema), 13u); // 11 properties, the struct counts its 3 leaves
    EXPECT_EQ(CountDescendantLeafPaths(P("tst:Count")), 1u);
    std::set<Path> all;
    IncludeAllDescendantPaths(*schema, all);
    EXPECT_EQ(all.size(), 13u);
    EXPECT_TRUE(all.count(P("tst:Contact/tst:Address/tst:Zip")));
    EXPECT_FALSE(all.count(P("tst:Contact")));
}

TEST_F(PathAndDefinitionsTest, ClientExclusionHidesAPropertyWithItsFields)
{
    EXPECT_TRUE(IsPropertyUISupported(P("tst:Contact/tst:Email")));
    EXPECT_FALSE(IsPropertyUISupported(P("tst:Unknown")));
    ExcludePropertyForClient(P("tst:Contact"), true);
    EXPECT_FALSE(IsPropertyUISupported(P("tst:Contact")));
    EXPECT_FALSE(IsPropertyUISupported(P("tst:Contact/tst:Email")));
    ExcludePropertyForClient(P("tst:Contact"), false);
    EXPECT_TRUE(IsPropertyUISupported(P("tst:Contact/tst:Email")));
}

TEST_F(PathAndDefinitionsTest, RegistryLookupsAndStandardOrder)
{
    auto const schemas = GetSchemaDefinitions();
    ASSERT_GE(schemas.size(), 14u);
    EXPECT_EQ(schemas[0]->mPrefix, "dc");
    EXPECT_EQ(schemas[1]->mPrefix, "xmp");
    EXPECT_EQ(SchemaDefinitionForPrefix("Iptc4xmpCore"), NamespaceDefinition(kIptc));
    EXPECT_EQ(SchemaDefinitionForPrefix("nope"), nullptr);
    EXPECT_EQ(PropertyNameDefinition(NamespaceDefinition(kDC), "subject")->mForm, ValueForm::kBag);
    EXPECT_EQ(PropertyNameDefinition(NamespaceDefinition(kDC), "Subject"), nullptr);

    std::vector<std::string> asserted;
    auto previous = kivcore::debug::SetAssertHandler(
        [&](kivcore::debug::AssertInfo const &info) { asserted.push_back(info.condition); });
    EXPECT_EQ(PropertyNameDefinition(nullptr, "subject"), nullptr);
    kivcore::debug::SetAssertHandler(previous);
    EXPECT_EQ(asserted, std::vector<std::string>{"inSchemaDefinition"});

    EXPECT_EQ(TypeIdDefinition("no-such-type"), nullptr);
}

TEST_F(PathAndDefinitionsTest, BrokenDefinitionFilesAreRecordedAndSkipped)
{
    struct Case {
        char16_t const *file;
        char const *text;
    } const cases[] = {
        {u"unclosed.xml", "<schema xmlns=\"urn:kivmetadata:schema:1\" namespace=\"http://b/\" prefix=\"b\"><property"},
        {u"noprefix.xml", "<schema xmlns=\"urn:kivmetadata:schema:1\" namespace=\"http://b/\"/>"},
        {u"badform.xml", "<schema namespace=\"http://b/\" prefix=\"b\"><property name=\"x\" form=\"cube\"/></schema>"},
        {u"badtype.xml",
         "<schema namespace=\"http://b/\" prefix=\"b\"><property name=\"x\" type=\"complex\"/></schema>"},
        {u"badmin.xml", "<schema namespace=\"http://b/\" prefix=\"b\"><property name=\"x\" min=\"low\"/></schema>"},
        {u"duplicate.xml", kTestSchema},
        {u"empty.xml", ""},
    };
    QDir(QString::fromStdU16String(mFolder)).removeRecursively();
    for (auto const &c : cases)
        WriteSchema(c.file, c.text);
    ClearErrorInfos();
    EXPECT_EQ(LoadSchemaDefinitionsFromFolder(mFolder, false), 0);
    auto const errors = GetErrorInfos();
    EXPECT_EQ(errors.size(), std::size(cases));
    for (auto const &e : errors) {
        EXPECT_FALSE(e.mDescription.empty());
        EXPECT_NE(e.mContext.find(".xml"), std::string::npos) << e.mContext;
    }
    EXPECT_EQ(NamespaceDefinition("http://b/"), nullptr);
    // The earlier, good definition is untouched.
    EXPECT_EQ(PrimitiveTypeOfPath(P("tst:Count")), kPrimitiveType_Integer);
}

TEST_F(PathAndDefinitionsTest, CustomSchemaIsWrittenAndReadBackAtStart)
{
    auto schema = CreateNewSchema("0f0e0d0c-guid", "My Stuff/2", "$$$/custom_xmp_schemas/0f0e/schema_label/My=My",
                                  "$$$/custom_xmp_schemas/0f0e/schema_description/My=My");
    ASSERT_TRUE(schema);
    EXPECT_EQ(schema->mNamespace, "http://ns.kivmetadata.org/custom/0f0e0d0c-guid/");
    EXPECT_EQ(schema->mPrefix, "MyStuff2");
    std::u16string const file = CustomDefinitionsUserDirectory() + u"/My Stuff-2.xml";
    SetFilePathForSchema(schema, file);
    ASSERT_TRUE(RegisterSchemaDefinition(schema, "custom", false));
    AddPropertyToSchema(schema, CreateNewProperty(kPrimitiveType_Integer, "Pages", "$$$/x/property_name/Pages=Pages"));
    AddPropertyToSchema(schema, CreateNewProperty(kPrimitiveType_Boolean, "Done", "Done"));
    ASSERT_TRUE(RewriteSchemaFile(schema));
    EXPECT_EQ(GetSchemaDefinitions().back(), schema); // custom schemas come last
    EXPECT_FALSE(RegisterSchemaDefinition(std::make_shared<SchemaDefinition>(*schema), "again", false));

    Terminate();
    ASSERT_TRUE(Initialize());
    auto reread = NamespaceDefinition("http://ns.kivmetadata.org/custom/0f0e0d0c-guid/");
    ASSERT_TRUE(reread);
    EXPECT_TRUE(reread->IsCustom());
    EXPECT_EQ(reread->mLabel, schema->mLabel);
    EXPECT_EQ(PrimitiveTypeOfPath(PathForSchemaNameAndPropertyName(reread->mNamespace, "Pages")),
              kPrimitiveType_Integer);
    EXPECT_EQ(PrimitiveTypeOfPath(PathForSchemaNameAndPropertyName(reread->mNamespace, "Done")),
              kPrimitiveType_Boolean);
    EXPECT_TRUE(RemovePropertyFromSchema(reread, "Done"));
    EXPECT_FALSE(RemovePropertyFromSchema(reread, "Done"));

    // A schema without a file cannot be rewritten, and says so.
    ClearErrorInfos();
    EXPECT_FALSE(RewriteSchemaFile(CreateNewSchema("id2", "Other", "", "")));
    EXPECT_EQ(GetErrorInfos().size(), 1u);
}

} // namespace
