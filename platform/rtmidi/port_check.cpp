#include "platform/rtmidi/port_check.h"

#include <alsa/asoundlib.h>
#include <jack/jack.h>

#include <atomic>
#include <memory>
#include <string_view>

#include "platform/common/jack_turn.h"
#include "platform/rtmidi/port_watch.h"

namespace zv {
namespace {

struct CloseSequencer {
    void operator()(snd_seq_t* s) const { snd_seq_close(s); }
};
struct CloseClient {
    void operator()(jack_client_t* c) const {
        const auto turn = jackTurn();
        jack_client_close(c);
    }
};
struct FreePorts {
    void operator()(const char** names) const { jack_free(static_cast<void*>(names)); }
};
using Ports = std::unique_ptr<const char*[], FreePorts>;

/// The address of our port, and whether it was found.
bool findPort(snd_seq_t* sequencer, const std::string& client, const std::string& port,
              snd_seq_addr_t& address) {
    snd_seq_client_info_t* clients = nullptr;
    snd_seq_port_info_t* ports = nullptr;
    snd_seq_client_info_alloca(&clients);
    snd_seq_port_info_alloca(&ports);
    snd_seq_client_info_set_client(clients, -1);
    while (snd_seq_query_next_client(sequencer, clients) >= 0) {
        if (client != snd_seq_client_info_get_name(clients)) continue;
        snd_seq_port_info_set_client(ports, snd_seq_client_info_get_client(clients));
        snd_seq_port_info_set_port(ports, -1);
        while (snd_seq_query_next_port(sequencer, ports) >= 0) {
            if (port != snd_seq_port_info_get_name(ports)) continue;
            address = *snd_seq_port_info_get_addr(ports);
            return true;
        }
    }
    return false;
}

/// One client for all questions, as long as the system answers.
snd_seq_t* sequencer() {
    static std::unique_ptr<snd_seq_t, CloseSequencer> kept;
    if (kept == nullptr) {
        snd_seq_t* opened = nullptr;
        if (snd_seq_open(&opened, "default", SND_SEQ_OPEN_DUPLEX, SND_SEQ_NONBLOCK) >= 0) kept.reset(opened);
    }
    return kept.get();
}

/// The same for JACK; one whose server has gone is made anew.
jack_client_t* askingClient(const std::string& client) {
    static std::atomic<bool> gone{false};
    static std::unique_ptr<jack_client_t, CloseClient> kept;
    if (gone.exchange(false)) kept.reset();
    if (kept == nullptr) {
        if (const auto turn = jackTurn())
            kept.reset(jack_client_open((client + "-check").c_str(), JackNoStartServer, nullptr));
        if (kept != nullptr) {
            jack_on_shutdown(
                kept.get(),
                [](void* flag) {
                    static_cast<std::atomic<bool>*>(flag)->store(true);
                    notePortsChanged();
                },
                &gone);
            jack_set_port_registration_callback(
                kept.get(), [](jack_port_id_t, int, void*) { notePortsChanged(); }, nullptr);
            jack_activate(kept.get());
        }
    }
    return kept.get();
}

}  // namespace

bool alsaPortConnected(const std::string& client, const std::string& port, bool input) {
    snd_seq_t* opened = sequencer();
    snd_seq_addr_t address{};
    if (opened == nullptr || !findPort(opened, client, port, address)) return true;
    snd_seq_query_subscribe_t* subscribers = nullptr;
    snd_seq_query_subscribe_alloca(&subscribers);
    snd_seq_query_subscribe_set_root(subscribers, &address);
    snd_seq_query_subscribe_set_type(subscribers, input ? SND_SEQ_QUERY_SUBS_WRITE : SND_SEQ_QUERY_SUBS_READ);
    snd_seq_query_subscribe_set_index(subscribers, 0);
    return snd_seq_query_port_subscribers(opened, subscribers) >= 0;
}

void watchJackPorts(const std::string& client) { askingClient(client); }

bool jackPortConnected(const std::string& client, const std::string& port) {
    jack_client_t* asking = askingClient(client);
    if (asking == nullptr) return false;  // the server has gone with the device
    const Ports ports(jack_get_ports(asking, (":" + port + "$").c_str(), nullptr, 0));
    for (std::size_t i = 0; ports != nullptr && ports[i] != nullptr; ++i) {
        if (!std::string_view(ports[i]).starts_with(client)) continue;
        const Ports others(jack_port_get_all_connections(asking, jack_port_by_name(asking, ports[i])));
        return others != nullptr;
    }
    return false;  // a server that was started anew does not know our port
}

}  // namespace zv
