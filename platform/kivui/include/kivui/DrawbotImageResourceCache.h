#pragma once

#include <kivui/kivui_export.h>

#include <QImage>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace kivui::utility {

// Decoded images by key. Lookups and insertions work through const access
// because image providers hold the cache as a const pointer; the cache is
// meant for the UI thread only.
class KIVUI_EXPORT DrawbotImageResourceCache {
public:
    DrawbotImageResourceCache();
    ~DrawbotImageResourceCache();
    DrawbotImageResourceCache(DrawbotImageResourceCache const &) = delete;
    DrawbotImageResourceCache &operator=(DrawbotImageResourceCache const &) = delete;

    // Null image when the key is unknown.
    QImage Find(std::string_view key) const;
    bool Contains(std::string_view key) const;
    void Insert(std::string_view key, QImage const &image) const;
    void Clear() const;
    std::size_t Count() const;

private:
    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivui::utility
