/// A web server of the test's own, on the loopback: it answers a path with what the test writes there.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace zv::test {

class StreamServer {
  public:
    /// One client, until the answer returns.
    class Client {
      public:
        Client(int socket, const std::atomic<bool>& stopping, std::string request)
            : socket_(socket), stopping_(&stopping), request_(std::move(request)) {}
        const std::string& request() const { return request_; }
        void say(const std::string& text);
        void send(std::span<const char> bytes);
        /// Holds the line until `open` is set or the test is over.
        void waitFor(const std::atomic<bool>& open) const;
        /// Whether the client hangs up within so many milliseconds.
        bool hangsUpWithin(int milliseconds) const;
        /// Until the client hangs up.
        void waitForHangUp() const;

      private:
        int socket_;
        const std::atomic<bool>* stopping_;
        std::string request_;
    };
    using Answer = std::function<void(Client&)>;

    StreamServer();
    ~StreamServer();
    StreamServer(const StreamServer&) = delete;
    StreamServer& operator=(const StreamServer&) = delete;

    void answer(const std::string& path, Answer answer);
    std::string url(const std::string& path, const std::string& scheme = "http") const;
    int port() const { return port_; }

  private:
    void accept();
    void serve(int socket);

    int port_ = 0;
    int listener_ = -1;
    std::atomic<bool> stopping_ = false;
    std::mutex mutex_;
    std::map<std::string, Answer> answers_;
    std::vector<std::thread> clients_;
    std::thread acceptor_;
};

/// A port of the loopback on which nobody listens.
int freePort();

}  // namespace zv::test
