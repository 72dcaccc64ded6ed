#include "ui/edit/palette_list.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "audio/streams.h"
#include "model/jingle.h"
#include "model/palette_files.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/stores.h"
#include "ui/records/main_window.h"

namespace zv {

namespace {

PaletteTab& tab() { return frmMain().palettes; }

/// Empty buttons of a program without a palette say what to do.
struct HintAtEnd {
    ~HintAtEnd() {
        frmMain().fraJingles.toolTip = tab().lstPal.items().empty() ? Ln("mDropHere") : std::string();
    }
};

}  // namespace

void TellHiddenPalettes(bool opened) {
    static int told = 0;
    const int hidden = PaletteStore.HiddenSections();
    if (hidden > 0 && hidden != told) {
        ErrDisp("notification", 0, Ln("mPalHidden") + " (" + std::to_string(hidden) + ")");
    }
    if (opened) told = hidden;
}

void lstPalRefresh() {
    guarded("modMain.lstPalRefresh", [] {
        const HintAtEnd hint;
        lockUpdates();
        Control& list = tab().lstPal;
        if (PalFileTest()) {
            PaletteStore.ListSections();
            std::vector<std::string> names;
            const int count = PaletteStore.SectionCount();
            names.reserve(static_cast<std::size_t>(count));
            for (int i = 0; i < count; ++i) {
                names.push_back(PaletteStore.SectionName(i));
            }
            QuickSort(names);
            list.items = names;
            SelectPalette(SettingsStore.GetValue("PaletteIndex"));
            TellHiddenPalettes(false);
        } else {
            list.items = std::vector<std::string>();
            list.listIndex = -1;
            frmMain().display.txtDisPal.caption = std::string();
            for (int i = 0; i < kPaletteSlots; ++i) {
                openNames(i, "", false);
                openStreams(i);
            }
        }
        unlockUpdates();
        list.touch();
    });
}

void SelectPalette(const std::string& name) {
    const std::vector<std::string>& names = tab().lstPal.items();
    const auto found =
        std::find_if(names.begin(), names.end(), [&](const std::string& one) { return SameText(one, name); });
    tab().lstPal.listIndex = found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

void CentrePaletteList() {
    Control& list = tab().lstPal;
    if (list.listIndex() >= 0) {
        centreListRow(list, list.listIndex());
    }
}

}  // namespace zv
