#include "platform/ffmpeg/media_input.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "engine/bass.h"

namespace zv {
namespace {

using namespace std::chrono_literals;

// What a sound or video file can be. Playlists, picture series and devices are kept out: a file must not make
// the program open other files or addresses, and random bytes must not pass for something exotic.
constexpr const char* knownContainers =
    "wav,w64,aiff,au,caf,voc,flac,ogg,mp3,aac,ac3,eac3,dts,amr,amrnb,amrwb,wv,ape,tta,mpc,mpc8,"
    "mov,mp4,m4a,3gp,asf,asf_o,xwma,mpeg,mpegvideo,mpegts,avi,matroska,webm,flv";

constexpr const char* segmentContainers = "hls,mpegts,mov,mp4,m4a,aac,mp3,ac3,eac3";

constexpr std::size_t leastLook = 16;  // bytes by which a playlist is known

constexpr const char* webProtocols = "http,https,tcp,tls,httpproxy";

/// A public stream with a certificate that ran out must not fall silent on air: certificates are looked at
/// only where this is set in the environment.
constexpr const char* verifyVariable = "ZENTROVA_VERIFY_TLS";

constexpr std::int64_t quickProbe = 32'768;  // a WAV opens four times as fast as with the library's 5 MB
// Of a live stream, whose bytes come no faster than its sound: what the library would look at for a file takes it
// several seconds.
constexpr std::int64_t liveProbe = 16'384;
constexpr std::int64_t liveAnalysis = 100'000;  // us
constexpr std::int64_t deepProbe = 5'000'000;   // large pictures in front of the sound
constexpr auto fileLimit = 30s;

constexpr std::size_t flacBlockHeader = 4;  // bytes: the kind, with a mark of the last one, and the length
constexpr int flacComment = 4;

int codeOf(int averror) {
    if (averror >= 0) return BASS_OK;
    switch (averror) {
        case AVERROR(ENOMEM):
            return BASS_ERROR_MEM;
        case AVERROR(ENOENT):
        case AVERROR(EACCES):
        case AVERROR(EPERM):
        case AVERROR(EISDIR):
        case AVERROR(EMFILE):
        case AVERROR(ENFILE):
        case AVERROR(ECONNREFUSED):
        case AVERROR(ECONNRESET):
        case AVERROR(EPIPE):
        case AVERROR_HTTP_BAD_REQUEST:
        case AVERROR_HTTP_UNAUTHORIZED:
        case AVERROR_HTTP_FORBIDDEN:
        case AVERROR_HTTP_NOT_FOUND:
        case AVERROR_HTTP_OTHER_4XX:
        case AVERROR_HTTP_SERVER_ERROR:
            return BASS_ERROR_FILEOPEN;
        case AVERROR(ENETUNREACH):
        case AVERROR(ENETDOWN):
        case AVERROR(EHOSTUNREACH):
            return BASS_ERROR_NONET;
        case AVERROR(ETIMEDOUT):
        case AVERROR_EXIT:
            return BASS_ERROR_TIMEOUT;
        case AVERROR_DECODER_NOT_FOUND:
            return BASS_ERROR_CODEC;
        case AVERROR_PROTOCOL_NOT_FOUND:
            return BASS_ERROR_PROTOCOL;
        case AVERROR_STREAM_NOT_FOUND:
            return BASS_ERROR_NOTAUDIO;
        default:
            return BASS_ERROR_FILEFORM;
    }
}

struct Options {
    AVDictionary* dictionary = nullptr;
    Options() = default;
    Options(const Options&) = delete;
    Options& operator=(const Options&) = delete;
    ~Options() { av_dict_free(&dictionary); }
    void set(const char* key, const char* value) { av_dict_set(&dictionary, key, value, 0); }
    void set(const char* key, std::int64_t value) { av_dict_set_int(&dictionary, key, value, 0); }
};

bool isSecure(const std::string& url) { return url.size() > 5 && (url[4] == 's' || url[4] == 'S'); }

/// Whether this is a film, and not just something that was taken for one by its name.
bool hasPicture(const AVFormatContext& context) {
    for (unsigned i = 0; i < context.nb_streams; ++i) {
        const AVCodecParameters& parameters = *context.streams[i]->codecpar;
        const bool declared = parameters.codec_id != AV_CODEC_ID_NONE && parameters.codec_tag != 0;
        if (parameters.codec_type == AVMEDIA_TYPE_VIDEO && (declared || parameters.width > 0)) return true;
    }
    return false;
}

}  // namespace

int MediaInput::interrupted(void* self) {
    const auto& input = *static_cast<const MediaInput*>(self);
    return input.aborted_ || input.timedOut() ? 1 : 0;
}

bool MediaInput::timedOut() const { return std::chrono::steady_clock::now() > deadline_; }

void MediaInput::setLimit(std::chrono::milliseconds limit) {
    deadline_ = limit == std::chrono::milliseconds::max() ? std::chrono::steady_clock::time_point::max()
                                                          : std::chrono::steady_clock::now() + limit;
}

std::int64_t MediaInput::fileSize() const { return context_->pb ? avio_size(context_->pb) : -1; }

int MediaInput::connect() {
    Options options;
    options.set("protocol_whitelist", webProtocols);
    options.set("user_agent", "Zentrova");
    if (std::getenv(verifyVariable)) options.set("tls_verify", 1);
    const AVIOInterruptCB interrupt{&MediaInput::interrupted, this};
    AVIOContext* connection = nullptr;
    const int result =
        avio_open2(&connection, address_.c_str(), AVIO_FLAG_READ, &interrupt, &options.dictionary);
    connection_.reset(connection);
    return result;
}

int MediaInput::open(std::int64_t probeBytes) {
    context_.reset();
    AVFormatContext* context = avformat_alloc_context();
    if (!context) return AVERROR(ENOMEM);
    context->interrupt_callback = {&MediaInput::interrupted, this};
    context->pb = connection_.get();
    context->fps_probe_size = 0;
    Options options;
    options.set("protocol_whitelist", network_ ? webProtocols : "file");
    options.set("format_whitelist", containers());
    options.set("probesize", probeBytes);
    if (network_ && !segmented_) {
        options.set("formatprobesize", liveProbe);
        options.set("analyzeduration", liveAnalysis);
    }
    // On failure the library frees the context itself.
    if (const int result = avformat_open_input(&context, address_.c_str(), nullptr, &options.dictionary);
        result < 0)
        return result;
    context_.reset(context);

    for (unsigned i = 0; i < context->nb_streams; ++i) {
        AVStream& stream = *context->streams[i];
        if (stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO) continue;
        stream.discard = AVDISCARD_ALL;
        if ((stream.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0) continue;
        // A cover is no picture to the library: it would decode it to learn its colours.
        stream.codecpar->codec_type = AVMEDIA_TYPE_DATA;
        stream.codecpar->codec_id = AV_CODEC_ID_NONE;
    }
    if (const int result = avformat_find_stream_info(context, nullptr); result < 0)
        return hasPicture(*context) ? AVERROR_STREAM_NOT_FOUND : result;
    const int best = av_find_best_stream(context, AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (best < 0) return hasPicture(*context) ? AVERROR_STREAM_NOT_FOUND : AVERROR_INVALIDDATA;
    for (unsigned i = 0; i < context->nb_streams; ++i)
        context->streams[i]->discard = static_cast<int>(i) == best ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    stream_ = context->streams[best];
    if (network_) hearSong();
    return decoder_.open(*stream_->codecpar, stream_->time_base);
}

std::unique_ptr<MediaInput> MediaInput::openFile(const std::string& path, int& error) {
    prepareLibraries();
    std::error_code failure;
    // Devices and pipes could hold the caller for ever.
    if (!std::filesystem::is_regular_file(std::filesystem::path(path), failure) || !std::ifstream(path)) {
        error = BASS_ERROR_FILEOPEN;
        return nullptr;
    }
    std::unique_ptr<MediaInput> input(new MediaInput);
    input->path_ = path;
    input->address_ = "file:" + path;
    input->packet_.reset(av_packet_alloc());
    if (!input->packet_) {
        error = BASS_ERROR_MEM;
        return nullptr;
    }
    input->setLimit(fileLimit);
    int result = input->open(quickProbe);
    const bool worthAnotherLook = result == AVERROR_INVALIDDATA || result == AVERROR_STREAM_NOT_FOUND ||
                                  (result >= 0 && input->codec().sample_rate <= 0);
    if (worthAnotherLook &&
        std::filesystem::file_size(path, failure) > static_cast<std::uintmax_t>(quickProbe))
        result = input->open(deepProbe);
    error = codeOf(result);
    return result < 0 ? nullptr : std::move(input);
}

const char* MediaInput::containers() const { return segmented_ ? segmentContainers : knownContainers; }

std::unique_ptr<MediaInput> MediaInput::connectTo(const std::string& url, std::uint32_t timeoutMs,
                                                  int& error) {
    prepareLibraries();
    std::unique_ptr<MediaInput> input(new MediaInput);
    input->address_ = url;
    input->network_ = true;
    input->packet_.reset(av_packet_alloc());
    if (!input->packet_) {
        error = BASS_ERROR_MEM;
        return nullptr;
    }
    input->setLimit(std::chrono::milliseconds(timeoutMs));
    const int result = input->connect();
    error = codeOf(result);
    // The library has few codes for what goes wrong below the sound; that the host is there was found before.
    if (error == BASS_ERROR_FILEFORM) error = isSecure(url) ? BASS_ERROR_SSL : BASS_ERROR_FILEOPEN;
    if (error != BASS_OK && input->timedOut()) error = BASS_ERROR_TIMEOUT;
    return error == BASS_OK ? std::move(input) : nullptr;
}

std::string MediaInput::look(std::size_t most, bool whole) {
    std::string bytes;
    unsigned char some[512];
    while (bytes.size() < (whole ? most : std::min(most, leastLook))) {
        const int got = avio_read_partial(connection_.get(), some, sizeof some);
        if (got <= 0) break;
        bytes.append(reinterpret_cast<const char*>(some), static_cast<std::size_t>(got));
    }
    // A few bytes are still in the connection's buffer.
    if (!whole) avio_seek(connection_.get(), 0, SEEK_SET);
    return bytes;
}

bool MediaInput::openConnected(bool segmented, int& error) {
    segmented_ = segmented;
    if (segmented) connection_.reset();  // the container asks for the playlist itself, again and again
    error = codeOf(open(quickProbe));
    if (error != BASS_OK && timedOut()) error = BASS_ERROR_TIMEOUT;
    return error == BASS_OK;
}

std::string MediaInput::told() const {
    std::uint8_t* text = nullptr;
    if (connection_ &&
        av_opt_get(connection_.get(), "icy_metadata_packet", AV_OPT_SEARCH_CHILDREN, &text) >= 0 && text) {
        std::string packet(reinterpret_cast<const char*>(text));
        av_free(text);
        if (!packet.empty()) return packet;
    }
    const auto& [artist, title] = song_;
    if (artist.empty() && title.empty()) return {};
    return "StreamTitle='" + artist + (artist.empty() || title.empty() ? "" : " - ") + title + "';";
}

void MediaInput::hearSong() {
    const auto tag = [this](const char* key) -> std::string {
        const AVDictionaryEntry* entry = av_dict_get(stream_->metadata, key, nullptr, 0);
        if (!entry) entry = av_dict_get(context_->metadata, key, nullptr, 0);
        return entry ? entry->value : "";
    };
    switch (stream_->codecpar->codec_id) {
        case AV_CODEC_ID_FLAC: {
            // The library hands the headers of a song that follows over as packets of its sound.
            const std::string_view bytes(reinterpret_cast<const char*>(packet_->data),
                                         static_cast<std::size_t>(packet_->size));
            if (bytes.size() > flacBlockHeader && (bytes[0] & 0x7F) == flacComment)
                song_ = ReadVorbisComment(bytes.substr(flacBlockHeader));
            else if (packet_->size == 0)
                song_ = {tag("artist"), tag("title")};
            break;
        }
        case AV_CODEC_ID_OPUS:
            // The library adds the names of a song that follows to those before.
            if ((stream_->event_flags & AVSTREAM_EVENT_FLAG_METADATA_UPDATED) == 0 && packet_->size != 0)
                break;
            song_ = {tag("artist"), tag("title")};
            stream_->event_flags &= ~AVSTREAM_EVENT_FLAG_METADATA_UPDATED;
            av_dict_free(&stream_->metadata);
            break;
        default:
            song_ = {tag("artist"), tag("title")};
    }
}

bool MediaInput::reopen() { return open(quickProbe) >= 0 || open(deepProbe) >= 0; }

bool MediaInput::readPacket() {
    for (;;) {
        av_packet_unref(packet_.get());
        if (aborted_ || timedOut() || av_read_frame(context_.get(), packet_.get()) < 0) return false;
        if (packet_->stream_index == stream_->index) {
            if (network_) hearSong();
            return true;
        }
        // A web stream's next title may come as a stream of its own.
        AVStream& other = *context_->streams[packet_->stream_index];
        if (network_ && other.codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            stream_ = &other;
            return decoder_.open(*stream_->codecpar, stream_->time_base) >= 0;
        }
    }
}

bool MediaInput::seek(std::int64_t ticks) {
    const int result = av_seek_frame(context_.get(), stream_->index, ticks, AVSEEK_FLAG_BACKWARD);
    decoder_.flush();
    return result >= 0;
}

bool MediaInput::renew() { return decoder_.open(*stream_->codecpar, stream_->time_base) >= 0; }

bool MediaInput::seekByte(std::int64_t byte) {
    const int result = av_seek_frame(context_.get(), stream_->index, byte, AVSEEK_FLAG_BYTE);
    decoder_.flush();
    return result >= 0;
}

}  // namespace zv
