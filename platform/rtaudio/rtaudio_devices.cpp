#include "platform/rtaudio/rtaudio_devices.h"

#include <rtaudio/RtAudio.h>

#include <algorithm>

#include "platform/paced/paced_device.h"

namespace zv {
namespace {

constexpr std::uint32_t wantedPeriod = 256;  // frames
constexpr std::uint32_t channels = 2;

enum class Direction { Output, Input };

class RtAudioDevice : public engine::SoundDevice {
  public:
    RtAudioDevice(RtAudio::Api api, Direction direction, engine::SoundClient& client)
        : audio_(api), direction_(direction), client_(&client) {
        audio_.showWarnings(false);
    }
    ~RtAudioDevice() override {
        try {
            if (audio_.isStreamOpen()) audio_.closeStream();
        } catch (const RtAudioError&) {
            // It is gone already.
        }
    }

    bool open(const std::string& id, std::uint32_t rate) {
        const bool output = direction_ == Direction::Output;
        RtAudio::StreamParameters parameters;
        parameters.deviceId = output ? audio_.getDefaultOutputDevice() : audio_.getDefaultInputDevice();
        parameters.nChannels = channels;
        if (!id.empty()) {
            bool found = false;
            for (unsigned n = 0; n < audio_.getDeviceCount() && !found; ++n) {
                found = audio_.getDeviceInfo(n).name == id;
                if (found) parameters.deviceId = n;
            }
            if (!found) return false;
        }
        rate = rateOf(audio_.getDeviceInfo(parameters.deviceId), rate);
        RtAudio::StreamOptions options;
        options.flags = RTAUDIO_MINIMIZE_LATENCY | RTAUDIO_SCHEDULE_REALTIME;
        options.numberOfBuffers = 2;
        options.streamName = "Zentrova";
        unsigned period = wantedPeriod;
        audio_.openStream(output ? &parameters : nullptr, output ? nullptr : &parameters, RTAUDIO_FLOAT32,
                          rate, &period, &RtAudioDevice::onPeriod, this, &options);
        period_ = period;
        rate_ = audio_.getStreamSampleRate();
        audio_.startStream();
        return true;
    }

    std::uint32_t rate() const override { return rate_; }
    std::uint32_t period() const override { return period_; }

  private:
    /// The wished rate where the device has it, else the one it prefers: the engine converts.
    static std::uint32_t rateOf(const RtAudio::DeviceInfo& info, std::uint32_t wished) {
        const bool has = std::ranges::find(info.sampleRates, wished) != info.sampleRates.end();
        return has || info.preferredSampleRate == 0 ? wished : info.preferredSampleRate;
    }

    static int onPeriod(void* out, void* in, unsigned frames, double, RtAudioStreamStatus, void* self) {
        auto& device = *static_cast<RtAudioDevice*>(self);
        const std::size_t samples = std::size_t{frames} * channels;
        if (out) device.client_->render({static_cast<float*>(out), samples});
        if (in) device.client_->heard({static_cast<const float*>(in), samples});
        return 0;
    }

    RtAudio audio_;
    Direction direction_;
    engine::SoundClient* client_;
    std::uint32_t rate_ = 0;
    std::uint32_t period_ = wantedPeriod;
};

class RtAudioDevices : public engine::DeviceSource {
  public:
    explicit RtAudioDevices(RtAudio::Api api) : api_(api) {}

    std::vector<engine::DeviceDescription> outputs() override { return list(Direction::Output); }
    std::vector<engine::DeviceDescription> inputs() override { return list(Direction::Input); }
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
        return openPacedDevice(rate, wantedPeriod, client);
    }
    bool offline() const override { return false; }

  private:
    std::vector<engine::DeviceDescription> list(Direction direction) const {
        std::vector<engine::DeviceDescription> devices;
        try {
            RtAudio audio(api_);
            audio.showWarnings(false);
            for (unsigned n = 0; n < audio.getDeviceCount(); ++n) {
                const RtAudio::DeviceInfo info = audio.getDeviceInfo(n);
                const bool output = direction == Direction::Output;
                if (!info.probed || (output ? info.outputChannels : info.inputChannels) < channels) continue;
                devices.push_back({info.name, info.name, output ? info.isDefaultOutput : info.isDefaultInput,
                                   info.preferredSampleRate});
            }
        } catch (const RtAudioError&) {
            devices.clear();
        }
        return devices;
    }

    std::unique_ptr<engine::SoundDevice> open(Direction direction, const std::string& id, std::uint32_t rate,
                                              engine::SoundClient& client) const {
        try {
            auto device = std::make_unique<RtAudioDevice>(api_, direction, client);
            if (device->open(id, rate)) return device;
        } catch (const RtAudioError&) {
            // No such device, or it is in use.
        }
        return nullptr;
    }

    RtAudio::Api api_;
};

}  // namespace

std::shared_ptr<engine::DeviceSource> makeRtAudioDevices() {
    std::vector<RtAudio::Api> built;
    RtAudio::getCompiledApi(built);
    // The servers are asked elsewhere, over their own interfaces.
    for (const RtAudio::Api server : {RtAudio::LINUX_PULSE, RtAudio::UNIX_JACK, RtAudio::RTAUDIO_DUMMY})
        std::erase(built, server);
    return std::make_shared<RtAudioDevices>(built.empty() ? RtAudio::RTAUDIO_DUMMY : built.front());
}

}  // namespace zv
