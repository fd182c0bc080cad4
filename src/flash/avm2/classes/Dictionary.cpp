#include "flash/avm2/classes/ClassState.h"
#include "flash/avm2/classes/Library.h"

#include <algorithm>
#include <memory>
#include <unordered_map>

namespace flash::avm2::classes
{

namespace
{

class DictionaryObject;

/// Those dictionaries that do not keep their keys alive. The collector's hook and each of them hold the list,
/// whichever goes last.
using WeakDictionaries = std::vector<DictionaryObject*>;
struct DictionaryState {
    std::shared_ptr<WeakDictionaries> weak = std::make_shared<WeakDictionaries>();
};

/// Keys are texts, like those of all objects, or objects themselves.
class DictionaryObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    DictionaryObject(Traits* traits, Object* proto) : Object(traits, proto) { m_exotic = Exotic::First; }
    ~DictionaryObject() override
    {
        if (m_weak != nullptr) std::erase(*m_weak, this);
    }
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        for (const Entry& entry : m_entries) {
            if (m_weak == nullptr) tracer(entry.key);
            tracer(entry.value);
        }
        tracer.outside(m_entries.capacity() * sizeof(Entry) + m_index.size() * kIndexBytes);
    }
    /// From now on an entry goes when nothing else refers to its key.
    void makeWeak(std::shared_ptr<WeakDictionaries> all)
    {
        if (m_weak != nullptr) return;
        all->push_back(this);
        m_weak = std::move(all);
    }
    /// After marking, before anything is destroyed.
    void dropUnmarked()
    {
        for (Entry& entry : m_entries) {
            if (!entry.key.isObject() || Heap::isMarked(entry.key.object())) continue;
            m_index.erase(entry.key.bits());
            entry = {};
            ++m_removed;
        }
    }
    /// The names of objects as keys come here before they become texts.
    bool getObject(Value key, Value& result)
    {
        const auto found = m_index.find(key.bits());
        if (found == m_index.end()) return false;
        result = m_entries[found->second].value;
        return true;
    }
    void setObject(Value key, Value value)
    {
        if (const auto known = m_index.find(key.bits()); known != m_index.end()) {
            m_entries[known->second].value = value;
            return;
        }
        // Removed entries keep their places while loops may be walking; once they are most, they go.
        if (m_removed > kMaxRemoved && m_removed > m_entries.size() / 2) compact();
        m_index[key.bits()] = m_entries.size();
        m_entries.push_back({key, value});
    }
    bool removeObject(Value key)
    {
        const auto found = m_index.find(key.bits());
        if (found == m_index.end()) return false;
        m_entries[found->second] = {};
        ++m_removed;
        m_index.erase(found);
        return true;
    }
    bool getExotic(Vm&, const Multiname& name, Value& result) override
    {
        return name.key.isObject() && (getObject(name.key, result) || (result = Value(), true));
    }
    bool setExotic(Vm&, const Multiname& name, Value value) override
    {
        if (!name.key.isObject()) return false;
        setObject(name.key, value);
        return true;
    }
    bool hasExotic(Vm&, const Multiname& name) override
    {
        Value ignored;
        return name.key.isObject() && getObject(name.key, ignored);
    }
    bool deleteExotic(Vm&, const Multiname& name, bool& deleted) override
    {
        if (!name.key.isObject()) return false;
        deleted = removeObject(name.key);
        return true;
    }
    /// The objects, then the texts: those, too, that are not to be enumerated.
    std::uint32_t nextIndex(Vm&, std::uint32_t after) override
    {
        for (std::size_t i = after; i < m_entries.size(); ++i) {
            if (!m_entries[i].key.isUndefined()) return static_cast<std::uint32_t>(i) + 1;
        }
        const auto own = static_cast<std::uint32_t>(m_entries.size());
        PropertyTable* const texts = tableIfAny();
        if (texts == nullptr) return 0;
        for (std::uint32_t i = after > own ? after - own : 0; i < texts->size(); ++i) {
            if (!texts->at(i).name.isNull()) return i + 1 + own;
        }
        return 0;
    }
    Value nextName(Vm& vm, std::uint32_t index) override
    {
        const auto own = static_cast<std::uint32_t>(m_entries.size());
        if (index == 0) return {};
        return index <= own ? m_entries[index - 1].key : Object::nextName(vm, index - own);
    }
    Value nextValue(Vm& vm, std::uint32_t index) override
    {
        const auto own = static_cast<std::uint32_t>(m_entries.size());
        if (index == 0) return {};
        return index <= own ? m_entries[index - 1].value : Object::nextValue(vm, index - own);
    }

private:
    struct Entry {
        Value key, value; ///< undefined: removed
    };
    static constexpr std::size_t kIndexBytes = 48, kMaxRemoved = 32;
    void compact()
    {
        std::erase_if(m_entries, [](const Entry& entry) { return entry.key.isUndefined(); });
        for (std::size_t i = 0; i < m_entries.size(); ++i) m_index[m_entries[i].key.bits()] = i;
        m_removed = 0;
    }
    std::vector<Entry, vm::TracedAllocator<Entry>> m_entries;
    std::unordered_map<std::uint64_t, std::size_t> m_index; ///< by the bits of the key
    std::size_t m_removed = 0;
    std::shared_ptr<WeakDictionaries> m_weak; ///< null: keys are kept
};

Value construct(Call& call)
{
    auto& made = selfAs<DictionaryObject>(call, "flash.utils.Dictionary");
    if (!call.vm.toBoolean(call.arg(0))) return {};
    if (const auto* state = stateOf<DictionaryState>(*made.traits()->cls)) made.makeWeak(state->weak);
    return {};
}
Value toJson(Call& call) { return call.vm.string(std::string_view("Dictionary")); }

void setUp(Vm& vm, ClassObject& cls)
{
    vm.heap().addSweepHook([weak = addState<DictionaryState>(vm, cls).weak] {
        for (DictionaryObject* dictionary : *weak) dictionary->dropUnmarked();
    });
}

constexpr NativeMember kMembers[] = {{"toJSON", Kind::Prototype, &toJson, 0, 1}};

} // namespace

constinit const NativeClass kDictionary{.package = "flash.utils",
                                        .name = "Dictionary",
                                        .base = {},
                                        .constructor = &construct,
                                        .minArguments = 0,
                                        .maxArguments = 1,
                                        .allocate = &allocateNative<DictionaryObject>,
                                        .members = kMembers,
                                        .setUp = &setUp};

} // namespace flash::avm2::classes
