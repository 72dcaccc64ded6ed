/// Whether a port of the program is still connected to its device: the library does not tell. [control]
#pragma once

#include <string>

namespace zv {

/// `port` is the name of a port of the client `client`; a port that is not found counts as connected.
bool alsaPortConnected(const std::string& client, const std::string& port, bool input);
bool jackPortConnected(const std::string& client, const std::string& port);

}  // namespace zv
