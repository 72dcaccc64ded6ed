/// Tells the interface thread when ports of the system come or go, so that nobody has to look again and again.
#pragma once

#include <string>

namespace zv {

/// Begins to watch, as the client `client`; nothing when it does already or the system does not answer. [control]
void watchAlsaPorts(const std::string& client);
/// A port came or went: the interface is woken. Takes no lock and no memory. [any]
void notePortsChanged() noexcept;
/// Whether one did since this was asked last. [control]
bool portsChanged();

}  // namespace zv
