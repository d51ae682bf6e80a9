#pragma once

#include <kivui/kivui_export.h>

#include <string>

namespace kivui::skins {

// One skin: a Qt style-sheet fragment for the controls it styles. Skins are
// registered in skin sets by key (usually the skin class's qualified name).
class KIVUI_EXPORT Skin {
public:
    virtual ~Skin();
    virtual std::string GetDescription() const = 0;

protected:
    Skin() = default;
    Skin(Skin const &) = default;
    Skin &operator=(Skin const &) = default;
};

} // namespace kivui::skins
