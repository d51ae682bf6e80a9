#include <kivcore/FileUtils.h>

#include <kivcore/StringUtils.h>

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSaveFile>
#include <QUrl>

namespace kivcore::utility {
namespace {

QString ToQ(std::u16string const &s)
{
    return QString::fromStdU16String(s);
}

} // namespace

std::vector<std::u16string> FileUtils::ContainedFiles(std::u16string const &folder)
{
    std::vector<std::u16string> names;
    const QDir dir(ToQ(folder));
    if (!dir.exists()) return names;
    const QStringList entries = dir.entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    names.reserve(static_cast<std::size_t>(entries.size()));
    for (QString const &e : entries)
        names.push_back(e.toStdU16String());
    return names;
}

bool FileUtils::RemoveFile(std::u16string const &path)
{
    return QFile::remove(ToQ(path));
}

bool FileUtils::FileOrDirExists(std::u16string const &path)
{
    return !path.empty() && QFileInfo::exists(ToQ(path));
}

bool FileUtils::DirectoryExists(std::u16string const &path)
{
    const QFileInfo info(ToQ(path));
    return !path.empty() && info.exists() && info.isDir();
}

std::u16string FileUtils::ReplaceIllegalFileNameCharacters(std::u16string const &name,
                                                           std::u16string const &replacement)
{
    static constexpr std::u16string_view kIllegal = u"/\\:*?\"<>|";
    std::u16string out;
    out.reserve(name.size());
    for (char16_t c : name) {
        if (c < 0x20 || c == 0x7F || kIllegal.find(c) != std::u16string_view::npos)
            out += replacement;
        else
            out += c;
    }
    return out;
}

std::u16string FileUtils::StripTrailingSlash(std::u16string const &path)
{
    std::u16string out = path;
    while (out.size() > 1 && (out.back() == u'/' || out.back() == u'\\'))
        out.pop_back();
    return out;
}

std::u16string FileUtils::Join(std::u16string const &folder, std::u16string const &name)
{
    if (folder.empty()) return name;
    return StripTrailingSlash(folder) + (folder == u"/" ? u"" : u"/") + name;
}

bool FileUtils::SimpleWriteStringToFile(std::u16string const &path, std::string const &bytes, std::string *error)
{
    QSaveFile file(ToQ(path));
    if (!file.open(QIODevice::WriteOnly)) {
        if (error) *error = file.errorString().toStdString();
        return false;
    }
    if (file.write(bytes.data(), static_cast<qint64>(bytes.size())) != static_cast<qint64>(bytes.size())) {
        if (error) *error = file.errorString().toStdString();
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        if (error) *error = file.errorString().toStdString();
        return false;
    }
    return true;
}

bool FileUtils::ReadFileToString(std::u16string const &path, std::string &bytes, std::string *error)
{
    QFile file(ToQ(path));
    if (!file.open(QIODevice::ReadOnly)) {
        if (error) *error = file.errorString().toStdString();
        return false;
    }
    const QByteArray data = file.readAll();
    bytes.assign(data.constData(), static_cast<std::size_t>(data.size()));
    return true;
}

Directory::Directory(std::u16string path) : mPath(FileUtils::StripTrailingSlash(path)) {}

bool Directory::Exists() const
{
    return FileUtils::DirectoryExists(mPath);
}

bool Directory::IsTopLevelDir() const
{
    return QDir(ToQ(mPath)).isRoot() || mPath.empty();
}

Directory Directory::Parent() const
{
    QString p = QFileInfo(ToQ(mPath)).absolutePath();
    return Directory(p.toStdU16String());
}

bool Directory::Create() const
{
    return QDir().mkdir(ToQ(mPath)) || Exists();
}

bool OpenFileInDefaultApplication(std::u16string const &pathOrUrl)
{
    // xdg-open keeps this library free of Qt Gui (QDesktopServices).
    const QString target = ToQ(pathOrUrl);
    return QProcess::startDetached(QStringLiteral("xdg-open"), {target});
}

} // namespace kivcore::utility
