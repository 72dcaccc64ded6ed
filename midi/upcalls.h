/// What the control surface's logic asks of the windows. They fill the table at start; an unfilled callback does
/// nothing. [control]
#pragma once

#include <functional>

namespace zv {

/// Groups of controls of the MIDI settings.
enum class MidiGroup { in, out };

struct MidiUpcalls {
    /// MIDIStatusText is to be shown in lblMIDIDevice; `layout`: place, show or hide the label anew as well.
    std::function<void(bool layout)> showStatus;
    std::function<void()> layoutAll;  ///< the window is laid out from scratch
    std::function<void()>
        listsChanged;  ///< the lists and combo boxes of midi/state.h, what may be pressed beside them
    std::function<void(MidiGroup, bool on)> enableGroup;
    std::function<void(bool on)> faderLearning;  ///< the pump runs: faders can be learnt beside their sliders
    std::function<void(int percent)> showVolume;  ///< the main volume wherever it is shown
    std::function<void(int ms)> showAutoMixTime;  ///< the field TxtAmix
    std::function<void()> learnChanged;           ///< LearnState is to be shown
};

extern MidiUpcalls midiUpcalls;

}  // namespace zv
