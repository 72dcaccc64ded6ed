// What stands in each window, and what each of its controls does, compared as a whole with the approved text beside this
// source. ZENTROVA_APPROVE=1 test_ui --gtest_filter='WindowsTest.*' writes it anew; the change is read before it is kept.

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "audio/announcer.h"
#include "audio/effect_vector.h"
#include "audio/live_stream.h"
#include "audio/time_jingle.h"
#include "midi/feedback.h"
#include "midi/learn.h"
#include "midi/lifecycle.h"
#include "model/playlists.h"
#include "platform/forms.h"
#include "platform/rehearsal/midi_devices.h"
#include "platform/rehearsal/virtual_clock.h"
#include "startup/language.h"
#include "startup/settings/editor_settings.h"
#include "startup/settings/folders_settings.h"
#include "startup/settings/midi_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/search_settings.h"
#include "startup/settings_file.h"
#include "startup/upcalls.h"
#include "tests/support/places.h"
#include "tests/ui/keeping_fixture.h"
#include "ui/edit/announcer_file.h"
#include "ui/edit/colour_picker.h"
#include "ui/edit/history.h"
#include "ui/edit/jingle_editor.h"
#include "ui/edit/level_many.h"
#include "ui/edit/playlists.h"
#include "ui/edit/relocate.h"
#include "ui/edit/search.h"
#include "ui/edit/undo.h"
#include "ui/screen/announcer_view.h"
#include "ui/screen/highlight.h"
#include "ui/screen/layout_strip.h"
#include "ui/settings/mixer_window.h"
#include "ui/windows/console_window.h"
#include "ui/windows/jingle_window.h"
#include "ui/windows/midi_learn.h"
#include "ui/windows/midi_settings_window.h"
#include "ui/windows/playlist_windows.h"
#include "ui/windows/question_window.h"
#include "ui/windows/report_window.h"
#include "ui/windows/search_window.h"
#include "ui/windows/shortcuts_window.h"

namespace zv::test {
namespace {

constexpr std::size_t kLongest = 90;  ///< bytes of one value
constexpr int kSlot = 1;              ///< a sequence, which the windows work on
constexpr const char* kProperties[] = {"visible",   "enabled", "caption",   "toolTip",
                                       "value",     "minimum", "maximum",   "items",
                                       "listIndex", "topRow",  "backColor", "foreColor"};

/// The test's own folder, which has another name each time.
std::string ownFolder;
std::string sentToSurface;

std::string cut(std::string text) {
    std::erase(text, '\r');
    for (std::size_t at = 0; (at = text.find(ownFolder, at)) != std::string::npos;)
        text.replace(at, ownFolder.size(), "~");
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;) text.replace(at, 1, "/");
    if (text.size() > kLongest) text = text.substr(0, kLongest) + "...";
    return text;
}

std::string nameOf(const Control& c) {
    return c.name + (c.index >= 0 ? "(" + std::to_string(c.index) + ")" : "");
}

std::string joined(const std::vector<std::string>& parts, const char* between) {
    std::string all;
    for (const std::string& part : parts) all += (all.empty() ? "" : between) + part;
    return all;
}

/// Whether it stands on the screen when its window does.
bool seen(const Control& c) { return c.visible && (c.parent == nullptr || seen(*c.parent)); }

/// A control as it stands: name, text, value; hidden ones in brackets.
std::string standing(const Control& c) {
    if (!c.visible) return "[" + nameOf(c) + "]";
    std::string text = nameOf(c);
    if (!c.caption().empty()) text += " '" + cut(c.caption) + "'";
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

/// A window in reading order, rows with bars between them, a card's in lines of their own.
std::string whole(const Control& window) {
    constexpr std::size_t kLine = 150;
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
                flush();
            }
    };
    const Form& form = *window.form;
    text = "'" + cut(window.caption) + "'" + (form.modal ? " modal" : "") + ", the keyboard is at " +
           (desktop().focus == nullptr ? "nothing" : nameOf(*desktop().focus)) + "\n";
    for (const FormText* head : {&form.header.title, &form.header.line, &form.header.right})
        add(standing(*head));
    flush();
    blocks(form.blocks);
    if (form.pager != nullptr) add(standing(*form.pager)), flush();
    for (const FormPage& page : form.pages) blocks(page.blocks);
    add(standing(form.note)), add(standing(form.keysLeft)), add(standing(form.keys));
    flush();
    return text;
}

/// All that an act can change: controls, records, settings, files and what the desktop was asked.
class Watch {
  public:
    explicit Watch(std::filesystem::path folder) : folder_(std::move(folder)) {
        for (const Control* c : allControls()) known_[c] = properties(*c);
    }
    /// What is other than at the last call, "name.property=value"; equal ones of an array as one.
    std::string changes() {
        std::vector<std::pair<std::string, std::vector<int>>> found;  // "name(#).property=value", its indices
        for (const Control* c : takeChanged()) {
            const bool ticks = c->kind == ControlKind::meter || c->name.starts_with("lblPos") ||
                               c->name == "lblTime" || c->name == "JRemLev" || c->name.starts_with("pic");
            const auto before = std::exchange(known_[c], properties(*c));
            for (std::size_t i = 0; i < std::size(kProperties) && !ticks; ++i) {
                if (before.empty() || known_[c][i] == before[i]) continue;
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
                all.push_back(key + "=" + cut(value));
        for (const auto& [key, value] : rest_)
            if (!now.contains(key)) all.push_back("no " + key);
        rest_ = now;
        rest_.erase("to the surface");
        sentToSurface.clear();
        return joined(all, "; ");
    }

  private:
    static std::vector<std::string> properties(const Control& c) {
        std::vector<std::string> all;
        bool known = true;
        for (const char* property : kProperties) all.push_back(propertyText(c, property, known));
        return all;
    }
    std::map<std::string, std::string> rest() const {
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
                                                        {"quit", desktop().quitAsked}};
        for (const auto& [key, value] : flags) number(key, value);
        const std::pair<const char*, std::string> texts[] = {
            {"OptionCode", OptionCode},
            {"OptionControl", OptionControl},
            {"LastCtrl", LastCtrl},
            {"SaveMode", SaveMode},
            {"held", HeldPalette()},
            {"undo", UndoText()},
            {"clipboard", desktop().clipboard},
            {"box", desktop().boxes.empty() ? "" : desktop().boxes.back()},
            {"keyboard at", desktop().focus == nullptr ? "" : nameOf(*desktop().focus)}};
        for (const auto& [key, text] : texts)
            if (!text.empty()) all[key] = text;
        const Learning& l = MIDILearn;
        if (!sentToSurface.empty()) all["to the surface"] = sentToSurface;
        all["learnt"] = l.MIDILearnDown + " " + l.MIDILearnUp + " " + std::to_string(l.SlideVelocity) +
                        (l.ckVelocityLimit ? " limit" : "") + (l.ckReverse ? " reverse" : "");
        for (std::size_t row = 0; row < l.rows.size(); ++row)
            all["sent" + std::to_string(row)] = l.rows[row][0] + " " + l.rows[row][1] + " " + l.rows[row][2];
        std::string selected;
        for (const int i : SelJ) selected += std::to_string(i) + " ";
        all["SelJ"] = selected;
        for (const char* name :
             {"palette.ini", "HotJingles.ini", "playlist.ini", "FXPresets.ini", "MIDI.ini"}) {
            std::ifstream file(folder_ / name);
            std::string section;
            for (std::string line; std::getline(file, line);) {
                if (line.starts_with("[")) section = cut(line);
                all[name + section + cut(line)] = "";
            }
        }
        return all;
    }

    std::filesystem::path folder_;
    std::map<const Control*, std::vector<std::string>> known_;
    std::map<std::string, std::string> rest_ = rest();
};

struct Scene {
    const char *name, *window;
    std::function<void()> open;
    /// How its controls are worked: one after the other, each in a window that was opened anew, or not at all, and only
    /// what is other than before it opened is told.
    enum class Acts { inARow, anew, none } acts = Acts::anew;
};

class WindowsTest : public KeepingTest {
  protected:
    WindowsTest() {
        folderSettings.ImportFiles = 0;
        searchSettings.ResultsInSearch = 1;
        searchSettings.AutoClJSearchSec = 0;
        FillQuestions();
        FillReportUpcalls();
        FillConsoleUpcalls();
        ForgetUndo();
        ownFolder = path("").string();
        if (ownFolder.ends_with('/')) ownFolder.pop_back();
        VirtualClock::instance().setWallTime("2026-01-01 12:00:00");
    }
    ~WindowsTest() override {
        CloseForms();
        EndMIDI();
        MidiDevices::instance() = {};
        PlaylistsEnabled = false;
    }

    /// Files, records and what is armed as they are before each scene.
    void begin() {
        CloseForms();
        writeWav(path("Audio_Sample/A0.wav"), sine(22'050, 440));
        writeWav(path("Audio_Sample/A1.wav"), sine(6 * 44'100, 440, 0.3));
        write("palette.ini",
              "[A]\r\n" + line("0", "A0") + line("1", "A1") + line("2", "gone") + line("3", "lost") +
                  paletteLines("Volm=80 Seq=1 CueStart=100 LoopIn=500 LoopOut=1500 StopPos=4500 "
                               "FadeOut=300 BTNCol=3366FF FXV=-3,0,0,0,0,0,2,0,0,44100,0",
                               kSlot) +
                  "Playlist_5=AAAAAA\r\n[B]\r\n" + line("0", "B0") + line("1", "B1"));
        write("HotJingles.ini", "[HotJingles]\r\n" + line("0", "C0"));
        write("playlist.ini",
              "[AAAAAA]\r\nName=Night\r\nList=0>A:1>A:0>B\r\n[BBBBBB]\r\nName=Day\r\nList=0>B\r\n");
        FXPresetsStore.PutSection(kFXPresetsSection,
                                  {{"Bass", "7,3,1,0,0,0,0,0,0,0,0"}, {"Hall", "0,0,0,0,0,0,0,2000,0,0,0"}});
        write("MIDI.ini",
              "[Pad]\r\nJingle1=9010,901000,255\r\nOutJingle1=A01001,A01002,A01003,A01004\r\n"
              "[Old]\r\nJingle5=9035,903500,255\r\n");
        std::filesystem::remove_all(path("History"));
        LoadLockedFiles();
        PalToSave = false;
        lstPalRefresh();
        OpenFile("A"), OpenFile();
        pick("A");
        NotSavePal();
        DisarmOptions();
        LoopToggleAtRest();
        Disarm(frmMain().palettes.ckAssign);
        OptionCode.clear(), OptionControl.clear(), LastCtrl.clear();
        SelectorsOn = false;
        EndChoosing();
        DropTimeJingle();
        DisarmAnnouncer();
        ResetJingles();
        ForgetUndo();
        desktop().boxes.clear();
        desktop().focus = nullptr;
        SelJ = {kSlot};
    }

    /// What a hand does to the control, and what has changed behind it.
    void work(Control& c, Watch& watch, std::string& text, MouseButton button = MouseButton::left) {
        desktop().answers = {BoxAnswer::yes, BoxAnswer::yes};
        desktop().paths = {path("Audio_Sample/B0.wav").string()};
        if (c.onFocus) c.onFocus();
        watch.changes();
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
        if (const std::string changes = watch.changes(); !changes.empty())
            text +=
                "  " + nameOf(c) + (button == MouseButton::right ? " right" : "") + " > " + changes + "\n";
    }
    /// Of a long array the first two and the last one; a field of minutes would go beyond every sound.
    static bool chosen(const Control& c) {
        const bool handled =
            c.onChange || c.onClick || c.onMouseDown || c.onMouseUp || c.kind == ControlKind::textBox;
        return handled && c.visible && c.enabled && !c.name.ends_with("Min") &&
               !c.name.starts_with("lblPos") && !c.name.starts_with("sep") && c.kind != ControlKind::canvas &&
               (c.index < 2 || findControl(c.name, c.index + 1, windowOf(c)) == nullptr);
    }
    void scene(const Scene& scene, std::string& text) {
        begin();
        Watch watch(path(""));
        scene.open();
        ASSERT_NE(findControl(scene.window), nullptr) << scene.name << " did not open";
        const Control& window = *findControl(scene.window);
        text += std::string("== ") + scene.name + ": ";
        if (scene.acts == Scene::Acts::none) {
            text += watch.changes() + "\n";
            return;
        }
        text += whole(window);
        std::vector<Control*> controls{window.form->pager};
        Control* cancel = nullptr;
        for (const FormCell* cell : cellsOf(*window.form))
            (cell->role == KeyRole::cancel ? cancel : controls.emplace_back()) = cell->control;
        controls.push_back(cancel);
        for (Control* c : controls) {
            if (c == nullptr || !chosen(*c)) continue;
            if (scene.acts == Scene::Acts::anew) begin();
            if (!window.visible) scene.open();
            work(*c, watch, text);
        }
        CloseForms();
        watch.changes();
        if (PalToSave) ErrClick();
        if (const std::string saved = watch.changes(); !saved.empty()) text += "  saved > " + saved + "\n";
    }
    /// The controls of the main window, but for the jingles and the key that ends the program.
    void mainWindow(std::string& text) {
        Watch watch(path(""));
        MainWindow& w = frmMain();
        text += "== main window\n";
        for (Control* c : allControls()) {
            const bool jingle = c->kind == ControlKind::jingle ||
                                (c->parent != nullptr && c->parent->kind == ControlKind::jingle);
            if (&windowOf(*c) != &w.window || jingle || c == &w.keys.btExit || c == &w.live.ckPlayStream ||
                c == &w.window || !chosen(*c))
                continue;
            for (const MouseButton button : {MouseButton::left, MouseButton::right}) {
                if (button == MouseButton::right && !c->onMouseUp && !c->onMouseDown) continue;
                begin();
                for (int tab = 0; tab < kTabs; ++tab)
                    if (c->parent == &w.fraTab[static_cast<std::size_t>(tab)]) ChangeTab(tab);
                if (c == &w.keys.btStop) press(kSlot), release(kSlot), pass(100);
                work(*c, watch, text, button);
            }
        }
        ChangeTab(0);
    }
    /// Questions on their card, and what each answer is.
    void questions(std::string& text) {
        begin();
        frmMain().window.visible = true;
        const BoxWords words{"Do it", "Leave it", "Fine", "Cancel"};
        for (const auto& [kind, buttons, destroys] : {std::tuple{BoxKind::question, BoxButtons::yesNo, true},
                                                      {BoxKind::question, BoxButtons::yesNo, false},
                                                      {BoxKind::warning, BoxButtons::okCancel, false},
                                                      {BoxKind::stop, BoxButtons::ok, false},
                                                      {BoxKind::information, BoxButtons::ok, false}}) {
            QuestionWindow& q = frmQuestion();
            BoxWords own = words;
            own.destroys = destroys;
            std::string answers;
            for (Control* key :
                 {static_cast<Control*>(nullptr), &q.btAgree, &q.btDestroy, &q.btDecline, &q.btOK}) {
                desktop().whileWaiting = [&] {
                    if (key == nullptr)
                        text += "== question: " + whole(q.form.window) + "  at " +
                                std::to_string(q.form.window.left) + " " + std::to_string(q.form.window.top) +
                                " #" + std::to_string(q.lblIcon.foreColor) + "\n";
                    else if (key->visible)
                        key->onClick();
                };
                const auto answer = askOnCard({"What?\r\nThis", "Title", kind, buttons, own}, {});
                answers += " " + std::to_string(static_cast<int>(answer.value_or(BoxAnswer::ok)));
            }
            text += "  answers" + answers + "\n";
        }
        desktop().whileWaiting = {};
        frmMain().window.visible = false;
    }
};

void compare(const std::string& found, const std::string& file) {
    if (std::getenv("ZENTROVA_APPROVE") != nullptr) {
        std::ofstream(file, std::ios::binary) << found;
        return;
    }
    std::ifstream in(file, std::ios::binary);
    std::istringstream is(found);
    int number = 0, told = 0;
    for (std::string a, f; told < 12; a.clear(), f.clear()) {
        const bool more = static_cast<bool>(std::getline(in, a)),
                   also = static_cast<bool>(std::getline(is, f));
        if (!more && !also) return;
        ++number;
        if (a == f) continue;
        ++told;
        ADD_FAILURE() << file << ":" << number << "\napproved " << a << "\nfound    " << f;
    }
}

TEST_F(WindowsTest, EachWindowIsAsItWasApproved) {
    ticksChecked = false;  // what its controls do is told, not held together
    PlaylistsEnabled = true;
    MidiDevices::instance().onSent = [](const std::string&, std::uint32_t message) {
        sentToSurface += " " + midiText(message);
    };
    MidiDevices::instance().plug("Pad");
    midiSettings.MIDIDevice = "Pad";
    midiSettings.MIDIEnabled = 1;
    const auto hear = [](const char* message) { MidiDevices::instance().hear(message); };
    const auto learn = [&](const char* control, int index, std::initializer_list<const char*> messages) {
        clMIDI(control, index);
        for (const char* message : messages) hear(message);
    };
    const auto editor = [&](int page, int slot) {
        editorSettings.ActiveFXTab = static_cast<std::uint8_t>(page);
        clFXSet(slot);
        pass(1500);  // its file is measured
    };
    const auto search = [&] {
        JingSearch();
        frmSearchJing().showKeys(true);
        frmSearchJing().txtJSearch.caption = "0";
        frmSearchJing().txtJSearch.onChange();
        pass(300);
    };
    begin();
    // Whichever test came before, their texts are there.
    for (FormWindow* form : {&frmPlaylist().form, &frmSearchJing().form, &frmMIDISettings().form})
        form->fillTexts();
    frmFX().picWave.width = 800 * kTwipsPerPixel, frmFX().picWave.height = 120 * kTwipsPerPixel;
    StartMIDI();
    AllowMIDIFeedback();
    using enum Scene::Acts;
    const Scene scenes[] = {
        {"editor", "frmFX", [&] { editor(0, kSlot); }, inARow},
        {"editor without a sequence", "frmFX", [&] { editor(1, 0); }, none},
        {"rename", "frmRenameFile", [&] { clRename(kSlot); }, inARow},
        {"search", "frmSearchJing", search},
        {"playlists", "frmPlaylistSelector", [&] { clPlaylist(kSlot); }},
        {"playlist", "frmPlaylist", [&] { clPlaylist(5), frmPlaylist().lstPlaylist.listIndex = 1; }, inARow},
        {"history", "frmHistory",
         [&] {
             desktop().answers = {BoxAnswer::yes, BoxAnswer::yes};
             rec(0).Volm = 50, DelJing(kSlot, false), save(), DelJing(0, true), ShowHistory();
         },
         inARow},
        {"lost file", "frmSelFile",
         [&] {
             for (const char* name : {"gone.wav", "b/gone.wav", "b/lost.wav"})
                 writeWav(path(std::string("shelf/") + name), sine(2000, 440));
             desktop().paths = {path("shelf").string()}, clReloc(2), pass(300);
         },
         inARow},
        {"loudness", "frmLoudness",
         [&] {
             BringToLoudness({0, 1});
         }},
        {"announcer", "frmSett", [&] { OpenAnnouncerSettings(true); }},
        {"colours", "frmColPick", [&] { clColorSet(kSlot); }},
        {"report", "frmReportError", [&] { startupUpcalls.showReportWindow("Title", "What\r\nhappened"); }},
        {"console", "frmConsole",
         [&] {
             OpenConsole(), startupUpcalls.consoleLines({"one", "two"}, true);
         }},
        {"keys", "frmShortcuts", OpenShortcuts},
        {"mixer", "frmMixer", OpenMixer, inARow},
        {"learn a button", "frmMIDIButton",
         [&] {
             learn("b_Jingle", kSlot, {"903C40", "803C00"});
         },
         inARow},
        {"learn a wheel", "frmMIDIScroll", [&] { learn("lstPal", -1, {"B01041"}); }, inARow},
        {"learn a fader", "frmMIDIFader",
         [&] {
             learn("Vol", -1, {"B00740", "B00741"});
         },
         inARow},
        {"learn a reset", "frmMIDIReset", [&] { learn("btMIDIOutReset", -1, {}); }, inARow},
        {"surface", "frmMIDISettings", OpenMidiSettings, inARow},
    };
    std::string text;
    for (const Scene& one : scenes) scene(one, text);
    questions(text);
    mainWindow(text);
    compare(text, sourceDir() + "/tests/ui/windows.txt");
}

}  // namespace
}  // namespace zv::test
