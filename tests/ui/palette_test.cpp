// The palette list and the buttons' contents: picking, stepping, naming, deleting, assigning, moving,
// colouring.

#include "audio/streams.h"
#include "model/palette_files.h"
#include "model/pending_removals.h"
#include "startup/language.h"
#include "startup/settings/dark_settings.h"
#include "startup/settings/folders_settings.h"
#include "startup/settings/labels_settings.h"
#include "startup/settings/marks_settings.h"
#include "startup/settings/palette_list_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings_file.h"
#include "tests/ui/window_test.h"
#include "ui/edit/colour_picker.h"
#include "ui/edit/move.h"
#include "ui/edit/palette_load.h"
#include "ui/edit/palette_steps.h"
#include "ui/edit/remove.h"
#include "ui/edit/save_dialogue.h"
#include "ui/edit/selection.h"
#include "ui/edit/unsaved.h"
#include "ui/screen/colours.h"
#include "ui/screen/error_mark.h"

namespace zv::test {

class PaletteTest : public WindowTest {
  protected:
    PaletteTest() {
        writePalette("Morning", 3);
        writePalette("afternoon", 2);
        writePalette("Zulu", 1);
        SettingsStore.PutValue("PaletteIndex", "Morning");
        lstPalRefresh();
        paletteSettings.PaletteIndex = "Morning";
        OpenFile("Morning");
    }

    Control& list() { return frmMain().palettes.lstPal; }
    const std::string& name() { return frmMain().display.txtDisPal.caption(); }
    int filled() {
        int n = 0;
        for (int i = 0; i < kPaletteSlots; ++i) {
            n += rec(i).Path.empty() ? 0 : 1;
        }
        return n;
    }
    void pick(const std::string& palette) {
        SelectPalette(palette);
        list().onMouseUp({});
    }
    bool inFile(const std::string& text) { return read("palette.ini").find(text) != std::string::npos; }
};

TEST_F(PaletteTest, theListIsSortedAndShowsTheCurrentOne) {
    EXPECT_EQ(list().items(), (std::vector<std::string>{"afternoon", "Morning", "Zulu"}));
    EXPECT_EQ(list().text(), "Morning");
    EXPECT_EQ(CheckSection("Zulu"), "Zulu");
    EXPECT_EQ(CheckSection("gone"), "afternoon");
    EXPECT_EQ(filled(), 3);
}

TEST_F(PaletteTest, namesBeyondTheListAreToldUntilSomethingElseIs) {
    std::string many;
    for (int i = 0; i < 2000; ++i) many += "[A palette of many " + std::to_string(i) + "]\r\nVolm_0=1\r\n";
    write("palette.ini", read("palette.ini") + many);
    lstPalRefresh();
    const auto told = [] {
        return ErrMarkShows("b") && frmMain().display.lblErr.toolTip().find(Ln("mPalHidden")) == 0;
    };
    EXPECT_TRUE(told());
    OpenFile("Morning");  // as the start does
    pass(15000);
    EXPECT_TRUE(told());
    pick("afternoon");
    EXPECT_FALSE(told());
}

TEST_F(PaletteTest, pickingOpensAtOnceAndForgetsWhatWasPending) {
    AddRemoval({"Zulu", 0, "Morning", "a.wav"});
    EXPECT_EQ(frmMain().palettes.lstJID.items(), std::vector<std::string>{"0"});
    PalToSave = true;
    pick("afternoon");
    EXPECT_EQ(paletteSettings.PaletteIndex, "afternoon");
    EXPECT_EQ(name(), "afternoon");
    EXPECT_EQ(filled(), 2);
    EXPECT_FALSE(PalToSave);
    EXPECT_TRUE(frmMain().palettes.lstSection.items().empty());
    EXPECT_EQ(LastCtrl, "lstpal");
    EXPECT_FALSE(frmMain().display.lblErr.visible);
}

TEST_F(PaletteTest, steppingLoadsOnlyWhereItStops) {
    evBtDn();
    EXPECT_EQ(name(), "Zulu");
    evBtDn();  // wraps
    EXPECT_EQ(name(), "afternoon");
    EXPECT_EQ(filled(), 3);  // nothing is loaded yet
    pass(150);
    EXPECT_EQ(filled(), 2);
    EXPECT_FALSE(frmMain().display.lblErr.visible);
    PaletteOpening = true;  // another load is under way: the step waits for its end
    evBtDn();
    pass(250);
    EXPECT_EQ(filled(), 2);
    PaletteOpening = false;
    pass(150);
    EXPECT_EQ(filled(), 3);
    evbtUp();
    pass(150);
    paletteListSettings.LoopLstPal = 0;
    evbtUp();
    EXPECT_EQ(name(), "afternoon");  // at the top it stays
    evBtDn();
    pass(150);
    EXPECT_EQ(name(), "Morning");
    EXPECT_EQ(filled(), 3);
}

TEST_F(PaletteTest, whateverMovesInTheListCentresItIfThatIsWanted) {
    for (int i = 0; i < 60; ++i) writePalette("P" + std::to_string(10 + i), 1);
    lstPalRefresh();
    for (const int wanted : {1, 0}) {
        paletteListSettings.CenterLstPal = static_cast<std::uint8_t>(wanted);
        const std::pair<const char*, std::function<void()>> ways[] = {
            {"picked", [&] { list().onMouseUp({}); }},
            {"stepped", [] { evBtDn(); }},
            {"jumped", [] { frmMain().palettes.btUp.onMouseDown({}); }}};
        for (const auto& [way, act] : ways) {
            SelectPalette("P40");
            list().topRow = 0;
            act();
            EXPECT_EQ(list().topRow() > 0, wanted == 1) << way;
            pass(200);
        }
    }
}

TEST_F(PaletteTest, aHeldPageKeyRunsAfterAMoment) {
    const int pageDown = static_cast<int>(Key::pageDown);
    const auto send = [&](bool repeat) {
        KeyEvent event{Key::pageDown, 0, repeat};
        frmMain().window.onKeyDown(event);
        EXPECT_TRUE(event.consumed);
    };
    paletteListSettings.LoopLstPal = 0;
    SelectPalette("afternoon");
    desktop().keys = {pageDown};
    send(false);
    EXPECT_EQ(name(), "Morning");
    pass(300);
    send(true);  // the keyboard's own repeats step nothing
    EXPECT_EQ(name(), "Morning");
    pass(150);
    EXPECT_EQ(name(), "Zulu") << "held for 0.4 s it runs";
    SelectPalette("afternoon");
    send(true);
    desktop().keys.clear();  // let go while another window had the keyboard
    pass(600);
    EXPECT_EQ(list().text(), "afternoon");
}

TEST_F(PaletteTest, aHeldArrowJumpsToTheEnd) {
    Control& down = frmMain().palettes.btDn;
    down.onMouseDown({});
    down.onMouseUp({});
    pass(700);
    EXPECT_EQ(name(), "Zulu");
    Control& up = frmMain().palettes.btUp;
    up.onMouseDown({});
    EXPECT_EQ(name(), "Morning");
    pass(700);
    EXPECT_EQ(name(), "afternoon");
    up.onMouseUp({});
}

TEST_F(PaletteTest, aNewPaletteIsBornAtItsFirstSave) {
    desktop().answers = {BoxAnswer::no};
    btNewTog();
    EXPECT_EQ(filled(), 3);
    desktop().answers = {BoxAnswer::yes};
    btNewTog();
    EXPECT_EQ(filled(), 0);
    EXPECT_EQ(list().listIndex, -1);
    EXPECT_EQ(paletteSettings.PaletteIndex, "");
    load(7, 200);
    MarkPalToSave();
    EXPECT_TRUE(ErrMarkShows("f"));
    ErrClick();  // no palette is selected: the naming dialogue
    PaletteTab& t = frmMain().palettes;
    EXPECT_TRUE(t.txtSave.visible);
    EXPECT_FALSE(t.btNew.enabled);
    t.txtSave.caption = "Evening";
    KeyEvent enter{Key::enter};
    t.txtSave.onKeyDown(enter);
    EXPECT_TRUE(enter.consumed);
    EXPECT_FALSE(t.txtSave.visible);
    EXPECT_TRUE(t.btNew.enabled);
    EXPECT_EQ(list().text(), "Evening");
    EXPECT_EQ(paletteSettings.PaletteIndex, "Evening");
    EXPECT_TRUE(inFile("[Evening]"));
    EXPECT_TRUE(inFile("Path_7="));
}

TEST_F(PaletteTest, namingCanBeGivenUp) {
    SavePal();
    PaletteTab& t = frmMain().palettes;
    EXPECT_EQ(t.btSave.backColor, markSettings.spColor);
    EXPECT_EQ(t.txtSave.caption(), "Morning");
    KeyEvent escape{Key::escape};
    t.txtSave.onKeyDown(escape);
    EXPECT_EQ(t.btSave.backColor, BtnFaceColor);
    EXPECT_EQ(list().items().size(), 3U);
    SavePal(2);
    EXPECT_EQ(SaveMode, "rename");
    t.txtSave.caption = "Sunrise";
    SavePal();  // a second press confirms
    EXPECT_EQ(list().items(), (std::vector<std::string>{"afternoon", "Sunrise", "Zulu"}));
    EXPECT_EQ(name(), "Sunrise");
}

TEST_F(PaletteTest, deletingOpensTheOneBefore) {
    desktop().answers = {BoxAnswer::no};
    btDelpal_MouseUp();
    EXPECT_EQ(list().items().size(), 3U);
    EXPECT_EQ(desktop().boxes.back(), "Morning\r\n" + LnBox("mMsdp"));
    desktop().answers = {BoxAnswer::yes};
    btDelpal_MouseUp();
    EXPECT_EQ(list().items(), (std::vector<std::string>{"afternoon", "Zulu"}));
    EXPECT_EQ(name(), "afternoon");
    EXPECT_EQ(filled(), 2);
    LastCtrl = "b_Jingle";
    lstpaldel();  // a button was used last: no question, nothing goes
    EXPECT_EQ(list().items().size(), 2U);
    LastCtrl = "lstpal";
    desktop().answers = {BoxAnswer::yes, BoxAnswer::yes};
    lstpaldel();
    EXPECT_EQ(name(), "Zulu");
    lstpaldel();
    EXPECT_TRUE(list().items().empty());
    EXPECT_EQ(list().listIndex, -1);
    EXPECT_EQ(filled(), 0);
    EXPECT_EQ(paletteSettings.PaletteIndex, "Zulu");
}

TEST_F(PaletteTest, autoSaveFollowsAnEditAndWaitsForTheEditor) {
    paletteSettings.AutoSave = 1;
    SelJ = {1};
    FxOpen = true;
    clLoopSet(1);
    pass(200);
    EXPECT_FALSE(inFile("Loop_1=1"));
    FxOpen = false;
    pass(100);
    EXPECT_TRUE(inFile("Loop_1=1"));
    EXPECT_FALSE(frmMain().display.lblErr.visible);
}

TEST_F(PaletteTest, deletingAJingle) {
    desktop().answers = {BoxAnswer::no};
    DelJing(0, false);
    EXPECT_EQ(filled(), 3);
    EXPECT_EQ(desktop().boxes.back(), LnBox("mMsdb") + "\r\nshort");
    desktop().answers = {BoxAnswer::yes, BoxAnswer::yes};
    DelJing(0, false);
    EXPECT_EQ(filled(), 2);
    EXPECT_EQ(button(0).caption(), "");
    EXPECT_EQ(rec(0).hPlay, 0U);
    EXPECT_TRUE(PalToSave);
    EXPECT_TRUE(std::filesystem::exists(path("Audio_Sample/short.wav")));
    DelJing(1, true);
    EXPECT_NE(desktop().boxes.back().find(LnBox("mMsdba")), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(path("Audio_Sample/short.wav")));
    const std::size_t asked = desktop().boxes.size();
    DelJing(50, false);
    EXPECT_EQ(desktop().boxes.size(), asked);
}

TEST_F(PaletteTest, assigningAndDropping) {
    writeWav(path("other.wav"), sine(8820, 500));
    const std::string file = path("other.wav").string();
    rec(0).Volm = 40;
    rec(0).PlayMod = PlayMode::touch;
    CkAssignTog();
    press(0);  // cancelled: the button stays as it was
    EXPECT_EQ(rec(0).Volm, 40);
    desktop().paths = {file};
    CkAssignTog();
    press(0);
    EXPECT_EQ(desktop().kinds, Ln("mDlgType") + "|" + FileFilter());
    EXPECT_EQ(rec(0).Path, file);
    EXPECT_EQ(rec(0).Volm, 100);
    EXPECT_EQ(rec(0).PlayMod, PlayMode::global);
    EXPECT_EQ(button(0).caption(), "0.2\r\nother");
    EXPECT_FALSE(Armed(frmMain().palettes.ckAssign));
    EXPECT_FALSE(SelectorsOn);
    button(20).onDrop(file);
    EXPECT_EQ(rec(20).Path, file);
    button(21).onDrop(path("language.ini").string());
    EXPECT_TRUE(rec(21).Path.empty());
    load(22, 1000);
    press(22);
    button(22).onDrop(file);  // not while it sounds
    EXPECT_NE(rec(22).Path, file);
    evStop();
}

TEST_F(PaletteTest, cutCopyAndPaste) {
    rec(1).Volm = 55;
    rec(1).PlayMod = PlayMode::noStop;
    clMove(1, "cut");
    clMove(1, "paste");  // on itself: nothing
    EXPECT_EQ(MoveSrcJ, 1);
    clMove(30 - 1, "paste");
    EXPECT_EQ(rec(29).Volm, 55);
    EXPECT_EQ(rec(29).PlayMod, PlayMode::noStop);
    EXPECT_NE(rec(29).hPlay, 0U);
    EXPECT_TRUE(rec(1).Path.empty());
    EXPECT_EQ(MoveSrcJ, -1);
    clMove(29, "copy");
    clMove(10, "paste");
    clMove(11, "paste");
    EXPECT_EQ(rec(10).Volm, 55);
    EXPECT_EQ(rec(11).Volm, 55);
    EXPECT_FALSE(rec(29).Path.empty());
    EXPECT_EQ(MoveSrcJ, 29);
    MoveSrcJ = -1;

    // Into another palette: the source goes when the target is saved.
    clMove(0, "cut");
    pick("Zulu");
    MoveSrcJ = 0;
    clMove(5, "paste");
    EXPECT_FALSE(rec(5).Path.empty());
    EXPECT_EQ(frmMain().palettes.lstSection.items(), std::vector<std::string>{"Morning"});
    SaveMode = "save";
    CloseFile("Zulu");
    EXPECT_TRUE(frmMain().palettes.lstSection.items().empty());
    pick("Morning");
    EXPECT_TRUE(rec(0).Path.empty());
}

TEST_F(PaletteTest, everythingThatIsPersistedTravelsWithAMovedButton) {
    JingleRecord& j = rec(1);
    j.Volm = 6, j.AutoDuck = j.NoAutomix = j.NoTrigDuck = j.Loop = j.Seq = 1, j.AutoDuckKey = "1";
    j.LoopIn = 400, j.LoopOut = 800, j.FadeOut = 9, j.LogFadeOut = j.LoopFadeOut = 1, j.BTNCol = "00FF00";
    j.PlayMod = PlayMode::touch, j.CueStart = 40, j.StopPos = 4000, j.FXV = "1,0,0,0,0,0,0,0,0,44100,0";
    const PersistedJingle before = j;
    for (const char* how : {"copy", "cut"}) {
        clMove(1, how);
        clMove(97, "paste");
        EXPECT_EQ(rec(97).persisted(), before) << how;
        EXPECT_EQ(button(97).backColor, ShadeColor(0x00FF00, 0)) << how;
        EXPECT_EQ(rec(97).FadeAttrib, static_cast<int>(BASS_ATTRIB_VOL | BASS_SLIDE_LOG));
        EXPECT_EQ(rec(1).Path.empty(), how == std::string("cut"));
    }
    // Chosen in this run, not read from a file: it counts all the same.
    rec(2).AutoDuck = 2;
    clMove(2, "copy");
    clMove(12, "paste");
    EXPECT_EQ(rec(12).AutoDuck, 2);
}

TEST_F(PaletteTest, colours) {
    SelJ = {0, 1};
    PickColour(4);
    EXPECT_EQ(rec(0).BTNCol, "3366FF");
    EXPECT_EQ(rec(0).BackRGB, ShadeColor(0xFF6633, 0));
    EXPECT_EQ(button(1).backColor, rec(1).BackRGB);
    EXPECT_TRUE(PalToSave);
    PickColour(kPickFields - 1);
    EXPECT_EQ(rec(0).BTNCol, kFaceColourText);
    EXPECT_EQ(button(0).backColor, BtnFaceColor);

    // A file that cannot be played has the window's face and red letters, whatever its own colour.
    load(7, 300, "BTNCol=3366FF");
    EXPECT_EQ(button(7).backColor, ShadeColor(0xFF6633, 0));
    write("Audio_Sample/sound_7.wav", "no sound");
    FreeJingle(7);
    openStreams(7);
    EXPECT_EQ(button(7).backColor, BtnFaceColor);
    EXPECT_EQ(button(7).foreColor & 0xFFFF, 0xFF);
    pass(200);
    ReColorizeBtn();
    EXPECT_EQ(button(7).backColor, BtnFaceColor);

    SelJ = {0};
    PickColour(15);  // dark mode keeps the colour and works out what is shown
    SwitchDarkMode(1);
    EXPECT_EQ(BtnFaceColor, darkSettings.DarkBackColor);
    EXPECT_EQ(rec(0).BTNCol, "FF0000");
    EXPECT_EQ(button(1).backColor, darkSettings.DarkBackColor);
    EXPECT_EQ(button(1).foreColor, darkSettings.DarkForeColor);
    EXPECT_EQ(button(0).foreColor, GetForeColor(rec(0).BackRGB, "jingle"));
    const std::int32_t before = rec(0).BackRGB;
    darkSettings.ShadeOffsetVal = -40;
    ReColorizeBtn();
    EXPECT_NE(rec(0).BackRGB, before);
    // Dark: borders stand out from the ground, the list is dark, or light when it is reversed.
    EXPECT_EQ(BorderColour(), ShadeColor(darkSettings.DarkBackColor, 32));
    EXPECT_EQ(frmMain().fraPanel.borderColor, BorderColour());
    EXPECT_EQ(list().backColor, darkSettings.DarkBackColor);
    paletteListSettings.RevLstPalCol = 1;
    SwitchDarkMode(1);
    EXPECT_EQ(list().backColor, darkSettings.DarkForeColor);
    EXPECT_EQ(list().foreColor, darkSettings.DarkBackColor);
    SwitchDarkMode(0);
    EXPECT_NE(frmMain().fraPanel.borderColor, ShadeColor(darkSettings.DarkBackColor, 32));
    EXPECT_EQ(button(1).backColor, kButtonFace);
    const Control& stop = frmMain().keys.btStop;
    EXPECT_GT(stop.backColor & 0xFF, 128);  // red stays red
}

TEST_F(PaletteTest, theMenuOffersWhatFitsTheButton) {
    ticksChecked = false;
    const auto offered = [&](int index) {
        desktop().menu.clear();
        button(index).onMouseUp({MouseButton::right});
        std::string names;
        for (const MenuItem& item : desktop().menu) {
            names += item.caption == "-" ? "" : item.name.substr(3) + (item.enabled ? " " : "! ");
        }
        return names;
    };
    std::filesystem::create_directories(folderSettings.SampleDir);
    EXPECT_EQ(offered(20), "Ass ASDir ");
    EXPECT_EQ(offered(0),
              "Ass Clr Copy Cut Rename Col Loop Seq AutoRep Touch PlayStop NoStop Ta FX JPath ASDir ");
    rec(0).Seq = 1;
    EXPECT_EQ(offered(0),
              "Ass Clr Copy Cut Rename Col Loop Seq AutoRep! Touch! PlayStop! NoStop! Ta FX JPath ASDir ");
    rec(1).MissingFile = true;
    EXPECT_EQ(offered(1), "Ass Clr Reloc ASDir ");
    desktop().menuChoice = "mnuLoop";
    offered(2);
    EXPECT_EQ(rec(2).Loop, 1);
    desktop().menuChoice.clear();
    // Several buttons; a number in the corner of the box makes room for it.
    labelSettings.JNumbPos = 2;
    for (const int modifiers : {kCtrlMask, 0, kCtrlMask}) {
        desktop().modifiers = modifiers;
        pass(100);
        EXPECT_EQ(Button(2)->ckJingSel.visible, modifiers != 0);
        EXPECT_EQ(Button(2)->lblbtnumber.visible, modifiers == 0);
        EXPECT_EQ(Button(2)->picbtnumber.visible, modifiers == 0);
    }
    CheckAllSelectors();
    offered(2);
    EXPECT_EQ(SelJ, (std::vector<int>{0, 2}));  // the lost one has no box
    desktop().menuChoice = "mnuTouch";
    offered(2);
    EXPECT_EQ(rec(2).PlayMod, PlayMode::touch);
}

}  // namespace zv::test
