#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/bindings/TextField.h"
#include "flash/avm2/interpreter/Unit.h"

#include <algorithm>

// The pictures among a field's letters: children of the field, which is no container and keeps them to
// itself.
namespace flash::avm2
{

namespace
{

/// A class of a movie that can be shown: of a display object or of a picture's pixels. Finding it may run
/// scripts. @returns null for any other name, which is an address then
ClassObject* pictureClass(Vm& vm, Domain* domain, std::u16string_view name)
{
    Value found;
    if (domain == nullptr || !domain->lookUp(vm, name, found)) return nullptr;
    auto* cls = as<ClassObject>(found);
    if (cls == nullptr || cls->instances->ns->uri.view().starts_with(u"flash.")) return nullptr;
    const auto isA = [&](std::string_view base) {
        return cls->instances->isA(vm.nativeClass(base)->instances);
    };
    return isA("flash.display::DisplayObject") || isA("flash.display::BitmapData") ? cls : nullptr;
}

/// Those that show pixels of their own need no size, but some ask for one.
Value newPixels(Vm& vm, ClassObject& cls)
{
    const Value sizes[] = {0, 0};
    const MethodEnv* constructor = cls.constructor;
    const bool asks = constructor != nullptr && constructor->native == nullptr &&
                      !constructor->info().parameterTypes.empty();
    const std::size_t count = asks ? std::min<std::size_t>(constructor->info().parameterTypes.size(), 2) : 0;
    return vm.construct(Value(&cls), std::span(sizes).first(count));
}

} // namespace

stage::TextField* fieldAround(const DisplayObject& object)
{
    const DisplayObject* parent = object.parent;
    const bool is = parent != nullptr && parent->node().kind() == stage::NodeKind::TextField;
    return is ? static_cast<stage::TextField*>(&parent->node()) : nullptr;
}

Value getImageReference(Call& call)
{
    if (call.arg(0).isNullish()) return Value::null();
    const std::u16string id(call.vm.text(call.arg(0)));
    return Value(DisplayObject::of(fieldSelf(call).pictureNamed(id)));
}

/// Everything that comes or goes runs scripts, which may change the text, and bring it up to date by
/// themselves: what is still to be done is found anew each time.
void Player::renewPictures(stage::TextField& field)
{
    const Root<DisplayObject> object(m_vm->heap(), DisplayObject::of(&field));
    if (!object || m_vm->isDisabled() || (field.children().empty() && field.content().pictures().empty()))
        return;
    for (;;) {
        if (stage::Node* surplus = field.surplusPicture()) {
            const stage::NodePtr gone = surplus->shared_from_this();
            field.dropPicture(*gone); // first: whoever hears of it and changes the text finds it done
            if (DisplayObject* child = DisplayObject::of(gone.get())) removeChild(*object, *child);
            continue;
        }
        field.settlePictures();
        const stage::TextPicture* missing = field.missingPicture();
        if (missing == nullptr) break;
        addPicture(*object, stage::TextPicture(*missing));
    }
    std::ranges::stable_sort(object->children, {}, [&](const DisplayObject* child) {
        return std::ranges::find(field.children(), child->nodePtr()) - field.children().begin();
    });
    field.pictureArrived();
}

/// As what a timeline places, it is on its list before its constructor runs.
void Player::addPicture(DisplayObject& object, const stage::TextPicture& wanted)
{
    auto& field = static_cast<stage::TextField&>(object.node());
    ClassObject* cls = nullptr;
    m_vm->guarded([&] {
        const LoadedMovie* own = loaded(field.movie());
        cls = pictureClass(*m_vm, m_vm->currentDomain(), wanted.source);
        if (cls == nullptr && own != nullptr) cls = pictureClass(*m_vm, own->domain, wanted.source);
    });
    const stage::TextPicture* missing = field.missingPicture();
    if (missing == nullptr || !missing->isSameAs(wanted)) return;
    const stage::TextPicture picture = *missing;
    const bool isPixels =
        cls != nullptr && cls->instances->isA(m_vm->nativeClass("flash.display::BitmapData")->instances);
    const bool isLoaded = cls == nullptr;
    ClassObject* shown = isPixels   ? m_vm->nativeClass("flash.display::Bitmap")
                         : isLoaded ? m_vm->nativeClass("flash.display::Loader")
                                    : cls;
    DisplayObject* made = nullptr;
    if (m_stage->displayList().hasRoomIn(field))
        m_vm->guarded([&] { made = as<DisplayObject>(Value(m_vm->instantiate(shown))); });
    if (made != nullptr) {
        made->characterId = characterOf(shown, made->movie);
        if (wouldContainItself(*made, object)) made = nullptr;
    }
    if (made == nullptr) {
        field.refusePicture(wanted);
        return;
    }
    const Root<DisplayObject> keep(m_vm->heap(), made);
    made->name = Value(m_vm->string(wanted.id.empty() ? nextInstanceName() : wanted.id));
    field.showPicture(picture, made->nodePtr());
    object.insertChild(*made, object.children.size());
    if (made->characterId != 0) showCharacter(*made, made->movie, made->characterId);
    if (isPixels) {
        made->isConstructing = true;
        Root<Object> pixels(m_vm->heap());
        m_vm->guarded([&] { pixels = newPixels(*m_vm, *cls).asObject(); });
        m_vm->guarded([&] {
            const Value args[] = {Value(pixels.get()), Value(m_vm->name("auto").string()), true};
            m_vm->invoke(*shown->constructor, Value(made), args);
        });
        made->isConstructing = false;
        made->isConstructed = true;
    } else {
        construct(*made);
    }
    if (made->parent != &object) return;
    field.pictureArrived();
    announce(*made, "added", Within::Untold);
    if (!isLoaded || made->parent != &object) return;
    m_vm->guarded([&] {
        const Value address[] = {Value(m_vm->string(wanted.source))};
        const Value request = m_vm->construct(Value(m_vm->nativeClass("flash.net::URLRequest")), address);
        m_vm->callPublic(Value(made), "load", {request});
    });
}

} // namespace flash::avm2
