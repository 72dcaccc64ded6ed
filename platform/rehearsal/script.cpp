#include "platform/rehearsal/script.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <optional>
#include <stdexcept>
#include <utility>

#include "platform/rehearsal/virtual_clock.h"

namespace zv {
namespace {

constexpr int kLastButton = 119;
constexpr int kFirstHotButton = 96;
constexpr std::int64_t kLongestRehearsalMs = 48LL * 3600 * 1000;
constexpr std::int64_t kMostRandomActions = 10'000'000;
constexpr std::int64_t kLargestWindow = 8192;
constexpr std::string_view kWindowStem = "frm";
constexpr std::int64_t kLeastStatus = 100, kMostStatus = 599, kUsualStatus = 200;
constexpr std::int64_t kLeastGrid = 4, kMostRows = 8, kMostColumns = 12;

/// What is wrong with a line.
class Fault : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

constexpr std::array<std::pair<std::string_view, Verb>, 29> kVerbs{{
    {"press", Verb::press},       {"down", Verb::down},     {"up", Verb::up},
    {"mods", Verb::mods},         {"key", Verb::key},       {"keydown", Verb::keydown},
    {"keyup", Verb::keyup},       {"click", Verb::click},   {"rclick", Verb::rclick},
    {"dblclick", Verb::dblclick}, {"set", Verb::set},       {"menu", Verb::menu},
    {"pick", Verb::pick},         {"midi", Verb::midi},     {"plug", Verb::plug},
    {"unplug", Verb::unplug},     {"answer", Verb::answer}, {"drop", Verb::drop},
    {"time", Verb::time},         {"mic", Verb::mic},       {"shot", Verb::shot},
    {"resize", Verb::resize},     {"expect", Verb::expect}, {"random", Verb::random},
    {"grid", Verb::grid},         {"chaos", Verb::chaos},   {"mixing", Verb::mixing},
    {"web", Verb::web},           {"end", Verb::end},
}};

constexpr std::array<std::pair<std::string_view, Key>, 16> kKeys{{
    {"backspace", Key::backspace},
    {"tab", Key::tab},
    {"enter", Key::enter},
    {"escape", Key::escape},
    {"space", Key::space},
    {"pageup", Key::pageUp},
    {"pagedown", Key::pageDown},
    {"end", Key::end},
    {"home", Key::home},
    {"left", Key::left},
    {"up", Key::up},
    {"right", Key::right},
    {"down", Key::down},
    {"insert", Key::insert},
    {"delete", Key::del},
    {"esc", Key::escape},
}};

std::string lower(std::string_view text) {
    std::string out(text);
    std::ranges::transform(out, out.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return out;
}

bool blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::string_view trim(std::string_view text) {
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    return text;
}

/// The line without its comment: "#" at the start or behind a blank, outside of quotes.
std::string_view withoutComment(std::string_view line) {
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"') quoted = !quoted;
        if (line[i] == '#' && !quoted && (i == 0 || blank(line[i - 1]))) return line.substr(0, i);
    }
    return line;
}

/// Reads a line word by word; a word in double quotes may hold blanks.
class Words {
  public:
    explicit Words(std::string_view line) : rest_(trim(line)) {}

    bool empty() const { return rest_.empty(); }

    std::string next(std::string_view what) {
        if (rest_.empty()) throw Fault(std::string(what) + " is missing");
        if (rest_.front() == '"') return quoted();
        std::size_t n = 0;
        while (n < rest_.size() && !blank(rest_[n])) ++n;
        std::string word(rest_.substr(0, n));
        rest_ = trim(rest_.substr(n));
        return word;
    }

    /// All that is left: a name, a value, a path.
    std::string rest(std::string_view what) {
        if (rest_.empty()) throw Fault(std::string(what) + " is missing");
        if (rest_.front() == '"') {
            std::string text = quoted();
            done();
            return text;
        }
        return std::string(std::exchange(rest_, {}));
    }

    void done() const {
        if (!rest_.empty()) throw Fault("\"" + std::string(rest_) + "\" is too much");
    }

  private:
    std::string quoted() {
        const std::size_t end = rest_.find('"', 1);
        if (end == std::string_view::npos) throw Fault("a quote is not closed");
        std::string word(rest_.substr(1, end - 1));
        rest_ = trim(rest_.substr(end + 1));
        return word;
    }

    std::string_view rest_;
};

std::optional<std::int64_t> wholeNumber(std::string_view text) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return value;
}

std::int64_t number(const std::string& text, std::int64_t low, std::int64_t high, std::string_view what) {
    const std::optional<std::int64_t> value = wholeNumber(text);
    if (!value) throw Fault(std::string(what) + " \"" + text + "\" is no whole number");
    if (*value < low || *value > high) {
        throw Fault(std::string(what) + " " + text + " is not in " + std::to_string(low) + " to " +
                    std::to_string(high));
    }
    return *value;
}

int button(const std::string& text) {
    if (!text.empty() && (text.front() == 'H' || text.front() == 'h')) {
        return kFirstHotButton +
               static_cast<int>(number(text.substr(1), 0, kLastButton - kFirstHotButton, "hot jingle"));
    }
    return static_cast<int>(number(text, 0, kLastButton, "button"));
}

/// "ckTab(1)" into name and index.
void splitIndex(std::string_view text, std::string& name, int& index) {
    if (const std::size_t open = text.find('('); open != std::string_view::npos) {
        if (text.back() != ')') throw Fault("\"" + std::string(text) + "\" lacks its \")\"");
        index = static_cast<int>(
            number(std::string(text.substr(open + 1, text.size() - open - 2)), 0, 1000, "index"));
        text = text.substr(0, open);
    }
    if (text.empty()) throw Fault("a name is missing in front of \".\" or \"(\"");
    name = std::string(text);
}

/// "lblDate.visible" into name and property, "J(3).State" into name, index and property, "frmFX.btOK.enabled"
/// into window, name and property. Windows are told by their names, which begin with "frm".
void splitName(const std::string& text, Action& action) {
    std::string_view name = text;
    const auto part = [&] {
        const std::size_t dot = name.find('.');
        const std::string_view first = name.substr(0, dot);
        name = dot == std::string_view::npos ? std::string_view{} : name.substr(dot + 1);
        if (dot != std::string_view::npos && name.empty()) throw Fault("\"" + text + "\" ends in a point");
        return first;
    };
    std::string_view first = part();
    if (lower(first.substr(0, kWindowStem.size())) == kWindowStem && !name.empty()) {
        action.window = std::string(first);
        first = part();
    }
    splitIndex(first, action.name, action.index);
    action.property = std::string(name);
}

void readControl(Words& words, Action& action) {
    splitName(words.next("the control"), action);
    if (!action.property.empty()) throw Fault("\"" + action.name + "\": a property has no place here");
}

/// A jingle button by its number, or any control.
void readTarget(const std::string& text, Action& action) {
    const bool numbered =
        text.find_first_not_of("0123456789", text.front() == 'H' ? 1 : 0) == std::string::npos;
    if (numbered) {
        action.index = button(text);
    } else {
        splitName(text, action);
    }
}

void readExpect(Words& words, Action& action) {
    splitName(words.next("what is expected"), action);
    action.compare = "=";
    std::string value = words.empty() ? std::string{} : words.rest("the value");
    for (const std::string_view sign : {"!=", "<=", ">=", "=", "<", ">"}) {
        if (value.size() > sign.size() && value.starts_with(sign) && blank(value[sign.size()])) {
            action.compare = std::string(sign);
            Words behind(std::string_view(value).substr(sign.size()));
            action.text = behind.rest("the value");
            return;
        }
    }
    action.text = std::move(value);
}

int readMods(Words& words) {
    int mods = 0;
    while (!words.empty()) {
        const std::string word = lower(words.next("a modifier"));
        if (word == "shift")
            mods |= kShiftMask;
        else if (word == "ctrl")
            mods |= kCtrlMask;
        else if (word == "alt")
            mods |= kAltMask;
        else
            throw Fault("\"" + word + "\" is no modifier key (ctrl, shift, alt)");
    }
    return mods;
}

void readTime(Words& words, Action& action) {
    action.text = words.rest("the time");
    std::int64_t ms = 0;
    if (!parseWallTime(action.text, 0, ms))
        throw Fault("\"" + action.text + "\" is no time (HH:MM:SS, a date in front)");
}

void readMidi(Words& words, Action& action) {
    action.text = words.next("the message");
    const bool hex = std::ranges::all_of(action.text, [](unsigned char c) { return std::isxdigit(c) != 0; });
    if (action.text.size() != 6 || !hex)
        throw Fault("\"" + action.text + "\" is no message of six hexadecimal digits");
    if (!words.empty()) action.name = words.rest("the device");
}

/// "Sound card", or "midi Pad", "midi-in Pad", "midi-out Pad": the kind becomes the name.
void readDevice(Words& words, Action& action) {
    action.text = words.rest("the device");
    const std::string_view device = action.text;
    const std::string_view kind = device.substr(0, device.find(' '));
    if (kind != "midi" && kind != "midi-in" && kind != "midi-out") return;
    const std::string_view name = trim(device.substr(kind.size()));
    if (name.empty()) throw Fault("the device is missing");
    action.name = std::string(kind);
    action.text = Words(name).rest("the device");
}

/// A jingle button by its number, "H" in front for the hot ones, or any control by its name.
void readHeld(Words& words, Action& action) {
    const std::string word = words.next("the button");
    const std::string_view digits = std::string_view(word).substr(word[0] == 'H' || word[0] == 'h' ? 1 : 0);
    if (!digits.empty() && (std::isdigit(static_cast<unsigned char>(digits[0])) != 0 || digits[0] == '-'))
        action.index = button(word);
    else
        splitName(word, action);
    if (!action.property.empty()) throw Fault("\"" + action.name + "\": a property has no place here");
}

void readWeb(Words& words, Action& action) {
    action.name = words.next("the address");
    action.text = words.next("the file, \"off\" or \"hang\"");
    action.number = kUsualStatus;
    if (!words.empty()) action.number = number(words.next("the status"), kLeastStatus, kMostStatus, "status");
    if (!words.empty()) action.property = words.rest("the content type");
}

void readArguments(Words& words, Action& action) {
    switch (action.verb) {
        case Verb::press:
            action.index = button(words.next("the button"));
            break;
        case Verb::down:
        case Verb::up:
            readHeld(words, action);
            break;
        case Verb::web:
            readWeb(words, action);
            break;
        case Verb::drop:
            readTarget(words.next("the button"), action);
            action.text = words.rest("the files");
            break;
        case Verb::mods:
            action.mods = readMods(words);
            break;
        case Verb::key:
        case Verb::keydown:
        case Verb::keyup:
            action.name = words.next("the key");
            action.key = keyByName(action.name);
            if (action.key == Key::none) throw Fault("\"" + action.name + "\" is no key");
            break;
        case Verb::click:
        case Verb::rclick:
        case Verb::dblclick:
            readControl(words, action);
            break;
        case Verb::set:
            readControl(words, action);
            action.text = words.empty() ? std::string{} : words.rest("the value");
            break;
        case Verb::menu:
            action.name = words.next("the menu item");
            break;
        case Verb::pick:
            action.text = words.rest("the palette");
            break;
        case Verb::midi:
            readMidi(words, action);
            break;
        case Verb::plug:
        case Verb::unplug:
            readDevice(words, action);
            break;
        case Verb::answer:
            action.text = words.rest("the answer");
            break;
        case Verb::time:
            readTime(words, action);
            break;
        case Verb::mic:
            action.text = words.rest("the file");
            break;
        case Verb::shot:
            action.name = "frmMain";
            action.text = words.next("the picture's file");
            if (!words.empty()) {
                action.name = action.text;
                action.text = words.next("the picture's file");
            }
            break;
        case Verb::resize:
            action.count = number(words.next("the width"), 1, kLargestWindow, "width");
            action.number = number(words.next("the height"), 1, kLargestWindow, "height");
            break;
        case Verb::expect:
            readExpect(words, action);
            break;
        case Verb::grid:
            action.count = number(words.next("the rows"), kLeastGrid, kMostRows, "rows");
            action.number = number(words.next("the columns"), kLeastGrid, kMostColumns, "columns");
            break;
        case Verb::random:
        case Verb::chaos:
        case Verb::mixing:
            action.count = number(words.next("the count"), 1, kMostRandomActions, "count");
            action.number = number(words.next("the seed"), 0, INT64_MAX, "seed");
            break;
        case Verb::end:
            break;
    }
    words.done();
}

Action readLine(std::string_view line, int lineNumber) {
    Action action;
    action.line = lineNumber;
    Words words(line);
    if (words.next("\"at\"") != "at") throw Fault("a line begins with \"at\" and a time");
    action.at = number(words.next("the time"), 0, kLongestRehearsalMs, "time");
    const std::string verb = words.next("what to do");
    const auto found =
        std::ranges::find(kVerbs, std::string_view(verb), &std::pair<std::string_view, Verb>::first);
    if (found == kVerbs.end()) throw Fault("\"" + verb + "\" is nothing that can be done");
    action.verb = found->second;
    readArguments(words, action);
    return action;
}

}  // namespace

Script parseScript(std::string_view text) {
    Script script;
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    const Action* last = nullptr;
    int lineNumber = 0;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = trim(withoutComment(text.substr(0, end)));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        ++lineNumber;
        if (line.empty()) continue;
        try {
            Action action = readLine(line, lineNumber);
            if (last != nullptr && last->verb == Verb::end) throw Fault("nothing may follow \"end\"");
            if (last != nullptr && action.at < last->at) {
                throw Fault("time " + std::to_string(action.at) + " comes before the " +
                            std::to_string(last->at) + " of line " + std::to_string(last->line));
            }
            script.actions.push_back(std::move(action));
            last = &script.actions.back();
        } catch (const Fault& fault) {
            script.faults.push_back({lineNumber, fault.what()});
        }
    }
    if (script.faults.empty() && (last == nullptr || last->verb != Verb::end)) {
        script.faults.push_back({lineNumber, "the script has no \"end\""});
    }
    return script;
}

Key keyByName(std::string_view name) {
    const std::string wanted = lower(name);
    const auto found =
        std::ranges::find(kKeys, std::string_view(wanted), &std::pair<std::string_view, Key>::first);
    if (found != kKeys.end()) return found->second;
    if (wanted.size() == 1 && std::isalnum(static_cast<unsigned char>(wanted[0])) != 0) {
        return static_cast<Key>(std::toupper(static_cast<unsigned char>(wanted[0])));
    }
    if (wanted.size() > 1 && wanted[0] == 'f') {
        const std::optional<std::int64_t> n = wholeNumber(std::string_view(wanted).substr(1));
        if (n && *n >= 1 && *n <= 12)
            return static_cast<Key>(static_cast<int>(Key::f1) + static_cast<int>(*n) - 1);
    }
    return Key::none;
}

std::string_view verbName(Verb verb) {
    return std::ranges::find(kVerbs, verb, &std::pair<std::string_view, Verb>::second)->first;
}

}  // namespace zv
