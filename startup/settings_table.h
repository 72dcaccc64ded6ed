/// The keys of zv.ini: field, default, range and what is done outside of it. The few keys with ways of their
/// own are marked and handled beside the table. [control]
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <variant>

#include "startup/settings.h"

namespace zv {

/// How wide a number may be before it no longer converts.
enum class Width : std::uint8_t { byte, word, whole };

enum class Outside : std::uint8_t {
    asIs,
    clamp,  ///< to the nearest limit
    value,  ///< becomes SettingKey::otherwise
};

enum class Special : std::uint8_t {
    none,
    palette,       ///< default only when palette.ini holds something
    folder,        ///< absolute in the record, relative in the file where it can be
    lastFolder,    ///< as folder; the sample folder where it does not exist
    importFolder,  ///< ":" is none
    alwaysOnTop,   ///< words of older versions
    language,      ///< must be a section of language.ini
    sealed,        ///< the language was chosen once
    font,          ///< must be installed
    grid,          ///< default only on a first load
    ignoredUpdate,
    today,
    anything,   ///< 1 when the key holds anything; no default
    mixerFreq,  ///< one of five rates; no default in the file
    account,    ///< kept in account.ini
};

using SettingField = std::variant<std::int32_t Settings::*, std::string Settings::*>;

struct SettingKey {
    const char* key;
    SettingField field;
    const char* def = "";
    Width width = Width::whole;
    Outside outside = Outside::asIs;
    std::int32_t low = std::numeric_limits<std::int32_t>::min();
    std::int32_t high = std::numeric_limits<std::int32_t>::max();
    std::int32_t otherwise = 0;
    Special special = Special::none;
    bool saved = true;  ///< by SaveZVini; the others are written when they change
};

/// In the order of loading.
std::span<const SettingKey> SettingKeys();

/// A number as the file has it: rounded to a whole one. Nothing when it is no number or too wide.
enum class Conversion : std::uint8_t { good, mismatch, overflow };
Conversion ToWhole(const std::string& text, Width width, std::int32_t& value);

}  // namespace zv
