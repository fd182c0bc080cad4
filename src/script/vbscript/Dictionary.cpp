#include "script/vbscript/Dictionary.h"

#include "script/vbscript/Convert.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Text.h"

#include <array>
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
    m_entries.clear();
    m_places.clear();
}

Result<std::u16string> Dictionary::keyForm(const Value& key) const
{
    if (key.isString()) return u"s" + (m_ignoreCase ? folded(key.text()) : std::u16string(key.text()));
    if (key.isArray()) return fault(error::kInvalidCall);
    std::uint64_t bits = 0;
    char16_t mark = u'n';
    if (key.isObject()) {
        mark = u'o';
        bits = reinterpret_cast<std::uintptr_t>(key.asObject());
    } else if (key.isNull() || key.isEmpty()) {
        return std::u16string(key.isNull() ? u"0" : u"e");
    } else if (key.type() == VarType::Error) {
        mark = u'r';
        bits = static_cast<std::uint32_t>(key.errorCode());
    } else {
        const double number = TRY_RESULT(toDouble(key, Locale::english())) + 0.0; // -0 is 0
        std::memcpy(&bits, &number, sizeof bits);
    }
    std::u16string form(1, mark);
    for (int shift = 0; shift < 64; shift += 16) form += static_cast<char16_t>(bits >> shift);
    return form;
}

void Dictionary::insert(std::u16string form, const Value& key, const Value& item)
{
    m_places.emplace(std::move(form), m_entries.size());
    m_entries.push_back({key, item});
}

Result<Value> Dictionary::readItem(const Value& key)
{
    auto form = TRY_RESULT(keyForm(key));
    const auto found = m_places.find(form);
    if (found != m_places.end()) return m_entries[found->second].item;
    // Reading a key that is not there adds it.
    CHECK_RESULT(m_engine->reserve(sizeof(Entry)));
    insert(std::move(form), key, Value());
    return Value();
}

Result<Value> Dictionary::writeItem(const Value& key, const Value& value)
{
    auto form = TRY_RESULT(keyForm(key));
    const auto found = m_places.find(form);
    if (found != m_places.end()) {
        const Value old = std::exchange(m_entries[found->second].item, value);
    } else {
        insert(std::move(form), key, value);
    }
    return Value();
}

Result<Value> Dictionary::add(const Value& key, const Value& value)
{
    auto form = TRY_RESULT(keyForm(key));
    if (m_places.count(form) != 0) return fault(error::kKeyExists);
    insert(std::move(form), key, value);
    return Value();
}

Result<Value> Dictionary::rename(const Value& from, const Value& to)
{
    const auto oldForm = TRY_RESULT(keyForm(from));
    auto newForm = TRY_RESULT(keyForm(to));
    const auto found = m_places.find(oldForm);
    if (found == m_places.end()) return fault(error::kElementNotFound);
    if (newForm != oldForm && m_places.count(newForm) != 0) return fault(error::kKeyExists);
    const std::size_t place = found->second;
    m_places.erase(found);
    m_places.emplace(std::move(newForm), place);
    m_entries[place].key = to;
    return Value();
}

Result<Value> Dictionary::remove(const Value& key)
{
    const auto form = TRY_RESULT(keyForm(key));
    const auto found = m_places.find(form);
    if (found == m_places.end()) return fault(error::kElementNotFound);
    const Entry gone = std::exchange(m_entries[found->second], Entry{Value(), Value(), true});
    m_places.erase(found);
    if (m_entries.size() < 32 || m_places.size() * 2 > m_entries.size()) return Value();
    std::vector<Entry> kept;
    for (Entry& entry : m_entries) {
        if (entry.removed) continue;
        m_places[TRY_RESULT(keyForm(entry.key))] = kept.size();
        kept.push_back(std::move(entry));
    }
    m_entries = std::move(kept);
    return Value();
}

Result<Value> Dictionary::setCompareMode(const Value& mode)
{
    const std::int32_t wanted = TRY_RESULT(toLong(mode, m_engine->locale()));
    if (!m_places.empty() || wanted < 0 || wanted > 2) return fault(error::kInvalidCall);
    m_ignoreCase = wanted == 1;
    return Value();
}

std::vector<Value> Dictionary::all(Value Entry::*part) const
{
    std::vector<Value> found;
    found.reserve(m_places.size());
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
        case kItem: return writeItem(arguments[0], arguments[1]);
        case kKey: return rename(arguments[0], arguments[1]);
        case kCompareMode: return setCompareMode(arguments[0]);
        default: return fault(error::kNoSuchMember);
        }
    }
    switch (member) {
    case kItem: return readItem(arguments[0]);
    case kAdd: return add(arguments[0], arguments[1]);
    case kExists: {
        const auto form = TRY_RESULT(keyForm(arguments[0]));
        return Value::boolean(m_places.count(form) != 0);
    }
    case kItems: return Value::array(all(&Entry::item));
    case kKeys: return Value::array(all(&Entry::key));
    case kRemove: return remove(arguments[0]);
    case kRemoveAll: clear(); return Value();
    case kCount: return Value::longInteger(static_cast<std::int32_t>(m_places.size()));
    case kCompareMode: return Value::longInteger(m_ignoreCase ? 1 : 0);
    default: return fault(error::kNoSuchMember); // Key is for writing only
    }
}

} // namespace script::vbscript
