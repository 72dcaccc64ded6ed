/// Start, stop and loop of a jingle as an editor moves them: how far each may go, and what moves along with it.
/// Positions are bytes of decoded sound. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// Minutes, seconds and hundredths, as three fields show them.
struct FieldTime {
    int minutes = 0, seconds = 0, hundredths = 0;
    bool operator==(const FieldTime&) const = default;
};

/// The nearest hundredth; 0 for what is below 0 or no number.
FieldTime FieldsOf(double seconds);
/// "1:02.50".
std::string TimeText(const FieldTime& fields);
/// Fields in any form: 90 seconds are a minute and a half. In seconds.
double SecondsOf(const FieldTime& fields);

/// Points of a jingle that can be moved.
enum class CuePoint : std::uint8_t { start, stop, loopIn, loopOut };

/// What the points must stay within.
struct SoundLength {
    double length = 0;  ///< bytes of the whole file
    double minGap = 0;  ///< bytes that two points stay apart, and the start from the end
};

/// The length of a decoding channel, and the guard of 10 ms, 5,280 bytes at least. A file that is shorter than
/// that has no guard.
SoundLength SoundLengthOf(std::uint32_t channel);

struct CuePoints {
    double start = 0;
    double stop = 0;  ///< 0: the end
    double loopIn = 0, loopOut = 0, loopLen = 0;
    bool lengthLocked = false;  ///< loop in and out keep their distance
};

/// Each moves one point to the nearest place that it may have.
void MoveStart(CuePoints& points, const SoundLength& sound, double position);
/// A stop that is nearer to the end than the guard is the end.
void MoveStop(CuePoints& points, const SoundLength& sound, double position);
void MoveLoopIn(CuePoints& points, const SoundLength& sound, double position);
void MoveLoopOut(CuePoints& points, const SoundLength& sound, double position);

/// Brings all points into a sound that may have become shorter: a start behind the end becomes the beginning, a stop
/// behind it or before the start the end, the loop goes to the nearest place. True when one of them moved.
bool BringInto(CuePoints& points, const SoundLength& sound);

}  // namespace zv
