#include <kivui/DialogText.h>

#include <kivcore/Localizer.h>
#include <kivcore/StringUtils.h>

namespace kivui::dialogs {

std::u16string DialogText::Resolve() const
{
    using kivcore::config::Localizer;
    if (mIsUtf8) return Localizer::Localize(mUtf8);
    if (mUtf16.starts_with(u"$$$/")) return Localizer::Localize(kivcore::utility::Utf16ToUtf8(mUtf16));
    return mUtf16;
}

} // namespace kivui::dialogs
