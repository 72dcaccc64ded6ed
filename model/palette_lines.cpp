#include "model/palette_lines.h"

#include <chrono>
#include <cmath>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "engine/bass.h"
#include "model/after_sound.h"
#include "model/history.h"
#include "model/state.h"
#include "platform/paths.h"
#include "startup/helpers.h"
#include "startup/settings/folders_settings.h"

namespace zv {

namespace {

/// The text of the wholly rounded loop end; "0" when it is the end of the sound, which needs no key.
std::string loopOutText(const JingleRecord& jingle) {
    if (jingle.hSrc != 0 &&
        jingle.LoopOut == static_cast<double>(BASS_ChannelGetLength(jingle.hSrc, BASS_POS_BYTE)))
        return "0";
    return NumberText(std::nearbyint(jingle.LoopOut));
}

bool holds(const std::string& text, const std::string& part) {
    return !part.empty() && text.find(part) != std::string::npos;
}

/// A path of a file that an import would copy: absolute, or in the sample folder.
bool wantsImport(const std::string& path) {
    return isAbsolutePath(path) || holds(path, "\\\\") || holds(path, ":\\") ||
           holds(path, folderSettings.SampleDir);
}

/// Names of files that this save could not import.
std::vector<std::string> lockedFiles;

std::string importFolder() {
    const std::string folder = RPP(folderSettings.SampleDir);
    return folderSettings.ImportFolderName.empty() ? folder : RPP(folder + folderSettings.ImportFolderName);
}

/// Copies the file into the sample folder; the path of the copy, or `path` when it could not be made.
std::string importFile(const std::string& path) {
    const std::string folder = importFolder();
    const std::string name = GetFileName(path);
    const std::string target = folder + name;
    const auto from = nativePath(path);
    const auto to = nativePath(target);
    std::error_code error;
    if (std::filesystem::equivalent(from, to, error)) return target;
    bool copied = MkDirs(folder);
    if (copied) {
        // Through a file of its own name, so that a failed copy never leaves half a sound in the target's
        // place.
        auto part = to;
        part += kPartEnd;
        copied =
            std::filesystem::copy_file(from, part, std::filesystem::copy_options::overwrite_existing, error);
        if (copied) {
            KeepReplacedFile(target);
            std::filesystem::rename(part, to, error);
        }
        copied = copied && !error;
        if (!copied) {
            std::error_code ignored;
            std::filesystem::remove(part, ignored);
        }
    }
    if (!copied) {
        lockedFiles.push_back(name);
        return path;
    }
    return target;
}

/// What a section holds for one slot, as it stands there.
std::vector<cImpulse::Line> storedLines(const std::vector<cImpulse::Line>& section, int suffix) {
    const std::string ending = "_" + std::to_string(suffix);
    std::vector<cImpulse::Line> lines;
    for (const cImpulse::Line& line : section)
        if (line.first.ends_with(ending)) lines.push_back(line);
    return lines;
}

}  // namespace

std::string NeutralFXV(int freq) { return "0,0,0,0,0,0,0,0,0," + std::to_string(freq) + ",0"; }

std::string StoredPath(const std::string& path) {
    std::string stored = GetRelPath(path);
    if (folderSettings.ImportFiles == 1 && wantsImport(stored) && FileExists(GetFullPath(stored)))
        stored = importFile(stored);
    return GetRelPath(stored);
}

std::vector<cImpulse::Line> JingleLines(const JingleRecord& jingle, int suffix, const std::string& path) {
    std::vector<cImpulse::Line> lines;
    const std::string number = std::to_string(suffix);
    const auto put = [&](const char* stem, const std::string& value) {
        lines.emplace_back(stem + number, value);
    };
    const auto putUnless = [&](const char* stem, const std::string& value, const char* standard) {
        if (value != standard) put(stem, value);
    };
    const bool kept = jingle.KeepsStored;
    const int loop = kept ? jingle.StoredLoop : jingle.Loop;
    const int seq = kept ? jingle.StoredSeq : jingle.Seq;
    put("Path_", path);
    putUnless("Volm_", std::to_string(kept ? jingle.StoredVolm : jingle.Volm), "100");
    putUnless("AutoDuck_", std::to_string(jingle.AutoDuck), "0");
    // These two go from the section also where it is written over.
    put("NoAutomix_", jingle.NoAutomix == 1 ? "1" : "");
    put("NoTrigDuck_", jingle.NoTrigDuck == 1 ? "1" : "");
    if (loop != 0) put("Loop_", "1");
    if (seq != 0) put("Seq_", "1");
    putUnless("LoopIn_", NumberText(jingle.LoopIn), "0");
    putUnless("LoopOut_", loopOutText(jingle), "0");
    putUnless("FadeOut_", std::to_string(jingle.FadeOut), "0");
    if (jingle.LogFadeOut != 0) put("LogFadeOut_", "1");
    if (jingle.LoopFadeOut != 0) put("LoopFadeOut_", "1");
    putUnless("BTNCol_", jingle.BTNCol, kFaceColourText);
    putUnless("PlayMod_", std::to_string(static_cast<int>(jingle.PlayMod)), "0");
    putUnless("CueStart_", NumberText(jingle.CueStart), "0");
    putUnless("StopPos_", NumberText(jingle.StopPos), "0");
    if (jingle.FXV != NeutralFXV(jingle.Freq)) put("FXV_", jingle.FXV);
    return lines;
}

std::vector<cImpulse::Line> SlotLines(int first, int last, const std::vector<cImpulse::Line>& stored,
                                      Purpose purpose) {
    std::vector<cImpulse::Line> lines;
    for (int i = first; i <= last; ++i) {
        JingleRecord& jingle = Jingle(i);
        const int suffix = i - first;
        std::vector<cImpulse::Line> own;
        const bool hotWithoutButton = first == kPaletteSlots && JExists[static_cast<std::size_t>(i)] != 1;
        if (const PersistedJingle* next = AfterSound(i)) {
            JingleRecord after;
            after.persisted() = *next;
            if (!after.Path.empty()) own = JingleLines(after, suffix, GetRelPath(after.Path));
        } else if (jingle.PlayingOtherPal || hotWithoutButton) {
            // The record is still that of an earlier palette, or was never filled; the slot waits in the file.
            own = storedLines(stored, suffix);
        } else if (jingle.Kind == SlotKind::playlist) {
            own.emplace_back("Playlist_" + std::to_string(suffix), jingle.Playlist);
            own.emplace_back("BTNCol_" + std::to_string(suffix),
                             jingle.BTNCol == kFaceColourText ? std::string() : jingle.BTNCol);
        } else if (!jingle.Path.empty()) {
            // An imported file is the slot's file from now on, also when the section cannot be written.
            if (purpose == Purpose::save) jingle.Path = StoredPath(jingle.Path);
            own = JingleLines(jingle, suffix, GetRelPath(jingle.Path));
        }
        lines.insert(lines.end(), own.begin(), own.end());
    }
    return lines;
}

void SweepParts() {
    constexpr std::chrono::seconds kStale{60};
    namespace fs = std::filesystem;
    const auto now = fs::file_time_type::clock::now();
    std::error_code error;
    for (fs::directory_iterator it(nativePath(importFolder()), error), end; !error && it != end;
         it.increment(error)) {
        std::error_code ignored;
        const fs::path& file = it->path();
        if (file.extension() == kPartEnd && IsSoundExtension(GetFileExt(utf8FromPath(file.stem()))) &&
            it->is_regular_file(ignored) && now - it->last_write_time(ignored) > kStale)
            fs::remove(file, ignored);
    }
}

std::vector<std::string> TakeLockedFiles() { return std::exchange(lockedFiles, {}); }

}  // namespace zv
