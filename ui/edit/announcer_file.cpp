#include "ui/edit/announcer_file.h"

#include "audio/announcer.h"
#include "model/state.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/announcer_settings.h"
#include "ui/windows/announcer_window.h"

namespace zv {

namespace {

constexpr Colour kUnplayable = 255;

void show(bool failed) {
    Control& file = frmSettAnnouncer().btSound;
    file.caption = Ampersand(announcerSettings.TimeAnnouncer);
    file.foreColor = failed ? kUnplayable : kNoColour;
}

/// The announcer is armed with the new file; the time jingle stays.
void choose() {
    guarded("frmSett.btSound_Click", [] {
        const std::string path = openFileDialog(Ln("taChoose"), GetPath(announcerSettings.TimeAnnouncer),
                                                Ln("mDlgType") + "|" + FileFilter());
        if (path.empty()) {
            return;
        }
        announcerSettings.TimeAnnouncer = GetRelPath(path);
        show(false);
        ArmAnnouncer();
    });
}

}  // namespace

void OpenAnnouncerSettings(bool failed) {
    guarded("frmMain.OpenSettings", [&] {
        AnnouncerWindow& w = frmSettAnnouncer();
        w.btSound.onClick = choose;
        w.btOK.onClick = [&w] { w.form.close(); };
        show(failed);
        w.form.open(&w.btSound);
    });
}

}  // namespace zv
