#pragma once

#include <kivcore/Flags.h>

#include <cstdint>

namespace kivui {

// How a child follows a size change of its parent (UI_Node::UI_SetLayoutBinding).
// The values combine: 4 follows the parent's width, 12 follows the parent in
// both directions, 48 (the default) keeps the child at its top-left offset.
using LayoutBinding = kivcore::Flags<std::uint32_t>;

inline constexpr std::uint32_t kBindMoveRight = 1; // x moves by the parent's width change
inline constexpr std::uint32_t kBindMoveDown = 2;  // y moves by the parent's height change
inline constexpr std::uint32_t kBindWidth = 4;     // width grows with the parent's width
inline constexpr std::uint32_t kBindHeight = 8;    // height grows with the parent's height
inline constexpr std::uint32_t kBindLeft = 16;     // keep the left offset
inline constexpr std::uint32_t kBindTop = 32;      // keep the top offset

inline constexpr std::uint32_t kBindTopLeft = kBindLeft | kBindTop;
inline constexpr std::uint32_t kBindBoth = kBindWidth | kBindHeight;

} // namespace kivui
