#include <netdb.h>
#include <sys/socket.h>

#include <algorithm>
#include <cctype>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string_view>
#include <thread>

#include "engine/bass.h"
#include "platform/common/web_playlist.h"
#include "platform/ffmpeg/ffmpeg_decoders.h"
#include "platform/ffmpeg/media_input.h"

namespace zv {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr std::uint32_t secondsAhead = 10;               // of sound that are kept in store
constexpr std::size_t mostAhead = std::size_t{4} << 20;  // samples, whatever a stream says of itself
constexpr std::size_t kShortLook = 512;                  // bytes

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
          came_(store_.size()),
          told_{{0, input_->told()}},
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
        gone_ += samples;
        while (told_.size() > 1 && told_[1].first <= gone_) told_.pop_front();
        if (samples > 0) roomMade_.notify_all();
        return samples / format_.channels;
    }

    bool ended() const override {
        const std::lock_guard lock(mutex_);
        return over_ && taken_ == store_.size();
    }

    std::string told() const override {
        const std::lock_guard lock(mutex_);
        return told_.front().second;
    }

  private:
    /// Reads and decodes ahead until the store is full, the stream is over or the decoder is destroyed.
    void run() {
        std::vector<float> sound;
        const std::size_t full =
            std::min(std::size_t{format_.rate} * format_.channels * secondsAhead, mostAhead);
        {
            const std::lock_guard lock(mutex_);
            store_.reserve(full + full / 4);
        }
        for (;;) {
            sound.clear();
            const bool more = input_->readPacket();
            input_->decode(more ? &input_->packet() : nullptr, sound);
            std::string now = more ? input_->told() : std::string();
            std::unique_lock lock(mutex_);
            if (more && now != told_.back().second) told_.emplace_back(came_, std::move(now));
            came_ += sound.size();
            if (taken_ > store_.size() / 2 || store_.size() + sound.size() > store_.capacity()) {
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
    std::uint64_t came_ = 0, gone_ = 0;                       ///< samples that were ever stored, and read
    std::deque<std::pair<std::uint64_t, std::string>> told_;  ///< from which sample on; the first is on air
    bool over_ = false;
    bool stopping_ = false;
    std::thread thread_;
};

std::unique_ptr<engine::Decoder> openAddress(const std::string& url, Clock::time_point limit, int depth,
                                             int& error);

/// The first of a playlist's addresses that gives sound.
template <class Left>
std::unique_ptr<engine::Decoder> openFirst(const WebPlaylist& list, int depth, Left left, int& error) {
    error = BASS_ERROR_FILEFORM;
    if (depth >= kPlaylistDepth) return nullptr;
    for (const std::string& address : list.addresses) {
        if (left() <= 1ms) {
            error = BASS_ERROR_TIMEOUT;
            return nullptr;
        }
        if (auto decoder = openAddress(address, Clock::now() + left(), depth + 1, error)) return decoder;
    }
    return nullptr;
}

std::unique_ptr<engine::Decoder> openAddress(const std::string& url, Clock::time_point limit, int depth,
                                             int& error) {
    const bool secure = beginsWith(url, "https://");
    if (!secure && !beginsWith(url, "http://")) {
        error = BASS_ERROR_PROTOCOL;
        return nullptr;
    }
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
    auto input = MediaInput::connectTo(url, static_cast<std::uint32_t>(left().count()), error);
    if (!input) return nullptr;
    bool segmented = false;
    if (LooksLikePlaylist(input->look(kShortLook, false))) {
        const WebPlaylist list = ReadWebPlaylist(input->look(kLongestPlaylist, true), url);
        segmented = list.segmented;
        if (!segmented) {
            input.reset();
            return openFirst(list, depth, left, error);
        }
    }
    if (!input->openConnected(segmented, error)) return nullptr;
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

}  // namespace

std::unique_ptr<engine::Decoder> openUrlDecoder(const std::string& url, std::uint32_t timeoutMs, int& error) {
    return openAddress(url, Clock::now() + std::chrono::milliseconds(timeoutMs), 0, error);
}

}  // namespace zv
