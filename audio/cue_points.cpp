#include "audio/cue_points.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "engine/bass.h"

namespace zv {
namespace {

constexpr double kGuardSeconds = 0.01;
constexpr double kLeastGuard = 5280;  // bytes
constexpr int kHundredths = 100;
constexpr int kSecondsPerMinute = 60;
constexpr double kLongestSeconds = 1e9;

double wholeBytes(std::uint64_t bytes) { return bytes == BASS_NO_POSITION ? 0 : static_cast<double>(bytes); }

/// As std::clamp, for a `most` that may lie below `least`: a file too short for the guard.
double within(double value, double least, double most) {
    return std::max(0.0, std::min(std::max(value, least), most));
}

/// Where the last point may begin. A sound shorter than the guard has one place only.
double latest(const SoundLength& sound) { return sound.minGap > 0 ? sound.length - sound.minGap : 0; }

}  // namespace

FieldTime FieldsOf(double seconds) {
    if (!(seconds > 0)) return {};
    const auto hundredths =
        static_cast<std::int64_t>(std::floor(std::min(seconds, kLongestSeconds) * kHundredths + 0.5));
    const std::int64_t whole = hundredths / kHundredths;
    return {static_cast<int>(whole / kSecondsPerMinute), static_cast<int>(whole % kSecondsPerMinute),
            static_cast<int>(hundredths % kHundredths)};
}

std::string TimeText(const FieldTime& fields) {
    char text[48];
    std::snprintf(text, sizeof text, "%d:%02d.%02d", fields.minutes, fields.seconds, fields.hundredths);
    return text;
}

double SecondsOf(const FieldTime& fields) {
    const auto hundredths =
        (static_cast<std::int64_t>(fields.minutes) * kSecondsPerMinute + fields.seconds) * kHundredths +
        fields.hundredths;
    return static_cast<double>(hundredths) / kHundredths;
}

SoundLength SoundLengthOf(std::uint32_t channel) {
    SoundLength sound;
    sound.length = wholeBytes(BASS_ChannelGetLength(channel, BASS_POS_BYTE));
    sound.minGap = std::max(wholeBytes(BASS_ChannelSeconds2Bytes(channel, kGuardSeconds)), kLeastGuard);
    if (sound.length <= sound.minGap) sound.minGap = 0;
    return sound;
}

void MoveStart(CuePoints& points, const SoundLength& sound, double position) {
    points.start = within(position, 0, latest(sound));
}

void MoveStop(CuePoints& points, const SoundLength& sound, double position) {
    const double stop = within(position, sound.minGap, sound.length);
    points.stop = sound.length - stop < sound.minGap || stop >= sound.length ? 0 : stop;
}

void MoveLoopIn(CuePoints& points, const SoundLength& sound, double position) {
    points.loopIn = within(position, 0, points.lengthLocked ? sound.length - points.loopLen : latest(sound));
    if (points.lengthLocked) {
        points.loopOut = points.loopIn + points.loopLen;
        return;
    }
    points.loopOut = std::max(points.loopOut, points.loopIn + sound.minGap);
    points.loopLen = points.loopOut - points.loopIn;
}

void MoveLoopOut(CuePoints& points, const SoundLength& sound, double position) {
    const double earliest = sound.minGap > 0 ? sound.minGap : sound.length;
    points.loopOut = within(position, points.lengthLocked ? points.loopLen : earliest, sound.length);
    if (points.lengthLocked) {
        points.loopIn = std::max(0.0, points.loopOut - points.loopLen);
        return;
    }
    points.loopIn = std::min(points.loopIn, std::max(0.0, points.loopOut - sound.minGap));
    points.loopLen = points.loopOut - points.loopIn;
}

bool BringInto(CuePoints& points, const SoundLength& sound) {
    const CuePoints before = points;
    if (points.start > latest(sound) || points.start < 0) points.start = 0;
    if (points.stop > sound.length - sound.minGap || points.stop <= points.start) points.stop = 0;
    if (points.loopOut <= 0 || points.loopOut > sound.length) points.loopOut = sound.length;
    points.loopIn = within(points.loopIn, 0, std::min(latest(sound), points.loopOut - sound.minGap));
    points.loopLen = points.loopOut - points.loopIn;
    return points.start != before.start || points.stop != before.stop || points.loopIn != before.loopIn ||
           points.loopOut != before.loopOut;
}

}  // namespace zv
