#pragma once

#include <kivcore/kivcore_export.h>

#include <string>
#include <vector>

namespace kivcore::utility {

// File system helpers. Paths are UTF-16 and use '/' as separator.
class KIVCORE_EXPORT FileUtils {
public:
    // Names (not paths) of the regular files in a folder, sorted by name;
    // empty for a missing or unreadable folder.
    static std::vector<std::u16string> ContainedFiles(std::u16string const &folder);
    static bool RemoveFile(std::u16string const &path);
    static bool FileOrDirExists(std::u16string const &path);
    static bool DirectoryExists(std::u16string const &path);
    // Characters that are illegal in a file name on any common system
    // (/ \ : * ? " < > | and control characters) are replaced.
    static std::u16string ReplaceIllegalFileNameCharacters(std::u16string const &name,
                                                           std::u16string const &replacement);
    static std::u16string StripTrailingSlash(std::u16string const &path);
    // Joins a folder and a name with exactly one '/'.
    static std::u16string Join(std::u16string const &folder, std::u16string const &name);

    // Writes the bytes atomically: into a temporary file beside the target,
    // then renamed over it. On failure the target is untouched and `error`
    // (when given) says why.
    static bool SimpleWriteStringToFile(std::u16string const &path, std::string const &bytes,
                                        std::string *error = nullptr);
    static bool ReadFileToString(std::u16string const &path, std::string &bytes, std::string *error = nullptr);
};

// A folder of the file system.
class KIVCORE_EXPORT Directory {
public:
    explicit Directory(std::u16string path);
    std::u16string const &Path() const noexcept { return mPath; }
    bool Exists() const;
    // True for the root of the file system (a folder without parent).
    bool IsTopLevelDir() const;
    Directory Parent() const;
    // Creates this one folder (not its parents); true when it exists afterwards.
    bool Create() const;

private:
    std::u16string mPath;
};

// Opens a file or an address with the desktop's default application.
KIVCORE_EXPORT bool OpenFileInDefaultApplication(std::u16string const &pathOrUrl);

} // namespace kivcore::utility
