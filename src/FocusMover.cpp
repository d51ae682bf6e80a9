#include <kivmetadataui/FocusMover.h>

namespace kivmetadataui {

FocusMover::~FocusMover() = default;

} // namespace kivmetadataui
