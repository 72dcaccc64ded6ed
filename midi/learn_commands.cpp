#include "midi/learn_commands.h"

#include <algorithm>
#include <cctype>

#include "audio/talk_over.h"
#include "midi/assignments.h"
#include "midi/codes.h"
#include "midi/feedback.h"
#include "midi/learn.h"
#include "midi/state.h"
#include "midi/upcalls.h"
#include "model/jingle.h"
#include "model/state.h"
#include "startup/guard.h"
#include "startup/settings/midi_settings.h"
#include "startup/upcalls.h"

namespace zv {
namespace {

/// A control that can be taught: its keys in MIDI.ini and what its output rows are called.
struct Teachable {
    const char* ctrl;
    LearnWindow window;
    const char* codes;     ///< key of its codes, null for a jingle
    const char* messages;  ///< key of its messages, null without
    std::vector<const char*> rows;
};

const std::vector<Teachable>& teachables() {
    static const std::vector<const char*> pressed{"mMIDIOutlblDown", "mMIDIOutlblAvailB"};
    static const std::vector<const char*> toggle{"mMIDIOutlblDown", "mMIDIOutlblOff", "mMIDIOutlblOn"};
    static const std::vector<const char*> four{"mMIDIOutlblDown", "mMIDIOutlblOff", "mMIDIOutlblOn",
                                               "mMIDIOutlblOn2"};
    static const std::vector<const char*> jingle{"mMIDIOutlblDown", "mMIDIOutlblAvail", "mMIDIOutlblUnAvail",
                                                 "mMIDIOutlblPlay"};
    using enum LearnWindow;
    static const std::vector<Teachable> all{
        {"b_Jingle", button, nullptr, nullptr, jingle},
        {"btUp", button, "PaletteUp", "OutPaletteUp", pressed},
        {"btDn", button, "PaletteDown", "OutPaletteDown", pressed},
        {"btStop", button, "StopAll", "OutStopAll", pressed},
        {"ckAutoRep", button, "AutoRepeat", "OutAutoRepeat", toggle},
        {"ckTouch", button, "TouchPlay", "OutTouchPlay", toggle},
        {"btMicTO", button, "TalkOver", "OutTalkOver", toggle},
        {"ckAutoMix", button, "AutoMix", "OutAutoMix", four},
        {"btMicPush", button, "MicON", "OutMicON", four},
        {"lstPal", scroll, "PaletteScroll", nullptr, {}},
        {"Vol", fader, "MainVolume", nullptr, {}},
        {"Amix", fader, "AutoMixTime", nullptr, {}},
        {"btMIDIOutReset", reset, nullptr, nullptr, {"mMIDIOutReset"}},
    };
    return all;
}

const Teachable* find(const std::string& ctrl) {
    const auto found = std::ranges::find_if(teachables(), [&](const Teachable& t) { return ctrl == t.ctrl; });
    return found == teachables().end() ? nullptr : &*found;
}

const Teachable& current() { return *find(MIDILearn.ctrl); }
bool isJingle() { return MIDILearn.ctrl == "b_Jingle"; }
std::size_t slot() { return static_cast<std::size_t>(MIDILearn.MIDILearnJ); }

template <class Row>
const Row* byKey(std::span<const Row> rows, const char* key) {
    const auto found = std::ranges::find_if(
        rows, [&](const Row& row) { return key != nullptr && std::string_view(row.key) == key; });
    return found == rows.end() ? nullptr : &*found;
}
const ControlCodes* codesOf(const Teachable& t) { return byKey(controlCodes(), t.codes); }
const FaderCodes* faderOf(const Teachable& t) { return byKey(faderCodes(), t.codes); }

/// The messages of a control in the order of its rows.
std::vector<std::string*> messagesOf(const Teachable& t) {
    std::vector<std::string*> all;
    if (t.window == LearnWindow::reset) {
        all.push_back(&midiOut.OutReset);
    } else if (t.codes == nullptr) {
        for (std::string* message : jingleMessages(MIDILearn.MIDILearnJ)) all.push_back(message);
    } else if (const ControlMessages* messages = byKey(controlMessages(), t.messages)) {
        for (const auto message : messages->messages) {
            if (message != nullptr) all.push_back(&(midiOut.*message));
        }
    }
    return all;
}

std::string nameOf(const Teachable& t) {
    if (isJingle()) return jingleName(MIDILearn.MIDILearnJ);
    if (const ControlCodes* codes = codesOf(t)) return controlName(codes->caption);
    if (const FaderCodes* fader = faderOf(t)) return controlName(fader->caption);
    return controlName("mMIDIOutReset");
}

void keepUnlessEmpty(std::string& code, const std::string& stored) {
    if (!stored.empty()) code = stored;
}

void readCodes(const Teachable& t) {
    Learning& l = MIDILearn;
    if (isJingle()) {
        keepUnlessEmpty(l.MIDILearnDown, midiIn.MIDIJinglePress[slot()]);
        keepUnlessEmpty(l.MIDILearnUp, midiIn.MIDIJingleRelease[slot()]);
        const int rule = midiIn.MIDIJingleVelocity[slot()];
        l.velocityRule = true;
        l.ckVelocityLimit = rule >= kLimitedVelocity;
        l.SlideVelocity = l.ckVelocityLimit ? rule - kLimitedVelocity : rule;
        l.copyFromPrevious = l.MIDILearnJ > 0;
    } else if (const ControlCodes* codes = codesOf(t)) {
        keepUnlessEmpty(l.MIDILearnDown, midiIn.*codes->first);
        keepUnlessEmpty(l.MIDILearnUp, midiIn.*codes->second);
    } else if (const FaderCodes* fader = faderOf(t)) {
        keepUnlessEmpty(l.MIDILearnDown, midiIn.*fader->code);
        l.ckReverse = midiIn.*fader->reverse == 1;
    }
}

void shown() { callUp(midiUpcalls.learnChanged); }

/// A captured code as the tables hold it.
std::string stored(const std::string& code) { return code == kNoCode ? std::string() : code; }

std::string joined(const MessageRow& row) {
    const bool whole = std::ranges::none_of(row, [](const std::string& box) { return box.empty(); });
    return whole ? row[0] + row[1] + row[2] : std::string();
}

void storeCodes(const Teachable& t) {
    const Learning& l = MIDILearn;
    const std::string down = stored(l.MIDILearnDown), up = stored(l.MIDILearnUp);
    if (isJingle()) {
        midiIn.MIDIJinglePress[slot()] = down;
        midiIn.MIDIJingleRelease[slot()] = up;
        const int rule = l.SlideVelocity + (l.ckVelocityLimit ? kLimitedVelocity : 0);
        midiIn.MIDIJingleVelocity[slot()] = static_cast<std::uint8_t>(std::clamp(rule, 0, kFreeVelocity));
    } else if (const ControlCodes* codes = codesOf(t)) {
        midiIn.*codes->first = down;
        midiIn.*codes->second = up;
    } else if (const FaderCodes* fader = faderOf(t)) {
        midiIn.*fader->code = down;
        midiIn.*fader->reverse = l.ckReverse ? 1 : 0;
    }
}

/// Frees the codes that are about to be stored; the name of their former owner.
std::string freeCodes(const Teachable& t) {
    const Learning& l = MIDILearn;
    if (stored(l.MIDILearnDown).empty() && stored(l.MIDILearnUp).empty()) return {};
    if (t.window == LearnWindow::fader)
        return MIDIassignedTo(midiSettings.MIDIDevice, l.MIDILearnDown, l.ckReverse ? "1" : "0");
    return MIDIassignedTo(midiSettings.MIDIDevice, stored(l.MIDILearnDown), stored(l.MIDILearnUp));
}

/// What the control shows at present.
void sendPresentState() {
    const std::string& ctrl = MIDILearn.ctrl;
    if (isJingle()) {
        MIDIOut(JMidiState[slot()], hMidiOut);
    } else if (ctrl == "btUp" || ctrl == "btDn" || ctrl == "btStop") {
        MIDIOut(ctrl == "btUp"   ? midiOut.OutUpIdle
                : ctrl == "btDn" ? midiOut.OutDownIdle
                                 : midiOut.OutStopIdle,
                hMidiOut);
    } else if (ctrl == "btMicPush") {
        MIDIOut(MicPushed ? midiOut.OutMicDown : midiOut.OutMicOff, hMidiOut);
    } else if (ctrl == "btMicTO") {
        MIDIOut(TalkOverOn ? midiOut.OutTalkDown : midiOut.OutTalkOff, hMidiOut);
    } else {
        PlayModesTogglesMIDIOut(ctrl);
    }
}

void storeRows(const Teachable& t) {
    const std::vector<std::string*> messages = messagesOf(t);
    for (std::size_t i = 0; i < messages.size(); ++i) *messages[i] = joined(MIDILearn.rows[i]);
    MIDILearn.MIDILearnAllSame =
        messages.size() == kOutputRows && !messages[0]->empty() &&
        std::ranges::all_of(messages, [&](const std::string* m) { return *m == *messages[0]; });
    constexpr std::size_t kIdleRow = 1;
    if (messages.size() > kIdleRow) MIDIOut(*messages[kIdleRow], hMidiOut);
    CloseFileMIDIOut("");
    for (const std::string* message : {&midiOut.OutStopIdle, &midiOut.OutUpIdle, &midiOut.OutDownIdle})
        MIDIOut(*message, hMidiOut);
    PlayModesTogglesMIDIOut("");
    MIDIOutRefresh(MIDILearn.MIDILearnAllSame ? -1 : 0);
}

std::array<MessageRow, kOutputRows>& clipboard() {
    static std::array<MessageRow, kOutputRows> rows;
    return rows;
}

bool hasText(const std::array<MessageRow, kOutputRows>& rows) {
    return std::ranges::any_of(rows, [](const MessageRow& row) {
        return std::ranges::any_of(row, [](const std::string& box) { return !box.empty(); });
    });
}

bool validRow(int row) { return row >= 0 && row < static_cast<int>(MIDILearn.rowLabels.size()); }
bool validBox(int box) { return box >= 0 && box < kMessageBoxes; }
MessageRow& rowAt(int row) { return MIDILearn.rows[static_cast<std::size_t>(row)]; }

/// What is still being typed counts as well.
void bringIntoRange() {
    for (int row = 0; validRow(row); ++row) {
        for (int box = 0; box < kMessageBoxes; ++box)
            SetLearnBox(row, box, rowAt(row)[static_cast<std::size_t>(box)]);
    }
}

}  // namespace

bool OpenLearn(const std::string& ctrl, int index) {
    const Teachable* t = find(ctrl);
    if (t == nullptr || (ctrl == "b_Jingle" && (index < 0 || index >= kJingles))) return false;
    MIDILearn = {};
    MIDILearn.window = t->window;
    MIDILearn.ctrl = ctrl;
    MIDILearn.MIDILearnJ = index;
    MIDILearn.name = nameOf(*t);
    MIDILearn.rowLabels = t->rows;
    readCodes(*t);
    const std::vector<std::string*> messages = messagesOf(*t);
    for (std::size_t i = 0; i < messages.size(); ++i) MIDILearn.rows[i] = MIDIDecomp(*messages[i]);
    LastCtrl = ctrl;
    MIDILearnActive = true;
    shown();
    return true;
}

std::string LearnOK() {
    return guardedOr("modMidiFunctions.LearnOK", std::string(), []() -> std::string {
        if (MIDILearn.window == LearnWindow::none) return {};
        const Teachable& t = current();
        bringIntoRange();
        if (t.window == LearnWindow::reset) {
            midiOut.OutReset = joined(MIDILearn.rows[0]);
            CloseFileMIDIOut("");
            LearnCancel();
            return {};
        }
        const std::string name = MIDILearn.name;
        const std::string former = freeCodes(t);
        storeCodes(t);
        CloseFileMIDI(midiSettings.MIDIDevice);
        if (t.window == LearnWindow::button) storeRows(t);
        LearnCancel();
        return former == name ? std::string() : former;
    });
}

void LearnCancel() {
    MIDILearnActive = false;
    MIDILearn.window = LearnWindow::none;
    shown();
}

void LearnClear() {
    Learning& l = MIDILearn;
    l.lstMidiInDump.clear();
    l.lstMidiInDumpUnique.clear();
    l.MIDILearnDown = l.MIDILearnUp = kNoCode;
    l.lblVelocityCode.clear();
    l.Picture1 = l.picAntiClockw = l.picClockw = LearnLight::dark;
    l.flashing = 0;
    l.ckReverse = false;
    shown();
}

void LearnPickFader(int row) {
    const auto& heard = MIDILearn.lstMidiInDump;
    if (row < 0 || static_cast<std::size_t>(row) >= heard.size()) return;
    MIDILearn.MIDILearnDown = heard[static_cast<std::size_t>(row)].substr(0, kShortCode);
    shown();
}

std::string TypedHex(std::string_view text) {
    constexpr std::size_t kBoxDigits = 2;
    std::string typed;
    for (const char c : text) {
        if (std::isxdigit(static_cast<unsigned char>(c)) != 0)
            typed += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return typed.size() > kBoxDigits ? typed.substr(typed.size() - kBoxDigits) : typed;
}

void SetLearnBox(int row, int box, std::string_view text) {
    if (!validRow(row) || !validBox(box)) return;
    rowAt(row)[static_cast<std::size_t>(box)] = MIDIHex(box, TypedHex(text));
}

void imgDelete(int row) {
    rowAt(row) = {};
    shown();
}

bool LearnHasClipboard() { return hasText(clipboard()); }

void btClearOut() {
    if (LearnHasClipboard()) {
        MIDILearn.rows = clipboard();
        clipboard() = {};
    } else {
        clipboard() = MIDILearn.rows;
        MIDILearn.rows = {};
    }
    shown();
}

void lblCpyval(int box) {
    if (!validBox(box)) return;
    const std::string value = rowAt(0)[static_cast<std::size_t>(box)];
    for (int row = 1; validRow(row); ++row) SetLearnBox(row, box, value);
    shown();
}

void lblCpyAll(int box) {
    if (!validBox(box) || !isJingle()) return;
    bringIntoRange();
    for (int row = 0; validRow(row); ++row) {
        const std::string value = rowAt(row)[static_cast<std::size_t>(box)];
        if (value.empty()) continue;
        for (int i = 0; i < kJingles; ++i) {
            std::string& message = *jingleMessages(i)[static_cast<std::size_t>(row)];
            if (message.size() == kFullCode) message.replace(static_cast<std::size_t>(box) * 2, 2, value);
        }
    }
}

void btCpyPrev() {
    if (!MIDILearn.copyFromPrevious) return;
    const auto messages = jingleMessages(MIDILearn.MIDILearnJ - 1);
    for (std::size_t i = 0; i < messages.size(); ++i) MIDILearn.rows[i] = MIDIDecomp(*messages[i]);
    shown();
}

void btTestDown(int row) {
    bringIntoRange();
    if (validRow(row)) MIDIOut(joined(rowAt(row)), hMidiOut);
}

void btTestUp() { sendPresentState(); }

}  // namespace zv
