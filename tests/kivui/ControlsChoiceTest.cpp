#include <kivui/UI_Checkbox.h>
#include <kivui/UI_HotTextNumber.h>
#include <kivui/UI_PictureButton.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_RadioGroup.h>
#include <kivui/UI_StarRating.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_TextButton.h>
#include <kivui/drawbot/Drawbot.h>
#include <kivui/drawbot/QtSupplier.h>

#include <gtest/gtest.h>

#include "UiTestSupport.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>

#include <cmath>
#include <tuple>
#include <vector>

using kivcore::utility::MakeIntrusive;

namespace kivui {
namespace {

class ControlsChoiceTest : public test::ControlWindowTest {};

TEST_F(ControlsChoiceTest, CheckboxHasThreeStatesButTheUserTogglesOnlyTwo)
{
    auto box = Add(MakeIntrusive<UI_Checkbox>(u"Label"));
    for (auto [value, checked, unknown] : {std::tuple{UI_Checkbox::kChecked, true, false},
                                           {UI_Checkbox::kMixed, false, true},
                                           {UI_Checkbox::kUnchecked, false, false}}) {
        box->SetValue(value);
        EXPECT_EQ(box->IsChecked(), checked) << value;
        EXPECT_EQ(box->IsValueUnknown(), unknown) << value;
    }
    EXPECT_EQ(listener.changed, 0); // only the user's changes are reported

    box->SetValueUnknown(true);
    EXPECT_EQ(box->GetValue(), UI_Checkbox::kMixed);
    // Space on the focused box: mixed turns checked, then unchecked.
    box->UI_SetFocus();
    QTest::keyClick(box->GetCheckBox(), Qt::Key_Space);
    EXPECT_EQ(box->GetValue(), UI_Checkbox::kChecked);
    EXPECT_FALSE(box->IsValueUnknown());
    QTest::keyClick(box->GetCheckBox(), Qt::Key_Space);
    EXPECT_EQ(box->GetValue(), UI_Checkbox::kUnchecked);
    EXPECT_EQ(listener.changed, 2);
    EXPECT_EQ(listener.interactive, (std::vector<int>{1, 1}));

    box->SetDisabled(true);
    QTest::keyClick(box->GetCheckBox(), Qt::Key_Space);
    EXPECT_EQ(box->GetValue(), UI_Checkbox::kUnchecked);
}

TEST_F(ControlsChoiceTest, PopupItemsSeparatorsDataAndValues)
{
    auto popup = Add(MakeIntrusive<UI_Popup>());
    popup->AddItem(u"One", "1");
    popup->AddItem(u"Two", "2");
    popup->AddSeparator();
    popup->AddItem(u"Three");
    popup->AddItem(u"Four", "4");
    popup->DisableItem(3);
    EXPECT_EQ(popup->CountItems(), 5);
    EXPECT_EQ(popup->GetItemData(2), std::nullopt); // separator
    EXPECT_EQ(popup->GetItemData(3), std::nullopt); // item without data
    EXPECT_EQ(popup->GetItemData(9), std::nullopt);
    EXPECT_EQ(popup->FindItemByData("4"), 4);
    EXPECT_EQ(popup->FindItemByData("9"), -1);

    popup->SetValue(1);
    EXPECT_EQ(popup->GetValueString(), u"Two");
    popup->SetValueString(u"Four");
    EXPECT_EQ(popup->GetValue(), 4);
    popup->SetValueString(u"Five");
    EXPECT_EQ(popup->GetValue(), -1);
    popup->SetValue(17);
    EXPECT_EQ(popup->GetValue(), -1);

    // The user's choice skips the separator and the disabled item.
    popup->SetValue(1);
    popup->UI_SetFocus();
    QTest::keyClick(popup->GetComboBox(), Qt::Key_Down);
    EXPECT_EQ(popup->GetValue(), 4);
    EXPECT_EQ(listener.changed, 1);
    EXPECT_EQ(listener.interactive, (std::vector<int>{1}));

    popup->SetValueUnknown(true);
    EXPECT_EQ(popup->GetValue(), -1);
}

TEST_F(ControlsChoiceTest, EditablePopupTakesAnyTextAndChoosesAMatchingItem)
{
    auto popup = Add(MakeIntrusive<UI_Popup>());
    popup->AddItem(u"Red", "red");
    popup->AddItem(u"Green", "green");
    popup->SetPopupType(UI_Popup::kPopupTypeEditable);
    popup->SetValueString(u"Purple");
    EXPECT_EQ(popup->GetValueString(), u"Purple");
    EXPECT_EQ(popup->GetValue(), -1);

    QLineEdit *edit = popup->GetComboBox()->lineEdit();
    ASSERT_NE(edit, nullptr);
    popup->UI_SetFocus();
    edit->selectAll();
    QTest::keyClicks(edit, "Green");
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(popup->GetValueString(), u"Green");
    EXPECT_EQ(popup->GetValue(), 1);
    EXPECT_EQ(listener.interactive, (std::vector<int>{0, 2}));
    EXPECT_EQ(listener.changed, 1);

    // An empty text is refused unless allowed.
    for (auto [allowEmpty, expected] : {std::pair{false, u"Green"}, {true, u""}}) {
        popup->SetAllowEmpty(allowEmpty);
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClick(edit, Qt::Key_Return);
        EXPECT_EQ(popup->GetValueString(), expected) << allowEmpty;
    }
}

TEST_F(ControlsChoiceTest, HotTextNumberParsesTypingAndFormatsClampedValues)
{
    auto number = Add(MakeIntrusive<UI_HotTextNumber>(), 80);
    number->SetDecimalPlaces(2);
    number->SetMinMax(0.0, 100.0);
    // A click without a drag starts typing with everything selected.
    QTest::mouseClick(number->GetLineEdit(), Qt::LeftButton, {}, QPoint(20, 8));
    ASSERT_TRUE(number->GetLineEdit()->hasFocus());
    EXPECT_EQ(number->GetLineEdit()->selectedText(), QStringLiteral("0.00"));
    QTest::keyClicks(number->GetLineEdit(), "3,456");
    QTest::keyClick(number->GetLineEdit(), Qt::Key_Return);
    EXPECT_DOUBLE_EQ(number->GetValue(), 3.46);
    EXPECT_EQ(number->GetLineEdit()->text(), QStringLiteral("3.46"));
    EXPECT_EQ(listener.interactive, (std::vector<int>{0, 2}));
    EXPECT_EQ(listener.changed, 1);

    // Text that is no number leaves the value alone.
    number->GetLineEdit()->selectAll();
    QTest::keyClicks(number->GetLineEdit(), "abc");
    QTest::keyClick(number->GetLineEdit(), Qt::Key_Return);
    EXPECT_DOUBLE_EQ(number->GetValue(), 3.46);
    EXPECT_EQ(number->GetLineEdit()->text(), QStringLiteral("3.46"));

    // Arrow keys step by the increment within the limits.
    number->SetIncrement(50.0);
    for (auto [key, value] : {std::pair{Qt::Key_Up, 53.46}, {Qt::Key_Up, 100.0}, {Qt::Key_Down, 50.0}}) {
        QTest::keyClick(number->GetLineEdit(), key);
        EXPECT_DOUBLE_EQ(number->GetValue(), value) << key;
    }

    // Values set by the program are clamped and shown with the decimal places.
    for (auto [in, value, text] :
         {std::tuple{1.25, 1.25, "1.25"}, {2.0, 2.0, "2.00"}, {120.0, 100.0, "100.00"}, {-3.0, 0.0, "0.00"}}) {
        number->SetValue(in);
        EXPECT_EQ(number->GetValue(), value) << in;
        EXPECT_EQ(number->GetLineEdit()->text(), QString::fromLatin1(text)) << in;
    }

    number->SetValue(std::nan(""));
    EXPECT_EQ(number->GetValue(), 0.0); // empty not allowed: unchanged
    number->SetAllowEmpty(true);
    number->SetValue(std::nan(""));
    EXPECT_TRUE(std::isnan(number->GetValue()));
    EXPECT_TRUE(number->GetLineEdit()->text().isEmpty());

    number->SetUnknownStateText(u"<Multiple Values>");
    number->SetValue(4.0);
    number->SetValueUnknown(true);
    EXPECT_TRUE(std::isnan(number->GetValue()));
    EXPECT_TRUE(number->GetLineEdit()->text().isEmpty());
    EXPECT_EQ(number->GetLineEdit()->placeholderText(), QStringLiteral("<Multiple Values>"));
}

TEST_F(ControlsChoiceTest, DraggingOverAHotTextNumberChangesIt)
{
    auto number = Add(MakeIntrusive<UI_HotTextNumber>(), 80);
    number->SetIncrement(1.0);
    number->SetValue(10.0);
    QLineEdit *edit = number->GetLineEdit();
    int const step = UI_HotTextNumber::kPixelsPerStep;
    QTest::mousePress(edit, Qt::LeftButton, {}, QPoint(20, 8));
    QTest::mouseMove(edit, QPoint(20 + 5 * step, 8));
    EXPECT_EQ(number->GetValue(), 15.0);
    QTest::mouseMove(edit, QPoint(20 - 3 * step, 8));
    EXPECT_EQ(number->GetValue(), 7.0);
    QTest::mouseRelease(edit, Qt::LeftButton, {}, QPoint(20 - 3 * step, 8));
    EXPECT_FALSE(edit->hasFocus()); // a drag does not start typing
    ASSERT_GE(listener.interactive.size(), 3u);
    EXPECT_EQ(listener.interactive.front(), 0);
    EXPECT_EQ(listener.interactive.back(), 2);
    EXPECT_EQ(listener.changed, 1);

    number->SetDisabled(true);
    QTest::mousePress(edit, Qt::LeftButton, {}, QPoint(20, 8));
    QTest::mouseMove(edit, QPoint(60, 8));
    QTest::mouseRelease(edit, Qt::LeftButton, {}, QPoint(60, 8));
    EXPECT_EQ(number->GetValue(), 7.0);
}

TEST_F(ControlsChoiceTest, StarRatingByValueKeysAndMouse)
{
    auto stars = Add(MakeIntrusive<UI_StarRating>(), 0);
    stars->SetStarSize(16.0f);
    kivcore::PointF const size = stars->GetPreferredSize(nullptr);
    EXPECT_EQ(stars->UI_GetLocalRectF(false).width, size.x);
    EXPECT_GE(size.y, 19.0f);
    for (auto [in, out] : {std::pair{3.0, 3.0}, {7.0, 5.0}, {-1.0, 0.0}, {2.0, 2.0}}) {
        stars->SetValue(in);
        EXPECT_EQ(stars->GetValue(), out) << in;
    }

    stars->UI_SetFocus();
    QWidget *w = stars->UI_GetWidget();
    // Right stops at five stars; 9 is no rating.
    for (auto [key, value] : {std::pair{Qt::Key_4, 4.0},
                              {Qt::Key_Right, 5.0},
                              {Qt::Key_Right, 5.0},
                              {Qt::Key_Left, 4.0},
                              {Qt::Key_0, 0.0},
                              {Qt::Key_9, 0.0}}) {
        QTest::keyClick(w, key);
        EXPECT_EQ(stars->GetValue(), value) << key;
    }
    EXPECT_EQ(listener.changed, 4);

    // A click on the only lit star puts it out.
    for (auto [star, value] : {std::pair{3, 3.0}, {1, 1.0}, {1, 0.0}}) {
        QTest::mouseClick(w, Qt::LeftButton, {}, QPoint(2 + (star - 1) * 18 + 8, w->height() / 2));
        EXPECT_EQ(stars->GetValue(), value) << star;
    }
    EXPECT_EQ(stars->RatingAt(0.5f), 0);
    EXPECT_EQ(stars->RatingAt(1000.0f), 5);

    // Lit stars are drawn.
    stars->SetValue(0);
    QImage const none = w->grab().toImage();
    stars->SetValue(5);
    QImage const five = w->grab().toImage();
    EXPECT_NE(none, five);

    stars->SetDisabled(true);
    QTest::keyClick(w, Qt::Key_2);
    EXPECT_EQ(stars->GetValue(), 5.0);
}

TEST_F(ControlsChoiceTest, StaticTextAlignmentFontAndPreferredSize)
{
    auto text = Add(MakeIntrusive<UI_StaticText>(u"Hello"));
    QLabel *label = text->GetLabel();
    for (auto [alignment, qt] : {std::pair{0, Qt::AlignLeft}, {1, Qt::AlignHCenter}, {2, Qt::AlignRight}}) {
        text->SetAlignment(alignment);
        EXPECT_EQ(label->alignment() & Qt::AlignHorizontal_Mask, Qt::Alignment(qt)) << alignment;
    }

    kivcore::PointF const small = text->GetPreferredSize(nullptr);
    text->SetFontSize(24.0f);
    kivcore::PointF const big = text->GetPreferredSize(nullptr);
    EXPECT_GT(big.x, small.x);
    EXPECT_GT(big.y, small.y);
    text->SetFontStyle("Bold");

    // Measured with a Drawbot, the size is the supplier's measure.
    drawbot::QtSupplier supplier;
    drawbot::Drawbot measurer(supplier);
    EXPECT_EQ(text->GetPreferredSize(&measurer), supplier.MeasureText(u"Hello", 24.0f, "Bold"));

    // Attached to a supplier, the label takes the supplier's font.
    window->UI_SetDrawSupplier(&supplier);
    EXPECT_EQ(label->font(), supplier.GetFont(24.0f, "Bold"));
    window->UI_SetDrawSupplier(nullptr);
}

TEST_F(ControlsChoiceTest, RadioGroupAndButtonsReportOnlyTheUsersClicks)
{
    auto radio = Add(MakeIntrusive<UI_RadioGroup>());
    EXPECT_EQ(radio->AddButton(u"A", u"first"), 0);
    EXPECT_EQ(radio->AddButton(u"B"), 1);
    EXPECT_EQ(radio->AddButton(u"C"), 2);
    EXPECT_GT(radio->UI_GetLocalRectF(false).height, 3 * 12.0f);
    radio->SetValue(1);
    QTest::mouseClick(radio->GetButton(2), Qt::LeftButton, {}, QPoint(6, radio->GetButton(2)->height() / 2));
    EXPECT_EQ(radio->GetValue(), 2);
    EXPECT_EQ(listener.changed, 1);
    radio->SetValue(-1);
    EXPECT_EQ(radio->GetValue(), -1);

    auto picture = Add(MakeIntrusive<UI_PictureButton>(), 19);
    picture->SetToggles(true);
    QTest::mouseClick(picture->GetButton(), Qt::LeftButton);
    EXPECT_TRUE(picture->IsOn());
    QTest::mouseClick(picture->GetButton(), Qt::LeftButton);
    EXPECT_FALSE(picture->IsOn());
    EXPECT_EQ(listener.changed, 3);
    picture->SetOn(true); // not the user's change
    EXPECT_EQ(listener.changed, 3);

    auto button = Add(MakeIntrusive<UI_TextButton>(u"Go"), 80);
    QTest::mouseClick(button->GetButton(), Qt::LeftButton);
    EXPECT_EQ(listener.changed, 4);
    button->SetDisabled(true);
    QTest::mouseClick(button->GetButton(), Qt::LeftButton);
    EXPECT_EQ(listener.changed, 4);
}

} // namespace
} // namespace kivui
