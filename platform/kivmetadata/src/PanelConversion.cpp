#include <kivmetadata/PanelConversion.h>

#include "PacketLimits_p.h"
#include "Registry_p.h"

#include <kivmetadata/Definitions.h>
#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/UserFolders.h>
#include <kivmetadata/ViewDefinition.h>
#include <kivmetadata/ViewDefinitions.h>
#include <kivmetadata/XMPMeta.h>

#include <kivcore/FileUtils.h>
#include <kivcore/StringUtils.h>

#include <QDir>
#include <QXmlStreamReader>

#include <algorithm>
#include <map>

namespace kivmetadata::utility {

using namespace kivmetadata::detail;
using kivcore::utility::Utf8ToUtf16;

namespace {

char16_t const *VersionFolder(GXVersion version)
{
    switch (version) {
    case kGXVersion_GX6:
        return u"GX6";
    case kGXVersion_GX5:
        return u"GX5";
    case kGXVersion_GX4:
        return u"GX4";
    }
    return u"GX4";
}

// One field of an older panel, whatever its version.
struct OldField {
    std::string mNamespace; // URI, or empty with mQualified "prefix:name"
    std::string mQualified;
    std::string mName;
    std::string mWidget;
    std::string mLabel;
    std::string mLines;
    bool mReadOnly = false;
    std::vector<Choice> mChoices;
    int mLine = 0;
};

struct OldGroup {
    std::string mLabel;
    std::vector<OldField> mFields;
};

struct OldPanel {
    std::string mName;
    std::string mLabel;
    std::vector<OldGroup> mGroups;
};

std::string Utf8(QStringView text)
{
    return text.toString().toStdString();
}

// GX6 and GX5 panels are XML; GX6 names namespaces by URI on each field,
// GX5 by prefixes declared in <namespace> elements.
bool ReadXmlPanel(std::string const &bytes, GXVersion version, OldPanel &panel, std::string &error)
{
    if (error = XmlRefusal(bytes, XmlKind::kUserFile); !error.empty()) return false;
    QXmlStreamReader reader(QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())));
    if (!reader.readNextStartElement() || reader.name() != u"genericPanel") {
        error = reader.hasError() ? reader.errorString().toStdString() : "the root element is not <genericPanel>";
        return false;
    }
    panel.mName = Utf8(reader.attributes().value(QLatin1String("name")));
    panel.mLabel = Utf8(reader.attributes().value(QLatin1String("title")));
    std::map<std::string, std::string> prefixes;
    while (reader.readNextStartElement()) {
        if (reader.name() == u"namespace") {
            prefixes[Utf8(reader.attributes().value(QLatin1String("prefix")))] =
                Utf8(reader.attributes().value(QLatin1String("uri")));
            reader.skipCurrentElement();
        } else if (reader.name() == u"group") {
            OldGroup group;
            group.mLabel = Utf8(reader.attributes().value(QLatin1String("title")));
            while (reader.readNextStartElement()) {
                if (reader.name() != u"field") {
                    reader.skipCurrentElement();
                    continue;
                }
                OldField field;
                auto const a = reader.attributes();
                field.mLine = static_cast<int>(reader.lineNumber());
                if (version == kGXVersion_GX6) {
                    field.mNamespace = Utf8(a.value(QLatin1String("ns")));
                    field.mName = Utf8(a.value(QLatin1String("name")));
                } else {
                    field.mQualified = Utf8(a.value(QLatin1String("property")));
                    auto const colon = field.mQualified.find(':');
                    if (colon != std::string::npos) {
                        auto it = prefixes.find(field.mQualified.substr(0, colon));
                        if (it != prefixes.end()) field.mNamespace = it->second;
                        field.mName = field.mQualified.substr(colon + 1);
                    }
                }
                field.mWidget = Utf8(a.value(QLatin1String("widget")));
                field.mLabel = Utf8(a.value(QLatin1String("title")));
                field.mLines = Utf8(a.value(QLatin1String("lines")));
                field.mReadOnly = a.value(QLatin1String("readonly")) == u"true";
                while (reader.readNextStartElement()) {
                    if (reader.name() == u"option") {
                        Choice choice{Utf8(reader.attributes().value(QLatin1String("value"))),
                                      Utf8(reader.attributes().value(QLatin1String("title")))};
                        if (choice.mDisplay.empty()) choice.mDisplay = choice.mRawValue;
                        field.mChoices.push_back(std::move(choice));
                    }
                    reader.skipCurrentElement();
                }
                group.mFields.push_back(std::move(field));
            }
            panel.mGroups.push_back(std::move(group));
        } else {
            reader.skipCurrentElement();
        }
    }
    if (reader.hasError()) {
        error = reader.errorString().toStdString() + " (line " + std::to_string(reader.lineNumber()) + ")";
        return false;
    }
    return true;
}

// GX4 panels are text: "key: value" lines.
bool ReadTextPanel(std::string const &bytes, OldPanel &panel, std::string &error)
{
    QString const text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
    int lineNumber = 0;
    for (QString const &rawLine : text.split(QLatin1Char('\n'))) {
        ++lineNumber;
        QString const line = rawLine.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) continue;
        // The converted panel is XML, which cannot hold these.
        if (std::any_of(line.begin(), line.end(), [](QChar c) {
                return (c.unicode() < 0x20 && c != u'\t') || c.unicode() == 0xFFFE || c.unicode() == 0xFFFF;
            })) {
            error = "line " + std::to_string(lineNumber) + " has a character that panel files cannot hold";
            return false;
        }
        int const colon = line.indexOf(QLatin1Char(':'));
        if (colon <= 0) {
            error = "line " + std::to_string(lineNumber) + " is not \"key: value\"";
            return false;
        }
        QString const key = line.left(colon).trimmed().toLower();
        QString const value = line.mid(colon + 1).trimmed();
        if (key == u"panel") {
            panel.mName = value.toStdString();
        } else if (key == u"title") {
            panel.mLabel = value.toStdString();
        } else if (key == u"group") {
            panel.mGroups.push_back(OldGroup{value.toStdString(), {}});
        } else if (key == u"field") {
            // field: prefix:name | widget | title | options (v1=Label1, v2=Label2)
            QStringList const parts = value.split(QLatin1Char('|'));
            OldField field;
            field.mLine = lineNumber;
            field.mQualified = parts.value(0).trimmed().toStdString();
            auto const c = field.mQualified.find(':');
            if (c != std::string::npos) field.mName = field.mQualified.substr(c + 1);
            field.mWidget = parts.value(1).trimmed().toStdString();
            field.mLabel = parts.value(2).trimmed().toStdString();
            for (QString const &option : parts.value(3).split(QLatin1Char(','), Qt::SkipEmptyParts)) {
                int const eq = option.indexOf(QLatin1Char('='));
                Choice choice;
                choice.mRawValue = (eq < 0 ? option : option.left(eq)).trimmed().toStdString();
                choice.mDisplay = (eq < 0 ? option : option.mid(eq + 1)).trimmed().toStdString();
                field.mChoices.push_back(std::move(choice));
            }
            if (panel.mGroups.empty()) panel.mGroups.push_back(OldGroup{});
            panel.mGroups.back().mFields.push_back(std::move(field));
        } else {
            error = "unknown key \"" + key.toStdString() + "\" on line " + std::to_string(lineNumber);
            return false;
        }
    }
    return true;
}

std::shared_ptr<ViewDefinition> Convert(OldPanel const &panel, std::u16string &report, int &skipped)
{
    auto view = std::make_shared<ViewDefinition>();
    view->mName = panel.mName;
    view->mLabel = panel.mLabel.empty() ? panel.mName : panel.mLabel;
    for (auto const &group : panel.mGroups) {
        auto section = std::make_shared<ViewItem>();
        section->mKind = ViewItem::Kind::kSection;
        section->mLabel = group.mLabel;
        for (auto const &field : group.mFields) {
            Path path;
            if (!field.mNamespace.empty() && !field.mName.empty()) {
                path = PathForSchemaNameAndPropertyName(field.mNamespace, field.mName);
            } else if (!field.mQualified.empty()) {
                auto const colon = field.mQualified.find(':');
                auto schema =
                    colon == std::string::npos ? nullptr : SchemaDefinitionForPrefix(field.mQualified.substr(0, colon));
                if (schema) path = PathForSchemaNameAndPropertyName(schema->mNamespace, field.mName);
            }
            auto definition = path.mNamespace.empty() ? nullptr : PathEntryDefinition(path);
            std::string const shown = field.mQualified.empty() ? field.mNamespace + field.mName : field.mQualified;
            if (!definition) {
                ++skipped;
                report += u"    skipped " + Utf8ToUtf16(shown) + u" (line " + Utf8ToUtf16(std::to_string(field.mLine)) +
                          u"): unknown property\n";
                continue;
            }
            auto item = std::make_shared<ViewItem>();
            item->mPath = path;
            item->mLabel = field.mLabel;
            item->mChoices = field.mChoices;
            item->mKind = definition->IsStruct() ? ViewItem::Kind::kStruct
                          : (definition->IsArray() && definition->mItemForm == ValueForm::kStruct)
                              ? ViewItem::Kind::kArray
                              : ViewItem::Kind::kProperty;
            if (field.mWidget == "dropdown" || field.mWidget == "popup") item->mAttributes["dropdown"] = "true";
            if (field.mWidget == "combo") {
                item->mAttributes["dropdown"] = "true";
                item->mAttributes["openChoice"] = "true";
            }
            if (field.mWidget == "rating" || field.mWidget == "stars") {
                item->mAttributes["rating"] = "true";
                item->mAttributes["size"] = "16";
            }
            if (field.mWidget == "multiline")
                item->mAttributes["multiLines"] = field.mLines.empty() ? "3" : field.mLines;
            if (field.mReadOnly || field.mWidget == "static") item->mAttributes["readOnly"] = "true";
            if (item->HasAttribute("dropdown") && item->mChoices.empty() && definition->mChoices.empty()) {
                item->mAttributes.erase("dropdown");
                item->mAttributes.erase("openChoice");
                report += u"    " + Utf8ToUtf16(shown) + u": a drop-down list without entries became a text field\n";
            }
            section->mChildren.push_back(std::move(item));
        }
        view->mItems.push_back(std::move(section));
    }
    return view;
}

} // namespace

std::u16string GenericPanelsDirectory(GXVersion version)
{
    return UserDataDirectory() + u"/generic_panels/" + VersionFolder(version);
}

bool LoadAndConvertGenericPanels(GXVersion version, std::u16string &report)
{
    report.clear();
    std::u16string const folder = GenericPanelsDirectory(version);
    std::u16string const versionName = VersionFolder(version);
    QDir const dir(ToQString(folder));
    QStringList const files = dir.entryList(version == kGXVersion_GX4 ? QStringList{QStringLiteral("*.txt")}
                                                                      : QStringList{QStringLiteral("*.xml")},
                                            QDir::Files, QDir::Name);
    if (!dir.exists() || files.isEmpty()) {
        report = u"No " + versionName + u" Generic Panels found in " + folder + u".\n";
        return true;
    }
    report = u"Converting " + Utf8ToUtf16(std::to_string(files.size())) + u" " + versionName +
             u" Generic Panel file(s) from " + folder + u"\n";
    int failed = 0, converted = 0;
    for (QString const &name : files) {
        std::u16string const file = ToU16(name);
        std::string bytes, error;
        OldPanel panel;
        bool ok = ReadWholeFile(dir.filePath(name), bytes, &error);
        if (ok)
            ok = version == kGXVersion_GX4 ? ReadTextPanel(bytes, panel, error)
                                           : ReadXmlPanel(bytes, version, panel, error);
        if (ok && panel.mName.empty()) {
            ok = false;
            error = "the panel has no name";
        }
        if (!ok) {
            ++failed;
            report += u"FAILED " + file + u": " + Utf8ToUtf16(error) + u"\n";
            AddErrorInfo("The Generic Panel could not be converted: " + error + ".", dir.filePath(name).toStdString());
            continue;
        }
        int skipped = 0;
        std::u16string details;
        auto view = Convert(panel, details, skipped);
        std::u16string const target =
            UserPanelDirectory() + u"/" +
            kivcore::utility::FileUtils::ReplaceIllegalFileNameCharacters(Utf8ToUtf16(panel.mName), u"-") + u".xml";
        view->mFilePath = target;
        if (!kivcore::utility::FileUtils::SimpleWriteStringToFile(target, ViewDefinitionAsXMLString(*view), &error)) {
            ++failed;
            report +=
                u"FAILED " + file + u": the panel cannot be written to " + target + u" (" + Utf8ToUtf16(error) + u")\n";
            AddErrorInfo("The converted panel could not be written: " + error + ".",
                         kivcore::utility::Utf16ToUtf8(target));
            continue;
        }
        RegisterViewDefinition(view);
        ++converted;
        report += u"Converted " + file + u" to panel \"" + Utf8ToUtf16(panel.mName) + u"\" (" + target + u")";
        if (skipped) report += u", " + Utf8ToUtf16(std::to_string(skipped)) + u" field(s) skipped";
        report += u"\n" + details;
    }
    report += u"Done: " + Utf8ToUtf16(std::to_string(converted)) + u" converted, " +
              Utf8ToUtf16(std::to_string(failed)) + u" failed.\n";
    return failed == 0;
}

} // namespace kivmetadata::utility
