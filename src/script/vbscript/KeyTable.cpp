#include "script/vbscript/KeyTable.h"

#include "script/vbscript/Text.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <new>

namespace script::vbscript
{

namespace
{

constexpr std::size_t kFewSlots = 16;
constexpr std::size_t kFewEntries = 8;
constexpr std::size_t kManyGaps = 32; // entries from which on gaps are closed

// Keys that differ in their last figure only (x1, x2, ...; 1, 2, ...) are what scripts number things with and
// walk in order. Their hashes differ in these bits only, so that such neighbours share a line of slots.
constexpr unsigned kNeighbours = 15;
constexpr int kNeighbourBits = 4;

constexpr double kExactWhole = 9007199254740992.0; // up to here a double holds every whole number

// Each bit of the words that went in changes about half of those that come out.
std::uint64_t mixed(std::uint64_t bits)
{
    bits *= 0x9E3779B97F4A7C15U;
    return bits ^ bits >> 32;
}
std::uint32_t finished(std::uint64_t bits) { return static_cast<std::uint32_t>(mixed(bits)); }

template <bool kIgnoreCase>
std::uint32_t hashText(std::u16string_view text)
{
    if (text.empty()) return 0;
    const auto fold = [](char16_t c) { return kIgnoreCase ? lowerCase(c) : c; };
    const unsigned last = fold(text.back());
    const std::size_t before = text.size() - 1;
    std::uint64_t hash = text.size();
    std::size_t i = 0;
    for (; i + 4 <= before; i += 4) {
        std::uint64_t word = 0;
        if constexpr (kIgnoreCase) {
            for (std::size_t k = 0; k < 4; ++k) word = word << 16 | fold(text[i + k]);
        } else {
            std::memcpy(&word, text.data() + i, sizeof word);
        }
        hash = mixed(hash ^ word);
    }
    std::uint64_t rest = last >> kNeighbourBits;
    for (; i < before; ++i) rest = rest << 16 | fold(text[i]);
    return finished(mixed(hash ^ rest)) ^ (last & kNeighbours);
}

bool isNumber(const Value& value) { return value.isNumeric() || value.type() == VarType::Date; }

double numberOf(const Value& value)
{
    if (value.isWhole()) return value.whole();
    if (value.type() == VarType::Currency) return static_cast<double>(value.tenThousandths()) / 10000.0;
    return value.asReal() + 0.0; // -0 is 0
}

std::uint32_t hashNumber(double number)
{
    if (!(std::fabs(number) < kExactWhole) || number != std::trunc(number))
        return finished(mixed(std::bit_cast<std::uint64_t>(number)));
    const auto whole = static_cast<std::uint64_t>(static_cast<std::int64_t>(number));
    return finished(mixed(whole >> kNeighbourBits)) ^ (static_cast<std::uint32_t>(whole) & kNeighbours);
}

// Of keys that are no texts.
bool isSame(const Value& left, const Value& right)
{
    if (isNumber(left) && isNumber(right))
        return std::bit_cast<std::uint64_t>(numberOf(left)) == std::bit_cast<std::uint64_t>(numberOf(right));
    if (left.type() != right.type()) return false;
    if (left.isObject()) return left.asObject() == right.asObject();
    if (left.type() == VarType::Error) return left.errorCode() == right.errorCode();
    return true;
}

} // namespace

// ---- entries

KeyTable::Entry::Entry(const Value& key, const Value& value) : item(value) { setKey(key); }

KeyTable::Entry::~Entry()
{
    if (kind == KeyKind::Variant) variant.~Value();
}

Value KeyTable::Entry::key() const { return kind == KeyKind::Text ? Value::string(text()) : variant; }

// Where there is no key yet.
void KeyTable::Entry::setKey(const Value& key)
{
    length = 0;
    if (key.isString() && !key.hasOddByte() && key.text().size() <= kShortText) {
        kind = KeyKind::Text;
        length = static_cast<std::uint8_t>(key.text().size());
        new (&shortText) std::array<char16_t, kShortText>;
        std::copy_n(key.text().data(), length, shortText.data());
    } else {
        kind = KeyKind::Variant;
        new (&variant) Value(key);
    }
}

Value KeyTable::Entry::takeKey()
{
    Value taken = kind == KeyKind::Text ? Value() : std::move(variant);
    if (kind == KeyKind::Variant) variant.~Value();
    kind = KeyKind::Gap;
    return taken;
}

// ---- looking up

std::uint32_t KeyTable::hashOf(const Value& key) const
{
    std::uint64_t bits = static_cast<std::uint64_t>(key.type());
    switch (key.type()) {
    case VarType::String: return m_ignoreCase ? hashText<true>(key.text()) : hashText<false>(key.text());
    case VarType::Empty:
    case VarType::Null: break;
    case VarType::Object: bits ^= reinterpret_cast<std::uintptr_t>(key.asObject()); break;
    case VarType::Error: bits ^= static_cast<std::uint32_t>(key.errorCode()); break;
    default: return hashNumber(numberOf(key));
    }
    return finished(mixed(bits));
}

template <class Same>
KeyTable::Probe KeyTable::search(std::uint32_t hash, Same same) const
{
    const std::size_t mask = m_slotCount - 1;
    std::size_t at = hash & mask;
    for (; m_slots[at].next != 0; at = (at + 1) & mask) {
        const Slot& slot = m_slots[at];
        if (slot.hash == hash && slot.next != kDeleted && same(m_entries[slot.next - 1]))
            return {hash, slot.next - 1, at};
    }
    return {hash, kNone, at};
}

KeyTable::Probe KeyTable::find(const Value& key) const
{
    const std::uint32_t hash = hashOf(key);
    if (m_slotCount == 0) return {hash};
    if (!key.isString()) {
        return search(hash, [&](const Entry& entry) {
            return entry.kind == KeyKind::Variant && isSame(entry.variant, key);
        });
    }
    const std::u16string_view text = key.text();
    const auto textOf = [](const Entry& entry) {
        return entry.kind == KeyKind::Text ? entry.text() : entry.variant.text();
    };
    const auto isText = [](const Entry& entry) {
        return entry.kind == KeyKind::Text || entry.variant.isString();
    };
    if (m_ignoreCase) {
        return search(hash,
                      [&](const Entry& entry) { return isText(entry) && sameText(textOf(entry), text); });
    }
    return search(hash, [&](const Entry& entry) { return isText(entry) && textOf(entry) == text; });
}

// ---- changing

void KeyTable::occupy(std::uint32_t hash, std::uint32_t place)
{
    const std::size_t mask = m_slotCount - 1;
    std::size_t at = hash & mask;
    while (m_slots[at].next != 0) at = (at + 1) & mask;
    m_slots[at] = {hash, place + 1};
    ++m_taken;
}

void KeyTable::insert(const Probe& missed, const Value& key, const Value& item)
{
    const bool moved = makeRoomForSlot();
    if (m_used == m_capacity) resizeEntries(std::max(kFewEntries, m_capacity * 2));
    new (m_entries.get() + m_used) Entry(key, item);
    const auto place = static_cast<std::uint32_t>(m_used++);
    ++m_count;
    if (moved) {
        occupy(missed.hash, place);
    } else {
        m_slots[missed.slot] = {missed.hash, place + 1};
        ++m_taken;
    }
}

Value KeyTable::rename(const Probe& found, const Value& to)
{
    m_slots[found.slot].next = kDeleted;
    makeRoomForSlot();
    Value old = m_entries[found.place].takeKey();
    m_entries[found.place].setKey(to);
    occupy(hashOf(to), found.place);
    return old;
}

std::pair<Value, Value> KeyTable::remove(const Probe& found)
{
    m_slots[found.slot].next = kDeleted;
    Entry& entry = m_entries[found.place];
    std::pair<Value, Value> gone(entry.takeKey(), std::move(entry.item));
    --m_count;
    if (m_used >= kManyGaps && m_count * 2 < m_used) {
        closeGaps();
        resizeEntries(std::max(kFewEntries, m_count * 2));
    }
    return gone;
}

// ---- memory

std::size_t KeyTable::bytesToGrow() const { return m_count * (sizeof(Entry) + 4 * sizeof(Slot)); }

// @returns whether the slots have moved
bool KeyTable::makeRoomForSlot()
{
    if ((m_taken + 1) * 2 <= m_slotCount) return false;
    resizeSlots(std::max(kFewSlots, std::bit_ceil((m_count + 1) * 2)));
    return true;
}

// Deleted slots are left behind. Slots come in the order of their hashes' low bits, so that they go to two or
// fewer places that move along.
void KeyTable::resizeSlots(std::size_t wanted)
{
    std::unique_ptr<Slot[], Free> old(static_cast<Slot*>(std::calloc(wanted, sizeof(Slot))));
    if (!old) throw std::bad_alloc();
    HeapUse::add(wanted * sizeof(Slot));
    HeapUse::remove(m_slotCount * sizeof(Slot));
    std::swap(old, m_slots);
    const std::size_t oldCount = std::exchange(m_slotCount, wanted);
    m_taken = 0;
    for (std::size_t i = 0; i < oldCount; ++i) {
        if (old[i].next != 0 && old[i].next != kDeleted) occupy(old[i].hash, old[i].next - 1);
    }
}

void KeyTable::closeGaps()
{
    std::vector<std::uint32_t> moved(m_used);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < m_used; ++i) {
        if (m_entries[i].kind == KeyKind::Gap) continue;
        moved[i] = static_cast<std::uint32_t>(kept);
        // The gap in front holds nothing any more, so that the entry may move there by its bits.
        if (kept != i)
            std::memcpy(static_cast<void*>(&m_entries[kept]), static_cast<void*>(&m_entries[i]),
                        sizeof(Entry));
        ++kept;
    }
    m_used = kept;
    for (std::size_t i = 0; i < m_slotCount; ++i) {
        Slot& slot = m_slots[i];
        if (slot.next != 0 && slot.next != kDeleted) slot.next = moved[slot.next - 1] + 1;
    }
    resizeSlots(std::max(kFewSlots, std::bit_ceil((m_count + 1) * 2)));
}

void KeyTable::resizeEntries(std::size_t wanted)
{
    void* memory = std::realloc(static_cast<void*>(m_entries.get()), wanted * sizeof(Entry));
    if (!memory) throw std::bad_alloc();
    static_cast<void>(m_entries.release());
    m_entries.reset(static_cast<Entry*>(memory));
    HeapUse::add(wanted * sizeof(Entry));
    HeapUse::remove(m_capacity * sizeof(Entry));
    m_capacity = wanted;
}

void KeyTable::destroy()
{
    for (std::size_t i = 0; i < m_used; ++i) m_entries[i].~Entry();
    HeapUse::remove(m_capacity * sizeof(Entry) + m_slotCount * sizeof(Slot));
}

void KeyTable::swap(KeyTable& other) noexcept
{
    std::swap(m_entries, other.m_entries);
    std::swap(m_used, other.m_used);
    std::swap(m_capacity, other.m_capacity);
    std::swap(m_slots, other.m_slots);
    std::swap(m_slotCount, other.m_slotCount);
    std::swap(m_taken, other.m_taken);
    std::swap(m_count, other.m_count);
    std::swap(m_ignoreCase, other.m_ignoreCase);
}

// ---- walking

std::vector<Value> KeyTable::keys() const
{
    std::vector<Value> found;
    found.reserve(m_count);
    for (std::size_t i = 0; i < m_used; ++i) {
        if (m_entries[i].kind != KeyKind::Gap) found.push_back(m_entries[i].key());
    }
    return found;
}

std::vector<Value> KeyTable::items() const
{
    std::vector<Value> found;
    found.reserve(m_count);
    for (std::size_t i = 0; i < m_used; ++i) {
        if (m_entries[i].kind != KeyKind::Gap) found.push_back(m_entries[i].item);
    }
    return found;
}

} // namespace script::vbscript
