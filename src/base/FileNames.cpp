#include "base/FileNames.h"

#include "base/TextCode.h"
#include "base/TextCodes.h"

#include <algorithm>
#include <system_error>

namespace base
{
namespace
{

bool isAscii(std::string_view text)
{
    return std::ranges::all_of(text, [](char letter) { return static_cast<unsigned char>(letter) < 0x80; });
}

bool isThere(const std::filesystem::path& path)
{
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::symlink_status(path, ignored));
}

} // namespace

std::string textOfPath(std::string_view bytes)
{
    if (isUtf8(bytes)) return std::string(bytes);
    std::string text;
    while (true) {
        const std::size_t end = bytes.find('/');
        const std::string_view name = bytes.substr(0, end);
        text += isUtf8(name) ? std::string(name) : TextCode::ansi().utf8From(name);
        if (end == std::string_view::npos) return text;
        text += '/';
        bytes.remove_prefix(end + 1);
    }
}

std::filesystem::path pathNamed(std::string_view text)
{
    std::filesystem::path whole(text);
    if (isAscii(text) || isThere(whole)) return whole;
    std::filesystem::path found;
    for (const std::filesystem::path& name : whole) {
        const std::string bytes = TextCode::ansi().fromUtf8(name.string());
        const bool isOldName = !isAscii(name.string()) && !isThere(found / name) &&
                               TextCode::ansi().utf8From(bytes) == name.string() && isThere(found / bytes);
        found /= isOldName ? std::filesystem::path(bytes) : name;
    }
    return isThere(found) ? found : whole;
}

} // namespace base
