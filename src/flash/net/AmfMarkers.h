#pragma once

#include <cstddef>
#include <cstdint>

// What stands before a value in AMF 0, and in AMF 3.
namespace flash::net
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

/// Longer texts take another marker in AMF 0.
constexpr std::size_t kMaxBriefBytes = 0xFFFF;

} // namespace flash::net
