#pragma once

#include <kivui/UI_InteractiveControlView.h>

#include <memory>

namespace kivui {

// Zero to five stars, drawn by the node. Keys: 0-5 set the rating, Left/Down
// take one star away, Right/Up add one. Mouse: a click or drag on star n sets
// n stars; a click on the only lit star of a rating of one, or left of the
// first star, clears the rating. A user change sends the interactive message
// 1 and notifies the NotifyWhenChanged listeners.
class KIVUI_EXPORT UI_StarRating : public UI_InteractiveControlView {
public:
    static constexpr int kMaxStars = 5;
    static constexpr float kDefaultStarSize = 14.0f;

    UI_StarRating();

    // Clamped to 0..5.
    void SetValue(double inValue);
    double GetValue() const;
    // Side of one star in UI units; the control is sized to fit five.
    void SetStarSize(float inSize);
    float GetStarSize() const;

    // The rating a click at local x gives.
    int RatingAt(float inX) const;
    kivcore::PointF GetPreferredSize(drawbot::Drawbot const *inDrawbot) const override;

    void UI_Draw(drawbot::Drawbot &drawbot) override;
    bool UI_DoKeyboardEvent(UI_Node *focusNode, KeyboardEvent const &event) override;
    bool UI_DoMouseEvent(MouseEvent const &event) override;

protected:
    ~UI_StarRating() override;

private:
    void UserSet(double inValue);
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui
