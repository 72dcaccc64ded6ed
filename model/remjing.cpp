// Of model/palette_files.h: a palette that is not open loses one slot. Its section goes through a second array of records.

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "model/history.h"
#include "model/palette_files.h"
#include "model/palette_lines.h"
#include "model/slot_keys.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/stores.h"

namespace zv {
namespace {

std::array<JingleRecord, kPaletteSlots> JTemp;

/// The fields that this rewrite carries. AutoDuck, NoAutomix and NoTrigDuck are not among them.
void readTemp(JingleRecord& jingle, int slot, const std::string& section) {
    const SlotKeys keys(PaletteStore, section, slot);
    jingle = JingleRecord();
    jingle.Path = keys.text("Path_");
    if (jingle.Path.empty()) return;
    ReadSlot(jingle, keys);
    jingle.AutoDuck = jingle.NoAutomix = jingle.NoTrigDuck = 0;
    jingle.Loop = keys.text("Loop_").empty() ? 0 : 1;
    jingle.Seq = keys.text("Seq_").empty() ? 0 : 1;
}

}  // namespace

bool RemJing(const std::string& section, int slot, const std::string& path) {
    bool written = section.empty() || slot < 0;
    guarded("modMain.RemJing", [&] {
        if (written) return;
        const auto former = PaletteStore.GetSectionLines(section);
        const std::string there = SlotKeys(PaletteStore, section, slot).text("Path_");
        const bool another = !path.empty() && !SameText(GetRelPath(there), GetRelPath(path));
        if (former.empty() || another) {
            written = true;
            return;
        }
        KeepSection(HistoryReason::moved, section, former);
        std::vector<cImpulse::Line> lines;
        for (int i = 0; i <= LastPalIdx && i < kPaletteSlots; ++i) {
            JingleRecord& jingle = JTemp[static_cast<std::size_t>(i)];
            jingle = JingleRecord();
            if (i == slot) continue;
            readTemp(jingle, i, section);
            if (jingle.Path.empty()) continue;
            for (auto& line : JingleLines(jingle, i, jingle.Path)) lines.push_back(std::move(line));
            jingle = JingleRecord();
        }
        if (lines.empty()) lines.emplace_back(kEmptyPaletteKey, "Yes");
        written = PaletteStore.PutSection(section, lines, true);
    });
    return written;
}

}  // namespace zv
