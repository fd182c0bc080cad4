#pragma once

#include "flash/net/FileSharedObjects.h"

#include <map>

namespace flash::net
{

/// Shared objects that end with their owner; within the bounds that those on the disk have.
class MemorySharedObjects final : public stage::SharedObjectStore
{
public:
    std::vector<std::uint8_t> read(std::string_view name) override
    {
        const auto found = m_objects.find(name);
        return found == m_objects.end() ? std::vector<std::uint8_t>{} : found->second;
    }
    bool write(std::string_view name, const std::vector<std::uint8_t>& content) override
    {
        std::uint64_t used = content.size();
        for (const auto& [other, bytes] : m_objects) used += other == name ? 0 : bytes.size();
        const bool isNew = m_objects.find(name) == m_objects.end();
        if (used > FileSharedObjects::kQuotaBytes ||
            (isNew && m_objects.size() >= FileSharedObjects::kMaxObjects))
            return false;
        m_objects.insert_or_assign(std::string(name), content);
        return true;
    }
    void remove(std::string_view name) override
    {
        if (const auto found = m_objects.find(name); found != m_objects.end()) m_objects.erase(found);
    }

private:
    std::map<std::string, std::vector<std::uint8_t>, std::less<>> m_objects;
};

} // namespace flash::net
