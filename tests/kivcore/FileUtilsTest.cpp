#include <kivcore/FileUtils.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <unistd.h>

using kivcore::utility::Directory;
using kivcore::utility::FileUtils;

TEST(FileUtilsTest, NamesAndPaths)
{
    EXPECT_EQ(FileUtils::ReplaceIllegalFileNameCharacters(u"a/b:c*d?e\"f<g>h|i\\j", u"-"), u"a-b-c-d-e-f-g-h-i-j");
    EXPECT_EQ(FileUtils::ReplaceIllegalFileNameCharacters(u"Caf\u00e9 \u65e5\u672c", u"-"), u"Caf\u00e9 \u65e5\u672c");
    EXPECT_EQ(FileUtils::StripTrailingSlash(u"/a/b//"), u"/a/b");
    EXPECT_EQ(FileUtils::StripTrailingSlash(u"/"), u"/");
    EXPECT_EQ(FileUtils::Join(u"/a/", u"b.xml"), u"/a/b.xml");
    EXPECT_TRUE(Directory(u"/").IsTopLevelDir());
    EXPECT_EQ(Directory(u"/a/b/").Parent().Path(), u"/a");
}

TEST(FileUtilsTest, FoldersFilesAndAtomicWrites)
{
    QTemporaryDir tmp;
    const std::u16string root = tmp.path().toStdU16String();
    const std::u16string nested = FileUtils::Join(FileUtils::Join(root, u"x"), u"y");
    EXPECT_FALSE(FileUtils::DirectoryExists(nested));
    EXPECT_FALSE(Directory(nested).Create()); // parents are not made
    ASSERT_TRUE(Directory(FileUtils::Join(root, u"x")).Create());
    ASSERT_TRUE(Directory(nested).Create());
    EXPECT_TRUE(Directory(nested).Exists());

    const std::u16string file = FileUtils::Join(nested, u"b.txt");
    ASSERT_TRUE(FileUtils::SimpleWriteStringToFile(file, "first"));
    ASSERT_TRUE(FileUtils::SimpleWriteStringToFile(FileUtils::Join(nested, u"a.txt"), "x"));
    EXPECT_EQ(FileUtils::ContainedFiles(nested), (std::vector<std::u16string>{u"a.txt", u"b.txt"}));
    EXPECT_TRUE(FileUtils::ContainedFiles(FileUtils::Join(root, u"missing")).empty());
    EXPECT_TRUE(FileUtils::FileOrDirExists(file));
    EXPECT_FALSE(FileUtils::DirectoryExists(file));

    // A folder that cannot be written: the write fails with a reason and the old file stays.
    if (geteuid() != 0) {
        ::chmod(tmp.path().toLocal8Bit().constData(), 0700);
        ::chmod(QString::fromStdU16String(nested).toLocal8Bit().constData(), 0500);
        std::string error;
        EXPECT_FALSE(FileUtils::SimpleWriteStringToFile(file, "second", &error));
        EXPECT_FALSE(error.empty());
        ::chmod(QString::fromStdU16String(nested).toLocal8Bit().constData(), 0700);
    }
    // Writing to a path whose folder is a file fails cleanly.
    std::string error;
    EXPECT_FALSE(FileUtils::SimpleWriteStringToFile(FileUtils::Join(file, u"c.txt"), "x", &error));
    std::string bytes;
    ASSERT_TRUE(FileUtils::ReadFileToString(file, bytes));
    EXPECT_EQ(bytes, "first");
    EXPECT_TRUE(FileUtils::RemoveFile(file));
    EXPECT_FALSE(FileUtils::FileOrDirExists(file));
    EXPECT_FALSE(FileUtils::ReadFileToString(file, bytes, &error));
}
