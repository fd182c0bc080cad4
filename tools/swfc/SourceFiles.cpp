#include "swfc/SourceFiles.h"

#include "base/Files.h"

#include <filesystem>

namespace swfc
{

base::Result<std::vector<std::uint8_t>> DiskFiles::read(const std::string& path)
{
    auto content = base::readFile(path, kFileLimitBytes);
    if (content) m_paths.push_back(path);
    return content;
}

base::Result<std::vector<std::uint8_t>> DiskFiles::readFont(const std::string& name)
{
    constexpr const char* kFontFolders[] = {"/usr/share/fonts", "/usr/local/share/fonts"};
    std::error_code ignored;
    for (const char* folder : kFontFolders) {
        using Walk = std::filesystem::recursive_directory_iterator;
        for (Walk entry(folder, ignored), end; entry != end; entry.increment(ignored)) {
            if (entry->path().filename() == name) return read(entry->path().string());
        }
    }
    return base::fail(base::ErrorCode::NotFound, "no font file " + name);
}

std::string besideFile(const std::string& from, const std::string& name)
{
    const std::filesystem::path wanted(name);
    if (wanted.is_absolute()) return name;
    return (std::filesystem::path(from).parent_path() / wanted).lexically_normal().string();
}

} // namespace swfc
