#include <kivmetadata/Definitions.h>

#include "Log_p.h"
#include "PacketLimits_p.h"
#include "Registry_p.h"

#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/UserFolders.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadata/XMPMeta.h>

#include <kivcore/Assert.h>
#include <kivcore/FileUtils.h>
#include <kivcore/StringUtils.h>

#include <QDir>
#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <array>

namespace kivmetadata {

using namespace detail;

namespace detail {

Registry &TheRegistry()
{
    static Registry registry;
    return registry;
}

void ClearDefinitions()
{
    auto &r = TheRegistry();
    r.mSchemas.clear();
    r.mByNamespace.clear();
    r.mTypes.clear();
    r.mDynamic.clear();
    r.mExcluded.clear();
    r.mForcedWritable = false;
}

QString ToQString(std::u16string const &text)
{
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

std::u16string ToU16(QString const &text)
{
    return text.toStdU16String();
}

bool ReadWholeFile(QString const &path, std::string &bytes, std::string *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error) *error = file.errorString().toStdString();
        return false;
    }
    if (std::string refusal = SizeRefusal(std::uint64_t(file.size()), XmlKind::kUserFile); !refusal.empty()) {
        if (error) *error = std::move(refusal);
        return false;
    }
    QByteArray data = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        if (error) *error = file.errorString().toStdString();
        return false;
    }
    bytes.assign(data.constData(), static_cast<std::size_t>(data.size()));
    return true;
}

void CompleteProperty(PropertyDefinition &property, std::string const &ns, std::string const &prefix)
{
    if (property.mNamespace.empty()) {
        property.mNamespace = ns;
        property.mPrefix = prefix;
    } else if (property.mNamespace == ns) {
        property.mPrefix = prefix;
    } else {
        std::string registered = XMPMeta::PrefixForNamespace(property.mNamespace);
        if (registered.empty() && !property.mPrefix.empty())
            XMPMeta::RegisterNamespace(property.mNamespace, property.mPrefix, &registered);
        if (!registered.empty()) property.mPrefix = registered;
    }
    bool const structured =
        property.mForm == ValueForm::kStruct || (property.IsArray() && property.mItemForm == ValueForm::kStruct);
    if (!structured && !property.mPrimitiveType) {
        auto type = TypeIdDefinition(property.mTypeId);
        property.mPrimitiveType = type && type->mPrimitiveType ? *type->mPrimitiveType : kPrimitiveType_Text;
    }
    if (structured) property.mPrimitiveType.reset();
    for (auto &field : property.mFields) {
        if (field) CompleteProperty(*field, property.mNamespace, property.mPrefix);
    }
}

} // namespace detail

namespace {

constexpr char kSchemaXmlns[] = "urn:kivmetadata:schema:1";
constexpr char kCustomNamespaceBase[] = "http://ns.kivmetadata.org/custom/";

std::optional<PrimitiveType> PrimitiveTypeFromName(QStringView name)
{
    static constexpr std::array<std::pair<char const *, PrimitiveType>, 9> kNames{{
        {"integer", kPrimitiveType_Integer},
        {"real", kPrimitiveType_Real},
        {"text", kPrimitiveType_Text},
        {"boolean", kPrimitiveType_Boolean},
        {"openChoice", kPrimitiveType_OpenChoice},
        {"closedChoice", kPrimitiveType_ClosedChoice},
        {"bag", kPrimitiveType_TextBag},
        {"seq", kPrimitiveType_TextSeq},
        {"langAlt", kPrimitiveType_LangAlt},
    }};
    for (auto const &[text, type] : kNames)
        if (name == QLatin1String(text)) return type;
    return std::nullopt;
}

std::optional<ValueForm> FormFromName(QStringView name)
{
    if (name.isEmpty() || name == u"simple") return ValueForm::kSimple;
    if (name == u"struct") return ValueForm::kStruct;
    if (name == u"bag") return ValueForm::kBag;
    if (name == u"seq") return ValueForm::kSeq;
    if (name == u"alt") return ValueForm::kAlt;
    if (name == u"langAlt") return ValueForm::kLangAlt;
    return std::nullopt;
}

char const *FormName(ValueForm form)
{
    switch (form) {
    case ValueForm::kSimple:
        return "simple";
    case ValueForm::kStruct:
        return "struct";
    case ValueForm::kBag:
        return "bag";
    case ValueForm::kSeq:
        return "seq";
    case ValueForm::kAlt:
        return "alt";
    case ValueForm::kLangAlt:
        return "langAlt";
    }
    return "simple";
}

std::optional<double> NumberAttribute(QXmlStreamAttributes const &attributes, char const *name, bool &bad)
{
    if (!attributes.hasAttribute(QLatin1String(name))) return std::nullopt;
    bool ok = false;
    double value = attributes.value(QLatin1String(name)).toDouble(&ok);
    if (!ok) {
        bad = true;
        return std::nullopt;
    }
    return value;
}

std::string Utf8(QStringView text)
{
    QByteArray const bytes = text.toUtf8();
    return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

// Reads <choice> children; the reader stands on the parent's start element.
class DefinitionReader {
public:
    explicit DefinitionReader(std::string_view xml)
        : mReader(QByteArray::fromRawData(xml.data(), static_cast<qsizetype>(xml.size())))
    {
        // Definition files use one default namespace and unprefixed names:
        // namespace processing would only cost time.
        mReader.setNamespaceProcessing(false);
    }

    std::shared_ptr<SchemaDefinition> ReadSchema(std::string *error)
    {
        if (!mReader.readNextStartElement()) return Fail(error, "no root element");
        if (mReader.name() != u"schema") return Fail(error, "the root element is not <schema>");
        auto schema = std::make_shared<SchemaDefinition>();
        auto const attributes = mReader.attributes();
        schema->mNamespace = Utf8(attributes.value(QLatin1String("namespace")));
        schema->mPrefix = Utf8(attributes.value(QLatin1String("prefix")));
        schema->mLabel = Utf8(attributes.value(QLatin1String("label")));
        schema->mDescription = Utf8(attributes.value(QLatin1String("description")));
        if (schema->mNamespace.empty() || schema->mPrefix.empty())
            return Fail(error, "<schema> needs a namespace and a prefix");
        if (schema->mLabel.empty()) schema->mLabel = schema->mPrefix;
        while (mReader.readNextStartElement()) {
            if (mReader.name() == u"property") {
                auto property = ReadProperty(schema->mNamespace, schema->mPrefix);
                if (!property) return Fail(error, mMessage);
                schema->mProperties.push_back(std::move(property));
            } else {
                mReader.skipCurrentElement();
            }
        }
        if (mReader.hasError()) return Fail(error, mReader.errorString().toStdString());
        return schema;
    }

    bool ReadTypes(std::vector<std::shared_ptr<TypeDefinition>> &types, std::string *error)
    {
        if (!mReader.readNextStartElement() || mReader.name() != u"types") {
            Fail(error, "the root element is not <types>");
            return false;
        }
        while (mReader.readNextStartElement()) {
            if (mReader.name() != u"type") {
                mReader.skipCurrentElement();
                continue;
            }
            auto type = std::make_shared<TypeDefinition>();
            auto const attributes = mReader.attributes();
            type->mId = Utf8(attributes.value(QLatin1String("id")));
            if (attributes.hasAttribute(QLatin1String("type"))) {
                type->mPrimitiveType = PrimitiveTypeFromName(attributes.value(QLatin1String("type")));
                if (!type->mPrimitiveType) {
                    Fail(error,
                         "unknown type \"" + Utf8(attributes.value(QLatin1String("type"))) + "\" of type " + type->mId);
                    return false;
                }
            }
            bool bad = false;
            type->mMinimum = NumberAttribute(attributes, "min", bad);
            type->mMaximum = NumberAttribute(attributes, "max", bad);
            if (bad || type->mId.empty()) {
                Fail(error,
                     "a <type> needs an id and numeric min/max (line " + std::to_string(mReader.lineNumber()) + ")");
                return false;
            }
            while (mReader.readNextStartElement()) {
                if (mReader.name() == u"choice")
                    type->mChoices.push_back(ReadChoice());
                else
                    mReader.skipCurrentElement();
            }
            types.push_back(std::move(type));
        }
        if (mReader.hasError()) {
            Fail(error, mReader.errorString().toStdString());
            return false;
        }
        return true;
    }

private:
    std::shared_ptr<SchemaDefinition> Fail(std::string *error, std::string message)
    {
        if (error) {
            *error = message;
            if (mReader.lineNumber() > 0) *error += " (line " + std::to_string(mReader.lineNumber()) + ")";
        }
        return nullptr;
    }

    Choice ReadChoice()
    {
        Choice choice;
        auto const attributes = mReader.attributes();
        choice.mRawValue = Utf8(attributes.value(QLatin1String("value")));
        choice.mDisplay = Utf8(attributes.value(QLatin1String("label")));
        if (choice.mDisplay.empty()) choice.mDisplay = choice.mRawValue;
        mReader.skipCurrentElement();
        return choice;
    }

    std::shared_ptr<PropertyDefinition> ReadProperty(std::string const &ns, std::string const &prefix)
    {
        auto property = std::make_shared<PropertyDefinition>();
        auto const attributes = mReader.attributes();
        property->mName = Utf8(attributes.value(QLatin1String("name")));
        if (property->mName.empty()) {
            mMessage = "a <" + Utf8(mReader.name()) + "> without name";
            return nullptr;
        }
        property->mNamespace = attributes.hasAttribute(QLatin1String("namespace"))
                                   ? Utf8(attributes.value(QLatin1String("namespace")))
                                   : ns;
        property->mPrefix =
            attributes.hasAttribute(QLatin1String("prefix")) ? Utf8(attributes.value(QLatin1String("prefix"))) : prefix;
        property->mLabel = Utf8(attributes.value(QLatin1String("label")));
        if (property->mLabel.empty()) property->mLabel = property->mName;
        property->mDescription = Utf8(attributes.value(QLatin1String("description")));
        auto form = FormFromName(attributes.value(QLatin1String("form")));
        auto itemForm = FormFromName(attributes.value(QLatin1String("itemForm")));
        if (!form || !itemForm || (*itemForm != ValueForm::kSimple && *itemForm != ValueForm::kStruct)) {
            mMessage = "unknown form of " + property->mName;
            return nullptr;
        }
        property->mForm = *form;
        property->mItemForm = *itemForm;
        if (attributes.hasAttribute(QLatin1String("type"))) {
            property->mPrimitiveType = PrimitiveTypeFromName(attributes.value(QLatin1String("type")));
            if (!property->mPrimitiveType) {
                mMessage =
                    "unknown type \"" + Utf8(attributes.value(QLatin1String("type"))) + "\" of " + property->mName;
                return nullptr;
            }
        }
        property->mTypeId = Utf8(attributes.value(QLatin1String("typeId")));
        bool bad = false;
        property->mMinimum = NumberAttribute(attributes, "min", bad);
        property->mMaximum = NumberAttribute(attributes, "max", bad);
        if (bad) {
            mMessage = "min/max of " + property->mName + " is not a number";
            return nullptr;
        }
        property->mInternal = attributes.value(QLatin1String("internal")) == u"true";
        while (mReader.readNextStartElement()) {
            if (mReader.name() == u"choice") {
                property->mChoices.push_back(ReadChoice());
            } else if (mReader.name() == u"field") {
                auto field = ReadProperty(property->mNamespace, property->mPrefix);
                if (!field) return nullptr;
                property->mFields.push_back(std::move(field));
            } else {
                mReader.skipCurrentElement();
            }
        }
        // Fields imply a struct (or struct items) even when the form was left out.
        if (!property->mFields.empty()) {
            if (property->mForm == ValueForm::kSimple) property->mForm = ValueForm::kStruct;
            if (property->IsArray()) property->mItemForm = ValueForm::kStruct;
        }
        return property;
    }

    QXmlStreamReader mReader;
    std::string mMessage;
};

int StandardRank(std::string const &prefix)
{
    static constexpr std::array<char const *, 13> kOrder{
        "dc",   "xmp",    "xmpRights", "xmpMM", "photoshop", "Iptc4xmpCore", "Iptc4xmpExt",
        "exif", "exifEX", "tiff",      "aux",   "pdf",       "crs"};
    for (std::size_t i = 0; i < kOrder.size(); ++i)
        if (prefix == kOrder[i]) return static_cast<int>(i);
    return static_cast<int>(kOrder.size());
}

void WriteProperty(QXmlStreamWriter &writer, PropertyDefinition const &property, bool isField,
                   std::string const &parentNs)
{
    writer.writeStartElement(QLatin1String(isField ? "field" : "property"));
    writer.writeAttribute(QStringLiteral("name"), QString::fromStdString(property.mName));
    if (!property.mNamespace.empty() && property.mNamespace != parentNs) {
        writer.writeAttribute(QStringLiteral("namespace"), QString::fromStdString(property.mNamespace));
        writer.writeAttribute(QStringLiteral("prefix"), QString::fromStdString(property.mPrefix));
    }
    if (property.mForm != ValueForm::kSimple)
        writer.writeAttribute(QStringLiteral("form"), QLatin1String(FormName(property.mForm)));
    if (property.IsArray() && property.mItemForm != ValueForm::kSimple)
        writer.writeAttribute(QStringLiteral("itemForm"), QLatin1String(FormName(property.mItemForm)));
    if (property.mPrimitiveType)
        writer.writeAttribute(QStringLiteral("type"),
                              QString::fromStdString(PrimitiveTypeAsPrimitiveTypeId(*property.mPrimitiveType)));
    if (!property.mTypeId.empty())
        writer.writeAttribute(QStringLiteral("typeId"), QString::fromStdString(property.mTypeId));
    writer.writeAttribute(QStringLiteral("label"), QString::fromStdString(property.mLabel));
    if (!property.mDescription.empty())
        writer.writeAttribute(QStringLiteral("description"), QString::fromStdString(property.mDescription));
    if (property.mMinimum) writer.writeAttribute(QStringLiteral("min"), QString::number(*property.mMinimum, 'g', 17));
    if (property.mMaximum) writer.writeAttribute(QStringLiteral("max"), QString::number(*property.mMaximum, 'g', 17));
    if (property.mInternal) writer.writeAttribute(QStringLiteral("internal"), QStringLiteral("true"));
    for (auto const &choice : property.mChoices) {
        writer.writeEmptyElement(QStringLiteral("choice"));
        writer.writeAttribute(QStringLiteral("value"), QString::fromStdString(choice.mRawValue));
        writer.writeAttribute(QStringLiteral("label"), QString::fromStdString(choice.mDisplay));
    }
    for (auto const &field : property.mFields)
        if (field) WriteProperty(writer, *field, true, property.mNamespace);
    writer.writeEndElement();
}

// A simple XML name made of the text: letters, digits, '_', '-', '.', not
// starting with a digit, '-' or '.'.
std::string XmlNameFrom(std::string const &text)
{
    std::string name;
    for (char c : text) {
        bool const ok = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
                        c == '-' || c == '.';
        if (ok) name += c;
    }
    while (!name.empty() &&
           !((name[0] >= 'a' && name[0] <= 'z') || (name[0] >= 'A' && name[0] <= 'Z') || name[0] == '_'))
        name.erase(0, 1);
    if (name.empty()) name = "custom";
    return name;
}

} // namespace

// --- Lookups ----------------------------------------------------------------

std::vector<std::shared_ptr<SchemaDefinition>> GetSchemaDefinitions()
{
    std::vector<std::shared_ptr<SchemaDefinition>> result = TheRegistry().mSchemas;
    std::stable_sort(result.begin(), result.end(), [](auto const &a, auto const &b) {
        if (a->IsCustom() != b->IsCustom()) return !a->IsCustom();
        if (a->IsCustom()) return a->mLabel < b->mLabel;
        int const ra = StandardRank(a->mPrefix), rb = StandardRank(b->mPrefix);
        if (ra != rb) return ra < rb;
        return a->mPrefix < b->mPrefix;
    });
    return result;
}

std::shared_ptr<SchemaDefinition> NamespaceDefinition(std::string const &ns)
{
    auto const &map = TheRegistry().mByNamespace;
    auto it = map.find(ns);
    return it == map.end() ? nullptr : it->second;
}

std::shared_ptr<SchemaDefinition> SchemaDefinitionForPrefix(std::string const &prefix)
{
    for (auto const &schema : TheRegistry().mSchemas)
        if (schema->mPrefix == prefix) return schema;
    return nullptr;
}

std::shared_ptr<PropertyDefinition> PropertyNameDefinition(std::shared_ptr<SchemaDefinition> const &inSchemaDefinition,
                                                           std::string const &name)
{
    KIV_ASSERT("src/Definitions", "kivmetadata::PropertyNameDefinition", inSchemaDefinition);
    if (!inSchemaDefinition) return nullptr;
    return inSchemaDefinition->FindProperty(name);
}

std::shared_ptr<TypeDefinition> TypeIdDefinition(std::string const &id)
{
    if (id.empty()) return nullptr;
    auto const &types = TheRegistry().mTypes;
    auto it = types.find(id);
    return it == types.end() ? nullptr : it->second;
}

std::vector<Choice> DefinitionChoices(PropertyDefinition const &definition)
{
    if (!definition.mChoices.empty()) return definition.mChoices;
    std::shared_ptr<TypeDefinition> type;
    if (!definition.mTypeId.empty())
        type = TypeIdDefinition(definition.mTypeId);
    else if (definition.mPrimitiveType)
        type = TypeIdDefinition(PrimitiveTypeAsPrimitiveTypeId(*definition.mPrimitiveType));
    return type ? type->mChoices : std::vector<Choice>{};
}

std::string PrimitiveTypeAsPrimitiveTypeId(PrimitiveType type)
{
    switch (type) {
    case kPrimitiveType_Integer:
        return "integer";
    case kPrimitiveType_Real:
        return "real";
    case kPrimitiveType_Text:
        return "text";
    case kPrimitiveType_Boolean:
        return "boolean";
    case kPrimitiveType_OpenChoice:
        return "openChoice";
    case kPrimitiveType_ClosedChoice:
        return "closedChoice";
    case kPrimitiveType_TextBag:
        return "bag";
    case kPrimitiveType_TextSeq:
        return "seq";
    case kPrimitiveType_LangAlt:
        return "langAlt";
    }
    return "text";
}

// --- Registration -----------------------------------------------------------

bool RegisterSchemaDefinition(std::shared_ptr<SchemaDefinition> const &schema, std::string const &origin, bool replace)
{
    if (!schema || schema->mNamespace.empty() || schema->mPrefix.empty()) {
        AddErrorInfo("A schema definition without namespace or prefix was refused.", origin);
        return false;
    }
    auto &r = TheRegistry();
    auto existing = r.mByNamespace.find(schema->mNamespace);
    if (existing != r.mByNamespace.end() && existing->second != schema) {
        if (!replace) {
            AddErrorInfo("The schema " + schema->mNamespace + " is already defined; this definition was ignored.",
                         origin);
            return false;
        }
        std::erase(r.mSchemas, existing->second);
    }
    std::string prefix;
    if (!XMPMeta::RegisterNamespace(schema->mNamespace, schema->mPrefix, &prefix) || prefix.empty()) {
        AddErrorInfo("The namespace " + schema->mNamespace + " could not be registered with the XMP toolkit.", origin);
        return false;
    }
    schema->mPrefix = prefix;
    for (auto &property : schema->mProperties)
        if (property) CompleteProperty(*property, schema->mNamespace, prefix);
    r.mByNamespace[schema->mNamespace] = schema;
    if (std::find(r.mSchemas.begin(), r.mSchemas.end(), schema) == r.mSchemas.end()) r.mSchemas.push_back(schema);
    r.mDynamic.erase(schema->mNamespace);
    return true;
}

bool UnregisterSchemaDefinition(std::string const &ns)
{
    auto &r = TheRegistry();
    auto it = r.mByNamespace.find(ns);
    if (it == r.mByNamespace.end()) return false;
    std::erase(r.mSchemas, it->second);
    r.mByNamespace.erase(it);
    return true;
}

std::shared_ptr<SchemaDefinition> ParseSchemaDefinition(std::string_view xml, std::u16string const &filePath,
                                                        std::string *error)
{
    std::string message = XmlRefusal(xml, XmlKind::kUserFile);
    std::shared_ptr<SchemaDefinition> schema;
    if (message.empty()) {
        DefinitionReader reader(xml);
        schema = reader.ReadSchema(&message);
    }
    if (!schema) {
        AddErrorInfo("The schema definition could not be read: " + message + ".",
                     kivcore::utility::Utf16ToUtf8(filePath));
        if (error) *error = message;
        return nullptr;
    }
    return schema;
}

bool LoadTypeDefinitions(std::string_view xml, std::string const &origin)
{
    std::vector<std::shared_ptr<TypeDefinition>> types;
    std::string message = XmlRefusal(xml, XmlKind::kUserFile);
    if (!message.empty() || !DefinitionReader(xml).ReadTypes(types, &message)) {
        AddErrorInfo("The type definitions could not be read: " + message + ".", origin);
        return false;
    }
    for (auto &type : types)
        TheRegistry().mTypes[type->mId] = std::move(type);
    return true;
}

int LoadSchemaDefinitionsFromFolder(std::u16string const &folder, bool custom)
{
    QDir dir(ToQString(folder));
    int count = 0;
    QStringList const names = dir.entryList({QStringLiteral("*.xml")}, QDir::Files | QDir::Readable, QDir::Name);
    struct File {
        QString path;
        std::string bytes;
    };
    std::vector<File> schemas;
    // Types first: schemas take the primitive type of their type ids.
    for (QString const &name : names) {
        File file{dir.filePath(name), {}};
        std::string error;
        if (!ReadWholeFile(file.path, file.bytes, &error)) {
            AddErrorInfo("The definition file could not be read: " + error + ".", file.path.toStdString());
            continue;
        }
        bool const isTypes =
            file.bytes.find("<types") != std::string::npos && file.bytes.find("<schema") == std::string::npos;
        if (isTypes)
            LoadTypeDefinitions(file.bytes, file.path.toStdString());
        else
            schemas.push_back(std::move(file));
    }
    for (auto const &file : schemas) {
        auto schema = ParseSchemaDefinition(file.bytes, ToU16(file.path));
        if (!schema) continue;
        if (custom) schema->mFilePath = ToU16(file.path);
        if (RegisterSchemaDefinition(schema, file.path.toStdString(), false)) ++count;
    }
    return count;
}

void detail::LoadAllDefinitions()
{
    LoadSchemaDefinitionsFromFolder(u":/kivmetadata/definitions", false);
    // The custom folder is only read when it exists: starting never creates it.
    QString const custom = ToQString(UserDataDirectory()) + QStringLiteral("/custom_schemas");
    if (QDir(custom).exists()) LoadSchemaDefinitionsFromFolder(ToU16(custom), true);
    qCDebug(lcKivMetadata, "%d schemas, %d types", int(TheRegistry().mSchemas.size()),
            int(TheRegistry().mTypes.size()));
}

// --- Custom schemas -----------------------------------------------------------

std::u16string CustomDefinitionsUserDirectory()
{
    std::u16string folder = UserSubdirectory(u"custom_schemas");
    if (folder.empty()) folder = UserDataDirectory() + u"/custom_schemas";
    return folder;
}

std::shared_ptr<SchemaDefinition> CreateNewSchema(std::string const &identifier, std::string const &name,
                                                  std::string const &labelKey, std::string const &descriptionKey)
{
    auto schema = std::make_shared<SchemaDefinition>();
    std::string const id = identifier.empty() ? XmlNameFrom(name) : identifier;
    schema->mNamespace = std::string(kCustomNamespaceBase) + id + "/";
    std::string const base = XmlNameFrom(name);
    std::string prefix = base;
    for (int n = 2; SchemaDefinitionForPrefix(prefix) || (!XMPMeta::NamespaceForPrefix(prefix).empty() &&
                                                          XMPMeta::NamespaceForPrefix(prefix) != schema->mNamespace);
         ++n)
        prefix = base + std::to_string(n);
    schema->mPrefix = prefix;
    schema->mLabel = labelKey.empty() ? name : labelKey;
    schema->mDescription = descriptionKey;
    return schema;
}

void SetFilePathForSchema(std::shared_ptr<SchemaDefinition> const &schema, std::u16string const &filePath)
{
    KIV_ASSERT("src/Definitions", "kivmetadata::SetFilePathForSchema", schema);
    if (schema) schema->mFilePath = filePath;
}

std::string SchemaDefinitionAsXMLString(SchemaDefinition const &schema)
{
    QByteArray bytes;
    QXmlStreamWriter writer(&bytes);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(2);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("schema"));
    writer.writeDefaultNamespace(QLatin1String(kSchemaXmlns));
    writer.writeAttribute(QStringLiteral("namespace"), QString::fromStdString(schema.mNamespace));
    writer.writeAttribute(QStringLiteral("prefix"), QString::fromStdString(schema.mPrefix));
    writer.writeAttribute(QStringLiteral("label"), QString::fromStdString(schema.mLabel));
    if (!schema.mDescription.empty())
        writer.writeAttribute(QStringLiteral("description"), QString::fromStdString(schema.mDescription));
    for (auto const &property : schema.mProperties)
        if (property) WriteProperty(writer, *property, false, schema.mNamespace);
    writer.writeEndElement();
    writer.writeEndDocument();
    return bytes.toStdString();
}

bool RewriteSchemaFile(std::shared_ptr<SchemaDefinition> const &schema, std::string *error)
{
    if (!schema || schema->mFilePath.empty()) {
        std::string const message = "the schema has no file";
        AddErrorInfo("The schema file could not be written: " + message + ".", schema ? schema->mNamespace : "");
        if (error) *error = message;
        return false;
    }
    QDir().mkpath(QFileInfo(ToQString(schema->mFilePath)).absolutePath());
    std::string message;
    if (!kivcore::utility::FileUtils::SimpleWriteStringToFile(schema->mFilePath, SchemaDefinitionAsXMLString(*schema),
                                                              &message)) {
        AddErrorInfo("The schema file could not be written: " + message + ".",
                     kivcore::utility::Utf16ToUtf8(schema->mFilePath));
        if (error) *error = message;
        return false;
    }
    return true;
}

std::shared_ptr<PropertyDefinition> CreateNewProperty(PrimitiveType type, std::string const &name,
                                                      std::string const &labelKey)
{
    auto property = std::make_shared<PropertyDefinition>();
    property->mName = name;
    property->mLabel = labelKey.empty() ? name : labelKey;
    switch (type) {
    case kPrimitiveType_TextBag:
        property->mForm = ValueForm::kBag;
        property->mPrimitiveType = kPrimitiveType_Text;
        break;
    case kPrimitiveType_TextSeq:
        property->mForm = ValueForm::kSeq;
        property->mPrimitiveType = kPrimitiveType_Text;
        break;
    case kPrimitiveType_LangAlt:
        property->mForm = ValueForm::kLangAlt;
        property->mPrimitiveType = kPrimitiveType_Text;
        break;
    default:
        property->mPrimitiveType = type;
        break;
    }
    return property;
}

void AddPropertyToSchema(std::shared_ptr<SchemaDefinition> const &schema,
                         std::shared_ptr<PropertyDefinition> const &property)
{
    KIV_ASSERT("src/Definitions", "kivmetadata::AddPropertyToSchema", schema && property);
    if (!schema || !property) return;
    CompleteProperty(*property, schema->mNamespace, schema->mPrefix);
    RemovePropertyFromSchema(schema, property->mName);
    schema->mProperties.push_back(property);
}

bool RemovePropertyFromSchema(std::shared_ptr<SchemaDefinition> const &schema, std::string const &name)
{
    if (!schema) return false;
    return std::erase_if(schema->mProperties, [&](auto const &p) { return p && p->mName == name; }) > 0;
}

// --- Definition classes -------------------------------------------------------

std::shared_ptr<PropertyDefinition> PropertyDefinition::ItemDefinition() const
{
    if (!IsArray() && !IsLangAlt()) return nullptr;
    if (!mItem) {
        auto item = std::make_shared<PropertyDefinition>(*this);
        item->mItem.reset();
        item->mForm = IsLangAlt() ? ValueForm::kSimple : mItemForm;
        item->mItemForm = ValueForm::kSimple;
        if (item->mForm == ValueForm::kStruct)
            item->mPrimitiveType.reset();
        else if (!item->mPrimitiveType)
            item->mPrimitiveType = kPrimitiveType_Text;
        mItem = std::move(item);
    }
    return mItem;
}

std::shared_ptr<PropertyDefinition> PropertyDefinition::FieldDefinition(std::string const &ns,
                                                                        std::string const &name) const
{
    for (auto const &field : mFields)
        if (field && field->mName == name && (ns.empty() || field->mNamespace.empty() || field->mNamespace == ns))
            return field;
    return nullptr;
}

std::shared_ptr<PropertyDefinition> SchemaDefinition::FindProperty(std::string const &name) const
{
    for (auto const &property : mProperties)
        if (property && property->mName == name) return property;
    return nullptr;
}

} // namespace kivmetadata
