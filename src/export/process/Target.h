#pragma once

#include "base/Files.h"
#include "export/Settings.h"

#include <optional>

namespace exporter
{

/// Where a film goes: a file, or a folder of pictures, that has its name only when it is whole.
class Target
{
public:
    /// @errors Denied, NotFound or IoFailure; Denied when there is a folder of that name with something in it
    static base::Result<Target> create(const Settings& settings);
    Target(Target&& other) noexcept;
    Target& operator=(Target&&) = delete;
    /// Without commit() nothing is left.
    ~Target();

    /// Of the file; -1 for a folder.
    [[nodiscard]] int descriptor() const { return m_file ? m_file->descriptor() : -1; }
    /// Under its name for the time being; empty for a file.
    [[nodiscard]] const std::filesystem::path& folder() const { return m_temporary; }
    base::Result<void> commit();

private:
    Target() = default;

    std::optional<base::PendingFile> m_file;
    std::filesystem::path m_folder, m_temporary;
};

} // namespace exporter
