#include "ui/edit/fill.h"

#include <algorithm>
#include <utility>

#include "model/held_palette.h"
#include "model/jingle.h"
#include "platform/desktop.h"
#include "platform/jobs.h"
#include "startup/folder_walk.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "ui/edit/assign.h"
#include "ui/edit/undo.h"
#include "ui/edit/undo_files.h"
#include "ui/edit/unsaved.h"
#include "ui/records/soon.h"
#include "ui/screen/display_message.h"

namespace zv {

namespace {

constexpr std::size_t kMostFiles = 5000;  // of a folder: nobody fills 96 buttons from more

Job looking;

/// Sound files in the order of their names. [worker]
std::vector<std::string> soundFiles(const std::vector<std::string>& paths, JobWork& work) {
    std::vector<std::string> files;
    const auto take = [&](const std::string& path) {
        if (WhyNotAssigned(path).empty() && files.size() < kMostFiles) {
            files.push_back(path);
        }
    };
    for (const std::string& path : paths) {
        if (work.cancelled()) {
            break;
        }
        if (FolderExists(path)) {
            WalkFiles(path, [&](const std::string& file) {
                take(file);
                return !work.cancelled() && files.size() < kMostFiles;
            });
        } else if (FileExists(path)) {
            take(path);
        }
    }
    const auto byName = [](const std::string& path) {
        return std::pair(LowerCase(SansAccents(GetFileName(path))), path);
    };
    std::sort(files.begin(), files.end(),
              [&](const std::string& a, const std::string& b) { return byName(a) < byName(b); });
    return files;
}

std::vector<int> emptyButtons() {
    std::vector<int> empty;
    for (const int i : LiveJingles()) {
        const JingleRecord& j = Jingle(i);
        if (i < kPaletteSlots && j.Path.empty() && j.Kind == SlotKind::nothing && !j.Playing &&
            !j.PlayingOtherPal) {
            empty.push_back(i);
        }
    }
    return empty;
}

void put(const std::vector<std::string>& files) {
    const std::vector<int> empty = emptyButtons();
    const std::size_t count = std::min(empty.size(), files.size());
    if (PaletteLoading() || count == 0) {
        return;
    }
    const UndoStep step("unFill");
    for (std::size_t i = 0; i < count; ++i) {
        PutFile(empty[i], files[i]);
    }
    MarkPalToSave();
    ShowDisplayMessage(FilledText("flDone", std::to_string(count)));
}

void ask(const std::vector<std::string>& files) {
    const std::size_t room = emptyButtons().size();
    if (files.empty() || room == 0) {
        ShowDisplayMessage(Ln(files.empty() ? "flNone" : "flNoRoom"));
        return;
    }
    const std::size_t count = std::min(room, files.size());
    std::string question = FilledText("flAsk", std::to_string(count));
    if (count < files.size()) {
        question += "\r\n" + FilledText("flLeft", std::to_string(files.size() - count));
    }
    const std::string palette = HeldPalette();
    if (messageBox(question, "Zentrova", BoxKind::question, BoxButtons::yesNo, Verbs("vbFill", "mCancel")) ==
            BoxAnswer::yes &&
        HeldPalette() == palette) {
        put(files);
    }
}

}  // namespace

void FillPalette(const std::vector<std::string>& paths) {
    guarded("modClick.FillPalette", [&] {
        if (paths.empty()) {
            return;
        }
        looking = startJob<std::vector<std::string>>(
            "modClick.FillPalette", [paths](JobWork& work) { return soundFiles(paths, work); },
            [](const std::vector<std::string>& files) {
                Soon("modClick.FillPalette", [files] { ask(files); });
            },
            JobLane::longer);
    });
}

}  // namespace zv
