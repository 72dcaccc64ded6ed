#include "platform/rehearsal/script.h"

#include <gtest/gtest.h>

#include "platform/rehearsal/player.h"

namespace zv {
namespace {

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
