/// Auto-duck: jingles marked AutoDuck = 1, and the live stream, go down while something louder or more important
/// sounds. By level (AutoDuckMode 0) the meters' tick decides, by the time left (1) the display's. [control]
#pragma once

namespace zv {

inline constexpr int kDuckByLevel = 0;  ///< values of duckSettings.AutoDuckMode; any other ducks nothing
inline constexpr int kDuckByTime = 1;

extern bool DuckWanted, Ducked;
/// Index of the jingle that pushed the others down, kAnnouncer, kLiveStream or kNobody (audio/levels.h).
extern int DuckTrigger;

/// Volume or coefficient of the live stream have changed: it moves to where it stands now, ducked or not.
void LiveVolumeChanged();

/// The meters have read the trigger level, in units of the bar.
void DuckTickLevel(int trigLevel);

/// A tick of the display begins.
void DuckTickBegin();
/// A sounding jingle with `left` seconds.
void DuckTickJingle(int index, double left);
/// The announcer's voice or jingle sounds, with `left` seconds.
void DuckTickAnnouncer(double left);
/// The tick has seen all. `liveFree`: the live stream is not left to the time announcer.
void DuckTickEnd(bool liveFree);

}  // namespace zv
