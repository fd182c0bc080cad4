#include "export/process/Target.h"

#include <cerrno>
#include <cstdlib>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace exporter
{

namespace
{

tl::unexpected<base::Error> failure(const std::filesystem::path& path, const std::error_code& error)
{
    const bool isDenied = error == std::errc::permission_denied || error == std::errc::read_only_file_system;
    return base::fail(isDenied ? base::ErrorCode::Denied : base::ErrorCode::IoFailure,
                      path.string() + ": " + error.message());
}

} // namespace

base::Result<Target> Target::create(const Settings& settings)
{
    Target target;
    if (settings.format != Format::Png || settings.isOnePicture) {
        if (std::filesystem::is_directory(settings.out))
            return base::fail(base::ErrorCode::Denied, settings.out.string() + ": is a folder");
        base::sweepTemporaryFilesOf(settings.out); // of a run that was killed
        target.m_file.emplace(TRY_RESULT(base::PendingFile::create(settings.out)));
        return target;
    }
    target.m_folder = settings.out;
    target.m_folder.replace_extension();
    std::error_code error;
    if (std::filesystem::exists(target.m_folder, error) && !std::filesystem::is_empty(target.m_folder, error))
        return base::fail(base::ErrorCode::Denied,
                          target.m_folder.string() + ": there is something of that name already");
    std::string name = target.m_folder.string() + ".~XXXXXX";
    if (::mkdtemp(name.data()) == nullptr)
        return failure(target.m_folder, std::error_code(errno, std::generic_category()));
    target.m_temporary = name;
    constexpr mode_t kUsual = 0755;
    ::chmod(name.c_str(), kUsual);
    return target;
}

Target::Target(Target&& other) noexcept
    : m_file(std::move(other.m_file)), m_folder(std::exchange(other.m_folder, {})),
      m_temporary(std::exchange(other.m_temporary, {}))
{
}

Target::~Target()
{
    std::error_code ignored;
    if (!m_temporary.empty()) std::filesystem::remove_all(m_temporary, ignored);
}

base::Result<void> Target::commit()
{
    if (m_file) return m_file->commit();
    std::error_code error;
    std::filesystem::rename(m_temporary, m_folder, error);
    if (error) return failure(m_folder, error);
    m_temporary.clear();
    return {};
}

} // namespace exporter
