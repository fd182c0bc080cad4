#include "flash/net/Amf.h"

#include "flash/net/AmfMarkers.h"

#include <bit>
#include <cmath>

namespace flash::net
{

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
