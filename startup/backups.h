/// The rotating backups of the palettes and hot jingles and the copies taken before an update. [control]
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zv {

inline constexpr int kBackups = 5;

/// Sum of the characters of all lines, line ends left out, as signed 16-bit values in a 32-bit sum: blind to
/// the order of lines and to their ends.
std::int32_t FileChecksum(std::string_view contents);

/// Unless STEM_backup1.ini has the checksum of STEM.ini: moves each backup up by one (5 goes) and copies
/// STEM.ini to STEM_backup1.ini. `stem` is "palette", "HotJingles" or "playlist". At no moment is the newest
/// state in no file.
void RotatingBackup(const std::string& stem);

/// Copies STEM.ini to STEM_pre<version>.ini if that is not there yet.
void PreUpdateCopy(const std::string& stem);

/// The version of this program: its three numbers, "1.0.0", and "100" as in file names.
std::string ProgramVersion();
std::string ProgramVersionDigits();

}  // namespace zv
