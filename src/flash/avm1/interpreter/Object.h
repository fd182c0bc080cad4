#pragma once

#include "flash/avm1/interpreter/PropertyFlags.h"
#include "flash/avm1/interpreter/Value.h"

#include <memory>
#include <span>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace flash::avm1
{

class Function;
class Object;
class Vm;

using RootedValues = RootedList<Value>;
using RootedNames = RootedList<Name>;

/// Getter and setter of a property made by addProperty. Either may be null.
class Accessor final : public Cell
{
public:
    Accessor(Object* getter, Object* setter, Value value) : getter(getter), setter(setter), value(value) {}
    void trace(Tracer& tracer) override;
    Object* getter;
    Object* setter;
    Value value; ///< what was last put; __resolve is called past its accessor
};

/// Collects the names that a for-in loop walks, without duplicates and without hidden names.
class NameCollector
{
public:
    NameCollector(Vm& vm, RootedNames& names) : m_vm(vm), m_names(names) {}
    /// In the order in which the loop shall see them. @param flags a name with kDontEnum hides those of the
    /// same name further up the prototype chain.
    void add(Name name, std::uint16_t flags = 0);

private:
    Vm& m_vm;
    RootedNames& m_names;
    std::unordered_set<const Atom*> m_seen; // folded names where the movie does not tell cases apart
};

/// In what ways objects answer for their own properties. Caches tell them apart by this, as objects of
/// different kinds may share a shape.
enum class Exotic : std::uint8_t {
    None,   ///< ordinary properties are all there is
    Array,  ///< elements and length
    Node,   ///< an instance of the stage: children and display properties
    Opaque, ///< anything; is asked each time
};

/// What an exotic object leaves to its ordinary properties, for one name and for as long as its shape stays.
struct Caching {
    bool get = false;  ///< an ordinary property is what a look-up finds
    bool put = false;  ///< assigning to such a property does nothing but that
    bool miss = false; ///< what is no ordinary property is not there
};

/// What makes an object more than its ordinary properties: a date's time, an array's elements, a clip's place
/// on the stage. A constructor attaches it to `this`, so that it works for classes that scripts derive, too.
/// A cell of its own: a script that makes its object something else while a function of the native runs does
/// not take the native away from under that function. A destructor must not touch other cells.
///
/// Objects with hooks are asked through getOwn and its siblings for every access to their own properties; a
/// hook that has no say calls the object's plain function of the same name (Object::getPlain for getOwn).
class Native : public Cell
{
public:
    /// Another native took this one's place. It may live on for a while.
    virtual void detached() {}

    /// Identifies the class: the address of a static variable of it (`T::kTag`, found by Object::native<T>).
    [[nodiscard]] virtual const void* tag() const = 0;
    /// What the typeof operator says.
    [[nodiscard]] virtual std::string_view typeOf() const { return "object"; }
    /// @returns None when the functions below are not to be asked. Must not change while attached.
    [[nodiscard]] virtual Exotic exotic() const { return Exotic::None; }
    /// Must be the same for all objects of one Exotic, and stay so until Vm::bumpEpoch() is called.
    [[nodiscard]] virtual Caching caching(Vm&, Name) const { return {}; }

    /// Looks for an own property. @param receiver what getters see as `this`.
    /// @returns whether there is one; its value is in `result` then.
    virtual bool getOwn(Vm& vm, Object& self, Name name, Value receiver, Value& result);
    /// Assigns to self, setters of self included; those of prototypes have been asked already when there is
    /// no own property. Properties are created when missing.
    virtual void putOwn(Vm& vm, Object& self, Name name, Value value);
    virtual bool hasOwn(Vm& vm, Object& self, Name name);
    /// @returns whether something was removed.
    virtual bool deleteOwn(Vm& vm, Object& self, Name name);
    virtual void enumerateOwn(Vm& vm, Object& self, NameCollector& names);
    /// Flags of what the native side shows as properties; as Object::changeFlags, which sees to the ordinary
    /// ones.
    virtual void changeFlags(Vm&, Name, std::uint16_t /*set*/, std::uint16_t /*clear*/) {}
    /// @returns the value that primitive conversion uses instead of asking valueOf and toString, or
    /// undefined.
    virtual Value primitive(Vm&, Object&) { return Value::undefined(); }

protected:
    Native() = default;
    Native(const Native&) : Cell() {}
};

class Object : public Cell
{
public:
    Object(Vm& vm, Object* prototype);

    // ---- access with the whole protocol: hooks, prototypes, getters, setters, watches, __resolve ---------
    // ----------- Whether names differ by case, and which properties show, depends on the version of the
    // running movie (Vm::version).

    Value get(Vm& vm, Name name);
    /// As get and put of the name that spells an index; elements of arrays are reached without the name.
    Value getIndex(Vm& vm, std::uint32_t index);
    void putIndex(Vm& vm, std::uint32_t index, Value value);
    /// As get, with other eyes: getters and __resolve see `receiver` as `this`. For `super` and primitives.
    Value get(Vm& vm, Name name, Value receiver);
    /// @returns what `__resolve` answers for a name that was not found; undefined without one.
    Value resolve(Vm& vm, Name name, Value receiver);
    /// @returns whether the object or one of its prototypes has the property. __resolve is not asked.
    bool find(Vm& vm, Name name, Value& result, Value receiver);
    void put(Vm& vm, Name name, Value value);
    bool has(Vm& vm, Name name);
    bool hasOwn(Vm& vm, Name name);
    /// @returns whether a property was removed; protected ones stay.
    bool remove(Vm& vm, Name name);
    /// Names of this object and its prototypes in the order of a for-in loop.
    RootedNames enumerate(Vm& vm);

    // ---- ordinary own properties, past any hooks ---

    bool getPlain(Vm& vm, Name name, Value receiver, Value& result);
    /// Assigns to an own property or creates it. Read-only ones stay; setters and watches are called.
    void putPlain(Vm& vm, Name name, Value value);
    /// @returns what the object itself holds under a name, undefined if nothing; of one with a getter what it
    ///          last was given
    Value ownData(Vm& vm, Name name);
    /// As ownData(), of properties that the movie's version does not see, too.
    Value ownHiddenData(Vm& vm, Name name);
    bool hasPlain(Vm& vm, Name name) const;
    bool deletePlain(Vm& vm, Name name);
    void enumeratePlain(Vm& vm, NameCollector& names) const;

    /// Creates or overwrites an own property with its flags, asking nobody. For natives that make objects.
    void define(Vm& vm, Name name, Value value, std::uint16_t flags = 0);
    void define(Vm& vm, std::string_view name, Value value, std::uint16_t flags = 0);
    /// As define, with a getter and a setter, either of which may be null.
    void defineAccessor(Vm& vm, Name name, Object* getter, Object* setter, std::uint16_t flags = 0);
    /// As hasPlain, with the properties that the running version does not see.
    [[nodiscard]] bool hasHidden(const Vm& vm, Name name) const;
    /// @returns the flags of an ordinary own property; 0 when there is none.
    [[nodiscard]] std::uint16_t flagsOf(const Vm& vm, Name name) const;
    /// Sets, then clears, flags of one own property (a null name: of all).
    void changeFlags(Vm& vm, Name name, std::uint16_t set, std::uint16_t clear);

    // ---- prototype ---------------------------------------------------------------------------------------

    /// The value of `__proto__`, which scripts may set to anything; only objects are followed.
    [[nodiscard]] Value protoValue() const { return m_proto; }
    /// @returns the object that is searched next; null where it is hidden from the running version or is a
    /// clip.
    [[nodiscard]] Object* prototype(const Vm& vm) const
    {
        Object* object = m_proto.asObject();
        if (object == nullptr || m_followsProto) [[likely]]
            return object;
        return visiblePrototype(vm);
    }
    /// As prototype(), by the rules of for-in loops, isPrototypeOf and instanceof.
    [[nodiscard]] Object* listedPrototype(const Vm& vm) const;
    void setProto(Vm& vm, Value proto);
    /// @returns whether `prototype` is in the chain, interfaces included (the instanceof operator).
    bool isInstance(Vm& vm, Object* prototype) const;

    static constexpr int kMaxPrototypeChain = 256;

    // ---- native side -------------------------------------------------------------------------------------

    [[nodiscard]] Native* nativeBase() const { return m_native; }
    /// @returns the native side when it is a T, or null.
    template <class T>
    [[nodiscard]] T* native() const
    {
        return m_native != nullptr && m_native->tag() == &T::kTag ? static_cast<T*>(m_native) : nullptr;
    }
    /// Replaces the native side.
    void attach(Native* native);
    template <class T, class... Args>
    T& attachNew(Args&&... args)
    {
        T* native = Heap::of(*this).make<T>(std::forward<Args>(args)...);
        attach(native);
        return *native;
    }

    /// @returns this as a function, or null. Defined in Function.h.
    [[nodiscard]] inline Function* asFunction();
    [[nodiscard]] bool isFunction() const { return m_isFunction; }
    [[nodiscard]] bool hasHooks() const { return m_exotic != Exotic::None; }
    [[nodiscard]] Exotic exotic() const { return m_exotic; }
    [[nodiscard]] std::string_view typeOf() const;

    // ---- watches and interfaces --------------------------------------------------------------------------

    void watch(Name name, Object* callback, Value userData);
    bool unwatch(Vm& vm, Name name);
    void addInterface(Object* prototype);

    // ---- for the interpreter's inline caches -------------------------------------------------------------

    /// Where a look-up ends, as far as that can be remembered.
    struct Found {
        enum class Where : std::uint8_t {
            Slot,    ///< a plain property of `holder`
            Nowhere, ///< neither the object nor a prototype has it
            Ask,     ///< only get and put know
        };
        Where where = Where::Ask;
        Object* holder = nullptr;
        std::uint32_t slot = 0;
        std::uint16_t flags = 0;
    };
    /// Looks for a property without calling anything. @param caching receives what the object itself, if it
    /// is exotic, leaves to its ordinary properties
    Found find(Vm& vm, Name name, Caching& caching);

    [[nodiscard]] const Shape* shape() const { return m_shape; }
    [[nodiscard]] Value slot(std::uint32_t index) const { return m_slots[index]; }
    void setSlot(std::uint32_t index, Value value) { m_slots[index] = value; }
    /// Adds the property that `next` has more than shape(). Not for prototypes.
    void addSlot(Shape* next, Value value)
    {
        m_shape = next;
        reserveSlots();
        m_slots.resize(next->slotCount());
        m_slots.back() = value;
    }
    [[nodiscard]] Shape* sharedShape() { return m_shape->isShared() ? m_shape : nullptr; }
    [[nodiscard]] bool isPrototype() const { return m_isPrototype; }
    /// What decides look-ups besides shape and __proto__: the exotic kind, and whether __proto__ is
    /// followed.
    [[nodiscard]] unsigned look() const
    {
        return static_cast<unsigned>(m_exotic) | (m_followsProto ? 0U : 8U);
    }
    [[nodiscard]] bool hasWatches() const { return m_extras != nullptr && !m_extras->watches.empty(); }

    void trace(Tracer& tracer) override;

protected:
    void setProtoFlags(Vm& vm, std::uint16_t flags);
    bool m_isFunction = false;

private:
    struct Watch {
        Name name;
        Object* callback;
        Value userData;
        int running; ///< calls of the callback that are under way
    };
    struct Extras {
        std::vector<Watch> watches;
        TracedList<Object*> interfaces;
    };
    /// Most objects have some few properties: no need to grow for each.
    void reserveSlots()
    {
        if (m_slots.capacity() == 0) m_slots.reserve(4);
    }
    [[nodiscard]] Object* visiblePrototype(const Vm& vm) const;
    void noteProtoChange(Vm& vm);
    Extras& extras();
    void addProperty(Vm& vm, Name name, Value value, std::uint16_t flags);
    void changeFlagsAt(Vm& vm, std::uint32_t at, std::uint16_t flags);
    void becomeUnshared(Vm& vm);
    void noteShapeChange(Vm& vm, Shape::Change change);
    /// Asks the callback of a watched property, if it is one. @param value in: to be put; out: what the
    /// callback wants to be put. @returns whether anything is to be put
    bool callWatch(Vm& vm, Name name, Value& value);
    [[nodiscard]] bool isProtoVisible(const Vm& vm) const;
    std::uint32_t findVisible(const Vm& vm, Name name) const;
    bool findResolver(Vm& vm, Value& result) const;
    /// @returns the getter and setter that an assignment to a property that is not this object's own meets
    Accessor* inheritedAccessor(Vm& vm, Name name, Object*& holder);

    Exotic m_exotic = Exotic::None;
    bool m_isPrototype = false; // of some object: its changes outdate caches that looked through it
    bool m_protoIsSet = true;   // cleared when a script deletes __proto__
    bool m_followsProto = true; // whatever the version, look-ups go on in __proto__
    std::uint16_t m_protoFlags = kBuiltIn;
    Shape* m_shape;
    TracedList<Value> m_slots;
    Value m_proto;
    Native* m_native = nullptr;
    std::unique_ptr<Extras> m_extras;
};

} // namespace flash::avm1
