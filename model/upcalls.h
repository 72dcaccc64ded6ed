/// What the model asks of the rooms above it. They fill the table at start; an unfilled callback does
/// nothing. [control]
#pragma once

#include <functional>
#include <string>

namespace zv {

struct ModelUpcalls {
    std::function<void()> beginLoad;  ///< mark "wait" shown, selection marks hidden, centred list scrolled
    std::function<void()> endLoad;    ///< the wait mark goes if it still shows
    std::function<void(const std::string& name)> showPaletteName;  ///< txtDisPal
    std::function<void(const std::string& name)>
        paletteListChanged;  ///< refresh lstPal, select and centre `name`
    /// The records were saved under `name`, which they are of from now on.
    std::function<void(const std::string& before, const std::string& name)> paletteNamed;
    std::function<void()> paletteLeaves;      ///< the records are about to become another palette's
    std::function<void(int slot)> slotMoved;  ///< its jingle stands elsewhere now: the button is emptied
    std::function<void()> removalsChanged;    ///< the window's hidden lists follow
    std::function<void()> pumpEvents;
};

extern ModelUpcalls modelUpcalls;

}  // namespace zv
