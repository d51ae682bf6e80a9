#include <kivui/drawbot/Drawbot.h>
#include <kivui/drawbot/QtSupplier.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

#include <cmath>

using kivui::drawbot::Drawbot;
using kivui::drawbot::QtSupplier;

namespace {

QFont DejaVu(int pixelSize)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(pixelSize);
    return font;
}

TEST(ResourcesDrawingTest, MeasuredTextIsRoundedUpAndFollowsSizeAndStyle)
{
    QtSupplier const supplier(DejaVu(12));
    EXPECT_EQ(supplier.GetDefaultFontSize(), 12.0f);

    for (std::u16string const text : {u"Name:", u"Keywords", u"Ünïcødé ✓", u"W", u"iiiiiiiiii", u""}) {
        kivcore::PointF const size = supplier.MeasureText(text);
        QFontMetricsF const metrics(DejaVu(12));
        double const exact = metrics.horizontalAdvance(QString::fromStdU16String(text));
        EXPECT_EQ(size.x, std::ceil(exact - 1e-4)) << QString::fromStdU16String(text).toStdString();
        EXPECT_EQ(size.y, supplier.GetLineHeight());
    }

    std::u16string const text = u"Description";
    float const regular = supplier.MeasureText(text).x;
    EXPECT_GT(supplier.MeasureText(text, 0.0f, "Bold").x, regular);
    EXPECT_GT(supplier.MeasureText(text, 24.0f).x, regular * 1.7f);
    EXPECT_GT(supplier.GetLineHeight(24.0f), supplier.GetLineHeight(12.0f));
    EXPECT_TRUE(supplier.GetFont(0.0f, "BoldItalic").bold());
    EXPECT_TRUE(supplier.GetFont(0.0f, "BoldItalic").italic());
    EXPECT_EQ(supplier.GetFont(14.0f).pixelSize(), 14);
}

TEST(ResourcesDrawingTest, SupplierWithoutBaseFollowsTheApplicationFont)
{
    QFont const saved = QApplication::font();
    QtSupplier const supplier;
    QApplication::setFont(DejaVu(12));
    float const small = supplier.MeasureText(u"Follow the font").x;
    QApplication::setFont(DejaVu(20));
    float const large = supplier.MeasureText(u"Follow the font").x;
    QApplication::setFont(saved);
    EXPECT_EQ(supplier.GetDefaultFontSize(), static_cast<float>(QFontInfo(saved).pixelSize()));
    EXPECT_GT(large, small);
}

TEST(ResourcesDrawingTest, DrawbotDrawsWhenPaintingAndOnlyMeasuresOtherwise)
{
    QtSupplier const supplier(DejaVu(12));
    Drawbot measuring(supplier);
    EXPECT_FALSE(measuring.IsDrawing());
    EXPECT_EQ(measuring.MeasureText(u"abc").x, supplier.MeasureText(u"abc").x);
    // Drawing calls without a painter are harmless no-ops.
    measuring.FillRect({0, 0, 10, 10}, Qt::red);
    measuring.DrawText(u"abc", {0, 0, 50, 20});
    measuring.DrawImage(QImage(), {0, 0, 10, 10});

    QImage canvas(40, 30, QImage::Format_ARGB32);
    canvas.fill(Qt::white);
    {
        QPainter painter(&canvas);
        Drawbot bot(supplier, painter);
        EXPECT_TRUE(bot.IsDrawing());
        bot.FillRect({10, 10, 10, 5}, Qt::red);
        bot.StrokeRect({0, 0, 40, 30}, Qt::blue, 1.0f);
        QImage green(2, 2, QImage::Format_ARGB32);
        green.fill(Qt::green);
        bot.DrawImage(green, {30, 20, 4, 4});
        // Text clipped to its rectangle leaves the rest untouched.
        bot.Save();
        bot.ClipRect({2, 20, 20, 8});
        bot.DrawText(u"WWWWWWWW", {2, 20, 200, 8}, Drawbot::kAlignLeft, 0.0f, {}, Qt::black);
        bot.Restore();
    }
    EXPECT_EQ(canvas.pixelColor(12, 12), QColor(Qt::red));
    EXPECT_EQ(canvas.pixelColor(9, 12), QColor(Qt::white));
    // The stroke stays inside the rectangle: the outermost pixels carry it.
    EXPECT_EQ(canvas.pixelColor(0, 15), QColor(Qt::blue));
    EXPECT_EQ(canvas.pixelColor(39, 15), QColor(Qt::blue));
    EXPECT_EQ(canvas.pixelColor(20, 29), QColor(Qt::blue));
    EXPECT_EQ(canvas.pixelColor(31, 21), QColor(Qt::green));
    EXPECT_EQ(canvas.pixelColor(25, 24), QColor(Qt::white));
}

} // namespace
