#include <netdb.h>
#include <sys/socket.h>

#include <algorithm>
#include <cctype>
#include <condition_variable>
#include <mutex>
#include <string_view>
#include <thread>

#include "engine/bass.h"
#include "platform/ffmpeg/ffmpeg_decoders.h"
#include "platform/ffmpeg/media_input.h"

namespace zv {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr std::uint32_t secondsAhead = 10;  // of sound that are kept in store

bool beginsWith(std::string_view text, std::string_view lowerCase) {
    return text.size() >= lowerCase.size() &&
           std::equal(lowerCase.begin(), lowerCase.end(), text.begin(), [](char wanted, char is) {
               return wanted == std::tolower(static_cast<unsigned char>(is));
           });
}

/// Host of an http address, without user, port and path.
std::string hostOf(const std::string& url) {
    const std::size_t start = url.find("://") + 3;
    std::string host = url.substr(start, url.find_first_of("/?#", start) - start);
    if (const auto user = host.rfind('@'); user != std::string::npos) host.erase(0, user + 1);
    if (!host.empty() && host.front() == '[') return host.substr(1, host.find(']') - 1);
    return host.substr(0, host.find(':'));
}

enum class Resolution { Found, Unknown, NoAnswer };

/// Asks for the host's address, on a thread that is left behind when no answer comes: the system's call can
/// wait for longer than a presenter.
Resolution resolve(const std::string& host, std::chrono::milliseconds limit) {
    struct Question {
        std::mutex mutex;
        std::condition_variable answered;
        Resolution result = Resolution::NoAnswer;
    };
    const auto question = std::make_shared<Question>();
    std::thread([question, host] {
        addrinfo hints{};
        hints.ai_socktype = SOCK_STREAM;
        addrinfo* list = nullptr;
        const int failure = getaddrinfo(host.c_str(), nullptr, &hints, &list);
        if (list) freeaddrinfo(list);
        const std::lock_guard lock(question->mutex);
        question->result = failure == 0 ? Resolution::Found : Resolution::Unknown;
        question->answered.notify_all();
    }).detach();
    std::unique_lock lock(question->mutex);
    question->answered.wait_for(lock, limit, [&] { return question->result != Resolution::NoAnswer; });
    return question->result;
}

class UrlDecoder : public engine::Decoder {
  public:
    UrlDecoder(std::unique_ptr<MediaInput> input, std::vector<float> first)
        : input_(std::move(input)),
          format_(input_->format()),
          store_(std::move(first)),
          thread_([this] { run(); }) {}
    ~UrlDecoder() override {
        {
            const std::lock_guard lock(mutex_);
            stopping_ = true;
        }
        input_->abort();
        roomMade_.notify_all();
        thread_.join();
    }

    engine::SoundFormat format() const override { return format_; }
    std::optional<std::uint64_t> length() const override { return std::nullopt; }
    bool seek(std::uint64_t) override { return false; }

    std::size_t read(std::span<float> out) override {
        const std::lock_guard lock(mutex_);
        const std::size_t samples =
            std::min(out.size() / format_.channels * format_.channels, store_.size() - taken_);
        std::copy_n(store_.begin() + static_cast<std::ptrdiff_t>(taken_), samples, out.begin());
        taken_ += samples;
        if (samples > 0) roomMade_.notify_all();
        return samples / format_.channels;
    }

    bool ended() const override {
        const std::lock_guard lock(mutex_);
        return over_ && taken_ == store_.size();
    }

  private:
    /// Reads and decodes ahead until the store is full, the stream is over or the decoder is destroyed.
    void run() {
        std::vector<float> sound;
        const std::size_t full = std::size_t{format_.rate} * format_.channels * secondsAhead;
        for (;;) {
            sound.clear();
            const bool more = input_->readPacket();
            input_->decode(more ? &input_->packet() : nullptr, sound);
            std::unique_lock lock(mutex_);
            if (taken_ > store_.size() / 2) {
                store_.erase(store_.begin(), store_.begin() + static_cast<std::ptrdiff_t>(taken_));
                taken_ = 0;
            }
            store_.insert(store_.end(), sound.begin(), sound.end());
            over_ = !more;
            if (over_) return;
            roomMade_.wait(lock, [&] { return stopping_ || store_.size() - taken_ < full; });
            if (stopping_) return;
        }
    }

    std::unique_ptr<MediaInput> input_;
    engine::SoundFormat format_;
    mutable std::mutex mutex_;
    std::condition_variable roomMade_;
    std::vector<float> store_;  ///< decoded sound; the first `taken_` samples have been read
    std::size_t taken_ = 0;
    bool over_ = false;
    bool stopping_ = false;
    std::thread thread_;
};

}  // namespace

std::unique_ptr<engine::Decoder> openUrlDecoder(const std::string& url, std::uint32_t timeoutMs, int& error) {
    const bool secure = beginsWith(url, "https://");
    if (!secure && !beginsWith(url, "http://")) {
        error = BASS_ERROR_PROTOCOL;
        return nullptr;
    }
    const auto limit = Clock::now() + std::chrono::milliseconds(timeoutMs);
    const auto left = [&] {
        return std::max(1ms, std::chrono::duration_cast<std::chrono::milliseconds>(limit - Clock::now()));
    };
    switch (resolve(hostOf(url), left())) {
        case Resolution::Found:
            break;
        case Resolution::Unknown:
            error = BASS_ERROR_NONET;
            return nullptr;
        case Resolution::NoAnswer:
            error = BASS_ERROR_TIMEOUT;
            return nullptr;
    }
    auto input = MediaInput::openUrl(url, static_cast<std::uint32_t>(left().count()), error);
    if (!input) return nullptr;
    std::vector<float> first;
    while (first.empty() && input->readPacket()) input->decode(&input->packet(), first);
    if (first.empty()) {
        error = input->timedOut() ? BASS_ERROR_TIMEOUT : BASS_ERROR_FILEFORM;
        return nullptr;
    }
    // Connected: from here on it may stall for as long as it likes.
    input->setLimit(std::chrono::milliseconds::max());
    return std::make_unique<UrlDecoder>(std::move(input), std::move(first));
}

}  // namespace zv
