#pragma once

#include "flash/avm2/interpreter/Host.h"
#include "flash/avm2/interpreter/Native.h"
#include "flash/avm2/interpreter/Object.h"
#include "flash/avm2/interpreter/Signatures.h"
#include "flash/avm2/interpreter/Unit.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <unordered_map>

namespace flash::avm2
{

class Interpreter;

/// A script error on its way; what was thrown is Vm::thrown().
struct ScriptThrow {
};
/// All scripts end: out of time, or the movie is going.
struct ScriptAborted {
};

enum class ErrorClass : std::uint8_t {
    Error,
    Type,
    Reference,
    Range,
    Argument,
    Verify,
    Syntax,
    Uri,
    Eval,
    Io,
    Eof,
    IllegalOperation,
    Security
};

/// Classes that the machine itself needs.
struct BuiltIns {
    ClassObject *object = nullptr, *cls = nullptr, *function = nullptr, *string = nullptr, *number = nullptr,
                *integer = nullptr, *uinteger = nullptr, *boolean = nullptr, *array = nullptr,
                *error = nullptr, *nameSpace = nullptr, *qname = nullptr, *xml = nullptr, *xmlList = nullptr,
                *vector = nullptr, *date = nullptr, *regExp = nullptr, *byteArray = nullptr,
                *dictionary = nullptr;
    Traits* voidType = nullptr;
};

/// The virtual machine of ActionScript 3: heap, names, domains, calls. One for a player instance; one thread.
///
/// Functions that may run script (get, set, call, conversions of objects) throw ScriptThrow and may change
/// anything on the way. Cells on the C++ stack and on this machine's value stack live through them.
class Vm
{
public:
    Vm(Host& host, std::span<const NativeLibrary> libraries);
    ~Vm();
    Vm(const Vm&) = delete;
    Vm& operator=(const Vm&) = delete;

    Heap& heap() { return m_heap; }
    AtomTable& names() { return m_names; }
    Host& host() { return m_host; }
    BuiltIns& classes() { return m_classes; }
    Domain* systemDomain() { return m_system; }
    Namespace* publicNs() { return m_public; }
    Namespace* as3Ns() { return m_as3; }
    Namespace* ns(Namespace::Kind kind, Name uri);
    Namespace* ns(Namespace::Kind kind, std::string_view uri) { return ns(kind, name(uri)); }
    /// Of the movie that runs.
    int version = 10;
    /// Of the movie whose code is calling: what it sees of the player, and how that behaves.
    [[nodiscard]] int apiVersion() const;
    /// The name of the function that runs.
    [[nodiscard]] Name currentCall() const { return m_calls.empty() ? Name() : m_calls.back()->name; }
    void* binding = nullptr; ///< whoever made the machine, for its natives
    /// Is offered each error that no script caught. @returns whether nobody else is to hear of it
    std::function<bool(Value error)> offerUncaught;

    // ---- making things ----
    String* string(std::u16string text) { return m_heap.make<String>(std::move(text)); }
    String* string(std::u16string_view text) { return string(std::u16string(text)); }
    String* string(std::string_view utf8);
    Name name(std::string_view latin1) { return m_names.intern(latin1); }
    Name name(std::u16string_view text) { return m_names.intern(text); }
    Multiname publicName(std::string_view latin1) { return Multiname::of(name(latin1), m_public); }
    Multiname publicName(Name text) { return Multiname::of(text, m_public); }
    Object* newObject();
    Object* newArray(std::span<const Value> elements = {});
    Object* instantiate(ClassObject* cls); ///< allocated, not constructed
    FunctionObject* newFunction(NativeFunction function, std::string_view name = {}, int minArguments = 0,
                                int maxArguments = -1);
    ClassObject* nativeClass(std::string_view qualified); ///< null when there is none
    Signatures& signatures() { return m_signatures; }
    /// A type of a built-in class's signature, as scripts name it: `flash.display::Sprite`.
    std::u16string signatureType(std::string_view type);
    ClassObject* vectorOf(Traits* element);
    ClassObject* newClass(Unit* unit, std::uint32_t index, ClassObject* base, ScopeChain* scope);
    Object* newNamespace(Namespace* ns); ///< as a value
    Object* newCatchScope(Code& code, std::uint32_t index);
    Object* newActivation(MethodEnv& env);
    Object* newGlobal(Unit* unit, std::uint32_t script);
    void fillTraits(Traits& traits, Unit* unit, const std::vector<abc::Trait>& list, ScopeChain* scope);

    // ---- errors ----
    [[noreturn]] void throwValue(Value value);
    [[noreturn]] void throwError(ErrorClass cls, int number, std::u16string_view text);
    [[noreturn]] void throwError(ErrorClass cls, int number, std::string_view text);
    Value thrown() const { return m_thrown; }
    /// "TypeError: Error #1009: ..." of any value
    std::u16string describeThrown(Value value);

    // ---- properties ----
    Traits* traitsOf(Value value);
    Value get(Value base, const Multiname& name);
    void set(Value base, const Multiname& name, Value value);
    void initialize(Value base, const Multiname& name, Value value);
    bool remove(Value base, const Multiname& name);
    bool has(Value base, const Multiname& name); ///< the prototypes', too
    bool hasOwn(Value base, const Multiname& name);
    Value callProperty(Value base, const Multiname& name, std::span<const Value> args, bool isLex = false);
    Value constructProperty(Value base, const Multiname& name, std::span<const Value> args);
    Value getSuper(Value self, Traits* base, const Multiname& name);
    void setSuper(Value self, Traits* base, const Multiname& name, Value value);
    Value callSuper(Value self, Traits* base, const Multiname& name, std::span<const Value> args);
    Value getPublic(Value base, std::string_view property) { return get(base, publicName(property)); }
    void setPublic(Value base, std::string_view property, Value value)
    {
        set(base, publicName(property), value);
    }
    Value callPublic(Value base, std::string_view property, std::initializer_list<Value> args = {})
    {
        return callProperty(base, publicName(property), std::span<const Value>(args.begin(), args.size()));
    }
    Value getBinding(Value base, const Binding& binding);
    void setBinding(Value base, Traits& traits, const Binding& binding, Value value, const Multiname& name,
                    bool isInit);
    void setSlotTyped(Object& object, std::uint32_t slot, Value value);
    /// A name that a value gives at run time. @param base gives the namespaces
    Multiname runtimeName(const Multiname& base, Value value);
    std::u16string nameText(const Multiname& name);

    // ---- calls ----
    Value call(Value function, Value self, std::span<const Value> args);
    Value call(Value function, Value self, std::initializer_list<Value> args)
    {
        return call(function, self, std::span<const Value>(args.begin(), args.size()));
    }
    Value invoke(MethodEnv& env, Value self, std::span<const Value> args, Object* callee = nullptr);
    Value construct(Value constructor, std::span<const Value> args);
    void constructSuper(ClassObject& cls, Object& self, std::span<const Value> args);
    /// Runs work that may throw; an error that nobody catches is reported to the host.
    /// @returns false when it threw
    template <class Work>
    bool guarded(Work&& work)
    {
        try {
            work();
            return true;
        } catch (const ScriptThrow&) {
            report();
        } catch (const ScriptAborted&) {
        }
        return false;
    }
    /// To be called in loops of natives and at jumps back: collects, looks at the clock.
    void check()
    {
        if (--m_budget <= 0 || m_heap.shouldCollect()) slowCheck();
    }
    [[nodiscard]] bool isDisabled() const { return m_disabled; }
    void disable() { m_disabled = true; }
    void setLimits(double timeoutMs) { m_timeoutMs = timeoutMs; }
    void collectAlways() { m_heap.collectAlways(); }

    // ---- conversions ----
    bool toBoolean(Value value);
    double toNumber(Value value);
    std::int32_t toInt(Value value);
    std::uint32_t toUint(Value value) { return static_cast<std::uint32_t>(toInt(value)); }
    String* toString(Value value);
    /// As toString, and null stays null.
    Value coerceString(Value value) { return value.isNullish() ? Value::null() : Value(toString(value)); }
    std::u16string_view text(Value value) { return toString(value)->view(); }
    enum class Hint : std::uint8_t { Default, Number, String };
    Value toPrimitive(Value value, Hint hint = Hint::Default);
    Value coerce(Value value, Traits* type); ///< @throws 1034
    bool isType(Value value, Traits* type);
    bool equals(Value a, Value b);
    bool strictEquals(Value a, Value b);
    enum class Order : std::uint8_t { Less, NotLess, Undefined };
    Order compare(Value a, Value b); ///< a < b
    Value add(Value a, Value b);
    Value typeOf(Value value);
    bool instanceOf(Value value, Value type);
    std::u16string className(Value value); ///< qualified; what getQualifiedClassName says

    // What the classes of E4X add to the language.
    struct XmlHooks {
        Value (*add)(Vm&, Value, Value) = nullptr;
        bool (*equals)(Vm&, Value, Value) = nullptr;
        std::u16string (*escape)(std::u16string_view, bool attribute) = nullptr;
        bool isListenedTo = false; ///< some element has a function that hears of changes
    } xml;
    struct XmlSettings {
        bool ignoreComments = true, ignoreProcessingInstructions = true, ignoreWhitespace = true,
             prettyPrinting = true;
        int prettyIndent = 2;
    } xmlSettings;
    Namespace* defaultXmlNs = nullptr;

    // ---- for the interpreter ----
    /// Calls with the receiver and the arguments where they lie on this machine's stack: they become the
    /// callee's first registers. @param window the receiver, below m_top
    Value enter(MethodEnv& env, Value* window, std::uint32_t count, Object* callee = nullptr);
    /// The same of any function or class.
    Value callInPlace(Value function, Value* window, std::uint32_t count);
    Value constructInPlace(Value constructor, Value* window, std::uint32_t count);
    Code* verified(MethodEnv& env);
    void makeActivation(Code& code, ScopeChain* scope);

    /// Names the machine itself looks up. Never collected.
    struct Common {
        Name constructor, prototype, length, toString, valueOf, toJSON, name, message, empty, callee;
    };
    const Common& common() const { return m_common; }
    /// The object that native definitions are found on.
    Object* nativeGlobal() { return m_nativeGlobal; }
    bool findNative(const Multiname& name, Value& result);
    /// The same for those that the calling movie is too old to see.
    bool findAnyNative(const Multiname& name, Value& result);
    std::uint32_t scopeEpoch = 1; ///< counts changes of what names in scopes may mean
    std::vector<std::u16string> callStack();
    /// As errors name it: `flash.display::Sprite/startDrag()`.
    std::u16string methodText(const MethodEnv& env);
    /// Of the script that runs.
    Domain* currentDomain();
    Domain* movieDomain = nullptr; ///< when none runs; traced
    std::map<std::u16string, ClassObject*, std::less<>>& aliases() { return m_aliases; }

private:
    friend class Interpreter;
    void slowCheck();
    void report();
    Value runFrame(MethodEnv& env, Value* window, std::uint32_t given, Object* callee);
    void resolveTypes(Code& code, const MethodEnv& env);
    [[noreturn]] void stackOverflow();
    [[noreturn]] void wrongCount(int minimum, std::uint32_t given);
    /// Makes the arguments of a native what its signature says. @throws the script error 1034
    void convertArguments(MethodEnv& env, std::span<Value> args);
    Traits* signatureTraits(std::string_view type);
    void sign(MethodEnv& env, const Signature& signature);
    void makeCore();
    ClassObject* makeNative(const NativeClass& spec);
    /// @param signature of the variable, where there is one: it names a class that the text leaves out
    void bindSlot(Traits& traits, std::string_view text, const Signature* signature);
    void addMembers(ClassObject& cls, const NativeClass& spec);
    bool getFromPrototypes(Object* from, const Multiname& name, Value& result);
    void traceRoots(Tracer& tracer);
    [[noreturn]] void throwNull(Value base);

    Heap m_heap;
    AtomTable m_names;
    Host& m_host;
    std::map<std::pair<int, const Atom*>, Namespace*> m_namespaces;
    Namespace* m_public = nullptr;
    Namespace* m_as3 = nullptr;
    Namespace* m_proxy = nullptr;
    Domain* m_system = nullptr;
    BuiltIns m_classes;
    Common m_common;
    Object* m_nativeGlobal = nullptr;
    std::map<std::pair<std::string_view, std::string_view>, const NativeClass*> m_nativeClasses;
    std::map<std::pair<std::string_view, std::string_view>, const NativeFunctionInfo*> m_nativeFunctions;
    Signatures m_signatures;
    std::map<const Signature*, std::vector<Traits*>> m_argumentTypes;
    std::map<std::pair<const Atom*, const Namespace*>, int> m_since; ///< of what not all movies see
    std::map<std::pair<const Atom*, const Namespace*>, Value, std::less<>,
             vm::TracedAllocator<std::pair<const std::pair<const Atom*, const Namespace*>, Value>>>
        m_nativeValues;
    std::map<std::u16string, ClassObject*, std::less<>> m_aliases;
    std::map<Traits*, ClassObject*> m_vectors;
    Value m_thrown;
    static constexpr std::size_t kStackValues = std::size_t{1} << 18;
    std::unique_ptr<Value[]> m_stack;
    Value* m_top = nullptr;
    Value* m_highest = nullptr; ///< as far as m_top has been
    int m_depth = 0;
    std::uintptr_t m_stackBase = 0;
    int m_budget = 0;
    double m_timeoutMs = 15'000, m_startedMs = 0;
    bool m_disabled = false;
    TracedList<MethodEnv*> m_calls;
    Interpreter* m_interpreter = nullptr; ///< the innermost
};

/// Enters script from outside of it: the clock starts.
std::u16string widen(std::string_view ascii);
std::u16string fromUtf8(std::string_view utf8);
std::string toUtf8(std::u16string_view text);
/// As scripts print numbers: the fewest digits that tell it from others.
std::u16string numberText(double number);
/// A number as scripts read texts: not-a-number when there is anything else.
double textNumber(std::u16string_view text);

} // namespace flash::avm2
