// The three-section splitter: section geometry from the two fractions and the
// opened states, the section lookup, and dragging the splitter.
#include <kivmetadataui/MetadataSectionView.h>
#include <kivmetadataui/TriSectionSplitterView.h>

#include "BindingTestSupport.h"

#include <kivui/SkinManager.h>
#include <kivui/SkinVersion.h>
#include <kivui/UI_NodeManager.h>
#include <kivui/UI_SectionView.h>

#include <QWidget>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using kivcore::RectF;
using kivmetadataui::MetadataSectionView;
using kivmetadataui::TriSectionSplitterView;
using kivui::skins::core::SkinManager;
using kivui::skins::core::SkinVersion;
using SplitterPtr = kivcore::utility::IntrusivePtr<TriSectionSplitterView>;

class SplitterTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        mLook = SkinManager::GetSkinVersion();
        SkinManager::SetSkinVersion(SkinVersion::kV7);
    }
    void TearDown() override
    {
        kivui::UI_NodeManager::Get().EndInputCapture();
        SkinManager::SetSkinVersion(mLook);
    }

    static SplitterPtr Make(float inHeight, float inP0, float inP1, bool inOpen0 = true, bool inOpen1 = true,
                            bool inOpen2 = true)
    {
        SplitterPtr view(new TriSectionSplitterView(nullptr, nullptr, nullptr, nullptr));
        view->UI_SetLocalRectF(RectF{0, 0, 300, inHeight});
        view->SetSplitterPercentage(true, inP0);
        view->SetSplitterPercentage(false, inP1);
        view->GetSectionView(0)->SetOpened(inOpen0);
        view->GetSectionView(1)->SetOpened(inOpen1);
        view->GetSectionView(2)->SetOpened(inOpen2);
        return view;
    }

    static bool Press(TriSectionSplitterView &inView, float inY)
    {
        kivui::MouseEvent down;
        down.type = kivui::MouseEvent::kDown;
        down.button = 1;
        down.local = {150, inY};
        return kivui::UI_NodeManager::Get().DispatchMouseEvent(&inView, down);
    }

    // A capture gets its local point from the global one.
    static void Move(TriSectionSplitterView &inView, float inY)
    {
        kivui::MouseEvent move;
        move.type = kivui::MouseEvent::kMove;
        move.button = 1;
        QPointF const global = inView.UI_GetWidget()->mapToGlobal(QPointF(150, inY));
        move.global = {float(global.x()), float(global.y())};
        kivui::UI_NodeManager::Get().DispatchCaptureEvent(move);
    }

    SkinVersion mLook = SkinVersion::kV7;
    // Make() reaches the bottom section through the asserting lookup.
    kivtest::AssertRecorder mAsserts;
};

TEST_F(SplitterTest, SectionGeometryFollowsFractionsAndOpenedStates)
{
    // v7: H = 24, S = 6. E = max(h - 6 - 48, 30).
    struct Case {
        char const *name;
        float h, p0, p1;
        bool open0, open1, open2;
        float height0, height1, height2;
    };
    std::vector<Case> const cases = {
        // E = 246: 24 + 0.25 E, 24 + 0.75 E; the bottom's remainder is negative.
        {"both open", 300, 0.25f, 0.75f, true, true, true, 85.5f, 208.5f, 24},
        // A = 1 - 0.25: the middle gets E * 0.75 / 0.75.
        {"first closed renormalises", 300, 0.25f, 0.75f, false, true, true, 24, 270, 24},
        // A = 0: both upper sections are header-only, the bottom takes the rest.
        {"both upper closed", 300, 0.4f, 0.6f, false, false, true, 24, 24, 246},
        // The bottom takes max(h, 30) - h0 - h1 - 6 - 24 when the shares leave room.
        {"bottom gets the remainder", 300, 0.25f, 0.25f, true, true, true, 85.5f, 85.5f, 123},
        {"closed bottom is header only", 300, 0.25f, 0.25f, true, true, false, 85.5f, 85.5f, 24},
        // h below H + 6: E = 30 and the bottom computes with h = 30.
        {"view below its minimum", 10, 0.5f, 0.5f, false, false, true, 24, 24, 24},
    };
    for (Case const &c : cases) {
        SCOPED_TRACE(c.name);
        SplitterPtr view = Make(c.h, c.p0, c.p1, c.open0, c.open1, c.open2);
        EXPECT_FLOAT_EQ(view->SectionHeight(0), c.height0);
        EXPECT_FLOAT_EQ(view->SectionHeight(1), c.height1);
        EXPECT_FLOAT_EQ(view->SectionHeight(2), c.height2);
        EXPECT_FLOAT_EQ(view->SectionTop(1), c.height0 + 6);
        EXPECT_FLOAT_EQ(view->SectionTop(2), c.height0 + 6 + c.height1 + 6);
        EXPECT_EQ(view->SplitterRect(0), (RectF{0, c.height0 - 1, 300, 6}));
        // The sections are placed where the geometry says.
        EXPECT_EQ(view->GetSectionView(1)->UI_GetLocalRectF(true), (RectF{0, c.height0 + 6, 300, c.height1}));
        EXPECT_EQ(view->IsSplitterActive(0), c.open0 && c.open1);
    }
}

// The geometry above is v7's; the older look takes the section view's default header.
TEST_F(SplitterTest, HeaderHeightFollowsTheLook)
{
    SplitterPtr view = Make(300, 0.5f, 0.5f);
    SkinManager::SetSkinVersion(SkinVersion::kV5);
    float const h = kivui::UI_SectionView::kDefaultHeaderHeight;
    EXPECT_EQ(view->GetSectionHeaderHeight(), h);
    EXPECT_EQ(view->GetMinHeight(), h + 6.0f);
    view->Layout();
    EXPECT_EQ(view->GetSectionView(0)->GetHeaderHeight(), h);
    view->GetSectionView(0)->SetOpened(false);
    EXPECT_EQ(view->GetSectionView(0)->UI_GetLocalRectF(false).height, h);
}

TEST_F(SplitterTest, SectionLookupAssertsPastTheHeldCount)
{
    kivcore::utility::IntrusivePtr<MetadataSectionView> bottom(new MetadataSectionView(u"Raw", true));
    SplitterPtr view(new TriSectionSplitterView(nullptr, nullptr, nullptr, bottom));
    struct Case {
        int index;
        bool hasView;
        char const *assertion;
    };
    std::vector<Case> const cases = {
        {1, true, nullptr},
        {2, true, "src/TriSectionSplitterView|TriSectionSplitterView::GetSectionView|GetSectionCount() > 2"},
        {3, false, "src/TriSectionSplitterView|TriSectionSplitterView::GetSectionView|false"},
        {-1, false, "src/TriSectionSplitterView|TriSectionSplitterView::GetSectionView|false"},
    };
    for (Case const &c : cases) {
        SCOPED_TRACE(c.index);
        mAsserts.Clear();
        auto section = view->GetSectionView(c.index);
        EXPECT_EQ(section != nullptr, c.hasView);
        if (c.assertion)
            EXPECT_EQ(mAsserts.Take(), std::vector<std::string>{c.assertion});
        else
            EXPECT_TRUE(mAsserts.Take().empty());
    }
    EXPECT_EQ(view->GetSectionView(2).get(), bottom.get());
}

TEST_F(SplitterTest, CallbacksReportWhichFractionAndWhichSection)
{
    SplitterPtr view = Make(300, 0.5f, 0.5f);
    std::vector<int> splitter, sections;
    auto onSplitter = std::make_shared<std::function<void(bool)>>([&](bool first) { splitter.push_back(first); });
    auto onSection = std::make_shared<std::function<void(int)>>([&](int index) { sections.push_back(index); });
    view->SetSplitterChangedFxn(onSplitter);
    view->SetSectionViewChangedFxn(onSection);

    view->SetSplitterPercentage(false, 1.5f);
    EXPECT_EQ(view->GetSplitterPercentage(false), 1.5f) << "no range check on storing";
    view->SetSplitterPercentage(true, 0.2f);
    EXPECT_EQ(splitter, (std::vector<int>{0, 1}));

    view->GetSectionView(1)->SetOpened(false);
    view->GetSectionView(2)->SetOpened(false);
    EXPECT_EQ(sections, (std::vector<int>{1, 2}));
    // Laid out again at once: the middle section is header-only now.
    EXPECT_EQ(view->GetSectionView(1)->UI_GetLocalRectF(false).height, 24.0f);

    // Released functions are not called.
    *onSection = nullptr;
    view->GetSectionView(0)->SetOpened(false);
    EXPECT_EQ(sections.size(), 2u);
}

TEST_F(SplitterTest, DraggingMovesTheFractionsByTheTravelledShareOnlyWhenAllowed)
{
    // h = 300: E = 246. At p0 = p1 = 0.5 section 0 is 24 + 123 = 147 high, the
    // splitter spans [146, 152). Presses and moves are given relative to the
    // splitter's top row.
    float const small = 1.5f / 246, excess = 0.3f - 16.0f / 246;
    struct Case {
        char const *name;
        float p0, p1;
        bool open1, allowed;
        float press;
        bool consumed;
        std::vector<float> moves;
        float expect0, expect1;
        int notifications;
    };
    std::vector<Case> const cases = {
        {"last row of the splitter", 0.5f, 0.5f, true, true, 5.9f, true, {}, 0.5f, 0.5f, 0},
        {"just above", 0.5f, 0.5f, true, true, -0.1f, false, {24.6f}, 0.5f, 0.5f, 0},
        {"just below", 0.5f, 0.5f, true, true, 6, false, {24.6f}, 0.5f, 0.5f, 0},
        // The middle closed: section 0 takes all of E (24 + 246) and the splitter is inactive.
        {"middle section closed", 0.5f, 0.5f, false, true, 1, false, {24.6f}, 0.5f, 0.5f, 0},
        {"dragging not allowed", 0.5f, 0.5f, true, false, 0, false, {24.6f}, 0.5f, 0.5f, 0},
        {"one unit changes nothing", 0.5f, 0.5f, true, true, 0, true, {1}, 0.5f, 0.5f, 0},
        {"small moves accumulate", 0.5f, 0.5f, true, true, 0, true, {0.6f, 1.0f, 1.5f}, 0.5f + small, 0.5f - small, 1},
        {"down by a tenth of E", 0.5f, 0.5f, true, true, 0, true, {24.6f}, 0.6f, 0.4f, 1},
        // Clamped at the view's top (dy = -146); the second share then gives back its excess.
        {"above the view clamps at its top", 0.5f, 0.5f, true, true, 0, true, {-1000}, 0.001f, 0.999f, 1},
        {"up stops at the first's minimum", 0.1f, 0.9f, true, true, 0, true, {-27.6f, -47.6f}, 0.001f, 0.999f, 2},
        {"excess absorbed by the larger share", 0.3f, 0.9f, true, true, 0, true, {-16}, excess, 1.0f - excess, 1},
    };
    for (Case const &c : cases) {
        SCOPED_TRACE(c.name);
        SplitterPtr view = Make(300, c.p0, c.p1, true, c.open1);
        view->SetSplitterAllowed(c.allowed);
        int notified = 0;
        view->SetSplitterChangedFxn(std::make_shared<std::function<void(bool)>>([&](bool first) {
            EXPECT_TRUE(first);
            ++notified;
        }));
        float const press = view->SplitterRect(0).y + c.press;
        EXPECT_EQ(Press(*view, press), c.consumed);
        EXPECT_EQ(kivui::UI_NodeManager::Get().GetInputCapture() != nullptr, c.consumed);
        for (float offset : c.moves)
            Move(*view, press + offset);
        EXPECT_NEAR(view->GetSplitterPercentage(true), c.expect0, 1e-5);
        EXPECT_NEAR(view->GetSplitterPercentage(false), c.expect1, 1e-5);
        EXPECT_EQ(notified, c.notifications);
        kivui::UI_NodeManager::Get().EndInputCapture();
    }
}

} // namespace
