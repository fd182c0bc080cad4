#include "flash/vm/AtomTable.h"

#include <gtest/gtest.h>
#include <map>
#include <random>

namespace flash::vm
{
namespace
{

// Names come by the thousand and go with a collection: those that are held are found again, and no text ever
// has two.
TEST(AtomTable, FindsWhatIsHeldThroughCollections)
{
    Heap heap;
    AtomTable names(heap);
    std::mt19937 random(3);
    RootedList<Name> held(heap);
    std::map<std::u16string, Atom*> known;
    for (int round = 0; round < 12; ++round) {
        const int count = round % 3 == 2 ? 10 : 20'000;
        for (int i = 0; i < count; ++i) {
            const std::string text = "name" + std::to_string(random() % 60'000);
            const Name name = names.intern(std::string_view(text));
            const auto [entry, isNew] = known.emplace(name.view(), name.cell());
            ASSERT_EQ(entry->second, name.cell()) << text;
            if (isNew && random() % 8 == 0) held.push_back(name);
        }
        if (round % 4 == 3) held->clear();
        heap.collect();
        known.clear();
        for (std::size_t i = 0; i < held.size(); ++i) {
            const Name name = held[i];
            known.emplace(name.view(), name.cell());
            ASSERT_EQ(names.intern(name.view()), name);
        }
    }
    EXPECT_EQ(names.intern(std::string_view("__proto__")), names.common().proto);
}

TEST(AtomTable, TextsOfTwoPiecesAndOfMoreAreTheSameName)
{
    Heap heap;
    AtomTable names(heap);
    String* left = names.intern(std::string_view("left")).string();
    String* right = names.intern(std::string_view("right")).string();
    String* two = heap.make<String>(left, right);
    EXPECT_EQ(two->view(), u"leftright");
    String* more = heap.make<String>(heap.make<String>(u"a text of more than a few letters"), right);
    EXPECT_EQ(heap.make<String>(more, two)->view(), u"a text of more than a few lettersrightleftright");
    EXPECT_EQ(names.intern(two), names.intern(std::string_view("leftright")));
}

} // namespace
} // namespace flash::vm
