#pragma once

#include "flash/control/Confinement.h"

#include <array>
#include <atomic>
#include <climits>
#include <cstdint>
#include <memory>
#include <span>
#include <thread>
#include <utility>

// Files for a process that may open none by name, where the system cannot confine it to some of them: it asks
// the process that started it, which applies the rules and hands descriptors over.
namespace flash::control
{

/// What is asked for, in one packet: this, then the first path, then the second, without an end mark.
struct BrokerRequest {
    enum class What : std::uint32_t { Open, Look, Access, ReadLink, Unlink, Rename, MakeFolder };
    What what = What::Open;
    std::uint32_t flags = 0; ///< of the system call; for Unlink, AT_REMOVEDIR; for Look, AT_SYMLINK_NOFOLLOW
    std::uint32_t mode = 0;
    std::uint16_t pathBytes = 0, secondBytes = 0;
};
/// The answer: this, and for ReadLink the text behind it. Open and Look bring a descriptor along.
struct BrokerAnswer {
    std::int32_t result = 0; ///< 0, the length of a text, or a negative errno
};
inline constexpr std::size_t kMaxRequestBytes = sizeof(BrokerRequest) + 2 * PATH_MAX;

/// The end that opens. Has a thread of its own, because who asks waits: neither a busy window nor a slow disk
/// holds the other up.
class FileBroker
{
public:
    /// Two connected ends, closed on exec. @returns -1 for both when there are none to be had
    static std::pair<int, int> pair();

    /// @param socket one end; taken over
    explicit FileBroker(int socket);
    ~FileBroker();
    FileBroker(const FileBroker&) = delete;
    FileBroker& operator=(const FileBroker&) = delete;

    /// Answers from now on; once. What is asked before waits.
    /// @param client the process that asks, whose own entries in /proc it may read
    void serve(const ReachableFiles& files, pid_t client);

private:
    class Rules;
    /// Until the other end goes, or asks for what nobody asks for.
    void answerAll();

    int m_socket;
    std::unique_ptr<Rules> m_rules;
    std::thread m_thread;
};

/// The end that asks. From now on system calls of this process that name a file, and that a filter traps, are
/// answered by the broker; a relative name counts from the present folder.
/// @param socket stays open for the life of the process
/// @returns false where this processor's calls are not known
bool askBroker(int socket);

} // namespace flash::control
