#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/classes/Library.h"
#include "flash/guard/Guard.h"
#include "flash/stage/Graphics.h"
#include "flash/stage/Space.h"
#include "flash/stage/TextField.h"
#include "flash/stage/TextLine.h"

#include <algorithm>

// Objects of the display list and the nodes that show them.
namespace flash::avm2
{

namespace
{
/// What shows an object takes outside the heap, about.
constexpr std::size_t kNodeBytes = 2048;
} // namespace

DisplayObject::~DisplayObject()
{
    if (m_node != nullptr && m_node->peer == &m_peer) m_node->peer = nullptr;
}

void DisplayObject::trace(Tracer& tracer)
{
    DispatcherObject::trace(tracer);
    tracer.outside(kNodeBytes);
    tracer(parent);
    for (const DisplayObject* child : children) tracer(child);
    tracer(name);
    for (const auto& [frame, function] : frameScripts) tracer(function);
    for (const Value& filter : filterValues) tracer(filter);
    tracer(mask);
    tracer(hitArea);
    tracer(graphics);
    tracer(loaderInfo);
    tracer(bitmapData);
    tracer(pixelSnapping);
    for (const DisplayObject* state : states) tracer(state);
    tracer(extra);
}

void DisplayObject::setNode(stage::NodePtr node)
{
    if (m_node != nullptr) {
        node->setMatrix(m_node->matrix());
        node->setColor(m_node->color());
        node->setVisible(m_node->isVisible());
        node->setBlend(m_node->blend());
        node->setFilters(m_node->filters());
        node->setRatio(m_node->ratio());
        if (const stage::SpacePlace* place = m_node->spacePlace()) node->setSpacePlace(*place);
        if (const stage::Space* space = m_node->space()) node->setPerspective(space->perspective);
        m_node->peer = nullptr;
        if (parent != nullptr && m_node->parent() != nullptr && parent->clip() != nullptr) {
            stage::Clip& holder = *parent->clip();
            const auto at = std::ranges::find(holder.children(), m_node) - holder.children().begin();
            const int depthThere = m_node->depth();
            const auto clipDepth = m_node->clipDepth();
            holder.detach(*m_node);
            holder.insertAt(node, static_cast<std::size_t>(at), depthThere);
            node->setClipDepth(clipDepth);
        }
    }
    m_node = std::move(node);
    m_node->peer = &m_peer;
}

void DisplayObject::insertChild(DisplayObject& child, std::size_t index)
{
    index = std::min(index, children.size());
    children.insert(children.begin() + static_cast<std::ptrdiff_t>(index), &child);
    child.parent = this;
    child.isButtonState = false;
    if (clip() != nullptr && child.node().parent() == nullptr)
        clip()->insertAt(child.nodePtr(), index, stage::kTimelineDepth + child.depth);
}

void DisplayObject::eraseChild(DisplayObject& child)
{
    if (const auto at = std::ranges::find(children, &child); at != children.end()) children.erase(at);
    if (clip() != nullptr && child.node().parent() == clip()) clip()->detach(child.node());
    if (m_node->kind() == stage::NodeKind::TextField)
        static_cast<stage::TextField&>(*m_node).dropPicture(child.node());
    child.parent = nullptr;
}

void DisplayObject::moveChild(DisplayObject& child, std::size_t index)
{
    eraseChild(child);
    insertChild(child, index);
}

namespace
{

constexpr int kFieldTwips = 100 * swf::kTwipsPerPixel;

/// What shows an instance of a class of the player.
stage::NodePtr plainNode(stage::Stage& stage, std::u16string_view nativeName)
{
    const auto& empty = stage.displayList().emptyTimeline();
    if (nativeName == u"Bitmap") return std::make_shared<stage::BitmapNode>(stage, nullptr, false);
    if (nativeName == u"Video") {
        static const swf::VideoStream kNothing = [] {
            swf::VideoStream stream;
            stream.width = 320;
            stream.height = 240;
            return stream;
        }();
        return std::make_shared<stage::VideoNode>(stage, kNothing);
    }
    if (nativeName == u"TextField")
        return stage::TextField::makeDynamic(stage, stage.movie(), {0, kFieldTwips, 0, kFieldTwips});
    if (nativeName == u"TextLine") return std::make_shared<stage::TextLine>(stage);
    return std::make_shared<stage::Clip>(stage, stage.movie(), empty);
}

} // namespace

Object* allocateDisplay(Vm& vm, ClassObject& cls)
{
    auto* made = vm.heap().make<DisplayObject>(cls.instances, cls.prototype);
    Player& player = Player::of(vm);
    stage::Stage& stage = player.stage();
    stage::MoviePtr movie;
    const std::uint16_t id = player.characterOf(&cls, movie);
    stage::NodePtr node;
    const ClassObject* native = &cls;
    while (native->base != nullptr && !native->instances->ns->uri.view().starts_with(u"flash."))
        native = native->base;
    const std::u16string_view nativeName = native->instances->name.view();
    if (*stage.displayList().instanceCount() >= guard::kMaxInstances)
        vm.throwError(ErrorClass::Error, 1000, "The system is out of memory.");
    if (id != 0 && nativeName != u"SimpleButton" && nativeName != u"Bitmap")
        node = stage.displayList().makeNode(movie, id);
    if (node == nullptr) node = plainNode(stage, nativeName);
    made->setNode(std::move(node));
    vm.heap().noteExternalBytes(kNodeBytes);
    return made;
}

DisplayObject& displaySelf(Call& call)
{
    return classes::selfAs<DisplayObject>(call, "flash.display.DisplayObject");
}

DisplayObject& displayArg(Call& call, std::uint32_t i, const char* what)
{
    auto* child = as<DisplayObject>(call.arg(i));
    if (child == nullptr) {
        if (!call.arg(i).isNullish())
            call.vm.coerce(call.arg(i), call.vm.nativeClass("flash.display::DisplayObject")->instances);
        call.vm.throwError(ErrorClass::Type, 2007, std::string("Parameter ") + what + " must be non-null.");
    }
    return *child;
}

/// What timelines have placed within is made when the constructors of the player run, before those of scripts
/// go on.
Value constructDisplay(Call& call)
{
    auto& made = displaySelf(call);
    Player& player = Player::of(call.vm);
    made.isConstructed = true;
    if (made.name.isNull() && !made.isStage) made.name = Value(call.vm.string(player.nextInstanceName()));
    if (made.characterId == 0 && !made.isRoot) {
        stage::MoviePtr movie;
        if (const std::uint16_t id = player.characterOf(made.traits()->cls, movie))
            player.showCharacter(made, movie, id);
        // What a script makes shows its first frame for a whole one.
        made.skipsStep = made.isClip();
    }
    player.noteOffStage(made);
    if (made.node().kind() == stage::NodeKind::TextField)
        player.renewPictures(static_cast<stage::TextField&>(made.node()));
    player.constructChildren(made);
    return {};
}

Value refuseDisplayConstruction(Call& call)
{
    if (Traits* traits = call.vm.traitsOf(call.self); !displaySelf(call).isConstructed &&
                                                      !displaySelf(call).isConstructing &&
                                                      traits->ns->uri.view().starts_with(u"flash."))
        call.vm.throwError(ErrorClass::Argument, 2012,
                           std::u16string(traits->name.view()) + u"$ class cannot be instantiated.");
    return constructDisplay(call);
}

} // namespace flash::avm2
