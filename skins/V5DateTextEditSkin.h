#pragma once
// Internal to kivmetadataui: the date text edit's skin of the older look.

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivui/Skin.h>

namespace kivmetadataui::skins::v5 {

// Light field with a thin grey frame; a red frame while the text is not a
// valid date; read-only fields lose the frame.
class KIVMETADATAUI_EXPORT V5DateTextEditSkin : public kivui::skins::Skin {
public:
    static constexpr char kTypeName[] = "kivmetadataui::V5DateTextEditSkin";

    V5DateTextEditSkin();
    ~V5DateTextEditSkin() override;
    std::string GetDescription() const override;
};

} // namespace kivmetadataui::skins::v5
