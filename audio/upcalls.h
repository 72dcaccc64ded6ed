/// What the sound logic asks of the windows. They fill the table at start; an unfilled callback does nothing.
/// [control]
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace zv {

/// Moments of a jingle that a control surface is told of.
enum class Feedback { empty, loaded, failed, stopping };

/// The lists of outputs in the mixer window.
struct OutputLists {
    std::vector<std::string> main, aux;  ///< the last entry of `aux` means no auxiliary output
    int mainSelected = -1, auxSelected = -1;
    bool byName = false;  ///< optDevBy(1) is ticked, else optDevBy(0)
};
struct InputLists {
    std::vector<std::string> inputs;  ///< cmbInDev; also listed under the web streams in the mix topology
    int selected = -1;
};

struct AudioUpcalls {
    // ---- a slot's button ----
    std::function<void(int)> slotReset;    ///< nothing is on it: theme colours, no caption, marks hidden
    std::function<void(int)> slotBound;    ///< a playlist is bound to it: its name and mark, colours anew
    std::function<void(int)> namesRead;    ///< colours anew from the record
    std::function<void(int)> fileMissing;  ///< tool tip "errMissFile"
    std::function<void(int)>
        slotFailed;  ///< could not be opened: number, name, red or with the reason in the tip
    std::function<void(int)> slotLoaded;  ///< caption, colours, marks, tool tip
    std::function<void(int)> slotOpened;  ///< last step of every opening: selectable or other-palette colours
    std::function<void(int)>
        startIgnored;  ///< its start position lies beyond the end: it plays from the beginning
    std::function<void(int)> slotWaits;        ///< a press waits until the slot's file is open
    std::function<void(int, int)> pressReady;  ///< the slot of a waiting press is ready: index, velocity
    std::function<void(int)> playStarting;     ///< the bar is full, in its own colour
    std::function<void(int)> playStarted;      ///< the bar is shown, the effects' mark is lit
    std::function<void(int)> loopLeft;         ///< the sequence mark takes its off colour
    std::function<void(int, Feedback)> feedback;

    // ---- the display ----
    std::function<void()> hideClock;           ///< minimal view: the counter takes over
    std::function<void()> stopAnnouncer;       ///< ckTmAnn and b_tmAnJin off when armed
    std::function<void(int ms)> streamFades;   ///< the live stream is on its way out and ends in `ms`
    std::function<void()> stopStream;          ///< the live stream, when it plays
    std::function<void()> liveChanged;         ///< its state, its status line or its title is another
    std::function<void()> liveFadesOut;        ///< its key was pressed: it ends when it is silent
    std::function<void()> addressesChanged;    ///< urls.txt is another
    std::function<void()> announcerChanged;    ///< armed, its jingle, or what it shows is another
    std::function<void()> announcementFailed;  ///< its file cannot be played: another may be chosen
    std::function<void()> outputsChanged;      ///< OutputTrouble() is another
    std::function<void()> noOutputDevice;      ///< the program plays into the no-sound device

    // ---- the mixer window ----
    std::function<void(const InputLists&)> inputsListed;
};

extern AudioUpcalls audioUpcalls;

}  // namespace zv
