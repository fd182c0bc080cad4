#pragma once

#include "flash/stage/ByMovie.h"
#include "flash/stage/Node.h"
#include "flash/stage/ScriptHost.h"

#include <deque>
#include <functional>
#include <set>
#include <vector>

namespace flash::stage
{

/// The scripts that wait for their turn, and behind them the commands to the host.
class ActionQueue
{
public:
    explicit ActionQueue(Stage& stage) : m_stage(stage) {}
    ActionQueue(const ActionQueue&) = delete;
    ActionQueue& operator=(const ActionQueue&) = delete;

    /// Queues a block for `target`; skipped when it has left the stage by then.
    void addBlock(Node& target, MoviePtr movie, swf::ActionBlock actions);
    /// Queues the initialisation of a sprite's class; once for a movie.
    void addInit(Clip& target, const MoviePtr& movie, const swf::DoInitAction& init);
    void addEvent(Node& node, Event event, int keyCode = 0);
    /// For all clips, the newest first.
    void addEventEverywhere(Event event);
    /// Runs the blocks a clip has for an event at once, then the script's handler.
    void runEvent(Node& node, Event event, int keyCode = 0);
    /// Runs whatever is queued, and what that queues. For callers that ran scripts themselves, too; nothing
    /// while it runs already.
    void run();

    // ---- commands to the host; they wait until the scripts at hand are done ----
    /// Whether another request may be queued; reported when not. Asked before its texts are made.
    /// @param bytes that the request will hold on to, about
    [[nodiscard]] bool takesRequest(std::size_t bytes) const;
    void addRequest(std::function<void()> request, std::size_t bytes = 0);
    /// While on, they wait for more than the queue.
    void holdRequests(bool on) { m_holdRequests = on; }

    /// Between two scripts, when all those of a frame take too long together.
    void askWhenOverdue();
    void clear();

private:
    struct Queued {
        enum class Kind : std::uint8_t { Block, Init, Event };
        Kind kind = Kind::Block;
        Event event = Event::Load;
        int keyCode = 0;
        NodePtr node;
        MoviePtr movie;
        swf::ActionBlock block;
    };
    // What is queued runs in this order, whatever it is queued by.
    enum Priority : std::uint8_t { kInitialize, kInitActions, kConstruct, kOrdinary, kPriorities };
    struct Request {
        std::function<void()> run;
        std::size_t bytes;
    };

    /// @returns whether there was anything besides scripts
    bool runRequest();

    Stage& m_stage;
    std::vector<Queued> m_queue[kPriorities];
    std::size_t m_head[kPriorities] = {};
    bool m_isRunning = false;
    std::deque<Request> m_requests;
    std::size_t m_requestBytes = 0;
    bool m_holdRequests = false;
    ByMovie<std::set<std::uint16_t>> m_initialized;
};

} // namespace flash::stage
