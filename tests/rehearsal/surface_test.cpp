// A control surface in a whole show: what it plays is heard at its ms, what it is sent stands in midi.log.

#include "show.h"

namespace zv::test {
namespace {

TEST(Surface, PlaysGlowsAndComesBack) {
    Show show;
    show.tone("tone.wav", 0.2);
    show.write("palette.ini", "[Test]\r\nPath_0=Audio_Sample\\tone.wav\r\n");
    show.write("zv.ini", contents(show.home() / "zv.ini") + "MIDIDevice=Pad\r\n");
    show.write(
        "MIDI.ini",
        "[Pad]\r\nJingle0=903C,803C40,255\r\nOutReset=B00000\r\nOutJingle0=903C01,903C02,903C03,903C04\r\n");
    ASSERT_EQ(show.perform("at 503 midi 903C7F\n"
                           "at 603 midi 803C40 Pad\n"
                           "at 1500 unplug midi Pad\n"
                           "at 1600 midi 903C7F\n"  // nobody hears it
                           "at 2600 expect lblMIDIDevice \"No MIDI device\"\n"
                           "at 4500 plug midi Pad\n"
                           "at 7000 midi 903C7F\n"
                           "at 7100 expect lblMIDIDevice Pad\n"
                           "at 8000 end\n",
                           "--midi Pad"),
              0)
        << show.messages();
    const Sound heard = show.heard();
    EXPECT_NEAR(static_cast<double>(firstSound(heard, 0)), static_cast<double>(framesOf(503)),
                static_cast<double>(framesOf(10)));
    EXPECT_EQ(peak(heard, framesOf(1000), framesOf(7000)), 0);
    EXPECT_GT(peak(heard, framesOf(7010), framesOf(7100)), 0.1F);
    std::string log = show.result("midi.log");
    const std::size_t shown = log.find("503\t");
    ASSERT_NE(shown, std::string::npos) << log;
    EXPECT_EQ(log.substr(0, shown).find("start\tPad\tB00000\n"), 0U) << log;
    const std::string told = log.substr(shown);
    EXPECT_TRUE(told.starts_with("503\tPad\t903C01\n603\tPad\t903C04\n")) << told;
    const std::size_t back = told.find("B00000\n");
    ASSERT_NE(back, std::string::npos) << told;
    EXPECT_NE(told.find("903C02\n", back), std::string::npos) << told;
    EXPECT_TRUE(told.ends_with("\tPad\tB00000\n")) << told;  // the lamps go dark at the end
}

}  // namespace
}  // namespace zv::test
