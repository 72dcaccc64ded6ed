/// The two kinds of path. Files keep paths as the user's files have them: relative ones with backslashes on
/// every system, absolute ones the system's own. Everything that opens a file goes through nativePath().
/// Standard C++ only; no errors, a path that cannot be mapped comes back as it is. [any]
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace zv {

/// True for "X:\...", "\\server\...", and "/...".
bool isAbsolutePath(std::string_view path);
/// What the system opens: backslashes become the system's separator where it has another; a file that differs in
/// case only is found, element by element. UTF-8 in.
std::filesystem::path nativePath(std::string_view path);
/// The path with a trailing separator of its own kind ("\" for a relative path or one with a drive).
char separatorOf(std::string_view path);

/// The folder that holds all of the program's files, without a trailing separator, and the folder of the
/// executable and what ships beside it. Set once by the entry.
const std::string& programFolder();
void setProgramFolder(std::string folder);
const std::string& shippedFolder();
void setShippedFolder(std::string folder);

enum class Flush { now, later };
/// Replaces `file` by `contents`: a temporary file beside it, flushed to disk, renamed over it; permissions and links
/// are kept. `Flush::later` leaves the flushing to the system, for logs: a power cut may lose the last lines. False
/// (and nothing changed) when it cannot.
bool replaceFile(const std::filesystem::path& file, std::string_view contents, Flush flush = Flush::now);
/// The whole file; false when it cannot be opened.
bool readFile(const std::filesystem::path& file, std::string& contents);

}  // namespace zv
