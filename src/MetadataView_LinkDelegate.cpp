#include <kivmetadataui/MetadataView_LinkDelegate.h>

namespace kivmetadataui {

MetadataView_LinkDelegate::~MetadataView_LinkDelegate() = default;

} // namespace kivmetadataui
