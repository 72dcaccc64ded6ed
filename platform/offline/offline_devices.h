/// Devices without hardware: sound is pulled by whoever drives the clock, and what went out can be kept. Used
/// by the rehearsal and by tests. Deterministic: devices are called in whole periods of a fixed number of
/// frames, in the order in which the periods begin, of equal ones in the order of opening. A period is asked
/// for at the moment it begins, so what is ordered at t is heard at the first period that begins at t or
/// later. [control]
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/ports.h"

namespace zv {

struct OfflineOptions {
    std::uint32_t period = 441;  ///< frames of one call at the device's rate
    std::vector<std::string> outputs{"Main output", "Auxiliary output"};
    std::vector<std::string> inputs{"Microphone"};
    bool keepSound = true;  ///< remember what each output sent
    bool rests = false;  ///< outputs are not called while their client rests, and at once when it wakes them
};

class OfflineDevices : public engine::DeviceSource {
  public:
    /// Renders `frames` (at `rate` Hz of wall time; devices of another rate render their share) on every open
    /// output, the no-sound device included.
    virtual void pull(std::uint64_t frames, std::uint32_t rate) = 0;
    /// Interleaved stereo that output `name` has sent up to the present moment since kept sound was last
    /// taken (of a period that is under way, the part that has passed). Silence stands for the time in which
    /// the output was closed or unplugged after its first opening, so that the outputs' sounds stay in step.
    virtual std::vector<float> takeSound(const std::string& name) = 0;
    /// What input `name` hears from now on (interleaved stereo at `rate`), silence after its end.
    virtual void feedInput(const std::string& name, std::vector<float> stereo, std::uint32_t rate) = 0;
    /// Takes a device away and brings it back.
    virtual void unplug(const std::string& name) = 0;
    virtual void plug(const std::string& name) = 0;
    /// A device that stops asking without a word, and goes on.
    virtual void hang(const std::string& name, bool on) = 0;
    virtual void setPeriod(std::uint32_t frames) = 0;
    /// Lets the clock of device `name` run faster (above 0) or slower than wall time, -100000..100000 parts
    /// per million; in force from its next period. Devices then no longer share a clock.
    virtual void setClockError(const std::string& name, double partsPerMillion) = 0;
};

std::shared_ptr<OfflineDevices> makeOfflineDevices(OfflineOptions options = {});

}  // namespace zv
