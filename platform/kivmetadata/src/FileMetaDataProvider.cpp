#include <kivmetadata/FileMetaDataProvider.h>

#include "FileStorage_p.h"
#include "PacketLimits_p.h"
#include "PacketText_p.h"
#include "PropertySnapshot_p.h"
#include "Registry_p.h"
#include "XmpContainers_p.h"

#include <kivmetadata/ErrorInfo.h>
#include <kivmetadata/Value.h>
#include <kivmetadata/XMPMeta.h>

#include <kivcore/StringUtils.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace kivmetadata {

using namespace detail;

namespace {

constexpr char kXmpNs[] = "http://ns.adobe.com/xap/1.0/";
constexpr char kXmpNoteNs[] = "http://ns.adobe.com/xmp/note/";
constexpr char kHasExtendedXmp[] = "xmpNote:HasExtendedXMP";
// Room left for later edits when a container is rewritten, as the XMP
// toolkit's writers leave.
constexpr std::size_t kNewPadding = 2048;

bool Fail(std::string *error, std::string const &message, std::string const &context)
{
    AddErrorInfo(message, context);
    if (error) *error = message;
    return false;
}

std::vector<Path> TopLevelProperties(XMPMeta const &meta)
{
    std::vector<Path> result;
    meta.Iterate(
        [&](XMPMeta::Node const &node) {
            if (!(node.mOptions & XMPMeta::kPropIsSchemaNode) && !node.mPath.empty())
                result.push_back(Path{node.mNamespace, node.mPath});
            return true;
        },
        {}, {}, true);
    return result;
}

std::string LocalName(std::string const &path)
{
    return path.substr(path.find(':') + 1);
}

// The properties of a stored packet, Extended XMP merged in as the XMP
// toolkit's JPEG reader merges it (only when its GUID matches).
bool ParsePackets(std::string const &packet, std::string const &extended, XMPMeta &meta, std::string &error)
{
    meta = XMPMeta();
    if (packet.empty()) return true;
    if (!meta.ParseFromBuffer(packet, &error)) return false;
    if (!extended.empty()) {
        std::string guid;
        meta.GetProperty(kXmpNoteNs, kHasExtendedXmp, guid);
        if (guid == ExtendedXmpGuid(extended)) {
            XMPMeta more;
            if (!more.ParseFromBuffer(extended, &error)) {
                error = "the extended XMP is malformed (" + error + ")";
                return false;
            }
            for (Path const &path : TopLevelProperties(more))
                ReplaceProperty(more, meta, path.mNamespace, path.mPath);
        }
    }
    meta.DeleteProperty(kXmpNoteNs, kHasExtendedXmp);
    return true;
}

std::string Names(std::vector<Path> const &paths)
{
    std::string names;
    for (Path const &path : paths)
        names += (names.empty() ? "" : ", ") + path.mPath;
    return names;
}

bool CheckPackets(std::string const &packet, std::string const &extended, PropertySnapshot const &expected,
                  std::string &why)
{
    XMPMeta actual;
    if (!ParsePackets(packet, extended, actual, why)) {
        why = "the new packet cannot be read (" + why + ")";
        return false;
    }
    std::vector<Path> const differing = Differences(expected, TakeSnapshot(actual));
    if (differing.empty()) return true;
    why = "these properties would not be as intended: " + Names(differing);
    return false;
}

std::string NowForXmp()
{
    QDateTime const now = QDateTime::currentDateTime();
    int const offset = now.offsetFromUtc();
    QString text = now.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss"));
    int const minutes = std::abs(offset) / 60;
    text += offset == 0 ? QStringLiteral("Z")
                        : QStringLiteral("%1%2:%3")
                              .arg(offset < 0 ? u'-' : u'+')
                              .arg(minutes / 60, 2, 10, QLatin1Char('0'))
                              .arg(minutes % 60, 2, 10, QLatin1Char('0'));
    return text.toStdString();
}

std::u16string SidecarFor(QString const &path)
{
    QFileInfo const info(path);
    return ToU16(info.dir().filePath(info.completeBaseName() + QStringLiteral(".xmp")));
}

// Moves the largest properties of `main` into `extended` until `main` fits
// into one JPEG segment, as Extended XMP does.
bool SplitForJpeg(PacketText &main, PacketText &extended, bool &hasExtended, XMPMeta const &source, std::string &error)
{
    auto sizeWithoutPadding = [&] { return main.Text().size() - main.PaddingSize(); };
    // Room for the GUID property that marks the split.
    constexpr std::size_t kMarkRoom = 160;
    if (sizeWithoutPadding() + kMarkRoom <= kJpegMaxStandardPacket) return true;
    if (!hasExtended) {
        std::string const skeleton = "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n <rdf:RDF "
                                     "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n  "
                                     "<rdf:Description rdf:about=\"\"/>\n </rdf:RDF>\n</x:xmpmeta>\n";
        if (!extended.Load(skeleton, error)) return false;
        hasExtended = true;
    }
    auto occurrences = main.Properties();
    std::sort(occurrences.begin(), occurrences.end(),
              [](auto const &a, auto const &b) { return a.mEnd - a.mBegin > b.mEnd - b.mBegin; });
    for (auto const &occurrence : occurrences) {
        if (sizeWithoutPadding() + kMarkRoom <= kJpegMaxStandardPacket) break;
        if (occurrence.mNamespace == kXmpNoteNs) continue;
        std::string const prefix = XMPMeta::PrefixForNamespace(occurrence.mNamespace);
        std::string const path = prefix + ":" + occurrence.mLocalName;
        std::string element;
        if (!PropertyElement(source, occurrence.mNamespace, path, element, error)) return false;
        if (!main.Replace(occurrence.mNamespace, occurrence.mLocalName, nullptr, error) ||
            !extended.Replace(occurrence.mNamespace, occurrence.mLocalName, &element, error))
            return false;
    }
    if (sizeWithoutPadding() + kMarkRoom > kJpegMaxStandardPacket) {
        error = "the metadata does not fit into a JPEG file even when split";
        return false;
    }
    return true;
}

} // namespace

struct FileMetaDataProvider::Private {
    std::u16string mPath;
    std::string mPathUtf8;
    QString mAbsolute;                // the path as given, made absolute (links kept)
    std::u16string mSidecar;          // set when the XMP lives in a sidecar file
    StoredPacket mStored;             // as read at open, or as last saved
    PropertySnapshot mStoredSnapshot; // the stored packet's properties
    std::unique_ptr<XMPMeta> mMeta;   // what is shown and edited
    PropertySnapshot mShownSnapshot;  // mMeta as opened or last saved
    bool mModified = false;
    bool mWritable = true;
    bool mComplete = true;
    std::string mReadOnlyReason;
    std::vector<std::string> mNotices;

    QString WriteTarget() const { return mSidecar.empty() ? mAbsolute : ToQString(mSidecar); }
    void MakeReadOnly(std::string reason)
    {
        mWritable = false;
        mReadOnlyReason = std::move(reason);
    }
    bool WriteContainer(StoredPacket const &now, PacketText &main, PacketText &extended, bool hasExtended,
                        PropertySnapshot const &expected, std::string &written, std::string &error);
};

FileMetaDataProvider::FileMetaDataProvider() : d(std::make_unique<Private>()) {}
FileMetaDataProvider::~FileMetaDataProvider() = default;

std::shared_ptr<FileMetaDataProvider> FileMetaDataProvider::Open(std::u16string path, std::string *error,
                                                                 FileOpenOptions const &options)
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
    d.mAbsolute = info.absoluteFilePath();
    d.mMeta = std::make_unique<XMPMeta>();

    bool const isSidecarFile = info.suffix().compare(QLatin1String("xmp"), Qt::CaseInsensitive) == 0;
    if (isSidecarFile)
        d.mSidecar = d.mPath;
    else if (options.mUseSidecar)
        d.mSidecar = SidecarFor(d.mAbsolute);

    std::string message;
    if (!d.mSidecar.empty()) {
        QString const sidecar = ToQString(d.mSidecar);
        if (QFileInfo::exists(sidecar)) {
            if (!ReadStoredPacket(QFileInfo(sidecar).absoluteFilePath(), true, d.mStored, message)) {
                Fail(error, "The sidecar file cannot be read: " + message + ".", sidecar.toStdString());
                return nullptr;
            }
        } else {
            d.mStored.mStorage = Storage::kSidecar;
        }
    } else if (!ReadStoredPacket(d.mAbsolute, false, d.mStored, message)) {
        Fail(error, "The file cannot be read: " + message + ".", utf8);
        return nullptr;
    }
    d.mStored.mFileBytes.clear(); // read again at save; not kept for every open file
    if (d.mStored.mStorage == Storage::kReadOnly) d.MakeReadOnly(d.mStored.mReadOnlyReason);
    d.mComplete = !d.mStored.mDamaged;

    // A packet past the limits is not parsed at all: a part of it could show
    // a property as absent that is there, and the parse is what freezes.
    std::string refusal = d.mStored.mRefusal;
    if (refusal.empty()) refusal = PacketRefusal(d.mStored.mPacket);
    if (refusal.empty() && !d.mStored.mExtended.empty()) {
        refusal = PacketRefusal(d.mStored.mExtended);
        if (!refusal.empty()) refusal = "in the extended XMP, " + refusal;
    }
    bool const refused = !refusal.empty();
    if (refused) {
        d.mComplete = false;
        d.mStored.mPacket.clear();
        d.mStored.mExtended.clear();
        if (d.mStored.mRefusal.empty()) d.MakeReadOnly(refusal + ", so its metadata is not shown");
    }

    bool const malformed = !refused && !ParsePackets(d.mStored.mPacket, d.mStored.mExtended, *d.mMeta, message);
    if (malformed) {
        // Show nothing rather than a partial copy, and never write over it.
        *d.mMeta = XMPMeta();
        if (d.mStored.mStorage == Storage::kReadOnly) {
            // What scanning found is not a packet: nothing to show.
            d.MakeReadOnly(d.mStored.mReadOnlyReason + "; what was found is not a readable XMP packet");
        } else {
            d.mComplete = false;
            d.MakeReadOnly("its XMP packet is malformed (" + message + ")");
        }
    }
    d.mStoredSnapshot = TakeSnapshot(*d.mMeta);
    bool imported = false;
    if (options.mImportLegacy && !isSidecarFile && !malformed && !refused &&
        (d.mSidecar.empty() || ToolkitReadRefusal(d.mAbsolute).empty())) {
        // Values from EXIF, TIFF and IPTC fill only what the XMP lacks: the
        // packet as stored wins over a stale legacy block.
        XMPMeta reconciled;
        if (ReadReconciled(d.mAbsolute, reconciled.Handle())) {
            for (Path const &property : TopLevelProperties(reconciled))
                if (!d.mMeta->DoesPropertyExist(property.mNamespace, property.mPath)) {
                    ReplaceProperty(reconciled, *d.mMeta, property.mNamespace, property.mPath);
                    imported = true;
                }
        }
    }
    // Walking a large packet costs as much as parsing it: once is enough.
    d.mShownSnapshot = imported ? TakeSnapshot(*d.mMeta) : d.mStoredSnapshot;
    if (!d.mWritable) {
        Fail(error, "The file is opened read-only: " + d.mReadOnlyReason + ".", utf8);
    }
    return provider;
}

bool FileMetaDataProvider::Private::WriteContainer(StoredPacket const &now, PacketText &main, PacketText &extended,
                                                   bool hasExtended, PropertySnapshot const &expected,
                                                   std::string &written, std::string &error)
{
    XmpContainerKind const kind = now.mContainer;
    bool const extendedUnchanged = !hasExtended ? now.mExtended.empty() : extended.Text() == now.mExtended;
    if (now.mFound && extendedUnchanged && main.FitTo(now.mPacket.size())) {
        // In place: the packet keeps its length, no other byte moves.
        if (!CheckPackets(main.Text(), hasExtended ? extended.Text() : std::string(), expected, error)) return false;
        return WriteXmpInPlace(now.mFileBytes, kind, now.mWhere, main.Text(), written, error);
    }
    main.FitTo(main.Text().size() - main.PaddingSize() + kNewPadding);
    std::string guid;
    if (kind == XmpContainerKind::kJpeg) {
        if (!SplitForJpeg(main, extended, hasExtended, *mMeta, error)) return false;
        if (hasExtended) {
            guid = ExtendedXmpGuid(extended.Text());
            std::string const mark = "<xmpNote:HasExtendedXMP xmlns:xmpNote=\"" + std::string(kXmpNoteNs) + "\">" +
                                     guid + "</xmpNote:HasExtendedXMP>";
            if (!main.Replace(kXmpNoteNs, LocalName(kHasExtendedXmp), &mark, error)) return false;
            std::size_t const bare = main.Text().size() - main.PaddingSize();
            main.FitTo(std::min(bare + kNewPadding, std::max(bare, kJpegMaxStandardPacket)));
        }
    } else if (hasExtended && !extended.Text().empty()) {
        error = "Extended XMP exists only in JPEG files";
        return false;
    }
    std::string const extendedText = hasExtended ? extended.Text() : std::string();
    if (!CheckPackets(main.Text(), extendedText, expected, error)) return false;
    return WriteXmpContainer(now.mFileBytes, kind, main.Text(), extendedText, guid, written, error);
}

bool FileMetaDataProvider::Save(std::string *error)
{
    d->mNotices.clear();
    if (!d->mWritable) return Fail(error, "The metadata was not saved: " + d->mReadOnlyReason + ".", d->mPathUtf8);
    if (!d->mModified) return true;
    std::vector<Path> changed = Differences(d->mShownSnapshot, TakeSnapshot(*d->mMeta));
    if (changed.empty()) {
        d->mModified = false;
        return true;
    }
    auto fail = [&](std::string const &why) {
        return Fail(error, "The metadata was not saved: " + why + "; the file was left as it was.", d->mPathUtf8);
    };

    // The file as it is now; a link is followed to the file it names.
    QString target = d->WriteTarget();
    QFileInfo const targetInfo(target);
    bool const newFile = !d->mSidecar.empty() && !targetInfo.exists() && !targetInfo.isSymLink();
    if (!newFile) {
        if (!targetInfo.exists()) return fail("the file no longer exists");
        target = targetInfo.canonicalFilePath();
    } else {
        target = targetInfo.absoluteFilePath();
    }
    if (std::string const refusal = WriteRefusal(target, newFile); !refusal.empty()) return fail(refusal);
    StoredPacket now;
    if (newFile) {
        now.mStorage = Storage::kSidecar;
    } else {
        std::string why;
        if (!ReadStoredPacket(target, !d->mSidecar.empty(), now, why))
            return fail("the file can no longer be read (" + why + ")");
        if (now.mStorage != d->mStored.mStorage)
            return fail(now.mStorage == Storage::kReadOnly ? now.mReadOnlyReason
                                                           : "the file was replaced by one of another kind");
    }
    PropertySnapshot expected = d->mStoredSnapshot;
    if (now.mPacket != d->mStored.mPacket || now.mExtended != d->mStored.mExtended) {
        XMPMeta base;
        std::string why;
        if (!ParsePackets(now.mPacket, now.mExtended, base, why))
            return fail("its XMP packet was changed by another program and can no longer be read (" + why + ")");
        expected = TakeSnapshot(base);
        for (Path const &path : Differences(d->mStoredSnapshot, expected)) {
            bool const both = std::find(changed.begin(), changed.end(), path) != changed.end();
            d->mNotices.push_back(path.mPath + " was changed by another program since the file was opened; " +
                                  (both ? "your edit replaced that change." : "that change was kept."));
        }
    }

    // Saving touches the metadata.
    d->mMeta->SetProperty(kXmpNs, "xmp:MetadataDate", NowForXmp());
    Path const metadataDate{kXmpNs, "xmp:MetadataDate"};
    if (std::find(changed.begin(), changed.end(), metadataDate) == changed.end()) changed.push_back(metadataDate);

    PropertySnapshot const shown = TakeSnapshot(*d->mMeta);
    for (Path const &path : changed) {
        auto const edited = shown.find(path);
        if (edited != shown.end())
            expected[path] = edited->second;
        else
            expected.erase(path);
    }

    PacketText main, extended;
    bool hasExtended = false;
    std::string why;
    if (now.mFound) {
        if (!main.Load(now.mPacket, why))
            return fail("its XMP packet cannot be edited without rewriting it (" + why + ")");
        std::string guid;
        XMPMeta standard;
        if (!now.mExtended.empty() && standard.ParseFromBuffer(now.mPacket) &&
            standard.GetProperty(kXmpNoteNs, kHasExtendedXmp, guid) && guid == ExtendedXmpGuid(now.mExtended)) {
            if (!extended.Load(now.mExtended, why)) return fail("its extended XMP cannot be edited (" + why + ")");
            hasExtended = true;
        }
        for (Path const &path : changed) {
            std::string const local = LocalName(path.mPath);
            std::string element;
            bool const present = d->mMeta->DoesPropertyExist(path.mNamespace, path.mPath);
            if (present && !PropertyElement(*d->mMeta, path.mNamespace, path.mPath, element, why))
                return fail("the property " + path.mPath + " cannot be written (" + why + ")");
            bool const inExtended = hasExtended && extended.Contains(path.mNamespace, local);
            PacketText &home = inExtended ? extended : main;
            if (!home.Replace(path.mNamespace, local, present ? &element : nullptr, why) ||
                (hasExtended && !inExtended && !extended.Replace(path.mNamespace, local, nullptr, why)) ||
                (inExtended && !main.Replace(path.mNamespace, local, nullptr, why)))
                return fail("the packet could not be edited (" + why + ")");
        }
    } else {
        // No packet yet: a new one holds just the edited properties.
        XMPMeta fresh;
        for (Path const &path : changed)
            ReplaceProperty(*d->mMeta, fresh, path.mNamespace, path.mPath);
        std::string serialized;
        if (!fresh.Serialize(serialized, 0, now.mStorage == Storage::kSidecar ? 0 : std::uint32_t(kNewPadding), &why) ||
            !main.Load(serialized, why))
            return fail("a new XMP packet could not be made (" + why + ")");
    }

    ReplaceRequest request;
    request.mTarget = target;
    std::string written;
    switch (now.mStorage) {
    case Storage::kSidecar:
        if (!CheckPackets(main.Text(), {}, expected, why))
            return fail("the edit could not be made exactly (" + why + ")");
        written = main.Text();
        request.mBytes = &written;
        request.mCheck = [&written](QString const &path, std::string &problem) {
            QFile file(path);
            if (!file.open(QIODevice::ReadOnly) || file.readAll() != QByteArray::fromStdString(written)) {
                problem = "the sidecar file differs from what was written";
                return false;
            }
            return true;
        };
        break;
    case Storage::kToolkitPacket:
        if (!main.FitTo(now.mPacket.size()))
            return fail("the edit needs more room than the file's XMP packet has, and kivmeta can grow packets only "
                        "in JPEG, PNG and TIFF files; the metadata can be kept in a sidecar file instead");
        if (!CheckPackets(main.Text(), {}, expected, why))
            return fail("the edit could not be made exactly (" + why + ")");
        written = main.Text();
        request.mBytes = &written;
        request.mCopyFrom = target;
        request.mPatchOffset = now.mOffset;
        request.mCheck = [&written](QString const &path, std::string &problem) {
            return ToolkitFindsPacket(path, written, problem);
        };
        break;
    case Storage::kContainer: {
        if (!d->WriteContainer(now, main, extended, hasExtended, expected, written, why))
            return fail("the edit could not be made exactly (" + why + ")");
        request.mBytes = &written;
        bool const rewritten = written.size() != now.mFileBytes.size();
        std::string const extendedText = hasExtended || !extended.Text().empty() ? extended.Text() : std::string();
        request.mCheck = [&, rewritten, extendedText](QString const &path, std::string &problem) {
            std::string back;
            QFile file(path);
            if (!file.open(QIODevice::ReadOnly)) {
                problem = "the new file cannot be read back";
                return false;
            }
            QByteArray const all = file.readAll();
            back.assign(all.constData(), std::size_t(all.size()));
            XmpContainerPacket found;
            if (!ReadXmpContainer(back, now.mContainer, found, problem)) return false;
            if (found.mPacket != main.Text() || found.mExtended != extendedText) {
                problem = "the packet read back differs from the one written";
                return false;
            }
            if (!OnlyXmpContainerDiffers(now.mFileBytes, back, now.mContainer, problem)) return false;
            return !rewritten || ToolkitFindsPacket(path, main.Text(), problem);
        };
        break;
    }
    case Storage::kReadOnly:
        return fail(now.mReadOnlyReason);
    }
    if (!ReplaceFileChecked(request, why)) return fail(why);

    now.mPacket = main.Text();
    now.mExtended = hasExtended ? extended.Text() : std::string();
    now.mFound = true;
    now.mFileBytes.clear();
    d->mStored = std::move(now);
    d->mStoredSnapshot = std::move(expected);
    d->mShownSnapshot = shown;
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

bool FileMetaDataProvider::IsComplete() const
{
    return d->mComplete;
}

std::string const &FileMetaDataProvider::ReadOnlyReason() const
{
    return d->mReadOnlyReason;
}

std::vector<std::string> const &FileMetaDataProvider::SaveNotices() const
{
    return d->mNotices;
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
    // arrive only this way; Save finds what changed by comparing.
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
