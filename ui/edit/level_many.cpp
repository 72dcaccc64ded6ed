#include "ui/edit/level_many.h"

#include <memory>
#include <utility>

#include "audio/edit_sound.h"
#include "audio/file_level.h"
#include "model/jingle.h"
#include "platform/clock.h"
#include "platform/jobs.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/editor_settings.h"
#include "ui/edit/undo.h"
#include "ui/edit/unsaved.h"
#include "ui/windows/level_window.h"

namespace zv {

namespace {

constexpr int kWhole = 100, kMsPerSecond = 1000;
constexpr int kTellFrom = 5;  ///< percent: before that nobody can say how long it takes

struct Measure {
    int slot;
    std::string path;  ///< as the record has it
    double from, to;   ///< seconds
    FileLevel level{};
};

/// One of several pieces of work as part of the whole.
class PartOfWork final : public JobWork {
  public:
    PartOfWork(JobWork& whole, std::size_t part, std::size_t parts)
        : whole_(whole), part_(static_cast<int>(part)), parts_(static_cast<int>(parts)) {}
    bool cancelled() override { return whole_.cancelled(); }
    void progress(int percent, std::string) override {
        whole_.progress((part_ * kWhole + percent) / parts_, std::to_string(part_ + 1));
    }

  private:
    JobWork& whole_;
    int part_, parts_;
};

Job work;

std::string filled(std::string text, const std::string& first, const std::string& second = {}) {
    for (const auto& [mark, value] : {std::pair{"%1", first}, std::pair{"%2", second}})
        if (const auto at = text.find(mark); at != std::string::npos) text.replace(at, 2, value);
    return text;
}

std::vector<Measure> measure(std::vector<Measure> all, const std::vector<std::string>& files, JobWork& job) {
    for (std::size_t i = 0; i < all.size() && !job.cancelled(); ++i) {
        PartOfWork part(job, i, all.size());
        all[i].level = MeasureLevel(files[i], all[i].from, all[i].to, part);
    }
    return all;
}

void apply(const std::vector<Measure>& all) {
    const UndoStep step("unLoudness");
    int count = 0;
    for (const Measure& m : all) {
        const int volume =
            VolumeForLoudness(editorSettings.LoudnessTarget, m.level.part.integrated, m.level.safeVolume);
        // Another jingle may lie there by now.
        if (volume == 0 || Jingle(m.slot).Path != m.path || Jingle(m.slot).hPlay == 0) continue;
        EditVolume(m.slot, volume);
        ++count;
    }
    frmLoudness().form.close();
    if (count == 0) return;
    MarkPalToSave();
    ErrDisp("save", 0,
            filled(Ln("lvDone"), std::to_string(count), std::to_string(editorSettings.LoudnessTarget)));
}

void show(int percent, const std::string& part, std::size_t parts, std::int64_t began) {
    LevelWindow& w = frmLoudness();
    w.barDone.value = percent;
    std::string note = filled(Ln("lvNote"), part, std::to_string(parts));
    if (percent >= kTellFrom) {
        const auto left = (monotonicMs() - began) * (kWhole - percent) / percent / kMsPerSecond + 1;
        note += "  \xC2\xB7  " + std::to_string(left) + " s";
    }
    w.lblNote.caption = note;
}

}  // namespace

std::string LoudnessItem() {
    return filled(Ln("mmnuLoudness"), std::to_string(editorSettings.LoudnessTarget));
}

void BringToLoudness(const std::vector<int>& slots) {
    guarded("frmMain.BringToLoudness", [&] {
        std::vector<Measure> all;
        std::vector<std::string> files;
        for (const int slot : slots) {
            const JingleRecord& j = Jingle(slot);
            if (j.Path.empty() || j.hPlay == 0 || j.MissingFile) continue;
            all.push_back({slot, j.Path, EditSeconds(slot, j.CueStart),
                           j.StopPos <= j.CueStart ? 0 : EditSeconds(slot, j.StopPos)});
            files.push_back(GetFullPath(j.Path));
        }
        if (all.empty()) return;
        LevelWindow& w = frmLoudness();
        w.btCancel.onClick = [] {
            guarded("frmLoudness.btCancel_Click", [] {
                work.cancel();
                frmLoudness().form.close();
            });
        };
        const std::size_t parts = all.size();
        const std::int64_t began = monotonicMs();
        show(0, "1", parts, began);
        w.form.open(&w.btCancel);
        const auto found = std::make_shared<std::vector<Measure>>(std::move(all));
        JobOrder order;
        order.name = "frmMain.BringToLoudness";
        order.lane = JobLane::longer;
        order.work = [found, files = std::move(files)](JobWork& job) {
            *found = measure(std::move(*found), files, job);
        };
        order.progressed = [parts, began](int percent, const std::string& part) {
            show(percent, part, parts, began);
        };
        order.done = [found] { guarded("frmMain.BringToLoudness", [&] { apply(*found); }); };
        order.failed = [](std::exception_ptr error) {
            frmLoudness().form.close();
            if (onJobFailure) onJobFailure("frmMain.BringToLoudness", error);
        };
        work = startJob(std::move(order));
    });
}

}  // namespace zv
