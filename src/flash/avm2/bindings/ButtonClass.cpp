#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/Sounds.h"

#include <algorithm>

// Buttons: four objects, one of which is shown. None of them has the button for a parent, as scripts see it.
namespace flash::avm2
{

using Kind = NativeMember::Kind;
using State = DisplayObject::State;

namespace
{

constexpr std::array kStateBits = {swf::ButtonRecord::Up, swf::ButtonRecord::Over, swf::ButtonRecord::Down,
                                   swf::ButtonRecord::Hit};

void place(DisplayObject& object, const swf::ButtonRecord& record)
{
    stage::Node& node = object.node();
    node.setMatrix(record.matrix);
    node.setColor(record.color);
    node.setFilters(record.filters);
    node.setBlend(record.blend);
}

DisplayObject* stateArg(Call& call)
{
    auto* given = as<DisplayObject>(Value(optionalArg(call, 0, "flash.display::DisplayObject")));
    if (given != nullptr && given->isStage)
        call.vm.throwError(ErrorClass::Argument, 2175,
                           "One or more items on the render list could not be added.");
    return given;
}
Value constructButton(Call& call)
{
    auto& self = displaySelf(call);
    Player& player = Player::of(call.vm);
    constructDisplay(call);
    player.makeButtonStates(self);
    for (std::uint32_t i = 0; i < 4 && i < call.count; ++i) {
        Call inner{call.vm, call.self, call.args + i, 1};
        if (DisplayObject* given = stateArg(inner)) self.states[i] = given;
    }
    if (self.states[0] != nullptr) player.showButtonState(self, State::Up);
    return {};
}

template <State state>
Value getState(Call& call)
{
    return Value(displaySelf(call).states[static_cast<std::size_t>(state)]);
}
template <State state>
Value setState(Call& call)
{
    auto& self = displaySelf(call);
    DisplayObject* given = stateArg(call);
    if (given != nullptr && given->contains(self))
        call.vm.throwError(ErrorClass::Argument, 2150,
                           "An object cannot be added as a child to one of it's children (or children's "
                           "children, etc.).");
    Player& player = Player::of(call.vm);
    // One that the button shows already, as another of its states, stays where it is.
    if (given != nullptr && given->parent != nullptr && given->parent != &self)
        player.removeChild(*given->parent, *given);
    self.states[static_cast<std::size_t>(state)] = given;
    if (self.state != state) return {};
    player.showButtonState(self, state);
    if (player.isOnStage(self)) player.runNestedFrame(nullptr);
    return {};
}

/// Buttons have no sounds below them: theirs is that of everything.
Value transformOfAll(Call& call)
{
    return makeSoundTransform(call.vm, Player::of(call.vm).services().sound.transform(nullptr));
}
Value setTransformOfAll(Call& call)
{
    Object* given = objectArg(call, 0, "flash.media::SoundTransform");
    if (given == nullptr) throwNullParameter(call.vm, "soundTransform");
    Player::of(call.vm).services().sound.setTransform(nullptr, soundTransformOf(call.vm, Value(given)));
    return {};
}

constexpr NativeMember kButton[] = {
    {"soundTransform", Kind::Getter, &transformOfAll, 0, 0, &setTransformOfAll,
     "flash.media::SoundTransform"},
    {"upState", Kind::Getter, &getState<State::Up>, 0, 0, &setState<State::Up>,
     "flash.display::DisplayObject"},
    {"overState", Kind::Getter, &getState<State::Over>, 0, 0, &setState<State::Over>,
     "flash.display::DisplayObject"},
    {"downState", Kind::Getter, &getState<State::Down>, 0, 0, &setState<State::Down>,
     "flash.display::DisplayObject"},
    {"hitTestState", Kind::Getter, &getState<State::Hit>, 0, 0, &setState<State::Hit>,
     "flash.display::DisplayObject"},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.display",
     .name = "SimpleButton",
     .base = "flash.display::InteractiveObject",
     .flags = NativeClass::Sealed,
     .constructor = &constructButton,
     .minArguments = 0,
     .maxArguments = 4,
     .members = kButton,
     .slots = "enabled:Boolean=true useHandCursor:Boolean=true trackAsMenu:Boolean"},
};

} // namespace

/// The things of all states are constructed first; a state of one thing is that, others are sprites of
/// theirs.
void Player::makeButtonStates(DisplayObject& button)
{
    const swf::Character* character =
        button.characterId != 0 && button.movie ? button.movie->character(button.characterId) : nullptr;
    const auto* definition = character != nullptr ? std::get_if<swf::Button>(&character->data) : nullptr;
    if (definition == nullptr || button.hasStates) return;
    button.hasStates = true;
    RootedList<DisplayObject*> made(m_vm->heap());
    std::array<std::size_t, kStateBits.size() + 1> first{};
    for (std::size_t state = 0; state < kStateBits.size(); ++state) {
        for (const swf::ButtonRecord& record : definition->records) {
            if ((record.states & kStateBits[state]) == 0) continue;
            DisplayObject* object = makeCharacter(button.movie, record.characterId);
            if (object == nullptr) continue;
            object->characterId = record.characterId;
            object->movie = button.movie;
            if (wouldContainItself(*object, button)) continue;
            object->name = Value(m_vm->string(nextInstanceName()));
            place(*object, record);
            made.push_back(object);
            button.insertChild(*object, 0);
            object->isButtonState = true;
            showCharacter(*object, button.movie, record.characterId);
            construct(*object);
            if (object->parent == &button) button.eraseChild(*object);
        }
        first[state + 1] = made.size();
    }
    Traits* clips = m_vm->nativeClass("flash.display::MovieClip")->instances;
    const auto isMovieClip = [&](DisplayObject* object) { return m_vm->isType(Value(object), clips); };
    std::size_t rounds = std::ranges::any_of(*made, isMovieClip) ? 1 : 0;
    for (std::size_t state = 0; state < kStateBits.size(); ++state) {
        const std::size_t count = first[state + 1] - first[state];
        if (count == 1) {
            button.states[state] = made[first[state]];
        } else {
            auto* sprite =
                as<DisplayObject>(Value(m_vm->instantiate(m_vm->nativeClass("flash.display::Sprite"))));
            button.states[state] = sprite;
            sprite->isConstructed = true;
            sprite->name = Value(m_vm->string(nextInstanceName()));
            std::size_t clipsTogether = 0;
            for (std::size_t i = 0; i < count; ++i) {
                DisplayObject* object = made[first[state] + i];
                const bool isScripts = !object->traits()->ns->uri.view().starts_with(u"flash.");
                clipsTogether += isScripts && isMovieClip(object) ? 1 : 0;
                insert(*sprite, *made[first[state] + i], i);
            }
            rounds = std::max(rounds, clipsTogether);
        }
        noteOffStage(*button.states[state]);
    }
    showButtonState(button, State::Up);
    // Clips begin with a frame of their own, sprites do not; each of those of one state that have a class of
    // the movie's begins by itself.
    for (; rounds > 0; --rounds) runNestedFrame(nullptr);
    // From then on the state that shows a press has its turn before those that show the pointer and its area.
    for (const State state : {State::Over, State::Hit}) {
        DisplayObject* object = button.states[static_cast<std::size_t>(state)];
        if (object != nullptr && std::erase(m_orphans, object) != 0) m_orphans.push_back(object);
    }
}

void Player::showButtonState(DisplayObject& button, State state)
{
    button.state = state;
    DisplayObject* wanted = button.states[static_cast<std::size_t>(state)];
    DisplayObject* now = button.children.empty() ? nullptr : button.children.front();
    if (wanted == now) return;
    if (now != nullptr) removeChild(button, *now);
    if (wanted == nullptr || !button.children.empty()) return;
    if (wanted->parent != nullptr) removeChild(*wanted->parent, *wanted);
    if (wanted->parent != nullptr) return; // a script that was told of it has put it elsewhere
    wanted->depth = 0;
    button.insertChild(*wanted, 0);
    wanted->isButtonState = true;
    if (wanted->isConstructed) announce(*wanted, "added");
}

std::optional<swf::Rect> Player::pointerBounds(stage::Node& node)
{
    const DisplayObject* button = DisplayObject::of(&node);
    DisplayObject* area = button != nullptr ? button->states[static_cast<std::size_t>(State::Hit)] : nullptr;
    if (area == nullptr) return {};
    return swf::mapBounds(area->node().matrix(), area->node().bounds());
}

std::span<const NativeClass> buttonClasses() { return kClasses; }

} // namespace flash::avm2
