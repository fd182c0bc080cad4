#include "base/TextCodes.h"
#include "flash/avm1/bindings/Classes.h"

namespace flash::avm1
{

namespace
{

Value decode(Call& call)
{
    Object* self = call.self.asObject();
    if (!self) return {};
    if (call.count() == 0) return Value(false);
    StageBinding::of(call).decodeVariables(self, utf8Arg(call, 0));
    return {};
}

Value onData(Call& call)
{
    Object* self = call.self.asObject();
    if (!self) return {};
    Vm& vm = call.vm;
    if (call.arg(0).isUndefined()) {
        vm.callMethod(self, "onLoad", {Value(false)});
        return {};
    }
    vm.callMethod(self, "decode", {call.arg(0)});
    self->put(vm, vm.name(std::string_view("loaded")), Value(true));
    vm.callMethod(self, "onLoad", {Value(true)});
    return {};
}
Value onLoad(Call&) { return {}; }

/// Fetches an address and hands the text to the object's onData.
bool fetchInto(Call& call, Object* object, std::string url,
               const std::vector<std::pair<std::string, std::string>>& send,
               stage::LoadRequest::Method method)
{
    StageBinding& binding = StageBinding::of(call);
    stage::Clip* sender = binding.clipOf(call.vm.target());
    stage::LoadRequest request;
    request.url = std::move(url);
    request.baseUrl = sender ? sender->url() : binding.stage().url();
    request.method = method;
    request.variables = send;
    const int version = call.vm.version();
    auto target = std::make_shared<Root<Object>>(call.vm.heap(), object);
    Vm& vm = call.vm;
    object->define(vm, "_bytesLoaded", Value(0), kDontEnum);
    object->define(vm, "_bytesTotal", Value(), kDontEnum);
    object->define(vm, "loaded", Value(false), kDontEnum);
    binding.stage().fetch(std::move(request), [&binding, target,
                                               version](const base::Result<stage::LoadAnswer>& answer) {
        Vm& machine = binding.vm();
        const Vm::VersionScope scope(machine, version);
        Value text;
        if (answer) {
            std::string_view bytes(reinterpret_cast<const char*>(answer->bytes.data()), answer->bytes.size());
            constexpr std::string_view kMark = "\xEF\xBB\xBF";
            if (bytes.starts_with(kMark)) bytes.remove_prefix(kMark.size());
            text = Value(machine.string(base::isUtf8(bytes) ? base::utf16FromUtf8(bytes)
                                                            : base::utf16FromAnsi(bytes)));
            const auto size = Value(static_cast<double>(answer->bytes.size()));
            target->get()->define(machine, "_bytesLoaded", size, kDontEnum);
            target->get()->define(machine, "_bytesTotal", size, kDontEnum);
        }
        machine.callMethod(target->get(), "onData", {text});
    });
    return true;
}

Value load(Call& call)
{
    Object* self = call.self.asObject();
    if (!self || call.count() == 0) return Value(false);
    return Value(fetchInto(call, self, utf8Arg(call, 0), {}, stage::LoadRequest::Method::None));
}

stage::LoadRequest::Method methodArg(Call& call, std::size_t index)
{
    const bool get = call.count() > index && Names::fold(textArg(call, index)) == u"get";
    return get ? stage::LoadRequest::Method::Get : stage::LoadRequest::Method::Post;
}

Value sendAndLoad(Call& call)
{
    Object* self = call.self.asObject();
    Object* target = call.arg(1).asObject();
    if (!self || !target) return Value(false);
    const auto variables = StageBinding::of(call).collectVariables(self);
    return Value(fetchInto(call, target, utf8Arg(call, 0), variables, methodArg(call, 2)));
}

Value send(Call& call)
{
    StageBinding& binding = StageBinding::of(call);
    if (call.count() == 0) return Value(false);
    binding.services().host.openUrl(utf8Arg(call, 0), call.count() > 1 ? utf8Arg(call, 1) : std::string());
    return Value(true);
}

Value toStringMethod(Call& call)
{
    Object* self = call.self.asObject();
    if (!self) return {};
    Vm& vm = call.vm;
    // Scripts may have replaced what this is made of, and see it at work.
    const auto escaped = [&vm](const Value& value) { return vm.callMethod(vm.global(), "escape", {value}); };
    const Root<Object> parts(vm.heap(), vm.newArray());
    for (const Name name : self->enumerate(vm)) {
        const std::u16string key = toText(vm, escaped(Value(vm.string(name.view()))));
        const std::u16string value = toText(vm, escaped(Value(toString(vm, self->get(vm, name)))));
        vm.callMethod(parts.get(), "push", {Value(vm.string(key + u'=' + value))});
    }
    return vm.callMethod(parts.get(), "join", {Value(vm.string(std::string_view("&")))});
}

Value getBytesLoaded(Call& call)
{
    Object* self = call.self.asObject();
    return self ? self->get(call.vm, call.vm.name(std::string_view("_bytesLoaded"))) : Value();
}
Value getBytesTotal(Call& call)
{
    Object* self = call.self.asObject();
    return self ? self->get(call.vm, call.vm.name(std::string_view("_bytesTotal"))) : Value();
}
Value addRequestHeader(Call&) { return {}; }
Value construct(Call&) { return {}; }

// clang-format off
constexpr MemberInfo kMembers[] = {
    {"load",             0, kFrom6, &load,        0},
    {"send",             0, kFrom6, &send,        1},
    {"sendAndLoad",      0, kFrom6, &sendAndLoad, 2},
    {"getBytesLoaded",   0, kFrom6, &getBytesLoaded},
    {"getBytesTotal",    0, kFrom6, &getBytesTotal},
    {"decode",           0, kFrom6, &decode,      3},
    {"onLoad",           0, kFrom6, &onLoad},
    {"onData",           0, kFrom6, &onData},
    {"toString",         0, kFrom6, &toStringMethod},
    {"addRequestHeader", 0, kFrom6, &addRequestHeader},
};
// clang-format on

} // namespace

void installLoadVars(StageBinding& binding)
{
    Vm& vm = binding.vm();
    constexpr int kLoadTable = 301;
    Function* constructor = vm.defineClass("LoadVars", &construct, kMembers, 0, kLoadTable);
    vm.prototypeOf(constructor)
        ->define(vm, "contentType", Value(vm.string(std::string_view("application/x-www-form-urlencoded"))),
                 kDontEnum);
}

} // namespace flash::avm1
