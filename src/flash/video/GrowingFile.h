#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace flash::video
{

using FileBytes = std::shared_ptr<const std::vector<std::uint8_t>>;

/// How a file that still grows is handed on to who reads it, on a thread of its own maybe: the same bytes
/// with more behind them.
class Growth
{
public:
    /// @returns false when the reader has come to the end before and reads no more
    bool offer(FileBytes longer)
    {
        const std::lock_guard lock(m_lock);
        m_latest = std::move(longer);
        return !m_hasRunOut;
    }
    /// What there is beyond `have`. @returns null when there is no more: the reader is done
    FileBytes beyond(const FileBytes& have)
    {
        const std::lock_guard lock(m_lock);
        if (m_latest && m_latest->size() > have->size()) return m_latest;
        m_hasRunOut = true;
        return nullptr;
    }

private:
    std::mutex m_lock;
    FileBytes m_latest;
    bool m_hasRunOut = false;
};

/// The file, knowing of its growth.
FileBytes growing(FileBytes file, std::shared_ptr<Growth> growth);
/// Null for a file that is whole.
std::shared_ptr<Growth> growthOf(const FileBytes& file);

} // namespace flash::video
