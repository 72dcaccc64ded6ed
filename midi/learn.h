/// Teaching a control: what the surface sends while a learn window is open, and what OK makes of it. The windows
/// show MIDILearn; they keep nothing themselves. [control]
#pragma once

#include <array>
#include <string>
#include <vector>

#include "midi/assignments.h"

namespace zv {

enum class LearnWindow { none, button, scroll, fader, reset };
/// Of the pictures that stand for press and release, or for the two directions of a wheel.
enum class LearnLight { dark, red, green, cyan };

inline constexpr int kOutputRows = 4, kMessageBoxes = 3;
using MessageRow =
    std::array<std::string, kMessageBoxes>;  ///< status, data 1, data 2: two digits each, or empty

struct Learning {
    LearnWindow window = LearnWindow::none;
    std::string ctrl;  ///< "b_Jingle", "btUp", ..., "btMIDIOutReset"
    int MIDILearnJ = -1;
    std::string name;  ///< of the control, for the user
    /// The codes as captured; kNoCode while there is none. Of a wheel: clockwise and anticlockwise.
    std::string MIDILearnDown = kNoCode, MIDILearnUp = kNoCode;
    std::vector<std::string> lstMidiInDump, lstMidiInDumpUnique;

    bool velocityRule = false;  ///< a jingle: the slider and its box are there
    int SlideVelocity = kFreeVelocity - kLimitedVelocity;
    bool ckVelocityLimit = true;
    std::string lblVelocityCode;  ///< velocity of the last press
    LearnLight Picture1 = LearnLight::dark;

    LearnLight picAntiClockw = LearnLight::dark, picClockw = LearnLight::dark;
    int flashing = 0;  ///< direction that was just turned: -1 anticlockwise, 1 clockwise
    bool ckReverse = false;
    int SlideFader = 0;

    std::vector<const char*> rowLabels;  ///< language keys of the output rows, at most four
    std::array<MessageRow, kOutputRows> rows;
    bool MIDILearnAllSame = false;  ///< OK found four equal messages
    bool copyFromPrevious = false;  ///< btCpyPrev can be pressed
};
extern Learning MIDILearn;

/// Takes a message, six digits, into the window that is open.
void LearnMessage(const std::string& message);

}  // namespace zv
