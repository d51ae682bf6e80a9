#include <kivui/DrawbotImageResourceCache.h>

#include <map>
#include <string>

namespace kivui::utility {

struct DrawbotImageResourceCache::Private {
    std::map<std::string, QImage, std::less<>> images;
};

DrawbotImageResourceCache::DrawbotImageResourceCache() : d(std::make_unique<Private>()) {}

DrawbotImageResourceCache::~DrawbotImageResourceCache() = default;

QImage DrawbotImageResourceCache::Find(std::string_view key) const
{
    auto const it = d->images.find(key);
    return it == d->images.end() ? QImage() : it->second;
}

bool DrawbotImageResourceCache::Contains(std::string_view key) const
{
    return d->images.find(key) != d->images.end();
}

void DrawbotImageResourceCache::Insert(std::string_view key, QImage const &image) const
{
    d->images.insert_or_assign(std::string(key), image);
}

void DrawbotImageResourceCache::Clear() const
{
    d->images.clear();
}

std::size_t DrawbotImageResourceCache::Count() const
{
    return d->images.size();
}

} // namespace kivui::utility
