// Build-time tool: writes the sample JPEG that kivmeta opens when it is given
// no file. Usage: kivmeta-sample PACKET.xmp OUTPUT.jpg
#include "SampleImage.h"

#include <kivmetadata/Initialize.h>

#include <QFile>
#include <QGuiApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: kivmeta-sample PACKET.xmp OUTPUT.jpg\n");
        return 2;
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);

    QFile packetFile(QString::fromLocal8Bit(argv[1]));
    if (!packetFile.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "kivmeta-sample: cannot read %s: %s\n", argv[1], qPrintable(packetFile.errorString()));
        return 1;
    }
    QByteArray const packet = packetFile.readAll();

    if (!kivmetadata::Initialize()) {
        std::fprintf(stderr, "kivmeta-sample: the metadata model did not start\n");
        return 1;
    }
    QString error;
    bool ok =
        kivmeta::WriteJpegWithMetadata(QString::fromLocal8Bit(argv[2]), kivmeta::PaintSamplePicture(QSize(640, 427)),
                                       std::string_view(packet.constData(), packet.size()), error);
    kivmetadata::Terminate();
    if (!ok) {
        std::fprintf(stderr, "kivmeta-sample: %s\n", qPrintable(error));
        return 1;
    }
    return 0;
}
