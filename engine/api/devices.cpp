// Of engine/bass.h: "output devices" and "inputs".
#include <string>

#include "engine/api/new_channel.h"

using namespace zv::engine;

namespace {

constexpr DWORD kLeastRate = 1000, kMostRate = 768'000;
constexpr const char* kNoSoundName = "No sound";

/// Texts handed out live until the thread's next call.
bool describe(const DeviceRegister::Entry& entry, bool initialised, BASS_DEVICEINFO* info) {
    thread_local std::string name, id;
    name = entry.description.name;
    id = entry.description.id;
    info->name = name.c_str();
    info->driver = id.c_str();
    info->flags = (entry.present ? BASS_DEVICE_ENABLED : 0) |
                  (entry.description.isDefault ? BASS_DEVICE_DEFAULT : 0) |
                  (initialised ? BASS_DEVICE_INIT : 0);
    return true;
}

int defaultOutput(const Engine& engine) {
    const auto& entries = engine.outputRegister.entries();
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (entries[i].present && entries[i].description.isDefault) return static_cast<int>(i) + 1;
    return 1;
}

}  // namespace

extern "C" {

bool BASS_Init(int device, DWORD freq, DWORD, void*, const void*) {
    const ControlCall call;
    Engine& e = call.engine;
    if (!e.ports.devices) return fail(BASS_ERROR_DRIVER, false);
    e.refreshDevices();
    if (device == -1) device = defaultOutput(e);
    const auto& entries = e.outputRegister.entries();
    const bool known = device == 0 || (device > 0 && static_cast<std::size_t>(device) <= entries.size() &&
                                       device < kMostDevices);
    if (!known) return fail(BASS_ERROR_DEVICE, false);
    const auto place = static_cast<std::size_t>(device);
    if (e.outputInitialised[place]) return fail(BASS_ERROR_ALREADY, false);
    if (device > 0 && !entries[place - 1].present) return fail(BASS_ERROR_DEVICE, false);
    if (freq < kLeastRate || freq > kMostRate) return fail(BASS_ERROR_FREQ, false);
    const bool first = !e.outputs.anyOpen();
    int code = BASS_OK;
    try {
        if (first) {
            e.graph.setRate(freq);
            // Stands in for outputs that get lost, also when nobody asked for it.
            e.outputs.open(0, {}, freq, *e.ports.devices);
        }
        if (device > 0)
            code = e.outputs.open(device, entries[place - 1].description.id, freq, *e.ports.devices);
    } catch (...) {
        code = BASS_ERROR_DRIVER;
    }
    if (code != BASS_OK) {
        if (first) e.outputs.close(0);
        return fail(code, false);
    }
    e.outputInitialised[place] = true;
    e.rankOutputs();
    selectedOutput() = device;
    return succeed(true);
}

bool BASS_SetDevice(DWORD device) {
    const Call call;
    if (device >= static_cast<DWORD>(kMostDevices) || device > call.engine.outputRegister.entries().size())
        return fail(BASS_ERROR_DEVICE, false);
    if (!call.engine.outputInitialised[device]) return fail(BASS_ERROR_INIT, false);
    selectedOutput() = static_cast<int>(device);
    return succeed(true);
}

DWORD BASS_GetDevice() {
    const Call call;
    const int selected = selectedOutput();
    if (selected < 0 || !call.engine.outputInitialised[static_cast<std::size_t>(selected)])
        return fail(BASS_ERROR_INIT, ~DWORD{0});
    return succeed(static_cast<DWORD>(selected));
}

bool BASS_GetDeviceInfo(DWORD device, BASS_DEVICEINFO* info) {
    const ControlCall call;
    Engine& e = call.engine;
    if (!info) return fail(BASS_ERROR_ILLPARAM, false);
    if (device == 0) {
        *info = {kNoSoundName, "", BASS_DEVICE_ENABLED | (e.outputInitialised[0] ? BASS_DEVICE_INIT : 0)};
        return succeed(true);
    }
    e.refreshDevices();
    const auto& entries = e.outputRegister.entries();
    if (device > entries.size() || device >= static_cast<DWORD>(kMostDevices))
        return fail(BASS_ERROR_DEVICE, false);
    return succeed(describe(entries[device - 1], e.outputInitialised[device], info));
}

bool BASS_Free() {
    ControlCall call;
    Engine& e = call.engine;
    const int selected = selectedOutput();
    if (selected < 0 || !e.outputInitialised[static_cast<std::size_t>(selected)])
        return fail(BASS_ERROR_INIT, false);
    e.closeOutput(selected, call.lock);
    return succeed(true);
}

// ---- inputs

bool BASS_RecordInit(int device) {
    const ControlCall call;
    Engine& e = call.engine;
    if (!e.ports.devices || device < -1) return fail(BASS_ERROR_DEVICE, false);
    e.refreshDevices();
    InputSlot* slot = e.input(device);
    if (!slot) return fail(BASS_ERROR_DEVICE, false);
    const auto place = static_cast<int>(
        std::find_if(e.inputs.begin(), e.inputs.end(), [&](const auto& s) { return s.get() == slot; }) -
        e.inputs.begin());
    if (slot->initialised) return fail(BASS_ERROR_ALREADY, false);
    if (!e.inputRegister.entries()[static_cast<std::size_t>(place)].present)
        return fail(BASS_ERROR_DEVICE, false);
    slot->initialised = true;
    selectedInput() = place;
    return succeed(true);
}

bool BASS_RecordSetDevice(DWORD device) {
    const Call call;
    const bool chooseDefault = device == ~DWORD{0};
    if (!chooseDefault && device >= call.engine.inputRegister.entries().size())
        return fail(BASS_ERROR_DEVICE, false);
    const InputSlot* slot = call.engine.input(static_cast<int>(device));
    if (!slot || !slot->initialised) return fail(BASS_ERROR_INIT, false);
    for (std::size_t i = 0; i < call.engine.inputs.size(); ++i)
        if (call.engine.inputs[i].get() == slot) selectedInput() = static_cast<int>(i);
    return succeed(true);
}

bool BASS_RecordGetDeviceInfo(DWORD device, BASS_DEVICEINFO* info) {
    const ControlCall call;
    Engine& e = call.engine;
    if (!info) return fail(BASS_ERROR_ILLPARAM, false);
    e.refreshDevices();
    const auto& entries = e.inputRegister.entries();
    if (device >= entries.size()) return fail(BASS_ERROR_DEVICE, false);
    const bool initialised = device < e.inputs.size() && e.inputs[device]->initialised;
    return succeed(describe(entries[device], initialised, info));
}

bool BASS_RecordGetInfo(BASS_RECORDINFO* info) {
    const Call call;
    Engine& e = call.engine;
    if (!info) return fail(BASS_ERROR_ILLPARAM, false);
    const auto place = static_cast<std::size_t>(selectedInput());
    if (selectedInput() < 0 || place >= e.inputs.size() || !e.inputs[place]->initialised)
        return fail(BASS_ERROR_INIT, false);
    constexpr DWORD usualRate = 44100;
    const DWORD rate = e.inputRegister.entries()[place].description.rate;
    *info = {0, 1, rate == 0 ? usualRate : rate};
    return succeed(true);
}

HRECORD BASS_RecordStart(DWORD freq, DWORD channels, DWORD flags, void* procedure, void*) {
    const ControlCall call;
    Engine& e = call.engine;
    const auto place = static_cast<std::size_t>(selectedInput());
    if (selectedInput() < 0 || place >= e.inputs.size() || !e.inputs[place]->initialised)
        return fail<HRECORD>(BASS_ERROR_INIT, 0);
    if (procedure) return fail<HRECORD>(BASS_ERROR_ILLPARAM, 0);
    if (channels != 2) return fail<HRECORD>(BASS_ERROR_FORMAT, 0);
    if (freq < kLeastRate || freq > kMostRate) return fail<HRECORD>(BASS_ERROR_FREQ, 0);
    InputSlot& slot = *e.inputs[place];
    try {
        if (!slot.device) slot.device = e.ports.devices->openInput(slot.id, freq, slot);
        if (!slot.device || slot.device->rate() == 0) return fail<HRECORD>(BASS_ERROR_DRIVER, 0);
        const double periodMs = slot.device->period() * 1000.0 / slot.device->rate();
        BridgeOptions options;
        options.inRate = slot.device->rate();
        options.outRate = freq;
        options.oneClock = e.ports.devices->oneClock();
        // A voice must not come late: little more than the periods need, answered more firmly.
        options.targetMs = 1.5 * periodMs + 6;
        options.ppmPerMs = 40;
        auto input = std::make_shared<RecordInput>(options);
        if (!slot.add(input)) return fail<HRECORD>(BASS_ERROR_BUSY, 0);
        auto channel = prepareChannel(e, Kind::Record, flags | BASS_STREAM_DECODE, {freq, 2, 16});
        channel->live = input;
        channel->control.inputDevice = static_cast<DWORD>(place);
        return publishChannel(e, channel);
    } catch (...) {
        return fail<HRECORD>(BASS_ERROR_DRIVER, 0);
    }
}

bool BASS_RecordFree() {
    ControlCall call;
    Engine& e = call.engine;
    const auto place = static_cast<std::size_t>(selectedInput());
    if (selectedInput() < 0 || place >= e.inputs.size() || !e.inputs[place]->initialised)
        return fail(BASS_ERROR_INIT, false);
    std::vector<std::shared_ptr<Channel>> gone;
    for (const auto& [handle, channel] : e.channels)
        if (channel->kind == Kind::Record && channel->control.inputDevice == place) gone.push_back(channel);
    for (const auto& channel : gone) e.freeChannel(channel, call.lock);
    e.inputs[place]->device.reset();
    e.inputs[place]->initialised = false;
    return succeed(true);
}

}  // extern "C"
