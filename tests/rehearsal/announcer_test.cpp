// The time announcer: its moment, its jingle, and the clock that is set.

#include "show.h"

namespace zv::test {
namespace {

constexpr double kPeriodMs = 10;

class Announcer : public testing::Test {
  protected:
    Announcer() {
        show.tone("news.wav", 3, 1000, 0.5);
        show.tone("after.wav", 2, 500, 0.25);
        show.tone("bed.wav", 60, 300, 0.125);
        show.palette({"after.wav", "bed.wav"}, "Volm_0=50\r\n");
    }
    void perform(const std::string& script, const std::string& arguments = {}, const std::string& more = {}) {
        show.write("zv.ini", "[Settings]\r\n" + more +
                                 "TimeAnnouncer=Audio_Sample\\news.wav\r\nActiveTab=1\r\nTimeAnnDel=2\r\n"
                                 "AutoMixTime=500\r\nConfirmExit=0\r\nVolLive=100\r\nFadeInSpeed=10\r\n");
        show.passes(script, arguments);
    }

    Show show;
};

TEST_F(Announcer, StandsOnItsSecondAndTheJingleOnItsOwn) {
    perform(
        "at 0 expect DTMinute.enabled 0\n"
        "at 0 time 10:59:50\n"
        "at 130 key N\n"
        "at 150 expect DTMinute.enabled 1\n"
        "at 160 key C\n"
        "at 300 press 0\n"
        "at 350 expect J(0).State 0\n"
        "at 350 expect b_tmAnJin.caption \"after  2.0\"\n"
        "at 5500 shot on-air.png\n"
        "at 12000 end\n");
    EXPECT_NE(show.result("state.json").find("11:59:55"), std::string::npos) << "the next one";
    const Heard heard = show.heard();
    EXPECT_NEAR(soundsAt(heard), 5000, kPeriodMs);
    // Beside the announcement, which ends at 8000, the jingle stands from 7000 to 9000.
    EXPECT_NEAR(peak(heard, 6000, 6990), 0.5, 0.01);
    EXPECT_NEAR(peak(heard, 7020, 7900), 0.59, 0.005) << "at its own volume";
    EXPECT_NEAR(peak(heard, 8050, 8950), 0.125, 0.01);
    EXPECT_LT(peak(heard, 9100, 1e6), 1e-4F);
}

TEST_F(Announcer, MarksTakeTheRestDown) {
    perform(
        "at 0 time 10:59:50\n"
        "at 0 web http://radio/ " +
        show.sound("bed.wav") +
        " 200 audio/wav;live\n"
        "at 100 click ckTmAnn\n"
        "at 200 click ckTmAnnAM\n"
        "at 300 key F7\n"
        "at 400 set cmbStream http://radio/\n"
        "at 400 click ckPlayStream\n"
        "at 1500 click ckMixByTa\n"
        "at 2000 press 1\n"
        "at 5700 expect ckPlayStream.caption Play\n"
        "at 5700 expect J(1).State 0\n"
        "at 5800 end\n");
    const Heard heard = show.heard();
    EXPECT_GT(peak(heard, 4800, 4990), 0.2F);
    EXPECT_NEAR(peak(heard, 5620, 5790), 0.5, 0.01);
}

TEST_F(Announcer, SlowOncePerHourOfADay) {
    std::string script = "at 0 time 2026-02-28 22:59:00\nat 500 click ckTmAnn\n";
    for (int hour = 0; hour < 24; ++hour) {
        const int moment = (hour * 3600 + 55) * 1000;
        const auto expects = [&](int ms, const std::string& compare) {
            script +=
                "at " + std::to_string(moment + ms) + " expect ckTmAnn.backColor " + compare + " 12648384\n";
        };
        expects(-100, "!="), expects(200, "="), expects(2900, "="), expects(3200, "!=");
    }
    perform(script + "at 86400000 end\n", "--no-sound");
}

TEST_F(Announcer, OncePerHourOverClocksThatAreSet) {
    perform(
        "at 0 time 10:59:50\n"
        "at 100 click ckTmAnn\n"
        "at 10000 time 09:59:50\n"  // an hour back: once more
        "at 20300 time 10:59:54\n"  // on: its own
        "at 30000 time 11:30:00\n"
        "at 31000 time 13:00:00\n"             // over a moment: once less
        "at 32000 time 2026-02-28 23:59:50\n"  // the day ends with it
        "at 42000 end\n");
    const Heard heard = show.heard();
    std::vector<double> starts;
    for (double at = soundsAt(heard); at < 42'000; at = soundsAt(heard, at + 3100)) starts.push_back(at);
    ASSERT_EQ(starts.size(), 4U);
    EXPECT_NEAR(starts[0], 5000, kPeriodMs);
    EXPECT_NEAR(starts[1], 15000, kPeriodMs);
    EXPECT_NEAR(starts[2], 21300, kPeriodMs);
    EXPECT_NEAR(starts[3], 37000, kPeriodMs);
}

TEST_F(Announcer, RefusesAFileThatIsNotThereAndIsStoppedByStop) {
    perform(
        "at 0 time 10:59:50\n"
        "at 100 click ckTmAnn\n"
        "at 200 expect DTMinute.enabled 1\n"
        "at 300 set DTDelay 9\n"
        "at 350 expect DTDelay 3\n"  // no longer than the announcement
        "at 6000 click btStop\n"
        "at 6100 expect DTMinute.enabled 0\n"
        "at 6500 end\n");
    EXPECT_LT(peak(show.heard(), 6050, 6500), 1e-4F);
    // The window with its file opens; another one arms it, and is kept.
    perform(
        "at 100 click ckTmAnn\n"
        "at 200 expect DTMinute.enabled 0\n"
        "at 200 expect frmSett.btSound.foreColor 255\n"
        "at 300 answer " +
            show.sound("after.wav") +
            "\nat 300 click frmSett.btSound\n"
            "at 500 expect DTMinute.enabled 1\n"
            "at 500 expect frmSett.btSound.foreColor -1\n"
            "at 600 click frmSett.btOK\n"
            "at 700 end\n",
        {}, "TimeAnnouncer=Audio_Sample\\nothing.wav\r\n");
    EXPECT_NE(show.contentsOf("zv.ini").find("TimeAnnouncer=Audio_Sample\\after.wav"), std::string::npos);
    EXPECT_NE(show.result("events.log").find("The time announcement could not be loaded"), std::string::npos);
}

}  // namespace
}  // namespace zv::test
