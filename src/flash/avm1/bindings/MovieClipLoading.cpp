#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/bindings/MovieClipMembers.h"

// What a clip loads, and what the movie in it is.
namespace flash::avm1::movieclip
{

namespace
{

UrlRequest::Method methodArg(Call& call, std::size_t index)
{
    if (call.arg(index).isUndefined()) return UrlRequest::Method::None;
    const std::u16string method = AtomTable::fold(textArg(call, index));
    if (method == u"get") return UrlRequest::Method::Get;
    if (method == u"post") return UrlRequest::Method::Post;
    return UrlRequest::Method::None;
}

void requestFor(Call& call, UrlRequest::Kind kind, std::size_t methodIndex)
{
    Object* self = call.self.asObject();
    if (!selfClip(call)) return;
    UrlRequest request;
    request.kind = kind;
    request.method = methodArg(call, methodIndex);
    if (kind != UrlRequest::Kind::MovieIntoClip || call.count() > 0) request.url = textArg(call, 0);
    if (kind == UrlRequest::Kind::Page && call.count() > 1) request.window = textArg(call, 1);
    request.target = self;
    request.sender = self;
    StageBinding::of(call).host().requestUrl(request);
}

} // namespace

Value loadMovie(Call& call)
{
    requestFor(call, UrlRequest::Kind::MovieIntoClip, 1);
    return {};
}
Value loadVariables(Call& call)
{
    requestFor(call, UrlRequest::Kind::Variables, 1);
    return {};
}
Value getUrl(Call& call)
{
    requestFor(call, UrlRequest::Kind::Page, 2);
    return {};
}
Value unloadMovie(Call& call)
{
    if (stage::Clip* clip = selfClip(call)) StageBinding::of(call).stage().loads().requestUnload(*clip);
    return {};
}
Value getBytesLoaded(Call& call)
{
    stage::Clip* clip = selfClip(call);
    return clip ? Value(clip->bytesLoaded()) : Value();
}
Value getBytesTotal(Call& call)
{
    stage::Clip* clip = selfClip(call);
    return clip ? Value(clip->bytesTotal()) : Value();
}
Value getSwfVersion(Call& call)
{
    stage::Node* node = selfNode(call);
    if (!node || !node->movie()) return Value(-1);
    const stage::Clip* clip = stage::asClip(node);
    const bool noMovie = clip && (clip->content() == stage::Clip::Content::Picture ||
                                  clip->content() == stage::Clip::Content::Missing);
    return Value(noMovie ? -1 : static_cast<int>(node->movie()->header.version));
}

} // namespace flash::avm1::movieclip
