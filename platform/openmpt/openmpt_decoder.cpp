#include "platform/openmpt/openmpt_decoder.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <libopenmpt/libopenmpt.hpp>
#include <new>
#include <sstream>
#include <vector>

#include "engine/bass.h"

namespace zv {
namespace {

constexpr std::uint32_t moduleRate = 44'100;
constexpr std::uint32_t moduleChannels = 2;
constexpr std::size_t renderedAtOnce = 4096;              // frames
constexpr std::size_t longestModule = moduleRate * 3600;  // frames; one that jumps about for ever is cut there
constexpr std::uintmax_t largestFile = 64U << 20;
constexpr int sincInterpolation = 8;  // taps

class ModuleDecoder : public Decoder {
  public:
    explicit ModuleDecoder(std::vector<float> sound) : sound_(std::move(sound)) {}

    SoundFormat format() const override { return {moduleRate, moduleChannels, 0}; }
    std::optional<std::uint64_t> length() const override { return frames(); }
    std::size_t read(std::span<float> out) override {
        const std::size_t count = std::min(out.size() / moduleChannels, frames() - cursor_);
        std::copy_n(sound_.begin() + static_cast<std::ptrdiff_t>(cursor_ * moduleChannels), count * moduleChannels,
                    out.begin());
        cursor_ += count;
        return count;
    }
    bool seek(std::uint64_t frame) override {
        if (frame > frames()) return false;
        cursor_ = static_cast<std::size_t>(frame);
        return true;
    }
    bool ended() const override { return cursor_ >= frames(); }

  private:
    std::size_t frames() const { return sound_.size() / moduleChannels; }

    std::vector<float> sound_;
    std::size_t cursor_ = 0;
};

std::vector<float> renderWhole(openmpt::module& module) {
    module.set_repeat_count(0);
    module.set_render_param(openmpt::module::RENDER_INTERPOLATIONFILTER_LENGTH, sincInterpolation);
    std::vector<float> sound;
    sound.reserve(static_cast<std::size_t>(std::clamp(module.get_duration_seconds(), 0.0, 3600.0) * moduleRate) *
                  moduleChannels);
    while (sound.size() < longestModule * moduleChannels) {
        const std::size_t before = sound.size();
        sound.resize(before + renderedAtOnce * moduleChannels);
        const std::size_t frames =
            module.read_interleaved_stereo(static_cast<std::int32_t>(moduleRate), renderedAtOnce, sound.data() + before);
        sound.resize(before + frames * moduleChannels);
        if (frames == 0) break;
    }
    sound.shrink_to_fit();
    return sound;
}

}  // namespace

std::unique_ptr<Decoder> openModuleDecoder(const std::string& path, int& error) {
    std::error_code failure;
    const std::filesystem::path file(path);
    if (!std::filesystem::is_regular_file(file, failure)) {
        error = BASS_ERROR_FILEOPEN;
        return nullptr;
    }
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        error = BASS_ERROR_FILEOPEN;
        return nullptr;
    }
    error = BASS_ERROR_FILEFORM;
    if (std::filesystem::file_size(file, failure) > largestFile) return nullptr;
    try {
        std::ostringstream log;  // the library's remarks, which would go to the console
        openmpt::module module(in, log);
        std::vector<float> sound = renderWhole(module);
        if (sound.empty()) return nullptr;
        error = BASS_OK;
        return std::make_unique<ModuleDecoder>(std::move(sound));
    } catch (const std::bad_alloc&) {
        error = BASS_ERROR_MEM;
    } catch (const std::exception&) {
        error = BASS_ERROR_FILEFORM;
    }
    return nullptr;
}

}  // namespace zv
