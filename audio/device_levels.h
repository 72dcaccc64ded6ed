/// What each output sends and the microphone hears, for the meters of the mixer window. [control]
#pragma once

namespace zv {

/// Percent of full scale, the louder of both channels; 0 for an output that is not open.
int OutputLevel(int output);
/// The microphone before its own level; 0 while the input is closed. Mix topology only.
int InputLevel();

}  // namespace zv
