#pragma once

#include "base/ByteReader.h"
#include "flash/avm1/interpreter/Vm.h"

#include <string>
#include <unordered_map>
#include <vector>

// Action message format 0: how script values stand in FLV files and shared objects. Numbers are big-endian.
namespace flash::avm1
{

class Amf0Writer
{
public:
    explicit Amf0Writer(Vm& vm) : m_vm(vm) {}

    /// A value with its kind before it: numbers, texts, truth values, null, undefined, dates, documents,
    /// arrays and plain objects, each object once.
    void value(Value held) { value(held, 0); }
    /// The own visible properties of an object in the order in which they were made; functions and what is on
    /// the stage are left out, as is what is nested deeper than 64 levels.
    /// @param closing what follows each value
    void properties(Object* object, base::Bytes closing) { properties(object, 0, closing); }
    /// A text with its length before it, as names of members have it; cut at 65535 bytes.
    void name(std::string utf8);
    void number(std::uint64_t value, int bytes);
    void append(std::string_view text) { m_out.insert(m_out.end(), text.begin(), text.end()); }
    void append(base::Bytes bytes) { m_out.insert(m_out.end(), bytes.begin(), bytes.end()); }
    std::vector<std::uint8_t> take() { return std::move(m_out); }

private:
    void properties(Object* object, int depth, base::Bytes closing);
    [[nodiscard]] bool isWritten(Value held, int depth);
    void text(std::u16string_view units, std::uint8_t brief, std::uint8_t lengthy);
    void value(Value held, int depth);
    void objectValue(Object* object, int depth);
    void real(double value);

    Vm& m_vm;
    std::vector<std::uint8_t> m_out;
    std::unordered_map<const Object*, std::size_t> m_references;
};

class Amf0Reader
{
public:
    Amf0Reader(Vm& vm, base::Bytes bytes) : m_vm(vm), m_bytes(bytes), m_objects(vm.heap()) {}

    /// @errors Truncated; Malformed; LimitReached when nested deeper than 64 levels; Unsupported for kinds of
    ///         values that no script made
    base::Result<Value> value() { return value(0); }
    /// A text with its length before it.
    base::Result<std::u16string> text(int lengthBytes);
    base::Result<std::uint64_t> number(int bytes);
    base::Result<base::Bytes> bytes(std::size_t count) { return m_bytes.bytes(count); }
    [[nodiscard]] bool atEnd() const { return m_bytes.atEnd(); }

private:
    base::Result<Value> value(int depth);
    base::Result<Value> textValue(int lengthBytes);
    base::Result<Value> made(const char* className, Value argument);
    base::Result<Value> members(Object* object, int depth);
    base::Result<Value> elements(int depth);
    base::Result<double> real();

    Vm& m_vm;
    base::ByteReader m_bytes;
    RootedValues m_objects; ///< by the numbers that references have
};

} // namespace flash::avm1
