/// A guard for device callbacks, preloaded into any program that calls rt_guard_enter and rt_guard_leave
/// around them:
///
///     LD_PRELOAD=librt_guard.so RT_GUARD_FAIL=1 program
///
/// Between the two calls, on the thread that made them, it counts memory that is taken or given back, locks
/// that may wait, waits, sleeps, and calls on files and sockets. At the end of the program it prints the
/// counts. RT_GUARD_FAIL=1 makes the exit status 99 when there are any, or when no callback was ever watched;
/// RT_GUARD_TRACE=1 prints where the first of them happened.
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <linux/futex.h>
#include <poll.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/epoll.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>

extern "C" {
void* __libc_malloc(std::size_t size);
void __libc_free(void* memory);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

enum class Fault { Allocation, Release, Lock, Wait, Sleep, File, Count };

constexpr std::array<const char*, static_cast<std::size_t>(Fault::Count)> faultNames{
    "allocations", "releases", "locks", "waits", "sleeps", "file and socket calls"};
constexpr int tracedFaults = 20;
constexpr int failStatus = 99;

// Not thread_local with a constructor: the first access must not allocate.
__attribute__((tls_model("initial-exec"))) thread_local int depth = 0;
std::atomic<std::uint64_t> watched{0};
std::array<std::atomic<std::uint64_t>, static_cast<std::size_t>(Fault::Count)> faults{};
std::atomic<int> traced{0};

bool wants(const char* variable) {
    const char* value = getenv(variable);
    return value && value[0] == '1';
}

void note(Fault fault) {
    if (depth == 0) return;
    faults[static_cast<std::size_t>(fault)].fetch_add(1, std::memory_order_relaxed);
    if (!wants("RT_GUARD_TRACE") || traced.fetch_add(1) >= tracedFaults) return;
    const int before = depth;
    depth = 0;
    std::fprintf(stderr, "rt_guard: one of the %s:\n", faultNames[static_cast<std::size_t>(fault)]);
    std::array<void*, 32> frames{};
    backtrace_symbols_fd(frames.data(), backtrace(frames.data(), static_cast<int>(frames.size())),
                         STDERR_FILENO);
    depth = before;
}

/// The function of this name that stands behind the guard's own.
template <class Function>
Function* next(std::atomic<void*>& kept, const char* name) {
    void* found = kept.load(std::memory_order_relaxed);
    if (!found) {
        const int before = depth;
        depth = 0;
        found = dlsym(RTLD_NEXT, name);
        depth = before;
        kept.store(found, std::memory_order_relaxed);
    }
    return reinterpret_cast<Function*>(found);
}

template <class Function, class... Arguments>
auto pass(std::atomic<void*>& kept, const char* name, Fault fault, Arguments... arguments) {
    note(fault);
    return next<Function>(kept, name)(arguments...);
}

struct Report {
    ~Report() {
        depth = 0;
        std::uint64_t all = 0;
        for (const auto& count : faults) all += count;
        if (watched == 0 && !wants("RT_GUARD_FAIL")) return;
        std::fprintf(stderr, "rt_guard: %llu callbacks watched",
                     static_cast<unsigned long long>(watched.load()));
        for (std::size_t i = 0; i < faults.size(); ++i)
            if (faults[i] > 0)
                std::fprintf(stderr, ", %llu %s", static_cast<unsigned long long>(faults[i].load()),
                             faultNames[i]);
        std::fprintf(stderr, all == 0 ? ", nothing found\n" : "\n");
        if (wants("RT_GUARD_FAIL") && (all > 0 || watched == 0)) _exit(failStatus);
    }
} report;

}  // namespace

extern "C" {

void rt_guard_enter() {
    ++depth;
    watched.fetch_add(1, std::memory_order_relaxed);
}
void rt_guard_leave() {
    if (depth > 0) --depth;
}
/// All faults so far, of all threads.
std::uint64_t rt_guard_faults() {
    std::uint64_t all = 0;
    for (const auto& count : faults) all += count;
    return all;
}
/// Forgets what was counted; for tests that plant faults.
void rt_guard_forget() {
    for (auto& count : faults) count = 0;
}

void* malloc(std::size_t size) {
    note(Fault::Allocation);
    return __libc_malloc(size);
}
void free(void* memory) {
    if (memory) note(Fault::Release);
    __libc_free(memory);
}
void* calloc(std::size_t count, std::size_t size) {
    note(Fault::Allocation);
    return __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) {
    note(Fault::Allocation);
    return __libc_realloc(memory, size);
}
void* memalign(std::size_t alignment, std::size_t size) {
    note(Fault::Allocation);
    return __libc_memalign(alignment, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    note(Fault::Allocation);
    return __libc_memalign(alignment, size);
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    note(Fault::Allocation);
    *memory = __libc_memalign(alignment, size);
    return *memory ? 0 : ENOMEM;
}

int pthread_mutex_lock(pthread_mutex_t* mutex) {
    static std::atomic<void*> kept;
    return pass<decltype(pthread_mutex_lock)>(kept, "pthread_mutex_lock", Fault::Lock, mutex);
}
int pthread_rwlock_rdlock(pthread_rwlock_t* lock) {
    static std::atomic<void*> kept;
    return pass<decltype(pthread_rwlock_rdlock)>(kept, "pthread_rwlock_rdlock", Fault::Lock, lock);
}
int pthread_rwlock_wrlock(pthread_rwlock_t* lock) {
    static std::atomic<void*> kept;
    return pass<decltype(pthread_rwlock_wrlock)>(kept, "pthread_rwlock_wrlock", Fault::Lock, lock);
}
int pthread_spin_lock(pthread_spinlock_t* lock) {
    static std::atomic<void*> kept;
    return pass<decltype(pthread_spin_lock)>(kept, "pthread_spin_lock", Fault::Lock, lock);
}
int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
    static std::atomic<void*> kept;
    return pass<decltype(pthread_cond_wait)>(kept, "pthread_cond_wait", Fault::Wait, condition, mutex);
}
int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* until) {
    static std::atomic<void*> kept;
    return pass<decltype(pthread_cond_timedwait)>(kept, "pthread_cond_timedwait", Fault::Wait, condition,
                                                  mutex, until);
}
int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                           const timespec* until) {
    static std::atomic<void*> kept;
    return pass<decltype(pthread_cond_clockwait)>(kept, "pthread_cond_clockwait", Fault::Wait, condition,
                                                  mutex, clock, until);
}
int pthread_join(pthread_t thread, void** result) {
    static std::atomic<void*> kept;
    return pass<decltype(pthread_join)>(kept, "pthread_join", Fault::Wait, thread, result);
}
int sem_wait(sem_t* semaphore) {
    static std::atomic<void*> kept;
    return pass<decltype(sem_wait)>(kept, "sem_wait", Fault::Wait, semaphore);
}
int sem_timedwait(sem_t* semaphore, const timespec* until) {
    static std::atomic<void*> kept;
    return pass<decltype(sem_timedwait)>(kept, "sem_timedwait", Fault::Wait, semaphore, until);
}
int sem_clockwait(sem_t* semaphore, clockid_t clock, const timespec* until) {
    static std::atomic<void*> kept;
    return pass<decltype(sem_clockwait)>(kept, "sem_clockwait", Fault::Wait, semaphore, clock, until);
}
int poll(pollfd* wanted, nfds_t count, int milliseconds) {
    static std::atomic<void*> kept;
    return pass<decltype(poll)>(kept, "poll", Fault::Wait, wanted, count, milliseconds);
}
int ppoll(pollfd* wanted, nfds_t count, const timespec* time, const sigset_t* mask) {
    static std::atomic<void*> kept;
    return pass<decltype(ppoll)>(kept, "ppoll", Fault::Wait, wanted, count, time, mask);
}
int select(int count, fd_set* reading, fd_set* writing, fd_set* failing, timeval* time) {
    static std::atomic<void*> kept;
    return pass<decltype(select)>(kept, "select", Fault::Wait, count, reading, writing, failing, time);
}
int epoll_wait(int set, epoll_event* events, int most, int milliseconds) {
    static std::atomic<void*> kept;
    return pass<decltype(epoll_wait)>(kept, "epoll_wait", Fault::Wait, set, events, most, milliseconds);
}

/// A wait on an atomic ends here.
long syscall(long number, ...) {
    static std::atomic<void*> kept;
    std::array<long, 6> words{};
    va_list list;
    va_start(list, number);
    for (long& word : words) word = va_arg(list, long);
    va_end(list);
    const long operation = words[1] & FUTEX_CMD_MASK;
    if (number == SYS_futex && (operation == FUTEX_WAIT || operation == FUTEX_WAIT_BITSET)) note(Fault::Wait);
    return next<long(long, long, long, long, long, long, long)>(kept, "syscall")(
        number, words[0], words[1], words[2], words[3], words[4], words[5]);
}

int nanosleep(const timespec* time, timespec* left) {
    static std::atomic<void*> kept;
    return pass<decltype(nanosleep)>(kept, "nanosleep", Fault::Sleep, time, left);
}
int clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* left) {
    static std::atomic<void*> kept;
    return pass<decltype(clock_nanosleep)>(kept, "clock_nanosleep", Fault::Sleep, clock, flags, time, left);
}
int usleep(useconds_t microseconds) {
    static std::atomic<void*> kept;
    return pass<decltype(usleep)>(kept, "usleep", Fault::Sleep, microseconds);
}
unsigned sleep(unsigned seconds) {
    static std::atomic<void*> kept;
    return pass<decltype(sleep)>(kept, "sleep", Fault::Sleep, seconds);
}

int open(const char* path, int flags, ...) {
    static std::atomic<void*> kept;
    va_list list;
    va_start(list, flags);
    const auto mode = va_arg(list, unsigned);
    va_end(list);
    note(Fault::File);
    return next<int(const char*, int, unsigned)>(kept, "open")(path, flags, mode);
}
int open64(const char* path, int flags, ...) {
    static std::atomic<void*> kept;
    va_list list;
    va_start(list, flags);
    const auto mode = va_arg(list, unsigned);
    va_end(list);
    note(Fault::File);
    return next<int(const char*, int, unsigned)>(kept, "open64")(path, flags, mode);
}
FILE* fopen(const char* path, const char* mode) {
    static std::atomic<void*> kept;
    return pass<decltype(fopen)>(kept, "fopen", Fault::File, path, mode);
}
FILE* fopen64(const char* path, const char* mode) {
    static std::atomic<void*> kept;
    return pass<decltype(fopen)>(kept, "fopen64", Fault::File, path, mode);
}
ssize_t read(int file, void* bytes, std::size_t count) {
    static std::atomic<void*> kept;
    return pass<decltype(read)>(kept, "read", Fault::File, file, bytes, count);
}
ssize_t write(int file, const void* bytes, std::size_t count) {
    static std::atomic<void*> kept;
    return pass<decltype(write)>(kept, "write", Fault::File, file, bytes, count);
}
std::size_t fwrite(const void* bytes, std::size_t size, std::size_t count, FILE* file) {
    static std::atomic<void*> kept;
    return pass<decltype(fwrite)>(kept, "fwrite", Fault::File, bytes, size, count, file);
}
int close(int file) {
    static std::atomic<void*> kept;
    return pass<decltype(close)>(kept, "close", Fault::File, file);
}
ssize_t send(int socket, const void* bytes, std::size_t count, int flags) {
    static std::atomic<void*> kept;
    return pass<decltype(send)>(kept, "send", Fault::File, socket, bytes, count, flags);
}
ssize_t recv(int socket, void* bytes, std::size_t count, int flags) {
    static std::atomic<void*> kept;
    return pass<decltype(recv)>(kept, "recv", Fault::File, socket, bytes, count, flags);
}
}
