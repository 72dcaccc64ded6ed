/// A show without windows: palettes in a file, jingles opened from them, presses, and the sound that went out.
#pragma once

#include <string>
#include <vector>

#include <cmath>
#include "audio/devices.h"
#include "audio/play.h"
#include "audio/streams.h"
#include "audio/upcalls.h"
#include "model/jingle.h"
#include "model/palette_files.h"
#include "model/state.h"
#include "startup/stores.h"
#include "tests/support/studio.h"

namespace zv::test {

inline constexpr const char* kPalette = "Morning";

class ShowTest : public StudioTest {
  protected:
    explicit ShowTest(OfflineOptions options = {});

    JingleRecord& jingle(int index = 0) { return J[static_cast<std::size_t>(index)]; }
    /// Writes palette.ini with one section of these lines and opens it.
    void openPalette(const std::string& lines, const std::string& name = kPalette);
    /// A jingle of 16-bit stereo in slot `index`, with more keys if wanted; its line ends with "_N".
    void openJingle(std::vector<std::int16_t> samples, const std::string& moreLines = {}, int index = 0);
    bool sounds(int index = 0);
};

/// "Loop_0=1\r\n" for {"Loop_0", "1"}.
std::string iniLine(const std::string& key, const std::string& value);
/// Milliseconds as frames, and as bytes of a stereo file.
constexpr std::size_t framesOf(double ms) { return static_cast<std::size_t>(ms * kRate / 1000); }
constexpr int bytesOf(double ms) { return static_cast<int>(framesOf(ms)) * kBytesPerFrame; }
/// The same at every run; a reverb does to it what it does to music, not what it does to a lone sine.
std::vector<std::int16_t> noise(std::size_t frames);
/// All fields of a record that differ from the empty one's: "Volm=50 State=1".
std::string wholeRecord(const JingleRecord& jingle);

}  // namespace zv::test
