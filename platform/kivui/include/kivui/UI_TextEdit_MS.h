#pragma once

#include <kivui/UI_TextEdit.h>

namespace kivui {

// A multi-line text edit with a vertical scroll bar.
class KIVUI_EXPORT UI_TextEdit_MS : public UI_TextEdit {
public:
    static constexpr char const *kClassName = "TextEditMultilineWithVerticalScrollbar";
    UI_TextEdit_MS();

protected:
    ~UI_TextEdit_MS() override;
};

} // namespace kivui
