// Part of the loop of Interpreter::run: calls, and returns from them.

do_CallEarly : {
    MARK;
    const auto count = static_cast<std::uint32_t>(ip->b);
    Value* const window = r + ip->d - count - 1;
    if (MethodEnv* const method = methodAt(*window, ip->a)) [[likely]] {
        TRY_QUICK(*method, *window, window + 1, count, window)
        CALL(*method, window, count, ip->parts, window);
    }
    box(window, ip->parts);
    const Value result = vm.callProperty(*window, f->unit->multiname(static_cast<std::uint32_t>(ip->c)),
                                         {window + 1, count});
    *window = result;
    NEXT;
}
// Without arguments. The receiver may lie anywhere.
do_CallEarly0 : {
    MARK;
    const Value receiver = B;
    Value* const window = r + ip->d;
    if (MethodEnv* const method = methodAt(receiver, ip->a)) [[likely]] {
        TRY_QUICK(*method, receiver, nullptr, 0U, window)
        store(window, receiver);
        CALL(*method, window, 0, 0, window);
    }
    const Value result = vm.callProperty(receiver, f->unit->multiname(static_cast<std::uint32_t>(ip->c)), {});
    *window = result;
    NEXT;
}
do_CallCached0 : {
    MARK;
    const Value receiver = B;
    Value* const window = r + ip->d;
    if (MethodEnv* const method = methodOf(*f, *ip, receiver)) [[likely]] {
        TRY_QUICK(*method, receiver, nullptr, 0U, window)
        store(window, receiver);
        CALL(*method, window, 0, 0, window);
    }
    store(window, receiver);
    const Value result = callCached(*ip, window, 0);
    *window = result;
    NEXT;
}
do_Return:
    returned = B;
    goto leave;
do_ReturnCoerced:
    returned = B;
    if (!fitsType(returned, f->code->returnType)) {
        MARK;
        returned = vm.coerce(returned, f->code->returnType);
    }
    goto leave;
do_ReturnI:
    returned = computed(bits(B));
    goto leave;
do_ReturnVoid:
    returned = Value();
    if (f->code->returnType != nullptr) {
        MARK;
        returned = vm.coerce(returned, f->code->returnType);
    }
leave:
    if (!leave(returned)) return returned;
    f = m_frame;
    loopJump = nullptr; // of the code that has ended; who knows how long that is there
    constants = f->code->constants.data();
    r = f->locals;
    ip = f->at;
    NEXT;
do_call : {
    MARK;
    const auto count = static_cast<std::uint32_t>(ip->a);
    Value* const window = r + ip->d - count - 1;
    if (auto* const closure = as<FunctionObject>(window[-1])) {
        bindReceiver(vm, *closure, *window);
        GO_ON_IF(beginAs(*closure->env(), window, count, closure, window - 1, nullptr));
    }
    const Value result = vm.call(window[-1], *window, std::span<const Value>(window + 1, count));
    window[-1] = result;
    NEXT;
}
do_construct : {
    MARK;
    Value* const window = r + ip->d - ip->a - 1;
    const Value result = vm.constructInPlace(*window, window, static_cast<std::uint32_t>(ip->a));
    *window = result;
    NEXT;
}
do_callproperty:
do_callproplex : {
    MARK;
    const auto count = static_cast<std::uint32_t>(ip->b);
    Value* const args = r + ip->d - count;
    if (ip->parts == 0) {
        if (MethodEnv* const method = methodOf(*f, *ip, args[-1])) {
            TRY_QUICK(*method, args[-1], args, count, args - 1)
            CALL(*method, args - 1, count, 0, args - 1);
        }
        const Value result = callCached(*ip, args - 1, count);
        args[-1] = result;
    } else {
        Value* base = args;
        const Multiname name = multiname(*ip, base);
        const Value result =
            vm.callProperty(base[-1], name, {args, count}, ip->op == RegisterOp::callproplex);
        base[-1] = result;
    }
    NEXT;
}
do_constructprop : {
    MARK;
    const auto count = static_cast<std::uint32_t>(ip->b);
    Value* const args = r + ip->d - count;
    if (ip->parts == 0) {
        const Value constructor = getCached(args[-1], *ip);
        if (auto* const cls = as<ClassObject>(constructor); cls != nullptr && cls->isPlain()) {
            Object* const made = vm.instantiate(cls);
            args[-1] = made;
            if (cls->constructor == nullptr) NEXT;
            GO_ON_IF(beginAs(*cls->constructor, args - 1, count, cls, args - 1, made));
        }
        const Value result = constructCached(*ip, constructor, args - 1);
        args[-1] = result;
    } else {
        Value* base = args;
        const Multiname name = multiname(*ip, base);
        const Value result = vm.constructProperty(base[-1], name, {args, count});
        base[-1] = result;
    }
    NEXT;
}
