#include "swfc/Diagnostics.h"

#include <algorithm>

namespace swfc
{

int Diagnostics::addFile(const std::string& name)
{
    const auto found = std::find(m_files.begin(), m_files.end(), name);
    if (found != m_files.end()) return static_cast<int>(found - m_files.begin());
    m_files.push_back(name);
    return static_cast<int>(m_files.size()) - 1;
}

void Diagnostics::error(Position where, const std::string& message)
{
    if (++m_count > kMaxErrors) return;
    std::string line = fileName(where.file) + ":" + std::to_string(where.line) + ":" +
                       std::to_string(where.column) + ": " + message;
    // A message is one line even when it quotes source text.
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return c < 0x20; }, ' ');
    m_lines.push_back(std::move(line));
}

} // namespace swfc
