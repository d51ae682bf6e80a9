#include <kivui/PrefManager.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <limits>

using kivui::utility::PrefManager;

namespace {

class ResourcesPrefsTest : public ::testing::Test {
protected:
    void TearDown() override { PrefManager::Destroy(); }

    QTemporaryDir mDir;
    QString mPath = mDir.filePath(QStringLiteral("prefs.ini"));
};

TEST_F(ResourcesPrefsTest, HostsStoreLivesInTheUserFolderUntilDestroyed)
{
    PrefManager *made = PrefManager::Create(QStringLiteral("kivtest"), QStringLiteral("prefs"));
    ASSERT_NE(made, nullptr);
    // The store lives in the per-user configuration folder, which the test main isolates.
    EXPECT_TRUE(made->FileName().startsWith(qEnvironmentVariable("XDG_CONFIG_HOME"))) << made->FileName().toStdString();
    PrefManager::Destroy();
    EXPECT_EQ(PrefManager::GetPrefManager(), nullptr);
}

TEST_F(ResourcesPrefsTest, TypedValuesSurviveAReopen)
{
    {
        PrefManager *prefs = PrefManager::CreateAtPath(mPath);
        prefs->SetInt("templateImportOptions", 2);
        prefs->SetInt("big", std::numeric_limits<std::int64_t>::min());
        prefs->SetDouble("ratio", 0.375);
        prefs->SetBool("flag", true);
        prefs->SetString("name", u"Größe ✓ \"quoted\", commas");
        prefs->SetString("empty", u"");
        ASSERT_TRUE(prefs->Sync());
        PrefManager::Destroy();
    }
    PrefManager *prefs = PrefManager::CreateAtPath(mPath);
    EXPECT_EQ(prefs->GetInt("templateImportOptions"), 2);
    EXPECT_EQ(prefs->GetInt("big"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(prefs->GetDouble("ratio"), 0.375);
    EXPECT_EQ(prefs->GetBool("flag"), true);
    EXPECT_EQ(prefs->GetString("name"), std::u16string(u"Größe ✓ \"quoted\", commas"));
    EXPECT_EQ(prefs->GetString("empty"), std::u16string());
    EXPECT_TRUE(prefs->HasKey("empty"));

    // Absent keys and values of another type read as absent.
    EXPECT_FALSE(prefs->GetInt("missing"));
    EXPECT_FALSE(prefs->GetInt("name"));
    EXPECT_FALSE(prefs->GetDouble("name"));
    EXPECT_FALSE(prefs->GetBool("ratio"));
    EXPECT_EQ(prefs->GetDouble("templateImportOptions"), 2.0);

    prefs->Remove("flag");
    EXPECT_FALSE(prefs->HasKey("flag"));
}

TEST_F(ResourcesPrefsTest, WindowRectanglesByNodeIdentifier)
{
    PrefManager *prefs = PrefManager::CreateAtPath(mPath);
    EXPECT_EQ(prefs->GetWindowPositionAndSize("MetadataErrorDialog"), kivcore::RectF{});
    prefs->SetWindowPositionAndSize("MetadataErrorDialog", {12.5f, -40.0f, 600.0f, 280.0f});
    ASSERT_TRUE(prefs->Sync());

    // A damaged entry reads as no rectangle rather than as garbage.
    PrefManager::Destroy();
    QFile file(mPath);
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("\n[windows]\nBroken=1 2 three 4\nNegative=0 0 -5 10\nShort=1 2 3\n");
    file.close();
    prefs = PrefManager::CreateAtPath(mPath);
    for (char const *id : {"Broken", "Negative", "Short"})
        EXPECT_EQ(prefs->GetWindowPositionAndSize(id), kivcore::RectF{}) << id;
    EXPECT_EQ(prefs->GetWindowPositionAndSize("MetadataErrorDialog"), (kivcore::RectF{12.5f, -40.0f, 600.0f, 280.0f}));
}

TEST_F(ResourcesPrefsTest, AnUnwritableStoreReportsFailure)
{
    // A folder where the file should be: QSettings cannot write it.
    QDir(mDir.path()).mkpath(QStringLiteral("blocked.ini"));
    PrefManager *prefs = PrefManager::CreateAtPath(mDir.filePath(QStringLiteral("blocked.ini")));
    prefs->SetInt("x", 1);
    EXPECT_FALSE(prefs->Sync());
    // The value is still readable in this session.
    EXPECT_EQ(prefs->GetInt("x"), 1);
}

} // namespace
