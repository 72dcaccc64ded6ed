#include "startup/stores.h"

#include "platform/paths.h"
#include "startup/helpers.h"

namespace zv {

std::string IniFile, LangFile, AccountFile, PalFile, HotFile, PlaylistFile, DispPresetsFile, VUPresetsFile,
    FXPresetsFile, MIDIFile, UrlsFile;

cImpulse SettingsStore, LanguageStore, AccountStore, PaletteStore, HotStore, PlaylistStore, DispPresetsStore,
    VUPresetsStore, FXPresetsStore, MIDIStore;

std::string InProgramFolder(const std::string& name) { return RPP(programFolder()) + name; }

void SetStorePaths() {
    const auto open = [](cImpulse& store, std::string& path, const char* name, const char* section) {
        path = InProgramFolder(name);
        store.SetIniPath(path);
        store.SetSection(section);
    };
    open(SettingsStore, IniFile, "zv.ini", kSettingsSection);
    open(LanguageStore, LangFile, "language.ini", "");
    open(AccountStore, AccountFile, "account.ini", kAccountSection);
    open(PaletteStore, PalFile, "palette.ini", "");
    open(HotStore, HotFile, "HotJingles.ini", "");
    open(PlaylistStore, PlaylistFile, "playlist.ini", "");
    open(DispPresetsStore, DispPresetsFile, "DISPpresets.ini", "");
    open(VUPresetsStore, VUPresetsFile, "VUpresets.ini", "");
    open(FXPresetsStore, FXPresetsFile, "FXpresets.ini", "");
    open(MIDIStore, MIDIFile, "MIDI.ini", "");
    PaletteStore.KeepWhenAway();
    HotStore.KeepWhenAway();
    UrlsFile = InProgramFolder("urls.txt");
}

}  // namespace zv
