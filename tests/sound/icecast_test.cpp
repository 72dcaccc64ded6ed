// Web radio as stations send it: a real streaming server and a source for each format. How little of a stream suffices
// is held by WebStreams, which does not depend on what else the machine does.
#include <fstream>

#include "tests/sound/sound_server.h"
#include "tests/sound/stream_server.h"

namespace zv::test {
namespace {

constexpr double kWanted = 0.4;  // s of sound with which the engine begins

TEST(Icecast, EachFormatSoundsAfterTheStationAnswers) {
    const Folder folder;
    const std::string port = std::to_string(freePort());
    writeWav(folder / "tones.wav", wanderingTones(44'100, 2, 44'100 * 20), 44'100, 2);
    std::ofstream(folder / "icecast.xml")
        << "<icecast><limits><sources>9</sources><clients>99</clients><burst-size>65535</burst-size></limits>"
           "<authentication><source-password>pw</source-password><admin-user>a</admin-user><admin-password>pw"
           "</admin-password></authentication><hostname>localhost</hostname><listen-socket><port>"
        << port
        << "</port><bind-address>127.0.0.1</bind-address></listen-socket><fileserve>0</"
           "fileserve><paths><logdir>"
        << folder.path().string() << "</logdir><webroot>/usr/share/icecast2/web</webroot><adminroot>"
        << "/usr/share/icecast2/admin</adminroot></paths><security><chroot>0</"
           "chroot><changeowner><user>nobody</user>"
           "<group>nogroup</group></changeowner></security></icecast>";
    std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
    const Process server({"/usr/bin/icecast2", "-c", folder / "icecast.xml"}, {}, folder / "icecast.log");
    const std::string mounts = "icecast://source:pw@127.0.0.1:" + port;
    const struct {
        std::string mount;
        std::vector<std::string> encoder;
    } formats[] = {
        {"/mp3", {"-c:a", "libmp3lame", "-b:a", "128k", "-f", "mp3", "-content_type", "audio/mpeg"}},
        {"/aac", {"-c:a", "aac", "-b:a", "128k", "-f", "adts", "-content_type", "audio/aac"}},
        {"/vorbis", {"-c:a", "libvorbis", "-f", "ogg", "-content_type", "application/ogg"}},
        {"/opus", {"-c:a", "libopus", "-f", "ogg", "-content_type", "application/ogg"}},
        {"/flac", {"-c:a", "flac", "-f", "ogg", "-content_type", "application/ogg"}},
    };
    std::vector<Process> sources;
    for (const auto& format : formats) {
        std::vector<std::string> command{"/usr/bin/ffmpeg", "-v", "error", "-re",
                                         "-stream_loop",    "-1", "-i",    folder / "tones.wav"};
        command.insert(command.end(), format.encoder.begin(), format.encoder.end());
        command.push_back(mounts + format.mount);
        sources.emplace_back(command, std::vector<std::pair<std::string, std::string>>{});
    }
    for (const auto& format : formats) {
        const std::string url = "http://127.0.0.1:" + port + format.mount;
        std::unique_ptr<engine::Decoder> decoder;
        int error = 0;
        // The first listeners come before the station has a burst to send.
        ASSERT_TRUE(within(20, [&] {
            return (decoder = makeFileDecoders()->openUrl(url, 10'000, error)) != nullptr;
        })) << url;
        std::vector<float> sound(8192);
        std::size_t frames = 0;
        EXPECT_TRUE(within(10, [&] {
            frames += decoder->read(sound);
            return static_cast<double>(frames) >= kWanted * decoder->format().rate;
        })) << url;
    }
}

}  // namespace
}  // namespace zv::test
