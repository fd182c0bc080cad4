#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/Library.h"

#include <algorithm>

namespace flash::avm2
{

using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

DisplayObject& self(Call& call) { return displaySelf(call); }

Value play(Call& call)
{
    self(call).isPlaying = true;
    return {};
}
Value stop(Call& call)
{
    self(call).isPlaying = false;
    return {};
}

/// The parts of a main timeline; anything else is one part of its own. First and number of frames, from 1.
struct ScenePart {
    std::string name;
    int first = 1, count = 1;
};

std::vector<ScenePart> scenesOf(Call& call, const DisplayObject& clip)
{
    std::vector<ScenePart> parts;
    const int total = clip.totalFrames();
    if (const LoadedMovie* own = clip.isRoot ? Player::of(call.vm).loaded(clip.movie) : nullptr) {
        for (const auto& scene : own->tags.scenes) {
            if (!parts.empty()) parts.back().count = static_cast<int>(scene.frame) + 1 - parts.back().first;
            parts.push_back({scene.name, static_cast<int>(scene.frame) + 1, 1});
        }
    }
    if (parts.empty()) parts.push_back({"", 1, total});
    parts.back().count = std::max(1, total - parts.back().first + 1);
    return parts;
}

std::size_t currentPart(const std::vector<ScenePart>& parts, const DisplayObject& clip)
{
    std::size_t found = 0;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (parts[i].first <= std::max(1, clip.frame)) found = i;
    }
    return found;
}

Value labelsOf(Call& call, const DisplayObject& clip, const ScenePart& part)
{
    auto* list = static_cast<ArrayObject*>(call.vm.newArray());
    if (clip.timeline == nullptr) return Value(list);
    for (int i = part.first;
         i < part.first + part.count && i <= static_cast<int>(clip.timeline->frames.size()); ++i) {
        const std::string& text = clip.timeline->frames[static_cast<std::size_t>(i) - 1].label;
        if (text.empty()) continue;
        const Value args[] = {Value(call.vm.string(std::string_view(text))), Value(i - part.first + 1)};
        list->push(call.vm, call.vm.construct(Value(call.vm.nativeClass("flash.display::FrameLabel")), args));
    }
    return Value(list);
}

Value sceneValue(Call& call, const DisplayObject& clip, const ScenePart& part)
{
    const Value args[] = {Value(call.vm.string(std::string_view(part.name))), labelsOf(call, clip, part),
                          Value(part.count)};
    return call.vm.construct(Value(call.vm.nativeClass("flash.display::Scene")), args);
}

Value currentScene(Call& call)
{
    const auto parts = scenesOf(call, self(call));
    return sceneValue(call, self(call), parts[currentPart(parts, self(call))]);
}
Value scenes(Call& call)
{
    auto* list = static_cast<ArrayObject*>(call.vm.newArray());
    for (const ScenePart& part : scenesOf(call, self(call)))
        list->push(call.vm, sceneValue(call, self(call), part));
    return Value(list);
}
Value currentLabels(Call& call)
{
    const auto parts = scenesOf(call, self(call));
    return labelsOf(call, self(call), parts[currentPart(parts, self(call))]);
}

int frameOf(Call& call, DisplayObject& clip)
{
    const Value wanted = call.arg(0);
    const auto parts = scenesOf(call, clip);
    std::size_t part = currentPart(parts, clip);
    if (call.has(1) && !call.arg(1).isNullish()) {
        const std::string name = toUtf8(call.vm.text(call.arg(1)));
        std::size_t found = 0;
        while (found < parts.size() && parts[found].name != name) ++found;
        if (found == parts.size())
            call.vm.throwError(ErrorClass::Argument, 2108, u"Scene " + fromUtf8(name) + u" was not found.");
        part = found;
    }
    const auto frameOf = [&](double number) {
        constexpr double kMaxFrames = 1 << 30; // whatever a script says, an int holds it
        return static_cast<int>(std::clamp(parts[part].first - 1 + number, -kMaxFrames, kMaxFrames));
    };
    if (wanted.isNumber()) return frameOf(call.vm.toInt(wanted));
    const std::u16string text(call.vm.text(wanted));
    if (clip.timeline != nullptr) {
        const std::string label = toUtf8(text);
        for (std::size_t i = 0; i < clip.timeline->frames.size(); ++i) {
            if (clip.timeline->frames[i].label == label) return static_cast<int>(i) + 1;
        }
    }
    const double number = textNumber(text);
    if (std::isfinite(number)) return frameOf(number);
    call.vm.throwError(ErrorClass::Argument, 2109,
                       u"Frame label " + text + u" not found in scene " + fromUtf8(parts[part].name) + u".");
}

void go(Call& call, DisplayObject& clip, int frame) { Player::of(call.vm).goTo(clip, frame); }

template <bool plays>
Value gotoAnd(Call& call)
{
    auto& clip = self(call);
    const int frame = frameOf(call, clip);
    clip.isPlaying = plays;
    go(call, clip, frame);
    return {};
}
Value nextFrame(Call& call)
{
    auto& clip = self(call);
    clip.isPlaying = false;
    go(call, clip, clip.frame + 1);
    return {};
}
Value prevFrame(Call& call)
{
    auto& clip = self(call);
    clip.isPlaying = false;
    go(call, clip, clip.frame - 1);
    return {};
}
template <int step>
Value otherScene(Call& call)
{
    auto& clip = self(call);
    const auto parts = scenesOf(call, clip);
    const auto wanted = static_cast<std::ptrdiff_t>(currentPart(parts, clip)) + step;
    if (wanted >= 0 && wanted < static_cast<std::ptrdiff_t>(parts.size()))
        go(call, clip, parts[static_cast<std::size_t>(wanted)].first);
    return {};
}
Value currentFrame(Call& call)
{
    const auto parts = scenesOf(call, self(call));
    return std::max(1, self(call).frame) - parts[currentPart(parts, self(call))].first + 1;
}
Value totalFrames(Call& call) { return self(call).totalFrames(); }
Value isPlaying(Call& call) { return self(call).isPlaying && self(call).totalFrames() > 1; }
Value label(Call& call, bool exactly)
{
    auto& clip = self(call);
    if (clip.timeline == nullptr) return Value::null();
    for (int i = std::min<int>(clip.frame, static_cast<int>(clip.timeline->frames.size())) - 1; i >= 0; --i) {
        const std::string& text = clip.timeline->frames[static_cast<std::size_t>(i)].label;
        if (!text.empty()) return Value(call.vm.string(std::string_view(text)));
        if (exactly) break;
    }
    return Value::null();
}
Value currentLabel(Call& call) { return label(call, false); }
Value currentFrameLabel(Call& call) { return label(call, true); }

Value addFrameScript(Call& call)
{
    auto& clip = self(call);
    for (std::uint32_t i = 0; i + 1 < call.count; i += 2) {
        const int frame = call.vm.toInt(call.args[i]) + 1;
        std::erase_if(clip.frameScripts, [&](const auto& entry) { return entry.first == frame; });
        if (!call.args[i + 1].isNullish()) clip.frameScripts.emplace_back(frame, call.args[i + 1]);
    }
    return {};
}

constexpr NativeMember kMovieClip[] = {
    {"play", Kind::Method, &play, 0, 0},
    {"stop", Kind::Method, &stop, 0, 0},
    {"gotoAndPlay", Kind::Method, &gotoAnd<true>, 1, 2},
    {"gotoAndStop", Kind::Method, &gotoAnd<false>, 1, 2},
    {"nextFrame", Kind::Method, &nextFrame, 0, 0},
    {"prevFrame", Kind::Method, &prevFrame, 0, 0},
    {"addFrameScript", Kind::Method, &addFrameScript},
    {"currentFrame", Kind::Getter, &currentFrame, 0, 0, nullptr, "int"},
    {"totalFrames", Kind::Getter, &totalFrames, 0, 0, nullptr, "int"},
    {"framesLoaded", Kind::Getter, &totalFrames, 0, 0, nullptr, "int"},
    {"isPlaying", Kind::Getter, &isPlaying, 0, 0, nullptr, "Boolean"},
    {"currentLabel", Kind::Getter, &currentLabel, 0, 0, nullptr, "String"},
    {"currentScene", Kind::Getter, &currentScene},
    {"scenes", Kind::Getter, &scenes},
    {"currentLabels", Kind::Getter, &currentLabels},
    {"nextScene", Kind::Method, &otherScene<1>, 0, 0},
    {"prevScene", Kind::Method, &otherScene<-1>, 0, 0},
    {"currentFrameLabel", Kind::Getter, &currentFrameLabel, 0, 0, nullptr, "String"},
};
constexpr NativeClass kClipClasses[] = {
    // Not sealed, and made by the constructor of sprites.
    {.package = "flash.display",
     .name = "MovieClip",
     .base = "flash.display::Sprite",
     .members = kMovieClip,
     .slots = "enabled:Boolean=true trackAsMenu:Boolean"},
};
} // namespace

std::span<const NativeClass> clipClasses() { return kClipClasses; }

} // namespace flash::avm2
