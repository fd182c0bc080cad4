#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Loader.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/TextField.h"
#include "flash/avm2/classes/ByteArray.h"
#include "flash/avm2/classes/Domains.h"
#include "flash/avm2/classes/Library.h"
#include "flash/stage/Graphics.h"

#include <algorithm>

// Loaders, and what is known of what they got. An answer is there at once; it is told of when the frame has
// ended, and once more when the first frame of a movie has run.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

LoaderInfoObject* infoOf(DisplayObject& loader) { return as<LoaderInfoObject>(loader.extra); }
DisplayObject& loaderSelf(Call& call) { return displaySelf(call); }

void progress(Vm& vm, LoaderInfoObject& info)
{
    const Value args[] = {Value(vm.name("progress").string()), false, false, info.loaded, info.total};
    auto* event = as<EventObject>(vm.construct(Value(vm.nativeClass("flash.events::ProgressEvent")), args));
    info.dispatch(vm, *event);
}

void fail(Vm& vm, LoaderInfoObject& info, int number, std::u16string_view text)
{
    const Value args[] = {Value(vm.name("ioError").string()), false, false,
                          Value(vm.string(u"Error #" + numberText(number) + u": " + std::u16string(text))),
                          number};
    auto* event = as<EventObject>(vm.construct(Value(vm.nativeClass("flash.events::IOErrorEvent")), args));
    info.dispatch(vm, *event);
}

void httpStatus(Vm& vm, LoaderInfoObject& info)
{
    const Value args[] = {Value(vm.name("httpStatus").string()), false, false, 0};
    auto* event = as<EventObject>(vm.construct(Value(vm.nativeClass("flash.events::HTTPStatusEvent")), args));
    info.dispatch(vm, *event);
}

void takeContent(Vm& vm, DisplayObject& loader)
{
    Player& player = Player::of(vm);
    LoaderInfoObject& info = *infoOf(loader);
    if (info.content != nullptr && info.kind == LoaderInfoObject::Content::OldMovie)
        player.endOldMovie(*info.content);
    if (info.content != nullptr && info.content->parent == &loader) player.removeChild(loader, *info.content);
    info.content = nullptr;
    info.kind = LoaderInfoObject::Content::None;
    info.movie.reset();
    info.loaded = info.total = 0;
    info.url = info.contentType = Value::null();
    info.bytes = Value();
}

Value bytesValue(Vm& vm, base::Bytes bytes)
{
    auto* made = as<classes::ByteArrayObject>(Value(vm.instantiate(vm.classes().byteArray)));
    made->content.assign(bytes.begin(), bytes.end());
    return Value(made);
}

/// The letters of a text move once it is known how large a picture among them is.
void tellText(DisplayObject& loader)
{
    if (stage::TextField* field = fieldAround(loader)) field->pictureArrived();
}

/// The first frame of what came has run.
void finish(Vm& vm, DisplayObject& loader, bool fromFile)
{
    LoaderInfoObject& info = *infoOf(loader);
    vm.guarded([&] { fire(vm, info, "init"); });
    if (fromFile) vm.guarded([&] { httpStatus(vm, info); });
    vm.guarded([&] { fire(vm, info, "complete"); });
}

/// Makes what the bytes hold. @returns false when that is nothing known
bool show(Vm& vm, DisplayObject& loader, base::Bytes bytes, const std::string& url)
{
    Player& player = Player::of(vm);
    LoaderInfoObject& info = *infoOf(loader);
    if (const auto movie = swf::parseMovie(bytes)) {
        info.movie = *movie;
        info.total = info.loaded = static_cast<double>(std::max((*movie)->fileLength, bytes.size()));
        info.bytes = bytesValue(vm, (*movie)->bytes);
        info.url = Value(vm.string(std::string_view(url)));
        info.contentType = Value(vm.string(std::string_view("application/x-shockwave-flash")));
        if ((*movie)->isAs3) {
            info.kind = LoaderInfoObject::Content::Movie;
            if (info.domain == nullptr) info.domain = vm.heap().make<Domain>(vm.movieDomain);
            LoadedMovie& added = player.addMovie(*movie, url, info.domain);
            added.loaderInfo = &info;
            info.content = player.makeRoot(added, nullptr);
        } else if (player.kept.refusesOldMovies) {
            return false;
        } else {
            info.kind = LoaderInfoObject::Content::OldMovie;
            auto* content =
                as<DisplayObject>(Value(vm.instantiate(vm.nativeClass("flash.display::AVM1Movie"))));
            content->isConstructed = true;
            content->name = Value(vm.string(player.nextInstanceName()));
            content->loaderInfo = Value(&info);
            info.content = content;
            if (!player.showOldMovie(*content, *movie, url))
                player.log(url + ": movies of ActionScript 1 and 2 are not played here");
        }
    } else if (auto picture = swf::decodePicture(bytes)) {
        info.kind = LoaderInfoObject::Content::Picture;
        info.url = Value(vm.string(std::string_view(url)));
        const bool isPng = bytes.size() > 1 && bytes[1] == 'P', isGif = bytes.size() > 1 && bytes[1] == 'I';
        info.contentType = Value(vm.string(std::string_view(isPng   ? "image/png"
                                                            : isGif ? "image/gif"
                                                                    : "image/jpeg")));
        info.bytes = bytesValue(vm, bytes);
        const Value args[] = {newBitmapData(vm, std::make_shared<swf::Bitmap>(**picture)),
                              Value(vm.name("auto").string()), true};
        info.width = (*picture)->width;
        info.height = (*picture)->height;
        info.content = as<DisplayObject>(vm.construct(Value(vm.nativeClass("flash.display::Bitmap")), args));
        if (info.content != nullptr) info.content->loaderInfo = Value(&info);
    } else {
        return false;
    }
    if (info.content != nullptr) player.insert(loader, *info.content, loader.children.size());
    return true;
}

/// What came is shown and told of. @param url empty for bytes
void present(Vm& vm, DisplayObject& loader, const std::vector<std::uint8_t>& bytes, const std::string& url)
{
    LoaderInfoObject& info = *infoOf(loader);
    const bool fromFile = !url.empty();
    const std::string address = fromFile ? url : Player::of(vm).stage().url();
    if (!show(vm, loader, bytes, address)) {
        info.bytes = Value();
        fail(vm, info, 2124,
             u"Loaded file is an unknown type." + (fromFile ? u" URL: " + fromUtf8(url) : u""));
        return;
    }
    if (info.content != nullptr) {
        Player::of(vm).runFirstFrame(*info.content);
        info.content->skipsStep = !fromFile;
    }
    tellText(loader);
    finish(vm, loader, fromFile);
}

bool beginsPicture(std::span<const std::uint8_t> bytes)
{
    constexpr std::string_view kBegins[] = {"\xFF\xD8", "\x89PNG", "GIF8"};
    return std::ranges::any_of(kBegins, [&](std::string_view begin) {
        return std::ranges::equal(begin, bytes.first(std::min(begin.size(), bytes.size())), {},
                                  [](char unit) { return static_cast<std::uint8_t>(unit); });
    });
}

/// @param url empty for bytes
void arrive(Vm& vm, DisplayObject& loader, const std::vector<std::uint8_t>& bytes, const std::string& url)
{
    LoaderInfoObject& info = *infoOf(loader);
    const bool fromFile = !url.empty();
    const int generation = loader.generation;
    if (fromFile) fire(vm, info, "open");
    info.loaded = 0;
    info.total = static_cast<double>(bytes.size());
    progress(vm, info);
    info.loaded = info.total;
    const auto movie = swf::parseMovie(bytes);
    if (movie) info.bytes = bytesValue(vm, (*movie)->bytes);
    info.parameters = queryParameters(vm, url);
    progress(vm, info);
    const bool isPicture = !movie && beginsPicture(bytes);
    if (fromFile || (!movie && !isPicture)) return present(vm, loader, bytes, url);
    // Whoever gives the bytes may still begin to listen. Pictures are taken apart aside from the scripts,
    // which find them a frame later still.
    auto held = std::make_shared<Root<DisplayObject>>(vm.heap(), &loader);
    const auto show = [&vm, held, generation, bytes] {
        if ((*held)->generation == generation) present(vm, **held, bytes, {});
    };
    Player& player = Player::of(vm);
    player.later(isPicture ? std::function<void()>([&player, show] { player.later(show); }) : show);
}

Domain* contextDomain(Call& call, std::uint32_t index)
{
    if (call.arg(index).isNullish()) return nullptr;
    return classes::domainOf(call.vm.getPublic(call.arg(index), "applicationDomain"));
}

Value constructLoader(Call& call)
{
    auto& self = loaderSelf(call);
    constructDisplay(call);
    auto* info =
        as<LoaderInfoObject>(Value(call.vm.instantiate(call.vm.nativeClass("flash.display::LoaderInfo"))));
    info->loader = &self;
    info->loaderUrl = Value(call.vm.string(std::string_view(Player::of(call.vm).stage().url())));
    info->parameters = Value(call.vm.newObject());
    self.extra = info;
    return {};
}

/// Takes off what was loaded before, and tells of it.
void dropContent(Vm& vm, DisplayObject& loader)
{
    const bool had = infoOf(loader)->content != nullptr;
    takeContent(vm, loader);
    if (had) tellText(loader);
    if (had) fire(vm, *infoOf(loader), "unload");
}

Value load(Call& call)
{
    auto& self = loaderSelf(call);
    Vm& vm = call.vm;
    if (call.arg(0).isNullish()) vm.throwError(ErrorClass::Type, 2007, "Parameter request must be non-null.");
    const Value address = vm.getPublic(call.arg(0), "url");
    if (address.isNullish()) vm.throwError(ErrorClass::Type, 2007, "Parameter url must be non-null.");
    Player& player = Player::of(vm);
    dropContent(vm, self);
    LoaderInfoObject& info = *infoOf(self);
    info.isLoading = true;
    info.domain = contextDomain(call, 1);
    stage::LoadRequest request;
    request.url = toUtf8(vm.text(address));
    request.baseUrl = player.stage().url();
    auto answer = std::make_shared<base::Result<stage::LoadAnswer>>(player.services().loader.load(request));
    auto held = std::make_shared<Root<DisplayObject>>(vm.heap(), &self);
    const int generation = ++self.generation;
    player.later([&vm, answer, held, generation] {
        DisplayObject& loader = **held;
        if (loader.generation != generation) return; // closed, or asked for something else
        if (*answer) return arrive(vm, loader, (*answer)->bytes, (*answer)->url);
        Player::of(vm).log(answer->error().what);
        LoaderInfoObject& told = *infoOf(loader);
        httpStatus(vm, told);
        fail(vm, told, 2035, u"URL Not Found. URL: " + fromUtf8(answer->error().what));
    });
    return {};
}

Value loadBytes(Call& call)
{
    auto& self = loaderSelf(call);
    auto* data = as<classes::ByteArrayObject>(Value(optionalArg(call, 0, "flash.utils::ByteArray")));
    if (data == nullptr) call.vm.throwError(ErrorClass::Type, 2007, "Parameter bytes must be non-null.");
    if (data->content.empty())
        call.vm.throwError(ErrorClass::Argument, 2085, "Parameter bytes must be non-empty string.");
    dropContent(call.vm, self);
    infoOf(self)->isLoading = true;
    infoOf(self)->domain = contextDomain(call, 1);
    ++self.generation;
    const std::vector<std::uint8_t> bytes = data->content;
    arrive(call.vm, self, bytes, {});
    return {};
}

Value unload(Call& call)
{
    auto& self = loaderSelf(call);
    ++self.generation;
    dropContent(call.vm, self);
    return {};
}
Value close(Call& call)
{
    ++loaderSelf(call).generation;
    return {};
}
Value contentLoaderInfo(Call& call) { return Value(loaderSelf(call).extra); }
Value content(Call& call)
{
    const LoaderInfoObject* info = infoOf(loaderSelf(call));
    return info != nullptr ? Value(info->content) : Value::null();
}
Value uncaughtErrors(Call& call) { return errorEvents(call.vm, *infoOf(loaderSelf(call))); }
/// A loader's list is its own.
Value refuseList(Call& call)
{
    call.vm.throwError(ErrorClass::IllegalOperation, 2069,
                       "The Loader class does not implement this method.");
}

constexpr NativeMember kLoader[] = {
    {"load", Kind::Method, &load, 1, 2},
    {"loadBytes", Kind::Method, &loadBytes, 1, 2},
    {"unload", Kind::Method, &unload, 0, 0},
    {"unloadAndStop", Kind::Method, &unload, 0, 1},
    {"close", Kind::Method, &close, 0, 0},
    {"contentLoaderInfo", Kind::Getter, &contentLoaderInfo, 0, 0, nullptr, "flash.display::LoaderInfo"},
    {"content", Kind::Getter, &content, 0, 0, nullptr, "flash.display::DisplayObject"},
    {"uncaughtErrorEvents", Kind::Getter, &uncaughtErrors},
    {"addChild", Kind::Method, &refuseList, 1, 1},
    {"addChildAt", Kind::Method, &refuseList, 2, 2},
    {"removeChild", Kind::Method, &refuseList, 1, 1},
    {"removeChildAt", Kind::Method, &refuseList, 1, 1},
    {"setChildIndex", Kind::Method, &refuseList, 2, 2},
};
/// The two machines do not call each other.
Value notAcross(Call& call)
{
    call.vm.throwError(ErrorClass::Error, 2014, "Feature is not available at this time.");
}
constexpr NativeMember kOldMovie[] = {
    {"call", Kind::Method, &notAcross, 1, -1},
    {"addCallback", Kind::Method, &notAcross, 2, 2},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.display",
     .name = "Loader",
     .base = "flash.display::DisplayObjectContainer",
     .constructor = &constructLoader,
     .minArguments = 0,
     .maxArguments = 0,
     .members = kLoader},
    {.package = "flash.display",
     .name = "AVM1Movie",
     .base = "flash.display::DisplayObject",
     .flags = NativeClass::Sealed,
     .constructor = &refuseDisplayConstruction,
     .members = kOldMovie},
};

} // namespace

std::span<const NativeClass> loaderClasses() { return kClasses; }

} // namespace flash::avm2
