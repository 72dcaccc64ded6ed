// What commands do that no control of a window gives: menus, keys, what goes wrong, and what a studio does to files behind
// the program's back. Each begins anew.
#include "audio/devices.h"
#include "audio/open_palette.h"
#include "audio/upcalls.h"
#include "model/playlists.h"
#include "platform/rehearsal/midi_devices.h"
#include "platform/rehearsal/virtual_clock.h"
#include "startup/errors.h"
#include "startup/language.h"
#include "startup/settings/announcer_settings.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/editor_settings.h"
#include "startup/settings/folders_settings.h"
#include "startup/settings/labels_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/palette_list_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/program_settings.h"
#include "startup/settings/search_settings.h"
#include "startup/settings/window_settings.h"
#include "startup/settings_file.h"
#include "startup/upcalls.h"
#include "tests/support/approved.h"
#include "tests/ui/approved.h"
#include "ui/edit/announcer_tab.h"
#include "ui/edit/assign.h"
#include "ui/edit/carried.h"
#include "ui/edit/colour_picker.h"
#include "ui/edit/fill.h"
#include "ui/edit/history.h"
#include "ui/edit/jingle_editor.h"
#include "ui/edit/jingle_menu.h"
#include "ui/edit/options.h"
#include "ui/edit/palette_load.h"
#include "ui/edit/playlists.h"
#include "ui/edit/positions_page.h"
#include "ui/edit/relocate.h"
#include "ui/edit/remove.h"
#include "ui/edit/search.h"
#include "ui/edit/selection.h"
#include "ui/edit/undo.h"
#include "ui/press/press.h"
#include "ui/records/armed.h"
#include "ui/records/timers.h"
#include "ui/screen/colours.h"
#include "ui/screen/display_message.h"
#include "ui/settings/mixer_controls.h"
#include "ui/settings/mixer_window.h"
#include "ui/windows/console_window.h"
#include "ui/windows/history_window.h"
#include "ui/windows/jingle_window.h"
#include "ui/windows/midi_button_window.h"
#include "ui/windows/midi_learn.h"
#include "ui/windows/midi_settings_window.h"
#include "ui/windows/playlist_windows.h"
#include "ui/windows/question_window.h"
#include "ui/windows/report_window.h"
#include "ui/windows/search_window.h"
#include "ui/windows/select_file_window.h"
#include "ui/windows/shortcuts_window.h"

namespace zv::test {
namespace {

namespace fs = std::filesystem;

class CommandsTest : public ApprovedTest {
  protected:
    /// The menu as it is offered, then what each of its items does.
    void menu(const std::string& of, const std::function<void()>& open) {
        act(of, open);
        std::vector<std::string> names;
        std::string offered;
        for (const MenuItem& item : desktop().menu) {
            offered += (offered.empty() ? "" : "; ") + item.caption + (item.enabled ? "" : " off") +
                       (item.ticked ? " ticked" : "");
            if (item.enabled && item.chosen) names.push_back(item.name);
        }
        text += "== menu of " + of + ": " + offered + "\n";
        for (const std::string& name : names)
            act(name, [&] {
                desktop().menuChoice = name;
                open();
            });
        desktop().menuChoice.clear();
    }
    void seek(const std::string& what) {
        JingSearch();
        frmSearchJing().txtJSearch.caption = what;
        frmSearchJing().txtJSearch.onChange();
        pass(300);
    }
};

TEST_F(CommandsTest, EachDoesWhatWasApproved) {
    PaletteTab& t = frmMain().palettes;
    menu("a jingle", [] { OpenJingleMenu(96); });
    menu("a playlist", [] { OpenJingleMenu(5); });
    menu("a lost file", [] { OpenJingleMenu(2); });
    menu("an empty button, a jingle carried", [] {
        clMove(0, "copy");
        OpenJingleMenu(7);
    });
    menu("several", [] {
        CtrlDown = true;
        ShowSelectors(), CheckAllSelectors();
        Button(0)->ckJingSel.onMouseDown({MouseButton::right});
        CtrlDown = false;
        HideSelectors();
    });
    menu("the palettes", [&] {
        DelJing(96, false), SelJ = {0}, clTouchSet(0), DelJing(kSlot, false), clNoStopSet(0), Undo(), Undo();
        t.lstPal.onMouseUp({MouseButton::right});
    });

    text += "== keys\n";
    for (const auto& [name, which] :
         {std::pair{"page up", Key::pageUp}, {"delete", Key::del}, {"enter", Key::enter}})
        act(std::string("palettes: ") + name, [&, k = which] { t.lstPal.listIndex = 1, key(t.lstPal, k); });
    for (const Key which : {Key::enter, Key::escape})
        act("name: " + std::to_string(static_cast<int>(which)), [&] {
            t.btSave.onMouseDown({});
            t.txtSave.caption = std::string("Late");
            key(t.txtSave, which);
        });
    for (const Key which : {Key::f3, Key::pageUp, Key::pageDown, Key::enter, Key::escape})
        for (const int hits : {0, 1})
            act("search: " + std::to_string(static_cast<int>(which)) + (hits != 0 ? " hits" : ""), [&, hits] {
                searchSettings.ResultsInSearch = hits;
                seek("0");
                key(frmSearchJing().form.window, which);
            });
    for (const Key which : {Key::f1, Key::up, Key::pageDown, Key::enter})
        act("keys: " + std::to_string(static_cast<int>(which)), [&] {
            write("shipped/Manual/Zentrova.html", "x");
            OpenShortcuts(), key(frmShortcuts().form.window, which);
        });
    act("test of a lamp", [] { clMIDI("b_Jingle", kSlot), key(*frmMIDIButton().btTest[1], Key::space); });

    text += "== what goes wrong\n";
    act("nothing to take back", Undo);
    act("nothing to bring again", Redo);
    act("a search given up", [&] {
        for (int i = 0; i < 30; ++i) write("shelf/" + std::to_string(i) + "/x.wav", "");
        desktop().paths = {path("shelf").string()}, clReloc(2), pass(200);
        EXPECT_TRUE(frmSelFile().lblFolder.caption().starts_with("Searching in " + path("shelf/").string()));
        frmSelFile().lblFolder.caption = std::string();  // a folder has an order of its own
        note("a search goes on");
        frmSelFile().btCancel.onClick();
    });
    act("nothing was dropped", [] { b_Jingle_OLEDragDrop(7, ""); });
    act("no sound", [] { ClipPath = "notes.txt", clAssign(7); });
    act(
        "more files than buttons",
        [&] {
            for (int i = 0; i < 45; ++i)
                writeWav(path("many/" + std::to_string(100 + i) + ".wav"), sine(500, 440));
            FillPalette({path("many").string()});
        },
        600);
    act("a time jingle given up",
        [] { PlayAfterAnnouncement(kSlot), frmMain().announcer.b_tmAnJin.onMouseDown({}); });
    act("another jingle under the editor", [] { clFXSet(kSlot), clMove(0, "copy"), clMove(kSlot, "paste"); });
    act(
        "no file of that name",
        [&] {
            write("empty/x.txt", "");
            desktop().paths = {path("empty").string()}, clReloc(2);
        },
        400);
    act("the name that it has", [] { clRename(kSlot), frmRenameFile().onAccepted(); });
    act("a preset without a name", [] { clFXSet(kSlot), frmFX().btAddFXpreset.onClick(); });
    act("a name that is there",
        [] { clRename(kSlot), frmRenameFile().txtFilename.caption = "A0", frmRenameFile().onAccepted(); });
    act("a name that was taken meanwhile", [&] {
        clRename(kSlot), frmRenameFile().txtFilename.caption = "X", frmRenameFile().onAccepted();
        write("Audio_Sample/A1.wav", "another"), Undo();
    });
    act("a file that the history has lost",
        [&] { DelJing(kSlot, true), fs::remove_all(path("History")), Undo(); });
    act("a state of the history that is lost", [&] {
        DelJing(kSlot, true), ShowHistory(), fs::remove_all(path("History"));
        findControl("btHistoryBack")->onClick();
    });
    act("many jingles in the history", [&] {
        for (int i = 10; i < 22; ++i)
            PaletteStore.PutValue("Path_" + std::to_string(i), "x" + std::to_string(i), "B");
        DeletePalette("B"), ShowHistory();
    });
    act("a preset that cannot be written", [&] {
        fs::remove(path("FXpresets.ini")), fs::create_directories(path("FXpresets.ini/x"));
        clFXSet(kSlot), frmFX().txtFXpreset.caption = "Mine", frmFX().btAddFXpreset.onClick();
        fs::remove_all(path("FXpresets.ini"));
    });
    act("a playlist too long", [] {
        clPlaylist(5);
        frmPlaylist().lstPlaylist.items =
            std::vector<std::string>(96, "1 (A1 > A palette of a very long name)");
        frmPlaylist().btOK.onClick();
    });
    act("a locked jingle's playlists", [] { EditPlaylist(kSlot); });
    act("once it is there", [&] {
        const int load = BeginPaletteLoad("A");
        rec(0).Volm = 3, MarkPalToSave(), ErrClick(), pass(100);
        note("a click on the mark while a palette loads");
        EndPaletteLoad(load, "A");
    });
    act("the program ends from the report", [] {
        startupUpcalls.showReportWindow("Title", "Text");
        frmMain().window.onClose = [] { desktop().quitAsked = true; };
        EXPECT_TRUE(startupUpcalls.reportWindowOpen());
        frmReportError().btKill.onClick();
        EXPECT_FALSE(startupUpcalls.reportWindowOpen());
        frmMain().window.onClose = {}, desktop().quitAsked = false;
    });

    for (const int press : {1, 2, 3, 4}) {
        LoopToggleAtRest();
        act("loop pressed " + std::to_string(press), [press] {
            for (int i = 0; i < press; ++i) ckLoopITog();
        });
    }
    act("dark, the list reversed", [] { paletteListSettings.RevLstPalCol = 1, SwitchDarkMode(1); });
    paletteListSettings.RevLstPalCol = 0, SwitchDarkMode(0);

    act("loop behind another option", [] { ckTouchI_MouseDown(), ckLoopITog(); });
    LoopToggleAtRest();

    text += "== playlists\n";
    const auto edited = [](std::initializer_list<const char*> lines) {
        if (frmPlaylistSelector().form.isOpen()) frmPlaylistSelector().btNew.onClick();
        frmPlaylist().txtPL.caption = std::string("Mine");
        frmPlaylist().lstPlaylist.items = std::vector<std::string>(lines.begin(), lines.end());
        frmPlaylist().btOK.onClick();
    };
    act("a new one", [&] { clPlaylist(7), edited({"0 (A0 > A)", "1 (B1 > B)"}), ErrClick(); });
    act("a new one of nothing", [&] { clPlaylist(7), edited({}); });
    act("emptied", [&] { clPlaylist(5), edited({}), note("before it is taken back"), Undo(); });
    act("a new one on a jingle",
        [&] { clPlaylist(kSlot), edited({"1 (B1 > B)"}), note("before it is taken back"), Undo(); });
    act(
        "without a name",
        [this] {
            clPlaylist(5), frmPlaylist().txtPL.caption = std::string(" ");
            desktop().focus = &frmPlaylist().btOK, frmPlaylist().btOK.onClick();
            pass(200);
            if (frmPlaylist().txtPL.backColor == kNoColour) ADD_FAILURE() << "it does not ask for the name";
        },
        1500);
    act("a jingle found", [&] {
        clPlaylist(5), frmPlaylist().btAdd.onClick();
        frmSearchJing().txtJSearch.caption = std::string("b1"), frmSearchJing().txtJSearch.onChange(),
        pass(300);
        frmSearchJing().lstJingRes.listIndex = 0, frmSearchJing().btKbGo.onClick();
    });
    act("on a button that sounds",
        [&] { press(96), release(96), clPlaylist(96), edited({"1 (B1 > B)"}), evStop(); });
    act("opened by its key", [] {
        clPlaylist(kSlot), frmPlaylistSelector().lstPL.listIndex = 1, frmPlaylistSelector().lstPL.onChange();
        frmPlaylistSelector().btOpen.onClick();
    });
    act("damaged", [&] {
        write("playlist.ini", "[AAAAAA]\r\nName=One\r\nList=:x>A:0>A:200>B:7\r\n[BBBBBB]\r\nList=0>B\r\n");
        LoadLockedFiles();
    });
    act("switched off", [&] { PlaylistsEnabled = false, OpenFile("A"), pass(500); });
    PlaylistsEnabled = true;
    act("delete on a locked jingle", [] { LastCtrl = "b_Jingle", LastPlayedJ = 0, DeleteObj(); });

    text += "== the rest\n";
    act("a new palette saved", [&] {
        btNewTog(), b_Jingle_OLEDragDrop(7, path("Audio_Sample/B0.wav").string()), ErrClick();
        t.txtSave.caption = std::string("Evening"), key(t.txtSave, Key::enter);
    });
    act("delete on the list", [] { LastCtrl = "lstpal", lstpaldel(); });
    act("delete on a jingle", [] { LastCtrl = "b_Jingle", lstpaldel(); });
    act("cleared while boxes and a message show", [&] {
        ShowSelectors(), ShowDisplayMessage("Hear"), DelJing(0, false), note("cleared"), HideSelectors();
    });
    act("kept after all", [] { desktop().answers = {BoxAnswer::no}, DelJing(0, false); });
    act("a drop", [&] { button(0).onDrop(path("Audio_Sample/B0.wav").string()); });
    act("a drop on what sounds", [&] {
        press(kSlot), release(kSlot), pass(100);
        button(kSlot).onDrop(path("Audio_Sample/B0.wav").string()), evStop();
    });
    act("assigned", [&] { CkAssignTog(), press(7), release(7); });
    act("boxes where the numbers stand", [] {
        labelSettings.JNumbPos = 2;
        ShowSelectors();
    });
    HideSelectors(), labelSettings.JNumbPos = 0;
    act("a deleted palette comes back",
        [] { DeletePalette("B"), lstPalRefresh(), ShowHistory(), findControl("btHistoryBack")->onClick(); });
    act("names of the chosen jingles",
        [] { ShowSelectors(), CheckAllSelectors(), CopyAllJings(), HideSelectors(); });
    act("a loop's end moved",
        [] { editorSettings.ActiveFXTab = 1, clFXSet(kSlot), MovePoint(CuePoint::loopOut, 3); });
    act("a loudness of one's own", [] { editorSettings.LoudnessTarget = -20, clFXSet(0); });
    act("saved in the minimal view", [&] {
        minimalSettings.MinimalView = 1, rec(0).Volm = 3, MarkPalToSave(), SavePal(),
        minimalSettings.MinimalView = 0;
    });
    act("the mark in the minimal view", [&] {
        for (Control& mark : frmMain().display.lblPlayMode) mark.visible = false;
        minimalSettings.MinimalView = 1, rec(0).Volm = 4, MarkPalToSave(), ErrClick(),
        minimalSettings.MinimalView = 0;
    });
    act("a palette in the minimal view", [&] {
        for (Control& mark : frmMain().display.lblPlayMode) mark.visible = false;
        minimalSettings.MinimalView = 1, t.btDn.onMouseDown({}), t.btDn.onMouseUp({}), pass(300);
        minimalSettings.MinimalView = 0;
    });
    act("the box of a carried jingle", [&] {
        ShowSelectors(), Button(kSlot)->ckJingSel.value = 1, clMove(kSlot, "copy"), clMove(7, "paste");
        note("pasted"), HideSelectors();
    });
    act("the window's console dragged", [] {
        Control& w = frmConsole().form.window;
        OpenConsole(), w.left = 1000, w.top = 1000;
        w.onMouseDown({MouseButton::left, 0, 10, 20}), w.onMouseMove({MouseButton::left, 0, 110, 170});
        w.onMouseUp({}), w.onMouseMove({MouseButton::left, 0, 900, 900});
    });
    text += "  it stands at " + std::to_string(frmConsole().form.window.left) + " " +
            std::to_string(frmConsole().form.window.top) + "\n";
    act("saved once the editor was closed",
        [&] { rec(0).Volm = 5, MarkPalToSave(), clFXSet(0), note("open"), OKfx(), ErrClick(); });
    act("windows on top",
        [] { windowSettings.AlwaysOnTop = 1, OpenMixer(), windowSettings.AlwaysOnTop = 0; });
    act("deleted where no history can be", [&] { write("History", "x"), DelJing(kSlot, true); });
    act("two lost files that are not saved", [&] {
        for (const int slot : {2, 119}) rec(slot).Path = "Audio_Sample\\new" + std::to_string(slot) + ".wav";
        rec(119).MissingFile = true;
        for (const char* name : {"new2.wav", "new119.wav"})
            writeWav(path(std::string("found/") + name), sine(2000, 440));
        desktop().paths = {path("found").string()}, clReloc(2), pass(300), frmSelFile().btSelect.onClick();
    });
    ClearButton(119);
    act("a lost file of two palettes", [&] {
        write("palette.ini", read("palette.ini") + "[C]\r\n" + line("4", "lost"));
        for (const char* name : {"gone.wav", "lost.wav"})
            writeWav(path(std::string("aisle/") + name), sine(2000, 440));
        desktop().paths = {path("aisle").string()}, clReloc(2), pass(300), frmSelFile().btSelect.onClick();
        note("found"), Undo(), note("taken back"), Redo();
    });
    act(
        "a jingle of another palette found",
        [&] {
            write("palette.ini", read("palette.ini") + line("4", "B1"));  // two buttons of one name
            searchSettings.BlinksJSearch = 2, seek("b1"), key(frmSearchJing().form.window, Key::enter);
            pass(200), note("it blinks");
        },
        1000);
    act(
        "the search closes by itself",
        [&] {
            searchSettings.AutoClJSearchSec = 1, seek("à"), pass(500), note("half of it");
            searchSettings.AutoClJSearchSec = 0;
        },
        700);
    act(
        "a backspace held",
        [&] {
            seek("Łżźć"), frmSearchJing().btKbBack.onMouseDown({}), pass(310), note("held");
            frmSearchJing().btKbBack.onMouseUp({});
        },
        300);
    act("a page key held", [&] {
        write("palette.ini", read("palette.ini") + "[C]\r\n[D]\r\n[E]\r\n[F]\r\n"), lstPalRefresh();
        desktop().keys = {static_cast<int>(Key::pageDown)}, StartPageKey(Key::pageDown);
        for (const int ms : {395, 10, 10}) pass(ms), note("after " + std::to_string(ms));
        desktop().keys.clear(), pass(20);
    });
    act("the end of a long list", [&] {
        for (int i = 10; i < 40; ++i)
            write("palette.ini", read("palette.ini") + "[L" + std::to_string(i) + "]\r\n");
        paletteListSettings.CenterLstPal = 1, lstPalRefresh(), TimerlstpalbotTick();
        paletteListSettings.CenterLstPal = 0;
    });
    act("the threshold", [] {
        OpenMixer(), frmMixer().SlideFadeInAdvance.value = 30, frmMixer().SlideFadeInAdvance.onChange();
    });
    act("an input played by its key", [&] {
        frmMain().live.cmbStream.listIndex = 0, key(frmMain().live.cmbStream, Key::enter);
        pass(100), note("live"), startupUpcalls.stopPlayStream();
    });
    act("minutes of the announcer", [&] {
        announcerSettings.TimeAnnouncer = "Audio_Sample\\B0.wav", CkTmAnnTog(), pass(100),
        note("it is armed");
        frmMain().announcer.DTMinute.value = 7, frmMain().announcer.DTMinute.onChange();
        note("another minute"), CkTmAnnTog();
    });
    act(
        "a copy taken back", [] { DelJing(0, false), clMove(kSlot, "copy"), Undo(); }, 0);
    act("a file deleted again", [&] { DelJing(kSlot, true), Undo(), note("taken back"), Redo(); });
    act("a file that cannot be deleted again", [&] {
        DelJing(kSlot, true), Undo(), fs::remove_all(path("History")), write("History", "x"), Redo();
    });
    act("its file renamed while it is carried", [] {
        clMove(0, "copy"), clRename(0), frmRenameFile().txtFilename.caption = "Y",
                                        frmRenameFile().onAccepted();
        clMove(7, "paste");
    });
    act("moved to a hot button, and back to its palette", [&] {
        clMove(0, "cut"), pick("B"), clMove(97, "paste"), pick("A"), note("A again"), save(), note("saved");
    });
    act("another in the place that it leaves", [&] {
        clMove(0, "cut"), pick("B"), clMove(97, "paste"), pick("A"), clMove(kSlot, "copy"),
            clMove(0, "paste");
        note("pasted"), Undo(), note("undone"), Redo();
    });
    act("the editor of an empty button", [] { ckFXI_MouseDown(), clFXSet(7); });
    act("the editor while the mark blinks", [] { ErrDisp("no", 1, "why"), clFXSet(kSlot); });
    act("other letters", [&] {
        seek("a"), frmSearchJing().showKeys(true), CloseSearchBox(), programSettings.Language = "Français";
        JingSearch(), note("in French"), frmSearchJing().showKeys(false), programSettings.Language = kEnglish;
    });
    act("a preset of the surface deleted", [&] {
        MidiSettingsWindow& w = frmMIDISettings();
        OpenMidiSettings(), w.cmbMIDIpresets.listIndex = 1, w.cmbMIDIpresets.onChange(), note("chosen");
        w.btMIDIDelete.onClick();
    });
    act("a window in the dark", [&] { SwitchDarkMode(1), OpenShortcuts(), note("dark"), SwitchDarkMode(0); });
    act("an hour later", [&] {
        announcerSettings.TimeAnnouncer = "Audio_Sample\\B0.wav", CkTmAnnTog(), note("armed");
        VirtualClock::instance().setWallTime("2026-01-01 13:10:00"), TimerTimeAndTATick();
    });
    VirtualClock::instance().setWallTime("2026-01-01 12:30:00");
    act("colours where they belong", [] {
        Control& picker = *findControl("frmColPick");
        clColorSet(kSlot), picker.left = 0, CloseColorPicker(), clColorSet(kSlot);
        EXPECT_GT(picker.left(), 0);
    });
    act("files, one that is none", [&] {
        FillPalette(
            {path("Audio_Sample/A0.wav").string(), path("none.wav").string(), path("palette.ini").string()});
        pass(300);
    });
    act("found while another blinks", [&] {
        seek("b1"), key(frmSearchJing().form.window, Key::enter), pass(200);
        seek("a0"), key(frmSearchJing().form.window, Key::enter);
    });
    act("another size", [&] { resize(1024, 700), resize(1280, 800); });
    act("options over options", [&] {
        SelJ = {0}, clTouchSet(0), note("held"), clLoopSet(0), note("loop"), clSeqSet(0), note("sequence");
        clLoopSet(0), note("loop again"), SelJ = {kSlot}, clLoopSet(kSlot);
    });
    act("a time jingle", [&] {
        b_tmAnJinTog(), note("to be chosen"), press(0), release(0), note("chosen");
        b_tmAnJinTog(), note("none"), b_tmAnJinTog(), PlayAfterAnnouncement(kSlot);
    });
    act("marks of the announcer", [&] {
        AnnouncerTab& a = frmMain().announcer;
        announcerSettings.TimeAnnouncer = "Audio_Sample\\B0.wav", CkTmAnnTog(), clTmAn(kSlot), note("armed");
        for (Control* c : {&a.ckTmAnnAM, &a.b_tmAnJinAM}) c->onMouseDown({}), note("marked");
        for (Control* c : {&a.ckTmAnnAM, &a.b_tmAnJinAM}) c->onMouseDown({});
        audioUpcalls.stopAnnouncer(), note("stopped");
        b_tmAnJinTog(), audioUpcalls.stopAnnouncer();
    });
    act("a live input", [&] {
        LiveTab& live = frmMain().live;
        ListInDev(), live.cmbStream.caption = InputNames.at(0), live.cmbStream.onChange(), note("named");
        live.ckPlayStream.onMouseDown({}), pass(100), note("on air");
        live.ckPlayStream.onMouseDown({}), note("fades"), pass(1500), note("has faded");
        live.ckPlayStream.onMouseDown({}), pass(100), live.ckPlayStream.onMouseDown({});
        audioUpcalls.stopStream(), live.ckPlayStream.onMouseDown({}), note("again");
        live.btRemUrl.onClick();
    });
    act("the search opened again", [&] {
        seek("b1"), frmSearchJing().txtJSearch.caption = "zzz", frmSearchJing().txtJSearch.onChange();
        pass(300), note("nothing found"), seek("x"), seek("b1"), CloseSearchBox(), note("closed"),
            JingSearch();
    });
    act("more messages than the monitor shows", [] {
        clMIDI("b_Jingle", kSlot);
        for (int i = 0; i < 15; ++i) MidiDevices::instance().hear("90" + std::to_string(10 + i) + "40");
    });
    act("a step in a long list", [&] {
        for (int i = 10; i < 40; ++i)
            write("palette.ini", read("palette.ini") + "[L" + std::to_string(i) + "]\r\n");
        paletteListSettings.CenterLstPal = 1, lstPalRefresh(), t.lstPal.listIndex = 20;
        t.btDn.onMouseDown({}), note("pressed"), t.btDn.onMouseUp({}), note("let go");
        t.btUp.onMouseDown({MouseButton::right}), t.btUp.onMouseUp({MouseButton::right});
        paletteListSettings.CenterLstPal = 0;
    });
    act("another tab while assigning", [] { CkAssignTog(), ckTab_MouseDown(2); });
    act("another tab while a name is asked for", [&] { t.btSave.onMouseDown({}), ckTab_MouseDown(2); });
    act("another tab while a time jingle is chosen", [] { b_tmAnJinTog(), ckTab_MouseDown(0); });
    act("devices by name",
        [] { OpenMixer(), frmMixer().optDevBy[1]->onChange(), frmMixer().optDevBy[0]->onChange(); });
    act("one output only", [] {
        deviceSettings.DeviceSingle = 1;
        OpenMixer(), frmMixer().cmbDev[0]->listIndex = 1, frmMixer().cmbDev[0]->onChange();
        deviceSettings.DeviceSingle = 0;
    });
    act("a question over a question", [&] {
        QuestionWindow& q = frmQuestion();
        int asked = 0;
        desktop().whileWaiting = [&] {
            if (++asked > 1) return q.btOK.onClick();
            askOnCard({"Second?", "", BoxKind::warning, BoxButtons::ok, {}}, {});
            text += "  again " + q.lblText.caption() + " " + std::to_string(q.btDecline.visible()) + "\n";
        };
        askOnCard({"First?", "", BoxKind::question, BoxButtons::okCancel, {}}, {});
        desktop().whileWaiting = {};
    });
    expectApproved("ui/commands.txt", lined());
}

}  // namespace
}  // namespace zv::test
