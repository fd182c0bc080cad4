#include "flash/avm1/interpreter/Actions.h"
#include "flash/avm1/interpreter/Interpreter.h"
#include "flash/swf/LevelName.h"

#include "base/TextCodes.h"

#include <algorithm>
#include <cmath>
#include <limits>

// Actions on the movie: timelines, clips, addresses. Each asks the host.
namespace flash::avm1::actions
{

namespace
{

/// @returns the clip that timeline actions go to, or null after a tellTarget that led nowhere.
Object* clipOf(const Frame& frame)
{
    return frame.target != nullptr && frame.vm.host().isClip(frame.target) ? frame.target : nullptr;
}

/// @returns the clip that a value names: itself, or by path from the current target. Null when there is none.
Object* clipFrom(Frame& frame, Value value)
{
    if (Object* object = value.asObject(); object != nullptr && frame.vm.host().isStageObject(object))
        return object;
    const std::u16string path = toText(frame.vm, value);
    if (path.empty()) return frame.targetIsLost ? nullptr : frame.target;
    Object* object = Interpreter::resolve(frame, path);
    return object != nullptr && frame.vm.host().isStageObject(object) ? object : nullptr;
}

/// From version 10 on `this` is no part of a target's path.
bool startsWithThis(const Frame& frame, std::u16string_view path)
{
    return frame.version >= 10 && path.substr(0, path.find_first_of(u"/.:")) == u"this";
}

/// A target that leads nowhere is the root, with a word about it; so is, from version 7 on, an undefined one.
void setTargetTo(Frame& frame, Value value)
{
    Vm& vm = frame.vm;
    if (value.isObject() && vm.host().isStageObject(value.object())) {
        frame.target = value.object();
        frame.targetIsLost = false;
        return;
    }
    // Paths start at the clip the script belongs to, whatever was targeted before.
    frame.target = frame.baseTarget;
    frame.targetIsLost = false;
    const std::u16string path = toText(vm, value);
    if (frame.baseTarget == nullptr) return;
    if (path.empty()) {
        // A clip that has gone leaves its script to the root.
        if (!vm.host().isClip(frame.baseTarget)) frame.target = vm.host().level(0);
        return;
    }
    Object* object = startsWithThis(frame, path) ? nullptr : Interpreter::resolve(frame, path);
    if (object != nullptr && vm.host().isClip(object)) {
        frame.target = object;
        return;
    }
    frame.target = vm.host().root(frame.baseTarget);
    frame.targetIsLost = true;
    if (value.isUndefined()) return;
    vm.host().reportError(u"Target not found: Target=\"" + path + u"\" Base=\"" +
                          vm.host().targetPath(frame.baseTarget) + u"\"");
}

/// A frame as scripts name it: a number counted from 1, a label, or either behind a path ("/clip:label").
struct FrameReference {
    Object* clip;
    std::optional<int> frame; ///< counted from 0
    std::u16string label;
};

/// From a script's number. Whatever is below 1 is no frame; -1 stands for all of it, as the least of numbers
/// has no predecessor.
int frameIndex(double number) { return std::max(avm1::toInt32(number), 0) - 1; }

/// A number with a fraction, as a number or as text, is no frame but a label.
bool isFrameNumber(double number) { return std::trunc(number) == number; }

FrameReference frameFrom(Frame& frame, Value value)
{
    Vm& vm = frame.vm;
    FrameReference reference{clipOf(frame), {}, {}};
    if (value.isNumber() && isFrameNumber(value.number())) {
        reference.frame = frameIndex(value.number());
        return reference;
    }
    std::u16string text = toText(vm, value);
    if (const std::size_t colon = text.rfind(u':'); colon != std::u16string::npos) {
        Object* clip = clipFrom(frame, Value(vm.string(text.substr(0, colon))));
        if (clip == nullptr || !vm.host().isClip(clip)) return {nullptr, {}, {}};
        reference.clip = clip;
        text.erase(0, colon + 1);
    }
    const double number = parseNumber(text, 5);
    if (!text.empty() && isFrameNumber(number))
        reference.frame = frameIndex(number);
    else
        reference.label = std::move(text);
    return reference;
}

constexpr int kCommandPrefixUnits = 10; // "FSCommand:"

bool isCommand(std::u16string_view url)
{
    return AtomTable::fold(url.substr(0, kCommandPrefixUnits)) == u"fscommand:";
}

UrlRequest::Method methodFrom(unsigned bits)
{
    switch (bits & 3) {
    case 1: return UrlRequest::Method::Get;
    case 2: return UrlRequest::Method::Post;
    default: return UrlRequest::Method::None;
    }
}

bool isLevel(const Vm& vm, std::u16string_view name)
{
    constexpr std::u16string_view kPrefix = swf::kLevelPrefix;
    const std::u16string_view start = name.substr(0, kPrefix.size());
    return name.size() > kPrefix.size() &&
           (vm.isCaseSensitive() ? start == kPrefix : AtomTable::fold(start) == kPrefix) &&
           name.find_first_not_of(u"0123456789", kPrefix.size()) == std::u16string_view::npos;
}

} // namespace

void nextFrame(Frame& frame, const Instruction&)
{
    if (Object* clip = clipOf(frame)) frame.vm.host().nextFrame(clip);
}
void previousFrame(Frame& frame, const Instruction&)
{
    if (Object* clip = clipOf(frame)) frame.vm.host().previousFrame(clip);
}
void play(Frame& frame, const Instruction&)
{
    if (Object* clip = clipOf(frame)) frame.vm.host().play(clip);
}
void stop(Frame& frame, const Instruction&)
{
    if (Object* clip = clipOf(frame)) frame.vm.host().stop(clip);
}
void toggleQuality(Frame& frame, const Instruction&) { frame.vm.host().toggleQuality(); }
void stopSounds(Frame& frame, const Instruction&) { frame.vm.host().stopAllSounds(); }

void gotoFrame(Frame& frame, const Instruction& instruction)
{
    if (Object* clip = clipOf(frame)) frame.vm.host().gotoFrame(clip, instruction.a, false);
}

void gotoLabel(Frame& frame, const Instruction& instruction)
{
    if (Object* clip = clipOf(frame))
        frame.vm.host().gotoLabel(clip, frame.code->literal(instruction.b).string()->view(), false);
}

void gotoFrame2(Frame& frame, const Instruction& instruction)
{
    const bool play = (instruction.a & 1) != 0;
    const FrameReference reference = frameFrom(frame, frame.pop());
    if (reference.clip == nullptr) return;
    const std::optional<int> number =
        reference.frame ? reference.frame : frame.vm.host().frameByLabel(reference.clip, reference.label);
    // The frame counts from the start of a scene, whose first frame the action tells.
    if (number && *number >= 0)
        frame.vm.host().gotoFrame(reference.clip, *number + static_cast<int>(instruction.b), play);
}

void call(Frame& frame, const Instruction&)
{
    const FrameReference reference = frameFrom(frame, frame.pop());
    if (reference.clip == nullptr) return;
    const std::optional<int> number =
        reference.frame ? reference.frame : frame.vm.host().frameByLabel(reference.clip, reference.label);
    if (number) frame.vm.host().callFrame(reference.clip, *number);
}

void waitForFrame(Frame& frame, const Instruction& instruction)
{
    Object* clip = clipOf(frame);
    if (clip != nullptr && !frame.vm.host().isFrameLoaded(clip, instruction.a))
        Interpreter::jump(frame, instruction.b);
}

void waitForFrame2(Frame& frame, const Instruction& instruction)
{
    const Value value = frame.pop();
    const FrameReference reference = frameFrom(frame, value);
    if (reference.clip == nullptr) return;
    std::optional<int> number = frame.vm.host().frameByLabel(reference.clip, reference.label);
    if (reference.frame) {
        // Here the number that has no predecessor wraps around, and others below 1 are frames long past.
        const double counted = value.isNumber() ? value.number() : *reference.frame + 1.0;
        const std::int32_t whole = avm1::toInt32(counted);
        number = whole == std::numeric_limits<std::int32_t>::min() ? std::numeric_limits<std::int32_t>::max()
                                                                   : whole - 1;
    }
    if (number && !frame.vm.host().isFrameLoaded(reference.clip, *number))
        Interpreter::jump(frame, instruction.b);
}

void setTarget(Frame& frame, const Instruction& instruction)
{
    setTargetTo(frame, frame.code->literal(instruction.b));
}
void setTarget2(Frame& frame, const Instruction&) { setTargetTo(frame, frame.pop()); }

void getProperty(Frame& frame, const Instruction&)
{
    const double index = toNumber(frame.vm, frame.pop());
    Object* clip = clipFrom(frame, frame.pop());
    const bool isKnown = clip != nullptr && index == index;
    frame.push(isKnown ? frame.vm.host().property(clip, avm1::toInt32(index)) : Value());
}

void setProperty(Frame& frame, const Instruction&)
{
    const Value value = frame.pop();
    const double index = toNumber(frame.vm, frame.pop());
    Object* clip = clipFrom(frame, frame.pop());
    if (index != index) return;
    if (clip != nullptr) return frame.vm.host().setProperty(clip, avm1::toInt32(index), value);
    // Nobody is there to take the value, which scripts see being made what the property holds all the same.
    constexpr int kTarget = 11, kName = 13, kDropTarget = 14, kUrl = 15;
    switch (avm1::toInt32(index)) {
    case kName: toText(frame.vm, value); break;
    case kTarget:
    case kDropTarget:
    case kUrl: break;
    default: toNumber(frame.vm, value); break;
    }
}

void cloneSprite(Frame& frame, const Instruction&)
{
    const double depth = toNumber(frame.vm, frame.pop());
    const std::u16string name = toText(frame.vm, frame.pop());
    Object* clip = clipFrom(frame, frame.pop());
    if (clip != nullptr && frame.vm.host().isClip(clip))
        frame.vm.host().cloneClip(clip, name, avm1::toInt32(depth));
}

void removeSprite(Frame& frame, const Instruction&)
{
    Object* clip = clipFrom(frame, frame.pop());
    // From version 6 on the action removes other things than clips, too.
    if (clip != nullptr && (frame.version > 5 || frame.vm.host().isClip(clip)))
        frame.vm.host().removeClip(clip);
    Interpreter::checkClip(frame);
}

void trace(Frame& frame, const Instruction&)
{
    const Value value = frame.pop();
    // Traced, undefined shows by name in every version.
    frame.vm.host().trace(value.isUndefined() ? std::u16string(u"undefined") : toText(frame.vm, value));
}

void startDrag(Frame& frame, const Instruction&)
{
    Vm& vm = frame.vm;
    DragRequest request;
    request.clip = clipFrom(frame, frame.pop());
    request.lockCenter = toNumber(vm, frame.pop()) != 0;
    // Other numbers are no yes.
    request.constrained = toNumber(vm, frame.pop()) == 1;
    if (request.constrained) {
        request.bottom = toNumber(vm, frame.pop());
        request.right = toNumber(vm, frame.pop());
        request.top = toNumber(vm, frame.pop());
        request.left = toNumber(vm, frame.pop());
    }
    if (request.clip != nullptr) vm.host().startDrag(request);
}

void endDrag(Frame& frame, const Instruction&) { frame.vm.host().endDrag(); }

void fsCommand2(Frame& frame, const Instruction&)
{
    // Handheld players' commands; none of them means anything here. The count covers the command's name.
    const double count = toNumber(frame.vm, frame.pop());
    for (double i = 0; i < count && frame.operandCount() > 0; ++i) frame.pop();
    frame.push(Value(-1));
}

void randomNumber(Frame& frame, const Instruction&)
{
    const std::int32_t below = toInt32(frame.vm, frame.pop());
    frame.push(Value(
        below > 0 ? static_cast<double>(frame.vm.host().random() % static_cast<std::uint32_t>(below)) : 0.0));
}

void getTime(Frame& frame, const Instruction&) { frame.push(Value(std::floor(frame.vm.host().timeMs()))); }

void targetPath(Frame& frame, const Instruction&)
{
    Object* object = frame.pop().asObject();
    if (object == nullptr || !frame.vm.host().isStageObject(object)) return frame.push(Value());
    frame.push(Value(frame.vm.string(frame.vm.host().targetPath(object))));
}

void getUrl(Frame& frame, const Instruction& instruction)
{
    const std::u16string_view url = frame.code->literal(instruction.b).string()->view();
    const std::u16string_view window = frame.code->literal(instruction.b + 1).string()->view();
    if (isCommand(url)) return frame.vm.host().fsCommand(url.substr(kCommandPrefixUnits), window);
    UrlRequest request;
    request.kind = isLevel(frame.vm, window) ? UrlRequest::Kind::MovieIntoLevel : UrlRequest::Kind::Page;
    request.url = url;
    request.window = window;
    request.sender = frame.target;
    frame.vm.host().requestUrl(request);
}

void getUrl2(Frame& frame, const Instruction& instruction)
{
    constexpr unsigned kIntoTarget = 0x40, kVariables = 0x80;
    Vm& vm = frame.vm;
    const Value target = frame.pop();
    UrlRequest request;
    request.method = methodFrom(instruction.a);
    request.sender = frame.target;
    const bool isClipValue = target.isObject() && vm.host().isStageObject(target.object());
    request.window = isClipValue            ? vm.host().targetPath(target.object())
                     : target.isUndefined() ? std::u16string()
                                            : toText(vm, target);
    const std::u16string url = toText(vm, frame.pop());
    request.url = url;
    // Made text of once: it may be a script that does.
    const Value place = isClipValue ? target : Value(vm.string(request.window));
    if (isCommand(url))
        return vm.host().fsCommand(std::u16string_view(url).substr(kCommandPrefixUnits), request.window);
    if ((instruction.a & kVariables) != 0) {
        request.kind = UrlRequest::Kind::Variables;
        request.target = clipFrom(frame, place);
    } else if ((instruction.a & kIntoTarget) != 0) {
        request.kind = isLevel(vm, request.window) && !isClipValue ? UrlRequest::Kind::MovieIntoLevel
                                                                   : UrlRequest::Kind::MovieIntoClip;
        request.target = clipFrom(frame, place);
    } else {
        request.kind =
            isLevel(vm, request.window) ? UrlRequest::Kind::MovieIntoLevel : UrlRequest::Kind::Page;
    }
    vm.host().requestUrl(request);
}

} // namespace flash::avm1::actions
