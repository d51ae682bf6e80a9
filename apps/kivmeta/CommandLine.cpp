#include "CommandLine.h"

namespace kivmeta {

namespace {

// "--opt=value" or "--opt value": returns the value, consuming the next
// argument in the second form.
bool TakeValue(QStringList const &args, qsizetype &i, QString const &option, QString &value, QString &error)
{
    QString const &arg = args[i];
    if (arg.size() > option.size() && arg.at(option.size()) == u'=') {
        value = arg.mid(option.size() + 1);
        return true;
    }
    if (i + 1 >= args.size()) {
        error = QStringLiteral("%1 needs a value").arg(option);
        return false;
    }
    value = args[++i];
    return true;
}

bool Matches(QString const &arg, QString const &option)
{
    return arg == option || (arg.startsWith(option) && arg.at(option.size()) == u'=');
}

// A property name is PREFIX:Name, optionally followed by /PREFIX:Field parts.
bool IsPropertyName(QString const &name)
{
    if (name.isEmpty()) return false;
    for (QString const &part : name.split(u'/')) {
        qsizetype colon = part.indexOf(u':');
        if (colon <= 0 || colon == part.size() - 1) return false;
    }
    return true;
}

} // namespace

bool ParseCommandLine(QStringList const &args, CommandLine &line, QString &error)
{
    line = CommandLine{};
    bool onlyFiles = false;
    for (qsizetype i = 0; i < args.size(); ++i) {
        QString const &arg = args[i];
        QString value;
        if (onlyFiles || !arg.startsWith(u'-') || arg == u"-") {
            line.mFiles << arg;
        } else if (arg == u"--") {
            onlyFiles = true;
        } else if (arg == u"-h" || arg == u"--help") {
            line.mHelp = true;
        } else if (arg == u"--sidecar") {
            line.mSidecar = true;
        } else if (arg == u"--version") {
            line.mVersion = true;
        } else if (Matches(arg, QStringLiteral("--screenshot"))) {
            if (!TakeValue(args, i, QStringLiteral("--screenshot"), value, error)) return false;
            if (value.isEmpty()) {
                error = QStringLiteral("--screenshot needs a folder");
                return false;
            }
            line.mScreenshotDir = value;
        } else if (Matches(arg, QStringLiteral("--dump"))) {
            if (!TakeValue(args, i, QStringLiteral("--dump"), value, error)) return false;
            if (value.isEmpty()) {
                error = QStringLiteral("--dump needs a file");
                return false;
            }
            line.mDumpFiles << value;
        } else if (Matches(arg, QStringLiteral("--set"))) {
            if (!TakeValue(args, i, QStringLiteral("--set"), value, error)) return false;
            qsizetype eq = value.indexOf(u'=');
            QString property = eq < 0 ? value : value.left(eq);
            if (eq < 0 || !IsPropertyName(property)) {
                error = QStringLiteral("--set expects PREFIX:Name=VALUE, got \"%1\"").arg(value);
                return false;
            }
            line.mEdits.push_back({PropertyEdit::Kind::Set, property, value.mid(eq + 1)});
        } else if (Matches(arg, QStringLiteral("--delete"))) {
            if (!TakeValue(args, i, QStringLiteral("--delete"), value, error)) return false;
            if (!IsPropertyName(value)) {
                error = QStringLiteral("--delete expects PREFIX:Name, got \"%1\"").arg(value);
                return false;
            }
            line.mEdits.push_back({PropertyEdit::Kind::Delete, value, {}});
        } else {
            error = QStringLiteral("unknown option %1").arg(arg);
            return false;
        }
    }
    if (!line.mEdits.empty() && line.mFiles.isEmpty()) {
        error = QStringLiteral("--set and --delete need at least one FILE");
        return false;
    }
    if (!line.mEdits.empty() && line.mScreenshotDir) {
        error = QStringLiteral("--screenshot cannot be combined with --set or --delete");
        return false;
    }
    return true;
}

QString UsageText()
{
    return QStringLiteral("Usage: kivmeta [options] [FILE...]\n"
                          "Shows and edits the XMP metadata of FILE (several files are edited together).\n"
                          "With no FILE, opens the built-in sample image.\n"
                          "\n"
                          "Options:\n"
                          "  --screenshot DIR        render every panel to DIR/v7/<nn>-<panel>.png and\n"
                          "                          DIR/v5/<nn>-<panel>.png, then exit (also the\n"
                          "                          behaviour when no display is available)\n"
                          "  --set PREFIX:Name=VALUE set a property in every FILE (repeatable)\n"
                          "  --delete PREFIX:Name    remove a property from every FILE (repeatable)\n"
                          "  --sidecar               with --set/--delete, and in the window: keep the\n"
                          "                          metadata in NAME.xmp beside each file instead of\n"
                          "                          in the file\n"
                          "  --dump FILE             print every property of FILE as PREFIX:Path=value\n"
                          "  --version               print the library version\n"
                          "  -h, --help              print this help\n"
                          "\n"
                          "Saving changes only the edited properties (and xmp:MetadataDate); a file that\n"
                          "cannot be written exactly so is refused and left as it was. With several files,\n"
                          "every file that can be is saved, and the refused ones are listed at the end.\n"
                          "\n"
                          "Exit status: 0 on success, 1 when a value is refused or a file cannot be\n"
                          "read or written (files are then left as they were), 2 on a usage error.\n");
}

} // namespace kivmeta
