/// The keys of one slot in a section of a palette file. [control]
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "model/jingle.h"
#include "startup/impulse.h"

namespace zv {

/// Reads by the stem of a key ("Volm_"). A key that is missing, empty or no number gives what the caller
/// names; numbers that do not fit are held to what does.
class SlotKeys {
  public:
    /// `suffix` is the number in the file. An empty section has no keys.
    SlotKeys(cImpulse& store, std::string section, int suffix);
    /// From the lines of a section that is in no store.
    SlotKeys(const std::vector<cImpulse::Line>& lines, int suffix);

    std::string text(const char* stem, const char* otherwise = "") const;
    double number(const char* stem, double otherwise = 0) const;
    std::int32_t whole(const char* stem, std::int32_t otherwise = 0) const;
    std::uint8_t byte(const char* stem, std::uint8_t otherwise = 0) const;

  private:
    std::function<std::string(const std::string& key)> value_;
    std::string suffix_;
};

/// Fills the persisted fields but for Path, and what DeriveFields does.
void ReadSlot(JingleRecord& jingle, const SlotKeys& keys);
/// What follows from the persisted fields alone: FadeAttrib, BackRGB, ForeRGB.
void DeriveFields(JingleRecord& jingle);

}  // namespace zv
