#include "audio/source_file.h"

#include "engine/bass.h"
#include "platform/paths.h"
#include "startup/helpers.h"

namespace zv {

namespace {

bool hasSound(DWORD source) {
    const QWORD length = source == 0 ? 0 : BASS_ChannelGetLength(source, BASS_POS_BYTE);
    return length != 0 && length != BASS_NO_POSITION;
}

}  // namespace

void FreeSource(std::uint32_t handle) {
    BASS_StreamFree(handle);
    BASS_MusicFree(handle);
}

SourceFile OpenSourceFile(const std::string& path) {
    const std::string file = nativePath(GetFullPath(path)).string();
    DWORD source = BASS_StreamCreateFile(false, file.c_str(), 0, 0, BASS_STREAM_DECODE | BASS_UNICODE);
    if (hasSound(source)) return {source, BASS_OK};
    FreeSource(source);
    source = BASS_MusicLoad(false, file.c_str(), 0, 0,
                            BASS_STREAM_DECODE | BASS_MUSIC_PRESCAN | BASS_MUSIC_RAMP | BASS_UNICODE, 0);
    const int error = BASS_ErrorGetCode();
    if (hasSound(source)) return {source, BASS_OK};
    FreeSource(source);
    return {0, error};
}

}  // namespace zv
