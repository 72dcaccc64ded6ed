#include "show.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "platform/file_decoders/file_decoders.h"

namespace zv::test {
namespace {

namespace fs = std::filesystem;

constexpr double kPi = 3.14159265358979323846;
constexpr const char* kSettings =
    "[Settings]\r\nDevice=1\r\nDeviceAux=2\r\nPaletteIndex=Test\r\nConfirmExit=0\r\nLanguage="
    "English\r\nSealed=0\r\n"
    "CheckUpdate=0\r\n";

void append(std::string& out, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> (8 * i));
}

}  // namespace

std::string contents(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

Show::Show() {
    std::string name = (fs::temp_directory_path() / "zv-show-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) ADD_FAILURE() << "no temporary folder";
    folder_ = name;
    fs::create_directories(home() / "Audio_Sample");
    write("zv.ini", kSettings);
}

Show::~Show() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void Show::write(const std::string& name, const std::string& text) {
    std::ofstream out(home() / name, std::ios::binary | std::ios::trunc);
    out << text;
}

void Show::tone(const std::string& name, double seconds, double hertz, double level) {
    const auto frames = static_cast<std::uint32_t>(seconds * static_cast<double>(kRate));
    std::string wav = "RIFF";
    append(wav, 36 + frames * 4, 4);
    wav += "WAVEfmt ";
    append(wav, 16, 4);
    append(wav, 1, 2);
    append(wav, 2, 2);
    append(wav, kRate, 4);
    append(wav, kRate * 4, 4);
    append(wav, 4, 2);
    append(wav, 16, 2);
    wav += "data";
    append(wav, frames * 4, 4);
    for (std::uint32_t i = 0; i < frames; ++i) {
        // A cosine: it is loud from its first sample on.
        const double x = level * std::cos(2 * kPi * hertz * i / static_cast<double>(kRate));
        const auto sample = static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(x * 32767)));
        append(wav, sample, 2);
        append(wav, sample, 2);
    }
    write("Audio_Sample/" + name, wav);
}

void Show::convert(const std::string& from, const std::string& to, const std::string& options) {
    const fs::path folder = home() / "Audio_Sample";
    const std::string command = "ffmpeg -y -loglevel error -i \"" + (folder / from).string() + "\" " +
                                options + " \"" + (folder / to).string() + "\" < /dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

int Show::perform(const std::string& script, const std::string& arguments) {
    const fs::path file = folder_ / "script.txt";
    std::ofstream(file, std::ios::binary) << script;
    const std::string command = "timeout 300 \"" + test::binDir() + "/rehearse\" \"" + file.string() +
                                "\" --home \"" + home().string() + "\" --out \"" + out().string() + "\" " +
                                arguments + " 2> \"" + (folder_ / "messages").string() + "\"";
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string Show::messages() const { return contents(folder_ / "messages"); }

std::string Show::result(const std::string& file) const { return contents(out() / file); }

Sound Show::heard(const std::string& file) const {
    // Read here and not by the program's decoders: what they get wrong must not cancel out.
    const std::string wav = result(file);
    const std::size_t data = wav.find("data");
    Sound sound;
    if (data == std::string::npos) {
        ADD_FAILURE() << file << " holds no sound";
        return sound;
    }
    sound.samples.resize((wav.size() - data - 8) / sizeof(float));
    std::memcpy(sound.samples.data(), wav.data() + data + 8, sound.samples.size() * sizeof(float));
    return sound;
}

Sound decoded(const fs::path& file) {
    int error = 0;
    const auto source = makeFileDecoders();
    auto decoder = source->openFile(file.string(), error);
    if (!decoder) decoder = source->openModule(file.string(), error);
    Sound sound;
    if (!decoder) {
        ADD_FAILURE() << file << " cannot be decoded";
        return sound;
    }
    EXPECT_EQ(decoder->format().channels, 2U);
    std::vector<float> block(8192);
    while (const std::size_t frames = decoder->read(block)) {
        sound.samples.insert(sound.samples.end(), block.begin(),
                             block.begin() + static_cast<std::ptrdiff_t>(frames * 2));
    }
    return sound;
}

std::size_t firstSound(const Sound& sound, std::size_t from, float threshold) {
    for (std::size_t i = from; i < sound.frames(); ++i) {
        if (std::abs(sound.left(i)) > threshold || std::abs(sound.right(i)) > threshold) return i;
    }
    return sound.frames();
}

float peak(const Sound& sound, std::size_t from, std::size_t to) {
    float loudest = 0;
    for (std::size_t i = from; i < std::min(to, sound.frames()); ++i) {
        loudest = std::max({loudest, std::abs(sound.left(i)), std::abs(sound.right(i))});
    }
    return loudest;
}

std::size_t sameBits(const Sound& a, std::size_t from, const Sound& b, std::size_t offset,
                     std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (from + i >= a.frames() || offset + i >= b.frames()) return i;
        if (a.left(from + i) != b.left(offset + i) || a.right(from + i) != b.right(offset + i)) return i;
    }
    return count;
}

}  // namespace zv::test
