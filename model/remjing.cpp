// A palette that is not open loses one slot: its section goes through a second array of records.

#include <array>
#include <cstdlib>
#include <string>
#include <vector>

#include "engine/bass.h"
#include "model/palette_files.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/stores.h"

namespace zv {
namespace {

std::array<JingleRecord, kPaletteSlots> JTemp;

/// The fields that this rewrite carries, each only when its key is there. AutoDuck, NoAutomix and NoTrigDuck
/// are not among them.
void readTemp(JingleRecord& jingle, int slot, const std::string& section) {
    const auto text = [&](const char* stem) {
        return PaletteStore.GetValue(stem + std::to_string(slot), 0, section);
    };
    const auto number = [&](const char* stem, double otherwise) {
        const std::string value = text(stem);
        return value.empty() ? otherwise : Val(value);
    };
    jingle = JingleRecord();
    jingle.Path = text("Path_");
    if (jingle.Path.empty()) return;
    jingle.Volm = static_cast<int>(number("Volm_", 100));
    jingle.Loop = text("Loop_").empty() ? 0 : 1;
    jingle.Seq = text("Seq_").empty() ? 0 : 1;
    jingle.LoopIn = number("LoopIn_", 0);
    jingle.LoopOut = number("LoopOut_", 0);
    jingle.FadeOut = static_cast<int>(number("FadeOut_", 0));
    jingle.LogFadeOut = static_cast<std::uint8_t>(number("LogFadeOut_", 0));
    jingle.LoopFadeOut = static_cast<std::uint8_t>(number("LoopFadeOut_", 0));
    const std::string colour = text("BTNCol_");
    if (!colour.empty()) jingle.BTNCol = colour;
    jingle.PlayMod = static_cast<PlayMode>(static_cast<int>(number("PlayMod_", 0)));
    jingle.CueStart = number("CueStart_", 0);
    jingle.StopPos = number("StopPos_", 0);
    jingle.FXV = text("FXV_");
}

}  // namespace

void RemJing(const std::string& section, int slot) {
    guarded("modMain.RemJing", [&] {
        if (section.empty() || slot < 0) return;
        PaletteStore.SetIniPath(PalFile);
        std::vector<cImpulse::Line> lines;
        for (int i = 0; i <= LastPalIdx && i < kPaletteSlots; ++i) {
            JingleRecord& jingle = JTemp[static_cast<std::size_t>(i)];
            jingle = JingleRecord();
            if (i == slot) continue;
            readTemp(jingle, i, section);
            if (jingle.Path.empty()) continue;
            // Without an open channel the vector's own rate is the file's: a neutral vector is left out.
            const auto parts = Split(jingle.FXV, ",");
            if (parts.size() > 9) jingle.Freq = static_cast<int>(Val(parts[9]));
            if (jingle.FXV == NeutralFXV(jingle.Freq)) jingle.FXV.clear();
            for (auto& line : JingleLines(jingle, i, jingle.Path))
                if (!line.second.empty()) lines.push_back(std::move(line));
            jingle = JingleRecord();
        }
        if (lines.empty()) lines.emplace_back(kEmptyPaletteKey, "Yes");
        PaletteStore.PutSection(section, lines, true);
    });
}

}  // namespace zv
