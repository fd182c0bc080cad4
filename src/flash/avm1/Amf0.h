#pragma once

#include "base/ByteReader.h"
#include "flash/avm1/Vm.h"

#include <string>
#include <vector>

// Action message format 0: how script values stand in FLV files and shared objects. Numbers are big-endian.
namespace flash::avm1
{

class Amf0Reader
{
public:
    Amf0Reader(Vm& vm, base::Bytes bytes) : m_vm(vm), m_reader(bytes) {}

    /// A value with its type before it. What has no counterpart here becomes undefined.
    /// @errors Truncated; Malformed when nested too deeply or of an unknown type
    base::Result<Value> value() { return value(0); }
    /// A text with its length before it, as names of members have it.
    base::Result<std::u16string> name();
    [[nodiscard]] bool atEnd() const { return m_reader.atEnd(); }

private:
    base::Result<Value> value(int depth);
    base::Result<Value> members(Object* object, int depth);
    base::Result<Value> list(int depth);
    base::Result<double> number();
    base::Result<std::uint32_t> count(int bytes);
    base::Result<std::u16string> text(int lengthBytes);

    Vm& m_vm;
    base::ByteReader m_reader;
    std::vector<Object*> m_seen; ///< for references; alive as parts of the value that is being read
};

class Amf0Writer
{
public:
    explicit Amf0Writer(Vm& vm) : m_vm(vm) {}

    void value(Value value) { write(value, 0); }
    void name(std::u16string_view name);
    [[nodiscard]] std::vector<std::uint8_t>& bytes() { return m_bytes; }

private:
    void write(Value value, int depth);
    void object(Object* object, int depth);
    void members(Object* object, int depth);
    void number(double number);
    void count(std::uint32_t value, int bytes);
    void text(std::u16string_view text);

    Vm& m_vm;
    std::vector<std::uint8_t> m_bytes;
    std::vector<Object*> m_written;
};

} // namespace flash::avm1
