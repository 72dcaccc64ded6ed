#include "ui/edit/relocate.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "audio/sounding.h"
#include "audio/streams.h"
#include "model/held_palette.h"
#include "model/jingle.h"
#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/jobs.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/folders_settings.h"
#include "startup/stores.h"
#include "ui/edit/lost_files.h"
#include "ui/edit/undo.h"
#include "ui/edit/undo_files.h"
#include "ui/edit/unsaved.h"
#include "ui/records/soon.h"
#include "ui/screen/captions.h"
#include "ui/screen/display_message.h"
#include "ui/screen/error_mark.h"
#include "ui/windows/select_file_window.h"

namespace zv {

namespace {

constexpr int kSureOfTime = 5;             // percent from which the time left can be told
constexpr std::int64_t kSureAfter = 1000;  // ms

Job searching;
std::string lostPath;
std::map<std::string, std::string> others;  ///< missing path, where it was found
std::int64_t startedAt = 0;

void endSearch() {
    searching.cancel();
    if (ErrMarkShows("h")) {
        HideErrMark();
    }
    frmSelFile().form.close();
}

void showProgress(int percent, const std::string& text) {
    SelectFileWindow& w = frmSelFile();
    const auto end = text.find('\n');
    w.barSearch.value = percent;
    w.lblFolder.caption = Ln("sfSearching") + " " + text.substr(0, end);
    std::string seen = FilledText("sfFilesSeen", end == std::string::npos ? "0" : text.substr(end + 1));
    const std::int64_t elapsed = monotonicMs() - startedAt;
    if (percent >= kSureOfTime && elapsed >= kSureAfter) {
        constexpr double kWhole = 100, kSecond = 1000;
        const double left = static_cast<double>(elapsed) * (kWhole - percent) / percent / kSecond;
        seen += ", " + FilledText("sfTimeLeft", seconds2msd(left));
    }
    w.lblSeen.caption = seen;
}

void move(int index, const std::string& path) {
    JingleRecord& j = Jingle(index);
    FreeJingle(index);
    j.Path = path;
    openStreams(index);
}

/// The chosen file, and those that were found beside it.
void select() {
    SelectFileWindow& w = frmSelFile();
    const std::string chosen = w.lstFoundFiles.text();
    const bool all = w.ckOthers.visible && w.ckOthers.value == 1;
    endSearch();
    if (chosen.empty()) {
        return;
    }
    std::map<std::string, std::string> moved = all ? others : std::map<std::string, std::string>();
    moved[lostPath] = chosen;
    const UndoStep step("unReloc");
    for (int i = 0; i < kJingles; ++i) {
        const auto at = moved.find(Jingle(i).Path);
        if (at != moved.end() && Jingle(i).MissingFile && !Sounds(i)) {
            move(i, at->second);
        }
    }
    if (all) {
        NotePaths(MovePaths(moved, HeldPalette()));
        ShowDisplayMessage(FilledText("sfDone", std::to_string(moved.size())));
    }
    MarkPalToSave();
}

void found(const FoundFiles& files) {
    if (ErrMarkShows("h")) {
        HideErrMark();
    }
    if (files.own.empty()) {
        endSearch();
        Soon("frmMain.SearchInFolder", [] {
            messageBox(LnBox("sfFileNotFound") + "\r\n" + GetFileName(lostPath), Ln("mSrchTitle"),
                       BoxKind::information, BoxButtons::ok);
        });
        return;
    }
    others = files.others;
    frmSelFile().lblFolder.caption = std::string();
    frmSelFile().lblSeen.caption = FilledText("sfFilesSeen", std::to_string(files.seen));
    frmSelFile().showFound(files.own, others.size());
}

void search(const std::string& folder) {
    LostSearch what{.path = lostPath, .folder = folder};
    PaletteStore.SetIniPath(PalFile);
    what.palettes = PaletteStore.Bytes();
    HotStore.SetIniPath(HotFile);
    what.hotJingles = HotStore.Bytes();
    for (int i = 0; i < kJingles; ++i) {
        if (!Jingle(i).Path.empty()) {
            what.records.push_back(Jingle(i).Path);
        }
    }
    SelectFileWindow& w = frmSelFile();
    w.onSelect = select;
    w.onCancel = endSearch;
    startedAt = monotonicMs();
    w.showSearch(GetFileName(lostPath));
    auto result = std::make_shared<FoundFiles>();
    JobOrder order;
    order.name = "frmMain.SearchInFolder";
    order.work = [what = std::move(what), result](JobWork& work) { *result = FindLostFiles(what, work); };
    order.done = [result] { guarded("frmMain.SearchInFolder", [&] { found(*result); }); };
    order.progressed = [](int percent, const std::string& text) { showProgress(percent, text); };
    order.lane = JobLane::longer;
    searching = startJob(std::move(order));
}

}  // namespace

void clReloc(int index) {
    guarded("modClick.clReloc", [&] {
        const JingleRecord& j = Jingle(index);
        if (j.Unplayable || j.Path.empty()) {
            return;
        }
        const std::string path = j.Path;
        const std::string name = GetFileName(path);
        const std::string folder = folderDialog(Ln("mSrchTitle") + " - " + name + " - " + Ln("mSrchStr"),
                                                folderSettings.LastcmDlgDir);
        if (folder.empty()) {
            return;
        }
        folderSettings.LastcmDlgDir = folder;
        endSearch();
        lostPath = path;
        ErrDisp("wait", 0, Ln("errSearchFile") + " \"" + name + "\" ...");
        search(folder);
    });
}

}  // namespace zv
