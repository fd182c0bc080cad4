#include "script/vbscript/Dictionary.h"

#include "script/vbscript/Convert.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace script::vbscript
{

namespace
{

enum Member { kItem, kAdd, kExists, kItems, kKeys, kKey, kRemove, kRemoveAll, kCount, kCompareMode };
constexpr std::array<std::u16string_view, 10> kNames = {
    u"item", u"add", u"exists", u"items", u"keys", u"key", u"remove", u"removeall", u"count", u"comparemode"};
constexpr char kLayout = 0; // its address marks dictionaries

struct Arity {
    std::size_t least;
    std::size_t most;
};
constexpr std::array<Arity, 10> kArities = {
    {{1, 1}, {2, 2}, {1, 1}, {0, 0}, {0, 0}, {1, 1}, {1, 1}, {0, 0}, {0, 0}, {0, 0}}};

constexpr std::size_t kFewSlots = 16;
constexpr std::size_t kManyGaps = 32; // entries from which on gaps are closed

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
    std::uint64_t hash = text.size();
    std::size_t i = 0;
    for (; i + 4 <= text.size(); i += 4) {
        std::uint64_t word = 0;
        if constexpr (kIgnoreCase) {
            for (std::size_t k = 0; k < 4; ++k) word = word << 16 | lowerCase(text[i + k]);
        } else {
            std::memcpy(&word, text.data() + i, sizeof word);
        }
        hash = mixed(hash ^ word);
    }
    for (; i < text.size(); ++i) hash = mixed(hash ^ (kIgnoreCase ? lowerCase(text[i]) : text[i]));
    return finished(hash);
}

bool isNumber(const Value& value) { return value.isNumeric() || value.type() == VarType::Date; }

double numberOf(const Value& value)
{
    if (value.isWhole()) return value.whole();
    if (value.type() == VarType::Currency) return static_cast<double>(value.tenThousandths()) / 10000.0;
    return value.asReal() + 0.0; // -0 is 0
}

} // namespace

std::optional<Dispatch::MemberId> Dictionary::memberId(std::u16string_view name) const
{
    for (std::size_t i = 0; i < kNames.size(); ++i) {
        if (sameText(name, kNames[i])) return static_cast<MemberId>(i);
    }
    return std::nullopt;
}

const void* Dictionary::layout() const { return &kLayout; }

void Dictionary::clear()
{
    // What ends with the items may come back here.
    const auto gone = std::exchange(m_entries, {});
    m_slots.clear();
    m_count = m_taken = 0;
}

// ---- the table

Result<std::uint32_t> Dictionary::hashOf(const Value& key) const
{
    std::uint64_t bits = static_cast<std::uint64_t>(key.type());
    switch (key.type()) {
    case VarType::String: return m_ignoreCase ? hashText<true>(key.text()) : hashText<false>(key.text());
    case VarType::Array: return fault(error::kInvalidCall);
    case VarType::Empty:
    case VarType::Null: break;
    case VarType::Object: bits ^= reinterpret_cast<std::uintptr_t>(key.asObject()); break;
    case VarType::Error: bits ^= static_cast<std::uint32_t>(key.errorCode()); break;
    default: bits = std::bit_cast<std::uint64_t>(numberOf(key)); break;
    }
    return finished(mixed(bits));
}

bool Dictionary::isSame(const Value& left, const Value& right) const
{
    if (left.isString() && right.isString()) {
        if (m_ignoreCase) return sameText(left.text(), right.text());
        return left.text() == right.text();
    }
    if (isNumber(left) && isNumber(right))
        return std::bit_cast<std::uint64_t>(numberOf(left)) == std::bit_cast<std::uint64_t>(numberOf(right));
    if (left.type() != right.type()) return false;
    if (left.isObject()) return left.asObject() == right.asObject();
    if (left.type() == VarType::Error) return left.errorCode() == right.errorCode();
    return true;
}

std::uint32_t Dictionary::find(const Value& key, std::uint32_t hash) const
{
    if (m_slots.empty()) return kNone;
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t slot = hash & mask; m_slots[slot] != kNone; slot = (slot + 1) & mask) {
        const Entry& entry = m_entries[m_slots[slot]];
        if (entry.hash == hash && !entry.removed && isSame(entry.key, key)) return m_slots[slot];
    }
    return kNone;
}

std::size_t Dictionary::freeSlot(std::uint32_t hash) const
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = hash & mask;
    while (m_slots[slot] != kNone) slot = (slot + 1) & mask;
    return slot;
}

void Dictionary::insert(std::uint32_t hash, const Value& key, const Value& item)
{
    if ((m_taken + 1) * 2 > m_slots.size()) rehash(std::max(kFewSlots, std::bit_ceil((m_count + 1) * 2)));
    m_slots[freeSlot(hash)] = static_cast<std::uint32_t>(m_entries.size());
    m_entries.push_back({key, item, hash, false});
    ++m_taken;
    ++m_count;
}

// Leaves the gaps behind.
void Dictionary::rehash(std::size_t slots)
{
    if (m_entries.size() != m_count) {
        std::vector<Entry> kept;
        kept.reserve(m_count);
        for (Entry& entry : m_entries) {
            if (!entry.removed) kept.push_back(std::move(entry));
        }
        m_entries = std::move(kept);
    }
    m_slots.assign(slots, kNone);
    for (std::uint32_t place = 0; place < m_entries.size(); ++place)
        m_slots[freeSlot(m_entries[place].hash)] = place;
    m_taken = m_count;
}

// ---- what scripts call

Result<Value> Dictionary::readItem(const Value& key)
{
    const std::uint32_t hash = TRY_RESULT(hashOf(key));
    const std::uint32_t found = find(key, hash);
    if (found != kNone) return m_entries[found].item;
    // Reading a key that is not there adds it.
    CHECK_RESULT(m_engine->reserve(sizeof(Entry)));
    insert(hash, key, Value());
    return Value();
}

Result<Value> Dictionary::writeItem(const Value& key, const Value& value)
{
    const std::uint32_t hash = TRY_RESULT(hashOf(key));
    const std::uint32_t found = find(key, hash);
    if (found != kNone) {
        const Value old = std::exchange(m_entries[found].item, value);
    } else {
        insert(hash, key, value);
    }
    return Value();
}

Result<Value> Dictionary::add(const Value& key, const Value& value)
{
    const std::uint32_t hash = TRY_RESULT(hashOf(key));
    if (find(key, hash) != kNone) return fault(error::kKeyExists);
    insert(hash, key, value);
    return Value();
}

// The entry keeps its place among the others; its old slot leads nowhere until the next rehash.
Result<Value> Dictionary::rename(const Value& from, const Value& to)
{
    const std::uint32_t oldHash = TRY_RESULT(hashOf(from));
    const std::uint32_t newHash = TRY_RESULT(hashOf(to));
    const std::uint32_t found = find(from, oldHash);
    if (found == kNone) return fault(error::kElementNotFound);
    const std::uint32_t other = find(to, newHash);
    if (other != kNone && other != found) return fault(error::kKeyExists);
    const Value old = std::exchange(m_entries[found].key, to);
    m_entries[found].hash = newHash;
    if ((m_taken + 1) * 2 > m_slots.size()) {
        rehash(m_slots.size() * 2);
    } else {
        m_slots[freeSlot(newHash)] = found;
        ++m_taken;
    }
    return Value();
}

Result<Value> Dictionary::remove(const Value& key)
{
    const std::uint32_t hash = TRY_RESULT(hashOf(key));
    const std::uint32_t found = find(key, hash);
    if (found == kNone) return fault(error::kElementNotFound);
    const Entry gone = std::exchange(m_entries[found], Entry{Value(), Value(), hash, true});
    --m_count;
    if (m_entries.size() >= kManyGaps && m_count * 2 < m_entries.size())
        rehash(std::max(kFewSlots, std::bit_ceil((m_count + 1) * 2)));
    return Value();
}

Result<Value> Dictionary::setCompareMode(const Value& mode)
{
    const std::int32_t wanted = TRY_RESULT(toLong(mode, m_engine->locale()));
    if (m_count != 0 || wanted < 0 || wanted > 2) return fault(error::kInvalidCall);
    m_ignoreCase = wanted == 1;
    clear(); // the hashes of removed keys
    return Value();
}

std::vector<Value> Dictionary::all(Value Entry::*part) const
{
    std::vector<Value> found;
    found.reserve(m_count);
    for (const Entry& entry : m_entries) {
        if (!entry.removed) found.push_back(entry.*part);
    }
    return found;
}

Ref<Enumerator> Dictionary::enumerate() { return Ref<Enumerator>(new ListEnumerator(all(&Entry::key))); }

Result<Value> Dictionary::invoke(MemberId member, Access access, Arguments arguments)
{
    if (!m_engine || member < kItem || member > kCompareMode) return fault(error::kNoSuchMember);
    const bool puts = access == Access::Put || access == Access::PutRef;
    const Arity arity = kArities[static_cast<std::size_t>(member)];
    const std::size_t count = arguments.size() - (puts ? 1 : 0);
    if (count < arity.least || count > arity.most) return fault(error::kWrongArguments);
    if (puts) {
        switch (member) {
        case kItem: {
            if (access == Access::PutRef) return writeItem(arguments[0], arguments[1]);
            // Without Set an object stands for its default value.
            const Ref<Dictionary> kept(this);
            const Value value = TRY_RESULT(m_engine->plain(arguments[1]));
            return m_engine ? writeItem(arguments[0], value) : fault(error::kNoSuchMember);
        }
        case kKey: return rename(arguments[0], arguments[1]);
        case kCompareMode: return setCompareMode(arguments[0]);
        default: return fault(error::kNoSuchMember);
        }
    }
    switch (member) {
    case kItem: return readItem(arguments[0]);
    case kAdd: return add(arguments[0], arguments[1]);
    case kExists: {
        const std::uint32_t hash = TRY_RESULT(hashOf(arguments[0]));
        return Value::boolean(find(arguments[0], hash) != kNone);
    }
    case kItems: return Value::array(all(&Entry::item));
    case kKeys: return Value::array(all(&Entry::key));
    case kRemove: return remove(arguments[0]);
    case kRemoveAll: clear(); return Value();
    case kCount: return Value::longInteger(static_cast<std::int32_t>(m_count));
    case kCompareMode: return Value::longInteger(m_ignoreCase ? 1 : 0);
    default: return fault(error::kNoSuchMember); // Key is for writing only
    }
}

} // namespace script::vbscript
