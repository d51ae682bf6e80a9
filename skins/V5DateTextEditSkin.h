#pragma once
// Internal to kivmetadataui: the date text edit's skin of the older look.

#include "StyleSheetSkin_p.h"
#include "kivmetadataui_test_export_p.h"

namespace kivmetadataui::skins::v5 {

// Light field with a thin grey frame; a red frame while the text is not a
// valid date; read-only fields lose the frame.
class KIVMETADATAUI_TEST_EXPORT V5DateTextEditSkin : public StyleSheetSkin {
public:
    static constexpr char kTypeName[] = "kivmetadataui::V5DateTextEditSkin";
    static constexpr char kStyleSheet[] = ":/kivmetadataui/skins/V5DateTextEdit.qss";

    V5DateTextEditSkin();
    ~V5DateTextEditSkin() override;
};

} // namespace kivmetadataui::skins::v5
