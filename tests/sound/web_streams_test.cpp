// Web streams from a server of the test's own, and everything that can go wrong on the way.

#include <malloc.h>
#include <unistd.h>

#include <fstream>

#include "tests/sound/sound_server.h"
#include "tests/sound/stream_server.h"

#ifdef __SANITIZE_ADDRESS__
extern "C" std::size_t
__sanitizer_get_current_allocated_bytes();  // the compiler's package has no header of it
#endif

namespace zv::test {
namespace {

constexpr std::uint32_t timeoutMs = 4000;
constexpr double seconds = 3;

/// Bytes that the process has allocated.
std::size_t heapInUse() {
#ifdef __SANITIZE_ADDRESS__
    return __sanitizer_get_current_allocated_bytes();
#else
    return mallinfo2().uordblks + mallinfo2().hblkhd;
#endif
}

/// Reads until the stream is over or `frames` came.
std::vector<float> readStream(engine::Decoder& decoder, std::size_t frames = SIZE_MAX, double patience = 10) {
    std::vector<float> all, some(4096 * decoder.format().channels);
    within(patience, [&] {
        for (;;) {
            const std::size_t got = decoder.read(some) * decoder.format().channels;
            all.insert(all.end(), some.begin(), some.begin() + static_cast<std::ptrdiff_t>(got));
            if (decoder.ended() || all.size() / decoder.format().channels >= frames) return true;
            if (got == 0) return false;
        }
    });
    return all;
}

class WebStreams : public testing::Test {
  protected:
    void SetUp() override {
        tones = wanderingTones(44'100, 2, static_cast<std::size_t>(44'100 * seconds));
        writeWav(folder / "source.wav", tones, 44'100, 2);
    }
    std::vector<char> encoded(const std::string& name, const std::string& arguments = {}) {
        EXPECT_EQ(0, run("cd " + folder.path().string() + " && ffmpeg -v error -y -i source.wav " +
                         arguments + " " + name));
        return readBytes(folder / name);
    }
    std::unique_ptr<engine::Decoder> open(const std::string& url) {
        return makeFileDecoders()->openUrl(url, timeoutMs, error);
    }
    void expectTones(std::span<const float> sound, const std::string& what) {
        ASSERT_NEAR(seconds * 44'100, static_cast<double>(sound.size()) / 2, 3000) << what;
        const int late = lagOf(sound, tones, 2, 2600);
        double product = 0, power = 0;
        for (int i = 20'000; i < 100'000; ++i) {
            const double is = static_cast<double>(sound[static_cast<std::size_t>(i + late) * 2]);
            const double was = static_cast<double>(tones[static_cast<std::size_t>(i) * 2]);
            product += is * was, power += was * was;
        }
        EXPECT_NEAR(1.0, product / power, 0.05) << what;
    }

    Folder folder;
    std::vector<float> tones;
    StreamServer server;
    int error = -1;
};

std::string header(const std::string& type, const std::string& more = {}) {
    return "HTTP/1.0 200 OK\r\nContent-Type: " + type + "\r\n" + more + "\r\n";
}

/// No HTTP in its reply, and behind each 4,096 bytes of sound a title, where there is a new one.
void shoutcast(StreamServer::Client& client, std::span<const char> sound,
               const std::function<std::string(std::size_t)>& titleAt) {
    EXPECT_NE(std::string::npos, client.request().find("Icy-MetaData: 1"));
    client.say("ICY 200 OK\r\nicy-name:Test\r\ncontent-type:audio/mpeg\r\nicy-metaint:4096\r\n\r\n");
    for (std::size_t at = 0; at < sound.size(); at += 4096) {
        const auto piece = sound.subspan(at, std::min<std::size_t>(4096, sound.size() - at));
        client.send(piece);
        std::string title = titleAt(at);
        const std::size_t sixteens = (title.size() + 15) / 16;
        title.resize(sixteens * 16, '\0');
        if (piece.size() == 4096) client.say(static_cast<char>(sixteens) + title);
    }
}

TEST_F(WebStreams, RepliesOfAllKinds) {
    const auto mp3 = encoded("a.mp3", "a.ogg a.aac a.flac -ar 48000 a.opus");
    const auto ogg = readBytes(folder / "a.ogg"), aac = readBytes(folder / "a.aac"),
               opus = readBytes(folder / "a.opus"), flac = readBytes(folder / "a.flac");
    const auto plain = [](std::string type, std::vector<char> body) {
        return [=](StreamServer::Client& client) { client.say(header(type)), client.send(body); };
    };
    server.answer("/mp3", plain("audio/mpeg", mp3));
    server.answer("/untyped", plain("application/octet-stream", mp3));
    server.answer("/ogg", plain("application/ogg", ogg));
    server.answer("/aac", plain("audio/aacp", aac));
    server.answer("/flac", plain("audio/flac", flac));
    EXPECT_EQ(0, run("gzip -k " + (folder / "a.mp3")));
    server.answer("/gzip", plain("audio/mpeg\r\nContent-Encoding: gzip", readBytes(folder / "a.mp3.gz")));
    server.answer("/chunked", [mp3](StreamServer::Client& client) {
        client.say("HTTP/1.1 200 OK\r\nContent-Type: audio/mpeg\r\nTransfer-Encoding: chunked\r\n\r\n");
        for (std::size_t at = 0; at < mp3.size(); at += 1777) {
            const auto piece = std::span(mp3).subspan(at, std::min<std::size_t>(1777, mp3.size() - at));
            char size[32];
            std::snprintf(size, sizeof size, "%zx\r\n", piece.size());
            client.say(std::string(size)), client.send(piece), client.say("\r\n");
        }
        client.say("0\r\n\r\n");
    });
    server.answer("/shout", [&](StreamServer::Client& client) {
        shoutcast(client, mp3, [](std::size_t at) { return at > 0 ? "" : "StreamTitle='It's A - B';"; });
    });
    server.answer("/moved", [&](StreamServer::Client& client) {
        client.say("HTTP/1.1 302 Found\r\nLocation: " + server.url("/again") +
                   "\r\nContent-Length: 0\r\n\r\n");
    });
    server.answer("/again", [&](StreamServer::Client& client) {
        client.say("HTTP/1.1 301 Moved\r\nLocation: /mp3\r\nContent-Length: 0\r\n\r\n");
    });
    for (const char* path :
         {"/mp3", "/untyped", "/ogg", "/aac", "/flac", "/chunked", "/shout", "/moved", "/gzip"}) {
        const auto decoder = open(server.url(path));
        ASSERT_TRUE(decoder) << path << " " << error;
        EXPECT_EQ(0, error);
        EXPECT_EQ(44'100U, decoder->format().rate);
        EXPECT_FALSE(decoder->length());
        EXPECT_FALSE(decoder->seek(0));
        expectTones(readStream(*decoder), path);
        EXPECT_TRUE(decoder->ended()) << path;
        EXPECT_EQ(decoder->told().substr(0, 25),
                  path == std::string("/shout") ? "StreamTitle='It's A - B';" : "")
            << path;
    }
    server.answer("/opus", plain("audio/ogg", opus));
    const auto decoder = open(server.url("/opus"));
    ASSERT_TRUE(decoder);
    EXPECT_EQ(48'000U, decoder->format().rate);
    EXPECT_NEAR(seconds * 48'000, static_cast<double>(readStream(*decoder).size()) / 2, 1000);
}

/// Bytes of `stream` up to the end of the page in which its first `seconds` end.
std::size_t pagesOf(const std::vector<char>& stream, double rate, double seconds) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(stream[i]); };
    std::size_t at = 0;
    for (double until = 0; until < seconds * rate && at + 27 < stream.size();) {
        const std::size_t pieces = byte(at + 26);
        const bool ends = byte(at + 13) != 0xFF;  // a sound ends in it
        until = ends ? byte(at + 6) + 256.0 * byte(at + 7) + 65536.0 * byte(at + 8) : until;
        std::size_t size = 27 + pieces;
        for (std::size_t i = 0; i < pieces; ++i) size += byte(at + 27 + i);
        at += size;
    }
    return at;
}

TEST_F(WebStreams, NeedHalfASecondOfTheirOwnTimeToSound) {
    constexpr double begins = 0.4, has = 0.5;  // s
    const struct {
        const char *file, *type, *encoder;
        double rate;  // of the pages' time; 0: without pages
    } formats[] = {
        {"a.mp3", "audio/mpeg", "-b:a 128k", 0},
        {"a.aac", "audio/aac", "-b:a 128k", 0},
        {"v.ogg", "application/ogg", "-c:a libvorbis", 44'100},
        {"a.opus", "audio/ogg", "-ar 48000", 48'000},
        {"f.oga", "application/ogg", "-c:a flac", 44'100},
    };
    for (const auto& [file, type, encoder, rate] : formats) {
        const auto body = encoded(file, encoder);
        const auto part = rate == 0
                              ? static_cast<std::size_t>(static_cast<double>(body.size()) * has / seconds)
                              : pagesOf(body, rate, has);
        ASSERT_LT(part, body.size()) << file;
        server.answer("/part", [part, &body = body, &type = type](StreamServer::Client& client) {
            client.say(header(type)), client.send(std::span(body).first(part)), client.waitForHangUp();
        });
        const auto decoder = open(server.url("/part"));
        ASSERT_TRUE(decoder) << file << " " << error;
        const auto wanted = static_cast<std::size_t>(begins * decoder->format().rate);
        EXPECT_GE(readStream(*decoder, wanted).size() / 2, wanted) << file;
    }
}

TEST_F(WebStreams, SongsThatFollowInOneOggStreamGoOnUnderTheirNames) {
    for (const auto& [encoder, later] : {std::pair<std::string, std::string>{"libvorbis", "44100"},
                                         {"libopus", "24000"},
                                         {"flac", "44100"}}) {
        std::vector<char> stream;
        for (const std::string& song :
             std::vector<std::string>{"-ar 48000 -metadata title=One -metadata artist=Her",
                                      "-af 'pan=1c|c0=c0' -ar 48000 -metadata title=Two", "-ar " + later}) {
            const auto part = encoded("song.ogg", "-c:a " + encoder + " " + song);
            stream.insert(stream.end(), part.begin(), part.end());
        }
        server.answer("/songs", [&](StreamServer::Client& client) {
            client.say(header("application/ogg")), client.send(stream);
        });
        const auto decoder = open(server.url("/songs"));
        ASSERT_TRUE(decoder) << encoder << " " << error;
        std::vector<std::string> names;
        std::vector<double> power(3);
        std::vector<float> some(2048);
        std::size_t frames = 0;
        within(20, [&] {
            while (const std::size_t got = decoder->read(some)) {
                const auto song =
                    static_cast<std::size_t>(static_cast<double>(frames) / decoder->format().rate / seconds);
                for (const float sample : std::span(some).first(got * 2))
                    power[std::min<std::size_t>(song, 2)] +=
                        static_cast<double>(sample) * static_cast<double>(sample);
                frames += got;
                if (names.empty() || names.back() != decoder->told()) names.push_back(decoder->told());
            }
            return decoder->ended();
        });
        EXPECT_NEAR(static_cast<double>(frames) / decoder->format().rate, 3 * seconds, 0.15) << encoder;
        EXPECT_EQ(names, (std::vector<std::string>{"StreamTitle='Her - One';", "StreamTitle='Two';", ""}))
            << encoder;
        EXPECT_NEAR(power[1] / power[0], 1, 0.1) << encoder << ", in mono";
        EXPECT_NEAR(power[2] / power[0], 1, 0.1) << encoder << ", at another rate";
    }
}

TEST_F(WebStreams, MinutesOfSongsTakeNoMoreMemoryThanSeconds) {
    const auto opus = encoded("a.opus", "-ar 48000 -metadata title=Song");
    server.answer("/songs", [&](StreamServer::Client& client) {
        client.say(header("audio/ogg"));
        while (!client.hangsUpWithin(0)) client.send(opus);
    });
    const auto decoder = open(server.url("/songs"));
    ASSERT_TRUE(decoder) << error;
    std::size_t held[3];
    for (std::size_t& bytes : held) {
        readStream(*decoder, 48'000 * 120);
        std::this_thread::sleep_for(std::chrono::milliseconds(300));  // its store is full again
        bytes = heapInUse();
    }
    EXPECT_LT(held[2], held[1] + (std::size_t{1} << 20));
}

TEST_F(WebStreams, PlaylistsLeadToTheirStream) {
    const auto mp3 = encoded("a.mp3");
    encoded("s.m3u8", "-c:a aac -f hls -hls_time 1 -hls_list_size 0");
    const auto text = [](std::string type, std::string body) {
        return [=](StreamServer::Client& client) { client.say(header(type) + body); };
    };
    server.answer(
        "/mp3", [mp3](StreamServer::Client& client) { client.say(header("audio/mpeg")), client.send(mp3); });
    server.answer("/a.m3u", text("audio/x-mpegurl", "#EXTM3U\r\n" + server.url("/gone") + "\r\nmp3\r\n"));
    server.answer("/itself", text("text/plain", "#EXTM3U\nitself\n"));
    server.answer("/file", text("text/plain", "#EXTM3U\nfile:///etc/passwd\n"));
    for (const char* name : {"s.m3u8", "s0.ts", "s1.ts", "s2.ts"})
        server.answer(
            "/" + std::string(name), [body = readBytes(folder / name)](StreamServer::Client& client) {
                client.say(header("video/mp2t", "Content-Length: " + std::to_string(body.size()) + "\r\n"));
                client.send(body);
            });
    for (const char* path : {"/a.m3u", "/s.m3u8"}) {
        const auto decoder = open(server.url(path));
        ASSERT_TRUE(decoder) << path << " " << error;
        expectTones(readStream(*decoder), path);
    }
    for (const char* path : {"/itself", "/file"}) {
        EXPECT_FALSE(open(server.url(path))) << path;
        EXPECT_EQ(BASS_ERROR_FILEFORM, error) << path;
    }
}

TEST_F(WebStreams, DriesUpAndGoesOn) {
    const auto mp3 = encoded("a.mp3");
    static std::atomic<bool> open;
    open = false;
    server.answer("/live", [mp3](StreamServer::Client& client) {
        client.say(header("audio/mpeg"));
        client.send(std::span(mp3).first(mp3.size() / 2));
        client.waitFor(open);
        client.send(std::span(mp3).subspan(mp3.size() / 2));
    });
    const auto decoder = this->open(server.url("/live"));
    ASSERT_TRUE(decoder) << error;
    auto sound = readStream(*decoder, SIZE_MAX, 0.5);
    EXPECT_FALSE(decoder->ended());
    EXPECT_NEAR(seconds * 44'100 / 2, static_cast<double>(sound.size()) / 2, 5000);
    std::vector<float> none(512);
    EXPECT_EQ(0U, decoder->read(none));
    auto other = this->open(server.url("/live"));
    ASSERT_TRUE(other);
    readStream(*other, SIZE_MAX, 0.3);
    const auto start = std::chrono::steady_clock::now();
    other.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500))
        << "closing does not wait";
    open = true;
    const auto rest = readStream(*decoder);
    EXPECT_TRUE(decoder->ended());
    sound.insert(sound.end(), rest.begin(), rest.end());
    expectTones(sound, "after the gap");
}

TEST_F(WebStreams, EveryFailureHasItsCode) {
    using Client = StreamServer::Client;
    const auto say = [](std::string text) { return [=](Client& client) { client.say(text); }; };
    const auto hold = [](std::string text) {
        return [=](Client& client) { client.say(text), client.waitForHangUp(); };
    };
    const auto drip = [](std::string first, std::string piece, int ms) {
        return [=](Client& client) {
            client.say(first);
            while (!client.hangsUpWithin(ms)) client.say(piece);
        };
    };
    const auto status = [&](std::string line) {
        return say("HTTP/1.1 " + line + "\r\nContent-Length: 0\r\n\r\n");
    };
    const std::string mpeg = header("audio/mpeg"), zeros(1 << 16, '\0');
    const struct {
        std::string path;
        StreamServer::Answer answer;
        int error;
    } answers[] = {
        {"/missing", {}, BASS_ERROR_FILEOPEN},
        {"/forbidden", status("403 Forbidden"), BASS_ERROR_FILEOPEN},
        {"/password", status("401 Unauthorized"), BASS_ERROR_FILEOPEN},
        {"/full", status("503 Service Unavailable"), BASS_ERROR_FILEOPEN},
        {"/hangs-up", say(""), BASS_ERROR_FILEOPEN},
        {"/circle", status("302 Found\r\nLocation: /circle"), BASS_ERROR_FILEOPEN},
        {"/to-file", status("302 Found\r\nLocation: file:///etc/passwd"), BASS_ERROR_FILEOPEN},
        {"/page", say(header("text/html") + "<html>" + std::string(20'000, 'x') + "</html>"),
         BASS_ERROR_FILEFORM},
        {"/empty", say(mpeg), BASS_ERROR_FILEFORM},
        {"/silent", hold(""), BASS_ERROR_TIMEOUT},
        {"/promises", hold(mpeg), BASS_ERROR_TIMEOUT},
        {"/drops", drip(mpeg, "x", 50), BASS_ERROR_TIMEOUT},
        {"/headers", drip("HTTP/1.1 200 OK\r\n", "X-More: and more\r\n", 0), BASS_ERROR_TIMEOUT},
        {"/one-header", drip("HTTP/1.1 200 OK\r\nX-Long: ", std::string(100'000, 'x'), 0),
         BASS_ERROR_TIMEOUT},
        {"/garbage", drip(mpeg, std::string(4096, '\x5A'), 1), BASS_ERROR_FILEFORM},
        {"/packed", drip(header("audio/mpeg", "Content-Encoding: gzip\r\n"), "\x1F\x8B\x08 rubbish", 5),
         BASS_ERROR_TIMEOUT},
        // Headers of sound that promise gigabytes.
        {"/long-tag", drip(mpeg + std::string("ID3\4\0\0\x7F\x7F\x7F\x7F", 10), zeros, 0),
         BASS_ERROR_TIMEOUT},
        {"/long-chunk",
         drip(header("audio/wav", "Content-Length: 4000000000\r\n") +
                  std::string("RIFF\xFF\xFF\xFF\x7FWAVELIST\xFF\xFF\xFF\x7F", 20),
              zeros, 0),
         BASS_ERROR_TIMEOUT},
        {"/long-atom", drip(header("audio/mp4") + std::string("\x7F\xFF\xFF\xFFmoov", 8), zeros, 0),
         BASS_ERROR_TIMEOUT},
    };
    server.answer("garbled", say("HTTP/1.1 400 Bad Request\r\n\r\n"));
    std::vector<std::pair<std::string, int>> failures{
        {"http://127.0.0.1:" + std::to_string(freePort()) + "/", BASS_ERROR_FILEOPEN},
        {"http://no-such-host.invalid/", BASS_ERROR_NONET},
        {server.url("/", "https"), BASS_ERROR_SSL},
        {"ftp://127.0.0.1/a.mp3", BASS_ERROR_PROTOCOL},
        {"file:///etc/passwd", BASS_ERROR_PROTOCOL},
        {"", BASS_ERROR_PROTOCOL},
    };
    for (const auto& [path, answer, code] : answers) {
        if (answer) server.answer(path, answer);
        failures.emplace_back(server.url(path), code);
    }
    std::vector<std::jthread> listeners;
    for (const auto& [url, expected] : failures)
        listeners.emplace_back([url = url, expected = expected] {
            const auto start = std::chrono::steady_clock::now();
            int code = 0;
            const int ms = expected == BASS_ERROR_TIMEOUT ? 700 : 30'000;  // for an answer on a busy machine
            EXPECT_FALSE(makeFileDecoders()->openUrl(url, ms, code)) << url;
            EXPECT_EQ(expected, code) << url;
            EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << url;
        });
    listeners.clear();
    EXPECT_LT(heapInUse(), std::size_t{100} << 20);
}

TEST_F(WebStreams, SecureOnes) {
    encoded("a.mp3");
    const std::string key = folder / "key.pem", certificate = folder / "certificate.pem";
    ASSERT_EQ(0, run("openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=localhost -keyout " + key +
                     " -out " + certificate + " 2>/dev/null"));
    const int port = freePort();
    const Process secure({"sh", "-c",
                          "cd " + folder.path().string() + " && exec openssl s_server -WWW -quiet -accept " +
                              std::to_string(port) + " -cert certificate.pem -key key.pem"},
                         {});
    std::unique_ptr<engine::Decoder> decoder;
    within(5, [&] {
        decoder = open("https://localhost:" + std::to_string(port) + "/a.mp3");
        return decoder != nullptr;
    });
    ASSERT_TRUE(decoder) << error;
    expectTones(readStream(*decoder), "https");
    decoder.reset();
    // Nobody vouches for this certificate: it is refused where that is asked for.
    setenv("ZENTROVA_VERIFY_TLS", "1", 1);
    EXPECT_FALSE(open("https://localhost:" + std::to_string(port) + "/a.mp3"));
    EXPECT_EQ(BASS_ERROR_SSL, error);
    unsetenv("ZENTROVA_VERIFY_TLS");
}

}  // namespace
}  // namespace zv::test
