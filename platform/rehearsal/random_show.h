/// Chance as a presenter: presses, palette changes and stops; on request edits, and new sizes of window and
/// grid too, or all that is set of the mix. The same for the same seed on every machine.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/rehearsal/script.h"

namespace zv {

/// What can be pressed at the moment.
struct Pressable {
    std::vector<int> buttons;           ///< indices of visible jingle buttons
    std::vector<std::string> palettes;  ///< rows of the palette list
};

/// What chance does besides a show's own presses.
enum class Chance { show, edits, mix };

class RandomShow {
  public:
    explicit RandomShow(std::uint64_t seed, Chance kind = Chance::show) : state_(seed), kind_(kind) {}

    /// What to do next, one after the other; `at` is the time from now.
    std::vector<Action> next(const Pressable& there);
    /// A number from 0 to `below` - 1.
    std::uint64_t number(std::uint64_t below);

  private:
    std::vector<Action> edit(const Pressable& there);
    std::vector<Action> option(const Pressable& there);
    std::vector<Action> mix();
    std::vector<Action> inMixer();

    std::uint64_t state_;
    Chance kind_;
};

}  // namespace zv
