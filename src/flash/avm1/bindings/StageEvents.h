#pragma once

#include "flash/avm1/bindings/ContextMenus.h"
#include "flash/avm1/interpreter/Vm.h"
#include "flash/stage/Stage.h"

#include <array>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace flash::avm1
{

class StageBinding;

/// The script machine as the stage knows it: runs what the stage says is due, and calls the handlers of what
/// happens.
class StageEvents final : public stage::ScriptHost
{
public:
    explicit StageEvents(StageBinding& binding) : m_binding(binding), m_menus(binding) {}

    /// A fresh machine has other names.
    void restart(Vm& vm);
    /// The machine that they are of is about to go.
    void forgetNames();
    void trace(Tracer& tracer);

    void stopSlowScripts() override;
    void runActions(stage::Node& target, const stage::MoviePtr& movie,
                    const swf::ActionBlock& block) override;
    void dispatch(stage::Node& node, stage::Event event) override;
    bool hasHandler(stage::Node& node, stage::Event event) override;
    bool namesHandler(stage::Node& node, stage::Event event) override;
    bool isEnabled(stage::Node& node) override;
    void assignClass(stage::Clip& clip) override;
    void constructClip(stage::Clip& clip) override;
    bool hasRegisteredClass(stage::Clip& clip) override;
    void broadcastKey(stage::Event event) override;
    bool hasKeyListeners() override;
    void broadcastMouse(stage::Event event) override;
    void broadcastWheel(int lines, stage::Node* node) override;
    void broadcastResize() override;
    void broadcastFullScreen(bool on) override;
    void focusChanged(stage::Node* before, stage::Node* now) override;
    void textFieldPlaced(stage::TextField& field) override;
    void textChanged(stage::TextField& field) override;
    void textScrolled(stage::TextField& field) override;
    void followLink(stage::TextField& field, std::u16string_view url, std::u16string_view window) override;
    std::optional<std::string> variable(stage::Clip& scope, std::string_view path) override;
    bool isClipVariable(stage::Clip& scope, std::string_view path) override;
    bool setVariable(stage::Clip& scope, std::string_view path, std::string_view value) override;
    void nodeNamed(std::string_view name) override;
    void nodeRemoved(stage::Node& node) override;
    void clipReset(stage::Clip& clip) override;
    void movieReplaced() override
    {
        vm().removeTimers();
        m_menus.close();
    }
    std::vector<stage::MenuItem> openMenu(stage::MenuAt at) override { return m_menus.open(at); }
    void chooseMenuItem(std::size_t item) override { m_menus.choose(item); }
    void closeMenu() override { m_menus.close(); }
    double nextTimerMs() override;
    void runTimers(double nowMs) override;
    void frameEnded() override;
    std::optional<std::string> hostVariable(std::string_view path) override;
    void setHostVariable(std::string_view path, std::string_view value) override;

private:
    [[nodiscard]] Vm& vm() const;
    [[nodiscard]] stage::Stage& stage() const;
    bool findHandler(stage::Node& node, stage::Event event, Value& handler);
    void broadcast(std::string_view object, std::string_view message, std::initializer_list<Value> args = {});
    void callLinked(Object* timeline, std::u16string_view call);
    Name handlerName(stage::Event event);
    Function* classOf(stage::Clip& clip);

    static constexpr std::size_t kEvents = static_cast<std::size_t>(stage::Event::Construct) + 1;
    StageBinding& m_binding;
    std::array<Name, kEvents> m_handlers; ///< by event; of none where there is no handler
    Name m_enabled;
    ContextMenus m_menus;
};

} // namespace flash::avm1
