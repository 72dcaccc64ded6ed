/// The time announcer. [control]
#pragma once

#include <cstdint>
#include <string>

namespace zv {

/// A field for every line of announcer.inc, each with its default.
struct AnnouncerSettings {
#include "startup/settings/announcer.inc"
};

extern AnnouncerSettings announcerSettings;

}  // namespace zv
