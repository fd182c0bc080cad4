#include "flash/avm1/bindings/ClipHost.h"

#include "base/TextCodes.h"
#include "flash/avm1/bindings/NodeObject.h"
#include "flash/avm1/bindings/StageBinding.h"

#include <cmath>

// The properties of instances that actions know by number.
namespace flash::avm1
{

namespace
{

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

Value ClipHost::propertyOf(stage::Node& node, int index)
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
        const swf::Point at = stage().pointer().position();
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
    case kTarget: return m_binding.utf8(node.slashPath());
    case kFramesLoaded: return clip ? Value(frameCount(*clip, clip->loadedFrames(), -1)) : Value();
    case kName: return m_binding.utf8(node.name());
    case kDropTarget: {
        const stage::Pointer& pointer = stage().pointer();
        stage::Clip* under = clip && pointer.lastDragged() == clip ? pointer.dropTarget() : nullptr;
        return m_binding.utf8(under ? under->slashPath() : std::string());
    }
    case kUrl: return m_binding.utf8(clip ? clip->url() : stage().url());
    case kHighQuality: {
        const stage::Quality quality = stage().view().quality();
        return Value(quality == stage::Quality::Best ? 2 : quality == stage::Quality::High ? 1 : 0);
    }
    case kFocusRect:
        if (!node.parent()) return Value(node.focusRect.value_or(true) ? 1 : 0);
        return node.focusRect ? Value(*node.focusRect) : Value::null();
    case kSoundBufTime: return Value(5);
    case kQuality: return m_binding.utf8(qualityName(stage().view().quality()));
    case kXMouse: return mouse().x;
    case kYMouse: return mouse().y;
    default: return {};
    }
}

void ClipHost::setPropertyOf(stage::Node& node, int index, Value value)
{
    Vm& vm = this->vm();
    const auto number = [&] { return toNumber(vm, value); };
    // What no number says is not set; nor what is nothing, though early versions take that for 0 elsewhere.
    const auto placing = [&] { return value.isNullish() && vm.version() < 7 ? std::nan("") : number(); };
    const auto place = [&](void (stage::Node::*set)(double)) {
        const double n = placing();
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
        if (const double n = placing(); !std::isnan(n)) {
            node.setVisible(n != 0);
            if (!node.isVisible()) stage().focus().dropWithin(node);
        }
        break;
    case kWidth: place(&stage::Node::setWidth); break;
    case kHeight: place(&stage::Node::setHeight); break;
    case kRotation: place(&stage::Node::setRotation); break;
    case kName:
        if (NodeObject* known = NodeObject::of(node)) known->keepPath();
        node.setName(base::utf8FromUtf16(toText(vm, value)));
        break;
    case kHighQuality: {
        const double n = number();
        if (std::isnan(n)) break;
        stage().view().setQuality(n >= 2   ? stage::Quality::Best
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
        if (name == u"low") stage().view().setQuality(stage::Quality::Low);
        if (name == u"medium") stage().view().setQuality(stage::Quality::Medium);
        if (name == u"high" || name == u"autohigh") stage().view().setQuality(stage::Quality::High);
        if (name == u"best") stage().view().setQuality(stage::Quality::Best);
        break;
    }
    default: break; // read-only ones
    }
}

} // namespace flash::avm1
