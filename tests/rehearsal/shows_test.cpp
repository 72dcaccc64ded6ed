// Whole shows: a script in tests/rehearsal/shows is performed, and all that came of it is compared with the text that
// was approved beside it: status, messages, logs, what both outputs sent, the files that the program left. Lines of the
// script that begin with "#:" say what it is performed with:
//     #: with --midi Pad                  further arguments
//     #: sound tone.wav a200 b300         a sound in Audio_Sample (tests/support/ear.h)
//     #: palette.ini [Test]|Path_0=...    a file in the program folder, "|" for line ends; zv.ini gets the lines added
//     #: look zv.ini Volume=|Device=      lines of a file that is too long to be looked at whole
#include <algorithm>
#include <set>

#include "show.h"
#include "tests/support/approved.h"
#include "tests/support/ear.h"

namespace zv::test {
namespace {

namespace fs = std::filesystem;

/// Every start makes these.
const std::set<std::string> kUsual{
    "zv.ini",        "language.ini",        "account.ini",        "DISPpresets.ini",        "VUpresets.ini",
    "FXpresets.ini", "palette_backup1.ini", "palette_pre100.ini", "HotJingles_backup1.ini", ".zentrova.lock",
    "urls.txt"};

std::string replaced(std::string text, const std::string& what, const std::string& with) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
        text.replace(at, what.size(), with);
    return text;
}

/// The lines of `text` that hold one of the words, which "|" separates; those that hold none when not `with`.
std::string linesWith(const std::string& text, const std::string& words, bool with = true) {
    std::string out;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream wanted(words);
        bool holds = false;
        for (std::string word; std::getline(wanted, word, '|');)
            holds = holds || line.find(word) != std::string::npos;
        if (holds == with) out += line + "\n";
    }
    return out;
}

/// The lines that are new in `now`, each with "+" and the section that it stands in, and those that are gone.
std::string changedLines(const std::string& before, const std::string& now) {
    const auto linesOf = [](const std::string& text) {
        std::vector<std::string> all;
        std::istringstream lines(text);
        std::string section;
        for (std::string line; std::getline(lines, line);)
            line.starts_with('[')          ? section = line.substr(0, line.find(']') + 1),
                                    void() : all.push_back(section + line);
        return all;
    };
    std::string text;
    const std::vector<std::string> is = linesOf(now), was = linesOf(before);
    for (const auto& [sign, these, those] : {std::tuple("+", &is, &was), {"-", &was, &is}})
        for (const std::string& line : *these)
            if (std::ranges::find(*those, line) == those->end()) text += sign + line + "\n";
    return text;
}

class Shows : public testing::TestWithParam<std::string> {
  protected:
    /// Does what a line behind "#:" says.
    void prepare(const std::string& line) {
        std::istringstream words(line);
        std::string what, name, rest;
        words >> what;
        if (what != "sound" && what != "look" && what != "with") name = what;
        if (what == "sound" || what == "look") words >> name;
        std::getline(words >> std::ws, rest);
        if (what == "with")
            arguments += rest + " ";
        else if (what == "sound")
            writeWav(show.home() / "Audio_Sample" / name, tones(rest));
        else if (what == "look")
            looks.emplace_back(name, rest);
        else
            show.write(name, (name == "zv.ini" ? contents(show.home() / name) : "") +
                                 replaced(rest + "|", "|", "\r\n"));
    }
    std::string section(const std::string& name, const std::string& text) const {
        if (text.empty()) return {};
        const std::string here = replaced(replaced(text, show.home().string(), "HOME"), binDir(), "BIN");
        std::string plain = replaced(here, "\r\n", "\n");
        if (plain.ends_with('\n')) plain.pop_back();
        if (name == "events.log") return "[" + name + "]\n" + plain + "\n";
        return "[" + name + "] " + replaced(plain, "\n", " | ") + "\n";
    }
    std::map<std::string, std::string> files() const {
        std::map<std::string, std::string> found;
        for (const auto& entry : fs::recursive_directory_iterator(show.home()))
            if (entry.is_regular_file())
                found[fs::relative(entry.path(), show.home()).string()] = contents(entry.path());
        return found;
    }
    /// What is new or another since `before`; of sounds the names.
    std::string changed(const std::map<std::string, std::string>& before) const {
        std::string text, sounds;
        for (const auto& [name, bytes] : files()) {
            const auto old = before.find(name);
            if (kUsual.contains(name) || (old != before.end() && old->second == bytes)) continue;
            if (name.starts_with("Audio_Sample"))
                sounds += "new: " + name + "\n";
            else
                text += section(name, old == before.end() ? bytes : changedLines(old->second, bytes));
        }
        for (const auto& [name, bytes] : before)
            if (!fs::exists(show.home() / name)) sounds += "gone: " + name + "\n";
        return text + sounds;
    }

    Show show;
    std::string arguments;
    std::vector<std::pair<std::string, std::string>> looks;
};

TEST_P(Shows, LeaveWhatWasApproved) {
    const std::string file = "rehearsal/shows/" + GetParam();
    const std::string script = contents(sourceDir() + "/tests/" + file + ".txt");
    std::istringstream lines(script);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("#: ")) prepare(line.substr(3));
    const auto before = files();
    const int status = show.perform(script, arguments);
    std::string text = "status " + std::to_string(status) + "\n";
    text += replaced(show.messages(), show.home().parent_path().string() + "/", "");
    std::string told = "\tmark\thide|\tmark\twait|\tfailed\texpect |\tmenu\tmnuAss mnuClr ";
    std::istringstream messages(show.messages());
    for (std::string line; std::getline(messages, line);)  // "script.txt:4: at 0: text"
        if (const std::size_t at = line.find(": at "); at != std::string::npos)
            told += "|\tfailed\t" + line.substr(line.find(": ", at + 1) + 2);
    text += section("events.log", linesWith(show.result("events.log"), told, false));
    for (const char* log : {"midi.log", "web.log"})
        text += section(log, replaced(replaced(show.result(log), "\n", "; "), "\t", " "));
    const bool same = show.result("main.wav") == show.result("aux.wav");
    text += section(same ? "main.wav, aux.wav" : "main.wav", whatIsHeard(show.heard()));
    if (!same) text += section("aux.wav", whatIsHeard(show.heard("aux.wav")));
    text += changed(before);
    for (const auto& [name, words] : looks)
        text += section(
            name, linesWith(name == "state.json" ? show.result(name) : contents(show.home() / name), words));
    expectApproved(file + ".approved", text);
}

std::vector<std::string> scripts() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(sourceDir() + "/tests/rehearsal/shows"))
        if (entry.path().extension() == ".txt") names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

INSTANTIATE_TEST_SUITE_P(All, Shows, testing::ValuesIn(scripts()), [](const auto& one) { return one.param; });

}  // namespace
}  // namespace zv::test
