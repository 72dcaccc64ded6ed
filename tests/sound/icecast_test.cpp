// Web radio as stations send it: a real streaming server, a source for each format, and how soon it is heard after its
// first byte came. tools/measure_stream.sh looks at the times; how little of a stream suffices is held by
// WebStreams, which does not depend on what else the machine does.
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>

#include "engine/bass.h"
#include "platform/file_decoders/file_decoders.h"
#include "tests/sound/sound_server.h"
#include "tests/sound/stream_server.h"

namespace zv::test {
namespace {

constexpr double kWanted = 0.4;  // s of sound with which the engine begins

using Clock = std::chrono::steady_clock;

/// Passes on what the station at `port` sends for `path`; `first` is when the first byte of its sound came.
void relay(StreamServer::Client& client, int port, const std::string& path,
           std::atomic<Clock::time_point>& first) {
    const int station = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const std::string request = "GET " + path + " HTTP/1.0\r\n\r\n";
    char some[4096];
    if (connect(station, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        send(station, request.data(), request.size(), MSG_NOSIGNAL) > 0) {
        for (std::string head; !client.hangsUpWithin(0);) {
            const auto got = recv(station, some, sizeof some, 0);
            if (got <= 0) break;
            // The station's own pause between its header and its sound is not ours.
            if (first.load() == Clock::time_point{}) {
                head.append(some, static_cast<std::size_t>(got));
                if (const auto end = head.find("\r\n\r\n"); end < head.size() - 4) first = Clock::now();
            }
            client.send({some, static_cast<std::size_t>(got)});
        }
    }
    close(station);
}

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
        int error = 0;
        // The first listeners come before the station has a burst to send.
        EXPECT_TRUE(within(20, [&] { return makeFileDecoders()->openUrl(url, 10'000, error) != nullptr; }))
            << url;
    }
    std::this_thread::sleep_for(std::chrono::seconds(6));
    const char* asked = std::getenv("ZV_ROUNDS");
    for (int round = asked ? std::atoi(asked) : 1; round > 0; --round) {
        for (const auto& format : formats) {
            SCOPED_TRACE(format.mount);
            std::atomic<Clock::time_point> first{};
            StreamServer between;
            between.answer(format.mount, [&](StreamServer::Client& client) {
                relay(client, std::stoi(port), format.mount, first);
            });
            int error = 0;
            const auto decoder = makeFileDecoders()->openUrl(between.url(format.mount), 10'000, error);
            ASSERT_TRUE(decoder) << error;
            std::vector<float> sound(8192);
            std::size_t frames = 0;
            EXPECT_TRUE(within(10, [&] {
                frames += decoder->read(sound);
                return static_cast<double>(frames) >= kWanted * decoder->format().rate;
            }));
            const auto ms = std::chrono::duration<double, std::milli>(Clock::now() - first.load()).count();
            if (asked) std::printf("first byte to sound, %s: %.0f ms\n", format.mount.c_str() + 1, ms);
        }
    }
}

}  // namespace
}  // namespace zv::test
