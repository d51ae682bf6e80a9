#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadata/Initialize.h>
#include <kivmetadata/MemoryMetaDataProvider.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/PathOperations.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadata/XMPMeta.h>

#include <gtest/gtest.h>

#include "TestImages.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <csignal>
#include <functional>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace kivmetadata;
using namespace testimages;

namespace {

// One tag as exiftool prints it (-s3), or the empty string.
QString ExifRead(QString const &file, QString const &tag)
{
    return QString::fromUtf8(RunExiftool({QStringLiteral("-s3"), QStringLiteral("-") + tag, file})).trimmed();
}

// Another program changes the file in place.
void ExifWrite(QString const &file, QStringList const &assignments)
{
    RunExiftool(QStringList{QStringLiteral("-q"), QStringLiteral("-overwrite_original")} + assignments << file);
}

class FileProviderTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(mDir.isValid());
        ASSERT_TRUE(Initialize());
        XMPMeta::RegisterNamespace(kFoo, "foo");
        ClearErrorInfos();
    }
    void TearDown() override { Terminate(); }

    QString Write(QString const &name, QByteArray const &bytes) { return WriteFile(mDir.filePath(name), bytes); }
    static std::shared_ptr<FileMetaDataProvider> Open(QString const &path, std::string *error = nullptr)
    {
        return FileMetaDataProvider::Open(path.toStdU16String(), error);
    }
    static Value V(std::shared_ptr<MetaDataProvider> const &provider, char const *ns, char const *name)
    {
        return Value{false, PathForSchemaNameAndPropertyName(ns, name), provider};
    }
    static std::string Text(std::shared_ptr<MetaDataProvider> const &provider, char const *ns, char const *name)
    {
        std::string text;
        GetValueResult result;
        GetValue(V(provider, ns, name), text, result);
        return text;
    }
    // Writes a JPEG with keywords, a title and a property of an undeclared namespace.
    QString FileWithMetadata(QString const &name)
    {
        QString const path = Write(name, ImageBytes("JPG"));
        auto provider = Open(path);
        EXPECT_TRUE(provider);
        {
            MetaDataUpdateAccess access(provider);
            EXPECT_TRUE(SetValue(V(provider, kDC, "subject"), "boat; sea"));
            EXPECT_TRUE(SetValue(V(provider, kDC, "title"), "Harbour"));
            EXPECT_TRUE(SetValue(V(provider, kXMP, "Rating"), 3));
            EXPECT_TRUE(provider->GetMeta()->SetProperty(kFoo, "foo:secret", "kept"));
            access.AddChange(Path{});
        }
        std::string error;
        EXPECT_TRUE(provider->Save(&error)) << error;
        return path;
    }

    QTemporaryDir mDir;
};

TEST_F(FileProviderTest, OnlyWhatChangedIsWrittenAndTheRestIsKept)
{
    QString const path = FileWithMetadata(QStringLiteral("keep.jpg"));
    QByteArray const before = ReadFile(path);
    QDateTime const stamp = QFileInfo(path).lastModified();
    auto provider = Open(path);
    {
        MetaDataUpdateAccess access(provider);
        EXPECT_FALSE(SetValue(V(provider, kDC, "subject"), "boat;sea")); // same items
        EXPECT_FALSE(SetValue(V(provider, kXMP, "Rating"), 3));
    }
    EXPECT_FALSE(provider->IsModified());
    EXPECT_TRUE(provider->Save());
    EXPECT_EQ(ReadFile(path), before);
    EXPECT_EQ(QFileInfo(path).lastModified(), stamp);

    ASSERT_TRUE(SetValue(V(provider, kXMP, "Rating"), 5));
    ASSERT_TRUE(provider->Save());
    auto reread = Open(path);
    EXPECT_EQ(Text(reread, kXMP, "Rating"), "5");
    EXPECT_EQ(Text(reread, kDC, "subject"), "boat; sea");
    EXPECT_EQ(Text(reread, kDC, "title"), "Harbour");
    std::string secret;
    EXPECT_TRUE(reread->GetMeta()->GetProperty(kFoo, "foo:secret", secret));
    EXPECT_EQ(secret, "kept");
}

TEST_F(FileProviderTest, FormatsWithoutXmpSupportTakeASidecarOnlyWhenAsked)
{
    QByteArray const data("plain bytes that no XMP handler knows\n");
    QString const path = Write(QStringLiteral("notes.dat"), data);
    QString const sidecar = mDir.filePath(QStringLiteral("notes.xmp"));
    std::string error;
    auto refused = Open(path, &error);
    ASSERT_TRUE(refused);
    EXPECT_FALSE(refused->IsWritable());
    EXPECT_NE(refused->ReadOnlyReason().find("sidecar"), std::string::npos) << refused->ReadOnlyReason();
    EXPECT_FALSE(SetValue(V(refused, kDC, "subject"), "memo"));

    FileOpenOptions options;
    options.mUseSidecar = true;
    auto provider = FileMetaDataProvider::Open(path.toStdU16String(), &error, options);
    ASSERT_TRUE(provider);
    EXPECT_EQ(QString::fromStdU16String(provider->SidecarPath()), sidecar);
    ASSERT_TRUE(SetValue(V(provider, kDC, "subject"), "memo"));
    ASSERT_TRUE(provider->Save(&error)) << error;
    EXPECT_EQ(ReadFile(path), data);
    EXPECT_EQ(Text(Open(sidecar), kDC, "subject"), "memo");
    if (!Exiftool().isEmpty()) {
        EXPECT_EQ(ExifRead(sidecar, QStringLiteral("XMP-dc:Subject")), QStringLiteral("memo"));
    }

    // A sidecar that cannot replace what is in its place is not written.
    QFile::remove(sidecar);
    QDir(mDir.path()).mkdir(QStringLiteral("notes.xmp"));
    ASSERT_TRUE(SetValue(V(provider, kDC, "subject"), "x"));
    EXPECT_FALSE(provider->Save(&error));
    EXPECT_TRUE(provider->IsModified());
    EXPECT_TRUE(QFileInfo(sidecar).isDir());
}

// A packet as other programs write them: an identifier in rdf:about,
// attribute and element forms, EXIF and TIFF properties, an empty struct,
// language alternatives, qualifiers, an undeclared schema, and no padding.
QByteArray const kForeignPacket =
    "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>"
    "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
    "<rdf:Description rdf:about=\"uuid:faf5bdd5-ba3d-11da-ad31-d33d75182f1b\" "
    "xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\" xmlns:exif=\"http://ns.adobe.com/exif/1.0/\" "
    "xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
    "xmlns:Iptc4xmpCore=\"http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/\" xmlns:foo=\"http://foo.example/ns/\" "
    "photoshop:Headline=\"Old\" exif:DateTimeDigitized=\"2020-01-02T03:04:05\" tiff:Make=\"Cam\">"
    "<Iptc4xmpCore:CreatorContactInfo rdf:parseType=\"Resource\"/>"
    "<dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">Harbour</rdf:li><rdf:li xml:lang=\"de\">Hafen</rdf:li>"
    "</rdf:Alt></dc:title>"
    "<dc:creator><rdf:Seq><rdf:li>Ann</rdf:li><rdf:li>Bob</rdf:li></rdf:Seq></dc:creator>"
    "<foo:note rdf:parseType=\"Resource\"><rdf:value>v</rdf:value><foo:by>me</foo:by></foo:note>"
    "</rdf:Description></rdf:RDF></x:xmpmeta><?xpacket end=\"w\"?>";

// A file no handler knows, with a packet inside, as in PDF files.
TEST_F(FileProviderTest, PacketsFoundOnlyByScanningAreReadOnly)
{
    QString const path = Write(QStringLiteral("doc.dat"), "junk " + kForeignPacket + " junk");
    QByteArray const before = ReadFile(path);
    std::string error;
    auto provider = Open(path, &error);
    ASSERT_TRUE(provider);
    EXPECT_EQ(Text(provider, kDC, "creator"), "Ann; Bob");
    EXPECT_FALSE(provider->IsWritable());
    EXPECT_NE(error.find("scanning"), std::string::npos) << error;
    EXPECT_FALSE(SetValue(V(provider, kDC, "subject"), "final"));
    EXPECT_FALSE(provider->Save(&error));
    EXPECT_EQ(ReadFile(path), before);
}

// The promise of saving, in every container: a file with EXIF and IPTC but
// no XMP takes a packet; then, on a packet as another program left it, with
// room in the packet or not, one edit changes that property (and the
// metadata date) and nothing else, as our reader and exiftool see it.
TEST_F(FileProviderTest, EachContainerTakesAPacketAndAnEditChangesOnlyThatProperty)
{
    QString const packetFile = Write(QStringLiteral("foreign.xmp"), kForeignPacket);
    struct Case {
        char const *name;
        QByteArray bytes;
    } const containers[] = {{"f.jpg", ImageBytes("JPG")},
                            {"f.png", ImageBytes("PNG")},
                            {"f.tif", QByteArray::fromStdString(testimages::TiffBytes(true))}};
    // Short: fits once padding exists; long: needs a new container, and for
    // JPEG Extended XMP.
    std::string const values[] = {"New", std::string(90000, 'x')};
    auto xmpJson = [](QString const &file) {
        QJsonObject object =
            ExiftoolJson({QStringLiteral("-struct"), QStringLiteral("-a"), QStringLiteral("-G1"),
                          QStringLiteral("-XMP:all"), QStringLiteral("-EXIF:all"), QStringLiteral("-IPTC:all"), file});
        object.remove(QStringLiteral("SourceFile"));
        return object;
    };
    for (auto const &c : containers) {
        SCOPED_TRACE(c.name);
        QString const path = Write(QString::fromLatin1(c.name), c.bytes);
        if (!Exiftool().isEmpty())
            ExifWrite(path, {QStringLiteral("-EXIF:Artist=Ann Example"), QStringLiteral("-IPTC:City=Kiel")});
        auto provider = Open(path);
        ASSERT_TRUE(provider);
        // No XMP yet (a TIFF shows its own tags, reconciled into XMP).
        EXPECT_EQ(Text(provider, kDC, "subject"), "");
        EXPECT_TRUE(provider->SidecarPath().empty());
        ASSERT_TRUE(SetValue(V(provider, kDC, "subject"), "boat; sea"));
        ASSERT_TRUE(SetMinimalFloatValue(V(provider, kXMP, "Rating"), 4.0));
        std::string error;
        ASSERT_TRUE(provider->Save(&error)) << error;
        EXPECT_FALSE(provider->IsModified());
        EXPECT_FALSE(QFileInfo::exists(mDir.filePath(QStringLiteral("f.xmp"))));
        EXPECT_EQ(Text(Open(path), kDC, "subject"), "boat; sea");
        EXPECT_EQ(Text(Open(path), kXMP, "Rating"), "4");
        EXPECT_TRUE(GetErrorInfos().empty());
        if (Exiftool().isEmpty()) continue;

        ExifWrite(path, {QStringLiteral("-XMP<=") + packetFile});
        for (std::string const &value : values) {
            SCOPED_TRACE("a value of " + std::to_string(value.size()) + " bytes");
            QJsonObject before = xmpJson(path);
            ASSERT_EQ(before.value(QStringLiteral("XMP-tiff:Make")).toString(), QStringLiteral("Cam"));
            ASSERT_EQ(before.value(QStringLiteral("IFD0:Artist")).toString(), QStringLiteral("Ann Example"));
            ASSERT_EQ(before.value(QStringLiteral("IPTC:City")).toString(), QStringLiteral("Kiel"));
            FileOpenOptions options;
            options.mImportLegacy = false;
            auto original = FileMetaDataProvider::Open(path.toStdU16String(), nullptr, options);
            ASSERT_TRUE(original && original->IsWritable());
            auto const originalMeta = original->GetMeta()->Clone();

            provider = Open(path);
            {
                MetaDataUpdateAccess access(provider);
                ASSERT_TRUE(SetValue(V(provider, kPhotoshop, "Headline"), value));
                access.AddChange(Path{});
            }
            ASSERT_TRUE(provider->Save(&error)) << error;

            auto reread = FileMetaDataProvider::Open(path.toStdU16String(), nullptr, options);
            ASSERT_TRUE(reread);
            // The metadata date has whole seconds: two saves may give the same.
            std::vector<Path> changed = ChangedProperties(*originalMeta, *reread->GetMeta());
            std::erase(changed, Path{kXMP, "xmp:MetadataDate"});
            EXPECT_EQ(changed, (std::vector<Path>{{kPhotoshop, "photoshop:Headline"}}));

            QJsonObject after = xmpJson(path);
            EXPECT_EQ(after.value(QStringLiteral("XMP-photoshop:Headline")).toString().toStdString(), value);
            // Extended XMP is marked in the main packet, by the standard's rule.
            for (char const *tag : {"XMP-photoshop:Headline", "XMP-xmp:MetadataDate", "XMP-xmpNote:HasExtendedXMP"}) {
                before.remove(QLatin1String(tag));
                after.remove(QLatin1String(tag));
            }
            EXPECT_EQ(before, after) << QJsonDocument(after).toJson().toStdString();
        }
    }
    if (Exiftool().isEmpty())
        GTEST_SKIP() << "exiftool is not installed: foreign packets and second reader not checked";
}

TEST_F(FileProviderTest, EditsGoOntoThePacketAsAnotherProgramLeftIt)
{
    if (Exiftool().isEmpty()) GTEST_SKIP() << "exiftool is not installed: no other program to change the file";
    QString const path = FileWithMetadata(QStringLiteral("shared.jpg"));
    auto provider = Open(path);
    ASSERT_TRUE(provider);
    ExifWrite(path, {QStringLiteral("-XMP-photoshop:City=Kiel"), QStringLiteral("-XMP-dc:Rights=Ann"),
                     QStringLiteral("-XMP-dc:Title=Theirs")});
    {
        MetaDataUpdateAccess access(provider);
        ASSERT_TRUE(SetValue(V(provider, kDC, "title"), "Mine"));
        ASSERT_TRUE(SetValue(V(provider, kXMP, "Rating"), 5));
        access.AddChange(Path{});
    }
    std::string error;
    ASSERT_TRUE(provider->Save(&error)) << error;
    auto reread = Open(path);
    EXPECT_EQ(Text(reread, kPhotoshop, "City"), "Kiel");
    EXPECT_EQ(Text(reread, kDC, "rights"), "Ann");
    EXPECT_EQ(Text(reread, kDC, "title"), "Mine");
    EXPECT_EQ(Text(reread, kXMP, "Rating"), "5");
    std::string notices;
    for (auto const &notice : provider->SaveNotices())
        notices += notice + "\n";
    for (char const *name : {"photoshop:City", "dc:rights", "dc:title"})
        EXPECT_NE(notices.find(name), std::string::npos) << name << " not in:\n" << notices;
    EXPECT_NE(notices.find("your edit replaced"), std::string::npos) << notices;
}

TEST_F(FileProviderTest, LinksAndRelativePathsReachTheRealFile)
{
    QDir(mDir.path()).mkpath(QStringLiteral("real/sub dir"));
    QString const target = FileWithMetadata(QStringLiteral("real/sub dir/fjörd ß.jpg"));
    QString const link = mDir.filePath(QStringLiteral("link.jpg"));
    ASSERT_TRUE(QFile::link(target, link));
    QString const previous = QDir::currentPath();
    QDir::setCurrent(mDir.filePath(QStringLiteral("real")));
    for (QString const &name : {QStringLiteral("../link.jpg"), QStringLiteral("sub dir/fjörd ß.jpg")}) {
        SCOPED_TRACE(name.toStdString());
        auto provider = Open(name);
        ASSERT_TRUE(provider);
        ASSERT_TRUE(SetValue(V(provider, kDC, "title"), name.toStdString()));
        std::string error;
        EXPECT_TRUE(provider->Save(&error)) << error;
        EXPECT_EQ(Text(Open(target), kDC, "title"), name.toStdString());
    }
    QDir::setCurrent(previous);
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    // Nothing is left behind in the folder.
    EXPECT_EQ(QDir(mDir.filePath(QStringLiteral("real/sub dir"))).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

TEST_F(FileProviderTest, AFullDiskLeavesTheFileAsItWas)
{
    QString const path = FileWithMetadata(QStringLiteral("full.jpg"));
    QByteArray const before = ReadFile(path);
    // The file-size limit of a child process stands in for a full disk.
    pid_t const child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{rlim_t(before.size() / 2), rlim_t(before.size() / 2)};
        setrlimit(RLIMIT_FSIZE, &limit);
        auto provider = Open(path);
        bool const set = provider && SetValue(V(provider, kDC, "description"), std::string(70000, 'y'));
        std::string error;
        bool const saved = set && provider->Save(&error);
        _exit(set && !saved && error.find("disk may be full") != std::string::npos ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_EQ(ReadFile(path), before);
    EXPECT_EQ(QDir(mDir.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

TEST_F(FileProviderTest, DamagedFilesAreReadOnlyAndNeverOverwritten)
{
    QByteArray const good = ReadFile(FileWithMetadata(QStringLiteral("good.jpg")));
    QByteArray const malformed = QByteArray(good).replace("</rdf:RDF>", "</rdf:RDX>");
    QByteArray const truncated = good.left(good.indexOf("Harbour"));
    ASSERT_NE(malformed, good);

    struct Case {
        char const *name;
        QByteArray bytes;
    } const cases[] = {{"malformed.jpg", malformed}, {"truncated.jpg", truncated}};
    for (auto const &c : cases) {
        SCOPED_TRACE(c.name);
        QString const path = Write(QString::fromLatin1(c.name), c.bytes);
        ClearErrorInfos();
        std::string error;
        auto provider = Open(path, &error);
        ASSERT_TRUE(provider);
        EXPECT_FALSE(provider->IsWritable());
        EXPECT_FALSE(error.empty());
        ASSERT_FALSE(GetErrorInfos().empty());
        EXPECT_EQ(GetErrorInfos()[0].mContext, path.toStdString());
        EXPECT_FALSE(SetValue(V(provider, kXMP, "Rating"), 1));
        EXPECT_FALSE(provider->AcceptsPath(V(provider, kXMP, "Rating"), true));
        {
            // Even a change made on the object directly is not saved.
            MetaDataUpdateAccess access(provider);
            provider->GetMeta()->SetProperty(kXMP, "xmp:Label", "x");
            access.AddChange(Path{});
        }
        EXPECT_FALSE(provider->Save(&error));
        EXPECT_EQ(ReadFile(path), c.bytes);
    }
}

TEST_F(FileProviderTest, MissingAndUnreadableFilesGiveNoProvider)
{
    std::string error;
    EXPECT_EQ(Open(mDir.filePath(QStringLiteral("missing.jpg")), &error), nullptr);
    EXPECT_NE(error.find("does not exist"), std::string::npos);
    EXPECT_EQ(Open(mDir.path(), &error), nullptr);
    EXPECT_EQ(GetErrorInfos().size(), 2u);
    if (geteuid() != 0) {
        // Root reads any file; the write checks of the next test hold for root too.
        QString const locked = Write(QStringLiteral("locked.jpg"), ImageBytes("JPG"));
        QFile::setPermissions(locked, QFileDevice::Permissions());
        EXPECT_EQ(Open(locked, &error), nullptr);
        EXPECT_NE(error.find("permission"), std::string::npos);
    }
}

// Whatever stops a write after the file was opened, the save fails with a
// reason, the edit stays pending and the file stays as it is.
TEST_F(FileProviderTest, FailedWritesLeaveTheFileAsItWas)
{
    QString const folder = mDir.filePath(QStringLiteral("ro"));
    QDir(mDir.path()).mkdir(QStringLiteral("ro"));
    struct Case {
        char const *name;
        std::function<void(QString const &)> breakIt;
    } const cases[] = {
        {"read-only file", [](QString const &path) { QFile::setPermissions(path, QFileDevice::ReadOwner); }},
        {"read-only folder",
         [&](QString const &) { QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner); }},
        {"file removed", [](QString const &path) { QFile::remove(path); }},
        {"packet broken on disk",
         [](QString const &path) {
             QByteArray broken = ReadFile(path);
             QFile file(path);
             ASSERT_TRUE(file.open(QIODevice::WriteOnly));
             file.write(broken.replace("</rdf:RDF>", "</rdf:RDX>"));
         }},
    };
    for (auto const &c : cases) {
        SCOPED_TRACE(c.name);
        QString const path = FileWithMetadata(QStringLiteral("ro/%1.jpg").arg(QLatin1String(c.name)));
        auto provider = Open(path);
        ASSERT_TRUE(SetValue(V(provider, kXMP, "Rating"), 1));
        c.breakIt(path);
        QByteArray const before = ReadFile(path);
        ClearErrorInfos();
        std::string error;
        EXPECT_FALSE(provider->Save(&error));
        EXPECT_NE(error.find("the file was left as it was"), std::string::npos) << error;
        EXPECT_EQ(GetErrorInfos().size(), 1u);
        EXPECT_TRUE(provider->IsModified());
        EXPECT_EQ(ReadFile(path), before);
        QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }
    // Nothing is left behind, and the removed file stays removed.
    EXPECT_EQ(QDir(folder).entryList(QDir::Files | QDir::Hidden).size(), 3);
}

// Each file is edited through a deep copy, as the editing dialog does, and
// the copy is committed into the file's own object.
TEST_F(FileProviderTest, AWorkingCopyCommittedIntoAFileIsSaved)
{
    for (QString const &path :
         {FileWithMetadata(QStringLiteral("a.jpg")), Write(QStringLiteral("b.png"), ImageBytes("PNG"))}) {
        SCOPED_TRACE(path.toStdString());
        auto file = Open(path);
        std::string const subject = Text(file, kDC, "subject");
        auto copy = std::make_shared<MemoryMetaDataProvider>(file->GetMeta()->Clone());
        ASSERT_TRUE(SetValue(V(copy, kDC, "creator"), "Ann; Bob"));
        DeleteValue(V(copy, kDC, "title"));
        EXPECT_FALSE(file->IsModified());
        {
            MetaDataUpdateAccess access(file);
            RemoveProperties(*access.GetMeta(), {}, {}, kUtilDoAllProperties);
            AppendProperties(*copy->GetMeta(), *access.GetMeta(), kUtilDoAllProperties);
            access.AddChange(Path{});
        }
        ASSERT_TRUE(file->IsModified());
        ASSERT_TRUE(file->Save());
        auto reread = Open(path);
        EXPECT_EQ(Text(reread, kDC, "creator"), "Ann; Bob");
        EXPECT_EQ(Text(reread, kDC, "title"), "");
        EXPECT_EQ(Text(reread, kDC, "subject"), subject);
        if (!Exiftool().isEmpty()) {
            EXPECT_EQ(ExifRead(path, QStringLiteral("XMP-dc:Creator")), QStringLiteral("Ann, Bob"));
        }
    }
}

} // namespace
