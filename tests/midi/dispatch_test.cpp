// Messages as data: what each of the 22 tests of the dispatch asks the program for and sends back, and that the order
// of the tests decides where codes overlap. Then the same through the window and the sound.

#include "midi/dispatch.h"
#include "audio/streams.h"
#include "midi/learn_commands.h"
#include "midi/ring.h"
#include "midi/upcalls.h"
#include "model/actions.h"
#include "platform/common/midi_queue.h"
#include "startup/helpers.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/marks_settings.h"
#include "startup/settings/midi_settings.h"
#include "startup/upcalls.h"
#include "tests/midi/surface.h"
#include "ui/press/global_keys.h"
#include "ui/records/timers.h"

namespace zv::test {
namespace {

const std::vector<std::string> kAll = Split(
    "PaletteUp=9001,900100 PaletteDown=9002,900200 PaletteScroll=B01041,B0103F AutoRepeat=9003,900300 "
    "TouchPlay=9004,900400 AutoMix=9005,900500 AutoMixTime=B008,0 MainVolume=B007,0 StopAll=9006,900600 "
    "TalkOver=9007,900700 MicON=9008,900800 Jingle0=9010,901000,255 Jingle1=9010,901100,255 "
    "Jingle2=9012,801240,192 Jingle3=9013,801300,64 Jingle4=9001,901400,255 Jingle5=9015,901500,0 "
    "Jingle96=9020,902000,128 "
    "Jingle105=9021,902100,255 OutPaletteUp=A00101,A00100 OutPaletteDown=A00201,A00200 "
    "OutAutoRepeat=A00301,A00300,A00302 OutTouchPlay=A00401,A00400,A00402 "
    "OutAutoMix=A00501,A00500,A00502,A00503 OutStopAll=A00601,A00600 OutTalkOver=A00701,A00700, "
    "OutMicON=A00801,A00800,, OutJingle0=A01001,A01002,A01003,A01004 "
    "OutJingle2=A01201,A01202,A01203,A01204",
    " ");

std::string actionName(Action action) {
    static const std::map<Action, std::string> names{
        {Action::play, "play"},           {Action::release, "release"},  {Action::stopAll, "stop"},
        {Action::paletteUp, "up"},        {Action::paletteDown, "down"}, {Action::autoRepeat, "repeat"},
        {Action::touch, "touch"},         {Action::autoMix, "automix"},  {Action::micDown, "micDown"},
        {Action::micUp, "micUp"},         {Action::talkOver, "talk"},    {Action::volume, "volume"},
        {Action::autoMixTime, "mixTime"},
    };
    const auto found = names.find(action);
    return found == names.end() ? "?" : found->second;
}

// "message setting|action:argument, with /velocity for play|what is sent". PaletteKey: held 2, letGo 3, wheel 4. A
// release before a press: 901000 is slot 0's release, its press every other velocity; slot 1's press is slot 0's too, slot
// 4's the palette key's: what is tested first has it. Velocity rules: limited at 64, scaled by 64, and 0, which is
// reported once and plays as before. Slot 105 is the last.
constexpr const char* kRows =
    "B0103F|up:4|;B01041|down:4|;B01040||;900100|up:3|A00100 f807A7F;900200|down:3|A00200 f807B7F;"
    "900300||A00300;900400||A00400;900500||A00500;900600||A00600 f807F7F;900700||;900700 single||;"
    "900800|micUp:0|;900800 single||;B00700|volume:0 shown:0|;B00740|volume:50 shown:50|;B0077F "
    "reverse|volume:0 shown:0|;"
    "B00740 reverse|volume:50 shown:50|;B00800|mixTime:1 shown:1|;B00840|mixTime:2500 "
    "shown:2500|;B0087F|mixTime:5000 shown:5000|;"
    "B0087F reverse|mixTime:1 shown:1|;90017F|up:2|A00101 f907A7F;900201|down:2|A00201 f907B7F;"
    "900364|repeat:0|A00301;900464|touch:0|A00401;900564|automix:0|A00501;900664|stop:0|A00601 f907F7F;"
    "900764|talk:0|;900764 single||;900864|micDown:0|;900864 single||;901000|release:0|f80007F A01003;"
    "901064|play:0/100|A01001 f90007F;901101||;901220|play:2/64|A01201 f90027F;"
    "90127F|play:2/127|A01201 f90027F;801240|release:2|f80027F A01203;801241||;901320|play:3/64|f90037F;"
    "90137F|play:3/252|f90037F;901400|release:4|f80047F;902064|play:96/99|f90607F;"
    "902164|play:105/100|f90697F;901564|play:5/100|f90057F;901501|play:5/100|f90057F;FE0000||;";

class DispatchTest : public SurfaceTest {
  protected:
    /// The actions are noted instead of done.
    void note() {
        zv::perform = [this](Action action, int argument, int velocity) {
            asked += (asked.empty() ? "" : " ") + actionName(action) + ":" + std::to_string(argument);
            if (action == Action::play) asked += "/" + std::to_string(velocity);
            return listEnabled || (action != Action::paletteUp && action != Action::paletteDown);
        };
    }
    std::string asked;
    bool listEnabled = true;
};

TEST_F(DispatchTest, EachMessageAsksForOneThing) {
    start(kAll);
    note();
    midiUpcalls.showVolume =
        midiUpcalls.showAutoMixTime = [this](int value) { asked += " shown:" + std::to_string(value); };
    for (const std::string& row : Split(kRows, ";")) {
        if (row.empty()) continue;
        const auto parts = Split(row, "|"), head = Split(parts[0] + " ", " ");
        const std::string &message = head[0], &set = head[1];
        deviceSettings.DeviceSingle = set == "single" ? 1 : 0;
        midiIn.MIDIVolReverse = midiIn.MIDIAmixReverse = set == "reverse" ? 1 : 0;
        asked.clear();
        sent();
        send(message);
        EXPECT_EQ(asked, parts[1]) << row;
        EXPECT_EQ(sent(), parts[2]) << row;
    }
    EXPECT_LE(reports.size(), 1U);
    deviceSettings.DeviceSingle = 0;
    asked.clear();
    MidiInProc(kMidiLongData, 0x641090, 0);  // a long message, whatever it begins with
    pass(20);
    EXPECT_EQ(asked, "");
    for (int i = 0; i < 60; ++i) devices_.queue("901064");
    TimerMIDI_Timer();
    EXPECT_EQ(std::ranges::count(asked, 'y'), 60) << "more than the ring holds, at once";
    std::string told;
    startupUpcalls.consoleLines = [&](const std::vector<std::string>& lines, bool) { told += lines.back(); };
    for (int i = 0; i <= kMidiWaiting; ++i) devices_.queue("901064");
    pass(50);
    EXPECT_NE(told.find("came too fast and were dropped"), std::string::npos) << told;
    int failed = 0;
    zv::perform = [&failed](Action, int, int) -> bool { throw std::runtime_error(std::to_string(++failed)); };
    devices_.queue("901064");
    pass(50);
    EXPECT_EQ(failed, 1) << "what fails is not taken up again";
    note();
    // What a lesson's test key gives back when it is let go.
    sent();
    for (const char* ctrl :
         {"btUp", "btDn", "btStop", "ckAutoRep", "ckTouch", "ckAutoMix", "btMicTO", "btMicPush"})
        OpenLearn(ctrl, -1), btTestUp(), LearnCancel();
    JMidiState[2] = "A01202";
    OpenLearn("b_Jingle", 2), btTestUp(), LearnCancel();
    EXPECT_EQ(sent(), "A00100 A00200 A00600 A00300 A00400 A00500 A00700 A00800 A01202");
}

/// What happens in the program lights the lamps of both outputs.
TEST_F(SurfaceTest, EachEventLightsItsLamps) {
    load(0, 1000);
    writePalette("B", 1);
    start(kAll);
    midiOut.OutReset = "B00000";
    auto& keys = frmMain().keys;
    auto& palettes = frmMain().palettes;
    const MouseEvent left{MouseButton::left};
    const auto same = [](bool on) { markSettings.toColor = on ? markSettings.moColor : 0x00FF00; };
    same(false);
    const struct {
        const char* name;
        std::function<void()> act;
        const char* sent;
    } events[] = {
        {"a mode's key", [&] { keys.ckAutoRep.onMouseDown(left); }, "A00301 A00302 f907C7F"},
        {"let go: all three", [&] { keys.ckAutoRep.onMouseUp(left); }, "A00302 A00400 A00500"},
        {"one mode ends the other", [&] { keys.ckTouch.onMouseDown(left); },
         "A00401 A00402 f907D7F A00300 f807C7F"},
        {"off again", CkTouchTog, "A00400 f807D7F"},
        {"automix A", [&] { keys.ckAutoMix.onMouseDown(left); }, "A00501 A00502 f907E7F"},
        {"automix B", CkAutoMixTog, "A00503 f907E7F"},
        {"no automix", CkAutoMixTog, "A00500 f807E7F"},
        {"up", [&] { palettes.btUp.onMouseDown(left); }, "A00101 f907A7F"},
        {"up let go", [&] { palettes.btUp.onMouseUp(left); }, "A00100 f807A7F"},
        {"down", [&] { palettes.btDn.onMouseDown(left); }, "A00201 f907B7F"},
        {"down let go", [&] { palettes.btDn.onMouseUp(left); }, "A00200 f807B7F"},
        {"stop", [&] { keys.btStop.onMouseDown(left); }, "A00601 f907F7F"},
        {"stop let go", [&] { keys.btStop.onMouseUp(left); }, "A00600 f807F7F"},
        {"microphone", [&] { keys.btMicPush.onMouseDown(left); }, "A00801 f90797F"},
        {"microphone let go", [&] { keys.btMicPush.onMouseUp(left); }, "A00800 f80797F"},
        {"talk-over", [&] { keys.btMicTO.onMouseDown(left); }, "A00701 f90787F"},
        {"the input's release", [&] { timers().TimerTOrelease.restart(), pass(1000); }, "A00701"},
        {"talk-over ends", TalkOverTog, "A00700 f80787F"},
        {"both in one colour", [&] { same(true), TalkOverTog(), MicPush(); },
         "A00701 f90787F A00801 f90797F"},
        {"the microphone stays open", MicRelease, ""},
        {"until talk-over ends", TalkOverTog, "A00700 f80787F A00800 f80797F"},
        {"a jingle", [&] { press(0); }, "A01001 f90007F"},
        {"let go while it plays", [&] { release(0); }, "f80007F A01004"},
        {"in a state of its own", [&] { midiOut.OutJingleUp[0] = "A01005", release(0); }, "f80007F A01005"},
        {"without", [&] { midiOut.OutJingleUp[0].clear(), release(0); }, "f80007F A01004"},
        {"at its end", [&] { pass(1500); }, "A01002"},
        {"an option takes the press", [&] { SelectorsOn = true, press(0), release(0), SelectorsOn = false; },
         ""},
        {"its end then", [&] { pass(1500); }, "A01002"},
        {"an empty one let go", [&] { release(2); }, "f80027F A01203"},
        {"loaded", [&] { load(2, 100); }, "A01202"},
        {"no sound", [&] { load(2, std::vector<std::int16_t>{}); }, "A01203"},
        {"taken away", [] { openNames(2, "Test", false); }, "A01203"},
        {"all anew", [] { MIDIOutRefresh(0); },
         "A00700 A00800 A00600 A00100 A00200 A00300 A00400 A00500 A01002 A01203"},
        {"and reset", [] { MIDIOutRefresh(-1); },
         "B00000 A00700 A00800 A00600 A00100 A00200 A00300 A00400 A00500 A01002 A01203"},
        {"switched off", [] { ckMIDIEnable_Click(MidiSwitch::input, false); }, "B00000"},
        {"nothing then", [] { MIDIOutRefresh(-1); }, ""},
    };
    for (const auto& event : events) {
        sent();
        event.act();
        EXPECT_EQ(sent(), event.sent) << event.name;
    }
}

TEST_F(DispatchTest, APressThatCannotBeYetIsHeldBackAndTheRestWaitsBehindIt) {
    start(kAll);
    note();
    listEnabled = false;
    send("90017F");
    EXPECT_EQ(asked, "up:2");
    devices_.queue("901064");
    pass(30);
    EXPECT_EQ(asked, "up:2 up:2 up:2 up:2");
    EXPECT_EQ(sent(), "A00101 f907A7F A00101 f907A7F A00101 f907A7F A00101 f907A7F");
    asked.clear();
    listEnabled = true;
    pass(10);
    EXPECT_EQ(asked, "up:2 play:0/100");
}

}  // namespace
}  // namespace zv::test
