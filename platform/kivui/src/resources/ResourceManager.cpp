#include <kivui/ResourceManager.h>

#include <kivui/SkinManager.h>

#include "resources/ResourcesLogging_p.h"

#include <QBuffer>
#include <QImageReader>
#include <QPixmap>

#include <string>

Q_LOGGING_CATEGORY(lcKivUiResources, "kiv.ui.resources", QtFatalMsg)

namespace kivui::utility {

ResourceManager::~ResourceManager() = default;

QByteArray ResourceManager::GetUIArchive(std::string_view name) const
{
    QByteArray data = GetResourceData("ui/" + std::string(name) + ".ui");
    if (data.isEmpty()) qCWarning(lcKivUiResources) << "no UI archive" << name.data();
    return data;
}

QByteArray ResourceManager::GetLayoutDescription(std::string_view name) const
{
    QByteArray data = GetResourceData("layouts/" + std::string(name) + ".ui");
    if (data.isEmpty()) qCWarning(lcKivUiResources) << "no layout description" << name.data();
    return data;
}

QImage ResourceManager::GetImage(std::string_view name) const
{
    std::string const look = skins::core::SkinManager::GetSkinVersion() >= skins::core::SkinVersion::kV7 ? "V7" : "V5";
    for (std::string const &path :
         {"theme/" + look + "/" + std::string(name) + ".png", "images/" + std::string(name) + ".png"}) {
        if (!HasResource(path)) continue;
        QByteArray data = GetResourceData(path);
        QBuffer buffer(&data);
        QImageReader reader(&buffer, "png");
        QImage image = reader.read();
        if (image.isNull()) {
            qCWarning(lcKivUiResources) << "unreadable image" << path.c_str() << reader.errorString();
            continue;
        }
        return image;
    }
    return {};
}

QCursor ResourceManager::GetCursor(int number, int style) const
{
    // The look's own drawing of a cursor, when the module has one.
    if (style == 3) {
        QImage const image = GetImage("Cursor_" + std::to_string(number));
        if (!image.isNull()) return QCursor(QPixmap::fromImage(image));
    }
    switch (number) {
    case 11:
        return QCursor(Qt::SplitVCursor);
    case 12:
        return QCursor(Qt::SplitHCursor);
    case 2:
        return QCursor(Qt::IBeamCursor);
    case 3:
        return QCursor(Qt::PointingHandCursor);
    case 4:
        return QCursor(Qt::SizeHorCursor);
    case 5:
        return QCursor(Qt::SizeVerCursor);
    case 6:
        return QCursor(Qt::WaitCursor);
    case 7:
        return QCursor(Qt::ForbiddenCursor);
    default:
        return QCursor(Qt::ArrowCursor);
    }
}

} // namespace kivui::utility
