#pragma once

#include "flash/control/Messages.h"

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace flash::control
{

/// One end of a socket pair that carries messages, and descriptors beside them. Never blocks by itself.
class Channel
{
public:
    enum class Descriptors : std::uint8_t {
        Refused, ///< what the other end attaches is dropped by the system
        Taken,
    };
    /// Takes the descriptor over.
    Channel(int descriptor, Descriptors descriptors);
    ~Channel();
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    /// Two connected ends, closed on exec.
    static base::Result<std::pair<int, int>> pair();

    [[nodiscard]] int descriptor() const { return m_descriptor; }

    /// Queues a message and sends what goes through at once.
    /// @param attached a descriptor that goes along, or -1; borrowed until it is sent, so it is duplicated.
    /// @returns false when the connection has ended.
    template <class Message>
    bool send(const Message& message, int attached = -1)
    {
        return queue(message, attached) && flush();
    }
    /// As send(), and waits for the next flush(): what is said together goes together.
    template <class Message>
    bool queue(const Message& message, int attached = -1)
    {
        std::vector<std::uint8_t> bytes;
        encode(message, bytes);
        return put(std::move(bytes), attached);
    }
    /// Sends what goes through. @returns false when the connection has ended.
    bool flush();
    /// Nothing more is sent; the other end sees this one go.
    void shutDown();
    /// How much waits to be sent.
    [[nodiscard]] std::size_t waitingBytes() const { return m_waitingBytes; }

    struct Body {
        std::uint16_t kind = 0;
        std::vector<std::uint8_t> bytes;
    };
    /// Reads what has come, up to about a megabyte. @returns false when the connection has ended or what came
    /// is no message; bodies that came whole before that are in next() all the same.
    bool receive();
    std::optional<Body> next();
    [[nodiscard]] bool hasNext() const { return !m_bodies.empty(); }
    /// @returns the first descriptor that has come and was not asked for yet, owned by the caller; or -1.
    int takeDescriptor();

private:
    struct Outgoing {
        std::vector<std::uint8_t> bytes;
        std::size_t sent = 0;
        int attached = -1; // owned
    };
    bool put(std::vector<std::uint8_t> bytes, int attached);
    bool split();

    int m_descriptor;
    Descriptors m_descriptors;
    bool m_ended = false;
    std::deque<Outgoing> m_outgoing;
    std::size_t m_waitingBytes = 0;
    std::unique_ptr<std::uint8_t[]> m_read; // what one call gives, not yet looked at
    std::vector<std::uint8_t> m_incoming;   // the beginning of a message, or several
    std::deque<Body> m_bodies;
    std::deque<int> m_received; // owned
};

} // namespace flash::control
