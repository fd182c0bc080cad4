#pragma once

#include "flash/avm1/interpreter/Object.h"
#include "flash/swf/Movie.h"

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace flash::avm1
{

class Code;
class Vm;
enum class Hot : std::uint8_t;

/// One decoded action. `op` is the action's code in the file or one of the decoder's own (Actions.h).
struct Instruction {
    std::uint8_t op = 0;
    Hot hot{}; ///< which of the interpreter loop's own cases it is
    std::uint16_t a = 0;
    std::uint32_t b = 0;
};

/// What a look-up at one place of the code found last time: members, methods, and variables, which are looked
/// for in several objects one after the other. Names shapes and objects without keeping them alive.
struct InlineCache {
    /// How an object looked that was asked.
    struct Guard {
        const Shape* shape = nullptr;
        std::uint64_t protoBits = 0; ///< its __proto__
        unsigned look = 0;           ///< Object::look()

        static Guard of(const Object& object)
        {
            return {object.shape(), object.protoValue().bits(), object.look()};
        }
        [[nodiscard]] bool admits(const Object& object) const
        {
            return shape == object.shape() && look == object.look() &&
                   protoBits == object.protoValue().bits();
        }
    };
    static constexpr std::size_t kMaxGuards = 4;

    Guard guards[kMaxGuards]; ///< the last one's object has the property, or a prototype of it does
    Atom* name = nullptr;
    Object* holder = nullptr; ///< the prototype that has the property; null: the last object itself
    std::uint32_t slot = 0;
    std::uint32_t epoch = 0;   ///< Vm::epoch() when this was found; 0: empty
    Shape* next = nullptr;     ///< of an assignment: the property is new, and this is the shape with it
    std::uint8_t count = 0;    ///< of guards
    bool inGlobal = false;     ///< of a variable: the last guard is for the global object
    std::uint8_t failures = 0; ///< in this epoch: nothing could be remembered

    [[nodiscard]] bool admits(const Object& object, const Atom* wanted, std::uint32_t now) const
    {
        return epoch == now && name == wanted && count == 1 && guards[0].admits(object);
    }
    [[nodiscard]] Object* holderOr(Object* last) const { return holder == nullptr ? last : holder; }
    void clear() { epoch = 0; }
};

/// Head of DefineFunction and DefineFunction2. Byte offsets are into the action block.
struct FunctionHead {
    enum Flag : std::uint16_t {
        PreloadThis = 1 << 0,
        SuppressThis = 1 << 1,
        PreloadArguments = 1 << 2,
        SuppressArguments = 1 << 3,
        PreloadSuper = 1 << 4,
        SuppressSuper = 1 << 5,
        PreloadRoot = 1 << 6,
        PreloadParent = 1 << 7,
        PreloadGlobal = 1 << 8,
    };
    static constexpr unsigned kPreloads =
        PreloadThis | PreloadArguments | PreloadSuper | PreloadRoot | PreloadParent | PreloadGlobal;
    struct Parameter {
        Name name;
        std::uint8_t registerNumber = 0; ///< 0: a variable
    };
    Name name; ///< empty for a function expression
    bool hasRegisters = false;
    std::uint8_t registerCount = 0;
    std::uint16_t flags = 0;
    std::vector<Parameter> parameters;
    std::uint32_t bodyStart = 0, bodyEnd = 0;
};

/// Head of ActionTry. Parts without a body are empty.
struct TryHead {
    bool hasCatch = false, hasFinally = false, catchInRegister = false;
    Name catchName;
    std::uint8_t catchRegister = 0;
    std::uint32_t tryEnd = 0, catchEnd = 0,
                  finallyEnd = 0; ///< byte offsets; each part starts where the last ends
};

using ConstantPool = TracedList<Value>;

/// A straight piece of code, as decoded: a block's top level, or a function's body.
struct Body {
    std::vector<Instruction> instructions; ///< the last one is kEnd
    std::vector<std::uint32_t> offsets;    ///< byte offset of each instruction
    std::vector<std::int32_t> indexAt;     ///< by byte offset from `start`: instruction index or -1
    std::uint32_t start = 0, end = 0;      ///< byte offsets
    /// Something in it makes variables of the call's own, or holds on to their scope.
    bool needsActivation = false;

    /// @returns the instruction at a byte offset; that of kEnd for offsets outside of the body.
    [[nodiscard]] std::uint32_t instructionAt(std::int64_t offset) const;
};

struct FunctionCode {
    FunctionHead head;
    std::optional<Body> body; ///< decoded at the first call
};

/// A decoded action block with everything in it. Made once for a block and kept as long as
/// anything but code holds on to the movie, or a function of it lives.
class Code final : public Cell
{
public:
    Code(Vm& vm, std::shared_ptr<const void> owner, base::Bytes bytes, int version);

    /// What the built-in classes that are written in script have for a version.
    static constexpr int kCallersVersion = 0;
    [[nodiscard]] int version() const { return m_version; }
    /// What keeps the bytes alive: the movie; null for the engine's own.
    [[nodiscard]] const std::shared_ptr<const void>& owner() const { return m_owner; }
    [[nodiscard]] const Body& body() const { return m_body; }
    const Body& bodyOf(FunctionCode& function) { return function.body ? *function.body : decoded(function); }
    [[nodiscard]] Value literal(std::uint32_t index) const { return m_literals[index]; }
    [[nodiscard]] FunctionCode& function(std::uint32_t index) { return *m_functions[index]; }
    [[nodiscard]] const TryHead& tryHead(std::uint32_t index) const { return m_tries[index]; }
    [[nodiscard]] const ConstantPool& pool(std::uint32_t index) const { return *m_pools[index]; }
    [[nodiscard]] InlineCache& cache(std::uint32_t index)
    {
        return m_caches[index / kCachesPerPiece][index % kCachesPerPiece];
    }

    void trace(Tracer& tracer) override;
    /// Forgets what caches name and nothing else holds. To be called between marking and sweeping.
    void dropDeadCaches();

private:
    friend class Decoder;
    Vm& m_vm;
    std::shared_ptr<const void> m_owner;
    base::Bytes m_bytes; // kept alive by m_owner
    int m_version;
    TracedList<Value> m_literals;
    std::vector<std::unique_ptr<FunctionCode>> m_functions;
    std::vector<TryHead> m_tries;
    std::vector<std::unique_ptr<ConstantPool>> m_pools;
    const Body& decoded(FunctionCode& function);
    std::uint32_t addCache();
    // Whoever fills one may call a script that jumps on in this very code, which adds others: they stay in
    // place.
    static constexpr std::uint32_t kCachesPerPiece = 8;
    std::vector<std::unique_ptr<InlineCache[]>> m_caches;
    std::uint32_t m_cacheCount = 0;
    Body m_body;
};

} // namespace flash::avm1
