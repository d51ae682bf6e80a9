#include <kivui/UI_ScrollBar.h>
#include <kivui/UI_ScrollView.h>
#include <kivui/UI_SectionView.h>
#include <kivui/drawbot/QtSupplier.h>

#include <gtest/gtest.h>

#include "UiTestSupport.h"

#include <deque>
#include <tuple>

#include <QKeyEvent>
#include <QScrollArea>
#include <QScrollBar>

using kivcore::PointF;
using kivcore::RectF;
using kivcore::utility::IntrusivePtr;
using kivui::UI_ScrollView;
using kivui::UI_SectionView;
using kivui::test::Settle;

namespace {

// Sends a key press and release; every event lives at its own address until
// the end of the test, as events coming from the window system would not
// share one.
void PressKey(QWidget *inWidget, Qt::Key inKey)
{
    static std::deque<QKeyEvent> events;
    events.emplace_back(QEvent::KeyPress, inKey, Qt::NoModifier);
    QApplication::sendEvent(inWidget, &events.back());
    events.emplace_back(QEvent::KeyRelease, inKey, Qt::NoModifier);
    QApplication::sendEvent(inWidget, &events.back());
}

class ScrollViewTest : public ::testing::Test {
protected:
    void SetUp() override { kivui::test::ShowActiveWindow(*view, RectF{0, 0, 200, 100}); }

    QScrollArea *area() const { return static_cast<QScrollArea *>(view->UI_GetWidget()); }

    IntrusivePtr<UI_ScrollView> view{new UI_ScrollView};
};

TEST_F(ScrollViewTest, ContentRectDrivesTheScrollRangeAndFollowsTheWidth)
{
    auto content = view->GetContentView();
    ASSERT_TRUE(content);
    EXPECT_EQ(content->UI_GetLocalRectF(false).width, 200.0f); // no scroll bar yet

    view->SetContentRect(RectF{0, 0, 200, 500});
    view->Update();
    Settle();
    float const bar = kivui::UI_ScrollBar::GetDefaultSize();
    EXPECT_GT(bar, 0.0f);
    // The vertical bar took its share of the width, and the content follows.
    EXPECT_EQ(content->UI_GetLocalRectF(false), (RectF{0, 0, 200 - bar, 500}));
    EXPECT_EQ(area()->verticalScrollBar()->maximum(), 400);
    EXPECT_EQ(area()->horizontalScrollBar()->maximum(), 0);

    view->UI_SetLocalRectF(RectF{0, 0, 300, 100});
    Settle();
    EXPECT_EQ(content->UI_GetLocalRectF(false).width, 300 - bar);

    // A fixed content width is kept when the view stops following.
    view->SetContentFollowsWidth(false);
    view->SetContentRect(RectF{0, 0, 400, 500});
    view->UI_SetLocalRectF(RectF{0, 0, 250, 100});
    Settle();
    EXPECT_EQ(content->UI_GetLocalRectF(false).width, 400.0f);
    EXPECT_GT(area()->horizontalScrollBar()->maximum(), 0);
}

TEST(HiddenScrollViewTest, ContentTakesTheWidthTheViewportWillHave)
{
    // Panels are built and laid out before they are shown.
    IntrusivePtr<UI_ScrollView> view(new UI_ScrollView);
    view->SetContentRect(RectF{0, 0, 10, 500});
    view->UI_SetLocalRectF(RectF{0, 0, 300, 100});
    float const bar = kivui::UI_ScrollBar::GetDefaultSize();
    EXPECT_EQ(view->GetContentView()->UI_GetLocalRectF(false), (RectF{0, 0, 300 - bar, 500}));
    view->SetContentRect(RectF{0, 0, 300, 50});
    view->UI_SetLocalRectF(RectF{0, 0, 320, 100});
    EXPECT_EQ(view->GetContentView()->UI_GetLocalRectF(false), (RectF{0, 0, 320, 50}));
}

TEST_F(ScrollViewTest, ScrollIntoViewMovesOnlyAsFarAsNeeded)
{
    view->SetContentRect(RectF{0, 0, 200, 1000});
    Settle();
    ASSERT_EQ(view->GetVisibleContentRect().height, 100.0f);

    for (auto [startY, rect, minimal, expectedY] :
         {std::tuple{0.0f, RectF{0, 10, 50, 20}, true, 0.0f}, // already visible
          {0, {0, 300, 50, 20}, true, 220},                   // below: its bottom reaches the bottom
          {500, {0, 300, 50, 20}, true, 300},                 // above: its top reaches the top
          {0, {0, 300, 50, 250}, true, 300},                  // taller than the page: the top wins
          {0, {0, 300, 50, 20}, false, 300},                  // not minimal: top goes to the top
          {0, {0, 990, 50, 20}, false, 900},                  // clamped at the end of the content
          {0, {0, 320, 50, -20}, true, 220}}) {               // a rect of negative height is normalised
        view->SetScrollPosition(PointF{0, startY});
        view->ScrollIntoView(rect, minimal);
        EXPECT_EQ(view->GetScrollPosition().y, expectedY) << rect.y << " " << minimal;
    }
    // The content view moves with the scrolling.
    EXPECT_EQ(view->GetContentView()->UI_GetWidget()->y(), -220);
}

// Counts the state changes that reach the protected hook.
class CountingSection : public UI_SectionView {
public:
    int calls = 0;

protected:
    void DoSetOpened(bool inOpened) override
    {
        ++calls;
        UI_SectionView::DoSetOpened(inOpened);
    }
};

class SectionViewTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        section->UI_SetDrawSupplier(&supplier);
        section->SetHeaderText(u"Section");
        kivui::test::ShowActiveWindow(*section, RectF{0, 0, 200, 120});
    }

    kivui::drawbot::QtSupplier supplier;
    IntrusivePtr<CountingSection> section{new CountingSection};
};

TEST_F(SectionViewTest, FrameFitsContentBelowTheHeader)
{
    EXPECT_EQ(section->GetContentView()->UI_GetLocalRectF(true), (RectF{0, 20, 200, 100}));

    // As a section-view layout delegate sizes it.
    PointF const frame = section->FrameSizeForContentSize(PointF{150, 40});
    section->UI_SetLocalRectF(RectF{0, 0, frame.x, frame.y});
    EXPECT_EQ(section->GetContentView()->UI_GetLocalRectF(true), (RectF{0, 20, 150, 40}));

    section->SetOpened(false);
    EXPECT_EQ(section->FrameSizeForContentSize(PointF{150, 40}), (PointF{150, 20}));
    EXPECT_FALSE(section->GetContentView()->UI_IsShown());

    section->SetHeaderHeight(24.0f);
    EXPECT_EQ(section->FrameSizeForContentSize(PointF{150, 40}), (PointF{150, 24}));
    EXPECT_EQ(section->GetContentView()->UI_GetLocalRectF(true).y, 24.0f);
    EXPECT_EQ(section->GetDisclosureRect().y, 7.0f); // centred, rounded down
}

TEST_F(SectionViewTest, HeaderClicksAndKeysToggleThroughTheHookOnlyOnChange)
{
    std::vector<bool> reported;
    section->SetOpenedChangedFxn([&](UI_SectionView &view, bool opened) {
        EXPECT_EQ(&view, section.get());
        reported.push_back(opened);
    });
    section->SetOpened(true);
    EXPECT_EQ(section->calls, 0);
    QWidget *widget = section->UI_GetWidget();
    QTest::mouseClick(widget, Qt::LeftButton, {}, QPoint(50, 10));
    EXPECT_FALSE(section->IsOpened());
    QTest::mouseClick(widget, Qt::LeftButton, {}, QPoint(50, 10));
    EXPECT_TRUE(section->IsOpened());
    // A click below the header belongs to the content.
    QTest::mouseClick(widget, Qt::LeftButton, {}, QPoint(50, 60));
    EXPECT_TRUE(section->IsOpened());
    EXPECT_EQ(section->calls, 2);
    EXPECT_EQ(reported, (std::vector<bool>{false, true}));

    widget->setFocus();
    QTest::keyClick(widget, Qt::Key_Space);
    EXPECT_FALSE(section->IsOpened());
    PressKey(widget, Qt::Key_Right);
    EXPECT_TRUE(section->IsOpened());
    PressKey(widget, Qt::Key_Left);
    EXPECT_FALSE(section->IsOpened());

    // The header is painted: the closed triangle in the text colour.
    QImage const image = widget->grab().toImage();
    RectF const tri = section->GetDisclosureRect();
    EXPECT_NE(image.pixelColor(int(tri.x + tri.width * 0.45f), int(tri.y + tri.height * 0.5f)),
              image.pixelColor(int(tri.x + tri.width * 0.45f), int(tri.y - 3)));
}

} // namespace
