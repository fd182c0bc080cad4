#include "flash/avm2/bindings/NetLoading.h"

#include "base/PercentCode.h"
#include "base/TextCodes.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/ByteArray.h"
#include "flash/net/SignedLibrary.h"

#include <algorithm>

namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

std::u16string loadedText(Vm& vm, std::span<const std::uint8_t> bytes)
{
    std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF", kLittleMark = "\xFF\xFE", kBigMark = "\xFE\xFF";
    if (text.starts_with(kUtf8Mark)) return base::utf16FromUtf8(text.substr(kUtf8Mark.size()));
    if (text.starts_with(kLittleMark) || text.starts_with(kBigMark)) {
        const bool little = text.starts_with(kLittleMark);
        std::u16string result;
        for (std::size_t i = kBigMark.size(); i + 1 < text.size(); i += 2) {
            const auto first = static_cast<unsigned char>(text[i]),
                       second = static_cast<unsigned char>(text[i + 1]);
            result += static_cast<char16_t>(little ? first | second << 8U : first << 8U | second);
        }
        return result;
    }
    Player& player = Player::of(vm);
    if (player.kept.usesCodePage) return player.stage().linkage().textCode().decode(text);
    return base::utf16FromUtf8(text);
}

namespace
{

/// As encodeURIComponent() does.
std::string percentCoded(std::u16string_view text)
{
    return base::percentEncoded(base::utf8FromUtf16(text), "-_.!~*'()");
}

// ---- URLVariables ----

/// A name given again makes a list of its values.
void addVariable(Vm& vm, Value object, std::u16string_view name, Value value)
{
    const Multiname key = vm.publicName(vm.names().intern(name));
    if (!vm.hasOwn(object, key)) {
        vm.set(object, key, value);
        return;
    }
    const Value known = vm.get(object, key);
    if (known.isNullish()) {
        vm.set(object, key, value);
        return;
    }
    if (auto* list = as<ArrayObject>(known)) {
        list->push(vm, value);
        return;
    }
    auto* list = static_cast<ArrayObject*>(vm.newArray());
    list->push(vm, known);
    list->push(vm, value);
    vm.set(object, key, Value(list));
}

Value decodeVariables(Call& call)
{
    Vm& vm = call.vm;
    const std::string text = base::utf8FromUtf16(vm.text(call.arg(0)));
    std::string_view rest = text;
    for (bool more = true; more;) {
        const std::size_t end = std::min(rest.find('&'), rest.size());
        const std::string_view pair = rest.substr(0, end);
        more = end < rest.size();
        rest.remove_prefix(std::min(end + 1, rest.size()));
        const std::size_t equals = pair.find('=');
        if (equals == std::string_view::npos)
            vm.throwError(ErrorClass::Error, 2101,
                          "The String passed to URLVariables.decode() must be a URL-encoded query string "
                          "containing name/value pairs.");
        const auto plain = [](std::string_view part) {
            return base::utf16FromUtf8(base::percentDecoded(part, base::Plus::Space));
        };
        addVariable(vm, call.self, plain(pair.substr(0, equals)),
                    Value(vm.string(plain(pair.substr(equals + 1)))));
    }
    return {};
}

Value constructVariables(Call& call)
{
    return call.has(0) && !call.arg(0).isNullish() ? decodeVariables(call) : Value();
}

Value variablesToString(Call& call)
{
    return call.vm.string(fromUtf8(encodedVariables(call.vm, call.self.asObject())));
}

} // namespace

std::string encodedVariables(Vm& vm, Object* object)
{
    std::string text;
    if (object == nullptr) return text;
    const auto add = [&](std::u16string_view name, Value value) {
        if (!text.empty()) text += '&';
        const std::string key = percentCoded(name);
        text += key + '=' + percentCoded(std::u16string(vm.text(value)));
    };
    for (std::uint32_t at = object->nextIndex(vm, 0); at != 0; at = object->nextIndex(vm, at)) {
        const std::u16string name(vm.text(object->nextName(vm, at)));
        const Value value = object->nextValue(vm, at);
        auto* list = as<ArrayObject>(value);
        if (list == nullptr) {
            add(name, value);
            continue;
        }
        for (std::uint32_t i = 0; i < list->length(); ++i) add(name, list->at(vm, i));
    }
    return text;
}

namespace
{

// ---- URLRequest ----

struct RequestTag {
    static constexpr const char* kClass = "flash.net.URLRequest";
};
enum RequestField : std::uint8_t { Url, Method, Data, ContentType, Headers, Digest, kRequestFields };
using RequestObject = FieldsOf<Object, kRequestFields, RequestTag>;

Value constructRequest(Call& call)
{
    auto& made = selfAs<RequestObject>(call, RequestTag::kClass);
    made.fields.fill(Value::null());
    made.fields[Method] = Value(call.vm.name("GET").string());
    made.fields[Headers] = Value(call.vm.newArray());
    made.fields[Url] = call.vm.coerceString(call.arg(0));
    return {};
}
Value setMethod(Call& call)
{
    const std::u16string method = textArg(call, 0, "method");
    if (method != u"GET" && method != u"get" && method != u"POST" && method != u"post")
        throwNotAccepted(call.vm, "method");
    selfAs<RequestObject>(call, RequestTag::kClass).fields[Method] = Value(call.vm.string(method));
    return {};
}
Value contentType(Call& call)
{
    const Value type = selfAs<RequestObject>(call, RequestTag::kClass).fields[ContentType];
    return type.isNull() ? Value(call.vm.name("application/x-www-form-urlencoded").string()) : type;
}
Value setHeaders(Call& call)
{
    const Value list = call.vm.coerce(call.arg(0), call.vm.classes().array->instances);
    selfAs<RequestObject>(call, RequestTag::kClass).fields[Headers] = list;
    return {};
}
Value setDigest(Call& call)
{
    const Value digest = call.vm.coerceString(call.arg(0));
    if (digest.isString() && call.vm.text(digest).size() != 64)
        call.vm.throwError(ErrorClass::Argument, 2034,
                           "The SHA-256 hash of the code must be 64 hexadecimal digits.");
    selfAs<RequestObject>(call, RequestTag::kClass).fields[Digest] = digest;
    return {};
}

} // namespace

std::optional<stage::LoadRequest> requestArg(Call& call, std::uint32_t i)
{
    auto* given = as<RequestObject>(Value(objectArg(call, i, "flash.net::URLRequest")));
    if (given == nullptr) return std::nullopt;
    Vm& vm = call.vm;
    stage::LoadRequest request;
    if (given->fields[Url].isNull()) throwNullParameter(vm, "url");
    request.url = toUtf8(vm.text(given->fields[Url]));
    request.baseUrl = Player::of(vm).stage().url();
    if (given->fields[Digest].isString()) request.digest = toUtf8(vm.text(given->fields[Digest]));
    const bool isPost =
        vm.text(given->fields[Method]) == u"POST" || vm.text(given->fields[Method]) == u"post";
    const Value data = given->fields[Data];
    if (data.isObject() && as<classes::ByteArrayObject>(data) == nullptr) {
        request.method = isPost ? stage::LoadRequest::Method::Post : stage::LoadRequest::Method::Get;
        Object* object = data.object();
        for (std::uint32_t at = object->nextIndex(vm, 0); at != 0; at = object->nextIndex(vm, at))
            request.variables.emplace_back(toUtf8(vm.text(object->nextName(vm, at))),
                                           toUtf8(vm.text(object->nextValue(vm, at))));
    }
    return request;
}

std::string addressOf(const stage::LoadRequest& request)
{
    std::string query;
    for (const auto& [name, value] : request.variables)
        query +=
            (query.empty() ? "" : "&") + percentCoded(fromUtf8(name)) + "=" + percentCoded(fromUtf8(value));
    if (query.empty()) return request.url;
    return request.url + (request.url.find('?') == std::string::npos ? "?" : "&") + query;
}

void askToOpen(Vm& vm, const std::string& url, const std::string& window)
{
    stage::Stage& stage = Player::of(vm).stage();
    if (!stage.queue().takesRequest(url.size() + window.size())) return;
    stage.queue().addRequest([&host = stage.services().host, url, window] { host.openUrl(url, window); },
                             url.size() + window.size());
}

void fireHttpStatus(Vm& vm, DispatcherObject& target)
{
    fireWith(vm, target, "flash.events::HTTPStatusEvent", "httpStatus", {Value(0)});
}
void fireProgress(Vm& vm, DispatcherObject& target, double loaded, double total)
{
    fireWith(vm, target, "flash.events::ProgressEvent", "progress", {Value(loaded), Value(total)});
}

void fetchFor(Call& call, DispatcherObject& object, const std::uint32_t& current, stage::LoadRequest request,
              Answered answered)
{
    Vm& vm = call.vm;
    auto target = std::make_shared<Root<DispatcherObject>>(vm.heap(), &object);
    const std::string digest = request.digest;
    Player::of(vm).stage().loads().fetch(
        std::move(request), [&vm, target, &current, turn = current, answered,
                             digest](const base::Result<stage::LoadAnswer>& answer) {
            // `current` is a part of what `target` keeps alive.
            if (turn != current || vm.isDisabled()) return;
            answered(vm, *target->get(), digest.empty() ? answer : net::signedAnswer(answer, digest));
        });
}

Value bytesValue(Vm& vm, std::span<const std::uint8_t> bytes)
{
    auto* array = as<classes::ByteArrayObject>(vm.construct(Value(vm.classes().byteArray), {}));
    array->content.assign(bytes.begin(), bytes.end());
    return Value(array);
}

namespace
{

// ---- URLLoader ----

struct LoaderTag {
    static constexpr const char* kClass = "flash.net.URLLoader";
};
enum LoaderField : std::uint8_t { Content, Format, Loaded, Total, kLoaderFields };
class UrlLoaderObject final : public FieldsOf<DispatcherObject, kLoaderFields, LoaderTag>
{
public:
    using Base = FieldsOf<DispatcherObject, kLoaderFields, LoaderTag>;
    AVM2_NATIVE(Base)
    UrlLoaderObject(Traits* traits, Object* proto) : Base(traits, proto) {}
    std::uint32_t turn = 0; ///< counts the loads that were asked for or given up
    bool isLoading = false;
};

/// What came, in the form that was asked for.
void takeContent(Vm& vm, UrlLoaderObject& loader, std::span<const std::uint8_t> bytes)
{
    const std::u16string format(vm.text(loader.fields[Format]));
    if (format == u"binary") {
        loader.fields[Content] = bytesValue(vm, bytes);
        return;
    }
    loader.fields[Content] = Value(vm.string(loadedText(vm, bytes)));
    if (format != u"variables" || bytes.empty()) return;
    const Value args[] = {loader.fields[Content]};
    loader.fields[Content] = vm.construct(Value(vm.nativeClass("flash.net::URLVariables")), args);
}

void loaderAnswered(Vm& vm, DispatcherObject& object, const base::Result<stage::LoadAnswer>& answer)
{
    auto& loader = static_cast<UrlLoaderObject&>(object);
    const std::uint32_t turn = loader.turn;
    const auto step = [&](auto&& work) {
        if (turn == loader.turn) vm.guarded(work);
    };
    const auto end = [&] {
        if (turn == loader.turn) loader.isLoading = false;
    };
    if (!answer) {
        step([&] { fireHttpStatus(vm, loader); });
        step([&] { takeContent(vm, loader, {}); });
        end();
        step([&] {
            fireWith(vm, loader, "flash.events::IOErrorEvent", "ioError",
                     {Value(vm.string(std::u16string_view(u"Error #2032: Stream Error"))), Value(2032)});
        });
        return;
    }
    const auto size = static_cast<double>(answer->bytes.size());
    step([&] { fire(vm, loader, "open"); });
    loader.fields[Loaded] = loader.fields[Total] = size;
    step([&] { fireProgress(vm, loader, size, size); });
    step([&] { fireHttpStatus(vm, loader); });
    step([&] { takeContent(vm, loader, answer->bytes); });
    end();
    step([&] { fire(vm, loader, "complete"); });
}

Value loadUrl(Call& call)
{
    auto& loader = selfAs<UrlLoaderObject>(call, LoaderTag::kClass);
    auto request = requestArg(call, 0);
    if (!request) throwNullParameter(call.vm, "request");
    ++loader.turn;
    loader.isLoading = true;
    loader.fields[Loaded] = loader.fields[Total] = 0;
    fetchFor(call, loader, loader.turn, std::move(*request), &loaderAnswered);
    return {};
}
Value constructLoader(Call& call)
{
    auto& made = selfAs<UrlLoaderObject>(call, LoaderTag::kClass);
    made.fields[Format] = Value(call.vm.name("text").string());
    made.fields[Loaded] = made.fields[Total] = 0;
    return call.has(0) && !call.arg(0).isNullish() ? loadUrl(call) : Value();
}
Value closeLoader(Call& call)
{
    auto& loader = selfAs<UrlLoaderObject>(call, LoaderTag::kClass);
    if (!loader.isLoading)
        call.vm.throwError(ErrorClass::Io, 2029, "This URLStream object does not have a stream opened.");
    ++loader.turn;
    loader.isLoading = false;
    return {};
}

constexpr NativeMember kVariables[] = {
    {"decode", Kind::Method, &decodeVariables, 1, 1},
    {"toString", Kind::Method, &variablesToString, 0, 0},
};
constexpr NativeMember kRequest[] = {
    {"url", Kind::Getter, &getField<RequestObject, Url>, 0, 0,
     &setField<RequestObject, Url, FieldType::String>, "String"},
    {"method", Kind::Getter, &getField<RequestObject, Method>, 0, 0, &setMethod, "String"},
    {"data", Kind::Getter, &getField<RequestObject, Data>, 0, 0, &setField<RequestObject, Data>, "Object"},
    {"contentType", Kind::Getter, &contentType, 0, 0,
     &setField<RequestObject, ContentType, FieldType::String>, "String"},
    {"requestHeaders", Kind::Getter, &getField<RequestObject, Headers>, 0, 0, &setHeaders, "Array"},
    {"digest", Kind::Getter, &getField<RequestObject, Digest>, 0, 0, &setDigest, "String"},
    {"useRedirectedURL", Kind::Method, &doNothing, 1, 2},
};
constexpr NativeMember kLoader[] = {
    {"load", Kind::Method, &loadUrl, 1, 1},
    {"close", Kind::Method, &closeLoader, 0, 0},
    {"data", Kind::Getter, &getField<UrlLoaderObject, Content>, 0, 0, &setField<UrlLoaderObject, Content>},
    {"dataFormat", Kind::Getter, &getField<UrlLoaderObject, Format>, 0, 0,
     &setField<UrlLoaderObject, Format, FieldType::String>, "String"},
    {"bytesLoaded", Kind::Getter, &getField<UrlLoaderObject, Loaded>, 0, 0,
     &setField<UrlLoaderObject, Loaded, FieldType::Uint>, "uint"},
    {"bytesTotal", Kind::Getter, &getField<UrlLoaderObject, Total>, 0, 0,
     &setField<UrlLoaderObject, Total, FieldType::Uint>, "uint"},
};

Value navigate(Call& call)
{
    const auto request = requestArg(call, 0);
    if (!request) throwNullParameter(call.vm, "request");
    const std::string window = call.arg(1).isNullish() ? std::string() : toUtf8(call.vm.text(call.arg(1)));
    askToOpen(call.vm, addressOf(*request), window);
    return {};
}
/// What is sent without an answer goes nowhere: there is no network here.
Value sendToUrl(Call& call)
{
    if (!requestArg(call, 0)) throwNullParameter(call.vm, "request");
    Player::of(call.vm).log("sendToURL: nothing is sent");
    return {};
}

using C = NativeConstant;
constexpr C kMethods[] = {{"DELETE", 0, "DELETE"},   {"GET", 0, "GET"},   {"HEAD", 0, "HEAD"},
                          {"OPTIONS", 0, "OPTIONS"}, {"POST", 0, "POST"}, {"PUT", 0, "PUT"}};
constexpr C kFormats[] = {{"BINARY", 0, "binary"}, {"TEXT", 0, "text"}, {"VARIABLES", 0, "variables"}};

constexpr NativeClass kClasses[] = {
    {.package = "flash.net",
     .name = "URLVariables",
     .base = {},
     .constructor = &constructVariables,
     .minArguments = 0,
     .maxArguments = 1,
     .members = kVariables},
    {.package = "flash.net",
     .name = "URLRequest",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &constructRequest,
     .minArguments = 0,
     .maxArguments = 1,
     .allocate = &allocateNative<RequestObject>,
     .members = kRequest},
    {.package = "flash.net",
     .name = "URLRequestHeader",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &assignSlots,
     .minArguments = 0,
     .maxArguments = 2,
     .slots = "name:String= value:String="},
    {.package = "flash.net",
     .name = "URLLoader",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .constructor = &constructLoader,
     .minArguments = 0,
     .maxArguments = 1,
     .allocate = &allocateNative<UrlLoaderObject>,
     .members = kLoader},
    constantsOf("flash.net", "URLRequestMethod", kMethods),
    constantsOf("flash.net", "URLLoaderDataFormat", kFormats),
};
constexpr NativeFunctionInfo kFunctions[] = {
    {"flash.net", "navigateToURL", &navigate, 1, 2},
    {"flash.net", "sendToURL", &sendToUrl, 1, 1},
};

} // namespace

NativeLibrary netLoadingLibrary() { return {kClasses, kFunctions}; }

} // namespace flash::avm2
