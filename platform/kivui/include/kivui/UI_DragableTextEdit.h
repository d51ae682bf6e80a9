#pragma once

#include <kivui/UI_TextEdit.h>

#include <functional>
#include <memory>

namespace kivui {

// A multi-line text edit whose height the user drags at its bottom edge. The
// height is kept to whole lines of text; whenever a drag changes the line
// count the size-changed function runs so that the host can lay itself out
// again.
class KIVUI_EXPORT UI_DragableTextEdit : public UI_TextEdit {
public:
    static constexpr float kGripHeight = 5.0f;

    UI_DragableTextEdit();

    // Sets the height to show inLines lines (at least one).
    void SetLineCount(int inLines);
    int GetLineCount() const;
    float HeightForLines(int inLines) const;
    void SetSizeChangedFxn(std::shared_ptr<std::function<void()>> inFxn);

    void UI_SizeChanged(kivcore::PointF const &oldSize) override;
    bool UI_DoMouseEvent(MouseEvent const &event) override;
    bool UI_DoCursor(kivcore::PointF const &localPoint) override;

protected:
    ~UI_DragableTextEdit() override;

private:
    friend class DragableTextEditCapture;
    void PlaceEditor();
    void DragToHeight(float inHeight);
    void DragEnded();
    int mLines = 3;
    std::shared_ptr<std::function<void()>> mSizeChangedFxn;
};

} // namespace kivui
