#include <kivcore/Localizer.h>

#include <kivcore/StringUtils.h>

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QString>

#include <algorithm>
#include <map>
#include <unordered_map>
#include <vector>

namespace kivcore::config {
namespace {

struct State {
    std::vector<QString> folders;
    std::string locale;
    bool loaded = false;
    std::unordered_map<std::string, std::u16string> table;
};

State &Global()
{
    static State state;
    return state;
}

void LoadFile(QString const &path, std::unordered_map<std::string, std::u16string> &table)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return;
    while (!file.atEnd()) {
        QByteArray line = file.readLine();
        while (line.endsWith('\n') || line.endsWith('\r'))
            line.chop(1);
        if (line.isEmpty() || line.startsWith('#')) continue;
        const int eq = line.indexOf('=');
        if (eq <= 0) continue;
        // Later files (the more specific locale) win.
        table[line.left(eq).toStdString()] = utility::Utf8ToUtf16(line.mid(eq + 1).toStdString());
    }
}

void EnsureLoaded()
{
    State &s = Global();
    if (s.loaded) return;
    s.loaded = true;
    s.table.clear();
    const QString locale = s.locale.empty() ? QLocale::system().name() : QString::fromStdString(s.locale);
    const QString language = locale.section(QLatin1Char('_'), 0, 0);
    for (QString const &folder : s.folders) {
        if (language != locale) LoadFile(folder + QLatin1Char('/') + language + QStringLiteral(".txt"), s.table);
        LoadFile(folder + QLatin1Char('/') + locale + QStringLiteral(".txt"), s.table);
    }
}

const std::map<std::u16string, std::u16string> &Escapes()
{
    static const std::map<std::u16string, std::u16string> escapes{
        {u"plusmn", u"\u00B1"}, {u"copy", u"\u00A9"},  {u"reg", u"\u00AE"},    {u"trade", u"\u2122"},
        {u"deg", u"\u00B0"},    {u"times", u"\u00D7"}, {u"emdash", u"\u2014"}, {u"endash", u"\u2013"},
        {u"hellip", u"\u2026"}, {u"nbsp", u"\u00A0"},  {u"bullet", u"\u2022"},
    };
    return escapes;
}

} // namespace

std::string_view Localizer::KeyOf(std::string_view keyWithDefault)
{
    const auto eq = keyWithDefault.find('=');
    return eq == std::string_view::npos ? keyWithDefault : keyWithDefault.substr(0, eq);
}

std::string_view Localizer::DefaultOf(std::string_view keyWithDefault)
{
    const auto eq = keyWithDefault.find('=');
    if (eq == std::string_view::npos) {
        // A bare text (no "$$$/" key) is its own default.
        return keyWithDefault.starts_with("$$$/") ? std::string_view() : keyWithDefault;
    }
    return keyWithDefault.substr(eq + 1);
}

std::u16string Localizer::ExpandEscapes(std::u16string const &text)
{
    std::u16string out;
    out.reserve(text.size());
    std::size_t i = 0;
    while (i < text.size()) {
        if (text[i] == u'#' && i + 1 < text.size() && text[i + 1] == u'{') {
            const auto close = text.find(u'}', i + 2);
            if (close != std::u16string::npos) {
                const auto it = Escapes().find(text.substr(i + 2, close - i - 2));
                if (it != Escapes().end()) {
                    out += it->second;
                    i = close + 1;
                    continue;
                }
            }
        }
        out += text[i++];
    }
    return out;
}

std::u16string Localizer::ReplacePlaceholders(std::u16string text, std::initializer_list<std::u16string> args)
{
    // One pass, so that an argument containing "@1" is not replaced again.
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'@' && i + 1 < text.size() && text[i + 1] >= u'0' && text[i + 1] <= u'9') {
            const std::size_t n = static_cast<std::size_t>(text[i + 1] - u'0');
            if (n < args.size()) {
                out += *(args.begin() + n);
                ++i;
                continue;
            }
        }
        out += text[i];
    }
    return out;
}

std::u16string Localizer::Localize(std::string_view keyWithDefault)
{
    EnsureLoaded();
    const std::string key(KeyOf(keyWithDefault));
    const auto &table = Global().table;
    const auto it = table.find(key);
    const std::u16string text = it != table.end() ? it->second : utility::Utf8ToUtf16(DefaultOf(keyWithDefault));
    return ExpandEscapes(text);
}

std::u16string Localizer::Localize(std::string_view keyWithDefault, std::initializer_list<std::u16string> args)
{
    return ReplacePlaceholders(Localize(keyWithDefault), args);
}

std::string Localizer::LocalizeUtf8(std::string_view keyWithDefault)
{
    return utility::Utf16ToUtf8(Localize(keyWithDefault));
}

void Localizer::AddDictionaryFolder(std::u16string const &folder)
{
    const QString f = QString::fromStdU16String(folder);
    auto &folders = Global().folders;
    if (std::find(folders.begin(), folders.end(), f) == folders.end()) folders.push_back(f);
    Global().loaded = false;
}

void Localizer::SetLocale(std::string const &locale)
{
    Global().locale = locale;
    Global().loaded = false;
}

std::string Localizer::Locale()
{
    return Global().locale.empty() ? QLocale::system().name().toStdString() : Global().locale;
}

} // namespace kivcore::config
