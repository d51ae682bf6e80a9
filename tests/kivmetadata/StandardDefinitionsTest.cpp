// Checks the schema, type and panel files shipped in kivmetadata's resources
// as the model loads them: complete, consistent, localised, usable by the
// controls, and in agreement with exiftool.
#include <kivmetadata/Definitions.h>
#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/Initialize.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/TypeDefinition.h>
#include <kivmetadata/ViewDefinition.h>
#include <kivmetadata/ViewDefinitions.h>

#include <gtest/gtest.h>

#include "TestImages.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <functional>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

// Readable QString values in failure messages.
void PrintTo(QString const &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

using namespace kivmetadata;
using namespace testimages;

namespace {

using Def = PropertyDefinition;

QString ResourceFolder()
{
    return QString::fromUtf8(KIV_METADATA_RESOURCES_DIR);
}

// The ids of types.xml in file order: the model keeps no list of them.
QStringList TypeIds()
{
    QXmlStreamReader xml(ReadFile(ResourceFolder() + QStringLiteral("/definitions/types.xml")));
    QStringList ids;
    while (!xml.atEnd())
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == QStringLiteral("type"))
            ids << xml.attributes().value(QStringLiteral("id")).toString();
    return ids;
}

QString FormName(ValueForm form)
{
    static char const *const names[] = {"simple", "struct", "bag", "seq", "alt", "langAlt"};
    return QString::fromLatin1(names[int(form)]);
}

bool HasStructValue(Def const &d)
{
    return d.IsStruct() || (d.IsArray() && d.mItemForm == ValueForm::kStruct);
}

// Unique values; integers where the value is one.
void CheckChoices(std::vector<Choice> const &choices, bool integers, std::string const &where)
{
    std::set<std::string> values;
    for (auto const &c : choices) {
        EXPECT_TRUE(values.insert(c.mRawValue).second) << where << ": choice " << c.mRawValue << " twice";
        bool ok = false;
        QString::fromStdString(c.mRawValue).toLongLong(&ok);
        if (integers) {
            EXPECT_TRUE(ok) << where << ": choice " << c.mRawValue << " is not an integer";
        }
    }
}

// The standard definitions as the model loads them, without a load error.
class StandardDefinitionsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ClearErrorInfos();
        ASSERT_TRUE(Initialize());
        for (auto const &e : GetErrorInfos())
            ADD_FAILURE() << "load error: " << e.mDescription << " (" << e.mContext << ")";
        mSchemas = GetSchemaDefinitions();
        mViews = GetViewDefinitions();
    }
    void TearDown() override { Terminate(); }

    // Calls fn for every property and field, with a readable location.
    void ForEachDef(std::function<void(Def const &, std::string const &)> const &fn) const
    {
        std::function<void(Def const &, std::string const &)> walk = [&](Def const &d, std::string const &where) {
            fn(d, where);
            for (auto const &f : d.mFields)
                walk(*f, where + '/' + f->QualifiedName());
        };
        for (auto const &s : mSchemas)
            for (auto const &p : s->mProperties)
                walk(*p, p->QualifiedName());
    }

    std::vector<std::shared_ptr<SchemaDefinition>> mSchemas;
    std::vector<std::shared_ptr<ViewDefinition>> mViews;
};

TEST_F(StandardDefinitionsTest, EveryStandardFileIsPresentAndCompiledIn)
{
    std::set<std::string> prefixes, panels;
    for (auto const &s : mSchemas)
        prefixes.insert(s->mPrefix);
    for (auto const &v : mViews)
        panels.insert(v->mName);
    for (char const *prefix : {"dc", "xmp", "xmpRights", "xmpMM", "photoshop", "Iptc4xmpCore", "Iptc4xmpExt", "exif",
                               "exifEX", "tiff", "aux", "pdf", "crs", "xmpDM", "plus"})
        EXPECT_TRUE(prefixes.count(prefix)) << "missing schema " << prefix;
    for (char const *name :
         {"Description", "IPTCCore", "IPTCExtension", "CameraData", "GPSData", "Origin", "Rights", "AudioVideo"})
        EXPECT_TRUE(panels.count(name)) << "missing panel " << name;

    // The library's resources must hold exactly the files of the source
    // folder: a file left out of kivmetadata.qrc never loads.
    for (QString sub : {QStringLiteral("definitions"), QStringLiteral("panels")}) {
        QStringList compiled =
            QDir(QStringLiteral(":/kivmetadata/") + sub).entryList({QStringLiteral("*.xml")}, QDir::Files, QDir::Name);
        EXPECT_EQ(compiled,
                  QDir(ResourceFolder() + u'/' + sub).entryList({QStringLiteral("*.xml")}, QDir::Files, QDir::Name))
            << sub.toStdString();
        for (auto const &f : compiled) {
            EXPECT_TRUE(ReadFile(ResourceFolder() + u'/' + sub + u'/' + f) ==
                        ReadFile(QStringLiteral(":/kivmetadata/") + sub + u'/' + f))
                << f.toStdString() << " is stale in the resources";
        }
    }
}

TEST_F(StandardDefinitionsTest, SchemasAndPropertiesAreWellFormed)
{
    std::map<std::string, std::string> namespaceOfPrefix;
    for (auto const &s : mSchemas) {
        std::string const &where = s->mPrefix;
        EXPECT_TRUE(s->mNamespace.ends_with('/') || s->mNamespace.ends_with('#')) << where << ": " << s->mNamespace;
        EXPECT_FALSE(s->mProperties.empty()) << where;
        std::set<std::string> names;
        for (auto const &p : s->mProperties)
            EXPECT_TRUE(names.insert(p->mName).second) << where << ":" << p->mName << " defined twice";
    }

    static QRegularExpression const xmlName(QStringLiteral(R"(^[A-Za-z_][A-Za-z0-9_.-]*$)"));
    ForEachDef([&](Def const &d, std::string const &where) {
        EXPECT_TRUE(xmlName.match(QString::fromStdString(d.mName)).hasMatch()) << where << ": name";
        EXPECT_TRUE(d.mItemForm == ValueForm::kSimple || d.IsArray()) << where << ": itemForm of a non-array";
        auto [bound, added] = namespaceOfPrefix.emplace(d.mPrefix, d.mNamespace);
        EXPECT_TRUE(added || bound->second == d.mNamespace)
            << where << ": prefix " << d.mPrefix << " bound to " << bound->second << " and " << d.mNamespace;
        if (HasStructValue(d)) {
            EXPECT_FALSE(d.mFields.empty()) << where << ": a struct needs fields";
            EXPECT_FALSE(d.mPrimitiveType) << where << ": a struct has no primitive type";
            std::set<std::pair<std::string, std::string>> names;
            for (auto const &f : d.mFields)
                EXPECT_TRUE(names.emplace(f->mNamespace, f->mName).second)
                    << where << ": field " << f->mName << " twice";
        } else {
            EXPECT_TRUE(d.mFields.empty()) << where << ": fields on a value that is not a struct";
            EXPECT_TRUE(d.mPrimitiveType) << where << ": no type";
        }
        if (d.mMinimum && d.mMaximum) {
            EXPECT_LE(*d.mMinimum, *d.mMaximum) << where;
        }
    });
}

TEST_F(StandardDefinitionsTest, TypeIdsAndChoicesAreConsistent)
{
    QStringList const ids = TypeIds();
    for (QString const &id : ids) {
        std::string const where = "type " + id.toStdString();
        EXPECT_EQ(ids.count(id), 1) << where << " defined twice";
        auto t = TypeIdDefinition(id.toStdString());
        ASSERT_TRUE(t && t->mPrimitiveType) << where;
        if (t->mPrimitiveType == kPrimitiveType_ClosedChoice && id != QStringLiteral("closedChoice")) {
            EXPECT_FALSE(t->mChoices.empty()) << where;
        }
        CheckChoices(t->mChoices, id == QStringLiteral("integer"), where);
    }
    // The type ids the controls and the writability rule look for.
    for (char const *id : {"url", "uri", "xpath", "date", "rational", "rating"})
        EXPECT_TRUE(ids.contains(QString::fromUtf8(id))) << id;

    ForEachDef([&](Def const &d, std::string const &where) {
        if (!d.mTypeId.empty()) {
            EXPECT_TRUE(TypeIdDefinition(d.mTypeId)) << where << ": unknown typeId " << d.mTypeId;
        }
        CheckChoices(d.mChoices, d.mTypeId == "integer" || d.mPrimitiveType == kPrimitiveType_Integer, where);
        if (d.mPrimitiveType == kPrimitiveType_ClosedChoice) {
            EXPECT_FALSE(DefinitionChoices(d).empty()) << where << ": closed choice without choices";
        }
        if (d.mPrimitiveType == kPrimitiveType_Boolean) {
            for (auto const &c : d.mChoices)
                EXPECT_TRUE(c.mRawValue == "True" || c.mRawValue == "False") << where << ": " << c.mRawValue;
        }
        // Every XMP date is edited with the date control.
        if (d.mName.find("Date") != std::string::npos && d.mPrimitiveType == kPrimitiveType_Text &&
            d.mName.find("Circa") == std::string::npos) {
            EXPECT_EQ(d.mTypeId, "date") << where;
        }
    });
}

// Every text people see is a localisation key with its English text, and a
// translator sees each key once: no key carries two English texts.
TEST_F(StandardDefinitionsTest, EveryTextIsLocalisedWithOneEnglishTextPerKey)
{
    // "$$$/kivmetadata/<something>=<English text>".
    static QRegularExpression const localised(QStringLiteral(R"(^\$\$\$/kivmetadata/[A-Za-z0-9_./+-]+=\S.*$)"));
    std::map<std::string, std::string> texts;
    auto add = [&](std::string const &keyWithDefault, std::string const &where, bool optional = false) {
        if (optional && keyWithDefault.empty()) return;
        EXPECT_TRUE(localised.match(QString::fromStdString(keyWithDefault)).hasMatch())
            << where << ": " << keyWithDefault;
        auto const equals = keyWithDefault.find('=');
        if (equals == std::string::npos) return;
        auto [it, added] = texts.emplace(keyWithDefault.substr(0, equals), keyWithDefault.substr(equals + 1));
        EXPECT_TRUE(added || it->second == keyWithDefault.substr(equals + 1))
            << it->first << ": \"" << it->second << "\" and \"" << keyWithDefault.substr(equals + 1) << "\"";
    };
    auto addChoices = [&](std::vector<Choice> const &choices, std::string const &where) {
        for (auto const &c : choices)
            add(c.mDisplay, where + " choice " + c.mRawValue);
    };
    for (auto const &s : mSchemas) {
        add(s->mLabel, s->mPrefix);
        add(s->mDescription, s->mPrefix);
    }
    ForEachDef([&](Def const &d, std::string const &where) {
        add(d.mLabel, where);
        add(d.mDescription, where, true);
        addChoices(d.mChoices, where);
    });
    for (QString const &id : TypeIds())
        addChoices(TypeIdDefinition(id.toStdString())->mChoices, "type " + id.toStdString());
    for (auto const &v : mViews) {
        add(v->mLabel, v->mName);
        for (auto const &section : v->mItems) {
            add(section->mLabel, v->mName + " section");
            for (auto const &item : section->mChildren) {
                add(item->mLabel, v->mName + " " + item->mPath.mPath, true);
                addChoices(item->mChoices, v->mName + " " + item->mPath.mPath);
            }
        }
    }
    EXPECT_GT(texts.size(), 1000u);
}

// Every row of every standard panel names a definition its control can be
// made from, with attributes and choices that control understands.
TEST_F(StandardDefinitionsTest, PanelRowsHaveTheDefinitionsTheirControlsNeed)
{
    static std::set<std::string> const attributes{"dropdown", "openChoice", "rating", "size", "readOnly", "multiLines"};
    static std::set<std::string> const booleans{"dropdown", "openChoice", "rating", "readOnly"};
    std::function<void(Path const &, std::string const &)> checkPath = [&](Path const &path, std::string const &where) {
        auto definition = PathEntryDefinition(path);
        if (!definition) {
            ADD_FAILURE() << where << ": no definition for " << path.mNamespace << " " << path.mPath;
            return;
        }
        if (definition->IsStruct()) {
            for (auto const &field : definition->mFields)
                checkPath(CreatePathFromStructField(path, *field), where);
        } else if (definition->IsArray() && definition->mItemForm == ValueForm::kStruct) {
            checkPath(CreatePathFromArrayItem(path, 1), where);
        } else {
            // The control factory makes no control for a value without one.
            EXPECT_TRUE(PrimitiveTypeOfPath(path).has_value()) << where << ": no primitive type";
        }
    };
    for (auto const &v : mViews) {
        EXPECT_FALSE(v->mItems.empty()) << v->mName;
        std::set<Path> paths;
        for (auto const &section : v->mItems) {
            EXPECT_EQ(section->mKind, ViewItem::Kind::kSection) << v->mName << ": only sections at the top";
            for (auto const &item : section->mChildren) {
                std::string const where = v->mName + " " + item->mPath.mPath;
                EXPECT_TRUE(paths.insert(item->mPath).second) << where << ": shown twice";
                checkPath(item->mPath, where);
                auto d = PathEntryDefinition(item->mPath);
                if (!d) continue;
                // A struct row shows fields and an array row an item list; a
                // property row has one text or choice control and cannot show either.
                if (item->mKind == ViewItem::Kind::kStruct) {
                    EXPECT_TRUE(d->IsStruct()) << where;
                } else if (item->mKind == ViewItem::Kind::kArray) {
                    EXPECT_TRUE(d->IsArray()) << where;
                } else {
                    EXPECT_FALSE(HasStructValue(*d)) << where << ": a struct value needs a struct or array row";
                }
                for (auto const &[key, value] : item->mAttributes) {
                    EXPECT_TRUE(attributes.count(key)) << where << ": unknown attribute " << key;
                    if (booleans.count(key)) {
                        EXPECT_TRUE(value == "true" || value == "false") << where << ": " << key;
                    }
                    if (key == "size" || key == "multiLines") {
                        EXPECT_GT(QString::fromStdString(value).toInt(), 0) << where << ": " << key;
                    }
                }
                // The control factory makes a star rating only for a real value.
                if (item->HasAttribute("rating")) {
                    EXPECT_EQ(PrimitiveTypeOfPath(item->mPath), kPrimitiveType_Real) << where;
                }
                // A drop-down needs choices: the row's own, the property's or its type's.
                if (item->HasAttribute("dropdown") && item->mChoices.empty()) {
                    EXPECT_FALSE(DefinitionChoices(*d).empty()) << where;
                }
                CheckChoices(item->mChoices, false, where);
            }
        }
    }
}

// One tag of exiftool's tag list.
struct ExiftoolTag {
    QString group, id, name, type, parent, firstValue;
    QStringList flags;
};

// exiftool's XMP tags of the schemas defined here, by our prefix.
std::multimap<QString, ExiftoolTag> ExiftoolTags()
{
    // exiftool names most XMP tables after the schema's usual prefix.
    static std::map<QString, QString> const renamed{
        {"XMP::iptcCore", "Iptc4xmpCore"}, {"XMP::iptcExt", "Iptc4xmpExt"}, {"PLUS::XMP", "plus"}};
    QXmlStreamReader xml(
        RunExiftool({QStringLiteral("-listx"), QStringLiteral("-f"), QStringLiteral("-lang"), QStringLiteral("en")}));
    std::multimap<QString, ExiftoolTag> tags;
    QString prefix, group;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        auto a = xml.attributes();
        if (xml.name() == QStringLiteral("table")) {
            QString const table = a.value(QStringLiteral("name")).toString();
            auto it = renamed.find(table);
            prefix = it != renamed.end()                         ? it->second
                     : table.startsWith(QStringLiteral("XMP::")) ? table.mid(5)
                                                                 : QString();
            if (prefix.isEmpty() || !SchemaDefinitionForPrefix(prefix.toStdString())) {
                xml.skipCurrentElement();
                continue;
            }
            group = a.value(QStringLiteral("g1")).toString();
        } else if (xml.name() == QStringLiteral("tag")) {
            ExiftoolTag tag{group,
                            a.value(QStringLiteral("id")).toString(),
                            a.value(QStringLiteral("name")).toString(),
                            a.value(QStringLiteral("type")).toString(),
                            a.value(QStringLiteral("struct")).toString(),
                            {},
                            a.value(QStringLiteral("flags")).toString().split(u',')};
            while (xml.readNextStartElement()) {
                if (xml.name() == QStringLiteral("values") && xml.readNextStartElement() && tag.firstValue.isEmpty())
                    tag.firstValue = xml.attributes().value(QStringLiteral("id")).toString();
                xml.skipCurrentElement();
            }
            tags.emplace(prefix, tag);
        }
    }
    return tags;
}

QString const kRdfNs = QStringLiteral("http://www.w3.org/1999/02/22-rdf-syntax-ns#");

QString const kXmlNs = QStringLiteral("http://www.w3.org/XML/1998/namespace");

// Walks the value the reader stands on (a property, a field or an array
// item), checks every struct field met against the definition, and returns
// the form its markup shows: simple, struct, bag, seq, alt or langAlt.
QString CheckValue(QXmlStreamReader &xml, Def const &def, std::string const &where, int &checked)
{
    auto field = [&](QString const &ns, QString const &name) -> Def const * {
        if (auto f = def.FieldDefinition(ns.toStdString(), name.toStdString())) {
            ++checked;
            return f.get();
        }
        ADD_FAILURE() << where << ": exiftool writes the field " << ns.toStdString() << name.toStdString()
                      << " that the definition lacks";
        return nullptr;
    };
    QString form = QStringLiteral("simple");
    if (xml.attributes().value(kRdfNs, QStringLiteral("parseType")) == QStringLiteral("Resource"))
        form = QStringLiteral("struct");
    for (auto const &attr : xml.attributes()) {
        QString ns = attr.namespaceUri().toString();
        if (ns.isEmpty() || ns == kRdfNs || ns == kXmlNs) continue;
        form = QStringLiteral("struct");
        field(ns, attr.name().toString());
    }
    while (xml.readNextStartElement()) {
        QString name = xml.name().toString();
        if (xml.namespaceUri() != kRdfNs) {
            form = QStringLiteral("struct");
            if (Def const *f = field(xml.namespaceUri().toString(), name)) {
                std::string at = where + "/" + name.toStdString();
                EXPECT_EQ(FormName(f->mForm), CheckValue(xml, *f, at, checked)) << at;
            } else {
                xml.skipCurrentElement();
            }
        } else if (name == QStringLiteral("Bag") || name == QStringLiteral("Seq") || name == QStringLiteral("Alt")) {
            bool languages = false;
            while (xml.readNextStartElement()) {
                languages = languages || xml.attributes().hasAttribute(kXmlNs, QStringLiteral("lang"));
                QString item = CheckValue(xml, def, where, checked);
                if (def.IsArray()) {
                    EXPECT_EQ(FormName(def.mItemForm), item) << where << ": array item";
                }
            }
            form = name == QStringLiteral("Bag")   ? QStringLiteral("bag")
                   : name == QStringLiteral("Seq") ? QStringLiteral("seq")
                   : languages                     ? QStringLiteral("langAlt")
                                                   : QStringLiteral("alt");
        } else {
            // An rdf:Description holding the fields of a struct.
            form = QStringLiteral("struct");
            CheckValue(xml, def, where, checked);
        }
    }
    return form;
}

// exiftool knows the value form of every standard property and writes every
// struct field in its real namespace and form; the definitions must agree.
TEST_F(StandardDefinitionsTest, AgreesWithExiftool)
{
    if (Exiftool().isEmpty()) GTEST_SKIP() << "exiftool is not installed";
    auto tags = ExiftoolTags();
    ASSERT_FALSE(tags.empty());

    int compared = 0;
    QStringList writes;
    for (auto const &[prefix, tag] : tags) {
        auto d = tag.parent.isEmpty()
                     ? SchemaDefinitionForPrefix(prefix.toStdString())->FindProperty(tag.id.toStdString())
                     : nullptr;
        if (!tag.parent.isEmpty() && tag.type != QStringLiteral("struct")) {
            // One value for every struct field, raw (-n) so choices take their code.
            QString value = !tag.firstValue.isEmpty()                ? tag.firstValue
                            : tag.type == QStringLiteral("date")     ? QStringLiteral("2021:06:30 12:00:00")
                            : tag.type == QStringLiteral("boolean")  ? QStringLiteral("True")
                            : tag.type == QStringLiteral("rational") ? QStringLiteral("1/2")
                            : tag.type == QStringLiteral("integer") || tag.type == QStringLiteral("real")
                                ? QStringLiteral("1")
                                : QStringLiteral("x");
            writes << QStringLiteral("-%1:%2=%3").arg(tag.group, tag.name, value);
        }
        if (!d) continue;
        ++compared;
        std::string where = d->QualifiedName();
        QString form = tag.flags.contains(QStringLiteral("Bag"))   ? QStringLiteral("bag")
                       : tag.flags.contains(QStringLiteral("Seq")) ? QStringLiteral("seq")
                       : tag.flags.contains(QStringLiteral("Alt")) ? QStringLiteral("alt")
                       : tag.type == QStringLiteral("lang-alt")    ? QStringLiteral("langAlt")
                       : tag.type == QStringLiteral("struct")      ? QStringLiteral("struct")
                                                                   : QStringLiteral("simple");
        EXPECT_EQ(FormName(d->mForm), form) << where;
        if (tag.type == QStringLiteral("struct")) {
            EXPECT_TRUE(HasStructValue(*d)) << where;
        }
        if (tag.type == QStringLiteral("date") || tag.type == QStringLiteral("rational")) {
            EXPECT_EQ(QString::fromStdString(d->mTypeId), tag.type) << where;
        }
        if (tag.type == QStringLiteral("boolean") || tag.type == QStringLiteral("real")) {
            EXPECT_EQ(d->mPrimitiveType ? QString::fromStdString(PrimitiveTypeAsPrimitiveTypeId(*d->mPrimitiveType))
                                        : QString(),
                      tag.type)
                << where;
        }
    }
    EXPECT_GT(compared, 300);

    // A sidecar written by exiftool with every struct field set shows the
    // namespace and the value form of each field.
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QString const sidecar = dir.filePath(QStringLiteral("fields.xmp"));
    RunExiftool(QStringList{QStringLiteral("-n"), QStringLiteral("-m"), QStringLiteral("-o"), sidecar} + writes);
    QXmlStreamReader xml(ReadFile(sidecar));
    int checked = 0;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        // Descend into x:xmpmeta, rdf:RDF and rdf:Description.
        if (xml.namespaceUri() == kRdfNs || xml.namespaceUri() == QStringLiteral("adobe:ns:meta/")) continue;
        auto schema = NamespaceDefinition(xml.namespaceUri().toString().toStdString());
        auto d = schema ? schema->FindProperty(xml.name().toString().toStdString()) : nullptr;
        if (d && HasStructValue(*d)) {
            std::string where = d->QualifiedName();
            EXPECT_EQ(FormName(d->mForm), CheckValue(xml, *d, where, checked)) << where;
        } else {
            xml.skipCurrentElement();
        }
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    EXPECT_GT(checked, 100);
}

} // namespace
