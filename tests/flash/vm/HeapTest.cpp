#include "flash/vm/AtomTable.h"
#include "flash/vm/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

namespace flash::vm
{

namespace
{

/// A cell that tells when it is gone, and holds others.
class Told final : public Cell
{
public:
    explicit Told(int& alive) : m_alive(alive) { ++m_alive; }
    ~Told() override { --m_alive; }
    void trace(Tracer& tracer) override
    {
        for (const Told* other : others) tracer(other);
    }
    std::vector<Told*> others;

private:
    int& m_alive;
};

class Unbuilt final : public Cell
{
public:
    Unbuilt() { throw std::runtime_error("no"); }
};

class HeapTest : public testing::Test
{
protected:
    // In a frame of its own, which is gone when the collector looks at the stack.
    __attribute__((noinline)) void makeChains(int count)
    {
        for (int i = 0; i < count; ++i) {
            auto* first = heap.make<Told>(alive);
            auto* second = heap.make<Told>(alive);
            first->others = {second, first};
            second->others = {first};
        }
    }
    __attribute__((noinline)) void collect() { heap.collect(); }

    static constexpr int kFew = 20; // that words left on the stack may still point at
    int alive = 0;
    Heap heap;
};

} // namespace

TEST_F(HeapTest, FreesWhatOnlyItselfHolds)
{
    makeChains(500);
    EXPECT_EQ(alive, 1000);
    collect();
    EXPECT_LT(alive, kFew);
}

TEST_F(HeapTest, KeepsWhatIsRootedThroughAnyNumberOfSteps)
{
    constexpr int kSteps = 200'000; // deeper than any stack
    Root<Told> first(heap, heap.make<Told>(alive));
    Told* last = first.get();
    for (int i = 1; i < kSteps; ++i) {
        auto* next = heap.make<Told>(alive);
        last->others.push_back(next);
        last = next;
    }
    collect();
    EXPECT_EQ(alive, kSteps);
    first->others.clear();
    last = nullptr;
    collect();
    EXPECT_LT(alive, kSteps / 2 + kFew) << "a word on the stack may hold the rest of the chain";
    first = nullptr;
}

TEST_F(HeapTest, ListsOfRootsMoveAndEndInAnyOrder)
{
    auto one = std::make_unique<RootedList<Told*>>(heap);
    for (int i = 0; i < 100; ++i) one->push_back(heap.make<Told>(alive));
    auto two = std::make_unique<RootedList<Told*>>(std::move(*one));
    auto three = std::make_unique<RootedList<Told*>>(heap, two->begin() + 50, two->end());
    EXPECT_EQ(two->size(), 100U);
    one.reset();
    collect();
    EXPECT_EQ(alive, 100);
    two.reset();
    collect();
    EXPECT_GE(alive, 50);
    EXPECT_LT(alive, 50 + kFew);
    Root<Told> kept(heap, (*three)[7]);
    three.reset();
    collect();
    EXPECT_GE(alive, 1);
    EXPECT_LT(alive, 1 + kFew);
}

TEST_F(HeapTest, AsksItsSourcesAndTellsItsHooks)
{
    std::vector<Told*> live; // as a display list would hold them
    int told = 0, dead = 0;
    for (int i = 0; i < 300; ++i) live.push_back(heap.make<Told>(alive));
    std::vector<Told*> watched = live;
    heap.addRootSource([&](Tracer& tracer) {
        for (std::size_t i = 0; i < 10; ++i) tracer(live[i]);
    });
    heap.addSweepHook([&] {
        ++told;
        dead = 0;
        for (const Told* cell : watched) dead += Heap::isMarked(cell) ? 0 : 1;
        std::erase_if(watched, [](const Told* cell) { return !Heap::isMarked(cell); });
    });
    collect();
    EXPECT_EQ(told, 1);
    EXPECT_GT(dead, 300 - 10 - kFew);
    EXPECT_EQ(static_cast<int>(watched.size()), alive);
    collect();
    EXPECT_EQ(dead, 0);
}

TEST_F(HeapTest, GivesBackThePlaceOfACellThatCannotBeMade)
{
    const std::size_t before = heap.liveCells();
    for (int i = 0; i < 1000; ++i) EXPECT_THROW(heap.make<Unbuilt>(), std::runtime_error);
    EXPECT_EQ(heap.liveCells(), before);
    collect(); // no destructor runs for what never was
}

TEST_F(HeapTest, CountsWhatLiesOutside)
{
    const std::size_t before = heap.bytesInUse();
    EXPECT_FALSE(heap.shouldCollect());
    heap.noteExternalBytes(std::size_t{1} << 30);
    EXPECT_TRUE(heap.shouldCollect());
    EXPECT_GE(heap.bytesInUse(), before + (std::size_t{1} << 30));
    collect();
    EXPECT_FALSE(heap.shouldCollect());
    EXPECT_LT(heap.bytesInUse(), std::size_t{1} << 20);
    EXPECT_EQ(heap.collections(), 1U);

    heap.collectAlways();
    EXPECT_FALSE(heap.shouldCollect());
    makeChains(1);
    EXPECT_TRUE(heap.shouldCollect());
}

TEST_F(HeapTest, TextsOfManyPiecesAreFlattenedWithoutAStack)
{
    constexpr int kPieces = 200'000;
    Root<String> left(heap, heap.make<String>(u"a"));
    Root<String> right(heap, heap.make<String>(u"z"));
    for (int i = 0; i < kPieces; ++i) {
        left = heap.make<String>(left.get(), heap.make<String>(std::u16string(1, u'a' + i % 26)));
        right = heap.make<String>(heap.make<String>(u"-"), right.get());
    }
    collect(); // marks a tree as deep as that, too
    ASSERT_EQ(left->length(), kPieces + 1U);
    EXPECT_EQ(left->view().size(), left->length());
    EXPECT_EQ(left->view().substr(0, 4), u"aabc");
    EXPECT_EQ(right->view().substr(kPieces - 1), u"-z");
    // What is in it several times is there several times.
    Root<String> twice(heap, heap.make<String>(u"ab"));
    for (int i = 0; i < 12; ++i) twice = heap.make<String>(twice.get(), twice.get());
    EXPECT_EQ(twice->view().size(), 2U << 12);
    EXPECT_EQ(twice->view().substr(4000, 4), u"abab");
}

TEST(Numbers, WrapAsTheyDoInScripts)
{
    const double huge = 1e300, inf = std::numeric_limits<double>::infinity();
    const struct {
        double number;
        std::int32_t wrapped;
    } kCases[] = {{0.0, 0},
                  {-0.9, 0},
                  {1.9, 1},
                  {-1.9, -1},
                  {2147483647.5, 2147483647},
                  {2147483648.0, -2147483647 - 1},
                  {4294967295.0, -1},
                  {4294967296.0, 0},
                  {-2147483649.0, 2147483647},
                  {9007199254740993.0, 0},
                  {huge, 0},
                  {inf, 0},
                  {-inf, 0},
                  {std::nan(""), 0},
                  {4294967296.0 * 4294967296.0 + 4096, 4096}};
    for (const auto& c : kCases) {
        EXPECT_EQ(toInt32(c.number), c.wrapped) << c.number;
        EXPECT_EQ(toUint32(c.number), static_cast<std::uint32_t>(c.wrapped)) << c.number;
    }
    for (double number = 1; number < 1e15; number = number * 7 + 3) {
        EXPECT_EQ(toUint32(-number), 0U - toUint32(number)) << number;
        EXPECT_EQ(toUint32(number), static_cast<std::uint32_t>(static_cast<std::uint64_t>(number)));
    }
}

TEST(Numbers, ReadPrefixesAndNothingElse)
{
    const auto isNan = [](double number) { return std::isnan(number); };
    EXPECT_EQ(parseFloatPrefix(u" 12.5e1x"), 125);
    EXPECT_EQ(parseFloatPrefix(u"-.5"), -0.5);
    EXPECT_TRUE(isNan(parseFloatPrefix(u"x1")));
    EXPECT_TRUE(isNan(parseFloatPrefix(u"")));
    EXPECT_EQ(parseIntPrefix(u"0x1fz", 0), 31);
    EXPECT_EQ(parseIntPrefix(u"-7.9", 10), -7);
    EXPECT_EQ(parseIntPrefix(u"zz", 36), 35 * 36 + 35);
    EXPECT_TRUE(isNan(parseIntPrefix(u"9", 8)));
    // A thousand digits are a number, too, and no loop without end.
    EXPECT_EQ(parseFloatPrefix(std::u16string(400, u'9')), std::numeric_limits<double>::infinity());
    EXPECT_EQ(parseFloatPrefix(u"0." + std::u16string(400, u'0') + u"1"), 0);
    EXPECT_EQ(parseFloatPrefix(u"1" + std::u16string(500, u'0') + u"e-100"),
              std::numeric_limits<double>::infinity());
    EXPECT_EQ(parseFloatPrefix(u"-0." + std::u16string(500, u'0') + u"1e100"), 0);
    EXPECT_EQ(parseNumber(u"0." + std::u16string(400, u'0') + u"1", 8), 0);
    EXPECT_EQ(parseFloatPrefix(u"1e-" + std::u16string(400, u'9')), 0);
    EXPECT_EQ(parseFloatPrefix(u"1e" + std::u16string(400, u'9')), std::numeric_limits<double>::infinity());
}

} // namespace flash::vm
