#include "base/TextCodes.h"
#include "flash/avm1/bindings/Classes.h"
#include "flash/stage/TextField.h"

namespace flash::avm1
{

namespace
{

stage::TextField* selfField(Call& call)
{
    stage::Node* node = selfNode(call);
    return node && node->kind() == stage::NodeKind::TextField ? static_cast<stage::TextField*>(node)
                                                              : nullptr;
}

Value getText(Call& call)
{
    stage::TextField* field = selfField(call);
    if (!field) return {};
    field->syncVariable();
    return call.vm.string(field->text());
}
Value setText(Call& call)
{
    if (stage::TextField* field = selfField(call)) field->setText(textArg(call, 0));
    return {};
}
Value getLength(Call& call)
{
    stage::TextField* field = selfField(call);
    return field ? Value(static_cast<double>(field->text().size())) : Value();
}

Value construct(Call&) { return {}; }

constexpr AccessorInfo kAccessors[] = {
    {"text", kFrom6, &getText, &setText},
    {"length", kFrom6, &getLength, nullptr},
};

} // namespace

void installTextField(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Function* constructor = vm.defineClass("TextField", &construct, {}, kFrom6);
    Object* prototype = vm.prototypeOf(constructor);
    vm.addAccessors(prototype, kAccessors);
    makeBroadcaster(vm, prototype);
}

} // namespace flash::avm1
