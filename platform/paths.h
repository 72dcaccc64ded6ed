/// The two kinds of path. Files keep paths as the user's files have them: relative ones with backslashes on
/// every system, absolute ones the system's own. Everything that opens a file goes through nativePath().
/// Standard C++ only; no errors, a path that cannot be mapped comes back as it is. [any]
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/files.h"

namespace zv {

/// True for "X:\...", "\\server\...", and "/...".
bool isAbsolutePath(std::string_view path);
/// What the system opens: backslashes become the system's separator where it has another; a file that differs in
/// case only is found, element by element. UTF-8 in.
std::filesystem::path nativePath(std::string_view path);
/// UTF-8 text as a path of the system and back; nothing is mapped or looked for.
std::filesystem::path pathFromUtf8(std::string_view text);
std::string utf8FromPath(const std::filesystem::path& path);
/// The path with a trailing separator of its own kind ("\" for a relative path or one with a drive).
char separatorOf(std::string_view path);

/// The folder that holds all of the program's files, without a trailing separator, and the folder of the
/// executable and what ships beside it. Set once by the entry.
const std::string& programFolder();
void setProgramFolder(std::string folder);
const std::string& shippedFolder();
void setShippedFolder(std::string folder);

/// The folder in which the system wants programs to keep their user's data.
std::filesystem::path userDataFolder();
/// A variable of the environment as UTF-8; empty when it is not set.
std::string environmentVariable(const char* name);

}  // namespace zv
