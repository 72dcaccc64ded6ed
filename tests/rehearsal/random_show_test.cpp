// What chance does: every kind of action with its share, its bounds and its steps, as approved.
#include "platform/rehearsal/random_show.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/rehearsal/player.h"
#include "tests/support/approved.h"

namespace zv::test {
namespace {

constexpr int kActions = 60'000;

/// Least and most of the numbers of one place in an action.
struct Range {
    std::int64_t least = INT64_MAX, most = INT64_MIN;
    void add(std::int64_t value) { least = std::min(least, value), most = std::max(most, value); }
    std::string text() const {
        return std::to_string(least) + (least == most ? "" : ".." + std::to_string(most));
    }
};

/// The action with "%" for each of its numbers, which go to `numbers`.
std::string form(const Action& action, std::vector<std::int64_t>& numbers) {
    std::string out;
    const std::string text = actionText(action) +
                             (action.mods != 0 ? " mods " + std::to_string(action.mods) : "") +
                             (action.key != Key::none ? " key" : "") + " at " + std::to_string(action.at);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool number = std::isdigit(static_cast<unsigned char>(text[i])) != 0 &&
                            (text[i - 1] == ' ' || (text[i - 1] == '(' && text.compare(0, 3, "set") != 0));
        if (!number) {
            out += text[i];
            continue;
        }
        std::size_t digits = 0;
        numbers.push_back(std::stoll(text.substr(i), &digits));
        i += digits - 1;
        out += '%';
    }
    return out;
}

TEST(RandomShow, ActsInItsSharesAndBounds) {
    Pressable there;
    there.buttons.resize(40);
    std::iota(there.buttons.begin(), there.buttons.end(), 0);
    there.palettes = {"A", "B"};
    std::string text;
    std::set<std::string> told;  ///< all kinds do what a show does
    for (const auto& [name, kind] : {std::pair("show", Chance::show), std::pair("edits", Chance::edits),
                                     std::pair("mix", Chance::mix)}) {
        RandomShow chance(1, kind);
        struct Seen {
            int times = 0;
            std::vector<Range> ranges;
        };
        std::map<std::string, Seen> all;
        for (int i = 0; i < kActions; ++i) {
            std::string steps;
            std::vector<std::int64_t> numbers;
            for (const Action& step : chance.next(there))
                steps += (steps.empty() ? "" : ", ") + form(step, numbers);
            Seen& seen = all[steps];
            ++seen.times;
            seen.ranges.resize(numbers.size());
            for (std::size_t n = 0; n < numbers.size(); ++n) seen.ranges[n].add(numbers[n]);
        }
        text += std::string("[") + name + "]";
        std::string verb;  ///< kinds of one first word share a line
        for (const auto& [steps, seen] : all) {
            if (kind != Chance::show && told.contains(steps)) continue;
            told.insert(steps);
            std::size_t next = 0;
            const std::string first = steps.substr(0, steps.find(' '));
            text += (first == std::exchange(verb, first) ? "; " : "\n") + std::to_string(seen.times) + " x ";
            for (const char c : steps) text += c == '%' ? seen.ranges[next++].text() : std::string(1, c);
        }
        text += "\n";
    }
    text += "nothing there: " + actionText(RandomShow(3, Chance::show).next({}).front()) + "\n";
    RandomShow numbers(1);
    for (int i = 0; i < 8; ++i) text += std::to_string(numbers.number(1000)) + (i < 7 ? " " : "\n");
    expectApproved("rehearsal/random_show.approved", text);
}

}  // namespace
}  // namespace zv::test
