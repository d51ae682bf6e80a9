#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <string_view>

namespace kivmeta {

// A small harbour-at-dusk picture painted with shapes only, so that no font
// is needed when the build makes the sample file.
QImage PaintSamplePicture(QSize const &size);

// Writes `image` as a JPEG file at `path` (atomically replacing any file
// there) and merges the XMP `packet` into it through the metadata model's
// file provider. kivmetadata must be initialised.
bool WriteJpegWithMetadata(QString const &path, QImage const &image, std::string_view packet, QString &error);

} // namespace kivmeta
