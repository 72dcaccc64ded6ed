// The windows of the program, opened and worked as a presenter does.

#include "show.h"

namespace zv::test {
namespace {

constexpr std::size_t kLongestMove = 200;  // ms

TEST(Mixer, ChangesDevicesAndLevelsWhileItSounds) {
    Show show;
    show.tone("tone.wav", 5);
    show.tone("voice.wav", 9, 700, 0.4);
    show.write("palette.ini", "[Test]\r\nPath_0=Audio_Sample\\tone.wav\r\n");
    ASSERT_EQ(show.perform("at 0 mic Audio_Sample/voice.wav\n"
                           "at 100 press 0\n"
                           "at 300 key F2\n"
                           "at 400 answer ok\n"
                           "at 400 set frmMixer.cmbDev(0) 1\n"  // the auxiliary output has it
                           "at 450 expect frmMixer.cmbDev(0).listIndex 0\n"
                           "at 500 set frmMixer.cmbDev(1) 2\n"  // none
                           "at 1000 set frmMixer.cmbDev(0) 1\n"
                           "at 1400 expect frmMixer.VuOut(0).value > 40\n"
                           "at 1400 expect frmMixer.VuIn.visible 0\n"
                           "at 1500 set frmMixer.SlideVolDevice(0) 50\n"
                           "at 1600 expect frmMixer.lblVolDeviceVal(0) 50 %\n"
                           "at 1700 set frmMixer.ckInputEnable 1\n"
                           "at 1900 expect frmMixer.VuIn.value > 30\n"
                           "at 2000 set frmMixer.SlideVolIn(1) 60\n"
                           "at 2050 expect frmMixer.lblVolInVal(0) 60 %\n"
                           "at 2100 set frmMixer.ckVolInLink 0\n"
                           "at 2150 set frmMixer.SlideVolIn(1) 20\n"
                           "at 2200 expect VolumeInMain 60\n"
                           "at 2200 expect VolumeInAux 20\n"
                           "at 2250 set frmMixer.ckVolInLink 1\n"
                           "at 2300 expect VolumeInAux 60\n"
                           "at 2400 set frmMixer.SlideAttnVol 0\n"
                           "at 2500 set frmMixer.SlideFadeOutSpeed 10\n"
                           "at 2600 down btMicPush\n"
                           "at 3200 up btMicPush\n"
                           "at 3300 dblclick frmMixer.SlideVolDevice(0)\n"
                           "at 3400 expect Volume 100\n"
                           "at 3500 set frmMixer.cmbAutoDuckMode 1\n"
                           "at 3500 expect frmMixer.lblFadeInAdvanceVal 500 ms\n"
                           "at 3600 set frmMixer.SlideFadeInAdvance 30\n"
                           "at 3600 expect FadeInAdvance 300\n"
                           "at 3700 answer ok\n"
                           "at 3700 set frmMixer.cmbFreq 48000 Hz\n"
                           "at 3700 expect frmMixer.lblNote \"This change takes effect at the next start.\"\n"
                           "at 3800 key Escape\n"
                           "at 3900 expect frmMixer.visible 0\n"
                           "at 4000 end\n"),
              0)
        << show.messages() << show.result("events.log");
    const Sound first = show.heard("main.wav"), second = show.heard("aux.wav");
    EXPECT_GT(peak(first, framesOf(400), framesOf(990)), 0.49F);
    EXPECT_EQ(peak(first, framesOf(1020), framesOf(4000)), 0) << "the old device rests";
    EXPECT_EQ(peak(second, framesOf(520), framesOf(990)), 0) << "no auxiliary output any more";
    EXPECT_LE(firstSound(second, framesOf(1000)), framesOf(1000 + kLongestMove));
    EXPECT_NEAR(peak(second, framesOf(1250), framesOf(1490)), 0.5F, 0.002F);
    EXPECT_NEAR(peak(second, framesOf(1600), framesOf(2500)), 0.25F, 0.002F)
        << "the microphone is not on air";
    EXPECT_NEAR(peak(second, framesOf(2800), framesOf(3150)), 0.4F * 0.6F * 0.5F, 0.002F)
        << "the voice alone";
    EXPECT_EQ(peak(second, framesOf(3900), framesOf(4000)), 0) << "Escape stops from within the window";
    const std::string ini = contents(show.home() / "zv.ini");
    for (const char* line : {"\nDevice=2\r", "\nDeviceAux=0\r", "\nVolume=100\r", "\nVolumeInMain=60\r",
                             "\nFadeOutSpeed=100\r", "\nAutoDuckMode=1\r", "\nMixerFreq=48000\r"})
        EXPECT_NE(ini.find(line), std::string::npos) << line;
}

TEST(Windows, ClipNoTextInAnyLanguageAtAnyScale) {
    const std::string script =
        "at 100 key F1\nat 200 expect frmShortcuts.clipped\nat 250 key Escape\n"
        "at 300 key F2\nat 400 expect frmMixer.clipped\nat 450 set frmMixer.ckInputEnable 1\n"
        "at 550 expect frmMixer.clipped\nat 600 key Escape\n"
        "at 700 rclick b_Jingle(0)\nat 700 menu mnuRename\nat 800 expect frmRenameFile.clipped\nat 850 key "
        "Escape\n"
        "at 900 rclick b_Jingle(0)\nat 900 menu mnuCol\nat 1000 expect frmColPick.clipped\nat 1050 key "
        "Escape\n"
        "at 1100 resize 800 600\nat 1200 expect frmMain.clipped\n"
        "at 1300 click ckTab(1)\nat 1400 expect frmMain.clipped\nat 1500 click ckTab(2)\n"
        "at 1600 expect frmMain.clipped\nat 1700 click ckTab(3)\nat 1800 expect frmMain.clipped\n"
        "at 1850 click ckTab(0)\nat 1900 resize 1024 600\nat 2000 expect frmMain.clipped\n"
        "at 2000 click ckLoopI\nat 2050 expect frmMain.clipped\nat 2050 click ckLoopI\n"
        "at 2100 mods ctrl\nat 2200 expect frmMain.clipped\nat 2200 mods ctrl shift\n"
        "at 2300 expect frmMain.clipped\nat 2300 mods alt\nat 2400 expect frmMain.clipped\n"
        "at 2400 mods ctrl alt\nat 2500 expect frmMain.clipped\nat 2500 mods shift\n"
        "at 2600 expect frmMain.clipped\nat 2600 resize 800 600\nat 2700 expect frmMain.clipped\n"
        "at 2700 mods\nat 2800 end\n";
    const struct {
        const char* language;
        const char* scale;
    } cases[] = {{"English", "1"}, {"Français", "1"}, {"Deutsch", "1"},
                 {"Español", "1"}, {"Deutsch", "2"},  {"Français", "1.5"}};
    for (const auto& c : cases) {
        Show show;
        show.tone("tone.wav", 1);
        show.write("palette.ini", "[Test]\r\nPath_0=Audio_Sample\\tone.wav\r\n");
        show.write("zv.ini",
                   contents(show.home() / "zv.ini") + "Sealed=1\r\nLanguage=" + c.language + "\r\n");
        setenv("ZENTROVA_SCALE", c.scale, 1);
        EXPECT_EQ(show.perform(script), 0) << c.language << " " << c.scale << "\n" << show.messages();
        unsetenv("ZENTROVA_SCALE");
    }
}

}  // namespace
}  // namespace zv::test
