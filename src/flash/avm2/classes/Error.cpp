#include "flash/avm2/classes/ErrorTexts.h"
#include "flash/avm2/classes/Library.h"

namespace flash::avm2::classes
{

namespace
{

class ErrorObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    ErrorObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer(message);
        tracer(name);
    }
    Value message, name;
    double id = 0;
    std::u16string stack;
};

Value construct(Call& call)
{
    auto& self = selfAs<ErrorObject>(call, "Error");
    self.message = call.has(0) ? call.arg(0) : Value(call.vm.common().empty.string());
    self.id = call.has(1) ? call.vm.toNumber(call.arg(1)) : 0;
    self.name = self.traits()->name.string();
    // Classes that scripts derive are called as the built-in one is.
    for (Traits* at = self.traits(); at != nullptr; at = at->base) {
        if (at->cls == nullptr || at->cls->constructor == nullptr || at->cls->constructor->native == nullptr)
            continue;
        // Those of packages have no name of their own but the prototype's, which instances do not look at.
        self.name = at->ns->uri.view().empty() ? at->name.string() : call.vm.name("Error").string();
        break;
    }
    std::u16string stack;
    std::size_t skip = 0;
    const auto lines = call.vm.callStack();
    for (const std::u16string& line : lines) {
        if (skip++ == 0) continue; // this constructor itself
        stack += u"\n\tat " + line;
    }
    self.stack = std::move(stack);
    return {};
}

std::u16string shown(Vm& vm, Value self)
{
    const std::u16string message(vm.text(vm.getPublic(self, "message")));
    const std::u16string name(vm.text(vm.getPublic(self, "name")));
    return message.empty() ? name : name + u": " + message;
}

Value toString(Call& call) { return call.vm.string(shown(call.vm, call.self)); }

Value getStackTrace(Call& call)
{
    auto& self = selfAs<ErrorObject>(call, "Error");
    return call.vm.string(shown(call.vm, call.self) + self.stack);
}

Value message(Call& call) { return selfAs<ErrorObject>(call, "Error").message; }
Value setMessage(Call& call)
{
    selfAs<ErrorObject>(call, "Error").message = call.arg(0);
    return {};
}
Value name(Call& call) { return selfAs<ErrorObject>(call, "Error").name; }
Value setName(Call& call)
{
    selfAs<ErrorObject>(call, "Error").name = call.arg(0);
    return {};
}
Value errorId(Call& call) { return selfAs<ErrorObject>(call, "Error").id; }

Value convert(Call& call) { return call.callee->construct(call.vm, call.rest(0)); }

std::u16string messageOf(int number)
{
    const std::string_view text = errorText(number);
    return u"Error #" + numberText(number) + (text.empty() ? u"" : u": " + fromUtf8(text));
}

Value getErrorMessage(Call& call) { return call.vm.string(messageOf(call.vm.toInt(call.arg(0)))); }

/// Makes an error of a class with the text of a number, what follows put into its gaps, and throws it.
Value throwError(Call& call)
{
    Vm& vm = call.vm;
    const int number = vm.toInt(call.arg(1));
    const std::u16string text = messageOf(number);
    std::u16string filled;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isGap =
            text[i] == u'%' && i + 1 < text.size() && text[i + 1] >= u'1' && text[i + 1] <= u'9';
        if (!isGap) {
            filled += text[i];
            continue;
        }
        const auto which = static_cast<std::uint32_t>(text[++i] - u'1');
        if (call.has(2 + which)) filled += vm.text(call.arg(2 + which));
    }
    const Value args[] = {Value(vm.string(std::move(filled))), Value(number)};
    vm.throwValue(vm.construct(call.arg(0), args));
}

constexpr NativeMember kMembers[] = {
    {"toString", Kind::Prototype, &toString, 0, -1},
    {"getStackTrace", Kind::Method, &getStackTrace, 0, 0},
    {"message", Kind::Getter, &message, 0, 0, &setMessage},
    {"name", Kind::Getter, &name, 0, 0, &setName},
    {"errorID", Kind::Getter, &errorId, 0, 0, nullptr, "int"},
    {"getErrorMessage", Kind::Static, &getErrorMessage, 1, 1},
    {"throwError", Kind::Static, &throwError, 2, -1},
};

/// Scripts find the defaults in the prototypes.
void setUp(Vm& vm, ClassObject& cls)
{
    const Value values[] = {Value(cls.instances->name.string()), Value(cls.instances->name.string())};
    cls.prototype->table().set(vm.common().name, values[0]);
    cls.prototype->table().setHidden(vm.common().name, true);
    cls.prototype->table().set(vm.common().message, values[1]);
    cls.prototype->table().setHidden(vm.common().message, true);
}

constexpr NativeClass derived(std::string_view name, std::string_view package = {},
                              std::string_view base = "Error")
{
    return {.package = package,
            .name = name,
            .base = base,
            .constructor = &construct,
            .minArguments = 0,
            .maxArguments = -1,
            .conversion = &convert,
            .setUp = &setUp};
}

constexpr NativeConstant kLengthOne[] = {{"length", 1}};

constexpr NativeClass kClasses[] = {
    {.package = {},
     .name = "Error",
     .base = {},
     .constructor = &construct,
     .minArguments = 0,
     .maxArguments = -1,
     .allocate = &allocateNative<ErrorObject>,
     .conversion = &convert,
     .members = kMembers,
     .constants = kLengthOne,
     .setUp = &setUp},
    derived("TypeError"),
    derived("ReferenceError"),
    derived("RangeError"),
    derived("ArgumentError"),
    derived("VerifyError"),
    derived("SyntaxError"),
    derived("URIError"),
    derived("EvalError"),
    derived("SecurityError"),
    derived("DefinitionError"),
    derived("UninitializedError"),
    derived("IOError", "flash.errors"),
    derived("EOFError", "flash.errors", "flash.errors::IOError"),
    derived("MemoryError", "flash.errors"),
    derived("IllegalOperationError", "flash.errors"),
    derived("InvalidSWFError", "flash.errors"),
    derived("StackOverflowError", "flash.errors"),
    derived("ScriptTimeoutError", "flash.errors"),
};

} // namespace

std::span<const NativeClass> errorClasses() { return kClasses; }

} // namespace flash::avm2::classes
