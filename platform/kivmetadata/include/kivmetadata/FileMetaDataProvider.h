#pragma once

#include <kivmetadata/MetaDataProvider.h>
#include <kivmetadata/kivmetadata_export.h>

#include <memory>
#include <string>

namespace kivmetadata {

// A provider over one file. The XMP is read once at Open (a file without XMP
// gives an empty object) and written back only by Save, and only when
// something changed. Formats the XMP toolkit can write (JPEG, TIFF, PNG, PDF,
// PSD, ...) are updated in place with safe update: the new file is written
// beside the old one and renamed over it, so a failed write leaves the file as
// it was. Other files get a sidecar "<base name>.xmp" beside them, written
// atomically.
//
// When the packet in the file cannot be read (malformed, truncated), the
// provider shows what it could read but refuses every write and Save, so the
// file's metadata is never replaced by a partial copy.
class KIVMETADATA_EXPORT FileMetaDataProvider : public MetaDataProvider {
public:
    ~FileMetaDataProvider() override;

    // Null when the file cannot be read at all; `error` and the error list
    // then say why.
    static std::shared_ptr<FileMetaDataProvider> Open(std::u16string path, std::string *error = nullptr);

    bool Save(std::string *error = nullptr);
    bool IsModified() const;
    std::u16string const &FilePath() const;
    // The sidecar file used instead of the file itself; empty when the XMP
    // lives inside the file.
    std::u16string const &SidecarPath() const;
    // False when the packet could not be read and writing is refused.
    bool IsWritable() const;

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
