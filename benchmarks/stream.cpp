// A web stream that plays: what receiving and decoding it costs, and how much memory it holds.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "benchmarks/measure.h"
#include "platform/file_decoders/file_decoders.h"

namespace zv::bench {
namespace {

namespace fs = std::filesystem;

constexpr double kSeconds = 300;  // of sound
constexpr double kMostMs = 5;     // a second of sound
constexpr double kMostMegabytes = 16;

std::string mp3() {
    const fs::path path =
        fs::temp_directory_path() / ("zentrova-bench-stream-" + std::to_string(getpid()) + ".mp3");
    const std::string make =
        "ffmpeg -v error -y -f lavfi -i anoisesrc=d=330:c=pink:a=0.3:r=44100 -ac 2 -b:a 128k '" +
        path.string() + "'";
    if (std::system(make.c_str()) != 0) throw std::runtime_error("ffmpeg could not make a test file");
    std::ifstream in(path, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), {}};
    fs::remove(path);
    return bytes;
}

/// Answers the first client with one text, on the loopback.
class Server {
  public:
    explicit Server(std::string text) : text_(std::move(text)), listener_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (bind(listener_, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener_, 1) != 0 ||
            getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0)
            throw std::runtime_error("no port of the loopback is free");
        port = ntohs(address.sin_port);
        thread_ = std::thread([this] { answer(); });
    }
    ~Server() {
        shutdown(listener_, SHUT_RDWR);
        thread_.join();
        close(listener_);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    int port = 0;

  private:
    void answer() {
        const int client = accept(listener_, nullptr, nullptr);
        if (client < 0) return;
        char request[4096];
        if (recv(client, request, sizeof request, 0) > 0) {
            for (std::size_t at = 0; at < text_.size();) {
                const auto sent = send(client, text_.data() + at, text_.size() - at, MSG_NOSIGNAL);
                if (sent <= 0) break;
                at += static_cast<std::size_t>(sent);
            }
        }
        close(client);
    }
    std::string text_;
    int listener_;
    std::thread thread_;
};

void stream() {
    const Server server("HTTP/1.0 200 OK\r\nContent-Type: audio/mpeg\r\n\r\n" + mp3());
    const double before = residentMegabytes();
    int error = 0;
    const auto decoder =
        makeFileDecoders()->openUrl("http://127.0.0.1:" + std::to_string(server.port) + "/", 5000, error);
    if (!decoder) return missing("stream", "it could not be opened: " + std::to_string(error));
    const double cpu = processSeconds();
    std::vector<float> sound(8192);
    double heard = 0, most = 0;
    while (heard < kSeconds && !decoder->ended()) {
        const std::size_t frames = decoder->read(sound);
        heard += static_cast<double>(frames) / decoder->format().rate;
        most = std::max(most, residentMegabytes() - before);
        if (frames == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    atMost("a stream, receiving and decoding a second of sound", (processSeconds() - cpu) / heard * 1000,
           "ms", kMostMs);
    // Its store fills up when it is read no faster than it sounds.
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    atMost("a stream, memory", std::max(most, residentMegabytes() - before), "MB", kMostMegabytes);
}

const Known known("stream", stream);

}  // namespace
}  // namespace zv::bench
