// Any bytes as an INI file, any operations on it: nothing crashes, what is written reads back, and what is
// kept beside the bytes is what the bytes would give when they are read anew.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "startup/ini_text.h"

namespace {

using zv::IniText;

/// Takes pieces off the front of the input.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : bytes_(reinterpret_cast<const char*>(data), size) {}
    bool empty() const { return bytes_.empty(); }
    unsigned byte() { return empty() ? 0U : static_cast<unsigned char>(take(1)[0]); }
    std::string text(std::size_t most) { return take(byte() % (most + 1)); }
    std::string rest() { return take(bytes_.size()); }

  private:
    std::string take(std::size_t n) {
        std::string out = bytes_.substr(0, n);
        bytes_.erase(0, n);
        return out;
    }
    std::string bytes_;
};

void require(bool holds) {
    if (!holds) std::abort();
}

/// A value that comes back as it is: no blanks, quotes or ends to lose.
bool plain(const std::string& value) {
    if (value.empty() || value.size() > 255 || !zv::validUtf8(value)) return false;
    for (const char c : value) {
        if (c == '\0' || c == '\r' || c == '\n') return false;
    }
    const bool quoted =
        value.size() > 1 && value.front() == value.back() && (value[0] == '"' || value[0] == '\'');
    return !quoted && zv::trimmedBlanks(value).size() == value.size();
}

void sameAnew(IniText& text) {
    IniText again(text.bytes());
    require(again.sectionNames() == text.sectionNames());
    for (const std::string& name : text.sectionNames()) {
        const auto lines = text.lines(name);
        require(lines == again.lines(name));
        for (const auto& [key, value] : lines)
            require(text.value(name, key) == value && zv::validUtf8(value));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    struct Step {
        unsigned what;
        std::string section, key, value;
    };
    std::vector<Step> steps(input.byte() % 6);
    for (Step& s : steps) s = {input.byte(), input.text(8), input.text(8), input.text(24)};
    IniText text(input.rest());
    sameAnew(text);
    for (const Step& s : steps) {
        const std::string before = text.bytes();
        bool changed = false;
        switch (s.what % 4) {
            case 0:
                changed = text.put(s.section, s.key, s.value);
                if (changed && plain(s.value)) require(text.value(s.section, s.key) == s.value);
                if (changed && s.value.empty()) require(!text.value(s.section, s.key));
                break;
            case 1:
                changed = text.eraseSection(s.section);
                require(!changed || text.lines(s.section).empty());
                break;
            case 2:
                changed = text.replaceSection(s.section, {{s.key, s.value}, {s.value, s.key}});
                break;
            default:
                changed = text.mergeSection(s.section, {{s.key, s.value}, {s.value, s.key}});
                break;
        }
        require(changed || text.bytes() == before);
        sameAnew(text);
    }
    return 0;
}
