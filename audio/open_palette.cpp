#include "audio/open_palette.h"

#include <functional>
#include <string>

#include "audio/streams.h"
#include "model/held_palette.h"
#include "model/jingle.h"
#include "model/state.h"
#include "model/upcalls.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/stores.h"
#include "startup/upcalls.h"

namespace zv {

void OpenFile(const std::string& name) {
    // Events run between the slots. One of them may open another palette: the last call wins.
    const int mine = BeginPaletteLoad(name);
    const auto eachSlot = [&](const std::function<void(int)>& step) {
        for (int i = 0; i < kPaletteSlots && IsNewestLoad(mine); ++i) {
            if (JExists[static_cast<std::size_t>(i)] != 1) continue;
            step(i);
            callUp(modelUpcalls.pumpEvents);
        }
    };
    guarded("modMain.OpenFile", [&] {
        ErrDisp("hide");
        callUp(modelUpcalls.beginLoad);
        SaveMode.clear();
        callUp(modelUpcalls.showPaletteName, name);
        eachSlot([&](int i) { openNames(i, name, false); });
        eachSlot([&](int i) { openStreams(i); });
        if (!IsNewestLoad(mine)) return;
        EndPaletteLoad(mine, name);
        callUp(modelUpcalls.endLoad);
    });
}

void OpenFile() {
    guarded("modMain.OpenFile", [] {
        for (int i = kPaletteSlots; i < kJingles; ++i) {
            openNames(i, kHotSection, true);
            if (JExists[static_cast<std::size_t>(i)] == 1) openStreams(i);
        }
    });
}

}  // namespace zv
