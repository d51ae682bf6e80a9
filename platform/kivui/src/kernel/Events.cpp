#include <kivui/Events.h>

namespace kivui {

bool KeyboardEvent::CompareShortcut(KeyboardCode inCode, kivcore::Flags<std::uint32_t> inModifiers) const
{
    if (!keyDown || code != inCode) return false;
    auto mine = modifiers;
    mine.Clear(kModifierKeypad);
    auto theirs = inModifiers;
    theirs.Clear(kModifierKeypad);
    return mine == theirs;
}

} // namespace kivui
