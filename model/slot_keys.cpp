#include "model/slot_keys.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "model/colours.h"
#include "startup/helpers.h"

namespace zv {
namespace {

template <class Whole>
Whole held(double value) {
    constexpr double least = std::numeric_limits<Whole>::min();
    constexpr double most = std::numeric_limits<Whole>::max();
    return static_cast<Whole>(std::clamp(std::nearbyint(value), least, most));
}

}  // namespace

SlotKeys::SlotKeys(cImpulse& store, std::string section, int suffix) : suffix_(std::to_string(suffix)) {
    if (!section.empty()) value_ = store.Values(std::move(section));
}

SlotKeys::SlotKeys(const std::vector<cImpulse::Line>& lines, int suffix)
    : value_([&lines](const std::string& key) {
          const auto line = std::find_if(lines.begin(), lines.end(),
                                         [&](const cImpulse::Line& one) { return SameText(one.first, key); });
          return line == lines.end() ? std::string() : line->second;
      }),
      suffix_(std::to_string(suffix)) {}

std::string SlotKeys::text(const char* stem, const char* otherwise) const {
    if (!value_) return otherwise;
    std::string value = value_(stem + suffix_);
    return value.empty() ? otherwise : value;
}

double SlotKeys::number(const char* stem, double otherwise) const {
    const std::string value = text(stem);
    if (value.empty()) return otherwise;
    const double number = Val(value);
    return std::isfinite(number) ? number : otherwise;
}

std::int32_t SlotKeys::whole(const char* stem, std::int32_t otherwise) const {
    return held<std::int32_t>(number(stem, otherwise));
}

std::uint8_t SlotKeys::byte(const char* stem, std::uint8_t otherwise) const {
    return held<std::uint8_t>(number(stem, otherwise));
}

void ReadSlot(JingleRecord& jingle, const SlotKeys& keys) {
    jingle.Volm = keys.whole("Volm_", 100);
    jingle.AutoDuckKey = keys.text("AutoDuck_");
    jingle.AutoDuck = keys.byte("AutoDuck_");
    jingle.NoAutomix = keys.byte("NoAutomix_");
    jingle.NoTrigDuck = keys.byte("NoTrigDuck_");
    jingle.Loop = keys.byte("Loop_");
    jingle.Seq = keys.byte("Seq_");
    jingle.LoopIn = keys.number("LoopIn_");
    jingle.LoopOut = keys.number("LoopOut_");
    jingle.FadeOut = keys.whole("FadeOut_");
    jingle.LogFadeOut = keys.byte("LogFadeOut_");
    jingle.LoopFadeOut = keys.byte("LoopFadeOut_");
    jingle.BTNCol = keys.text("BTNCol_", kFaceColourText);
    const std::uint8_t mode = keys.byte("PlayMod_");
    jingle.PlayMod =
        mode <= static_cast<std::uint8_t>(PlayMode::noStop) ? static_cast<PlayMode>(mode) : PlayMode::global;
    jingle.CueStart = keys.number("CueStart_");
    jingle.StopPos = keys.number("StopPos_");
    jingle.FXV = keys.text("FXV_");
    jingle.KeepsStored = false;
    DeriveFields(jingle);
}

void DeriveFields(JingleRecord& jingle) {
    jingle.FadeAttrib = FadeAttribOf(jingle);
    jingle.BackRGB = ButtonColour(jingle.BTNCol);
    jingle.ForeRGB = GetForeColor(jingle.BackRGB, "jingle");
}

}  // namespace zv
