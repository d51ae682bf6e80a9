#include <kivmetadata/ViewDefinitions.h>

#include "Log_p.h"
#include "PacketLimits_p.h"
#include "Registry_p.h"

#include <kivmetadata/Definitions.h>
#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/PropertyDefinition.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/UserFolders.h>
#include <kivmetadata/ViewBuilderInterface.h>
#include <kivmetadata/ViewDefinition.h>
#include <kivmetadata/XMPMeta.h>

#include <kivcore/StringUtils.h>

#include <QDir>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <array>
#include <set>

namespace kivmetadata {

using namespace detail;

namespace {

constexpr char kPanelXmlns[] = "urn:kivmetadata:panel:1";
constexpr int kMaxStructDepth = 16;

struct ViewRegistry {
    std::vector<std::shared_ptr<ViewDefinition>> mViews;
    std::set<std::pair<std::string, std::string>> mReported; // (view, path) already in the error list
};

ViewRegistry &Views()
{
    static ViewRegistry registry;
    return registry;
}

std::string Utf8(QStringView text)
{
    return text.toString().toStdString();
}

// Resolves the prefix of a panel path to a namespace and the prefix the XMP
// toolkit uses for it. Empty namespace when the prefix is unknown.
Path ResolvePanelPath(std::string const &text)
{
    std::size_t const colon = text.find(':');
    if (colon == std::string::npos || colon == 0) return Path{{}, text};
    std::string const prefix = text.substr(0, colon);
    std::string ns;
    if (auto schema = SchemaDefinitionForPrefix(prefix)) ns = schema->mNamespace;
    if (ns.empty()) ns = XMPMeta::NamespaceForPrefix(prefix);
    if (ns.empty()) return Path{{}, text};
    std::string registered = XMPMeta::PrefixForNamespace(ns);
    if (registered.empty()) registered = prefix;
    return Path{ns, registered + text.substr(colon)};
}

int PanelRank(std::string const &name)
{
    std::string key;
    for (char c : name)
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))
            key += c;
        else if (c >= 'A' && c <= 'Z')
            key += static_cast<char>(c - 'A' + 'a');
    static constexpr std::array<char const *, 8> kOrder{"description", "iptccore", "iptcext", "camera",
                                                        "gps",         "origin",   "rights",  "audio"};
    for (std::size_t i = 0; i < kOrder.size(); ++i)
        if (key.rfind(kOrder[i], 0) == 0) return static_cast<int>(i);
    return static_cast<int>(kOrder.size());
}

class PanelReader {
public:
    explicit PanelReader(std::string_view xml)
        : mReader(QByteArray::fromRawData(xml.data(), static_cast<qsizetype>(xml.size())))
    {
    }

    std::shared_ptr<ViewDefinition> Read(std::string &error)
    {
        if (!mReader.readNextStartElement() || mReader.name() != u"panel") {
            error = mReader.hasError() ? mReader.errorString().toStdString() : "the root element is not <panel>";
            return nullptr;
        }
        auto view = std::make_shared<ViewDefinition>();
        view->mName = Utf8(mReader.attributes().value(QLatin1String("name")));
        view->mLabel = Utf8(mReader.attributes().value(QLatin1String("label")));
        if (view->mName.empty()) {
            error = "the panel has no name";
            return nullptr;
        }
        if (view->mLabel.empty()) view->mLabel = view->mName;
        if (!ReadItems(view->mItems, error, 0)) return nullptr;
        if (mReader.hasError()) {
            error = mReader.errorString().toStdString();
            return nullptr;
        }
        return view;
    }

private:
    bool ReadItems(std::vector<std::shared_ptr<ViewItem>> &items, std::string &error, int depth)
    {
        while (mReader.readNextStartElement()) {
            auto const name = mReader.name();
            auto item = std::make_shared<ViewItem>();
            if (name == u"section") {
                if (depth > 0) {
                    error = "a section inside a section (line " + std::to_string(mReader.lineNumber()) + ")";
                    return false;
                }
                item->mKind = ViewItem::Kind::kSection;
                item->mLabel = Utf8(mReader.attributes().value(QLatin1String("label")));
                for (auto const &attribute : mReader.attributes())
                    if (attribute.name() != u"label")
                        item->mAttributes[Utf8(attribute.name())] = Utf8(attribute.value());
                if (!ReadItems(item->mChildren, error, depth + 1)) return false;
            } else if (name == u"property" || name == u"struct" || name == u"array") {
                item->mKind = name == u"property" ? ViewItem::Kind::kProperty
                              : name == u"struct" ? ViewItem::Kind::kStruct
                                                  : ViewItem::Kind::kArray;
                std::string const path = Utf8(mReader.attributes().value(QLatin1String("path")));
                if (path.empty()) {
                    error = "a <" + Utf8(name) + "> without path (line " + std::to_string(mReader.lineNumber()) + ")";
                    return false;
                }
                item->mPath = ResolvePanelPath(path);
                for (auto const &attribute : mReader.attributes()) {
                    if (attribute.name() == u"path") continue;
                    if (attribute.name() == u"label")
                        item->mLabel = Utf8(attribute.value());
                    else
                        item->mAttributes[Utf8(attribute.name())] = Utf8(attribute.value());
                }
                while (mReader.readNextStartElement()) {
                    if (mReader.name() == u"choice") {
                        Choice choice;
                        choice.mRawValue = Utf8(mReader.attributes().value(QLatin1String("value")));
                        choice.mDisplay = Utf8(mReader.attributes().value(QLatin1String("label")));
                        if (choice.mDisplay.empty()) choice.mDisplay = choice.mRawValue;
                        item->mChoices.push_back(std::move(choice));
                    }
                    mReader.skipCurrentElement();
                }
            } else {
                mReader.skipCurrentElement();
                continue;
            }
            items.push_back(std::move(item));
        }
        return !mReader.hasError();
    }

    QXmlStreamReader mReader;
};

void WriteItem(QXmlStreamWriter &writer, ViewItem const &item)
{
    switch (item.mKind) {
    case ViewItem::Kind::kSection:
        writer.writeStartElement(QStringLiteral("section"));
        break;
    case ViewItem::Kind::kProperty:
        writer.writeStartElement(QStringLiteral("property"));
        break;
    case ViewItem::Kind::kStruct:
        writer.writeStartElement(QStringLiteral("struct"));
        break;
    case ViewItem::Kind::kArray:
        writer.writeStartElement(QStringLiteral("array"));
        break;
    }
    if (item.mKind != ViewItem::Kind::kSection)
        writer.writeAttribute(QStringLiteral("path"), QString::fromStdString(item.mPath.mPath));
    if (!item.mLabel.empty()) writer.writeAttribute(QStringLiteral("label"), QString::fromStdString(item.mLabel));
    for (auto const &[key, value] : item.mAttributes)
        writer.writeAttribute(QString::fromStdString(key), QString::fromStdString(value));
    for (auto const &choice : item.mChoices) {
        writer.writeEmptyElement(QStringLiteral("choice"));
        writer.writeAttribute(QStringLiteral("value"), QString::fromStdString(choice.mRawValue));
        writer.writeAttribute(QStringLiteral("label"), QString::fromStdString(choice.mDisplay));
    }
    for (auto const &child : item.mChildren)
        if (child) WriteItem(writer, *child);
    writer.writeEndElement();
}

void ReportOnce(ViewDefinition const &view, std::string const &path, std::string const &message)
{
    if (!Views().mReported.insert({view.mName, path}).second) return;
    std::string context = "panel " + view.mName;
    if (!view.mFilePath.empty()) context += " (" + kivcore::utility::Utf16ToUtf8(view.mFilePath) + ")";
    AddErrorInfo(message, context);
}

class Walker {
public:
    Walker(ViewDefinition const &view, ViewBuilderInterface &builder) : mView(view), mBuilder(builder) {}

    void Item(std::shared_ptr<ViewItem> const &item, int depth)
    {
        if (!item) return;
        if (item->mKind == ViewItem::Kind::kSection) {
            if (depth > 0) return; // sections nest only at the top
            mBuilder.BeginSection(*item);
            for (auto const &child : item->mChildren)
                Item(child, depth + 1);
            mBuilder.EndSection();
            return;
        }
        if (item->mPath.mNamespace.empty()) {
            Path resolved = ResolvePanelPath(item->mPath.mPath);
            if (resolved.mNamespace.empty()) {
                ReportOnce(mView, item->mPath.mPath, "The panel names an unknown property " + item->mPath.mPath + ".");
                return;
            }
            item->mPath = std::move(resolved);
        }
        if (IsPropertyExcludedForClient(item->mPath)) return;
        auto definition = PathEntryDefinition(item->mPath);
        if (!definition) {
            ReportOnce(mView, item->mPath.mPath, "The panel names an unknown property " + item->mPath.mPath + ".");
            return;
        }
        bool const structItems = definition->IsArray() && definition->mItemForm == ValueForm::kStruct;
        if (definition->IsStruct()) {
            if (depth > kMaxStructDepth) return;
            mBuilder.BeginStruct(item, *definition);
            for (auto const &field : definition->mFields) {
                if (!field) continue;
                auto fieldItem = std::make_shared<ViewItem>();
                fieldItem->mPath = CreatePathFromStructField(item->mPath, *field);
                fieldItem->mKind = field->IsStruct() ? ViewItem::Kind::kStruct
                                   : (field->IsArray() && field->mItemForm == ValueForm::kStruct)
                                       ? ViewItem::Kind::kArray
                                       : ViewItem::Kind::kProperty;
                if (item->HasAttribute("readOnly")) fieldItem->mAttributes["readOnly"] = item->Attribute("readOnly");
                Item(fieldItem, depth + 1);
            }
            mBuilder.EndStruct();
        } else if (item->mKind == ViewItem::Kind::kArray || structItems) {
            mBuilder.AddArray(item, *definition);
        } else {
            mBuilder.AddProperty(item, *definition);
        }
    }

private:
    ViewDefinition const &mView;
    ViewBuilderInterface &mBuilder;
};

} // namespace

ViewBuilderInterface::~ViewBuilderInterface() = default;
void ViewBuilderInterface::BeginView(ViewDefinition const &) {}
void ViewBuilderInterface::EndView() {}

std::shared_ptr<ViewDefinition> GetViewDefinitionForName(std::string const &name)
{
    for (auto const &view : Views().mViews)
        if (view->mName == name) return view;
    return nullptr;
}

std::vector<std::shared_ptr<ViewDefinition>> GetViewDefinitions()
{
    auto views = Views().mViews;
    std::stable_sort(views.begin(), views.end(), [](auto const &a, auto const &b) {
        int const ra = PanelRank(a->mName), rb = PanelRank(b->mName);
        if (ra != rb) return ra < rb;
        return ra == 8 && a->mName < b->mName;
    });
    return views;
}

void RegisterViewDefinition(std::shared_ptr<ViewDefinition> const &definition)
{
    if (!definition) return;
    auto &views = Views().mViews;
    for (auto &view : views) {
        if (view->mName == definition->mName) {
            view = definition;
            return;
        }
    }
    views.push_back(definition);
}

std::u16string UserPanelDirectory()
{
    std::u16string folder = UserSubdirectory(u"panels");
    if (folder.empty()) folder = UserDataDirectory() + u"/panels";
    return folder;
}

std::shared_ptr<ViewDefinition> ParseViewDefinition(std::string_view xml, std::u16string const &filePath,
                                                    std::string *error)
{
    std::string message = XmlRefusal(xml, XmlKind::kUserFile);
    std::shared_ptr<ViewDefinition> view;
    if (message.empty()) {
        PanelReader reader(xml);
        view = reader.Read(message);
    }
    if (!view) {
        AddErrorInfo("The panel could not be read: " + message + ".", kivcore::utility::Utf16ToUtf8(filePath));
        if (error) *error = message;
        return nullptr;
    }
    return view;
}

std::string ViewDefinitionAsXMLString(ViewDefinition const &definition)
{
    QByteArray bytes;
    QXmlStreamWriter writer(&bytes);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(2);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("panel"));
    writer.writeDefaultNamespace(QLatin1String(kPanelXmlns));
    writer.writeAttribute(QStringLiteral("name"), QString::fromStdString(definition.mName));
    writer.writeAttribute(QStringLiteral("label"), QString::fromStdString(definition.mLabel));
    for (auto const &item : definition.mItems)
        if (item) WriteItem(writer, *item);
    writer.writeEndElement();
    writer.writeEndDocument();
    return bytes.toStdString();
}

int LoadViewDefinitionsFromFolder(std::u16string const &folder)
{
    QDir dir(ToQString(folder));
    int count = 0;
    bool const user = !folder.starts_with(u":");
    for (QString const &name : dir.entryList({QStringLiteral("*.xml")}, QDir::Files, QDir::Name)) {
        std::string bytes, error;
        QString const path = dir.filePath(name);
        if (!ReadWholeFile(path, bytes, &error)) {
            AddErrorInfo("The panel file could not be read: " + error + ".", path.toStdString());
            continue;
        }
        auto view = ParseViewDefinition(bytes, ToU16(path));
        if (!view) continue;
        if (user) view->mFilePath = ToU16(path);
        RegisterViewDefinition(view);
        ++count;
    }
    return count;
}

void detail::ClearViewDefinitions()
{
    Views().mViews.clear();
    Views().mReported.clear();
}

void detail::LoadAllViewDefinitions()
{
    LoadViewDefinitionsFromFolder(u":/kivmetadata/panels");
    QString const user = ToQString(UserDataDirectory()) + QStringLiteral("/panels");
    if (QDir(user).exists()) LoadViewDefinitionsFromFolder(ToU16(user));
}

bool BuildView(std::shared_ptr<ViewDefinition> const &definition, ViewBuilderInterface &builder)
{
    if (!definition) return false;
    Walker walker(*definition, builder);
    builder.BeginView(*definition);
    for (auto const &item : definition->mItems)
        walker.Item(item, 0);
    builder.EndView();
    return true;
}

} // namespace kivmetadata
