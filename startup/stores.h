/// The long-lived store objects, one a file, and the full paths of the files. The paths are known after
/// SetStorePaths(); nothing may be read before. [control]
#pragma once

#include <string>

#include "startup/impulse.h"

namespace zv {

extern std::string IniFile, LangFile, AccountFile, PalFile, HotFile, PlaylistFile, DispPresetsFile,
    VUPresetsFile, FXPresetsFile, MIDIFile, UrlsFile;

extern cImpulse SettingsStore;     ///< zv.ini, section "Settings"
extern cImpulse LanguageStore;     ///< language.ini, section = programSettings.Language after LnStrings
extern cImpulse AccountStore;      ///< account.ini, section "SupportForumAccount"
extern cImpulse PaletteStore;      ///< palette.ini
extern cImpulse HotStore;          ///< HotJingles.ini
extern cImpulse PlaylistStore;     ///< playlist.ini
extern cImpulse DispPresetsStore;  ///< DISPpresets.ini
extern cImpulse VUPresetsStore;    ///< VUpresets.ini
extern cImpulse FXPresetsStore;    ///< FXpresets.ini
extern cImpulse MIDIStore;         ///< MIDI.ini

inline constexpr const char* kSettingsSection = "Settings";
inline constexpr const char* kAccountSection = "SupportForumAccount";
inline constexpr const char* kHotSection = "HotJingles";
inline constexpr const char* kFXPresetsSection = "FXP";

/// Sets all paths and gives the stores their files, from programFolder().
void SetStorePaths();
/// Program folder + separator + `name`.
std::string InProgramFolder(const std::string& name);

}  // namespace zv
