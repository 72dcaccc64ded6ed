// Stands between the program and its libraries (LD_PRELOAD) and notes two moments on the monotonic clock: a
// mouse press is handed to the toolkit, or a note that is pressed comes from a MIDI driver; a block handed to the sound server holds the first loud sound after
// silence. The program itself knows nothing of it. One line each to the file PRESS_TRACE: "press NS", or "sound NS"
// with the time of the block before, which tells how long the server had not asked.
#include <dlfcn.h>
#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::uint8_t kButtonPress = 4;    // of the core protocol
constexpr std::uint8_t kGenericEvent = 35;  // carries the input extension's events
constexpr std::uint16_t kInputButtonPress = 4;
constexpr float kSoft = 0.01F;                   // what sounds below that goes on by itself
constexpr std::size_t kQuietSamples = 4410 * 2;  // 100 ms of stereo at 44,100

struct AnyEvent {
    std::uint8_t type, extension;
    std::uint16_t sequence;
    std::uint32_t length;
    std::uint16_t eventType;
};

long long nanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<long long>(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

void note(const char* what, long long before = 0) {
    static const int file = open(std::getenv("PRESS_TRACE"), O_WRONLY | O_CREAT | O_APPEND, 0600);
    char line[64];
    const int n = std::snprintf(line, sizeof line, "%s %lld %lld\n", what, nanoseconds(), before);
    if (write(file, line, static_cast<std::size_t>(n)) < 0) return;
}

template <class F>
F next(const char* name) {
    return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

void look(const void* event) {
    if (event == nullptr) return;
    const auto& e = *static_cast<const AnyEvent*>(event);
    const int type = e.type & 0x7F;
    if (type == kButtonPress || (type == kGenericEvent && e.eventType == kInputButtonPress)) note("press");
}

}  // namespace

extern "C" void* xcb_wait_for_event(void* connection) {
    static const auto real = next<void* (*)(void*)>("xcb_wait_for_event");
    void* event = real(connection);
    look(event);
    return event;
}

extern "C" void* xcb_poll_for_queued_event(void* connection) {
    static const auto real = next<void* (*)(void*)>("xcb_poll_for_queued_event");
    void* event = real(connection);
    look(event);
    return event;
}

struct MidiEvent {
    std::uint32_t time;
    std::size_t size;
    unsigned char* bytes;
};

extern "C" int jack_midi_event_get(MidiEvent* event, void* buffer, std::uint32_t index) {
    static const auto real = next<int (*)(MidiEvent*, void*, std::uint32_t)>("jack_midi_event_get");
    const int result = real(event, buffer, index);
    constexpr unsigned char kNoteOn = 0x90;
    if (result == 0 && event->size == 3 && (event->bytes[0] & 0xF0) == kNoteOn) note("press");
    return result;
}

extern "C" int pa_stream_write(void* stream, const void* data, std::size_t bytes, void (*release)(void*),
                               std::int64_t offset, int seek) {
    static const auto real =
        next<int (*)(void*, const void*, std::size_t, void (*)(void*), std::int64_t, int)>("pa_stream_write");
    static std::size_t quiet = 0;
    static long long before = 0;
    const auto* samples = static_cast<const float*>(data);
    bool heard = false;
    for (std::size_t i = 0; i < bytes / sizeof(float); ++i) {
        if (std::fabs(samples[i]) > kSoft) {
            heard = heard || quiet >= kQuietSamples;
            quiet = 0;
        } else {
            ++quiet;
        }
    }
    if (heard) note("sound", before);
    before = nanoseconds();
    return real(stream, data, bytes, release, offset, seek);
}
