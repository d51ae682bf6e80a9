#pragma once

#include <kivmetadata/kivmetadata_export.h>

#include <memory>
#include <string>
#include <vector>

namespace kivmetadata {

class MetaDataProvider;
class XMPMeta;

// How a template's properties meet the ones already there.
enum TemplateImportOptions : int {
    kTemplateImport_ClearAndReplace = 0, // remove everything, then copy the template
    kTemplateImport_KeepAndReplace = 1,  // keep the rest; template values win
    kTemplateImport_KeepAndAppend = 2,   // keep the rest; arrays get the template's items appended
};

// Templates are XMP packets in the per-user data folder, one file per name.
KIVMETADATA_EXPORT std::u16string TemplateDirectory();
KIVMETADATA_EXPORT bool SaveTemplate(std::u16string const &name, XMPMeta const &meta, std::string *error = nullptr);
// Names, sorted.
KIVMETADATA_EXPORT std::vector<std::u16string> GetTemplateNames();
// Null and an error record when missing or malformed.
KIVMETADATA_EXPORT std::unique_ptr<XMPMeta> LoadTemplate(std::u16string const &name, std::string *error = nullptr);
KIVMETADATA_EXPORT bool DeleteTemplate(std::u16string const &name);

// Merges the template into `source`.
KIVMETADATA_EXPORT bool ApplyTemplate(XMPMeta &source, XMPMeta const &templ, TemplateImportOptions options);
// The same on every XMP object of the provider, inside one update access
// that records the whole packet as changed.
KIVMETADATA_EXPORT bool ApplyTemplate(std::shared_ptr<MetaDataProvider> const &source, XMPMeta const &templ,
                                      TemplateImportOptions options);

} // namespace kivmetadata
