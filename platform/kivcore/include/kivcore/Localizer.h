#pragma once

#include <kivcore/kivcore_export.h>

#include <initializer_list>
#include <string>
#include <string_view>

namespace kivcore::config {

// Resolves "$$$/area/name=Default" keys. Dictionaries are text files named
// after the locale ("de_DE.txt", "de.txt") holding lines "$$$/area/name=Text";
// lines starting with '#' are comments. Lookup order: exact locale, language,
// then the default text after the first '='. "#{plusmn}"-style escapes are
// expanded and "@0".."@9" are filled from the arguments.
class KIVCORE_EXPORT Localizer {
public:
    // Translated text of a key with its default.
    static std::u16string Localize(std::string_view keyWithDefault);
    static std::u16string Localize(std::string_view keyWithDefault, std::initializer_list<std::u16string> args);
    static std::string LocalizeUtf8(std::string_view keyWithDefault);

    // Replaces "@0".."@9" in `text` by `args` (missing arguments are left as they are).
    static std::u16string ReplacePlaceholders(std::u16string text, std::initializer_list<std::u16string> args);
    // Expands "#{name}" escapes: plusmn, copy, reg, trade, deg, times, emdash, endash, hellip, nbsp, bullet.
    static std::u16string ExpandEscapes(std::u16string const &text);

    // The key part ("$$$/area/name") and the default part of a key text.
    static std::string_view KeyOf(std::string_view keyWithDefault);
    static std::string_view DefaultOf(std::string_view keyWithDefault);

    // Adds a folder (file system or Qt resource, ":/...") that holds locale dictionaries.
    static void AddDictionaryFolder(std::u16string const &folder);
    // "de_DE"; empty selects the system locale. Reloads dictionaries.
    static void SetLocale(std::string const &locale);
    static std::string Locale();
};

} // namespace kivcore::config
