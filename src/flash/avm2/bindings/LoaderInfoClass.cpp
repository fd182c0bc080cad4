#include "base/PercentCode.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Loader.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/ByteArray.h"
#include "flash/avm2/classes/Domains.h"
#include "flash/avm2/classes/Library.h"

namespace flash::avm2
{

using Kind = NativeMember::Kind;

void LoaderInfoObject::trace(Tracer& tracer)
{
    DispatcherObject::trace(tracer);
    tracer(content);
    tracer(loader);
    tracer(url);
    tracer(loaderUrl);
    tracer(contentType);
    tracer(parameters);
    tracer(sharedEvents);
    tracer(errors);
    tracer(bytes);
    tracer(domain);
}

Value queryParameters(Vm& vm, std::string_view url)
{
    Object* made = vm.newObject();
    const std::size_t start = url.find('?');
    if (start == std::string_view::npos) return Value(made);
    std::string_view left = url.substr(start + 1);
    const auto decoded = [](std::string_view text) { return base::percentDecoded(text, base::Plus::Space); };
    while (!left.empty()) {
        const std::string_view pair = left.substr(0, left.find('&'));
        left.remove_prefix(std::min(left.size(), pair.size() + 1));
        const std::size_t equals = pair.find('=');
        if (equals == std::string_view::npos) continue;
        vm.set(Value(made), vm.publicName(vm.name(fromUtf8(decoded(pair.substr(0, equals))))),
               Value(vm.string(std::string_view(decoded(pair.substr(equals + 1))))));
    }
    return Value(made);
}

LoaderInfoObject* newLoaderInfo(Vm& vm, std::string_view url)
{
    auto* info = as<LoaderInfoObject>(Value(vm.instantiate(vm.nativeClass("flash.display::LoaderInfo"))));
    info->url = info->loaderUrl = Value(vm.string(url));
    info->contentType = Value(vm.string(std::string_view("application/x-shockwave-flash")));
    info->parameters = queryParameters(vm, url);
    return info;
}

bool offerUncaught(Vm& vm, const LoaderInfoObject& info, Value error)
{
    auto* events = as<DispatcherObject>(info.errors);
    if (events == nullptr || !events->hasListener(vm.name("uncaughtError"))) return false;
    bool isTaken = false;
    vm.guarded([&] {
        EventObject* event = newEvent(vm, "flash.events::UncaughtErrorEvent", "uncaughtError", true, true);
        setReadOnly(vm, *event, "error", error);
        isTaken = !events->dispatch(vm, *event);
    });
    return isTaken;
}

Value errorEvents(Vm& vm, LoaderInfoObject& info)
{
    if (info.errors.isUndefined())
        info.errors = vm.construct(Value(vm.nativeClass("flash.events::UncaughtErrorEvents")), {});
    return info.errors;
}

namespace
{

LoaderInfoObject& self(Call& call)
{
    return classes::selfAs<LoaderInfoObject>(call, "flash.display.LoaderInfo");
}
/// What is known only of what has come.
LoaderInfoObject& loadedSelf(Call& call)
{
    auto& info = self(call);
    if (info.kind == LoaderInfoObject::Content::None)
        call.vm.throwError(ErrorClass::Error, 2099,
                           "The loading object is not sufficiently loaded to provide this information.");
    return info;
}

template <Value LoaderInfoObject::*field>
Value get(Call& call)
{
    return self(call).*field;
}
Value loadedBytes(Call& call) { return self(call).loaded; }
Value totalBytes(Call& call) { return self(call).total; }
Value content(Call& call) { return Value(self(call).content); }
Value loader(Call& call)
{
    auto& info = self(call);
    return Value(info.loader);
}
Value applicationDomain(Call& call)
{
    auto& info = self(call);
    // A loader's is known once something has come.
    if (info.loader != nullptr && info.kind == LoaderInfoObject::Content::None) return Value::null();
    Domain* domain = info.domain != nullptr ? info.domain : call.vm.movieDomain;
    return Value(classes::domainValue(call.vm, domain));
}
Value actionScriptVersion(Call& call)
{
    return loadedSelf(call).kind == LoaderInfoObject::Content::OldMovie ? 2 : 3;
}
Value swfVersion(Call& call)
{
    auto& info = loadedSelf(call);
    return info.movie ? Value(info.movie->header.version) : Value(0);
}
Value frameRate(Call& call)
{
    auto& info = loadedSelf(call);
    return info.movie ? Value(info.movie->header.frameRate) : Value(0);
}
Value width(Call& call)
{
    auto& info = loadedSelf(call);
    return info.movie ? Value(info.movie->header.frameSize.width() / swf::kTwipsPerPixel) : Value(info.width);
}
Value height(Call& call)
{
    auto& info = loadedSelf(call);
    return info.movie ? Value(info.movie->header.frameSize.height() / swf::kTwipsPerPixel)
                      : Value(info.height);
}
Value yes(Call& call)
{
    loadedSelf(call);
    return true;
}
Value no(Call&) { return false; }
Value bytes(Call& call)
{
    auto& info = self(call);
    if (!info.isLoading && info.kind == LoaderInfoObject::Content::None) return Value::null();
    if (info.bytes.isUndefined()) {
        auto* made = as<classes::ByteArrayObject>(Value(call.vm.instantiate(call.vm.classes().byteArray)));
        if (info.movie) made->content.assign(info.movie->bytes.begin(), info.movie->bytes.end());
        return Value(made);
    }
    return info.bytes;
}
Value sharedEvents(Call& call)
{
    auto& info = self(call);
    if (info.sharedEvents.isUndefined())
        info.sharedEvents =
            call.vm.construct(Value(call.vm.nativeClass("flash.events::EventDispatcher")), {});
    return info.sharedEvents;
}
Value uncaughtErrors(Call& call) { return errorEvents(call.vm, self(call)); }
Value nothing(Call&) { return Value::null(); }
Value getByDefinition(Call& call)
{
    auto* main = Player::of(call.vm).mainMovie();
    return main != nullptr ? Value(main->loaderInfo) : Value::null();
}

constexpr NativeMember kLoaderInfo[] = {
    {"url", Kind::Getter, &get<&LoaderInfoObject::url>, 0, 0, nullptr, "String"},
    {"loaderURL", Kind::Getter, &get<&LoaderInfoObject::loaderUrl>, 0, 0, nullptr, "String"},
    {"contentType", Kind::Getter, &get<&LoaderInfoObject::contentType>, 0, 0, nullptr, "String"},
    {"parameters", Kind::Getter, &get<&LoaderInfoObject::parameters>, 0, 0, nullptr, "Object"},
    {"bytesLoaded", Kind::Getter, &loadedBytes, 0, 0, nullptr, "uint"},
    {"bytesTotal", Kind::Getter, &totalBytes, 0, 0, nullptr, "uint"},
    {"bytes", Kind::Getter, &bytes, 0, 0, nullptr, "flash.utils::ByteArray"},
    {"content", Kind::Getter, &content, 0, 0, nullptr, "flash.display::DisplayObject"},
    {"loader", Kind::Getter, &loader, 0, 0, nullptr, "flash.display::Loader"},
    {"applicationDomain", Kind::Getter, &applicationDomain, 0, 0, nullptr, "flash.system::ApplicationDomain"},
    {"actionScriptVersion", Kind::Getter, &actionScriptVersion, 0, 0, nullptr, "uint"},
    {"swfVersion", Kind::Getter, &swfVersion, 0, 0, nullptr, "uint"},
    {"frameRate", Kind::Getter, &frameRate, 0, 0, nullptr, "Number"},
    {"width", Kind::Getter, &width, 0, 0, nullptr, "int"},
    {"height", Kind::Getter, &height, 0, 0, nullptr, "int"},
    {"sameDomain", Kind::Getter, &yes, 0, 0, nullptr, "Boolean"},
    {"childAllowsParent", Kind::Getter, &yes, 0, 0, nullptr, "Boolean"},
    {"parentAllowsChild", Kind::Getter, &yes, 0, 0, nullptr, "Boolean"},
    {"isURLInaccessible", Kind::Getter, &no, 0, 0, nullptr, "Boolean"},
    {"sharedEvents", Kind::Getter, &sharedEvents, 0, 0, nullptr, "flash.events::EventDispatcher"},
    {"uncaughtErrorEvents", Kind::Getter, &uncaughtErrors},
    {"parentSandboxBridge", Kind::Getter, &nothing},
    {"childSandboxBridge", Kind::Getter, &nothing},
    {"getLoaderInfoByDefinition", Kind::Static, &getByDefinition, 1, 1},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.display",
     .name = "LoaderInfo",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .constructor = &refuseConstruction,
     .allocate = &classes::allocateNative<LoaderInfoObject>,
     .members = kLoaderInfo},
};

} // namespace

std::span<const NativeClass> loaderInfoClasses() { return kClasses; }

} // namespace flash::avm2
