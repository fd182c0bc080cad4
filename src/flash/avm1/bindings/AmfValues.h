#pragma once

#include "flash/avm1/interpreter/Vm.h"
#include "flash/net/Amf.h"

// Script values as they stand in FLV files and shared objects.
namespace flash::avm1
{

class AmfValueWriter
{
public:
    explicit AmfValueWriter(Vm& vm) : m_vm(vm), m_kept(vm.heap()) {}

    /// A value with its kind before it: numbers, texts, truth values, null, undefined, dates, documents,
    /// arrays and plain objects, each object once.
    void value(Value held) { value(held, 0); }
    /// The own visible properties of an object in the order in which they were made; functions and what is on
    /// the stage are left out, as is what is nested deeper than 64 levels.
    /// @param closing what follows each value
    void properties(Object* object, base::Bytes closing) { properties(object, 0, closing); }
    std::vector<std::uint8_t> take() { return m_out.take(); }

private:
    void properties(Object* object, int depth, base::Bytes closing);
    [[nodiscard]] bool isWritten(Value held, int depth);
    void value(Value held, int depth);
    void objectValue(Object* object, int depth);

    Vm& m_vm;
    net::Amf0Writer m_out;
    RootedValues m_kept; // what was written: accessors may make objects that nobody else holds
};

class AmfValueReader
{
public:
    /// @param reader outlives this one
    AmfValueReader(Vm& vm, net::AmfReader& reader) : m_vm(vm), m_reader(reader), m_objects(vm.heap()) {}

    /// @errors Truncated; Malformed; LimitReached when nested deeper than 64 levels; Unsupported for kinds of
    ///         values that no script made
    base::Result<Value> value();

private:
    base::Result<Value> made(net::AmfValue read, int depth);
    base::Result<Value> part(const net::AmfValue& of, int depth);
    base::Result<Value> constructed(const char* className, Value argument);
    base::Result<void> fill(Object* object, net::AmfValue& read, int depth);

    Vm& m_vm;
    net::AmfReader& m_reader;
    RootedValues m_objects; ///< by the numbers that references have
};

} // namespace flash::avm1
