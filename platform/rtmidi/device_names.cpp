#include "platform/rtmidi/device_names.h"

#include <algorithm>
#include <regex>

namespace zv {

std::string cleanMidiName(std::string_view port) {
    // Numbers of a client and its port; a client's number; the direction in brackets, in or at the end of a name.
    static const std::regex numbers(R"(\s*\b\d+:\d+\b|\s*\[\d+\])");
    static const std::regex direction(
        R"(\s*\((capture|playback)(_\d+)?\)|_(capture|playback)\b|_(capture|playback)(?=_))");
    static const std::regex lastWord(R"([ _.:-](in|out|input|output)(?=([ _]\d+)?$))", std::regex::icase);
    static const std::regex blanks(R"(\s{2,})");
    std::string name(port);
    name = std::regex_replace(name, numbers, "");
    name = std::regex_replace(name, direction, "");
    name = std::regex_replace(name, lastWord, "");
    name = std::regex_replace(name, blanks, " ");
    while (!name.empty() && name.back() == ' ') name.pop_back();
    // "Pad:Pad MIDI 1": the client's name once is enough.
    if (const std::size_t colon = name.find(':'); colon != std::string::npos) {
        const std::string client = name.substr(0, colon);
        if (name.compare(colon + 1, client.size(), client) == 0) name.erase(0, colon + 1);
    }
    return name;
}

std::vector<std::string> distinctMidiNames(const std::vector<std::string>& ports) {
    std::vector<std::string> names;
    for (const std::string& port : ports) {
        const std::string clean = cleanMidiName(port);
        std::string name = clean;
        for (int n = 2; std::ranges::find(names, name) != names.end(); ++n)
            name = clean + " (" + std::to_string(n) + ")";
        names.push_back(std::move(name));
    }
    return names;
}

}  // namespace zv
