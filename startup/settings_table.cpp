#include "startup/settings_table.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "startup/helpers.h"

namespace zv {
namespace {

using S = Settings;

constexpr SettingKey kKeys[] = {
#define ZV_BYTE(name, standard, ...) {#name, SettingType::byte, &S::name, SettingRules() __VA_ARGS__},
#define ZV_WORD(name, standard, ...) {#name, SettingType::word, &S::name, SettingRules() __VA_ARGS__},
#define ZV_WHOLE(name, standard, ...) {#name, SettingType::whole, &S::name, SettingRules() __VA_ARGS__},
#define ZV_COLOUR(name, standard, ...) {#name, SettingType::colour, &S::name, SettingRules() __VA_ARGS__},
#define ZV_TEXT(name, standard, ...) {#name, SettingType::text, &S::name, SettingRules() __VA_ARGS__},
#include "startup/settings_list.inc"
};

std::string textIn(const Settings& record, const SettingKey& key) {
    if (const auto* text = std::get_if<std::string S::*>(&key.field)) return record.**text;
    return NumberText(record.*std::get<std::int32_t S::*>(key.field));
}

}  // namespace

std::span<const SettingKey> SettingKeys() { return kKeys; }

const SettingKey* FindSetting(std::string_view key) {
    const auto found = std::find_if(std::begin(kKeys), std::end(kKeys),
                                    [&](const SettingKey& one) { return SameText(one.key, key); });
    return found == std::end(kKeys) ? nullptr : found;
}

std::string SettingText(const SettingKey& key) { return textIn(settings, key); }

std::string SettingDefault(const SettingKey& key) {
    static const Settings standard;
    return textIn(standard, key);
}

Conversion ToWhole(const std::string& text, SettingType type, std::int32_t& value) {
    const std::optional<double> number = ToNumber(text);
    if (!number) return Conversion::mismatch;
    const double whole = std::nearbyint(*number);  // a half goes to the even neighbour
    double low = std::numeric_limits<std::int32_t>::min();
    double high = std::numeric_limits<std::int32_t>::max();
    if (type == SettingType::byte) {
        low = 0;
        high = std::numeric_limits<std::uint8_t>::max();
    } else if (type == SettingType::word) {
        low = std::numeric_limits<std::int16_t>::min();
        high = std::numeric_limits<std::int16_t>::max();
    }
    if (whole < low || whole > high) return Conversion::overflow;
    value = static_cast<std::int32_t>(whole);
    return Conversion::good;
}

Conversion SetSetting(const SettingKey& key, const std::string& text) {
    if (const auto* field = std::get_if<std::string S::*>(&key.field)) {
        settings.** field = text;
        return Conversion::good;
    }
    std::int32_t number = 0;
    const Conversion result = ToWhole(text, key.type, number);
    if (result != Conversion::good) return result;
    const SettingRules& rules = key.rules;
    if (number < rules.low || number > rules.high) {
        if (rules.outside == Outside::clamp) number = std::clamp(number, rules.low, rules.high);
        if (rules.outside == Outside::value) number = rules.otherwise;
    }
    settings.*std::get<std::int32_t S::*>(key.field) = number;
    return result;
}

}  // namespace zv
