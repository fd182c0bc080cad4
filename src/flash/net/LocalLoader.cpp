#include "flash/net/LocalLoader.h"

#include "base/Ascii.h"
#include "base/Files.h"
#include "base/PercentCode.h"

#include <algorithm>
#include <system_error>

namespace flash::net
{
namespace
{

namespace fs = std::filesystem;

/// The scheme of an address, lower case; empty for plain paths. One letter before a colon is a drive.
std::string schemeOf(std::string_view url)
{
    const auto colon = url.find(':');
    if (colon == std::string_view::npos || colon < 2) return {};
    std::string scheme;
    for (const char c : url.substr(0, colon)) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        const bool other = (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
        if (!letter && !(other && !scheme.empty())) return {};
        scheme += base::asciiLower(c);
    }
    return scheme;
}

std::string_view withoutQuery(std::string_view url) { return url.substr(0, url.find_first_of("?#")); }

std::string withSlashes(std::string_view text)
{
    std::string out(text);
    std::replace(out.begin(), out.end(), '\\', '/');
    return out;
}

/// Takes "file:" and the slashes of an empty host off.
std::string_view withoutScheme(std::string_view url)
{
    if (schemeOf(url) != "file") return url;
    url.remove_prefix(5);
    if (url.starts_with("//")) {
        url.remove_prefix(2);
        const auto slash = url.find('/');
        url = slash == std::string_view::npos ? std::string_view() : url.substr(slash);
    }
    return url;
}

} // namespace

std::string pathFromUrl(std::string_view url)
{
    return withSlashes(base::percentDecoded(withoutScheme(withoutQuery(url)), base::Plus::Itself));
}

std::string urlFromPath(const fs::path& path)
{
    constexpr std::string_view kUnescaped = "-._~/:";
    return "file://" + base::percentEncoded(path.generic_string(), kUnescaped);
}

LocalLoader::LocalLoader(const fs::path& root)
{
    std::error_code error;
    m_root = fs::canonical(root, error);
    if (error) m_root.clear();
}

bool LocalLoader::isInside(const fs::path& canonical) const
{
    if (m_root.empty()) return false;
    return std::mismatch(m_root.begin(), m_root.end(), canonical.begin(), canonical.end()).first ==
           m_root.end();
}

base::Result<fs::path> LocalLoader::resolve(std::string_view url, std::string_view baseUrl) const
{
    const std::string scheme = schemeOf(url);
    if (!scheme.empty() && scheme != "file") {
        return base::fail(base::ErrorCode::Denied,
                          std::string(url) + ": only files beside the movie are loaded");
    }
    std::error_code error;
    fs::path base = fs::canonical(fs::path(pathFromUrl(baseUrl)).parent_path(), error);
    if (error || !isInside(base)) base = m_root;

    // The name as it stands comes first: real files have "#", "?" and "%" in their names, and movies name
    // them so.
    const std::string literal = withSlashes(withoutScheme(url));
    const std::string plain = withSlashes(withoutScheme(withoutQuery(url)));
    for (const std::string& name : {literal, plain, base::percentDecoded(plain, base::Plus::Itself)}) {
        if (name.empty() || name.find('\0') != std::string::npos) continue;
        const fs::path found = fs::canonical(base / name, error);
        if (!error && isInside(found) && fs::is_regular_file(found, error)) return found;
    }
    return base::fail(base::ErrorCode::NotFound, std::string(url) + ": no such file beside the movie");
}

base::Result<stage::LoadAnswer> LocalLoader::load(const stage::LoadRequest& request)
{
    const fs::path file = TRY_RESULT(resolve(request.url, request.baseUrl));
    stage::LoadAnswer answer;
    answer.bytes = TRY_RESULT(base::readFile(file, kMaxFileBytes));
    const bool isName = file.filename().native().find('?') != std::string::npos;
    const auto query = isName ? std::string::npos : request.url.find('?');
    answer.url = urlFromPath(file) + (query == std::string::npos ? "" : request.url.substr(query));
    return answer;
}

} // namespace flash::net
