#include "base/TextCodes.h"
#include "flash/avm2/classes/Domains.h"
#include "flash/avm2/classes/Library.h"

#include <QChar>

namespace flash::avm2::classes
{

namespace
{

/// A text whose halves of characters are replaced.
std::u16string whole(std::u16string text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isPair =
            QChar::isHighSurrogate(text[i]) && i + 1 < text.size() && QChar::isLowSurrogate(text[i + 1]);
        if (isPair)
            ++i;
        else if (QChar::isSurrogate(text[i]))
            text[i] = u'\xFFFD';
    }
    return text;
}

Value getTimer(Call& call) { return std::trunc(call.vm.host().timeMs()); }

Value getQualifiedClassName(Call& call) { return call.vm.string(call.vm.className(call.arg(0))); }

Value getQualifiedSuperclassName(Call& call)
{
    if (call.arg(0).isNullish()) return Value::null();
    Traits* traits = call.vm.traitsOf(call.arg(0));
    if (auto* cls = as<ClassObject>(call.arg(0))) traits = cls->instances;
    return traits->base == nullptr ? Value::null() : Value(call.vm.string(traits->base->qualifiedName()));
}

Domain* currentDomain(Call& call) { return call.vm.currentDomain(); }

Value definitionIn(Call& call, Domain* domain)
{
    const std::u16string name(call.vm.text(call.arg(0)));
    Value result;
    if (call.arg(0).isNullish() || !domain->lookUp(call.vm, name, result)) {
        const auto at = name.find_last_of(u".:");
        const std::u16string shown = at == std::u16string::npos ? name : name.substr(at + 1);
        call.vm.throwError(ErrorClass::Reference, 1065, u"Variable " + shown + u" is not defined.");
    }
    return result;
}

Value getDefinitionByName(Call& call)
{
    if (call.arg(0).isNullish())
        call.vm.throwError(ErrorClass::Type, 2007, "Parameter name must be non-null.");
    return definitionIn(call, currentDomain(call));
}

class DomainObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    DomainObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer(domain);
        tracer(memory);
    }
    Domain* domain = nullptr;
    Value memory;
};

DomainObject& domainSelf(Call& call) { return selfAs<DomainObject>(call, "flash.system.ApplicationDomain"); }

Value constructDomain(Call& call)
{
    auto& made = domainSelf(call);
    auto* parent = as<DomainObject>(call.arg(0));
    made.domain = call.vm.heap().make<Domain>(parent != nullptr ? parent->domain : call.vm.systemDomain());
    return {};
}

} // namespace

Object* domainValue(Vm& vm, Domain* domain)
{
    ClassObject* cls = vm.nativeClass("flash.system::ApplicationDomain");
    auto* made = vm.heap().make<DomainObject>(cls->instances, cls->prototype);
    made->domain = domain;
    return made;
}

Domain* domainOf(Value value)
{
    const auto* object = as<DomainObject>(value);
    return object != nullptr ? object->domain : nullptr;
}

namespace
{

Value currentDomainValue(Call& call) { return domainValue(call.vm, currentDomain(call)); }
Value parentDomain(Call& call)
{
    Domain* parent = domainSelf(call).domain->parent;
    return parent != nullptr && parent->parent != nullptr ? Value(domainValue(call.vm, parent))
                                                          : Value::null();
}
Value getDefinition(Call& call) { return definitionIn(call, domainSelf(call).domain); }
Value hasDefinition(Call& call)
{
    Value ignored;
    return !call.arg(0).isNullish() &&
           domainSelf(call).domain->lookUp(call.vm, std::u16string(call.vm.text(call.arg(0))), ignored);
}
Value definitionNames(Call& call)
{
    ClassObject* cls = call.vm.vectorOf(call.vm.classes().string->instances);
    auto* result = call.vm.heap().make<VectorObject>(cls->instances, cls->prototype);
    for (const std::u16string& name : domainSelf(call).domain->definitionNames())
        result->push(call.vm, Value(call.vm.string(name)));
    return result;
}
Value domainMemory(Call& call)
{
    Object* memory = domainSelf(call).domain->memory;
    return memory != nullptr ? Value(memory) : Value::null();
}
Value setDomainMemory(Call& call)
{
    constexpr std::size_t kMin = 1024;
    Object* memory = call.arg(0).asObject();
    if (memory != nullptr && memory->bytes().size() < kMin)
        call.vm.throwError(ErrorClass::Error, 1504, "End of file.");
    domainSelf(call).domain->memory = memory;
    return {};
}
Value minMemory(Call&) { return 1024; }

Value registerClassAlias(Call& call)
{
    if (call.arg(1).isNullish())
        call.vm.throwError(ErrorClass::Type, 2007, "Parameter classObject must be non-null.");
    if (call.arg(0).isNullish())
        call.vm.throwError(ErrorClass::Type, 2007, "Parameter aliasName must be non-null.");
    if (auto* cls = as<ClassObject>(call.arg(1)))
        call.vm.aliases()[std::u16string(call.vm.text(call.arg(0)))] = cls;
    return {};
}
Value getClassByAlias(Call& call)
{
    const std::u16string name(call.vm.text(call.arg(0)));
    const auto found = call.vm.aliases().find(name);
    if (found == call.vm.aliases().end())
        call.vm.throwError(ErrorClass::Reference, 1014, u"Class " + name + u" could not be found.");
    return found->second;
}

/// Every byte of the text in UTF-8 that is no letter or digit, as "%" and two digits. Ends at a NUL.
Value escapeMultiByte(Call& call)
{
    const std::u16string given(call.vm.text(call.arg(0)));
    std::u16string result;
    for (const char byte : base::utf8FromUtf16(whole(given.substr(0, given.find(u'\0'))))) {
        const auto code = static_cast<unsigned char>(byte);
        const bool isKept =
            (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z');
        if (isKept) {
            result += static_cast<char16_t>(code);
        } else {
            constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
            result += {u'%', kDigits[code >> 4U], kDigits[code & 15U]};
        }
    }
    return call.vm.string(std::move(result));
}

int hexDigit(char unit)
{
    return unit >= '0' && unit <= '9'                     ? unit - '0'
           : (unit | 0x20) >= 'a' && (unit | 0x20) <= 'f' ? (unit | 0x20) - 'a' + 10
                                                          : -1;
}

/// The way back. A digit that is none is passed over with all before it.
Value unescapeMultiByte(Call& call)
{
    const std::string text = base::utf8FromUtf16(whole(std::u16string(call.vm.text(call.arg(0)))));
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\0') break;
        if (text[i] != '%') {
            result += text[i];
            continue;
        }
        int value = 0;
        for (int k = 0; k < 2 && value >= 0; ++k) {
            const int digit = ++i < text.size() ? hexDigit(text[i]) : -1;
            value = digit < 0 ? -1 : value * 16 + digit;
        }
        if (value >= 0) result += static_cast<char>(value);
    }
    return call.vm.string(fromUtf8(result));
}

constexpr NativeMember kDomainMembers[] = {
    {"currentDomain", Kind::StaticGetter, &currentDomainValue},
    {"MIN_DOMAIN_MEMORY_LENGTH", Kind::StaticGetter, &minMemory},
    {"parentDomain", Kind::Getter, &parentDomain},
    {"domainMemory", Kind::Getter, &domainMemory, 0, 0, &setDomainMemory},
    {"getDefinition", Kind::Method, &getDefinition, 1, 1},
    {"hasDefinition", Kind::Method, &hasDefinition, 1, 1},
    {"getQualifiedDefinitionNames", Kind::Method, &definitionNames, 0, 0},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.system",
     .name = "ApplicationDomain",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &constructDomain,
     .minArguments = 0,
     .maxArguments = 1,
     .allocate = &allocateNative<DomainObject>,
     .members = kDomainMembers},
};
constexpr NativeFunctionInfo kFunctions[] = {
    {"flash.utils", "getTimer", &getTimer, 0, 0},
    {"flash.utils", "getQualifiedClassName", &getQualifiedClassName, 1, 1},
    {"flash.utils", "getQualifiedSuperclassName", &getQualifiedSuperclassName, 1, 1},
    {"flash.utils", "getDefinitionByName", &getDefinitionByName, 1, 1},
    {"flash.utils", "escapeMultiByte", &escapeMultiByte, 1, 1},
    {"flash.utils", "unescapeMultiByte", &unescapeMultiByte, 1, 1},
    {"avmplus", "getQualifiedClassName", &getQualifiedClassName, 1, 1},
    {"avmplus", "getQualifiedSuperclassName", &getQualifiedSuperclassName, 1, 1},
    {"flash.net", "registerClassAlias", &registerClassAlias, 2, 2},
    {"flash.net", "getClassByAlias", &getClassByAlias, 1, 1},
};

} // namespace

std::span<const NativeClass> utilityClasses() { return kClasses; }
std::span<const NativeFunctionInfo> utilityFunctions() { return kFunctions; }

} // namespace flash::avm2::classes
