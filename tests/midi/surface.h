// A control surface on the main window of the studio: what it sends acts as in the program, what it is sent is kept.
#pragma once

#include <string>
#include <vector>

#include <map>
#include "midi/assignments.h"
#include "midi/codes.h"
#include "midi/feedback.h"
#include "midi/settings_commands.h"
#include "midi/state.h"
#include "platform/rehearsal/midi_devices.h"
#include "platform/timers.h"
#include "tests/ui/window_test.h"

namespace zv::test {

inline constexpr const char* kPad = "Pad";
inline constexpr const char* kFixed = "Fixed";

class SurfaceTest : public WindowTest {
  protected:
    SurfaceTest();
    ~SurfaceTest() override;

    /// Starts the surface "Pad" with these lines of its section, "Jingle0=9000,900000,255".
    void start(const std::vector<std::string>& lines);
    /// Sends messages, six digits each with blanks between; each acts at once.
    void send(const std::string& messages);
    /// What was sent since it was last asked: six digits to the pad, "f" in front to the fixed output.
    std::string sent();
    std::string file() const { return read("MIDI.ini"); }
    /// Lines of a section as one text, "key=value; key=value".
    std::string section(const std::string& name) const;

    MidiDevices& devices_ = MidiDevices::instance();

  private:
    std::vector<std::string> sent_;
};

}  // namespace zv::test
