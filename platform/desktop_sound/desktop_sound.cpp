#include "platform/desktop_sound/desktop_sound.h"
#include "platform/decoders.h"

#include <algorithm>
#include <cctype>
#include <utility>
#include <vector>

#include "platform/desktop_sound/choosing_devices.h"
#include "platform/file_decoders/file_decoders.h"
#include "platform/jack/jack_devices.h"
#include "platform/pulse/pulse_devices.h"
#include "platform/rtaudio/rtaudio_devices.h"
#include "platform/sound.h"

namespace zv {
namespace {

/// What the program was given, and whether a sound server is among it.
struct Given {
    std::shared_ptr<engine::DeviceSource> devices;
    bool server = false;
};

Given& given() {
    static Given devices;
    return devices;
}

bool named(std::string_view system, std::string_view name) {
    return std::ranges::equal(system, name, [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    });
}

}  // namespace

std::shared_ptr<engine::DeviceSource> desktopDevices(std::string_view system) {
    const bool jack = named(system, "JACK"), alsa = named(system, "ALSA"), server = named(system, "Server");
    const bool any = !jack && !alsa && !server;
    std::vector<SoundSystem> systems;
    // A server that is there and silent will answer again. One without a card gets it sooner than ALSA, whose default
    // output is that server.
    if (server || any)
        systems.push_back({makePulseDevices(), [] { return pulseServerState() == PulseAnswer::silent; }});
    if (jack || any) systems.push_back({makeJackDevices()});
    if (alsa) systems.push_back({makeRtAudioDevices()});
    if (any)
        systems.push_back({makeRtAudioDevices(), [] { return pulseServerState() != PulseAnswer::refused; }});
    given() = {chooseDevices(std::move(systems)), server || any};
    return given().devices;
}

engine::EnginePorts soundPorts(std::string_view system) {
    soundDecoders = makeFileDecoders();
    return {soundDecoders, desktopDevices(system)};
}

bool soundOutputsThere() {
    if (given().devices == nullptr) return false;
    if (given().server) askPulseServer();  // one that was silent is asked again
    return !given().devices->outputs().empty();
}

}  // namespace zv
