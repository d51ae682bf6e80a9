#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace kivmeta {

// One edit given on the command line, in the order it was given.
struct PropertyEdit {
    enum class Kind { Set, Delete };
    Kind mKind = Kind::Set;
    QString mProperty; // "PREFIX:Name", possibly a field path "PREFIX:Name/PREFIX:Field"
    QString mValue;    // empty for Delete
};

struct CommandLine {
    QStringList mFiles;
    std::optional<QString> mScreenshotDir;
    std::vector<PropertyEdit> mEdits;
    QStringList mDumpFiles;
    bool mSidecar = false; // keep the metadata in NAME.xmp beside each file
    bool mHelp = false;
    bool mVersion = false;

    // Edits or dumps run without a window.
    bool IsBatch() const { return !mEdits.empty() || !mDumpFiles.isEmpty(); }
};

// Parses the arguments after the program name. Returns false with a message
// that names the faulty argument.
bool ParseCommandLine(QStringList const &inArguments, CommandLine &outLine, QString &outError);

// The usage text printed for --help and after a parse error.
QString UsageText();

} // namespace kivmeta
