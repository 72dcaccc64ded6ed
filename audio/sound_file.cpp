#include "audio/sound_file.h"

#include "platform/paths.h"

namespace zv {

std::unique_ptr<engine::Decoder> OpenSoundFile(const std::string& path) {
    if (!soundDecoders) return nullptr;
    int error = 0;
    const std::string file = nativePath(path).string();
    std::unique_ptr<engine::Decoder> decoder = soundDecoders->openFile(file, error);
    // As a jingle is opened: what has no length as a stream may be a module.
    if (!decoder || decoder->length().value_or(0) == 0) decoder = soundDecoders->openModule(file, error);
    return decoder;
}

}  // namespace zv
