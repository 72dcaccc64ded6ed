// Stingers, station idents, fanfares: short and with an end of their own.
#include <array>
#include <cmath>

#include "sounds.h"

namespace samples {
namespace {

using Chord = std::vector<double>;

void strike(Stereo& s, const Chord& chord, double at, double seconds, double gain,
            Mono (*instrument)(double, double)) {
    double pan = -0.5;
    for (const double key : chord) {
        s.add(instrument(key, seconds), at, gain, pan);
        pan += 1.0 / static_cast<double>(chord.size());
    }
}

void brassChord(Stereo& s, const Chord& chord, double at, double seconds, double gain, double power = 1) {
    double pan = -0.6;
    for (const double key : chord) {
        s.add(brass(key, seconds, power), at, gain, pan);
        pan += 1.2 / static_cast<double>(chord.size());
    }
}

Mono brightBell(double key, double seconds) { return bell(key, seconds, 1); }

Mono riser(double seconds, std::uint64_t seed) {
    return sweep(
        seconds, [](double x) { return 300 * std::pow(22, x); },
        [](double x) { return x * x * (x < 0.985 ? 1 : (1 - x) / 0.015); }, 1.6, seed);
}

Stereo topOfTheHour() {
    Stereo s(7.4);
    const auto pip = [](double seconds) {
        return glide(
            seconds, [](double) { return 1000.0; },
            [seconds](double x) { return holdEnvelope(x * seconds, 0.006, seconds, 0.012); }, 0.06);
    };
    for (int i = 0; i < 5; ++i) s.add(pip(0.1), i, 0.6);
    s.add(pip(0.5), 5, 0.6);
    Stereo air(0.1);
    for (const double key : {57.0, 64.0, 69.0, 73.0}) air.add(pad(key, 2.4, 0.3, 1.6), 4.95, 0.22);
    strike(air, {81, 85, 88}, 5, 2.2, 0.07, brightBell);
    s.add(inRoom(air, 1.4, 0.5), 0, 1);
    return s;
}

Stereo newsSting() {
    Stereo s(3.0);
    const double beat = 0.21;
    for (const int i : {0, 1, 2, 4, 6, 7}) s.add(tom(38 + (i % 3)), i * beat, 0.6, -0.3 + 0.1 * i);
    brassChord(s, {50, 57, 62, 65}, 0, 0.34, 0.22);
    brassChord(s, {50, 57, 62, 67}, 2 * beat, 0.3, 0.2);
    brassChord(s, {50, 58, 62, 69}, 4 * beat, 0.3, 0.22);
    brassChord(s, {48, 55, 64, 67, 72}, 6 * beat, 1.1, 0.24, 1.2);
    s.add(crash(1.6, 3), 6 * beat, 0.3, 0.3);
    s.add(kick(), 6 * beat, 0.9);
    strike(s, {84, 88, 91}, 6 * beat, 1.4, 0.08, brightBell);
    return inRoom(s, 1.3, 0.5);
}

Stereo trafficIn(bool in) {
    Stereo s(2.2);
    const auto horn = [](double key) {
        return glide(
            0.16, [key](double) { return hz(key); },
            [](double x) { return holdEnvelope(x * 0.16, 0.008, 0.16, 0.03); }, 0.8);
    };
    const double first = in ? 0.55 : 0;
    for (const double at : {first, first + 0.24}) {
        s.add(horn(69), at, 0.25, -0.3);
        s.add(horn(73), at, 0.25, 0.3);
    }
    Mono pass = sweep(
        1.1, [](double x) { return 2400 - 1500 * x; },
        [](double x) { return std::pow(std::sin(kPi * x), 2); }, 0.9, in ? 5 : 6);
    // From one side to the other, as something that drives by.
    Stereo drive(1.1);
    for (std::size_t i = 0; i < pass.size(); ++i) {
        const double x = static_cast<double>(i) / static_cast<double>(pass.size());
        drive.left[i] = pass[i] * (in ? 1 - x : x);
        drive.right[i] = pass[i] * (in ? x : 1 - x);
    }
    s.add(drive, in ? 0 : 0.45, 0.9);
    const double hit = in ? 1.1 : 0.55;
    brassChord(s, in ? Chord{52, 59, 64, 68} : Chord{57, 61, 64, 69}, hit, 0.7, 0.2);
    s.add(kick(), hit, 0.8);
    s.add(snare(2), hit, 0.35);
    strike(s, {81, 88}, hit, 1, 0.1, brightBell);
    return inRoom(s, 0.9, 0.4);
}

Stereo sportsHit() {
    Stereo s(1.8);
    for (const double at : {0.0, 0.16, 0.32}) {
        s.add(kick(1.2), at, 0.9);
        s.add(clap(static_cast<std::uint64_t>(10 + at * 100)), at, 0.5, 0.2);
    }
    brassChord(s, {43, 55, 59, 62, 67}, 0.32, 0.9, 0.24, 1.3);
    s.add(crash(1.3, 4), 0.32, 0.35, -0.3);
    s.add(snare(8), 0.32, 0.6);
    return inRoom(s, 1.0, 0.45);
}

Stereo morningOpen() {
    Stereo s(6);
    for (const double key : {48.0, 55.0, 62.0, 64.0}) s.add(pad(key, 5.2, 1.1, 2.2), 0, 0.24);
    constexpr std::array<double, 10> kKeys{72, 74, 76, 79, 81, 84, 86, 88, 91, 96};
    for (std::size_t i = 0; i < kKeys.size(); ++i) {
        s.add(bell(kKeys[i], 2.2, 0.6), 0.35 + 0.17 * static_cast<double>(i), 0.16,
              std::sin(static_cast<double>(i)) * 0.7);
    }
    s.add(string(48, 3.5, 0.5, 3), 2.1, 0.5, -0.2);
    s.add(string(55, 3.5, 0.5, 4), 2.14, 0.4);
    s.add(string(64, 3.5, 0.5, 5), 2.18, 0.4, 0.2);
    s.add(string(72, 3.5, 0.5, 6), 2.22, 0.4, 0.3);
    return inRoom(s, 2.2, 0.6);
}

Stereo morningBumper() {
    Stereo s(5);
    const double step = 0.18;
    constexpr std::array<std::array<double, 4>, 4> kChords{
        {{55, 59, 62, 67}, {52, 55, 59, 64}, {48, 55, 60, 64}, {50, 57, 62, 66}}};
    for (int bar = 0; bar < 4; ++bar) {
        const auto& chord = kChords[static_cast<std::size_t>(bar)];
        s.add(bassNote(chord[0] - 12, 0.5), bar * 6 * step, 0.5);
        for (int i = 0; i < 6; ++i) {
            const double key = chord[static_cast<std::size_t>((i * 3 + i / 4) % 4)] + (i > 3 ? 12 : 0);
            s.add(string(key, 1.4, 0.65, static_cast<std::uint64_t>(20 + bar * 6 + i)), (bar * 6 + i) * step,
                  0.5, -0.5 + 0.2 * i);
        }
        s.add(clap(static_cast<std::uint64_t>(40 + bar)), (bar * 6 + 3) * step, 0.22, 0.2);
    }
    strike(s, {55, 62, 67, 71, 74}, 24 * step, 1.6, 0.3,
           [](double key, double t) { return string(key, t, 0.6, static_cast<std::uint64_t>(key)); });
    return inRoom(s, 1.1, 0.4);
}

Stereo winnerFanfare() {
    Stereo s(3.6);
    const double step = 0.15;
    struct Note {
        double key, at, length;
    };
    for (const Note& n : {Note{67, 0, 0.13}, Note{67, 1, 0.13}, Note{67, 2, 0.13}, Note{72, 3, 0.42},
                          Note{67, 6, 0.28}, Note{72, 8, 1.3}}) {
        brassChord(s, {n.key - 12, n.key - 8, n.key - 5, n.key}, n.at * step, n.length, 0.22, 1.2);
        s.add(snare(static_cast<std::uint64_t>(n.at + 1)), n.at * step, 0.25, 0.1);
    }
    brassChord(s, {60, 64, 67, 76}, 8 * step, 1.3, 0.16, 1.3);
    s.add(crash(1.7, 12), 8 * step, 0.35, -0.2);
    s.add(tom(36), 8 * step, 0.8);
    strike(s, {96, 100, 103}, 8 * step, 1.4, 0.06, brightBell);
    return inRoom(s, 1.5, 0.5);
}

Stereo stationIdLong() {
    Stereo s(5.4);
    s.add(riser(1.0, 31), 0, 0.6, -0.2);
    for (const double key : {50.0, 57.0, 62.0, 66.0, 69.0}) s.add(choir(key, 1.3, 'a'), 0.95, 0.2);
    for (const double key : {48.0, 55.0, 64.0, 67.0, 71.0}) s.add(choir(key, 1.0, 'o'), 2.2, 0.2);
    for (const double key : {55.0, 59.0, 62.0, 67.0, 74.0}) s.add(choir(key, 2.0, 'a'), 3.15, 0.22);
    s.add(kick(), 0.95, 0.8);
    s.add(kick(), 3.15, 0.9);
    s.add(crash(2, 33), 3.15, 0.25, 0.2);
    strike(s, {79, 83, 86, 91}, 3.15, 2, 0.1, brightBell);
    s.add(bassNote(38, 1.1), 0.95, 0.5);
    s.add(bassNote(36, 0.9), 2.2, 0.5);
    s.add(bassNote(43, 1.8), 3.15, 0.5);
    return inRoom(s, 2.0, 0.55);
}

Stereo stationIdShort() {
    Stereo s(2.8);
    s.add(riser(0.45, 34), 0, 0.6, 0.2);
    for (const double key : {55.0, 62.0, 67.0, 71.0, 74.0}) s.add(choir(key, 1.5, 'a'), 0.42, 0.22);
    s.add(kick(), 0.42, 0.9);
    s.add(bassNote(43, 1.4), 0.42, 0.5);
    strike(s, {79, 86, 91}, 0.42, 1.7, 0.12, brightBell);
    return inRoom(s, 1.5, 0.5);
}

Stereo sungJingle() {
    Stereo s(4.6);
    struct Syllable {
        double key, at, length;
        char vowel;
    };
    // Five syllables in close harmony.
    for (const Syllable& y :
         {Syllable{67, 0, 0.42, 'i'}, Syllable{69, 0.40, 0.42, 'o'}, Syllable{71, 0.80, 0.62, 'a'},
          Syllable{69, 1.45, 0.42, 'u'}, Syllable{74, 1.85, 1.9, 'a'}}) {
        for (const double under : {0.0, -3.0, -7.0, -12.0})
            s.add(choir(y.key + under, y.length, y.vowel, 0.03), y.at, under == 0 ? 0.3 : 0.2);
        s.add(bassNote(y.key - 31, y.length), y.at, 0.35);
    }
    for (int i = 0; i < 5; ++i) s.add(clap(static_cast<std::uint64_t>(60 + i)), 0.2 + 0.4 * i, 0.16, 0.3);
    strike(s, {86, 90, 93}, 1.85, 1.8, 0.07, brightBell);
    return inRoom(s, 1.4, 0.5);
}

Stereo promoTag() {
    Stereo s(2.4);
    s.add(riser(0.8, 35), 0, 0.7, -0.3);
    s.add(tom(26, 1.3), 0.8, 1);
    s.add(kick(1.4), 0.8, 0.9);
    s.add(crash(1.4, 36), 0.8, 0.3, 0.3);
    brassChord(s, {38, 50, 53, 57}, 0.8, 0.9, 0.16, 0.7);
    return inRoom(s, 1.8, 0.7);
}

Stereo adBreak(bool in) {
    Stereo s(1.6);
    constexpr std::array<double, 4> kKeys{72, 76, 79, 84};
    for (std::size_t i = 0; i < kKeys.size(); ++i) {
        const double key = kKeys[in ? i : 3 - i];
        s.add(mallet(key, 1.0), 0.13 * static_cast<double>(i), 0.5,
              in ? -0.4 + 0.25 * static_cast<double>(i) : 0.4 - 0.25 * static_cast<double>(i));
        s.add(mallet(key - 12, 0.8), 0.13 * static_cast<double>(i), 0.25);
    }
    s.add(bassNote(in ? 48 : 36, 0.5), 0.39, 0.4);
    return inRoom(s, 1.0, 0.4);
}
Stereo adBreakIn() { return adBreak(true); }
Stereo adBreakOut() { return adBreak(false); }
Stereo trafficStart() { return trafficIn(true); }
Stereo trafficEnd() { return trafficIn(false); }

Stereo vibesSting() {
    Stereo s(3);
    for (const auto& [key, at] :
         {std::pair{65.0, 0.0}, {69.0, 0.12}, {72.0, 0.24}, {76.0, 0.36}, {79.0, 0.62}, {81.0, 0.62}}) {
        Mono note = mallet(key, 2.4);
        for (std::size_t i = 0; i < note.size(); ++i)
            note[i] *= 0.8 + 0.2 * std::sin(2 * kPi * 5.4 * static_cast<double>(i) / kRate);
        s.add(note, at, 0.4, (key - 72) / 12);
    }
    s.add(bassNote(41, 0.9), 0.62, 0.4);
    s.add(brush(70), 0.62, 0.3, 0.3);
    return inRoom(s, 1.6, 0.5);
}

Stereo stadiumOrgan() {
    Stereo s(3.6);
    const double step = 0.17;
    for (const auto& [key, at] :
         {std::pair{67.0, 0}, {72.0, 1}, {76.0, 2}, {79.0, 3}, {76.0, 5}, {79.0, 6}}) {
        s.add(organ(key, key == 79.0 && at == 6 ? 1.1 : step * 0.95), at * step, 0.4, -0.2);
        s.add(organ(key - 12, step), at * step, 0.2, 0.2);
    }
    for (int i = 0; i < 2; ++i) s.add(clap(static_cast<std::uint64_t>(80 + i)), (9 + i) * step, 0.4);
    return inRoom(s, 2.0, 0.8);
}

}  // namespace

const std::vector<Sound> kStingers{
    {"Top of the Hour", "flac", topOfTheHour}, {"News Sting", "flac", newsSting},
    {"Traffic In", "ogg", trafficStart},       {"Traffic Out", "ogg", trafficEnd},
    {"Sports Hit", "flac", sportsHit},         {"Morning Open", "mp3", morningOpen},
    {"Morning Bumper", "m4a", morningBumper},  {"Winner Fanfare", "mp3", winnerFanfare},
    {"Station ID Long", "mp3", stationIdLong}, {"Station ID Short", "wav", stationIdShort},
    {"Sung Jingle 94.7", "ogg", sungJingle},   {"Promo Tag", "flac", promoTag},
    {"Ad Break In", "m4a", adBreakIn},         {"Ad Break Out", "m4a", adBreakOut},
    {"Vibes Sting", "flac", vibesSting},       {"Stadium Organ", "mp3", stadiumOrgan},
};

}  // namespace samples
