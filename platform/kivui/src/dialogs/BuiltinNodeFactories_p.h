#pragma once
// Private to kivui: not installed, not API.

namespace kivui::detail {

// Registers the toolkit's own controls with UI_NodeFactory under their
// qualified class names.
void RegisterBuiltinNodeFactories();

} // namespace kivui::detail
