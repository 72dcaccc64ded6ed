/// The history: what a save, a deletion or a replacement takes away leaves a copy first, in the folder
/// "History" of the program folder. At most 200 entries and 500 MB; the oldest go. A copy that cannot be
/// written is held in memory until it can, and costs the caller nothing. [control]
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "startup/impulse.h"

namespace zv {

enum class HistoryReason : std::uint8_t {
    unsaved,   ///< edits that were not saved when their palette was left
    saved,     ///< jingles that a save took out of the section
    replaced,  ///< a palette that another one was saved over
    moved,     ///< a palette that lost a jingle to another one
    deleted,   ///< a palette or a sound file
};

struct HistoryEntry {
    int number = 0;    ///< grows with each entry
    std::string date;  ///< "2026-01-31 14:05:09"
    bool hot = false;  ///< of the hot jingles, not of a palette
    std::string name;  ///< palette, "HotJingles", or the path of a sound file
    HistoryReason reason = HistoryReason::saved;
    std::string data;                   ///< of a sound file: its copy's name in the folder; else empty
    std::vector<cImpulse::Line> lines;  ///< of a palette

    bool isFile() const { return !data.empty(); }
};

inline constexpr int kHistoryEntries = 200;
inline constexpr std::uint64_t kHistoryBytes = 500'000'000;

/// Nothing for a section without lines, nor for one that the newest entry holds already. The hot jingles are of
/// the name "HotJingles" and `hot`.
void KeepSection(HistoryReason reason, const std::string& name, const std::vector<cImpulse::Line>& lines,
                 bool hot = false);
/// The sound file at `path` goes into the history. True when it is not at `path` any more.
bool KeepDeletedFile(const std::string& path);
/// The file at `path` is about to be replaced under its name: the history keeps what it is now.
void KeepReplacedFile(const std::string& path);

/// Newest first.
std::vector<HistoryEntry> HistoryEntries();
/// Puts a sound file back under its own name; a file that stands there by now is kept first. False when it
/// could not be done; the entry is as it was.
bool BringFileBack(const HistoryEntry& entry);

}  // namespace zv
