#pragma once

#include "flash/stage/Services.h"

#include <filesystem>

namespace flash::net
{

/// Serves what a movie asks for from the folder it lies in and the folders below, and nothing else: no
/// network, no file that a link leads to outside, no device. A damaged or curious movie cannot learn what
/// else is on the disk, for everything refused looks the same.
class LocalLoader : public stage::Loader
{
public:
    static constexpr std::uint64_t kMaxFileBytes = 256ULL << 20;

    /// @param root the folder that may be read, with all below; need not exist
    explicit LocalLoader(const std::filesystem::path& root);

    /// @errors Denied for what lies outside, other schemes included; NotFound; LimitReached for a file of
    ///         more than kMaxFileBytes.
    base::Result<stage::LoadAnswer> load(const stage::LoadRequest& request) override;

    /// The file that an address means: that of the very name, else of what is left without query and
    /// fragment, else of that with its escapes decoded. The file is there and may be read.
    /// A relative address counts from the folder of `baseUrl`, or from the root when that lies elsewhere.
    [[nodiscard]] base::Result<std::filesystem::path> resolve(std::string_view url,
                                                              std::string_view baseUrl) const;

private:
    [[nodiscard]] bool isInside(const std::filesystem::path& canonical) const;

    std::filesystem::path m_root; // canonical; empty when the folder does not exist
};

/// `file:///a/b%20c.swf` for a path; all but unreserved characters and "/" are escaped.
std::string urlFromPath(const std::filesystem::path& path);

/// The path part of a file address or a plain path: the scheme, query and fragment go, escapes are decoded;
/// a "%" that begins no escape stays. Backslashes count as slashes.
std::string pathFromUrl(std::string_view url);

} // namespace flash::net
