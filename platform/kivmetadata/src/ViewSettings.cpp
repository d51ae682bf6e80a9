#include <kivmetadata/ViewSettings.h>

#include "PacketLimits_p.h"
#include "Registry_p.h"

#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/UserFolders.h>

#include <kivcore/StringUtils.h>

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace kivmetadata {

using namespace detail;

namespace {

constexpr char kViewSettingsXmlns[] = "urn:kivmetadata:viewsettings:1";

bool Parse(std::string const &text, std::set<Path> &paths, std::string &error)
{
    if (error = XmlRefusal(text, XmlKind::kUserFile); !error.empty()) return false;
    QXmlStreamReader reader(QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size())));
    if (!reader.readNextStartElement() || reader.name() != u"viewSettings") {
        error = reader.hasError() ? reader.errorString().toStdString() : "the root element is not <viewSettings>";
        return false;
    }
    while (reader.readNextStartElement()) {
        if (reader.name() == u"path") {
            auto const attributes = reader.attributes();
            Path path{attributes.value(QLatin1String("namespace")).toString().toStdString(),
                      attributes.value(QLatin1String("path")).toString().toStdString()};
            if (path.mNamespace.empty() || path.mPath.empty()) {
                error = "a <path> needs a namespace and a path (line " + std::to_string(reader.lineNumber()) + ")";
                return false;
            }
            paths.insert(std::move(path));
        }
        reader.skipCurrentElement();
    }
    if (reader.hasError()) {
        error = reader.errorString().toStdString() + " (line " + std::to_string(reader.lineNumber()) + ")";
        return false;
    }
    return true;
}

} // namespace

bool IncludedLeafPathsAsXMLString(std::set<Path> const &paths, std::string &text)
{
    QByteArray bytes;
    QXmlStreamWriter writer(&bytes);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("viewSettings"));
    writer.writeDefaultNamespace(QLatin1String(kViewSettingsXmlns));
    for (auto const &path : paths) {
        writer.writeEmptyElement(QStringLiteral("path"));
        writer.writeAttribute(QStringLiteral("namespace"), QString::fromStdString(path.mNamespace));
        writer.writeAttribute(QStringLiteral("path"), QString::fromStdString(path.mPath));
    }
    writer.writeEndElement();
    writer.writeEndDocument();
    text = bytes.toStdString();
    return true;
}

bool ReadIncludedLeafPathsAsXMLString(std::set<Path> &paths, std::string const &text)
{
    std::set<Path> read;
    std::string error;
    if (!Parse(text, read, error)) {
        AddErrorInfo("The view settings could not be read: " + error + ".", "view settings");
        return false;
    }
    paths = std::move(read);
    return true;
}

bool ReadIncludedLeafPathsAsXMLFile(std::set<Path> &paths, std::u16string const &filePath)
{
    std::string bytes, error;
    std::set<Path> read;
    if (!ReadWholeFile(ToQString(filePath), bytes, &error) || !Parse(bytes, read, error)) {
        AddErrorInfo("The view settings could not be read: " + error + ".", kivcore::utility::Utf16ToUtf8(filePath));
        return false;
    }
    paths = std::move(read);
    return true;
}

std::u16string ViewSettingsDirectory()
{
    std::u16string folder = UserSubdirectory(u"view_settings");
    if (folder.empty()) folder = UserDataDirectory() + u"/view_settings";
    return folder;
}

} // namespace kivmetadata
