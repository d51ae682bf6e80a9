#pragma once

#include <kivui/kivui_export.h>

#include <QImage>

#include <string_view>

namespace kivui::drawbot {
class SupplierInterface;
}

namespace kivui::utility {

class DrawbotImageResourceCache;
class ResourceManager;

// Images by resource name, read through a resource manager and kept in a
// cache. The image of the look in use (theme/V7/<name>.png under V7) wins
// over the plain one. Any of the three pointers may be null: without a
// resource manager every image is null, without a cache nothing is kept.
class KIVUI_EXPORT ImageProvider {
public:
    ImageProvider(ResourceManager const *resources, drawbot::SupplierInterface const *supplier,
                  DrawbotImageResourceCache const *cache);
    ~ImageProvider();

    QImage GetImage(std::string_view name) const;

    ResourceManager const *GetResourceManager() const { return mResources; }
    drawbot::SupplierInterface const *GetSupplier() const { return mSupplier; }
    DrawbotImageResourceCache const *GetCache() const { return mCache; }

private:
    ResourceManager const *mResources;
    drawbot::SupplierInterface const *mSupplier;
    DrawbotImageResourceCache const *mCache;
};

} // namespace kivui::utility
