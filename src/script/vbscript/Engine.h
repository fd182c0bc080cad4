#pragma once

#include "script/Host.h"
#include "script/vbscript/Compiler.h"
#include "script/vbscript/Errors.h"
#include "script/vbscript/Intrinsics.h"
#include "script/vbscript/Locale.h"
#include "script/vbscript/Random.h"

#include <chrono>
#include <deque>
#include <memory>
#include <unordered_set>

namespace script::vbscript
{

class Engine;

/// An object that belongs to an engine and outlives it only as an empty shell.
class EngineObject : public Dispatch
{
public:
    explicit EngineObject(Engine& engine, Kind kind = Kind::Foreign);
    ~EngineObject() override;
    /// Lets go of what the object holds, so that cycles fall apart.
    virtual void clear() {}

protected:
    Engine* m_engine; // null once the engine is gone

private:
    friend class Engine;
    // The engine's objects in the order in which they were made.
    EngineObject* m_previous = nullptr;
    EngineObject* m_following = nullptr;
};

/// An object of a script's class.
class Instance final : public EngineObject
{
public:
    Instance(Engine& engine, const ClassInfo& info);
    [[nodiscard]] std::u16string typeName() const override;
    [[nodiscard]] std::optional<MemberId> memberId(std::u16string_view name) const override;
    Result<Value> invoke(MemberId member, Access access, Arguments arguments) override;
    void clear() override { fields.clear(); }

    const ClassInfo* const info; // valid while the engine lives
    std::vector<Value> fields;

private:
    friend class Engine;
    void dispose() override;
    Result<Value> put(const ClassMember& member, Access access, Arguments arguments);
    bool m_terminated = false;
};

/// What GetRef answers.
class FunctionReference final : public EngineObject
{
public:
    FunctionReference(Engine& engine, Function& target)
        : EngineObject(engine, Kind::FunctionReference), function(&target)
    {
    }
    [[nodiscard]] std::u16string typeName() const override { return u"Object"; }
    [[nodiscard]] std::optional<MemberId> memberId(std::u16string_view) const override
    {
        return std::nullopt;
    }
    Result<Value> invoke(MemberId member, Access access, Arguments arguments) override;

    Function* const function; // valid while the engine lives
};

/// What Me is outside classes: the script itself, whose names are its members.
class ScriptScope final : public EngineObject
{
public:
    explicit ScriptScope(Engine& engine) : EngineObject(engine) {}
    [[nodiscard]] std::u16string typeName() const override { return u"Object"; }
    [[nodiscard]] std::optional<MemberId> memberId(std::u16string_view name) const override;
    Result<Value> invoke(MemberId member, Access access, Arguments arguments) override;
};

/// What a name stands for outside procedures.
struct Global {
    enum class Kind : std::uint8_t {
        Variable, // these three have a value that is read without further ado
        Constant,
        HostObject,
        Undefined,
        Procedure,
        Class,
        HostMember,
        Intrinsic
    };
    [[nodiscard]] bool hasValue() const { return kind <= Kind::HostObject; }
    Value value; // of a variable, a constant or a host object; for HostMember the object
    Kind kind = Kind::Undefined;
    Dispatch::MemberId member = 0;
    Function* function = nullptr;
    const ClassInfo* info = nullptr;
    const Intrinsic* intrinsic = nullptr;
    int hostsAsked = -1; // how many hosts with global members were asked in vain
};

/// The state of Err.
struct ErrorState {
    int number = 0;
    std::u16string source;
    std::u16string description;
    std::u16string helpFile;
    int helpContext = 0;
};

/// How the program around wants its scripts.
struct Options {
    const Locale* locale = &Locale::english();
    bool safeSubset = false;
    Language language = Language::English;
    bool htmlComments = true; // see SourceOptions
};

struct Limits {
    std::chrono::milliseconds timeout = std::chrono::seconds(10); // zero: none
    std::size_t heapBytes = std::size_t{1} << 30;
    /// Steps (rounds of loops, calls) after which the script ends in any case; 0: no such limit. For runs
    /// that must repeat exactly.
    std::uint64_t steps = 0;
};

/// Runs compiled code: a stack machine with frames of its own, so that no script can exhaust the C++ stack.
/// Values live on m_stack; a frame's parameters are the arguments that its caller pushed.
class Engine
{
public:
    Engine(Host& host, const Options& options, const Limits& limits);
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    // ---- for the control
    void addObject(std::u16string_view name, Dispatch& object, bool addMembers);
    /// Compiles and runs. @param firstLine the number of the text's first line
    /// @returns the value of an expression, Empty for statements
    Result<Value> execute(std::u16string_view source, bool isExpression, int firstLine);
    Result<Value> callProcedure(std::u16string_view name, Arguments arguments);
    void setLimits(const Limits& limits) { m_limits = limits; }
    void setLanguage(Language language) { m_options.language = language; }

    // ---- for objects and intrinsic functions
    Result<Value> call(Function& function, Instance* me, Arguments arguments);
    /// Replaces an object by its default value. @errors 91 for Nothing, 438 without a default member
    Result<Value> plain(const Value& value);
    Result<Value> functionReference(std::u16string_view name);
    /// @errors 7 when the strings and arrays would outgrow the limit
    Result<void> reserve(std::size_t bytes) const;
    /// Whether the time is up; for long-running functions. Asks the host.
    Result<void> checkTime();
    void becameUnreachable(Instance& instance);

    Host& host() { return m_host; }
    [[nodiscard]] const Locale& locale() const { return *m_locale; }
    void setLocale(const Locale& locale) { m_locale = &locale; }
    [[nodiscard]] Language language() const { return m_options.language; }
    /// What a name means to all code; made when it is not known yet.
    Global& global(Symbol name);
    ErrorState& error() { return m_error; }
    Random& random() { return m_random; }
    Names& names() { return m_names; }
    /// The local date and time.
    double now();
    /// New RegExp, CreateObject("Scripting.Dictionary"). @returns null for names unknown or refused
    Ref<Dispatch> newBuiltIn(std::u16string_view name);
    Ref<Dispatch> createObject(std::u16string_view programId);

private:
    friend class EngineObject;
    static constexpr std::size_t kStackValues = 512 * 1024;
    static constexpr std::size_t kSpareValues = 8; // that instructions need beside those of a function's own
    static constexpr std::size_t kMaxFrames = 10000;
    static constexpr int kMaxNestedRuns = 48; // run() inside run(), through host objects and default values
    static constexpr std::size_t kMaxNestedTexts = 256; // Execute inside executed text
    static constexpr int kTicksBetweenChecks = 5000;

    struct FrameExtras {
        std::unique_ptr<Program> program; // executed text that nothing refers to later
        std::unordered_map<Symbol, std::unique_ptr<Value>> variables; // made by executed text
        std::unordered_set<Symbol> declared;                          // those of them with a Dim
    };
    struct Frame {
        Function* function = nullptr;
        const Instruction* next = nullptr;
        Value* locals = nullptr;
        Value* result = nullptr; // where the caller wants the value, below the locals
        Ref<Instance> me;
        std::unique_ptr<FrameExtras> extras;
        bool isBoundary = false; // run() returns here
        bool discards = false;   // the caller wants no value
        bool resumeNext = false;
        bool isTermination = false; // Class_Terminate between two instructions of the frame below
        std::size_t waiting = 0;    // m_waiting before it
    };

    // Engine.cpp
    void growGlobals();
    [[nodiscard]] std::pair<Ref<Dispatch>, Dispatch::MemberId> hostMember(Symbol name) const;
    bool resolveHostMember(Symbol name, Global& found);
    Result<void> define(Program& program);
    Result<std::unique_ptr<Program>> compileText(std::u16string_view source, bool isExpression,
                                                 const Surroundings& around, int firstLine = 1);
    void forgetErrors();
    void terminateCircles();
    void tearDown();

    // Frames.cpp
    Result<void> pushFrame(Function& function, std::size_t count, Value* result, Ref<Instance> me,
                           bool discards);
    Result<Value> runProgram(std::unique_ptr<Program> program);
    void popFrame();
    Result<void> attend();
    bool runTerminations();
    [[nodiscard]] bool mustTerminate() const { return m_dying.size() > m_waiting; }
    bool beginTermination();
    void park();
    void spend(std::size_t steps);

    // Calls.cpp
    void finishCall(Value* result, Value value);
    [[nodiscard]] Failed named(Failed failed, Symbol name) const;
    Result<void> callGlobal(Symbol name, std::size_t count, std::uint8_t flags);
    Result<void> callHost(Dispatch& host, Dispatch::MemberId member, Symbol name, std::size_t count,
                          std::uint8_t flags);
    Result<void> callIntrinsic(const Intrinsic& intrinsic, std::size_t count);
    [[nodiscard]] Surroundings surroundings() const;
    Result<void> executeText(Intrinsic::Kind kind);
    Result<void> callVariable(Value& callee, Symbol name, std::size_t count, std::uint8_t flags,
                              Value* result);
    Result<void> callDispatch(Dispatch& object, Dispatch::MemberId id, std::size_t count, std::uint8_t flags,
                              Value* result);
    Result<void> callDefault(Dispatch& object, std::size_t count, std::uint8_t flags, Value* result);

    // Members.cpp
    std::u16string siteText(const MemberSite& site);
    Result<Dispatch*> objectOf(const Value& value, const MemberSite& site);
    Result<const ClassMember*> instanceMember(Instance& object, MemberSite& site);
    Result<void> findMember(const Dispatch& object, MemberSite& site);
    static Instance* knownInstance(const Value& holder, const MemberSite& site);
    Result<void> callMember(MemberSite& site, std::size_t count, std::uint8_t flags);
    Result<void> callInstance(Instance& object, const ClassMember& member, std::size_t count,
                              std::uint8_t flags, Value* result);
    Result<void> putMember(MemberSite& site, std::size_t count, std::uint8_t flags, Value* bottom);
    Result<void> putInstance(Instance& object, const ClassMember& member, Symbol name, std::size_t count,
                             std::uint8_t flags, Value* bottom);
    Result<void> putIndexed(Value& base, Symbol name, std::size_t count, std::uint8_t flags, Value* bottom);
    Result<void> putGlobal(Symbol name, std::size_t count, std::uint8_t flags, Value* bottom);

    // Interpreter.cpp
    Result<Value> run();
    bool settle(Result<void>& outcome, std::size_t floor);
    Result<Value> endRun(Result<Value> result);
    Value leaveFunction();
    bool handle(Fault& fault, std::size_t floor);
    [[nodiscard]] Position positionOf(const Frame& frame) const;

    // Perform.cpp
    Result<void> perform(const Instruction& at);
    Result<void> performCall(const Instruction& at);
    Result<void> performPut(const Instruction& at);
    Result<void> performLoop(const Instruction& at);

    // Variables.cpp
    Result<Value*> element(Array& array, const Value* indexes, std::size_t count);
    Result<void> store(Value& target, Value value, std::uint8_t flags);
    Result<void> storeGlobal(Symbol name, std::uint8_t flags);
    Result<void> loadGlobal(Symbol name, bool byReference);
    /// The variable that executed text declared in the procedure that runs, or null.
    Value* declaredHere(Symbol name);
    /// Whether the name stands for the procedure's own variable, as there is nothing else of that name.
    bool isOwnVariable(const ImplicitName& name);
    Value* variable(VariableKind kind, std::uint32_t index);
    void pushVariable(Value& variable, bool byReference);
    Result<void> forPrepare(std::size_t hidden);
    Result<bool> forContinues(const Instruction& instruction, bool step);
    Result<void> forEachPrepare(std::size_t hidden);
    Result<bool> forEachNext(std::size_t hidden);
    Result<void> reDim(std::size_t count, bool preserve);
    Result<void> erase();
    Result<void> newObject(Symbol name);
    Result<void> binary(Op op, std::uint8_t literals);
    Result<void> is();
    Result<void> unary(Op op);
    Result<bool> condition();

    void push(Value value) { new (m_sp++) Value(std::move(value)); }
    void jump(std::uint32_t target) { frame().next = frame().function->code.data() + target; }
    Value pop()
    {
        --m_sp;
        Value taken(std::move(*m_sp));
        m_sp->~Value();
        return taken;
    }
    void drop(std::size_t count)
    {
        for (; count > 0; --count) (--m_sp)->~Value();
    }
    void dropTo(const Value* level)
    {
        while (m_sp > level) (--m_sp)->~Value();
    }
    Frame& frame() { return m_frames.back(); }

    Host& m_host;
    const Locale* m_locale; // as the script has set it
    Options m_options;
    Limits m_limits;
    Names m_names;
    std::vector<std::unique_ptr<Global>> m_globals; // by Symbol
    std::vector<Ref<Dispatch>> m_memberHosts;       // whose members are globals
    std::vector<std::unique_ptr<Program>> m_programs;
    EngineObject* m_firstObject = nullptr;
    EngineObject* m_lastObject = nullptr;
    Ref<ScriptScope> m_scope;          // null until Me is asked for outside a class
    std::deque<Ref<Instance>> m_dying; // whose Class_Terminate is still to run
    std::size_t m_waiting = 0;         // how many of them wait for the Class_Terminate that runs now
    ErrorState m_error;
    Random m_random;

    std::unique_ptr<Value, void (*)(void*)> m_stack;
    Value* m_sp;
    std::vector<Frame> m_frames;
    int m_nestedRuns = 0;
    int m_ticks = kTicksBetweenChecks; // steps until attend() is called; below 0 it is due
    int m_ticksAside = 0;              // those left when a dying object had it called earlier
    bool m_isParked = false;           // m_ticksAside counts
    std::uint64_t m_steps = 0;
    std::chrono::steady_clock::time_point m_lastCheck;
    std::chrono::steady_clock::duration m_used{};
    bool m_tornDown = false;
};

/// Describes a script error to code outside: 'Mid' behind "Invalid procedure call or argument".
Failed withSubject(Failed failed, std::u16string_view subject);

} // namespace script::vbscript
