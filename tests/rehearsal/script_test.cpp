#include "platform/rehearsal/script.h"

#include <gtest/gtest.h>

#include "platform/rehearsal/player.h"

namespace zv {
namespace {

TEST(RehearsalScript, ReadsEveryVerb) {
    struct Row {
        const char* line;
        const char* text;  ///< the action as it is told again
        Verb verb;
        int index;
        int mods;
    };
    const Row rows[] = {
        {"at 0 press 3", "press 3", Verb::press, 3, 0},
        {"at 0 press H2", "press 98", Verb::press, 98, 0},
        {"at 0 down 96", "down 96", Verb::down, 96, 0},
        {"  at 7\tup 119  # comment", "up 119", Verb::up, 119, 0},
        {"at 0 down btMicPush", "down btMicPush", Verb::down, -1, 0},
        {"at 0 up frmFX.btPlay", "up frmFX.btPlay", Verb::up, -1, 0},
        {"at 0 mods ctrl Shift", "mods", Verb::mods, -1, kCtrlMask | kShiftMask},
        {"at 0 mods", "mods", Verb::mods, -1, 0},
        {"at 0 key PageDown", "key PageDown", Verb::key, -1, 0},
        {"at 0 click ckTab(1)", "click ckTab(1)", Verb::click, 1, 0},
        {"at 0 rclick b_Jingle(12)", "rclick b_Jingle(12)", Verb::rclick, 12, 0},
        {"at 0 set txtSave Morning Show", "set txtSave Morning Show", Verb::set, -1, 0},
        {"at 0 set txtSave \"  two  blanks\"", "set txtSave   two  blanks", Verb::set, -1, 0},
        {"at 0 set txtSave", "set txtSave", Verb::set, -1, 0},
        {"at 0 menu mnuLoop", "menu mnuLoop", Verb::menu, -1, 0},
        {"at 0 pick Sample Radio # the first", "pick Sample Radio", Verb::pick, -1, 0},
        {"at 0 pick \"#1 hits\"", "pick #1 hits", Verb::pick, -1, 0},
        {"at 0 midi 903C7f", "midi 903C7f", Verb::midi, -1, 0},
        {"at 0 midi B00740 My pad", "midi My pad B00740", Verb::midi, -1, 0},
        {"at 0 plug midi My pad", "plug midi My pad", Verb::plug, -1, 0},
        {"at 0 unplug midi-in My pad", "unplug midi-in My pad", Verb::unplug, -1, 0},
        {"at 0 unplug Main output", "unplug Main output", Verb::unplug, -1, 0},
        {"at 0 answer yes", "answer yes", Verb::answer, -1, 0},
        {"at 0 drop 5 /tmp/a b.wav", "drop /tmp/a b.wav", Verb::drop, 5, 0},
        {"at 0 time 10:59:50", "time 10:59:50", Verb::time, -1, 0},
        {"at 0 time 2026-02-28 23:59:59", "time 2026-02-28 23:59:59", Verb::time, -1, 0},
        {"at 0 mic voice.wav", "mic voice.wav", Verb::mic, -1, 0},
        {"at 0 shot window.png", "shot frmMain window.png", Verb::shot, -1, 0},
        {"at 0 shot frmFX fx.png", "shot frmFX fx.png", Verb::shot, -1, 0},
        {"at 0 expect lblPosSecU 3", "expect lblPosSecU 3", Verb::expect, -1, 0},
        {"at 0 expect J(3).State != 4", "expect J(3).State != 4", Verb::expect, 3, 0},
        {"at 0 expect lblDate.visible >= 1", "expect lblDate.visible >= 1", Verb::expect, -1, 0},
        {"at 0 expect lblErr", "expect lblErr", Verb::expect, -1, 0},
        {"at 0 expect lblMark =", "expect lblMark =", Verb::expect, -1, 0},
        {"at 0 set frmSett.TxtAmix(2) 800", "set frmSett.TxtAmix(2) 800", Verb::set, 2, 0},
        {"at 0 expect frmFX.lblVolVal 80 %", "expect frmFX.lblVolVal 80 %", Verb::expect, -1, 0},
        {"at 0 expect frmFX.lblVol(1).width < 9", "expect frmFX.lblVol(1).width < 9", Verb::expect, 1, 0},
        {"at 0 expect frmFX.visible 1", "expect frmFX.visible 1", Verb::expect, -1, 0},
        {"at 0 web http://a/ b.mp3 404 audio/mpeg;live", "web http://a/ b.mp3", Verb::web, -1, 0},
        {"at 0 random 10 7", "random", Verb::random, -1, 0},
    };
    for (const Row& row : rows) {
        const Script script = parseScript(std::string(row.line) + "\nat 10 end\n");
        ASSERT_TRUE(script.faults.empty()) << row.line << ": " << script.faults.front().text;
        const Action& action = script.actions.front();
        EXPECT_EQ(action.verb, row.verb) << row.line;
        EXPECT_EQ(action.index, row.index) << row.line;
        EXPECT_EQ(action.mods, row.mods) << row.line;
        EXPECT_EQ(actionText(action), row.text) << row.line;
    }
}

TEST(RehearsalScript, TellsWhatIsWrongAndWhere) {
    struct Row {
        const char* text;
        int line;
        const char* part;  ///< of the message
    };
    const Row rows[] = {
        {"", 0, "no \"end\""},
        {"at 5 press 1\n", 1, "no \"end\""},
        {"press 3\nat 9 end", 1, "begins with \"at\""},
        {"\n\n# three\nat x press 3\nat 9 end", 4, "no whole number"},
        {"at -1 press 3\nat 9 end", 1, "is not in 0"},
        {"at 0 jump 3\nat 9 end", 1, "nothing that can be done"},
        {"at 0 press 120\nat 9 end", 1, "not in 0 to 119"},
        {"at 0 press H24\nat 9 end", 1, "hot jingle"},
        {"at 0 press\nat 9 end", 1, "button is missing"},
        {"at 0 press 3 4\nat 9 end", 1, "too much"},
        {"at 0 mods meta\nat 9 end", 1, "no modifier"},
        {"at 0 key F13\nat 9 end", 1, "no key"},
        {"at 0 click ckTab(1\nat 9 end", 1, "lacks"},
        {"at 0 click lblDate.visible\nat 9 end", 1, "no place here"},
        {"at 0 set txtSave \"open\nat 9 end", 1, "quote is not closed"},
        {"at 0 midi 903C\nat 9 end", 1, "six hexadecimal"},
        {"at 0 plug midi-out\nat 9 end", 1, "device is missing"},
        {"at 0 time 24:00:00\nat 9 end", 1, "no time"},
        {"at 0 time 10:59:60\nat 9 end", 1, "no time"},
        {"at 0 time 2026-02-30 10:00:00\nat 9 end", 1, "no time"},
        {"at 0 expect .visible 1\nat 9 end", 1, "name is missing"},
        {"at 0 expect frmFX.btOK.\nat 9 end", 1, "ends in a point"},
        {"at 0 down frmFX.btOK.left\nat 9 end", 1, "no place here"},
        {"at 0 down H99\nat 9 end", 1, "hot jingle"},
        {"at 0 web http://a/\nat 9 end", 1, "\"hang\" is missing"},
        {"at 0 web http://a/ b 99\nat 9 end", 1, "status"},
        {"at 9 press 1\nat 5 press 2\nat 9 end", 2, "comes before the 9 of line 1"},
        {"at 9 end\nat 9 press 1", 2, "nothing may follow"},
    };
    for (const Row& row : rows) {
        const Script script = parseScript(row.text);
        ASSERT_FALSE(script.faults.empty()) << row.text;
        EXPECT_EQ(script.faults.front().line, row.line) << row.text;
        EXPECT_NE(script.faults.front().text.find(row.part), std::string::npos) << script.faults.front().text;
    }
}

}  // namespace
}  // namespace zv
