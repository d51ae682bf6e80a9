#include <kivui/drawbot/QtSupplier.h>

#include <QFont>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QString>

#include <cmath>
#include <optional>
#include <unordered_map>
#include <vector>

namespace kivui::drawbot {

SupplierInterface::~SupplierInterface() = default;

namespace {

// Float noise from the font engine must not add a whole unit: 40.0000001 is 40.
float RoundUp(qreal value)
{
    return static_cast<float>(std::ceil(value - 1e-4));
}

bool HasWord(std::string_view style, std::string_view word)
{
    return style.find(word) != std::string_view::npos;
}

} // namespace

struct QtSupplier::Private {
    std::optional<QFont> fixedBase;

    struct Entry {
        float size;
        std::string style;
        QFont font;
        QFontMetricsF metrics;
    };
    // Few sizes and styles are in use at a time; a short list beats a map.
    mutable std::vector<Entry> cache;
    mutable QFont cachedBase;
    mutable bool haveCachedBase = false;
    // Panels measure the same labels again and again; shaping is the cost.
    // Keyed by the font entry's index in `cache` followed by the text.
    mutable std::unordered_map<std::u16string, kivcore::PointF> measured;
    static constexpr std::size_t kMaxMeasured = 2048;

    QFont Base() const
    {
        QFont base = fixedBase ? *fixedBase : QGuiApplication::font();
        if (!haveCachedBase || !(base == cachedBase)) {
            cache.clear();
            measured.clear();
            cachedBase = base;
            haveCachedBase = true;
        }
        return cachedBase;
    }

    float DefaultSize() const
    {
        QFont const base = Base();
        if (base.pixelSize() > 0) return static_cast<float>(base.pixelSize());
        return static_cast<float>(QFontInfo(base).pixelSize());
    }

    Entry const &Lookup(float size, std::string_view style) const
    {
        QFont const base = Base();
        if (size <= 0.0f) size = DefaultSize();
        for (Entry const &e : cache) {
            if (e.size == size && e.style == style) return e;
        }
        QFont font = base;
        font.setPixelSize(std::max(1, static_cast<int>(std::lround(size))));
        font.setBold(HasWord(style, "Bold"));
        font.setItalic(HasWord(style, "Italic"));
        cache.push_back(Entry{size, std::string(style), font, QFontMetricsF(font)});
        return cache.back();
    }
};

QtSupplier::QtSupplier() : d(std::make_unique<Private>()) {}

QtSupplier::QtSupplier(QFont const &baseFont) : d(std::make_unique<Private>())
{
    d->fixedBase = baseFont;
}

QtSupplier::~QtSupplier() = default;

QFont QtSupplier::GetFont(float fontSize, std::string_view style) const
{
    return d->Lookup(fontSize, style).font;
}

float QtSupplier::GetDefaultFontSize() const
{
    return d->DefaultSize();
}

kivcore::PointF QtSupplier::MeasureText(std::u16string_view text, float fontSize, std::string_view style) const
{
    auto const &e = d->Lookup(fontSize, style);
    std::u16string key(1, static_cast<char16_t>(&e - d->cache.data()));
    key += text;
    if (auto it = d->measured.find(key); it != d->measured.end()) return it->second;
    QString const s = QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
    kivcore::PointF const size{RoundUp(e.metrics.horizontalAdvance(s)), RoundUp(e.metrics.height())};
    if (d->measured.size() >= Private::kMaxMeasured) d->measured.clear();
    d->measured.emplace(std::move(key), size);
    return size;
}

float QtSupplier::GetLineHeight(float fontSize, std::string_view style) const
{
    return RoundUp(d->Lookup(fontSize, style).metrics.height());
}

float QtSupplier::GetAscent(float fontSize, std::string_view style) const
{
    return RoundUp(d->Lookup(fontSize, style).metrics.ascent());
}

} // namespace kivui::drawbot
