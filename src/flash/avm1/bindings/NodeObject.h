#pragma once

#include "flash/avm1/interpreter/Object.h"
#include "flash/stage/Node.h"

namespace flash::avm1
{

class StageBinding;

/// The native side of a clip, button or text field: its children and its properties by name show up among the
/// object's own.
class NodeObject final : public Native, public stage::Peer
{
public:
    static constexpr char kTag = 0;

    NodeObject(StageBinding& binding, stage::NodePtr node, Object& self);
    ~NodeObject() override;
    /// What scripts know an instance by; null while they do not.
    [[nodiscard]] static NodeObject* of(const stage::Node& node)
    {
        return node.peer ? node.peer->as<NodeObject>() : nullptr;
    }
    [[nodiscard]] static Object* objectOf(const stage::Node& node)
    {
        const NodeObject* known = of(node);
        return known ? known->m_self : nullptr;
    }
    /// The instance gets another object when scripts name it again.
    void detached() override;
    void trace(Tracer& tracer) override { tracer(m_self); }

    [[nodiscard]] const stage::NodePtr& node() const { return m_node; }
    /// The instance or, when it is gone, the clip that stands at its path now; may be null.
    [[nodiscard]] stage::Node* live() { return isGone() ? atItsPath() : m_node.get(); }
    /// Remembers the path of an instance that is about to go, or to get another name.
    void keepPath();
    [[nodiscard]] bool isRenamed() const { return !m_path.empty(); }
    /// The instance is about to go, or to have another object: this one only remembers the path.
    void leave(Vm& vm);

    [[nodiscard]] const void* tag() const override { return &kTag; }
    [[nodiscard]] std::string_view typeOf() const override;
    [[nodiscard]] Exotic exotic() const override { return Exotic::Node; }
    [[nodiscard]] Caching caching(Vm& vm, Name name) const override;
    bool getOwn(Vm& vm, Object& self, Name name, Value receiver, Value& result) override;
    void putOwn(Vm& vm, Object& self, Name name, Value value) override;
    bool hasOwn(Vm& vm, Object& self, Name name) override;
    bool deleteOwn(Vm& vm, Object& self, Name name) override;
    void enumerateOwn(Vm& vm, Object& self, NameCollector& names) override;
    Value primitive(Vm& vm, Object& self) override;

private:
    stage::Node* atItsPath();
    bool lookUp(Vm& vm, Name name, Value& result);
    void noteScriptSetting(Vm& vm, Name name, Value value);
    StageBinding& m_binding;
    stage::NodePtr m_node;
    Object* m_self; // kept alive: the instance leads to it
    /// The instance has left the stage, or another movie has come into it.
    [[nodiscard]] bool isGone() const { return m_node->isRemoved() || m_node->peer != this; }
    /// @returns the object of the instance that stands in for this one's; null for one that is still there.
    Object* successor();
    std::string m_path; ///< once the instance is gone or renamed
};

} // namespace flash::avm1
