/// Makes the sample sounds: make_samples FOLDER. Each is written as WAV, then encoded by the ffmpeg command
/// where it ships in another format.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "sounds.h"

namespace {

using namespace samples;

const std::map<std::string, std::string> kEncoders{
    {"flac", "-c:a flac -compression_level 8"},
    {"ogg", "-c:a libvorbis -q:a 3"},
    {"mp3", "-c:a libmp3lame -b:a 112k"},
    {"m4a", "-c:a aac -b:a 112k"},
};

constexpr double kPeak = 0.8912509381;  // -1 dBFS
constexpr int kTries = 4;

void run(const std::string& command, const std::filesystem::path& target) {
    if (std::system(command.c_str()) == 0) return;
    std::fprintf(stderr, "%s: ffmpeg could not make it\n", target.string().c_str());
    std::exit(1);
}

/// Loudest sample of a file as it is decoded.
double decodedPeak(const std::filesystem::path& file) {
    const std::filesystem::path raw = file.string() + ".raw";
    run("ffmpeg -y -loglevel error -i \"" + file.string() + "\" -f f32le \"" + raw.string() + "\"", raw);
    std::ifstream in(raw, std::ios::binary);
    double peak = 0;
    for (float x = 0; in.read(reinterpret_cast<char*>(&x), sizeof x);)
        peak = std::max(peak, std::abs(static_cast<double>(x)));
    in.close();
    std::filesystem::remove(raw);
    return peak;
}

/// Encodes the sound. What an encoder adds to the peaks is taken off beforehand.
void encode(Stereo& sound, const std::filesystem::path& target, const std::string& options) {
    const std::filesystem::path wav = target.string() + ".wav";
    for (int i = 0; i < kTries; ++i) {
        writeWav(sound, wav.string());
        run("ffmpeg -y -loglevel error -i \"" + wav.string() +
                "\" -fflags +bitexact -flags:a +bitexact -map_metadata -1 " + options + " \"" +
                target.string() + "\"",
            target);
        const double over = decodedPeak(target) / kPeak;
        if (over <= 1.001) break;
        for (Mono* side : {&sound.left, &sound.right}) {
            for (double& x : *side) x /= over * 1.01;
        }
    }
    std::filesystem::remove(wav);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_samples FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    for (const auto* list : {&kStingers, &kEffects, &kBeds}) {
        for (const Sound& sound : *list) {
            Stereo s = sound.make();
            if (list != &kBeds || std::string(sound.name) == "Quiz Clock") finish(s);
            const std::string format = sound.format;
            const std::filesystem::path target = folder / (std::string(sound.name) + "." + format);
            if (format == "wav")
                writeWav(s, target.string());
            else
                encode(s, target, kEncoders.at(format));
            std::printf("%-18s %-5s %6.2f s\n", sound.name, sound.format,
                        static_cast<double>(s.size()) / kRate);
        }
    }
    const std::vector<std::uint8_t> module = jazzModule();
    std::FILE* file = std::fopen((folder / "Jazz Bed.mod").string().c_str(), "wb");
    if (file == nullptr || std::fwrite(module.data(), 1, module.size(), file) != module.size() ||
        std::fclose(file) != 0)
        return 1;
    std::printf("Jazz Bed           mod\n");
    // The time signal is also what the time announcer plays, from the program folder itself.
    const std::filesystem::path announcement = folder.parent_path() / "Time_Announce.wav";
    run("ffmpeg -y -loglevel error -i \"" + (folder / "Top of the Hour.flac").string() +
            "\" -fflags +bitexact -flags:a +bitexact -map_metadata -1 -ac 1 -ar 22050 -c:a pcm_s16le \"" +
            announcement.string() + "\"",
        announcement);
    return 0;
}
