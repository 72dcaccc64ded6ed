/// Brings the files of the program folder into being, one function a step of the start. A file that cannot be
/// created is not reported here; its reads give missing keys. [control]
#pragma once

#include <string>

namespace zv {

void OpenIniFile();  ///< zv.ini, empty when missing; its date is noted
void OpenLanguageFile();  ///< from language_original.ini when missing, older, of another version, or under 25,000 bytes
void OpenAccountFile();   ///< account.ini with its two empty keys' section
void OpenPaletteFile();   ///< palette.ini, pre-update copy, rotating backup
void OpenPlaylistFile();  ///< playlist.ini likewise; for the day when playlists are switched on
/// urls.txt with the default stream. True when the program file is newer than it, so that SortURLs is due.
bool OpenUrlsFile();
void OpenDispPresets();  ///< "VFD", "LCD", "Negative LCD"
void OpenVUPresets();    ///< "Initial", "VFD", "LCD", "Negative LCD"
void OpenFXPresets();    ///< four presets in the section "FXP"
void OpenHotFile();      ///< HotJingles.ini, rotating backup
void OpenMIDIFile();     ///< MIDI.ini

inline constexpr int kSmallestLanguageFile = 25000;  ///< bytes; a shorter one is a damaged one

/// The file `name` ("Fonts/ZVR.ttf", "language_original.ini") of the program folder, or the shipped one when
/// the program folder has none.
std::string ShippedFile(const std::string& name);

/// True when files can be created in the program folder.
bool ProgramFolderWritable();
/// Removes temporary files that a run left behind when it was killed while saving.
void SweepTemporaries();

}  // namespace zv
