#include "script/vbscript/Dictionary.h"

#include "script/vbscript/Convert.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Text.h"

#include <array>
#include <bit>

namespace script::vbscript
{

namespace
{

enum Member { kItem, kAdd, kExists, kItems, kKeys, kKey, kRemove, kRemoveAll, kCount, kCompareMode };
constexpr std::array<std::u16string_view, 10> kNames = {
    u"item", u"add", u"exists", u"items", u"keys", u"key", u"remove", u"removeall", u"count", u"comparemode"};
constexpr char kLayout = 0; // its address marks dictionaries

struct Arity {
    std::size_t min;
    std::size_t max;
};
constexpr std::array<Arity, 10> kArities = {
    {{1, 1}, {2, 2}, {1, 1}, {0, 0}, {0, 0}, {1, 1}, {1, 1}, {0, 0}, {0, 0}, {0, 0}}};

/// @errors 5 for arrays, which are no keys
Result<KeyTable::Probe> lookUp(const KeyTable& table, const Value& key)
{
    if (key.isArray()) return fault(error::kInvalidCall);
    return table.find(key);
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
    const KeyTable gone = std::exchange(m_table, {});
    m_table.setIgnoreCase(gone.ignoresCase());
}

// ---- what scripts call

Result<void> Dictionary::insert(const KeyTable::Probe& missed, const Value& key, const Value& item)
{
    // A number is a power of two whenever the table may have to grow.
    if (std::has_single_bit(m_table.count())) CHECK_RESULT(m_engine->reserve(m_table.bytesToGrow()));
    m_table.insert(missed, key, item);
    return {};
}

Result<Value> Dictionary::readItem(const Value& key)
{
    const KeyTable::Probe found = TRY_RESULT(lookUp(m_table, key));
    if (found.isThere()) return m_table.item(found);
    // Reading a key that is not there adds it.
    CHECK_RESULT(insert(found, key, Value()));
    return Value();
}

Result<Value> Dictionary::writeItem(const Value& key, const Value& value)
{
    const KeyTable::Probe found = TRY_RESULT(lookUp(m_table, key));
    if (!found.isThere()) {
        CHECK_RESULT(insert(found, key, value));
    } else {
        const Value old = m_table.setItem(found, value);
    }
    return Value();
}

Result<Value> Dictionary::add(const Value& key, const Value& value)
{
    const KeyTable::Probe found = TRY_RESULT(lookUp(m_table, key));
    if (found.isThere()) return fault(error::kKeyExists);
    CHECK_RESULT(insert(found, key, value));
    return Value();
}

Result<Value> Dictionary::rename(const Value& from, const Value& to)
{
    const KeyTable::Probe found = TRY_RESULT(lookUp(m_table, from));
    const KeyTable::Probe other = TRY_RESULT(lookUp(m_table, to));
    if (!found.isThere()) return fault(error::kElementNotFound);
    if (other.isThere() && other.place != found.place) return fault(error::kKeyExists);
    const Value old = m_table.rename(found, to);
    return Value();
}

Result<Value> Dictionary::remove(const Value& key)
{
    const KeyTable::Probe found = TRY_RESULT(lookUp(m_table, key));
    if (!found.isThere()) return fault(error::kElementNotFound);
    const auto gone = m_table.remove(found);
    return Value();
}

Result<Value> Dictionary::setCompareMode(const Value& mode)
{
    const std::int32_t wanted = TRY_RESULT(toLong(mode, m_engine->locale()));
    if (m_table.count() != 0 || wanted < 0 || wanted > 2) return fault(error::kInvalidCall);
    clear(); // the hashes of removed keys
    m_table.setIgnoreCase(wanted == 1);
    return Value();
}

Ref<Enumerator> Dictionary::enumerate() { return Ref<Enumerator>(new ListEnumerator(m_table.keys())); }

Result<Value> Dictionary::invoke(MemberId member, Access access, Arguments arguments)
{
    if (!m_engine || member < kItem || member > kCompareMode) return fault(error::kNoSuchMember);
    const bool puts = access == Access::Put || access == Access::PutRef;
    const Arity arity = kArities[static_cast<std::size_t>(member)];
    const std::size_t count = arguments.size() - (puts ? 1 : 0);
    if (count < arity.min || count > arity.max) return fault(error::kWrongArguments);
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
        const KeyTable::Probe found = TRY_RESULT(lookUp(m_table, arguments[0]));
        return Value::boolean(found.isThere());
    }
    case kItems: return Value::array(m_table.items());
    case kKeys: return Value::array(m_table.keys());
    case kRemove: return remove(arguments[0]);
    case kRemoveAll: clear(); return Value();
    case kCount: return Value::longInteger(static_cast<std::int32_t>(m_table.count()));
    case kCompareMode: return Value::longInteger(m_table.ignoresCase() ? 1 : 0);
    default: return fault(error::kNoSuchMember); // Key is for writing only
    }
}

} // namespace script::vbscript
