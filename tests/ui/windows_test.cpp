// What stands in each window, and what each of its controls does.

#include "midi/lifecycle.h"
#include "platform/forms.h"
#include "platform/rehearsal/midi_devices.h"
#include "startup/settings/editor_settings.h"
#include "startup/upcalls.h"
#include "tests/support/approved.h"
#include "tests/ui/approved.h"
#include "ui/edit/announcer_file.h"
#include "ui/edit/colour_picker.h"
#include "ui/edit/history.h"
#include "ui/edit/jingle_editor.h"
#include "ui/edit/level_many.h"
#include "ui/edit/playlists.h"
#include "ui/edit/relocate.h"
#include "ui/edit/search.h"
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

struct Scene {
    const char *name, *window;
    std::function<void()> open;
    /// How its controls are worked: one after the other, each in a window that was opened anew, or not at all, and only
    /// what is other than before it opened is told.
    enum class Acts { inARow, anew, none } acts = Acts::anew;
};

class WindowsTest : public ApprovedTest {
  protected:
    /// Of a long array the first two and the last one; a field of minutes would go beyond every sound.
    static bool chosen(const Control& c) {
        const bool handled =
            c.onChange || c.onClick || c.onMouseDown || c.onMouseUp || c.kind == ControlKind::textBox;
        return handled && c.visible && c.enabled && !c.name.ends_with("Min") &&
               !c.name.starts_with("lblPos") && !c.name.starts_with("sep") && c.kind != ControlKind::canvas &&
               (c.index < 2 || findControl(c.name, c.index + 1, windowOf(c)) == nullptr);
    }
    void scene(const Scene& scene) {
        begin();
        watch->changes();
        scene.open();
        ASSERT_NE(findControl(scene.window), nullptr) << scene.name << " did not open";
        const Control& window = *findControl(scene.window);
        text += std::string("== ") + scene.name + ": ";
        if (scene.acts == Scene::Acts::none) {
            text += watch->changes() + "\n";
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
            work(*c);
        }
        for (const auto& [name, which] : {std::pair{"enter", Key::enter}, {"escape", Key::escape}}) {
            begin();
            if (!window.visible) scene.open();
            watch->changes();
            key(*findControl(scene.window), which), pass(120);
            note(name);
        }
        CloseForms();
        watch->changes();
        if (PalToSave) ErrClick();
        note("saved");
    }
    /// The controls of the main window, but for the jingles and the key that ends the program.
    void mainWindow() {
        watch->changes();
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
                work(*c, button);
            }
        }
        ChangeTab(0);
    }
    /// Questions on their card, and what each answer is.
    void questions() {
        begin();
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
    }
};

TEST_F(WindowsTest, EachWindowIsAsItWasApproved) {
    const auto learn = [&](const char* control, int index, std::initializer_list<const char*> messages) {
        clMIDI(control, index);
        for (const char* message : messages) MidiDevices::instance().hear(message);
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
         }},
        {"learn a wheel", "frmMIDIScroll", [&] { learn("lstPal", -1, {"B01041"}), pass(600); }, inARow},
        {"learn a fader", "frmMIDIFader",
         [&] {
             learn("Vol", -1, {"B00740", "B00741"});
         },
         inARow},
        {"learn a reset", "frmMIDIReset", [&] { learn("btMIDIOutReset", -1, {}); }, inARow},
        {"surface", "frmMIDISettings", OpenMidiSettings, inARow},
    };
    for (const Scene& one : scenes) scene(one);
    questions();
    mainWindow();
    expectApproved("ui/windows.txt", lined());
}

}  // namespace
}  // namespace zv::test
