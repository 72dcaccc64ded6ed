// A palette opens: 96 files of three minutes, from the cold file to ready-to-sound.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "benchmarks/measure.h"
#include "benchmarks/studio.h"
#include "platform/file_decoders/file_decoders.h"

namespace zv::bench {
namespace {

namespace fs = std::filesystem;

constexpr int kFiles = 96;

/// A folder of the measurement's own, gone with it.
class Folder {
  public:
    Folder() : path_(fs::temp_directory_path() / ("zentrova-bench-" + std::to_string(getpid()))) {
        fs::create_directories(path_);
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }

  private:
    fs::path path_;
};

/// 96 copies of a three-minute mp3.
class Files {
  public:
    Files() {
        const std::string make =
            "ffmpeg -v error -y -f lavfi -i anoisesrc=d=180:c=pink:a=0.3:r=44100 -ac 2 -b:a 128k '" +
            path(0) + "'";
        if (std::system(make.c_str()) != 0) throw std::runtime_error("ffmpeg could not make a test file");
        for (int k = 1; k < kFiles; ++k) fs::copy_file(path(0), path(k));
    }
    std::string path(int k) const { return folder_ / (std::to_string(k) + ".mp3"); }
    /// Out of the system's memory, as after the machine was switched on.
    void cool() const {
        for (int k = 0; k < kFiles; ++k) {
            const int file = ::open(path(k).c_str(), O_RDONLY);
            if (file < 0) continue;
            ::fdatasync(file);
            ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
            ::close(file);
        }
    }

  private:
    Folder folder_;
};

void opening() {
    const Files files;
    std::vector<double> totals, holds, works, memories;
    for (int run = 0; run < 3; ++run) {
        files.cool();
        const auto devices = std::make_shared<HandDevices>();
        engine::engineControl()->install({makeFileDecoders(), devices});
        BASS_Init(1, kRate, 0, nullptr, nullptr);
        constexpr DWORD mixing = BASS_STREAM_DECODE | BASS_MIXER_NONSTOP | BASS_SAMPLE_FLOAT;
        const DWORD mixer = BASS_Mixer_StreamCreate(kRate, 2, mixing);
        const DWORD out = BASS_Split_StreamCreate(mixer, 0, nullptr);
        BASS_ChannelStart(out);
        devices->period();

        const double before = residentMegabytes(), begin = wallSeconds();
        std::vector<DWORD> jingles;
        double hold = 0, work = 0;  // the longest one, by the wall and of processor time
        for (int k = 0; k < kFiles; ++k) {
            const double step = wallSeconds(), stepWork = threadSeconds();
            const DWORD source =
                BASS_StreamCreateFile(false, files.path(k).c_str(), 0, 0, BASS_STREAM_DECODE);
            if (source == 0) throw std::runtime_error("a test file did not open");
            const DWORD play = BASS_FX_TempoCreate(source, BASS_STREAM_DECODE | BASS_FX_FREESOURCE);
            BASS_ChannelGetLength(play, BASS_POS_BYTE);
            BASS_ChannelSetPosition(play, 0, BASS_POS_BYTE);
            BASS_Mixer_StreamAddChannel(mixer, play, BASS_MIXER_CHAN_BUFFER);
            BASS_ChannelStop(play);
            jingles.push_back(play);
            hold = std::max(hold, wallSeconds() - step);
            work = std::max(work, threadSeconds() - stepWork);
        }
        // Ready: pressed, each of them sounds with the next period.
        for (DWORD jingle : jingles) BASS_ChannelPlay(jingle, false);
        for (bool waiting = true; waiting;) {
            devices->period();
            waiting = std::any_of(jingles.begin(), jingles.end(), [](DWORD jingle) {
                return BASS_ChannelIsActive(jingle) == BASS_ACTIVE_STALLED;
            });
            if (waiting) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        totals.push_back(wallSeconds() - begin);
        holds.push_back(hold * 1000);
        works.push_back(work * 1000);
        // As they sound on, each at its own place.
        for (int i = 0; i < 200; ++i) {
            devices->period();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        memories.push_back(residentMegabytes() - before);
        engine::engineControl()->install({});
    }
    atMost("open-96", median(totals), "s", 3);
    atMost("open-96-hold", median(holds), "ms", 15);
    tell("open-96-hold-processor", median(works), "ms");
    atMost("open-96-memory", *std::max_element(memories.begin(), memories.end()), "MB", 400);
}

/// One file of a kind, three minutes and half an hour long, by the processor time that opening it takes.
struct Kind {
    const char* name;
    const char* arguments;  ///< to ffmpeg
    bool joins = true;      ///< the long file may be made of copies of the short one
    bool picture = false;   ///< one of 5 MB and more in front of the sound
};
constexpr Kind kinds[] = {{"tag.mp3", "-b:a 128k"},         {"untagged.mp3", "-b:a 128k -write_xing 0"},
                          {"vorbis.ogg", "-q:a 5"},         {"opus.ogg", "-c:a libopus"},
                          {"aac.m4a", "-c:a aac"},          {"whole.flac", "", false},
                          {"windows.wma", "-q:a 5"},        {"opus.webm", "-c:a libopus"},
                          {"vorbis.mkv", "-c:a libvorbis"}, {"broadcast.mp2", "-b:a 384k"},
                          {"film.avi", "-b:a 128k"},        {"film.flv", "-b:a 128k"},
                          {"film.ts", "-c:a aac"},          {"film.mpg", "-b:a 256k"},
                          {"cover.mp3", "", true, true},    {"cover.flac", "", false, true},
                          {"cover.m4a", "", true, true}};

double openingWork(engine::DecoderSource& decoders, const std::string& path) {
    const bool module = path.ends_with(".mod") || path.ends_with(".xm");
    std::vector<double> works;
    for (int run = 0; run < 5; ++run) {
        int error = 0;
        const double begin = threadSeconds();
        if (!(module ? decoders.openModule(path, error) : decoders.openFile(path, error)))
            throw std::runtime_error("a test file did not open");
        works.push_back((threadSeconds() - begin) * 1000);
    }
    return median(works);
}

constexpr std::size_t kRows = 64, kWave = 8192;  // of a module's pattern, of its only sample in bytes

std::string littleEndian(std::initializer_list<std::size_t> words) {
    std::string bytes;
    for (const std::size_t word : words) bytes += {static_cast<char>(word), static_cast<char>(word >> 8)};
    return bytes;
}

std::string wave() {
    std::string bytes;
    for (std::size_t i = 0; i < kWave; ++i) bytes += static_cast<char>(i * i);
    return bytes;
}

/// A tracker module of `positions` patterns of 7.68 s each: four channels, a note with an effect in every second row.
std::string fourChannels(std::size_t positions) {
    constexpr std::size_t kHeader = 1084, kCells = kRows * 4;
    std::string bytes(kHeader + 4 * kCells, '\0');
    bytes[42] = kWave / 2 >> 8, bytes[45] = 64;  // one sample: its length in words, its volume
    bytes[46] = 0, bytes[48] = kWave / 2 >> 8;   // looped
    bytes[950] = static_cast<char>(positions);
    bytes.replace(1080, 4, "M.K.");
    for (std::size_t cell = 0; cell < kCells; ++cell) {
        char* at = bytes.data() + kHeader + 4 * cell;
        if (cell / 4 % 2 == 0) at[0] = 1, at[1] = static_cast<char>(0xAC), at[2] = 0x10;
        at[2] = static_cast<char>(at[2] | (cell % 4 == 0 ? 0x4 : 0xA));  // vibrato, volume slide
        at[3] = 0x12;
    }
    return bytes + wave();
}

/// The same in the format of 32 channels, with a change of tempo in each pattern and no two patterns of one table.
std::string manyChannels(std::size_t positions) {
    constexpr std::size_t kChannels = 32;
    std::string bytes = "Extended Module: " + std::string(20, ' ') + '\x1A' + std::string(20, ' ') +
                        littleEndian({0x104, 276, 0, positions, 0, kChannels, positions, 1, 1, 6, 125});
    for (std::size_t k = 0; k < 256; ++k) bytes += static_cast<char>(k % positions);
    for (std::size_t pattern = 0; pattern < positions; ++pattern) {
        bytes += littleEndian({9, 0}) + '\0' + littleEndian({kRows, kRows * kChannels * 5});
        for (std::size_t cell = 0; cell < kRows * kChannels; ++cell) {
            const char note = cell / kChannels % 2 == 0 ? 49 : 0;
            const char effect = cell == 0       ? 0xF
                                : cell % 4 == 0 ? 0x4
                                                : 0xA,
                       parameter = cell == 0 ? 125 : 0x12;
            bytes += {note, note ? '\1' : '\0', '\0', effect, parameter};
        }
    }
    constexpr std::size_t kInstrument = 263;
    std::string instrument =
        littleEndian({kInstrument, 0}) + std::string(23, '\0') + littleEndian({1, 40, 0});
    instrument.resize(kInstrument);
    bytes += instrument + littleEndian({kWave, 0, 0, 0, kWave, 0}) + std::string{64, 0, 1, '\x80', 0, 0};
    return bytes + std::string(22, '\0') + wave();
}

void openingKinds() {
    const Folder folder;
    const auto decoders = makeFileDecoders();
    const struct {
        const char* name;
        std::string bytes;
        double limit;  // ms
    } modules[] = {{"3min-module.mod", fourChannels(24), 15},
                   {"16min-module.mod", fourChannels(127), 100},  // the most there can be
                   {"3min-module.xm", manyChannels(24), 15},
                   {"30min-module.xm", manyChannels(234), 100}};
    for (const auto& [name, bytes, limit] : modules) {
        std::ofstream(folder / name, std::ios::binary) << bytes;
        atMost("open-" + std::string(name), openingWork(*decoders, folder / name), "ms", limit);
    }
    const std::string noise = "ffmpeg -v error -y -f lavfi -i anoisesrc=c=pink:a=0.1:r=44100:d=",
                      picture = folder / "picture.png",
                      cover = " -i " + picture + " -map 0:a -map 1 -c:v copy -disposition:v attached_pic";
    const std::string paint =
        "ffmpeg -v error -f lavfi -i nullsrc=s=1400x1400,geq=r='random(1)*255':g='random(2)*255'"
        ":b='random(3)*255' -frames:v 1 ";
    if (std::system((paint + picture).c_str()) != 0)
        throw std::runtime_error("ffmpeg could not make a picture");
    for (const Kind& kind : kinds) {
        const std::string name = kind.name, brief = folder / name, lasting = folder / ("30-" + name);
        const std::string front = kind.picture ? cover : "",
                          arguments = front + " -ac 2 " + kind.arguments + " ",
                          copies =
                              "ffmpeg -v error -y -stream_loop 9 -i " + brief + front + " -c copy " + lasting;
        if (std::system((noise + "180" + arguments + brief).c_str()) != 0 ||
            std::system((kind.joins ? copies : noise + "1800" + arguments + lasting).c_str()) != 0) {
            missing("open-3min-" + name, "ffmpeg could not make it");
            continue;
        }
        atMost("open-3min-" + name, openingWork(*decoders, brief), "ms", 15);
        atMost("open-30min-" + name, openingWork(*decoders, lasting), "ms", 100);
    }
}

const Known knows("open-96", opening);
const Known knowsKinds("open-kinds", openingKinds);

}  // namespace
}  // namespace zv::bench
