/// How loud a sound file is, and what volume it takes and needs.
#pragma once

#include <string>

#include "platform/jobs.h"
#include "platform/loudness.h"

namespace zv {

struct FileLevel {
    Loudness part;       ///< of the part that was asked for, at a volume of 100 %
    int safeVolume = 0;  ///< percent, see SafeVolume; 0 for a file that cannot be read
};

/// Reads the file at `path` (absolute) once. The part lies between `from` and `to`, in seconds; `to` 0 is its end. A job
/// that is cancelled gives nothing of use. [worker]
FileLevel MeasureLevel(const std::string& path, double from, double to, JobWork& work);

/// The highest volume in whole percent at which no sample goes beyond full scale: the whole part of 10000 by the peak in
/// percent, where silence counts as 100; at most 400, which is what the slider reaches. [any]
int SafeVolume(double peak);

/// The volume in whole percent that brings a sound of `integrated` LUFS to `target`, at most `safeVolume`; 0 when there
/// is none, as for silence. [any]
int VolumeForLoudness(double target, double integrated, int safeVolume);

/// What a volume in percent adds to a level, dB; minus infinity for 0. [any]
double DecibelsOfVolume(int percent);

}  // namespace zv
