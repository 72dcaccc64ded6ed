// Of startup/helpers.h: paths and files of both kinds.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "platform/paths.h"
#include "startup/folder_walk.h"
#include "startup/helpers.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

/// Where the last separator stands: of a path that starts with "/" only slashes count, since its names may
/// hold backslashes; elsewhere both count.
std::size_t lastSeparator(std::string_view path) {
    return path.starts_with('/') ? path.rfind('/') : path.find_last_of("\\/");
}

bool isSeparatorAt(std::string_view path, std::size_t i) { return path[i] == '/' || path[i] == '\\'; }

/// Paths that name nothing on this system: with a drive or a server where there are none.
bool isForeign(std::string_view path) {
#ifdef _WIN32
    return path.starts_with('/') && path.size() > 1 && path[1] != '/';
#else
    return isAbsolutePath(path) && !path.starts_with('/');
#endif
}

/// True when nothing is left in the folder.
bool clearEmpty(const fs::path& folder) {
    std::error_code error;
    bool empty = true;
    std::vector<fs::path> entries;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        entries.push_back(it->path());
    }
    if (error) return false;
    for (const fs::path& entry : entries) {
        const bool isFolder = fs::is_directory(fs::symlink_status(entry, error));
        if (!isFolder || !clearEmpty(entry) || !fs::remove(entry, error)) empty = false;
    }
    return empty;
}

}  // namespace

std::string RPP(std::string_view path) {
    std::string out(path);
    const bool there =
        !out.empty() && (out.back() == '/' || (out.back() == '\\' && separatorOf(path) == '\\'));
    if (!there) out += separatorOf(path);
    return out;
}

std::string GetPath(std::string_view path) {
    const std::size_t at = lastSeparator(path);
    return at == std::string_view::npos ? std::string() : std::string(path.substr(0, at + 1));
}

std::string GetFileName(std::string_view path) {
    const std::size_t at = lastSeparator(path);
    return std::string(at == std::string_view::npos ? path : path.substr(at + 1));
}

std::string NameOnly(std::string_view path) { return GetFileName(path); }

std::string GetFileExt(std::string_view name) {
    const std::string file = GetFileName(name);
    const std::size_t point = file.rfind('.');
    return point == std::string::npos ? std::string() : file.substr(point + 1);
}

std::string GetExtension(std::string_view name) { return GetFileExt(name); }

std::string GetFullPath(std::string_view path) {
    if (isAbsolutePath(path)) return std::string(path);
    const std::size_t start = path.find_first_not_of("\\/");
    std::string rest(start == std::string_view::npos ? std::string_view() : path.substr(start));
    const char separator = separatorOf(programFolder());
    std::replace_if(
        rest.begin(), rest.end(), [](char c) { return c == '\\' || c == '/'; }, separator);
    return RPP(programFolder()) + rest;
}

std::string GetRelPath(std::string_view path) {
    const std::string& folder = programFolder();
    if (folder.empty() || path.size() <= folder.size() || !isSeparatorAt(path, folder.size()) ||
        !(path.starts_with('/') ? path.starts_with(folder)
                                : SameText(path.substr(0, folder.size()), folder))) {
        return std::string(path);
    }
    std::string rest(path.substr(folder.size() + 1));
    if (path.starts_with('/')) {
        // A name that holds a backslash of its own would come back as two.
        if (rest.find('\\') != std::string::npos && FileExists(path)) return std::string(path);
        std::replace(rest.begin(), rest.end(), '/', '\\');
    }
    return rest;
}

bool FileExists(std::string_view path) {
    if (path.empty()) return false;
    std::error_code error;
    const fs::path native = nativePath(path);
    return fs::is_regular_file(native, error) && std::ifstream(native).good();
}

bool FolderExists(std::string_view path) {
    std::error_code error;
    return !path.empty() && fs::is_directory(nativePath(path), error);
}

bool MkDirs(std::string_view path) {
    if (path.empty() || isForeign(path)) return false;
    std::error_code error;
    const fs::path native = nativePath(path);
    fs::create_directories(native, error);
    return fs::is_directory(native, error);
}

void ListFolder(std::string_view path, bool first, FolderList& list) {
    if (first) list = {};
    WalkFiles(path, [&](const std::string& file) {
        ++list.count;
        list.text += file + "\r\n";
        return true;
    });
}

void ClearEmptySubFolder(std::string_view path) {
    if (FolderExists(path)) clearEmpty(nativePath(path));
}

std::int64_t FileLength(std::string_view path) {
    if (path.empty()) return -1;
    std::error_code error;
    const std::uintmax_t size = fs::file_size(nativePath(path), error);
    return error ? -1 : static_cast<std::int64_t>(size);
}

}  // namespace zv
