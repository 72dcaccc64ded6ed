// Chance on a surface: thousands of messages, plugging and unplugging among them; afterwards the lamps that were sent
// agree with the records.

#include <cstdlib>
#include <random>

#include "tests/midi/surface.h"

namespace zv::test {
namespace {

constexpr int kPads = 24, kSettle = 5000;

/// Messages, and the longest pause between two of them, ms: some seconds in all, or with ZV_HOUR an hour.
std::pair<int, int> length() {
    return std::getenv("ZV_HOUR") != nullptr ? std::pair(10'000, 2160) : std::pair(2'500, 40);
}

/// The lamps as a surface keeps them: the last data 2 of each note.
class Lamps {
  public:
    void note(std::uint32_t message) { last_[message >> 8 & 0x7F] = message >> 16 & 0x7F; }
    int of(int note) const {
        const auto found = last_.find(static_cast<unsigned>(note));
        return found == last_.end() ? -1 : static_cast<int>(found->second);
    }

  private:
    std::map<unsigned, unsigned> last_;
};

// Data 2 of the messages: down 1, available 2, unavailable 3, playing 4.
TEST_F(SurfaceTest, AfterAnHourOfChanceTheLampsAgreeWithTheRecords) {
    std::vector<std::string> lines{"PaletteScroll=B01041,B0103F", "StopAll=9078,907800", "MainVolume=B007,0",
                                   "AutoRepeat=9079,907900", "OutAutoRepeat=A07901,A07902,A07903"};
    for (int i = 0; i < kPads; ++i) {
        const std::string note = HexByte(i), number = std::to_string(i);
        lines.push_back("Jingle" + number + "=90" + note + ",80" + note + "40,255");
        lines.push_back("OutJingle" + number + "=A0" + note + "01,A0" + note + "02,A0" + note + "03,A0" +
                        note + "04");
    }
    const char* const modes[] = {"", "PlayMod=1", "PlayMod=2", "PlayMod=3", "PlayMod=4", "Loop=1"};
    for (int i = 0; i < kPads - 2; ++i)
        load(i, 100 + 37 * i, modes[static_cast<std::size_t>(i) % std::size(modes)]);
    start(lines);
    Lamps lamps;
    devices_.onSent = [&](const std::string& device, std::uint32_t message) {
        if (device == kPad) lamps.note(message);
    };
    std::mt19937 chance(7);
    const auto number = [&](int below) { return static_cast<int>(chance() % static_cast<unsigned>(below)); };
    const auto [messages, longest] = length();
    int played = 0;
    for (int i = 0; i < messages; ++i) {
        const std::string note = HexByte(number(kPads));
        const int what = number(600);
        if (what == 0) {
            devices_.unplug(kPad);
        } else if (what < 6) {
            devices_.plug(kPad);
        } else if (what < 30) {
            devices_.queue("B00740");
        } else if (what < 60) {
            devices_.queue("90787F");
        } else if (what < 90) {
            devices_.queue(HexByte(128 + number(128)) + HexByte(number(128)) + HexByte(number(128)));
        } else if (what < 120) {
            devices_.queue("90797F");
        } else {
            played += devices_.hear(number(2) == 0 ? "90" + note + "7F" : "80" + note + "40") ? 1 : 0;
        }
        if (number(3) == 0) pass(number(longest));
    }
    EXPECT_GT(played, messages / 4);
    devices_.plug(kPad);
    pass(kSettle);
    devices_.hear("90787F");
    // A press on an empty slot shows until its release.
    for (int i = kPads - 2; i < kPads; ++i) devices_.hear("80" + HexByte(i) + "40");
    pass(kSettle);
    for (int i = 0; i < kPads; ++i) {
        const bool there = Jingle(i).hPlay != 0;
        const bool sounds = there && BASS_ChannelIsActive(Jingle(i).hPlay) != BASS_ACTIVE_STOPPED;
        EXPECT_EQ(lamps.of(i), !there ? 3 : sounds ? 4 : 2) << i;
    }
    EXPECT_EQ(lamps.of(0x79), ToggleAutoRep != 0 ? 3 : 2);
    EXPECT_TRUE(reports.empty());
}

}  // namespace
}  // namespace zv::test
