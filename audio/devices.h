/// Outputs, the microphone and the mix topology between them. Two topologies: deviceSettings.DeviceSingle 1 plays
/// every channel straight on one device; 0 mixes jingles and microphone onto two outputs. [control]
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "audio/upcalls.h"
#include "model/jingle.h"

namespace zv {

using StreamHandle = std::uint32_t;

extern int MixerFreqAtStart;         ///< Hz in force for this run
extern std::array<int, 2> Device;    ///< device numbers of the main and auxiliary output; 0 none
extern std::array<int, 2> DeviceId;  ///< as saved

extern StreamHandle MainMixer, MicMixer, AuxKeepAlive, hMic;
extern std::array<StreamHandle, 2> MainSplit, MicSplit, OutMixer, OutSplit;
extern StreamHandle hTmAnSrc, hTmAnVoice, hLive;  ///< announcer and live stream
extern std::vector<std::string> InputNames;
extern std::vector<std::string> OutputNames;  ///< of devices 1 and up, as last listed
/// The announcer's play channel; its sync procedure reads it.
extern Shared<StreamHandle> hTmAn;
/// No output device could be opened: the program plays into the no-sound device.
extern bool NoOutputDevice;

/// Mix topology: (re)opens output 0 or 1. Single topology: opens the one device.
void bassini(int output);
/// Builds the whole mix topology.
void SetupMixers();
/// Opens the outputs anew after there was none; what sounds goes on.
void ReopenOutputs();
/// Closes everything.
void FreeBASS();
/// Frees the playing stream of an output.
void FreeOutp(int output);
void OpenMic();
void CloseMic();
/// Fills the lists of outputs and settles the saved devices.
void ListOutDev();
/// Fills the list of inputs and settles the saved one.
void ListInDev();
/// Channels of the main output; 2 while there is none.
int OutputChannels();
/// The outputs and inputs that are there now, with those in use selected. Nothing is settled anew.
OutputLists CurrentOutputs();
InputLists CurrentInputs();
/// An output goes to another device while it sounds: what sounds goes on there. 0: no auxiliary output.
void MoveOutput(int output, int device);
/// Level of an output in percent, reached in `ms`; at once in the single topology, which has output 0 only.
void SetOutputVolume(int output, int percent, int ms = 50);

}  // namespace zv
