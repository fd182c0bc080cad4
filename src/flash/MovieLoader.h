#pragma once

#include "flash/net/LocalLoader.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace flash
{

/// Whether a file lies in a folder, not below it, links resolved.
bool liesIn(const std::filesystem::path& file, const std::filesystem::path& folder);

/// What a movie may read: its folder, and files that the host itself asked for.
class MovieLoader : public stage::Loader
{
public:
    /// @param base where relative addresses count from, instead of from the movie that asks; may be empty
    /// @param shared read as well, when it is not empty
    void setFolders(const std::filesystem::path& readable, const std::filesystem::path& base,
                    const std::filesystem::path& shared);
    /// Where the host's own pages lie, when it is one of them that the loads are for; else empty.
    void setTrusted(const std::filesystem::path& folder) { m_trusted = folder; }
    [[nodiscard]] bool holdsOnlyTrusted() const { return !m_trusted.empty(); }
    [[nodiscard]] bool hasReadFiles() const { return m_hasReadFiles; }
    /// Answers the next request for `url` with `bytes`.
    void grant(const std::string& url, std::vector<std::uint8_t> bytes) { m_granted[url] = std::move(bytes); }

    base::Result<stage::LoadAnswer> load(const stage::LoadRequest& request) override;

private:
    /// Notes what has come in. By the bytes, not by what was asked for: a picture may turn out to be a movie.
    void look(const stage::LoadAnswer& answer);

    std::unique_ptr<net::LocalLoader> m_folder, m_shared;
    std::string m_baseUrl;
    std::map<std::string, std::vector<std::uint8_t>> m_granted;
    std::filesystem::path m_trusted;
    bool m_hasReadFiles = false;
};

} // namespace flash
