#include "flash/vm/Shape.h"
#include "flash/vm/AtomTable.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

namespace flash::vm
{

namespace
{

class ShapeTest : public testing::Test
{
protected:
    Heap heap;
    AtomTable names{heap};
};

} // namespace

TEST_F(ShapeTest, ANameIsOneCellHoweverItCameAbout)
{
    const Name name = names.intern(std::u16string_view(u"Имя"));
    auto* joined = heap.make<String>(heap.make<String>(u"И"), heap.make<String>(u"мя"));
    EXPECT_EQ(names.intern(joined), name);
    EXPECT_EQ(joined->atom(), name.cell());
    EXPECT_NE(names.intern(std::u16string_view(u"имя")), name);
    EXPECT_TRUE(name.matches(names.intern(std::u16string_view(u"иМЯ")), false));
    EXPECT_FALSE(name.matches(names.intern(std::u16string_view(u"иМЯ")), true));
    EXPECT_EQ(names.fromUnit(u'x'), names.intern("x"));
    EXPECT_EQ(names.fromUnit(u'Я'), names.intern(std::u16string_view(u"Я")));
    EXPECT_EQ(names.fromIndex(120), names.intern("120"));
}

TEST_F(ShapeTest, OnlyTheCanonicalSpellingIsAnIndex)
{
    const struct {
        const char* text;
        std::uint32_t index;
    } kCases[] = {{"0", 0},
                  {"7", 7},
                  {"10", 10},
                  {"999999999", 999999999},
                  {"00", Atom::kNotIndex},
                  {"01", Atom::kNotIndex},
                  {"-1", Atom::kNotIndex},
                  {"1.0", Atom::kNotIndex},
                  {"1e3", Atom::kNotIndex},
                  {" 1", Atom::kNotIndex},
                  {"", Atom::kNotIndex},
                  {"99999999999999999999", Atom::kNotIndex}};
    for (const auto& c : kCases) EXPECT_EQ(names.intern(c.text).arrayIndex(), c.index) << c.text;
    for (const char* path : {"a.b", "/a", "a:b", "."}) EXPECT_TRUE(names.intern(path).isPath()) << path;
    EXPECT_FALSE(names.intern("ab_0$").isPath());
}

TEST_F(ShapeTest, FoldsTheAlphabetsOfItsTime)
{
    EXPECT_EQ(AtomTable::fold(u"AZaz09_[@"), u"azaz09_[@");
    EXPECT_EQ(AtomTable::fold(u"ÀÖ×ØÞßÿ"), u"àö×øþßÿ");
    EXPECT_EQ(AtomTable::fold(u"ĀāŃńŊŋŸ"), u"āāńńŋŋŸ");
    EXPECT_EQ(AtomTable::fold(u"ΑΩαω"), u"αωαω");
    EXPECT_EQ(AtomTable::fold(u"ЀЏАЯЁяё"), u"ѐџаяёяё");
    // Nothing is longer or shorter, and folding once is enough.
    for (std::uint32_t unit = 0; unit < 0x10000; ++unit) {
        const std::u16string once = AtomTable::fold(std::u16string(1, static_cast<char16_t>(unit)));
        ASSERT_EQ(once.size(), 1U);
        ASSERT_EQ(AtomTable::fold(once), once) << unit;
    }
}

TEST_F(ShapeTest, RemembersWhichNamesInstancesHave)
{
    EXPECT_FALSE(names.mayBeNodeName(names.intern("ball")));
    EXPECT_TRUE(names.noteNodeName(u"ball")) << "it was known as something else";
    EXPECT_FALSE(names.noteNodeName(u"never seen before"));
    EXPECT_TRUE(names.mayBeNodeName(names.intern("BALL")));
    names.renewNodeNames([&] { names.noteNodeName(u"other"); });
    EXPECT_FALSE(names.mayBeNodeName(names.intern("ball")));
    EXPECT_TRUE(names.mayBeNodeName(names.intern("other")));
    // Too many to remember: any name may be one.
    for (int i = 0; i < 60'000; ++i) {
        const std::string text = "clip" + std::to_string(i);
        names.noteNodeName(std::u16string(text.begin(), text.end()));
    }
    EXPECT_TRUE(names.hasManyNodeNames());
    EXPECT_TRUE(names.mayBeNodeName(names.intern("never an instance")));
    names.renewNodeNames([] {});
    EXPECT_FALSE(names.mayBeNodeName(names.intern("clip7")));
}

TEST_F(ShapeTest, TheSameStepsLeadToTheSameShape)
{
    Root<Shape> empty(heap, heap.make<Shape>());
    const Name x = names.intern("x"), y = names.intern("y");
    Shape* xy = empty->withAdded(heap, x, 0)->withAdded(heap, y, 0);
    EXPECT_EQ(empty->withAdded(heap, x, 0)->withAdded(heap, y, 0), xy);
    EXPECT_NE(empty->withAdded(heap, y, 0)->withAdded(heap, x, 0), xy);
    EXPECT_NE(empty->withAdded(heap, x, 1), empty->withAdded(heap, x, 0)) << "another flag";
    EXPECT_EQ(xy->slotCount(), 2U);
    EXPECT_EQ(xy->find(y, true), 1U);
    EXPECT_EQ(xy->find(names.intern("Y"), true), Shape::kMissing);
    EXPECT_EQ(xy->find(names.intern("Y"), false), 1U);
    EXPECT_FALSE(xy->hasIndexNames());
    EXPECT_TRUE(xy->withAdded(heap, names.fromIndex(5), 0)->hasIndexNames());

    Shape* own = xy->ownCopy(heap);
    own->setFlags(0, 4);
    own->remove(1);
    EXPECT_EQ(xy->properties()[0].flags, 0);
    EXPECT_EQ(xy->find(y, true), 1U);
    // One that is used as a dictionary does not make a tree of shapes.
    std::set<const Shape*> made;
    for (std::uint32_t i = 0; i < 500; ++i) made.insert(empty->withAdded(heap, names.fromIndex(i), 0));
    std::size_t shared = 0;
    for (const Shape* shape : made) shared += shape->isShared() ? 1 : 0;
    EXPECT_LT(shared, 100U);
}

// Against the plainest thing that could be meant: a list of names with their slots.
TEST_F(ShapeTest, FindsWhatWasAddedAndNotRemoved)
{
    struct Entry {
        std::uint32_t slot;
        std::uint16_t flags;
    };
    std::mt19937 random(7);
    Root<Shape> empty(heap, heap.make<Shape>());
    for (int round = 0; round < 20; ++round) {
        Root<Shape> shape(heap, round % 2 == 0 ? empty.get() : empty->ownCopy(heap));
        std::map<int, Entry> model;
        RootedList<Name> all(heap);
        for (int i = 0; i < 80; ++i) all.push_back(names.intern("Name" + std::to_string(i)));
        for (int step = 0; step < 400; ++step) {
            const int which = static_cast<int>(random() % all.size());
            const Name name = all[static_cast<std::size_t>(which)];
            const std::uint32_t at = shape->find(name, true);
            ASSERT_EQ(at != Shape::kMissing, model.contains(which)) << round << " " << step;
            if (at == Shape::kMissing) {
                const auto flags = static_cast<std::uint16_t>(random() % 8);
                shape = shape->withAdded(heap, name, flags);
                const std::uint32_t added = shape->find(name, true);
                ASSERT_NE(added, Shape::kMissing);
                model[which] = {shape->properties()[added].slot, flags};
            } else {
                ASSERT_EQ(shape->properties()[at].slot, model[which].slot);
                ASSERT_EQ(shape->properties()[at].flags, model[which].flags);
                if (random() % 3 == 0) {
                    if (shape->isShared()) shape = shape->ownCopy(heap);
                    shape->remove(shape->find(name, true));
                    model.erase(which);
                }
            }
            // No two properties share a slot, and all slots are counted.
            std::set<std::uint32_t> slots;
            for (const auto& [index, entry] : model) slots.insert(entry.slot);
            ASSERT_EQ(slots.size(), model.size());
            ASSERT_TRUE(slots.empty() || *slots.rbegin() < shape->slotCount());
            if (step % 50 == 0) heap.collect();
        }
        for (const auto& [index, entry] : model) {
            const std::string upper = "NAME" + std::to_string(index);
            EXPECT_NE(shape->find(names.intern(upper), false), Shape::kMissing);
            EXPECT_EQ(shape->find(names.intern(upper), true), Shape::kMissing);
        }
    }
}

TEST_F(ShapeTest, NamesThatNothingHoldsGo)
{
    Root<Shape> kept(heap, heap.make<Shape>());
    kept = kept->withAdded(heap, names.intern("kept"), 0);
    heap.collect();
    const std::size_t before = heap.liveCells();
    for (std::uint32_t i = 0; i < 20'000; ++i) names.fromIndex(i + 1000);
    heap.collect();
    EXPECT_LT(heap.liveCells(), before + 50);
    EXPECT_EQ(kept->find(names.intern("kept"), true), 0U);
}

} // namespace flash::vm
