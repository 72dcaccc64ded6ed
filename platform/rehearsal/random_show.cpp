#include "platform/rehearsal/random_show.h"

#include <utility>

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

constexpr std::uint64_t kEditsIn = 4;        ///< one action in so many is an edit, or one of the mix
constexpr std::uint64_t kColourFields = 25;  ///< the last one takes a colour away
constexpr std::int64_t kStepMs = 40;         ///< between the steps of an edit
constexpr const char* kDropped[] = {"Audio_Sample/Ding.flac", "Audio_Sample/Oops.wav",
                                    "Audio_Sample/Applause.mp3", "Audio_Sample/Crickets.ogg",
                                    "Audio_Sample/Laugh.m4a"};

Action onButton(Verb verb, int index) {
    Action action;
    action.verb = verb;
    action.index = index;
    return action;
}

Action click(const char* name) {
    Action action;
    action.verb = Verb::click;
    action.name = name;
    return action;
}

Action key(const char* name) {
    Action action;
    action.verb = Verb::key;
    action.name = name;
    action.key = keyByName(name);
    return action;
}

Action choose(const char* item) {
    Action action;
    action.verb = Verb::menu;
    action.name = item;
    return action;
}

}  // namespace

std::uint64_t RandomShow::number(std::uint64_t below) {
    state_ += 0x9E3779B97F4A7C15U;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
    return (z ^ (z >> 31)) % below;
}

std::vector<Action> RandomShow::next(const Pressable& there) {
    if (kind_ == Chance::edits && number(kEditsIn) == 0 && !there.buttons.empty()) return edit(there);
    if (kind_ == Chance::mix && number(kEditsIn) == 0) return mix();
    Action action;
    const std::uint64_t kind = number(kKey);
    if (kind < kHold && !there.buttons.empty()) {
        action.verb = Verb::press;
        action.index = there.buttons[number(there.buttons.size())];
        if (kind >= kPress) {
            Action release = action;
            action.verb = Verb::down;
            release.verb = Verb::up;
            release.at =
                static_cast<std::int64_t>(kShortestHoldMs + number(kLongestHoldMs - kShortestHoldMs));
            return {action, release};
        }
    } else if (kind < kPick && !there.palettes.empty()) {
        action.verb = Verb::pick;
        action.text = there.palettes[number(there.palettes.size())];
    } else if (kind < kStop) {
        action.verb = Verb::click;
        action.name = "btStop";
    } else {
        action = key(kShowKeys[number(std::size(kShowKeys))]);
    }
    return {action};
}

std::vector<Action> RandomShow::option(const Pressable& there) {
    static constexpr const char* kOptions[] = {"ckPlayStopI", "ckAutoRepI", "ckTouchI", "ckNoStopI",
                                               "ckLoopI"};
    const Action arm = click(kOptions[number(std::size(kOptions))]);
    std::vector<Action> steps{key("F8"), arm};
    if (arm.name == "ckLoopI" && number(2) == 0) steps.push_back(arm);  // armed twice it is the sequence
    // Now and then it stays armed for whatever comes next.
    if (number(4) != 0) steps.push_back(onButton(Verb::press, there.buttons[number(there.buttons.size())]));
    return steps;
}

/// The devices' window: opened, one thing set, closed.
std::vector<Action> RandomShow::inMixer() {
    struct Setting {
        const char* name;
        int index;
        std::uint64_t values;
    };
    static constexpr Setting kSettings[] = {
        {"SlideAttnVol", -1, 101},
        {"SlideFadeOutSpeed", -1, 60},
        {"SlideFadeInSpeed", -1, 200},
        {"SlideVolDevice", 0, 101},
        {"SlideVolDevice", 1, 101},
        {"SlideVolIn", 0, 101},
        {"SlideVolIn", 1, 101},
        {"ckVolInLink", -1, 2},
        {"cmbAutoDuckMode", -1, 3},
        {"SlideFadeInAdvance", -1, 101},
        {"cmbDev", 0, 2},
        {"cmbDev", 1, 3},
        {"cmbDev", 0, 2},
        {"cmbDev", 1, 3},
        {"ckInputEnable", -1, 2},
        {"ckInputEnable", -1, 1},
    };
    const Setting& one = kSettings[number(std::size(kSettings))];
    Action set = click(one.name), close = click("btOk");
    set.verb = Verb::set;
    set.window = close.window = "frmMixer";
    set.index = one.index;
    // The input is on more often than not.
    const std::uint64_t value = number(one.values);
    set.text = std::to_string(one.values == 1 ? 1 : value);
    return {key("F2"), set, close};
}

std::vector<Action> RandomShow::mix() {
    static constexpr const char* kDevices[] = {"Main output", "Auxiliary output", "Microphone"};
    constexpr std::uint64_t kLongestTalkMs = 4000;
    std::vector<Action> steps;
    switch (number(9)) {
        case 0:
        case 1:
        case 2: {
            Action down = click("btMicPush"), up = down;
            down.verb = Verb::down;
            up.verb = Verb::up;
            up.at = static_cast<std::int64_t>(kShortestHoldMs + number(kLongestTalkMs));
            return {down, up};
        }
        case 3:
            return {click("btMicTO")};
        case 4:
            return {key("M")};
        case 5: {
            Action gone, back;
            gone.verb = Verb::unplug;
            back.verb = Verb::plug;
            gone.text = back.text = kDevices[number(std::size(kDevices))];
            back.at = static_cast<std::int64_t>(kLongestHoldMs + number(kLongestTalkMs));
            return {gone, back};
        }
        default:
            steps = inMixer();
            break;
    }
    std::int64_t at = 0;
    for (Action& step : steps) step.at = std::exchange(at, at + kStepMs);
    return steps;
}

std::vector<Action> RandomShow::edit(const Pressable& there) {
    const int button = there.buttons[number(there.buttons.size())];
    Action open = click("b_Jingle");
    open.verb = Verb::rclick;
    open.index = button;
    const auto sized = [&](Verb verb, std::uint64_t least, std::uint64_t most, std::uint64_t leastOther,
                           std::uint64_t mostOther) {
        Action action;
        action.verb = verb;
        action.count = static_cast<std::int64_t>(least + number(most - least + 1));
        action.number = static_cast<std::int64_t>(leastOther + number(mostOther - leastOther + 1));
        return action;
    };
    std::vector<Action> steps;
    switch (number(12)) {
        case 0:
        case 1:
        case 2:
            steps = option(there);
            break;
        case 3: {
            Action field = click("Color");
            field.index = static_cast<int>(number(kColourFields));
            steps = {open, choose("mnuCol"), field};
            break;
        }
        case 4:
        case 5: {
            Action drop = onButton(Verb::drop, button);
            drop.text = kDropped[number(std::size(kDropped))];
            steps = {drop};
            break;
        }
        case 6: {
            Action yes;
            yes.verb = Verb::answer;
            yes.text = "yes";
            steps = {yes, open, choose("mnuClr")};
            break;
        }
        case 7: {
            Action other = open;
            other.index = there.buttons[number(there.buttons.size())];
            steps = {open, choose(number(2) == 0 ? "mnuCut" : "mnuCopy"), other, choose("mnuPaste")};
            break;
        }
        case 8:
            steps = {key("F5"), click("btSave"), key("Enter")};
            break;
        case 9:
            steps = {sized(Verb::resize, 790, 1600, 590, 1000)};
            break;
        case 10:
            steps = {sized(Verb::grid, 4, 8, 4, 12)};
            break;
        default: {
            if (number(2) == 0) {
                steps = {key("F10")};
                break;
            }
            Action alt, none;
            alt.verb = none.verb = Verb::mods;
            alt.mods = kAltMask;
            steps = {alt, key("F9"), none};
            break;
        }
    }
    std::int64_t at = 0;
    for (Action& step : steps) step.at = std::exchange(at, at + kStepMs);
    return steps;
}

}  // namespace zv
