#pragma once

#include <kivui/kivui_export.h>

#include <kivcore/Flags.h>
#include <kivcore/Geometry.h>

#include <cstdint>

namespace kivui {

// Keys the toolkit knows by name; every other key arrives as kCharacter with
// its text in KeyboardEvent::character.
enum class KeyboardCode : int {
    kUnknown = 0,
    kCharacter = 1,
    kBackspace = 2,
    kTab = 3,
    kReturn = 4,
    kEnter = 5, // keypad Enter
    kEscape = 6,
    kSpace = 7,
    kDelete = 8,
    kLeftArrow = 9,
    kRightArrow = 10,
    kUpArrow = 11,
    kDownArrow = 12,
    kHome = 13,
    kEnd = 14,
    kPageUp = 15,
    kPageDown = 16,
};

inline constexpr std::uint32_t kModifierCommand = 1; // Ctrl (Cmd on macOS)
inline constexpr std::uint32_t kModifierShift = 2;
inline constexpr std::uint32_t kModifierAlt = 4;
// Keypad key or auto-repeat; carried along but never part of a shortcut.
inline constexpr std::uint32_t kModifierKeypad = 8;

struct KIVUI_EXPORT KeyboardEvent {
    KeyboardCode code = KeyboardCode::kUnknown;
    kivcore::Flags<std::uint32_t> modifiers;
    bool keyDown = true;
    char16_t character = 0; // the typed character for kCharacter (and digits)

    // True for a key-down of inCode whose modifiers, without kModifierKeypad,
    // equal inModifiers.
    bool CompareShortcut(KeyboardCode inCode, kivcore::Flags<std::uint32_t> inModifiers = {}) const;
};

struct KIVUI_EXPORT MouseEvent {
    enum Type { kDown, kMove, kUp, kWheel };
    Type type = kMove;
    int button = 0;         // 1 left, 2 right, 3 middle; 0 for moves without a button
    kivcore::PointF local;  // in the receiving node's coordinates
    kivcore::PointF global; // on the screen
    bool onSelf = true;     // false when the point is over a child node
    int clickCount = 1;
    float wheelDelta = 0.0f; // wheel steps, positive away from the user
    kivcore::Flags<std::uint32_t> modifiers;
};

} // namespace kivui
