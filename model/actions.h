/// What a presenter can ask for, whoever asks: keyboard, control surfaces, remote control. A source of commands
/// maps its input to an Action and calls perform(); ui/press/actions.cpp says what each one does. [control]
#pragma once

#include <cstdint>
#include <functional>

namespace zv {

/// The comment behind an action says what its argument is; without one the argument is not read.
enum class Action : std::uint8_t {
    none,

    // ---- jingles ----
    play,         ///< index: clPlay with the velocity, whatever is armed or held
    press,        ///< index: what a mouse press on the button means
    release,      ///< index: the end of a press; stops in touch mode
    pressLast,    ///< the jingle started last; nothing when none was
    releaseLast,  ///< the end of pressLast
    stopAll,

    // ---- palettes ----
    paletteUp,    ///< PaletteKey
    paletteDown,  ///< PaletteKey
    newPalette,
    savePalette,
    remove,  ///< the jingle or palette that was used last, after a question

    // ---- the mix ----
    autoRepeat,
    touch,
    autoMix,
    micDown,  ///< the microphone's key goes down; nothing in the single topology, as the next two
    micUp,
    talkOver,
    volume,       ///< percent of the main output, 0 to 100
    autoMixTime,  ///< ms, 1 to 5000

    // ---- editing ----
    assign,
    effects,
    loop,
    tickAll,
    copyCaptions,
    undo,
    redo,

    // ---- announcer ----
    announcer,
    announcerJingle,

    // ---- the window ----
    tab,  ///< 0 to 3
    minimalView,
    joinedButtons,
    hotJinglesPlace,
    fullScreen,
    shortcuts,
    settings,
    search,
    console,
    userScript,
    close,
};

/// How a key or an encoder steps through the palettes.
enum class PaletteKey : int {
    once,      ///< one row
    repeated,  ///< one row, and more while the keyboard's key is held
    held,      ///< one row; held for half a second it jumps to the end of the list
    letGo,     ///< ends `held`
    wheel,     ///< one row, never around the end
};

/// Does what an action means. `velocity` counts for `play` only: 0 to 127, or -1 for a mouse press.
/// False: it could not be done now (nothing to act on, the list of palettes is locked); the asker may try again.
/// Filled by ui/press/actions.cpp.
extern std::function<bool(Action action, int argument, int velocity)> perform;

}  // namespace zv
