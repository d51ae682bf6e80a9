#pragma once

#include <algorithm>
#include <cmath>

namespace kivcore {

template <typename T> struct PointT {
    T x{};
    T y{};
    friend constexpr bool operator==(PointT const &, PointT const &) = default;
    constexpr PointT operator+(PointT o) const { return {x + o.x, y + o.y}; }
    constexpr PointT operator-(PointT o) const { return {x - o.x, y - o.y}; }
};

// Origin plus size. A rectangle with negative width or height is not
// normalised; Normalized() makes its size non-negative.
template <typename T> struct RectT {
    T x{};
    T y{};
    T width{};
    T height{};

    friend constexpr bool operator==(RectT const &, RectT const &) = default;

    constexpr T Left() const { return x; }
    constexpr T Top() const { return y; }
    constexpr T Right() const { return x + width; }
    constexpr T Bottom() const { return y + height; }
    constexpr PointT<T> Origin() const { return {x, y}; }
    constexpr PointT<T> Size() const { return {width, height}; }
    constexpr bool IsEmpty() const { return width <= T{} || height <= T{}; }

    constexpr bool Contains(PointT<T> p) const { return p.x >= x && p.y >= y && p.x < x + width && p.y < y + height; }
    constexpr RectT Normalized() const
    {
        RectT r = *this;
        if (r.width < T{}) {
            r.x += r.width;
            r.width = -r.width;
        }
        if (r.height < T{}) {
            r.y += r.height;
            r.height = -r.height;
        }
        return r;
    }
    constexpr RectT Offset(T dx, T dy) const { return {x + dx, y + dy, width, height}; }
    constexpr RectT Inset(T dx, T dy) const { return {x + dx, y + dy, width - 2 * dx, height - 2 * dy}; }
    constexpr RectT Intersection(RectT const &o) const
    {
        T l = std::max(x, o.x), t = std::max(y, o.y);
        T r = std::min(Right(), o.Right()), b = std::min(Bottom(), o.Bottom());
        if (r <= l || b <= t) return {};
        return {l, t, r - l, b - t};
    }
    constexpr bool Intersects(RectT const &o) const { return !Intersection(o).IsEmpty(); }
};

using PointF = PointT<float>;
using RectF = RectT<float>;

} // namespace kivcore
