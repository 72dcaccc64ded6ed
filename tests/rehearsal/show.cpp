#include "show.h"

#include <unistd.h>

#include <cstring>
#include <iterator>

namespace zv::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSettings =
    "[Settings]\r\nDevice=1\r\nDeviceAux=2\r\nPaletteIndex=Test\r\nConfirmExit=0\r\nLanguage="
    "English\r\nSealed=0\r\nCheckUpdate=0\r\n";

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
    std::ofstream(home() / name, std::ios::binary | std::ios::trunc) << text;
}

void Show::tone() {
    writeWav(home() / "Audio_Sample/tone.wav", sine(kRate, 1000));
    write("palette.ini", kPalette);
}

int Show::perform(const std::string& script, const std::string& arguments, const std::string& program) {
    const fs::path file = folder_ / "script.txt";
    std::ofstream(file, std::ios::binary) << script;
    const std::string command = "timeout 300 \"" + program + "\" \"" + file.string() + "\" --home \"" +
                                home().string() + "\" --out \"" + out().string() + "\" " + arguments +
                                " 2> \"" + (folder_ / "messages").string() + "\"";
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void Show::passes(const std::string& script, const std::string& arguments) {
    EXPECT_EQ(perform(script, arguments), 0) << messages() << result("events.log");
}

std::string Show::contentsOf(const std::string& name) const { return contents(home() / name); }

std::string Show::messages() const { return contents(folder_ / "messages"); }

std::string Show::result(const std::string& file) const { return contents(out() / file); }

Heard Show::heard(const std::string& file) const {
    // Read here and not by the program's decoders: what they get wrong must not cancel out.
    const std::string wav = result(file);
    const std::size_t data = wav.find("data");
    Heard sound;
    if (data == std::string::npos) {
        ADD_FAILURE() << file << " holds no sound";
        return sound;
    }
    sound.stereo.resize((wav.size() - data - 8) / sizeof(float));
    std::memcpy(sound.stereo.data(), wav.data() + data + 8, sound.stereo.size() * sizeof(float));
    return sound;
}

float peak(const Heard& sound, double fromMs, double toMs) {
    return sound.loudest(framesOf(fromMs), framesOf(toMs));
}

}  // namespace zv::test
