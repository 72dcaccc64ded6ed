/// The text of a rehearsal: one action a line, "#" begins a comment. Reading it touches nothing. [any]
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/controls.h"

namespace zv {

enum class Verb : std::uint8_t {
    press,     ///< press INDEX: left mouse down and up on a jingle button
    down,      ///< down INDEX, down NAME: the left button is held on any control
    up,        ///< up INDEX, up NAME
    mods,      ///< mods [ctrl] [shift] [alt]: modifier keys held from now on
    key,       ///< key NAME: down and up
    keydown,   ///< keydown NAME
    keyup,     ///< keyup NAME
    click,     ///< click NAME, NAME(INDEX) or WINDOW.NAME
    rclick,    ///< right mouse button
    dblclick,  ///< double click
    set,       ///< set NAME VALUE: slider, box, number, text, row of a list by number or text
    menu,      ///< menu ITEM: chooses from the context menu that is open
    pick,      ///< pick PALETTE: a row of lstPal by its text
    midi,      ///< midi HEX [DEVICE]: a message of a MIDI input, the control input without a name
    plug,      ///< plug DEVICE: of sound; plug midi|midi-in|midi-out DEVICE: of MIDI, both directions or one
    unplug,    ///< unplug, as plug
    answer,    ///< answer yes|no|ok|cancel|PATH: for the question that waits, else for the next box or dialog
    web,     ///< web URL FILE [STATUS [TYPE]], web URL off, web URL hang: what is answered there from now on
    drop,    ///< drop INDEX FILE: a file let go over a jingle button
    time,    ///< time [YYYY-MM-DD] HH:MM:SS: sets the wall clock
    mic,     ///< mic FILE: what the microphone hears from now on
    shot,    ///< shot [WINDOW] FILE: a picture of a window
    resize,  ///< resize WIDTH HEIGHT: new inner size of the main window in pixels
    expect,  ///< expect NAME[.PROPERTY] [= != < <= > >=] VALUE
    grid,    ///< grid ROWS COLUMNS: size of the grid, as the settings change it
    chaos,   ///< chaos COUNT SEED: random, and edits, new sizes of window and grid
    mixing,  ///< mixing COUNT SEED: random, and microphone, talk-over, duck, automix, levels and devices
    random,  ///< random COUNT SEED: random presses, palette changes and stops up to the next line's time
    end,     ///< the rehearsal ends
};

/// One action. Which fields are filled depends on the verb.
struct Action {
    Verb verb = Verb::end;
    std::int64_t at = 0;   ///< ms from the start of the script
    int line = 0;          ///< line of the file, 0 for a generated action
    int index = -1;        ///< jingle button (press, down, up, drop) or element of a control array
    std::string window;    ///< of a control written WINDOW.NAME
    std::string name;      ///< control, window, menu item, key, device, address, comparison's left side
    std::string property;  ///< expect: property, empty for the control's own value; web: content type
    std::string text;      ///< value, file, palette, answer, time
    std::string compare;   ///< expect: "=", "!=", "<", "<=", ">", ">="
    Key key = Key::none;   ///< key, keydown, keyup
    int mods = 0;          ///< mods: kShiftMask | kCtrlMask | kAltMask
    std::int64_t
        count = 0,
        number =
            0;  ///< random, chaos, mixing: COUNT, SEED; resize: WIDTH, HEIGHT; grid: ROWS, COLUMNS; web: STATUS
};

struct ScriptFault {
    int line = 0;
    std::string text;
};

struct Script {
    std::vector<Action> actions;      ///< in the order of the file, which is that of their times
    std::vector<ScriptFault> faults;  ///< what is wrong with it; empty for a script that can be performed
};

/// Reads a script. Lines are "at MS VERB ...", times never go back, the last action is "end".
Script parseScript(std::string_view text);

/// A key by its name on the keyboard, without regard to case: "F9", "PageDown", "Escape", "A", "7"; none if
/// there is no such key.
Key keyByName(std::string_view name);
/// Name of a verb as it stands in a script.
std::string_view verbName(Verb verb);

}  // namespace zv
