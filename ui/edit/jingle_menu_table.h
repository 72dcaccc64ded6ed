/// What the context menu of a jingle button holds, by what is on the button. [control]
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "model/jingle.h"

namespace zv {

/// The columns of the table.
enum class ButtonState : std::uint8_t { empty, missing, filled, playing };

struct MenuFacts {
    ButtonState state = ButtonState::empty;
    bool unplayable = false;
    PlayMode playMode = PlayMode::global;
    bool loop = false, seq = false, effects = false;
    SlotKind kind = SlotKind::nothing;
    bool locked = false;        ///< the mark "K": a playlist holds the jingle
    bool carrying = false;      ///< something was cut or copied
    bool sampleFolder = false;  ///< it exists
    bool midiOffered = false, midiAssigned = false;
    bool playlistsEnabled = false;
    bool boxes = false;           ///< the selection boxes are shown
    bool playlistTicked = false;  ///< one of the ticked buttons plays a playlist
};

/// An item that is shown, or "-".
struct MenuEntry {
    std::string name;
    std::string key;  ///< of its caption
    bool enabled = true, ticked = false;
};

/// The items in the order of the menu, those that are hidden left out.
std::vector<MenuEntry> JingleMenuEntries(const MenuFacts& facts);
/// The menu for several ticked buttons.
std::vector<MenuEntry> SelectionMenuEntries(bool playlistTicked);

}  // namespace zv
