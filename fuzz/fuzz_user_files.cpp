// The readers of the files people keep in the per-user data folder: custom
// schemas and types, panels (loaded, then walked by BuildView), view
// settings, recent entries, templates and the three generations of older
// Generic Panels. The first byte of the input picks the reader (its value
// modulo 8, so the digits '0' to '7' name them in the seeds), the rest is
// the file. None may crash or hang; besides:
// - view settings that read are written and read back to the same paths;
// - BuildView calls a builder in the documented nesting;
// - a converted Generic Panel is a panel file that reads.
// The data folder is a fresh temporary one for each input.
#include "FuzzRequire.h"

#include <kivmetadata/Definitions.h>
#include <kivmetadata/Initialize.h>
#include <kivmetadata/MRULists.h>
#include <kivmetadata/PanelConversion.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/Templates.h>
#include <kivmetadata/UserFolders.h>
#include <kivmetadata/ViewBuilderInterface.h>
#include <kivmetadata/ViewDefinition.h>
#include <kivmetadata/ViewDefinitions.h>
#include <kivmetadata/ViewSettings.h>
#include <kivmetadata/XMPMeta.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace kivmetadata;

QString Q(std::u16string const &text)
{
    return QString::fromStdU16String(text);
}

void Write(QString const &path, std::string const &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    REQUIRE(file.open(QIODevice::WriteOnly) && file.write(bytes.data(), qint64(bytes.size())) == qint64(bytes.size()));
}

// Checks the order of the calls, nothing else.
class NestingBuilder : public ViewBuilderInterface {
public:
    void BeginSection(ViewItem const &) override
    {
        REQUIRE(mOpen.empty());
        mOpen.push_back('s');
    }
    void EndSection() override { Close('s'); }
    void AddProperty(std::shared_ptr<ViewItem> const &item, PropertyDefinition const &) override
    {
        REQUIRE(item != nullptr);
    }
    void BeginStruct(std::shared_ptr<ViewItem> const &item, PropertyDefinition const &) override
    {
        REQUIRE(item != nullptr);
        mOpen.push_back('t');
    }
    void EndStruct() override { Close('t'); }
    void AddArray(std::shared_ptr<ViewItem> const &item, PropertyDefinition const &) override
    {
        REQUIRE(item != nullptr);
    }
    void EndView() override { REQUIRE(mOpen.empty()); }

private:
    void Close(char kind)
    {
        REQUIRE(!mOpen.empty() && mOpen.back() == kind);
        mOpen.pop_back();
    }
    std::vector<char> mOpen;
};

// Removed when the fuzzer exits normally. In memory where possible: the
// library writes files atomically, with a sync, which costs most of a run on
// a disk.
QTemporaryDir &Root()
{
    static QTemporaryDir root(QDir(QStringLiteral("/dev/shm")).exists()
                                  ? QStringLiteral("/dev/shm/kivfuzz-XXXXXX")
                                  : QDir::tempPath() + QStringLiteral("/kivfuzz-XXXXXX"));
    return root;
}

QString DataFolder()
{
    return Root().filePath(QStringLiteral("data"));
}

void Schemas(std::string const &bytes)
{
    std::u16string const folder = CustomDefinitionsUserDirectory();
    Write(Q(folder) + QStringLiteral("/fuzz.xml"), bytes);
    LoadSchemaDefinitionsFromFolder(folder, true);
    // Only the standard schemas stay registered from one input to the next
    // (types and the toolkit's namespaces cannot be unregistered).
    for (auto const &schema : GetSchemaDefinitions())
        if (schema->IsCustom()) UnregisterSchemaDefinition(schema->mNamespace);
}

void Panels(std::string const &bytes)
{
    std::u16string const folder = UserPanelDirectory();
    QString const path = Q(folder) + QStringLiteral("/fuzz.xml");
    Write(path, bytes);
    LoadViewDefinitionsFromFolder(folder);
    if (auto view = ParseViewDefinition(bytes, path.toStdU16String())) {
        NestingBuilder builder;
        REQUIRE(BuildView(view, builder));
    }
}

void ViewSettings(std::string const &bytes)
{
    QString const path = Q(ViewSettingsDirectory()) + QStringLiteral("/fuzz.xmp_view_settings.xml");
    Write(path, bytes);
    std::set<Path> paths;
    if (!ReadIncludedLeafPathsAsXMLFile(paths, path.toStdU16String())) return;
    std::string text;
    REQUIRE(IncludedLeafPathsAsXMLString(paths, text));
    std::set<Path> back;
    REQUIRE(ReadIncludedLeafPathsAsXMLString(back, text) && back == paths);
}

void RecentEntries(std::string const &bytes)
{
    // The lists are read once per folder: look at another folder first.
    SetUserDataDirectory(Root().filePath(QStringLiteral("elsewhere")).toStdU16String());
    GetMRUList("dc:subject");
    SetUserDataDirectory(DataFolder().toStdU16String());
    Write(DataFolder() + QStringLiteral("/mru/mru.xml"), bytes);
    REQUIRE(GetMRUList("dc:subject").size() <= kMRUListLength);
}

void Template(std::string const &bytes)
{
    Write(Q(TemplateDirectory()) + QStringLiteral("/fuzz.xmp"), bytes);
    LoadTemplate(u"fuzz");
}

void GenericPanels(std::string const &bytes, kivmetadata::utility::GXVersion version)
{
    using namespace kivmetadata::utility;
    QString const folder = Q(GenericPanelsDirectory(version));
    Write(folder + (version == kGXVersion_GX4 ? QStringLiteral("/fuzz.txt") : QStringLiteral("/fuzz.xml")), bytes);
    std::u16string report;
    LoadAndConvertGenericPanels(version, report);
    QDir const panels(Q(UserPanelDirectory()));
    for (QString const &name : panels.entryList({QStringLiteral("*.xml")}, QDir::Files)) {
        QFile file(panels.filePath(name));
        REQUIRE(file.open(QIODevice::ReadOnly));
        QByteArray const converted = file.readAll();
        REQUIRE(ParseViewDefinition(converted.toStdString(), panels.filePath(name).toStdU16String()) != nullptr);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    REQUIRE(Root().isValid());
    for (char const *variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
        qputenv(variable, Root().filePath(QString::fromLatin1(variable)).toUtf8());
    SetUserDataDirectory(DataFolder().toStdU16String());
    REQUIRE(Initialize());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    if (size == 0) return 0;
    std::string const bytes(reinterpret_cast<char const *>(data) + 1, size - 1);
    QDir(DataFolder()).removeRecursively();
    SetUserDataDirectory(DataFolder().toStdU16String());
    switch (data[0] % 8) {
    case 0:
        Schemas(bytes);
        break;
    case 1:
        Panels(bytes);
        break;
    case 2:
        ViewSettings(bytes);
        break;
    case 3:
        RecentEntries(bytes);
        break;
    case 4:
        Template(bytes);
        break;
    case 5:
        GenericPanels(bytes, utility::kGXVersion_GX6);
        break;
    case 6:
        GenericPanels(bytes, utility::kGXVersion_GX5);
        break;
    case 7:
        GenericPanels(bytes, utility::kGXVersion_GX4);
        break;
    }
    return 0;
}
