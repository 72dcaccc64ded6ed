#include "midi/assignments.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <vector>

#include "midi/codes.h"
#include "midi/faults.h"
#include "midi/state.h"
#include "midi/upcalls.h"
#include "platform/desktop.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/stores.h"
#include "startup/upcalls.h"

namespace zv {

InputCodes midiIn;
OutputMessages midiOut;
PerJingle<std::string> JMidiState;

namespace {

using In = InputCodes;
using Out = OutputMessages;

constexpr int kSmallestFile = 10;  // bytes: a shorter one holds no section

// In the order of the file; the faders stand between AutoMix and StopAll.
constexpr ControlCodes kControls[] = {
    {"PaletteUp", &In::MIDIUpDown, &In::MIDIUpUp, "mbtUp"},
    {"PaletteDown", &In::MIDIDownDown, &In::MIDIDownUp, "mbtDn"},
    {"PaletteScroll", &In::MIDIScrollClockwise, &In::MIDIScrollAnticlockwise, "mListPal"},
    {"AutoRepeat", &In::MIDIRepDown, &In::MIDIRepUp, "mckAutoRep"},
    {"TouchPlay", &In::MIDITouchDown, &In::MIDITouchUp, "mckTouch"},
    {"AutoMix", &In::MIDIMixDown, &In::MIDIMixUp, "mckAutoMix"},
    {"StopAll", &In::MIDIStopDown, &In::MIDIStopUp, "mbtStop"},
    {"TalkOver", &In::MIDITalkDown, &In::MIDITalkUp, "mbtMicTO"},
    {"MicON", &In::MIDIMicDown, &In::MIDIMicUp, "mbtMicPush"},
};
constexpr std::size_t kControlsBeforeFaders = 6;
constexpr FaderCodes kFaders[] = {
    {"AutoMixTime", &In::MIDIAmixCode, &In::MIDIAmixReverse, "slblAmx"},
    {"MainVolume", &In::MIDIVolCode, &In::MIDIVolReverse, "slblGenVol"},
};
constexpr ControlMessages kMessages[] = {
    {"OutStopAll", {&Out::OutStopPressed, &Out::OutStopIdle}},
    {"OutPaletteUp", {&Out::OutUpPressed, &Out::OutUpIdle}},
    {"OutPaletteDown", {&Out::OutDownPressed, &Out::OutDownIdle}},
    {"OutTalkOver", {&Out::OutTalkDown, &Out::OutTalkOff, &Out::OutTalkOn}},
    {"OutMicON", {&Out::OutMicDown, &Out::OutMicOff, &Out::OutMicOn, &Out::OutMicLocked}},
    {"OutAutoRepeat", {&Out::OutRepDown, &Out::OutRepOff, &Out::OutRepOn}},
    {"OutTouchPlay", {&Out::OutTouchDown, &Out::OutTouchOff, &Out::OutTouchOn}},
    {"OutAutoMix", {&Out::OutMixDown, &Out::OutMixOff, &Out::OutMixOn1, &Out::OutMixOn2}},
};

using Lines = std::vector<cImpulse::Line>;

std::string jingleKey(int index) { return "Jingle" + std::to_string(index); }
std::string outKey(int index) { return "OutJingle" + std::to_string(index); }
std::string pair(const std::string& first, const std::string& second) {
    return first.empty() && second.empty() ? std::string() : first + "," + second;
}

/// The values of a key by name, read once for all of them. Names count without regard to case.
class Section {
  public:
    explicit Section(Lines lines) : lines_(std::move(lines)) {
        for (auto& [key, value] : lines_) key = LowerCase(key);
        std::ranges::stable_sort(lines_, {}, &cImpulse::Line::first);
    }
    const std::string& value(std::string_view key) const {
        static const std::string none;
        const std::string wanted = LowerCase(key);
        const auto found = std::ranges::lower_bound(lines_, wanted, {}, &cImpulse::Line::first);
        return found != lines_.end() && found->first == wanted ? found->second : none;
    }

  private:
    Lines lines_;
};

/// The parts of a value between its commas.
std::vector<std::string> parts(const std::string& value) {
    std::vector<std::string> all(1);
    for (const char c : value) {
        if (c == ',')
            all.emplace_back();
        else
            all.back() += c;
    }
    return all;
}

/// Reads the keys of a section and notes which of them lack parts.
class Reader {
  public:
    explicit Reader(const std::string& name) : section_(MIDIStore.GetSectionLines(name)) {}
    ~Reader() {
        if (!faults_.empty())
            ReportOnce("modMidiFunctions.LoadMIDIdatas", kErrorMismatch, "Damaged in MIDI.ini:" + faults_);
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    const std::string& value(std::string_view key) const { return section_.value(key); }
    /// The parts of a key into `to`, as many as there are.
    void texts(const std::string& key, std::span<std::string* const> to) {
        const std::vector<std::string> all = parts(value(key));
        for (std::size_t i = 0; i < to.size() && i < all.size(); ++i) *to[i] = all[i];
        if (all.size() < to.size()) fault(key);
    }
    /// A part as a byte; what is none keeps `otherwise`.
    std::uint8_t byte(const std::string& key, std::size_t part, std::uint8_t otherwise) {
        const std::vector<std::string> all = parts(value(key));
        std::uint8_t number = otherwise;
        if (part >= all.size()) {
            fault(key);
            return otherwise;
        }
        const std::string& text = all[part];
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error == std::errc{} && end == text.data() + text.size()) return number;
        fault(key);
        return otherwise;
    }

  private:
    void fault(const std::string& key) {
        if (faults_.find(" " + key + ";") == std::string::npos) faults_ += " " + key + ";";
    }
    Section section_;
    std::string faults_;
};

void loadJingle(Reader& reader, int index) {
    const auto at = static_cast<std::size_t>(index);
    const std::string key = jingleKey(index);
    midiIn.MIDIJinglePress[at].clear();
    midiIn.MIDIJingleRelease[at].clear();
    midiIn.MIDIJingleVelocity[at] = kFreeVelocity;
    if (!reader.value(key).empty()) {
        std::string* const codes[] = {&midiIn.MIDIJinglePress[at], &midiIn.MIDIJingleRelease[at]};
        reader.texts(key, codes);
        midiIn.MIDIJingleVelocity[at] = reader.byte(key, 2, kFreeVelocity);
    }
    if (!reader.value(outKey(index)).empty()) reader.texts(outKey(index), jingleMessages(index));
}

void loadControls(Reader& reader) {
    for (const ControlCodes& control : kControls) {
        std::string* const codes[] = {&(midiIn.*control.first), &(midiIn.*control.second)};
        for (std::string* code : codes) code->clear();
        if (!reader.value(control.key).empty()) reader.texts(control.key, codes);
    }
    for (const FaderCodes& fader : kFaders) {
        (midiIn.*fader.code).clear();
        midiIn.*fader.reverse = 0;
        if (reader.value(fader.key).empty()) continue;
        std::string* const code[] = {&(midiIn.*fader.code)};
        reader.texts(fader.key, code);
        midiIn.*fader.reverse = reader.byte(fader.key, 1, 0);
    }
    for (const ControlMessages& control : kMessages) {
        if (reader.value(control.key).empty()) continue;
        std::vector<std::string*> messages;
        for (const auto message : control.messages) {
            if (message != nullptr) messages.push_back(&(midiOut.*message));
        }
        reader.texts(control.key, messages);
    }
}

/// Writes lines over the section until it works or the user gives up.
void write(const char* procedure, const Lines& lines) {
    guarded(procedure, [&] {
        if (MIDIStore.GetSection().empty()) return;
        while (!MIDIStore.PutSection(MIDIStore.GetSection(), lines, false)) {
            const std::string text =
                LnBox("mMslockedFile1") + "\r\n" + MIDIFile + "\r\n" + LnBox("mMslockedFile2");
            if (messageBox(text, "Zentrova", BoxKind::warning, BoxButtons::okCancel,
                           Verbs("vbRetry", "vbGiveUp")) != BoxAnswer::ok)
                return;
        }
    });
}

void selectSection(const std::string& section) {
    if (!section.empty()) MIDIStore.SetSection(section);
}

/// Messages of a key joined by commas; what is no message counts as empty. Empty when none is one.
std::string joined(std::span<std::string* const> messages) {
    std::string text;
    bool any = false;
    for (const std::string* message : messages) {
        const bool whole = message->size() == kFullCode;
        any = any || whole;
        text += (text.empty() && message == messages.front() ? "" : ",") + (whole ? *message : std::string());
    }
    return any ? text : std::string();
}

}  // namespace

std::span<const ControlCodes> controlCodes() { return kControls; }
std::span<const FaderCodes> faderCodes() { return kFaders; }
std::span<const ControlMessages> controlMessages() { return kMessages; }

std::array<std::string*, 4> jingleMessages(int index) {
    const auto at = static_cast<std::size_t>(index);
    return {&midiOut.OutJingleDown[at], &midiOut.OutJingleAvail[at], &midiOut.OutJingleUnavail[at],
            &midiOut.OutJinglePlay[at]};
}

std::string controlName(const char* caption) { return br2space(Ln(caption)); }

std::string jingleName(int index) {
    return index >= kPaletteSlots ? Ln("mHotJingle") + " " + std::to_string(index - kPaletteSlots)
                                  : Ln("mJingle") + " " + std::to_string(index);
}

void LoadMIDIdatas(const std::string& section) {
    guarded("modMidiFunctions.LoadMIDIdatas", [&] {
        MIDIStore.SetSection(section);
        Reader reader(section);
        for (int i = 0; i <= LastLiveIdx(); ++i) loadJingle(reader, i);
        loadControls(reader);
        midiOut.OutReset = reader.value("OutReset");
    });
}

void CloseFileMIDI(const std::string& section) {
    selectSection(section);
    Lines lines;
    const auto addControl = [&](const ControlCodes& control) {
        lines.emplace_back(control.key, pair(midiIn.*control.first, midiIn.*control.second));
    };
    std::for_each(kControls, kControls + kControlsBeforeFaders, addControl);
    for (const FaderCodes& fader : kFaders) {
        const std::string& code = midiIn.*fader.code;
        lines.emplace_back(fader.key,
                           code.empty() ? code : code + "," + std::to_string(midiIn.*fader.reverse));
    }
    std::for_each(kControls + kControlsBeforeFaders, std::end(kControls), addControl);
    for (int i = 0; i <= LastLiveIdx(); ++i) {
        const auto at = static_cast<std::size_t>(i);
        std::string codes = pair(midiIn.MIDIJinglePress[at], midiIn.MIDIJingleRelease[at]);
        if (!codes.empty()) codes += "," + std::to_string(midiIn.MIDIJingleVelocity[at]);
        lines.emplace_back(jingleKey(i), codes);
    }
    write("modMidiFunctions.CloseFileMIDI", lines);
    LoadMIDIPresets();
}

void CloseFileMIDIOut(const std::string& section) {
    selectSection(section);
    Lines lines{{"OutReset", midiOut.OutReset}};
    for (const ControlMessages& control : kMessages) {
        std::vector<std::string*> messages;
        for (const auto message : control.messages) {
            if (message != nullptr) messages.push_back(&(midiOut.*message));
        }
        lines.emplace_back(control.key, joined(messages));
    }
    for (int i = 0; i <= LastLiveIdx(); ++i) {
        const auto messages = jingleMessages(i);
        for (std::string* message : messages) {
            if (message->size() != kFullCode) message->clear();
        }
        lines.emplace_back(outKey(i), joined(messages));
    }
    write("modMidiFunctions.CloseFileMIDIOut", lines);
}

void LoadMIDIPresets() {
    guarded("modMidiFunctions.LoadMIDIPresets", [] {
        if (FileLength(MIDIFile) < kSmallestFile) return;
        MIDIStore.ListSections();
        std::vector<std::string> names;
        for (int i = 0; i < MIDIStore.SectionCount(); ++i) names.push_back(MIDIStore.SectionName(i));
        if (names.empty())
            cmbMIDIpresets = {};
        else
            cmbMIDIpresets.fill(names);
        callUp(midiUpcalls.listsChanged);
    });
}

std::string MIDIassignedTo(const std::string& section, const std::string& down, const std::string& up) {
    return guardedOr("modMidiFunctions.MIDIassignedTo", std::string(), [&]() -> std::string {
        const Section keys(MIDIStore.GetSectionLines(section));
        const std::string wanted = down + "," + up;
        const auto holds = [&](const std::string& key) {
            return keys.value(key).find(wanted) != std::string::npos;
        };
        for (int i = 0; i <= LastLiveIdx(); ++i) {
            if (!holds(jingleKey(i))) continue;
            const auto at = static_cast<std::size_t>(i);
            midiIn.MIDIJinglePress[at].clear();
            midiIn.MIDIJingleRelease[at].clear();
            midiIn.MIDIJingleVelocity[at] = kFreeVelocity;
            return jingleName(i);
        }
        const auto control = [&](const ControlCodes& c) -> std::optional<std::string> {
            if (!holds(c.key)) return std::nullopt;
            (midiIn.*c.first).clear();
            (midiIn.*c.second).clear();
            return controlName(c.caption);
        };
        const auto fader = [&](const FaderCodes& f) -> std::optional<std::string> {
            if (!holds(f.key)) return std::nullopt;
            (midiIn.*f.code).clear();
            midiIn.*f.reverse = 0;
            return controlName(f.caption);
        };
        // The palette's three first, then the faders, the volume before the automix time.
        constexpr std::size_t kPaletteControls = 3;
        for (std::size_t i = 0; i < kPaletteControls; ++i) {
            if (const auto name = control(kControls[i])) return *name;
        }
        for (const FaderCodes* f : {&kFaders[1], &kFaders[0]}) {
            if (const auto name = fader(*f)) return *name;
        }
        for (std::size_t i = kPaletteControls; i < std::size(kControls); ++i) {
            if (const auto name = control(kControls[i])) return *name;
        }
        return {};
    });
}

bool HasMIDIAssignment(int index) {
    const auto at = static_cast<std::size_t>(index);
    return at < kJingles && !(midiIn.MIDIJinglePress[at].empty() && midiIn.MIDIJingleRelease[at].empty());
}

}  // namespace zv
