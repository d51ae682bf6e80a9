#include <kivmetadata/Templates.h>

#include "PacketLimits_p.h"
#include "Registry_p.h"

#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/MetaDataProvider.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/UserFolders.h>
#include <kivmetadata/XMPMeta.h>

#include <kivcore/FileUtils.h>
#include <kivcore/StringUtils.h>

#include <QDir>

namespace kivmetadata {

using namespace detail;
using kivcore::utility::FileUtils;

namespace {

constexpr char16_t kSuffix[] = u".xmp";

std::u16string TemplateFile(std::u16string const &name)
{
    return TemplateDirectory() + u"/" + FileUtils::ReplaceIllegalFileNameCharacters(name, u"-") + kSuffix;
}

} // namespace

std::u16string TemplateDirectory()
{
    std::u16string folder = UserSubdirectory(u"templates");
    if (folder.empty()) folder = UserDataDirectory() + u"/templates";
    return folder;
}

bool SaveTemplate(std::u16string const &name, XMPMeta const &meta, std::string *error)
{
    std::string const context = kivcore::utility::Utf16ToUtf8(TemplateFile(name));
    std::string message;
    if (kivcore::utility::Trim(name).empty()) message = "the template has no name";
    std::string packet;
    if (message.empty() && !meta.Serialize(packet, 0, 0, &message))
        message = "the metadata cannot be serialised: " + message;
    if (message.empty() && !FileUtils::SimpleWriteStringToFile(TemplateFile(name), packet, &message)) {
        if (message.empty()) message = "the file cannot be written";
    }
    if (!message.empty()) {
        AddErrorInfo("The template could not be saved: " + message + ".", context);
        if (error) *error = message;
        return false;
    }
    return true;
}

std::vector<std::u16string> GetTemplateNames()
{
    std::vector<std::u16string> names;
    std::u16string const suffix = kSuffix;
    for (auto const &file : FileUtils::ContainedFiles(TemplateDirectory()))
        if (file.size() > suffix.size() && file.ends_with(suffix))
            names.push_back(file.substr(0, file.size() - suffix.size()));
    return names;
}

std::unique_ptr<XMPMeta> LoadTemplate(std::u16string const &name, std::string *error)
{
    std::u16string const path = TemplateFile(name);
    std::string bytes, message;
    std::unique_ptr<XMPMeta> meta;
    if (!ReadWholeFile(ToQString(path), bytes, &message))
        message = "the file cannot be read: " + message;
    else if (std::string refusal = PacketRefusal(bytes); !refusal.empty())
        message = refusal;
    else if (!(meta = XMPMeta::Parse(bytes, &message)))
        message = "the packet is malformed: " + message;
    if (!meta) {
        AddErrorInfo("The template could not be loaded: " + message + ".", kivcore::utility::Utf16ToUtf8(path));
        if (error) *error = message;
    }
    return meta;
}

bool DeleteTemplate(std::u16string const &name)
{
    return FileUtils::RemoveFile(TemplateFile(name));
}

bool ApplyTemplate(XMPMeta &source, XMPMeta const &templ, TemplateImportOptions options)
{
    switch (options) {
    case kTemplateImport_ClearAndReplace:
        RemoveProperties(source, {}, {}, kUtilDoAllProperties);
        AppendProperties(templ, source, kUtilDoAllProperties | kUtilReplaceOldValues);
        return true;
    case kTemplateImport_KeepAndReplace:
        AppendProperties(templ, source, kUtilDoAllProperties | kUtilReplaceOldValues);
        return true;
    case kTemplateImport_KeepAndAppend:
        AppendProperties(templ, source, kUtilDoAllProperties);
        return true;
    }
    AddErrorInfo("Unknown template import option " + std::to_string(int(options)) + ".", "template");
    return false;
}

bool ApplyTemplate(std::shared_ptr<MetaDataProvider> const &source, XMPMeta const &templ, TemplateImportOptions options)
{
    if (!source) return false;
    MetaDataUpdateAccess access(source);
    bool ok = true;
    auto const metas = source->AllMetas();
    for (XMPMeta *meta : metas)
        ok = ApplyTemplate(*meta, templ, options) && ok;
    if (!metas.empty()) access.AddChange(Path{});
    return ok && !metas.empty();
}

} // namespace kivmetadata
