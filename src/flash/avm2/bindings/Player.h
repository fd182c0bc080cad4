#pragma once

#include "flash/avm2/bindings/Display.h"
#include "flash/stage/ScriptHost.h"
#include "flash/stage/Stage.h"
#include "flash/swf/ScriptTags.h"

#include <functional>
#include <map>
#include <memory>

namespace flash::avm2
{

struct PlayerInputs {
    std::function<double()> wallClockMs; ///< since 1970-01-01 UTC, when the movie is opened
    std::function<double()> realTimeMs;  ///< of any origin
    std::uint32_t randomSeed = 1;
    std::string language = "en"; ///< two letters
    int screenWidth = 1024, screenHeight = 768;
};

/// Joins the machine to a stage: the frames of the display list as scripts see it, timers, events.
class Player final : public Host, public stage::ScriptHost
{
public:
    Player(stage::Services services, PlayerInputs inputs);
    ~Player() override;
    void attach(stage::Stage& stage) { m_stage = &stage; }
    Vm& vm() { return *m_vm; }
    static Player& of(Vm& vm) { return *static_cast<Player*>(vm.binding); }
    [[nodiscard]] stage::Stage& stage() { return *m_stage; }
    [[nodiscard]] const PlayerInputs& inputs() const { return m_inputs; }

    // ---- Host ----
    void trace(std::u16string_view text) override;
    void log(std::string_view text) override;
    void uncaught(std::u16string_view text) override;
    double timeMs() override { return m_stage != nullptr ? m_stage->nowMs() : 0; }
    double wallClockMs() override { return m_inputs.wallClockMs ? m_inputs.wallClockMs() : 0; }
    double realTimeMs() override { return m_inputs.realTimeMs ? m_inputs.realTimeMs() : 0; }
    std::uint32_t random() override;
    bool askToStopScript(double seconds) override;

    // ---- stage::ScriptHost ----
    void frameEnded() override;
    double nextTimerMs() override;
    void runTimers(double nowMs) override;
    void movieReplaced() override;

    // ---- the display list ----
    DisplayObject* stageObject() { return m_stageObject.get(); }
    DisplayObject* root() { return m_root.get(); }
    [[nodiscard]] const swf::ScriptTags& tags() const { return m_tags; }
    /// Class of a character; that of the player for those that no class is linked to.
    ClassObject* classOf(const stage::MoviePtr& movie, std::uint16_t characterId);
    /// The character that a class, or one it derives from, is linked to; 0: none
    std::uint16_t characterOf(const ClassObject* cls, stage::MoviePtr& movie);
    void showCharacter(DisplayObject& object, const stage::MoviePtr& movie, std::uint16_t characterId);
    void gotoFrame(DisplayObject& clip, int frame);
    /// Calls the constructors of what the timeline has placed.
    void constructChildren(DisplayObject& parent);
    void insert(DisplayObject& parent, DisplayObject& child, std::size_t index, bool byScript);
    void removeChild(DisplayObject& parent, DisplayObject& child);
    void runFrameScripts(DisplayObject& clip);
    void noteListening(DisplayObject& object);
    std::u16string nextInstanceName();

    struct Timer {
        Root<Object> function;
        RootedList<Value> args;
        double dueMs = 0, everyMs = 0;
        std::uint32_t id = 0;
        bool repeats = false;
    };
    /// @returns what names it
    std::uint32_t addTimer(Value function, std::span<const Value> args, double everyMs, bool repeats);
    void removeTimer(std::uint32_t id);
    /// Those that listen, by the name that others call.
    std::map<std::u16string, Root<Object>>& localConnections() { return m_localConnections; }
    /// Those that are open, by the name that the store knows.
    std::map<std::string, Root<Object>>& sharedObjects() { return m_sharedObjects; }
    /// Writes those that have changed.
    void saveSharedObjects();

private:
    void begin();
    void loadScripts(std::size_t frame);
    void advance(DisplayObject& clip);
    void constructAll(DisplayObject& object);
    void runAllScripts(DisplayObject& object);
    void broadcast(std::string_view type);
    void syncPicture(DisplayObject& object);
    void place(DisplayObject& clip, int frame);

    stage::Services m_services;
    PlayerInputs m_inputs;
    stage::Stage* m_stage = nullptr;
    std::unique_ptr<Vm> m_vm;
    stage::MoviePtr m_movie;
    swf::ScriptTags m_tags;
    std::size_t m_loadedFrames = 0;
    Root<Domain> m_domain;
    Root<DisplayObject> m_stageObject, m_root;
    RootedList<DisplayObject*> m_listening;
    std::map<std::uint16_t, Root<ClassObject>> m_symbols;
    std::map<std::uint32_t, std::unique_ptr<Timer>> m_timers;
    std::map<std::u16string, Root<Object>> m_localConnections;
    std::map<std::string, Root<Object>> m_sharedObjects;
    std::uint32_t m_nextTimer = 1, m_nextInstance = 1, m_random;
    bool m_hasBegun = false;
};

} // namespace flash::avm2
