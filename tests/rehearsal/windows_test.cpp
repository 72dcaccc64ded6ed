// The texts of the program's windows, in every language and at every scale.

#include "show.h"

namespace zv::test {
namespace {

TEST(Windows, ClipNoTextInAnyLanguageAtAnyScale) {
    // What is done, ">" the window that is looked at then.
    std::istringstream steps(
        "key F1>frmShortcuts;key Escape;key F2>frmMixer;set frmMixer.ckInputEnable 1>frmMixer;key Escape;"
        "rclick b_Jingle(0);menu mnuRename>frmRenameFile;key Escape;rclick b_Jingle(0);menu "
        "mnuCol>frmColPick;"
        "key Escape;resize 800 600>frmMain;click ckTab(1)>frmMain;click ckTab(2)>frmMain;click "
        "ckTab(3)>frmMain;"
        "click ckTab(0);resize 1024 600>frmMain;click ckLoopI>frmMain;click ckLoopI;mods ctrl>frmMain;"
        "mods ctrl shift>frmMain;mods alt>frmMain;mods ctrl alt>frmMain;mods shift>frmMain;resize 800 "
        "600>frmMain");
    std::string script;
    int ms = 0;
    for (std::string step; std::getline(steps, step, ';');) {
        const std::size_t looks = step.find('>');
        script += "at " + std::to_string(ms += 100) + " " + step.substr(0, looks) + "\n";
        if (looks != std::string::npos)
            script += "at " + std::to_string(ms += 100) + " expect " + step.substr(looks + 1) + ".clipped\n";
    }
    script += "at " + std::to_string(ms + 100) + " end\n";
    const struct {
        const char* language;
        const char* scale;
    } cases[] = {{"English", "1"}, {"Français", "1"}, {"Deutsch", "1"},
                 {"Español", "1"}, {"Deutsch", "2"},  {"Français", "1.5"}};
    for (const auto& c : cases) {
        Show show;
        show.tone();
        show.set("Sealed=1\r\nLanguage=" + std::string(c.language) + "\r\n");
        setenv("ZENTROVA_SCALE", c.scale, 1);
        SCOPED_TRACE(std::string(c.language) + " " + c.scale);
        show.passes(script, "--no-sound");
        unsetenv("ZENTROVA_SCALE");
    }
}

}  // namespace
}  // namespace zv::test
