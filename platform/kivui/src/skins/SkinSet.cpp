#include <kivui/SkinSet.h>

#include <algorithm>

namespace kivui::skins::core {

SkinSet::SkinSet(std::string name) : mName(std::move(name)) {}

SkinSet::~SkinSet() = default;

std::string const &SkinSet::GetName() const
{
    return mName;
}

void SkinSet::AddSkinsToSet(std::map<std::string, std::string> const &skins)
{
    for (auto const &[key, description] : skins) {
        auto it = std::find_if(mSkins.begin(), mSkins.end(), [&key](auto const &e) { return e.first == key; });
        if (it != mSkins.end())
            it->second = description;
        else
            mSkins.emplace_back(key, description);
    }
}

bool SkinSet::HasSkin(std::string const &key) const
{
    return std::any_of(mSkins.begin(), mSkins.end(), [&key](auto const &e) { return e.first == key; });
}

std::string SkinSet::GetSkin(std::string const &key) const
{
    auto it = std::find_if(mSkins.begin(), mSkins.end(), [&key](auto const &e) { return e.first == key; });
    return it == mSkins.end() ? std::string() : it->second;
}

std::vector<std::pair<std::string, std::string>> const &SkinSet::GetSkins() const
{
    return mSkins;
}

std::string SkinSet::GetStyleSheet() const
{
    std::string sheet;
    for (auto const &[key, description] : mSkins) {
        // The key as a comment makes a broken rule traceable to its skin.
        sheet += "/* " + key + " */\n" + description;
        if (!description.empty() && description.back() != '\n') sheet += '\n';
    }
    return sheet;
}

} // namespace kivui::skins::core
