#pragma once

#include <kivui/kivui_export.h>

#include <string>
#include <string_view>

namespace kivui::dialogs {

// A user-facing text given either as a localisation key with its default
// ("$$$/kivui/dialogs/OK=OK", UTF-8) or as a ready text (UTF-16). A UTF-16
// text that is itself a key is localised as well.
class KIVUI_EXPORT DialogText {
public:
    DialogText() = default;
    DialogText(char const *keyOrText) : mUtf8(keyOrText ? keyOrText : ""), mIsUtf8(true) {}
    DialogText(std::string_view keyOrText) : mUtf8(keyOrText), mIsUtf8(true) {}
    DialogText(std::string const &keyOrText) : mUtf8(keyOrText), mIsUtf8(true) {}
    DialogText(char16_t const *text) : mUtf16(text ? text : u"") {}
    DialogText(std::u16string text) : mUtf16(std::move(text)) {}

    std::u16string Resolve() const;

private:
    std::string mUtf8;
    std::u16string mUtf16;
    bool mIsUtf8 = false;
};

} // namespace kivui::dialogs
