#pragma once

#include "flash/avm1/String.h"
#include "flash/avm1/Value.h"
#include "flash/swf/Movie.h"

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace flash::avm1
{

class Code;
class Layout;
class Object;
class Vm;

/// One decoded action. `op` is the action's code in the file or one of the decoder's own (Actions.h).
struct Instruction {
    std::uint8_t op = 0;
    std::uint8_t hot = 0; ///< which of the interpreter loop's own cases it is; 0: none
    std::uint16_t a = 0;
    std::uint32_t b = 0;
};

/// What a look-up at one place of the code found last time.
struct InlineCache {
    const Layout* layout = nullptr; ///< of the receiver; always a shared one
    std::uint64_t protoBits = 0;    ///< the receiver's __proto__; looked at when `holder` is set
    NameText* name = nullptr;
    Object* holder = nullptr; ///< the prototype that has the property; null: the receiver itself
    std::uint32_t slot = 0;
    std::uint32_t epoch = 0; ///< 0: empty
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

    /// @returns the instruction at a byte offset; that of kEnd for offsets outside of the body.
    [[nodiscard]] std::uint32_t instructionAt(std::int64_t offset) const;
};

struct FunctionCode {
    FunctionHead head;
    std::optional<Body> body; ///< decoded at the first call
};

/// A decoded action block with everything in it. Made once for a block and kept while the Vm lives.
class Code final : public Cell
{
public:
    Code(Vm& vm, std::shared_ptr<const void> owner, base::Bytes bytes, int version);

    [[nodiscard]] int version() const { return m_version; }
    [[nodiscard]] const Body& body() const { return m_body; }
    const Body& bodyOf(FunctionCode& function);
    [[nodiscard]] Value literal(std::uint32_t index) const { return m_literals[index]; }
    [[nodiscard]] FunctionCode& function(std::uint32_t index) { return *m_functions[index]; }
    [[nodiscard]] const TryHead& tryHead(std::uint32_t index) const { return m_tries[index]; }
    [[nodiscard]] const ConstantPool& pool(std::uint32_t index) const { return *m_pools[index]; }
    [[nodiscard]] InlineCache& cache(std::uint32_t index) { return m_caches[index]; }

    void trace(Tracer& tracer) override;

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
    std::vector<InlineCache> m_caches;
    Body m_body;
};

} // namespace flash::avm1
