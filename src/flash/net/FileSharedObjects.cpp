#include "flash/net/FileSharedObjects.h"

#include "base/Files.h"

#include <system_error>
#include <utility>

namespace flash::net
{

namespace fs = std::filesystem;

fs::path FileSharedObjects::fileFor(std::string_view name) const
{
    // The characters that the genuine player refuses in a name, and what a file system may trip over.
    constexpr std::string_view kForbidden = "~%&\\;:\"',<>?# ";
    if (name.empty() || name.size() > kMaxNameBytes) return {};
    std::string file;
    for (const char c : name) {
        if (static_cast<unsigned char>(c) < 0x20 || kForbidden.find(c) != std::string_view::npos) return {};
        // A slash makes no folder, and "%" is free to stand for it because names may not hold one.
        if (c == '/') {
            file += "%2F";
        } else {
            file += c;
        }
    }
    return m_folder / (file + ".sol"); // a name of dots alone is none any more
}

std::vector<std::uint8_t> FileSharedObjects::read(std::string_view name)
{
    const fs::path file = fileFor(name);
    if (file.empty()) return {};
    return base::readFile(file, kQuotaBytes).value_or(std::vector<std::uint8_t>());
}

bool FileSharedObjects::hasRoomFor(const fs::path& file, std::uint64_t bytes)
{
    std::error_code error;
    std::uint64_t used = bytes;
    std::size_t objects = 1;
    for (const auto& entry : fs::directory_iterator(m_folder, error)) {
        if (entry.path() == file) continue;
        std::error_code gone;
        const std::uint64_t size = entry.file_size(gone);
        if (gone) continue;
        used += size;
        if (++objects > kMaxObjects || used > kQuotaBytes) return false;
    }
    return used <= kQuotaBytes;
}

bool FileSharedObjects::write(std::string_view name, const std::vector<std::uint8_t>& content)
{
    const fs::path file = fileFor(name);
    if (file.empty()) return false;
    // What a run that was killed left counts against nobody's quota.
    if (!std::exchange(m_isSwept, true)) base::sweepTemporaryFiles(m_folder);
    if (!hasRoomFor(file, content.size())) return false;
    std::error_code error;
    fs::create_directories(m_folder, error);
    return base::replaceFile(file, base::Bytes(content)).has_value();
}

void FileSharedObjects::remove(std::string_view name)
{
    const fs::path file = fileFor(name);
    std::error_code error;
    if (!file.empty()) fs::remove(file, error);
}

} // namespace flash::net
