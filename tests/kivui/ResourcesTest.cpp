#include <kivui/DrawbotImageResourceCache.h>
#include <kivui/ImageProvider.h>
#include <kivui/OS_ResourceManager.h>
#include <kivui/SkinManager.h>

#include <kivcore/Assert.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <string_view>

using kivui::skins::core::SkinManager;
using kivui::skins::core::SkinVersion;
using kivui::utility::DrawbotImageResourceCache;
using kivui::utility::ImageProvider;
using kivui::utility::OS_ResourceManager;

namespace {

void AFunctionOfThisProgram() {}

// Counts reads, so that tests can tell a cache hit from a second read.
class CountingResourceManager : public OS_ResourceManager {
public:
    using OS_ResourceManager::OS_ResourceManager;
    QByteArray GetResourceData(std::string_view relativePath) const override
    {
        ++reads;
        return OS_ResourceManager::GetResourceData(relativePath);
    }
    mutable int reads = 0;
};

class ResourcesTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(mDir.isValid());
        QDir(mDir.path()).mkpath(QStringLiteral("images"));
        QDir(mDir.path()).mkpath(QStringLiteral("theme/V7"));
        WriteImage(QStringLiteral("images/Link_Sm.png"), Qt::red);
        WriteImage(QStringLiteral("theme/V7/Link_Sm.png"), Qt::blue);
        WriteImage(QStringLiteral("images/Alert_Sm.png"), Qt::green);
        QFile broken(mDir.filePath(QStringLiteral("images/Broken.png")));
        ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
        broken.write("\x89PNG\r\n\x1a\nnot really");
    }
    void TearDown() override { SkinManager::SetSkinVersion(SkinVersion::kV7); }

    void WriteImage(QString const &relative, Qt::GlobalColor color)
    {
        QImage image(4, 4, QImage::Format_ARGB32);
        image.fill(color);
        ASSERT_TRUE(image.save(mDir.filePath(relative), "png"));
    }

    QTemporaryDir mDir;
};

TEST_F(ResourcesTest, PrefixComesFromTheModuleFileName)
{
    for (auto [file, prefix] : {std::pair{"/usr/lib/x86_64-linux-gnu/libkivmetadataui.so.0.1.0", ":/kivmetadataui/"},
                                {"/opt/app/bin/kivgallery", ":/kivgallery/"},
                                {"C:/Program Files/kiv/kivmetadataui.dll", ":/kivmetadataui/"},
                                {"/Library/libkivui.dylib", ":/kivui/"},
                                {"", ""}}) {
        EXPECT_EQ(OS_ResourceManager::PrefixForModuleFile(file).toStdString(), prefix) << file;
    }
}

TEST_F(ResourcesTest, ModuleHandleFromAnAddressReachesTheModulesCompiledResources)
{
    long const asserts = kivcore::debug::AssertCount();
    auto previous = kivcore::debug::SetAssertHandler([](kivcore::debug::AssertInfo const &) {});
    auto const module = OS_ResourceManager::ModuleFromAddress(reinterpret_cast<void const *>(&AFunctionOfThisProgram));
    auto const nothing = OS_ResourceManager::ModuleFromAddress(nullptr);
    kivcore::debug::SetAssertHandler(previous);
    EXPECT_EQ(kivcore::debug::AssertCount(), asserts + 1); // for the null address only
    ASSERT_TRUE(module);
    OS_ResourceManager resources(module);
    EXPECT_EQ(resources.GetPrefix(), QStringLiteral(":/KivuiDialogsTest/"));
    QByteArray const archive = resources.GetUIArchive("Sample");
    EXPECT_TRUE(archive.contains("kivui::UI_SubView"));
    EXPECT_TRUE(resources.GetUIArchive("NoSuchDialog").isEmpty());
    EXPECT_TRUE(resources.GetLayoutDescription("Sample").isEmpty());

    // A manager over no module has no resources and does not fail.
    EXPECT_FALSE(nothing);
    OS_ResourceManager none(nothing);
    EXPECT_TRUE(none.GetUIArchive("Sample").isEmpty());
    EXPECT_TRUE(none.GetImage("Link_Sm").isNull());
}

TEST_F(ResourcesTest, ImagesByNamePreferTheLookInUseAndSurviveBrokenFiles)
{
    OS_ResourceManager resources(mDir.path());
    SkinManager::SetSkinVersion(SkinVersion::kV7);
    EXPECT_EQ(resources.GetImage("Link_Sm").pixelColor(0, 0), QColor(Qt::blue));
    EXPECT_EQ(resources.GetImage("Alert_Sm").pixelColor(0, 0), QColor(Qt::green));
    SkinManager::SetSkinVersion(SkinVersion::kV5);
    EXPECT_EQ(resources.GetImage("Link_Sm").pixelColor(0, 0), QColor(Qt::red));
    EXPECT_TRUE(resources.GetImage("Broken").isNull());

    EXPECT_EQ(resources.GetCursor(11, 3).shape(), Qt::SplitVCursor);
    EXPECT_EQ(resources.GetCursor(11, 0).shape(), Qt::SplitVCursor);
    EXPECT_EQ(resources.GetCursor(999, 3).shape(), Qt::ArrowCursor);
}

TEST_F(ResourcesTest, ProviderReadsEachImageOnceAndPerLook)
{
    CountingResourceManager resources(mDir.path());
    DrawbotImageResourceCache cache;
    ImageProvider provider(&resources, nullptr, &cache);
    SkinManager::SetSkinVersion(SkinVersion::kV5);

    QImage const first = provider.GetImage("Link_Sm");
    int const readsAfterFirst = resources.reads;
    EXPECT_GT(readsAfterFirst, 0);
    EXPECT_EQ(provider.GetImage("Link_Sm"), first);
    EXPECT_EQ(resources.reads, readsAfterFirst);

    // A missing image is remembered as missing.
    EXPECT_TRUE(provider.GetImage("Missing").isNull());
    int const readsAfterMissing = resources.reads;
    EXPECT_TRUE(provider.GetImage("Missing").isNull());
    EXPECT_EQ(resources.reads, readsAfterMissing);

    // Another look reads its own theme image.
    SkinManager::SetSkinVersion(SkinVersion::kV7);
    EXPECT_EQ(provider.GetImage("Link_Sm").pixelColor(0, 0), QColor(Qt::blue));
    EXPECT_EQ(cache.Count(), 3u);

    ImageProvider noResources(nullptr, nullptr, &cache);
    EXPECT_TRUE(noResources.GetImage("Link_Sm").isNull());
    ImageProvider noCache(&resources, nullptr, nullptr);
    EXPECT_FALSE(noCache.GetImage("Link_Sm").isNull());
}

} // namespace
