#pragma once
// Internal to kivmetadataui: the date text edit's skin of the v7 look.

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivui/Skin.h>

namespace kivmetadataui::skins::v7 {

// Dark field with rounded corners and a blue focus frame; a red frame while
// the text is not a valid date; read-only fields lose the frame.
class KIVMETADATAUI_EXPORT V7DateTextEditSkin : public kivui::skins::Skin {
public:
    static constexpr char kTypeName[] = "kivmetadataui::V7DateTextEditSkin";

    V7DateTextEditSkin();
    ~V7DateTextEditSkin() override;
    std::string GetDescription() const override;
};

} // namespace kivmetadataui::skins::v7
