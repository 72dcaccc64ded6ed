/// The sound engine's one public header: channels, mixers, splits, slides, syncs, effects, levels, devices.
///
/// Handles are 32-bit, never 0, and a freed one is not handed out again soon: a stale handle fails with
/// BASS_ERROR_HANDLE and does nothing. Every operation leaves its result code for BASS_ErrorGetCode, per
/// thread, 0 after success. Creators return 0 on failure, flags false, positions and lengths all ones, levels
/// -1. Nothing throws and nothing aborts, whatever the arguments.
///
/// Positions are bytes of decoded sound: frames x channels x 2 (x 4 with BASS_SAMPLE_FLOAT) at the file's own
/// rate and channel count, cut to a whole frame. The engine computes in 32-bit float throughout.
///
/// Thread tags: [control] the interface thread, [sync] the sync dispatcher, [any] every thread but a device
/// callback. No operation may be called in a device callback. Operations tagged [any] hold the engine's lock
/// for microseconds; those tagged [control] may take longer, as their comment says.
///
/// Where a comment says nothing else, a handle that is not known fails with BASS_ERROR_HANDLE.
#pragma once

#include <cstdint>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using QWORD = std::uint64_t;

using HSTREAM = DWORD;
using HMUSIC = DWORD;
using HRECORD = DWORD;
using HSYNC = DWORD;
using HFX = DWORD;

inline constexpr DWORD BASSVERSION = 0x204;
inline constexpr QWORD BASS_NO_POSITION = ~QWORD{0};  ///< what positions and lengths return on failure

// Flags of channels.
inline constexpr DWORD BASS_SAMPLE_LOOP = 4;
inline constexpr DWORD BASS_SAMPLE_FLOAT = 0x100;
inline constexpr DWORD BASS_MUSIC_RAMP = 0x200;
inline constexpr DWORD BASS_MUSIC_PRESCAN = 0x20000;
inline constexpr DWORD BASS_STREAM_AUTOFREE = 0x40000;  ///< a playing channel: freed when it has stopped
inline constexpr DWORD BASS_STREAM_DECODE = 0x200000;
inline constexpr DWORD BASS_UNICODE = 0x80000000;
inline constexpr DWORD BASS_FX_FREESOURCE = 0x10000;
inline constexpr DWORD BASS_MIXER_NONSTOP = 0x20000;
inline constexpr DWORD BASS_MIXER_CHAN_BUFFER = 0x2000;

// States, as BASS_ChannelIsActive gives them.
inline constexpr DWORD BASS_ACTIVE_STOPPED = 0;
inline constexpr DWORD BASS_ACTIVE_PLAYING = 1;
inline constexpr DWORD BASS_ACTIVE_STALLED = 2;
inline constexpr DWORD BASS_ACTIVE_PAUSED = 3;

// Attributes.
inline constexpr DWORD BASS_ATTRIB_VOL = 2;
inline constexpr DWORD BASS_ATTRIB_BUFFER = 13;
inline constexpr DWORD BASS_ATTRIB_TAIL = 16;
inline constexpr DWORD BASS_ATTRIB_VOLDSP = 19;
inline constexpr DWORD BASS_ATTRIB_VOLDSP_PRIORITY = 20;
inline constexpr DWORD BASS_ATTRIB_TEMPO = 0x10000;
inline constexpr DWORD BASS_ATTRIB_TEMPO_PITCH = 0x10001;
inline constexpr DWORD BASS_ATTRIB_TEMPO_FREQ = 0x10002;
inline constexpr DWORD BASS_SLIDE_LOG =
    0x1000000;  ///< or-ed to an attribute: equal ratios, over at most 60 dB

// Modes of positions.
inline constexpr DWORD BASS_POS_BYTE = 0;
inline constexpr DWORD BASS_POS_LOOP = 11;
inline constexpr DWORD BASS_POS_END = 0x10;

// Syncs.
inline constexpr DWORD BASS_SYNC_POS = 0;
inline constexpr DWORD BASS_SYNC_ONETIME = 0x80000000;

// Kinds of tags.
inline constexpr DWORD BASS_TAG_META = 5;  ///< of a web stream: "StreamTitle='...';", what is on air now

// Levels.
inline constexpr DWORD BASS_LEVEL_STEREO = 2;
inline constexpr DWORD BASS_LEVEL_RMS = 4;
inline constexpr DWORD BASS_LEVEL_VOLPAN = 8;

// Configuration.
inline constexpr DWORD BASS_CONFIG_BUFFER = 0;        ///< ms
inline constexpr DWORD BASS_CONFIG_GVOL_STREAM = 5;   ///< 0..10000
inline constexpr DWORD BASS_CONFIG_NET_TIMEOUT = 11;  ///< ms, of BASS_StreamCreateURL
inline constexpr DWORD BASS_CONFIG_DEV_NONSTOP = 50;

// Kinds of effects.
inline constexpr DWORD BASS_FX_DX8_REVERB = 8;
inline constexpr DWORD BASS_FX_BFX_VOLUME = 0x10003;
inline constexpr DWORD BASS_FX_BFX_PEAKEQ = 0x10004;
inline constexpr int BASS_BFX_CHANALL = -1;

// Flags of devices.
inline constexpr DWORD BASS_DEVICE_ENABLED = 1;
inline constexpr DWORD BASS_DEVICE_DEFAULT = 2;
inline constexpr DWORD BASS_DEVICE_INIT = 4;

// Result codes.
inline constexpr int BASS_OK = 0;
inline constexpr int BASS_ERROR_MEM = 1;
inline constexpr int BASS_ERROR_FILEOPEN = 2;
inline constexpr int BASS_ERROR_DRIVER = 3;
inline constexpr int BASS_ERROR_HANDLE = 5;
inline constexpr int BASS_ERROR_FORMAT = 6;
inline constexpr int BASS_ERROR_POSITION = 7;
inline constexpr int BASS_ERROR_INIT = 8;
inline constexpr int BASS_ERROR_START = 9;
inline constexpr int BASS_ERROR_SSL = 10;
inline constexpr int BASS_ERROR_ALREADY = 14;
inline constexpr int BASS_ERROR_NOTAUDIO = 17;
inline constexpr int BASS_ERROR_NOCHAN = 18;
inline constexpr int BASS_ERROR_ILLTYPE = 19;
inline constexpr int BASS_ERROR_ILLPARAM = 20;
inline constexpr int BASS_ERROR_DEVICE = 23;
inline constexpr int BASS_ERROR_NOPLAY = 24;
inline constexpr int BASS_ERROR_FREQ = 25;
inline constexpr int BASS_ERROR_NONET = 32;
inline constexpr int BASS_ERROR_NOFX = 34;
inline constexpr int BASS_ERROR_NOTAVAIL = 37;
inline constexpr int BASS_ERROR_DECODE = 38;
inline constexpr int BASS_ERROR_TIMEOUT = 40;
inline constexpr int BASS_ERROR_FILEFORM = 41;
inline constexpr int BASS_ERROR_VERSION = 43;
inline constexpr int BASS_ERROR_CODEC = 44;
inline constexpr int BASS_ERROR_ENDED = 45;
inline constexpr int BASS_ERROR_BUSY = 46;
inline constexpr int BASS_ERROR_PROTOCOL = 48;
inline constexpr int BASS_ERROR_DENIED = 49;
inline constexpr int BASS_ERROR_UNKNOWN = -1;

struct BASS_DEVICEINFO {
    const char* name;    ///< UTF-8, as the user reads it; valid until the next call on this thread
    const char* driver;  ///< UTF-8, the system's own stable identifier
    DWORD flags;         ///< BASS_DEVICE_...
};

struct BASS_RECORDINFO {
    DWORD flags;
    DWORD inputs;
    DWORD freq;  ///< the input's own rate in Hz
};

struct BASS_CHANNELINFO {
    DWORD freq;   ///< Hz
    DWORD chans;  ///< channels
    DWORD flags;
    DWORD ctype;
    DWORD origres;  ///< bits of a sample in the file, 0 unknown
};

struct BASS_BFX_PEAKEQ {
    int lBand;         ///< 0 and up
    float fBandwidth;  ///< octaves, in force when fQ is 0
    float fQ;          ///< quality, 0 = use fBandwidth
    float fCenter;     ///< Hz
    float fGain;       ///< dB; 0 changes nothing
    int lChannel;      ///< BASS_BFX_CHANALL
};

struct BASS_DX8_REVERB {
    float fInGain;           ///< dB, -96..0
    float fReverbMix;        ///< dB, -96..0; -96 is a bit-exact bypass
    float fReverbTime;       ///< ms to fall by 60 dB
    float fHighFreqRTRatio;  ///< 0.001..0.999
};

struct BASS_BFX_VOLUME {
    int lChannel;   ///< BASS_BFX_CHANALL
    float fVolume;  ///< gain, 0 to 1000, 1 = unchanged
};

/// Called once on the sync dispatcher [sync]; may call the engine, must not touch the interface.
using SYNCPROC = void(HSYNC handle, DWORD channel, DWORD data, void* user);

// The operations are all that the library shows, with engineControl() in ports.h.
#pragma GCC visibility push(default)
extern "C" {
// ---- the library

/// The version: BASSVERSION in the high word. Leaves no code. [any]
DWORD BASS_GetVersion();
/// Code of the calling thread's last operation, 0 after success. [any]
int BASS_ErrorGetCode();
/// Sets option BASS_CONFIG_...: the gain of all playing channels moves to its new value in 10 ms, the others
/// are kept for what asks for them. Errors: ILLPARAM (unknown option, or a value out of its range). [any]
bool BASS_SetConfig(DWORD option, DWORD value);
/// The option's value; all ones on failure. Errors: ILLPARAM. [any]
DWORD BASS_GetConfig(DWORD option);

// ---- output devices

/// Opens device `device` (0 no sound, 1 and up the outputs in the system's order, -1 the default) at `freq`
/// Hz (1000 to 768000) and selects it for the calling thread. The first device that is opened settles the
/// rate at which outputs are computed; one that runs at another rate is converted. `flags`, `window` and
/// `reserved` are not used. Errors: DEVICE (no such device, or it is not there), ALREADY (harmless), FREQ,
/// DRIVER (it would not open). Takes as long as the system needs to open a device. [control]
bool BASS_Init(int device, DWORD freq, DWORD flags, void* window, const void* reserved);
/// Selects the device on which the calling thread's next playing channels are created. Errors: DEVICE, INIT
/// (not opened). [any]
bool BASS_SetDevice(DWORD device);
/// The calling thread's device; all ones when none is selected. Errors: INIT. [any]
DWORD BASS_GetDevice();
/// Describes device `device`. A device keeps its number as long as it is open or another one follows it, also
/// when it is unplugged; it then lacks BASS_DEVICE_ENABLED. Errors: DEVICE (past the last), ILLPARAM.
/// [control]
bool BASS_GetDeviceInfo(DWORD device, BASS_DEVICEINFO* info);
/// Closes the selected device and frees the channels that play on it. Errors: INIT. [control]
bool BASS_Free();

// ---- inputs

/// Takes input `device` (0 and up, -1 the default) into use and selects it for the calling thread. Errors:
/// DEVICE, ALREADY. [control]
bool BASS_RecordInit(int device);
/// Selects input `device`, all ones for the default. Errors: DEVICE, INIT. [any]
bool BASS_RecordSetDevice(DWORD device);
/// Describes input `device`. Errors: DEVICE (past the last), ILLPARAM. [control]
bool BASS_RecordGetDeviceInfo(DWORD device, BASS_DEVICEINFO* info);
/// The selected input's own rate (44100 where the system does not tell it). Errors: INIT, ILLPARAM. [any]
bool BASS_RecordGetInfo(BASS_RECORDINFO* info);
/// A decoding channel of what the selected input hears, at `freq` Hz (1000 to 768000) in stereo (`channels`
/// 2); it never ends. The sound waits about one and a half periods of the input. `procedure` must be null,
/// `user` is not used. Errors: INIT, ILLPARAM, FORMAT, FREQ, DRIVER, BUSY (eight recordings at once).
/// [control]
HRECORD BASS_RecordStart(DWORD freq, DWORD channels, DWORD flags, void* procedure, void* user);
/// Closes the selected input and frees its recordings; a channel over one of them ends. Errors: INIT.
/// [control]
bool BASS_RecordFree();

// ---- sources
//
// Flags: BASS_STREAM_DECODE, BASS_SAMPLE_FLOAT (positions and data count 4 bytes a sample), BASS_SAMPLE_LOOP.
// Without BASS_STREAM_DECODE the channel plays on the thread's device and starts stopped (error INIT without
// one). A decoding channel counts as playing until it is stopped.

/// Opens a sound file. `path` is UTF-8; `memory`, `offset` and `length` must be false and 0. Its first 0.4 s
/// are decoded before it returns; up to 10 s of sound go into memory as a whole, in the background. Errors:
/// FILEOPEN, FILEFORM, CODEC, NOTAUDIO, FORMAT, MEM, ILLPARAM, NOTAVAIL, INIT. Takes some milliseconds,
/// without the engine's lock. [control]
HSTREAM BASS_StreamCreateFile(bool memory, const void* path, QWORD offset, QWORD length, DWORD flags);
/// Opens a tracker module, as above; `freq` is not used. [control]
HMUSIC BASS_MusicLoad(bool memory, const void* path, QWORD offset, DWORD length, DWORD flags, DWORD freq);
/// Opens a web stream; waits for the connection, at most BASS_CONFIG_NET_TIMEOUT ms. `offset` must be 0,
/// `procedure` null, `user` is not used. With BASS_STREAM_AUTOFREE a playing one is freed once it has been
/// started and has stopped. Errors: FILEOPEN, TIMEOUT, NONET, FILEFORM, SSL, PROTOCOL, ILLPARAM, INIT.
/// [control]
HSTREAM BASS_StreamCreateURL(const char* url, DWORD offset, DWORD flags, void* procedure, void* user);
/// Frees a channel of any kind but a module, with its effects and syncs; and its source when it is a tempo
/// channel made with BASS_FX_FREESOURCE. It is silent from the next period on. Waits for a sync procedure of
/// it that is just running. What takes sound from it ends. Errors: HANDLE (also a module). [any]
bool BASS_StreamFree(HSTREAM handle);
/// The same for a module. [any]
bool BASS_MusicFree(HMUSIC handle);

// ---- channels

/// BASS_ACTIVE_...: the caller's own commands are seen at once. Only web streams and recordings stall. 0 with
/// BASS_ERROR_HANDLE for an unknown handle. [any]
DWORD BASS_ChannelIsActive(DWORD handle);
/// Errors: ILLPARAM. [any]
bool BASS_ChannelGetInfo(DWORD handle, BASS_CHANNELINFO* info);
/// What a web stream tells about the sound that is delivered now (`tags` BASS_TAG_META), in its sender's encoding;
/// valid until the thread's next call of this operation. Null when it tells nothing. Errors: NOTAVAIL (no web stream,
/// nothing told), ILLPARAM (other tags). [any]
const char* BASS_ChannelGetTags(DWORD handle, DWORD tags);
/// Exact length in bytes of decoded sound, for mode BASS_POS_BYTE; a tempo channel's is its source's. Errors:
/// NOTAVAIL (endless, a mixer, a split; other modes). [any]
QWORD BASS_ChannelGetLength(DWORD handle, DWORD mode);
/// In bytes: the heard position (BASS_POS_BYTE; of what has none of its own, the bytes delivered so far),
/// where a loop returns to (BASS_POS_LOOP), where it ends or wraps (BASS_POS_END). After a set position it is
/// the new one at once. Errors: NOTAVAIL. [any]
QWORD BASS_ChannelGetPosition(DWORD handle, DWORD mode);
/// Moves the channel (BASS_POS_BYTE), or sets where a loop returns to (BASS_POS_LOOP) or where the channel
/// ends or wraps (BASS_POS_END; the length or all ones takes it away). Cut to a whole frame. Loop and end
/// govern the very next wrap that is heard; a channel that is past its new end wraps or ends at once. A loop
/// point at or behind the end counts as 0. Errors: POSITION (beyond the length), NOTAVAIL (no file or
/// module). [any]
bool BASS_ChannelSetPosition(DWORD handle, QWORD position, DWORD mode);
/// Seconds of `position` bytes at the source's own rate; -1 on failure. [any]
double BASS_ChannelBytes2Seconds(DWORD handle, QWORD position);
/// Bytes of `seconds` (0 to 1e9), cut to a whole frame. Errors: ILLPARAM. [any]
QWORD BASS_ChannelSeconds2Bytes(DWORD handle, double seconds);
/// Sets the flags of `mask` to those of `flags` (only BASS_SAMPLE_LOOP can change; it governs the very next
/// wrap); returns the flags in force, all ones on failure. [any]
DWORD BASS_ChannelFlags(DWORD handle, DWORD flags, DWORD mask);
/// Lets the channel sound from its present position, or from 0 with `restart`: a playing one on its device, a
/// decoding one in its mixer. Heard from the next period on. Errors: DECODE (a decoding channel in no mixer).
/// [any]
bool BASS_ChannelPlay(DWORD handle, bool restart);
/// BASS_ChannelPlay without restart. [any]
bool BASS_ChannelStart(DWORD handle);
/// Stops until the next play; the state is BASS_ACTIVE_PAUSED. Errors: NOPLAY, ALREADY. [any]
bool BASS_ChannelPause(DWORD handle);
/// Stops and leaves the position where it is; silent from the next period on. A channel in a mixer stays
/// there and costs nothing. [any]
bool BASS_ChannelStop(DWORD handle);
/// Has the decoders look at once for what the channel wants ahead; `ms` is not used. [any]
bool BASS_ChannelUpdate(DWORD handle, DWORD ms);
/// Sets BASS_ATTRIB_... at once; ends a slide of it. Gains 0 to 1000, BUFFER 0 to 5 s, TAIL 0 to 3600 s,
/// VOLDSP_PRIORITY cut to a whole number, TEMPO -95 to 5000 %, TEMPO_PITCH -60 to 60 semitones, TEMPO_FREQ Hz
/// (0: the source's). Errors: ILLTYPE (unknown, or TEMPO... of what is no tempo channel), ILLPARAM. [any]
bool BASS_ChannelSetAttribute(DWORD handle, DWORD attribute, float value);
/// The attribute as it is now, also within a slide. Errors: ILLTYPE, ILLPARAM. [any]
bool BASS_ChannelGetAttribute(DWORD handle, DWORD attribute, float* value);
/// Moves VOL, VOLDSP, TEMPO, TEMPO_PITCH or TEMPO_FREQ (the other attributes are set at once) from what it is
/// now to `value`, sample by sample, in `ms` of the device's time: the first sample of the slide has the old
/// value, the one after the last the new. With BASS_SLIDE_LOG or-ed in, in equal ratios over at most 60 dB; of
/// TEMPO in equal ratios of the speed, of TEMPO_PITCH in equal semitones either way. 0 ms acts at once. VOL to
/// -1: to silence, then the channel stops on that very sample and the attribute stays 0. Slides run on while
/// nothing sounds. Those of TEMPO... are heard from 25 to 50 ms after the call on, at the value they have
/// reached by then. Errors: as BASS_ChannelSetAttribute; gains below 0 count as 0. [any]
bool BASS_ChannelSlideAttribute(DWORD handle, DWORD attribute, float value, DWORD ms);
/// Whether a slide of the attribute is under way. [any]
bool BASS_ChannelIsSliding(DWORD handle, DWORD attribute);
/// Level of a channel that plays on a device or in a mixer over the last `seconds` heard (above 0, at most
/// 1; of a long file 90 ms are sure), 1 = full scale: peak, or RMS with BASS_LEVEL_RMS, into levels[0], or
/// left and right into two with BASS_LEVEL_STEREO; behind the chain and before VOL, after VOL with
/// BASS_LEVEL_VOLPAN. 0 when it is not sounding. Errors: NOTAVAIL (plays nowhere), ILLPARAM. [any]
bool BASS_ChannelGetLevelEx(DWORD handle, float* levels, float seconds, DWORD flags);
/// Pulls up to `bytes` of sound (float samples with BASS_SAMPLE_FLOAT, else 16-bit, in the channel's own
/// number of channels) from a decoding channel that is in no mixer; returns the bytes written, all ones on
/// failure. Errors: NOTAVAIL, ENDED, ILLPARAM, MEM. Decodes on the calling thread and keeps the graph for a
/// block at a time, so that a callback may find it taken and be silent: not for use on air. [control]
DWORD BASS_ChannelGetData(DWORD handle, void* buffer, DWORD bytes);
/// Has `procedure` run when the heard position reaches `position` (bytes; also in a pass of a loop, not when
/// a set position jumps over it): once with BASS_SYNC_ONETIME or-ed to the type BASS_SYNC_POS, else every
/// time. Slides and stops that it commands act at most one period later. Errors: ILLTYPE, ILLPARAM, MEM. [any]
HSYNC BASS_ChannelSetSync(DWORD handle, DWORD type, QWORD position, SYNCPROC* procedure, void* user);
/// Removes a sync; waits for its procedure when it is just running (not on the dispatcher itself). Errors:
/// HANDLE (channel or sync). [any]
bool BASS_ChannelRemoveSync(DWORD handle, HSYNC sync);

// ---- effects

/// Adds an effect BASS_FX_... to a channel's chain (32 at most) and returns its handle; higher priorities
/// come first, of equals the older. A new effect changes nothing until it is set. Errors: ILLTYPE, NOFX, MEM.
/// [any]
HFX BASS_ChannelSetFX(DWORD handle, DWORD kind, int priority);
/// Takes an effect out and frees it. Errors: HANDLE (channel or effect). [any]
bool BASS_ChannelRemoveFX(DWORD handle, HFX effect);
/// Sets the effect's record (BASS_BFX_PEAKEQ: the band lBand, 0 to 63; BASS_DX8_REVERB; BASS_BFX_VOLUME, 0
/// and up), while it sounds without clicks. Errors: ILLPARAM. [any]
bool BASS_FXSetParameters(HFX effect, const void* parameters);
/// Fills the effect's record as it was set; of BASS_BFX_PEAKEQ the band lBand. Errors: ILLPARAM. [any]
bool BASS_FXGetParameters(HFX effect, void* parameters);
/// Empties the state of one effect, or of all effects of a channel; costs next to nothing when nothing went
/// through since the last time. [any]
bool BASS_FXReset(DWORD handle);
/// Time stretching over the decoding channel `source`, in whose terms its positions are. Neutral tempo, pitch
/// and rate: bit-exact and without delay. Over a web stream or a recording it always passes through. Flags:
/// BASS_STREAM_DECODE, BASS_FX_FREESOURCE. Errors: DECODE, ALREADY (the source is in a mixer), INIT, MEM.
/// [any]
HSTREAM BASS_FX_TempoCreate(DWORD source, DWORD flags);

// ---- mixers and splits

/// A mixer at `freq` Hz (100 to 768000) in stereo (`channels` 2). With BASS_MIXER_NONSTOP it yields silence
/// where nothing sounds, else it stalls there. Errors: FORMAT, FREQ, INIT. [any]
HSTREAM BASS_Mixer_StreamCreate(DWORD freq, DWORD channels, DWORD flags);
/// Puts a decoding channel into a mixer, where it begins to sound unless it is stopped. Other rates are
/// converted, mono goes to both sides, more than two channels are folded down. `flags` are not needed.
/// Errors: HANDLE, DECODE, ALREADY (it sits in a mixer), ILLPARAM (the mixer takes sound from the channel).
/// [any]
bool BASS_Mixer_StreamAddChannel(HSTREAM mixer, DWORD channel, DWORD flags);
/// Takes a channel out of its mixer. Errors: NOTAVAIL (it is in none). [any]
bool BASS_Mixer_ChannelRemove(DWORD channel);
/// BASS_ChannelGetLevelEx of a channel in a mixer. Errors: HANDLE (also: in no mixer), ILLPARAM. [any]
bool BASS_Mixer_ChannelGetLevelEx(DWORD channel, float* levels, float seconds, DWORD flags);
/// One more reader of the decoding channel `source`, which is computed once for all of them. It starts with
/// what is sounding now. `map` must be null. Errors: DECODE, ALREADY (the source is in a mixer), NOTAVAIL,
/// INIT, MEM. [any]
HSTREAM BASS_Split_StreamCreate(DWORD source, DWORD flags, const int* map);
}  // extern "C"
#pragma GCC visibility pop
