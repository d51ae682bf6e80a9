// Hostile and huge packets and user files: refused or opened read-only with
// the limit named, before the XMP toolkit sees them; real-sized packets stay
// editable.
#include <kivmetadata/Definitions.h>
#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadata/Initialize.h>
#include <kivmetadata/MRULists.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/Templates.h>
#include <kivmetadata/UserFolders.h>
#include <kivmetadata/ViewDefinitions.h>
#include <kivmetadata/ViewSettings.h>
#include <kivmetadata/XMPMeta.h>

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "HostilePackets.h"
#include "TestImages.h"

using namespace kivmetadata;

namespace {

std::string JpegWithPacket(std::string const &packet)
{
    std::string const jpeg = testimages::ImageBytes("JPG").toStdString();
    return "\xFF\xD8" + testimages::App1(std::string("http://ns.adobe.com/xap/1.0/", 29) + packet) + jpeg.substr(2);
}

class HostileTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(mDir.isValid());
        SetUserDataDirectory(mDir.filePath(QStringLiteral("data")).toStdU16String());
        ASSERT_TRUE(Initialize());
        ClearErrorInfos();
    }
    void TearDown() override
    {
        Terminate();
        SetUserDataDirectory({});
    }
    QString Write(QString const &relative, std::string const &bytes)
    {
        return testimages::WriteFile(mDir.filePath(relative), bytes);
    }
    static bool Logged(QString const &path, std::string const &message)
    {
        for (auto const &info : GetErrorInfos())
            if (info.mContext.find(QFileInfo(path).fileName().toStdString()) != std::string::npos &&
                info.mDescription.find(message) != std::string::npos)
                return true;
        return false;
    }

    QTemporaryDir mDir;
};

TEST_F(HostileTest, HostilePacketsOpenReadOnlyShowingNothingAndNamingTheLimit)
{
    using namespace hostile;
    struct Case {
        char const *file;
        std::string bytes;
        char const *reason;
    } const cases[] = {
        {"deep.xmp", Deep(20000), "nests elements more than 100 levels deep; kivmeta reads at most 100"},
        {"wide.xmp", Wide(50000), "has 50,000 properties in one place; kivmeta reads at most 3,000"},
        // Descriptions of one namespace merge into one node in the toolkit.
        {"spread.xmp", Spread(4, 1000), "has 4,000 properties in one place"},
        {"fields.xmp", WideStruct(5000), "has 5,000 properties in one place"},
        {"items.xmp", Items(100001), "has 100,001 items in one array; kivmeta reads at most 100,000"},
        {"nodes.xmp", ManyArrays(30, 7000), "properties and items in all; kivmeta reads at most 150,000"},
        {"long.xmp", LongValue(8000001), "has a value of 8,000,001 bytes; kivmeta reads values of at most"},
        {"namespaces.xmp", Namespaces(600), "declares 607 namespaces; kivmeta reads at most 500"},
        {"utf8.xmp", InvalidUtf8(), "is not valid UTF-8 text"},
        {"nul.xmp", WithNul(), "contains a NUL byte"},
        {"doctype.xmp", Doctype(), "declares a document type (DOCTYPE)"},
        {"huge.xmp", std::string(33u << 20, ' '), "the XMP packet is 33.0 MB; kivmeta reads at most 32.0 MB"},
        // Our own JPEG reader, and the toolkit's scanner, which parses on open.
        {"deep.jpg", JpegWithPacket(Deep(200)), "nests elements more than 100 levels deep"},
        {"wide.bin", "junk" + Wide(50000) + "junk", "has 50,000 properties in one place"},
    };
    for (auto const &c : cases) {
        SCOPED_TRACE(c.file);
        QString const path = Write(QString::fromLatin1(c.file), c.bytes);
        std::string error;
        auto provider = FileMetaDataProvider::Open(path.toStdU16String(), &error);
        ASSERT_TRUE(provider);
        EXPECT_FALSE(provider->IsWritable());
        EXPECT_FALSE(provider->IsComplete());
        EXPECT_NE(provider->ReadOnlyReason().find(c.reason), std::string::npos) << provider->ReadOnlyReason();
        EXPECT_NE(provider->ReadOnlyReason().find("its metadata is not shown"), std::string::npos);
        EXPECT_TRUE(provider->GetMeta()->IsEmpty());
        EXPECT_TRUE(Logged(path, c.reason));
        std::string saveError;
        EXPECT_FALSE(provider->Save(&saveError));
        EXPECT_EQ(c.bytes.size(), std::size_t(QFileInfo(path).size()));
        if (path.endsWith(QLatin1String(".xmp")) && c.bytes.size() < (32u << 20)) {
            std::string parseError;
            EXPECT_FALSE(XMPMeta::Parse(c.bytes, &parseError));
            EXPECT_NE(parseError.find(c.reason), std::string::npos) << parseError;
        }
    }
}

TEST_F(HostileTest, BrokenUserFilesAreNamedAndSkippedWhileTheRestLoads)
{
    using namespace hostile;
    std::string manyEntries = "<mru xmlns=\"urn:kivmetadata:mru:1\"><list key=\"k\">";
    for (int i = 0; i < 100001; ++i)
        manyEntries += "<entry>x</entry>";
    manyEntries += "</list></mru>";
    Write(QStringLiteral("data/panels/good.xml"),
          "<panel xmlns=\"urn:kivmetadata:panel:1\" name=\"good\" label=\"Good\"></panel>");
    struct Case {
        QString file;
        std::string bytes;
        char const *reason;
    } const cases[] = {
        {QStringLiteral("data/custom_schemas/deep.xml"), Deep(200), "nests elements more than 100"},
        {QStringLiteral("data/panels/doctype.xml"), "<!DOCTYPE panel [<!ENTITY a \"aaaa\">]><panel/>",
         "declares a document type (DOCTYPE)"},
        {QStringLiteral("data/panels/huge.xml"), std::string(33u << 20, ' '), "the file is 33.0 MB"},
        {QStringLiteral("data/mru/mru.xml"), manyEntries, "has 100,001 entries in one list"},
        {QStringLiteral("data/view_settings/bad.xml"), WithNul(), "contains a NUL byte"},
        {QStringLiteral("data/templates/wide.xmp"), Wide(5000), "has 5,000 properties in one place"},
    };
    Terminate();
    for (auto const &c : cases)
        Write(c.file, c.bytes);
    ASSERT_TRUE(Initialize());
    EXPECT_TRUE(GetViewDefinitionForName("good"));
    EXPECT_TRUE(NamespaceDefinition(kDC));
    EXPECT_TRUE(GetMRUList("k").empty());
    std::set<Path> paths;
    EXPECT_FALSE(ReadIncludedLeafPathsAsXMLFile(paths, mDir.filePath(cases[4].file).toStdU16String()));
    EXPECT_FALSE(LoadTemplate(u"wide"));
    for (auto const &c : cases) {
        SCOPED_TRACE(c.file.toStdString());
        EXPECT_TRUE(Logged(c.file, c.reason));
    }
}

TEST_F(HostileTest, RealSizedRawSettingsHistoryAndAncestorsStayEditable)
{
    std::string const packet = hostile::RealSized(400, 5000, 30000);
    QString const path = Write(QStringLiteral("raw.xmp"), packet);
    std::string error;
    auto provider = FileMetaDataProvider::Open(path.toStdU16String(), &error);
    ASSERT_TRUE(provider) << error;
    ASSERT_TRUE(provider->IsWritable()) << provider->ReadOnlyReason();
    {
        MetaDataUpdateAccess access(provider);
        ASSERT_TRUE(provider->GetMeta()->SetProperty(kDC, "dc:format", "image/x-raw"));
        access.AddChange(Path{kDC, "dc:format"});
    }
    ASSERT_TRUE(provider->Save(&error)) << error;
    auto reopened = FileMetaDataProvider::Open(path.toStdU16String(), &error);
    ASSERT_TRUE(reopened && reopened->IsWritable()) << error;
    std::string value;
    EXPECT_TRUE(reopened->GetMeta()->GetProperty(kDC, "dc:format", value));
    EXPECT_EQ("image/x-raw", value);
    EXPECT_TRUE(reopened->GetMeta()->GetProperty(kCrs, "crs:Setting399", value));
    EXPECT_EQ(30000, reopened->GetMeta()->CountArrayItems(kPhotoshop, "photoshop:DocumentAncestors"));
}

} // namespace
