#include "platform/rehearsal/random_show.h"

namespace zv {
namespace {

// Shares of a hundred actions. Keys and toggles are rarer than presses, as in a show.
constexpr std::uint64_t kPress = 58;
constexpr std::uint64_t kHold = kPress + 14;
constexpr std::uint64_t kPick = kHold + 9;
constexpr std::uint64_t kStop = kPick + 6;
constexpr std::uint64_t kKey = 100;

constexpr std::uint64_t kShortestHoldMs = 20;
constexpr std::uint64_t kLongestHoldMs = 900;

/// Keys of a show: palettes up and down, stop, repeat and touch, automix (three times leads back to off), the
/// last jingle again.
constexpr const char* kShowKeys[] = {"PageUp", "PageDown", "PageDown", "Escape", "R",
                                     "T",      "M",        "Space",    "Space"};

}  // namespace

std::uint64_t RandomShow::number(std::uint64_t below) {
    state_ += 0x9E3779B97F4A7C15U;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
    return (z ^ (z >> 31)) % below;
}

Action RandomShow::next(const Pressable& there, std::optional<Action>& release) {
    Action action;
    release.reset();
    const std::uint64_t kind = number(kKey);
    if (kind < kHold && !there.buttons.empty()) {
        action.verb = Verb::press;
        action.index = there.buttons[number(there.buttons.size())];
        if (kind >= kPress) {
            action.verb = Verb::down;
            release = action;
            release->verb = Verb::up;
            release->at =
                static_cast<std::int64_t>(kShortestHoldMs + number(kLongestHoldMs - kShortestHoldMs));
        }
    } else if (kind < kPick && !there.palettes.empty()) {
        action.verb = Verb::pick;
        action.text = there.palettes[number(there.palettes.size())];
    } else if (kind < kStop) {
        action.verb = Verb::click;
        action.name = "btStop";
    } else {
        action.verb = Verb::key;
        action.name = kShowKeys[number(std::size(kShowKeys))];
        action.key = keyByName(action.name);
    }
    return action;
}

}  // namespace zv
