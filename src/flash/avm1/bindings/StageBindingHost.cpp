#include "base/PercentCode.h"
#include "base/TextCodes.h"
#include "flash/avm1/bindings/DataLoading.h"
#include "flash/avm1/bindings/NodeObject.h"
#include "flash/avm1/bindings/StageBinding.h"
#include "flash/guard/Guard.h"
#include "flash/stage/Button.h"
#include "flash/stage/TextField.h"

#include <cmath>

namespace flash::avm1
{

namespace
{

// What converting texts for the host costs, for Vm::noteWork().
constexpr std::size_t kUnitsPerStep = 64;

enum PropertyNumber {
    kX,
    kY,
    kXScale,
    kYScale,
    kCurrentFrame,
    kTotalFrames,
    kAlpha,
    kVisible,
    kWidth,
    kHeight,
    kRotation,
    kTarget,
    kFramesLoaded,
    kName,
    kDropTarget,
    kUrl,
    kHighQuality,
    kFocusRect,
    kSoundBufTime,
    kQuality,
    kXMouse,
    kYMouse
};

const char* qualityName(stage::Quality quality)
{
    switch (quality) {
    case stage::Quality::Low: return "LOW";
    case stage::Quality::Medium: return "MEDIUM";
    case stage::Quality::High: return "HIGH";
    case stage::Quality::Best: return "BEST";
    }
    return "HIGH";
}

bool startsWithNoCase(std::u16string_view text, std::u16string_view prefix)
{
    return text.size() >= prefix.size() && AtomTable::fold(text.substr(0, prefix.size())) == prefix;
}

} // namespace

void StageBinding::trace(std::u16string_view text)
{
    m_vm->noteWork(text.size() / kUnitsPerStep);
    m_services.host.traceLine(base::utf8FromUtf16(text));
}
void StageBinding::reportError(std::u16string_view text)
{
    log("script: " + base::utf8FromUtf16(text));
    // Players show errors among the traces only since later than version 9; what the tools of that time made
    // has metadata.
    constexpr int kLastSilentVersion = 9;
    const stage::MoviePtr& movie = m_stage->movie();
    if (movie && (movie->header.version > kLastSilentVersion || !movie->metadata.empty())) trace(text);
}

void StageBinding::log(std::string_view text) { m_services.host.logLine(text); }
double StageBinding::timeMs() { return m_stage ? m_stage->nowMs() : 0; }
double StageBinding::wallClockMs()
{
    return (m_inputs.wallClockMs ? m_inputs.wallClockMs() : 0) + (m_stage ? m_stage->nowMs() : 0);
}
std::uint32_t StageBinding::random()
{
    // xorshift32: good enough for games, and the same on every machine.
    m_random = m_random == 0 ? 0x9E3779B9U : m_random;
    m_random ^= m_random << 13;
    m_random ^= m_random >> 17;
    m_random ^= m_random << 5;
    return m_random;
}
double StageBinding::realTimeMs() { return m_inputs.realTimeMs ? m_inputs.realTimeMs() : 0; }

bool StageBinding::isClip(Object* object) { return clipOf(object) != nullptr; }
bool StageBinding::isStageObject(Object* object) { return nodeOf(object) != nullptr; }

Object* StageBinding::parent(Object* object)
{
    stage::Node* node = nodeOf(object);
    if (!node) return nullptr;
    // What a button shows has the button for its parent.
    stage::Node* const above = node->parent();
    const bool inButton = above && above->kind() == stage::NodeKind::Button;
    return objectOf(inButton ? above : node->parentClip());
}

Object* StageBinding::root(Object* object)
{
    stage::Node* node = nodeOf(object);
    if (!node) return level(0);
    for (stage::Node* at = node; at; at = at->parent()) {
        stage::Clip* clip = stage::asClip(at);
        if (clip && (clip->lockRoot || !clip->parent())) return objectOf(clip);
    }
    return nullptr;
}

Object* StageBinding::level(int number)
{
    return m_stage ? objectOf(m_stage->displayList().level(number)) : nullptr;
}

Object* StageBinding::child(Object* object, std::u16string_view name, bool caseSensitive)
{
    stage::Clip* clip = clipOf(object);
    if (!clip) return nullptr;
    stage::Node* found =
        clip->childByName(base::utf8FromUtf16(name),
                          caseSensitive ? stage::Clip::Case::Sensitive : stage::Clip::Case::Insensitive);
    return found ? scriptedChild(*clip, found) : nullptr;
}

Object* StageBinding::scriptedChild(stage::Clip& clip, stage::Node* child)
{
    const bool isKnown = m_vm->version() >= 6 || child->kind() != stage::NodeKind::TextField;
    Object* object = isKnown ? objectOf(child) : nullptr;
    return object ? object : objectOf(&clip);
}

std::u16string StageBinding::targetPath(Object* object)
{
    stage::Node* node = nodeOf(object);
    return node ? base::utf16FromUtf8(node->dotPath()) : std::u16string();
}

int StageBinding::movieVersion(Object* object)
{
    stage::Node* node = nodeOf(object);
    return node && node->movie() ? node->movie()->header.version : 8;
}

Value StageBinding::property(Object* object, int index)
{
    stage::Node* node = nodeOf(object);
    return node ? propertyOf(*node, index) : Value();
}

void StageBinding::setProperty(Object* object, int index, Value value)
{
    if (stage::Node* node = nodeOf(object)) setPropertyOf(*node, index, value);
}

namespace
{

/// _totalframes and _framesloaded by where a clip's content is from.
int frameCount(const stage::Clip& clip, int ofTimeline, int whenMissing)
{
    switch (clip.content()) {
    case stage::Clip::Content::Made:
    case stage::Clip::Content::Picture: return 1;
    case stage::Clip::Content::Missing: return whenMissing;
    case stage::Clip::Content::Unloaded: return 0;
    case stage::Clip::Content::Timeline: break;
    }
    return clip.hasFrames() ? ofTimeline : 0;
}

} // namespace

Value StageBinding::propertyOf(stage::Node& node, int index)
{
    stage::Clip* clip = stage::asClip(&node);
    const auto mouse = [&] {
        // Clips stand at whole pixels for the mouse. In one that has no extent there are no places: the
        // stage's are given, wrongly scaled, as the genuine player does.
        swf::Matrix toStage = node.toStage();
        if (!toStage.isInvertible()) toStage = {swf::kTwipsPerPixel, 0, 0, swf::kTwipsPerPixel, 0, 0};
        toStage.tx = std::round(toStage.tx / swf::kTwipsPerPixel) * swf::kTwipsPerPixel;
        toStage.ty = std::round(toStage.ty / swf::kTwipsPerPixel) * swf::kTwipsPerPixel;
        const swf::Matrix back = toStage.inverted();
        const swf::Point at = m_stage->pointer().position();
        // Both parts are whole twips.
        const double x = std::round(back.a * at.x + back.c * at.y) + std::round(back.tx);
        const double y = std::round(back.b * at.x + back.d * at.y) + std::round(back.ty);
        return swf::Point{x / swf::kTwipsPerPixel, y / swf::kTwipsPerPixel};
    };
    switch (index) {
    case kX: return node.x();
    case kY: return node.y();
    case kXScale: return node.scaleX();
    case kYScale: return node.scaleY();
    case kCurrentFrame:
        if (!clip) return {};
        if (clip->content() == stage::Clip::Content::Picture) return Value(1);
        return Value(clip->hasFrames() ? std::max(clip->currentFrame(), 0) + 1 : 0);
    case kTotalFrames:
        if (!clip) return {};
        return Value(frameCount(*clip, clip->totalFrames(), 0));
    case kAlpha: return node.alpha();
    case kVisible: return node.isVisible();
    case kWidth: return node.width();
    case kHeight: return node.height();
    case kRotation: return node.rotation();
    case kTarget: return utf8(node.slashPath());
    case kFramesLoaded: return clip ? Value(frameCount(*clip, clip->loadedFrames(), -1)) : Value();
    case kName: return utf8(node.name());
    case kDropTarget: {
        stage::Clip* under =
            m_stage->pointer().dragged() == clip || clip ? m_stage->pointer().dropTarget() : nullptr;
        return utf8(under ? under->slashPath() : std::string());
    }
    case kUrl: return utf8(clip ? clip->url() : m_stage->url());
    case kHighQuality: {
        const stage::Quality quality = m_stage->view().quality();
        return Value(quality == stage::Quality::Best ? 2 : quality == stage::Quality::High ? 1 : 0);
    }
    case kFocusRect:
        if (!node.parent()) return Value(node.focusRect.value_or(true) ? 1 : 0);
        return node.focusRect ? Value(*node.focusRect) : Value::null();
    case kSoundBufTime: return Value(5);
    case kQuality: return utf8(qualityName(m_stage->view().quality()));
    case kXMouse: return mouse().x;
    case kYMouse: return mouse().y;
    default: return {};
    }
}

void StageBinding::setPropertyOf(stage::Node& node, int index, Value value)
{
    Vm& vm = *m_vm;
    const auto number = [&] { return toNumber(vm, value); };
    const auto place = [&](void (stage::Node::*set)(double)) {
        const double n = value.isNullish() && vm.version() < 7 ? std::nan("") : number();
        if (std::isnan(n)) return;
        node.setScriptTransformed();
        (node.*set)(n);
    };
    switch (index) {
    case kX: place(&stage::Node::setX); break;
    case kY: place(&stage::Node::setY); break;
    case kXScale: place(&stage::Node::setScaleX); break;
    case kYScale: place(&stage::Node::setScaleY); break;
    case kAlpha: place(&stage::Node::setAlpha); break;
    case kVisible:
        if (const double n = number(); !std::isnan(n)) {
            node.setVisible(n != 0);
            if (!node.isVisible()) m_stage->focus().dropWithin(node);
        }
        break;
    case kWidth: place(&stage::Node::setWidth); break;
    case kHeight: place(&stage::Node::setHeight); break;
    case kRotation: place(&stage::Node::setRotation); break;
    case kName:
        nodeRenamed(node);
        node.setName(base::utf8FromUtf16(toText(vm, value)));
        break;
    case kHighQuality: {
        const double n = number();
        if (std::isnan(n)) break;
        m_stage->view().setQuality(n >= 2   ? stage::Quality::Best
                                   : n >= 1 ? stage::Quality::High
                                            : stage::Quality::Low);
        break;
    }
    case kFocusRect:
        if (vm.version() < 6 && node.parent()) {
            // There is but one for all.
            if (!value.isNullish()) node.levelRoot()->focusRect = toBoolean(vm, value);
        } else if (value.isNullish() && node.parent())
            node.focusRect.reset();
        else
            node.focusRect = toBoolean(vm, value);
        break;
    case kQuality: {
        const std::u16string name = AtomTable::fold(toText(vm, value));
        if (name == u"low") m_stage->view().setQuality(stage::Quality::Low);
        if (name == u"medium") m_stage->view().setQuality(stage::Quality::Medium);
        if (name == u"high" || name == u"autohigh") m_stage->view().setQuality(stage::Quality::High);
        if (name == u"best") m_stage->view().setQuality(stage::Quality::Best);
        break;
    }
    default: break; // read-only ones
    }
}

// ---- timeline ----------------------------------------------------------------------------------------

void StageBinding::gotoFrame(Object* object, int frame, bool play)
{
    stage::Clip* clip = clipOf(object);
    if (!clip) return;
    if (play)
        clip->play();
    else
        clip->stop();
    // Before the first frame there is nothing to go to.
    if (frame >= 0) clip->gotoFrame(frame);
}

bool StageBinding::gotoLabel(Object* object, std::u16string_view label, bool play)
{
    const std::optional<int> frame = frameByLabel(object, label);
    if (frame) gotoFrame(object, *frame, play);
    return frame.has_value();
}

void StageBinding::play(Object* object)
{
    if (stage::Clip* clip = clipOf(object)) clip->play();
}
void StageBinding::stop(Object* object)
{
    if (stage::Clip* clip = clipOf(object)) clip->stop();
}
void StageBinding::nextFrame(Object* object)
{
    if (stage::Clip* clip = clipOf(object)) gotoFrame(object, clip->currentFrame() + 1, false);
}
void StageBinding::previousFrame(Object* object)
{
    if (stage::Clip* clip = clipOf(object)) gotoFrame(object, std::max(clip->currentFrame() - 1, 0), false);
}

std::optional<int> StageBinding::frameByLabel(Object* object, std::u16string_view label)
{
    stage::Clip* clip = clipOf(object);
    if (!clip) return {};
    const std::string text = base::utf8FromUtf16(label);
    if (const auto frame = clip->frameByLabel(text)) return frame;
    if (clip->movie() && clip->movie()->header.version < 6)
        return clip->frameByLabel(textCode().fromUtf8(text));
    return {};
}

bool StageBinding::isFrameLoaded(Object* object, int frame)
{
    stage::Clip* clip = clipOf(object);
    if (!clip) return false;
    // What lies behind the last frame is not waited for, up to the most frames that there can be.
    constexpr int kMostFrames = 16000;
    return frame < clip->framesAtHand() ||
           (clip->framesAtHand() >= clip->totalFrames() && frame <= kMostFrames);
}

void StageBinding::callFrame(Object* object, int frame)
{
    stage::Clip* clip = clipOf(object);
    if (!clip || frame < 0) return;
    const stage::MoviePtr movie = clip->movie();
    for (const swf::ActionBlock& block : clip->frameActions(frame))
        m_vm->run(movie, block, movie->header.version, object);
}

// ---- things ------------------------------------------------------------------------------------------

void StageBinding::stopAllSounds() { m_services.sound.stopAll(); }

void StageBinding::toggleQuality()
{
    m_stage->view().setQuality(m_stage->view().quality() == stage::Quality::Low ? stage::Quality::High
                                                                                : stage::Quality::Low);
}

void StageBinding::cloneClip(Object* object, std::u16string_view name, int depth)
{
    stage::Node* node = nodeOf(object);
    stage::Clip* parent = node ? node->parentClip() : nullptr;
    // The action counts depths as files do, above the zone of the timeline.
    const double wanted = static_cast<double>(depth) + stage::kTimelineDepth;
    if (!parent || wanted < stage::kTimelineDepth || wanted > stage::kMaxScriptDepth) return;
    const stage::NodePtr copy =
        parent->duplicate(*node, depth + stage::kTimelineDepth, base::utf8FromUtf16(name),
                          [this](stage::Node& fresh) { prepare(fresh, {}); });
    if (copy) construct(*copy, {});
}

void StageBinding::removeClip(Object* object)
{
    stage::Node* node = nodeOf(object);
    if (!node) return;
    // Only what scripts made, or moved into their zone of depths, can be removed by them.
    constexpr int kLastRemovableDepth = 1048575;
    if (node->depth() < 0 || node->depth() > kLastRemovableDepth) return;
    if (stage::Clip* parent = node->parentClip()) parent->removeChild(*node);
}

void StageBinding::startDrag(const DragRequest& request)
{
    stage::Clip* clip = clipOf(request.clip);
    if (!clip) return;
    std::optional<stage::Pointer::DragLimits> limits;
    if (request.constrained)
        limits = stage::Pointer::DragLimits{request.left, request.top, request.right, request.bottom};
    m_stage->pointer().startDrag(*clip, request.lockCenter, limits);
}

void StageBinding::endDrag() { m_stage->pointer().stopDrag(); }

void StageBinding::requestUrl(const UrlRequest& request)
{
    if (request.kind == UrlRequest::Kind::Page && startsWithNoCase(request.url, u"fscommand:")) {
        fsCommand(std::u16string_view(request.url).substr(10), request.window);
        return;
    }
    m_vm->noteWork(request.url.size() / kUnitsPerStep);
    if (!m_stage->queue().takesRequest(request.url.size())) return;
    stage::Clip* sender = clipOf(request.sender);
    stage::LoadRequest load;
    load.url = base::utf8FromUtf16(request.url);
    load.baseUrl = sender ? sender->url() : m_stage->url();
    load.method = static_cast<stage::LoadRequest::Method>(request.method);
    // What would go to nobody is not even collected.
    const bool goesToClip =
        request.kind == UrlRequest::Kind::MovieIntoClip || request.kind == UrlRequest::Kind::Variables;
    if (goesToClip && !nodeOf(request.target)) return;
    if (load.method != stage::LoadRequest::Method::None && request.sender)
        load.variables = collectVariables(request.sender);
    switch (request.kind) {
    case UrlRequest::Kind::Page:
        m_stage->queue().addRequest(
            [&host = m_services.host, url = load.url, window = base::utf8FromUtf16(request.window)] {
                host.openUrl(url, window);
            },
            load.url.size() + request.window.size());
        return;
    case UrlRequest::Kind::MovieIntoClip: {
        stage::Clip* clip = clipOf(request.target);
        if (!clip) return;
        if (load.url.empty())
            m_stage->loads().requestUnload(*clip);
        else
            m_stage->loads().intoClip(*clip, std::move(load));
        return;
    }
    case UrlRequest::Kind::MovieIntoLevel: {
        std::u16string_view digits = request.window;
        if (startsWithNoCase(digits, u"_level")) digits.remove_prefix(6);
        int number = 0;
        for (const char16_t c : digits)
            if (c >= u'0' && c <= u'9' && number < 10'000'000) number = number * 10 + (c - u'0');
        if (load.url.empty())
            m_stage->loads().requestUnload(number);
        else
            m_stage->loads().intoLevel(number, std::move(load));
        return;
    }
    case UrlRequest::Kind::Variables: {
        // Text fields take variables as well, but are not told of them.
        stage::Node* receiver = nodeOf(request.target);
        if (!receiver) return;
        const std::weak_ptr<stage::Node> target = receiver->weak_from_this();
        m_stage->loads().fetch(
            std::move(load), [this, target](const base::Result<stage::LoadAnswer>& answer) {
                const stage::NodePtr node = target.lock();
                if (!node || node->isRemoved() || !answer) return;
                const Vm::VersionScope scope(*m_vm, node->movie() ? node->movie()->header.version : 6);
                decodeVariables(objectOf(node.get()),
                                {reinterpret_cast<const char*>(answer->bytes.data()), answer->bytes.size()});
                if (stage::asClip(node.get())) m_stage->queue().addEvent(*node, stage::Event::Data);
            });
        return;
    }
    }
}

void StageBinding::decodeVariables(Object* object, std::string_view text)
{
    const bool coded = readsCodepage(*m_vm);
    const auto decoded = [&](std::string_view part) {
        const std::string plain = base::percentDecoded(part, base::Plus::Space);
        return coded ? textCode().decode(plain) : base::utf16FromCarelessUtf8(plain);
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
        object->put(*m_vm, m_vm->name(std::u16string_view(name)), Value(m_vm->string(value)));
    }
}

std::vector<std::pair<std::string, std::string>> StageBinding::collectVariables(Object* object)
{
    std::vector<std::pair<std::string, std::string>> variables;
    for (const Name name : object->enumerate(*m_vm)) {
        if (!object->hasPlain(*m_vm, name)) continue;
        const Value value = object->get(*m_vm, name);
        if (value.isObject() && value.object()->isFunction()) continue;
        variables.emplace_back(base::utf8FromUtf16(name.view()), base::utf8FromUtf16(toText(*m_vm, value)));
    }
    return variables;
}

void StageBinding::fsCommand(std::u16string_view command, std::u16string_view argument)
{
    const std::size_t bytes = command.size() + argument.size();
    m_vm->noteWork(bytes / kUnitsPerStep);
    if (!m_stage->queue().takesRequest(bytes)) return;
    m_stage->queue().addRequest([&host = m_services.host, name = base::utf8FromUtf16(command),
                                 text = base::utf8FromUtf16(argument)] { host.fsCommand(name, text); },
                                bytes);
}

void StageBinding::updateAfterEvent() {}

bool StageBinding::askToStopScript(double)
{
    const bool stops = m_services.host.abortSlowScript();
    guard::restartClock(); // the time for the answer is the user's
    return stops;
}
bool StageBinding::endsScripts()
{
    if (guard::Guard* guard = guard::current()) guard->lookAround();
    return m_services.host.endsScripts();
}

void StageBinding::scriptsEnded(std::string_view why) { m_services.host.limitReached(why); }

void StageBinding::stopSlowScripts()
{
    if (!m_vm->isDisabled() && askToStopScript(0))
        m_vm->abortScript("The scripts of this movie ran for too long and were stopped.");
}

} // namespace flash::avm1
