#pragma once

#include <kivui/ResourceManager.h>

#include <QString>

#include <string>

namespace kivui::utility {

// A loaded module (shared library or program), identified without taking a
// reference on it: the file it was loaded from and its base address.
struct ModuleHandle {
    void *base = nullptr;
    std::string filePath;

    explicit operator bool() const { return base != nullptr && !filePath.empty(); }
};

// The resources compiled into a module with the Qt resource system. The
// module's file name gives the prefix: libkivmetadataui.so.0 reads from
// ":/kivmetadataui/", a program kivgallery from ":/kivgallery/".
class KIVUI_EXPORT OS_ResourceManager : public ResourceManager {
public:
    explicit OS_ResourceManager(ModuleHandle const &module);
    // Over an explicit prefix such as ":/kivmetadataui/" (or a folder path).
    explicit OS_ResourceManager(QString prefix);
    ~OS_ResourceManager() override;

    // The module that holds `address` (a function of that module). Asserts
    // "result && hmodule" and returns an empty handle when it cannot be found.
    static ModuleHandle ModuleFromAddress(void const *address);
    // "libkivmetadataui.so.0.1.0" -> ":/kivmetadataui/".
    static QString PrefixForModuleFile(std::string const &filePath);

    QString const &GetPrefix() const;

    QByteArray GetResourceData(std::string_view relativePath) const override;
    bool HasResource(std::string_view relativePath) const override;

private:
    QString mPrefix;
};

} // namespace kivui::utility
