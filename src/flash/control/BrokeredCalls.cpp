#include "flash/control/FileBroker.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

// The end that asks. All of it runs in a signal's handler, which the system calls instead of the system call:
// nothing here may take memory, lock, or name a file.
namespace flash::control
{

namespace
{

#if defined(__x86_64__) || defined(__aarch64__)

// A handler is given nothing but the signal. Written once, before any call is trapped.
int g_socket = -1;
std::array<char, PATH_MAX> g_folder{};
std::atomic_flag g_asking = ATOMIC_FLAG_INIT;

/// The arguments of the call that was not made, and the place for its result.
struct Call {
    std::array<long, 6> arguments{};
    long long* result = nullptr;
};

Call callOf(ucontext_t& context)
{
#ifdef __x86_64__
    auto& registers = context.uc_mcontext.gregs;
    return {{registers[REG_RDI], registers[REG_RSI], registers[REG_RDX], registers[REG_R10],
             registers[REG_R8], registers[REG_R9]},
            &registers[REG_RAX]};
#else
    auto& registers = context.uc_mcontext.regs;
    Call call;
    for (std::size_t i = 0; i < call.arguments.size(); ++i)
        call.arguments[i] = static_cast<long>(registers[i]);
    call.result = reinterpret_cast<long long*>(&registers[0]);
    return call;
#endif
}

/// A request as it is put together.
struct Question {
    BrokerRequest request;
    std::array<char, 2 * PATH_MAX> paths;
    std::size_t used = 0;

    /// @param path may be relative to the folder that the process began in
    /// @returns 0 or a negative errno
    int add(long folder, long path, std::uint16_t& bytes)
    {
        const char* text = reinterpret_cast<const char*>(path);
        if (text == nullptr) return -EFAULT;
        if (*text == 0) return -ENOENT;
        const std::size_t begin = used;
        if (*text != '/') {
            // Of another folder we know but a number.
            if (static_cast<int>(folder) != AT_FDCWD) return -EACCES;
            for (const char* c = g_folder.data(); *c != 0 && used < paths.size(); ++c) paths[used++] = *c;
            if (used < paths.size()) paths[used++] = '/';
        }
        for (; *text != 0; ++text) {
            if (used - begin >= PATH_MAX || used >= paths.size()) return -ENAMETOOLONG;
            paths[used++] = *text;
        }
        bytes = static_cast<std::uint16_t>(used - begin);
        return 0;
    }
};

struct Reply {
    long result = -EPERM;
    int descriptor = -1;
};

/// @param text takes what is answered to ReadLink
Reply ask(Question& question, char* text, std::size_t textBytes)
{
    while (g_asking.test_and_set(std::memory_order_acquire)) sched_yield();
    Reply reply;
    std::array<iovec, 2> out{
        {{&question.request, sizeof question.request}, {question.paths.data(), question.used}}};
    msghdr message{};
    message.msg_iov = out.data();
    message.msg_iovlen = out.size();
    ssize_t done = 0;
    do {
        done = sendmsg(g_socket, &message, MSG_NOSIGNAL);
    } while (done < 0 && errno == EINTR);
    if (done > 0) {
        BrokerAnswer answer;
        std::array<iovec, 2> in{{{&answer, sizeof answer}, {text, textBytes}}};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
        message = {};
        message.msg_iov = in.data();
        message.msg_iovlen = in.size();
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        do {
            done = recvmsg(g_socket, &message, MSG_CMSG_CLOEXEC);
        } while (done < 0 && errno == EINTR);
        if (done >= static_cast<ssize_t>(sizeof answer)) {
            reply.result = answer.result;
            const cmsghdr* part = CMSG_FIRSTHDR(&message);
            if (part != nullptr && part->cmsg_type == SCM_RIGHTS)
                std::memcpy(&reply.descriptor, CMSG_DATA(part), sizeof reply.descriptor);
        }
    }
    g_asking.clear(std::memory_order_release);
    return reply;
}

using What = BrokerRequest::What;

long openFile(long folder, long path, long flags, long mode)
{
    Question question;
    question.request = {What::Open, static_cast<std::uint32_t>(flags), static_cast<std::uint32_t>(mode), 0,
                        0};
    if (const int wrong = question.add(folder, path, question.request.pathBytes); wrong != 0) return wrong;
    const Reply reply = ask(question, nullptr, 0);
    if (reply.result != 0) return reply.result;
    if (reply.descriptor < 0) return -EMFILE;
    // It has come closed on exec, as nearly all want it; there is nothing to be executed anyway.
    return reply.descriptor;
}

long look(long folder, long path, long into, long flags)
{
    const char* text = reinterpret_cast<const char*>(path);
    if ((flags & AT_EMPTY_PATH) != 0 && (text == nullptr || *text == 0))
        return syscall(SYS_fstat, folder, into) == 0 ? 0 : -errno;
    Question question;
    question.request = {What::Look, static_cast<std::uint32_t>(flags & AT_SYMLINK_NOFOLLOW), 0, 0, 0};
    if (const int wrong = question.add(folder, path, question.request.pathBytes); wrong != 0) return wrong;
    const Reply reply = ask(question, nullptr, 0);
    if (reply.result != 0) return reply.result;
    if (reply.descriptor < 0) return -EMFILE;
    const long result = syscall(SYS_fstat, reply.descriptor, into) == 0 ? 0 : -errno;
    close(reply.descriptor);
    return result;
}

long readLink(long folder, long path, long into, long bytes)
{
    Question question;
    question.request = {What::ReadLink, 0, 0, 0, 0};
    if (const int wrong = question.add(folder, path, question.request.pathBytes); wrong != 0) return wrong;
    const auto room = static_cast<std::size_t>(std::max(bytes, 0L));
    const Reply reply = ask(question, reinterpret_cast<char*>(into), room);
    return std::min(reply.result, static_cast<long>(room));
}

long onePath(What what, long folder, long path, long flags, long mode)
{
    Question question;
    question.request = {what, static_cast<std::uint32_t>(flags), static_cast<std::uint32_t>(mode), 0, 0};
    if (const int wrong = question.add(folder, path, question.request.pathBytes); wrong != 0) return wrong;
    return ask(question, nullptr, 0).result;
}

long moveFile(long folder, long path, long folder2, long path2)
{
    Question question;
    question.request = {What::Rename, 0, 0, 0, 0};
    if (const int wrong = question.add(folder, path, question.request.pathBytes); wrong != 0) return wrong;
    if (const int wrong = question.add(folder2, path2, question.request.secondBytes); wrong != 0)
        return wrong;
    return ask(question, nullptr, 0).result;
}

long answer(int call, const std::array<long, 6>& a)
{
    switch (call) {
    case SYS_openat: return openFile(a[0], a[1], a[2], a[3]);
    case SYS_newfstatat: return look(a[0], a[1], a[2], a[3]);
    case SYS_faccessat: return onePath(What::Access, a[0], a[1], 0, a[2]);
#ifdef SYS_faccessat2
    case SYS_faccessat2: return onePath(What::Access, a[0], a[1], 0, a[2]);
#endif
    case SYS_readlinkat: return readLink(a[0], a[1], a[2], a[3]);
    case SYS_unlinkat: return onePath(What::Unlink, a[0], a[1], a[2], 0);
    case SYS_mkdirat: return onePath(What::MakeFolder, a[0], a[1], 0, a[2]);
    case SYS_renameat: return moveFile(a[0], a[1], a[2], a[3]);
    case SYS_renameat2: return a[4] == 0 ? moveFile(a[0], a[1], a[2], a[3]) : -EINVAL;
#ifdef __x86_64__ // calls that later processors never had
    case SYS_open: return openFile(AT_FDCWD, a[0], a[1], a[2]);
    case SYS_stat: return look(AT_FDCWD, a[0], a[1], 0);
    case SYS_lstat: return look(AT_FDCWD, a[0], a[1], AT_SYMLINK_NOFOLLOW);
    case SYS_access: return onePath(What::Access, AT_FDCWD, a[0], 0, a[1]);
    case SYS_readlink: return readLink(AT_FDCWD, a[0], a[1], a[2]);
    case SYS_unlink: return onePath(What::Unlink, AT_FDCWD, a[0], 0, 0);
    case SYS_rmdir: return onePath(What::Unlink, AT_FDCWD, a[0], AT_REMOVEDIR, 0);
    case SYS_mkdir: return onePath(What::MakeFolder, AT_FDCWD, a[0], 0, a[1]);
    case SYS_rename: return moveFile(AT_FDCWD, a[0], AT_FDCWD, a[1]);
#endif
    default: return -EPERM;
    }
}

void onTrappedCall(int, siginfo_t* info, void* context)
{
    constexpr int kByFilter = 1; // SYS_SECCOMP
    if (info->si_code != kByFilter) return;
    const int before = errno;
    const Call call = callOf(*static_cast<ucontext_t*>(context));
    *call.result = answer(info->si_syscall, call.arguments);
    errno = before;
}

#endif

} // namespace

#if defined(__x86_64__) || defined(__aarch64__)
bool askBroker(int socket)
{
    g_socket = socket;
    if (getcwd(g_folder.data(), g_folder.size()) == nullptr) g_folder[0] = 0;
    struct sigaction action = {};
    action.sa_sigaction = &onTrappedCall;
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    return sigaction(SIGSYS, &action, nullptr) == 0;
}
#else
bool askBroker(int) { return false; }
#endif

} // namespace flash::control
