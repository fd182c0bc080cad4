#include "flash/net/Amf.h"
#include "flash/net/SharedObjectFile.h"

#include <gtest/gtest.h>

#include <cmath>

namespace flash::net
{
namespace
{

using Kind = AmfValue::Kind;

/// Reads a value with all below it as a text: what a script machine does, without the machine.
base::Result<std::string> described(AmfReader& reader, AmfValue value, int depth = 0)
{
    if (depth > 8) return std::string("...");
    switch (value.kind) {
    case Kind::Undefined: return std::string("undefined");
    case Kind::Null: return std::string("null");
    case Kind::Boolean: return std::string(value.number != 0 ? "true" : "false");
    case Kind::Number: return std::to_string(value.number);
    case Kind::Date: return "date " + std::to_string(value.number);
    case Kind::Text: return "'" + value.text + "'";
    case Kind::Xml: EXPECT_EQ(value.count, 0); return "xml " + value.text;
    case Kind::Bytes: EXPECT_EQ(value.count, 0); return "bytes " + std::to_string(value.bytes.size());
    case Kind::Reference: return "#" + std::to_string(value.count);
    case Kind::External: return "external " + value.text;
    default: break;
    }
    EXPECT_TRUE(value.isShared());
    std::string out = value.text + "{";
    if (value.kind == Kind::Object || value.kind == Kind::Array) {
        for (std::string name; TRY_RESULT(reader.nextMember(value, name));) {
            const AmfValue member = TRY_RESULT(reader.part(value));
            out += name + ":" + TRY_RESULT(described(reader, member, depth + 1)) + ",";
        }
    }
    const std::uint32_t count = value.kind == Kind::Dictionary ? value.count * 2 : value.count;
    for (std::uint32_t i = 0; i < count; ++i) {
        const AmfValue element = TRY_RESULT(reader.part(value));
        out += TRY_RESULT(described(reader, element, depth + 1)) + ",";
    }
    return out + "}";
}

base::Result<std::string> read(base::Bytes bytes, AmfVersion version)
{
    AmfBytes source(bytes);
    AmfReader reader(source, version);
    AmfValue value = TRY_RESULT(reader.value());
    return described(reader, std::move(value));
}

std::vector<std::uint8_t> sampleAmf0()
{
    const int object = 0, list = 0, sparse = 0;
    Amf0Writer out;
    EXPECT_FALSE(out.reference(&object));
    out.object("Hero");
    out.name("name");
    out.text("Имя");
    out.name("");
    out.boolean(true);
    out.name("list");
    EXPECT_FALSE(out.reference(&list));
    out.plainArray(2);
    out.numberValue(1);
    EXPECT_TRUE(out.reference(&object));
    out.name("sparse");
    EXPECT_FALSE(out.reference(&sparse));
    out.namedArray(10);
    out.name("9");
    out.date(5);
    out.end();
    out.name("new");
    out.switchToAmf3();
    Amf3Writer newer;
    const std::uint8_t content[] = {1, 2, 3};
    newer.bytes(content, &content);
    out.append(base::Bytes(newer.take()));
    out.end();
    return out.take();
}

std::vector<std::uint8_t> sampleAmf3()
{
    const int first = 0, second = 0, list = 0, numbers = 0, document = 0;
    Amf3Writer out;
    EXPECT_TRUE(out.array(4, &list));
    out.name("key");
    out.text("key");
    out.end();
    EXPECT_TRUE(out.object(&first, "Hero", {"name", "power"}, true));
    out.text("key");
    out.numberValue(-1);
    out.name("more");
    EXPECT_FALSE(out.array(0, &list));
    out.end();
    EXPECT_TRUE(out.object(&second, "Hero", {"name", "power"}, true));
    out.null();
    out.numberValue(268435456);
    out.end();
    EXPECT_TRUE(out.vector(Kind::IntVector, 2, true, {}, &numbers));
    out.number(0xFFFF'FFFF, 4);
    out.number(7, 4);
    out.xml("<a/>", &document);
    return out.take();
}

} // namespace

TEST(Amf, WhatIsWrittenIsRead)
{
    EXPECT_EQ(read(sampleAmf0(), AmfVersion::Amf0).value_or("damaged"),
              "Hero{name:'Имя',:true,list:{1.000000,#0,},sparse:{9:date 5.000000,},new:bytes 3,}");
    EXPECT_EQ(read(sampleAmf3(), AmfVersion::Amf3).value_or("damaged"),
              "{key:'key',Hero{name:'key',power:-1.000000,more:#0,},"
              "Hero{name:null,power:268435456.000000,},{-1.000000,7.000000,},xml <a/>,}");
}

TEST(Amf, WhatIsCutIsAnError)
{
    for (const AmfVersion version : {AmfVersion::Amf0, AmfVersion::Amf3}) {
        const auto whole = version == AmfVersion::Amf0 ? sampleAmf0() : sampleAmf3();
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const auto cut = read(base::Bytes(whole).first(size), version);
            ASSERT_FALSE(cut) << size;
            EXPECT_EQ(cut.error().code, base::ErrorCode::Truncated) << size;
        }
    }
}

TEST(Amf, WritesNumbersInTheirShortestForm)
{
    struct Case {
        double number;
        std::vector<std::uint8_t> bytes;
    };
    const Case kCases[] = {
        {0, {4, 0}},
        {127, {4, 0x7F}},
        {128, {4, 0x81, 0}},
        {0x3FFF, {4, 0xFF, 0x7F}},
        {0x1FFFFF, {4, 0xFF, 0xFF, 0x7F}},
        {0x200000, {4, 0x80, 0xC0, 0x80, 0}},
        {-1, {4, 0xFF, 0xFF, 0xFF, 0xFF}},
        {-0.0, {5, 0x80, 0, 0, 0, 0, 0, 0, 0}},
        {0.5, {5, 0x3F, 0xE0, 0, 0, 0, 0, 0, 0}},
    };
    for (const Case& c : kCases) {
        Amf3Writer out;
        out.numberValue(c.number);
        const auto bytes = out.take();
        EXPECT_EQ(bytes, c.bytes) << c.number;
        EXPECT_EQ(read(bytes, AmfVersion::Amf3).value_or("damaged"), std::to_string(c.number));
    }
}

TEST(Amf, ReferencesToNothingAreMalformed)
{
    const std::vector<std::uint8_t> kMessages[] = {
        {9, 4},                   // an array: the third value
        {6, 2},                   // a text: the second
        {10, 5},                  // an object of the second class
        {10, 0x13, 1, 0, 1, 0, 1} // a name that is the first text
    };
    for (const auto& message : kMessages) {
        const auto found = read(message, AmfVersion::Amf3);
        ASSERT_FALSE(found);
        EXPECT_EQ(found.error().code, base::ErrorCode::Malformed);
    }
    EXPECT_EQ(read(std::vector<std::uint8_t>{7, 0, 0}, AmfVersion::Amf0).error().code,
              base::ErrorCode::Malformed);
}

TEST(SharedObjectFile, TellsHowItsMembersAreWritten)
{
    for (const AmfVersion version : {AmfVersion::Amf0, AmfVersion::Amf3}) {
        std::vector<std::uint8_t> file = sharedObjectFile("name", version, {});
        AmfBytes source(file);
        EXPECT_EQ(readSharedObjectHead(source).value(), version);
        EXPECT_TRUE(source.atEnd());
        file[1] = 0;
        AmfBytes damaged(file);
        EXPECT_FALSE(readSharedObjectHead(damaged));
    }
}

TEST(SharedObjectFile, NamesStayWithinTheMoviesPath)
{
    const auto key = [](std::string_view name, std::optional<std::string_view> folder) {
        return sharedObjectKey(name, folder, "file:///games/chess/play.swf?level=/secret")
            .value_or("refused");
    };
    EXPECT_EQ(key("score", {}), "score");
    EXPECT_EQ(key("score", "/"), "/score");
    EXPECT_EQ(key("score", "/games/chess"), "/games/chess/score");
    EXPECT_EQ(key("score", "/games/go"), "refused");
    EXPECT_EQ(key("score", "/secret"), "refused");
    EXPECT_EQ(key("", {}), "refused");
    EXPECT_EQ(key("a b", {}), "refused");
    EXPECT_EQ(key("a\\b", {}), "refused");
    EXPECT_EQ(sharedObjectName("/games/chess/score"), "score");
}

} // namespace flash::net
