// platform/midi.h through RtMidi: the ALSA sequencer where the kernel has it, else JACK; elsewhere the system's own.
#include <RtMidi.h>
#include <jack/jack.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/common/jack_turn.h"
#include "platform/common/midi_queue.h"
#include "platform/midi.h"
#include "platform/rtmidi/device_names.h"
#include "platform/rtmidi/port_check.h"
#include "platform/rtmidi/port_watch.h"
#include "platform/wake.h"

namespace zv {
namespace {

constexpr const char* kClientName = "Zentrova";
/// A lister of ports is made anew so often: one whose server has gone would list what was there for ever.
constexpr std::chrono::seconds kListerLife{20};

using Clock = std::chrono::steady_clock;

constexpr const char* kSequencer = "/dev/snd/seq";

/// What the libraries say of their own accord is not shown; what fails is told by results.
void dropError(RtMidiError::Type, const std::string&, void*) {}
void dropText(const char*) {}

/// A port opens a client of its own: with JACK in its turn. Otherwise nobody waits.
std::unique_lock<std::timed_mutex> turnAt(RtMidi::Api api) {
    return api == RtMidi::UNIX_JACK ? jackTurn() : std::unique_lock<std::timed_mutex>();
}

template <class Port>
struct ClosePort {
    void operator()(Port* port) const {
        const auto turn = turnAt(port->getCurrentApi());
        std::default_delete<Port>{}(port);
    }
};
template <class Port>
using Held = std::unique_ptr<Port, ClosePort<Port>>;

template <class Port>
Held<Port> makePort(RtMidi::Api api) {
    const auto turn = turnAt(api);
    if (api == RtMidi::UNIX_JACK && !turn) return nullptr;
    try {
        auto port = std::make_unique<Port>(api, kClientName);
        port->setErrorCallback(dropError, nullptr);
        return Held<Port>(port.release());
    } catch (const RtMidiError&) {
        return nullptr;
    }
}

/// The first interface that this machine has: one that needs a server counts as there, and lists nothing
/// without it.
std::optional<RtMidi::Api> interfaceHere() {
    // Its client threads write to a server that may be gone.
    std::signal(SIGPIPE, SIG_IGN);
    jack_set_error_function(dropText);
    jack_set_info_function(dropText);
    std::vector<RtMidi::Api> apis;
    RtMidi::getCompiledApi(apis);
    if (access(kSequencer, R_OK | W_OK) != 0) std::erase(apis, RtMidi::LINUX_ALSA);
    std::stable_partition(apis.begin(), apis.end(), [](RtMidi::Api api) { return api != RtMidi::UNIX_JACK; });
    for (const RtMidi::Api api : apis) {
        if (api != RtMidi::RTMIDI_DUMMY && makePort<RtMidiIn>(api) != nullptr) return api;
    }
    return std::nullopt;
}

/// A port of the program itself, of this one or another ("Zentrova-01:out").
bool isOwn(const std::string& port) {
    const std::string_view client = std::string_view(port).substr(0, port.find(':'));
    return client == kClientName || client.starts_with(std::string(kClientName) + "-");
}

/// A device and the number under which the library opens it.
struct Found {
    std::string port;
    unsigned int number = 0;
};

/// Lists the ports of one direction and keeps the last list, which the indices of the program mean.
template <class Port>
class Lister {
  public:
    std::vector<std::string> list() {
        found_.clear();
        std::vector<std::string> ports;
        if (!port_ || Clock::now() >= renewAt_) renew();
        if (!port_) return {};
        if (api_ == RtMidi::LINUX_ALSA) watchAlsaPorts(kClientName);
        if (api_ == RtMidi::UNIX_JACK) watchJackPorts(kClientName);
        const auto turn = turnAt(port_->getCurrentApi());  // without a server each question tries to open one
        const unsigned int count = port_->getPortCount();
        for (unsigned int i = 0; i < count; ++i) {
            std::string port = port_->getPortName(i);
            if (port.empty() || isOwn(port)) continue;
            ports.push_back(port);
            found_.push_back({std::move(port), i});
        }
        return distinctMidiNames(ports);
    }

    /// The port of an index, by the number that it has now; nothing when it is gone.
    std::optional<unsigned int> number(int index, Port& port) const {
        if (index < 0 || static_cast<std::size_t>(index) >= found_.size()) return std::nullopt;
        const Found& wanted = found_[static_cast<std::size_t>(index)];
        const auto turn = turnAt(port.getCurrentApi());
        const unsigned int count = port.getPortCount();
        if (wanted.number < count && port.getPortName(wanted.number) == wanted.port) return wanted.number;
        for (unsigned int i = 0; i < count; ++i) {
            if (port.getPortName(i) == wanted.port) return i;
        }
        return std::nullopt;
    }

    Held<Port> make() const { return api_ ? makePort<Port>(*api_) : nullptr; }

  private:
    void renew() {
        port_.reset();
        renewAt_ = Clock::now() + kListerLife;
        api_ = interfaceHere();
        port_ = make();
    }

    std::optional<RtMidi::Api> api_;
    Held<Port> port_;
    Clock::time_point renewAt_;
    std::vector<Found> found_;
};

struct Input {
    Input(MidiInCallback deliverTo, int longMessages) : callback(deliverTo), queue(longMessages) {}

    MidiInCallback callback;
    MidiQueue queue;
    std::atomic<bool> started{false};
    const Clock::time_point opened = Clock::now();
    Held<RtMidiIn> port;  ///< last: it ends before the queue that it writes
};

struct Devices {
    Lister<RtMidiIn> inputs;
    Lister<RtMidiOut> outputs;
    std::map<MidiHandle, std::unique_ptr<Input>> openInputs;
    std::map<MidiHandle, Held<RtMidiOut>> openOutputs;
    MidiHandle last = 0;
};

Devices& devices() {
    static Devices all;
    return all;
}

/// Names of our ports; no two that were ever open bear one.
std::string inputPort(MidiHandle handle) { return "in " + std::to_string(handle); }
std::string outputPort(MidiHandle handle) { return "out " + std::to_string(handle); }

/// Runs on the driver's thread.
void messageCame(double, std::vector<unsigned char>* bytes, void* user) {
    auto& input = *static_cast<Input*>(user);
    if (bytes == nullptr || !input.started.load(std::memory_order_acquire)) return;
    const auto since = Clock::now() - input.opened;
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(since).count();
    input.queue.push(*bytes, static_cast<std::uint32_t>(ms));
    wakeInterface();
}

}  // namespace

std::vector<std::string> midiInputs() {
    try {
        return devices().inputs.list();
    } catch (const RtMidiError&) {
        return {};
    }
}

std::vector<std::string> midiOutputs() {
    try {
        return devices().outputs.list();
    } catch (const RtMidiError&) {
        return {};
    }
}

MidiHandle openMidiInput(int index, MidiInCallback callback, int longMessages, std::string& error) {
    Devices& all = devices();
    try {
        auto input = std::make_unique<Input>(callback, longMessages);
        input->port = all.inputs.make();
        const auto number = input->port ? all.inputs.number(index, *input->port) : std::nullopt;
        if (!number) {
            error = "The device is not there.";
            return 0;
        }
        input->port->ignoreTypes(false, false, false);
        input->port->setCallback(messageCame, input.get());
        input->port->openPort(*number, inputPort(all.last + 1));
        if (!input->port->isPortOpen()) {
            error = "The device cannot be opened.";
            return 0;
        }
        all.openInputs[++all.last] = std::move(input);
        return all.last;
    } catch (const RtMidiError& fault) {
        error = fault.getMessage();
        return 0;
    }
}

bool startMidiInput(MidiHandle input) {
    const auto found = devices().openInputs.find(input);
    if (found == devices().openInputs.end()) return false;
    found->second->started.store(true, std::memory_order_release);
    return true;
}

int deliverMidi(MidiHandle input, int most) {
    const auto found = devices().openInputs.find(input);
    return found == devices().openInputs.end() ? 0
                                               : found->second->queue.deliver(found->second->callback, most);
}

bool midiConnected(MidiHandle device) {
    Devices& all = devices();
    const auto input = all.openInputs.find(device);
    const auto output = all.openOutputs.find(device);
    const bool isInput = input != all.openInputs.end();
    if (!isInput && output == all.openOutputs.end()) return false;
    const std::string port = isInput ? inputPort(device) : outputPort(device);
    switch (isInput ? input->second->port->getCurrentApi() : output->second->getCurrentApi()) {
        case RtMidi::LINUX_ALSA:
            return alsaPortConnected(kClientName, port, isInput);
        case RtMidi::UNIX_JACK:
            return jackPortConnected(kClientName, port);
        default:
            return true;  // the other systems' lists change when a device goes
    }
}

bool midiDevicesChanged() { return portsChanged(); }

void closeMidiInput(MidiHandle input) { devices().openInputs.erase(input); }

MidiHandle openMidiOutput(int index, std::string& error) {
    Devices& all = devices();
    try {
        auto port = all.outputs.make();
        const auto number = port ? all.outputs.number(index, *port) : std::nullopt;
        if (!number) {
            error = "The device is not there.";
            return 0;
        }
        port->openPort(*number, outputPort(all.last + 1));
        if (!port->isPortOpen()) {
            error = "The device cannot be opened.";
            return 0;
        }
        all.openOutputs[++all.last] = std::move(port);
        return all.last;
    } catch (const RtMidiError& fault) {
        error = fault.getMessage();
        return 0;
    }
}

bool sendMidi(MidiHandle output, std::uint32_t message) {
    const auto found = devices().openOutputs.find(output);
    if (found == devices().openOutputs.end()) return false;
    const std::array<unsigned char, 3> bytes{static_cast<unsigned char>(message),
                                             static_cast<unsigned char>(message >> 8),
                                             static_cast<unsigned char>(message >> 16)};
    try {
        found->second->sendMessage(bytes.data(), midiLength(bytes[0]));
        return true;
    } catch (const RtMidiError&) {
        return false;
    }
}

void closeMidiOutput(MidiHandle output) { devices().openOutputs.erase(output); }

}  // namespace zv
