#include <kivui/ModuleInfo.h>
#include <kivui/Skin.h>
#include <kivui/SkinManager.h>
#include <kivui/SkinSet.h>
#include <kivui/SkinSingleton.h>
#include <kivui/SkinVersion.h>

#include <kivcore/Assert.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontInfo>
#include <QLineEdit>
#include <QPalette>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

using kivui::skins::core::SkinManager;
using kivui::skins::core::SkinSet;
using kivui::skins::core::SkinVersion;

namespace {

class RedSkin : public kivui::skins::Skin {
public:
    std::string GetDescription() const override { return "QLabel#red { color: red; }"; }
};

// A library's module record: registers a skin in the set of every look that
// is available, the way the metadata library registers its date-edit skins.
class TestModuleInfo : public kivui::ui::ModuleInfo {
public:
    void Initialize() override
    {
        ++initializeCalls;
        seenVersions.push_back(SkinManager::GetSkinVersion());
        for (auto version : {SkinVersion::kV5, SkinVersion::kV7}) {
            if (!kivui::skin::AreThemeFeaturesAvailable(SkinManager::GetSkinVersion(), version)) continue;
            SkinSet *set = SkinManager::RetrieveSet(SkinManager::SetNameFor(version));
            ASSERT_NE(set, nullptr);
            set->AddSkinsToSet(
                {{"kivuitest::RedSkin", kivui::skins::SkinSingleton<RedSkin>::Create()->GetDescription()}});
        }
    }
    int initializeCalls = 0;
    std::vector<SkinVersion> seenVersions;
};

class SkinsTest : public ::testing::Test {
protected:
    void TearDown() override { SkinManager::SetSkinVersion(SkinVersion::kV7); }
};

TEST_F(SkinsTest, ThemeFeaturesOfALaterLookIncludeTheEarlierOnes)
{
    for (auto [current, feature, available] : {std::tuple{SkinVersion::kV5, SkinVersion::kV5, true},
                                               {SkinVersion::kV5, SkinVersion::kV7, false},
                                               {SkinVersion::kV7, SkinVersion::kV5, true},
                                               {SkinVersion::kV7, SkinVersion::kV7, true},
                                               {static_cast<SkinVersion>(4), SkinVersion::kV5, false},
                                               {static_cast<SkinVersion>(8), SkinVersion::kV7, true}}) {
        EXPECT_EQ(kivui::skin::AreThemeFeaturesAvailable(current, feature), available)
            << static_cast<int>(current) << " " << static_cast<int>(feature);
    }
}

TEST_F(SkinsTest, OnlyTheTwoLooksHaveSetsAndSetsMergeSkinsByKey)
{
    // The sets of both looks exist: the module record test fills them.
    EXPECT_EQ(SkinManager::RetrieveSet("V6"), nullptr);

    SkinSet set("Scratch");
    set.AddSkinsToSet({{"b", "B1"}, {"a", "A1"}});
    set.AddSkinsToSet({{"b", "B2"}, {"c", "C1"}});
    ASSERT_EQ(set.GetSkins().size(), 3u);
    EXPECT_EQ(set.GetSkin("b"), "B2");
    EXPECT_EQ(set.GetSkin("missing"), "");
    // A replaced skin keeps its place, so later skins still refine it.
    std::string const sheet = set.GetStyleSheet();
    EXPECT_LT(sheet.find("A1"), sheet.find("B2"));
    EXPECT_LT(sheet.find("B2"), sheet.find("C1"));
    EXPECT_EQ(sheet.find("B1"), std::string::npos);
}

TEST_F(SkinsTest, SkinSingletonAssertsUntilCreated)
{
    struct LonelySkin : kivui::skins::Skin {
        std::string GetDescription() const override { return {}; }
    };
    using Singleton = kivui::skins::SkinSingleton<LonelySkin>;
    int asserts = 0;
    auto previous = kivcore::debug::SetAssertHandler([&](kivcore::debug::AssertInfo const &) { ++asserts; });
    EXPECT_EQ(Singleton::Get(), nullptr);
    EXPECT_EQ(asserts, 1);

    LonelySkin *made = Singleton::Create();
    EXPECT_EQ(Singleton::Create(), made);
    EXPECT_EQ(Singleton::Get(), made);
    kivcore::debug::SetAssertHandler(previous);
    EXPECT_EQ(asserts, 1);
    Singleton::Destroy();
    EXPECT_FALSE(Singleton::Exists());
}

TEST_F(SkinsTest, ModuleInfoIsInitializedAtStartAndOnEveryChangeOfLook)
{
    auto module = std::make_unique<TestModuleInfo>();
    SkinManager::Start(SkinVersion::kV5);
    ASSERT_EQ(module->initializeCalls, 1);
    EXPECT_EQ(module->seenVersions.back(), SkinVersion::kV5);
    EXPECT_TRUE(SkinManager::RetrieveSet("V5")->HasSkin("kivuitest::RedSkin"));

    SkinManager::SetSkinVersion(SkinVersion::kV5); // no change, no call
    EXPECT_EQ(module->initializeCalls, 1);

    SkinManager::SetSkinVersion(SkinVersion::kV7);
    EXPECT_EQ(module->initializeCalls, 2);
    EXPECT_TRUE(kivui::skins::IsRunningV7OrBeyond());
    EXPECT_TRUE(SkinManager::RetrieveSet("V7")->HasSkin("kivuitest::RedSkin"));
    EXPECT_NE(SkinManager::CurrentStyleSheet().indexOf(QStringLiteral("QLabel#red")), -1);

    // A copy is a module record of its own.
    TestModuleInfo copy(*module);
    EXPECT_EQ(copy.initializeCalls, 2);
    SkinManager::SetSkinVersion(SkinVersion::kV5);
    EXPECT_EQ(module->initializeCalls, 3);
    EXPECT_EQ(copy.initializeCalls, 3);

    // Destroyed records are forgotten; a record made later is initialised once registered.
    module.reset();
    TestModuleInfo late;
    EXPECT_EQ(late.initializeCalls, 0);
    SkinManager::RegisterModuleInfo(&late);
    SkinManager::RegisterModuleInfo(&late);
    EXPECT_EQ(late.initializeCalls, 2);
    SkinManager::SetSkinVersion(SkinVersion::kV7);
    EXPECT_EQ(late.initializeCalls, 3);
}

TEST_F(SkinsTest, TheTwoLooksDifferVisiblyAndShareTheFont)
{
    SkinManager::Start(SkinVersion::kV5);
    QColor const v5Window = QApplication::palette().color(QPalette::Window);
    QColor const v5Text = QApplication::palette().color(QPalette::WindowText);
    QString const v5Sheet = SkinManager::CurrentStyleSheet();
    // Adopted widgets carry the look's sheet; the application itself has none,
    // so that widgets that need no sheet stay fast to make.
    QLineEdit adopted;
    SkinManager::AdoptWidget(&adopted);
    EXPECT_EQ(adopted.styleSheet(), v5Sheet);

    int const generation = SkinManager::GetGeneration();
    SkinManager::SetSkinVersion(SkinVersion::kV7);
    EXPECT_GT(SkinManager::GetGeneration(), generation);
    QColor const v7Window = QApplication::palette().color(QPalette::Window);
    QColor const v7Text = QApplication::palette().color(QPalette::WindowText);

    // The older look is light with dark text, the newer one dark with light text.
    EXPECT_GT(v5Window.lightness(), 180);
    EXPECT_LT(v5Text.lightness(), 80);
    EXPECT_LT(v7Window.lightness(), 100);
    EXPECT_GT(v7Text.lightness(), 180);
    EXPECT_NE(SkinManager::CurrentStyleSheet(), v5Sheet);
    EXPECT_EQ(adopted.styleSheet(), SkinManager::CurrentStyleSheet());
    EXPECT_TRUE(qApp->styleSheet().isEmpty());
    EXPECT_EQ(QFontInfo(QApplication::font()).family(), QStringLiteral("DejaVu Sans"));
}

} // namespace
