#include "ui/edit/edited_file.h"

#include <optional>
#include <string>

#include "audio/sound_file.h"
#include "platform/files.h"
#include "platform/jobs.h"
#include "platform/paths.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "ui/edit/edited_jingle.h"
#include "ui/edit/positions_page.h"

namespace zv {

namespace {

constexpr int kTicksBetween = 25;  ///< of the window's timer: a second
constexpr double kSampleBytes = 2;

struct Found {
    FileState state;
    double length = 0;  ///< bytes, as positions count them
};

struct Watch {
    std::optional<FileState> atFirst, last;
    int ticks = 0;
    std::string note;
    Job job;
};
Watch watch;

bool sameFile(const FileState& a, const FileState& b) {
    return a.exists == b.exists && a.inode == b.inode && a.size == b.size && a.modified == b.modified;
}

Found look(const std::string& path, const std::optional<FileState>& last) {
    Found found{.state = fileState(nativePath(path))};
    if (!last || !found.state.exists || sameFile(*last, found.state)) return found;
    if (const auto decoder = OpenSoundFile(path))
        found.length =
            static_cast<double>(decoder->length().value_or(0)) * decoder->format().channels * kSampleBytes;
    return found;
}

void take(const Found& found) {
    const bool first = !watch.atFirst, changed = watch.last && !sameFile(*watch.last, found.state);
    watch.last = found.state;
    if (first) watch.atFirst = found.state;
    if (first ? found.state.exists : !changed) return;
    watch.note = Ln(found.state.exists ? "fxFileChanged" : "fxFileGone");
    if (!found.state.exists || found.length <= 0) return;
    Edited.fileLength = found.length;
    if (!HoldPositions()) return;
    ShowPositions();
    UpdateJFX();
}

void ask() {
    watch.ticks = 0;
    watch.job = startJob<Found>(
        "frmFX.File",
        [path = GetFullPath(EditedRecord().Path), last = watch.last](JobWork&) { return look(path, last); },
        [](const Found& found) { guarded("frmFX.File", [&] { take(found); }); });
}

}  // namespace

void OpenFileWatch() {
    watch = Watch();
    ask();
}

void FollowFile() {
    if (++watch.ticks >= kTicksBetween && !watch.job.running()) ask();
}

const std::string& FileNote() { return watch.note; }

bool EditedFileReplaced() {
    return watch.atFirst && watch.last && watch.last->exists && !sameFile(*watch.atFirst, *watch.last);
}

void CloseFileWatch() { watch = Watch(); }

}  // namespace zv
