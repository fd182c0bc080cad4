#pragma once

#include "flash/avm1/interpreter/Object.h"

namespace flash::avm1
{

/// The native side of String, Number and Boolean objects: the primitive inside.
class Boxed final : public Native
{
public:
    static constexpr char kTag = 0;
    explicit Boxed(Value value) : value(value) {}
    [[nodiscard]] const void* tag() const override { return &kTag; }
    void trace(Tracer& tracer) override { tracer(value); }
    Value value;
};

/// The native side of Date objects.
class DateNative final : public Native
{
public:
    static constexpr char kTag = 0;
    explicit DateNative(double timeMs) : timeMs(timeMs) {}
    [[nodiscard]] const void* tag() const override { return &kTag; }
    double timeMs; ///< since 1970-01-01 UTC; not-a-number for an invalid date
};

} // namespace flash::avm1
