/// Whether a port of the program is still connected to its device: the library does not tell. The client that asks
/// JACK also hears from it when ports come or go. [control]
#pragma once

#include <string>

namespace zv {

/// `port` is the name of a port of the client `client`; a port that is not found counts as connected.
bool alsaPortConnected(const std::string& client, const std::string& port, bool input);
bool jackPortConnected(const std::string& client, const std::string& port);
/// Begins to watch JACK's ports (port_watch.h); nothing without a server.
void watchJackPorts(const std::string& client);

}  // namespace zv
