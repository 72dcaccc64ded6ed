#include "benchmarks/studio.h"

#include <algorithm>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>

#include "benchmarks/measure.h"

namespace zv::bench {
namespace {

class MemoryDecoder final : public engine::Decoder {
  public:
    MemoryDecoder(const std::vector<float>& sound, engine::SoundFormat format)
        : sound_(sound), format_(format) {}
    engine::SoundFormat format() const override { return format_; }
    std::optional<std::uint64_t> length() const override { return sound_.size() / format_.channels; }
    std::size_t read(std::span<float> out) override {
        const std::size_t count = std::min(out.size(), sound_.size() - at_);
        std::copy_n(sound_.begin() + static_cast<std::ptrdiff_t>(at_), count, out.begin());
        at_ += count;
        return count / format_.channels;
    }
    bool seek(std::uint64_t frame) override {
        at_ = std::min<std::size_t>(format_.channels * frame, sound_.size());
        return true;
    }
    bool ended() const override { return at_ == sound_.size(); }

  private:
    const std::vector<float>& sound_;
    const engine::SoundFormat format_;
    std::size_t at_ = 0;
};

class MemorySource final : public engine::DecoderSource {
  public:
    explicit MemorySource(const std::vector<std::vector<float>>& sounds) : sounds_(sounds) {}
    std::unique_ptr<engine::Decoder> openFile(const std::string& path, int& error) override {
        const std::size_t k = std::stoul(path);
        const engine::SoundFormat format{path.ends_with("fast") ? 48000 : kRate,
                                         path.ends_with("mono") ? 1U : 2U, 16};
        if (k < sounds_.size()) return std::make_unique<MemoryDecoder>(sounds_[k], format);
        error = BASS_ERROR_FILEOPEN;
        return nullptr;
    }
    std::unique_ptr<engine::Decoder> openModule(const std::string& path, int& error) override {
        return openFile(path, error);
    }
    std::unique_ptr<engine::Decoder> openUrl(const std::string&, std::uint32_t, int& error) override {
        error = BASS_ERROR_NONET;
        return nullptr;
    }

  private:
    const std::vector<std::vector<float>>& sounds_;
};

DWORD had(DWORD handle, const char* what) {
    if (handle == 0)
        throw std::runtime_error(std::string(what) + " failed: " + std::to_string(BASS_ErrorGetCode()));
    return handle;
}

}  // namespace

class HandDevice final : public engine::SoundDevice {
  public:
    HandDevice(HandDevices& owner, engine::SoundClient& client) : owner_(owner), client_(client) {
        owner_.clients_.push_back(&client_);
    }
    ~HandDevice() override { std::erase(owner_.clients_, &client_); }
    std::uint32_t rate() const override { return kRate; }
    std::uint32_t period() const override { return kPeriod; }

  private:
    HandDevices& owner_;
    engine::SoundClient& client_;
};

std::vector<engine::DeviceDescription> HandDevices::outputs() {
    return {{"Main output", "main", true, kRate}, {"Auxiliary output", "aux", false, kRate}};
}

std::unique_ptr<engine::SoundDevice> HandDevices::openOutput(const std::string&, std::uint32_t,
                                                             engine::SoundClient& client) {
    return std::make_unique<HandDevice>(*this, client);
}

std::unique_ptr<engine::SoundDevice> HandDevices::openNoSound(std::uint32_t, engine::SoundClient& client) {
    return std::make_unique<HandDevice>(*this, client);
}

void HandDevices::period() {
    for (engine::SoundClient* client : clients_) {
        const double before = watches_ ? threadSeconds() : 0;
        client->render(buffer_);
        if (watches_) longest_ = std::max(longest_, threadSeconds() - before);
    }
}

double HandDevices::takeLongest() {
    watches_ = true;
    return std::exchange(longest_, 0.0);
}

std::vector<std::vector<float>> makeSounds(std::size_t count, std::size_t frames) {
    std::vector<std::vector<float>> sounds(count, std::vector<float>(2 * frames));
    std::minstd_rand random(1);
    std::uniform_real_distribution<float> spread(-0.1f, 0.1f);
    for (auto& sound : sounds)
        for (float& v : sound) v = spread(random);
    return sounds;
}

Studio::Studio(const std::vector<std::vector<float>>& sounds) {
    constexpr DWORD mixing = BASS_STREAM_DECODE | BASS_MIXER_NONSTOP | BASS_SAMPLE_FLOAT;
    engine::engineControl()->install({std::make_shared<MemorySource>(sounds), devices});
    BASS_Init(0, kRate, 0, nullptr, nullptr);
    mainMixer_ = had(BASS_Mixer_StreamCreate(kRate, 2, mixing), "the main mixer");
    const DWORD micMixer = had(BASS_Mixer_StreamCreate(kRate, 2, mixing), "the microphone mixer");
    for (int output = 0; output < 2; ++output) {
        const DWORD mainSplit =
            had(BASS_Split_StreamCreate(mainMixer_, BASS_STREAM_DECODE, nullptr), "a split");
        const DWORD micSplit = had(BASS_Split_StreamCreate(micMixer, BASS_STREAM_DECODE, nullptr), "a split");
        const DWORD outMixer = had(BASS_Mixer_StreamCreate(kRate, 2, mixing), "an output mixer");
        BASS_Mixer_StreamAddChannel(outMixer, mainSplit, BASS_MIXER_CHAN_BUFFER);
        BASS_Mixer_StreamAddChannel(outMixer, micSplit, BASS_MIXER_CHAN_BUFFER);
        had(BASS_Init(output + 1, kRate, 0, nullptr, nullptr), "an output");
        BASS_SetDevice(static_cast<DWORD>(output + 1));
        const DWORD outSplit = had(BASS_Split_StreamCreate(outMixer, 0, nullptr), "an output split");
        BASS_ChannelSetAttribute(outSplit, BASS_ATTRIB_BUFFER, 0);
        BASS_ChannelStart(outSplit);
    }
}

Studio::~Studio() { engine::engineControl()->install({}); }

DWORD Studio::jingle(std::size_t k, const std::string& form) {
    const std::string name = (std::to_string(k) + form);
    const DWORD source = had(BASS_StreamCreateFile(false, name.c_str(), 0, 0, BASS_STREAM_DECODE), "a file");
    const DWORD play =
        had(BASS_FX_TempoCreate(source, BASS_STREAM_DECODE | BASS_FX_FREESOURCE), "a tempo channel");
    BASS_Mixer_StreamAddChannel(mainMixer_, play, BASS_MIXER_CHAN_BUFFER);
    BASS_ChannelStop(play);
    BASS_ChannelFlags(play, BASS_SAMPLE_LOOP, BASS_SAMPLE_LOOP);
    return play;
}

void Studio::play(std::size_t periods) {
    for (std::size_t i = 0; i < periods; ++i) devices->period();
}

}  // namespace zv::bench
