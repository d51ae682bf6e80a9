// The counted module start-up, the control-creator slot, the module's own
// resources and the registration of the date-edit skins.
#include "BindingTestSupport.h"
#include "ModuleResources.h"
#include "V5DateTextEditSkin.h"
#include "V7DateTextEditSkin.h"

#include <kivmetadataui/Control.h>
#include <kivmetadataui/ControlCreator.h>
#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/ModuleInfo.h>

#include <kivmetadata/Initialize.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ViewItem.h>
#include <kivui/ImageProvider.h>
#include <kivui/OS_ResourceManager.h>
#include <kivui/SkinManager.h>
#include <kivui/SkinSet.h>
#include <kivui/SkinSingleton.h>
#include <kivui/UI_Node.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

using kivmetadataui::ControlCreator;
namespace module = kivmetadataui::module;

// A creator whose captured state tells whether the creator still exists.
ControlCreator TaggedCreator(std::shared_ptr<int> const &tag)
{
    return [tag](kivmetadata::Value const &, std::shared_ptr<kivmetadata::ViewItem>,
                 kivcore::utility::IntrusivePtr<kivui::UI_Node>) -> std::shared_ptr<kivmetadataui::Control> {
        ++*tag;
        return nullptr;
    };
}

// Every test starts and ends with the module stopped and no creator.
class ModuleTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(module::GetInitializationCount(), 0); }
    void TearDown() override
    {
        while (module::GetInitializationCount() > 0)
            kivmetadataui::Terminate();
        while (module::GetInitializationCount() < 0)
            kivmetadataui::Initialize();
        kivmetadataui::RegisterControlCreator(nullptr);
    }
};

TEST_F(ModuleTest, OnlyTheOutermostPairStartsAndStops)
{
    auto tag = std::make_shared<int>(0);
    std::weak_ptr<int> alive = tag;
    kivmetadataui::Initialize();
    kivmetadataui::Initialize();
    EXPECT_TRUE(kivmetadata::IsInitialized());
    auto *const manager = module::GetResourceManager();
    ASSERT_NE(manager, nullptr);
    kivmetadataui::RegisterControlCreator(TaggedCreator(tag));
    tag.reset();

    kivmetadataui::Terminate();
    EXPECT_EQ(module::GetInitializationCount(), 1);
    EXPECT_EQ(module::GetResourceManager(), manager) << "a nested Terminate must not release resources";
    EXPECT_TRUE(kivmetadata::IsInitialized());
    EXPECT_TRUE(static_cast<bool>(kivmetadataui::RegisteredControlCreator()));

    kivmetadataui::Terminate();
    EXPECT_EQ(module::GetInitializationCount(), 0);
    EXPECT_EQ(module::GetResourceManager(), nullptr);
    EXPECT_FALSE(kivmetadata::IsInitialized());
    EXPECT_TRUE(alive.expired()) << "the outermost Terminate destroys the installed creator";
    kivtest::AssertRecorder asserts;
    EXPECT_FALSE(static_cast<bool>(kivmetadataui::RegisteredControlCreator()));
}

TEST_F(ModuleTest, UnmatchedTerminateMakesTheNextInitializeANoOp)
{
    kivmetadataui::Terminate(); // -1
    EXPECT_EQ(module::GetResourceManager(), nullptr);
    kivmetadataui::Initialize(); // 0: nothing starts
    EXPECT_EQ(module::GetInitializationCount(), 0);
    EXPECT_EQ(module::GetResourceManager(), nullptr);
    EXPECT_FALSE(kivmetadata::IsInitialized());
    kivmetadataui::Initialize(); // 1: starts
    EXPECT_NE(module::GetResourceManager(), nullptr);
    EXPECT_TRUE(kivmetadata::IsInitialized());
}

TEST_F(ModuleTest, CreatorSlotReplacesCopiesAndEmpties)
{
    kivtest::AssertRecorder asserts;
    auto first = std::make_shared<int>(0);
    auto second = std::make_shared<int>(0);
    std::weak_ptr<int> firstAlive = first;

    // Registering before Initialize is allowed; reading is not (but answers).
    kivmetadataui::RegisterControlCreator(TaggedCreator(first));
    first.reset();
    ControlCreator early = kivmetadataui::RegisteredControlCreator();
    EXPECT_EQ(asserts.Asserts().size(), 1u);
    EXPECT_TRUE(asserts.Fired("sInitializationCount >= 1", "kivmetadataui::RegisteredControlCreator"));
    EXPECT_TRUE(static_cast<bool>(early));
    early = nullptr;

    kivmetadataui::Initialize();
    asserts.Clear();
    ControlCreator replacement = TaggedCreator(second);
    kivmetadataui::RegisterControlCreator(std::move(replacement));
    EXPECT_TRUE(firstAlive.expired()) << "the replaced creator is destroyed";
    ControlCreator copy = kivmetadataui::RegisteredControlCreator();
    copy(kivmetadata::Value{}, nullptr, nullptr);
    kivmetadataui::RegisteredControlCreator()(kivmetadata::Value{}, nullptr, nullptr);
    EXPECT_EQ(*second, 2) << "the copy calls the second creator";
    EXPECT_TRUE(static_cast<bool>(kivmetadataui::RegisteredControlCreator())) << "the slot keeps its own copy";

    kivmetadataui::RegisterControlCreator(nullptr);
    EXPECT_FALSE(static_cast<bool>(kivmetadataui::RegisteredControlCreator()));
    EXPECT_TRUE(asserts.Asserts().empty());
}

TEST_F(ModuleTest, ImagesComeFromTheModulesOwnResources)
{
    kivmetadataui::Initialize();
    auto *const manager = module::GetResourceManager();
    ASSERT_NE(manager, nullptr);
    for (char const *name : {"Delete_Sm", "Link_Sm", "Unlink_Sm", "Alert_Sm", "Info_Sm"}) {
        EXPECT_EQ(manager->GetImage(name).size(), QSize(16, 16)) << name;
    }
    EXPECT_TRUE(manager->HasResource("locales/en.txt"));
    EXPECT_TRUE(manager->HasResource("theme/Theme.qss"));

    auto *const provider = module::GetImageProvider();
    ASSERT_NE(provider, nullptr);
    EXPECT_EQ(provider->GetCache(), module::GetImageResourceCache());
    EXPECT_EQ(provider->GetResourceManager(), manager);
    EXPECT_FALSE(provider->GetImage("Info_Sm").isNull());

    kivmetadataui::Terminate();
    EXPECT_EQ(module::GetResourceManager(), nullptr);
    kivmetadataui::Initialize();
    // A provider made after a restart reads through the new resource manager.
    auto *const again = module::GetImageProvider();
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->GetResourceManager(), module::GetResourceManager());
}

TEST(ModuleInfoTest, RegistersTheDateEditSkinOfEachAvailableLook)
{
    using kivui::skins::core::SkinManager;
    using kivui::skins::core::SkinVersion;
    namespace v5 = kivmetadataui::skins::v5;
    namespace v7 = kivmetadataui::skins::v7;
    auto *const info = kivmetadataui::ModuleInfo::Get();
    ASSERT_NE(info, nullptr);

    auto *const setV5 = SkinManager::RetrieveSet("V5");
    auto *const setV7 = SkinManager::RetrieveSet("V7");
    ASSERT_NE(setV5, nullptr);
    ASSERT_NE(setV7, nullptr);
    const SkinVersion before = SkinManager::GetSkinVersion();

    SkinManager::SetSkinVersion(SkinVersion::kV5);
    const bool v7HadIt = setV7->HasSkin("kivmetadataui::V7DateTextEditSkin");
    info->Initialize();
    EXPECT_EQ(setV5->GetSkin("kivmetadataui::V5DateTextEditSkin"),
              kivui::skins::SkinSingleton<v5::V5DateTextEditSkin>::Get()->GetDescription());
    EXPECT_EQ(setV7->HasSkin("kivmetadataui::V7DateTextEditSkin"), v7HadIt)
        << "the older look must not register the newer look's skin";

    SkinManager::SetSkinVersion(SkinVersion::kV7);
    info->Initialize();
    EXPECT_TRUE(setV5->HasSkin("kivmetadataui::V5DateTextEditSkin"));
    EXPECT_EQ(setV7->GetSkin("kivmetadataui::V7DateTextEditSkin"),
              kivui::skins::SkinSingleton<v7::V7DateTextEditSkin>::Get()->GetDescription());
    SkinManager::SetSkinVersion(before);
}

} // namespace
