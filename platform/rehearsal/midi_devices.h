/// MIDI devices of a machine that is not there: plugged, played and unplugged by a script. They answer
/// platform/midi.h and platform/wake.h. [control]
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/common/midi_queue.h"
#include "platform/midi.h"

namespace zv {

/// Directions that a script can plug.
struct MidiDirections {
    bool input = true, output = true;
};

class MidiDevices {
  public:
    static MidiDevices& instance();

    void plug(const std::string& name, MidiDirections which = {});
    void unplug(const std::string& name, MidiDirections which = {});
    /// A message of three bytes comes from the input `device`, or from the input opened last when it is empty; the
    /// program looks at once. False when no such input is open.
    bool hear(std::string_view hex, const std::string& device = {});
    /// As hear, without waking the program: it waits for the next look of its own.
    bool queue(std::string_view hex, const std::string& device = {});
    /// Called for every message that a plugged output took.
    std::function<void(const std::string& device, std::uint32_t message)> onSent;
    /// Outputs that are there refuse to be opened, and inputs too.
    bool refuse = false;
    int opened = 0;        ///< devices opened so far
    bool tells = true;     ///< the program is told when a device comes or goes
    bool changed = false;  ///< one did since the program asked

    std::vector<std::string> inputs, outputs;  ///< names, in the order of plugging

    struct Input {
        std::string device;
        MidiInCallback callback;
        MidiQueue queue;
        bool started = false;
    };
    std::map<MidiHandle, std::unique_ptr<Input>> openInputs;
    std::map<MidiHandle, std::string> openOutputs;  ///< names
    std::set<MidiHandle> lost;                      ///< open ones whose device was unplugged, now or before
    std::function<void()> onWake;

  private:
    void told();
};

/// A message as six upper-case hexadecimal digits.
std::string midiText(std::uint32_t message);

}  // namespace zv
