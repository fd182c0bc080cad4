#include "flash/vm/Heap.h"

#include "flash/vm/String.h"
#include "flash/vm/Value.h"

#include <pthread.h>

#include <algorithm>
#include <csetjmp>
#include <cstdlib>
#include <cstring>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, bytes) static_cast<void>(0)
#define ASAN_UNPOISON_MEMORY_REGION(address, bytes) static_cast<void>(0)
#endif

namespace flash::vm
{

namespace
{

constexpr std::size_t kBlockBytes = 64 * 1024;
constexpr std::size_t kMinThresholdBytes = 8 << 20;
// So that little more than what is bounded can be in use between two looks.
constexpr std::size_t kMaxThresholdBytes = 128 << 20;
// Collecting always: a heap beyond the first is looked through when it has grown by such a part of the rest.
constexpr std::size_t kSmallHeapBytes = 4 << 20, kGrowthParts = 256;
constexpr int kFreedByte = 0xDB; // as a pointer: no address there is

/// @returns the end of this thread's stack that was there first (stacks grow down).
std::uintptr_t stackOrigin()
{
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) std::abort();
    void* lowest = nullptr;
    std::size_t size = 0;
    pthread_attr_getstack(&attributes, &lowest, &size);
    pthread_attr_destroy(&attributes);
    return reinterpret_cast<std::uintptr_t>(lowest) + size;
}

} // namespace

/// A page of cells of one size, aligned to its own size so that a cell's address tells its block.
struct Heap::Block {
    Heap* heap;
    std::size_t cellBytes;
    std::size_t cellCount;
    std::uint64_t live[kBlockBytes / kGranuleBytes / 64]; // one bit for each cell in use

    static constexpr std::size_t headerBytes()
    {
        return (sizeof(Block) + kGranuleBytes - 1) / kGranuleBytes * kGranuleBytes;
    }
    [[nodiscard]] std::byte* cell(std::size_t index)
    {
        return reinterpret_cast<std::byte*>(this) + headerBytes() + index * cellBytes;
    }
    [[nodiscard]] bool isLive(std::size_t index) const { return (live[index / 64] >> (index % 64) & 1) != 0; }
    void setLive(std::size_t index) { live[index / 64] |= std::uint64_t{1} << (index % 64); }
    void clearLive(std::size_t index) { live[index / 64] &= ~(std::uint64_t{1} << (index % 64)); }
    static Block* of(std::uintptr_t address)
    {
        return reinterpret_cast<Block*>(address & ~(kBlockBytes - 1));
    }
    [[nodiscard]] std::size_t indexOf(std::uintptr_t address) const
    {
        return (address - reinterpret_cast<std::uintptr_t>(this) - headerBytes()) / cellBytes;
    }
};

void Tracer::operator()(Value value)
{
    if (value.isObject() || value.isString()) operator()(value.cell());
}

void Tracer::operator()(Name name) { operator()(static_cast<const Cell*>(name.cell())); }

RootBase::RootBase(Heap& heap) : m_heap(&heap) { link(); }

RootBase::RootBase(RootBase&& other) noexcept : m_heap(other.m_heap)
{
    if (m_heap != nullptr) link();
}

void RootBase::link()
{
    m_next = m_heap->m_roots;
    if (m_next != nullptr) m_next->m_previous = this;
    m_heap->m_roots = this;
}

RootBase::~RootBase()
{
    if (m_heap == nullptr) return;
    if (m_previous != nullptr)
        m_previous->m_next = m_next;
    else
        m_heap->m_roots = m_next;
    if (m_next != nullptr) m_next->m_previous = m_previous;
}

Heap::Heap() : m_thresholdBytes(kMinThresholdBytes) {}

Heap::~Heap()
{
    for (RootBase* root = m_roots; root != nullptr; root = root->m_next) root->m_heap = nullptr;
    for (Block* block : m_blocks) {
        for (std::size_t i = 0; i < block->cellCount; ++i) {
            if (block->isLive(i)) reinterpret_cast<Cell*>(block->cell(i))->~Cell();
        }
    }
    // A native may still look at its object.
    for (Block* block : m_blocks) {
        ASAN_UNPOISON_MEMORY_REGION(block, kBlockBytes);
        std::free(block);
    }
}

void* Heap::allocate(std::size_t bytes)
{
    const std::size_t sizeClass = (bytes - 1) / kGranuleBytes;
    if (m_free[sizeClass] == nullptr) addBlock(sizeClass);
    FreeCell* cell = m_free[sizeClass];
    ASAN_UNPOISON_MEMORY_REGION(cell, (sizeClass + 1) * kGranuleBytes);
    m_free[sizeClass] = cell->next;
    const auto address = reinterpret_cast<std::uintptr_t>(cell);
    Block* block = Block::of(address);
    block->setLive(block->indexOf(address));
    m_bytesSinceCollection += (sizeClass + 1) * kGranuleBytes;
    ++m_liveCells;
    return cell;
}

void Heap::giveBack(void* cell)
{
    const auto address = reinterpret_cast<std::uintptr_t>(cell);
    Block* block = Block::of(address);
    block->clearLive(block->indexOf(address));
    --m_liveCells;
    FreeCell*& freeList = m_free[block->cellBytes / kGranuleBytes - 1];
    freeList = ::new (cell) FreeCell{freeList};
}

void Heap::addBlock(std::size_t sizeClass)
{
    void* memory = std::aligned_alloc(kBlockBytes, kBlockBytes);
    if (memory == nullptr) throw std::bad_alloc();
    auto* block = ::new (memory) Block{};
    block->heap = this;
    block->cellBytes = (sizeClass + 1) * kGranuleBytes;
    block->cellCount = (kBlockBytes - Block::headerBytes()) / block->cellBytes;
    for (std::size_t i = block->cellCount; i-- > 0;) {
        m_free[sizeClass] = ::new (block->cell(i)) FreeCell{m_free[sizeClass]};
    }
    m_blocks.push_back(block);
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    m_blockAddresses.insert(address);
    m_lowest = std::min(m_lowest, address);
    m_highest = std::max(m_highest, address + kBlockBytes);
}

Heap& Heap::of(const Cell& cell) { return *Block::of(reinterpret_cast<std::uintptr_t>(&cell))->heap; }

void Heap::collectAlways()
{
    m_collectsAlways = true;
    m_thresholdBytes = 1;
}

void Heap::collect()
{
    ++m_collections;
    Tracer tracer(m_pending);
    for (RootBase* root = m_roots; root != nullptr; root = root->m_next) root->trace(tracer);
    for (const auto& source : m_sources) source(tracer);
    markStack(tracer);
    drain(tracer);
    for (const auto& hook : m_sweepHooks) hook();
    m_liveBytes = tracer.m_outsideBytes;
    sweep();
}

void Heap::drain(Tracer& tracer)
{
    while (!m_pending.empty()) {
        Cell* cell = m_pending.back();
        m_pending.pop_back();
        cell->trace(tracer);
    }
}

void Heap::sweep()
{
    for (Block* block : m_blocks) {
        FreeCell*& freeList = m_free[block->cellBytes / kGranuleBytes - 1];
        for (std::size_t i = 0; i < block->cellCount; ++i) {
            if (!block->isLive(i)) continue;
            auto* cell = reinterpret_cast<Cell*>(block->cell(i));
            if (cell->m_marked) {
                cell->m_marked = false;
                m_liveBytes += block->cellBytes;
                continue;
            }
            cell->~Cell();
            block->clearLive(i);
            --m_liveCells;
            if (m_collectsAlways) std::memset(static_cast<void*>(cell), kFreedByte, block->cellBytes);
            freeList = ::new (static_cast<void*>(cell)) FreeCell{freeList};
            if (m_collectsAlways) ASAN_POISON_MEMORY_REGION(cell, block->cellBytes);
        }
    }
    m_bytesSinceCollection = 0;
    if (m_collectsAlways)
        m_thresholdBytes = 1 + (std::max(m_liveBytes, kSmallHeapBytes) - kSmallHeapBytes) / kGrowthParts;
    else
        m_thresholdBytes = std::clamp(m_liveBytes, kMinThresholdBytes, kMaxThresholdBytes);
}

// The scan reads words that the sanitizer holds to be out of bounds, and rightly so.
__attribute__((no_sanitize("address", "undefined"), noinline)) void Heap::markStack(Tracer& tracer)
{
    std::jmp_buf registers; // spills the registers that calls preserve into this frame
    setjmp(registers);
    thread_local const std::uintptr_t origin = stackOrigin();
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    const auto from = std::min(here, reinterpret_cast<std::uintptr_t>(&registers)) & ~(sizeof(void*) - 1);
    for (std::uintptr_t at = from; at + sizeof(std::uintptr_t) <= origin; at += sizeof(std::uintptr_t)) {
        markWord(*reinterpret_cast<const std::uintptr_t*>(at), tracer);
    }
}

void Heap::markWord(std::uintptr_t word, Tracer& tracer)
{
    // A boxed value is a pointer under a tag.
    word &= 0x0000'FFFF'FFFF'FFFF;
    if (word < m_lowest || word >= m_highest) return;
    if (!m_blockAddresses.contains(word & ~(kBlockBytes - 1))) return;
    Block* block = Block::of(word);
    if (word < reinterpret_cast<std::uintptr_t>(block->cell(0))) return;
    // Optimised code may hold on to the inside of a cell only.
    const std::size_t index = block->indexOf(word);
    if (index < block->cellCount && block->isLive(index)) tracer(reinterpret_cast<Cell*>(block->cell(index)));
}

} // namespace flash::vm
