#pragma once

#include "CommandLine.h"

#include <kivmetadata/Path.h>

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

class QTextStream;

namespace kivmetadata {
class FileMetaDataProvider;
class MetaDataProvider;
} // namespace kivmetadata

namespace kivui {
class UI_SubView;
}

namespace kivmeta {

// Turns "PREFIX:Name", "PREFIX:Name/PREFIX:Field" or "PREFIX:Name[2]/..." into
// a Path with the prefixes the XMP toolkit uses. Unknown prefixes and
// properties that have no definition are refused with a message.
std::optional<kivmetadata::Path> ResolvePropertyName(QString const &inName, QString &outError);

// Applies one edit to `inProvider` the way a panel does: the control factory
// builds the property's control under `inParent`, the edit's text is put into
// the control, and the control's value binding writes it back (UpdateValue).
// A value the control or the model refuses, and a property that cannot be
// written, give false and a message; the provider is then left as it was.
bool ApplyEdit(std::shared_ptr<kivmetadata::MetaDataProvider> const &inProvider, kivui::UI_SubView *inParent,
               PropertyEdit const &inEdit, QString &outError);

// Opens the files (on every core), applies the edits through one provider
// (a multi-asset provider over all files), and saves every file. Nothing is
// saved when any edit is refused. A file that cannot be opened, written or
// saved exactly is left as it was, the others are still saved, and every
// refused file is listed at the end with its reason. With `inSidecar` the
// metadata goes to NAME.xmp beside each file, and each one written is named
// on `out`. Returns the process exit status (0 or 1).
int RunEdits(QStringList const &inFiles, std::vector<PropertyEdit> const &inEdits, bool inSidecar, QTextStream &err,
             QTextStream &out);

// Prints DumpLines of each file to `out`, preceded by "==> FILE <==" when
// there are several. Returns the exit status.
int RunDumps(QStringList const &inFiles, QTextStream &out, QTextStream &err);

} // namespace kivmeta
