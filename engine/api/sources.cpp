// Of engine/bass.h: "sources", "mixers and splits", and tempo channels from "effects".

#include "engine/api/new_channel.h"
#include "engine/api/playing.h"

using namespace zv::engine;

namespace {

constexpr std::uint32_t kMostSourceChannels = 32, kMostSourceRate = 768'000;
constexpr double kPrimeSeconds = 0.4;  ///< of a fresh sound, decoded before its handle is given out

bool sound(const SoundFormat& format) {
    return format.rate > 0 && format.rate <= kMostSourceRate && format.channels > 0 &&
           format.channels <= kMostSourceChannels;
}

template <typename Open>
DWORD openSource(Kind kind, DWORD flags, Open open) {
    assertControlThread();
    Engine& engine = Engine::instance();
    std::shared_ptr<DecoderSource> decoders;
    DWORD timeout = 0;
    bool offline = false;
    {
        const std::lock_guard lock(engine.mutex);
        decoders = engine.ports.decoders;
        timeout = engine.config[BASS_CONFIG_NET_TIMEOUT];
        offline = engine.offline();
    }
    if (!decoders) return fail<DWORD>(BASS_ERROR_NOTAVAIL, 0);
    try {
        // Opening and the first stretch of sound take their time outside the lock: what sounds goes on.
        int error = BASS_OK;
        std::unique_ptr<Decoder> decoder = open(*decoders, timeout, error);
        if (!decoder) return fail<DWORD>(error == BASS_OK ? BASS_ERROR_FILEFORM : error, 0);
        const SoundFormat format = decoder->format();
        if (!sound(format)) return fail<DWORD>(BASS_ERROR_FORMAT, 0);
        std::shared_ptr<PagedSound> paged;
        std::shared_ptr<UrlInput> live;
        if (const auto length = decoder->length()) {
            paged = std::make_shared<PagedSound>(std::move(decoder), *length, engine.graph.renders);
            paged->ensure(0, static_cast<std::uint64_t>(kPrimeSeconds * format.rate));
            paged->setLoop((flags & BASS_SAMPLE_LOOP) != 0);
        } else {
            live = std::make_shared<UrlInput>(std::move(decoder), offline);
            kind = Kind::Url;
        }
        const Call call;
        const auto channel = prepareChannel(engine, kind, flags, format);
        if (!channel) return 0;
        channel->sound = paged;
        channel->live = live;
        channel->control.loop = (flags & BASS_SAMPLE_LOOP) != 0;
        if (paged) engine.workers.add(paged);
        if (live) {
            std::erase_if(engine.urls, [](const auto& url) { return url.expired(); });
            engine.urls.push_back(live);
        }
        return publishChannel(engine, channel);
    } catch (const std::bad_alloc&) {
        return fail<DWORD>(BASS_ERROR_MEM, 0);
    } catch (...) {
        return fail<DWORD>(BASS_ERROR_UNKNOWN, 0);
    }
}

bool freeOfKind(DWORD handle, bool module) {
    Call call;
    const auto channel = call.engine.find(handle);
    if (!channel || (channel->kind == Kind::Module) != module) return fail(BASS_ERROR_HANDLE, false);
    call.engine.freeChannel(channel, call.lock);
    return succeed(true);
}

/// Whether `channel` takes sound from `target`, however far back.
bool dependsOn(const Engine& engine, const Channel& channel, const Channel& target) {
    if (&channel == &target) return true;
    if (channel.source && dependsOn(engine, *channel.source, target)) return true;
    if (channel.hub && dependsOn(engine, *channel.hub->source, target)) return true;
    if (channel.kind != Kind::Mixer) return false;
    for (const auto& [handle, other] : engine.channels)
        if (other->control.mixer == channel.handle && dependsOn(engine, *other, target)) return true;
    return false;
}

}  // namespace

extern "C" {

HSTREAM BASS_StreamCreateFile(bool memory, const void* path, QWORD offset, QWORD length, DWORD flags) {
    if (!path) return fail<HSTREAM>(BASS_ERROR_ILLPARAM, 0);
    if (memory || offset != 0 || length != 0) return fail<HSTREAM>(BASS_ERROR_NOTAVAIL, 0);
    return openSource(Kind::File, flags, [&](DecoderSource& decoders, DWORD, int& error) {
        return decoders.openFile(static_cast<const char*>(path), error);
    });
}

HMUSIC BASS_MusicLoad(bool memory, const void* path, QWORD offset, DWORD length, DWORD flags, DWORD) {
    if (!path) return fail<HMUSIC>(BASS_ERROR_ILLPARAM, 0);
    if (memory || offset != 0 || length != 0) return fail<HMUSIC>(BASS_ERROR_NOTAVAIL, 0);
    return openSource(Kind::Module, flags, [&](DecoderSource& decoders, DWORD, int& error) {
        return decoders.openModule(static_cast<const char*>(path), error);
    });
}

HSTREAM BASS_StreamCreateURL(const char* url, DWORD offset, DWORD flags, void* procedure, void*) {
    if (!url || procedure) return fail<HSTREAM>(BASS_ERROR_ILLPARAM, 0);
    if (offset != 0) return fail<HSTREAM>(BASS_ERROR_NOTAVAIL, 0);
    return openSource(Kind::Url, flags, [&](DecoderSource& decoders, DWORD timeout, int& error) {
        return decoders.openUrl(url, timeout, error);
    });
}

bool BASS_StreamFree(HSTREAM handle) { return freeOfKind(handle, false); }
bool BASS_MusicFree(HMUSIC handle) { return freeOfKind(handle, true); }

HSTREAM BASS_FX_TempoCreate(DWORD source, DWORD flags) {
    const Call call;
    Engine& e = call.engine;
    const auto of = e.find(source);
    if (!of) return fail<HSTREAM>(BASS_ERROR_HANDLE, 0);
    if (!of->decoding) return fail<HSTREAM>(BASS_ERROR_DECODE, 0);
    if (of->control.mixer != 0) return fail<HSTREAM>(BASS_ERROR_ALREADY, 0);
    settleRead(e, *of);
    try {
        const auto channel = prepareChannel(e, Kind::Tempo, flags, {of->rate, of->channels, of->bits});
        if (!channel) return 0;
        channel->source = of;
        channel->freeSource = (flags & BASS_FX_FREESOURCE) != 0;
        if (of->sound) {
            channel->tempo = std::make_shared<TempoProcessor>(of->rate, of->channels, *of->sound);
            e.workers.add(channel->tempo, of->sound);
        }
        const DWORD handle = publishChannel(e, channel);
        e.send({.kind = CommandKind::User, .channel = of.get(), .other = channel.get()});
        return handle;
    } catch (...) {
        return fail<HSTREAM>(BASS_ERROR_MEM, 0);
    }
}

HSTREAM BASS_Mixer_StreamCreate(DWORD freq, DWORD channels, DWORD flags) {
    const Call call;
    if (channels != 2) return fail<HSTREAM>(BASS_ERROR_FORMAT, 0);
    if (freq < 100 || freq > kMostSourceRate) return fail<HSTREAM>(BASS_ERROR_FREQ, 0);
    const auto channel = prepareChannel(call.engine, Kind::Mixer, flags, {freq, channels, 0});
    return channel ? publishChannel(call.engine, channel) : 0;
}

bool BASS_Mixer_StreamAddChannel(HSTREAM mixer, DWORD handle, DWORD) {
    const Call call;
    Engine& e = call.engine;
    const auto into = e.find(mixer);
    const auto channel = e.find(handle);
    if (!into || !channel || into->kind != Kind::Mixer) return fail(BASS_ERROR_HANDLE, false);
    if (!channel->decoding) return fail(BASS_ERROR_DECODE, false);
    if (channel->control.mixer != 0) return fail(BASS_ERROR_ALREADY, false);
    if (dependsOn(e, *channel, *into)) return fail(BASS_ERROR_ILLPARAM, false);
    settleRead(e, *channel);
    auto* plug = new Plug(channel->rate, into->rate);
    channel->control.meter = plug->meter;
    channel->control.mixer = mixer;
    e.send({.kind = CommandKind::AddToMixer,
            .flags = e.active(*channel) ? kBegins : 0,
            .channel = channel.get(),
            .other = into.get(),
            .object = plug,
            .b = channel->control.generation});
    return succeed(true);
}

bool BASS_Mixer_ChannelRemove(DWORD handle) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, false);
    if (channel->control.mixer == 0) return fail(BASS_ERROR_NOTAVAIL, false);
    channel->control.mixer = 0;
    call.engine.send({.kind = CommandKind::Unplug, .channel = channel.get()});
    return succeed(true);
}

HSTREAM BASS_Split_StreamCreate(DWORD source, DWORD flags, const int* map) {
    const Call call;
    Engine& e = call.engine;
    const auto of = e.find(source);
    if (!of) return fail<HSTREAM>(BASS_ERROR_HANDLE, 0);
    if (map) return fail<HSTREAM>(BASS_ERROR_NOTAVAIL, 0);
    if (!of->decoding) return fail<HSTREAM>(BASS_ERROR_DECODE, 0);
    if (of->control.mixer != 0) return fail<HSTREAM>(BASS_ERROR_ALREADY, 0);
    settleRead(e, *of);
    try {
        const auto channel = prepareChannel(e, Kind::Split, flags, {of->rate, of->channels, of->bits});
        if (!channel) return 0;
        for (const auto& [handle, other] : e.channels)
            if (other->hub && other->hub->source == of) channel->hub = other->hub;
        if (!channel->hub) channel->hub = std::make_shared<SplitHub>(of, of->rate);
        return publishChannel(e, channel);
    } catch (...) {
        return fail<HSTREAM>(BASS_ERROR_MEM, 0);
    }
}

}  // extern "C"
