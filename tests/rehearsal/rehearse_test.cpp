// The rehearsal itself: its statuses, its messages, and that it is the same each time.

#include <utility>

#include "show.h"

namespace zv::test {
namespace {

TEST(Rehearse, TellsAFailedExpectationWithItsLineAndABadScriptBeforeAnythingIsDone) {
    Show show;
    EXPECT_EQ(show.perform("at 0 expect btStop.caption STOP\nat 10 expect lstPal.items nothing\nat 20 end\n"),
              1);
    EXPECT_NE(show.messages().find("script.txt:2: at 10: expect lstPal.items nothing: it is \"\""),
              std::string::npos)
        << show.messages();
    EXPECT_NE(show.result("events.log").find("\tfailed\texpect lstPal.items nothing"), std::string::npos);
    EXPECT_EQ(show.perform("at 0 click btNowhere\nat 20 end\n"), 1);
    EXPECT_NE(show.messages().find("there is no control btNowhere"), std::string::npos) << show.messages();
    EXPECT_EQ(show.perform("at 0 click\nat 20 press 400\nat 30 end\n"), 2);
    EXPECT_NE(show.messages().find("script.txt:1: "), std::string::npos) << show.messages();
    EXPECT_NE(show.messages().find("script.txt:2: "), std::string::npos) << show.messages();
    EXPECT_EQ(show.perform("at 0 end\n", "--faster"), 2);
    EXPECT_NE(show.messages().find("usage: rehearse"), std::string::npos) << show.messages();
}

TEST(Rehearse, AnswersBoxesAndMenusAsPrepared) {
    Show show;
    show.tone("tone.wav", 1);
    show.write("palette.ini", "[Test]\r\nPath_0=Audio_Sample\\tone.wav\r\n");
    const int status = show.perform(
        "at 100 rclick b_Jingle(0)\n"
        "at 150 expect J(0).Loop 0\n"
        "at 200 menu mnuLoop\n"
        "at 250 expect J(0).Loop 1\n"
        "at 300 rclick b_Jingle(0)\n"
        "at 350 press 0\n"  // a click elsewhere closes the menu, and is done
        "at 450 expect J(0).State 1\n"
        "at 500 press 0\n"
        "at 600 answer no\n"
        "at 610 rclick b_Jingle(0)\n"
        "at 620 menu mnuClr\n"
        "at 650 expect J(0).Path Audio_Sample\\tone.wav\n"
        "at 700 answer yes\n"
        "at 710 rclick b_Jingle(0)\n"
        "at 720 menu mnuClr\n"
        "at 750 expect J(0).Path \"\"\n"
        "at 800 end\n");
    EXPECT_EQ(status, 0) << show.messages() << show.result("events.log");
}

TEST(Rehearse, LinesGoOnWhileAQuestionOrAMenuWaits) {
    Show show;
    show.tone("tone.wav", 9);
    show.tone("other.wav", 9, 500);
    show.write("palette.ini",
               "[Test]\r\nPath_0=Audio_Sample\\tone.wav\r\nPath_1=Audio_Sample\\other.wav\r\nPath_2=Audio_"
               "Sample\\other.wav\r\n");
    const int status = show.perform(
        "at 0 press 0\n"
        "at 100 rclick b_Jingle(1)\n"
        "at 110 mods ctrl\n"  // held modifiers close no menu
        "at 200 mods\n"
        "at 300 menu mnuClr\n"  // asks
        "at 400 pick Test\n"    // a mouse does not get there
        "at 400 set lstPal 0\n"
        "at 400 rclick b_Jingle(0)\n"
        "at 400 key PageDown\n"
        "at 500 expect J(0).State 1\n"
        "at 500 down btStop\n"  // STOP does
        "at 510 up btStop\n"
        "at 900 expect J(0).State 0\n"
        "at 1000 press 0\n"  // and so does a plain press
        "at 1100 expect J(0).State 1\n"
        "at 1200 expect J(1).Path Audio_Sample\\other.wav\n"
        "at 1300 answer yes\n"
        "at 1400 expect J(1).Path \"\"\n"
        "at 1500 rclick b_Jingle(2)\n"
        "at 1510 menu mnuClr\n"
        "at 1600 key Escape\n"  // stops, and declines
        "at 2000 expect J(0).State 0\n"
        "at 2000 expect J(2).Path Audio_Sample\\other.wav\n"
        "at 2100 answer no\n"
        "at 2200 key F1\n"
        "at 2300 expect frmShortcuts.visible 1\n"
        "at 2300 expect frmMain.btStop.visible 1\n"
        "at 2400 end\n");
    EXPECT_EQ(status, 0) << show.messages() << show.result("events.log");
    const std::string events = show.result("events.log"), state = show.result("state.json");
    for (const char* line :
         {"400\tignored\tpick Test", "400\tignored\tset lstPal 0", "400\tignored\trclick b_Jingle(0)"})
        EXPECT_NE(events.find(line), std::string::npos) << line << "\n" << events;
    EXPECT_NE(state.find("\"windows\": [\"frmMain\", \"frmShortcuts\"]"), std::string::npos)
        << state.substr(0, 400);
}

TEST(Rehearse, ComparesAsItSays) {
    Show show;
    show.tone("tone.wav", 1);
    show.write("palette.ini", "[Test]\r\nPath_0=Audio_Sample\\tone.wav\r\nVolm_0=50\r\n");
    const struct {
        const char* sign;
        bool below, same, above;  ///< whether it holds of 50 and a value below, the same and above
    } rows[] = {{"=", false, true, false}, {"!=", true, false, true}, {"<", false, false, true},
                {"<=", false, true, true}, {">", true, false, false}, {">=", true, true, false}};
    std::string script, failing;
    int line = 0;
    for (const auto& row : rows) {
        const std::pair<bool, const char*> values[] = {
            {row.below, "49.5"}, {row.same, "50"}, {row.above, "50.5"}};
        for (const auto& [holds, value] : values) {
            ++line;
            script += std::string("at 0 expect J(0).Volm ") + row.sign + " " + value + "\n";
            if (!holds) failing += ":" + std::to_string(line) + ": ";
        }
    }
    EXPECT_EQ(show.perform(script + "at 0 end\n", "--no-sound"), 1);
    std::string told;
    const std::string messages = show.messages();
    for (std::size_t at = 0; (at = messages.find("script.txt:", at)) != std::string::npos; ++at) {
        const std::size_t number = at + 11;
        told += ":" + messages.substr(number, messages.find(':', number) - number) + ": ";
    }
    EXPECT_EQ(told, failing) << messages;
}

TEST(Rehearse, TypesSelectsAndPressesKeysThroughTheWidgets) {
    Show show;
    show.tone("tone.wav", 1);
    show.write("palette.ini",
               "[Other]\r\nPath_3=Audio_Sample\\tone.wav\r\n[Test]\r\nPath_0=Audio_Sample\\tone.wav\r\n");
    const int status = show.perform(
        "at 0 expect lstPal Test\n"
        "at 100 set lstPal 0\n"
        "at 200 expect PaletteIndex Other\n"
        "at 200 expect J(3).Kind 1\n"
        "at 300 key PageDown\n"
        "at 600 expect PaletteIndex Test\n"
        "at 700 click btSave\n"
        "at 800 expect txtSave.visible 1\n"
        "at 900 set txtSave Another Name\n"
        "at 1000 key Enter\n"
        "at 1200 expect lstPal.items Another Name|Other|Test\n"
        "at 1300 mods alt\n"
        "at 1500 expect lblDispMessage.visible 1\n"
        "at 1600 mods\n"
        "at 1800 expect lblDispMessage.visible 0\n"
        "at 1900 key T\n"
        "at 2000 expect Touch 1\n"
        "at 2100 end\n");
    EXPECT_EQ(status, 0) << show.messages() << show.result("events.log");
    EXPECT_NE(contents(show.home() / "palette.ini").find("[Another Name]"), std::string::npos);
}

TEST(Rehearse, TakesDevicesAwayAndBringsThemBack) {
    Show show;
    show.tone("tone.wav", 4);
    show.write("palette.ini", "[Test]\r\nPath_0=Audio_Sample\\tone.wav\r\n");
    EXPECT_EQ(
        show.perform("at 0 press 0\nat 1000 unplug Main output\nat 2000 plug Main output\nat 3000 end\n"), 0)
        << show.messages();
    const Sound main = show.heard("main.wav"), aux = show.heard("aux.wav");
    EXPECT_EQ(peak(main, framesOf(1020), framesOf(1990)), 0);
    for (const char* file : {"main.wav", "aux.wav"}) {
        // What any other program reads of it: float, stereo, the rate, and sizes that fit the file.
        const std::string wav = show.result(file);
        const auto number = [&](std::size_t at, int bytes) {
            std::uint32_t value = 0;
            for (int i = bytes - 1; i >= 0; --i)
                value = value << 8 | static_cast<unsigned char>(wav[at + static_cast<std::size_t>(i)]);
            return value;
        };
        const std::size_t format = wav.find("fmt "), data = wav.find("data");
        ASSERT_TRUE(wav.starts_with("RIFF") && wav.compare(8, 4, "WAVE") == 0 && data != std::string::npos);
        EXPECT_EQ(number(4, 4), wav.size() - 8);
        EXPECT_EQ(number(format + 8, 2), 3U);
        EXPECT_EQ(number(format + 10, 2), 2U);
        EXPECT_EQ(number(format + 12, 4), kRate);
        EXPECT_EQ(number(format + 16, 4), kRate * 8);
        EXPECT_EQ(number(format + 20, 2), 8U);
        EXPECT_EQ(number(format + 22, 2), 32U);
        EXPECT_EQ(number(data + 4, 4), wav.size() - data - 8);
        EXPECT_EQ(number(data + 4, 4), framesOf(3000) * 8);
    }
    for (double ms = 50; ms < 2900; ms += 100) {
        EXPECT_GT(peak(aux, framesOf(ms), framesOf(ms + 10)), 0.49F) << "the other output goes on, at " << ms;
        if (ms < 1000 || ms > 2100) {
            EXPECT_GT(peak(main, framesOf(ms), framesOf(ms + 10)), 0.49F) << ms;
        }
    }
}

TEST(Rehearse, GivesTheSameBytesEachTime) {
    const std::string script =
        "at 0 random 150 9\n"
        "at 9000 shot window.png\n"
        "at 9000 end\n";
    const char* const files[] = {"main.wav", "aux.wav", "midi.log", "events.log", "state.json", "window.png"};
    std::string first[std::size(files)];
    for (int round = 0; round < 2; ++round) {
        Show show;
        const std::string data = test::sourceDir() + "/data";
        for (const char* name : {"palette.ini", "HotJingles.ini"})
            std::filesystem::copy(data + "/" + name, show.home() / name);
        std::filesystem::copy(data + "/Audio_Sample", show.home() / "Audio_Sample",
                              std::filesystem::copy_options::recursive);
        ASSERT_EQ(show.perform(script), 0) << show.messages();
        for (std::size_t i = 0; i < std::size(files); ++i) {
            std::string text = show.result(files[i]);
            EXPECT_TRUE(!text.empty() || std::string(files[i]) == "midi.log") << files[i];
            // The folder has another name each time.
            for (std::size_t at; (at = text.find(show.home().string())) != std::string::npos;)
                text.replace(at, show.home().string().size(), "HOME");
            if (round == 0)
                first[i] = text;
            else
                EXPECT_TRUE(text == first[i]) << files[i] << " differs";
        }
        if (round == 1) {
            EXPECT_GT(peak(show.heard(), 0, framesOf(9000)), 0.1F) << "chance has pressed something";
        }
    }
}

TEST(Rehearse, PerformsTheFirstShow) {
    Show show;
    const std::string data = test::sourceDir() + "/data";
    std::filesystem::remove(show.home() / "zv.ini");
    for (const char* name : {"palette.ini", "HotJingles.ini"})
        std::filesystem::copy(data + "/" + name, show.home() / name);
    std::filesystem::copy(data + "/Audio_Sample", show.home() / "Audio_Sample",
                          std::filesystem::copy_options::recursive);
    EXPECT_EQ(show.perform(contents(data + "/rehearsals/first-show.txt")), 0)
        << show.messages() << show.result("events.log");
}

}  // namespace
}  // namespace zv::test
