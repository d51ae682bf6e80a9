#pragma once

#include <kivui/SkinVersion.h>
#include <kivui/kivui_export.h>

#include <QString>

class QWidget;

#include <string>

namespace kivui::ui {
class ModuleInfo;
}

namespace kivui::skins::core {

class SkinSet;

// The look of the whole UI. The sets "V5" and "V7" exist from the start and
// hold the toolkit's base skins; libraries add theirs from their ModuleInfo.
// Starting the skin system (or changing the look) calls Initialize() on every
// registered ModuleInfo, then applies the look in use: style, palette and font
// (DejaVu Sans) to the whole application, and the set's style sheet to the
// widgets that adopt it. The sheet is not set on the application: Qt would
// then send every widget through its style-sheet machinery, which makes
// building a panel of controls many times slower.
class KIVUI_EXPORT SkinManager {
public:
    // The look in force; V7 until another is set.
    static SkinVersion GetSkinVersion();
    // Changes the look at run time; re-registers skins and re-applies when started.
    static void SetSkinVersion(SkinVersion version);

    // The set registered under `name`; null when there is none.
    static SkinSet *RetrieveSet(std::string const &name);
    // Makes (or returns) the set of that name.
    static SkinSet *CreateSet(std::string const &name);
    // "V5" or "V7".
    static std::string SetNameFor(SkinVersion version);

    // Starts the skin system with a look: registers module skins, applies.
    // Needs a QApplication. Starting again is harmless.
    static void Start(SkinVersion version);
    static bool IsStarted();
    // Re-applies the current set (after skins were added outside Initialize()).
    static void Apply();
    // The style sheet of the current look's set.
    static QString CurrentStyleSheet();
    // A widget whose look needs the skins' style sheet (its selectors name the
    // widget): it gets the current sheet now and again whenever the look changes.
    static void AdoptWidget(QWidget *widget);

    // ModuleInfo registers itself on construction (without initialising: its
    // derived part does not exist yet). A record made after the start is
    // registered again by its library once constructed, with
    // `initializeIfStarted` true: it is then initialised at once and the look
    // re-applied. Registering twice keeps one entry.
    static void RegisterModuleInfo(ui::ModuleInfo *info, bool initializeIfStarted = true);
    static void UnregisterModuleInfo(ui::ModuleInfo *info);

    // Number of times the look has been applied; lets caches notice a change.
    static int GetGeneration();
};

} // namespace kivui::skins::core
