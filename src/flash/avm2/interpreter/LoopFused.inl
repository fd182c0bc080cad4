// Part of the loop of Interpreter::run: what two or three instructions in a row do, in one. The instructions
// stand behind the first as they were written, for those who jump to them; what is not as simple as expected is
// left to the first of them.

// A local goes up or down, and a loop goes on as long as it has not come to its end.
#define STEP_AND_BRANCH(name, condition)                                                                     \
    do_##name:                                                                                               \
    {                                                                                                        \
        const auto stepped =                                                                                 \
            static_cast<std::int32_t>(unsignedBits(B) + static_cast<std::uint32_t>(ip->c));                  \
        D = rawValue(stepped);                                                                               \
        ++ip;                                                                                                \
        JUMP_IF(condition);                                                                                  \
    }
    STEP_AND_BRANCH(StepLtI, stepped < bits(C))
    STEP_AND_BRANCH(StepLeI, stepped <= bits(C))
    STEP_AND_BRANCH(StepLtIK, stepped < ip->c)
    STEP_AND_BRANCH(StepLeIK, stepped <= ip->c)
    STEP_AND_BRANCH(StepGtIK, stepped > ip->c)
    STEP_AND_BRANCH(StepGeIK, stepped >= ip->c)
#undef STEP_AND_BRANCH

// A product goes into a sum.
#define PRODUCT_AND_SUM(name, product, other)                                                                \
    do_##name:                                                                                               \
    {                                                                                                        \
        const double factor = product;                                                                       \
        D = computed(factor);                                                                                \
        ++ip;                                                                                                \
        D = computed(factor + (other));                                                                      \
        NEXT;                                                                                                \
    }
    PRODUCT_AND_SUM(MulAddN, B.number() * C.number(), C.number())
    PRODUCT_AND_SUM(MulAddNK, B.number() * constants[ip->c].number(), C.number())
    PRODUCT_AND_SUM(MulAddNI, B.number() * C.number(), bits(C))
    PRODUCT_AND_SUM(MulAddNKI, B.number() * constants[ip->c].number(), bits(C))
#undef PRODUCT_AND_SUM

// An element is added to an int.
do_ElemAddI:
    if (const Value base = B;
        base.isObject() && base.object()->elements() == Object::Elements::Vector) [[likely]] {
        if (const Value* const at = elementAt(static_cast<VectorObject*>(base.object())->items, unsignedBits(C)))
            [[likely]] {
            const auto item = static_cast<std::uint32_t>(cut(at->number()));
            D = rawValue(item);
            ++ip;
            D = rawValue(unsignedBits(B) + item);
            NEXT;
        }
    }
    goto do_GetElemI;
do_ElemAddToI:
    if (const Value base = B; base.isObject()) [[likely]] {
        const TracedList<Value>* items = nullptr;
        if (base.object()->elements() == Object::Elements::Array)
            items = &static_cast<ArrayObject*>(base.object())->items;
        else if (base.object()->elements() == Object::Elements::Vector)
            items = &static_cast<VectorObject*>(base.object())->items;
        else
            goto do_GetElem;
        if (const Value* const at = elementAt(*items, unsignedBits(C)); at != nullptr && isInt(*at))
            [[likely]] {
            const Value item = *at;
            D = item;
            ++ip;
            D = rawValue(unsignedBits(B) + static_cast<std::uint32_t>(cut(item.number())));
            NEXT;
        }
    }
    goto do_GetElem;

// A slot of type int goes up or down where it is.
#define STEP_SLOT(name, amount)                                                                              \
    do_##name:                                                                                               \
    if (const Value base = B; base.isObject() && hasSlot(*base.object(), ip->c)) [[likely]] {                \
        Value* const slot = base.object()->slots() + static_cast<std::uint32_t>(ip->c);                      \
        ++ip;                                                                                                \
        const double sum = loaded(slot).number() + static_cast<double>(amount);                              \
        constexpr double kEnd = 2147483648.0;                                                                \
        if (std::fabs(sum) < kEnd) [[likely]] {                                                              \
            store(slot, computed(sum));                                                                      \
            D = rawValue(cut(sum));                                                                          \
        } else {                                                                                             \
            const std::int32_t kept = narrow(sum);                                                           \
            store(slot, computed(kept));                                                                     \
            D = rawValue(kept);                                                                              \
        }                                                                                                    \
        ip += 2;                                                                                             \
        DISPATCH();                                                                                          \
    }                                                                                                        \
    goto do_GetSlotI;
    STEP_SLOT(SlotAddI, bits(C))
    STEP_SLOT(SlotAddIK, ip->c)
#undef STEP_SLOT
