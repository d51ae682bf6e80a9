#include <kivcore/RefCounted.h>

namespace kivcore::utility {

RefCountedInterface::~RefCountedInterface() = default;

} // namespace kivcore::utility
