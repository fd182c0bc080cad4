#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <unordered_set>
#include <utility>
#include <vector>

// The script heap: a mark-and-sweep collector over cells that never move.
//
// What keeps a cell alive:
//  - being reachable from a Root, or from a root source (the Vm's own state, the display list);
//  - being mentioned on the C++ stack. The stack is scanned conservatively, so native functions hold bare
//    pointers and Values in locals and arguments, across calls to script too. Handles in every native
//    function were the alternative: one forgotten handle there is a crash that shows in one run of a
//    thousand.
// What does NOT keep a cell alive: a pointer in malloc'ed memory (std::vector, a C++ object of the display
// list). Such places are a Root or a RootedList, or belong to a cell that traces them (TracedList). A plain
// std::vector of values, names or objects does not compile: see the end of String.h and of Value.h.
//
// Allocation never collects. Collections happen at safe points only: between actions, at calls, and when the
// host says so between frames.
namespace flash::vm
{

class Heap;
class Name;
class Tracer;
class Value;

/// Anything that lives in the heap.
class Cell
{
public:
    virtual ~Cell() = default;
    Cell(const Cell&) = delete;
    Cell& operator=(const Cell&) = delete;

    /// Reports every cell this one refers to.
    virtual void trace(Tracer&) {}

protected:
    Cell() = default;

private:
    friend class Heap;
    friend class Tracer;
    bool m_marked = false;
};

/// Hands out the references of a cell to the collector.
class Tracer
{
public:
    void operator()(const Cell* cell)
    {
        if (cell != nullptr && !cell->m_marked) mark(const_cast_cell(cell));
    }
    void operator()(Value value);
    void operator()(Name name);
    /// Memory outside the heap that the cell just being traced owns.
    void outside(std::size_t bytes) { m_outsideBytes += bytes; }

private:
    friend class Heap;
    explicit Tracer(std::vector<Cell*>& pending) : m_pending(pending) {}
    // A reference through `const` still keeps its cell alive; the mark is the collector's, not the owner's.
    static Cell* const_cast_cell(const Cell* cell) { return const_cast<Cell*>(cell); }
    void mark(Cell* cell)
    {
        cell->m_marked = true;
        m_pending.push_back(cell);
    }
    std::vector<Cell*>& m_pending;
    std::size_t m_outsideBytes = 0;
};

/// A place outside the heap that keeps cells alive. Linked into the heap's list for as long as it exists.
class RootBase
{
public:
    RootBase(const RootBase&) = delete;
    RootBase& operator=(const RootBase&) = delete;
    virtual void trace(Tracer&) = 0;

protected:
    explicit RootBase(Heap& heap);
    /// Takes a place of its own in the list; the other one keeps its.
    RootBase(RootBase&& other) noexcept;
    virtual ~RootBase();

private:
    void link();
    friend class Heap;
    Heap* m_heap;
    RootBase* m_next = nullptr;
    RootBase* m_previous = nullptr;
};

/// Keeps one cell alive. May be null.
template <class T>
class Root final : public RootBase
{
public:
    explicit Root(Heap& heap, T* cell = nullptr) : RootBase(heap), m_cell(cell) {}
    Root& operator=(T* cell)
    {
        m_cell = cell;
        return *this;
    }
    [[nodiscard]] T* get() const { return m_cell; }
    T* operator->() const { return m_cell; }
    T& operator*() const { return *m_cell; }
    explicit operator bool() const { return m_cell != nullptr; }
    void trace(Tracer& tracer) override { tracer(m_cell); }

private:
    T* m_cell;
};

/// Memory of lists whose owner reports what is in them to the collector.
template <class T>
struct TracedAllocator {
    using value_type = T;
    TracedAllocator() = default;
    template <class Other>
    TracedAllocator(const TracedAllocator<Other>&) noexcept
    {
    }
    T* allocate(std::size_t count) { return static_cast<T*>(::operator new(count * sizeof(T))); }
    void deallocate(T* memory, std::size_t) noexcept { ::operator delete(memory); }
    friend bool operator==(TracedAllocator, TracedAllocator) { return true; }
};

/// A list within a cell, which traces it. Not for local variables: those are RootedLists.
template <class T>
using TracedList = std::vector<T, TracedAllocator<T>>;

/// A list of values, names or objects outside the heap that survives calls to script.
template <class T>
class RootedList final : public RootBase
{
public:
    explicit RootedList(Heap& heap) : RootBase(heap) {}
    template <class Iterator>
    RootedList(Heap& heap, Iterator first, Iterator last) : RootBase(heap), m_items(first, last)
    {
    }
    RootedList(RootedList&& other) noexcept : RootBase(std::move(other)), m_items(std::move(other.m_items)) {}

    TracedList<T>& operator*() { return m_items; }
    const TracedList<T>& operator*() const { return m_items; }
    TracedList<T>* operator->() { return &m_items; }
    const TracedList<T>* operator->() const { return &m_items; }

    [[nodiscard]] auto begin() const { return m_items.begin(); }
    [[nodiscard]] auto end() const { return m_items.end(); }
    [[nodiscard]] auto rbegin() const { return m_items.rbegin(); }
    [[nodiscard]] auto rend() const { return m_items.rend(); }
    [[nodiscard]] std::size_t size() const { return m_items.size(); }
    [[nodiscard]] bool empty() const { return m_items.empty(); }
    T& operator[](std::size_t index) { return m_items[index]; }
    const T& operator[](std::size_t index) const { return m_items[index]; }
    void push_back(T item) { m_items.push_back(item); }

    void trace(Tracer& tracer) override
    {
        for (const T& item : m_items) tracer(item);
    }

private:
    TracedList<T> m_items;
};

class Heap
{
public:
    Heap();
    ~Heap();
    Heap(const Heap&) = delete;
    Heap& operator=(const Heap&) = delete;

    /// Makes a cell. Never collects, so that a cell under construction is safe.
    template <class T, class... Args>
    T* make(Args&&... args)
    {
        static_assert(sizeof(T) <= kMaxCellBytes);
        // A constructor that finds no memory leaves no cell behind.
        struct Place {
            Heap& heap;
            void* memory;
            ~Place()
            {
                if (memory != nullptr) heap.giveBack(memory);
            }
        } place{*this, allocate(sizeof(T))};
        T* cell = ::new (place.memory) T(std::forward<Args>(args)...);
        place.memory = nullptr;
        return cell;
    }

    /// Memory outside the heap that dies with a cell (texts, element lists), so that collections keep up with
    /// it.
    void noteExternalBytes(std::size_t bytes) { m_bytesSinceCollection += bytes; }

    [[nodiscard]] bool shouldCollect() const { return m_bytesSinceCollection >= m_thresholdBytes; }
    void collect();
    /// From now on shouldCollect() says so whenever anything was made since the last collection (in a large
    /// heap: enough to be worth a look), and freed cells are overwritten (to AddressSanitizer they are out of
    /// bounds). Finds what is not kept alive.
    void collectAlways();
    /// @returns the heap that a cell lives in.
    [[nodiscard]] static Heap& of(const Cell& cell);

    /// Called at each collection to mark what is alive for reasons of its own.
    void addRootSource(std::function<void(Tracer&)> source) { m_sources.push_back(std::move(source)); }
    /// Called after marking, before cells are destroyed: weak tables drop what isMarked() denies.
    void addSweepHook(std::function<void()> hook) { m_sweepHooks.push_back(std::move(hook)); }
    [[nodiscard]] static bool isMarked(const Cell* cell) { return cell->m_marked; }

    /// Cells and what they own outside the heap: what the last collection left, and all that came since.
    [[nodiscard]] std::size_t bytesInUse() const { return m_liveBytes + m_bytesSinceCollection; }
    [[nodiscard]] std::size_t liveCells() const { return m_liveCells; }
    [[nodiscard]] std::size_t collections() const { return m_collections; }

    static constexpr std::size_t kMaxCellBytes = 768;

private:
    friend class RootBase;
    struct Block;
    struct FreeCell {
        FreeCell* next;
    };
    static constexpr std::size_t kGranuleBytes = 16;
    static constexpr std::size_t kClasses = kMaxCellBytes / kGranuleBytes;

    void* allocate(std::size_t bytes);
    void giveBack(void* cell);
    void addBlock(std::size_t sizeClass);
    void sweep();
    void drain(Tracer& tracer);
    void markStack(Tracer& tracer);
    void markWord(std::uintptr_t word, Tracer& tracer);

    FreeCell* m_free[kClasses] = {};
    std::vector<Block*> m_blocks;
    std::unordered_set<std::uintptr_t> m_blockAddresses;
    std::uintptr_t m_lowest = UINTPTR_MAX, m_highest = 0; // of all blocks, to reject stack words at once
    RootBase* m_roots = nullptr;
    std::vector<std::function<void(Tracer&)>> m_sources;
    std::vector<std::function<void()>> m_sweepHooks;
    std::vector<Cell*> m_pending;
    std::size_t m_bytesSinceCollection = 0, m_liveBytes = 0;
    std::size_t m_thresholdBytes;
    std::size_t m_liveCells = 0, m_collections = 0;
    bool m_collectsAlways = false;
};

} // namespace flash::vm
