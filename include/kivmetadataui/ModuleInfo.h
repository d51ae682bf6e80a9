#pragma once

#include <kivmetadataui/kivmetadataui_export.h>

#include <kivui/ModuleInfo.h>

namespace kivmetadataui {

// The library's record with the UI toolkit: the toolkit calls Initialize()
// when its skin system starts and whenever the look changes, and this
// library then adds its own skins to the toolkit's skin sets. Made on the
// first Get() and kept until the process ends.
class KIVMETADATAUI_EXPORT ModuleInfo : public kivui::ui::ModuleInfo {
public:
    static ModuleInfo *Get();

    // Adds the date text edit skins to the sets "V5" and "V7" for each look
    // whose features are available; raises the null-pointer exception when
    // such a set does not exist.
    void Initialize() override;
    ~ModuleInfo() override;

    ModuleInfo(ModuleInfo const &inOther);
    ModuleInfo &operator=(ModuleInfo const &inOther);

protected:
    ModuleInfo();
};

} // namespace kivmetadataui
