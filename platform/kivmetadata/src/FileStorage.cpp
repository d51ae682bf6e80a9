#include "FileStorage_p.h"

#include "PacketLimits_p.h"
#include "XmpHandles_p.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace kivmetadata::detail {

namespace {

std::string Utf8(QString const &path)
{
    return path.toUtf8().toStdString();
}

bool ReadAll(QString const &path, std::string &bytes, std::string &error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = "the file cannot be read (" + file.errorString().toStdString() + ")";
        return false;
    }
    QByteArray const all = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        error = "the file cannot be read (" + file.errorString().toStdString() + ")";
        return false;
    }
    bytes.assign(all.constData(), std::size_t(all.size()));
    return true;
}

std::string FormatName(XmpFileType format)
{
    std::uint32_t const code = format;
    std::string name;
    for (int shift = 24; shift >= 0; shift -= 8)
        name += char((code >> shift) & 0xff);
    while (!name.empty() && name.back() == ' ')
        name.pop_back();
    return name;
}

// Formats whose handler reports the packet as stored bytes at a fixed offset,
// with no checksum over them: the packet can be rewritten in place when the
// edit fits its padding.
bool RewritableInPlace(XmpFileType format)
{
    switch (format) {
    case XMP_FT_PHOTOSHOP:
    case XMP_FT_GIF:
    case XMP_FT_MPEG4:
    case XMP_FT_MOV:
    case XMP_FT_AVI:
    case XMP_FT_WAV:
    case XMP_FT_AIFF:
    case XMP_FT_MP3:
    case XMP_FT_FLV:
    case XMP_FT_EPS:
    case XMP_FT_PS:
    case XMP_FT_WEBP:
        return true;
    default:
        return false;
    }
}

bool BytesAt(QString const &path, std::int64_t offset, std::string const &expected)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(offset)) return false;
    QByteArray const bytes = file.read(qint64(expected.size()));
    return bytes.size() == qsizetype(expected.size()) &&
           std::memcmp(bytes.constData(), expected.data(), expected.size()) == 0;
}

void ReadByScanning(std::string const &native, StoredPacket &packet)
{
    packet.mStorage = Storage::kReadOnly;
    XmpFile scanned(xmp_files_open_new(native.c_str(), XmpOpenFileOptions(XMP_OPEN_READ | XMP_OPEN_USEPACKETSCANNING)));
    XmpString text;
    XmpPacketInfo info{};
    if (scanned && xmp_files_get_xmp_xmpstring(scanned.get(), text, &info) && xmp_string_len(text) > 0) {
        packet.mFound = true;
        packet.mPacket = text.str();
        packet.mReadOnlyReason = "its metadata was found only by scanning the file and may belong to an embedded "
                                 "object";
    } else {
        packet.mReadOnlyReason = "this file format cannot hold XMP metadata here; it can be kept in a sidecar file";
    }
}

// Larger files (video) are left to the toolkit unchecked: reading them whole
// would cost more than the check saves.
constexpr qint64 kMaxPrescanBytes = qint64(1) << 30;

// The toolkit's handlers and its scanner parse whatever packet they find as
// soon as the file is opened, so hostile packets are looked for first.
bool RefusedBeforeToolkit(QString const &path, StoredPacket &packet)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() == 0 || file.size() > kMaxPrescanBytes) return false;
    uchar const *mapped = file.map(0, file.size());
    QByteArray read;
    std::string_view bytes;
    if (mapped) {
        bytes = std::string_view(reinterpret_cast<char const *>(mapped), std::size_t(file.size()));
    } else {
        read = file.readAll();
        bytes = std::string_view(read.constData(), std::size_t(read.size()));
    }
    std::string refusal = WrappedPacketsRefusal(bytes);
    if (mapped) file.unmap(const_cast<uchar *>(mapped));
    if (refusal.empty()) return false;
    packet.mStorage = Storage::kReadOnly;
    packet.mRefusal = std::move(refusal);
    packet.mReadOnlyReason = packet.mRefusal + ", so its metadata is not shown";
    return true;
}

void ReadWithToolkit(QString const &path, StoredPacket &packet)
{
    if (RefusedBeforeToolkit(path, packet)) return;
    std::string const native = Utf8(path);
    XmpFile file(xmp_files_open_new(native.c_str(),
                                    XmpOpenFileOptions(XMP_OPEN_READ | XMP_OPEN_ONLYXMP | XMP_OPEN_USESMARTHANDLER)));
    if (!file) {
        ReadByScanning(native, packet);
        return;
    }
    XmpFileType format = XMP_FT_UNKNOWN;
    XmpFileFormatOptions flags = XmpFileFormatOptions(0);
    XmpOpenFileOptions options = XMP_OPEN_NOOPTION;
    XmpString filePath;
    xmp_files_get_file_info(file.get(), filePath, &options, &format, &flags);
    if (format == XMP_FT_UNKNOWN || format == XMP_FT_TEXT) {
        // Opened without a handler of its own (the toolkit may still accept
        // the file): only scanning can find a packet.
        file.reset();
        ReadByScanning(native, packet);
        return;
    }
    packet.mFormatName = FormatName(format);
    XmpString text;
    XmpPacketInfo info{};
    if (xmp_files_get_xmp_xmpstring(file.get(), text, &info) && xmp_string_len(text) > 0) {
        packet.mFound = true;
        packet.mPacket = text.str();
        packet.mOffset = info.offset >= 0 ? std::size_t(info.offset) : 0;
        bool const stored = info.offset >= 0 && std::size_t(info.length) == packet.mPacket.size() &&
                            BytesAt(path, info.offset, packet.mPacket);
        if (RewritableInPlace(format) && stored) {
            packet.mStorage = Storage::kToolkitPacket;
        } else {
            packet.mStorage = Storage::kReadOnly;
            packet.mReadOnlyReason =
                "kivmeta cannot write the metadata of " + packet.mFormatName + " files without risk";
        }
        return;
    }
    packet.mStorage = Storage::kReadOnly;
    packet.mReadOnlyReason = "the " + packet.mFormatName +
                             " file has no XMP packet, and kivmeta adds packets only to JPEG, PNG and TIFF files; "
                             "the metadata can be kept in a sidecar file";
}

} // namespace

bool ReadStoredPacket(QString const &path, bool isSidecar, StoredPacket &packet, std::string &error)
{
    packet = StoredPacket{};
    if (isSidecar) {
        packet.mFormatName = "XMP";
        if (std::string refusal = SizeRefusal(std::uint64_t(QFileInfo(path).size()), XmlKind::kXmpPacket);
            !refusal.empty()) {
            packet.mStorage = Storage::kReadOnly;
            packet.mRefusal = std::move(refusal);
            packet.mReadOnlyReason = packet.mRefusal + ", so its metadata is not shown";
            return true;
        }
        if (!ReadAll(path, packet.mPacket, error)) return false;
        packet.mStorage = Storage::kSidecar;
        packet.mFound = !packet.mPacket.empty();
        packet.mFormatName = "XMP";
        return true;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = "the file cannot be read (" + file.errorString().toStdString() + ")";
        return false;
    }
    QByteArray const head = file.read(16);
    file.close();
    XmpContainerKind const kind = DetectXmpContainer(std::string_view(head.constData(), std::size_t(head.size())));
    if (kind == XmpContainerKind::kNone) {
        ReadWithToolkit(path, packet);
        return true;
    }
    if (!ReadAll(path, packet.mFileBytes, error)) return false;
    packet.mContainer = kind;
    packet.mFormatName = kind == XmpContainerKind::kJpeg ? "JPEG" : kind == XmpContainerKind::kPng ? "PNG" : "TIFF";
    XmpContainerPacket found;
    std::string why;
    if (!ReadXmpContainer(packet.mFileBytes, kind, found, why)) {
        packet.mStorage = Storage::kReadOnly;
        packet.mDamaged = true;
        packet.mReadOnlyReason = "the file's " + packet.mFormatName + " structure is damaged (" + why + ")";
        return true;
    }
    packet.mStorage = Storage::kContainer;
    packet.mFound = found.mFound;
    packet.mPacket = found.mPacket;
    packet.mExtended = found.mExtended;
    packet.mOffset = found.mOffset;
    packet.mWhere = std::move(found);
    return true;
}

std::string ToolkitReadRefusal(QString const &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    QByteArray const head = file.read(16);
    file.close();
    XmpContainerKind const kind = DetectXmpContainer(std::string_view(head.constData(), std::size_t(head.size())));
    if (kind == XmpContainerKind::kNone) {
        StoredPacket packet;
        return RefusedBeforeToolkit(path, packet) ? packet.mRefusal : std::string();
    }
    std::string bytes, error;
    XmpContainerPacket found;
    if (!ReadAll(path, bytes, error) || !ReadXmpContainer(bytes, kind, found, error)) return {};
    std::string refusal = PacketRefusal(found.mPacket);
    if (refusal.empty() && !found.mExtended.empty()) refusal = PacketRefusal(found.mExtended);
    return refusal;
}

bool ReadReconciled(QString const &path, void *xmpHandle)
{
    std::string const native = Utf8(path);
    XmpFile file(xmp_files_open_new(native.c_str(), XMP_OPEN_READ));
    return file && xmp_files_get_xmp(file.get(), static_cast<XmpPtr>(xmpHandle));
}

bool ToolkitFindsPacket(QString const &path, std::string const &packet, std::string &why)
{
    std::string const native = Utf8(path);
    XmpFile file(xmp_files_open_new(native.c_str(), XmpOpenFileOptions(XMP_OPEN_READ | XMP_OPEN_ONLYXMP)));
    if (!file) {
        why = "the XMP toolkit cannot open the written file (" + XmpErrorText(xmp_get_error()) + ")";
        return false;
    }
    XmpString text;
    XmpPacketInfo info{};
    if (!xmp_files_get_xmp_xmpstring(file.get(), text, &info) || text.str() != packet) {
        why = "the XMP toolkit does not find the written packet in the file";
        return false;
    }
    return true;
}

std::string WriteRefusal(QString const &target, bool newFile)
{
    constexpr auto anyWrite = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    QFileInfo const info(target);
    if (!newFile) {
        if (!info.exists()) return "the file no longer exists";
        if (!(info.permissions() & anyWrite) || !info.isWritable()) return "the file is read-only";
    }
    QFileInfo const folder(info.absolutePath());
    if (!(folder.permissions() & anyWrite) || !folder.isWritable()) return "the folder is read-only";
    return {};
}

bool ReplaceFileChecked(ReplaceRequest const &request, std::string &error)
{
    QFileInfo const info(request.mTarget);
    // Hidden, beside the target, so the rename cannot cross file systems.
    QTemporaryFile temp(info.absolutePath() + QStringLiteral("/.") + info.fileName() +
                        QStringLiteral(".kivmeta-XXXXXX"));
    temp.setAutoRemove(true);
    if (!temp.open()) {
        error = "no temporary file can be made in the folder (" + temp.errorString().toStdString() + ")";
        return false;
    }
    // Qt does not always keep the system's reason for a failed write.
    auto writeFailed = [&](QString const &reason) {
        int const code = errno;
        std::string const why = code != 0 ? std::strerror(code) : reason.toStdString();
        error = "the new file could not be written (" + why + "); the disk may be full";
        return false;
    };
    errno = 0;
    if (!request.mCopyFrom.isEmpty()) {
        QFile source(request.mCopyFrom);
        if (!source.open(QIODevice::ReadOnly)) {
            error = "the file cannot be read (" + source.errorString().toStdString() + ")";
            return false;
        }
        constexpr qint64 kChunk = 1 << 20;
        while (!source.atEnd()) {
            QByteArray const chunk = source.read(kChunk);
            if (chunk.isEmpty() && source.error() != QFileDevice::NoError) {
                error = "the file cannot be read (" + source.errorString().toStdString() + ")";
                return false;
            }
            if (temp.write(chunk) != chunk.size()) return writeFailed(temp.errorString());
        }
        if (request.mBytes) {
            if (!temp.seek(qint64(request.mPatchOffset)) ||
                temp.write(request.mBytes->data(), qint64(request.mBytes->size())) != qint64(request.mBytes->size()))
                return writeFailed(temp.errorString());
        }
    } else if (request.mBytes) {
        if (temp.write(request.mBytes->data(), qint64(request.mBytes->size())) != qint64(request.mBytes->size()))
            return writeFailed(temp.errorString());
    }
    if (!temp.flush()) return writeFailed(temp.errorString());

    std::string why;
    if (request.mCheck && !request.mCheck(temp.fileName(), why)) {
        error = "what was written did not read back as intended (" + why + ")";
        return false;
    }
    struct stat original {};
    if (::stat(QFile::encodeName(request.mTarget).constData(), &original) == 0) {
        if (::fchmod(temp.handle(), original.st_mode & 07777) != 0) {
            error = std::string("the file's permissions cannot be kept (") + std::strerror(errno) + ")";
            return false;
        }
        // Only root may give the file to its owner; others keep their own.
        if (::fchown(temp.handle(), original.st_uid, original.st_gid) != 0) {
        }
    }
    if (::rename(QFile::encodeName(temp.fileName()).constData(), QFile::encodeName(request.mTarget).constData()) != 0) {
        error = std::string("the file could not be replaced (") + std::strerror(errno) + ")";
        return false;
    }
    temp.setAutoRemove(false);
    return true;
}

} // namespace kivmetadata::detail
