// Preloaded into a program (LD_PRELOAD), makes one of its calls of the system fail.
//
// The environment variable TRESK_FAULT says which:
//
//     KIND ERROR N     the N-th call of this kind, counted from 1 on, fails with that error,
//                      or moves fewer bytes than it was asked to (short), or does that and has
//                      the call behind it fail (torn)
//     KIND ERROR N+    so do all behind it
//     count FILE       none fails; when the program ends, the number of calls of each kind is
//                      written to FILE, a line "KIND NUMBER" each
//
// The calls of main() and of what runs behind it are counted, not those of the start before it,
// nor what is written to standard error: that is how the program tells of the fault.

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

enum Kind {
    Alloc,
    Read,
    Write,
    Open,
    Close,
    Stat,
    Seek,
    Link,
    Rename,
    Unlink,
    MakeDir,
    ReadDir,
    Mode,
    Entropy,
    KindCount
};

constexpr std::array<const char*, KindCount> kindNames = {
    "alloc", "read",   "write",  "open",    "close",   "stat", "seek",
    "link",  "rename", "unlink", "makedir", "readdir", "mode", "entropy"};

struct Error {
    const char* name;
    int number;
};

constexpr int shortCall = -1;
constexpr int tornCall = -2;

constexpr std::array<Error, 9> errors = {{{"EACCES", EACCES},
                                          {"EINTR", EINTR},
                                          {"EIO", EIO},
                                          {"EMFILE", EMFILE},
                                          {"ENOMEM", ENOMEM},
                                          {"ENOSPC", ENOSPC},
                                          {"EPERM", EPERM},
                                          {"short", shortCall},
                                          {"torn", tornCall}}};

std::array<std::atomic<unsigned long>, KindCount> counts = {};
std::atomic<bool> counting = {false};
int faultyKind = KindCount;
int faultyError = 0;
unsigned long faultyCall = 0;
bool faultPersists = false;
char reportPath[4096];

[[noreturn]] void refuse(const char* direction)
{
    std::fprintf(stderr, "TRESK_FAULT: '%s' is not understood\n", direction);
    _exit(99);
}

void readDirection(const char* direction)
{
    char kind[16];
    char error[16];
    char persists = 0;
    if (std::sscanf(direction, "count %4095s", reportPath) == 1)
        return;
    if (std::sscanf(direction, "%15s %15s %lu%c", kind, error, &faultyCall, &persists) < 3)
        refuse(direction);
    faultPersists = persists == '+';
    for (int i = 0; i < KindCount; ++i) {
        if (std::strcmp(kind, kindNames[static_cast<size_t>(i)]) == 0)
            faultyKind = i;
    }
    for (const Error& known : errors) {
        if (std::strcmp(error, known.name) == 0)
            faultyError = known.number;
    }
    if (faultyKind == KindCount || faultyError == 0)
        refuse(direction);
}

/// Counts a call. Returns 0, or how it is to fail.
int fault(Kind kind)
{
    if (!counting)
        return 0;
    const unsigned long number = ++counts[kind];
    if (kind == faultyKind && faultyError == tornCall && number >= faultyCall) {
        if (number == faultyCall)
            return shortCall;
        return number == faultyCall + 1 || faultPersists ? EIO : 0;
    }
    if (kind != faultyKind || number < faultyCall || (number > faultyCall && !faultPersists))
        return 0;
    return faultyError;
}

/// Counts a call. True if it is to fail; the error is set then.
bool fails(Kind kind)
{
    const int error = fault(kind);
    if (error > 0)
        errno = error;
    return error > 0;
}

/// The same for one that moves bytes, whose number is lowered where it is to be short.
bool failsToMove(Kind kind, size_t& size)
{
    const int error = fault(kind);
    if (error == shortCall && size > 1)
        size /= 2;
    if (error > 0)
        errno = error;
    return error > 0;
}

/// Whether @p caller is in QObject::connect(), where Qt takes memory for a connection without a
/// look at whether there is any, and crashes without.
bool isInConnect(const void* caller)
{
    const char function[] = "_ZN14QObjectPrivate13addConnection";
    Dl_info place = {};
    return dladdr(caller, &place) != 0 && place.dli_sname
        && std::strncmp(place.dli_sname, function, sizeof function - 1) == 0;
}

/// The same, without looking up each of the few places that allocate again: most of the time
/// would go into that.
bool isUnchecked(const void* caller)
{
    static std::array<std::atomic<const void*>, 4096> checked = {};
    std::atomic<const void*>& place =
        checked[reinterpret_cast<std::uintptr_t>(caller) % checked.size()];
    if (place == caller)
        return false;
    const bool unchecked = isInConnect(caller);
    if (!unchecked)
        place = caller;
    return unchecked;
}

/// Counts an allocation, unless its caller is one that cannot be helped. True if it is to fail.
bool failsToAllocate(const void* caller)
{
    return counting && !isUnchecked(caller) && fails(Alloc);
}

/// The function of that name which this library stands in front of.
template <typename Function>
Function* next(Function* /*like*/, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

#define NEXT(name) static const auto real = next(&(name), #name)

using Main = int(int, char**, char**);
Main* programMain = nullptr;

int countedMain(int argc, char** argv, char** environment)
{
    const char* const direction = std::getenv("TRESK_FAULT");
    if (direction)
        readDirection(direction);
    counting = direction != nullptr;
    return programMain(argc, argv, environment);
}

__attribute__((destructor)) void report()
{
    counting = false;
    if (reportPath[0] == '\0')
        return;
    std::FILE* const file = std::fopen(reportPath, "w");
    if (!file)
        return;
    for (size_t i = 0; i < KindCount; ++i)
        std::fprintf(file, "%s %lu\n", kindNames[i], counts[i].load());
    std::fclose(file);
}

} // namespace

extern "C" {

int __libc_start_main(Main* function, int argc, char** argv, void (*init)(), void (*fini)(),
                      void (*linkerFini)(), void* stackEnd)
{
    programMain = function;
    NEXT(__libc_start_main);
    return real(countedMain, argc, argv, init, fini, linkerFini, stackEnd);
}

// ---- memory

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

void* malloc(size_t size) noexcept
{
    return failsToAllocate(__builtin_return_address(0)) ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) noexcept
{
    return failsToAllocate(__builtin_return_address(0)) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, size_t size) noexcept
{
    return failsToAllocate(__builtin_return_address(0)) ? nullptr : __libc_realloc(memory, size);
}

void* aligned_alloc(size_t alignment, size_t size) noexcept
{
    return failsToAllocate(__builtin_return_address(0)) ? nullptr
                                                        : __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, size_t alignment, size_t size) noexcept
{
    *memory = aligned_alloc(alignment, size);
    return *memory ? 0 : ENOMEM;
}

// ---- bytes

ssize_t read(int fd, void* buffer, size_t size)
{
    NEXT(read);
    return failsToMove(Read, size) ? -1 : real(fd, buffer, size);
}

ssize_t pread(int fd, void* buffer, size_t size, off_t offset)
{
    NEXT(pread);
    return failsToMove(Read, size) ? -1 : real(fd, buffer, size, offset);
}

ssize_t pread64(int fd, void* buffer, size_t size, off64_t offset)
{
    NEXT(pread64);
    return failsToMove(Read, size) ? -1 : real(fd, buffer, size, offset);
}

ssize_t write(int fd, const void* buffer, size_t size)
{
    NEXT(write);
    return fd != STDERR_FILENO && failsToMove(Write, size) ? -1 : real(fd, buffer, size);
}

off_t lseek(int fd, off_t offset, int whence) noexcept
{
    NEXT(lseek);
    return fails(Seek) ? -1 : real(fd, offset, whence);
}

off64_t lseek64(int fd, off64_t offset, int whence) noexcept
{
    NEXT(lseek64);
    return fails(Seek) ? -1 : real(fd, offset, whence);
}

// ---- files

// The mode stands there only for those that make a file; to hand on what is in its place does
// no harm otherwise.
#define MODE_BEHIND(last)                                                                          \
    va_list list;                                                                                  \
    va_start(list, last);                                                                          \
    const mode_t mode = va_arg(list, mode_t);                                                      \
    va_end(list)

int open(const char* path, int flags, ...)
{
    NEXT(open);
    MODE_BEHIND(flags);
    return fails(Open) ? -1 : real(path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    NEXT(open64);
    MODE_BEHIND(flags);
    return fails(Open) ? -1 : real(path, flags, mode);
}

int openat(int directory, const char* path, int flags, ...)
{
    NEXT(openat);
    MODE_BEHIND(flags);
    return fails(Open) ? -1 : real(directory, path, flags, mode);
}

int openat64(int directory, const char* path, int flags, ...)
{
    NEXT(openat64);
    MODE_BEHIND(flags);
    return fails(Open) ? -1 : real(directory, path, flags, mode);
}

// Whatever it says, the descriptor is gone.
int close(int fd)
{
    NEXT(close);
    const bool failing = fails(Close);
    const int error = errno;
    const int result = real(fd);
    if (!failing)
        return result;
    errno = error;
    return -1;
}

int stat(const char* path, struct stat* status) noexcept
{
    NEXT(stat);
    return fails(Stat) ? -1 : real(path, status);
}

int stat64(const char* path, struct stat64* status) noexcept
{
    NEXT(stat64);
    return fails(Stat) ? -1 : real(path, status);
}

int lstat64(const char* path, struct stat64* status) noexcept
{
    NEXT(lstat64);
    return fails(Stat) ? -1 : real(path, status);
}

int fstat(int fd, struct stat* status) noexcept
{
    NEXT(fstat);
    return fails(Stat) ? -1 : real(fd, status);
}

int fstat64(int fd, struct stat64* status) noexcept
{
    NEXT(fstat64);
    return fails(Stat) ? -1 : real(fd, status);
}

int fstatat(int directory, const char* path, struct stat* status, int flags) noexcept
{
    NEXT(fstatat);
    return fails(Stat) ? -1 : real(directory, path, status, flags);
}

int fstatat64(int directory, const char* path, struct stat64* status, int flags) noexcept
{
    NEXT(fstatat64);
    return fails(Stat) ? -1 : real(directory, path, status, flags);
}

int statx(int directory, const char* path, int flags, unsigned mask, struct statx* status) noexcept
{
    NEXT(statx);
    return fails(Stat) ? -1 : real(directory, path, flags, mask, status);
}

int link(const char* from, const char* to) noexcept
{
    NEXT(link);
    return fails(Link) ? -1 : real(from, to);
}

int linkat(int fromDirectory, const char* from, int toDirectory, const char* to, int flags) noexcept
{
    NEXT(linkat);
    return fails(Link) ? -1 : real(fromDirectory, from, toDirectory, to, flags);
}

int rename(const char* from, const char* to) noexcept
{
    NEXT(rename);
    return fails(Rename) ? -1 : real(from, to);
}

int renameat(int fromDirectory, const char* from, int toDirectory, const char* to) noexcept
{
    NEXT(renameat);
    return fails(Rename) ? -1 : real(fromDirectory, from, toDirectory, to);
}

int renameat2(int fromDirectory, const char* from, int toDirectory, const char* to,
              unsigned flags) noexcept
{
    NEXT(renameat2);
    return fails(Rename) ? -1 : real(fromDirectory, from, toDirectory, to, flags);
}

int unlink(const char* path) noexcept
{
    NEXT(unlink);
    return fails(Unlink) ? -1 : real(path);
}

int unlinkat(int directory, const char* path, int flags) noexcept
{
    NEXT(unlinkat);
    return fails(Unlink) ? -1 : real(directory, path, flags);
}

int mkdir(const char* path, mode_t mode) noexcept
{
    NEXT(mkdir);
    return fails(MakeDir) ? -1 : real(path, mode);
}

DIR* opendir(const char* path)
{
    NEXT(opendir);
    return fails(ReadDir) ? nullptr : real(path);
}

dirent64* readdir64(DIR* directory)
{
    NEXT(readdir64);
    return fails(ReadDir) ? nullptr : real(directory);
}

int fchmod(int fd, mode_t mode) noexcept
{
    NEXT(fchmod);
    return fails(Mode) ? -1 : real(fd, mode);
}

int getentropy(void* buffer, size_t size)
{
    NEXT(getentropy);
    return fails(Entropy) ? -1 : real(buffer, size);
}

} // extern "C"
