/// Chance as a presenter: presses, palette changes and stops; on request edits, and new sizes of window and
/// grid too. The same for the same seed on every machine.
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

class RandomShow {
  public:
    explicit RandomShow(std::uint64_t seed, bool edits = false) : state_(seed), edits_(edits) {}

    /// What to do next, one after the other; `at` is the time from now.
    std::vector<Action> next(const Pressable& there);
    /// A number from 0 to `below` - 1.
    std::uint64_t number(std::uint64_t below);

  private:
    std::vector<Action> edit(const Pressable& there);
    std::vector<Action> option(const Pressable& there);

    std::uint64_t state_;
    bool edits_;
};

}  // namespace zv
