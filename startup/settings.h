/// The settings: one plain record with a field for every key of zv.ini, under the key's name. LoadZVini fills
/// it at start and after a reset, SaveZVini writes it back at exit; in between the fields are the truth. To add
/// a setting add its line to settings_list.inc. Touched on the interface thread only. [control]
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zv {

/// A streaming server on the studio's own machine, where the usual ones answer.
inline constexpr const char* kDefaultStreamUrl = "http://localhost:8000/live";
inline constexpr const char* kSplashFont = "MS Sans Serif";
inline constexpr const char* kEnglish = "English";
inline constexpr const char* kFrench = "Français";

/// A field for every line of settings_list.inc, each with its default.
struct Settings {
#define ZV_BYTE(name, standard, ...) std::int32_t name = standard;
#define ZV_WORD(name, standard, ...) std::int32_t name = standard;
#define ZV_WHOLE(name, standard, ...) std::int32_t name = standard;
#define ZV_COLOUR(name, standard, ...) std::int32_t name = standard;
#define ZV_TEXT(name, standard, ...) std::string name = standard;
#include "startup/settings_list.inc"

    std::int32_t Monitor = 0;              ///< index of the monitor in use; the file keeps its own value
    std::int32_t DeviceSinglePending = 0;  ///< DeviceSingle as chosen in the window; the one that is saved
};

extern Settings settings;

/// Text before and after the word "duration" in JDispDurationEncap; both empty without the word.
std::string JDurationPrefix();
std::string JDurationSuffix();

/// Fills `settings` from zv.ini. A key that is missing or empty gets its default, in the file too; obsolete
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
/// keeps its value) and the switch of the log. They set their fields of `settings`.
int ReadMonitorSetting(int monitorCount);
bool ReadErrorLogSetting();
/// Writes one key at once, for the few that are saved when they change (Touch, Autorepeat, ActiveFXTab, ...).
void WriteSetting(std::string_view key, std::string_view value);

/// `name` if the list of palettes has it, else the first entry, empty when there is none.
std::string CheckSection(const std::string& name);

/// Every setting as "key=value" in the order of loading, for state dumps.
std::string SettingsDump();

}  // namespace zv
