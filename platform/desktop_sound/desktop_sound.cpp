#include "platform/desktop_sound/desktop_sound.h"
#include "platform/decoders.h"

#include "platform/file_decoders/file_decoders.h"
#include "platform/pulse/pulse_devices.h"
#include "platform/rtaudio/rtaudio_devices.h"
#include "platform/sound.h"
#include "platform/soundtouch/soundtouch_stretcher.h"

namespace zv {
namespace {

/// What the program was given; a server among it is asked anew.
std::shared_ptr<engine::DeviceSource>& given() {
    static std::shared_ptr<engine::DeviceSource> devices;
    return devices;
}

bool& givenServer() {
    static bool server = false;
    return server;
}

}  // namespace

std::shared_ptr<engine::DeviceSource> desktopDevices() {
    // A server that is there and silent will answer again: other interfaces would wait for it even longer.
    const PulseAnswer answer = askPulseServer();
    std::shared_ptr<engine::DeviceSource> devices;
    if (answer == PulseAnswer::refused) devices = makeRtAudioDevices();
    // Nothing yet: a sound server that is started later is found by itself.
    givenServer() = devices == nullptr || devices->outputs().empty();
    if (givenServer()) devices = makePulseDevices();
    given() = devices;
    return devices;
}

engine::EnginePorts soundPorts() {
    soundDecoders = makeFileDecoders();
    return {soundDecoders, soundTouchStretchers(), desktopDevices()};
}

bool soundOutputsThere() {
    if (given() == nullptr) return false;
    if (givenServer() && askPulseServer() != PulseAnswer::ready) return false;
    return !given()->outputs().empty();
}

}  // namespace zv
