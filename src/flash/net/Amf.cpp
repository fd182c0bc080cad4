#include "flash/net/Amf.h"

#include <bit>
#include <cmath>
#include <utility>

namespace flash::net
{
namespace
{

enum Marker0 : std::uint8_t {
    kNumber = 0,
    kBoolean = 1,
    kText = 2,
    kObject = 3,
    kNull = 5,
    kUndefined = 6,
    kReference = 7,
    kNamedArray = 8,
    kEnd = 9,
    kPlainArray = 10,
    kDate = 11,
    kLongText = 12,
    kUnsupported = 13,
    kXml = 15,
    kClassObject = 16,
    kAmf3 = 17,
};

enum Marker3 : std::uint8_t {
    kUndefined3 = 0,
    kNull3 = 1,
    kFalse3 = 2,
    kTrue3 = 3,
    kInteger3 = 4,
    kDouble3 = 5,
    kText3 = 6,
    kDocument3 = 7,
    kDate3 = 8,
    kArray3 = 9,
    kObject3 = 10,
    kXml3 = 11,
    kBytes3 = 12,
    kIntVector3 = 13,
    kUintVector3 = 14,
    kNumberVector3 = 15,
    kObjectVector3 = 16,
    kDictionary3 = 17,
};

constexpr std::size_t kMaxBriefBytes = 0xFFFF;

AmfValue plain(AmfValue::Kind kind, double number = 0)
{
    AmfValue value;
    value.kind = kind;
    value.number = number;
    return value;
}

/// 29 bits with a sign.
double signedInteger(std::uint32_t bits) { return static_cast<std::int32_t>(bits << 3U) >> 3; }

} // namespace

// ---- reading ----------------------------------------------------------------------------------------------

base::Result<std::uint8_t> AmfReader::byte() { return TRY_RESULT(m_source.take(1))[0]; }

base::Result<std::uint64_t> AmfReader::number(int count)
{
    std::uint64_t result = 0;
    for (const std::uint8_t next : TRY_RESULT(m_source.take(static_cast<std::size_t>(count))))
        result = result << 8U | next;
    return result;
}

base::Result<double> AmfReader::real() { return std::bit_cast<double>(TRY_RESULT(number(8))); }

base::Result<std::uint32_t> AmfReader::u29()
{
    std::uint32_t value = 0;
    for (int i = 0; i < 3; ++i) {
        const std::uint32_t next = TRY_RESULT(byte());
        value = value << 7U | (next & 0x7FU);
        if (next < 0x80) return value;
    }
    return value << 8U | TRY_RESULT(byte());
}

base::Result<std::string> AmfReader::text(std::size_t count)
{
    const base::Bytes found = TRY_RESULT(m_source.take(count));
    return std::string(found.begin(), found.end());
}

base::Result<std::string> AmfReader::textAfterLength(int lengthBytes)
{
    const auto length = static_cast<std::size_t>(TRY_RESULT(number(lengthBytes)));
    return text(length);
}

base::Result<const std::string*> AmfReader::sharedText()
{
    static const std::string kEmpty;
    const std::uint32_t head = TRY_RESULT(u29());
    if ((head & 1U) == 0) {
        if (head >> 1U >= m_texts.size())
            return base::fail(base::ErrorCode::Malformed, "a text that refers to nothing");
        return &m_texts[head >> 1U];
    }
    if (head >> 1U == 0) return &kEmpty;
    m_texts.push_back(TRY_RESULT(text(head >> 1U)));
    return &m_texts.back();
}

base::Result<std::string> AmfReader::name()
{
    if (m_version == AmfVersion::Amf3) return *TRY_RESULT(sharedText());
    return textAfterLength(2);
}

base::Result<AmfValue> AmfReader::reference(const std::vector<std::uint32_t>& known, std::size_t index)
{
    if (index >= known.size())
        return base::fail(base::ErrorCode::Malformed, "a value that refers to nothing");
    AmfValue value = plain(Kind::Reference);
    value.count = known[index];
    return value;
}

AmfValue AmfReader::share(AmfValue value)
{
    value.shared = true;
    (value.version == AmfVersion::Amf0 ? m_known0 : m_known3).push_back(m_sharedCount++);
    return value;
}

base::Result<AmfValue> AmfReader::value() { return m_version == AmfVersion::Amf3 ? value3() : value0(); }

base::Result<AmfValue> AmfReader::value0()
{
    const std::uint8_t marker = m_marker ? *std::exchange(m_marker, std::nullopt) : TRY_RESULT(byte());
    AmfValue value;
    switch (marker) {
    case kNumber: return plain(Kind::Number, TRY_RESULT(real()));
    case kBoolean: return plain(Kind::Boolean, TRY_RESULT(byte()) != 0 ? 1 : 0);
    case kText:
    case kLongText:
    case kXml:
        value.kind = marker == kXml ? Kind::Xml : Kind::Text;
        value.text = TRY_RESULT(textAfterLength(marker == kText ? 2 : 4));
        return value;
    case kNull: return plain(Kind::Null);
    case kUndefined:
    case kUnsupported: return value;
    case kDate:
        value = plain(Kind::Date, TRY_RESULT(real()));
        TRY_RESULT(number(2)); // minutes of the zone, which nobody reads
        return value;
    case kReference: return reference(m_known0, static_cast<std::size_t>(TRY_RESULT(number(2))));
    case kClassObject: value.text = TRY_RESULT(textAfterLength(2)); [[fallthrough]];
    case kObject: value.kind = Kind::Object; return share(std::move(value));
    case kNamedArray:
        TRY_RESULT(number(4)); // the length, which the members tell
        value.kind = Kind::Array;
        return share(std::move(value));
    case kPlainArray:
        value.kind = Kind::Array;
        value.isDynamic = false;
        value.count = static_cast<std::uint32_t>(TRY_RESULT(number(4)));
        return share(std::move(value));
    case kAmf3: return value3();
    default: return base::fail(base::ErrorCode::Unsupported, "a value of kind " + std::to_string(marker));
    }
}

base::Result<AmfValue> AmfReader::value3()
{
    const std::uint8_t marker = TRY_RESULT(byte());
    AmfValue value;
    value.version = AmfVersion::Amf3;
    switch (marker) {
    case kUndefined3: return value;
    case kNull3: return plain(Kind::Null);
    case kFalse3: return plain(Kind::Boolean, 0);
    case kTrue3: return plain(Kind::Boolean, 1);
    case kInteger3: return plain(Kind::Number, signedInteger(TRY_RESULT(u29())));
    case kDouble3: return plain(Kind::Number, TRY_RESULT(real()));
    case kText3:
        value.kind = Kind::Text;
        value.text = *TRY_RESULT(sharedText());
        return value;
    default: break;
    }
    if (marker > kDictionary3)
        return base::fail(base::ErrorCode::Unsupported, "a value of kind " + std::to_string(marker));
    const std::uint32_t head = TRY_RESULT(u29());
    if ((head & 1U) == 0) return reference(m_known3, head >> 1U);
    if (marker == kObject3) return object3(head);
    const std::uint32_t length = head >> 1U;
    switch (marker) {
    case kDate3:
        value.number = TRY_RESULT(real());
        value.kind = Kind::Date;
        break;
    case kDocument3:
    case kXml3:
        value.text = TRY_RESULT(text(length));
        value.kind = Kind::Xml;
        break;
    case kBytes3: {
        const base::Bytes found = TRY_RESULT(m_source.take(length));
        value.bytes.assign(found.begin(), found.end());
        value.kind = Kind::Bytes;
        break;
    }
    case kArray3: value.kind = Kind::Array; break;
    case kDictionary3:
        value.isFixed = TRY_RESULT(byte()) != 0;
        value.kind = Kind::Dictionary;
        break;
    default:
        value.isFixed = TRY_RESULT(byte()) != 0;
        if (marker == kObjectVector3) value.text = *TRY_RESULT(sharedText());
        value.kind = marker == kIntVector3      ? Kind::IntVector
                     : marker == kUintVector3   ? Kind::UintVector
                     : marker == kNumberVector3 ? Kind::NumberVector
                                                : Kind::ObjectVector;
    }
    const bool isBody = value.kind == Kind::Date || value.kind == Kind::Xml || value.kind == Kind::Bytes;
    if (!isBody) value.count = length;
    return share(std::move(value));
}

base::Result<AmfValue> AmfReader::object3(std::uint32_t head)
{
    const Class* known = nullptr;
    if ((head & 2U) == 0) {
        if (head >> 2U >= m_classes.size())
            return base::fail(base::ErrorCode::Malformed, "a class that refers to nothing");
        known = &m_classes[head >> 2U];
    } else {
        Class made;
        made.isExternal = (head & 4U) != 0;
        made.isDynamic = (head & 8U) != 0;
        made.alias = TRY_RESULT(sharedText());
        for (std::uint32_t i = 0; !made.isExternal && i < head >> 4U; ++i)
            made.sealed.push_back(TRY_RESULT(sharedText()));
        m_classes.push_back(std::move(made));
        known = &m_classes.back();
    }
    AmfValue value;
    value.version = AmfVersion::Amf3;
    value.kind = known->isExternal ? Kind::External : Kind::Object;
    value.text = *known->alias;
    value.isDynamic = known->isDynamic;
    value.sealed = &known->sealed;
    return share(std::move(value));
}

base::Result<bool> AmfReader::nextMember(AmfValue& of, std::string& name)
{
    if (of.sealed != nullptr && of.nextSealed < of.sealed->size()) {
        name = *(*of.sealed)[of.nextSealed++];
        return true;
    }
    if (!of.isDynamic) return false;
    if (of.version == AmfVersion::Amf3) {
        name = *TRY_RESULT(sharedText());
        return !name.empty();
    }
    name = TRY_RESULT(textAfterLength(2));
    if (!name.empty()) return true;
    // A member may have no name; after the last stands an end in place of its value.
    m_marker = TRY_RESULT(byte());
    if (*m_marker != kEnd) return true;
    m_marker.reset();
    return false;
}

base::Result<AmfValue> AmfReader::part(const AmfValue& of)
{
    switch (of.kind) {
    case Kind::IntVector:
        return plain(Kind::Number,
                     static_cast<std::int32_t>(static_cast<std::uint32_t>(TRY_RESULT(number(4)))));
    case Kind::UintVector: return plain(Kind::Number, static_cast<double>(TRY_RESULT(number(4))));
    case Kind::NumberVector: return plain(Kind::Number, TRY_RESULT(real()));
    default: return of.version == AmfVersion::Amf3 ? value3() : value0();
    }
}

// ---- writing ----------------------------------------------------------------------------------------------

void AmfWriter::number(std::uint64_t value, int bytes)
{
    for (int i = bytes - 1; i >= 0; --i) byte(static_cast<std::uint8_t>(value >> (8 * i)));
}

void AmfWriter::real(double value) { number(std::bit_cast<std::uint64_t>(value), 8); }

void Amf0Writer::undefined() { byte(kUndefined); }
void Amf0Writer::null() { byte(kNull); }

void Amf0Writer::boolean(bool value)
{
    byte(kBoolean);
    byte(value ? 1 : 0);
}

void Amf0Writer::numberValue(double value)
{
    byte(kNumber);
    real(value);
}

void Amf0Writer::text(std::string_view utf8)
{
    const bool isBrief = utf8.size() <= kMaxBriefBytes;
    byte(isBrief ? kText : kLongText);
    number(utf8.size(), isBrief ? 2 : 4);
    append(utf8);
}

void Amf0Writer::date(double timeMs)
{
    byte(kDate);
    real(timeMs);
    number(0, 2); // minutes of the zone, which nobody reads
}

void Amf0Writer::xml(std::string_view utf8)
{
    byte(kXml);
    number(utf8.size(), 4);
    append(utf8);
}

bool Amf0Writer::reference(const void* identity)
{
    const auto [known, isNew] = m_known.emplace(identity, static_cast<std::uint32_t>(m_known.size()));
    if (isNew || known->second > kMaxBriefBytes) return false;
    byte(kReference);
    number(known->second, 2);
    return true;
}

void Amf0Writer::object(std::string_view alias)
{
    byte(alias.empty() ? kObject : kClassObject);
    if (!alias.empty()) name(alias);
}

void Amf0Writer::namedArray(std::uint32_t length)
{
    byte(kNamedArray);
    number(length, 4);
}

void Amf0Writer::plainArray(std::uint32_t count)
{
    byte(kPlainArray);
    number(count, 4);
}

void Amf0Writer::name(std::string_view utf8)
{
    utf8 = utf8.substr(0, kMaxBriefBytes);
    number(utf8.size(), 2);
    append(utf8);
}

void Amf0Writer::end()
{
    number(0, 2);
    byte(kEnd);
}

void Amf0Writer::switchToAmf3() { byte(kAmf3); }

void Amf3Writer::u29(std::uint32_t value)
{
    if (value >= 0x200000) {
        byte(static_cast<std::uint8_t>(0x80U | value >> 22U));
        byte(static_cast<std::uint8_t>(0x80U | (value >> 15U & 0x7FU)));
        byte(static_cast<std::uint8_t>(0x80U | (value >> 8U & 0x7FU)));
        byte(static_cast<std::uint8_t>(value));
        return;
    }
    if (value >= 0x4000) byte(static_cast<std::uint8_t>(0x80U | value >> 14U));
    if (value >= 0x80) byte(static_cast<std::uint8_t>(0x80U | (value >> 7U & 0x7FU)));
    byte(static_cast<std::uint8_t>(value & 0x7FU));
}

void Amf3Writer::numberValue(double value)
{
    constexpr double kBound = 1 << 28;
    const bool isNegativeZero = value == 0 && std::signbit(value);
    if (std::fabs(value) < kBound && value == std::trunc(value) && !isNegativeZero) {
        byte(kInteger3);
        u29(static_cast<std::uint32_t>(static_cast<std::int32_t>(value)) & 0x1FFF'FFFFU);
    } else {
        byte(kDouble3);
        real(value);
    }
}

void Amf3Writer::name(std::string_view utf8)
{
    if (!utf8.empty()) {
        const auto [known, isNew] =
            m_texts.emplace(std::string(utf8), static_cast<std::uint32_t>(m_texts.size()));
        if (!isNew) return u29(known->second << 1U);
    }
    u29(static_cast<std::uint32_t>(utf8.size()) << 1U | 1U);
    append(utf8);
}

void Amf3Writer::text(std::string_view utf8)
{
    byte(kText3);
    name(utf8);
}

bool Amf3Writer::reference(std::uint8_t marker, const void* identity)
{
    byte(marker);
    const auto [known, isNew] = m_known.emplace(identity, static_cast<std::uint32_t>(m_known.size()));
    if (!isNew) u29(known->second << 1U);
    return !isNew;
}

void Amf3Writer::content(base::Bytes bytes)
{
    u29(static_cast<std::uint32_t>(bytes.size()) << 1U | 1U);
    append(bytes);
}

void Amf3Writer::date(double timeMs, const void* identity)
{
    if (reference(kDate3, identity)) return;
    u29(1);
    real(timeMs);
}

void Amf3Writer::xml(std::string_view utf8, const void* identity)
{
    if (reference(kXml3, identity)) return;
    content({reinterpret_cast<const std::uint8_t*>(utf8.data()), utf8.size()});
}

void Amf3Writer::bytes(base::Bytes held, const void* identity)
{
    if (!reference(kBytes3, identity)) content(held);
}

bool Amf3Writer::object(const void* identity, std::string_view alias, const std::vector<std::string>& sealed,
                        bool isDynamic)
{
    constexpr std::uint32_t kOfItsOwnClass = 3, kDynamic = 8;
    if (reference(kObject3, identity)) return false;
    // A class is written once.
    std::string description(alias);
    description += isDynamic ? "\n+" : "\n-";
    for (const std::string& member : sealed) description.append(1, '\n').append(member);
    const auto [known, isNew] =
        m_classes.emplace(std::move(description), static_cast<std::uint32_t>(m_classes.size()));
    if (!isNew) {
        u29(known->second << 2U | 1U);
        return true;
    }
    u29(static_cast<std::uint32_t>(sealed.size()) << 4U | (isDynamic ? kDynamic : 0) | kOfItsOwnClass);
    name(alias);
    for (const std::string& member : sealed) name(member);
    return true;
}

bool Amf3Writer::array(std::uint32_t count, const void* identity)
{
    if (reference(kArray3, identity)) return false;
    u29(count << 1U | 1U);
    return true;
}

bool Amf3Writer::vector(AmfValue::Kind kind, std::uint32_t count, bool isFixed, std::string_view elementAlias,
                        const void* identity)
{
    using Kind = AmfValue::Kind;
    const auto marker = kind == Kind::IntVector      ? kIntVector3
                        : kind == Kind::UintVector   ? kUintVector3
                        : kind == Kind::NumberVector ? kNumberVector3
                                                     : kObjectVector3;
    if (reference(marker, identity)) return false;
    u29(count << 1U | 1U);
    byte(isFixed ? 1 : 0);
    if (kind == Kind::ObjectVector) name(elementAlias);
    return true;
}

} // namespace flash::net
