#pragma once

#include <kivmetadata/MetaDataProvider.h>
#include <kivmetadata/kivmetadata_export.h>

#include <memory>
#include <string>
#include <vector>

namespace kivmetadata {

struct FileOpenOptions {
    // Also show values the file keeps outside its XMP (EXIF, TIFF, IPTC)
    // where the XMP lacks them, so camera data stays visible. Such a value is
    // written only when it is edited.
    bool mImportLegacy = true;
    // Keep the metadata in "<base name>.xmp" beside the file, never in the
    // file itself.
    bool mUseSidecar = false;
};

// A provider over one file, saved losslessly.
//
// The packet is kept exactly as it was stored. Save writes back that packet
// with the edited top-level properties replaced as a whole, and
// xmp:MetadataDate updated; no other byte of the packet, and no byte of the
// file outside its XMP container, changes. JPEG, PNG, TIFF (DNG and other
// TIFF-based files) and .xmp sidecars are written by our own writers; the
// other formats the XMP toolkit has a handler for are written only in place,
// when the edit fits into the packet's padding. Files whose packet is found
// only by scanning (PDF and other containers) open read-only.
//
// Every write goes to a temporary file in the file's folder, is read back and
// compared with what was intended, and only then replaces the file (keeping
// its permissions; a symbolic link stays a link and its target is edited). If
// another program changed the file's packet since it was opened, the edits
// are applied to the packet as it is now; SaveNotices() says which
// properties the other program changed.
//
// A file whose packet cannot be read (malformed, truncated) shows what could
// be read but refuses every write, so its metadata is never replaced by a
// partial copy.
//
// Open and Save may run on worker threads, one thread per provider at a time.
class KIVMETADATA_EXPORT FileMetaDataProvider : public MetaDataProvider {
public:
    ~FileMetaDataProvider() override;

    // Null when the file cannot be read at all; `error` and the error list
    // then say why. A file that opens read-only gives a provider and its
    // reason in `error`.
    static std::shared_ptr<FileMetaDataProvider> Open(std::u16string path, std::string *error = nullptr,
                                                      FileOpenOptions const &options = {});

    // Writes the edits; true when there was nothing to write. On failure the
    // file is left as it was and the edits stay.
    bool Save(std::string *error = nullptr);
    bool IsModified() const;
    std::u16string const &FilePath() const;
    // The sidecar file used instead of the file itself; empty when the XMP
    // lives inside the file.
    std::u16string const &SidecarPath() const;
    // False when writing is refused; ReadOnlyReason() says why.
    bool IsWritable() const;
    std::string const &ReadOnlyReason() const;
    // False when the file's packet or container is damaged: what is shown is
    // then only what could be read of it.
    bool IsComplete() const;
    // What the last successful Save reported besides success, one sentence
    // each (properties another program changed meanwhile).
    std::vector<std::string> const &SaveNotices() const;

    bool AcceptsPath(Value const &value, bool forWriting) const override;
    XMPMeta *GetMeta() override;
    void OnMetadataChanged(std::set<Path> const &changes) override;
    bool WriteValue(Path const &path, std::string const &text) override;
    bool RemoveValue(Path const &path) override;

private:
    FileMetaDataProvider();
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace kivmetadata
