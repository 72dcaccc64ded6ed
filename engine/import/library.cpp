#include <array>
#include <cstddef>

#include "engine/bass.h"
#include "engine/import/library.h"

namespace zv::engine {
namespace {

/// Where the loaded library keeps the operation that this program calls `Operation`.
template <auto* Operation>
constinit decltype(Operation) target = nullptr;

/// Forwards to the library, or gives `failure` while none is loaded.
template <auto* Operation, class Failure, class... Arguments>
auto forward(Failure failure, Arguments... arguments) {
    using Result = decltype(target<Operation>(arguments...));
    return target<Operation> ? target<Operation>(arguments...) : static_cast<Result>(failure);
}

struct Symbol {
    const char* name;
    void (*bind)(void* address);
};

template <auto* Operation>
constexpr Symbol symbol(const char* name) {
    return {name, [](void* address) { target<Operation> = reinterpret_cast<decltype(Operation)>(address); }};
}

constexpr DWORD noValue = ~DWORD{0};

/// Every operation that a library must have.
constexpr std::array operations{
    symbol<BASS_GetVersion>("BASS_GetVersion"),
    symbol<BASS_ErrorGetCode>("BASS_ErrorGetCode"),
    symbol<BASS_SetConfig>("BASS_SetConfig"),
    symbol<BASS_GetConfig>("BASS_GetConfig"),
    symbol<BASS_Init>("BASS_Init"),
    symbol<BASS_SetDevice>("BASS_SetDevice"),
    symbol<BASS_GetDevice>("BASS_GetDevice"),
    symbol<BASS_GetDeviceInfo>("BASS_GetDeviceInfo"),
    symbol<BASS_Free>("BASS_Free"),
    symbol<BASS_RecordInit>("BASS_RecordInit"),
    symbol<BASS_RecordSetDevice>("BASS_RecordSetDevice"),
    symbol<BASS_RecordGetDeviceInfo>("BASS_RecordGetDeviceInfo"),
    symbol<BASS_RecordGetInfo>("BASS_RecordGetInfo"),
    symbol<BASS_RecordStart>("BASS_RecordStart"),
    symbol<BASS_RecordFree>("BASS_RecordFree"),
    symbol<BASS_StreamCreateFile>("BASS_StreamCreateFile"),
    symbol<BASS_MusicLoad>("BASS_MusicLoad"),
    symbol<BASS_StreamCreateURL>("BASS_StreamCreateURL"),
    symbol<BASS_StreamFree>("BASS_StreamFree"),
    symbol<BASS_MusicFree>("BASS_MusicFree"),
    symbol<BASS_ChannelIsActive>("BASS_ChannelIsActive"),
    symbol<BASS_ChannelGetInfo>("BASS_ChannelGetInfo"),
    symbol<BASS_ChannelGetTags>("BASS_ChannelGetTags"),
    symbol<BASS_ChannelGetLength>("BASS_ChannelGetLength"),
    symbol<BASS_ChannelGetPosition>("BASS_ChannelGetPosition"),
    symbol<BASS_ChannelSetPosition>("BASS_ChannelSetPosition"),
    symbol<BASS_ChannelBytes2Seconds>("BASS_ChannelBytes2Seconds"),
    symbol<BASS_ChannelSeconds2Bytes>("BASS_ChannelSeconds2Bytes"),
    symbol<BASS_ChannelFlags>("BASS_ChannelFlags"),
    symbol<BASS_ChannelPlay>("BASS_ChannelPlay"),
    symbol<BASS_ChannelStart>("BASS_ChannelStart"),
    symbol<BASS_ChannelPause>("BASS_ChannelPause"),
    symbol<BASS_ChannelStop>("BASS_ChannelStop"),
    symbol<BASS_ChannelUpdate>("BASS_ChannelUpdate"),
    symbol<BASS_ChannelSetAttribute>("BASS_ChannelSetAttribute"),
    symbol<BASS_ChannelGetAttribute>("BASS_ChannelGetAttribute"),
    symbol<BASS_ChannelSlideAttribute>("BASS_ChannelSlideAttribute"),
    symbol<BASS_ChannelIsSliding>("BASS_ChannelIsSliding"),
    symbol<BASS_ChannelGetLevelEx>("BASS_ChannelGetLevelEx"),
    symbol<BASS_ChannelGetData>("BASS_ChannelGetData"),
    symbol<BASS_ChannelSetSync>("BASS_ChannelSetSync"),
    symbol<BASS_ChannelRemoveSync>("BASS_ChannelRemoveSync"),
    symbol<BASS_ChannelSetFX>("BASS_ChannelSetFX"),
    symbol<BASS_ChannelRemoveFX>("BASS_ChannelRemoveFX"),
    symbol<BASS_FXSetParameters>("BASS_FXSetParameters"),
    symbol<BASS_FXGetParameters>("BASS_FXGetParameters"),
    symbol<BASS_FXReset>("BASS_FXReset"),
    symbol<BASS_FX_TempoCreate>("BASS_FX_TempoCreate"),
    symbol<BASS_Mixer_StreamCreate>("BASS_Mixer_StreamCreate"),
    symbol<BASS_Mixer_StreamAddChannel>("BASS_Mixer_StreamAddChannel"),
    symbol<BASS_Mixer_ChannelRemove>("BASS_Mixer_ChannelRemove"),
    symbol<BASS_Mixer_ChannelGetLevelEx>("BASS_Mixer_ChannelGetLevelEx"),
    symbol<BASS_Split_StreamCreate>("BASS_Split_StreamCreate"),
};

const EngineControl* loadedControl = nullptr;

}  // namespace

bool bindAudioLibrary(const SymbolFinder& find) {
    std::array<void*, operations.size()> found{};
    for (std::size_t i = 0; i < operations.size(); ++i) found[i] = find(operations[i].name);
    const auto entry = reinterpret_cast<decltype(&engineControl)>(find("engineControl"));
    bool complete = entry != nullptr;
    for (void* address : found) complete = complete && address != nullptr;
    if (!complete) return false;
    for (std::size_t i = 0; i < operations.size(); ++i) operations[i].bind(found[i]);
    loadedControl = entry();
    return loadedControl != nullptr;
}

const EngineControl* audioLibraryControl() { return loadedControl; }

}  // namespace zv::engine

using zv::engine::forward;
using zv::engine::noValue;

DWORD BASS_GetVersion() { return forward<BASS_GetVersion>(0); }
int BASS_ErrorGetCode() { return forward<BASS_ErrorGetCode>(BASS_ERROR_INIT); }
bool BASS_SetConfig(DWORD option, DWORD value) { return forward<BASS_SetConfig>(false, option, value); }
DWORD BASS_GetConfig(DWORD option) { return forward<BASS_GetConfig>(noValue, option); }

bool BASS_Init(int device, DWORD freq, DWORD flags, void* window, const void* reserved) {
    return forward<BASS_Init>(false, device, freq, flags, window, reserved);
}
bool BASS_SetDevice(DWORD device) { return forward<BASS_SetDevice>(false, device); }
DWORD BASS_GetDevice() { return forward<BASS_GetDevice>(noValue); }
bool BASS_GetDeviceInfo(DWORD device, BASS_DEVICEINFO* info) {
    return forward<BASS_GetDeviceInfo>(false, device, info);
}
bool BASS_Free() { return forward<BASS_Free>(false); }

bool BASS_RecordInit(int device) { return forward<BASS_RecordInit>(false, device); }
bool BASS_RecordSetDevice(DWORD device) { return forward<BASS_RecordSetDevice>(false, device); }
bool BASS_RecordGetDeviceInfo(DWORD device, BASS_DEVICEINFO* info) {
    return forward<BASS_RecordGetDeviceInfo>(false, device, info);
}
bool BASS_RecordGetInfo(BASS_RECORDINFO* info) { return forward<BASS_RecordGetInfo>(false, info); }
HRECORD BASS_RecordStart(DWORD freq, DWORD channels, DWORD flags, void* procedure, void* user) {
    return forward<BASS_RecordStart>(0, freq, channels, flags, procedure, user);
}
bool BASS_RecordFree() { return forward<BASS_RecordFree>(false); }

HSTREAM BASS_StreamCreateFile(bool memory, const void* path, QWORD offset, QWORD length, DWORD flags) {
    return forward<BASS_StreamCreateFile>(0, memory, path, offset, length, flags);
}
HMUSIC BASS_MusicLoad(bool memory, const void* path, QWORD offset, DWORD length, DWORD flags, DWORD freq) {
    return forward<BASS_MusicLoad>(0, memory, path, offset, length, flags, freq);
}
HSTREAM BASS_StreamCreateURL(const char* url, DWORD offset, DWORD flags, void* procedure, void* user) {
    return forward<BASS_StreamCreateURL>(0, url, offset, flags, procedure, user);
}
bool BASS_StreamFree(HSTREAM handle) { return forward<BASS_StreamFree>(false, handle); }
bool BASS_MusicFree(HMUSIC handle) { return forward<BASS_MusicFree>(false, handle); }

DWORD BASS_ChannelIsActive(DWORD handle) {
    return forward<BASS_ChannelIsActive>(BASS_ACTIVE_STOPPED, handle);
}
bool BASS_ChannelGetInfo(DWORD handle, BASS_CHANNELINFO* info) {
    return forward<BASS_ChannelGetInfo>(false, handle, info);
}
const char* BASS_ChannelGetTags(DWORD handle, DWORD tags) {
    return forward<BASS_ChannelGetTags>(nullptr, handle, tags);
}
QWORD BASS_ChannelGetLength(DWORD handle, DWORD mode) {
    return forward<BASS_ChannelGetLength>(BASS_NO_POSITION, handle, mode);
}
QWORD BASS_ChannelGetPosition(DWORD handle, DWORD mode) {
    return forward<BASS_ChannelGetPosition>(BASS_NO_POSITION, handle, mode);
}
bool BASS_ChannelSetPosition(DWORD handle, QWORD position, DWORD mode) {
    return forward<BASS_ChannelSetPosition>(false, handle, position, mode);
}
double BASS_ChannelBytes2Seconds(DWORD handle, QWORD position) {
    return forward<BASS_ChannelBytes2Seconds>(-1.0, handle, position);
}
QWORD BASS_ChannelSeconds2Bytes(DWORD handle, double seconds) {
    return forward<BASS_ChannelSeconds2Bytes>(BASS_NO_POSITION, handle, seconds);
}
DWORD BASS_ChannelFlags(DWORD handle, DWORD flags, DWORD mask) {
    return forward<BASS_ChannelFlags>(noValue, handle, flags, mask);
}
bool BASS_ChannelPlay(DWORD handle, bool restart) {
    return forward<BASS_ChannelPlay>(false, handle, restart);
}
bool BASS_ChannelStart(DWORD handle) { return forward<BASS_ChannelStart>(false, handle); }
bool BASS_ChannelPause(DWORD handle) { return forward<BASS_ChannelPause>(false, handle); }
bool BASS_ChannelStop(DWORD handle) { return forward<BASS_ChannelStop>(false, handle); }
bool BASS_ChannelUpdate(DWORD handle, DWORD ms) { return forward<BASS_ChannelUpdate>(false, handle, ms); }
bool BASS_ChannelSetAttribute(DWORD handle, DWORD attribute, float value) {
    return forward<BASS_ChannelSetAttribute>(false, handle, attribute, value);
}
bool BASS_ChannelGetAttribute(DWORD handle, DWORD attribute, float* value) {
    return forward<BASS_ChannelGetAttribute>(false, handle, attribute, value);
}
bool BASS_ChannelSlideAttribute(DWORD handle, DWORD attribute, float value, DWORD ms) {
    return forward<BASS_ChannelSlideAttribute>(false, handle, attribute, value, ms);
}
bool BASS_ChannelIsSliding(DWORD handle, DWORD attribute) {
    return forward<BASS_ChannelIsSliding>(false, handle, attribute);
}
bool BASS_ChannelGetLevelEx(DWORD handle, float* levels, float seconds, DWORD flags) {
    return forward<BASS_ChannelGetLevelEx>(false, handle, levels, seconds, flags);
}
DWORD BASS_ChannelGetData(DWORD handle, void* buffer, DWORD bytes) {
    return forward<BASS_ChannelGetData>(noValue, handle, buffer, bytes);
}
HSYNC BASS_ChannelSetSync(DWORD handle, DWORD type, QWORD position, SYNCPROC* procedure, void* user) {
    return forward<BASS_ChannelSetSync>(0, handle, type, position, procedure, user);
}
bool BASS_ChannelRemoveSync(DWORD handle, HSYNC sync) {
    return forward<BASS_ChannelRemoveSync>(false, handle, sync);
}

HFX BASS_ChannelSetFX(DWORD handle, DWORD kind, int priority) {
    return forward<BASS_ChannelSetFX>(0, handle, kind, priority);
}
bool BASS_ChannelRemoveFX(DWORD handle, HFX effect) {
    return forward<BASS_ChannelRemoveFX>(false, handle, effect);
}
bool BASS_FXSetParameters(HFX effect, const void* parameters) {
    return forward<BASS_FXSetParameters>(false, effect, parameters);
}
bool BASS_FXGetParameters(HFX effect, void* parameters) {
    return forward<BASS_FXGetParameters>(false, effect, parameters);
}
bool BASS_FXReset(DWORD handle) { return forward<BASS_FXReset>(false, handle); }
HSTREAM BASS_FX_TempoCreate(DWORD source, DWORD flags) {
    return forward<BASS_FX_TempoCreate>(0, source, flags);
}

HSTREAM BASS_Mixer_StreamCreate(DWORD freq, DWORD channels, DWORD flags) {
    return forward<BASS_Mixer_StreamCreate>(0, freq, channels, flags);
}
bool BASS_Mixer_StreamAddChannel(HSTREAM mixer, DWORD channel, DWORD flags) {
    return forward<BASS_Mixer_StreamAddChannel>(false, mixer, channel, flags);
}
bool BASS_Mixer_ChannelRemove(DWORD channel) { return forward<BASS_Mixer_ChannelRemove>(false, channel); }
bool BASS_Mixer_ChannelGetLevelEx(DWORD channel, float* levels, float seconds, DWORD flags) {
    return forward<BASS_Mixer_ChannelGetLevelEx>(false, channel, levels, seconds, flags);
}
HSTREAM BASS_Split_StreamCreate(DWORD source, DWORD flags, const int* map) {
    return forward<BASS_Split_StreamCreate>(0, source, flags, map);
}
