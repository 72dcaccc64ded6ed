#include "startup/backups.h"

#include <filesystem>
#include <system_error>

#include "platform/paths.h"
#include "startup/helpers.h"
#include "startup/stores.h"
#include "startup/text_codec.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

constexpr int kMajor = 1;
constexpr int kMinor = 0;
constexpr int kRevision = 0;

fs::path backupFile(const std::string& stem, int k) {
    return nativePath(InProgramFolder(stem + "_backup" + std::to_string(k) + ".ini"));
}

/// Through a temporary file, so that a copy is whole or not there.
bool copyFile(const fs::path& from, const fs::path& to) {
    std::string contents;
    return readFile(from, contents) && replaceFile(to, contents);
}

}  // namespace

std::string ProgramVersion() {
    return std::to_string(kMajor) + "." + std::to_string(kMinor) + "." + std::to_string(kRevision);
}

std::string ProgramVersionDigits() { return ReturnNumbers(ProgramVersion()); }

std::int32_t FileChecksum(std::string_view contents) {
    const std::string text = textOf(contents);
    std::uint32_t sum = 0;  // wraps as the signed sum would
    for (std::size_t i = 0; i < text.size();) {
        // Characters as signed 16-bit values; those beyond come as the two halves that 16 bits take.
        const auto c = static_cast<unsigned char>(text[i]);
        std::size_t length = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
        std::uint32_t point = length == 1 ? c : c & (0xFFU >> (length + 1));
        for (std::size_t k = 1; k < length && i + k < text.size(); ++k) {
            point = (point << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3FU);
        }
        i += length;
        if (point == '\r' || point == '\n') continue;
        const auto add = [&](std::uint32_t unit) {
            sum += static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<std::int16_t>(unit)));
        };
        if (point > 0xFFFF) {
            add(0xD800 + ((point - 0x10000) >> 10));
            add(0xDC00 + ((point - 0x10000) & 0x3FF));
        } else {
            add(point);
        }
    }
    return static_cast<std::int32_t>(sum);
}

void RotatingBackup(const std::string& stem) {
    const fs::path original = nativePath(InProgramFolder(stem + ".ini"));
    std::string contents;
    std::string newest;
    if (!readFile(original, contents)) return;
    if (readFile(backupFile(stem, 1), newest) && FileChecksum(newest) == FileChecksum(contents)) return;
    // The new copy first: a disk without room for it costs no older one. A rename replaces what is there in
    // one step, so whatever happens in between, no state is in no file.
    const fs::path fresh = nativePath(InProgramFolder(stem + "_backup.ini.zvtmp"));
    if (!replaceFile(fresh, contents)) return;
    std::error_code error;
    for (int k = kBackups; k > 1; --k) {
        if (fs::exists(backupFile(stem, k - 1), error))
            fs::rename(backupFile(stem, k - 1), backupFile(stem, k), error);
    }
    fs::rename(fresh, backupFile(stem, 1), error);
}

void PreUpdateCopy(const std::string& stem) {
    const fs::path copy = nativePath(InProgramFolder(stem + "_pre" + ProgramVersionDigits() + ".ini"));
    std::error_code error;
    if (fs::exists(copy, error)) return;
    copyFile(nativePath(InProgramFolder(stem + ".ini")), copy);
}

}  // namespace zv
