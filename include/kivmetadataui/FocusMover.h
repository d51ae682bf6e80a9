#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

namespace kivmetadataui {

// Hands the keyboard focus to whatever comes after (or before) a view when
// the focus leaves it; implemented by the embedding application.
class KIVMETADATAUI_EXPORT FocusMover {
public:
    virtual ~FocusMover();
    virtual void MoveOutToNextNodeFocusOrder(bool inForward) = 0;
};

} // namespace kivmetadataui
