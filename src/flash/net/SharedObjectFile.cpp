#include "flash/net/SharedObjectFile.h"

#include <algorithm>

namespace flash::net
{
namespace
{

constexpr std::uint8_t kHead[] = {0x00, 0xBF};
constexpr std::uint8_t kMagic[] = {'T', 'C', 'S', 'O', 0, 4, 0, 0, 0, 0};

bool isValidName(std::string_view name)
{
    return !name.empty() && name.find_first_of("~%&\\;:\"',<>?# ") == std::string_view::npos;
}

/// The path of a movie's address, without scheme, host and query.
std::string_view pathOf(std::string_view url)
{
    url = url.substr(0, url.find('?'));
    if (const auto scheme = url.find("://"); scheme != std::string_view::npos) {
        url.remove_prefix(scheme + 3);
        url.remove_prefix(std::min(url.find('/'), url.size()));
    }
    return url;
}

} // namespace

std::vector<std::uint8_t> sharedObjectFile(std::string_view name, AmfVersion version, base::Bytes members)
{
    Amf0Writer body;
    body.append(base::Bytes(kMagic));
    body.name(name);
    body.number(static_cast<std::uint64_t>(version), 4);
    body.append(members);
    const std::vector<std::uint8_t> bytes = body.take();
    Amf0Writer file;
    file.append(base::Bytes(kHead));
    file.number(bytes.size(), 4);
    file.append(base::Bytes(bytes));
    return file.take();
}

base::Result<AmfVersion> readSharedObjectHead(AmfSource& source)
{
    AmfReader reader(source, AmfVersion::Amf0);
    const auto isNext = [&](base::Bytes expected) -> base::Result<bool> {
        const base::Bytes found = TRY_RESULT(source.take(expected.size()));
        return std::ranges::equal(found, expected);
    };
    const bool begins = TRY_RESULT(isNext(kHead));
    TRY_RESULT(reader.number(4)); // the length, which the file itself tells
    const bool goesOn = TRY_RESULT(isNext(kMagic));
    if (!begins || !goesOn)
        return base::fail(base::ErrorCode::Malformed, "a shared object that does not begin as one");
    TRY_RESULT(reader.name());
    const std::uint64_t version = TRY_RESULT(reader.number(4));
    return version == static_cast<std::uint64_t>(AmfVersion::Amf3) ? AmfVersion::Amf3 : AmfVersion::Amf0;
}

std::optional<std::string> sharedObjectKey(std::string_view name, std::optional<std::string_view> folder,
                                           std::string_view movieUrl)
{
    if (!isValidName(name)) return {};
    if (!folder) return std::string(name);
    if (!pathOf(movieUrl).starts_with(*folder)) return {};
    return std::string(*folder) + (folder->ends_with('/') ? "" : "/") + std::string(name);
}

std::string_view sharedObjectName(std::string_view key) { return key.substr(key.rfind('/') + 1); }

} // namespace flash::net
