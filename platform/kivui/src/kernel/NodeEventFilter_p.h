#pragma once

// Not part of the kivui API: the event plumbing between Qt widgets and nodes.

#include <kivui/Events.h>

#include <QObject>
#include <QPointer>
#include <QWidget>

class QKeyEvent;
class QMouseEvent;

namespace kivui {

class UI_Node;

// Plain widget of nodes made without a widget of their own: paints through
// UI_Node::UI_Draw.
class NodeWidget : public QWidget {
public:
    explicit NodeWidget(UI_Node *inNode);

protected:
    void paintEvent(QPaintEvent *inEvent) override;

private:
    UI_Node *mNode;
};

// Translates Qt events into node calls. Installed on every node widget (mouse,
// geometry, cursor) and once on the application (keys, input capture).
class NodeEventFilter : public QObject {
public:
    static NodeEventFilter &Get();
    void Watch(QWidget *inWidget);

    static KeyboardEvent TranslateKey(QKeyEvent const &inEvent);
    static std::uint32_t TranslateModifiers(Qt::KeyboardModifiers inModifiers);
    static int TranslateButton(Qt::MouseButton inButton);

protected:
    bool eventFilter(QObject *inWatched, QEvent *inEvent) override;

private:
    friend class ApplicationFilter;
    NodeEventFilter();
    bool HandleKey(QWidget *inWidget, QKeyEvent *inEvent);
    bool HandleMouse(QWidget *inWidget, UI_Node *inNode, QMouseEvent *inEvent);
    bool HandleCapture(QEvent *inEvent);
    void HandleCursor(QWidget *inWidget, UI_Node *inNode, QPointF inPos);

    bool mAppFilterInstalled = false;
    // Key events propagate to parent widgets when ignored; only the first
    // node widget to see one dispatches it.
    QEvent const *mLastKeyEvent = nullptr;
    int mLastKey = 0;
    QEvent::Type mLastKeyType = QEvent::None;
    Qt::KeyboardModifiers mLastKeyModifiers;
    quint64 mLastKeyTimestamp = 0;
    QPointer<QWidget> mLastKeyWidget;
    bool mForwardingTab = false;
};

// Holds a node alive across a dispatch and defers its release to the event
// loop when the dispatch held the last reference, so that a node never dies
// inside its own widget's event handler.
class NodeKeepAlive {
public:
    explicit NodeKeepAlive(UI_Node *inNode);
    ~NodeKeepAlive();
    NodeKeepAlive(NodeKeepAlive const &) = delete;
    NodeKeepAlive &operator=(NodeKeepAlive const &) = delete;

private:
    UI_Node *mNode;
};

} // namespace kivui
