#include "flash/avm1/bindings/ClipHost.h"

#include "base/PercentCode.h"
#include "base/TextCodes.h"
#include "flash/avm1/bindings/DataLoading.h"
#include "flash/avm1/bindings/StageBinding.h"
#include "flash/swf/LevelName.h"

#include <algorithm>

// What scripts ask of others than the stage: pages, movies and variables to load, and commands.
namespace flash::avm1
{

namespace
{

// What converting texts for the host costs, for Vm::noteWork().
constexpr std::size_t kUnitsPerStep = 64;

bool startsWithNoCase(std::u16string_view text, std::u16string_view prefix)
{
    return text.size() >= prefix.size() && AtomTable::fold(text.substr(0, prefix.size())) == prefix;
}

} // namespace

void ClipHost::requestUrl(const UrlRequest& request)
{
    if (request.kind == UrlRequest::Kind::Page && startsWithNoCase(request.url, u"fscommand:")) {
        fsCommand(std::u16string_view(request.url).substr(10), request.window);
        return;
    }
    vm().noteWork(request.url.size() / kUnitsPerStep);
    if (!stage().queue().takesRequest(request.url.size())) return;
    stage::Clip* sender = m_binding.clipOf(request.sender);
    stage::LoadRequest load;
    load.url = base::utf8FromUtf16(request.url);
    load.baseUrl = sender ? sender->url() : stage().url();
    load.method = static_cast<stage::LoadRequest::Method>(request.method);
    // What would go to nobody is not even collected.
    const bool goesToClip =
        request.kind == UrlRequest::Kind::MovieIntoClip || request.kind == UrlRequest::Kind::Variables;
    if (goesToClip && !m_binding.nodeOf(request.target)) return;
    if (load.method != stage::LoadRequest::Method::None && request.sender)
        load.variables = collectVariables(request.sender);
    switch (request.kind) {
    case UrlRequest::Kind::Page:
        stage().queue().addRequest(
            [&host = m_binding.services().host, url = load.url,
             window = base::utf8FromUtf16(request.window)] { host.openUrl(url, window); },
            load.url.size() + request.window.size());
        return;
    case UrlRequest::Kind::MovieIntoClip: {
        stage::Clip* clip = m_binding.clipOf(request.target);
        if (!clip) return;
        if (load.url.empty())
            stage().loads().requestUnload(*clip);
        else
            stage().loads().intoClip(*clip, std::move(load));
        return;
    }
    case UrlRequest::Kind::MovieIntoLevel: {
        std::u16string_view digits = request.window;
        if (startsWithNoCase(digits, swf::kLevelPrefix)) digits.remove_prefix(swf::kLevelPrefix.size());
        int number = 0;
        for (const char16_t c : digits)
            if (c >= u'0' && c <= u'9' && number < 10'000'000) number = number * 10 + (c - u'0');
        if (load.url.empty())
            stage().loads().requestUnload(number);
        else
            stage().loads().intoLevel(number, std::move(load));
        return;
    }
    case UrlRequest::Kind::Variables: {
        // Text fields take variables as well, but are not told of them.
        stage::Node* receiver = m_binding.nodeOf(request.target);
        if (!receiver) return;
        const std::weak_ptr<stage::Node> target = receiver->weak_from_this();
        stage().loads().fetch(std::move(load), [this, target](const base::Result<stage::LoadAnswer>& answer) {
            const stage::NodePtr node = target.lock();
            if (!node || node->isRemoved() || !answer) return;
            const Vm::VersionScope scope(vm(), node->movie() ? node->movie()->header.version : 6);
            decodeVariables(
                m_binding.objectOf(node.get()),
                std::string_view(reinterpret_cast<const char*>(answer->bytes.data()), answer->bytes.size()));
            if (stage::asClip(node.get())) stage().queue().addEvent(*node, stage::Event::Data);
        });
        return;
    }
    }
}

void ClipHost::decodeVariables(Object* object, std::u16string_view text)
{
    // What the code lacks cannot have come from a file in it: such a text had a mark.
    const bool coded = readsCodepage(vm()) && std::ranges::all_of(text, [this](char16_t unit) {
                           return unit < 0x80 || textCode().codeOf(unit) != 0;
                       });
    if (coded)
        decodeVariables(object, textCode().encode(text), Coding::Codepage);
    else
        decodeVariables(object, base::utf8FromUtf16(text), Coding::Utf8);
}

void ClipHost::decodeVariables(Object* object, std::string_view bytes)
{
    if (const auto text = markedText(bytes))
        decodeVariables(object, base::utf8FromUtf16(*text), Coding::Utf8);
    else
        decodeVariables(object, bytes, readsCodepage(vm()) ? Coding::Codepage : Coding::Utf8);
}

void ClipHost::decodeVariables(Object* object, std::string_view text, Coding coding)
{
    const auto decoded = [&](std::string_view part) {
        const std::string plain = base::percentDecoded(part, base::Plus::Space);
        return coding == Coding::Codepage ? textCode().decode(plain) : base::utf16FromCarelessUtf8(plain);
    };
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('&'), text.size());
        const std::string_view pair = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const std::size_t equals = pair.find('=');
        if (pair.empty()) continue;
        const std::u16string name = decoded(pair.substr(0, equals));
        if (name.empty()) continue;
        const std::u16string value =
            equals == std::string_view::npos ? std::u16string() : decoded(pair.substr(equals + 1));
        object->put(vm(), vm().name(std::u16string_view(name)), Value(vm().string(value)));
    }
}

std::vector<std::pair<std::string, std::string>> ClipHost::collectVariables(Object* object)
{
    std::vector<std::pair<std::string, std::string>> variables;
    for (const Name name : object->enumerate(vm())) {
        if (!object->hasPlain(vm(), name)) continue;
        const Value value = object->get(vm(), name);
        if (value.isObject() && value.object()->isFunction()) continue;
        variables.emplace_back(base::utf8FromUtf16(name.view()), base::utf8FromUtf16(toText(vm(), value)));
    }
    return variables;
}

void ClipHost::fsCommand(std::u16string_view command, std::u16string_view argument)
{
    const std::size_t bytes = command.size() + argument.size();
    vm().noteWork(bytes / kUnitsPerStep);
    if (!stage().queue().takesRequest(bytes)) return;
    stage().queue().addRequest([&host = m_binding.services().host, name = base::utf8FromUtf16(command),
                                text = base::utf8FromUtf16(argument)] { host.fsCommand(name, text); },
                               bytes);
}

} // namespace flash::avm1
