#include "platform/desktop_sound/desktop_sound.h"

#include "platform/file_decoders/file_decoders.h"
#include "platform/pulse/pulse_devices.h"
#include "platform/rtaudio/rtaudio_devices.h"
#include "platform/sound.h"
#include "platform/soundtouch/soundtouch_stretcher.h"

namespace zv {

std::shared_ptr<engine::DeviceSource> desktopDevices() {
    if (pulseServerAnswers()) return makePulseDevices();
    if (auto devices = makeRtAudioDevices(); !devices->outputs().empty()) return devices;
    // Nothing yet: a sound server that is started later is found by itself.
    return makePulseDevices();
}

engine::EnginePorts soundPorts() { return {makeFileDecoders(), soundTouchStretchers(), desktopDevices()}; }

}  // namespace zv
