#include "audio/output_watch.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "audio/devices.h"
#include "audio/upcalls.h"
#include "platform/clock.h"
#include "platform/jobs.h"
#include "platform/sound.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/devices_settings.h"
#include "startup/upcalls.h"

namespace zv {
namespace {

/// An output that has asked for nothing for so long is told of; while nothing sounds it asks twice a second.
constexpr std::int64_t kSilentMs = 600, kRestingMs = 1500;
constexpr std::int64_t kLookAgainMs = 1000;

/// What is known of one output.
struct Watched {
    std::uint64_t asked = 0;
    std::int64_t movedAt = 0;  ///< when it last asked
    bool troubled = false;
};

std::array<Watched, 2> watched;
std::string trouble;
Job look;
std::int64_t lookedAt = 0;

bool used(int output) {
    return output == 0 || (deviceSettings.DeviceSingle == 0 && Device[1] > 0 && Device[1] != Device[0]);
}

/// Whether the output does not play what it should.
bool troubled(int output, std::int64_t now) {
    Watched& w = watched[static_cast<std::size_t>(output)];
    const auto* engine = engine::audioLibraryControl();
    if (engine == nullptr || !used(output) || (output == 0 && NoOutputDevice)) {
        w = {};
        return false;
    }
    const engine::DeviceStatistics is = engine->statistics(Device[static_cast<std::size_t>(output)]);
    if (is.asked != w.asked || !is.open || w.movedAt == 0) w.movedAt = now;
    w.asked = is.asked;
    return is.open && (is.lost || now - w.movedAt >= (is.resting ? kRestingMs : kSilentMs));
}

std::string nameOf(int output) {
    const auto device = static_cast<std::size_t>(Device[static_cast<std::size_t>(output)]);
    return device >= 1 && device <= OutputNames.size() ? OutputNames[device - 1] : std::string();
}

std::string describe() {
    if (NoOutputDevice) return Ln("mNoOutDev");
    std::string text;
    for (int output = 0; output < 2; ++output)
        if (watched[static_cast<std::size_t>(output)].troubled)
            text += (text.empty() ? "" : ", ") + Ln("mOutLost") + " " + nameOf(output);
    const bool main = watched[0].troubled, other = watched[1].troubled;
    if (main != other && used(1)) text += " - " + Ln("mOutStands") + " " + nameOf(main ? 1 : 0);
    return text;
}

void takeOutputs() {
    guarded("modDevices.WatchOutputs", [] {
        ListOutDev();
        ReopenOutputs();
    });
}

/// Without any output a worker asks now and then whether one has come.
void lookForOutput(std::int64_t now) {
    if (look.running() || now - lookedAt < kLookAgainMs) return;
    lookedAt = now;
    look = startJob<bool>(
        "modDevices.WatchOutputs", [](JobWork&) { return soundOutputsThere(); },
        [](bool there) {
            if (there && NoOutputDevice) takeOutputs();
        });
}

}  // namespace

void WatchOutputs() {
    guarded("modDevices.WatchOutputs", [] {
        const std::int64_t now = monotonicMs();
        for (int output = 0; output < 2; ++output)
            watched[static_cast<std::size_t>(output)].troubled = troubled(output, now);
        if (NoOutputDevice) lookForOutput(now);
        std::string is = describe();
        if (is == trouble) return;
        trouble = std::move(is);
        ErrLog("modDevices.WatchOutputs", trouble.empty() ? "every output plays" : trouble);
        callUp(audioUpcalls.outputsChanged);
    });
}

const std::string& OutputTrouble() { return trouble; }

}  // namespace zv
