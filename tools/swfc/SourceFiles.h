#pragma once

#include "base/Result.h"

#include <cstdint>
#include <string>
#include <vector>

namespace swfc
{

/// Where sources come from. The compiler reads nothing behind its back, so a test or a fuzz target can serve
/// files from memory.
class SourceFiles
{
public:
    virtual ~SourceFiles() = default;
    virtual base::Result<std::vector<std::uint8_t>> read(const std::string& path) = 0;
    /// Reads one of the system's font files by its bare file name.
    virtual base::Result<std::vector<std::uint8_t>> readFont(const std::string& name)
    {
        return base::fail(base::ErrorCode::NotFound, "no font file " + name);
    }
};

/// Reads from the disk and remembers what was read, for a dependency file.
class DiskFiles : public SourceFiles
{
public:
    static constexpr std::uint64_t kFileLimitBytes = 256ULL << 20;

    base::Result<std::vector<std::uint8_t>> read(const std::string& path) override;
    base::Result<std::vector<std::uint8_t>> readFont(const std::string& name) override;
    [[nodiscard]] const std::vector<std::string>& pathsRead() const { return m_paths; }

private:
    std::vector<std::string> m_paths;
};

/// @returns `name` as seen from the folder of the file `from`.
std::string besideFile(const std::string& from, const std::string& name);

} // namespace swfc
