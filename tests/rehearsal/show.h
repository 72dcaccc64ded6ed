/// A program folder of a test's own, performances on it, and what they left.
#pragma once

#include <gtest/gtest.h>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>
#include "tests/support/places.h"
#include "tests/support/sound.h"

namespace zv::test {

inline std::size_t framesOf(double ms) { return static_cast<std::size_t>(ms * kRate / 1000 + 0.5); }

class Show {
  public:
    /// An empty program folder; both outputs are in use.
    Show();
    ~Show();

    /// A file in the program folder.
    void write(const std::string& name, const std::string& contents);
    /// A palette "Test" with a second of tone on button 0.
    void tone();
    /// Lines behind those of zv.ini.
    void set(const std::string& lines) { write("zv.ini", contentsOf("zv.ini") + lines); }
    /// Performs the script; returns the exit status. `arguments` are added to the command.
    int perform(const std::string& script, const std::string& arguments = {},
                const std::string& program = binDir() + "/rehearse");
    /// Performs it and expects that all goes as the script expects.
    void passes(const std::string& script, const std::string& arguments = {});

    std::filesystem::path home() const { return folder_ / "home"; }
    std::filesystem::path out() const { return folder_ / "out"; }
    /// A file of the program folder.
    std::string contentsOf(const std::string& name) const;
    /// What was told on standard error.
    std::string messages() const;
    std::string result(const std::string& file) const;
    Heard heard(const std::string& file = "main.wav") const;

  private:
    std::filesystem::path folder_;
};

inline constexpr const char* kPalette = "[Test]\r\nPath_0=Audio_Sample\\tone.wav\r\n";
/// A whole file, empty when it cannot be read.
std::string contents(const std::filesystem::path& file);
/// Loudest sample in a stretch of ms.
float peak(const Heard& sound, double fromMs, double toMs);
}  // namespace zv::test
