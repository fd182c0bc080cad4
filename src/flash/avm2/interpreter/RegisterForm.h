#pragma once

#include <cstdint>

namespace flash::avm2
{

// The register form of a method. A frame is a row of registers: first the locals, then the scopes, then a
// place for each depth of the operand stack. Most values lie there as boxed values; an int or uint may lie as
// its 32 bits, zero above ("raw"). A Number is the same either way. Which it is, the translator knows; each
// instruction has one meaning only, so that native code can be made of it one by one.
//
// Fields: d is what is written, or how many instructions further a jump goes. Letters at the end of a name
// tell what it works on: I raw ints, U raw uints, N numbers, B booleans, V any values; K means that c is an
// immediate (a constant for N). AddNI and the like take a number b and an int c; AddIV adds an int b to any
// c, which stands on the left when `parts` says so.

// clang-format off
#define AVM2_REGISTER_OPS(X)                                                                                 \
    X(Move) X(LoadConst) X(LoadInt) X(BoxInt) X(BoxUint) X(UnboxInt) X(ToIntV) X(ToNumberV) X(ToBooleanV)     \
    X(CoerceString) X(CoerceType) X(CoerceObject)                                                             \
    X(AddI) X(SubI) X(MulI) X(AndI) X(OrI) X(XorI) X(ShlI) X(ShrI) X(UshrI) X(NotI) X(NegI)                   \
    X(AddIK) X(AndIK) X(OrIK) X(ShlIK) X(ShrIK) X(UshrIK)                                                     \
    X(AddII) X(SubII) X(MulII) X(MulToI) X(ModII)                                                             \
    X(AddN) X(SubN) X(MulN) X(DivN) X(ModN) X(NegN) X(AddNK) X(SubNK) X(MulNK) X(DivNK)                       \
    X(AddNI) X(SubNI) X(MulNI) X(DivNI) X(AddV) X(SubV) X(MulV) X(DivV) X(ModV) X(AddIV) X(AddToI)            \
    X(LtI) X(LeI) X(EqI) X(LtU) X(LeU) X(LtN) X(LeN) X(EqN) X(LtV) X(LeV) X(EqV) X(SeqV) X(NotB) X(NotV)      \
    X(Jump) X(JTrueB) X(JFalseB) X(JTrueI) X(JFalseI) X(JTrueV) X(JFalseV)                                    \
    X(JLtI) X(JLeI) X(JEqI) X(JNeI) X(JLtIK) X(JLeIK) X(JGtIK) X(JGeIK) X(JEqIK) X(JNeIK) X(JLtU) X(JLeU)     \
    X(JLtN) X(JLeN) X(JNltN) X(JNleN) X(JEqN) X(JNeN)                                                         \
    X(JLtV) X(JLeV) X(JNltV) X(JNleV) X(JEqV) X(JNeV) X(JSeqV) X(JSneV) X(Switch)                             \
    X(GetProp) X(SetProp) X(GetSlot) X(SetSlot) X(SetSlotTyped) X(GetElem) X(SetElem) X(GetAccessor)          \
    X(GetSlotI) X(SetSlotI) X(GetElemI) X(CallEarly) X(CallEarly0) X(CallCached0) X(PushScope) X(Return) X(ReturnCoerced) X(ReturnVoid) X(ReturnI)

// What several instructions in a row do, in one: the instructions it was made of stay behind it.
#define AVM2_FUSED_OPS(X)                                                                                    \
    X(StepLtI) X(StepLeI) X(StepLtIK) X(StepLeIK) X(StepGtIK) X(StepGeIK)                                    \
    X(MulAddN) X(MulAddNK) X(MulAddNI) X(MulAddNKI) X(ElemAddI) X(ElemAddToI) X(SlotAddI) X(SlotAddIK)

// Everything else works on the operand stack as the file has it, boxed: d is the first free register of it. a
// and b are the operands of the file. The first of them have labels of their own in the loop.
#define AVM2_CALL_OPS(X)                                                                                     \
    X(findpropstrict) X(findproperty) X(getlex) X(call) X(construct) X(callproperty) X(callproplex)           \
    X(constructprop) X(popscope)
#define AVM2_STACK_OPS(X)                                                                                    \
    X(pushnamespace) X(convert_s) X(convert_o) X(typeof_) X(instanceof_) X(istype) X(istypelate) X(astype)    \
    X(astypelate) X(in) X(checkfilter) X(esc_xelem) X(esc_xattr) X(dxns) X(dxnslate) X(pushwith)              \
    X(getouterscope) X(getglobalscope) X(getglobalslot) X(setglobalslot) X(getslot) X(setslot)                \
    X(newactivation) X(newcatch) X(newfunction) X(newclass) X(newobject) X(newarray) X(applytype)             \
    X(finddef) X(getproperty) X(setproperty) X(initproperty) X(deleteproperty) X(getdescendants)              \
    X(getsuper) X(setsuper) X(callmethod) X(callstatic) X(callsuper) X(constructsuper) X(throw_) X(hasnext)   \
    X(hasnext2) X(nextname) X(nextvalue) X(li8) X(li16) X(li32) X(lf32) X(lf64) X(si8) X(si16) X(si32)        \
    X(sf32) X(sf64)
// clang-format on

enum class RegisterOp : std::uint16_t {
#define AVM2_NAME(name) name,
    AVM2_REGISTER_OPS(AVM2_NAME) AVM2_FUSED_OPS(AVM2_NAME) AVM2_CALL_OPS(AVM2_NAME) AVM2_STACK_OPS(AVM2_NAME)
#undef AVM2_NAME
};

/// One instruction of the register form.
struct Ins {
    const void* label = nullptr; ///< the place in the loop that does it
    RegisterOp op = RegisterOp::Move;
    std::uint16_t parts = 0; ///< of a multiname, from the stack: 1 name, 2 namespace
    std::int32_t d = 0, a = 0, b = 0, c = 0;
    std::int32_t cache = -1;
};

} // namespace flash::avm2
