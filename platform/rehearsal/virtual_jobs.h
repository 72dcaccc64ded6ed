/// What the other answers of a rehearsal ask of its jobs.
#pragma once

namespace zv {

/// Waits virtual time: a job is asleep meanwhile and everything else goes on; on the interface thread the sound
/// goes on. A job that is cancelled waits no longer. [control] or on a job's thread
void waitInJob(int ms);

}  // namespace zv
