#include <kivcore/Assert.h>
#include <kivcore/Exceptions.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

int Guarded(int *p)
{
    KIV_ASSERT_MSG("src/Sample", "kiv::Guarded", p != nullptr, "no pointer");
    return p ? *p : 0;
}

TEST(AssertTest, HandlerSeesUnitFunctionAndConditionAndExecutionContinues)
{
    std::vector<kivcore::debug::AssertInfo> seen;
    auto previous = kivcore::debug::SetAssertHandler([&](auto const &info) { seen.push_back(info); });
    const long before = kivcore::debug::AssertCount();
    int v = 7;
    EXPECT_EQ(Guarded(&v), 7);
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(Guarded(nullptr), 0); // reported, then the neutral result
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].unit, "src/Sample");
    EXPECT_EQ(seen[0].function, "kiv::Guarded");
    EXPECT_EQ(seen[0].condition, "p != nullptr");
    EXPECT_EQ(seen[0].message, "no pointer");
    EXPECT_EQ(kivcore::debug::AssertCount(), before + 1);
    kivcore::debug::SetAssertHandler(previous);
    EXPECT_FALSE(kivcore::debug::IsDebuggerAttached());
}

TEST(AssertTest, ExceptionsCarryTypeNameKeyAndLevel)
{
    try {
        kivcore::config::DoThrowNullPtrException("kivui::UI_Popup");
        FAIL();
    } catch (kivcore::config::NullPtrException const &e) {
        EXPECT_EQ(e.TypeName(), "kivui::UI_Popup");
    }
    try {
        kivcore::config::DoThrowError(kivcore::config::kInvalidTypeConversionKey, 1);
        FAIL();
    } catch (kivcore::config::ErrorException const &e) {
        EXPECT_EQ(e.Level(), 1);
        EXPECT_EQ(e.LocalizedMessage(), u"Invalid type conversion.");
        EXPECT_STREQ(e.what(), "Invalid type conversion.");
    }
}

} // namespace
