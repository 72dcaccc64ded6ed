#include "tests/ui/approved.h"

#include <cmath>
#include <fstream>
#include <sstream>
#include <tuple>

#include "audio/announcer.h"
#include "audio/devices.h"
#include "audio/effect_vector.h"
#include "audio/effects.h"
#include "audio/live_stream.h"
#include "audio/talk_over.h"
#include "audio/time_jingle.h"
#include "midi/assignments.h"
#include "midi/codes.h"
#include "midi/feedback.h"
#include "midi/learn.h"
#include "midi/learn_commands.h"
#include "midi/lifecycle.h"
#include "midi/ring.h"
#include "midi/settings_commands.h"
#include "midi/state.h"
#include "model/held_palette.h"
#include "model/pending_removals.h"
#include "model/playlists.h"
#include "platform/forms.h"
#include "platform/rehearsal/midi_devices.h"
#include "platform/rehearsal/virtual_clock.h"
#include "platform/timers.h"
#include "startup/errors.h"
#include "startup/settings/folders_settings.h"
#include "startup/settings/midi_settings.h"
#include "startup/settings/search_settings.h"
#include "startup/settings_file.h"
#include "startup/upcalls.h"
#include "ui/edit/carried.h"
#include "ui/edit/colour_picker.h"
#include "ui/edit/search.h"
#include "ui/edit/undo.h"
#include "ui/screen/announcer_view.h"
#include "ui/screen/error_mark.h"
#include "ui/screen/highlight.h"
#include "ui/screen/layout_strip.h"
#include "ui/windows/console_window.h"
#include "ui/windows/jingle_window.h"
#include "ui/windows/question_window.h"
#include "ui/windows/report_window.h"

namespace zv::test {
namespace {

constexpr std::size_t kLongest = 90;  ///< bytes of one value
constexpr const char* kDrawing = "drawing";
/// Those that an act starts and ends.
constexpr const char* kProperties[] = {
    "visible", "enabled",   "caption", "toolTip",   "value",     "minimum",  "maximum",
    "items",   "listIndex", "topRow",  "backColor", "foreColor", "fontName", kDrawing,
};

/// The test's own folder, which has another name each time.
std::string ownFolder;
std::string sent;  ///< to the control surface since the last look

std::string cut(std::string text) {
    std::erase(text, '\r');
    for (std::size_t at = 0; (at = text.find(ownFolder, at)) != std::string::npos;)
        text.replace(at, ownFolder.size(), "~");
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;) text.replace(at, 1, "/");
    if (text.size() > kLongest) text = text.substr(0, kLongest) + "...";
    return text;
}

std::string joined(const std::vector<std::string>& parts, const char* between) {
    std::string all;
    for (const std::string& part : parts) all += (all.empty() ? "" : between) + part;
    return all;
}

/// A control as it stands: name, text, value; hidden ones in brackets.
std::string standing(const Control& c) {
    if (!c.visible) return "[" + nameOf(c) + "]";
    std::string text = nameOf(c);
    if (!c.caption().empty()) text += " '" + cut(c.caption) + "'";
    if (c.alignment != 0) text += "^";
    const auto number = [](int n) { return std::to_string(n); };
    switch (c.kind) {
        case ControlKind::checkBox:
        case ControlKind::option:
            text += "=" + number(c.value);
            break;
        case ControlKind::slider:
        case ControlKind::number:
        case ControlKind::progress:
            text += "=" + number(c.value) + " of " + number(c.minimum) + ".." + number(c.maximum);
            if (c.standard != kNoStandard) text += " std " + number(c.standard);
            if (c.step != 1) text += " step " + number(c.step);
            break;
        case ControlKind::comboBox:
        case ControlKind::listBox:
        case ControlKind::tabs:
            text += " {" + cut(joined(c.items, "|")) + "}" + number(c.listIndex);
            break;
        case ControlKind::canvas:
            if (c.drawing().size() == 1) text += " #" + number(c.drawing().front().colour);
            break;
        case ControlKind::colourField:
            text += " " + c.toolTip();
            break;
        default:
            break;
    }
    return text + (c.enabled ? "" : " off");
}

std::string standing(const FormText& text) { return text.record == nullptr ? "" : standing(*text.record); }

std::string standing(const std::vector<FormCell>& cells) {
    static constexpr const char* kRoles[] = {"", " enter", " escape", " red", " play"};
    std::vector<std::string> all;
    for (const FormCell& cell : cells) {
        if (cell.control == nullptr) continue;
        all.push_back(standing(*cell.control) + kRoles[static_cast<std::size_t>(cell.role)]);
        for (const Control* part : cell.joined) all.back() += " + " + standing(*part);
        if (!cell.unit.empty()) all.back() += " " + standing(cell.unit);
    }
    return joined(all, "; ");
}

/// The sound is there as it was at first: made once in a process, linked for each scene.
void link(const std::filesystem::path& file, std::size_t frames, double amplitude) {
    static const FolderGuard made;
    const std::filesystem::path one = made.path / file.filename();
    if (!exists(one)) writeWav(one, sine(frames, 440, amplitude));
    remove(file);
    create_hard_link(one, file);
}

/// How many strokes a canvas has, and a sum of where they stand and what they show.
std::string drawn(const Control& c) {
    double sum = 0;
    for (const Stroke& s : c.drawing()) {
        sum += std::round(s.x) + 2 * std::round(s.y) + 3 * std::round(s.width) + 5 * std::round(s.height) +
               s.opacity + s.colour % 1000 + static_cast<double>(s.text.size());
        if (s.peaks)
            for (const auto& [lowest, highest] : *s.peaks) sum += std::round(10 * (highest - lowest));
    }
    return std::to_string(c.drawing().size()) + " " + std::to_string(std::lround(sum));
}

std::vector<std::string> properties(const Control& c) {
    std::vector<std::string> all;
    bool known = true;
    for (const char* property : kProperties)
        all.push_back(property == kDrawing ? drawn(c) : propertyText(c, property, known));
    return all;
}

/// What the engine has of a slot that is other than a plain file's: effects, loop, and its place while it rests.
std::string soundOf(const JingleRecord& j, std::size_t slot) {
    std::string text;
    const auto add = [&](const char* what, double is, double plain) {
        char one[40];
        std::snprintf(one, sizeof one, "%s%s %.5g", text.empty() ? "" : ", ", what, is);
        if (is != plain) text += one;
    };
    const DWORD play = j.hPlay, source = j.hSrc;
    for (int band = 0; band < kEqBands; ++band) {
        BASS_BFX_PEAKEQ eq{};
        eq.lBand = band;
        BASS_FXGetParameters(JEqFx[slot], &eq);
        add("eq", eq.fGain, 0);
    }
    BASS_DX8_REVERB reverb{};
    BASS_BFX_VOLUME volume{};
    BASS_FXGetParameters(JReverbFx[slot], &reverb);
    BASS_FXGetParameters(JVolFx[slot], &volume);
    add("reverb", reverb.fReverbMix, static_cast<float>(ReverbMix(0)));
    add("volume", volume.fVolume, 1);
    const std::tuple<const char*, DWORD, double> attributes[] = {
        {"level", BASS_ATTRIB_VOL, 1},
        {"duck", BASS_ATTRIB_VOLDSP, 1},
        {"buffer", BASS_ATTRIB_BUFFER, 0},
        {"tail", BASS_ATTRIB_TAIL, 0},
        {"tempo", BASS_ATTRIB_TEMPO, 0},
        {"pitch", BASS_ATTRIB_TEMPO_PITCH, 0},
        {"rate", BASS_ATTRIB_TEMPO_FREQ, static_cast<double>(j.Freq)}};
    for (const auto& [what, attribute, plain] : attributes) {
        float value = 0;
        BASS_ChannelGetAttribute(play, attribute, &value);
        add(what, value, plain);
    }
    const auto position = [](DWORD channel, DWORD mode) {
        return static_cast<double>(BASS_ChannelGetPosition(channel, mode));
    };
    add("loops", (BASS_ChannelFlags(source, 0, 0) & BASS_SAMPLE_LOOP) != 0, 0);
    add("from", position(source, BASS_POS_LOOP), 0);
    add("to", position(source, BASS_POS_END),
        static_cast<double>(BASS_ChannelGetLength(source, BASS_POS_BYTE)));
    if (BASS_ChannelIsActive(play) != BASS_ACTIVE_PLAYING) add("at", position(play, BASS_POS_BYTE), 0);
    return text;
}

}  // namespace

std::string nameOf(const Control& c) {
    return c.name + (c.index >= 0 ? "(" + std::to_string(c.index) + ")" : "");
}

std::string whole(const Control& window) {
    constexpr std::size_t kLine = 800;
    std::string text, row;
    const auto flush = [&] {
        if (!row.empty()) text += "  " + std::exchange(row, {}) + "\n";
    };
    const auto add = [&](const std::string& cells) {
        if (row.size() + cells.size() > kLine) flush();
        if (cells.find_first_not_of(" :;") != std::string::npos) row += (row.empty() ? "" : " | ") + cells;
    };
    const auto blocks = [&](const std::vector<FormBlock>& all) {
        for (const FormBlock& block : all)
            for (const FormCard& card : block) {
                add(standing(card.title));
                for (const FormRow& r : card.rows)
                    add((r.label.empty() ? "" : standing(r.label) + ": ") + standing(r.cells));
                if (!row.empty()) row += " |";
            }
    };
    const Form& form = *window.form;
    text = "'" + cut(window.caption) + "'" + (form.modal ? " modal" : "") + ", the keyboard is at " +
           (desktop().focus == nullptr ? "nothing" : nameOf(*desktop().focus)) + "\n";
    for (const FormText* head : {&form.header.title, &form.header.line, &form.header.right})
        add(standing(*head));
    blocks(form.blocks);
    if (form.pager != nullptr) add(standing(*form.pager));
    for (const FormPage& page : form.pages) blocks(page.blocks);
    add(standing(form.note)), add(standing(form.keysLeft)), add(standing(form.keys));
    flush();
    return text;
}

Watch::Watch(std::filesystem::path folder) : folder_(std::move(folder)) {
    ownFolder = folder_.string();
    if (ownFolder.ends_with('/')) ownFolder.pop_back();
    for (const Control* c : allControls()) known_[c] = properties(*c);
    rest_ = rest();
}

std::string Watch::changes() {
    std::vector<std::pair<std::string, std::vector<int>>> found;  // "name(#).property=value", its indices
    for (const Control* c : takeChanged()) {
        const bool moves = c->kind == ControlKind::meter || c->name.starts_with("lblPos") ||
                           c->name == "lblTime" || c->name == "lblDate" || c->name.starts_with("lblMIDI") ||
                           c->name == "JRemLev" || c->name == "picbtnumber";
        const auto before = std::exchange(known_[c], properties(*c));
        if (mainOnly && c->kind != ControlKind::window && &windowOf(*c) != &frmMain().window) continue;
        const Control& face =
            c->parent != nullptr && c->parent->kind == ControlKind::jingle ? *c->parent : *c;
        const bool outOfGrid = face.kind == ControlKind::jingle && !face.visible;
        for (std::size_t i = 0; i < std::size(kProperties) && (timeStands || !moves); ++i) {
            if (before.empty() || known_[c][i] == before[i]) continue;
            if (outOfGrid && (c != &face || before.front() == known_[c].front())) continue;
            if (c->name == "picPlaylist" && i != 0) continue;  // a part of the button's face
            const char* blinks = c->name.starts_with("sep") ? "caption"
                                 : c->name == "lblErr"      ? "foreColor"
                                                            : "";
            if (!timeStands && kProperties[i] == std::string(blinks)) continue;
            const std::string text = c->name + "#." + kProperties[i] + "=" + cut(known_[c][i]);
            auto at = std::ranges::find(found, text, &std::pair<std::string, std::vector<int>>::first);
            if (at == found.end()) at = found.insert(found.end(), {text, {}});
            at->second.push_back(c->index);
        }
    }
    std::vector<std::string> all;
    for (auto& [text, indices] : found) {
        const std::string many = "(" + std::to_string(indices.size()) + " of them)";
        std::string which;
        for (const int index : indices) which += index < 0 ? "" : "(" + std::to_string(index) + ")";
        all.push_back(text.replace(text.find('#'), 1, indices.size() > 3 ? many : which));
    }
    const auto now = rest();
    for (const auto& [key, value] : now)
        if (const auto was = rest_.find(key); was == rest_.end() || was->second != value)
            all.push_back(key + "=" + (key.ends_with(".sound") ? value : cut(value)));
    for (const auto& [key, value] : rest_)
        if (!now.contains(key)) all.push_back("no " + key);
    rest_ = now;
    if (!sent.empty()) all.push_back("to the surface " + std::exchange(sent, {}));
    return joined(all, "; ");
}

std::map<std::string, std::string> Watch::rest() const {
    std::map<std::string, std::string> all;
    const auto number = [&](const std::string& key, auto value) {
        if (static_cast<double>(value) != 0) all[key] = std::to_string(static_cast<std::int64_t>(value));
    };
    std::istringstream settings(SettingsDump());
    for (std::string line; std::getline(settings, line);)
        all["set " + line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
    for (int i = 0; i < kJingles; ++i) {
        const std::string slot = "J" + std::to_string(i) + ".";
        for (const auto& [key, value] : fieldsOf(rec(i))) all[slot + key] = value;
        number(slot + "FadeAttrib", rec(i).FadeAttrib);
        number(slot + "open", rec(i).hPlay != 0);
        number(slot + "sounds", BASS_ChannelIsActive(rec(i).hPlay) == BASS_ACTIVE_PLAYING);
        number(slot + "LoopLen", rec(i).LoopLen);
        number(slot + "EndOffset", rec(i).EndOffset);
        number(slot + "ms", std::round(rec(i).Duration * 1000));
        number(slot + "reverb", rec(i).ReverbMs);
        number(slot + "state", static_cast<int>(rec(i).State) + (rec(i).Playing ? 10 : 0) +
                                   (rec(i).PlayingOtherPal ? 100 : 0));
        number(slot + "bad",
               (rec(i).Unplayable ? 1 : 0) + (rec(i).MissingFile ? 10 : 0) + (rec(i).KeepsStored ? 100 : 0));
        if (rec(i).hPlay != 0)
            if (const std::string sound = soundOf(rec(i), static_cast<std::size_t>(i)); !sound.empty())
                all[slot + "sound"] = sound;
    }
    const std::pair<const char*, double> flags[] = {{"PalToSave", PalToSave},
                                                    {"MenuJ", MenuJ},
                                                    {"SelectorsOn", SelectorsOn},
                                                    {"RenameJ", RenameJ},
                                                    {"MoveSrcJ", MoveSrcJ},
                                                    {"FxOpen", FxOpen},
                                                    {"learning", MIDILearnActive},
                                                    {"TmAnnOn", TmAnnOn},
                                                    {"LiveOn", LiveOn},
                                                    {"ActiveTab", ActiveTab},
                                                    {"boxes", desktop().boxes.size()},
                                                    {"dialogs", desktop().dialogs},
                                                    {"documents", desktop().documents.size()},
                                                    {"quit", desktop().quitAsked},
                                                    {"mark blinks", ErrOneShot},
                                                    {"choosing", ChoosingTimeJingle},
                                                    {"TmAnnAM", TmAnnAM},
                                                    {"TmJingleAM", TmJingleAM},
                                                    {"LiveMixByTa", LiveMixByTa},
                                                    {"LiveNow", static_cast<int>(LiveNow)},
                                                    {"LoopToggleStep", LoopToggleStep},
                                                    {"SelectorsShown", SelectorsShown},
                                                    {"ForPlaylist", ForPlaylist},
                                                    {"SearchOpen", SearchOpen},
                                                    {"ColorPickerOpen", ColorPickerOpen},
                                                    {"blinking", SearchHits.size()},
                                                    {"MicPushed", MicPushed}};
    for (const Removal& r : PendingRemovals())
        all["leaves " + r.section + std::to_string(r.slot)] = r.into + " " + r.path;
    for (const auto& [key, value] : flags) number(key, value);
    const std::pair<const char*, std::string> texts[] = {
        {"timers", runningTimers()},
        {"carried",
         MoveMode + " " + MoveSourcePalette + std::to_string(MoveBuffer.tick) + MoveBuffer.fields.Path},
        {"coming", PaletteLoading() ? ComingPalette() : ""},
        {"time jingle", TmAnPath},
        {"live", LiveStatus},
        {"redo", RedoText()},
        {"shown in its folder", joined(desktop().shown, " ")},
        {"clip", ClipPath},
        {"asked", joined(desktop().asked, ", ")},
        {"OptionCode", OptionCode},
        {"OptionControl", OptionControl},
        {"LastCtrl", LastCtrl},
        {"SaveMode", SaveMode},
        {"held", HeldPalette()},
        {"undo", UndoText()},
        {"locked", joined(LockedFiles, " ")},
        {"clipboard", desktop().clipboard},
        {"box", desktop().boxes.empty() ? "" : desktop().boxes.back()},
        {"keyboard at", desktop().focus == nullptr ? "" : nameOf(*desktop().focus)}};
    for (const auto& [key, text] : texts)
        if (!text.empty()) all[key] = text;
    const Learning& l = MIDILearn;
    all["learnt"] = l.MIDILearnDown + " " + l.MIDILearnUp + " " + std::to_string(l.SlideVelocity) +
                    (l.ckVelocityLimit ? " limit" : "") + (l.ckReverse ? " reverse" : "");
    for (std::size_t row = 0; row < l.rows.size(); ++row)
        all["sent" + std::to_string(row)] = l.rows[row][0] + " " + l.rows[row][1] + " " + l.rows[row][2];
    std::string selected;
    for (const int i : SelJ) selected += std::to_string(i) + " ";
    all["SelJ"] = selected;
    for (const HistoryEntry& entry : HistoryEntries())
        all["history " + entry.name + " " + std::to_string(static_cast<int>(entry.reason)) + " " +
            std::to_string(entry.lines.size())] = "";
    for (const auto& file : std::filesystem::directory_iterator(folder_ / "Audio_Sample"))
        all["sound " + file.path().filename().string()] = "";
    for (const char* name : {"palette.ini", "HotJingles.ini", "playlist.ini", "FXpresets.ini", "MIDI.ini"}) {
        std::ifstream file(folder_ / name);
        std::string section;
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with("[")) section = cut(line);
            all[name + section + cut(line)] = "";
        }
    }
    return all;
}

ApprovedTest::ApprovedTest() {
    ticksChecked = false;  // what its controls do is told, not held together
    folderSettings.ImportFiles = 0;
    searchSettings.ResultsInSearch = 1;
    searchSettings.AutoClJSearchSec = 0;
    FillQuestions();
    FillReportUpcalls();
    FillConsoleUpcalls();
    ForgetUndo();
    VirtualClock::instance().setWallTime("2026-01-01 12:00:00");
    PlaylistsEnabled = true;
    midiIn = {};
    midiOut = {};
    MIDILearn = {};
    hMidiIn = hMidiOut = hMidiOutFixed = 0;
    MIDIInOpen = MIDIDevicePicked = MIDIHidden = MIDILearnActive = false;
    MIDIOutIndex = kNoMidiIndex;
    lstInDevs = lstOutDevs = {};
    cmbInDevsGUI = cmbMIDIOutFixedDevsGUI = cmbMIDIpresets = {};
    MIDIStore.SetSection("");
    ResetRing();
    MidiDevices::instance().plug("Pad");
    MidiDevices::instance().onSent = [](const std::string&, std::uint32_t m) { sent += midiText(m) + " "; };
    midiSettings.MIDIDevice = "Pad";
    midiSettings.MIDIEnabled = 1;
    begin();
    clColorSet(kSlot);
    frmFX().picWave.width = 800 * kTwipsPerPixel, frmFX().picWave.height = 120 * kTwipsPerPixel;
    CloseForms();
    ForgetUndo();
    StartMIDI();
    AllowMIDIFeedback();
    watch = std::make_unique<Watch>(path(""));
}

ApprovedTest::~ApprovedTest() {
    begin();
    CloseForms();
    EndMIDI();
    MidiDevices::instance() = {};
    InputNames.clear(), LiveStatus.clear(), StreamChoice.clear();
    frmMain().live.cmbStream.items = {};
    PlaylistsEnabled = false;
}

void ApprovedTest::begin() {
    LearnCancel();
    CloseForms();
    RenameJ = MoveSrcJ = -1;
    frmMain().palettes.lstPal.enabled = true;
    link(path("Audio_Sample/A0.wav"), 22'050, 0.5);
    link(path("Audio_Sample/A1.wav"), 6 * 44'100, 0.3);
    write("palette.ini",
          "[A]\r\n" + line("0", "A0") + line("1", "A1") + line("2", "gone") + line("3", "lost") +
              paletteLines("Volm=80 Seq=1 CueStart=100 LoopIn=500 LoopOut=1500 StopPos=4500 "
                           "FadeOut=300 LogFadeOut=1 LoopFadeOut=1 AutoDuck=1 NoTrigDuck=1 NoAutomix=1 "
                           "BTNCol=3366FF FXV=-3,1,0,0,0,0,2,200,5,43000,-2",
                           kSlot) +
              "Playlist_5=AAAAAA\r\n[B]\r\n" + line("0", "B0") + line("1", "B1"));
    write("HotJingles.ini", "[HotJingles]\r\n" + line("0", "C0"));
    write("playlist.ini",
          "[AAAAAA]\r\nName=Night\r\nList=0>A:1>A:0>B\r\n[BBBBBB]\r\nName=Day\r\nList=0>B\r\n");
    FXPresetsStore.PutSection(kFXPresetsSection,
                              {{"Bass", "7,3,1,0,0,0,0,0,0,0,0"}, {"Hall", "0,0,0,0,0,0,0,2000,0,0,0"}});
    write("MIDI.ini",
          "[Pad]\r\nJingle1=9010,901000,255\r\nOutJingle1=A01001,A01002,A01003,A01004\r\n"
          "OutPaletteDown=A02001,A02002\r\nOutPaletteUp=A03001,A03002\r\n"
          "[Old]\r\nJingle5=9035,903500,255\r\n");
    std::filesystem::remove_all(path("History"));
    LoadLockedFiles();
    PalToSave = false;
    lstPalRefresh();
    OpenFile("A"), OpenFile();
    pick("A");
    NotSavePal();
    HideErrMark();
    DisplayControls& d = frmMain().display;
    for (Control* hidden : {&d.lblDispMessage, &d.lblPlayMode[0], &d.lblPlayMode[1]}) hidden->visible = false;
    for (Control* seen : {&d.lblDate, &d.lblTime}) seen->visible = true;
    d.lblDispMessage.caption = std::string();
    DisarmOptions();
    LoopToggleAtRest();
    Disarm(frmMain().palettes.ckAssign);
    OptionCode.clear(), OptionControl.clear(), LastCtrl.clear();
    SelectorsOn = false;
    EndChoosing();
    DropTimeJingle();
    DisarmAnnouncer();
    ListInDev(), frmMain().live.cmbStream.caption = std::string(), frmMain().live.cmbStream.listIndex = -1;
    ResetJingles();
    ForgetUndo();
    desktop().boxes.clear(), desktop().asked.clear();
    desktop().focus = nullptr;
    SelJ = {kSlot};
}

void ApprovedTest::work(Control& c, MouseButton button) {
    desktop().answers = {BoxAnswer::yes, BoxAnswer::yes};
    desktop().paths = {path("Audio_Sample/B0.wav").string()};
    watch->changes();
    if (c.onFocus) c.onFocus();
    switch (c.kind) {
        case ControlKind::checkBox:
        case ControlKind::option:
            c.value = c.kind == ControlKind::option || c.value == 0 ? 1 : 0;
            break;
        case ControlKind::slider:
        case ControlKind::number:
            c.value = c.value + c.step <= c.maximum ? c.value + c.step : c.minimum();
            break;
        case ControlKind::comboBox:
        case ControlKind::listBox:
        case ControlKind::tabs:
            if (!c.items().empty()) {
                c.listIndex = (c.listIndex + 1) % static_cast<int>(c.items().size());
                break;
            }
            [[fallthrough]];
        case ControlKind::textBox:
            c.caption = c.caption() + "7";
            break;
        default:
            break;
    }
    const MouseEvent press{button, 0, 300, 150};
    if (c.onMouseDown) c.onMouseDown(press);
    if (button == MouseButton::left && c.onChange && c.kind != ControlKind::button) c.onChange();
    if (c.onMouseUp) c.onMouseUp(press);
    if (button == MouseButton::left && c.onClick) c.onClick();
    pass(120);
    note(nameOf(c) + (button == MouseButton::right ? " right" : ""));
    if (c.kind != ControlKind::checkBox || !c.onChange || !c.visible) return;
    c.value = 1 - c.value, c.onChange(), pass(120);
    note(nameOf(c) + " back");
    c.value = 1 - c.value, c.onChange(), pass(120);
    watch->changes();  // what is seen only while it is set is worked next
}

void ApprovedTest::act(const std::string& what, const std::function<void()>& command, int ms) {
    begin();
    desktop().answers = {BoxAnswer::yes, BoxAnswer::yes};
    desktop().paths = {path("Audio_Sample/B0.wav").string()};
    desktop().menuChoice.clear();
    watch->changes();
    command();
    pass(ms);
    note(what);
}

void ApprovedTest::key(Control& control, Key which, int shift) {
    KeyEvent event{which, shift};
    if (control.onKeyDown) control.onKeyDown(event);
    if (control.onKeyUp) control.onKeyUp(event);
    if (event.consumed) desktop().asked.push_back("key taken");
}

std::string ApprovedTest::lined() const {
    constexpr std::size_t kLine = 1500;
    std::string all, line;
    std::istringstream acts(text);
    for (std::string act; std::getline(acts, act); line += act) {
        const bool joins = line.starts_with("  ") && act.starts_with("  ") &&
                           line.size() + act.size() < kLine && line.find(" > ") != std::string::npos &&
                           act.find(" > ") != std::string::npos;
        if (joins)
            act = " |" + act.substr(1);
        else if (!line.empty())
            all += std::exchange(line, {}) + "\n";
    }
    return all + line + "\n";
}

void ApprovedTest::note(const std::string& what) {
    std::string changes = watch->changes();
    // A new playlist's section has a name by chance.
    constexpr std::string_view kBefore = "playlist.ini[";
    for (std::size_t at = 0; (at = changes.find(kBefore, at)) != std::string::npos; at += kBefore.size()) {
        const std::string id = changes.substr(at + kBefore.size(), 6);
        if (id == "AAAAAA" || id == "BBBBBB" || id == "NEWONE") continue;
        for (std::size_t one = 0; (one = changes.find(id, one)) != std::string::npos;)
            changes.replace(one, 6, "NEWONE");
    }
    if (!changes.empty()) text += "  " + what + " > " + changes + "\n";
}

}  // namespace zv::test
