#include "flash/control/Confinement.h"

#include "flash/control/FileBroker.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/landlock.h>
#include <sched.h>
#include <seccomp.h>
#include <span>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace flash::control
{

namespace
{

Restraint held(std::string name) { return {std::move(name), true, {}}; }
Restraint missing(std::string name) { return {std::move(name), false, std::strerror(errno)}; }
Restraint outcome(std::string name, bool done)
{
    return done ? held(std::move(name)) : missing(std::move(name));
}

bool limit(__rlimit_resource resource, rlim_t value)
{
    // An earlier, lower limit of the user's stays.
    rlimit now{};
    if (getrlimit(resource, &now) != 0) return false;
    if (now.rlim_max < value) value = now.rlim_max;
    const rlimit wanted{value, value};
    return setrlimit(resource, &wanted) == 0;
}

// ---- files ------------------------------------------------------------------------------------------------

// Named here, because the system's header may be older than the running kernel.
constexpr std::uint64_t kReadAccess = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr std::uint64_t kWriteAccess = LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                                       LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_DIR |
                                       LANDLOCK_ACCESS_FS_MAKE_REG;
constexpr std::uint64_t kRestOfAccess = LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_MAKE_CHAR |
                                        LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO |
                                        LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;
constexpr std::uint64_t kTruncate = 1ULL << 14U; // from the third version on

bool allowBelow(int ruleset, const std::filesystem::path& path, std::uint64_t access)
{
    const int descriptor = open(path.c_str(), O_PATH | O_CLOEXEC);
    if (descriptor < 0) return true; // what does not exist needs no leave
    struct stat found = {};
    fstat(descriptor, &found);
    // Rights over folders mean nothing for a file, and the system refuses them there.
    if (!S_ISDIR(found.st_mode))
        access &= LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE | kTruncate;
    landlock_path_beneath_attr rule{};
    rule.allowed_access = access;
    rule.parent_fd = descriptor;
    const bool done = syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0) == 0;
    close(descriptor);
    return done;
}

Restraint confineFiles(const ReachableFiles& files)
{
    const std::string name = "files (landlock)";
    const auto version = syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1) return missing(name);
    std::uint64_t write = kWriteAccess;
    if (version >= 3) write |= kTruncate;
    landlock_ruleset_attr attributes{};
    attributes.handled_access_fs = kReadAccess | write | kRestOfAccess;
    const auto ruleset =
        static_cast<int>(syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0));
    if (ruleset < 0) return missing(name);
    bool done = true;
    for (const auto& path : files.read) done = allowBelow(ruleset, path, kReadAccess) && done;
    for (const auto& path : files.write) done = allowBelow(ruleset, path, kReadAccess | write) && done;
    done = done && syscall(SYS_landlock_restrict_self, ruleset, 0) == 0;
    const int error = errno;
    close(ruleset);
    errno = error;
    return outcome(name, done);
}

// ---- system calls -----------------------------------------------------------------------------------------

// What memory, files that are open or may be opened, threads and the clock need. Everything else fails with
// EPERM: sockets, programs, other processes, devices.
constexpr std::array kAllowedCalls = {
    "read",
    "write",
    "readv",
    "writev",
    "pread64",
    "pwrite64",
    "close",
    "close_range",
    "fstat",
    "lseek",
    "mmap",
    "munmap",
    "mprotect",
    "mremap",
    "madvise",
    "brk",
    "futex",
    "rt_sigaction",
    "rt_sigprocmask",
    "rt_sigreturn",
    "sigaltstack",
    "poll",
    "ppoll",
    "select",
    "pselect6",
    "epoll_create1",
    "epoll_ctl",
    "epoll_wait",
    "epoll_pwait",
    "eventfd2",
    "pipe2",
    "sendmsg",
    "recvmsg",
    "clock_gettime",
    "clock_getres",
    "clock_nanosleep",
    "nanosleep",
    "gettimeofday",
    "time",
    "getpid",
    "gettid",
    "getuid",
    "geteuid",
    "getgid",
    "getegid",
    "getppid",
    "getdents64",
    "getcwd",
    "fsync",
    "fdatasync",
    "ftruncate",
    "fchmod",
    "fcntl",
    "dup",
    "getrandom",
    "exit",
    "exit_group",
    "set_robust_list",
    "rseq",
    "sched_yield",
    "sched_getaffinity",
    "restart_syscall",
    "uname",
    "sysinfo",
    "getrlimit",
    "membarrier",
    "fstatfs",
    "umask",
    "flock",
    "fallocate",
    "fadvise64",
    "getrusage",
    "times",
    "set_tid_address",
};

// Those that name a file. What they may be used for is confined by other means or asked elsewhere.
constexpr std::array kLookingCalls = {
    "newfstatat", "stat", "lstat", "access", "faccessat", "faccessat2", "readlink", "readlinkat",
};
constexpr std::array kOpeningCalls = {
    "openat", "open", "unlink", "unlinkat", "rename", "renameat", "renameat2", "mkdir", "mkdirat", "rmdir",
};
// Those for which a broker has no answer; who needs them makes do without.
constexpr std::array kOtherNamingCalls = {"statx", "statfs", "chmod", "fchmodat"};

/// What becomes of a call that names a file.
enum class Files : std::uint8_t {
    Allowed, ///< the system confines them by itself
    Asked,   ///< the process traps them, see askBroker()
    Refused,
};

Restraint confineCalls(Files files)
{
    const std::string name = "system calls (seccomp)";
    const scmp_filter_ctx filter = seccomp_init(SCMP_ACT_ERRNO(EPERM));
    if (filter == nullptr) return missing(name);
    int failure = 0;
    const auto allow = [&](int call, std::initializer_list<scmp_arg_cmp> only) {
        const int result = seccomp_rule_add_array(filter, SCMP_ACT_ALLOW, call,
                                                  static_cast<unsigned>(only.size()), only.begin());
        if (result != 0 && result != -EEXIST) failure = -result;
    };
    const auto decide = [&](std::uint32_t action, std::span<const char* const> calls) {
        for (const char* call : calls) {
            const int number = seccomp_syscall_resolve_name(call);
            // Some names do not exist on every processor.
            if (number == __NR_SCMP_ERROR || number < 0) continue;
            const int result = seccomp_rule_add_array(filter, action, number, 0, nullptr);
            if (result != 0 && result != -EEXIST) failure = -result;
        }
    };
    decide(SCMP_ACT_ALLOW, kAllowedCalls);
    switch (files) {
    case Files::Allowed:
        decide(SCMP_ACT_ALLOW, kLookingCalls);
        decide(SCMP_ACT_ALLOW, kOpeningCalls);
        decide(SCMP_ACT_ALLOW, kOtherNamingCalls);
        break;
    case Files::Asked:
        decide(SCMP_ACT_TRAP, kLookingCalls);
        decide(SCMP_ACT_TRAP, kOpeningCalls);
        // The library then does with the older call.
        seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(statx), 0);
        break;
    case Files::Refused: decide(SCMP_ACT_ALLOW, kLookingCalls); break;
    }
    // Threads, no processes. The newer call hides its flags, so that the library is made to use the older.
    constexpr auto kThread = static_cast<scmp_datum_t>(CLONE_THREAD | CLONE_VM);
    allow(SCMP_SYS(clone), {SCMP_A0(SCMP_CMP_MASKED_EQ, kThread, kThread)});
    seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0);
    // Signals to itself: how the program aborts.
    allow(SCMP_SYS(tgkill), {SCMP_A0(SCMP_CMP_EQ, static_cast<scmp_datum_t>(getpid()), 0)});
    // Its own limits may be read.
    allow(SCMP_SYS(prlimit64), {SCMP_A0(SCMP_CMP_EQ, 0, 0), SCMP_A2(SCMP_CMP_EQ, 0, 0)});
    // Threads have names; what else this call does is out of reach.
    allow(SCMP_SYS(prctl), {SCMP_A0(SCMP_CMP_EQ, PR_SET_NAME, 0)});
    // How many bytes wait in a descriptor.
    allow(SCMP_SYS(ioctl), {SCMP_A1(SCMP_CMP_EQ, FIONREAD, 0)});
    if (failure == 0) failure = -seccomp_load(filter);
    seccomp_release(filter);
    errno = failure;
    return outcome(name, failure == 0);
}

} // namespace

std::vector<Restraint> confineEarly(std::uint64_t memoryBytes, Means means)
{
    std::vector<Restraint> restraints;
    restraints.push_back(outcome("no new privileges", prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0));
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (means.limits) {
        constexpr rlim_t kDescriptors = 128, kFileBytes = 64 << 20;
        restraints.push_back(outcome("memory and file limits", limit(RLIMIT_CORE, 0) &&
                                                                   limit(RLIMIT_DATA, memoryBytes) &&
                                                                   limit(RLIMIT_NOFILE, kDescriptors) &&
                                                                   limit(RLIMIT_FSIZE, kFileBytes)));
    }
    if (means.nameSpaces) {
        restraints.push_back(outcome("user and network name spaces",
                                     unshare(CLONE_NEWUSER | CLONE_NEWNET | CLONE_NEWIPC) == 0));
    }
    // Last, because the name spaces want to read what this hides: nobody else of the same user looks in.
    if (means.limits) prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
    return restraints;
}

std::vector<Restraint> confine(const ReachableFiles& files, int broker, Means means)
{
    std::vector<Restraint> restraints;
    errno = ENOSYS;
    restraints.push_back(means.files ? confineFiles(files) : missing("files (landlock)"));
    if (!means.calls) return restraints;
    if (restraints.back().holds) {
        restraints.push_back(confineCalls(Files::Allowed));
    } else {
        const bool isAsked = broker >= 0 && askBroker(broker);
        if (isAsked) restraints.back().reason += "; the player opens them";
        restraints.push_back(confineCalls(isAsked ? Files::Asked : Files::Refused));
    }
    return restraints;
}

Means usualMeans()
{
    Means means = kUsualMeans;
    const char* without = std::getenv("ZORVEX_WITHOUT_LANDLOCK");
    if (without != nullptr && std::string_view(without) == "1") means.files = false;
    return means;
}

bool confinesFiles(Means means)
{
    return means.files &&
           syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) >= 1;
}

std::vector<std::filesystem::path> systemFiles()
{
    std::vector<std::filesystem::path> files = {
        "/usr/share/fonts",
        "/usr/local/share/fonts",
        "/etc/fonts",
        "/usr/share/fontconfig",
        "/var/cache/fontconfig",
        "/usr/lib",
        "/usr/local/lib",
        "/lib",
        "/lib64",
        "/etc/ld.so.cache",
        "/usr/share/zoneinfo",
        "/etc/localtime",
        "/usr/share/locale",
        "/dev/urandom",
        "/dev/null",
        "/proc/self",
        "/sys/devices/system/cpu",
    };
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') {
        for (const char* below :
             {".fonts", ".fonts.conf", ".local/share/fonts", ".config/fontconfig", ".cache/fontconfig"})
            files.emplace_back(std::filesystem::path(home) / below);
    }
    return files;
}

} // namespace flash::control
