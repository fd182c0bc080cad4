#include "flash/MovieLoader.h"

#include <algorithm>

namespace flash
{

bool liesIn(const std::filesystem::path& file, const std::filesystem::path& folder)
{
    std::error_code error;
    const auto real = std::filesystem::canonical(file, error);
    return !error && !folder.empty() && std::filesystem::equivalent(real.parent_path(), folder, error);
}

void MovieLoader::setFolders(const std::filesystem::path& readable, const std::filesystem::path& base,
                             const std::filesystem::path& shared)
{
    m_folder = std::make_unique<net::LocalLoader>(readable);
    m_shared = shared.empty() ? nullptr : std::make_unique<net::LocalLoader>(shared);
    m_baseUrl = base.empty() ? std::string() : net::urlFromPath(base) + "/";
    m_granted.clear();
    m_hasReadFiles = false;
}

base::Result<stage::LoadAnswer> MovieLoader::load(const stage::LoadRequest& request)
{
    if (const auto found = m_granted.find(request.url); found != m_granted.end()) {
        stage::LoadAnswer answer{request.url, std::move(found->second)};
        m_granted.erase(found);
        look(answer);
        return answer;
    }
    if (!m_folder) return base::fail(base::ErrorCode::Denied, request.url + ": no movie is loaded");
    stage::LoadRequest based = request;
    if (!m_baseUrl.empty()) based.baseUrl = m_baseUrl;
    auto answer = m_folder->load(based);
    if (!answer && m_shared) {
        if (auto shared = m_shared->load(request)) answer = std::move(shared);
    }
    if (answer) look(*answer);
    return answer;
}

void MovieLoader::look(const stage::LoadAnswer& answer)
{
    const std::string_view start(reinterpret_cast<const char*>(answer.bytes.data()),
                                 std::min<std::size_t>(answer.bytes.size(), 3));
    if (start != "FWS" && start != "CWS" && start != "ZWS")
        m_hasReadFiles = true;
    else if (!m_trusted.empty() && !liesIn(net::pathFromUrl(answer.url), m_trusted))
        m_trusted.clear();
}

} // namespace flash
