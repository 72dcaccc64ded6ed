// A control surface on a JACK server: client "Surface" with the ports pads_out and pads_in. Presses and lets go one pad,
// note 60 (3C), COUNT times at uneven intervals; prints every message that it is sent as six hexadecimal digits.
//   surface COUNT PAUSE_MS
#include <jack/jack.h>
#include <jack/midiport.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <thread>

namespace {

constexpr int kRing = 4096;
using Message = std::array<unsigned char, 3>;

jack_port_t *output, *input;
std::atomic<int> toSend{0};  // 1 press, 2 release
std::array<Message, kRing> arrived;
std::atomic<unsigned> written{0};
std::atomic<bool> begun{false}, ended{false};

int process(jack_nframes_t frames, void*) {
    void* out = jack_port_get_buffer(output, frames);
    jack_midi_clear_buffer(out);
    if (const int what = toSend.exchange(0); what != 0) {
        const Message message{static_cast<unsigned char>(what == 1 ? 0x90 : 0x80), 0x3C,
                              static_cast<unsigned char>(what == 1 ? 0x7F : 0x40)};
        jack_midi_event_write(out, 0, message.data(), message.size());
    }
    void* in = jack_port_get_buffer(input, frames);
    const jack_nframes_t count = jack_midi_get_event_count(in);
    for (jack_nframes_t i = 0; i < count; ++i) {
        jack_midi_event_t event;
        if (jack_midi_event_get(&event, in, i) != 0) continue;
        const unsigned at = written.load();
        Message message{};
        std::memcpy(message.data(), event.buffer, event.size < 3 ? event.size : 3);
        arrived[at % kRing] = message;
        written.store(at + 1);
    }
    return 0;
}

void print(unsigned& read) {
    for (; read != written.load(); ++read) {
        const Message& m = arrived[read % kRing];
        std::printf("%02X%02X%02X\n", m[0], m[1], m[2]);
    }
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    jack_client_t* client = jack_client_open("Surface", JackNoStartServer, nullptr);
    if (client == nullptr) return 1;
    output = jack_port_register(client, "pads_out", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
    input = jack_port_register(client, "pads_in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
    jack_set_process_callback(client, process, nullptr);
    if (jack_activate(client) != 0) return 1;
    std::signal(SIGTERM, [](int) { ended = true; });
    std::signal(SIGPIPE, SIG_IGN);
    // Standard input tells when to begin: the program has found its surface.
    unsigned read = 0;
    std::thread waiting([] {
        std::getchar();
        begun = true;
    });
    while (!begun && !ended) {
        print(read);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    waiting.detach();
    std::mt19937 chance(1);
    const int count = std::atoi(argv[1]), pause = std::atoi(argv[2]);
    for (int i = 0; i < 2 * count && !ended; ++i) {
        toSend = i % 2 == 0 ? 1 : 2;
        std::this_thread::sleep_for(
            std::chrono::microseconds(pause * 500 + static_cast<int>(chance() % 20'000)));
        print(read);
    }
    while (!ended) {
        print(read);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    print(read);
    std::fflush(stdout);
    std::_Exit(0);
}
