// The texts of the program's windows, in every language and at every scale.

#include "show.h"

namespace zv::test {
namespace {

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
        show.palette({"tone.wav"});
        show.set("Sealed=1\r\nLanguage=" + std::string(c.language) + "\r\n");
        setenv("ZENTROVA_SCALE", c.scale, 1);
        SCOPED_TRACE(std::string(c.language) + " " + c.scale);
        show.passes(script);
        unsetenv("ZENTROVA_SCALE");
    }
}

}  // namespace
}  // namespace zv::test
