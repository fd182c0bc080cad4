#pragma once

#include "base/Result.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace flash::control
{

/// Memory that two processes see. Its size is sealed: neither end can pull pages from under the other.
class SharedMemory
{
public:
    SharedMemory() = default;
    ~SharedMemory();
    SharedMemory(SharedMemory&& other) noexcept { swap(other); }
    SharedMemory& operator=(SharedMemory&& other) noexcept
    {
        SharedMemory(std::move(other)).swap(*this);
        return *this;
    }
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    /// Zeroed memory of this size.
    /// @errors IoFailure with the system's text.
    static base::Result<SharedMemory> create(std::size_t sizeBytes);
    /// Memory that the other end made. Takes the descriptor over, also when it fails.
    /// @errors IoFailure; Malformed when it is not exactly `sizeBytes` long or its size is not sealed.
    static base::Result<SharedMemory> attach(int descriptor, std::size_t sizeBytes);

    [[nodiscard]] std::span<std::uint8_t> bytes() const { return {m_data, m_size}; }
    [[nodiscard]] bool isEmpty() const { return m_size == 0; }
    /// To hand to the other end; stays owned by this.
    [[nodiscard]] int descriptor() const { return m_descriptor; }

private:
    base::Result<void> map(std::size_t sizeBytes);
    void swap(SharedMemory& other) noexcept;

    int m_descriptor = -1;
    std::uint8_t* m_data = nullptr;
    std::size_t m_size = 0;
};

} // namespace flash::control
