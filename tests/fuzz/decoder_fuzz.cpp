// Any bytes as a sound file: opened, measured, read and sought; nothing crashes or hangs, and what was
// promised is given. The first byte chooses the file's name.
#include <unistd.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/file_decoders/file_decoders.h"

namespace {

constexpr const char* extensions[] = {"wav", "aif", "flac", "ogg", "opus", "mp3", "mp2",  "m4a", "wma", "mpg",
                                      "avi", "mkv", "mod",  "xm",  "it",   "s3m", "mtm",  "mo3", "mp1", "mpa",
                                      "mp4", "3gp", "wmv",  "asf", "aac",  "asx", "webm", "caf"};
constexpr std::uint64_t mostRead = 200'000;  // frames, of files that claim to be long

/// The decoding libraries carry no marks of the fuzzer: what came out of them is shown to it instead, so that
/// an input with an outcome of its own is kept.
__attribute__((section("__libfuzzer_extra_counters"))) std::uint8_t outcomes[4096];

void tell(unsigned kind, std::uint64_t value) {
    ++outcomes[(kind * 64U + static_cast<unsigned>(std::bit_width(value))) % std::size(outcomes)];
}

void require(bool holds) {
    if (!holds) std::abort();
}

void listen(zv::engine::Decoder& decoder) {
    const auto format = decoder.format();
    require(format.rate > 0 && format.channels > 0 && decoder.length() && *decoder.length() > 0);
    const std::uint64_t length = *decoder.length();
    const unsigned kind = 8 + 4 * (format.channels % 12);
    tell(kind, length);
    tell(kind + 1, format.rate);
    tell(kind + 2, format.bits);
    std::vector<float> some(std::size_t{format.channels} * 1000);
    for (std::uint64_t read = 0; read < std::min(length, mostRead);) {
        const std::size_t got = decoder.read(some);
        require(got == std::min<std::uint64_t>(1000, length - read));
        read += got;
        for (std::size_t i = 0; i < got * format.channels; ++i) require(std::isfinite(some[i]));
    }
    for (const std::uint64_t to : {length / 2, std::uint64_t{0}, length - 1}) {
        if (to > mostRead && length > 10 * mostRead) continue;
        require(decoder.seek(to));
        require(decoder.read(some) == std::min<std::uint64_t>(1000, length - to));
    }
    require(decoder.seek(length) && decoder.read(some) == 0 && decoder.ended());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    static const auto decoders = zv::makeFileDecoders();
    const std::string path =
        (std::filesystem::temp_directory_path() /
         ("zv-fuzz-" + std::to_string(getpid()) + "." + extensions[data[0] % std::size(extensions)]))
            .string();
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data) + 1, static_cast<std::streamsize>(size - 1));
    int error = -99;
    if (const auto sound = decoders->openFile(path, error))
        listen(*sound);
    else
        require(error > 0), tell(0, std::uint64_t{1} << error);
    if (const auto module = decoders->openModule(path, error))
        listen(*module);
    else
        require(error > 0);
    std::filesystem::remove(path);
    return 0;
}
