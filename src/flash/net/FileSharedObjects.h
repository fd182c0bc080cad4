#pragma once

#include "flash/stage/Services.h"

#include <filesystem>

namespace flash::net
{

/// Shared objects of one movie as files in one folder, which is made when the first is written. Whatever a
/// movie calls its objects, each is one file directly in that folder.
class FileSharedObjects : public stage::SharedObjectStore
{
public:
    /// What one movie may keep; the genuine player's default.
    static constexpr std::uint64_t kQuotaBytes = 100 << 10;
    static constexpr std::size_t kMaxNameBytes = 120;
    /// However small: each is a file.
    static constexpr std::size_t kMaxObjects = 200;

    explicit FileSharedObjects(std::filesystem::path folder) : m_folder(std::move(folder)) {}

    std::vector<std::uint8_t> read(std::string_view name) override;
    /// @returns false, and changes nothing, when the name is unfit, the quota would be passed or the disk
    ///          refuses.
    bool write(std::string_view name, const std::vector<std::uint8_t>& content) override;
    void remove(std::string_view name) override;

private:
    /// Takes stock of the folder; others may have written there.
    [[nodiscard]] bool hasRoomFor(const std::filesystem::path& file, std::uint64_t bytes);
    /// Empty for a name that cannot be used.
    [[nodiscard]] std::filesystem::path fileFor(std::string_view name) const;

    std::filesystem::path m_folder;
    bool m_isSwept = false;
};

} // namespace flash::net
