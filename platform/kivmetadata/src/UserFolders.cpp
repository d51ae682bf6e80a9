#include <kivmetadata/UserFolders.h>

#include <kivcore/StringUtils.h>

#include <QDir>
#include <QStandardPaths>

namespace kivmetadata {
namespace {

std::u16string &OverrideFolder()
{
    static std::u16string folder;
    return folder;
}

QString ToQString(std::u16string const &text)
{
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

std::u16string FromQString(QString const &text)
{
    return text.toStdU16String();
}

} // namespace

std::u16string UserDataDirectory()
{
    if (!OverrideFolder().empty()) return OverrideFolder();
    QString base = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    if (base.isEmpty()) base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (base.isEmpty()) base = QDir::homePath() + QStringLiteral("/.local/share");
    return FromQString(QDir::cleanPath(base + QStringLiteral("/kivmetadata")));
}

void SetUserDataDirectory(std::u16string const &folder)
{
    OverrideFolder() = folder;
    while (OverrideFolder().size() > 1 && OverrideFolder().back() == u'/')
        OverrideFolder().pop_back();
}

std::u16string UserSubdirectory(std::u16string const &name)
{
    QString const path = ToQString(UserDataDirectory()) + QLatin1Char('/') + ToQString(name);
    if (!QDir().mkpath(path)) return {};
    return FromQString(path);
}

} // namespace kivmetadata
