/// Sounds made on the spot, under the engine's own port for decoders.
#pragma once

#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <numbers>
#include <optional>
#include <span>
#include <string>

#include "engine/bass.h"
#include "engine/ports.h"

namespace zv::engine::test {

/// A sound that is computed: sample `channel` of frame `frame`.
struct Made {
    SoundFormat format{44100, 2, 16};
    std::uint64_t length = 44100;
    std::function<float(std::uint64_t frame, std::uint32_t channel)> sample;
    bool endless = false;
    unsigned dryEvery = 0;  ///< so many reads: one has nothing just now
};

/// The sample's value is its position: exact in float up to 2^24 frames.
inline float ramp(std::uint64_t frame, std::uint32_t channel) {
    return (static_cast<float>(frame) + (channel == 0 ? 0.0F : 0.5F)) / 16777216.0F;
}
/// Which frame a ramp's sample stands for.
inline double frameOf(float sample) { return static_cast<double>(sample) * 16777216.0; }

inline float sine(std::uint64_t frame, double hz, double rate, double amplitude) {
    return static_cast<float>(amplitude *
                              std::sin(2 * std::numbers::pi * hz * static_cast<double>(frame) / rate));
}

class MadeDecoder final : public Decoder {
  public:
    explicit MadeDecoder(Made made, int* seeks = nullptr) : made_(std::move(made)), seeks_(seeks) {}
    SoundFormat format() const override { return made_.format; }
    std::optional<std::uint64_t> length() const override {
        return made_.endless ? std::nullopt : std::optional(made_.length);
    }
    std::size_t read(std::span<float> out) override {
        std::size_t frames = 0;
        if (made_.dryEvery > 0 && ++reads_ % made_.dryEvery == 0) return 0;
        const std::uint32_t channels = made_.format.channels;
        for (; (frames + 1) * channels <= out.size() && at_ < made_.length; ++frames, ++at_)
            for (std::uint32_t c = 0; c < channels; ++c) out[frames * channels + c] = made_.sample(at_, c);
        return frames;
    }
    bool seek(std::uint64_t frame) override {
        if (seeks_) ++*seeks_;
        at_ = frame;
        return true;
    }
    bool ended() const override { return at_ >= made_.length; }

  private:
    Made made_;
    int* seeks_;
    std::uint64_t at_ = 0;
    unsigned reads_ = 0;
};

class MadeSource final : public DecoderSource {
  public:
    std::map<std::string, Made> sounds;
    std::uint32_t timeoutMs = 0;  ///< of the stream opened last
    std::unique_ptr<Decoder> openFile(const std::string& path, int& error) override {
        return open(path, error);
    }
    std::unique_ptr<Decoder> openModule(const std::string& path, int& error) override {
        return open(path, error);
    }
    std::unique_ptr<Decoder> openUrl(const std::string& url, std::uint32_t ms, int& error) override {
        timeoutMs = ms;
        return open(url, error);
    }

  private:
    std::unique_ptr<Decoder> open(const std::string& path, int& error) {
        if (path == "no reason") return nullptr;
        if (path == "no memory") throw std::bad_alloc();
        if (path == "trouble") throw 1;
        const auto at = sounds.find(path);
        if (at == sounds.end()) {
            error = BASS_ERROR_FILEOPEN;
            return nullptr;
        }
        return std::make_unique<MadeDecoder>(at->second);
    }
};

}  // namespace zv::engine::test
