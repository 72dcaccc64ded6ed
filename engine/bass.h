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
/// Thread tags: [control] the interface thread, [audio] a device callback, [worker] a decoder thread,
/// [sync] the sync dispatcher, [any] all of them.
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
inline constexpr DWORD BASS_SLIDE_LOG = 0x1000000;  ///< or-ed to an attribute: equal ratios, over at most 60 dB

// Modes of positions.
inline constexpr DWORD BASS_POS_BYTE = 0;
inline constexpr DWORD BASS_POS_LOOP = 11;
inline constexpr DWORD BASS_POS_END = 0x10;

// Syncs.
inline constexpr DWORD BASS_SYNC_POS = 0;
inline constexpr DWORD BASS_SYNC_ONETIME = 0x80000000;

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
    float fVolume;  ///< gain, 1 = unchanged
};

/// Called once on the sync dispatcher [sync]; may call the engine, must not touch the interface.
using SYNCPROC = void(HSYNC handle, DWORD channel, DWORD data, void* user);

extern "C" {
// ---- the library -------------------------------------------------------------------------------------------
/// High word: BASSVERSION. [any]
DWORD BASS_GetVersion();
/// Code of the calling thread's last operation, 0 after success. [any]
int BASS_ErrorGetCode();
/// [control] false: BASS_ERROR_ILLPARAM for an unknown option or value.
bool BASS_SetConfig(DWORD option, DWORD value);
/// [control] the option's value; all ones on failure.
DWORD BASS_GetConfig(DWORD option);

// ---- output devices ----------------------------------------------------------------------------------------
/// Opens device `device` (0 no sound, 1 and up the outputs in the system's order, -1 the default) at `freq` Hz
/// and selects it for the calling thread. Errors: DEVICE, ALREADY (harmless), DRIVER, FREQ. [control]
bool BASS_Init(int device, DWORD freq, DWORD flags, void* window, const void* reserved);
/// Selects the device of the calling thread's next playing channels. Errors: DEVICE, INIT. [control]
bool BASS_SetDevice(DWORD device);
/// The selected device; all ones when none. [control]
DWORD BASS_GetDevice();
/// Describes device `device`; false with BASS_ERROR_DEVICE past the last. [control]
bool BASS_GetDeviceInfo(DWORD device, BASS_DEVICEINFO* info);
/// Closes the selected device and frees the channels that play on it. Errors: INIT. [control]
bool BASS_Free();

// ---- inputs ------------------------------------------------------------------------------------------------
bool BASS_RecordInit(int device);
bool BASS_RecordSetDevice(DWORD device);
bool BASS_RecordGetDeviceInfo(DWORD device, BASS_DEVICEINFO* info);
bool BASS_RecordGetInfo(BASS_RECORDINFO* info);
/// A channel that is pulled like a file and never ends. `procedure` must be null. [control]
HRECORD BASS_RecordStart(DWORD freq, DWORD channels, DWORD flags, void* procedure, void* user);
bool BASS_RecordFree();

// ---- sources -----------------------------------------------------------------------------------------------
/// Opens a sound file (UTF-8 path). Errors: FILEOPEN, FILEFORM, CODEC, NOTAUDIO, MEM. [control]
HSTREAM BASS_StreamCreateFile(bool memory, const void* path, QWORD offset, QWORD length, DWORD flags);
/// Opens a tracker module (UTF-8 path). Errors: FILEOPEN, FILEFORM. [control]
HMUSIC BASS_MusicLoad(bool memory, const void* path, QWORD offset, DWORD length, DWORD flags, DWORD freq);
/// Opens a web stream; waits for the connection, at most BASS_CONFIG_NET_TIMEOUT. Errors: FILEOPEN, TIMEOUT,
/// NONET, FILEFORM, SSL, PROTOCOL. [control]
HSTREAM BASS_StreamCreateURL(const char* url, DWORD offset, DWORD flags, void* procedure, void* user);
/// Frees a channel (and, with BASS_FX_FREESOURCE, its source) without a click longer than a period. [control]
bool BASS_StreamFree(HSTREAM handle);
bool BASS_MusicFree(HMUSIC handle);

// ---- channels ----------------------------------------------------------------------------------------------
DWORD BASS_ChannelIsActive(DWORD handle);
bool BASS_ChannelGetInfo(DWORD handle, BASS_CHANNELINFO* info);
/// Exact length in bytes of decoded sound for mode BASS_POS_BYTE. [any]
QWORD BASS_ChannelGetLength(DWORD handle, DWORD mode);
QWORD BASS_ChannelGetPosition(DWORD handle, DWORD mode);
/// Moves the channel (BASS_POS_BYTE), or sets where a loop returns to (BASS_POS_LOOP) or where the channel ends
/// or wraps (BASS_POS_END; the length or all ones takes it away). Errors: POSITION, NOTAVAIL. [any]
bool BASS_ChannelSetPosition(DWORD handle, QWORD position, DWORD mode);
double BASS_ChannelBytes2Seconds(DWORD handle, QWORD position);
QWORD BASS_ChannelSeconds2Bytes(DWORD handle, double seconds);
/// Sets the flags of `mask` to `flags`; returns the flags in force, all ones on failure. [any]
DWORD BASS_ChannelFlags(DWORD handle, DWORD flags, DWORD mask);
bool BASS_ChannelPlay(DWORD handle, bool restart);
bool BASS_ChannelStart(DWORD handle);
bool BASS_ChannelPause(DWORD handle);
bool BASS_ChannelStop(DWORD handle);
bool BASS_ChannelUpdate(DWORD handle, DWORD ms);
bool BASS_ChannelSetAttribute(DWORD handle, DWORD attribute, float value);
bool BASS_ChannelGetAttribute(DWORD handle, DWORD attribute, float* value);
/// Moves `attribute` to `value` sample by sample in `ms` of the device's time; 0 acts at once. BASS_ATTRIB_VOL to
/// -1: to silence, then the channel stops on that very sample and the attribute stays 0. [any]
bool BASS_ChannelSlideAttribute(DWORD handle, DWORD attribute, float value, DWORD ms);
/// Whether a slide of `attribute` is under way. [any]
bool BASS_ChannelIsSliding(DWORD handle, DWORD attribute);
/// Peak or RMS level of the last `seconds` heard into `levels` (1, or 2 with BASS_LEVEL_STEREO). [any]
bool BASS_ChannelGetLevelEx(DWORD handle, float* levels, float seconds, DWORD flags);
/// Pulls up to `bytes` of sound (float samples with BASS_SAMPLE_FLOAT, else 16-bit) from a decoding channel;
/// returns the bytes written, all ones on failure or at the end. [control]
DWORD BASS_ChannelGetData(DWORD handle, void* buffer, DWORD bytes);
/// `procedure` runs once when the heard position reaches `position`. [any]
HSYNC BASS_ChannelSetSync(DWORD handle, DWORD type, QWORD position, SYNCPROC* procedure, void* user);
bool BASS_ChannelRemoveSync(DWORD handle, HSYNC sync);

// ---- effects -----------------------------------------------------------------------------------------------
HFX BASS_ChannelSetFX(DWORD handle, DWORD kind, int priority);
bool BASS_ChannelRemoveFX(DWORD handle, HFX effect);
bool BASS_FXSetParameters(HFX effect, const void* parameters);
bool BASS_FXGetParameters(HFX effect, void* parameters);
/// Empties the state of one effect, or of all effects of a channel; cheap on an idle channel. [any]
bool BASS_FXReset(DWORD handle);
/// Time stretching over `source`. Neutral tempo, pitch and rate: bit-exact and without delay. [control]
HSTREAM BASS_FX_TempoCreate(DWORD source, DWORD flags);

// ---- mixers and splits -------------------------------------------------------------------------------------
HSTREAM BASS_Mixer_StreamCreate(DWORD freq, DWORD channels, DWORD flags);
bool BASS_Mixer_StreamAddChannel(HSTREAM mixer, DWORD channel, DWORD flags);
bool BASS_Mixer_ChannelRemove(DWORD channel);
bool BASS_Mixer_ChannelGetLevelEx(DWORD channel, float* levels, float seconds, DWORD flags);
HSTREAM BASS_Split_StreamCreate(DWORD source, DWORD flags, const int* map);
}
