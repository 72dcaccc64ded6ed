/// What the jingle editor does to the channels of a slot while they may sound: effects, level, loop, listening.
/// Positions are bytes of decoded sound. Of the records only Volm, ReverbMs and what tells of playing change. [control]
#pragma once

#include <cstdint>

#include "audio/cue_points.h"
#include "audio/effect_vector.h"
#include "audio/effects.h"

namespace zv {

/// Where a jingle is heard from.
enum class ListenFrom : std::uint8_t {
    start,      ///< CueStart
    end,        ///< half a second before StopPos
    loopIn,     ///< LoopIn, in its loop
    loopsTurn,  ///< one second before LoopOut, in its loop
};

// ---- effects, at once on the channel ----
void EditBand(int index, int band, double gain);  ///< dB
void EditReverb(int index, double ms);
void EditTempo(int index, TempoPart part, double value);
void EditVolume(int index, int percent);

// ---- places ----
SoundLength EditLength(int index);
double EditBytes(int index, double seconds);
/// To the hundredth what EditBytes was given.
double EditSeconds(int index, double bytes);
/// Where the channel is.
double EditPosition(int index);
void EditSeek(int index, double position);
/// LoopIn and LoopOut of the record on the source, where it goes round in them.
void EditLoop(int index);

// ---- listening ----
/// No sound is held back between a change and what is heard of it.
void EditAtOnce(int index);
/// Stops without a click what sounds, then plays; false when the channel does not start.
bool ListenTo(int index, ListenFrom from);
/// Stops without a click.
void ListenEnd(int index);
/// The channel as a press expects it: full level, at CueStart where it is silent, its loop as Loop says; with Seq
/// the record is left to start anew.
void EditDone(int index);
/// The slot's file is opened anew, unless it sounds.
void EditReopen(int index);

}  // namespace zv
