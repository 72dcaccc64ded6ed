#include "platform/waveform.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zv {
namespace {

constexpr std::size_t framesAtOnce = 1U << 15;
constexpr int parts = 10;  // waveforms handed out on the way

}  // namespace

std::size_t Waveform::levelFor(double framesPerColumn) const {
    std::size_t level = finest();
    while (level + 1 < levels && static_cast<double>(framesPerBin(level + 1)) <= framesPerColumn) ++level;
    return level;
}

WaveformBuilder::WaveformBuilder(std::uint32_t rate, std::uint32_t channels, std::uint64_t length)
    : channels_(channels) {
    waveform_.rate = rate;
    waveform_.length = length;
}

void WaveformBuilder::add(std::span<const float> interleaved) {
    for (std::size_t at = 0; at + channels_ <= interleaved.size(); at += channels_) {
        for (std::size_t side = 0; side < 2; ++side) {
            const float read = interleaved[at + std::min<std::size_t>(side, channels_ - 1)];
            const float sample = std::isfinite(read) ? read : 0.0F;
            Sum& sum = open_[0][side];
            sum.bin.low = sum.frames == 0 ? sample : std::min(sum.bin.low, sample);
            sum.bin.high = sum.frames == 0 ? sample : std::max(sum.bin.high, sample);
            sum.squares += static_cast<double>(sample) * sample;
            if (++sum.frames == Waveform::framesPerBin(0)) finish(0, side);
        }
        ++waveform_.frames;
    }
}

/// Closes the open bin of a level and adds it to that of the next one.
void WaveformBuilder::finish(std::size_t level, std::size_t side) {
    Sum sum = std::exchange(open_[level][side], {});
    sum.bin.rms = static_cast<float>(std::sqrt(sum.squares / static_cast<double>(sum.frames)));
    if (level >= waveform_.finest()) waveform_.bins[level][side].push_back(sum.bin);
    if (level + 1 == Waveform::levels) return;
    Sum& above = open_[level + 1][side];
    above.bin.low = above.frames == 0 ? sum.bin.low : std::min(above.bin.low, sum.bin.low);
    above.bin.high = above.frames == 0 ? sum.bin.high : std::max(above.bin.high, sum.bin.high);
    above.squares += sum.squares;
    above.frames += sum.frames;
    if (above.frames >= Waveform::framesPerBin(level + 1)) finish(level + 1, side);
}

Waveform WaveformBuilder::waveform() const {
    WaveformBuilder whole = *this;
    for (std::size_t level = 0; level < Waveform::levels; ++level)
        for (std::size_t side = 0; side < 2; ++side)
            if (whole.open_[level][side].frames > 0) whole.finish(level, side);
    return std::move(whole.waveform_);
}

Waveform readWaveform(engine::Decoder& decoder, JobWork& work, const std::function<void(Waveform)>& part) {
    const engine::SoundFormat format = decoder.format();
    const std::uint64_t length = decoder.length().value_or(0);
    WaveformBuilder builder(format.rate, format.channels, length);
    std::vector<float> some(framesAtOnce * format.channels);
    decoder.seek(0);
    int told = 0;
    for (std::uint64_t done = 0; done < length && !work.cancelled();) {
        const std::size_t got = decoder.read(some);
        if (got == 0) break;
        builder.add(std::span(some).first(got * format.channels));
        done += got;
        // The first piece shows at once that there is something to come.
        const int now = 1 + static_cast<int>(done * parts / length);
        if (part && now > told && done < length) part(builder.waveform());
        told = now;
        work.progress(static_cast<int>(done * 100 / length));
    }
    return builder.waveform();
}

}  // namespace zv
