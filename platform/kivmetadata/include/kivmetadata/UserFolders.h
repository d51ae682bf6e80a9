#pragma once

#include <kivmetadata/kivmetadata_export.h>

#include <string>

namespace kivmetadata {

// The per-user data folder of the metadata model (the application's XDG data
// folder plus "/kivmetadata"), with one subfolder per kind of file.
KIVMETADATA_EXPORT std::u16string UserDataDirectory();
// Uses another folder (tests, portable installs); empty restores the default.
KIVMETADATA_EXPORT void SetUserDataDirectory(std::u16string const &folder);
// UserDataDirectory() + "/" + name, created when missing; empty on failure.
KIVMETADATA_EXPORT std::u16string UserSubdirectory(std::u16string const &name);

} // namespace kivmetadata
