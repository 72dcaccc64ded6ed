#include "startup/folder_walk.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

#include "platform/paths.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

struct Walk {
    const std::function<bool(const std::string&)>& file;
    const std::function<void(const std::string&, double)>& entered;

    /// `from` and `to`: the folder's part of the whole tree.
    bool folder(const fs::path& folder, double from, double to) const {
        if (entered) entered(utf8FromPath(folder), from);
        std::error_code error;
        std::vector<fs::path> entries;
        for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
            entries.push_back(it->path());
        }
        std::sort(entries.begin(), entries.end());
        const double share = (to - from) / std::max<double>(1, static_cast<double>(entries.size()));
        for (const fs::path& entry : entries) {
            if (fs::is_directory(fs::symlink_status(entry, error))) {
                if (!this->folder(entry, from, from + share)) return false;
            } else if (fs::is_regular_file(entry, error) && !file(utf8FromPath(entry))) {
                return false;
            }
            from += share;
        }
        return true;
    }
};

}  // namespace

bool WalkFiles(std::string_view folder, const std::function<bool(const std::string& path)>& file,
               const std::function<void(const std::string& folder, double share)>& entered) {
    std::error_code error;
    const fs::path native = nativePath(folder);
    if (folder.empty() || !fs::is_directory(native, error)) return true;
    return Walk{file, entered}.folder(native, 0, 1);
}

}  // namespace zv
