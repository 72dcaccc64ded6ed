#include "tests/sound/stream_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

namespace zv::test {
namespace {

/// A socket on the loopback, its port chosen by the system.
int listenOnLoopback(int& port) {
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address);
    socklen_t size = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
    port = ntohs(address.sin_port);
    return socket;
}

bool readable(int socket, int milliseconds) {
    pollfd wanted{socket, POLLIN, 0};
    return poll(&wanted, 1, milliseconds) > 0;
}

}  // namespace

void StreamServer::Client::send(std::span<const char> bytes) {
    while (!bytes.empty()) {
        const auto sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) return;
        bytes = bytes.subspan(static_cast<std::size_t>(sent));
    }
}

void StreamServer::Client::say(const std::string& text) {
    send(std::span<const char>(text.data(), text.size()));
}

void StreamServer::Client::waitFor(const std::atomic<bool>& open) const {
    while (!open && !*stopping_) std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

bool StreamServer::Client::hangsUpWithin(int milliseconds) const {
    std::array<char, 4096> ignored{};
    return *stopping_ ||
           (readable(socket_, milliseconds) && recv(socket_, ignored.data(), ignored.size(), 0) <= 0);
}

void StreamServer::Client::waitForHangUp() const {
    while (!hangsUpWithin(20)) {
    }
}

StreamServer::StreamServer() : listener_(listenOnLoopback(port_)) {
    listen(listener_, 16);
    acceptor_ = std::thread([this] { accept(); });
}

StreamServer::~StreamServer() {
    stopping_ = true;
    acceptor_.join();
    for (auto& client : clients_) client.join();
    close(listener_);
}

void StreamServer::answer(const std::string& path, Answer answer) {
    const std::lock_guard lock(mutex_);
    answers_[path] = std::move(answer);
}

std::string StreamServer::url(const std::string& path, const std::string& scheme) const {
    return scheme + "://127.0.0.1:" + std::to_string(port_) + path;
}

void StreamServer::accept() {
    while (!stopping_) {
        if (!readable(listener_, 20)) continue;
        const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket >= 0) clients_.emplace_back([this, socket] { serve(socket); });
    }
}

void StreamServer::serve(int socket) {
    std::string request;
    std::array<char, 4096> some{};
    // Whoever does not speak http gets what "garbled" answers.
    while (!stopping_ && request.find("\r\n\r\n") == std::string::npos &&
           (request.empty() || request[0] != '\x16')) {
        if (!readable(socket, 20)) continue;
        const auto got = recv(socket, some.data(), some.size(), 0);
        if (got <= 0) break;
        request.append(some.data(), static_cast<std::size_t>(got));
    }
    const auto from = request.find(' ') + 1;
    const std::string path =
        request.substr(0, 4) == "GET " ? request.substr(from, request.find(' ', from) - from) : "garbled";
    Answer answer;
    {
        const std::lock_guard lock(mutex_);
        if (const auto found = answers_.find(path); found != answers_.end()) answer = found->second;
    }
    Client client(socket, stopping_, request);
    if (answer)
        answer(client);
    else
        client.say("HTTP/1.0 404 Not Found\r\nContent-Length: 0\r\n\r\n");
    shutdown(socket, SHUT_RDWR);
    close(socket);
}

int freePort() {
    int port = 0;
    close(listenOnLoopback(port));
    return port;
}

}  // namespace zv::test
