// Preloaded into a program: while the file $SLOW_SWITCH exists, reads of files below $SLOW_FOLDER hang, for 12 s at
// most each.
#include <dlfcn.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

namespace {

constexpr auto kHang = std::chrono::seconds(12);
constexpr auto kLook = std::chrono::milliseconds(20);

bool slow(int fd) {
    static const char* const folder = std::getenv("SLOW_FOLDER");
    if (folder == nullptr) return false;
    char path[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(fd);
    const ssize_t length = ::readlink(link.c_str(), path, sizeof path);
    return length > 0 && std::string_view(path, static_cast<std::size_t>(length)).starts_with(folder);
}

void hang(int fd) {
    static const char* const lever = std::getenv("SLOW_SWITCH");
    if (lever == nullptr || ::access(lever, F_OK) != 0 || !slow(fd)) return;
    const auto until = std::chrono::steady_clock::now() + kHang;
    while (::access(lever, F_OK) == 0 && std::chrono::steady_clock::now() < until)
        std::this_thread::sleep_for(kLook);
}

}  // namespace

extern "C" ssize_t read(int fd, void* to, std::size_t bytes) {
    static const auto next =
        reinterpret_cast<ssize_t (*)(int, void*, std::size_t)>(::dlsym(RTLD_NEXT, "read"));
    hang(fd);
    return next(fd, to, bytes);
}
