/// What an ear tells of an output: which tone sounded when. Test sounds are tones of a letter, 'a' to 'h',
/// each in whole periods of 10 ms, so that steps of 10 ms tell them apart to the last bit of a mix.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/sound.h"

namespace zv::test {

/// "a100 b2400": 100 ms of tone a, then 2,400 ms of b, 16-bit stereo.
std::vector<std::int16_t> tones(const std::string& score);
/// One channel of one tone, for a file of any rate.
std::vector<std::int16_t> tone(char letter, int ms, int rate);

/// Every stretch of every tone in the order of their beginning, ms in steps of 10:
///     a0-100         from 0 to 100 ms
///     a0-            still heard at the end
///     a0-200~400     fading from 200 ms on, gone at 400
///     a200~400       fading from its beginning on
///     a0-200~300!    fading, and cut at 300 before it was gone
///     a0-100@-6.0    in its middle, dB against the file, where it is not the file's own level
/// What is 38 dB below the file's own level counts as gone.
std::string whatIsHeard(const Heard& sound);
/// Level of one tone in each step of 10 ms, 1 as in its file.
std::vector<double> toneLevels(const Heard& sound, char tone);
/// Level of one tone at some moments, dB against its file: "0.0 -16.5 -"; "-" is gone.
std::string levelsOf(const Heard& sound, char tone, const std::vector<int>& ms);

}  // namespace zv::test
