#include "flash/control/Channel.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace flash::control
{

namespace
{

constexpr std::size_t kReadAtOnce = 1U << 16U, kReadsAtOnce = 16;
constexpr std::size_t kMaxReceivedDescriptors = 8;

} // namespace

Channel::Channel(int descriptor, Descriptors descriptors)
    : m_descriptor(descriptor), m_descriptors(descriptors),
      m_read(std::make_unique_for_overwrite<std::uint8_t[]>(kReadAtOnce))
{
    fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

Channel::~Channel()
{
    close(m_descriptor);
    for (const Outgoing& outgoing : m_outgoing) {
        if (outgoing.attached >= 0) close(outgoing.attached);
    }
    for (const int received : m_received) close(received);
}

base::Result<std::pair<int, int>> Channel::pair()
{
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return base::fail(base::ErrorCode::IoFailure, std::string("socketpair: ") + std::strerror(errno));
    return std::pair(ends[0], ends[1]);
}

bool Channel::put(std::vector<std::uint8_t> bytes, int attached)
{
    if (m_ended) return false;
    m_waitingBytes += bytes.size();
    constexpr std::size_t kJoinedBytes = 1U << 14U;
    const bool joins = attached < 0 && !m_outgoing.empty() && m_outgoing.back().bytes.size() < kJoinedBytes;
    if (joins)
        m_outgoing.back().bytes.insert(m_outgoing.back().bytes.end(), bytes.begin(), bytes.end());
    else
        m_outgoing.push_back({std::move(bytes), 0, attached < 0 ? -1 : fcntl(attached, F_DUPFD_CLOEXEC, 0)});
    return true;
}

bool Channel::flush()
{
    while (!m_outgoing.empty() && !m_ended) {
        Outgoing& first = m_outgoing.front();
        iovec part{first.bytes.data() + first.sent, first.bytes.size() - first.sent};
        msghdr message{};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
        if (first.attached >= 0) {
            message.msg_control = control.data();
            message.msg_controllen = control.size();
            cmsghdr* rights = CMSG_FIRSTHDR(&message);
            rights->cmsg_level = SOL_SOCKET;
            rights->cmsg_type = SCM_RIGHTS;
            rights->cmsg_len = CMSG_LEN(sizeof(int));
            std::memcpy(CMSG_DATA(rights), &first.attached, sizeof(int));
        }
        const ssize_t sent = sendmsg(m_descriptor, &message, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0) {
            if (errno == EINTR) continue;
            if (errno == EAGAIN || errno == EWOULDBLOCK) return true;
            m_ended = true;
            return false;
        }
        if (first.attached >= 0) close(std::exchange(first.attached, -1));
        first.sent += static_cast<std::size_t>(sent);
        m_waitingBytes -= static_cast<std::size_t>(sent);
        if (first.sent == first.bytes.size()) m_outgoing.pop_front();
    }
    return !m_ended;
}

void Channel::shutDown()
{
    m_ended = true;
    shutdown(m_descriptor, SHUT_RDWR);
}

bool Channel::receive()
{
    for (std::size_t i = 0; i < kReadsAtOnce && !m_ended; ++i) {
        iovec part{m_read.get(), kReadAtOnce};
        msghdr message{};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int) * kMaxReceivedDescriptors)> control{};
        if (m_descriptors == Descriptors::Taken) {
            message.msg_control = control.data();
            message.msg_controllen = control.size();
        }
        const ssize_t got = recvmsg(m_descriptor, &message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
        if (got < 0) {
            if (errno == EINTR) continue;
            if (errno == EAGAIN || errno == EWOULDBLOCK) break;
        }
        if (got <= 0) {
            m_ended = true;
            break;
        }
        m_incoming.insert(m_incoming.end(), m_read.get(), m_read.get() + got);
        for (cmsghdr* part_ = CMSG_FIRSTHDR(&message); part_ != nullptr;
             part_ = CMSG_NXTHDR(&message, part_)) {
            if (part_->cmsg_level != SOL_SOCKET || part_->cmsg_type != SCM_RIGHTS) continue;
            const std::size_t count = (part_->cmsg_len - CMSG_LEN(0)) / sizeof(int);
            for (std::size_t n = 0; n < count; ++n) {
                int received = -1;
                std::memcpy(&received, CMSG_DATA(part_) + n * sizeof(int), sizeof(int));
                if (m_received.size() < kMaxReceivedDescriptors)
                    m_received.push_back(received);
                else
                    close(received);
            }
        }
        if (static_cast<std::size_t>(got) < kReadAtOnce) break;
    }
    if (!split()) m_ended = true;
    return !m_ended;
}

bool Channel::split()
{
    std::size_t at = 0;
    bool whole = true;
    while (m_incoming.size() - at >= kHeaderBytes) {
        const auto header = decodeHeader(base::Bytes(m_incoming).subspan(at, kHeaderBytes));
        if (!header) {
            whole = false;
            break;
        }
        if (m_incoming.size() - at - kHeaderBytes < header->bodyBytes) break;
        const auto body = m_incoming.begin() + static_cast<std::ptrdiff_t>(at + kHeaderBytes);
        m_bodies.push_back({header->kind, {body, body + header->bodyBytes}});
        at += kHeaderBytes + header->bodyBytes;
    }
    m_incoming.erase(m_incoming.begin(), m_incoming.begin() + static_cast<std::ptrdiff_t>(at));
    return whole;
}

std::optional<Channel::Body> Channel::next()
{
    if (m_bodies.empty()) return std::nullopt;
    Body body = std::move(m_bodies.front());
    m_bodies.pop_front();
    return body;
}

int Channel::takeDescriptor()
{
    if (m_received.empty()) return -1;
    const int first = m_received.front();
    m_received.pop_front();
    return first;
}

} // namespace flash::control
