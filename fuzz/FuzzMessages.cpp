#include "flash/control/Messages.h"

#include <cstdlib>

// What a window and the process of its movie say to each other, as bytes from an end that is not to be
// trusted: each message, in both directions. What can be read is written again as the same bytes.

namespace
{

using namespace flash::control;

template <class Message>
void tryKind(base::Result<Message> (*decode)(std::uint16_t, base::Bytes), std::uint16_t kind,
             base::Bytes body)
{
    const auto message = decode(kind, body);
    if (!message) return;
    std::vector<std::uint8_t> bytes;
    encode(*message, bytes);
    if (bytes.size() != kHeaderBytes + body.size()) std::abort();
    const auto again = decode(kind, base::Bytes(bytes).subspan(kHeaderBytes));
    if (!again || again->index() != message->index()) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    base::Bytes rest(data, size);
    while (rest.size() >= kHeaderBytes) {
        const auto header = decodeHeader(rest);
        if (!header) return 0;
        rest = rest.subspan(kHeaderBytes);
        const base::Bytes body = rest.first(std::min<std::size_t>(header->bodyBytes, rest.size()));
        tryKind(&decodeToMovie, header->kind, body);
        tryKind(&decodeFromMovie, header->kind, body);
        rest = rest.subspan(body.size());
    }
    return 0;
}
