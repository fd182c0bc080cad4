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
    if (Object* const object = B.asObject();
        object != nullptr && object->elements() == Object::Elements::Vector) [[likely]] {
        const auto& items = static_cast<VectorObject*>(object)->items;
        if (const std::uint32_t index = unsignedBits(C); index < items.size()) {
            const auto item = static_cast<std::uint32_t>(narrow(items[index].number()));
            D = rawValue(item);
            ++ip;
            D = rawValue(unsignedBits(B) + item);
            NEXT;
        }
    }
    goto do_GetElemI;
do_ElemAddToI:
    if (Object* const object = B.asObject(); object != nullptr) [[likely]] {
        const std::uint32_t index = unsignedBits(C);
        const TracedList<Value>* const items = object->elements() == Object::Elements::Array
                                                   ? &static_cast<ArrayObject*>(object)->items
                                               : object->elements() == Object::Elements::Vector
                                                   ? &static_cast<VectorObject*>(object)->items
                                                   : nullptr;
        if (items != nullptr && index < items->size() && (*items)[index].isInt()) {
            const Value item = (*items)[index];
            D = item;
            ++ip;
            D = rawValue(unsignedBits(B) +
                         static_cast<std::uint32_t>(static_cast<std::int32_t>(item.number())));
            NEXT;
        }
    }
    goto do_GetElem;

// A slot of type int goes up or down where it is.
#define STEP_SLOT(name, amount)                                                                              \
    do_##name:                                                                                               \
    if (Object* const object = B.asObject();                                                                 \
        object != nullptr && static_cast<std::uint32_t>(ip->c) < object->slotCount()) [[likely]] {           \
        const auto slot = static_cast<std::uint32_t>(ip->c);                                                 \
        ++ip;                                                                                                \
        const double sum = object->slot(slot).number() + static_cast<double>(amount);                        \
        const std::int32_t kept = narrow(sum);                                                               \
        D = rawValue(kept);                                                                                  \
        constexpr double kEnd = 2147483648.0;                                                                \
        object->setSlot(slot, computed(sum >= -kEnd && sum < kEnd ? sum : kept));                            \
        ip += 2;                                                                                             \
        DISPATCH();                                                                                          \
    }                                                                                                        \
    goto do_GetSlotI;
    STEP_SLOT(SlotAddI, bits(C))
    STEP_SLOT(SlotAddIK, ip->c)
#undef STEP_SLOT
