#pragma once

#include "base/ByteReader.h"

#include <deque>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

// Action message format, versions 0 and 3: how script values stand in FLV files, shared objects and byte
// arrays. Numbers are big-endian, texts UTF-8. What values are made of is the business of a script machine;
// here is only how they are written.
namespace flash::net
{

enum class AmfVersion : std::uint8_t { Amf0 = 0, Amf3 = 3 };

/// Where a reader takes its bytes from. They may change between two calls, as those of a script's byte array.
class AmfSource
{
public:
    virtual ~AmfSource() = default;
    /// @returns the next `count` bytes, which live until the next call.
    /// @errors Truncated when there are fewer, and then none are taken
    virtual base::Result<base::Bytes> take(std::size_t count) = 0;
};

/// Bytes that stay as they are. Whoever makes it keeps them alive.
class AmfBytes final : public AmfSource
{
public:
    explicit AmfBytes(base::Bytes bytes) : m_reader(bytes) {}
    base::Result<base::Bytes> take(std::size_t count) override { return m_reader.bytes(count); }
    [[nodiscard]] bool atEnd() const { return m_reader.atEnd(); }

private:
    base::ByteReader m_reader;
};

/// A value, or what stands before the members and elements of one.
struct AmfValue {
    enum class Kind : std::uint8_t {
        Undefined,
        Null,
        Boolean, ///< `number` is 0 or 1
        Number,
        Text,
        Date, ///< `number`: milliseconds since 1970
        Xml,  ///< `text`
        Bytes,
        Object,       ///< `text`: the name its class is known by, empty for none; then members
        External,     ///< as Object, but its class alone knows what follows
        Array,        ///< members, then `count` elements
        IntVector,    ///< this and the following: `count` elements
        UintVector,   //
        NumberVector, //
        ObjectVector, ///< `text`: the class of its elements
        Dictionary,   ///< `count` pairs: two elements each
        Reference,    ///< `count` tells which of the values that isShared(), counted from 0
    };
    /// Whether a later reference may stand for this value. Readers hand them out in the order of their
    /// numbers.
    [[nodiscard]] bool isShared() const { return shared; }

    Kind kind = Kind::Undefined;
    double number = 0;
    std::string text;
    std::vector<std::uint8_t> bytes;
    std::uint32_t count = 0;
    bool isFixed = false; ///< vectors: the length; dictionaries: the keys are held weakly
    bool shared = false;

private:
    friend class AmfReader;
    AmfVersion version = AmfVersion::Amf0;
    bool isDynamic = true;
    const std::vector<const std::string*>* sealed = nullptr; // the reader's
    std::size_t nextSealed = 0;
};

/// Pulls values out of a message. Whoever calls takes the members and elements of a value before the next
/// value, and bounds the depth.
class AmfReader
{
public:
    /// @param source outlives the reader
    AmfReader(AmfSource& source, AmfVersion version) : m_source(source), m_version(version) {}

    /// @errors Truncated; Malformed for a reference to nothing; Unsupported for kinds that no script made
    base::Result<AmfValue> value();
    /// The name of the next member of an object or array, whose value is the next part(). @returns false
    /// after the last
    base::Result<bool> nextMember(AmfValue& of, std::string& name);
    /// The value of a member, or one of the `count` elements.
    base::Result<AmfValue> part(const AmfValue& of);
    /// A name as it stands before a value of a shared object's file.
    base::Result<std::string> name();

    base::Result<std::uint64_t> number(int bytes);
    base::Result<double> real();

private:
    using Kind = AmfValue::Kind;
    base::Result<std::uint8_t> byte();
    base::Result<std::uint32_t> u29();
    base::Result<std::string> text(std::size_t bytes);
    base::Result<std::string> textAfterLength(int lengthBytes);
    base::Result<const std::string*> sharedText();
    base::Result<AmfValue> value0();
    base::Result<AmfValue> value3();
    base::Result<AmfValue> object3(std::uint32_t head);
    base::Result<AmfValue> reference(const std::vector<std::uint32_t>& known, std::size_t index);
    AmfValue share(AmfValue value);

    struct Class {
        const std::string* alias = nullptr;
        bool isDynamic = false, isExternal = false;
        std::vector<const std::string*> sealed;
    };
    AmfSource& m_source;
    AmfVersion m_version;
    std::uint32_t m_sharedCount = 0;
    std::vector<std::uint32_t> m_known0, m_known3; // numbers of shared values, by what references say
    std::deque<std::string> m_texts;
    std::deque<Class> m_classes;
    std::optional<std::uint8_t> m_marker; // of the next value, read already
};

/// What both writers share: bytes, and who was written already.
class AmfWriter
{
public:
    void number(std::uint64_t value, int bytes);
    void real(double value);
    void append(std::string_view text) { m_out.insert(m_out.end(), text.begin(), text.end()); }
    void append(base::Bytes bytes) { m_out.insert(m_out.end(), bytes.begin(), bytes.end()); }
    std::vector<std::uint8_t> take() { return std::move(m_out); }

protected:
    void byte(std::uint8_t value) { m_out.push_back(value); }
    std::vector<std::uint8_t> m_out;
    // Whoever writes keeps alive what these point at; nothing is read through them.
    std::unordered_map<const void*, std::uint32_t> m_known;
};

class Amf0Writer : public AmfWriter
{
public:
    void undefined();
    void null();
    void boolean(bool value);
    void numberValue(double value);
    void text(std::string_view utf8);
    void date(double timeMs);
    void xml(std::string_view utf8);
    /// @returns true when `identity` has been written, and a reference to it is written now; otherwise it is
    ///          what is written next.
    bool reference(const void* identity);
    /// Members follow, each a name() and a value, and end().
    void object(std::string_view alias = {});
    /// Likewise, with elements as members.
    void namedArray(std::uint32_t length);
    /// `count` values follow.
    void plainArray(std::uint32_t count);
    /// Cut at 65535 bytes.
    void name(std::string_view utf8);
    void end();
    /// What follows is one value of the other version.
    void switchToAmf3();
};

class Amf3Writer : public AmfWriter
{
public:
    void undefined() { byte(0); }
    void null() { byte(1); }
    void boolean(bool value) { byte(value ? 3 : 2); }
    /// Whole numbers that fit 29 bits are written as such.
    void numberValue(double value);
    void text(std::string_view utf8);
    void date(double timeMs, const void* identity);
    void xml(std::string_view utf8, const void* identity);
    void bytes(base::Bytes content, const void* identity);
    /// Members follow: the values of the sealed ones, then for a dynamic one name() and value each, and
    /// end().
    /// @returns false when a reference to it is written and nothing follows
    bool object(const void* identity, std::string_view alias, const std::vector<std::string>& sealed,
                bool isDynamic);
    /// Members follow (name() and value each, and end()), then `count` values. @returns as object()
    bool array(std::uint32_t count, const void* identity);
    /// `count` elements follow: number() of four bytes, real(), or values. @returns as object()
    bool vector(AmfValue::Kind kind, std::uint32_t count, bool isFixed, std::string_view elementAlias,
                const void* identity);
    void name(std::string_view utf8);
    void end() { name({}); }

private:
    void u29(std::uint32_t value);
    bool reference(std::uint8_t marker, const void* identity);
    void content(base::Bytes bytes);
    std::unordered_map<std::string, std::uint32_t> m_texts;
    std::unordered_map<std::string, std::uint32_t> m_classes; // by all that is written of one
};

} // namespace flash::net
