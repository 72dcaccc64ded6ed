#include "ui/edit/lost_files.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "model/state.h"
#include "startup/folder_walk.h"
#include "startup/helpers.h"
#include "startup/ini_text.h"
#include "startup/stores.h"

namespace zv {

namespace {

constexpr const char* kPathStem = "Path_";
constexpr int kWalked = 90;  // percent of the work

using ByName = std::map<std::string, std::vector<std::string>>;

std::string nameOf(const std::string& path) {
    // A path of another system: both separators part.
    const auto at = path.find_last_of("\\/");
    return at == std::string::npos ? path : path.substr(at + 1);
}

/// How many names from the end are the same.
int agreement(const std::string& a, const std::string& b) {
    int names = 0;
    for (std::string restA = LowerCase(a), restB = LowerCase(b); nameOf(restA) == nameOf(restB); ++names) {
        const auto cut = [](std::string& path) {
            const auto at = path.find_last_of("\\/");
            path.resize(at == std::string::npos ? 0 : at);
        };
        cut(restA);
        cut(restB);
        if (restA.empty() || restB.empty()) {
            return names + 1;
        }
    }
    return names;
}

/// The one file that agrees best; empty when two do.
std::string bestOf(const std::vector<std::string>& found, const std::string& lost) {
    std::string best;
    int most = 0;
    for (const std::string& path : found) {
        const int names = agreement(path, lost);
        if (names > most) {
            most = names;
            best = path;
        } else if (names == most) {
            best.clear();
        }
    }
    return best;
}

std::set<std::string> pathsOf(const LostSearch& search) {
    std::set<std::string> paths(search.records.begin(), search.records.end());
    for (const std::string* bytes : {&search.palettes, &search.hotJingles}) {
        IniText text(*bytes);
        for (const std::string& section : text.sectionNames()) {
            for (const auto& [key, value] : text.lines(section)) {
                if (key.starts_with(kPathStem)) {
                    paths.insert(value);
                }
            }
        }
    }
    return paths;
}

}  // namespace

FoundFiles FindLostFiles(const LostSearch& search, JobWork& work) {
    ByName byName;
    int seen = 0, told = -1;
    WalkFiles(
        search.folder,
        [&](const std::string& file) {
            ++seen;
            byName[LowerCase(nameOf(file))].push_back(file);
            return !work.cancelled();
        },
        [&](const std::string& folder, double share) {
            if (const int percent = static_cast<int>(share * kWalked); percent != told) {
                told = percent;
                work.progress(percent, folder + "\n" + std::to_string(seen));
            }
        });
    FoundFiles found;
    found.seen = seen;
    const auto filesOf = [&](const std::string& path) {
        const auto at = byName.find(LowerCase(nameOf(path)));
        return at == byName.end() ? std::vector<std::string>() : at->second;
    };
    found.own = filesOf(search.path);
    if (found.own.empty()) {
        return found;
    }
    for (const std::string& path : pathsOf(search)) {
        if (work.cancelled()) {
            break;
        }
        const std::string best = path == search.path ? std::string() : bestOf(filesOf(path), path);
        if (!best.empty() && IsSoundExtension(GetFileExt(best)) && !FileExists(GetFullPath(path))) {
            found.others.emplace(path, best);
        }
    }
    return found;
}

std::vector<PathChange> MovePaths(const std::map<std::string, std::string>& moved, const std::string& held) {
    std::vector<PathChange> changes;
    PaletteStore.SetIniPath(PalFile);
    const bool written = PaletteStore.RewriteValues(
        kPathStem, [&](const std::string& section, const cImpulse::Line& line) -> std::optional<std::string> {
            const auto at = moved.find(line.second);
            if (at == moved.end() || SameText(section, held)) {
                return std::nullopt;
            }
            changes.push_back({section, line.first, line.second, GetRelPath(at->second)});
            return changes.back().after;
        });
    return written ? changes : std::vector<PathChange>();
}

void BringPaths(const std::vector<PathChange>& changes, bool back) {
    if (changes.empty()) {
        return;
    }
    std::map<std::pair<std::string, std::string>, const PathChange*> byPlace;
    for (const PathChange& change : changes) {
        byPlace[{change.section, change.key}] = &change;
    }
    PaletteStore.SetIniPath(PalFile);
    PaletteStore.RewriteValues(
        kPathStem, [&](const std::string& section, const cImpulse::Line& line) -> std::optional<std::string> {
            const auto at = byPlace.find({section, line.first});
            if (at == byPlace.end() || line.second != (back ? at->second->after : at->second->before)) {
                return std::nullopt;
            }
            return back ? at->second->before : at->second->after;
        });
}

}  // namespace zv
