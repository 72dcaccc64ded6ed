#include "startup/settings_table.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "startup/helpers.h"
#include "startup/settings/announcer_settings.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/bars_settings.h"
#include "startup/settings/clock_settings.h"
#include "startup/settings/dark_settings.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/display_settings.h"
#include "startup/settings/duck_settings.h"
#include "startup/settings/editor_settings.h"
#include "startup/settings/folders_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/keys_settings.h"
#include "startup/settings/labels_settings.h"
#include "startup/settings/live_settings.h"
#include "startup/settings/marks_settings.h"
#include "startup/settings/meters_settings.h"
#include "startup/settings/midi_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/palette_list_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/playing_settings.h"
#include "startup/settings/program_settings.h"
#include "startup/settings/search_settings.h"
#include "startup/settings/volumes_settings.h"
#include "startup/settings/warning_settings.h"
#include "startup/settings/window_settings.h"

namespace zv {

ClockSettings clockSettings;
WarningSettings warningSettings;
WindowSettings windowSettings;
MinimalSettings minimalSettings;
ProgramSettings programSettings;
PaletteSettings paletteSettings;
PaletteListSettings paletteListSettings;
FolderSettings folderSettings;
GridSettings gridSettings;
LabelSettings labelSettings;
BarSettings barSettings;
KeySettings keySettings;
SearchSettings searchSettings;
DisplaySettings displaySettings;
DarkSettings darkSettings;
PlayingSettings playingSettings;
MarkSettings markSettings;
MeterSettings meterSettings;
AutomixSettings automixSettings;
DuckSettings duckSettings;
VolumeSettings volumeSettings;
DeviceSettings deviceSettings;
EditorSettings editorSettings;
LiveSettings liveSettings;
AnnouncerSettings announcerSettings;
MidiSettings midiSettings;

namespace {

constexpr SettingKey kKeys[] = {
#define ZV_BYTE(name, standard, ...) \
    {#name, SettingType::byte, &ZV_GROUP.name, standard, SettingRules() __VA_ARGS__},
#define ZV_WORD(name, standard, ...) \
    {#name, SettingType::word, &ZV_GROUP.name, standard, SettingRules() __VA_ARGS__},
#define ZV_WHOLE(name, standard, ...) \
    {#name, SettingType::whole, &ZV_GROUP.name, standard, SettingRules() __VA_ARGS__},
#define ZV_COLOUR(name, standard, ...) \
    {#name, SettingType::colour, &ZV_GROUP.name, standard, SettingRules() __VA_ARGS__},
#define ZV_TEXT(name, standard, ...) \
    {#name, SettingType::text, &ZV_GROUP.name, standard, SettingRules() __VA_ARGS__},
#include "startup/settings_list.inc"
};

}  // namespace

std::span<const SettingKey> SettingKeys() { return kKeys; }

const SettingKey* FindSetting(std::string_view key) {
    const auto found = std::find_if(std::begin(kKeys), std::end(kKeys),
                                    [&](const SettingKey& one) { return SameText(one.key, key); });
    return found == std::end(kKeys) ? nullptr : found;
}

std::string SettingText(const SettingKey& key) {
    if (const auto* text = std::get_if<std::string*>(&key.field)) return **text;
    return NumberText(*std::get<std::int32_t*>(key.field));
}

std::string SettingDefault(const SettingKey& key) {
    if (const auto* text = std::get_if<const char*>(&key.standard)) return *text;
    return NumberText(std::get<std::int32_t>(key.standard));
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
    if (const auto* field = std::get_if<std::string*>(&key.field)) {
        **field = text;
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
    *std::get<std::int32_t*>(key.field) = number;
    return result;
}

}  // namespace zv
