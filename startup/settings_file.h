/// The settings: a record for each subject (startup/settings/*_settings.h) with a field for every key of zv.ini, under the
/// key's name. LoadZVini fills them at start and after a reset, SaveZVini writes them back at exit; in between the
/// fields are the truth. Touched on the interface thread only. [control]
#pragma once

#include <string>
#include <string_view>

namespace zv {

/// Fills the records from zv.ini. A key that is missing or empty gets its default, in the file too; obsolete
/// keys go; values out of range are clamped in the record only. A value that does not convert leaves its
/// field as it was and goes to the error report, one report for all of them. Tells the window logic to
/// prepare its lists and the model that the grid's size is known (upcalls). `firstLoad` false: a settings
/// reset, the grid's size keeps its value when the file lacks it.
void LoadZVini(bool firstLoad = true);

/// Writes what differs from the file, in one rewrite, then sorts the file if it is newer than at start.
/// A file that cannot be written stays as it was.
void SaveZVini();

/// What the field of `key` holds from now on counts for this run only: SaveZVini leaves the key alone.
void KeepOutOfFile(const std::string& key);

/// Replaces the file by "[Settings]" and its other lines in sorted order; its first line goes, whatever it
/// holds.
void SortZVini();

/// Remembers the date of zv.ini; SaveZVini sorts when the file is newer than this.
void NoteIniFileDate();

/// One key by the reading idiom (a missing or empty value writes `def` to the file), as text.
std::string ReadSetting(std::string_view key, std::string_view def);
/// The settings that are read before LoadZVini: the monitor of the splash (0 when it is not there; the file
/// keeps its value) and the switch of the log. They set their fields.
int ReadMonitorSetting(int monitorCount);
bool ReadErrorLogSetting();
/// Writes one key at once, for the few that are saved when they change (Touch, Autorepeat, ActiveFXTab, ...).
void WriteSetting(std::string_view key, std::string_view value);

/// `name` if the list of palettes has it, else the first entry, empty when there is none.
std::string CheckSection(const std::string& name);

/// All records as they are without a file: every field its default.
void ResetSettings();

/// Every setting as "key=value" in the order of loading, for state dumps.
std::string SettingsDump();

}  // namespace zv
