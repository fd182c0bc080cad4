// Part of the loop of Interpreter::run: properties of objects, elements of lists.

do_GetProp : {
    Object* const object = B.asObject();
    if (object != nullptr && object->exotic() != Exotic::First) {
        const SiteCache& cache = f->code->caches[static_cast<std::size_t>(ip->cache)];
        if (cache.traits == object->traits()) {
            if (cache.binding.kind == Binding::Kind::Slot || cache.binding.kind == Binding::Kind::Const) {
                D = loaded(object->slots() + static_cast<std::uint32_t>(cache.binding.id));
                NEXT;
            }
            if (cache.binding.kind == Binding::Kind::Accessor) {
                const MethodEnv& getter =
                    *cache.traits->methods[static_cast<std::size_t>(cache.binding.id)];
                if (getter.quickArguments == 0) {
                    if (const Value given = getter.quick(vm, Value(object), nullptr); !given.isHole()) {
                        D = given;
                        NEXT;
                    }
                } else if (getter.code != nullptr && getter.code->slotRead >= 0) {
                    D = object->slot(static_cast<std::uint32_t>(getter.code->slotRead));
                    NEXT;
                }
            } else if (PropertyTable* const table = object->tableIfAny();
                cache.binding.kind == Binding::Kind::None && table != nullptr &&
                table->holds(cache.position, cache.name)) {
                D = table->at(cache.position).value;
                NEXT;
            }
        }
    }
    MARK;
    const Value result = getCached(B, *ip);
    D = result;
    NEXT;
}
do_SetProp:
    if (Object* const object = B.asObject(); object != nullptr) {
        const SiteCache& cache = f->code->caches[static_cast<std::size_t>(ip->cache)];
        PropertyTable* const table = object->tableIfAny();
        if (cache.traits != object->traits()) {
            // Something else than the last time.
        } else if (cache.binding.kind == Binding::Kind::None && table != nullptr &&
                   table->holds(cache.position, cache.name)) {
            table->at(cache.position).value = C;
            NEXT;
        } else if (cache.binding.kind == Binding::Kind::Slot) {
            const auto slot = static_cast<std::uint32_t>(cache.binding.id);
            const TypeRef& type = cache.traits->slotTypes[slot];
            if (type.isFinal() && (type.resolved == nullptr || fitsType(C, type.resolved))) {
                store(object->slots() + slot, C);
                NEXT;
            }
        }
    }
    MARK;
    setCached(B, *ip, C);
    NEXT;
do_GetSlot:
    if (const Value base = B; base.isObject() && hasSlot(*base.object(), ip->c)) [[likely]] {
        D = loaded(base.object()->slots() + static_cast<std::uint32_t>(ip->c));
    } else {
        MARK;
        const Value result = getSlotOr(*ip, B);
        D = result;
    }
    NEXT;
do_SetSlot:
    if (const Value base = B; base.isObject() && hasSlot(*base.object(), ip->c)) [[likely]] {
        store(base.object()->slots() + static_cast<std::uint32_t>(ip->c), A);
    } else {
        MARK;
        setSlotOr(*ip, B, A, false);
    }
    NEXT;
do_GetSlotI:
    if (const Value base = B; base.isObject() && hasSlot(*base.object(), ip->c)) [[likely]] {
        D = rawValue(cut(loaded(base.object()->slots() + static_cast<std::uint32_t>(ip->c)).number()));
    } else {
        MARK;
        const std::int32_t result = vm.toInt(getSlotOr(*ip, B));
        D = rawValue(result);
    }
    NEXT;
do_SetSlotI:
    if (const Value base = B; base.isObject() && hasSlot(*base.object(), ip->c)) [[likely]] {
        store(base.object()->slots() + static_cast<std::uint32_t>(ip->c), computed(bits(A)));
    } else {
        MARK;
        setSlotOr(*ip, B, computed(bits(A)), false);
    }
    NEXT;
do_GetElemI : {
    const Value base = B;
    const std::uint32_t index = unsignedBits(C);
    if (base.isObject() && base.object()->elements() == Object::Elements::Vector) [[likely]] {
        if (const Value* const at = elementAt(static_cast<VectorObject*>(base.object())->items, index))
            [[likely]] {
            D = rawValue(cut(at->number()));
            NEXT;
        }
    }
    MARK;
    const std::int32_t result = vm.toInt(elementSlow(*ip, B, ip->parts != 0 ? Value(index) : Value(bits(C))));
    D = rawValue(result);
    NEXT;
}
do_SetSlotTyped:
    MARK;
    setSlotOr(*ip, B, A, true);
    NEXT;
do_GetElem : {
    Object* const object = B.asObject();
    const std::uint32_t index = unsignedBits(C);
    if (object != nullptr) [[likely]] {
        if (object->elements() == Object::Elements::Array) {
            const auto& items = static_cast<ArrayObject*>(object)->items;
            if (index < items.size() && !items[index].isHole()) {
                D = items[index];
                NEXT;
            }
        } else if (object->elements() == Object::Elements::Vector) {
            const auto& items = static_cast<VectorObject*>(object)->items;
            if (index < items.size()) {
                D = items[index];
                NEXT;
            }
        }
    }
    MARK;
    const Value result = elementSlow(*ip, B, ip->parts != 0 ? Value(index) : Value(bits(C)));
    D = result;
    NEXT;
}
do_SetElem : {
    Object* const object = B.asObject();
    const std::uint32_t index = unsignedBits(C);
    if (object != nullptr && setElementFast(*object, index, A)) NEXT;
    MARK;
    setElementSlow(*ip, B, ip->parts != 0 ? Value(index) : Value(bits(C)), A);
    NEXT;
}
do_GetAccessor : {
    MARK;
    const Value receiver = B;
    if (MethodEnv* const getter = methodAt(receiver, ip->c)) [[likely]] {
        TRY_QUICK(*getter, receiver, nullptr, 0U, r + ip->d)
        if (getter->code != nullptr && getter->code->slotRead >= 0 &&
            hasSlot(*receiver.object(), getter->code->slotRead)) {
            D = receiver.object()->slot(static_cast<std::uint32_t>(getter->code->slotRead));
            NEXT;
        }
        Value* const window = r + ip->cache;
        *window = receiver;
        CALL(*getter, window, 0, 0, r + ip->d);
    }
    const Value result = vm.get(receiver, f->unit->multiname(static_cast<std::uint32_t>(ip->a)));
    D = result;
    NEXT;
}
