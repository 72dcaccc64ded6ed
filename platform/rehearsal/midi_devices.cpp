#include "platform/rehearsal/midi_devices.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "platform/clock.h"
#include "platform/wake.h"

namespace zv {
namespace {

MidiDevices& all() { return MidiDevices::instance(); }

void add(std::vector<std::string>& names, const std::string& name) {
    if (std::ranges::find(names, name) == names.end()) names.push_back(name);
}

/// Name of a device by its index; empty when there is none or it refuses.
std::string nameAt(const std::vector<std::string>& names, int index, std::string& error) {
    if (all().refuse) {
        error = "The device is in use.";
    } else if (index >= 0 && static_cast<std::size_t>(index) < names.size()) {
        return names[static_cast<std::size_t>(index)];
    } else {
        error = "The device is not there.";
    }
    return {};
}

MidiHandle nextHandle() { return static_cast<MidiHandle>(++all().opened); }

}  // namespace

std::string midiText(std::uint32_t message) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string text;
    for (int byte = 0; byte < 3; ++byte) {
        const std::uint32_t value = message >> (8 * byte) & 0xFF;
        text += {kHex[value >> 4], kHex[value & 15]};
    }
    return text;
}

MidiDevices& MidiDevices::instance() {
    static MidiDevices devices;
    return devices;
}

void MidiDevices::plug(const std::string& name, MidiDirections which) {
    if (which.input) add(inputs, name);
    if (which.output) add(outputs, name);
    told();
}

void MidiDevices::unplug(const std::string& name, MidiDirections which) {
    if (which.input) {
        std::erase(inputs, name);
        for (const auto& [handle, input] : openInputs) {
            if (input->device == name) lost.insert(handle);
        }
    }
    if (which.output) {
        std::erase(outputs, name);
        for (const auto& [handle, device] : openOutputs) {
            if (device == name) lost.insert(handle);
        }
    }
    told();
}

void MidiDevices::told() {
    changed = tells;
    if (changed) wakeInterface();
}

bool MidiDevices::queue(std::string_view hex, const std::string& device) {
    std::array<unsigned char, 3> bytes{};
    for (std::size_t i = 0; i < bytes.size() && 2 * i + 1 < hex.size(); ++i)
        std::from_chars(hex.data() + 2 * i, hex.data() + 2 * i + 2, bytes[i], 16);
    const auto input = std::find_if(openInputs.rbegin(), openInputs.rend(), [&](const auto& open) {
        const Input& in = *open.second;
        return in.started && (device.empty() || in.device == device) && !lost.contains(open.first);
    });
    if (input == openInputs.rend()) return false;
    input->second->queue.push(bytes, static_cast<std::uint32_t>(monotonicMs()));
    return true;
}

bool MidiDevices::hear(std::string_view hex, const std::string& device) {
    if (!queue(hex, device)) return false;
    wakeInterface();
    return true;
}

// ---- platform/midi.h

std::vector<std::string> midiInputs() { return all().inputs; }
std::vector<std::string> midiOutputs() { return all().outputs; }

MidiHandle openMidiInput(int index, MidiInCallback callback, int longMessages, std::string& error) {
    const std::string name = nameAt(all().inputs, index, error);
    if (name.empty()) return 0;
    const MidiHandle handle = nextHandle();
    all().openInputs[handle].reset(new MidiDevices::Input{name, callback, MidiQueue(longMessages)});
    return handle;
}

bool startMidiInput(MidiHandle input) {
    const auto found = all().openInputs.find(input);
    if (found == all().openInputs.end()) return false;
    found->second->started = true;
    return true;
}

int deliverMidi(MidiHandle input, int most) {
    const auto found = all().openInputs.find(input);
    return found == all().openInputs.end() ? 0 : found->second->queue.deliver(found->second->callback, most);
}

bool midiDevicesChanged() { return std::exchange(all().changed, false); }

bool midiConnected(MidiHandle device) { return !all().lost.contains(device); }

void closeMidiInput(MidiHandle input) { all().openInputs.erase(input); }

MidiHandle openMidiOutput(int index, std::string& error) {
    std::string name = nameAt(all().outputs, index, error);
    if (name.empty()) return 0;
    const MidiHandle handle = nextHandle();
    all().openOutputs[handle] = std::move(name);
    return handle;
}

bool sendMidi(MidiHandle output, std::uint32_t message) {
    const auto found = all().openOutputs.find(output);
    if (found == all().openOutputs.end() || all().lost.contains(output)) return false;
    if (all().onSent) all().onSent(found->second, message);
    return true;
}

void closeMidiOutput(MidiHandle output) { all().openOutputs.erase(output); }

// ---- platform/wake.h: the program has one thread here

void onWake(std::function<void()> handler) { all().onWake = std::move(handler); }

void wakeInterface() noexcept {
    if (all().onWake) all().onWake();
}

}  // namespace zv
