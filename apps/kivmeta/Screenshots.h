#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace kivmetadataui {
class MetadataDialog;
}

namespace kivmeta {

// The file name part for a tab: "Description" -> "description",
// "IPTC Core" -> "iptc-core".
QString PanelFileStem(QString const &inPanelName);

// Renders every tab of a fresh window (made by `inMakeWindow` after the look
// is set) to "<inDir>/<look>/<nn>-<tab>.png", and the progress window of a
// save to "<inDir>/<look>/progress-saving.png", in the V7 and then the V5
// look, and leaves the V7 look in force. Returns false with a message when a
// folder or a file cannot be written.
bool WriteScreenshots(std::function<std::unique_ptr<kivmetadataui::MetadataDialog>()> const &inMakeWindow,
                      QString const &inDir, QStringList &outWritten, QString &outError);

} // namespace kivmeta
