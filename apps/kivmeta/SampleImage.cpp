#include "SampleImage.h"

#include <kivmetadata/FileMetaDataProvider.h>
#include <kivmetadata/MetaDataUpdateAccess.h>
#include <kivmetadata/XMPMeta.h>

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QSaveFile>

namespace kivmeta {

QImage PaintSamplePicture(QSize const &size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    qreal const w = size.width();
    qreal const h = size.height();
    qreal const horizon = h * 0.58;

    QLinearGradient sky(0, 0, 0, horizon);
    sky.setColorAt(0.0, QColor(24, 32, 74));
    sky.setColorAt(0.6, QColor(180, 84, 96));
    sky.setColorAt(1.0, QColor(250, 170, 90));
    p.fillRect(QRectF(0, 0, w, horizon), sky);

    QLinearGradient sea(0, horizon, 0, h);
    sea.setColorAt(0.0, QColor(40, 52, 92));
    sea.setColorAt(1.0, QColor(10, 16, 36));
    p.fillRect(QRectF(0, horizon, w, h - horizon), sea);

    // Warehouses along the quay, each gable a different colour.
    QColor const walls[] = {QColor(170, 40, 36), QColor(210, 160, 60), QColor(236, 226, 204),
                            QColor(150, 70, 40), QColor(200, 110, 50), QColor(120, 30, 30)};
    qreal const houseWidth = w / 9.0;
    for (int i = 0; i < 6; ++i) {
        qreal x = w * 0.08 + i * houseWidth * 1.05;
        qreal top = horizon - h * (0.16 + 0.03 * (i % 3));
        QPainterPath house;
        house.moveTo(x, horizon);
        house.lineTo(x, top);
        house.lineTo(x + houseWidth / 2, top - houseWidth * 0.45);
        house.lineTo(x + houseWidth, top);
        house.lineTo(x + houseWidth, horizon);
        house.closeSubpath();
        p.fillPath(house, walls[i]);
        p.fillRect(QRectF(x + houseWidth * 0.3, top + (horizon - top) * 0.3, houseWidth * 0.16, houseWidth * 0.2),
                   QColor(255, 220, 120));
    }

    // Lights on the water.
    p.setPen(Qt::NoPen);
    for (int i = 0; i < 14; ++i) {
        qreal x = w * 0.06 + i * w * 0.065;
        p.setBrush(QColor(255, 210, 110, 150));
        p.drawEllipse(QPointF(x, horizon + h * 0.05 + (i % 4) * h * 0.04), w * 0.012, h * 0.006);
    }

    // A boat with a mast.
    QPainterPath hull;
    hull.moveTo(w * 0.55, horizon + h * 0.12);
    hull.lineTo(w * 0.85, horizon + h * 0.12);
    hull.lineTo(w * 0.80, horizon + h * 0.19);
    hull.lineTo(w * 0.59, horizon + h * 0.19);
    hull.closeSubpath();
    p.fillPath(hull, QColor(230, 230, 235));
    p.setPen(QPen(QColor(230, 230, 235), w * 0.006));
    p.drawLine(QPointF(w * 0.68, horizon + h * 0.12), QPointF(w * 0.68, horizon - h * 0.12));

    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 245, 220));
    p.drawEllipse(QPointF(w * 0.82, h * 0.15), w * 0.03, w * 0.03);
    p.end();
    return image;
}

bool WriteJpegWithMetadata(QString const &path, QImage const &image, std::string_view packet, QString &error)
{
    std::string parseError;
    std::unique_ptr<kivmetadata::XMPMeta> source = kivmetadata::XMPMeta::Parse(packet, &parseError);
    if (!source) {
        error = QStringLiteral("the XMP packet does not parse: %1").arg(QString::fromStdString(parseError));
        return false;
    }

    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !image.save(&file, "JPEG", 88) || !file.commit()) {
        error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }

    std::string openError;
    auto provider = kivmetadata::FileMetaDataProvider::Open(path.toStdU16String(), &openError);
    if (!provider) {
        error = QStringLiteral("cannot open %1: %2").arg(path, QString::fromStdString(openError));
        return false;
    }
    {
        kivmetadata::MetaDataUpdateAccess access(provider);
        kivmetadata::XMPMeta *meta = access.GetMeta();
        if (!meta) {
            error = QStringLiteral("%1 has no metadata object").arg(path);
            return false;
        }
        kivmetadata::AppendProperties(*source, *meta,
                                      kivmetadata::kUtilDoAllProperties | kivmetadata::kUtilReplaceOldValues);
        access.AddChange(kivmetadata::Path{});
    }
    std::string saveError;
    if (!provider->Save(&saveError)) {
        error = QStringLiteral("cannot save the metadata of %1: %2").arg(path, QString::fromStdString(saveError));
        return false;
    }
    return true;
}

} // namespace kivmeta
