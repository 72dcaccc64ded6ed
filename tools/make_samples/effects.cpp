// Sound effects: what a presenter fires at a joke, a mistake or a winner.
#include <algorithm>
#include <array>
#include <cmath>

#include "sounds.h"

namespace samples {
namespace {

Stereo contestRing() {
    Stereo s(3);
    const auto ring = [](double key) {
        Mono out(static_cast<std::size_t>(frames(0.9)));
        for (std::size_t i = 0; i < out.size(); ++i) {
            const double t = static_cast<double>(i) / kRate;
            const double hammer = 0.55 + 0.45 * std::sin(2 * kPi * 20 * t);
            out[i] = (std::sin(2 * kPi * hz(key) * t) + 0.4 * std::sin(2 * kPi * hz(key) * 2.76 * t)) *
                     hammer * holdEnvelope(t, 0.01, 0.9, 0.15);
        }
        return out;
    };
    for (const double at : {0.0, 1.25}) {
        s.add(ring(84), at, 0.4, -0.25);
        s.add(ring(88), at, 0.4, 0.25);
    }
    return inRoom(s, 0.7, 0.35);
}

/// Air that goes past from the left to the right.
Stereo whoosh(double seconds, double top, std::uint64_t seed) {
    const Mono body = sweep(
        seconds, [top](double x) { return 180 + top * std::pow(std::sin(kPi * x), 3); },
        [](double x) { return std::pow(std::sin(kPi * std::pow(x, 0.8)), 2.5); }, 1.1, seed);
    const Mono hiss = sweep(
        seconds, [top](double x) { return 900 + 2 * top * std::pow(std::sin(kPi * x), 2); },
        [](double x) { return 0.5 * std::pow(std::sin(kPi * x), 4); }, 0.7, seed + 1);
    Stereo s(seconds);
    for (std::size_t i = 0; i < s.left.size(); ++i) {
        const double x = static_cast<double>(i) / static_cast<double>(s.left.size());
        const double pan = std::clamp(x * 1.4 - 0.2, 0.0, 1.0);
        s.left[i] = (body[i] + hiss[i]) * std::cos(pan * kPi / 2);
        s.right[i] = (body[i] + hiss[i]) * std::sin(pan * kPi / 2);
    }
    return inRoom(s, 0.9, 0.35);
}
Stereo whooshFast() { return whoosh(0.7, 5200, 11); }
Stereo whooshSlow() { return whoosh(2.3, 2600, 13); }

Stereo laserDown() {
    Stereo s(0.7);
    for (const double pan : {-0.6, 0.6}) {
        s.add(glide(
                  0.55, [pan](double x) { return (3400 + 60 * pan) * std::exp(-4.2 * x) + 90; },
                  [](double x) { return std::sqrt(1 - x) * std::min(1.0, x * 90); }, 0.5),
              0, 0.4, pan);
    }
    return inRoom(s, 0.8, 0.4);
}

/// Many hands: each clap a short burst of its own colour, place and pace.
Stereo hands(double seconds, int people, std::uint64_t seed, double (*crowd)(double)) {
    Stereo s(seconds);
    Noise chance(seed);
    for (int p = 0; p < people; ++p) {
        const double pan = chance() * 0.95, pitch = 900 + 1500 * chance.unit(),
                     far = 0.25 + 0.75 * chance.unit();
        const double pace = 0.19 + 0.11 * chance.unit();
        Noise noise(seed + static_cast<std::uint64_t>(p) + 1);
        for (double at = chance.unit() * pace * 3; at < seconds - 0.06;
             at += pace * (0.88 + 0.24 * chance.unit())) {
            const double loud = crowd(at / seconds) * far * (0.6 + 0.4 * chance.unit());
            if (loud < 0.02) continue;
            Mono one(static_cast<std::size_t>(frames(0.03)));
            Filter filter;
            for (std::size_t i = 0; i < one.size(); ++i) {
                const double t = static_cast<double>(i) / kRate;
                one[i] = filter(noise(), pitch, 1.8).band * std::exp(-t * 190) * std::min(1.0, t * 2500);
            }
            s.add(one, at, loud, pan);
        }
    }
    return s;
}

double risesAndFades(double x) { return std::min(1.0, x * 7) * (x > 0.6 ? std::pow((1 - x) / 0.4, 1.2) : 1); }

Stereo applause() { return inRoom(hands(5.5, 90, 21, risesAndFades), 1.2, 0.5); }

Stereo crowdCheer() {
    Stereo s = hands(4.6, 40, 22, risesAndFades);
    Noise chance(23);
    for (int v = 0; v < 26; ++v) {
        const double key = 52 + 22 * chance.unit(), at = chance.unit() * 0.8,
                     length = 1.8 + 1.8 * chance.unit();
        Saw saw(chance.unit());
        Noise breath(static_cast<std::uint64_t>(200 + v));
        std::array<Filter, 2> mouth;
        Mono voice(static_cast<std::size_t>(frames(length)));
        const double bend = 2 + 5 * chance.unit(), rate = 3 + 4 * chance.unit();
        for (std::size_t i = 0; i < voice.size(); ++i) {
            const double t = static_cast<double>(i) / kRate, x = t / length;
            const double f = hz(key + bend * std::sin(kPi * x) + 0.5 * std::sin(2 * kPi * rate * t));
            const double in = 0.5 * saw(f) + 0.45 * breath();
            voice[i] =
                (mouth[0](in, 620 + 160 * std::sin(3 * t), 3).band + 0.6 * mouth[1](in, 1500, 4).band) *
                holdEnvelope(t, 0.25, length, length * 0.6);
        }
        s.add(voice, at, 0.11, chance());
    }
    for (int w = 0; w < 3; ++w) {
        s.add(glide(
                  0.7, [w](double x) { return 1900 + 240 * w + 900 * std::sin(kPi * x); },
                  [](double x) { return std::pow(std::sin(kPi * x), 1.5); }),
              0.6 + 0.8 * w, 0.05, -0.5 + 0.5 * w);
    }
    return inRoom(s, 1.8, 0.55);
}

Stereo drumRoll() {
    Stereo s(4.4);
    Noise chance(24);
    double at = 0;
    int hit = 0;
    while (at < 3.2) {
        const double x = at / 3.2;
        s.add(snare(static_cast<std::uint64_t>(300 + hit % 7)), at, 0.1 + 0.34 * x * x + 0.03 * chance(),
              hit % 2 == 0 ? -0.12 : 0.12);
        at += 0.052 - 0.008 * x + 0.003 * chance();
        ++hit;
    }
    s.add(crash(2.2, 25), 3.25, 0.5, -0.25);
    s.add(crash(2.0, 26), 3.25, 0.4, 0.25);
    s.add(kick(1.2), 3.25, 1);
    return inRoom(s, 1.1, 0.35);
}

Stereo wrongAnswer() {
    Stereo s(0.9);
    for (const double at : {0.0, 0.28}) {
        const double length = at == 0 ? 0.22 : 0.55;
        for (const double key : {41.0, 42.0, 47.9}) {
            s.add(glide(
                      length, [key](double) { return hz(key); },
                      [length](double x) { return holdEnvelope(x * length, 0.005, length, 0.04); }, 1.2),
                  at, 0.3, (key - 44) / 8);
        }
    }
    return inRoom(s, 0.5, 0.25);
}

Stereo oops() {
    Stereo s(0.9);
    s.add(glide(
              0.75, [](double x) { return 900 * std::pow(0.28, x) + 18 * std::sin(40 * x); },
              [](double x) { return holdEnvelope(x * 0.75, 0.02, 0.75, 0.15); }, 0.15),
          0, 0.6);
    s.add(mallet(48, 0.5), 0.78, 0.5);
    return inRoom(s, 0.7, 0.35);
}

Stereo beep() {
    Stereo s(0.45);
    s.add(glide(
              0.42, [](double) { return 1000.0; },
              [](double x) { return holdEnvelope(x * 0.42, 0.005, 0.42, 0.008); }),
          0, 0.6);
    return s;
}

Stereo laugh() {
    Stereo s(2);
    constexpr std::array<double, 7> kKeys{62, 65, 64, 62, 60, 58, 55};
    for (std::size_t i = 0; i < kKeys.size(); ++i) {
        const double at = 0.19 * static_cast<double>(i);
        s.add(choir(kKeys[i], 0.16, 'a', 0.02), at, 0.4);
        s.add(sweep(
                  0.06, [](double) { return 1600.0; }, [](double x) { return std::sin(kPi * x); }, 0.8,
                  400 + i),
              at - 0.03 < 0 ? 0 : at - 0.03, 0.35);
    }
    return inRoom(s, 0.6, 0.25);
}

Stereo airHorn() {
    Stereo s(1.9);
    for (const auto& [at, length] : {std::pair{0.0, 0.16}, {0.22, 0.16}, {0.44, 1.2}}) {
        for (const double key : {58.0, 61.9, 65.05})
            s.add(brass(key, length, 2.2, -0.35), at, 0.34, (key - 62) / 6);
    }
    return inRoom(s, 1.0, 0.35);
}

Stereo cash() {
    Stereo s(1.6);
    Noise chance(27);
    s.add(hat(0.09, 28), 0, 0.5, -0.2);
    s.add(kick(0.5), 0.09, 0.5);
    s.add(bell(96, 1.4, 1.2), 0.16, 0.5, 0.1);
    s.add(bell(100, 1.2, 1.2), 0.17, 0.35, -0.1);
    for (int i = 0; i < 12; ++i)
        s.add(bell(103 + 10 * chance.unit(), 0.22, 1.6), 0.3 + 0.6 * chance.unit(), 0.07, chance());
    return inRoom(s, 0.6, 0.25);
}

Stereo ding() {
    Stereo s(1.8);
    s.add(bell(88, 1.7, 0.7), 0, 0.6, -0.1);
    s.add(bell(100, 1.0, 0.5), 0, 0.15, 0.2);
    return inRoom(s, 1.2, 0.35);
}

Stereo recordScratch() {
    Stereo s(1.1);
    for (const auto& [at, length, up] :
         {std::tuple{0.0, 0.17, true}, {0.18, 0.13, false}, {0.33, 0.22, true}, {0.57, 0.4, false}}) {
        const bool rises = up;
        const double duration = length;
        s.add(
            sweep(
                length, [rises](double x) { return rises ? 420 * std::pow(9, x) : 3800 * std::pow(0.08, x); },
                [](double x) { return std::sin(kPi * std::pow(x, 0.7)); }, 2.6,
                500 + static_cast<std::uint64_t>(at * 100)),
            at, 0.8, rises ? -0.2 : 0.2);
        s.add(glide(
                  duration,
                  [rises](double x) { return rises ? 120 * std::pow(5, x) : 640 * std::pow(0.12, x); },
                  [](double x) { return 0.5 * std::sin(kPi * x); }, 0.8),
              at, 0.25);
    }
    return inRoom(s, 0.4, 0.15);
}

Stereo crickets() {
    Stereo s(4);
    Noise chance(29);
    for (int c = 0; c < 5; ++c) {
        const double f = 4200 + 700 * chance.unit(), pan = chance(), loud = 0.1 + 0.25 * chance.unit();
        for (double at = chance.unit() * 0.6; at < 3.6; at += 0.5 + 0.2 * chance.unit()) {
            for (int chirp = 0; chirp < 3; ++chirp) {
                s.add(glide(
                          0.032, [f](double x) { return f + 120 * x; },
                          [](double x) { return std::pow(std::sin(kPi * x), 2); }),
                      at + 0.045 * chirp, loud, pan);
            }
        }
    }
    return inRoom(s, 1.0, 0.3);
}

Stereo sadTrombone() {
    Stereo s(3.2);
    struct Note {
        double key, at, length, slide;
    };
    for (const Note& n : {Note{58, 0, 0.42, -0.4}, Note{57, 0.48, 0.42, -0.4}, Note{56, 0.96, 0.42, -0.4},
                          Note{55, 1.44, 1.5, -1.6}}) {
        Mono note = brass(n.key, n.length, 0.55, n.slide);
        for (std::size_t i = 0; i < note.size(); ++i)
            note[i] *= 0.85 + 0.15 * std::sin(2 * kPi * 6 * static_cast<double>(i) / kRate);
        s.add(note, n.at, 0.7, -0.1);
    }
    return inRoom(s, 1.0, 0.35);
}

Stereo whistle() {
    Stereo s(1.2);
    for (const auto& [at, length] : {std::pair{0.0, 0.22}, {0.3, 0.7}}) {
        Mono one(static_cast<std::size_t>(frames(length)));
        double phase = 0;
        Noise breath(30);
        for (std::size_t i = 0; i < one.size(); ++i) {
            const double t = static_cast<double>(i) / kRate;
            const double pea = std::sin(2 * kPi * 27 * t);
            phase += 2 * kPi * (2650 + 130 * pea) / kRate;
            one[i] = (std::sin(phase) * (0.7 + 0.3 * pea) + 0.05 * breath()) *
                     holdEnvelope(t, 0.015, length, 0.05);
        }
        s.add(one, at, 0.5, 0.1);
    }
    return inRoom(s, 1.2, 0.4);
}

Stereo goalHorn() {
    Stereo s(3.4);
    for (const double key : {41.0, 45.0, 48.0, 53.0}) s.add(brass(key, 2.8, 1.6), 0, 0.4, (key - 46) / 14);
    s.add(hands(3.2, 30, 31, risesAndFades), 0.2, 0.5);
    return inRoom(s, 2.4, 0.6);
}

}  // namespace

const std::vector<Sound> kEffects{
    {"Contest Ring", "ogg", contestRing},
    {"Whoosh Fast", "wav", whooshFast},
    {"Whoosh Slow", "ogg", whooshSlow},
    {"Laser Down", "wav", laserDown},
    {"Applause", "mp3", applause},
    {"Crowd Cheer", "ogg", crowdCheer},
    {"Drum Roll", "mp3", drumRoll},
    {"Wrong Answer", "wav", wrongAnswer},
    {"Oops", "wav", oops},
    {"Beep", "wav", beep},
    {"Laugh", "m4a", laugh},
    {"Air Horn", "mp3", airHorn},
    {"Cash", "flac", cash},
    {"Ding", "flac", ding},
    {"Record Scratch", "wav", recordScratch},
    {"Crickets", "ogg", crickets},
    {"Sad Trombone", "m4a", sadTrombone},
    {"Whistle", "wav", whistle},
    {"Goal Horn", "mp3", goalHorn},
};

}  // namespace samples
