/// Chance as a presenter: presses, palette changes and stops, the same for the same seed on every machine.
#pragma once

#include <cstdint>
#include <optional>
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
    explicit RandomShow(std::uint64_t seed) : state_(seed) {}

    /// What to do next. `release` is filled when a button has been pressed down that is let go later; its
    /// `at` is the time that it is held.
    Action next(const Pressable& there, std::optional<Action>& release);
    /// A number from 0 to `below` - 1.
    std::uint64_t number(std::uint64_t below);

  private:
    std::uint64_t state_;
};

}  // namespace zv
