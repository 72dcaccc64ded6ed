#include "app/rehearsed_program.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ostream>
#include <sstream>
#include <utility>
#include <vector>

#include "app/rehearsed_files.h"
#include "app/rehearsed_screen.h"
#include "audio/devices.h"
#include "audio/open_palette.h"
#include "audio/talk_over.h"
#include "engine/bass.h"
#include "model/jingle.h"
#include "model/slot_index.h"
#include "model/state.h"
#include "platform/rehearsal/json.h"
#include "platform/rehearsal/rehearsed.h"
#include "platform/rehearsal/stage.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/duck_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/marks_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/volumes_settings.h"
#include "startup/settings_file.h"
#include "startup/upcalls.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/layout.h"

namespace zv {
namespace {

/// Plain decimal text; whole numbers without a point.
std::string text(double value) {
    std::array<char, 40> buffer{};
    if (value == std::floor(value) && std::abs(value) < 1e15) {
        std::snprintf(buffer.data(), buffer.size(), "%.0f", value);
    } else {
        std::snprintf(buffer.data(), buffer.size(), "%.10g", value);
    }
    return buffer.data();
}
std::string text(std::integral auto value) { return std::to_string(static_cast<std::int64_t>(value)); }
/// A 16-bit flag reads 0 and -1.
std::string flag(bool on) { return on ? "-1" : "0"; }

struct Field {
    const char* name;
    std::string (*read)(const JingleRecord&);
};

constexpr Field kFields[] = {
    {"Path", [](const JingleRecord& j) { return j.Path; }},
    {"State", [](const JingleRecord& j) { return text(static_cast<int>(j.State)); }},
    {"Playing", [](const JingleRecord& j) { return flag(j.Playing); }},
    {"PlayingOtherPal", [](const JingleRecord& j) { return flag(j.PlayingOtherPal); }},
    {"Kind", [](const JingleRecord& j) { return text(static_cast<int>(j.Kind)); }},
    {"MissingFile", [](const JingleRecord& j) { return flag(j.MissingFile); }},
    {"Unplayable", [](const JingleRecord& j) { return flag(j.Unplayable); }},
    {"BassErr", [](const JingleRecord& j) { return text(j.BassErr); }},
    {"PlayMod", [](const JingleRecord& j) { return text(static_cast<int>(j.PlayMod)); }},
    {"Duration", [](const JingleRecord& j) { return text(j.Duration); }},
    {"CueStart", [](const JingleRecord& j) { return text(j.CueStart); }},
    {"StopPos", [](const JingleRecord& j) { return text(j.StopPos); }},
    {"EndOffset", [](const JingleRecord& j) { return text(j.EndOffset); }},
    {"Loop", [](const JingleRecord& j) { return text(j.Loop); }},
    {"Seq", [](const JingleRecord& j) { return text(j.Seq); }},
    {"LoopIn", [](const JingleRecord& j) { return text(j.LoopIn); }},
    {"LoopOut", [](const JingleRecord& j) { return text(j.LoopOut); }},
    {"FadeOut", [](const JingleRecord& j) { return text(j.FadeOut); }},
    {"LogFadeOut", [](const JingleRecord& j) { return text(j.LogFadeOut); }},
    {"LoopFadeOut", [](const JingleRecord& j) { return text(j.LoopFadeOut); }},
    {"AutoDuck", [](const JingleRecord& j) { return text(j.AutoDuck); }},
    {"NoAutomix", [](const JingleRecord& j) { return text(j.NoAutomix); }},
    {"NoTrigDuck", [](const JingleRecord& j) { return text(j.NoTrigDuck); }},
    {"Volm", [](const JingleRecord& j) { return text(j.Volm); }},
    {"ReverbMs", [](const JingleRecord& j) { return text(j.ReverbMs); }},
    {"Freq", [](const JingleRecord& j) { return text(j.Freq); }},
    {"FXV", [](const JingleRecord& j) { return j.FXV; }},
    {"BTNCol", [](const JingleRecord& j) { return j.BTNCol; }},
    {"BackRGB", [](const JingleRecord& j) { return text(j.BackRGB); }},
    {"ForeRGB", [](const JingleRecord& j) { return text(j.ForeRGB); }},
    {"Playlist", [](const JingleRecord& j) { return j.Playlist; }},
};

/// The settings as keys and values.
std::vector<std::pair<std::string, std::string>> settingLines() {
    std::vector<std::pair<std::string, std::string>> lines;
    std::istringstream dump(SettingsDump());
    for (std::string line; std::getline(dump, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos) lines.emplace_back(line.substr(0, equals), line.substr(equals + 1));
    }
    return lines;
}

/// The number in "NAME(12)...", -1 when it is none; `rest` is what follows the bracket.
int indexOf(std::string_view name, std::string_view stem, std::string_view& rest) {
    if (!name.starts_with(stem) || name.size() <= stem.size() || name[stem.size()] != '(') return -1;
    const char* begin = name.data() + stem.size() + 1;
    int index = -1;
    const auto [end, error] = std::from_chars(begin, name.data() + name.size(), index);
    if (error != std::errc{} || end == name.data() + name.size() || *end != ')') return -1;
    rest = name.substr(static_cast<std::size_t>(end + 1 - name.data()));
    return IsSlot(index) ? index : -1;
}

std::string faultOf(int index) {
    const JingleRecord& j = Jingle(index);
    const DWORD active = j.hPlay == 0 ? BASS_ACTIVE_STOPPED : BASS_ChannelIsActive(j.hPlay);
    const auto tell = [&](const char* what) {
        return "jingle " + std::to_string(index) + ": " + what + " (State " +
               text(static_cast<int>(j.State)) + ", Playing " + flag(j.Playing) + ", channel " +
               text(active) + ")";
    };
    if (active == BASS_ACTIVE_STOPPED) {
        if (j.State != PlayState::idle) return tell("silent, but its State is not 0");
        if (j.Playing) return tell("silent, but Playing is set");
    } else {
        if (j.State == PlayState::idle) return tell("sounds, but its State is 0");
        if (j.State == PlayState::playing && !j.Playing) return tell("sounds, but Playing is not set");
    }
    return {};
}

}  // namespace

std::optional<std::string> programValue(std::string_view name) {
    std::string_view rest;
    if (const int index = indexOf(name, "J", rest); index >= 0 && rest.starts_with('.')) {
        const auto field = std::ranges::find(kFields, rest.substr(1),
                                             [](const Field& f) { return std::string_view(f.name); });
        if (field == std::end(kFields)) return std::nullopt;
        return field->read(Jingle(index));
    }
    if (const int index = indexOf(name, "BASS_ChannelIsActive", rest); index >= 0 && rest.empty()) {
        return text(BASS_ChannelIsActive(Jingle(index).hPlay));
    }
    for (auto& [key, value] : settingLines()) {
        if (key == name) return value;
    }
    return std::nullopt;
}

void writeProgramState(std::ostream& json) {
    json << "\"jingles\": [";
    const char* separator = "\n";
    for (int i = 0; i < kJingles; ++i) {
        const JingleRecord& j = Jingle(i);
        if (j.Path.empty() && j.Kind == SlotKind::nothing) continue;
        json << separator << "{\"index\": " << i;
        for (const Field& field : kFields)
            json << ", " << jsonText(field.name) << ": " << jsonText(field.read(j));
        json << "}";
        separator = ",\n";
    }
    json << "\n],\n\"settings\": {";
    separator = "\n";
    for (const auto& [key, value] : settingLines()) {
        json << separator << jsonText(key) << ": " << jsonText(value);
        separator = ",\n";
    }
    json << "\n}";
}

void changeGrid(int rows, int columns) {
    gridSettings.JinglesRows = static_cast<decltype(gridSettings.JinglesRows)>(rows);
    gridSettings.JinglesCols = static_cast<decltype(gridSettings.JinglesCols)>(columns);
    FormDraw("init");
    // Buttons that are new to the run have nothing in their records yet.
    OpenFile(paletteSettings.PaletteIndex);
    OpenFile();
}

namespace {

/// Keys of the microphone, bus and settings against each other.
std::string mixFault() {
    constexpr float kNear = 0.005F;
    const KeyControls& k = frmMain().keys;
    if ((k.btMicPush.backColor() == markSettings.moColor) != MicPushed)
        return "the microphone's key shows the wrong state";
    if ((k.btMicTO.backColor() == markSettings.toColor) != TalkOverOn)
        return "the talk-over key shows the wrong state";
    // An input that was turned off is heard no more; its bus follows after the release time.
    if (volumeSettings.InputEnabled == 0 || timers().TimerTOrelease.enabled()) return {};
    for (std::size_t i = 0; i < MainSplit.size(); ++i) {
        const int own = i == 0 ? volumeSettings.VolumeInMain : volumeSettings.VolumeInAux;
        const std::pair<DWORD, float> buses[] = {
            {MainSplit[i], MicPushed ? static_cast<float>(duckSettings.AttnVol) / 100.0F : -1.0F},
            {MicSplit[i], MicPushed ? static_cast<float>(own) / 100.0F : 0.0F}};
        for (const auto& [bus, wanted] : buses) {
            float level = 0;
            if (bus == 0 || wanted < 0 || BASS_ChannelIsSliding(bus, BASS_ATTRIB_VOLDSP)) continue;
            BASS_ChannelGetAttribute(bus, BASS_ATTRIB_VOLDSP, &level);
            if (std::abs(level - wanted) > kNear)
                return "output " + std::to_string(i) +
                       (bus == MicSplit[i] ? ": microphone at " : ": jingles at ") + std::to_string(level) +
                       " instead of " + std::to_string(wanted);
        }
    }
    return {};
}

}  // namespace

std::string programFault() {
    if (std::string fault = filesFault(); !fault.empty()) return fault;
    if (deviceSettings.DeviceSingle == 0) {
        if (std::string fault = mixFault(); !fault.empty()) return fault;
    }
    for (const int i : LiveJingles()) {
        if (JExists[static_cast<std::size_t>(i)] == 0) continue;
        if (std::string fault = faultOf(i); !fault.empty()) return fault;
    }
    return screenFault();
}

void listenToProgram() {
    startupUpcalls.showErrorMark = [next = startupUpcalls.showErrorMark](const ErrorMark& mark) {
        noteEvent("mark", mark.mode + (mark.toolTip.empty() ? "" : ": " + mark.toolTip));
        if (next) next(mark);
    };
    startupUpcalls.showReportWindow = [next = startupUpcalls.showReportWindow](const std::string& title,
                                                                               const std::string& report) {
        noteEvent("report", title + ": " + report);
        if (next) next(title, report);
    };
    startupUpcalls.consoleLines = [next = startupUpcalls.consoleLines](const std::vector<std::string>& lines,
                                                                       bool clear) {
        for (const std::string& line : lines) noteEvent("console", line);
        if (next) next(lines, clear);
    };
}

}  // namespace zv
