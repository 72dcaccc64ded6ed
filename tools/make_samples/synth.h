/// The studio in which the sample sounds are made: oscillators, filters, instruments, a room. Everything is
/// arithmetic with a generator of its own for chance, so that the same sounds come out each time.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace samples {

inline constexpr int kRate = 44100;
inline constexpr double kPi = 3.14159265358979323846;

using Mono = std::vector<double>;

inline int frames(double seconds) { return static_cast<int>(seconds * kRate + 0.5); }
/// Frequency of a key, 69 is the A of 440 Hz.
double hz(double key);

/// Chance that is the same on every machine.
class Noise {
  public:
    explicit Noise(std::uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15U + 1) {}
    double operator()();                             ///< -1 to 1
    double unit() { return (*this)() * 0.5 + 0.5; }  ///< 0 to 1

  private:
    std::uint64_t state_;
};

/// A sawtooth without the mirror tones of a plain one.
class Saw {
  public:
    explicit Saw(double phase = 0) : phase_(phase) {}
    double operator()(double frequency);

  private:
    double phase_;
};

/// State variable filter; one call a sample, the frequency may move.
class Filter {
  public:
    struct Out {
        double low, band, high;
    };
    Out operator()(double in, double frequency, double q = 0.7);

  private:
    double a_ = 0, b_ = 0;
};

/// Rises in `attack`, falls by 60 dB over `decay`, all in seconds.
double pluckEnvelope(double t, double attack, double decay);
/// Attack, hold until `length` - `release`, release.
double holdEnvelope(double t, double attack, double length, double release);

/// Both sides of a sound under work.
struct Stereo {
    Mono left, right;

    explicit Stereo(double seconds = 0)
        : left(static_cast<std::size_t>(frames(seconds))), right(left.size()) {}
    int size() const { return static_cast<int>(left.size()); }
    void grow(int n);
    /// Adds a sound at `at` seconds, pan -1 to 1.
    void add(const Mono& sound, double at, double gain, double pan = 0);
    void add(const Stereo& sound, double at, double gain);
};

/// A room: eight delays that feed each other, `seconds` to fall by 60 dB; the wet sound alone, longer by its
/// tail.
Stereo room(const Stereo& dry, double seconds, double damping = 0.35);
/// Dry and wet together.
Stereo inRoom(const Stereo& dry, double seconds, double wet, double damping = 0.35);

// ---- instruments
// -------------------------------------------------------------------------------------------
Mono bell(double key, double seconds, double brightness = 1);
Mono mallet(double key, double seconds);
Mono string(double key, double seconds, double brightness = 0.5, std::uint64_t seed = 1);
Mono bassNote(double key, double seconds);
Mono brass(double key, double seconds, double power = 1, double slide = 0);
Mono organ(double key, double seconds);
Mono keys(double key, double seconds);
Stereo pad(double key, double seconds, double attack, double release, double brightness = 1);
/// Sung vowels, several voices wide: 'a', 'o', 'u', 'i'.
Stereo choir(double key, double seconds, char vowel, double attack = 0.06);
Mono kick(double power = 1);
Mono snare(std::uint64_t seed);
Mono brush(std::uint64_t seed);
Mono clap(std::uint64_t seed);
Mono hat(double seconds, std::uint64_t seed);
Mono crash(double seconds, std::uint64_t seed);
Mono tom(double key, double seconds = 0.7);
/// Noise through a moving band; `course` gives the centre in Hz and `swell` the loudness for 0 to 1 of the
/// time.
Mono sweep(double seconds, const std::function<double(double)>& course,
           const std::function<double(double)>& swell, double q, std::uint64_t seed);
/// A tone whose frequency moves.
Mono glide(double seconds, const std::function<double(double)>& course,
           const std::function<double(double)>& swell, double harmonics = 0);

// ---- the end of the line
// -------------------------------------------------------------------------------------
/// No rumble, peaks rounded by `drive`, silence at the end cut, both ends at rest, peak at -1 dBFS.
void finish(Stereo& sound, double drive = 1.2);
/// The same for a loop of `seconds`: what rings on after its end sounds at its beginning.
void finishLoop(Stereo& sound, double seconds, double drive = 1.2);
/// 16-bit stereo.
void writeWav(const Stereo& sound, const std::string& path);

}  // namespace samples
