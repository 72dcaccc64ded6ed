#include "platform/paths.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <system_error>
#include <unordered_map>

namespace zv {
namespace {

namespace fs = std::filesystem;

std::string theProgramFolder;
std::string theShippedFolder;

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool hasDrive(std::string_view path) {
    return path.size() >= 3 && isLetter(path[0]) && path[1] == ':' && (path[2] == '\\' || path[2] == '/');
}

bool isUnc(std::string_view path) { return path.size() >= 2 && path[0] == '\\' && path[1] == '\\'; }

std::string withoutTrailingSeparator(std::string folder) {
    while (folder.size() > 1 && (folder.back() == '/' || folder.back() == '\\')) folder.pop_back();
    return folder;
}

#ifndef _WIN32

/// ASCII and the Latin letters of two bytes in lower case: what names on a case-blind disk differ in.
std::string folded(std::string_view name) {
    std::string out(name);
    for (std::size_t i = 0; i < out.size(); ++i) {
        const auto c = static_cast<unsigned char>(out[i]);
        if (c >= 'A' && c <= 'Z') {
            out[i] = static_cast<char>(c + 32);
        } else if (c == 0xC3 && i + 1 < out.size()) {
            const auto next = static_cast<unsigned char>(out[i + 1]);
            if (next >= 0x80 && next <= 0x9E && next != 0x97) out[i + 1] = static_cast<char>(next + 0x20);
            ++i;
        }
    }
    return out;
}

/// Names of a folder by their folded form, kept as long as the folder has not changed: a palette of missing
/// files asks for 96 names of one folder in a row.
class FolderNames {
  public:
    /// The name in `folder` that differs from `wanted` in case only; empty when there is none.
    std::string find(const fs::path& folder, std::string_view wanted) {
        std::error_code error;
        const fs::file_time_type changed = fs::last_write_time(folder, error);
        if (error) return {};
        const auto nameIn = [&](const Listing& listing) {
            const auto found = listing.names.find(folded(wanted));
            return found == listing.names.end() ? std::string() : found->second;
        };
        {
            const std::lock_guard lock(mutex_);
            const auto known = folders_.find(folder.native());
            if (known != folders_.end() && known->second.changed == changed && known->second.settled)
                return nameIn(known->second);
        }
        // Read the folder without the lock: a disk that does not answer must not block lookups in other folders.
        Listing listing;
        for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
            std::string name = it->path().filename().native();
            listing.names.emplace(folded(name), std::move(name));
        }
        listing.changed = changed;
        listing.settled = fs::file_time_type::clock::now() - changed > std::chrono::milliseconds(50);
        const std::string name = nameIn(listing);
        const std::lock_guard lock(mutex_);
        if (folders_.size() > kMostFolders) folders_.clear();
        folders_[folder.native()] = std::move(listing);
        return name;
    }

  private:
    static constexpr std::size_t kMostFolders = 32;
    struct Listing {
        fs::file_time_type changed{};
        bool settled = false;  ///< its last change is older than the clock's grain
        std::unordered_map<std::string, std::string> names;
    };
    std::mutex mutex_;
    std::map<std::string, Listing> folders_;
};

FolderNames& folderNames() {
    static FolderNames names;
    return names;
}

bool isThere(const fs::path& path) {
    std::error_code error;
    return fs::exists(path, error);
}

/// `path` with each element replaced by the one that is really there; elements that are not there stay.
fs::path caseBlind(const fs::path& path) {
    fs::path out;
    bool there = true;
    for (const fs::path& element : path) {
        const fs::path next = out / element;
        if (there && !isThere(next)) {
            const std::string real = folderNames().find(out.empty() ? fs::path(".") : out, element.native());
            if (!real.empty()) {
                out /= real;
                continue;
            }
            there = false;
        }
        out = next;
    }
    return out;
}

#endif

/// Separators in front do not count: "\Fonts\x.ttf".
fs::path belowProgramFolder(std::string_view path) {
    const fs::path below = pathFromUtf8(path.substr(std::min(path.find_first_not_of("\\/"), path.size())));
    return theProgramFolder.empty() ? below : pathFromUtf8(theProgramFolder) / below;
}

}  // namespace

bool isAbsolutePath(std::string_view path) { return hasDrive(path) || isUnc(path) || path.starts_with('/'); }

std::filesystem::path pathFromUtf8(std::string_view text) {
#ifdef _WIN32
    return fs::path(std::u8string(text.begin(), text.end()));
#else
    return fs::path(text);
#endif
}

std::string utf8FromPath(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

char separatorOf(std::string_view path) { return path.starts_with('/') ? '/' : '\\'; }

std::filesystem::path nativePath(std::string_view path) {
    if (path.empty()) return {};
#ifdef _WIN32
    return isAbsolutePath(path) ? pathFromUtf8(path) : belowProgramFolder(path);
#else
    if (hasDrive(path) || isUnc(path)) return pathFromUtf8(path);  // another system's: names nothing here
    // A system path may hold a backslash in a name of its own.
    if (path.starts_with('/') && isThere(pathFromUtf8(path))) return pathFromUtf8(path);
    std::string text(path);
    std::replace(text.begin(), text.end(), '\\', '/');
    const fs::path native = path.starts_with('/') ? pathFromUtf8(text) : belowProgramFolder(text);
    return isThere(native) ? native : caseBlind(native);
#endif
}

const std::string& programFolder() { return theProgramFolder; }
void setProgramFolder(std::string folder) { theProgramFolder = withoutTrailingSeparator(std::move(folder)); }
const std::string& shippedFolder() { return theShippedFolder; }
void setShippedFolder(std::string folder) { theShippedFolder = withoutTrailingSeparator(std::move(folder)); }

}  // namespace zv
