#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"

// flash.desktop and what else of the desktop movies reach: what is copied, how text is put together by keys.
namespace flash::avm2
{

using Kind = NativeMember::Kind;
using classes::allocateNative;
using classes::selfAs;

namespace
{

/// What a movie has put there stays its own, but for text: that goes out as System.setClipboard() has it.
/// What other programs have copied movies do not see.
class ClipboardObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    static constexpr const char* kClass = "flash.desktop.Clipboard";
    ClipboardObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        for (const Item& item : items) {
            tracer(item.format);
            tracer(item.value);
            tracer(item.handler);
        }
    }
    struct Item {
        Name format;
        Value value, handler; ///< the handler is asked for the value when somebody wants it
    };
    Item* find(Name format)
    {
        for (Item& item : items) {
            if (item.format == format) return &item;
        }
        return nullptr;
    }
    std::vector<Item, vm::TracedAllocator<Item>> items;
};

Name formatOf(Call& call)
{
    const Value format = call.vm.coerceString(call.arg(0));
    if (format.isNull()) call.vm.throwError(ErrorClass::Type, 2007, "Parameter format must be non-null.");
    return call.vm.names().intern(call.vm.toString(format));
}

void put(Call& call, Value value, Value handler)
{
    auto& self = selfAs<ClipboardObject>(call, ClipboardObject::kClass);
    const Name format = formatOf(call);
    if (ClipboardObject::Item* known = self.find(format)) {
        known->value = value;
        known->handler = handler;
    } else {
        self.items.push_back({format, value, handler});
    }
}

/// One for the whole movie: what all of them inherit from holds it.
Value general(Call& call)
{
    ClassObject* cls = call.vm.nativeClass("flash.desktop::Clipboard");
    const Name key = call.vm.name("@general");
    PropertyTable& kept = cls->prototype->table();
    if (const std::uint32_t at = kept.find(key); at != PropertyTable::kMissing) {
        if (as<ClipboardObject>(kept.at(at).value) != nullptr) return kept.at(at).value;
    }
    Object* made = call.vm.instantiate(cls);
    kept.set(key, Value(made));
    kept.setHidden(key, true);
    return Value(made);
}
Value formats(Call& call)
{
    auto& self = selfAs<ClipboardObject>(call, ClipboardObject::kClass);
    RootedList<Value> names(call.vm.heap());
    for (const ClipboardObject::Item& item : self.items) names.push_back(Value(item.format.string()));
    return Value(call.vm.newArray(std::span<const Value>(names->data(), names->size())));
}
Value clear(Call& call)
{
    selfAs<ClipboardObject>(call, ClipboardObject::kClass).items.clear();
    return {};
}
Value clearData(Call& call)
{
    auto& self = selfAs<ClipboardObject>(call, ClipboardObject::kClass);
    const Name format = formatOf(call);
    std::erase_if(self.items, [&](const auto& item) { return item.format == format; });
    return {};
}
Value setData(Call& call)
{
    put(call, call.arg(1), {});
    Player& player = Player::of(call.vm);
    const bool isText = formatOf(call) == call.vm.name("air:text");
    if (isText && !call.arg(1).isNullish() && player.stage().isHandlingInput())
        player.stage().services().host.setClipboardText(toUtf8(call.vm.text(call.arg(1))));
    return true;
}
Value setDataHandler(Call& call)
{
    put(call, {}, call.arg(1));
    return true;
}
Value getData(Call& call)
{
    auto& self = selfAs<ClipboardObject>(call, ClipboardObject::kClass);
    const Name format = formatOf(call);
    ClipboardObject::Item* known = self.find(format);
    if (known == nullptr) return Value::null();
    if (known->handler.isNullish()) return known->value;
    const Value made = call.vm.call(known->handler, Value::null(), {});
    // The handler may have changed what is there.
    if (ClipboardObject::Item* still = self.find(format)) {
        still->value = made;
        still->handler = {};
    }
    return made;
}
Value hasFormat(Call& call)
{
    return selfAs<ClipboardObject>(call, ClipboardObject::kClass).find(formatOf(call)) != nullptr;
}

constexpr NativeMember kClipboard[] = {
    {"generalClipboard", Kind::StaticGetter, &general, 0, 0},
    {"formats", Kind::Getter, &formats, 0, 0},
    {"clear", Kind::Method, &clear, 0, 0},
    {"clearData", Kind::Method, &clearData, 1, 1},
    {"setData", Kind::Method, &setData, 2, 3},
    {"setDataHandler", Kind::Method, &setDataHandler, 2, 3},
    {"getData", Kind::Method, &getData, 1, 2},
    {"hasFormat", Kind::Method, &hasFormat, 1, 1},
};

// ---- text put together by several keys: the system does that before a movie hears of it ----

Value unknownMode(Call& call) { return Value(call.vm.name("UNKNOWN").string()); }
Value refuseIme(Call& call) { call.vm.throwError(ErrorClass::Error, 2063, "Error setting property IME."); }

constexpr NativeMember kIme[] = {
    {"enabled", Kind::StaticGetter, &isAlwaysFalse, 0, 0, &refuseIme},
    {"conversionMode", Kind::StaticGetter, &unknownMode, 0, 0, &refuseIme},
    {"isSupported", Kind::StaticGetter, &isAlwaysFalse, 0, 0},
    {"setCompositionString", Kind::Static, &doNothing, 1, 1},
    {"doConversion", Kind::Static, &doNothing, 0, 0},
    {"compositionSelectionChanged", Kind::Static, &doNothing, 2, 2},
    {"compositionAbandoned", Kind::Static, &doNothing, 0, 0},
};

constexpr NativeClass kClasses[] = {
    {.package = "flash.desktop",
     .name = "Clipboard",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &refuseConstruction,
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &allocateNative<ClipboardObject>,
     .members = kClipboard},
    {.package = "flash.system",
     .name = "IME",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed | NativeClass::Final,
     .members = kIme},
};

} // namespace

NativeLibrary clipboardLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
