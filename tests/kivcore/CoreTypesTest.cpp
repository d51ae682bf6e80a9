#include <kivcore/Flags.h>
#include <kivcore/Geometry.h>
#include <kivcore/Guid.h>
#include <kivcore/RefCounted.h>
#include <kivcore/StringUtils.h>

#include <gtest/gtest.h>

#include <set>

namespace {

struct Counted : kivcore::utility::RefCountedInterface {
    explicit Counted(int *inDeaths) : deaths(inDeaths) {}
    ~Counted() override { ++*deaths; }
    int *deaths;
};
struct Derived : Counted {
    using Counted::Counted;
};

} // namespace

TEST(CoreTypesTest, IntrusivePointerOwnership)
{
    using kivcore::utility::IntrusivePtr;
    int deaths = 0;
    {
        IntrusivePtr<Counted> a(new Derived(&deaths));
        EXPECT_EQ(a->RefCount(), 1);
        IntrusivePtr<Counted> b = a;
        EXPECT_EQ(a->RefCount(), 2);
        auto d = kivcore::utility::IntrusivePtrCast<Derived>(b);
        ASSERT_TRUE(d);
        EXPECT_EQ(a->RefCount(), 3);
        b.reset();
        d = nullptr;
        EXPECT_EQ(a->RefCount(), 1);
        EXPECT_EQ(deaths, 0);
        IntrusivePtr<Counted> moved = std::move(a);
        EXPECT_FALSE(a);
        EXPECT_EQ(moved->RefCount(), 1);
    }
    EXPECT_EQ(deaths, 1);
}

TEST(CoreTypesTest, FlagsGeometryGuidStrings)
{
    kivcore::Flags<unsigned char> margins(5);
    EXPECT_TRUE(margins.IsSet(1));
    EXPECT_FALSE(margins.IsSet(2));
    margins.Set(2).Clear(1);
    EXPECT_EQ(margins.Value(), 6);
    EXPECT_EQ((kivcore::Flags<unsigned char>(255) & kivcore::Flags<unsigned char>(8)).Value(), 8);

    kivcore::RectF r{10, 20, -4, 6};
    EXPECT_EQ(r.Normalized(), (kivcore::RectF{6, 20, 4, 6}));
    EXPECT_TRUE((kivcore::RectF{0, 0, 10, 10}).Contains({9.5f, 0}));
    EXPECT_FALSE((kivcore::RectF{0, 0, 10, 10}).Contains({10, 0}));
    EXPECT_EQ((kivcore::RectF{0, 0, 10, 10}).Intersection({5, 5, 10, 10}), (kivcore::RectF{5, 5, 5, 5}));

    std::set<std::string> ids;
    for (int i = 0; i < 100; ++i)
        ids.insert(kivcore::utility::Guid::CreateUnique().AsString());
    EXPECT_EQ(ids.size(), 100u);
    EXPECT_EQ(ids.begin()->size(), 36u);

    using namespace kivcore::utility;
    EXPECT_EQ(Utf16ToUtf8(Utf8ToUtf16("Gr\xC3\xBC\xC3\x9F\x65 \xF0\x9F\x93\xB7")),
              "Gr\xC3\xBC\xC3\x9F\x65 \xF0\x9F\x93\xB7");
    EXPECT_EQ(Utf8ToUtf16("\xF0\x9F\x93\xB7").size(), 2u); // a surrogate pair
    EXPECT_EQ(Trim(std::u16string_view(u" \t a b \u3000")), u"a b");
    EXPECT_EQ(FoldCase(u"\u00C0RBOL \u03A3"), u"\u00E0rbol \u03C3");
    EXPECT_EQ(NormalizedString(u"e\u0301"), u"\u00E9");
    EXPECT_EQ(ReplaceAll(u"a--b--", u"--", u"-"), u"a-b-");
}
