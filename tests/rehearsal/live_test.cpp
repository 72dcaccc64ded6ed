// The live stream as a presenter meets it.

#include "show.h"

namespace zv::test {
namespace {

class Live : public testing::Test {
  protected:
    Live() {
        show.tone("tone.wav", 2, 1000, 0.5);
        show.tone("jingle.wav", 8, 500, 0.25);
        show.palette({"jingle.wav"});
        show.write("list.pls", "[playlist]\r\nFile1=http://nobody/\r\nFile2=http://radio/live\r\n");
        show.write("urls.txt", "http://radio/live\r\n");
    }
    void perform(const std::string& script, const std::string& settings = {}) {
        show.write(
            "zv.ini",
            "[Settings]\r\nVolLive=100\r\nFadeInSpeed=100\r\nFadeOutSpeed=200\r\nActiveTab=2\r\n" + settings);
        show.passes(
            "at 0 web http://radio/live Audio_Sample/tone.wav 200 audio/wav;live\n"
            "at 0 web http://once/ Audio_Sample/tone.wav\nat 0 web http://list/ list.pls\n"
            "at 0 web http://silent/ hang\n" +
            script);
    }

    Show show;
};

TEST_F(Live, GoesOnAirFadesOutAndIsRemembered) {
    perform(
        "at 0 expect lblStream Not connected\n"
        "at 100 set cmbStream HTTP://radio/live\n"
        "at 100 web HTTP://radio/live Audio_Sample/tone.wav 200 audio/wav;live\n"
        "at 200 click ckPlayStream\n"
        "at 205 expect lblStream Connecting…\n"
        "at 205 expect cmbStream.enabled 0\n"
        "at 1000 expect lblStream \"On air: HTTP://radio/live - connected\"\n"
        "at 2000 set SlideVolLive 50\n"
        "at 2500 click btCoefVolLive\n"
        "at 2500 expect btCoefVolLive.caption x2\n"
        "at 3000 click ckPlayStream\n"
        "at 3250 expect ckPlayStream.caption Play\n"
        "at 3400 end\n");
    const Heard heard = show.heard();
    EXPECT_LT(soundsAt(heard), 700);
    EXPECT_NEAR(peak(heard, 1500, 1900), 0.5, 0.01);
    EXPECT_NEAR(peak(heard, 2200, 2400), 0.25, 0.01);
    EXPECT_NEAR(peak(heard, 2700, 2900), 0.5, 0.01);
    EXPECT_LT(peak(heard, 3210, 1e6), 1e-4F);
    EXPECT_EQ(show.contentsOf("urls.txt"), "http://radio/live\r\nHTTP://radio/live\r\n");
    EXPECT_NE(show.contentsOf("zv.ini").find("StreamPoint=HTTP://radio/live"), std::string::npos);
}

TEST_F(Live, AConnectionThatHangsHoldsNothingUpAndIsGivenUp) {
    perform(
        "at 0 set cmbStream http://silent/\n"
        "at 100 click ckPlayStream\n"
        "at 1000 press 0\n"
        "at 2000 click ckPlayStream\n"  // given up by hand
        "at 2005 expect lblStream Not connected\n"
        "at 2005 expect ckPlayStream.caption Play\n"
        "at 3000 click ckPlayStream\n"
        "at 12900 expect ckPlayStream.caption Stop\n"
        "at 13300 expect ckPlayStream.caption Play\n"
        "at 13300 expect lblStream \"The station does not answer: Stream error\"\n"
        "at 13300 expect cmbStream.caption \"The station does not answer: Stream error\"\n"
        "at 14000 click ckPlayStream\n"  // the same once more
        "at 14005 expect cmbStream.caption http://silent/\n"
        "at 14010 click btStop\n"
        "at 14020 expect ckPlayStream.caption Play\n"
        "at 15000 set cmbStream http://refused/\n"
        "at 15000 click ckPlayStream\n"
        "at 15500 expect lblStream \"The address cannot be opened: Stream error\"\n"
        "at 16000 set cmbStream somewhere\n"
        "at 16000 click ckPlayStream\n"
        "at 16100 expect lblStream This is neither a web address nor an audio input\n"
        "at 16100 expect ckPlayStream.caption Stop\n"
        "at 16200 click ckPlayStream\n"
        "at 16400 expect ckPlayStream.caption Play\n"
        "at 16500 end\n");
    EXPECT_NEAR(soundsAt(show.heard()), 1007, 8);
    EXPECT_EQ(show.contentsOf("urls.txt"), "http://radio/live\r\n");
}

TEST_F(Live, PlaylistsInputsAndTheList) {
    perform(
        "at 0 set cmbStream http://list/a.pls\n"
        "at 100 click ckPlayStream\n"
        "at 900 expect lblStream \"On air: http://list/a.pls - connected\"\n"
        "at 1000 click btStop\n"
        "at 1100 set cmbStream Microphone\n"
        "at 1100 expect btRemUrl.enabled 0\n"
        "at 1100 mic Audio_Sample/jingle.wav\n"
        "at 1200 click ckPlayStream\n"
        "at 1900 expect lblStream \"On air: Microphone - connected\"\n"
        "at 2000 click ckPlayStream\n"
        "at 2400 expect ckPlayStream.caption Play\n"
        "at 2500 set cmbStream http://list/a.pls\n"
        "at 2500 answer yes\n"
        "at 2500 click btRemUrl\n"
        "at 2600 expect cmbStream.caption \"\"\n"
        "at 2600 expect ckPlayStream.enabled 0\n"
        "at 2700 set cmbStream \"Audio inputs        \"\n"  // their title
        "at 2700 expect ckPlayStream.enabled 0\n"
        "at 2800 end\n");
    const Heard heard = show.heard();
    EXPECT_GT(peak(heard, 700, 990), 0.4F);
    EXPECT_NEAR(peak(heard, 1700, 1990), 0.25, 0.01);
    EXPECT_EQ(show.contentsOf("urls.txt"), "http://radio/live\r\n");
}

TEST_F(Live, ABreakIsToldAndTakenUpAgainOnlyWhereThatIsWanted) {
    const std::string script =
        "at 0 set cmbStream http://once/\n"
        "at 100 click ckPlayStream\n"
        "at 1000 web http://once/ off\n";
    perform(script +
            "at 4000 expect lblStream The stream is gone\n"
            "at 4000 expect ckPlayStream.caption Stop\n"
            "at 60000 end\n");
    EXPECT_EQ(show.result("web.log").find('\n'), show.result("web.log").size() - 1);
    perform(script +
                "at 2700 expect lblStream \"The stream broke off. Again in 1 s\"\n"
                "at 40000 web http://once/ Audio_Sample/tone.wav 200 audio/wav;live\n"
                "at 50000 expect lblStream \"On air: http://once/ - connected\"\n"
                "at 51000 click ckPlayStream\n"
                "at 52000 expect ckPlayStream.caption Play\n"
                "at 90000 end\n",
            "LiveReconnect=1\r\n");
    // Seconds between the attempts, each with what the refusal and the watch take.
    std::vector<long> at;
    const std::string log = show.result("web.log");
    for (std::size_t line = 0; line < log.size(); line = log.find('\n', line) + 1)
        at.push_back(std::stol(log.substr(line)));
    ASSERT_EQ(at.size(), 7U) << log;
    const long waits[] = {1, 2, 4, 8, 15};
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(static_cast<double>(at[i + 2] - at[i + 1]), static_cast<double>(waits[i + 1] * 1000), 450)
            << log;
}

TEST_F(Live, GoesDownForAJingleThatCrossfades) {
    perform(
        "at 0 set cmbStream http://radio/live\n"
        "at 100 click ckPlayStream\n"
        "at 2000 press 0\n"
        "at 3600 expect ckPlayStream.caption Play\n"
        "at 3700 end\n",
        "AutoMix=1\r\nAutoMixTime=1500\r\n");
    EXPECT_NEAR(peak(show.heard(), 3560, 3690), 0.25, 0.01);
}

}  // namespace
}  // namespace zv::test
