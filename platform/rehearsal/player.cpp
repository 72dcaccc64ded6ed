#include "platform/rehearsal/player.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <utility>

#include "platform/clock.h"
#include "platform/controls.h"
#include "platform/file_decoders/file_decoders.h"
#include "platform/qt/view/shell.h"
#include "platform/rehearsal/midi_devices.h"
#include "platform/rehearsal/stage.h"
#include "platform/rehearsal/virtual_clock.h"
#include "platform/rehearsal/web.h"
#include "platform/timers.h"
#include "platform/waiting.h"

namespace zv {
namespace {

constexpr int kButtons = 120;
/// More than these are counted, not printed: one fault of a tick tends to return at each following one.
constexpr int kFailuresShown = 20;
constexpr const char* kQuestionCard = "frmQuestion";
constexpr const char* kDisplayTick = "TimerDispAndJButtons";

/// Files of the script, with "|" between them.
std::vector<std::string> filesOf(const std::string& text) {
    std::vector<std::string> files;
    for (std::size_t from = 0; from <= text.size();) {
        const std::size_t end = std::min(text.find('|', from), text.size());
        files.push_back(Stage::instance().file(text.substr(from, end - from)));
        from = end + 1;
    }
    return files;
}

std::optional<double> asNumber(const std::string& text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

/// What a control shows, by its kind.
std::string ownValue(const Control& control) {
    switch (control.kind) {
        case ControlKind::checkBox:
        case ControlKind::option:
        case ControlKind::slider:
        case ControlKind::progress:
        case ControlKind::meter:
        case ControlKind::number:
            return std::to_string(control.value());
        case ControlKind::listBox:
        case ControlKind::comboBox:
        case ControlKind::tabs:
            return control.text();
        default:
            return control.caption();
    }
}

bool holds(const std::string& is, const std::string& compare, const std::string& wanted) {
    if (compare == "=") return is == wanted;
    if (compare == "!=") return is != wanted;
    const std::optional<double> a = asNumber(is), b = asNumber(wanted);
    if (!a || !b) return false;
    if (compare == "<") return *a < *b;
    if (compare == "<=") return *a <= *b;
    if (compare == ">") return *a > *b;
    return *a >= *b;
}

/// Verbs that are no input to the program: an open menu stays open over them.
bool leavesMenuOpen(Verb verb) {
    return verb == Verb::expect || verb == Verb::shot || verb == Verb::answer || verb == Verb::time ||
           verb == Verb::mic || verb == Verb::web || verb == Verb::plug || verb == Verb::unplug ||
           verb == Verb::midi || verb == Verb::mods;
}

std::string nameOf(const Action& action) {
    std::string name = action.window.empty() ? action.name : action.window + "." + action.name;
    if (action.index >= 0) name += "(" + std::to_string(action.index) + ")";
    if (!action.property.empty()) name += "." + action.property;
    return name;
}

}  // namespace

std::string actionText(const Action& action) {
    std::string text(verbName(action.verb));
    switch (action.verb) {
        case Verb::resize:
        case Verb::grid:
            return text + " " + std::to_string(action.count) + " " + std::to_string(action.number);
        case Verb::press:
        case Verb::down:
        case Verb::up:
            return text + " " + (action.name.empty() ? std::to_string(action.index) : nameOf(action));
        case Verb::web:
            return text + " " + action.name + " " + action.text;
        case Verb::expect:
            text += " " + nameOf(action);
            if (action.compare != "=") text += " " + action.compare;
            return action.text.empty() ? text : text + " " + action.text;
        default:
            break;
    }
    if (!action.name.empty()) text += " " + nameOf(action);
    if (!action.text.empty()) text += " " + action.text;
    return text;
}

void answerWeb(const Action& action) {
    WebRule rule;
    if (action.text != "off") rule.kind = action.text == "hang" ? WebRule::Kind::hang : WebRule::Kind::file;
    rule.file = action.text;
    rule.status = static_cast<int>(action.number);
    rule.type = action.property;
    RehearsedWeb::instance().answer(action.name, std::move(rule));
}

Player::Player(const RehearsalOptions& options, const RehearsedProgram& program, std::vector<Action> actions)
    : options_(options), program_(program) {
    for (Action& action : actions) add(std::move(action));
}

void Player::add(Action action) {
    const std::int64_t at = action.at;
    pending_.emplace(at, std::move(action));
}

void Player::fail(const std::string& text) {
    ++failures_;
    const std::int64_t ms = monotonicMs() - Stage::instance().startMs;
    noteEvent("failed", text);
    if (failures_ > kFailuresShown) return;
    const std::string where = line_ > 0 ? options_.script + ":" + std::to_string(line_) : options_.script;
    std::fprintf(stderr, "%s: at %lld: %s\n", where.c_str(), static_cast<long long>(ms), text.c_str());
}

Action Player::takeNext() {
    Action action = std::move(pending_.begin()->second);
    pending_.erase(pending_.begin());
    return action;
}

const Action* Player::reachNext(const std::function<bool()>& over) {
    const Stage& stage = Stage::instance();
    while (!pending_.empty() && !stage.quitAsked && !(over && over())) {
        VirtualClock::instance().advanceTo(stage.startMs + pending_.begin()->first, over);
        // A modal window that opened meanwhile may have performed that action already.
        if (!pending_.empty() && stage.startMs + pending_.begin()->first <= monotonicMs())
            return stage.quitAsked || (over && over()) ? nullptr : &pending_.begin()->second;
    }
    return nullptr;
}

void Player::play() {
    while (const Action* next = reachNext({})) {
        if (next->verb == Verb::end) return;
        perform(takeNext());
    }
    if (Stage::instance().quitAsked && !pending_.empty() && pending_.begin()->second.verb != Verb::end)
        fail("the program has ended before");
}

void Player::playUntil(const std::function<bool()>& over) {
    while (const Action* next = reachNext(over)) {
        if (next->verb == Verb::end) return;  // left for the outermost loop
        perform(takeNext());
    }
}

bool Player::answerComes(bool cardOnly) const {
    return std::ranges::any_of(pending_, [&](const auto& entry) {
        const Action& action = entry.second;
        return action.window == kQuestionCard || (!cardOnly && action.verb == Verb::answer);
    });
}

void Player::perform(const Action& action) {
    line_ = action.line;
    processEvents();
    switch (action.verb) {
        case Verb::press:
        case Verb::down:
        case Verb::up:
            pressButton(action);
            break;
        case Verb::web:
            answerWeb(action);
            break;
        case Verb::mods:
            Stage::instance().mods = action.mods;
            break;
        case Verb::key:
        case Verb::keydown:
            Stage::instance().heldKeys.insert(static_cast<int>(action.key));
            if (!shell::keyDown(action.key, Stage::instance().mods)) ignored(action);
            if (action.verb == Verb::keydown) break;
            [[fallthrough]];
        case Verb::keyup:
            Stage::instance().heldKeys.erase(static_cast<int>(action.key));
            shell::keyUp(action.key, Stage::instance().mods);
            break;
        case Verb::click:
        case Verb::rclick:
        case Verb::dblclick:
            clickControl(action);
            break;
        case Verb::set:
            setControl(action);
            break;
        case Verb::menu:
            if (action.line == 0) {
                ignored(action);
                break;
            }
            fail("no menu is open to choose " + action.name + " from");
            break;
        case Verb::pick:
            pickPalette(action);
            break;
        case Verb::midi:
            if (!MidiDevices::instance().hear(action.text, action.name)) ignored(action);
            break;
        case Verb::plug:
        case Verb::unplug:
            plugDevice(action);
            break;
        case Verb::answer:
            Stage::instance().answers.push_back(action.text);
            break;
        case Verb::drop:
            if (Control* target = control(action)) {
                if (!shell::dropFiles(*target, filesOf(action.text))) ignored(action);
            }
            break;
        case Verb::time:
            VirtualClock::instance().setWallTime(action.text);
            break;
        case Verb::mic:
            hear(action);
            break;
        case Verb::shot:
            shoot(action);
            break;
        case Verb::resize:
            shell::resizeWindow(*findControl("frmMain"), static_cast<int>(action.count),
                                static_cast<int>(action.number));
            break;
        case Verb::expect:
            expectValue(action);
            break;
        case Verb::grid:
            if (program_.grid) program_.grid(static_cast<int>(action.count), static_cast<int>(action.number));
            break;
        case Verb::random:
        case Verb::chaos:
        case Verb::mixing:
            if (action.line > 0)
                scatterRandom(action);
            else
                performRandom();
            break;
        case Verb::end:
            break;
    }
}

Control* Player::find(const Action& action) const {
    if (!action.window.empty()) {
        const Control* window = findControl(action.window);
        return window == nullptr ? nullptr : findControl(action.name, action.index, *window);
    }
    // The window in front that bears it, else any.
    const std::vector<Control*> open = shell::openWindows();
    for (auto window = open.rbegin(); window != open.rend(); ++window) {
        if (Control* found = findControl(action.name, action.index, **window)) return found;
    }
    return findControl(action.name, action.index);
}

Control* Player::control(const Action& action) {
    Action named = action;
    if (action.name.empty() && action.index >= 0) named.name = "b_Jingle";
    Control* found = find(named);
    if (found != nullptr) return found;
    // Chance may ask for what was never opened.
    line_ == 0 ? ignored(action) : fail("there is no control " + nameOf(named));
    return nullptr;
}

void Player::ignored(const Action& action) { noteEvent("ignored", actionText(action)); }

void Player::plugDevice(const Action& action) {
    const bool comes = action.verb == Verb::plug;
    if (action.name.empty()) {
        OfflineDevices& sound = *Stage::instance().devices;
        comes ? sound.plug(action.text) : sound.unplug(action.text);
        return;
    }
    const MidiDirections which{action.name != "midi-out", action.name != "midi-in"};
    MidiDevices& midi = MidiDevices::instance();
    comes ? midi.plug(action.text, which) : midi.unplug(action.text, which);
}

void Player::pressButton(const Action& action) {
    Control* button = control(action);
    if (button == nullptr) return;
    Stage& stage = Stage::instance();
    const int mods = stage.mods;
    bool reached = true;
    stage.mouseWindow = windowOf(*button).name;
    stage.heldKeys.erase(kLeftMouse);
    if (action.verb == Verb::down) stage.heldKeys.insert(kLeftMouse);
    if (action.verb != Verb::up) reached = shell::mouseDown(*button, MouseButton::left, mods);
    if (action.verb != Verb::down) reached = shell::mouseUp(*button, MouseButton::left, mods) && reached;
    if (!reached) ignored(action);
}

void Player::clickControl(const Action& action) {
    Control* target = control(action);
    if (target == nullptr) return;
    const int mods = Stage::instance().mods;
    bool reached = false;
    Stage::instance().mouseWindow = windowOf(*target).name;
    if (action.verb == Verb::dblclick)
        reached = shell::doubleClick(*target, mods);
    else if (action.verb == Verb::rclick)
        reached = shell::click(*target, MouseButton::right, mods);
    else
        reached = shell::click(*target, MouseButton::left, mods);
    if (!reached) ignored(action);
}

void Player::selectRow(Control& list, const std::string& text) {
    const std::vector<std::string>& items = list.items();
    const auto row = std::ranges::find(items, text);
    int index = static_cast<int>(row - items.begin());
    if (row == items.end()) {
        const std::optional<double> number = asNumber(text);
        if (!number || *number < 0 || *number >= static_cast<double>(items.size())) {
            fail(list.name + " has no row \"" + text + "\"");
            return;
        }
        index = static_cast<int>(*number);
    }
    if (!shell::selectRow(list, index)) noteEvent("ignored", "row " + text + " of " + list.name);
}

void Player::setControl(const Action& action) {
    Control* target = control(action);
    if (target == nullptr) return;
    bool reached = true;
    switch (target->kind) {
        case ControlKind::listBox:
        case ControlKind::tabs:
            reached = takesNow(*target, nullptr);
            if (reached) selectRow(*target, action.text);
            break;
        case ControlKind::comboBox:
            // One that can be typed into takes any text, as a keyboard gives it.
            if (std::ranges::find(target->items(), action.text) != target->items().end() ||
                !shell::typeText(*target, action.text))
                selectRow(*target, action.text);
            break;
        case ControlKind::textBox:
        case ControlKind::number:
            reached = shell::typeText(*target, action.text);
            break;
        case ControlKind::slider:
        case ControlKind::checkBox:
        case ControlKind::option: {
            const std::optional<double> value = asNumber(action.text);
            if (!value) {
                fail(nameOf(action) + " takes a number, not \"" + action.text + "\"");
            } else if (target->kind == ControlKind::slider) {
                reached = shell::moveSlider(*target, static_cast<int>(*value));
            } else {
                reached = shell::setTicked(*target, *value != 0);
            }
            break;
        }
        default:
            fail(nameOf(action) + " cannot be set; click it");
            break;
    }
    if (!reached) ignored(action);
}

void Player::pickPalette(const Action& action) {
    Action set = action;
    set.name = "lstPal";
    setControl(set);
}

void Player::expectValue(const Action& action) {
    std::optional<std::string> is;
    const Control* found = find(action);
    std::string property = action.property;
    if (found == nullptr && !action.window.empty() && property.empty()) {
        found = findControl(action.window);  // WINDOW.PROPERTY
        property = action.name;
    }
    if (found != nullptr) {
        bool known = true;
        if (found->kind == ControlKind::window && property == "clipped")
            is = shell::clippedTexts(*found);
        else
            is = property.empty() ? ownValue(*found) : propertyText(*found, property, known);
        if (!known) is.reset();
    }
    if (!is && program_.value) is = program_.value(nameOf(action));
    if (!is) {
        fail("nothing is known of " + nameOf(action));
    } else if (!holds(*is, action.compare, action.text)) {
        fail(actionText(action) + ": it is \"" + *is + "\"");
    }
}

void Player::shoot(const Action& action) {
    Control* window = control(action);
    if (window == nullptr) return;
    const std::string file = (std::filesystem::path(options_.out) / action.text).string();
    if (!grabWindow(*window, file)) fail("the picture " + action.text + " could not be made");
}

void Player::hear(const Action& action) {
    int error = 0;
    const std::unique_ptr<engine::Decoder> decoder =
        makeFileDecoders()->openFile(Stage::instance().file(action.text), error);
    if (!decoder) {
        fail("the sound " + action.text + " cannot be opened");
        return;
    }
    const engine::SoundFormat format = decoder->format();
    std::vector<float> stereo, block(std::size_t{4096} * format.channels);
    while (const std::size_t frames = decoder->read(block)) {
        for (std::size_t i = 0; i < frames; ++i) {
            const float* frame = &block[i * format.channels];
            stereo.push_back(frame[0]);
            stereo.push_back(format.channels > 1 ? frame[1] : frame[0]);
        }
    }
    Stage::instance().devices->feedInput(kMicrophone, std::move(stereo), format.rate);
}

void Player::scatterRandom(const Action& action) {
    const std::int64_t length = pending_.begin()->first - action.at;
    random_.emplace_back(action.number != 0 ? static_cast<std::uint64_t>(action.number) : options_.seed,
                         action.verb == Verb::chaos    ? Chance::edits
                         : action.verb == Verb::mixing ? Chance::mix
                                                       : Chance::show);
    RandomShow& chance = random_.back();
    for (std::int64_t i = 0; i < action.count; ++i) {
        Action one;
        one.verb = Verb::random;
        const std::int64_t slot = std::max<std::int64_t>(length / action.count, 1);
        one.at = action.at + length * i / action.count +
                 static_cast<std::int64_t>(chance.number(static_cast<std::uint64_t>(slot)));
        add(std::move(one));
    }
}

void Player::performRandom() {
    Pressable there;
    for (int i = 0; i < kButtons; ++i) {
        const Control* button = findControl("b_Jingle", i);
        if (button != nullptr && button->visible()) there.buttons.push_back(i);
    }
    there.palettes = findControl("lstPal")->items();
    std::vector<Action> steps = random_.back().next(there);
    noteEvent("random", actionText(steps.front()));
    for (std::size_t i = 1; i < steps.size(); ++i) {
        steps[i].at += monotonicMs() - Stage::instance().startMs;
        add(std::move(steps[i]));
    }
    perform(steps.front());
}

std::string Player::chooseFromMenu(const std::vector<MenuItem>& items) {
    std::string names;
    for (const MenuItem& item : items) {
        if (item.caption != "-")
            names += (names.empty() ? "" : " ") + item.name + (item.enabled ? "" : "(disabled)");
    }
    noteEvent("menu", names);
    while (const Action* next = reachNext({})) {
        const Verb verb = next->verb;
        if (verb != Verb::menu && !leavesMenuOpen(verb)) return {};  // a click elsewhere closes it
        const Action action = takeNext();
        if (verb != Verb::menu) {
            perform(action);
            continue;
        }
        const auto item = std::ranges::find(items, action.name, &MenuItem::name);
        line_ = action.line;
        if (item == items.end() && action.line == 0)
            ignored(action);
        else if (item == items.end())
            fail("the open menu has no " + action.name + "; it has " + names);
        else if (!item->enabled)
            noteEvent("ignored", actionText(action) + " (disabled)");
        return item != items.end() && item->enabled ? action.name : std::string{};
    }
    return {};
}

void Player::checkAfterTick() {
    if (!program_.fault) return;
    Timer* tick = findTimer(kDisplayTick);
    tick->handler = [this, handler = tick->handler] {
        handler();
        if (const std::string fault = program_.fault(); !fault.empty()) fail(fault);
    };
}

}  // namespace zv
