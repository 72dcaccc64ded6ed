/// The keys of zv.ini as a table: what a control, a reader or a writer needs to know of a setting. Made from
/// settings_list.inc. [control]
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "startup/setting_rules.h"

namespace zv {

using SettingField = std::variant<std::int32_t*, std::string*>;  ///< in the record of its group
using SettingStandard = std::variant<std::int32_t, const char*>;

struct SettingKey {
    const char* key;
    SettingType type;
    SettingField field;
    SettingStandard standard;
    SettingRules rules;
};

/// In the order of loading.
std::span<const SettingKey> SettingKeys();
/// Nothing for a key that is no setting. Keys compare without regard to case.
const SettingKey* FindSetting(std::string_view key);

/// The field's value as text, and its default. The default of a key with a way of its own may differ in the
/// file (settings_file.cpp).
std::string SettingText(const SettingKey& key);
std::string SettingDefault(const SettingKey& key);

/// Conversion of a text to a number: rounded to a whole one. It must be a number and fit the type.
enum class Conversion : std::uint8_t { good, mismatch, overflow };
Conversion ToWhole(const std::string& text, SettingType type, std::int32_t& value);
/// Puts a text into the setting's field, a number held to the setting's limits. On a text that does not
/// convert the field stays as it was. Ways of their own (Special) are not gone.
Conversion SetSetting(const SettingKey& key, const std::string& text);

}  // namespace zv
