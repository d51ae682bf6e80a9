#include <kivmetadata/FileMetaDataProvider.h>

#include "Log_p.h"
#include "Registry_p.h"
#include "XmpHandles_p.h"

#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/XMPMeta.h>

#include <kivcore/FileUtils.h>
#include <kivcore/StringUtils.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

namespace kivmetadata {

using namespace detail;

struct FileMetaDataProvider::Private {
    std::u16string mPath;
    std::string mPathUtf8;
    std::u16string mSidecar; // set when the XMP lives in a sidecar file
    std::unique_ptr<XMPMeta> mMeta;
    bool mModified = false;
    bool mWritable = true;
};

namespace {

constexpr std::uint32_t kInPlaceFlags = XMP_FMT_CAN_INJECT_XMP;

bool Fail(std::string *error, std::string const &message, std::string const &context)
{
    AddErrorInfo(message, context);
    if (error) *error = message;
    return false;
}

// Reads the XMP of a file with Exempi. `found` tells whether the file holds
// metadata; `inPlace` whether Exempi can write into this format.
//
// The file is opened with legacy reconciliation (not "only XMP"): EXIF and
// IPTC values show in the XMP object, and writing it back later keeps the
// EXIF and IPTC blocks consistent instead of dropping them.
bool ReadEmbedded(std::string const &path, XMPMeta &meta, bool &found, bool &inPlace, std::string &message)
{
    found = false;
    inPlace = false;
    XmpFile file(xmp_files_open_new(path.c_str(), XMP_OPEN_READ));
    if (!file) {
        int const code = xmp_get_error();
        // No handler: the format is unknown to Exempi, a sidecar takes the XMP.
        if (code == -109 || code == -108 || code == 0) return true;
        message = XmpErrorText(code);
        return false;
    }
    XmpFileType format = XMP_FT_UNKNOWN;
    XmpFileFormatOptions flags = XmpFileFormatOptions(0);
    XmpOpenFileOptions options = XMP_OPEN_NOOPTION;
    XmpString filePath;
    xmp_files_get_file_info(file.get(), filePath, &options, &format, &flags);
    XmpString packet;
    XmpPacketInfo info{};
    // The PNG handler reports offset -1 even with a packet: the text decides.
    bool const hasPacket = xmp_files_get_xmp_xmpstring(file.get(), packet, &info) && xmp_string_len(packet) > 0;
    bool const known = format != XMP_FT_UNKNOWN && format != XMP_FT_TEXT;
    if (hasPacket) {
        // A packet the toolkit cannot parse must not be replaced by what
        // little could be read of it.
        XMPMeta check;
        std::string error;
        if (!check.ParseFromBuffer(std::string_view(xmp_string_cstr(packet), xmp_string_len(packet)), &error)) {
            message = "the XMP packet is malformed (" + error + ")";
            return false;
        }
    }
    found = xmp_files_get_xmp(file.get(), static_cast<XmpPtr>(meta.Handle())) && !meta.IsEmpty();
    if (hasPacket && !found) {
        message = "the XMP packet cannot be read (" + XmpErrorText(xmp_get_error()) + ")";
        return false;
    }
    found = found || hasPacket;
    // A format without packet is writable in place only when Exempi can inject one.
    inPlace = known && (found || (flags & kInPlaceFlags));
    return true;
}

std::u16string SidecarFor(std::u16string const &path)
{
    QFileInfo const info(ToQString(path));
    return ToU16(info.dir().filePath(info.completeBaseName() + QStringLiteral(".xmp")));
}

} // namespace

FileMetaDataProvider::FileMetaDataProvider() : d(std::make_unique<Private>()) {}
FileMetaDataProvider::~FileMetaDataProvider() = default;

std::shared_ptr<FileMetaDataProvider> FileMetaDataProvider::Open(std::u16string path, std::string *error)
{
    std::string const utf8 = kivcore::utility::Utf16ToUtf8(path);
    QFileInfo const info(ToQString(path));
    if (!info.exists()) {
        Fail(error, "The file does not exist.", utf8);
        return nullptr;
    }
    if (!info.isFile()) {
        Fail(error, "This is not a file.", utf8);
        return nullptr;
    }
    if (!info.isReadable()) {
        Fail(error, "The file cannot be read (no permission).", utf8);
        return nullptr;
    }
    std::shared_ptr<FileMetaDataProvider> provider(new FileMetaDataProvider());
    auto &d = *provider->d;
    d.mPath = std::move(path);
    d.mPathUtf8 = utf8;
    d.mMeta = std::make_unique<XMPMeta>();

    bool const isSidecarFile = info.suffix().compare(QLatin1String("xmp"), Qt::CaseInsensitive) == 0;
    bool found = false, inPlace = false;
    std::string message;
    if (isSidecarFile) {
        // An .xmp file is the packet itself.
        std::string bytes;
        if (!ReadWholeFile(ToQString(d.mPath), bytes, &message)) {
            Fail(error, "The file cannot be read: " + message + ".", utf8);
            return nullptr;
        }
        d.mSidecar = d.mPath;
        if (!bytes.empty() && !d.mMeta->ParseFromBuffer(bytes, &message)) {
            d.mWritable = false;
            Fail(error, "The XMP packet is malformed (" + message + "); the file is opened read-only.", utf8);
        }
        return provider;
    }
    if (!ReadEmbedded(utf8, *d.mMeta, found, inPlace, message)) {
        // Show nothing rather than a partial copy, and never write over it.
        d.mMeta = std::make_unique<XMPMeta>();
        d.mWritable = false;
        Fail(error, "The metadata of the file cannot be read: " + message + "; the file is opened read-only.", utf8);
        return provider;
    }
    if (!found && !inPlace) {
        d.mSidecar = SidecarFor(d.mPath);
        QString const sidecar = ToQString(d.mSidecar);
        if (QFileInfo::exists(sidecar)) {
            std::string bytes;
            if (!ReadWholeFile(sidecar, bytes, &message) ||
                (!bytes.empty() && !d.mMeta->ParseFromBuffer(bytes, &message))) {
                d.mMeta = std::make_unique<XMPMeta>();
                d.mWritable = false;
                Fail(error, "The sidecar file cannot be read: " + message + "; the file is opened read-only.",
                     sidecar.toStdString());
            }
        }
    }
    return provider;
}

bool FileMetaDataProvider::Save(std::string *error)
{
    if (!d->mWritable)
        return Fail(error, "The metadata was not saved: the file's metadata could not be read when it was opened.",
                    d->mPathUtf8);
    if (!d->mModified) return true;

    if (!d->mSidecar.empty()) {
        std::string packet, message;
        if (!d->mMeta->Serialize(packet, 0, 2048, &message))
            return Fail(error, "The metadata could not be serialised: " + message + ".", d->mPathUtf8);
        if (!kivcore::utility::FileUtils::SimpleWriteStringToFile(d->mSidecar, packet, &message))
            return Fail(error, "The metadata could not be written: " + message + ".",
                        kivcore::utility::Utf16ToUtf8(d->mSidecar));
        d->mModified = false;
        return true;
    }

    QFileInfo const info(ToQString(d->mPath));
    if (!info.exists()) return Fail(error, "The file no longer exists; the metadata was not saved.", d->mPathUtf8);
    // Opened with reconciliation, as when it was read: the EXIF and IPTC blocks
    // are rewritten from the XMP object, which holds their values.
    XmpFile file(xmp_files_open_new(d->mPathUtf8.c_str(), XMP_OPEN_FORUPDATE));
    if (!file) {
        int const code = xmp_get_error();
        std::string why = info.isWritable() ? XmpErrorText(code) : std::string("no permission to write the file");
        return Fail(error, "The metadata could not be written: " + why + ".", d->mPathUtf8);
    }
    XmpPtr const handle = static_cast<XmpPtr>(d->mMeta->Handle());
    if (!xmp_files_can_put_xmp(file.get(), handle)) {
        int const code = xmp_get_error();
        file.reset();
        std::string const why = code == 0 ? "it needs more room than the file's packet has" : XmpErrorText(code);
        return Fail(error, "The metadata does not fit into this file (" + why + "); it was not saved.", d->mPathUtf8);
    }
    if (!xmp_files_put_xmp(file.get(), handle)) {
        int const code = xmp_get_error();
        file.reset();
        return Fail(error, "The metadata could not be written: " + XmpErrorText(code) + ".", d->mPathUtf8);
    }
    // Safe update: written to a temporary file beside the original and
    // renamed over it, so a failure leaves the original as it was.
    int code = 0;
    if (!file.closeSafely(code)) {
        std::string why = XmpErrorText(code);
        if (!QFileInfo(info.absolutePath()).isWritable()) why = "the folder cannot be written";
        return Fail(error, "The metadata could not be written: " + why + "; the file was left unchanged.",
                    d->mPathUtf8);
    }
    d->mModified = false;
    return true;
}

bool FileMetaDataProvider::IsModified() const
{
    return d->mModified;
}

std::u16string const &FileMetaDataProvider::FilePath() const
{
    return d->mPath;
}

std::u16string const &FileMetaDataProvider::SidecarPath() const
{
    return d->mSidecar;
}

bool FileMetaDataProvider::IsWritable() const
{
    return d->mWritable;
}

bool FileMetaDataProvider::AcceptsPath(Value const &value, bool forWriting) const
{
    if (forWriting && !d->mWritable) return false;
    return MetaDataProvider::AcceptsPath(value, forWriting);
}

XMPMeta *FileMetaDataProvider::GetMeta()
{
    return d->mMeta.get();
}

void FileMetaDataProvider::OnMetadataChanged(std::set<Path> const &)
{
    // Changes made directly on the XMP object (a committed working copy)
    // arrive only this way.
    d->mModified = true;
}

bool FileMetaDataProvider::WriteValue(Path const &path, std::string const &text)
{
    if (!d->mWritable) return false;
    bool const changed = MetaDataProvider::WriteValue(path, text);
    d->mModified = d->mModified || changed;
    return changed;
}

bool FileMetaDataProvider::RemoveValue(Path const &path)
{
    if (!d->mWritable) return false;
    bool const changed = MetaDataProvider::RemoveValue(path);
    d->mModified = d->mModified || changed;
    return changed;
}

} // namespace kivmetadata
