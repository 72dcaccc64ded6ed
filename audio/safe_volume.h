/// How far a sound can be lifted before it clips.
#pragma once

#include <string>

#include "platform/jobs.h"

namespace zv {

/// The highest volume in whole percent at which no sample of the file at `path` (absolute) goes beyond full scale: the
/// whole part of 10000 by the peak in percent, where silence counts as 100. 0 for a file that cannot be read, and for
/// a job that was cancelled; 400 at most. [worker]
int MeasureSafeVol(const std::string& path, JobWork& work);

}  // namespace zv
