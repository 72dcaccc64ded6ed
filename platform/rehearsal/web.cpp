#include "platform/rehearsal/web.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <utility>

#include "engine/bass.h"
#include "platform/common/web_playlist.h"
#include "platform/file_decoders/file_decoders.h"
#include "platform/http.h"
#include "platform/rehearsal/stage.h"
#include "platform/rehearsal/virtual_jobs.h"

namespace zv {
namespace {

constexpr int kAnswerMs = 50;       ///< what connecting and an answer take
constexpr int kFirstRefused = 400;  ///< statuses from here on bring no stream
constexpr std::string_view kLive = ";live";

/// A file as a stream: without a length, and from its start again when it is live.
class WebDecoder final : public engine::Decoder {
  public:
    WebDecoder(std::unique_ptr<engine::Decoder> file, bool live) : file_(std::move(file)), live_(live) {}

    engine::SoundFormat format() const override { return file_->format(); }
    std::optional<std::uint64_t> length() const override { return std::nullopt; }
    std::size_t read(std::span<float> out) override {
        std::size_t frames = file_->read(out);
        if (frames == 0 && live_ && file_->seek(0)) frames = file_->read(out);
        over_ = frames == 0;
        return frames;
    }
    bool seek(std::uint64_t) override { return false; }
    bool ended() const override { return over_; }

  private:
    const std::unique_ptr<engine::Decoder> file_;
    const bool live_;
    bool over_ = false;
};

class RehearsedDecoders final : public engine::DecoderSource {
  public:
    std::unique_ptr<engine::Decoder> openFile(const std::string& path, int& error) override {
        return files_->openFile(path, error);
    }
    std::unique_ptr<engine::Decoder> openModule(const std::string& path, int& error) override {
        return files_->openModule(path, error);
    }
    std::unique_ptr<engine::Decoder> openUrl(const std::string& url, std::uint32_t timeoutMs,
                                             int& error) override {
        return open(url, timeoutMs, 0, error);
    }

  private:
    std::unique_ptr<engine::Decoder> open(const std::string& url, std::uint32_t timeoutMs, int depth,
                                          int& error) {
        const WebRule rule = RehearsedWeb::instance().ask("GET", url, {});
        if (rule.kind == WebRule::Kind::hang) {
            waitInJob(static_cast<int>(timeoutMs));
            error = BASS_ERROR_TIMEOUT;
            return nullptr;
        }
        if (rule.kind == WebRule::Kind::off || rule.status >= kFirstRefused) {
            error = BASS_ERROR_FILEOPEN;
            return nullptr;
        }
        waitInJob(kAnswerMs);
        const std::string path = Stage::instance().file(rule.file);
        std::string head(kLongestPlaylist, '\0');
        std::ifstream in(path, std::ios::binary);
        in.read(head.data(), static_cast<std::streamsize>(head.size()));
        head.resize(static_cast<std::size_t>(in.gcount()));
        if (LooksLikePlaylist(head) && depth < kPlaylistDepth) {
            error = BASS_ERROR_FILEFORM;
            for (const std::string& address : ReadWebPlaylist(head, url).addresses)
                if (auto stream = open(address, timeoutMs, depth + 1, error)) return stream;
            return nullptr;
        }
        auto file = files_->openFile(path, error);
        if (!file) return nullptr;
        return std::make_unique<WebDecoder>(std::move(file), rule.type.ends_with(kLive));
    }

    const std::shared_ptr<engine::DecoderSource> files_ = makeFileDecoders();
};

}  // namespace

RehearsedWeb& RehearsedWeb::instance() {
    static RehearsedWeb web;
    return web;
}

void RehearsedWeb::answer(const std::string& url, WebRule rule) { rules_[url] = std::move(rule); }

WebRule RehearsedWeb::ask(const std::string& method, const std::string& url, const std::string& body) {
    if (onRequest) onRequest(method, url, body);
    // In the map's order a longer prefix comes behind a shorter one: search from the end.
    const auto rule = std::find_if(rules_.rbegin(), rules_.rend(),
                                   [&](const auto& known) { return url.starts_with(known.first); });
    return rule == rules_.rend() ? WebRule{} : rule->second;
}

std::shared_ptr<engine::DecoderSource> makeRehearsedDecoders() {
    return std::make_shared<RehearsedDecoders>();
}

HttpReply performHttp(const HttpRequest& request, JobWork& work) {
    const WebRule rule = RehearsedWeb::instance().ask(request.method, request.url, request.body);
    HttpReply reply;
    if (rule.kind == WebRule::Kind::off) {
        reply.error = "connection refused";
        return reply;
    }
    if (rule.kind == WebRule::Kind::hang) {
        waitInJob(request.timeoutMs);
        reply.error = "timed out";
        return reply;
    }
    waitInJob(kAnswerMs);
    if (work.cancelled()) return reply;
    std::ifstream in(Stage::instance().file(rule.file), std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), {}};
    reply.bytes = static_cast<std::int64_t>(bytes.size());
    if (request.file.empty()) {
        reply.body = std::move(bytes);
    } else if (!(std::ofstream(request.file, std::ios::binary | std::ios::trunc) << bytes).flush()) {
        reply.error = "the file cannot be written";
        return reply;
    }
    if (!request.file.empty()) work.progress(100);
    reply.status = rule.status;
    return reply;
}

}  // namespace zv
