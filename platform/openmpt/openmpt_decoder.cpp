#include "platform/openmpt/openmpt_decoder.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <libopenmpt/libopenmpt.hpp>
#include <libopenmpt/libopenmpt_ext.hpp>
#include <new>
#include <sstream>
#include <vector>

#include "engine/bass.h"

namespace zv {
namespace {

constexpr std::uint32_t moduleRate = 44'100;
constexpr std::uint32_t moduleChannels = 2;
constexpr std::size_t renderedAtOnce = 4096;                           // frames
constexpr std::size_t longestModule = std::size_t{3600} * moduleRate;  // frames; an endless one is cut there
constexpr std::uintmax_t largestFile = 64U << 20;
constexpr int sincInterpolation = 8;  // taps

/// Plays the song once, to the end of its last row and without a fade.
void endWithLastRow(openmpt::module& module) {
    module.set_repeat_count(0);
    module.ctl_set_text("play.at_end", "stop");
}

/// Exact frames of the song. The library only estimates its length; so the song is played through with all its channels
/// muted, which takes a sixth of the time that sounding ones take.
std::size_t framesOfSong(std::istream& file) {
    std::ostringstream log;
    openmpt::module_ext song(file, log);
    endWithLastRow(song);
    auto* channels =
        static_cast<openmpt::ext::interactive*>(song.get_interface(openmpt::ext::interactive_id));
    for (std::int32_t k = 0; channels && k < song.get_num_channels(); ++k)
        channels->set_channel_mute_status(k, true);
    std::vector<float> unheard(renderedAtOnce);
    std::size_t frames = 0;
    for (std::size_t more = 1; more > 0 && frames < longestModule; frames += more)
        more = song.read(moduleRate, std::min(renderedAtOnce, longestModule - frames), unheard.data());
    return frames;
}

/// Renders as far as it is asked for and keeps it, since the library's own seeks land on rows: opening costs
/// nothing but the length, and what was heard once can be entered at any frame.
class ModuleDecoder : public engine::Decoder {
  public:
    ModuleDecoder(std::unique_ptr<openmpt::module> module, std::size_t frames)
        : module_(std::move(module)), frames_(frames) {
        endWithLastRow(*module_);
        module_->set_render_param(openmpt::module::RENDER_INTERPOLATIONFILTER_LENGTH, sincInterpolation);
    }

    engine::SoundFormat format() const override { return {moduleRate, moduleChannels, 0}; }
    std::optional<std::uint64_t> length() const override { return frames_; }
    std::size_t read(std::span<float> out) override {
        const std::size_t count = std::min(out.size() / moduleChannels, frames_ - cursor_);
        if (count == 0) return 0;  // at the end nothing is wanted, also where it was gone to by a seek
        renderUpTo(cursor_ + count);
        std::copy_n(sound_.begin() + static_cast<std::ptrdiff_t>(cursor_ * moduleChannels),
                    count * moduleChannels, out.begin());
        cursor_ += count;
        return count;
    }
    bool seek(std::uint64_t frame) override {
        if (frame > frames_) return false;
        cursor_ = static_cast<std::size_t>(frame);
        return true;
    }
    bool ended() const override { return cursor_ >= frames_; }

  private:
    void renderUpTo(std::size_t frame) {
        while (sound_.size() < frame * moduleChannels) {
            const std::size_t before = sound_.size();
            const std::size_t wanted = std::min(renderedAtOnce, frames_ - before / moduleChannels);
            sound_.resize(before + wanted * moduleChannels);
            std::size_t frames = 0;
            try {
                if (module_)
                    frames = module_->read_interleaved_stereo(static_cast<std::int32_t>(moduleRate), wanted,
                                                              sound_.data() + before);
            } catch (const openmpt::exception&) {
                // What cannot be rendered stays silent.
            }
            if (frames == 0 || before / moduleChannels + wanted == frames_) module_.reset();
        }
    }

    std::unique_ptr<openmpt::module> module_;  ///< until all of it is rendered
    std::vector<float> sound_;
    std::size_t frames_;
    std::size_t cursor_ = 0;
};

}  // namespace

std::unique_ptr<engine::Decoder> openModuleDecoder(const std::string& path, int& error) {
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
        auto module = std::make_unique<openmpt::module>(in, log);
        in.clear();
        in.seekg(0);
        const std::size_t frames = framesOfSong(in);
        if (frames == 0) return nullptr;
        auto decoder = std::make_unique<ModuleDecoder>(std::move(module), frames);
        error = BASS_OK;
        return decoder;
    } catch (const std::bad_alloc&) {
        error = BASS_ERROR_MEM;
    } catch (const std::exception&) {
        error = BASS_ERROR_FILEFORM;
    }
    return nullptr;
}

}  // namespace zv
