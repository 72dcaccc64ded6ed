/// The time jingle: what plays some seconds after the time announcement. It is chosen from a button and keeps what it
/// needs of the record, which may change. [control]
#pragma once

#include <string>

namespace zv {

/// File of the time jingle; empty: none.
extern std::string TmAnPath;
/// Playable seconds of it.
extern double TmJingleDuration;

/// Takes the jingle of slot `index` as the time jingle. A worker opens its file; one that fails is told on the
/// display. Nothing for an empty slot or a missing file.
void ChooseTimeJingle(int index);
/// There is no time jingle any more.
void DropTimeJingle();
/// Frees its channels and keeps what was chosen.
void FreeTimeJingle();
/// Opens the channels of what was chosen, unless they are open.
void OpenTimeJingle();
/// Plays it from its start.
void PlayTimeJingle();
/// It sounds.
bool TimeJingleSounds();
/// Seconds left until its end, 0 when it does not sound.
double TimeJingleLeft();

}  // namespace zv
