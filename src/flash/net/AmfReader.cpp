#include "flash/net/Amf.h"

#include "flash/net/AmfMarkers.h"

#include <bit>
#include <utility>

namespace flash::net
{
namespace
{

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

} // namespace flash::net
