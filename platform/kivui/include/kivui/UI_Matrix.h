#pragma once

#include <kivcore/Geometry.h>

namespace kivui {

// Maps coordinates of one node into those of an ancestor. Nodes only
// translate, so the matrix is a pure offset.
struct UI_Matrix {
    float dx = 0.0f;
    float dy = 0.0f;

    constexpr kivcore::PointF TransformPoint(kivcore::PointF p) const { return {p.x + dx, p.y + dy}; }
    constexpr kivcore::RectF TransformRect(kivcore::RectF const &r) const
    {
        return {r.x + dx, r.y + dy, r.width, r.height};
    }
    constexpr UI_Matrix Inverted() const { return {-dx, -dy}; }
    friend constexpr bool operator==(UI_Matrix const &, UI_Matrix const &) = default;
};

} // namespace kivui
