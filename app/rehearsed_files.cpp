#include "app/rehearsed_files.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "model/held_palette.h"
#include "model/palette_files.h"
#include "model/state.h"
#include "platform/paths.h"
#include "startup/helpers.h"
#include "startup/impulse.h"
#include "startup/ini_text.h"
#include "startup/stores.h"

namespace zv {
namespace {

using Lines = std::vector<cImpulse::Line>;

/// What was found at the last call.
struct Memory {
    FileState state;
    std::map<std::string, Lines> palettes;  ///< by lower-case name
    std::string held;
};

std::map<std::string, Lines> sectionsOf(const std::string& file) {
    std::string bytes;
    std::map<std::string, Lines> sections;
    if (!readFile(nativePath(file), bytes)) return sections;
    IniText text(std::move(bytes));
    for (const std::string& name : text.sectionNames()) sections[LowerCase(name)] = text.lines(name);
    return sections;
}

void addSounds(const Lines& lines, std::multiset<std::string>& sounds) {
    for (const auto& [key, value] : lines)
        if (key.starts_with("Path_")) sounds.insert(LowerCase(value));
}

/// Lines of paths whose file has another place or name by now: what stands for them in `now` is the same sound.
void followFiles(Lines& before, const Lines& now) {
    const std::map<std::string, std::string> there(now.begin(), now.end());
    for (auto& [key, value] : before) {
        const auto at = there.find(key);
        const bool moved = key.starts_with("Path_") && at != there.end() && at->second != value &&
                           !FileExists(GetFullPath(value)) && FileExists(GetFullPath(at->second));
        if (moved) value = at->second;
    }
}

/// A palette that was not open: its sounds leave it only for the open one or the hot jingles, and none comes but those
/// that an undo brings back from there.
std::string foreignFault(const std::string& name, Lines before, const Lines& now,
                         const std::multiset<std::string>& wasElsewhere,
                         const std::multiset<std::string>& elsewhere) {
    std::multiset<std::string> had, has, gone, come;
    followFiles(before, now);
    addSounds(before, had);
    addSounds(now, has);
    std::ranges::set_difference(had, has, std::inserter(gone, gone.end()));
    std::ranges::set_difference(has, had, std::inserter(come, come.end()));
    std::erase_if(come, [&](const std::string& sound) { return wasElsewhere.contains(sound); });
    if (!come.empty()) return "palette " + name + " has got " + *come.begin() + ", and was not open";
    for (const std::string& sound : gone)
        if (!elsewhere.contains(sound)) return "palette " + name + " has lost " + sound;
    return {};
}

}  // namespace

std::string filesFault() {
    static Memory memory;
    const std::string held = LowerCase(HeldPalette()), left = std::exchange(memory.held, held);
    const FileState state = fileState(nativePath(PalFile));
    if (!state.exists || state == memory.state) return {};
    memory.state = state;
    const auto before = std::exchange(memory.palettes, sectionsOf(PalFile));
    const auto linesOf = [](const std::string& name) {
        const auto at = memory.palettes.find(name);
        return at == memory.palettes.end() ? Lines() : at->second;
    };
    std::multiset<std::string> wasElsewhere, elsewhere;
    for (const std::string& name : {held, left}) {
        addSounds(linesOf(name), elsewhere);
        if (const auto at = before.find(name); at != before.end()) addSounds(at->second, wasElsewhere);
    }
    for (const auto& [name, lines] : sectionsOf(HotFile)) addSounds(lines, elsewhere);
    for (const auto& [name, lines] : before) {
        if (name == held || name == left) continue;
        if (!memory.palettes.contains(name)) return "palette " + name + " has gone from the file";
        if (std::string fault = foreignFault(name, lines, linesOf(name), wasElsewhere, elsewhere);
            !fault.empty())
            return fault;
    }
    const bool settled = held == left && !held.empty() && !PalToSave && !PaletteLoading();
    if (settled && !before.empty() && linesOf(held) != LinesOfRecords(false))
        return "palette " + held + " was saved otherwise than it stands";
    return {};
}

}  // namespace zv
