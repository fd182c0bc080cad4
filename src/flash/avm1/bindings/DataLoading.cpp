#include "flash/avm1/bindings/DataLoading.h"

#include "base/TextCodes.h"
#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/classes/ClassTable.h"
#include "flash/avm1/classes/XmlNode.h"

namespace flash::avm1
{

bool readsCodepage(Vm& vm)
{
    if (vm.version() < 6) return true;
    Object* system = vm.global()->get(vm, vm.name(std::string_view("System"))).asObject();
    return system != nullptr && toBoolean(vm, system->get(vm, vm.name(std::string_view("useCodepage"))));
}

std::optional<std::u16string> markedText(std::string_view bytes)
{
    constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF", kLittleMark = "\xFF\xFE", kBigMark = "\xFE\xFF";
    if (bytes.starts_with(kUtf8Mark)) return base::utf16FromUtf8(bytes.substr(kUtf8Mark.size()));
    const bool little = bytes.starts_with(kLittleMark);
    if (!little && !bytes.starts_with(kBigMark)) return std::nullopt;
    std::u16string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t i = kBigMark.size(); i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        text += static_cast<char16_t>(little ? first | second << 8 : first << 8 | second);
    }
    return text;
}

std::u16string textFromBytes(Vm& vm, std::string_view bytes)
{
    if (auto text = markedText(bytes)) return *std::move(text);
    if (readsCodepage(vm) || !base::isUtf8(bytes)) return vm.host().textCode().decode(bytes);
    return base::utf16FromUtf8(bytes);
}

namespace
{

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
    // A document has a property for it already.
    if (object->native<XmlNode>())
        object->put(vm, vm.name(std::string_view("loaded")), Value(false));
    else
        object->define(vm, "loaded", Value(false), kDontEnum);
    binding.stage().loads().fetch(std::move(request), [&binding, target, version](
                                                          const base::Result<stage::LoadAnswer>& answer) {
        Vm& machine = binding.vm();
        const Vm::VersionScope scope(machine, version);
        Value text;
        if (answer) {
            std::string_view bytes(reinterpret_cast<const char*>(answer->bytes.data()), answer->bytes.size());
            text = Value(machine.string(textFromBytes(machine, bytes)));
            const auto size = Value(static_cast<double>(answer->bytes.size()));
            target->get()->define(machine, "_bytesLoaded", size, kBuiltIn);
            target->get()->define(machine, "_bytesTotal", size, kBuiltIn);
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
    const bool get = call.count() > index && AtomTable::fold(textArg(call, index)) == u"get";
    return get ? stage::LoadRequest::Method::Get : stage::LoadRequest::Method::Post;
}

Value sendAndLoad(Call& call)
{
    Object* self = call.self.asObject();
    Object* target = call.arg(1).asObject();
    if (!self || !target) return Value(false);
    // A document is sent as its text, which nobody outside gets from here; variables go with the address.
    const auto variables = self->native<XmlNode>() ? std::vector<std::pair<std::string, std::string>>()
                                                   : StageBinding::of(call).host().collectVariables(self);
    return Value(fetchInto(call, target, utf8Arg(call, 0), variables, methodArg(call, 2)));
}

Value send(Call& call)
{
    StageBinding& binding = StageBinding::of(call);
    if (call.count() == 0) return Value(false);
    binding.services().host.openUrl(utf8Arg(call, 0), call.count() > 1 ? utf8Arg(call, 1) : std::string());
    return Value(true);
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

/// Kept on the object, a name and a value after the other; nothing that is loaded from files has headers.
Value addRequestHeader(Call& call)
{
    Object* self = call.self.asObject();
    if (!self) return {};
    Vm& vm = call.vm;
    const Name listName = vm.name(std::string_view("_customHeaders"));
    if (self->get(vm, listName).isUndefined()) {
        self->put(vm, listName, vm.construct(vm.global()->get(vm, vm.name(std::string_view("Array"))), {}));
        // Version 5 has no eyes for it, and nothing gets into the list.
        self->changeFlags(vm, listName, kHidden6, 0);
    }
    // Whatever a script put in the list's place is asked to take them.
    Object* list = self->get(vm, listName).asObject();
    if (!list) return {};
    const auto add = [&](Value name, Value value) {
        if (name.isString() && value.isString()) vm.callMethod(list, "push", {name, value});
    };
    Object* given = call.arg(0).asObject();
    if (!given) {
        if (call.count() > 1) add(call.arg(0), call.arg(1));
        return {};
    }
    const double length = std::min(toNumber(vm, given->get(vm, vm.common().length)), 65535.0);
    for (std::uint32_t i = 0; i + 1 < length && !vm.isUnwinding(); i += 2)
        add(given->get(vm, vm.names().fromIndex(i)), given->get(vm, vm.names().fromIndex(i + 1)));
    return {};
}

struct LoadingMember {
    const char* name;
    NativeFunction function;
    int nativeIndex; ///< -1: the genuine player has it written in script
};
// clang-format off
constexpr LoadingMember kMembers[] = {
    {"load",             &load,             0},
    {"send",             &send,             1},
    {"sendAndLoad",      &sendAndLoad,      2},
    {"getBytesLoaded",   &getBytesLoaded,   -1},
    {"getBytesTotal",    &getBytesTotal,    -1},
    {"addRequestHeader", &addRequestHeader, -1},
};
// clang-format on

} // namespace

void addLoading(Vm& vm, Object* prototype, std::uint16_t flags)
{
    for (const LoadingMember& member : kMembers) {
        const bool native = member.nativeIndex >= 0;
        Function* function = native ? vm.newFunction(member.function) : vm.newScriptLike(member.function);
        prototype->define(vm, vm.name(std::string_view(member.name)), function, flags);
        if (native) vm.registerNative(kLoadTable, member.nativeIndex, member.function);
    }
}

} // namespace flash::avm1
