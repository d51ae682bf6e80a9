#pragma once
// Helpers shared by the binding test files.

#include <kivcore/Assert.h>
#include <kivmetadata/Definitions.h>
#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadata/GetValueResult.h>
#include <kivmetadata/MemoryMetaDataProvider.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/SchemaDefinition.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadata/XMPMeta.h>
#include <kivmetadataui/Initialize.h>

#include <QFile>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace kivtest {

// Collects every debug assertion raised while it lives.
class AssertRecorder {
public:
    AssertRecorder()
    {
        mPrevious = kivcore::debug::SetAssertHandler(
            [this](kivcore::debug::AssertInfo const &info) { mAsserts.push_back(info); });
    }
    ~AssertRecorder() { kivcore::debug::SetAssertHandler(mPrevious); }
    AssertRecorder(AssertRecorder const &) = delete;
    AssertRecorder &operator=(AssertRecorder const &) = delete;

    std::vector<kivcore::debug::AssertInfo> const &Asserts() const { return mAsserts; }
    void Clear() { mAsserts.clear(); }

    // Whether an assertion with this condition (and function, when given) fired.
    bool Fired(std::string const &condition, std::string const &function = {}) const
    {
        for (auto const &a : mAsserts) {
            if (a.condition == condition && (function.empty() || a.function == function)) return true;
        }
        return false;
    }
    // The assertions fired since the last call, as "unit|function|condition".
    std::vector<std::string> Take()
    {
        std::vector<std::string> taken;
        for (auto const &a : mAsserts)
            taken.push_back(a.unit + "|" + a.function + "|" + a.condition);
        mAsserts.clear();
        return taken;
    }
    // Whether an assertion carrying this message fired.
    bool FiredMessage(std::string const &message) const
    {
        for (auto const &a : mAsserts) {
            if (a.message == message) return true;
        }
        return false;
    }

private:
    std::vector<kivcore::debug::AssertInfo> mAsserts;
    kivcore::debug::AssertHandler mPrevious;
};

// The file's bytes, or none when it cannot be read.
inline QByteArray ReadAll(QString const &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The property's single value as the file holds it, or "<absent>" or "<unreadable>".
inline std::string FileValue(QString const &file, kivmetadata::Path const &path)
{
    auto provider = kivmetadata::FileMetaDataProvider::Open(file.toStdU16String());
    if (!provider) return "<unreadable>";
    std::string text;
    kivmetadata::GetValueResult result{};
    kivmetadata::GetValue(kivmetadata::Value{false, path, provider}, text, result);
    return result == kivmetadata::kGetValueResult_OneValue ? text : "<absent>";
}

// Sets the property as an edit elsewhere would: the provider's listeners hear of it.
inline void SetAndNotify(std::shared_ptr<kivmetadata::MetaDataProvider> const &provider, kivmetadata::Path const &path,
                         std::string const &text)
{
    kivmetadata::MetaDataUpdateAccess access(provider);
    ASSERT_TRUE(kivmetadata::SetValue(kivmetadata::Value{false, path, provider}, text));
    access.AddChange(path);
}

// An XMP packet holding `body` (rdf:Description content) with the usual
// namespaces declared.
inline std::string Packet(std::string const &body)
{
    return R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">)"
           R"(<rdf:Description rdf:about="" xmlns:dc="http://purl.org/dc/elements/1.1/")"
           R"( xmlns:xmp="http://ns.adobe.com/xap/1.0/" xmlns:photoshop="http://ns.adobe.com/photoshop/1.0/")"
           R"( xmlns:xmpRights="http://ns.adobe.com/xap/1.0/rights/" xmlns:exif="http://ns.adobe.com/exif/1.0/">)" +
           body + "</rdf:Description></rdf:RDF></x:xmpmeta>";
}

// Every node of the object as "namespace path = value (options)", for
// comparing whole packets.
inline std::map<std::string, std::string> Nodes(kivmetadata::XMPMeta const *meta)
{
    std::map<std::string, std::string> nodes;
    if (!meta) return nodes;
    meta->Iterate([&](kivmetadata::XMPMeta::Node const &node) {
        if (!(node.mOptions & kivmetadata::XMPMeta::kPropIsSchemaNode))
            nodes[node.mNamespace + " " + node.mPath] = node.mValue + " (" + std::to_string(node.mOptions) + ")";
        return true;
    });
    return nodes;
}

// A small schema whose properties cover every kind of control.
inline constexpr char kTestNS[] = "http://ns.kivtest.org/binding/1.0/";

inline void RegisterTestSchema()
{
    static bool registered = false;
    if (registered && kivmetadata::NamespaceDefinition(kTestNS)) return;
    static constexpr char kSchema[] = R"(<schema xmlns="urn:kivmetadata:schema:1"
  namespace="http://ns.kivtest.org/binding/1.0/" prefix="kbt" label="$$$/kivtest/schema=Binding test">
  <property name="count" type="integer" min="0" max="100" label="$$$/kivtest/count=Count"/>
  <property name="ratio" type="real" label="$$$/kivtest/ratio=Ratio"/>
  <property name="note" type="text" label="$$$/kivtest/note=Note" description="$$$/kivtest/note/d=What to remember"/>
  <property name="flag" type="boolean" label="$$$/kivtest/flag=Flag"/>
  <property name="mood" type="openChoice" label="$$$/kivtest/mood=Mood">
    <choice value="happy" label="$$$/kivtest/mood/happy=Happy"/>
    <choice value="sad" label="$$$/kivtest/mood/sad=Sad"/>
  </property>
  <property name="level" type="closedChoice" label="$$$/kivtest/level=Level">
    <choice value="1" label="$$$/kivtest/level/1=Low"/>
    <choice value="2" label="$$$/kivtest/level/2=High"/>
  </property>
  <property name="tags" form="bag" type="text" label="$$$/kivtest/tags=Tags"/>
  <property name="steps" form="seq" type="text" label="$$$/kivtest/steps=Steps"/>
  <property name="caption" form="langAlt" type="text" label="$$$/kivtest/caption=Caption"/>
  <property name="home" type="text" typeId="url" label="$$$/kivtest/home=Home"/>
  <property name="link" type="text" typeId="uri" label="$$$/kivtest/link=Link"/>
  <property name="stars" type="real" typeId="rating" label="$$$/kivtest/stars=Stars"/>
  <property name="when" type="text" typeId="date" label="$$$/kivtest/when=When"/>
  <property name="speed" type="text" typeId="rational" label="$$$/kivtest/speed=Speed"/>
</schema>)";
    std::string error;
    auto schema = kivmetadata::ParseSchemaDefinition(kSchema, u"", &error);
    ASSERT_TRUE(schema) << error;
    ASSERT_TRUE(kivmetadata::RegisterSchemaDefinition(schema, "test", true));
    registered = true;
}

inline kivmetadata::Path TestPath(std::string const &name)
{
    return kivmetadata::PathForSchemaNameAndPropertyName(kTestNS, name);
}

// A packet of the test schema (and of Dublin Core) with `body` inside.
inline std::string TestPacket(std::string const &body)
{
    return R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">)"
           R"(<rdf:Description rdf:about="" xmlns:kbt="http://ns.kivtest.org/binding/1.0/")"
           R"( xmlns:dc="http://purl.org/dc/elements/1.1/">)" +
           body + "</rdf:Description></rdf:RDF></x:xmpmeta>";
}

// An in-memory provider that records the changes it is told of, and whose
// write acceptance a test may withdraw.
class RecordingProvider : public kivmetadata::MemoryMetaDataProvider {
public:
    explicit RecordingProvider(std::string const &packet) : MemoryMetaDataProvider(kivmetadata::XMPMeta::Parse(packet))
    {
    }
    static std::shared_ptr<RecordingProvider> Make(std::string const &body = {})
    {
        return std::make_shared<RecordingProvider>(TestPacket(body));
    }
    bool AcceptsPath(kivmetadata::Value const &value, bool forWriting) const override
    {
        if (forWriting && !mAcceptsWriting) return false;
        if (!forWriting && !mAcceptsReading) return false;
        return MemoryMetaDataProvider::AcceptsPath(value, forWriting);
    }
    void OnMetadataChanged(std::set<kivmetadata::Path> const &changes) override
    {
        mChanges.insert(changes.begin(), changes.end());
        ++mNotifications;
    }
    // The property's text, or "<absent>".
    std::string Text(std::string const &name)
    {
        std::string text;
        auto const path = TestPath(name);
        if (!GetMeta()->GetProperty(path.mNamespace, path.mPath, text)) return "<absent>";
        return text;
    }

    std::set<kivmetadata::Path> mChanges;
    int mNotifications = 0;
    bool mAcceptsWriting = true;
    bool mAcceptsReading = true;
};

// The library started with the test schema and nothing forced writable;
// `mProvider` is the test's to fill.
class SchemaTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        kivmetadataui::Initialize();
        RegisterTestSchema();
        kivmetadata::SetAllMetadataForcedWritable(false);
    }
    void TearDown() override
    {
        kivmetadata::SetAllMetadataForcedWritable(false);
        kivmetadataui::Terminate();
    }
    kivmetadata::Value ValueOf(std::string const &name) const { return {false, TestPath(name), mProvider}; }

    std::shared_ptr<RecordingProvider> mProvider;
};

} // namespace kivtest
