#pragma once

#include "flash/avm1/interpreter/Convert.h"
#include "flash/avm1/interpreter/Function.h"
#include "flash/avm1/interpreter/Host.h"
#include "flash/swf/Movie.h"
#include "flash/vm/AtomTable.h"
#include "flash/vm/Heap.h"
#include "flash/vm/Numbers.h"

#include <initializer_list>
#include <map>
#include <unordered_map>

namespace flash::avm1
{

class Code;
struct Frame;

/// Remembers where one object has one plain property of its own.
struct PropertyCache {
    const Shape* shape = nullptr;
    std::uint32_t slot = 0;
    std::uint32_t epoch = 0;
    /// @returns the value; undefined when there is no plain one
    inline Value get(Vm& vm, Object& object, Name name);

private:
    Value look(Vm& vm, Object& object, Name name);
};

/// Prototypes of the built-in classes that natives need to make instances.
struct BuiltIns {
    Object* object = nullptr;
    Object* function = nullptr;
    Object* functionConstructor = nullptr;
    Object* array = nullptr;
    Object* arrayConstructor = nullptr;
    Object* objectConstructor = nullptr;
    Object* string = nullptr;
    Object* number = nullptr;
    Object* boolean = nullptr;
    Object* date = nullptr;
    Object* error = nullptr;
};

/// The ActionScript virtual machine: heap, names, global object, interpreter, timers. One for a player
/// instance; one thread.
class Vm
{
public:
    /// @param installClasses makes the built-in classes: classes::installAll()
    Vm(Host& host, void (*installClasses)(Vm&));
    ~Vm();
    Vm(const Vm&) = delete;
    Vm& operator=(const Vm&) = delete;

    Heap& heap() { return m_heap; }
    AtomTable& names() { return m_names; }
    [[nodiscard]] const AtomTable::Common& common() const { return m_names.common(); }
    Host& host() { return m_host; }
    Object* global() { return m_global; }
    BuiltIns& builtIns() { return m_builtIns; }

    // ---- running -----------------------------------------------------------------------------------------

    /// Runs a block of timeline or event actions. @param owner keeps the block's bytes alive (the movie).
    /// @param target the clip that the actions belong to: `this`, and the base of paths and variables.
    void run(const std::shared_ptr<const void>& owner, swf::ActionBlock block, int version, Object* target);

    /// Calls a function, or does nothing when `function` is none.
    /// @returns its result; undefined when it threw. The exception stays pending while script code is further
    /// out; otherwise it is logged and dropped.
    Value call(Value function, Value self, std::span<const Value> args);
    Value call(Value function, Value self, std::initializer_list<Value> args)
    {
        return call(function, self, std::span<const Value>(args.begin(), args.size()));
    }
    /// Calls a method found by name; undefined when there is none.
    Value callMethod(Object* object, Name method, std::span<const Value> args);
    Value callMethod(Object* object, std::string_view method, std::initializer_list<Value> args = {});
    /// Calls a getter or setter that is a property of `holder`. Nested too deeply, the call does not happen.
    Value callAccessor(Object* function, Value self, std::span<const Value> args, Object* holder);
    /// Calls what watches a property of `holder`; each watch counts for itself how deeply it is nested.
    Value callWatcher(Object* function, Value self, std::span<const Value> args, Object* holder);
    /// The `new` operator. @returns undefined when `constructor` is no function.
    Value construct(Value constructor, std::span<const Value> args);
    /// Calls a constructor with an existing object as `this`; for clips of registered classes.
    void constructOn(Object* object, Function* constructor, std::span<const Value> args);

    /// @returns whether a native that calls script in a loop must return at once: an exception is on its way,
    /// or the script is being stopped.
    /// Counts a native's work towards the next look at the clock: a loop around something slow must be seen
    /// to be slow. @param steps of some tens of nanoseconds
    void noteWork(std::size_t steps)
    {
        constexpr std::size_t kMaxSteps = 1 << 20;
        if (m_budget > 0) m_budget -= static_cast<int>(steps < kMaxSteps ? steps : kMaxSteps);
    }
    /// To be called within the loop of a native that could take for ever. Collects when it is time, so that
    /// everything the native holds must be rooted or on the stack.
    /// @returns isUnwinding(): the native is to return
    bool checkLoop();
    /// Ends all scripts of the movie for good, and logs why.
    void abortScript(std::string_view why);
    /// Asked by natives before they take much memory at once; collects when it is short, as checkLoop() may.
    /// @returns whether the scripts of the movie may have so much more
    [[nodiscard]] bool hasRoomFor(std::size_t bytes);
    /// As hasRoomFor(), but the scripts end when there is none.
    [[nodiscard]] bool takesMemory(std::size_t bytes);
    /// @returns false, and ends the scripts, when no text may be so long
    [[nodiscard]] bool takesText(std::size_t units);
    /// No script of the movie runs from now on.
    void disable() { m_disabled = m_aborted = true; }
    /// @returns whether a script went out of bounds (recursion, time): none of the movie runs any more.
    [[nodiscard]] bool isDisabled() const { return m_disabled; }
    [[nodiscard]] bool isUnwinding() const { return m_thrown || m_aborted; }

    /// @returns whether the running script function was called by `new`.
    [[nodiscard]] bool isConstructing() const;

    /// Version of the movie whose script runs; decides conversions, visibility and case.
    [[nodiscard]] int version() const { return m_version; }
    [[nodiscard]] bool isCaseSensitive() const { return m_version >= 7; }
    /// The clip that the running script targets, or null.
    [[nodiscard]] Object* target() const;

    /// Lets natives run outside of script with the version of a given movie.
    class VersionScope
    {
    public:
        VersionScope(Vm& vm, int version) : m_vm(vm), m_previous(vm.m_version) { vm.m_version = version; }
        ~VersionScope() { m_vm.m_version = m_previous; }
        VersionScope(const VersionScope&) = delete;
        VersionScope& operator=(const VersionScope&) = delete;

    private:
        Vm& m_vm;
        int m_previous;
    };

    // ---- paths and variables -----------------------------------------------------------------------------

    /// Resolves "/a/b", "a.b", "../c", "_level1.a", "" (base itself). @returns null when it leads nowhere.
    Object* resolveTarget(Object* base, std::u16string_view path);
    /// Reads a variable of a clip by name or path ("/a:x", "a.b.x"), as text fields and loadVariables do.
    Value getVariable(Object* clip, std::u16string_view path);
    void setVariable(Object* clip, std::u16string_view path, Value value);

    // ---- making things -----------------------------------------------------------------------------------

    String* string(std::u16string text);
    String* string(std::u16string_view text) { return string(std::u16string(text)); }
    /// From Latin-1 bytes; for the engine's own words.
    String* string(std::string_view latin1);
    String* string(char16_t unit);
    Name name(std::string_view latin1) { return m_names.intern(latin1); }
    Name name(std::u16string_view text) { return m_names.intern(text); }
    Object* newObject();
    Object* newObject(Object* prototype);
    /// What the literal [...] makes.
    Object* newArray(std::span<const Value> elements = {});
    /// What the literal {} makes: an object that names its constructor.
    Object* newLiteral();
    Function* newFunction(NativeFunction function, int minArguments = 0);
    /// A native that scripts take for a function of their kind: it has a prototype.
    Function* newScriptLike(NativeFunction function);

    /// Puts a class's functions on an object. @param nativeTable first number of ASnative; -1 for none.
    void addMembers(Object* object, std::span<const MemberInfo> members, int nativeTable = -1);
    /// @param flags of all of them, besides their own
    void addAccessors(Object* object, std::span<const AccessorInfo> accessors,
                      std::uint16_t flags = kBuiltIn);
    /// Makes a class: constructor function on _global and its prototype object, linked both ways.
    /// @returns the constructor; its prototype is `prototypeOf(constructor)`.
    Function* defineClass(std::string_view className, NativeFunction constructor,
                          std::span<const MemberInfo> prototypeMembers = {}, std::uint16_t flags = 0,
                          int nativeTable = -1);
    Object* prototypeOf(Object* constructor);
    /// Registers what ASnative(table, index) answers.
    void registerNative(int table, int index, NativeFunction function, int minArguments = 0);
    Function* nativeByNumber(int table, int index);
    /// Object.registerClass: the class of clips made from a library symbol. A null constructor takes it back.
    /// Counts for symbols of the movie whose script runs.
    void registerSymbolClass(const std::u16string& symbol, Object* constructor);
    /// @param movie that the symbol belongs to
    /// @returns the constructor registered for a symbol, or null.
    Function* symbolClass(const std::weak_ptr<const void>& movie, const std::u16string& symbol) const;

    // ---- timers ------------------------------------------------------------------------------------------

    /// Runs what setInterval and setTimeout are due for at Host::timeMs().
    void advanceTimers();
    /// @returns when the next timer is due, or nothing; milliseconds on the scale of Host::timeMs().
    [[nodiscard]] std::optional<double> nextTimerMs() const;

    /// The bounds that a movie sets for its scripts; of too much it gets the most there is, for zero the
    /// usual.
    /// @param calls nested in each other
    void setLimits(int calls, double timeoutMs);

    // ---- memory ------------------------------------------------------------------------------------------

    /// To be called between frames.
    void collectIfDue();
    void collect() { m_heap.collect(); }
    /// Collects at every safe point, to find what is not kept alive. For tests.
    void collectAlways()
    {
        m_collectsAlways = true;
        m_heap.collectAlways();
    }
    /// From now on prototypes are asked at each assignment to an element.
    void noteIndexedAccessor() { m_hasIndexedAccessors = true; }
    [[nodiscard]] bool hasIndexedAccessors() const { return m_hasIndexedAccessors; }
    /// Outdates all inline caches.
    void bumpEpoch() { ++m_epoch; }
    [[nodiscard]] std::uint32_t epoch() const { return m_epoch; }

    static constexpr std::ptrdiff_t kStackValues = 256 * 1024;
    /// What a movie may do unless it says otherwise (see setLimits()).
    static constexpr int kUsualNestedCalls = 256;
    static constexpr double kUsualTimeoutMs = 15000;
    /// What no movie gets more of: the machine's own stack, and the patience of whoever waits.
    static constexpr int kMaxNestedCalls = 2000;
    static constexpr double kMaxTimeoutMs = 60000;
    static constexpr int kMaxNestedAccessors = 65;

private:
    friend struct Interpreter;
    friend class VersionScope;
    struct Timer {
        Value function;
        Value self;
        Value method; // a name to look up at each call when self is an object and function is undefined
        TracedList<Value> args;
        double periodMs, dueMs;
        bool repeats;
        int version;
    };
    /// @returns whether `String` still is the built-in class, so that texts need no object around them.
    inline bool isBuiltInString();
    void dropDeadCaches();
    void traceRoots(Tracer& tracer);
    Code* codeFor(const std::shared_ptr<const void>& owner, swf::ActionBlock block, int version);
    void reportUncaught();

    Host& m_host;
    Heap m_heap;
    AtomTable m_names;
    Object* m_global = nullptr;
    BuiltIns m_builtIns;
    Shape* m_emptyShape = nullptr;
    int m_version = 8;
    std::uint32_t m_epoch = 1;
    bool m_hasIndexedAccessors = false;
    bool m_thrown = false, m_aborted = false, m_disabled = false, m_collectsAlways = false;
    Value m_exception;
    Frame* m_frame = nullptr; // innermost
    int m_depth = 0;
    int m_accessorDepth = 0;
    int m_nestedCalls = kUsualNestedCalls;
    double m_timeoutMs = kUsualTimeoutMs;
    double m_startedMs = 0; // real time at which the outermost script started
    Value m_registers[4];
    // Operands and registers of all frames. Nothing reads above the top of the innermost frame, so the pages
    // of the system come as they are first written.
    std::unique_ptr<Value[], void (*)(void*)> m_stack;
    int m_budget = 0; // safe points until the clock is looked at again
    int m_regions = 0;
    std::unordered_map<const void*, Code*> m_code;
    PropertyCache m_stringClass, m_stringPrototype; // see isBuiltInString()
    std::map<std::pair<int, int>, Function*> m_natives;
    /// By the movie that registered them.
    std::map<std::weak_ptr<const void>, std::map<std::u16string, Function*>, std::owner_less<>>
        m_symbolClasses;
    std::map<int, Timer> m_timers;
    int m_nextTimer = 1;

public:
    [[nodiscard]] Shape* emptyShape() const { return m_emptyShape; }
    int addTimer(Value function, Value self, Value method, std::span<const Value> args, double periodMs,
                 bool repeats);
    bool removeTimer(int id) { return m_timers.erase(id) > 0; }
    void removeTimers() { m_timers.clear(); }
};

inline Value PropertyCache::get(Vm& vm, Object& object, Name name)
{
    return epoch == vm.epoch() && shape == object.shape() ? object.slot(slot) : look(vm, object, name);
}

inline bool Vm::isBuiltInString()
{
    const Value constructor = m_stringClass.get(*this, *m_global, common().string);
    return constructor.isObject() &&
           m_stringPrototype.get(*this, *constructor.object(), common().prototype).asObject() ==
               m_builtIns.string;
}

} // namespace flash::avm1
