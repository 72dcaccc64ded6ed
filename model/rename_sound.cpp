#include "model/rename_sound.h"

#include <filesystem>
#include <functional>
#include <system_error>

#include "platform/paths.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/stores.h"

namespace zv {
namespace {

bool renameIn(cImpulse& store, const std::function<bool(const std::string&)>& meant, const std::string& to) {
    return store.ReplaceValues("Path_", meant, to);
}

}  // namespace

bool IsFileOf(const std::string& stored, const std::string& full) {
    const std::string own = GetFullPath(stored);
    // Letters may differ in case where they lead to the same file.
    return SameText(own, full) && nativePath(own) == nativePath(full);
}

std::string RenameSound(const std::string& from, const std::string& to) {
    const std::string full = GetFullPath(from);
    const std::string fullTo = GetFullPath(to);
    const auto native = nativePath(full);
    const auto nativeTo = nativePath(GetPath(fullTo)) / pathFromUtf8(GetFileName(fullTo));
    const auto meansOld = [&](const std::string& stored) { return IsFileOf(stored, full); };
    const bool there = FileExists(full);
    if (!renameIn(PaletteStore, meansOld, to)) return Ln("mSaveFailed");
    const auto meansNew = [&](const std::string& stored) { return stored == to; };
    std::error_code error;
    std::string why;
    if (!renameIn(HotStore, meansOld, to)) {
        why = Ln("mSaveFailed");
    } else if (there) {
        std::filesystem::rename(native, nativeTo, error);
        if (error) why = error.message();
    }
    if (!why.empty()) {
        renameIn(PaletteStore, meansNew, from);
        renameIn(HotStore, meansNew, from);
    }
    return why;
}

}  // namespace zv
