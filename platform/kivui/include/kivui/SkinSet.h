#pragma once

#include <kivui/kivui_export.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kivui::skins::core {

// The skins of one look ("V5", "V7"): skin key -> skin description (a Qt
// style-sheet fragment). The style sheet of the set is the descriptions in
// the order in which their keys were first added, so that later modules can
// refine what the toolkit's base skin says.
class KIVUI_EXPORT SkinSet {
public:
    explicit SkinSet(std::string name);
    ~SkinSet();
    SkinSet(SkinSet const &) = delete;
    SkinSet &operator=(SkinSet const &) = delete;

    std::string const &GetName() const;

    // Adds the skins of the map; a key already present gets the new description.
    void AddSkinsToSet(std::map<std::string, std::string> const &skins);
    bool HasSkin(std::string const &key) const;
    // Empty when the key is unknown.
    std::string GetSkin(std::string const &key) const;
    std::vector<std::pair<std::string, std::string>> const &GetSkins() const;
    std::string GetStyleSheet() const;

private:
    std::string mName;
    std::vector<std::pair<std::string, std::string>> mSkins;
};

} // namespace kivui::skins::core
