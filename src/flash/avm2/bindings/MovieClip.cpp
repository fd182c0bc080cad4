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
    self(call).isPlaying = self(call).isToldToPlay = true;
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
    const int total = std::max(1, clip.totalFrames());
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

struct FrameName {
    int frame; ///< from 1, of the whole timeline
    std::string name;
};

/// Those that the file states for all its scenes count, not those of the frames.
std::vector<FrameName> namesOf(Call& call, const DisplayObject& clip)
{
    std::vector<FrameName> names;
    const LoadedMovie* own = clip.isRoot ? Player::of(call.vm).loaded(clip.movie) : nullptr;
    if (own != nullptr && (!own->tags.labels.empty() || !own->tags.scenes.empty())) {
        for (const auto& label : own->tags.labels)
            names.push_back({static_cast<int>(label.frame) + 1, label.name});
        return names;
    }
    for (std::size_t i = 0; clip.timeline != nullptr && i < clip.timeline->frames.size(); ++i) {
        const std::string& name = clip.timeline->frames[i].label;
        if (!name.empty()) names.push_back({static_cast<int>(i) + 1, name});
    }
    return names;
}

Value labelsOf(Call& call, const DisplayObject& clip, const ScenePart& part)
{
    auto* list = static_cast<ArrayObject*>(call.vm.newArray());
    for (const FrameName& label : namesOf(call, clip)) {
        if (label.frame < part.first || label.frame >= part.first + part.count) continue;
        const Value args[] = {Value(call.vm.string(std::string_view(label.name))),
                              Value(label.frame - part.first + 1)};
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
    // The player counts in 32 bits, and what does not fit is the least number there is, which one less than
    // makes the greatest.
    const auto numbered = [&](double number) {
        constexpr double kMin = -2147483648.0, kMax = 2147483647.0;
        const bool fits = number > kMin && number <= kMax;
        constexpr double kMaxFrames = 1 << 30; // whatever a script says, an int holds it
        const double frame = fits ? parts[part].first - 1 + number : kMaxFrames;
        return static_cast<int>(std::clamp(frame, -kMaxFrames, kMaxFrames));
    };
    if (wanted.isNumber() && wanted.isInt()) return numbered(wanted.number());
    const std::u16string text(call.vm.text(wanted));
    const double number = textNumber(text);
    if (std::isfinite(number) && number == std::trunc(number)) return numbered(number);
    const std::string label = toUtf8(text);
    const auto names = namesOf(call, clip);
    const bool givesScene = call.has(1) && !call.arg(1).isNullish();
    const auto isIn = [&](const FrameName& name) {
        return name.frame >= parts[part].first && name.frame < parts[part].first + parts[part].count;
    };
    for (const FrameName& name : names) {
        if (name.name == label && isIn(name)) return name.frame;
    }
    for (const FrameName& name : names) {
        if (name.name == label && !givesScene) return name.frame;
    }
    constexpr int kStrictVersion = 11;
    if (call.vm.apiVersion() < kStrictVersion) return 1;
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
    if (plays) clip.isToldToPlay = true;
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
    // Beyond either end the scene begins once more.
    const auto now = static_cast<std::ptrdiff_t>(currentPart(parts, clip));
    const auto wanted =
        std::clamp<std::ptrdiff_t>(now + step, 0, static_cast<std::ptrdiff_t>(parts.size()) - 1);
    go(call, clip, parts[static_cast<std::size_t>(wanted)].first);
    return {};
}
Value currentFrame(Call& call)
{
    if (self(call).timeline == nullptr) return 0;
    const auto parts = scenesOf(call, self(call));
    return std::max(1, self(call).frame) - parts[currentPart(parts, self(call))].first + 1;
}
Value totalFrames(Call& call) { return self(call).totalFrames(); }
/// Not before its first frame is over, whatever it is about to do; what a script has made moves on by itself
/// as well, but is not said to play until a script has told it so.
Value isPlaying(Call& call)
{
    const auto& clip = self(call);
    const bool isCounted = clip.isToldToPlay || clip.isRoot || clip.placedFrame > 0;
    return isCounted && clip.isPlaying && clip.hasStepped && clip.totalFrames() > 1;
}
/// The last one up to the frame, be it of a scene before; or the frame's own.
Value label(Call& call, bool exactly)
{
    auto& clip = self(call);
    const FrameName* best = nullptr;
    const auto names = namesOf(call, clip);
    for (const FrameName& name : names) {
        if (name.frame > clip.frame) continue;
        if (exactly && name.frame != clip.frame) continue;
        if (best == nullptr || name.frame > best->frame) best = &name;
    }
    return best != nullptr ? Value(call.vm.string(std::string_view(best->name))) : Value::null();
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
