// Private to kivmetadata: where a file keeps its packet, and replacing a file
// only after what was written has been checked.
#pragma once

#include "XmpContainers_p.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <string>

namespace kivmetadata::detail {

enum class Storage {
    kContainer,     // JPEG, PNG, TIFF: our own reader and writers
    kSidecar,       // the whole file is the packet
    kToolkitPacket, // another format with a handler: rewritten in place only
    kReadOnly,
};

struct StoredPacket {
    Storage mStorage = Storage::kReadOnly;
    XmpContainerKind mContainer = XmpContainerKind::kNone;
    bool mFound = false;
    std::string mPacket;   // as stored
    std::string mExtended; // JPEG Extended XMP, as stored
    std::size_t mOffset = 0;
    XmpContainerPacket mWhere; // for containers
    std::string mFileBytes;    // the whole file, for containers
    std::string mFormatName;
    std::string mReadOnlyReason;
    bool mDamaged = false; // the container could not be read
    // Set when the packet was refused before the toolkit could read it (past
    // the limits of PacketLimits_p.h); the packet is then left empty.
    std::string mRefusal;
};

// Reads the packet of `path` (absolute, links allowed). `isSidecar` when the
// file is itself an .xmp packet. False only when the file cannot be read at
// all; a file that is readable but cannot be written comes back as kReadOnly
// with the reason.
bool ReadStoredPacket(QString const &path, bool isSidecar, StoredPacket &packet, std::string &error);

// Why the toolkit's own readers must not be given `path` (its packet is past
// the limits of PacketLimits_p.h), or empty.
std::string ToolkitReadRefusal(QString const &path);

// The values the toolkit's file handler shows for the file, EXIF, TIFF and
// IPTC reconciled into the XMP. False when it has none.
bool ReadReconciled(QString const &path, void *xmpHandle);

// Whether the toolkit's own reader of `path` finds exactly `packet` (checks
// that other programs will see what we wrote).
bool ToolkitFindsPacket(QString const &path, std::string const &packet, std::string &why);

// Writes `bytes` (or, with `copyFrom`, a copy of that file with `bytes`
// written at `patchOffset`) to a new file in the folder of `target`, lets
// `check` read it back, and only then renames it over `target` with the
// permissions and owner of `target`. On any failure the new file is removed
// and `target` is untouched.
struct ReplaceRequest {
    QString mTarget; // a real file, links already resolved
    std::string const *mBytes = nullptr;
    QString mCopyFrom;
    std::uint64_t mPatchOffset = 0;
    std::function<bool(QString const &written, std::string &why)> mCheck;
};
bool ReplaceFileChecked(ReplaceRequest const &request, std::string &error);

// "the file is read-only" or "the folder is read-only" when the permission
// bits forbid writing (also for root, who could), else empty.
std::string WriteRefusal(QString const &target, bool newFile);

} // namespace kivmetadata::detail
