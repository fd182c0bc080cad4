#include "flash/net/SignedLibrary.h"

#include <QByteArrayView>
#include <QCryptographicHash>

#include <algorithm>
#include <array>

namespace flash::net
{

namespace
{

enum Tag : std::uint8_t {
    Integer = 0x02,
    Octets = 0x04,
    Identifier = 0x06,
    Sequence = 0x30,
    Set = 0x31,
    First = 0xA0
};
constexpr std::array<std::uint8_t, 9> kSignedData = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x07, 0x02};

/// Reads the body of the next value and moves past it.
base::Result<base::Bytes> take(base::ByteReader& reader, Tag tag)
{
    constexpr std::uint8_t kLong = 0x80, kMostBytes = 4;
    if (TRY_RESULT(reader.u8()) != tag)
        return base::fail(base::ErrorCode::Malformed, "signed library: another value");
    std::size_t length = TRY_RESULT(reader.u8());
    if ((length & kLong) != 0) {
        const std::size_t count = length & (kLong - 1U);
        if (count == 0 || count > kMostBytes)
            return base::fail(base::ErrorCode::Malformed, "signed library: length of a value");
        length = 0;
        for (std::size_t i = 0; i < count; ++i) length = length << 8U | TRY_RESULT(reader.u8());
    }
    return TRY_RESULT(reader.bytes(length));
}

base::Result<base::Bytes> opened(base::Bytes file)
{
    base::ByteReader outer(file);
    base::ByteReader envelope(TRY_RESULT(take(outer, Sequence)));
    const base::Bytes kind = TRY_RESULT(take(envelope, Identifier));
    if (!std::ranges::equal(kind, kSignedData))
        return base::fail(base::ErrorCode::Malformed, "signed library: not signed data");
    base::ByteReader body(TRY_RESULT(take(envelope, First)));
    base::ByteReader parts(TRY_RESULT(take(body, Sequence)));
    TRY_RESULT(take(parts, Integer));
    TRY_RESULT(take(parts, Set));
    base::ByteReader content(TRY_RESULT(take(parts, Sequence)));
    TRY_RESULT(take(content, Identifier));
    base::ByteReader data(TRY_RESULT(take(content, First)));
    return take(data, Octets);
}

} // namespace

base::Result<base::Bytes> signedContent(base::Bytes file, std::string_view digest)
{
    const base::Result<base::Bytes> inner = !file.empty() && file[0] == Sequence ? opened(file) : file;
    if (!inner) return inner;
    const QByteArray sum = QCryptographicHash::hash(
        QByteArrayView(reinterpret_cast<const char*>(inner->data()), static_cast<qsizetype>(inner->size())),
        QCryptographicHash::Sha256);
    const QByteArray wanted(digest.data(), static_cast<qsizetype>(digest.size()));
    if (sum.toHex() != wanted.toLower())
        return base::fail(base::ErrorCode::Malformed, "signed library: its digest is another");
    return inner;
}

base::Result<stage::LoadAnswer> signedAnswer(const base::Result<stage::LoadAnswer>& answer,
                                             std::string_view digest)
{
    if (!answer) return answer;
    const base::Bytes content = TRY_RESULT(signedContent(answer->bytes, digest));
    return stage::LoadAnswer{answer->url, {content.begin(), content.end()}};
}

} // namespace flash::net
