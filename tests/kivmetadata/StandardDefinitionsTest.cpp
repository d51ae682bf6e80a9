// Checks the schema, type and panel files shipped in kivmetadata's resources,
// read with QXmlStreamReader only, so a fault in the data is told apart from
// a fault in the model that reads it.
#include <kivmetadata/Definitions.h>
#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/Initialize.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/TypeDefinition.h>
#include <kivmetadata/ViewDefinition.h>
#include <kivmetadata/ViewDefinitions.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <vector>

// Readable QString values in failure messages.
void PrintTo(QString const &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace {

QString const kSchemaNs = QStringLiteral("urn:kivmetadata:schema:1");
QString const kPanelNs = QStringLiteral("urn:kivmetadata:panel:1");

struct Def {
    QString name, ns, prefix, form, itemForm, type, typeId, label, description;
    bool hasMin = false, hasMax = false;
    double min = 0, max = 0;
    std::vector<std::pair<QString, QString>> choices;
    std::vector<Def> fields;
    qint64 line = 0;

    bool IsArray() const
    {
        return form == QStringLiteral("bag") || form == QStringLiteral("seq") || form == QStringLiteral("alt");
    }
    bool HasStructValue() const
    {
        return form == QStringLiteral("struct") || (IsArray() && itemForm == QStringLiteral("struct"));
    }
    Def const *Field(QString const &fieldPrefix, QString const &fieldName) const
    {
        for (auto const &f : fields)
            if (f.prefix == fieldPrefix && f.name == fieldName) return &f;
        return nullptr;
    }
};

struct Schema {
    QString file, ns, prefix, label, description;
    std::vector<Def> props;
    Def const *Find(QString const &name) const
    {
        for (auto const &p : props)
            if (p.name == name) return &p;
        return nullptr;
    }
};

struct TypeDef {
    QString type, label;
    bool hasMin = false, hasMax = false;
    double min = 0, max = 0;
    std::vector<std::pair<QString, QString>> choices;
};

struct PanelItem {
    QString kind, path, label;
    std::map<QString, QString> attributes;
    std::vector<std::pair<QString, QString>> choices;
    qint64 line = 0;
};

struct Panel {
    QString file, name, label;
    std::vector<QString> sectionLabels;
    std::vector<PanelItem> items;
};

QString ResourceFolder()
{
    return QString::fromUtf8(KIV_METADATA_RESOURCES_DIR);
}

QStringList XmlFiles(QString const &sub)
{
    QDir dir(ResourceFolder() + u'/' + sub);
    return dir.entryList({QStringLiteral("*.xml")}, QDir::Files, QDir::Name);
}

// An attribute's value, or the fallback when it is absent.
QString Attr(QXmlStreamAttributes const &a, char const *name, QString const &fallback = {})
{
    QLatin1String key(name);
    return a.hasAttribute(key) ? a.value(key).toString() : fallback;
}

void ReadChoice(QXmlStreamReader &xml, std::vector<std::pair<QString, QString>> &choices)
{
    auto a = xml.attributes();
    choices.emplace_back(Attr(a, "value"), Attr(a, "label"));
    xml.skipCurrentElement();
}

void ReadNumber(QXmlStreamAttributes const &a, char const *name, bool &has, double &value)
{
    QLatin1String key(name);
    if (!a.hasAttribute(key)) return;
    value = a.value(key).toDouble(&has);
    if (!has) ADD_FAILURE() << "not a number: " << name << "=" << a.value(key).toString().toStdString();
}

// Reads the <property> or <field> the reader stands on; a field without its
// own namespace takes the schema's.
Def ReadDef(QXmlStreamReader &xml, Schema const &schema)
{
    Def d;
    auto a = xml.attributes();
    d.line = xml.lineNumber();
    d.name = Attr(a, "name");
    d.ns = Attr(a, "namespace", schema.ns);
    d.prefix = Attr(a, "prefix", schema.prefix);
    d.form = Attr(a, "form", QStringLiteral("simple"));
    d.itemForm = Attr(a, "itemForm", QStringLiteral("simple"));
    d.type = Attr(a, "type");
    d.typeId = Attr(a, "typeId");
    d.label = Attr(a, "label");
    d.description = Attr(a, "description");
    ReadNumber(a, "min", d.hasMin, d.min);
    ReadNumber(a, "max", d.hasMax, d.max);
    while (xml.readNextStartElement()) {
        if (xml.name() == QStringLiteral("choice"))
            ReadChoice(xml, d.choices);
        else if (xml.name() == QStringLiteral("field"))
            d.fields.push_back(ReadDef(xml, schema));
        else
            xml.skipCurrentElement();
    }
    return d;
}

// The loaded files; every test reads them afresh (one process per test).
class StandardDefinitionsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (auto const &f : XmlFiles(QStringLiteral("definitions"))) {
            if (f == QStringLiteral("types.xml"))
                LoadTypes(f);
            else
                LoadSchema(f);
        }
        for (auto const &f : XmlFiles(QStringLiteral("panels")))
            LoadPanel(f);
        for (auto const &s : mSchemas)
            mByPrefix[s.prefix] = &s;
    }

    bool Open(QString const &path, QXmlStreamReader &xml, QFile &file, QString const &root, QString const &ns)
    {
        file.setFileName(path);
        if (!file.open(QIODevice::ReadOnly)) {
            ADD_FAILURE() << "cannot open " << path.toStdString();
            return false;
        }
        xml.setDevice(&file);
        if (!xml.readNextStartElement() || xml.name() != root || xml.namespaceUri() != ns) {
            ADD_FAILURE() << path.toStdString() << ": root must be <" << root.toStdString() << " xmlns=\""
                          << ns.toStdString() << "\">";
            return false;
        }
        return true;
    }

    void Finish(QXmlStreamReader &xml, QString const &path)
    {
        while (!xml.atEnd())
            xml.readNext();
        if (xml.hasError())
            ADD_FAILURE() << path.toStdString() << ":" << xml.lineNumber() << ": " << xml.errorString().toStdString();
    }

    void LoadSchema(QString const &f)
    {
        QString path = ResourceFolder() + QStringLiteral("/definitions/") + f;
        QFile file;
        QXmlStreamReader xml;
        if (!Open(path, xml, file, QStringLiteral("schema"), kSchemaNs)) return;
        Schema s;
        s.file = f;
        auto a = xml.attributes();
        s.ns = Attr(a, "namespace");
        s.prefix = Attr(a, "prefix");
        s.label = Attr(a, "label");
        s.description = Attr(a, "description");
        while (xml.readNextStartElement()) {
            if (xml.name() == QStringLiteral("property"))
                s.props.push_back(ReadDef(xml, s));
            else
                xml.skipCurrentElement();
        }
        Finish(xml, path);
        mSchemas.push_back(std::move(s));
    }

    void LoadTypes(QString const &f)
    {
        QString path = ResourceFolder() + QStringLiteral("/definitions/") + f;
        QFile file;
        QXmlStreamReader xml;
        if (!Open(path, xml, file, QStringLiteral("types"), kSchemaNs)) return;
        while (xml.readNextStartElement()) {
            if (xml.name() != QStringLiteral("type")) {
                xml.skipCurrentElement();
                continue;
            }
            auto a = xml.attributes();
            QString id = Attr(a, "id");
            EXPECT_FALSE(mTypes.count(id)) << "type defined twice: " << id.toStdString();
            TypeDef &t = mTypes[id];
            t.type = Attr(a, "type");
            t.label = Attr(a, "label");
            ReadNumber(a, "min", t.hasMin, t.min);
            ReadNumber(a, "max", t.hasMax, t.max);
            while (xml.readNextStartElement()) {
                if (xml.name() == QStringLiteral("choice"))
                    ReadChoice(xml, t.choices);
                else
                    xml.skipCurrentElement();
            }
        }
        Finish(xml, path);
    }

    void LoadPanel(QString const &f)
    {
        QString path = ResourceFolder() + QStringLiteral("/panels/") + f;
        QFile file;
        QXmlStreamReader xml;
        if (!Open(path, xml, file, QStringLiteral("panel"), kPanelNs)) return;
        Panel p;
        p.file = f;
        p.name = Attr(xml.attributes(), "name");
        p.label = Attr(xml.attributes(), "label");
        while (xml.readNextStartElement()) {
            if (xml.name() != QStringLiteral("section")) {
                ADD_FAILURE() << f.toStdString() << ":" << xml.lineNumber()
                              << ": only sections belong at the top of a panel";
                xml.skipCurrentElement();
                continue;
            }
            p.sectionLabels.push_back(Attr(xml.attributes(), "label"));
            while (xml.readNextStartElement()) {
                PanelItem item;
                item.kind = xml.name().toString();
                item.line = xml.lineNumber();
                for (auto const &attr : xml.attributes()) {
                    if (attr.name() == QStringLiteral("path"))
                        item.path = attr.value().toString();
                    else if (attr.name() == QStringLiteral("label"))
                        item.label = attr.value().toString();
                    else
                        item.attributes[attr.name().toString()] = attr.value().toString();
                }
                while (xml.readNextStartElement()) {
                    if (xml.name() == QStringLiteral("choice"))
                        ReadChoice(xml, item.choices);
                    else
                        xml.skipCurrentElement();
                }
                p.items.push_back(std::move(item));
            }
        }
        Finish(xml, path);
        mPanels.push_back(std::move(p));
    }

    // The definition a panel path names: "prefix:Name" or
    // "prefix:Struct/fieldPrefix:field" (any depth); null when it names none.
    Def const *Resolve(QString const &path) const
    {
        auto steps = path.split(u'/');
        auto split = [](QString const &step, QString &prefix, QString &name) {
            int colon = step.indexOf(u':');
            if (colon <= 0) return false;
            prefix = step.left(colon);
            name = step.mid(colon + 1);
            return !name.isEmpty();
        };
        QString prefix, name;
        if (!split(steps.front(), prefix, name)) return nullptr;
        auto schema = mByPrefix.find(prefix);
        if (schema == mByPrefix.end()) return nullptr;
        Def const *def = schema->second->Find(name);
        for (qsizetype i = 1; def && i < steps.size(); ++i) {
            if (!split(steps[i], prefix, name)) return nullptr;
            def = def->Field(prefix, name);
        }
        return def;
    }

    // The choices shown for a definition: its own, else its type's.
    std::vector<std::pair<QString, QString>> const &ChoicesOf(Def const &d) const
    {
        static std::vector<std::pair<QString, QString>> const none;
        if (!d.choices.empty()) return d.choices;
        auto t = mTypes.find(d.typeId);
        return t == mTypes.end() ? none : t->second.choices;
    }

    // Calls fn for every property and field, with a readable location.
    template <typename Fn> void ForEachDef(Fn fn) const
    {
        for (auto const &s : mSchemas) {
            std::vector<std::pair<Def const *, std::string>> stack;
            for (auto const &p : s.props)
                stack.emplace_back(&p, s.prefix.toStdString() + ':' + p.name.toStdString());
            while (!stack.empty()) {
                auto [def, where] = stack.back();
                stack.pop_back();
                fn(*def, where);
                for (auto const &f : def->fields)
                    stack.emplace_back(&f, where + '/' + f.prefix.toStdString() + ':' + f.name.toStdString());
            }
        }
    }

    std::vector<Schema> mSchemas;
    std::map<QString, Schema const *> mByPrefix;
    std::map<QString, TypeDef> mTypes;
    std::vector<Panel> mPanels;
};

// "$$$/kivmetadata/<something>=<English text>".
bool IsLocalisedText(QString const &text)
{
    static QRegularExpression const re(QStringLiteral(R"(^\$\$\$/kivmetadata/[A-Za-z0-9_./+-]+=\S.*$)"));
    return re.match(text).hasMatch();
}

bool IsXmlName(QString const &name)
{
    static QRegularExpression const re(QStringLiteral(R"(^[A-Za-z_][A-Za-z0-9_.-]*$)"));
    return re.match(name).hasMatch();
}

TEST_F(StandardDefinitionsTest, EveryStandardFileIsPresentAndCompiledIn)
{
    std::set<QString> prefixes, panels;
    for (auto const &s : mSchemas)
        prefixes.insert(s.prefix);
    for (auto const &p : mPanels)
        panels.insert(p.name);
    for (char const *prefix : {"dc", "xmp", "xmpRights", "xmpMM", "photoshop", "Iptc4xmpCore", "Iptc4xmpExt", "exif",
                               "exifEX", "tiff", "aux", "pdf", "crs", "xmpDM", "plus"})
        EXPECT_TRUE(prefixes.count(QString::fromUtf8(prefix))) << "missing schema " << prefix;
    for (char const *name :
         {"Description", "IPTCCore", "IPTCExtension", "CameraData", "GPSData", "Origin", "Rights", "AudioVideo"})
        EXPECT_TRUE(panels.count(QString::fromUtf8(name))) << "missing panel " << name;
    EXPECT_FALSE(mTypes.empty()) << "types.xml is missing or empty";

    // The library's resources must hold exactly the files of the source
    // folder: a file left out of kivmetadata.qrc never loads.
    ASSERT_TRUE(kivmetadata::Initialize());
    for (QString sub : {QStringLiteral("definitions"), QStringLiteral("panels")}) {
        QStringList compiled =
            QDir(QStringLiteral(":/kivmetadata/") + sub).entryList({QStringLiteral("*.xml")}, QDir::Files, QDir::Name);
        EXPECT_EQ(compiled, XmlFiles(sub)) << sub.toStdString();
        for (auto const &f : compiled) {
            QFile source(ResourceFolder() + u'/' + sub + u'/' + f),
                resource(QStringLiteral(":/kivmetadata/") + sub + u'/' + f);
            ASSERT_TRUE(source.open(QIODevice::ReadOnly) && resource.open(QIODevice::ReadOnly));
            EXPECT_TRUE(source.readAll() == resource.readAll()) << f.toStdString() << " is stale in the resources";
        }
    }
    kivmetadata::Terminate();
}

TEST_F(StandardDefinitionsTest, SchemasAndPropertiesAreWellFormed)
{
    static std::set<QString> const forms{"simple", "struct", "bag", "seq", "alt", "langAlt"};
    static std::set<QString> const types{"integer", "real", "text", "boolean", "openChoice", "closedChoice"};
    std::map<QString, QString> namespaceOfPrefix;
    auto bindPrefix = [&](QString const &prefix, QString const &ns, std::string const &where) {
        auto [it, added] = namespaceOfPrefix.emplace(prefix, ns);
        EXPECT_TRUE(added || it->second == ns) << where << ": prefix " << prefix.toStdString() << " bound to "
                                               << it->second.toStdString() << " and " << ns.toStdString();
    };

    std::set<QString> schemaNamespaces;
    for (auto const &s : mSchemas) {
        std::string where = s.file.toStdString();
        EXPECT_EQ(s.file, s.prefix + QStringLiteral(".xml")) << where;
        EXPECT_TRUE(schemaNamespaces.insert(s.ns).second) << where << ": namespace used by two schemas";
        EXPECT_TRUE(s.ns.endsWith(u'/') || s.ns.endsWith(u'#')) << where << ": " << s.ns.toStdString();
        EXPECT_TRUE(IsLocalisedText(s.label)) << where << ": label " << s.label.toStdString();
        EXPECT_TRUE(IsLocalisedText(s.description)) << where << ": description";
        EXPECT_FALSE(s.props.empty()) << where;
        bindPrefix(s.prefix, s.ns, where);
    }

    ForEachDef([&](Def const &d, std::string const &where) {
        EXPECT_TRUE(IsXmlName(d.name)) << where << ": name";
        EXPECT_TRUE(forms.count(d.form)) << where << ": form " << d.form.toStdString();
        EXPECT_TRUE(d.itemForm == QStringLiteral("simple") || (d.itemForm == QStringLiteral("struct") && d.IsArray()))
            << where << ": itemForm " << d.itemForm.toStdString();
        EXPECT_TRUE(IsLocalisedText(d.label)) << where << ": label " << d.label.toStdString();
        EXPECT_TRUE(d.description.isEmpty() || IsLocalisedText(d.description)) << where << ": description";
        bindPrefix(d.prefix, d.ns, where);
        if (d.HasStructValue()) {
            EXPECT_FALSE(d.fields.empty()) << where << ": a struct needs fields";
            EXPECT_TRUE(d.type.isEmpty()) << where << ": a struct has no primitive type";
            std::set<std::pair<QString, QString>> names;
            for (auto const &f : d.fields)
                EXPECT_TRUE(names.emplace(f.prefix, f.name).second)
                    << where << ": field " << f.name.toStdString() << " twice";
        } else {
            EXPECT_TRUE(d.fields.empty()) << where << ": fields on a value that is not a struct";
            EXPECT_TRUE(types.count(d.type)) << where << ": type '" << d.type.toStdString() << "'";
        }
        if (d.hasMin && d.hasMax) {
            EXPECT_LE(d.min, d.max) << where;
        }
    });

    for (auto const &s : mSchemas) {
        std::set<QString> names;
        for (auto const &p : s.props)
            EXPECT_TRUE(names.insert(p.name).second)
                << s.prefix.toStdString() << ":" << p.name.toStdString() << " defined twice";
    }
}

TEST_F(StandardDefinitionsTest, TypeIdsAndChoicesAreConsistent)
{
    static std::set<QString> const types{"integer", "real", "text", "boolean", "openChoice", "closedChoice"};
    for (auto const &[id, t] : mTypes) {
        EXPECT_TRUE(types.count(t.type)) << "type " << id.toStdString() << ": '" << t.type.toStdString() << "'";
        EXPECT_TRUE(IsLocalisedText(t.label)) << "type " << id.toStdString();
        if (t.type == QStringLiteral("closedChoice") && id != t.type) {
            EXPECT_FALSE(t.choices.empty()) << "type " << id.toStdString();
        }
    }
    // The type ids the controls and the writability rule look for.
    for (char const *id : {"url", "uri", "xpath", "date", "rational", "rating"})
        EXPECT_TRUE(mTypes.count(QString::fromUtf8(id))) << id;
    EXPECT_EQ(mTypes[QStringLiteral("rating")].type, QStringLiteral("real"));

    auto checkChoices = [](std::vector<std::pair<QString, QString>> const &choices, bool integers,
                           std::string const &where) {
        std::set<QString> values;
        for (auto const &[value, label] : choices) {
            EXPECT_TRUE(values.insert(value).second) << where << ": choice " << value.toStdString() << " twice";
            EXPECT_TRUE(IsLocalisedText(label)) << where << ": choice label " << label.toStdString();
            bool ok = false;
            value.toLongLong(&ok);
            if (integers) {
                EXPECT_TRUE(ok) << where << ": choice " << value.toStdString() << " is not an integer";
            }
        }
    };
    for (auto const &[id, t] : mTypes)
        checkChoices(t.choices, id == QStringLiteral("integer"), "type " + id.toStdString());

    ForEachDef([&](Def const &d, std::string const &where) {
        if (!d.typeId.isEmpty()) {
            EXPECT_TRUE(mTypes.count(d.typeId)) << where << ": unknown typeId " << d.typeId.toStdString();
        }
        checkChoices(d.choices, d.typeId == QStringLiteral("integer") || d.type == QStringLiteral("integer"), where);
        if (d.type == QStringLiteral("closedChoice")) {
            EXPECT_FALSE(ChoicesOf(d).empty()) << where << ": closed choice without choices";
        }
        if (d.type == QStringLiteral("boolean")) {
            for (auto const &[value, label] : d.choices)
                EXPECT_TRUE(value == QStringLiteral("True") || value == QStringLiteral("False"))
                    << where << ": " << value.toStdString();
        }
        // Every XMP date is edited with the date control.
        if (d.name.contains(QStringLiteral("Date")) && d.type == QStringLiteral("text") &&
            !d.name.contains(QStringLiteral("Circa"))) {
            EXPECT_EQ(d.typeId, QStringLiteral("date")) << where;
        }
    });
}

// A translator sees each key once: the same key must not carry two English
// texts in different places.
TEST_F(StandardDefinitionsTest, EachLocalisationKeyHasOneEnglishText)
{
    std::map<QString, QString> texts;
    auto add = [&](QString const &keyWithDefault) {
        int equals = keyWithDefault.indexOf(u'=');
        if (equals < 0) return;
        auto [it, added] = texts.emplace(keyWithDefault.left(equals), keyWithDefault.mid(equals + 1));
        EXPECT_TRUE(added || it->second == keyWithDefault.mid(equals + 1))
            << it->first.toStdString() << ": \"" << it->second.toStdString() << "\" and \""
            << keyWithDefault.mid(equals + 1).toStdString() << "\"";
    };
    for (auto const &s : mSchemas) {
        add(s.label);
        add(s.description);
    }
    ForEachDef([&](Def const &d, std::string const &) {
        add(d.label);
        add(d.description);
        for (auto const &c : d.choices)
            add(c.second);
    });
    for (auto const &[id, t] : mTypes) {
        add(t.label);
        for (auto const &c : t.choices)
            add(c.second);
    }
    for (auto const &p : mPanels) {
        add(p.label);
        for (auto const &label : p.sectionLabels)
            add(label);
        for (auto const &item : p.items) {
            add(item.label);
            for (auto const &c : item.choices)
                add(c.second);
        }
    }
    EXPECT_GT(texts.size(), 1000u);
}

// The value forms and types that the rest of the library relies on.
TEST_F(StandardDefinitionsTest, KeyPropertiesHaveTheirXmpForms)
{
    struct Expect {
        char const *path, *form, *itemForm, *type, *typeId;
    };
    Expect const table[] = {
        {"dc:creator", "seq", "simple", "text", ""},
        {"dc:subject", "bag", "simple", "text", ""},
        {"dc:title", "langAlt", "simple", "text", ""},
        {"dc:description", "langAlt", "simple", "text", ""},
        {"dc:rights", "langAlt", "simple", "text", ""},
        {"dc:date", "seq", "simple", "text", "date"},
        {"xmp:CreateDate", "simple", "simple", "text", "date"},
        {"xmp:Rating", "simple", "simple", "real", "rating"},
        {"xmpRights:Marked", "simple", "simple", "boolean", ""},
        {"xmpRights:WebStatement", "simple", "simple", "text", "url"},
        {"photoshop:Urgency", "simple", "simple", "closedChoice", "integer"},
        {"exif:Flash", "struct", "simple", "", ""},
        {"exif:ExposureTime", "simple", "simple", "text", "rational"},
        {"exif:FNumber", "simple", "simple", "text", "rational"},
        {"exif:FocalLength", "simple", "simple", "text", "rational"},
        {"exif:GPSLatitude", "simple", "simple", "text", "gpsCoordinate"},
        {"exif:ISOSpeedRatings", "seq", "simple", "integer", ""},
        {"tiff:Orientation", "simple", "simple", "closedChoice", "orientation"},
        {"Iptc4xmpCore:CreatorContactInfo", "struct", "simple", "", ""},
        {"Iptc4xmpCore:CreatorContactInfo/Iptc4xmpCore:CiUrlWork", "simple", "simple", "text", "url"},
        {"Iptc4xmpExt:LocationShown", "bag", "struct", "", ""},
        {"Iptc4xmpExt:LocationShown/exif:GPSLatitude", "simple", "simple", "text", "gpsCoordinate"},
        {"xmpMM:History", "seq", "struct", "", ""},
        {"xmpMM:History/stEvt:when", "simple", "simple", "text", "date"},
        {"xmpDM:duration", "struct", "simple", "", ""},
        {"crs:ToneCurvePV2012", "seq", "simple", "text", ""},
    };
    for (auto const &e : table) {
        Def const *d = Resolve(QString::fromUtf8(e.path));
        ASSERT_NE(d, nullptr) << e.path;
        EXPECT_EQ(d->form, QString::fromUtf8(e.form)) << e.path;
        EXPECT_EQ(d->itemForm, QString::fromUtf8(e.itemForm)) << e.path;
        EXPECT_EQ(d->type, QString::fromUtf8(e.type)) << e.path;
        EXPECT_EQ(d->typeId, QString::fromUtf8(e.typeId)) << e.path;
    }

    auto values = [&](char const *path) {
        QStringList out;
        if (Def const *d = Resolve(QString::fromUtf8(path))) {
            for (auto const &c : ChoicesOf(*d))
                out << c.first;
        }
        return out.join(u' ').toStdString();
    };
    EXPECT_EQ(values("photoshop:Urgency"), "0 1 2 3 4 5 6 7 8");
    EXPECT_EQ(values("tiff:Orientation"), "1 2 3 4 5 6 7 8");
    EXPECT_EQ(values("exif:Flash/exif:Return"), "0 2 3");
    EXPECT_EQ(values("exif:Flash/exif:Mode"), "0 1 2 3");

    Def const *flash = Resolve(QStringLiteral("exif:Flash"));
    ASSERT_NE(flash, nullptr);
    for (char const *field : {"Fired", "Return", "Mode", "Function", "RedEyeMode"})
        EXPECT_NE(flash->Field(QStringLiteral("exif"), QString::fromUtf8(field)), nullptr) << field;
    Def const *contact = Resolve(QStringLiteral("Iptc4xmpCore:CreatorContactInfo"));
    ASSERT_NE(contact, nullptr);
    for (char const *field : {"CiAdrExtadr", "CiAdrCity", "CiAdrRegion", "CiAdrPcode", "CiAdrCtry", "CiTelWork",
                              "CiEmailWork", "CiUrlWork"})
        EXPECT_NE(contact->Field(QStringLiteral("Iptc4xmpCore"), QString::fromUtf8(field)), nullptr) << field;
}

TEST_F(StandardDefinitionsTest, PanelsNameDefinedPropertiesWithKnownAttributes)
{
    static std::set<QString> const attributes{"dropdown", "openChoice", "rating", "size", "readOnly", "multiLines"};
    static std::set<QString> const booleans{"dropdown", "openChoice", "rating", "readOnly"};
    std::set<QString> names;
    for (auto const &p : mPanels) {
        std::string file = p.file.toStdString();
        EXPECT_EQ(p.file, p.name + QStringLiteral(".xml")) << file;
        EXPECT_TRUE(names.insert(p.name).second) << file << ": panel name used twice";
        EXPECT_TRUE(IsLocalisedText(p.label)) << file << ": label";
        EXPECT_FALSE(p.items.empty()) << file;
        for (auto const &label : p.sectionLabels)
            EXPECT_TRUE(IsLocalisedText(label)) << file << ": section label";

        std::set<QString> paths;
        for (auto const &item : p.items) {
            std::string where = file + ":" + std::to_string(item.line) + " " + item.path.toStdString();
            EXPECT_TRUE(paths.insert(item.path).second) << where << ": shown twice";
            EXPECT_TRUE(item.label.isEmpty() || IsLocalisedText(item.label)) << where << ": label";
            Def const *d = Resolve(item.path);
            if (!d) {
                ADD_FAILURE() << where << ": names no defined property";
                continue;
            }
            // A struct row shows fields and an array row an item list; a
            // property row has one text or choice control and cannot show either.
            if (item.kind == QStringLiteral("struct")) {
                EXPECT_EQ(d->form, QStringLiteral("struct")) << where;
            } else if (item.kind == QStringLiteral("array")) {
                EXPECT_TRUE(d->IsArray()) << where;
            } else {
                EXPECT_EQ(item.kind, QStringLiteral("property")) << where;
                EXPECT_FALSE(d->HasStructValue()) << where << ": a struct value needs a struct or array row";
            }

            for (auto const &[key, value] : item.attributes) {
                EXPECT_TRUE(attributes.count(key)) << where << ": unknown attribute " << key.toStdString();
                if (booleans.count(key)) {
                    EXPECT_TRUE(value == QStringLiteral("true") || value == QStringLiteral("false"))
                        << where << ": " << key.toStdString();
                }
                if (key == QStringLiteral("size") || key == QStringLiteral("multiLines")) {
                    EXPECT_GT(value.toInt(), 0) << where << ": " << key.toStdString();
                }
            }
            // The control factory makes a star rating only for a real value.
            if (item.attributes.count(QStringLiteral("rating"))) {
                EXPECT_EQ(d->type, QStringLiteral("real")) << where;
            }
            if (item.attributes.count(QStringLiteral("dropdown"))) {
                EXPECT_FALSE(item.choices.empty() && ChoicesOf(*d).empty()) << where << ": dropdown without choices";
            }
            std::set<QString> values;
            for (auto const &[value, label] : item.choices) {
                EXPECT_TRUE(values.insert(value).second) << where << ": choice " << value.toStdString() << " twice";
                EXPECT_TRUE(IsLocalisedText(label)) << where;
            }
        }
    }
}

// The model reads the same files: every schema arrives whole, and every path
// of every standard panel has the definition its control is made from.
TEST_F(StandardDefinitionsTest, ModelLoadsEverySchemaAndResolvesEveryPanelPath)
{
    kivmetadata::ClearErrorInfos();
    ASSERT_TRUE(kivmetadata::Initialize());
    for (auto const &e : kivmetadata::GetErrorInfos())
        ADD_FAILURE() << "load error: " << e.mDescription << " (" << e.mContext << ")";

    std::function<std::size_t(Def const &)> countDefs = [&](Def const &d) {
        std::size_t n = 1;
        for (auto const &f : d.fields)
            n += countDefs(f);
        return n;
    };
    std::function<std::size_t(kivmetadata::PropertyDefinition const &)> countModel =
        [&](kivmetadata::PropertyDefinition const &d) {
            std::size_t n = 1;
            for (auto const &f : d.mFields)
                n += countModel(*f);
            return n;
        };
    for (auto const &s : mSchemas) {
        auto schema = kivmetadata::NamespaceDefinition(s.ns.toStdString());
        ASSERT_TRUE(schema) << s.prefix.toStdString();
        EXPECT_EQ(schema->mPrefix, s.prefix.toStdString());
        std::size_t inFile = 0, inModel = 0;
        for (auto const &p : s.props)
            inFile += countDefs(p);
        for (auto const &p : schema->mProperties)
            inModel += countModel(*p);
        EXPECT_EQ(inModel, inFile) << s.prefix.toStdString() << ": properties and fields lost on reading";
    }
    for (auto const &[id, t] : mTypes) {
        EXPECT_TRUE(kivmetadata::TypeIdDefinition(id.toStdString())) << id.toStdString();
    }

    std::function<void(kivmetadata::Path const &, std::string const &)> checkPath = [&](kivmetadata::Path const &path,
                                                                                        std::string const &where) {
        auto definition = kivmetadata::PathEntryDefinition(path);
        if (!definition) {
            ADD_FAILURE() << where << ": no definition for " << path.mNamespace << " " << path.mPath;
            return;
        }
        if (!definition->mTypeId.empty()) {
            EXPECT_TRUE(kivmetadata::TypeIdDefinition(definition->mTypeId)) << where;
        }
        if (definition->IsStruct()) {
            for (auto const &field : definition->mFields)
                checkPath(kivmetadata::CreatePathFromStructField(path, *field), where);
        } else if (definition->IsArray() && definition->mItemForm == kivmetadata::ValueForm::kStruct) {
            checkPath(kivmetadata::CreatePathFromArrayItem(path, 1), where);
        } else {
            // The control factory makes no control for a value without one.
            EXPECT_TRUE(kivmetadata::PrimitiveTypeOfPath(path).has_value()) << where << ": no primitive type";
        }
    };
    for (auto const &p : mPanels) {
        auto view = kivmetadata::GetViewDefinitionForName(p.name.toStdString());
        ASSERT_TRUE(view) << p.name.toStdString();
        std::size_t shown = 0;
        for (auto const &section : view->mItems) {
            for (auto const &item : section->mChildren) {
                ++shown;
                std::string where = p.name.toStdString() + " " + item->mPath.mPath;
                checkPath(item->mPath, where);
                if (item->HasAttribute("rating")) {
                    EXPECT_EQ(kivmetadata::PrimitiveTypeOfPath(item->mPath), kivmetadata::kPrimitiveType_Real) << where;
                }
                // A drop-down needs choices: the row's own, the property's or its type's.
                if (item->HasAttribute("dropdown") && item->mChoices.empty()) {
                    auto definition = kivmetadata::PathEntryDefinition(item->mPath);
                    EXPECT_TRUE(definition && !kivmetadata::DefinitionChoices(*definition).empty()) << where;
                }
            }
        }
        EXPECT_EQ(shown, p.items.size()) << p.name.toStdString();
    }
    kivmetadata::Terminate();
}

// One tag of exiftool's tag list.
struct ExiftoolTag {
    QString group, id, name, type, parent, firstValue;
    QStringList flags;
};

// exiftool's XMP tags of the schemas defined here, by our prefix.
std::multimap<QString, ExiftoolTag> ExiftoolTags(QString const &exiftool)
{
    static std::map<QString, QString> const tableToPrefix{{"XMP::dc", "dc"},
                                                          {"XMP::xmp", "xmp"},
                                                          {"XMP::xmpRights", "xmpRights"},
                                                          {"XMP::xmpMM", "xmpMM"},
                                                          {"XMP::photoshop", "photoshop"},
                                                          {"XMP::iptcCore", "Iptc4xmpCore"},
                                                          {"XMP::iptcExt", "Iptc4xmpExt"},
                                                          {"XMP::exif", "exif"},
                                                          {"XMP::exifEX", "exifEX"},
                                                          {"XMP::tiff", "tiff"},
                                                          {"XMP::aux", "aux"},
                                                          {"XMP::pdf", "pdf"},
                                                          {"XMP::crs", "crs"},
                                                          {"XMP::xmpDM", "xmpDM"},
                                                          {"PLUS::XMP", "plus"}};
    QProcess process;
    process.start(exiftool,
                  {QStringLiteral("-listx"), QStringLiteral("-f"), QStringLiteral("-lang"), QStringLiteral("en")});
    process.waitForFinished(120000);
    QXmlStreamReader xml(process.readAllStandardOutput());
    std::multimap<QString, ExiftoolTag> tags;
    QString prefix, group;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        auto a = xml.attributes();
        if (xml.name() == QStringLiteral("table")) {
            auto it = tableToPrefix.find(Attr(a, "name"));
            if (it == tableToPrefix.end()) {
                xml.skipCurrentElement();
                continue;
            }
            prefix = it->second;
            group = Attr(a, "g1");
        } else if (xml.name() == QStringLiteral("tag")) {
            ExiftoolTag tag{group,
                            Attr(a, "id"),
                            Attr(a, "name"),
                            Attr(a, "type"),
                            Attr(a, "struct"),
                            {},
                            Attr(a, "flags").split(u',')};
            while (xml.readNextStartElement()) {
                if (xml.name() == QStringLiteral("values") && xml.readNextStartElement() && tag.firstValue.isEmpty())
                    tag.firstValue = Attr(xml.attributes(), "id");
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
        for (auto const &f : def.fields)
            if (f.ns == ns && f.name == name) {
                ++checked;
                return &f;
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
                EXPECT_EQ(f->form, CheckValue(xml, *f, at, checked)) << at;
            } else {
                xml.skipCurrentElement();
            }
        } else if (name == QStringLiteral("Bag") || name == QStringLiteral("Seq") || name == QStringLiteral("Alt")) {
            bool languages = false;
            while (xml.readNextStartElement()) {
                languages = languages || xml.attributes().hasAttribute(kXmlNs, QStringLiteral("lang"));
                QString item = CheckValue(xml, def, where, checked);
                if (def.IsArray()) {
                    EXPECT_EQ(def.itemForm, item) << where << ": array item";
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
    QString exiftool = QStandardPaths::findExecutable(QStringLiteral("exiftool"));
    if (exiftool.isEmpty()) GTEST_SKIP() << "exiftool is not installed";
    auto tags = ExiftoolTags(exiftool);
    ASSERT_FALSE(tags.empty());

    int compared = 0;
    QStringList writes;
    for (auto const &[prefix, tag] : tags) {
        Def const *d = tag.parent.isEmpty() ? mByPrefix.at(prefix)->Find(tag.id) : nullptr;
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
        std::string where = prefix.toStdString() + ":" + d->name.toStdString();
        QString form = tag.flags.contains(QStringLiteral("Bag"))   ? QStringLiteral("bag")
                       : tag.flags.contains(QStringLiteral("Seq")) ? QStringLiteral("seq")
                       : tag.flags.contains(QStringLiteral("Alt")) ? QStringLiteral("alt")
                       : tag.type == QStringLiteral("lang-alt")    ? QStringLiteral("langAlt")
                       : tag.type == QStringLiteral("struct")      ? QStringLiteral("struct")
                                                                   : QStringLiteral("simple");
        EXPECT_EQ(d->form, form) << where;
        if (tag.type == QStringLiteral("struct")) {
            EXPECT_TRUE(d->HasStructValue()) << where;
        }
        if (tag.type == QStringLiteral("date")) {
            EXPECT_EQ(d->typeId, QStringLiteral("date")) << where;
        }
        if (tag.type == QStringLiteral("rational")) {
            EXPECT_EQ(d->typeId, QStringLiteral("rational")) << where;
        }
        if (tag.type == QStringLiteral("boolean") || tag.type == QStringLiteral("real")) {
            EXPECT_EQ(d->type, tag.type) << where;
        }
    }
    EXPECT_GT(compared, 300);

    // A sidecar written by exiftool with every struct field set shows the
    // namespace and the value form of each field.
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QString sidecar = dir.filePath(QStringLiteral("fields.xmp")), args = dir.filePath(QStringLiteral("args.txt"));
    QFile argFile(args);
    ASSERT_TRUE(argFile.open(QIODevice::WriteOnly));
    argFile.write((QStringList{QStringLiteral("-n"), QStringLiteral("-m"), QStringLiteral("-o"), sidecar} + writes)
                      .join(u'\n')
                      .toUtf8());
    argFile.close();
    QProcess process;
    process.start(exiftool, {QStringLiteral("-@"), args});
    ASSERT_TRUE(process.waitForFinished(120000));
    QFile file(sidecar);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << process.readAllStandardError().toStdString();

    std::map<QString, Schema const *> byNamespace;
    for (auto const &s : mSchemas)
        byNamespace[s.ns] = &s;
    QXmlStreamReader xml(&file);
    int checked = 0;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        // Descend into x:xmpmeta, rdf:RDF and rdf:Description.
        if (xml.namespaceUri() == kRdfNs || xml.namespaceUri() == QStringLiteral("adobe:ns:meta/")) continue;
        auto schema = byNamespace.find(xml.namespaceUri().toString());
        Def const *d = schema == byNamespace.end() ? nullptr : schema->second->Find(xml.name().toString());
        if (d && d->HasStructValue()) {
            std::string where = schema->second->prefix.toStdString() + ":" + d->name.toStdString();
            EXPECT_EQ(d->form, CheckValue(xml, *d, where, checked)) << where;
        } else {
            xml.skipCurrentElement();
        }
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    EXPECT_GT(checked, 100);
}

} // namespace
