#include "flash/control/Messages.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace flash::control
{

namespace
{

class Writer
{
public:
    explicit Writer(std::vector<std::uint8_t>& bytes) : m_bytes(bytes) {}

    template <class T>
    requires std::is_arithmetic_v<T>
    void put(T value)
    {
        const auto raw = std::bit_cast<std::array<std::uint8_t, sizeof(T)>>(value);
        m_bytes.insert(m_bytes.end(), raw.begin(), raw.end());
    }
    template <class Unit>
    void put(const std::basic_string<Unit>& text)
    {
        const std::size_t units = std::min(text.size(), kMaxTextBytes / sizeof(Unit));
        put(static_cast<std::uint32_t>(units));
        const auto* raw = reinterpret_cast<const std::uint8_t*>(text.data());
        m_bytes.insert(m_bytes.end(), raw, raw + units * sizeof(Unit));
    }
    template <class Entry>
    void put(const std::vector<Entry>& list)
    {
        const std::size_t count = std::min(list.size(), kMaxListed);
        put(static_cast<std::uint32_t>(count));
        for (std::size_t i = 0; i < count; ++i) {
            Entry entry = list[i];
            std::apply([this](const auto&... field) { (this->put(field), ...); }, entry.fields());
        }
    }

private:
    std::vector<std::uint8_t>& m_bytes;
};

class Reader
{
public:
    explicit Reader(base::Bytes body) : m_bytes(body) {}

    template <class T>
    requires std::is_arithmetic_v<T> base::Result<void> take(T& value)
    {
        const base::Bytes raw = TRY_RESULT(m_bytes.bytes(sizeof(T)));
        std::memcpy(&value, raw.data(), sizeof(T));
        return {};
    }
    template <class Unit>
    base::Result<void> take(std::basic_string<Unit>& text)
    {
        const std::uint32_t units = TRY_RESULT(m_bytes.u32());
        if (units > kMaxTextBytes / sizeof(Unit))
            return base::fail(base::ErrorCode::LimitReached, "text of " + std::to_string(units) + " units");
        const base::Bytes raw = TRY_RESULT(m_bytes.bytes(units * sizeof(Unit)));
        text.resize(units);
        std::memcpy(text.data(), raw.data(), raw.size());
        return {};
    }
    template <class Entry>
    base::Result<void> take(std::vector<Entry>& list)
    {
        const std::uint32_t count = TRY_RESULT(m_bytes.u32());
        if (count > kMaxListed)
            return base::fail(base::ErrorCode::LimitReached, "list of " + std::to_string(count) + " entries");
        list.resize(count);
        for (Entry& entry : list) CHECK_RESULT(takeAll(entry));
        return {};
    }
    /// All fields, up to the first that is not there.
    template <class Fielded>
    base::Result<void> takeAll(Fielded& fielded)
    {
        base::Result<void> failed;
        [[maybe_unused]] const auto one = [&](auto& field) {
            failed = take(field);
            return failed.has_value();
        };
        std::apply([&](auto&... field) { (void)(one(field) && ...); }, fielded.fields());
        return failed;
    }
    [[nodiscard]] std::size_t remaining() const { return m_bytes.remaining(); }

private:
    base::ByteReader m_bytes;
};

template <class Message>
void encodeAny(const Message& message, std::vector<std::uint8_t>& bytes)
{
    Writer head(bytes);
    head.put(static_cast<std::uint16_t>(message.index()));
    const std::size_t lengthAt = bytes.size();
    head.put(std::uint32_t{0});
    std::visit(
        [&](auto copy) { // a copy, because `fields` serves decoding as well
            std::apply([&](const auto&... field) { (Writer(bytes).put(field), ...); }, copy.fields());
        },
        message);
    const auto length = static_cast<std::uint32_t>(bytes.size() - lengthAt - sizeof(std::uint32_t));
    std::memcpy(bytes.data() + lengthAt, &length, sizeof length);
}

template <class Message, std::size_t Index>
base::Result<Message> decodeOne(base::Bytes body)
{
    std::variant_alternative_t<Index, Message> message;
    Reader reader(body);
    CHECK_RESULT(reader.takeAll(message));
    if (reader.remaining() != 0)
        return base::fail(base::ErrorCode::Malformed, "message " + std::to_string(Index) + ": " +
                                                          std::to_string(reader.remaining()) +
                                                          " bytes behind its fields");
    return Message(std::in_place_index<Index>, std::move(message));
}

template <class Message, std::size_t... Index>
base::Result<Message> decodeAny(std::uint16_t kind, base::Bytes body, std::index_sequence<Index...>)
{
    using Decode = base::Result<Message> (*)(base::Bytes);
    static constexpr std::array<Decode, sizeof...(Index)> kDecoders{&decodeOne<Message, Index>...};
    if (kind >= kDecoders.size())
        return base::fail(base::ErrorCode::Malformed, "message of unknown kind " + std::to_string(kind));
    return kDecoders[kind](body);
}

template <class Message>
base::Result<Message> decodeAny(std::uint16_t kind, base::Bytes body)
{
    return decodeAny<Message>(kind, body, std::make_index_sequence<std::variant_size_v<Message>>());
}

} // namespace

Rectangle cutTo(const Rectangle& rectangle, std::int32_t width, std::int32_t height)
{
    const auto cut = [](std::int64_t from, std::int64_t length, std::int64_t limit) {
        const std::int64_t begin = std::clamp<std::int64_t>(from, 0, limit);
        const std::int64_t end = std::clamp<std::int64_t>(from + length, begin, limit);
        return std::pair(static_cast<std::int32_t>(begin), static_cast<std::int32_t>(end - begin));
    };
    const auto [left, across] = cut(rectangle.left, rectangle.width, std::max(width, 0));
    const auto [top, down] = cut(rectangle.top, rectangle.height, std::max(height, 0));
    return {left, top, across, down};
}

void encode(const ToMovie& message, std::vector<std::uint8_t>& bytes) { encodeAny(message, bytes); }
void encode(const FromMovie& message, std::vector<std::uint8_t>& bytes) { encodeAny(message, bytes); }

base::Result<Header> decodeHeader(base::Bytes bytes)
{
    base::ByteReader reader(bytes);
    Header header;
    header.kind = TRY_RESULT(reader.u16());
    header.bodyBytes = TRY_RESULT(reader.u32());
    if (header.bodyBytes > kMaxBodyBytes)
        return base::fail(base::ErrorCode::LimitReached,
                          "message body of " + std::to_string(header.bodyBytes) + " bytes");
    return header;
}

base::Result<ToMovie> decodeToMovie(std::uint16_t kind, base::Bytes body)
{
    return decodeAny<ToMovie>(kind, body);
}

base::Result<FromMovie> decodeFromMovie(std::uint16_t kind, base::Bytes body)
{
    return decodeAny<FromMovie>(kind, body);
}

} // namespace flash::control
