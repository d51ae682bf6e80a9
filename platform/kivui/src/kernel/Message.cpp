#include <kivui/Message.h>

namespace kivui {

Message::~Message() = default;
UI_ControlChangedMessage::~UI_ControlChangedMessage() = default;
UI_InteractiveControlChangedMessage::~UI_InteractiveControlChangedMessage() = default;

} // namespace kivui
