#pragma once
// Internal to kivmetadataui: the date text edit's skin of the v7 look.

#include "StyleSheetSkin_p.h"
#include "kivmetadataui_test_export_p.h"

namespace kivmetadataui::skins::v7 {

// Dark field with rounded corners and a blue focus frame; a red frame while
// the text is not a valid date; read-only fields lose the frame.
class KIVMETADATAUI_TEST_EXPORT V7DateTextEditSkin : public StyleSheetSkin {
public:
    static constexpr char kTypeName[] = "kivmetadataui::V7DateTextEditSkin";
    static constexpr char kStyleSheet[] = ":/kivmetadataui/skins/V7DateTextEdit.qss";

    V7DateTextEditSkin();
    ~V7DateTextEditSkin() override;
};

} // namespace kivmetadataui::skins::v7
