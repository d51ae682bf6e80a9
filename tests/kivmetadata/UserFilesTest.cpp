#include <kivmetadata/Definitions.h>
#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/Initialize.h>
#include <kivmetadata/MRULists.h>
#include <kivmetadata/PanelConversion.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/Templates.h>
#include <kivmetadata/UserFolders.h>
#include <kivmetadata/ViewBuilderInterface.h>
#include <kivmetadata/ViewDefinition.h>
#include <kivmetadata/ViewDefinitions.h>
#include <kivmetadata/ViewSettings.h>
#include <kivmetadata/XMPMeta.h>

#include <kivcore/StringUtils.h>

#include <gtest/gtest.h>

#include "TestImages.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace kivmetadata;

namespace {

class UserFilesTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(mHome.isValid());
        mData = mHome.path().toStdU16String();
        SetUserDataDirectory(mData);
        ASSERT_TRUE(Initialize());
        ClearErrorInfos();
    }
    void TearDown() override
    {
        Terminate();
        SetUserDataDirectory({});
    }
    void Put(std::u16string const &path, std::string const &text)
    {
        testimages::WriteFile(QString::fromStdU16String(path), text);
    }

    QTemporaryDir mHome;
    std::u16string mData;
};

// Records what BuildView tells it, one line per call.
struct RecordingBuilder : ViewBuilderInterface {
    void BeginView(ViewDefinition const &view) override { mLog.push_back("view " + view.mName); }
    void EndView() override { mLog.push_back("end view"); }
    void BeginSection(ViewItem const &section) override { mLog.push_back("section " + section.mLabel); }
    void EndSection() override { mLog.push_back("end section"); }
    void AddProperty(std::shared_ptr<ViewItem> const &item, PropertyDefinition const &) override
    {
        std::string line = "property " + item->mPath.mPath;
        for (auto const &[key, value] : item->mAttributes)
            line += " " + key + "=" + value;
        if (!item->mChoices.empty()) line += " choices=" + std::to_string(item->mChoices.size());
        mLog.push_back(line);
    }
    void BeginStruct(std::shared_ptr<ViewItem> const &item, PropertyDefinition const &) override
    {
        mLog.push_back("struct " + item->mPath.mPath);
    }
    void EndStruct() override { mLog.push_back("end struct"); }
    void AddArray(std::shared_ptr<ViewItem> const &item, PropertyDefinition const &) override
    {
        mLog.push_back("array " + item->mPath.mPath);
    }
    std::vector<std::string> mLog;
};

TEST_F(UserFilesTest, RecentEntriesAreBoundedNewestFirstPersistAndSurviveCorruptFiles)
{
    UpdateMRULists("dc:subject", {u"boat", u"sea"});
    UpdateMRULists("dc:subject", {u"harbour", u"boat", u""});
    EXPECT_EQ(GetMRUList("dc:subject"), (std::vector<std::u16string>{u"harbour", u"boat", u"sea"}));
    for (int i = 0; i < 30; ++i)
        UpdateMRULists("dc:creator", {u"name " + kivcore::utility::Utf8ToUtf16(std::to_string(i))});
    auto const creators = GetMRUList("dc:creator");
    ASSERT_EQ(creators.size(), kMRUListLength);
    EXPECT_EQ(creators.front(), u"name 29");
    EXPECT_TRUE(GetMRUList("unknown").empty());

    Terminate(); // lists live in the user folder, not in the process
    SetUserDataDirectory(mData + u"/other");
    EXPECT_TRUE(GetMRUList("dc:subject").empty());
    SetUserDataDirectory(mData);
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(GetMRUList("dc:subject").front(), u"harbour");

    // A corrupt list is set aside, not lost, and a new one is started.
    SetUserDataDirectory(mData + u"/corrupt");
    Put(mData + u"/corrupt/mru/mru.xml", "<mru><list key=\"k\"><entry>x</entry>");
    ClearErrorInfos();
    EXPECT_TRUE(GetMRUList("k").empty());
    EXPECT_EQ(GetErrorInfos().size(), 1u);
    EXPECT_TRUE(QFile::exists(QString::fromStdU16String(mData + u"/corrupt/mru/mru.xml.bad")));
    UpdateMRULists("k", {u"y"});
    EXPECT_EQ(GetMRUList("k"), std::vector<std::u16string>{u"y"});
}

TEST_F(UserFilesTest, TemplatesAreSavedListedLoadedAndRefusedWhenBroken)
{
    auto meta = XMPMeta::Parse("");
    meta->SetProperty(kPhotoshop, "photoshop:Credit", "CC-BY");
    ASSERT_TRUE(SaveTemplate(u"Agency/Default", *meta));
    ASSERT_TRUE(SaveTemplate(u"Basic", *meta));
    EXPECT_EQ(GetTemplateNames(), (std::vector<std::u16string>{u"Agency-Default", u"Basic"}));
    auto loaded = LoadTemplate(u"Basic");
    ASSERT_TRUE(loaded);
    std::string rights;
    EXPECT_TRUE(loaded->GetProperty(kPhotoshop, "photoshop:Credit", rights));
    EXPECT_EQ(rights, "CC-BY");

    Put(TemplateDirectory() + u"/Broken.xmp", "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF");
    ClearErrorInfos();
    std::string error;
    EXPECT_EQ(LoadTemplate(u"Broken", &error), nullptr);
    EXPECT_EQ(LoadTemplate(u"Missing"), nullptr);
    EXPECT_EQ(GetErrorInfos().size(), 2u);
    EXPECT_FALSE(SaveTemplate(u"  ", *meta));
    EXPECT_TRUE(DeleteTemplate(u"Basic"));
    EXPECT_EQ(GetTemplateNames().size(), 2u); // Agency-Default and the broken one
}

TEST_F(UserFilesTest, ViewSettingsRoundTripAndRefuseFilesThatDoNotParse)
{
    std::set<Path> const paths{{kDC, "dc:title"},
                               {kIptc, "Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiEmailWork"},
                               {"http://x/&<\"", "x:a"}};
    std::string text;
    ASSERT_TRUE(IncludedLeafPathsAsXMLString(paths, text));
    std::u16string const file = ViewSettingsDirectory() + u"/Basic.xmp_view_settings.xml";
    Put(file, text);
    std::set<Path> read{{"stale", "s:s"}};
    ASSERT_TRUE(ReadIncludedLeafPathsAsXMLFile(read, file));
    EXPECT_EQ(read, paths);

    std::set<Path> empty;
    ASSERT_TRUE(IncludedLeafPathsAsXMLString(empty, text));
    EXPECT_TRUE(ReadIncludedLeafPathsAsXMLString(read, text));
    EXPECT_TRUE(read.empty());

    for (char const *bad : {"", "<viewSettings><path namespace=\"a\" path=\"b\">", "<other/>",
                            "<viewSettings><path path=\"only\"/></viewSettings>"}) {
        Put(file, bad);
        std::set<Path> kept{{"keep", "k:k"}};
        ClearErrorInfos();
        EXPECT_FALSE(ReadIncludedLeafPathsAsXMLFile(kept, file)) << bad;
        EXPECT_EQ(kept.size(), 1u) << bad;
        EXPECT_EQ(GetErrorInfos().size(), 1u) << bad;
    }
    EXPECT_FALSE(ReadIncludedLeafPathsAsXMLFile(read, ViewSettingsDirectory() + u"/missing.xml"));
}

TEST_F(UserFilesTest, BuildViewWalksSectionsStructsAndArraysAndSkipsWhatItCannotShow)
{
    std::string panel = R"(<panel xmlns="urn:kivmetadata:panel:1" name="Mine" label="Mine">
  <property path="dc:title"/>
  <section label="First">
    <property path="dc:format" dropdown="true" openChoice="true" label="Kind">
      <choice value="image/jpeg" label="JPEG"/>
    </property>
    <property path="dc:nonsense"/>
    <property path="zz:Unknown"/>
    <struct path="Iptc4xmpCore:CreatorContactInfo" readOnly="true"/>
    <array path="dc:subject"/>
    <property path="Iptc4xmpExt:LocationShown"/>
  </section>
</panel>)";
    std::string nested = panel;
    nested.insert(nested.rfind("  </section>"), "    <section label=\"nested sections are refused\"/>\n");
    EXPECT_EQ(ParseViewDefinition(nested, u"mine.xml"), nullptr);
    auto view = ParseViewDefinition(panel, u"mine.xml");
    ASSERT_TRUE(view);
    RegisterViewDefinition(view);
    EXPECT_EQ(GetViewDefinitionForName("Mine"), view);
    ExcludePropertyForClient(Path{kDC, "dc:title"}, true);
    ClearErrorInfos();
    RecordingBuilder builder;
    ASSERT_TRUE(BuildView(view, builder));
    ASSERT_GE(builder.mLog.size(), 7u);
    EXPECT_EQ(builder.mLog[0], "view Mine");
    EXPECT_EQ(builder.mLog[1], "section First");
    EXPECT_EQ(builder.mLog[2], "property dc:format dropdown=true openChoice=true choices=1");
    EXPECT_EQ(builder.mLog[3], "struct Iptc4xmpCore:CreatorContactInfo");
    EXPECT_EQ(builder.mLog[4], "property Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiAdrExtadr readOnly=true");
    auto endStruct = std::find(builder.mLog.begin(), builder.mLog.end(), "end struct");
    ASSERT_NE(endStruct, builder.mLog.end());
    EXPECT_EQ(*(endStruct + 1), "array dc:subject");
    EXPECT_EQ(*(endStruct + 2), "array Iptc4xmpExt:LocationShown"); // an array of structs
    EXPECT_EQ(builder.mLog.back(), "end view");
    EXPECT_EQ(GetErrorInfos().size(), 2u); // the two unknown properties, each once
    BuildView(view, builder);
    EXPECT_EQ(GetErrorInfos().size(), 2u);
    EXPECT_FALSE(BuildView(nullptr, builder));
}

TEST_F(UserFilesTest, StandardAndUserPanelsAreFoundByName)
{
    auto const views = GetViewDefinitions();
    ASSERT_GE(views.size(), 8u);
    EXPECT_EQ(views[0]->mName, "Description");
    auto description = GetViewDefinitionForName("Description");
    ASSERT_TRUE(description);
    EXPECT_TRUE(description->mFilePath.empty());
    EXPECT_EQ(GetViewDefinitionForName("No such panel"), nullptr);

    Put(UserPanelDirectory() + u"/Description.xml",
        "<panel name=\"Description\" label=\"Mine\"><property path=\"dc:title\"/></panel>");
    Put(UserPanelDirectory() + u"/junk.xml", "\x01\x02 not xml at all");
    Terminate();
    ASSERT_TRUE(Initialize());
    auto mine = GetViewDefinitionForName("Description");
    ASSERT_TRUE(mine);
    EXPECT_EQ(mine->mLabel, "Mine");
    EXPECT_FALSE(mine->mFilePath.empty());
    EXPECT_TRUE(std::ranges::any_of(GetErrorInfos(),
                                    [](auto const &e) { return e.mContext.find("junk.xml") != std::string::npos; }));
}

TEST_F(UserFilesTest, OlderGenericPanelsOfEachVersionAreConverted)
{
    Put(utility::GenericPanelsDirectory(utility::kGXVersion_GX6) + u"/Press.xml",
        R"(<genericPanel name="Press" title="Press Info">
  <group title="Main">
    <field ns="http://purl.org/dc/elements/1.1/" name="title" widget="text" title="Headline"/>
    <field ns="http://ns.adobe.com/xap/1.0/" name="Rating" widget="stars"/>
    <field ns="http://purl.org/dc/elements/1.1/" name="format" widget="dropdown">
      <option value="image/jpeg" title="JPEG"/>
    </field>
    <field ns="http://nowhere.example/" name="Thing" widget="text"/>
  </group>
</genericPanel>)");
    Put(utility::GenericPanelsDirectory(utility::kGXVersion_GX6) + u"/Broken.xml", "<genericPanel name=");
    Put(utility::GenericPanelsDirectory(utility::kGXVersion_GX5) + u"/Desk.xml",
        R"(<genericPanel name="Desk"><namespace prefix="d" uri="http://purl.org/dc/elements/1.1/"/>
  <group title="G"><field property="d:description" widget="multiline" lines="5" readonly="true"/></group>
</genericPanel>)");
    Put(utility::GenericPanelsDirectory(utility::kGXVersion_GX4) + u"/Old.txt",
        "# GX4 panel\npanel: Old\ntitle: Old Panel\ngroup: Basics\nfield: dc:subject | text | Keywords\n"
        "field: photoshop:Urgency | dropdown | Urgency | 1=High, 8=Low\n");

    std::u16string report;
    EXPECT_FALSE(utility::LoadAndConvertGenericPanels(utility::kGXVersion_GX6, report));
    std::string const gx6 = kivcore::utility::Utf16ToUtf8(report);
    EXPECT_NE(gx6.find("FAILED Broken.xml"), std::string::npos) << gx6;
    EXPECT_NE(gx6.find("Converted Press.xml"), std::string::npos) << gx6;
    EXPECT_NE(gx6.find("1 field(s) skipped"), std::string::npos) << gx6;
    auto press = GetViewDefinitionForName("Press");
    ASSERT_TRUE(press);
    EXPECT_TRUE(QFile::exists(QString::fromStdU16String(UserPanelDirectory() + u"/Press.xml")));
    RecordingBuilder builder;
    BuildView(press, builder);
    EXPECT_EQ(builder.mLog,
              (std::vector<std::string>{"view Press", "section Main", "property dc:title",
                                        "property xmp:Rating rating=true size=16",
                                        "property dc:format dropdown=true choices=1", "end section", "end view"}));

    EXPECT_TRUE(utility::LoadAndConvertGenericPanels(utility::kGXVersion_GX5, report));
    auto desk = GetViewDefinitionForName("Desk");
    ASSERT_TRUE(desk);
    EXPECT_EQ(desk->mItems[0]->mChildren[0]->Attribute("multiLines"), "5");
    EXPECT_EQ(desk->mItems[0]->mChildren[0]->Attribute("readOnly"), "true");

    EXPECT_TRUE(utility::LoadAndConvertGenericPanels(utility::kGXVersion_GX4, report));
    auto old = GetViewDefinitionForName("Old");
    ASSERT_TRUE(old);
    EXPECT_EQ(old->mLabel, "Old Panel");
    EXPECT_EQ(old->mItems[0]->mChildren[1]->mChoices.size(), 2u);

    // Converted panels are ordinary user panels afterwards.
    Terminate();
    ASSERT_TRUE(Initialize());
    EXPECT_TRUE(GetViewDefinitionForName("Old"));

    QDir(QString::fromStdU16String(utility::GenericPanelsDirectory(utility::kGXVersion_GX4))).removeRecursively();
    EXPECT_TRUE(utility::LoadAndConvertGenericPanels(utility::kGXVersion_GX4, report));
    EXPECT_NE(kivcore::utility::Utf16ToUtf8(report).find("No GX4 Generic Panels"), std::string::npos);
}

} // namespace
