/// How a setting is held to its limits, and which ways of its own it has. [any]
#pragma once

#include <cstdint>
#include <limits>

namespace zv {

/// What a setting holds. The three sizes say how wide a number may be before it no longer converts.
enum class SettingType : std::uint8_t { byte, word, whole, colour, text };

/// What becomes of a number outside the limits.
enum class Outside : std::uint8_t {
    asIs,
    clamp,  ///< the nearest limit
    value,  ///< SettingRules::otherwise
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
    anything,      ///< 1 when the key holds anything; no default
    deviceSingle,  ///< as anything; the choice takes effect at the next start
    mixerFreq,     ///< one of five rates; no default in the file
    account,       ///< kept in account.ini
};

inline constexpr std::int32_t kNoLimit = std::numeric_limits<std::int32_t>::max();

/// The rules of one setting, put together by chaining: `.clamped(4, 8).own(Special::grid)`.
struct SettingRules {
    Outside outside = Outside::asIs;
    std::int32_t low = std::numeric_limits<std::int32_t>::min();
    std::int32_t high = kNoLimit;
    std::int32_t otherwise = 0;
    Special special = Special::none;
    bool savedAtExit = true;  ///< else written when it changes

    constexpr SettingRules clamped(std::int32_t least, std::int32_t most) const {
        return limited(Outside::clamp, least, most, 0);
    }
    constexpr SettingRules within(std::int32_t least, std::int32_t most, std::int32_t else_) const {
        return limited(Outside::value, least, most, else_);
    }
    constexpr SettingRules own(Special way) const {
        SettingRules rules = *this;
        rules.special = way;
        return rules;
    }
    constexpr SettingRules atOnce() const {
        SettingRules rules = *this;
        rules.savedAtExit = false;
        return rules;
    }

  private:
    constexpr SettingRules limited(Outside how, std::int32_t least, std::int32_t most,
                                   std::int32_t else_) const {
        SettingRules rules = *this;
        rules.outside = how;
        rules.low = least;
        rules.high = most;
        rules.otherwise = else_;
        return rules;
    }
};

}  // namespace zv
