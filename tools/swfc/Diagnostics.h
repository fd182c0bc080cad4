#pragma once

#include <string>
#include <vector>

namespace swfc
{

/// A place in a source file. Lines and columns count from 1; a column is a byte of the line.
struct Position {
    int file = 0; ///< index into Diagnostics' list of files
    int line = 1, column = 1;
};

/// Collects what is wrong with the sources of one movie.
class Diagnostics
{
public:
    static constexpr std::size_t kMaxErrors = 20;

    /// @param name as it shall stand in messages
    /// @returns the index for Position::file; the same for the same name
    int addFile(const std::string& name);
    [[nodiscard]] const std::string& fileName(int file) const
    {
        return m_files[static_cast<std::size_t>(file)];
    }

    /// Errors after the first kMaxErrors are counted but not kept.
    void error(Position where, const std::string& message);
    [[nodiscard]] bool hasErrors() const { return m_count > 0; }
    [[nodiscard]] std::size_t errorCount() const { return m_count; }

    /// @returns one line an error, "file:line:column: message".
    [[nodiscard]] const std::vector<std::string>& lines() const { return m_lines; }

private:
    std::vector<std::string> m_files;
    std::vector<std::string> m_lines;
    std::size_t m_count = 0;
};

} // namespace swfc
