#include <kivui/ImageProvider.h>

#include <kivui/DrawbotImageResourceCache.h>
#include <kivui/ResourceManager.h>
#include <kivui/SkinManager.h>

#include <string>

namespace kivui::utility {

ImageProvider::ImageProvider(ResourceManager const *resources, drawbot::SupplierInterface const *supplier,
                             DrawbotImageResourceCache const *cache)
    : mResources(resources), mSupplier(supplier), mCache(cache)
{
}

ImageProvider::~ImageProvider() = default;

QImage ImageProvider::GetImage(std::string_view name) const
{
    if (!mResources || name.empty()) return {};
    // The look is part of the key: after a change of look the other theme image is read.
    std::string key = skins::core::SkinManager::GetSkinVersion() >= skins::core::SkinVersion::kV7 ? "V7/" : "V5/";
    key += name;
    if (mCache && mCache->Contains(key)) return mCache->Find(key);
    QImage image = mResources->GetImage(name);
    // Missing images are remembered too, so a missing icon is not searched for on every paint.
    if (mCache) mCache->Insert(key, image);
    return image;
}

} // namespace kivui::utility
