#include "platform/paths.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace zv {
namespace {

std::wstring variable(const std::wstring& name) {
    std::wstring value(GetEnvironmentVariableW(name.c_str(), nullptr, 0), L'\0');  // counts the final zero
    value.resize(GetEnvironmentVariableW(name.c_str(), value.data(), static_cast<DWORD>(value.size())));
    return value;
}

}  // namespace

std::string environmentVariable(const char* name) {
    return utf8FromPath(variable(pathFromUtf8(name).native()));
}

std::filesystem::path userDataFolder() { return variable(L"APPDATA"); }

}  // namespace zv
