#include "platform/openmpt/openmpt_decoder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <libopenmpt/libopenmpt.hpp>
#include <map>
#include <new>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "engine/bass.h"

namespace zv {
namespace {

constexpr std::uint32_t moduleRate = 44'100;
constexpr std::uint32_t moduleChannels = 2;
/// 2.5 x 1,260 divides 2.5 x 44,100: what has whole ticks at this rate has whole ticks at the other.
constexpr std::uint32_t walkRate = 1'260;
constexpr std::size_t renderedAtOnce = 4096;                           // frames
constexpr std::size_t longestModule = std::size_t{3600} * moduleRate;  // frames; an endless one is cut there
constexpr std::uintmax_t largestFile = 64U << 20;
constexpr int sincInterpolation = 8;       // taps
constexpr std::uint8_t leastTempo = 0x20;  // smaller parameters of a tempo command are a slide, or a speed

/// Without the library's own passes over all that a file holds: only its own seeks need them.
const std::pair<const std::string, std::string> noSubsongs{"load.skip_subsongs_init", "1"};

/// Plays the song once, to the end of its last row and without a fade.
void endWithLastRow(openmpt::module& module) {
    module.set_repeat_count(0);
    module.ctl_set_text("play.at_end", "stop");
}

/// The song without its samples: it takes the same way through its rows in silence.
class SilentSong {
  public:
    explicit SilentSong(std::istream& file)
        : song_(fromStart(file), log_, {noSubsongs, {"load.skip_samples", "1"}}) {
        endWithLastRow(song_);
    }

    /// Whether each row has one tempo from its first tick to its last: a MOD sets it with the second tick, S3M and IT can
    /// slide it from tick to tick. OpenMPT's own songs may have ticks of fractions of a frame.
    bool tempoChangesWithRows() const {
        if (song_.get_metadata("tracker").find("OpenMPT") != std::string::npos) return false;
        const std::string type = song_.get_metadata("type");
        if (type == "xm") return true;
        const bool letters = type == "s3m" || type == "it";
        if (!letters && type != "mod") return false;
        std::array<char, 256> letterOf{};  // of each number that the library gives a command
        using Cell = openmpt::module::command_index;
        const auto at = [&](std::int32_t pattern, std::int32_t row, std::int32_t channel, Cell part) {
            return song_.get_pattern_row_channel_command(pattern, row, channel, part);
        };
        for (std::int32_t pattern = 0; pattern < song_.get_num_patterns(); ++pattern)
            for (std::int32_t row = song_.get_pattern_num_rows(pattern); row-- > 0;)
                for (std::int32_t channel = song_.get_num_channels(); channel-- > 0;) {
                    const std::uint8_t command = at(pattern, row, channel, Cell::command_effect);
                    if (command == 0) continue;
                    char& letter = letterOf[command];
                    if (letter == 0)
                        letter = song_
                                     .format_pattern_row_channel_command(pattern, row, channel,
                                                                         Cell::command_effect)
                                     .front();
                    if (letter != (letters ? 'T' : 'F')) continue;
                    const bool sets = at(pattern, row, channel, Cell::command_parameter) >= leastTempo;
                    if (sets != letters) return false;
                }
        return true;
    }

    /// Frames by the library's own sum over the rows, in ticks of `moduleRate`: a fraction of what playing costs. Nothing
    /// where the sum is none of whole frames. To be asked of a song that tempoChangesWithRows().
    std::optional<std::size_t> sumOfRows() {
        if (play(moduleRate, 1) != 1) return 0;  // from now on the library counts in frames of this rate
        const double frames = song_.get_duration_seconds() * moduleRate;
        if (!(frames > 0) || std::abs(frames - std::round(frames)) > 0.01) return std::nullopt;
        return static_cast<std::size_t>(std::min(std::round(frames), static_cast<double>(longestModule)));
    }

    /// Frames at `moduleRate`, counted tick by tick at a low rate: a tick has 2.5 x rate / tempo frames, the rest cut
    /// off. Nothing for a song whose ticks are made otherwise: its rows then begin elsewhere than counted.
    std::optional<std::size_t> countTicks() {
        std::size_t frames = 0;
        while (frames < longestModule && play(walkRate, 1) == 1) {
            const std::int32_t tempo = song_.get_current_tempo(), row = song_.get_current_row();
            const std::size_t tick = framesOfTick(walkRate, tempo);
            if (tick == 0 || play(walkRate, tick - 1) != tick - 1 || song_.get_current_row() != row)
                return std::nullopt;
            frames += framesOfTick(moduleRate, tempo);
        }
        return std::min(frames, longestModule);
    }

    /// The same by playing all of it.
    std::size_t countFrames() {
        std::size_t frames = 0;
        for (std::size_t more = 1; more > 0 && frames < longestModule; frames += more)
            more = play(moduleRate, std::min(renderedAtOnce, longestModule - frames));
        return frames;
    }

  private:
    static std::istream& fromStart(std::istream& file) {
        file.clear();
        file.seekg(0);
        return file;
    }
    static std::size_t framesOfTick(std::uint32_t rate, std::int32_t tempo) {
        return tempo > 0 ? std::size_t{rate} * 5 / (2 * static_cast<std::size_t>(tempo)) : 0;
    }
    std::size_t play(std::uint32_t rate, std::size_t frames) {
        return frames == 0 ? 0 : song_.read(static_cast<std::int32_t>(rate), frames, unheard_.data());
    }

    std::ostringstream log_;
    openmpt::module song_;
    std::vector<float> unheard_ = std::vector<float>(renderedAtOnce);
};

/// Exact frames of the song, of which the library has an estimate only.
std::size_t framesOfSong(std::istream& file) {
    {
        SilentSong song(file);
        const auto frames = song.tempoChangesWithRows() ? song.sumOfRows() : song.countTicks();
        if (frames) return *frames;
    }
    return SilentSong(file).countFrames();
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
        auto module =
            std::make_unique<openmpt::module>(in, log, std::map<std::string, std::string>{noSubsongs});
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
