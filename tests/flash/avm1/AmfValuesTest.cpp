#include "flash/avm1/bindings/AmfValues.h"

#include "flash/avm1/interpreter/ArrayNative.h"
#include "flash/avm1/interpreter/Convert.h"

#include "Machine.h"

#include <gtest/gtest.h>

namespace flash::avm1
{
namespace
{

using test::Machine;

Value textValue(Machine& machine, std::string_view text)
{
    return Value(machine.vm.string(base::utf16FromUtf8(text)));
}

TEST(AmfValues, WhatIsWrittenComesBack)
{
    Machine machine;
    Vm& vm = machine.vm;
    Root<Object> object(vm.heap(), vm.newLiteral());
    const auto put = [&](std::string_view name, Value value) { object->put(vm, vm.name(name), value); };
    put("number", Value(-1.5));
    put("flag", Value(true));
    put("text", textValue(machine, "Имя"));
    put("long", textValue(machine, std::string(70'000, 'x')));
    put("nothing", Value::null());
    const Value elements[] = {Value(1), Value(2)};
    put("list", Value(vm.newArray(elements)));
    put("self", Value(object.get()));
    AmfValueWriter writer(vm);
    writer.value(Value(object.get()));
    const std::vector<std::uint8_t> bytes = writer.take();

    net::AmfBytes source(bytes);
    net::AmfReader reader(source, net::AmfVersion::Amf0);
    const auto read = AmfValueReader(vm, reader).value();
    ASSERT_TRUE(read) << read.error().what;
    EXPECT_TRUE(source.atEnd());
    Object* copy = read->asObject();
    ASSERT_NE(copy, nullptr);
    const auto get = [&](std::string_view name) { return copy->get(vm, vm.name(name)); };
    EXPECT_EQ(get("number").number(), -1.5);
    EXPECT_TRUE(get("flag").boolean());
    EXPECT_EQ(toText(vm, get("text")), u"Имя");
    EXPECT_EQ(toText(vm, get("long")).size(), 70'000U);
    EXPECT_TRUE(get("nothing").isNull());
    ASSERT_NE(get("list").asObject()->native<ArrayNative>(), nullptr);
    EXPECT_EQ(get("list").asObject()->native<ArrayNative>()->length(), 2);
    EXPECT_EQ(get("self").asObject(), copy) << "a circle stays one";
}

TEST(AmfValues, CutMessagesAreErrors)
{
    Machine machine;
    Vm& vm = machine.vm;
    Root<Object> object(vm.heap(), vm.newLiteral());
    const Value elements[] = {Value(1), textValue(machine, "two")};
    object->put(vm, vm.name(std::string_view("list")), Value(vm.newArray(elements)));
    AmfValueWriter writer(vm);
    writer.value(Value(object.get()));
    const std::vector<std::uint8_t> whole = writer.take();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        net::AmfBytes source(base::Bytes(whole).first(size));
        net::AmfReader reader(source, net::AmfVersion::Amf0);
        EXPECT_FALSE(AmfValueReader(vm, reader).value()) << size;
    }
}

} // namespace
} // namespace flash::avm1
