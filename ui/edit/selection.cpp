#include "ui/edit/selection.h"

#include <string>

#include "model/jingle.h"
#include "model/state.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/settings/labels_settings.h"
#include "ui/edit/carried.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/captions.h"

namespace zv {

void ShowSelectors() {
    guarded("frmMain.ShowSelectors", [] {
        if (Unloading || SelectorsShown) {
            return;
        }
        SelectorsShown = true;
        for (const int i : LiveJingles()) {
            JingleButton* b = Button(i);
            if (b == nullptr) {
                continue;
            }
            const JingleRecord& j = Jingle(i);
            const bool file = !j.Path.empty() && !HasPlaylistMark(i, 'K') && !j.MissingFile && j.BassErr == 0;
            if (file || j.Kind == SlotKind::playlist) {
                b->ckJingSel.visible = true;
                if (labelSettings.JNumbPos == 2) {
                    b->picbtnumber.visible = false;
                    b->lblbtnumber.visible = false;
                }
            }
        }
    });
}

void HideSelectors() {
    guarded("frmMain.HideSelectors", [] {
        if (Unloading || !SelectorsShown) {
            return;
        }
        SelectorsShown = false;
        for (int i = 0; i < kJingles; ++i) {
            if (JingleButton* b = Button(i)) {
                b->ckJingSel.visible = false;
                b->ckJingSel.value = 0;
                if (labelSettings.JNumbPos == 2) {
                    b->picbtnumber.visible = true;
                    b->lblbtnumber.visible = true;
                }
            }
        }
        ForgetMoveTick();
    });
}

void CheckAllSelectors() {
    guarded("frmMain.CheckAllSelectors", [] {
        for (const int i : LiveJingles()) {
            JingleButton* b = Button(i);
            if (b != nullptr && b->ckJingSel.visible) {
                b->ckJingSel.value = 1;
            }
        }
    });
}

void CopyAllJings() {
    guarded("frmMain.CopyAllJings", [] {
        if (!SelectorsShown) {
            return;
        }
        std::string text;
        bool hot = false;
        for (const int i : LiveJingles()) {
            const JingleButton* b = Button(i);
            if (i >= kPaletteSlots && !hot) {
                hot = true;
                text += "=============== HOT JINGLES ===============\r\n";
            }
            if (b != nullptr && b->ckJingSel.value == 1 && !Jingle(i).Path.empty()) {
                text += btCaption(Jingle(i).Path) + "\r\n";
            }
        }
        setClipboard(text);
    });
}

bool BuildSelJ(int index) {
    SelJ.clear();
    if (CtrlDown) {
        for (const int i : LiveJingles()) {
            const JingleButton* b = Button(i);
            if (b != nullptr && b->ckJingSel.visible && b->ckJingSel.value == 1) {
                SelJ.push_back(i);
            }
        }
        if (SelJ.size() >= 2) {
            return false;
        }
    }
    SelJ = {index};
    return true;
}

}  // namespace zv
