#pragma once

#include <kivmetadataui/UI_DateTextEdit.h>
#include <kivmetadataui/kivmetadataui_export.h>

#include <kivui/UI_AutoCompleteTextEdit.h>
#include <kivui/UI_Checkbox.h>
#include <kivui/UI_DragableTextEdit.h>
#include <kivui/UI_HotTextNumber.h>
#include <kivui/UI_Popup.h>
#include <kivui/UI_StarRating.h>
#include <kivui/UI_StaticText.h>
#include <kivui/UI_TextEdit.h>
#include <kivui/UI_URLEdit.h>

#include <cstdint>
#include <optional>

namespace kivmetadataui {

// The kinds of control that the built-in control factory makes. Every piece
// of code that acts by kind (showing a value, writing it back, feeding a
// control from elsewhere) goes through VisitControl, so a new kind is added
// here and nowhere else.
enum class ControlKind : std::uint8_t {
    kDateText,
    kAutoCompleteText,
    kURL,
    kDragableText,
    kText,
    kStaticText,
    kCheckbox,
    kPopup,
    kNumber,
    kRating,
};

// The kind of a control; empty for a control the factory does not make.
KIVMETADATAUI_EXPORT std::optional<ControlKind> KindOfControl(kivui::UI_ControlView const *inControl);

// Calls `inVisit` with the control as a pointer to its concrete class, for a
// kind already known (KindOfControl, or kept since the control was made).
template <typename Visitor> void VisitControl(ControlKind inKind, kivui::UI_ControlView *inControl, Visitor &&inVisit)
{
    switch (inKind) {
    case ControlKind::kDateText:
        inVisit(static_cast<UI_DateTextEdit *>(inControl));
        return;
    case ControlKind::kAutoCompleteText:
        inVisit(static_cast<kivui::UI_AutoCompleteTextEdit *>(inControl));
        return;
    case ControlKind::kURL:
        inVisit(static_cast<kivui::UI_URLEdit *>(inControl));
        return;
    case ControlKind::kDragableText:
        inVisit(static_cast<kivui::UI_DragableTextEdit *>(inControl));
        return;
    case ControlKind::kText:
        inVisit(static_cast<kivui::UI_TextEdit *>(inControl));
        return;
    case ControlKind::kStaticText:
        inVisit(static_cast<kivui::UI_StaticText *>(inControl));
        return;
    case ControlKind::kCheckbox:
        inVisit(static_cast<kivui::UI_Checkbox *>(inControl));
        return;
    case ControlKind::kPopup:
        inVisit(static_cast<kivui::UI_Popup *>(inControl));
        return;
    case ControlKind::kNumber:
        inVisit(static_cast<kivui::UI_HotTextNumber *>(inControl));
        return;
    case ControlKind::kRating:
        inVisit(static_cast<kivui::UI_StarRating *>(inControl));
        return;
    }
}

// The same for a control of any kind; false (nothing called) for a control
// the factory does not make.
template <typename Visitor> bool VisitControl(kivui::UI_ControlView *inControl, Visitor &&inVisit)
{
    std::optional<ControlKind> const kind = KindOfControl(inControl);
    if (!kind) return false;
    VisitControl(*kind, inControl, static_cast<Visitor &&>(inVisit));
    return true;
}

} // namespace kivmetadataui
