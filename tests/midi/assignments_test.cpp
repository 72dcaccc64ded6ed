// MIDI.ini: what is read is written again to the byte, damage costs what it hit, presets, former owners, codes.

#include "audio/talk_over.h"
#include "midi/faults.h"
#include "midi/learn.h"
#include "midi/learn_commands.h"
#include "startup/errors.h"
#include "startup/helpers.h"
#include "startup/settings/automix_settings.h"
#include "tests/midi/surface.h"
#include "tests/support/approved.h"
#include "ui/windows/form_window.h"
#include "ui/windows/midi_button_window.h"
#include "ui/windows/midi_learn.h"
#include "ui/windows/midi_small_windows.h"

namespace zv::test {
namespace {

constexpr const char* kFile =
    "[Pad]\r\nPaletteUp=9001,900100\r\nPaletteDown=9002,900200\r\nPaletteScroll=B01041,B0103F\r\n"
    "AutoRepeat=9003,900300\r\nTouchPlay=9004,900400\r\nAutoMix=9005,900500\r\nAutoMixTime=B008,1\r\n"
    "MainVolume=B007,0\r\nStopAll=9006,900600\r\nTalkOver=9007,900700\r\nMicON=9008,900800\r\n"
    "Jingle0=9010,901000,255\r\nJingle96=9020,902000,64\r\nJingle105=9021,902100,128\r\nOutReset="
    "B00000\r\nOutStopAll=A00601,A00600\r\n"
    "OutPaletteUp=A00101,A00100\r\nOutPaletteDown=A00201,\r\nOutTalkOver=A00701,,A00702\r\n"
    "OutMicON=A00801,A00800,,\r\nOutAutoRepeat=A00301,A00300,A00302\r\nOutTouchPlay=,,A00402\r\n"
    "OutAutoMix=A00501,A00500,A00502,A00503\r\nOutJingle0=A01001,A01002,A01003,A01004\r\n"
    "OutJingle7=,,A00703,\r\nOutJingle105=A06901,,,\r\n";

TEST_F(SurfaceTest, WhatIsReadIsWrittenAgain) {
    write("MIDI.ini", std::string(kFile) + "Jingle119=907F,907F00,255\r\n");
    LoadMIDIdatas("Pad");
    MIDIStore.DeleteSection("Pad");
    CloseFileMIDI("Pad");
    CloseFileMIDIOut("");
    EXPECT_EQ(cmbMIDIpresets.rows, (std::vector<std::string>{"", "Pad"}));
    EXPECT_EQ(file(), kFile);  // no such hot jingle in this grid: it was not read
    write("MIDI.ini", std::string(kFile) + "Jingle119=907F,907F00,255\r\n; mine\r\n");
    LoadMIDIdatas("Pad");
    CloseFileMIDI("Pad");
    EXPECT_EQ(file(), std::string(kFile) + "Jingle119=907F,907F00,255\r\n; mine\r\n");
    // A device never taught has no section, and none is made.
    LoadMIDIdatas("Other");
    EXPECT_TRUE(midiIn.MIDIJinglePress[0].empty() && midiIn.MIDIUpDown.empty() && midiIn.MIDIUpUp.empty());
    EXPECT_TRUE(midiIn.MIDIAmixCode.empty() && midiIn.MIDIAmixReverse == 0);
    EXPECT_EQ(midiOut.OutStopIdle, "A00600") << "an empty key leaves the message as it was";
    EXPECT_TRUE(midiOut.OutReset.empty());
    CloseFileMIDI("Pad");
    EXPECT_EQ(file().find("\nJingle0="), std::string::npos) << "it is the section named that is written";
}

TEST_F(SurfaceTest, DamageCostsWhatItHit) {
    write("MIDI.ini",
          "[Pad]\r\nPaletteUp=9001\r\nMainVolume=B007,x\r\nJingle0=9010,901000\r\n"
          "Jingle1=9011,901100,999\r\njingle2=9012,901200,100\r\nOutStopAll=A0\r\nOutJingle3=,\r\n=\r\n");
    ErrorLogOn = true;
    LoadMIDIdatas("Pad");
    EXPECT_NE(
        (ReportText + read("Error.log"))
            .find("Damaged in MIDI.ini: Jingle0; Jingle1; OutJingle3; PaletteUp; MainVolume; OutStopAll;"),
        std::string::npos);
    EXPECT_EQ(midiIn.MIDIUpDown, "9001");
    EXPECT_TRUE(midiIn.MIDIUpUp.empty());
    EXPECT_EQ(midiIn.MIDIVolReverse, 0);
    EXPECT_EQ(midiIn.MIDIJingleRelease[0], "901000");
    EXPECT_EQ(midiIn.MIDIJingleVelocity[0], 255);
    EXPECT_EQ(midiIn.MIDIJingleVelocity[1], 255);
    EXPECT_EQ(midiIn.MIDIJingleVelocity[2], 100);
}

TEST_F(SurfaceTest, AFileThatCannotBeWrittenIsAskedForAgain) {
    start({"Jingle0=9010,901000,255"});
    midiIn.MIDIJinglePress[0] = "9011";
    std::filesystem::remove(path("MIDI.ini"));
    std::filesystem::create_directory(path("MIDI.ini"));  // no file can be put in its place
    desktop().answers = {BoxAnswer::ok, BoxAnswer::ok, BoxAnswer::cancel};
    CloseFileMIDI("Pad");
    ASSERT_EQ(desktop().boxes.size(), 3U);
    EXPECT_NE(desktop().boxes[0].find("MIDI.ini"), std::string::npos);
    std::filesystem::remove(path("MIDI.ini"));
}

TEST_F(SurfaceTest, PresetsAreCopiedAndDeleted) {
    start({"Jingle0=9010,901000,255"});
    write("MIDI.ini", file() + "[Old]\r\nJingle0=9030,903000,255\r\nJingle5=9035,903500,255\r\n");
    LoadMIDIPresets();
    ASSERT_EQ(cmbMIDIpresets.rows, (std::vector<std::string>{"", "Pad", "Old"}));
    cmbMIDIpresets_Click(1);
    EXPECT_FALSE(MIDICopyEnabled()) << "a device's own assignments";
    btMIDICopy_Click();
    EXPECT_EQ(cmbMIDIpresets.selected, 1);
    EXPECT_TRUE(MIDIDeleteEnabled());
    cmbMIDIpresets_Click(2);
    ASSERT_TRUE(MIDICopyEnabled());
    btMIDICopy_Click();
    EXPECT_EQ(section("Pad"), "Jingle0=9030,903000,255; Jingle5=9035,903500,255");
    EXPECT_EQ(midiIn.MIDIJinglePress[5], "9035");
    EXPECT_NE(hMidiIn, 0U);
    for (const bool refused : {true, false}) {
        devices_.refuse = refused;
        cmbMIDIpresets_Click(2);
        btMIDICopy_Click();
        EXPECT_EQ(MIDIInOpen, !refused);
    }
    cmbMIDIpresets_Click(2);
    desktop().answers = {BoxAnswer::no, BoxAnswer::yes};
    btMIDIDelete_Click();
    EXPECT_EQ(section("Old").empty(), false);
    btMIDIDelete_Click();
    EXPECT_EQ(file().find("[Old]"), std::string::npos);
    EXPECT_EQ(cmbMIDIpresets.rows, (std::vector<std::string>{"", "Pad"}));
    write("MIDI.ini", "; no section");
    LoadMIDIPresets();
    EXPECT_TRUE(cmbMIDIpresets.rows.empty());
}

// ---- learning: what a control is taught, by the messages that came

/// All codes and messages in memory, by their keys in MIDI.ini; those that are not empty.
std::map<std::string, std::string> taught() {
    std::map<std::string, std::string> all{{"OutReset", midiOut.OutReset}};
    for (const ControlCodes& c : controlCodes()) all[c.key] = midiIn.*c.first + "," + midiIn.*c.second;
    for (const FaderCodes& f : faderCodes())
        all[f.key] = midiIn.*f.code + "," + std::to_string(midiIn.*f.reverse);
    for (const ControlMessages& c : controlMessages())
        for (const auto message : c.messages)
            if (message != nullptr) all[c.key] += midiOut.*message + ",";
    for (int i = 0; i <= LastLiveIdx(); ++i) {
        const auto at = static_cast<std::size_t>(i);
        all["Jingle" + std::to_string(i)] = midiIn.MIDIJinglePress[at] + "," + midiIn.MIDIJingleRelease[at] +
                                            "," + std::to_string(midiIn.MIDIJingleVelocity[at]);
        for (const std::string* message : jingleMessages(i))
            all["OutJingle" + std::to_string(i)] += *message + ",";
    }
    std::erase_if(all, [](const auto& one) {
        return one.second.find_first_not_of(',') == std::string::npos || one.second == ",0" ||
               one.second == ",,255";
    });
    return all;
}

class LearnTest : public SurfaceTest {
  protected:
    /// Teaches a control; what it was, what changed in memory and in the file, who had the code before.
    std::string learn(const std::string& ctrl, int index, const std::string& messages, bool reverse = false) {
        auto before = taught();
        desktop().boxes.clear();
        clMIDI(ctrl, index);
        EXPECT_TRUE(MIDILearnActive);
        const Learning& l = MIDILearn;
        std::string lights = l.MIDILearnDown + " " + l.MIDILearnUp;
        send(messages);
        for (const LearnLight light : {l.Picture1, l.picAntiClockw, l.picClockw})
            lights += " " + std::to_string(static_cast<int>(light));
        lights += " " + l.lblVelocityCode;
        for (const int number : {l.flashing, l.SlideVelocity, l.SlideFader})
            lights += " " + std::to_string(number);
        MIDILearn.ckReverse = reverse;
        AcceptLearn();
        EXPECT_FALSE(MIDILearnActive);
        const auto now = taught();
        std::string text =
            ctrl + (index < 0 ? "" : std::to_string(index)) + " " + messages + " (" + lights + "):";
        for (const auto& [key, value] : now)
            if (before[key] != value) text += " " + key + "=" + value;
        for (const auto& [key, value] : before)
            if (!value.empty() && !now.contains(key)) text += " -" + key;
        for (const std::string& box : desktop().boxes) text += " \"" + box.substr(0, box.find('\n')) + "\"";
        LoadMIDIdatas(kPad);
        EXPECT_EQ(taught(), now) << text << ": the file holds something else\n" << section(kPad);
        return text + "\n";
    }
};

TEST_F(LearnTest, AControlIsTaughtByPressingIt) {
    start({"PaletteUp=9011,901100"});
    std::string text;
    text += learn("b_Jingle", 7, "903C64 903C00");
    text += learn("b_Jingle", 97, "913C01 813C40");
    text += learn("b_Jingle", 105, "923C01 823C40");
    text += learn("b_Jingle", 8, "903C64 903C00 904000");  // taken from 7
    text += learn("b_Jingle", 8, "");
    text += learn("b_Jingle", 9, "905064 905000 905032");  // pressed once more
    text += learn("b_Jingle", 97, "");                     // as it is
    text += learn("btDn", -1, "900164");                   // one message is no pair yet
    // Each takes the code of the one before.
    for (const char* ctrl :
         {"btUp", "btDn", "btStop", "ckAutoRep", "ckTouch", "ckAutoMix", "btMicTO", "btMicPush", "lstPal"})
        text += learn(ctrl, -1, "900164 900100");
    text += learn("b_Jingle", 0, "900164 900100");
    text += learn("lstPal", -1, "B01042");
    text += learn("lstPal", -1, "B01041 B01041 B0103F B01000");
    text += learn("Vol", -1, "B00710 B00811 B00712");
    text += learn("Amix", -1, "B00710");
    text += learn("Amix", -1, "", true);
    text += learn("Vol", -1, "B00710", true);
    text += learn("Amix", -1, "B00710", true);
    expectApproved("midi/lessons.approved", paragraph(Split(text, "\n"), " | "));
    clMIDI("Vol", -1);
    send("B00710 B00820");
    EXPECT_EQ(frmMIDIFader().SlideFader.value(), 0x10);
    LearnPickFader(1);
    send("B00821 B00733");
    EXPECT_EQ(frmMIDIFader().SlideFader.value(), 0x21);
    AcceptLearn();
    EXPECT_EQ(midiIn.MIDIVolCode, "B008");
    EXPECT_FALSE(frmMIDIButton().form.isOpen() || frmMIDIScroll().form.isOpen() ||
                 frmMIDIFader().form.isOpen());
}

TEST_F(SurfaceTest, WhileAWindowLearnsNothingPlays) {
    load(0, 1000);
    start({"Jingle0=9010,901000,255", "OutJingle0=A01001,A01002,A01003,A01004"});
    clMIDI("b_Jingle", 0);
    MidiButtonWindow& w = frmMIDIButton();
    EXPECT_EQ(w.form.window.caption(), "Jingle 0 - MIDI control…");
    EXPECT_EQ(w.lblPressCode.caption(), "90 10");
    EXPECT_EQ(w.ckVelocityLimit.value(), 1);
    heard();
    send("901064");
    pass(300);
    EXPECT_TRUE(heard().silent(0, 10'000));
    EXPECT_EQ(w.lstMidiInDump.items(), (std::vector<std::string>{"90 10 64"}));
    for (const char* key : {"ckAutoRep", "ckTouch", "ckAutoMix"}) {
        findControl(key)->onMouseDown({});
        findControl(key)->onMouseUp({});
    }
    EXPECT_EQ(ToggleAutoRep + ToggleTouch + automixSettings.AutoMix, 0)
        << "commands rest while a control is learnt";
    BASS_ChannelPlay(Jingle(0).hPlay, 0);
    KeyEvent escape{Key::escape};
    w.form.window.onKeyDown(escape);
    EXPECT_FALSE(w.form.isOpen());
    EXPECT_EQ(BASS_ChannelIsActive(Jingle(0).hPlay), BASS_ACTIVE_STOPPED);
    clMIDI("b_Jingle", 0);
    // Cancel leaves everything as it was.
    send("904000");
    MIDILearn.rows[0] = {"90", "00", "00"};
    w.btCancel.onClick();
    EXPECT_EQ(LearnOK(), "");
    EXPECT_EQ(midiIn.MIDIJinglePress[0], "9010");
    EXPECT_EQ(midiOut.OutJingleDown[0], "A01001");
    // Clear and OK: the control is free.
    clMIDI("b_Jingle", 0);
    send("901064");
    w.btClear.onClick();
    EXPECT_EQ(MIDILearn.Picture1, LearnLight::dark);
    EXPECT_EQ(w.lblPressCode.caption(), kNoCode);
    EXPECT_TRUE(w.lstMidiInDump.items().empty());
    w.btOK.onClick();
    EXPECT_FALSE(HasMIDIAssignment(0));
    EXPECT_TRUE(MIDIStore.GetValue("Jingle0", 0, "Pad").empty());
}

TEST_F(SurfaceTest, MessagesAreCopiedTestedAndKept) {
    load(1, 1000);
    start({"OutJingle0=A01001,A01002,A01003,A01004", "OutJingle5=A01501,A01502,,A01504", "OutReset=B00000"});
    clMIDI("b_Jingle", 1);
    MidiButtonWindow& w = frmMIDIButton();
    w.btCpyPrevKey.onClick();
    w.lblCpyvalKey[1]->onClick();
    const auto type = [&](int row, int box, const char* text) {
        Control& field = *findControl(row == 0 ? "txtMIDIOutDown" : "txtMIDIOutPlay", box);
        field.caption = std::string(text);
        field.onChange();
    };
    type(0, 2, "zg7f3");
    type(3, 0, "10");  // below a status byte
    sent();
    w.btTest[0]->onMouseDown({});
    w.btTest[0]->onMouseUp({});
    EXPECT_EQ(sent(), "A0107F") << "the slot has sent nothing yet that could come back";
    w.lblCpyAllKey[2]->onClick();  // data 2 of all slots that have the message
    EXPECT_EQ(midiOut.OutJingleDown[5], "A0157F");
    EXPECT_EQ(midiOut.OutJingleUnavail[5], "");
    w.btOK.onClick();
    EXPECT_EQ(MIDIStore.GetValue("OutJingle1", 0, "Pad"), "A0107F,A01002,A01003,801004");
    EXPECT_EQ(MIDIStore.GetValue("OutJingle5", 0, "Pad"), "A0157F,A01502,,A01504");
    EXPECT_EQ(MIDIStore.GetValue("OutReset", 0, "Pad"), "B00000");
    EXPECT_NE(sent().find("A01002"), std::string::npos) << "the pad shows that it is loaded";
    // Taken out here, put in there.
    clMIDI("b_Jingle", 1);
    w.btClearOutKey.onClick();
    w.btOK.onClick();
    EXPECT_TRUE(MIDIStore.GetValue("OutJingle1", 0, "Pad").empty());
    clMIDI("b_Jingle", 2);
    w.btClearOutKey.onClick();
    w.imgDeleteKey[3]->onClick();
    w.btOK.onClick();
    EXPECT_EQ(MIDIStore.GetValue("OutJingle2", 0, "Pad"), "A0107F,A01002,A01003,");
    // Four equal messages: the surface is reset as well.
    clMIDI("b_Jingle", 2);
    MIDILearn.rows.fill({"90", "1", "5"});  // still being typed
    sent();
    w.btOK.onClick();
    EXPECT_TRUE(MIDILearn.MIDILearnAllSame);
    EXPECT_NE(sent().find("B00000"), std::string::npos);
    clMIDI("btMIDIOutReset", -1);
    EXPECT_EQ(MIDILearn.rows[0], (MessageRow{"B0", "00", "00"}));
    MIDILearn.rows[0] = {"B1", "", "00"};
    frmMIDIReset().btOK.onClick();
    EXPECT_TRUE(MIDIStore.GetValue("OutReset", 0, "Pad").empty());
}

}  // namespace
}  // namespace zv::test
