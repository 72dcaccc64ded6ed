#include "platform/pulse/pulse_devices.h"

#include <pulse/pulseaudio.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <string_view>

#include "platform/paced/paced_device.h"
#include "platform/pulse/pulse_device.h"

namespace zv {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto answerLimit = std::chrono::milliseconds(500);
// What the servers put in the place of a sound card while there is none. Nobody hears it: it counts as no output.
constexpr std::string_view standInSink = "auto_null";

constexpr auto silenceLasts = std::chrono::seconds(5);

/// Servers that did not answer, and until when nobody waits for them again. [any]
class SilentServers {
  public:
    bool holds(const std::string& server) {
        const std::lock_guard lock(mutex_);
        const auto found = until_.find(server);
        return found != until_.end() && Clock::now() < found->second;
    }
    void note(const std::string& server, bool silent) {
        const std::lock_guard lock(mutex_);
        if (silent)
            until_[server] = Clock::now() + silenceLasts;
        else
            until_.erase(server);
    }

  private:
    std::mutex mutex_;
    std::map<std::string, Clock::time_point> until_;
};

SilentServers& silentServers() {
    static SilentServers servers;
    return servers;
}

/// Asks a server questions and waits for the answers, in the calling thread.
class Inquiry {
  public:
    explicit Inquiry(const PulseOptions& options) : loop_(pa_mainloop_new()) {
        if (!loop_) return;
        context_ = pa_context_new(pa_mainloop_get_api(loop_), "Zentrova");
        const char* server = options.server.empty() ? nullptr : options.server.c_str();
        if (!context_ || pa_context_connect(context_, server, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) return;
        runUntil([&] {
            const auto state = pa_context_get_state(context_);
            return state == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state);
        });
        silentServers().note(options.server, answer() == PulseAnswer::silent);
    }
    Inquiry(const Inquiry&) = delete;
    Inquiry& operator=(const Inquiry&) = delete;
    ~Inquiry() {
        if (context_) {
            pa_context_disconnect(context_);
            pa_context_unref(context_);
        }
        if (loop_) pa_mainloop_free(loop_);
    }

    bool answers() const { return context_ && pa_context_get_state(context_) == PA_CONTEXT_READY; }
    PulseAnswer answer() const {
        if (answers()) return PulseAnswer::ready;
        const bool connecting = context_ && PA_CONTEXT_IS_GOOD(pa_context_get_state(context_));
        return connecting ? PulseAnswer::silent : PulseAnswer::refused;
    }
    pa_context* context() const { return context_; }

    void finish(pa_operation* operation) {
        if (!operation) return;
        runUntil([&] { return pa_operation_get_state(operation) != PA_OPERATION_RUNNING || !answers(); });
        if (pa_operation_get_state(operation) == PA_OPERATION_RUNNING) pa_operation_cancel(operation);
        pa_operation_unref(operation);
    }

  private:
    void runUntil(const std::function<bool()>& done) {
        const auto limit = Clock::now() + answerLimit;
        while (!done()) {
            const auto left =
                std::chrono::duration_cast<std::chrono::microseconds>(limit - Clock::now()).count();
            if (left <= 0 || pa_mainloop_prepare(loop_, static_cast<int>(left)) < 0 ||
                pa_mainloop_poll(loop_) < 0 || pa_mainloop_dispatch(loop_) < 0)
                return;
        }
    }

    pa_mainloop* loop_ = nullptr;
    pa_context* context_ = nullptr;
};

struct Listing {
    std::string defaultOutput, defaultInput;
    std::vector<engine::DeviceDescription> outputs, inputs;
};

/// Two devices of one description get numbers, in the order of their ids, so that a saved name finds its own.
void tellApart(std::vector<engine::DeviceDescription>& sortedById) {
    std::vector<std::string> taken;
    for (auto& device : sortedById) {
        const std::string plain = device.name;
        for (int number = 2; std::find(taken.begin(), taken.end(), device.name) != taken.end(); ++number)
            device.name = plain + " (" + std::to_string(number) + ")";
        taken.push_back(device.name);
    }
}

Listing ask(const PulseOptions& options) {
    Listing listing;
    if (silentServers().holds(options.server)) return listing;
    Inquiry inquiry(options);
    if (!inquiry.answers()) return listing;
    inquiry.finish(pa_context_get_server_info(
        inquiry.context(),
        [](pa_context*, const pa_server_info* info, void* target) {
            if (!info) return;
            auto& listing = *static_cast<Listing*>(target);
            if (info->default_sink_name) listing.defaultOutput = info->default_sink_name;
            if (info->default_source_name) listing.defaultInput = info->default_source_name;
        },
        &listing));
    inquiry.finish(pa_context_get_sink_info_list(
        inquiry.context(),
        [](pa_context*, const pa_sink_info* info, int, void* target) {
            if (!info || info->name == standInSink) return;
            auto& listing = *static_cast<Listing*>(target);
            listing.outputs.push_back({info->description ? info->description : info->name, info->name,
                                       info->name == listing.defaultOutput, info->sample_spec.rate});
        },
        &listing));
    inquiry.finish(pa_context_get_source_info_list(
        inquiry.context(),
        [](pa_context*, const pa_source_info* info, int, void* target) {
            // What an output sends is no input of the studio.
            if (!info || info->monitor_of_sink != PA_INVALID_INDEX) return;
            auto& listing = *static_cast<Listing*>(target);
            listing.inputs.push_back({info->description ? info->description : info->name, info->name,
                                      info->name == listing.defaultInput, info->sample_spec.rate});
        },
        &listing));
    // The server's own order is that of plugging: a number must mean the same device at the next start.
    for (auto* devices : {&listing.outputs, &listing.inputs}) {
        std::ranges::sort(*devices, {}, &engine::DeviceDescription::id);
        tellApart(*devices);
    }
    return listing;
}

class PulseDevices : public engine::DeviceSource {
  public:
    explicit PulseDevices(PulseOptions options) : options_(std::move(options)) {}

    std::vector<engine::DeviceDescription> outputs() override { return ask(options_).outputs; }
    std::vector<engine::DeviceDescription> inputs() override { return ask(options_).inputs; }
    std::unique_ptr<engine::SoundDevice> openOutput(const std::string& id, std::uint32_t rate,
                                                    engine::SoundClient& client) override {
        return open(Direction::Output, id, rate, client);
    }
    std::unique_ptr<engine::SoundDevice> openInput(const std::string& id, std::uint32_t rate,
                                                   engine::SoundClient& client) override {
        return open(Direction::Input, id, rate, client);
    }
    std::unique_ptr<engine::SoundDevice> openNoSound(std::uint32_t rate,
                                                     engine::SoundClient& client) override {
        return openPacedDevice(rate, options_.periodFrames, client);
    }
    bool offline() const override { return false; }

  private:
    std::unique_ptr<engine::SoundDevice> open(Direction direction, const std::string& id, std::uint32_t rate,
                                              engine::SoundClient& client) {
        if (rate < 1 || rate > PA_RATE_MAX || silentServers().holds(options_.server)) return nullptr;
        auto device = std::make_unique<PulseDevice>(options_, direction, id, rate, client);
        return device->open() ? std::move(device) : nullptr;
    }

    PulseOptions options_;
};

}  // namespace

std::shared_ptr<engine::DeviceSource> makePulseDevices(PulseOptions options) {
    options.periodFrames = std::clamp<std::uint32_t>(options.periodFrames, 32, 8192);
    return std::make_shared<PulseDevices>(std::move(options));
}

PulseAnswer askPulseServer(const PulseOptions& options) { return Inquiry(options).answer(); }

PulseAnswer pulseServerState(const PulseOptions& options) {
    return silentServers().holds(options.server) ? PulseAnswer::silent : askPulseServer(options);
}

}  // namespace zv
