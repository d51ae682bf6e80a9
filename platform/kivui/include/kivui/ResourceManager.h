#pragma once

#include <kivui/kivui_export.h>

#include <QByteArray>
#include <QCursor>
#include <QImage>

#include <string>
#include <string_view>

namespace kivui::utility {

// Reads the resources of one module: UI archives (Qt Designer .ui files),
// layout descriptions, images by name and cursors. Resources are laid out
// under a prefix as
//   <prefix>ui/<name>.ui        UI archives of archived dialogs
//   <prefix>layouts/<name>.ui   layout descriptions of layout-described views
//   <prefix>images/<name>.png   images, by name ("Link_Sm")
//   <prefix>theme/<look>/<name>.png  images of one look ("V5", "V7"), preferred over images/
// A missing resource gives an empty result, never an exception.
class KIVUI_EXPORT ResourceManager {
public:
    virtual ~ResourceManager();

    // The raw bytes of a resource below the prefix ("ui/Error.ui"); empty when absent.
    virtual QByteArray GetResourceData(std::string_view relativePath) const = 0;
    virtual bool HasResource(std::string_view relativePath) const = 0;

    QByteArray GetUIArchive(std::string_view name) const;
    QByteArray GetLayoutDescription(std::string_view name) const;
    // Null image when there is no image of that name.
    virtual QImage GetImage(std::string_view name) const;
    // The toolkit's cursor set: 11 is the vertical splitter cursor. `style`
    // selects a variant (3: the look's own drawing when available); unknown
    // numbers give the arrow.
    virtual QCursor GetCursor(int number, int style) const;

protected:
    ResourceManager() = default;
    ResourceManager(ResourceManager const &) = default;
    ResourceManager &operator=(ResourceManager const &) = default;
};

} // namespace kivui::utility
