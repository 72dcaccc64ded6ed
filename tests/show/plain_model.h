/// What the program should do with its jingles, told plainly: times in whole milliseconds, sound in steps of 10 ms.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "model/jingle.h"
#include "tests/show/show.h"

namespace zv::test {

inline constexpr int kStepMs = 10;

/// A level on its way.
struct Slide {
    double now = 1, to = 1, ratio = 1;
    int left = 0, waits = 0;  ///< ms
    bool logarithmic = false, stops = false;

    void start(double target, int ms, bool log = false, bool stopsAtEnd = false);
    double pass();  ///< mean level of the next millisecond
};

/// A jingle's sound: two tones, the first 300 ms long.
struct Tones {
    char first = 'a', second = 'b';
    int lengthMs = 1200, rate = kRate, channels = 2;
    bool converted() const { return rate != static_cast<int>(kRate); }
    /// What a conversion holds comes out at the former VOLDSP.
    int heldMs() const { return !converted() ? 0 : rate == 48000 ? 2 : 4; }
    double bytes(int ms) const;
    int ms(double bytes) const;
    std::vector<std::int16_t> samples() const;
};

struct Slot {
    JingleRecord is;
    Tones sound;
    bool sounds = false, loops = false;
    bool heard = false;  ///< since its start
    int at = 0, loopIn = 0, loopOut = 0;
    int stopAt = 0, stopMs = 0;  ///< the stop position in force, 0 none
    bool stopLog = false;
    Slide vol, dsp, own;                   ///< `own`: Volm, which takes 10 ms
    std::optional<PersistedJingle> waits;  ///< comes when the sound has ended

    int cue() const;           ///< 0 where its start position lies behind its end
    double endOffset() const;  ///< bytes
    int left() const;          ///< what is less than a tenth of a second is nothing
    void fade(int ms, bool log);
    void leave(int ms);
    void arm();
    void move();  ///< what its place says: a loop's turn, its end, its stop position
    void derive();
};

struct Model {
    std::map<int, Slot> slots;
    std::map<int, PersistedJingle> palette;  ///< what its files hold for the slots, the hot ones too
    std::map<std::string, Tones> files;
    std::array<Slide, 2> bus, out;  ///< of the two outputs
    bool ducked = false;
    int remain = 0, last = -1;  ///< ms
    std::string told;
    /// Of each tone in each step on both outputs, 1 as in its file.
    std::array<std::vector<std::array<double, 8>>, 2> levels;

    void open(int index, const PersistedJingle& content);
    void openPalette();
    void bring(int index, const PersistedJingle& content);
    void press(int index, int velocity);
    void release(int index);
    void stopAll();
    /// The display looks; `level` is what the meters say.
    void tick(int level);
    /// 10 ms of sound.
    void step();

  private:
    void start(int index, int velocity);
    void pressSequence(int index);
    void duck(bool down);
};

}  // namespace zv::test
