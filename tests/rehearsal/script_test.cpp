#include "platform/rehearsal/script.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

#include "platform/http.h"
#include "platform/rehearsal/player.h"
#include "platform/rehearsal/virtual_clock.h"
#include "platform/rehearsal/web.h"
#include "tests/support/places.h"

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
        {"at 0 press 1 2\nat 9 end", 1, "\"2\" is too much"},
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
        {"at 0 web http://a/\nat 9 end", 1, "\"hang\" is missing"},
        {"at 0 web http://a/ b 99\nat 9 end", 1, "status"},
        {"at 9 press 1\nat 5 press 2\nat 9 end", 2, "comes before the 9 of line 1"},
        {"at 9 end\nat 9 press 1", 2, "nothing may follow"},
        {"at 172800001 end", 1, "is not in 0 to 172800000"},
        {"at 0 resize 0 1\nat 9 end", 1, "width 0 is not in 1 to 8192"},
        {"at 0 resize 8192 8193\nat 9 end", 1, "height 8193 is not in 1 to 8192"},
        {"at 0 grid 3 4\nat 9 end", 1, "rows 3 is not in 4 to 8"},
        {"at 0 grid 8 13\nat 9 end", 1, "columns 13 is not in 4 to 12"},
        {"at 0 random 0 1\nat 9 end", 1, "count 0 is not in 1 to 10000000"},
        {"at 0 chaos 1 -1\nat 9 end", 1, "seed -1 is not in 0"},
        {"at 0 web http://a/ b 600\nat 9 end", 1, "status 600 is not in 100 to 599"},
        {"at 0 click ckTab(1001)\nat 9 end", 1, "index 1001 is not in 0 to 1000"},
        {"at 0 key F0\nat 9 end", 1, "\"F0\" is no key"},
        {"at 0 key f\nat 9 end", 0, ""},
        {"at 0 key !\nat 9 end", 1, "no key"},
        {"at 0 set txtSave \"a\" b\nat 9 end", 1, "\"b\" is too much"},
        {"at 0 mods ctrl meta\nat 9 end", 1, "\"meta\" is no modifier key (ctrl, shift, alt)"},
        {"\xEF\xBB\xBF# a mark\r\nat 0 grid 4 4\r\nat 0 resize 1 1\r\nat 172800000 end\r\n", 0, ""},
    };
    for (const Row& row : rows) {
        const Script script = parseScript(row.text);
        EXPECT_EQ(script.faults.empty(), *row.part == 0) << row.text;
        if (script.faults.empty()) continue;
        EXPECT_EQ(script.faults.front().line, row.line) << row.text;
        EXPECT_NE(script.faults.front().text.find(row.part), std::string::npos) << script.faults.front().text;
    }
}

TEST(RehearsalScript, SaysWhatItHasRead) {
    // A line, and the event log's words for it where they differ.
    const std::pair<const char*, const char*> rows[] = {
        {"down frmFX.btOK", ""},
        {"set frmFX.lblGain(2) \" 1.5 \"", "set frmFX.lblGain(2)  1.5 "},
        {"midi 903C7F Pad", "midi Pad 903C7F"},
        {"unplug midi-in \"My Pad\"", "unplug midi-in My Pad"},
        {"web http://a/ b.mp3 404 audio/mpeg;live", "web http://a/ b.mp3"},
        {"expect lblDate.visible 1", ""},
        {"expect J(0).State <= 2", ""},
        {"expect txtDisPal = A  # the first", "expect txtDisPal A"},
        {"set txtSave \"a # b\"\t# c", "set txtSave a # b"},
        {"set txtSave a#b", ""},
        {"expect txtDisPal =A", ""},
        {"down h5", "down 101"},
        {"down Help", ""},
        {"shot a.png", "shot frmMain a.png"},
        {"shot frmFX a.png", ""},
        {"resize 1280 800", ""},
        {"grid 8 12", ""},
        {"drop 7 a.wav", "drop a.wav"},
    };
    for (const auto& [line, said] : rows) {
        const Script script = parseScript("at 70 " + std::string(line) + "\nat 70 end");
        ASSERT_TRUE(script.faults.empty()) << line << ": " << script.faults.front().text;
        EXPECT_EQ(actionText(script.actions[0]), *said == 0 ? line : said);
        EXPECT_EQ(script.actions[0].at, 70);
    }
    std::string keys;
    for (const char* name : {"backspace", "Tab",  "enter", "escape", "ESC",   "space", "PageUp", "pagedown",
                             "end",       "home", "left",  "up",     "right", "down",  "insert", "delete",
                             "a",         "Z",    "0",     "f",      "F1",    "f12"})
        keys += std::to_string(static_cast<int>(keyByName(name))) + " ";
    EXPECT_EQ(keys, "8 9 13 27 27 32 33 34 35 36 37 38 39 40 45 46 65 90 48 70 112 123 ");
    const auto first = [](const char* text) { return parseScript(text).actions.at(0); };
    const Action web = first("at 0 web http://a/ b 404 audio/mpeg;live\nat 1 end");
    EXPECT_EQ(web.number, 404);
    EXPECT_EQ(web.property, "audio/mpeg;live");
    EXPECT_EQ(first("at 0 web http://a/ off\nat 1 end").number, 200);
    EXPECT_EQ(first("at 0 mods ctrl Alt\nat 1 end").mods, kCtrlMask | kAltMask);
    EXPECT_EQ(first("at 0 mods shift\nat 1 end").mods, kShiftMask);
    EXPECT_EQ(first("at 0 drop 7 a.wav\nat 1 end").index, 7);
}

/// Requests of the program's own; streams are in the shows.
TEST(RehearsedWeb, AnswersRequestsAsTheLongestRuleSays) {
    const std::string news = test::sourceDir() + "/data/first_start.ini", copy = "rehearsed_web.copy";
    VirtualClock& clock = VirtualClock::instance();
    RehearsedWeb& web = RehearsedWeb::instance();
    std::string told;
    web.onRequest = [&](auto& method, auto&, auto& body) { told = method + body + " "; };
    web.answer("http://a/", {WebRule::Kind::file, news, 200, ""});
    web.answer("http://a/gone", {WebRule::Kind::file, news, 404, ""});
    web.answer("http://a/gone/slow", {WebRule::Kind::hang, "", 200, ""});
    for (const auto& [url, expected] : {std::pair("http://a/x", "POST=1 100% 200 after 90"),
                                        {"http://a/gone", "POST=1 100% 404 after 90"},
                                        {"http://a/gone/slow/1", "POST=1 0 timed out after 3020"},
                                        {"http://b/", "POST=1 0 connection refused after 20"}}) {
        const std::int64_t start = clock.now();
        const Job job = startRequest(
            {"POST", url, "=1", {}, 3000, copy},
            [&](const HttpReply& r) {
                told += std::to_string(r.status) + (r.error.empty() ? "" : " " + r.error) + " after " +
                        std::to_string(clock.now() - start);
            },
            [&](int percent) { told += std::to_string(percent) + "% "; });
        clock.advanceTo(start + 4000);
        EXPECT_EQ(std::exchange(told, {}), expected) << url;
    }
    EXPECT_EQ(std::filesystem::file_size(copy), std::filesystem::file_size(news));
    std::filesystem::remove(copy);
    web.onRequest = nullptr;
}

}  // namespace
}  // namespace zv
