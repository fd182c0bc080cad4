#pragma once

#include <cstdint>
#include <string_view>

namespace flash::avm2::abc
{

// Code, name, operands, values taken, values left. Operands: m multiname, u number, b byte, h signed number,
// s string, i int, U uint, d double, n namespace, l local, j jump, c class, f method, a count of arguments, e
// exception, t slot, L switch, D debug. A multiname takes its runtime parts and 'a' its arguments besides.
// clang-format off
#define AVM2_OPCODES(X)                                                                                      \
    X(0x01, bkpt, "", 0, 0) X(0x02, nop, "", 0, 0) X(0x03, throw_, "", 1, 0) X(0x04, getsuper, "m", 1, 1)     \
    X(0x05, setsuper, "m", 2, 0) X(0x06, dxns, "s", 0, 0) X(0x07, dxnslate, "", 1, 0) X(0x08, kill, "l", 0, 0) \
    X(0x09, label, "", 0, 0) X(0x0C, ifnlt, "j", 2, 0) X(0x0D, ifnle, "j", 2, 0) X(0x0E, ifngt, "j", 2, 0)     \
    X(0x0F, ifnge, "j", 2, 0) X(0x10, jump, "j", 0, 0) X(0x11, iftrue, "j", 1, 0) X(0x12, iffalse, "j", 1, 0)  \
    X(0x13, ifeq, "j", 2, 0) X(0x14, ifne, "j", 2, 0) X(0x15, iflt, "j", 2, 0) X(0x16, ifle, "j", 2, 0)        \
    X(0x17, ifgt, "j", 2, 0) X(0x18, ifge, "j", 2, 0) X(0x19, ifstricteq, "j", 2, 0)                          \
    X(0x1A, ifstrictne, "j", 2, 0) X(0x1B, lookupswitch, "L", 1, 0) X(0x1C, pushwith, "", 1, 0)               \
    X(0x1D, popscope, "", 0, 0) X(0x1E, nextname, "", 2, 1) X(0x1F, hasnext, "", 2, 1)                        \
    X(0x20, pushnull, "", 0, 1) X(0x21, pushundefined, "", 0, 1) X(0x23, nextvalue, "", 2, 1)                 \
    X(0x24, pushbyte, "b", 0, 1) X(0x25, pushshort, "h", 0, 1) X(0x26, pushtrue, "", 0, 1)                    \
    X(0x27, pushfalse, "", 0, 1) X(0x28, pushnan, "", 0, 1) X(0x29, pop, "", 1, 0) X(0x2A, dup, "", 1, 2)      \
    X(0x2B, swap, "", 2, 2) X(0x2C, pushstring, "s", 0, 1) X(0x2D, pushint, "i", 0, 1)                        \
    X(0x2E, pushuint, "U", 0, 1) X(0x2F, pushdouble, "d", 0, 1) X(0x30, pushscope, "", 1, 0)                  \
    X(0x31, pushnamespace, "n", 0, 1) X(0x32, hasnext2, "ll", 0, 1) X(0x35, li8, "", 1, 1)                    \
    X(0x36, li16, "", 1, 1) X(0x37, li32, "", 1, 1) X(0x38, lf32, "", 1, 1) X(0x39, lf64, "", 1, 1)            \
    X(0x3A, si8, "", 2, 0) X(0x3B, si16, "", 2, 0) X(0x3C, si32, "", 2, 0) X(0x3D, sf32, "", 2, 0)             \
    X(0x3E, sf64, "", 2, 0) X(0x40, newfunction, "f", 0, 1) X(0x41, call, "a", 2, 1)                          \
    X(0x42, construct, "a", 1, 1) X(0x43, callmethod, "ua", 1, 1) X(0x44, callstatic, "fa", 1, 1)             \
    X(0x45, callsuper, "ma", 1, 1) X(0x46, callproperty, "ma", 1, 1) X(0x47, returnvoid, "", 0, 0)            \
    X(0x48, returnvalue, "", 1, 0) X(0x49, constructsuper, "a", 1, 0) X(0x4A, constructprop, "ma", 1, 1)      \
    X(0x4C, callproplex, "ma", 1, 1) X(0x4E, callsupervoid, "ma", 1, 0) X(0x4F, callpropvoid, "ma", 1, 0)     \
    X(0x50, sxi1, "", 1, 1) X(0x51, sxi8, "", 1, 1) X(0x52, sxi16, "", 1, 1) X(0x53, applytype, "a", 1, 1)     \
    X(0x55, newobject, "a", 0, 1) X(0x56, newarray, "a", 0, 1) X(0x57, newactivation, "", 0, 1)               \
    X(0x58, newclass, "c", 1, 1) X(0x59, getdescendants, "m", 1, 1) X(0x5A, newcatch, "e", 0, 1)              \
    X(0x5D, findpropstrict, "m", 0, 1) X(0x5E, findproperty, "m", 0, 1) X(0x5F, finddef, "m", 0, 1)           \
    X(0x60, getlex, "m", 0, 1) X(0x61, setproperty, "m", 2, 0) X(0x62, getlocal, "l", 0, 1)                   \
    X(0x63, setlocal, "l", 1, 0) X(0x64, getglobalscope, "", 0, 1) X(0x65, getscopeobject, "u", 0, 1)         \
    X(0x66, getproperty, "m", 1, 1) X(0x67, getouterscope, "u", 0, 1) X(0x68, initproperty, "m", 2, 0)        \
    X(0x6A, deleteproperty, "m", 1, 1) X(0x6C, getslot, "t", 1, 1) X(0x6D, setslot, "t", 2, 0)                \
    X(0x6E, getglobalslot, "t", 0, 1) X(0x6F, setglobalslot, "t", 1, 0) X(0x70, convert_s, "", 1, 1)          \
    X(0x71, esc_xelem, "", 1, 1) X(0x72, esc_xattr, "", 1, 1) X(0x73, convert_i, "", 1, 1)                    \
    X(0x74, convert_u, "", 1, 1) X(0x75, convert_d, "", 1, 1) X(0x76, convert_b, "", 1, 1)                    \
    X(0x77, convert_o, "", 1, 1) X(0x78, checkfilter, "", 1, 1) X(0x80, coerce, "m", 1, 1)                    \
    X(0x81, coerce_b, "", 1, 1) X(0x82, coerce_a, "", 1, 1) X(0x83, coerce_i, "", 1, 1)                       \
    X(0x84, coerce_d, "", 1, 1) X(0x85, coerce_s, "", 1, 1) X(0x86, astype, "m", 1, 1)                        \
    X(0x87, astypelate, "", 2, 1) X(0x88, coerce_u, "", 1, 1) X(0x89, coerce_o, "", 1, 1)                     \
    X(0x90, negate, "", 1, 1) X(0x91, increment, "", 1, 1) X(0x92, inclocal, "l", 0, 0)                       \
    X(0x93, decrement, "", 1, 1) X(0x94, declocal, "l", 0, 0) X(0x95, typeof_, "", 1, 1)                      \
    X(0x96, not_, "", 1, 1) X(0x97, bitnot, "", 1, 1) X(0xA0, add, "", 2, 1) X(0xA1, subtract, "", 2, 1)       \
    X(0xA2, multiply, "", 2, 1) X(0xA3, divide, "", 2, 1) X(0xA4, modulo, "", 2, 1) X(0xA5, lshift, "", 2, 1)  \
    X(0xA6, rshift, "", 2, 1) X(0xA7, urshift, "", 2, 1) X(0xA8, bitand_, "", 2, 1) X(0xA9, bitor_, "", 2, 1)  \
    X(0xAA, bitxor, "", 2, 1) X(0xAB, equals, "", 2, 1) X(0xAC, strictequals, "", 2, 1)                       \
    X(0xAD, lessthan, "", 2, 1) X(0xAE, lessequals, "", 2, 1) X(0xAF, greaterthan, "", 2, 1)                  \
    X(0xB0, greaterequals, "", 2, 1) X(0xB1, instanceof_, "", 2, 1) X(0xB2, istype, "m", 1, 1)                \
    X(0xB3, istypelate, "", 2, 1) X(0xB4, in, "", 2, 1) X(0xC0, increment_i, "", 1, 1)                        \
    X(0xC1, decrement_i, "", 1, 1) X(0xC2, inclocal_i, "l", 0, 0) X(0xC3, declocal_i, "l", 0, 0)              \
    X(0xC4, negate_i, "", 1, 1) X(0xC5, add_i, "", 2, 1) X(0xC6, subtract_i, "", 2, 1)                        \
    X(0xC7, multiply_i, "", 2, 1) X(0xD0, getlocal_0, "", 0, 1) X(0xD1, getlocal_1, "", 0, 1)                 \
    X(0xD2, getlocal_2, "", 0, 1) X(0xD3, getlocal_3, "", 0, 1) X(0xD4, setlocal_0, "", 1, 0)                 \
    X(0xD5, setlocal_1, "", 1, 0) X(0xD6, setlocal_2, "", 1, 0) X(0xD7, setlocal_3, "", 1, 0)                 \
    X(0xEF, debug, "D", 0, 0) X(0xF0, debugline, "u", 0, 0) X(0xF1, debugfile, "s", 0, 0)
// clang-format on

enum class Op : std::uint8_t {
#define AVM2_ENUM(code, name, operands, pops, pushes) name = code,
    AVM2_OPCODES(AVM2_ENUM)
#undef AVM2_ENUM
};

struct OpInfo {
    std::string_view name; ///< empty: no such instruction
    std::string_view operands;
    std::uint8_t pops = 0, pushes = 0;
};

/// @returns what there is to know of an instruction's first byte.
const OpInfo& opInfo(std::uint8_t code);

} // namespace flash::avm2::abc
