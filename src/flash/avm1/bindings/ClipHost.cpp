#include "flash/avm1/bindings/ClipHost.h"

#include "base/TextCodes.h"
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

} // namespace

Vm& ClipHost::vm() const { return m_binding.vm(); }
stage::Stage& ClipHost::stage() const { return m_binding.stage(); }

const base::TextCode& ClipHost::textCode() const
{
    return m_binding.hasStage() ? stage().linkage().textCode() : Host::textCode();
}

void ClipHost::trace(std::u16string_view text)
{
    vm().noteWork(text.size() / kUnitsPerStep);
    stage::HostEvents& host = m_binding.services().host;
    if (!isOfLaterPlayers()) return host.traceLine(base::utf8FromUtf16(text));
    // There each return is a line's end, and half a pair of units is no character.
    std::u16string shown(text);
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const auto is = [&](std::size_t at, char16_t first) {
            return at < shown.size() && (shown[at] & 0xFC00) == first;
        };
        if (shown[i] == u'\r') shown[i] = u'\n';
        if (is(i, 0xD800) && is(i + 1, 0xDC00))
            ++i;
        else if (is(i, 0xD800) || is(i, 0xDC00))
            shown[i] = u'\uFFFD';
    }
    host.traceLine(base::utf8FromUtf16(shown));
}
void ClipHost::reportError(std::u16string_view text)
{
    log("script: " + base::utf8FromUtf16(text));
    if (isOfLaterPlayers()) trace(text);
}
bool ClipHost::isOfLaterPlayers() const
{
    const stage::MoviePtr movie = m_binding.hasStage() ? stage().movie() : nullptr;
    return movie && movie->isOfLaterPlayers();
}

void ClipHost::log(std::string_view text) { m_binding.services().host.logLine(text); }
double ClipHost::timeMs() { return m_binding.hasStage() ? stage().nowMs() : 0; }
double ClipHost::wallClockMs()
{
    return (m_binding.inputs().wallClockMs ? m_binding.inputs().wallClockMs() : 0) +
           (m_binding.hasStage() ? stage().nowMs() : 0);
}
std::uint32_t ClipHost::random()
{
    // xorshift32: good enough for games, and the same on every machine.
    m_random = m_random == 0 ? 0x9E3779B9U : m_random;
    m_random ^= m_random << 13;
    m_random ^= m_random >> 17;
    m_random ^= m_random << 5;
    return m_random;
}
double ClipHost::realTimeMs() { return m_binding.inputs().realTimeMs ? m_binding.inputs().realTimeMs() : 0; }

bool ClipHost::isClip(Object* object)
{
    // Asked at every call and after it.
    if (!object || object->exotic() != Exotic::Node) return false;
    return stage::asClip(static_cast<NodeObject*>(object->nativeBase())->live()) != nullptr;
}

bool ClipHost::isStageObject(Object* object) { return m_binding.nodeOf(object) != nullptr; }

Object* ClipHost::parent(Object* object)
{
    stage::Node* node = m_binding.nodeOf(object);
    if (!node) return nullptr;
    // What a button shows has the button for its parent.
    stage::Node* const above = node->parent();
    const bool inButton = above && above->kind() == stage::NodeKind::Button;
    return m_binding.objectOf(inButton ? above : node->parentClip());
}

Object* ClipHost::root(Object* object)
{
    stage::Node* node = m_binding.nodeOf(object);
    if (!node) return level(0);
    for (stage::Node* at = node; at; at = at->parent()) {
        stage::Clip* clip = stage::asClip(at);
        if (clip && (clip->lockRoot || !clip->parent())) return m_binding.objectOf(clip);
    }
    return nullptr;
}

Object* ClipHost::level(int number)
{
    return m_binding.hasStage() ? m_binding.objectOf(stage().displayList().level(number)) : nullptr;
}

Object* ClipHost::child(Object* object, std::u16string_view name, bool caseSensitive)
{
    stage::Clip* clip = m_binding.clipOf(object);
    if (!clip) return nullptr;
    stage::Node* found =
        clip->childByName(base::utf8FromUtf16(name),
                          caseSensitive ? stage::Clip::Case::Sensitive : stage::Clip::Case::Insensitive);
    return found ? m_binding.scriptedChild(*clip, found) : nullptr;
}

std::u16string ClipHost::targetPath(Object* object)
{
    stage::Node* node = m_binding.nodeOf(object);
    return node ? base::utf16FromUtf8(node->dotPath()) : std::u16string();
}

int ClipHost::movieVersion(Object* object)
{
    stage::Node* node = m_binding.nodeOf(object);
    return node && node->movie() ? node->movie()->header.version : 8;
}

Value ClipHost::property(Object* object, int index)
{
    stage::Node* node = m_binding.nodeOf(object);
    return node ? propertyOf(*node, index) : Value();
}

void ClipHost::setProperty(Object* object, int index, Value value)
{
    if (stage::Node* node = m_binding.nodeOf(object)) setPropertyOf(*node, index, value);
}

// ---- timeline ----------------------------------------------------------------------------------------

void ClipHost::gotoFrame(Object* object, int frame, bool play)
{
    stage::Clip* clip = m_binding.clipOf(object);
    if (!clip) return;
    if (play)
        clip->play();
    else
        clip->stop();
    // Before the first frame there is nothing to go to.
    if (frame >= 0) clip->gotoFrame(frame);
}

bool ClipHost::gotoLabel(Object* object, std::u16string_view label, bool play)
{
    const std::optional<int> frame = frameByLabel(object, label);
    if (frame) gotoFrame(object, *frame, play);
    return frame.has_value();
}

void ClipHost::play(Object* object)
{
    if (stage::Clip* clip = m_binding.clipOf(object)) clip->play();
}
void ClipHost::stop(Object* object)
{
    if (stage::Clip* clip = m_binding.clipOf(object)) clip->stop();
}
void ClipHost::nextFrame(Object* object)
{
    if (stage::Clip* clip = m_binding.clipOf(object)) gotoFrame(object, clip->currentFrame() + 1, false);
}
void ClipHost::previousFrame(Object* object)
{
    if (stage::Clip* clip = m_binding.clipOf(object))
        gotoFrame(object, std::max(clip->currentFrame() - 1, 0), false);
}

std::optional<int> ClipHost::frameByLabel(Object* object, std::u16string_view label)
{
    stage::Clip* clip = m_binding.clipOf(object);
    if (!clip) return {};
    const std::string text = base::utf8FromUtf16(label);
    if (const auto frame = clip->frameByLabel(text)) return frame;
    if (clip->movie() && clip->movie()->header.version < 6)
        return clip->frameByLabel(textCode().fromUtf8(text));
    return {};
}

bool ClipHost::isFrameLoaded(Object* object, int frame)
{
    stage::Clip* clip = m_binding.clipOf(object);
    if (!clip) return false;
    // What lies behind the last frame is not waited for, up to the most frames that there can be.
    constexpr int kMaxFrames = 16000;
    return frame < clip->framesAtHand() ||
           (clip->framesAtHand() >= clip->totalFrames() && frame <= kMaxFrames);
}

void ClipHost::callFrame(Object* object, int frame)
{
    stage::Clip* clip = m_binding.clipOf(object);
    if (!clip || frame < 0) return;
    const stage::MoviePtr movie = clip->movie();
    for (const swf::ActionBlock& block : clip->frameActions(frame))
        vm().run(movie, block, movie->header.version, object);
}

// ---- things ------------------------------------------------------------------------------------------

void ClipHost::stopAllSounds() { m_binding.services().sound.stopAll(); }

void ClipHost::toggleQuality()
{
    stage().view().setQuality(stage().view().quality() == stage::Quality::Low ? stage::Quality::High
                                                                              : stage::Quality::Low);
}

void ClipHost::cloneClip(Object* object, std::u16string_view name, int depth)
{
    stage::Node* node = m_binding.nodeOf(object);
    stage::Clip* parent = node ? node->parentClip() : nullptr;
    // The action counts depths as files do, above the zone of the timeline.
    const double wanted = static_cast<double>(depth) + stage::kTimelineDepth;
    if (!parent || wanted < stage::kTimelineDepth || wanted > stage::kMaxScriptDepth) return;
    const stage::NodePtr copy =
        parent->duplicate(*node, depth + stage::kTimelineDepth, base::utf8FromUtf16(name),
                          [this](stage::Node& fresh) { m_binding.prepare(fresh, {}); });
    if (copy) m_binding.construct(*copy, {});
}

void ClipHost::removeClip(Object* object)
{
    stage::Node* node = m_binding.nodeOf(object);
    if (!node) return;
    // Only what scripts made, or moved into their zone of depths, can be removed by them.
    constexpr int kLastRemovableDepth = 1048575;
    if (node->depth() < 0 || node->depth() > kLastRemovableDepth) return;
    if (stage::Clip* parent = node->parentClip()) parent->removeChild(*node);
}

void ClipHost::startDrag(const DragRequest& request)
{
    stage::Clip* clip = m_binding.clipOf(request.clip);
    if (!clip) return;
    std::optional<stage::Pointer::DragLimits> limits;
    if (request.constrained)
        limits = stage::Pointer::DragLimits{request.left, request.top, request.right, request.bottom};
    stage().pointer().startDrag(*clip, request.lockCenter, limits);
}

void ClipHost::endDrag() { stage().pointer().stopDrag(); }

void ClipHost::updateAfterEvent() {}

bool ClipHost::askToStopScript(double)
{
    const bool stops = m_binding.services().host.abortSlowScript();
    guard::restartClock(); // the time for the answer is the user's
    return stops;
}
bool ClipHost::endsScripts()
{
    if (guard::Guard* guard = guard::current()) guard->lookAround();
    return m_binding.services().host.endsScripts();
}

void ClipHost::scriptsEnded(std::string_view why) { m_binding.services().host.limitReached(why); }

} // namespace flash::avm1
