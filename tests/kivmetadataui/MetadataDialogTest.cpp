// The main metadata dialog on JPEG files that the tests make: a background
// save cancelled halfway, the error list after a refused save, and templates
// saved and applied with each import option.
#include "BackgroundJob_p.h"
#include "BindingTestSupport.h"
#include "SampleImage.h"

#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadata/GetValueResult.h>
#include <kivmetadata/Templates.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/ValueAccess.h>
#include <kivmetadataui/Initialize.h>
#include <kivmetadataui/MetadataDialog.h>
#include <kivmetadataui/MetadataErrorDialog.h>
#include <kivui/ScriptedResponses.h>

#include <QEventLoop>
#include <QFile>
#include <QMetaObject>
#include <QProgressDialog>
#include <QPushButton>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>

namespace {

using kivmetadata::Path;
using kivmetadataui::MetadataDialog;
using kivtest::FileValue;
using kivtest::Packet;
using kivtest::ReadAll;
using kivtest::SetAndNotify;
using kivui::dialogs::ScriptedResponses;

constexpr char kDc[] = "http://purl.org/dc/elements/1.1/";
constexpr char kPhotoshop[] = "http://ns.adobe.com/photoshop/1.0/";

std::string const kTarget = Packet(R"(<photoshop:City>Bergen</photoshop:City>
    <dc:title><rdf:Alt><rdf:li xml:lang="x-default">Harbour</rdf:li></rdf:Alt></dc:title>
    <dc:subject><rdf:Bag><rdf:li>harbour</rdf:li><rdf:li>boats</rdf:li></rdf:Bag></dc:subject>)");

class MetadataDialogTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { kivmetadataui::Initialize(); }
    static void TearDownTestSuite() { kivmetadataui::Terminate(); }
    void SetUp() override
    {
        ASSERT_TRUE(mFolder.isValid());
        ScriptedResponses::Clear();
        ScriptedResponses::ClearHistory();
        kivmetadata::ClearErrorInfos();
    }
    void TearDown() override
    {
        kivmetadataui::BackgroundJob::SetBeforeItemHook({});
        ScriptedResponses::Clear();
    }

    QString MakeJpeg(QString const &name, std::string const &packet = kTarget)
    {
        QString const path = mFolder.filePath(name);
        QString error;
        EXPECT_TRUE(kivmeta::WriteJpegWithMetadata(path, kivmeta::PaintSamplePicture(QSize(32, 24)), packet, error))
            << error.toStdString();
        return path;
    }

    static std::shared_ptr<kivmetadata::MetaDataProvider> Open(QString const &path)
    {
        return kivmetadata::FileMetaDataProvider::Open(path.toStdU16String());
    }

    QTemporaryDir mFolder;
};

TEST_F(MetadataDialogTest, CancelledSaveStopsAfterTheCurrentFilesAndKeepsTheRestEditable)
{
    constexpr int kFiles = 8;
    constexpr std::size_t kCancelAt = 3;
    QStringList files;
    std::vector<QByteArray> originals;
    std::vector<std::shared_ptr<kivmetadata::MetaDataProvider>> providers;
    for (int i = 0; i < kFiles; ++i) {
        files << MakeJpeg(QStringLiteral("f%1.jpg").arg(i));
        originals.push_back(ReadAll(files.last()));
        providers.push_back(Open(files.last()));
    }
    MetadataDialog dialog(providers);
    SetAndNotify(dialog.EditedProvider(), {kPhotoshop, "photoshop:City"}, "Tromsø");

    // The worker that reaches file kCancelAt presses Cancel in the progress
    // window; every worker at or past it waits until the press has arrived,
    // so the files before it are saved and the ones being saved finish.
    kivmetadataui::BackgroundJob::SetBeforeItemHook([&dialog](kivmetadataui::BackgroundJob &job, std::size_t item) {
        if (item < kCancelAt) return;
        if (item == kCancelAt) {
            QMetaObject::invokeMethod(
                &dialog,
                [&dialog] {
                    ASSERT_TRUE(dialog.ProgressDialog());
                    dialog.ProgressDialog()->findChild<QPushButton *>()->click();
                },
                Qt::QueuedConnection);
        }
        while (!job.IsCancelled())
            std::this_thread::yield();
    });
    ScriptedResponses::PushOk(); // the note that says what was saved
    EXPECT_FALSE(dialog.Commit());
    kivmetadataui::BackgroundJob::SetBeforeItemHook({});

    EXPECT_TRUE(dialog.LastSaveCancelled());
    EXPECT_TRUE(dialog.LastSaveErrors().isEmpty());
    QStringList const saved = dialog.LastSavedFiles(), unsaved = dialog.LastUnsavedFiles();
    EXPECT_GT(saved.size(), int(kCancelAt));
    EXPECT_FALSE(unsaved.isEmpty());
    EXPECT_EQ(saved.size() + unsaved.size(), kFiles);
    ASSERT_EQ(ScriptedResponses::History().size(), 1u);
    QString const note = QString::fromStdU16String(ScriptedResponses::History().front().message);
    for (int i = 0; i < kFiles; ++i) {
        QString const name = QStringLiteral("f%1.jpg").arg(i);
        SCOPED_TRACE(name.toStdString());
        EXPECT_TRUE(note.contains(name));
        if (saved.contains(name)) {
            EXPECT_EQ(FileValue(files[i], {kPhotoshop, "photoshop:City"}), "Tromsø");
            originals[std::size_t(i)] = ReadAll(files[i]); // as saved
        } else {
            EXPECT_TRUE(unsaved.contains(name));
            EXPECT_EQ(ReadAll(files[i]), originals[std::size_t(i)]);
        }
    }

    // The files not reached keep their edit: OK again saves them, and does
    // not write the ones already saved again.
    EXPECT_TRUE(dialog.Commit()) << dialog.LastSaveErrors().join('\n').toStdString();
    for (int i = 0; i < kFiles; ++i) {
        EXPECT_EQ(FileValue(files[i], {kPhotoshop, "photoshop:City"}), "Tromsø") << i;
        if (saved.contains(QStringLiteral("f%1.jpg").arg(i))) {
            EXPECT_EQ(ReadAll(files[i]), originals[std::size_t(i)]) << i;
        }
    }
}

TEST_F(MetadataDialogTest, FilesReadOnWorkersLeaveOutTheUnreadableOnes)
{
    QString const a = MakeJpeg("a.jpg");
    std::string packetB = kTarget;
    packetB.replace(packetB.find("Bergen"), 6, "Narvik");
    QString const b = MakeJpeg("b.jpg", packetB);
    QString const missing = mFolder.filePath("missing.jpg");
    MetadataDialog dialog(QStringList{a, missing, b}, kivmetadata::FileOpenOptions{});
    EXPECT_TRUE(dialog.IsOpening());
    EXPECT_FALSE(dialog.EditedProvider());
    QEventLoop loop;
    bool opened = false;
    QObject::connect(&dialog, &MetadataDialog::filesOpened, &loop, [&] {
        opened = true;
        loop.quit();
    });
    QObject::connect(&dialog, &MetadataDialog::openingFailed, &loop, &QEventLoop::quit);
    loop.exec();
    ASSERT_TRUE(opened);
    EXPECT_FALSE(dialog.IsOpening());
    EXPECT_EQ(dialog.DisplayNames(), QStringList({"a.jpg", "b.jpg"}));
    ASSERT_EQ(dialog.OpenErrors().size(), 1);
    EXPECT_TRUE(dialog.OpenErrors().front().startsWith("missing.jpg: "));
    // Both readable files are edited together.
    std::string text;
    kivmetadata::GetValueResult result{};
    kivmetadata::GetValue(kivmetadata::Value{false, {kPhotoshop, "photoshop:City"}, dialog.EditedProvider()}, text,
                          result);
    EXPECT_EQ(result, kivmetadata::kGetValueResult_SeveralValues);

    MetadataDialog none(QStringList{missing}, kivmetadata::FileOpenOptions{});
    QString failure;
    QObject::connect(&none, &MetadataDialog::openingFailed, &loop, [&](QString const &message) {
        failure = message;
        loop.quit();
    });
    loop.exec();
    EXPECT_TRUE(failure.contains("missing.jpg")) << failure.toStdString();
    EXPECT_FALSE(none.OkButton()->isEnabled());
}

TEST_F(MetadataDialogTest, ErrorListNamesTheFileThatCouldNotBeSaved)
{
    QString const good = MakeJpeg("good.jpg");
    QString const locked = MakeJpeg("locked.jpg");
    QByteArray const original = ReadAll(locked);
    ASSERT_TRUE(QFile::setPermissions(locked, QFile::ReadOwner | QFile::ReadGroup));
    MetadataDialog dialog({Open(good), Open(locked)});
    SetAndNotify(dialog.EditedProvider(), {kDc, "dc:title"}, "Evening");
    ScriptedResponses::PushOk();
    EXPECT_FALSE(dialog.Commit());
    QFile::setPermissions(locked, QFile::ReadOwner | QFile::WriteOwner);
    EXPECT_EQ(dialog.LastUnsavedFiles(), QStringList{"locked.jpg"});
    ASSERT_EQ(dialog.LastSaveErrors().size(), 1);
    EXPECT_TRUE(dialog.LastSaveErrors().first().contains("locked.jpg"));
    // The other file is saved, the locked one kept byte for byte, and the box said which.
    EXPECT_EQ(FileValue(good, {kDc, "dc:title"}), "Evening");
    EXPECT_EQ(ReadAll(locked), original);
    ASSERT_EQ(ScriptedResponses::History().size(), 1u);
    EXPECT_TRUE(QString::fromStdU16String(ScriptedResponses::History().front().message).contains("locked.jpg"));

    std::vector<std::pair<std::u16string, std::u16string>> rows;
    ScriptedResponses::PushAction(
        [&rows](QWidget *shown) {
            auto *errors = dynamic_cast<kivmetadataui::MetadataErrorDialog *>(kivui::UI_Node::FromWidget(shown));
            ASSERT_TRUE(errors);
            for (int i = 0; i < errors->CountErrors(); ++i)
                rows.emplace_back(errors->GetRowDescription(i), errors->GetRowContext(i));
        },
        kivui::dialogs::ScriptedAnswer::kOk);
    dialog.ShowErrors();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_TRUE(QString::fromStdU16String(rows.front().second).endsWith("locked.jpg"));
    EXPECT_TRUE(QString::fromStdU16String(rows.front().first).contains("read-only"));
}

TEST_F(MetadataDialogTest, TemplatesApplyWithEachImportOption)
{
    QString const source = MakeJpeg("source.jpg", Packet(R"(<photoshop:City>Oslo</photoshop:City>
    <dc:subject><rdf:Bag><rdf:li>sea</rdf:li></rdf:Bag></dc:subject>)"));
    {
        MetadataDialog dialog({Open(source)});
        QString error;
        ASSERT_TRUE(dialog.SaveAsTemplate(QStringLiteral(" Trip "), &error)) << error.toStdString();
        EXPECT_FALSE(dialog.SaveAsTemplate(QStringLiteral("  "), &error));
    }
    EXPECT_TRUE(MetadataDialog::TemplateNames().contains("Trip"));

    struct Case {
        kivmetadata::TemplateImportOptions mOptions;
        char const *mTitle;
        char const *mCity;
        char const *mSubject;
    };
    Case const cases[] = {
        {kivmetadata::kTemplateImport_ClearAndReplace, "<absent>", "Oslo", "sea"},
        {kivmetadata::kTemplateImport_KeepAndReplace, "Harbour", "Oslo", "sea"},
        {kivmetadata::kTemplateImport_KeepAndAppend, "Harbour", "Bergen", "harbour; boats; sea"},
    };
    for (Case const &c : cases) {
        SCOPED_TRACE(int(c.mOptions));
        QString const file = MakeJpeg(QStringLiteral("target%1.jpg").arg(int(c.mOptions)));
        QByteArray const original = ReadAll(file);
        MetadataDialog dialog({Open(file)});
        QString error;
        ASSERT_TRUE(dialog.ApplyTemplate(QStringLiteral("Trip"), c.mOptions, &error)) << error.toStdString();
        // Applied to the dialog's working copy: nothing reaches the file before OK.
        EXPECT_EQ(ReadAll(file), original);
        ASSERT_TRUE(dialog.Commit()) << dialog.LastSaveErrors().join('\n').toStdString();
        EXPECT_EQ(FileValue(file, {kDc, "dc:title"}), c.mTitle);
        EXPECT_EQ(FileValue(file, {kPhotoshop, "photoshop:City"}), c.mCity);
        EXPECT_EQ(FileValue(file, {kDc, "dc:subject"}), c.mSubject);
    }
    QString error;
    MetadataDialog dialog({Open(source)});
    EXPECT_FALSE(
        dialog.ApplyTemplate(QStringLiteral("No such template"), kivmetadata::kTemplateImport_KeepAndReplace, &error));
    EXPECT_FALSE(error.isEmpty());
}

} // namespace
