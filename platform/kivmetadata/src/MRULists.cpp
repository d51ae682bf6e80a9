#include <kivmetadata/MRULists.h>

#include "PacketLimits_p.h"
#include "Registry_p.h"

#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/UserFolders.h>

#include <kivcore/FileUtils.h>
#include <kivcore/StringUtils.h>

#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <map>
#include <optional>

namespace kivmetadata {

using namespace detail;

namespace {

constexpr char kMruXmlns[] = "urn:kivmetadata:mru:1";

struct MRUStore {
    std::optional<std::map<std::string, std::vector<std::u16string>>> mLists; // loaded on first use
    std::u16string mLoadedFrom;
};

MRUStore &Store()
{
    static MRUStore store;
    return store;
}

std::u16string FilePath()
{
    return UserDataDirectory() + u"/mru/mru.xml";
}

bool Parse(std::string const &bytes, std::map<std::string, std::vector<std::u16string>> &lists, std::string &error)
{
    if (error = XmlRefusal(bytes, XmlKind::kUserFile); !error.empty()) return false;
    QXmlStreamReader reader(QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())));
    if (!reader.readNextStartElement() || reader.name() != u"mru") {
        error = reader.hasError() ? reader.errorString().toStdString() : "the root element is not <mru>";
        return false;
    }
    while (reader.readNextStartElement()) {
        if (reader.name() != u"list") {
            reader.skipCurrentElement();
            continue;
        }
        std::string const key = reader.attributes().value(QLatin1String("key")).toString().toStdString();
        auto &entries = lists[key];
        while (reader.readNextStartElement()) {
            if (reader.name() == u"entry") {
                QString const text = reader.readElementText();
                if (!text.isEmpty() && entries.size() < kMRUListLength) entries.push_back(text.toStdU16String());
            } else {
                reader.skipCurrentElement();
            }
        }
    }
    if (reader.hasError()) {
        error = reader.errorString().toStdString() + " (line " + std::to_string(reader.lineNumber()) + ")";
        return false;
    }
    return true;
}

std::map<std::string, std::vector<std::u16string>> &Lists()
{
    auto &store = Store();
    std::u16string const path = FilePath();
    if (store.mLists && store.mLoadedFrom == path) return *store.mLists;
    store.mLists.emplace();
    store.mLoadedFrom = path;
    std::string bytes, error;
    if (!QFile::exists(ToQString(path))) return *store.mLists;
    if (!ReadWholeFile(ToQString(path), bytes, &error) || !Parse(bytes, *store.mLists, error)) {
        store.mLists->clear();
        // Keep the unreadable file for the user instead of overwriting it.
        QFile::remove(ToQString(path + u".bad"));
        QFile::rename(ToQString(path), ToQString(path + u".bad"));
        AddErrorInfo("The list of recent entries could not be read (" + error + "); it was kept as mru.xml.bad.",
                     kivcore::utility::Utf16ToUtf8(path));
    }
    return *store.mLists;
}

void Save()
{
    QByteArray bytes;
    QXmlStreamWriter writer(&bytes);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("mru"));
    writer.writeDefaultNamespace(QLatin1String(kMruXmlns));
    for (auto const &[key, entries] : Lists()) {
        writer.writeStartElement(QStringLiteral("list"));
        writer.writeAttribute(QStringLiteral("key"), QString::fromStdString(key));
        for (auto const &entry : entries)
            writer.writeTextElement(QStringLiteral("entry"), ToQString(entry));
        writer.writeEndElement();
    }
    writer.writeEndElement();
    writer.writeEndDocument();
    std::string error;
    std::u16string const folder = UserSubdirectory(u"mru");
    if (folder.empty() ||
        !kivcore::utility::FileUtils::SimpleWriteStringToFile(FilePath(), bytes.toStdString(), &error)) {
        if (error.empty()) error = "the folder cannot be created";
        AddErrorInfo("The list of recent entries could not be saved: " + error + ".",
                     kivcore::utility::Utf16ToUtf8(FilePath()));
    }
}

} // namespace

void UpdateMRULists(std::string const &key, std::vector<std::u16string> const &entries)
{
    auto &list = Lists()[key];
    auto const before = list;
    // The first entry is the newest: insert from the oldest so it ends first.
    for (auto it = entries.rbegin(); it != entries.rend(); ++it) {
        if (it->empty()) continue;
        std::erase(list, *it);
        list.insert(list.begin(), *it);
    }
    if (list.size() > kMRUListLength) list.resize(kMRUListLength);
    if (list != before) Save();
}

std::vector<std::u16string> GetMRUList(std::string const &key)
{
    auto const &lists = Lists();
    auto it = lists.find(key);
    return it == lists.end() ? std::vector<std::u16string>{} : it->second;
}

void ClearMRULists()
{
    Lists().clear();
    Save();
}

} // namespace kivmetadata
