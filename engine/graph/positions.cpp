#include "engine/graph/positions.h"

#include <algorithm>
#include <cmath>

namespace zv::engine {
namespace {

constexpr double kRounding = 1e-6;           ///< frames: of positions that were added up
constexpr std::uint32_t kStepBackPart = 40;  ///< of a second: 25 ms

/// Whether the channel is converted to the rate of what it is plugged into: then it is heard later than
/// pulled.
bool converted(const Channel& channel) { return channel.audio.plug && channel.audio.plug->resampler; }

}  // namespace

void Positions::passed(Channel& channel, Channel& source, std::uint64_t from, std::uint64_t to) {
    syncs_.passed(channel, from, to);
    if (&source != &channel) syncs_.passed(source, from, to);
}

void Positions::delivered(Channel& channel, Channel& source, std::uint64_t from, std::uint64_t to) {
    if (!converted(channel)) passed(channel, source, from, to);
}

void Positions::stretched(Channel& channel, std::uint64_t from, std::uint64_t to) {
    Channel& source = *channel.source;
    if (to >= from) {
        delivered(channel, source, from, to);
        return;
    }
    const PlayRange range = source.sound->range();
    if (!range.loop || from - to < channel.rate / kStepBackPart) return;
    source.audio.wrapFrom = range.end;
    source.audio.wrapTo = range.loopStart;
    delivered(channel, source, from, range.end + 1);
    delivered(channel, source, range.loopStart, to);
}

/// Tells the syncs of a converted file what was heard since the last time, up to `to`.
void Positions::heard(Channel& channel, Channel& source, std::uint64_t to) {
    if (!channel.audio.syncs && !source.audio.syncs) return;
    const AudioState& a = source.audio;
    const std::uint64_t from = source.shared.heard.load(std::memory_order_relaxed);
    if (to >= from) {
        passed(channel, source, from, to);
        const Plug& plug = *channel.audio.plug;
        const bool came = to > from || plug.fed == 0;  // else the end has been told
        if (came && plug.drained && to >= source.sound->range().end) passed(channel, source, to, to + 1);
    } else if (a.wrapFrom > a.wrapTo && to >= a.wrapTo) {
        passed(channel, source, from, a.wrapFrom + 1);
        passed(channel, source, a.wrapTo, to);
    }
}

void Positions::publish(Channel& channel) {
    Channel& root = channel.root();
    const AudioState& a = root.audio;
    const bool later = converted(channel);
    std::uint64_t position = a.position, held = 0;
    if (later) {
        // What the conversion holds has not been heard yet. Silence behind the end is no part of the file.
        const Plug& plug = *channel.audio.plug;
        const std::uint64_t taken = plug.fed - (channel.audio.inTail ? channel.audio.tailDone : 0);
        const double ahead = static_cast<double>(taken) - plug.resampler->position() - kRounding;
        held = static_cast<std::uint64_t>(std::ceil(std::max(0.0, ahead)));
    }
    if (held > 0) {
        const std::uint64_t since = position - a.wrapTo;
        const bool wrapped = a.wrapFrom > a.wrapTo && position >= a.wrapTo && since < held;
        position = wrapped ? a.wrapFrom - std::min(a.wrapFrom - a.wrapTo, held - since)
                           : position - std::min(position, held);
    } else if (root.sound && position >= root.sound->end()) {
        const PlayRange range = root.sound->range();
        position = range.loop ? range.loopStart : range.end;
    }
    if (later && root.sound) heard(channel, root, position);
    root.shared.heard.store(position, std::memory_order_relaxed);
}

void Positions::takeBack(Channel& channel) {
    Channel& root = channel.root();
    AudioState &outer = channel.audio, &a = root.audio;
    Plug& plug = *outer.plug;
    if (!root.sound || outer.stretched || plug.pending > 0) return;
    const bool over = plug.drained || outer.inTail;
    if (!over && a.wrapFrom <= a.wrapTo) return;
    const auto unheard = static_cast<std::uint64_t>(std::max(0.0, plug.resampler->held()));
    const PlayRange range = root.sound->range();
    if (over) {
        const std::uint64_t tail = outer.inTail ? outer.tailDone : 0;
        const std::uint64_t silence = plug.resampler->fed() - plug.fed + tail;
        if (silence > unheard || (!range.loop && range.end <= a.position)) return;
        plug.resampler->takeBack(static_cast<std::size_t>(silence));
        plug.fed -= tail;
        plug.drained = outer.inTail = false;
        return;
    }
    const std::uint64_t since = a.position - a.wrapTo;
    const bool same = range.loop && range.end == a.wrapFrom && range.loopStart == a.wrapTo;
    if (same || a.position < a.wrapTo || since > unheard) return;
    plug.resampler->takeBack(static_cast<std::size_t>(since));
    plug.fed -= since;
    a.position = a.wrapFrom;
    a.wrapFrom = a.wrapTo = 0;
    if (channel.tempo) channel.tempo->passed(0, a.position);
}

}  // namespace zv::engine
