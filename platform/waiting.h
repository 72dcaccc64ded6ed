/// What waits for the presenter: a question, a file dialog or a modal window. Meanwhile the main window takes STOP
/// and plain presses of jingles only, so that the air is never left alone. [control]
#pragma once

#include <cstdint>
#include <functional>
#include <utility>

namespace zv {

class Control;
struct MouseEvent;

class Waiting {
  public:
    enum class For : std::uint8_t {
        answer,  ///< a question or a file dialog: every other window waits too, and the keyboard is its own
        window,  ///< a modal window: only the main window waits
    };
    /// `window` keeps all of its controls; null for a dialog that is no record. `cancel` is what Escape does to it
    /// from another window. Waits as long as the object lives.
    Waiting(For what, const Control* window, std::function<void()> cancel);
    ~Waiting();
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

    const For what;
    const Control* const window;
    const std::function<void()> cancel;
};

/// The newest that waits, an answer before any window; null while nothing waits.
const Waiting* waitingNow();
/// True while anything waits: presses play, and do nothing else.
inline bool onlyPlays() { return waitingNow() != nullptr; }
/// True when a press on that control counts now. `press` is null for what is no press of a mouse or finger.
bool takesNow(const Control& control, const MouseEvent* press);

/// Says which presses of the main window count meanwhile.
inline std::function<bool(const Control&, const MouseEvent&)> worksMeanwhile;
/// Told when a press was refused.
inline std::function<void()> refusedMeanwhile;
/// Where a dialog of that size (pixels) stands over the grid: left and top on the screen.
inline std::function<std::pair<int, int>(int width, int height)> placeOverGrid;

}  // namespace zv
