#pragma once

#include "flash/avm2/classes/Library.h"

namespace flash::avm2::classes
{

class ByteArrayObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    ByteArrayObject(Traits* traits, Object* proto) : Object(traits, proto) { m_exotic = Exotic::Elements; }
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer.outside(content.capacity());
    }
    std::span<std::uint8_t> bytes() override { return content; }
    bool getExotic(Vm& vm, const Multiname& name, Value& result) override;
    bool setExotic(Vm& vm, const Multiname& name, Value value) override;
    bool hasExotic(Vm& vm, const Multiname& name) override;
    bool element(std::uint32_t index, Value& result) override
    {
        if (index >= content.size()) return false;
        result = static_cast<int>(content[index]);
        return true;
    }
    void resize(Vm& vm, std::size_t length);
    /// @throws EOFError 2030 when there are fewer bytes left
    std::span<const std::uint8_t> read(Vm& vm, std::size_t count);
    void write(Vm& vm, std::span<const std::uint8_t> bytes);

    std::vector<std::uint8_t> content;
    std::size_t position = 0;
    bool isLittle = false, isShareable = false;
    int encoding = 3; ///< of objects: 0 or 3
};

// It stays with the one worker there is, whatever it says.
Value isShareable(Call& call);
Value setShareable(Call& call);
// Steps that no other thread comes between; there is one only. Each @returns what was there before.
Value compareAndSwapInt(Call& call);
Value compareAndSwapLength(Call& call);

} // namespace flash::avm2::classes
