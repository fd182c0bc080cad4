#include "flash/avm1/bindings/StoredValues.h"

#include "Machine.h"

#include <gtest/gtest.h>

namespace flash::avm1::test
{
namespace
{

/// An object with an array, a reference and texts, as its file.
std::vector<std::uint8_t> sample(Vm& vm)
{
    const Root<Object> data(vm.heap(), vm.newLiteral());
    Object* inner = vm.newArray();
    inner->put(vm, vm.name(std::string_view("0")), Value(1.5));
    inner->put(vm, vm.name(std::string_view("word")), Value(vm.string(std::string_view("text"))));
    data->put(vm, vm.name(std::string_view("list")), Value(inner));
    data->put(vm, vm.name(std::string_view("again")), Value(inner));
    data->put(vm, vm.name(std::string_view("flag")), Value(true));
    return encodeStored(vm, data.get(), "name");
}

} // namespace

TEST(StoredValues, CutFilesGiveWhatStandsBeforeTheCut)
{
    Machine machine;
    const std::vector<std::uint8_t> file = sample(machine.vm);
    for (std::size_t length = 0; length < file.size(); ++length) {
        const Root<Object> data(machine.vm.heap(), machine.vm.newLiteral());
        const auto read = decodeStored(machine.vm, data.get(), base::Bytes(file).first(length));
        // A file may end after any whole entry.
        if (read) {
            EXPECT_LT(data->enumerate(machine.vm).size(), 3U) << length;
        }
    }
    const Root<Object> data(machine.vm.heap(), machine.vm.newLiteral());
    ASSERT_TRUE(decodeStored(machine.vm, data.get(), file));
    EXPECT_EQ(data->enumerate(machine.vm).size(), 3U);
    const auto get = [&](const char* name) {
        return data->get(machine.vm, machine.vm.name(std::string_view(name)));
    };
    EXPECT_EQ(get("list").asObject(), get("again").asObject());
}

TEST(StoredValues, DamagedFilesAreRefusedAndDoNoHarm)
{
    Machine machine;
    const std::vector<std::uint8_t> file = sample(machine.vm);
    std::uint32_t seed = 1;
    for (int round = 0; round < 5000; ++round) {
        std::vector<std::uint8_t> damaged = file;
        for (int i = 0; i < 3; ++i) {
            seed = seed * 1664525 + 1013904223;
            damaged[(seed >> 8) % damaged.size()] = static_cast<std::uint8_t>(seed >> 24);
        }
        const Root<Object> data(machine.vm.heap(), machine.vm.newLiteral());
        (void)decodeStored(machine.vm, data.get(), damaged);
    }
    struct Case {
        const char* name;
        std::vector<std::uint8_t> value;
        base::ErrorCode error;
    };
    std::vector<std::uint8_t> nested;
    for (int i = 0; i < 1000; ++i) nested.insert(nested.end(), {3, 0, 1, 'a'});
    const Case kCases[] = {
        {"reference to nothing", {7, 0, 9, 0}, base::ErrorCode::Malformed},
        {"array of four thousand million", {10, 0xFF, 0xFF, 0xFF, 0xFF}, base::ErrorCode::Truncated},
        {"text of four thousand million", {12, 0xFF, 0xFF, 0xFF, 0xFF}, base::ErrorCode::Truncated},
        {"a kind that nobody knows", {0x66, 0}, base::ErrorCode::Unsupported},
        {"nested without end", nested, base::ErrorCode::LimitReached},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        std::vector<std::uint8_t> bytes{0, 0xBF, 0, 0, 0, 0,   'T', 'C', 'S', 'O', 0, 4, 0,
                                        0, 0,    0, 0, 1, 'n', 0,   0,   0,   0,   0, 1, 'v'};
        bytes.insert(bytes.end(), c.value.begin(), c.value.end());
        const Root<Object> data(machine.vm.heap(), machine.vm.newLiteral());
        const auto read = decodeStored(machine.vm, data.get(), bytes);
        ASSERT_FALSE(read);
        EXPECT_EQ(read.error().code, c.error) << read.error().what;
    }
}

} // namespace flash::avm1::test
