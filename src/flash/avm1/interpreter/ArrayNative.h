#pragma once

#include "flash/avm1/interpreter/Object.h"

namespace flash::avm1
{

/// The elements of an array, dense from 0 on; holes are marked. Indices far beyond the end are ordinary
/// properties like other properties, so that `a[1e8] = 0` costs nothing; `length` covers both.
class ArrayNative final : public Native
{
public:
    static constexpr char kTag = 0;
    /// How far beyond the end an assignment still extends the dense part.
    static constexpr std::uint32_t kMaxGap = 4096;

    [[nodiscard]] const void* tag() const override { return &kTag; }
    [[nodiscard]] Exotic exotic() const override { return Exotic::Array; }
    [[nodiscard]] Caching caching(Vm& vm, Name name) const override;
    void trace(Tracer& tracer) override;
    bool getOwn(Vm& vm, Object& self, Name name, Value receiver, Value& result) override;
    void putOwn(Vm& vm, Object& self, Name name, Value value) override;
    bool hasOwn(Vm& vm, Object& self, Name name) override;
    bool deleteOwn(Vm& vm, Object& self, Name name) override;
    void enumerateOwn(Vm& vm, Object& self, NameCollector& names) override;
    void changeFlags(Vm& vm, Name name, std::uint16_t set, std::uint16_t clear) override;
    /// Changes the flags of the elements alone: of one, or of all that there are where the name is null.
    void flagElements(Vm& vm, Object& self, Name name, std::uint16_t set, std::uint16_t clear);

    /// @returns the element at a whole index within the dense part, or null.
    [[nodiscard]] Value* elementAt(double index)
    {
        if (!(index >= 0 && index < static_cast<double>(m_elements.size()))) return nullptr;
        const auto whole = static_cast<std::size_t>(index);
        if (static_cast<double>(whole) != index || m_elements[whole].isHole()) return nullptr;
        return &m_elements[whole];
    }
    /// @returns the element at an index within the dense part, or null.
    [[nodiscard]] Value* elementAt(std::uint32_t index)
    {
        return index < m_elements.size() && !m_elements[index].isHole() ? &m_elements[index] : nullptr;
    }
    /// Assigns to an element of the dense part or not far behind it, where nothing but the array itself has a
    /// say. @returns whether that was so.
    bool putElement(Vm& vm, const Object& self, std::uint32_t index, Value value);
    /// Takes the last element off, where nothing but the array itself has a say. @returns whether that was
    /// so.
    bool popElement(Vm& vm, const Object& self, Value& value);
    /// @returns the element of that name, which leaves a hole; undefined when there is none
    Value takeElement(Name name);
    [[nodiscard]] TracedList<Value>& elements() { return m_elements; }
    [[nodiscard]] double length() const { return m_length; }
    /// @returns the length that scripts gave it, which may be below 0
    [[nodiscard]] std::int32_t signedLength() const;
    /// Grows with holes or cuts; ordinary properties with indices beyond the new length are removed too.
    void setLength(Vm& vm, Object& self, double length);
    /// Replaces all elements; the length follows.
    void assign(std::span<const Value> elements);

private:
    struct Created {
        std::uint32_t index; ///< of an element; not looked at where there is a name
        Atom* name;          ///< of a plain property; null for elements
    };
    static constexpr std::uint32_t kMaxDense = 0x7FFF'FFFE;
    void noteCreated(Created created);
    /// Begins the order with the elements that are there.
    void noteElements();
    [[nodiscard]] std::uint16_t flagsAt(std::uint32_t index) const
    {
        return index < m_flagged ? m_elementFlags : std::uint16_t{0};
    }
    [[nodiscard]] bool hasFlag(std::uint32_t index, std::uint16_t flag) const
    {
        return index < m_flagged && (m_elementFlags & flag) != 0;
    }
    /// An element becomes a property like others, with flags of its own.
    void moveToProperties(Vm& vm, Object& self, std::uint32_t index, std::uint16_t flags);
    /// The length follows an index that was assigned to.
    void extend(Vm& vm, Object& self, std::int32_t index);

    TracedList<Value> m_elements;
    /// In which order everything came, for loops over the names; empty while it is that of the elements.
    std::vector<Created> m_order;
    double m_length = 0;
    Value m_lengthValue = Value(0); ///< what scripts read: whatever was assigned stays as it is
    std::uint16_t m_lengthFlags = kBuiltIn;
    std::uint16_t m_elementFlags = 0; ///< of the first `m_flagged` elements; what comes later has none
    std::uint32_t m_flagged = 0;
};

} // namespace flash::avm1
