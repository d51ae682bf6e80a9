#include "NodeEventFilter_p.h"

#include "UI_Node_p.h"

#include <kivui/UI_Node.h>
#include <kivui/UI_NodeManager.h>
#include <kivui/drawbot/Drawbot.h>
#include <kivui/drawbot/QtSupplier.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

namespace kivui {

using kivcore::PointF;

namespace {

PointF ToPoint(QPointF p)
{
    return PointF{float(p.x()), float(p.y())};
}

} // namespace

void NodeWidget::paintEvent(QPaintEvent *)
{
    drawbot::SupplierInterface const *supplier = mNode->UI_GetDrawSupplier();
    if (!supplier) {
        // Not attached to a supplier yet: draw with the application's fonts.
        static drawbot::QtSupplier const fallback;
        supplier = &fallback;
    }
    QPainter painter(this);
    drawbot::Drawbot drawbot(*supplier, painter);
    NodeKeepAlive keep(mNode);
    mNode->UI_Draw(drawbot);
}

// Sees every event of the application once per receiver: keys (which go to
// the focus widget, often not a node widget) and the moves of an input
// capture, wherever the pointer is.
class ApplicationFilter : public QObject {
public:
    explicit ApplicationFilter(NodeEventFilter *inOwner) : mOwner(inOwner) {}

protected:
    bool eventFilter(QObject *inWatched, QEvent *inEvent) override
    {
        switch (inEvent->type()) {
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
            if (!inWatched->isWidgetType()) return false;
            return mOwner->HandleKey(static_cast<QWidget *>(inWatched), static_cast<QKeyEvent *>(inEvent));
        case QEvent::MouseMove:
        case QEvent::MouseButtonRelease:
            if (!UI_NodeManager::Get().GetInputCapture() || !inWatched->isWidgetType()) return false;
            return mOwner->HandleCapture(inEvent);
        default:
            return false;
        }
    }

private:
    NodeEventFilter *mOwner;
};

NodeEventFilter &NodeEventFilter::Get()
{
    static NodeEventFilter *filter = new NodeEventFilter;
    return *filter;
}

NodeEventFilter::NodeEventFilter() = default;

void NodeEventFilter::Watch(QWidget *inWidget)
{
    if (!mAppFilterInstalled && QCoreApplication::instance()) {
        QCoreApplication::instance()->installEventFilter(new ApplicationFilter(this));
        mAppFilterInstalled = true;
    }
    inWidget->installEventFilter(this);
}

std::uint32_t NodeEventFilter::TranslateModifiers(Qt::KeyboardModifiers inModifiers)
{
    std::uint32_t bits = 0;
    if (inModifiers & Qt::ControlModifier) bits |= kModifierCommand;
    if (inModifiers & Qt::ShiftModifier) bits |= kModifierShift;
    if (inModifiers & Qt::AltModifier) bits |= kModifierAlt;
    if (inModifiers & Qt::KeypadModifier) bits |= kModifierKeypad;
    return bits;
}

int NodeEventFilter::TranslateButton(Qt::MouseButton inButton)
{
    switch (inButton) {
    case Qt::LeftButton:
        return 1;
    case Qt::RightButton:
        return 2;
    case Qt::MiddleButton:
        return 3;
    default:
        return 0;
    }
}

KeyboardEvent NodeEventFilter::TranslateKey(QKeyEvent const &inEvent)
{
    KeyboardEvent ev;
    ev.keyDown = inEvent.type() == QEvent::KeyPress;
    std::uint32_t mods = TranslateModifiers(inEvent.modifiers());
    if (inEvent.isAutoRepeat()) mods |= kModifierKeypad;
    switch (inEvent.key()) {
    case Qt::Key_Tab:
        ev.code = KeyboardCode::kTab;
        break;
    case Qt::Key_Backtab:
        ev.code = KeyboardCode::kTab;
        mods |= kModifierShift;
        break;
    case Qt::Key_Return:
        ev.code = KeyboardCode::kReturn;
        break;
    case Qt::Key_Enter:
        ev.code = KeyboardCode::kEnter;
        break;
    case Qt::Key_Escape:
        ev.code = KeyboardCode::kEscape;
        break;
    case Qt::Key_Space:
        ev.code = KeyboardCode::kSpace;
        ev.character = u' ';
        break;
    case Qt::Key_Backspace:
        ev.code = KeyboardCode::kBackspace;
        break;
    case Qt::Key_Delete:
        ev.code = KeyboardCode::kDelete;
        break;
    case Qt::Key_Left:
        ev.code = KeyboardCode::kLeftArrow;
        break;
    case Qt::Key_Right:
        ev.code = KeyboardCode::kRightArrow;
        break;
    case Qt::Key_Up:
        ev.code = KeyboardCode::kUpArrow;
        break;
    case Qt::Key_Down:
        ev.code = KeyboardCode::kDownArrow;
        break;
    case Qt::Key_Home:
        ev.code = KeyboardCode::kHome;
        break;
    case Qt::Key_End:
        ev.code = KeyboardCode::kEnd;
        break;
    case Qt::Key_PageUp:
        ev.code = KeyboardCode::kPageUp;
        break;
    case Qt::Key_PageDown:
        ev.code = KeyboardCode::kPageDown;
        break;
    default: {
        QString const text = inEvent.text();
        if (!text.isEmpty() && text.at(0).isPrint()) {
            ev.code = KeyboardCode::kCharacter;
            ev.character = text.at(0).unicode();
        } else if (inEvent.key() >= 0x20 && inEvent.key() < 0x7f) {
            // Ctrl+letter carries no text; keep the letter for shortcuts.
            ev.code = KeyboardCode::kCharacter;
            ev.character = QChar(inEvent.key()).toLower().unicode();
        }
        break;
    }
    }
    ev.modifiers = kivcore::Flags<std::uint32_t>(mods);
    return ev;
}

bool NodeEventFilter::eventFilter(QObject *inWatched, QEvent *inEvent)
{
    if (!inWatched->isWidgetType()) return false;
    QWidget *widget = static_cast<QWidget *>(inWatched);
    UI_Node *node = nullptr;
    switch (inEvent->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::Resize:
    case QEvent::Move:
    case QEvent::Enter:
        node = UI_Node::FromWidget(widget);
        break;
    default:
        return false;
    }
    if (!node) return false;

    switch (inEvent->type()) {
    case QEvent::Resize:
    case QEvent::Move: {
        NodeKeepAlive keep(node);
        node->UI_SyncFromWidget();
        return false;
    }
    case QEvent::Enter:
        HandleCursor(widget, node, widget->mapFromGlobal(QCursor::pos()));
        return false;
    case QEvent::Wheel: {
        auto *wheel = static_cast<QWheelEvent *>(inEvent);
        MouseEvent ev;
        ev.type = MouseEvent::kWheel;
        ev.local = ToPoint(wheel->position());
        ev.global = ToPoint(wheel->globalPosition());
        ev.wheelDelta = float(wheel->angleDelta().y()) / 120.0f;
        ev.modifiers = kivcore::Flags<std::uint32_t>(TranslateModifiers(wheel->modifiers()));
        QWidget *under = widget->childAt(wheel->position().toPoint());
        ev.onSelf = !under || UI_Node::FromWidgetOrAncestor(under) == node;
        return UI_NodeManager::Get().DispatchMouseEvent(node, ev);
    }
    default:
        return HandleMouse(widget, node, static_cast<QMouseEvent *>(inEvent));
    }
}

bool NodeEventFilter::HandleKey(QWidget *inWidget, QKeyEvent *inEvent)
{
    if (mForwardingTab) return false;
    UI_Node *node = UI_Node::FromWidgetOrAncestor(inWidget);
    if (!node) return false;
    // (QWidget::isAncestorOf counts the widget itself, hence the first test.)
    // An address alone is not an identity: a new event may be made where the
    // last one lived, so the key, type, modifiers and time must match too.
    const bool sameEvent = mLastKeyEvent == inEvent && mLastKey == inEvent->key() && mLastKeyType == inEvent->type() &&
                           mLastKeyModifiers == inEvent->modifiers() && mLastKeyTimestamp == inEvent->timestamp();
    if (sameEvent && mLastKeyWidget && mLastKeyWidget != inWidget && inWidget->isAncestorOf(mLastKeyWidget)) {
        // The same event travelling up after the focus widget ignored it.
        mLastKeyWidget = inWidget;
        return false;
    }
    mLastKeyEvent = inEvent;
    mLastKey = inEvent->key();
    mLastKeyType = inEvent->type();
    mLastKeyModifiers = inEvent->modifiers();
    mLastKeyTimestamp = inEvent->timestamp();
    mLastKeyWidget = inWidget;
    KeyboardEvent const ev = TranslateKey(*inEvent);
    auto &manager = UI_NodeManager::Get();
    if (ev.code != KeyboardCode::kTab || !ev.keyDown || mForwardingTab) return manager.DispatchKeyboardEvent(node, ev);

    // Tab: the pre-pass may take over focus moving; otherwise Qt moves the
    // focus first and the key then reaches the nodes from the newly focused
    // node, so that views can keep the new focus visible.
    if (manager.DispatchPreKeyboardEvent(node, ev)) return true;
    mForwardingTab = true;
    QCoreApplication::sendEvent(inWidget, inEvent);
    mForwardingTab = false;
    UI_Node *focus = UI_Node::FromWidgetOrAncestor(QApplication::focusWidget());
    manager.DispatchPostKeyboardEvent(focus ? focus : node, ev);
    return true;
}

bool NodeEventFilter::HandleMouse(QWidget *inWidget, UI_Node *inNode, QMouseEvent *inEvent)
{
    MouseEvent ev;
    switch (inEvent->type()) {
    case QEvent::MouseButtonPress:
        ev.type = MouseEvent::kDown;
        break;
    case QEvent::MouseButtonDblClick:
        ev.type = MouseEvent::kDown;
        ev.clickCount = 2;
        break;
    case QEvent::MouseButtonRelease:
        ev.type = MouseEvent::kUp;
        break;
    default:
        ev.type = MouseEvent::kMove;
        break;
    }
    ev.button = TranslateButton(inEvent->button());
    if (ev.type == MouseEvent::kMove && (inEvent->buttons() & Qt::LeftButton)) ev.button = 1;
    ev.local = ToPoint(inEvent->position());
    ev.global = ToPoint(inEvent->globalPosition());
    ev.modifiers = kivcore::Flags<std::uint32_t>(TranslateModifiers(inEvent->modifiers()));
    QWidget *under = inWidget->childAt(inEvent->position().toPoint());
    ev.onSelf = !under || UI_Node::FromWidgetOrAncestor(under) == inNode;
    if (ev.type == MouseEvent::kMove && ev.onSelf) HandleCursor(inWidget, inNode, inEvent->position());
    return UI_NodeManager::Get().DispatchMouseEvent(inNode, ev);
}

bool NodeEventFilter::HandleCapture(QEvent *inEvent)
{
    auto *mouse = static_cast<QMouseEvent *>(inEvent);
    MouseEvent ev;
    ev.type = inEvent->type() == QEvent::MouseMove ? MouseEvent::kMove : MouseEvent::kUp;
    ev.button = TranslateButton(mouse->button());
    if (ev.type == MouseEvent::kMove && (mouse->buttons() & Qt::LeftButton)) ev.button = 1;
    ev.global = ToPoint(mouse->globalPosition());
    ev.modifiers = kivcore::Flags<std::uint32_t>(TranslateModifiers(mouse->modifiers()));
    UI_NodeManager::Get().DispatchCaptureEvent(ev);
    return true;
}

} // namespace kivui
