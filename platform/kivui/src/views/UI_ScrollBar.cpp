#include <kivui/UI_ScrollBar.h>

#include <QApplication>
#include <QScrollBar>
#include <QStyle>

namespace kivui {

UI_ScrollBar::UI_ScrollBar(bool inVertical) : UI_SubView(new QScrollBar(inVertical ? Qt::Vertical : Qt::Horizontal)) {}

UI_ScrollBar::~UI_ScrollBar() = default;

float UI_ScrollBar::GetDefaultSize()
{
    QStyle const *style = QApplication::style();
    return style ? static_cast<float>(style->pixelMetric(QStyle::PM_ScrollBarExtent)) : 16.0f;
}

QScrollBar *UI_ScrollBar::GetScrollBar() const
{
    return static_cast<QScrollBar *>(UI_GetWidget());
}

void UI_ScrollBar::SetRange(int inMinimum, int inMaximum)
{
    if (QScrollBar *bar = GetScrollBar()) bar->setRange(inMinimum, inMaximum);
}

int UI_ScrollBar::GetMinimum() const
{
    return GetScrollBar() ? GetScrollBar()->minimum() : 0;
}
int UI_ScrollBar::GetMaximum() const
{
    return GetScrollBar() ? GetScrollBar()->maximum() : 0;
}

void UI_ScrollBar::SetValue(int inValue)
{
    if (QScrollBar *bar = GetScrollBar()) bar->setValue(inValue);
}

int UI_ScrollBar::GetValue() const
{
    return GetScrollBar() ? GetScrollBar()->value() : 0;
}

void UI_ScrollBar::SetPageStep(int inStep)
{
    if (QScrollBar *bar = GetScrollBar()) bar->setPageStep(inStep);
}

} // namespace kivui
