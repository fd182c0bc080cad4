#include "flash/stage/ActionQueue.h"

#include "flash/guard/Guard.h"
#include "flash/stage/Clip.h"
#include "flash/stage/Stage.h"

namespace flash::stage
{

void ActionQueue::addBlock(Node& target, MoviePtr movie, swf::ActionBlock actions)
{
    const Clip* clip = asClip(&target);
    if (actions.isEmpty() || (clip && clip->isInert())) return;
    Queued item;
    item.kind = Queued::Kind::Block;
    item.node = target.shared_from_this();
    item.movie = std::move(movie);
    item.block = actions;
    m_queue[kOrdinary].push_back(std::move(item));
}

void ActionQueue::addInit(Clip& target, const MoviePtr& movie, const swf::DoInitAction& init)
{
    if (!m_initialized[movie].insert(init.spriteId).second) return;
    Queued item;
    item.kind = Queued::Kind::Init;
    item.node = target.shared_from_this();
    item.movie = movie;
    item.block = init.actions;
    m_queue[kInitActions].push_back(std::move(item));
}

void ActionQueue::addEvent(Node& node, Event event, int keyCode)
{
    Clip* clip = asClip(&node);
    if (clip && clip->isInert()) return;
    Priority priority = kOrdinary;
    if (event == Event::Initialize) {
        if (!clip || !clip->hasClipEvent(event)) return;
        priority = kInitialize;
    } else if (event == Event::Construct) {
        if (!clip || clip->constructed) return;
        if (!clip->hasClipEvent(event) && !m_stage.script().hasRegisteredClass(*clip)) return;
        priority = kConstruct;
    }
    Queued item;
    item.kind = Queued::Kind::Event;
    item.event = event;
    item.keyCode = keyCode;
    item.node = node.shared_from_this();
    m_queue[priority].push_back(std::move(item));
}

void ActionQueue::addEventEverywhere(Event event)
{
    const auto& clips = m_stage.displayList().clips();
    for (std::size_t i = clips.size(); i-- > 0;)
        if (!clips[i]->isRemoved()) addEvent(*clips[i], event);
}

void ActionQueue::runEvent(Node& node, Event event, int keyCode)
{
    const NodePtr keep = node.shared_from_this();
    if (Clip* clip = asClip(&node)) {
        const std::uint32_t bit = clipEventBit(event);
        if (event == Event::Construct) m_stage.script().assignClass(*clip);
        const std::vector<swf::ClipAction> actions =
            (clip->hasClipEvent(event)) ? clip->clipActions() : std::vector<swf::ClipAction>();
        for (const swf::ClipAction& action : actions) {
            if ((action.events & bit) == 0) continue;
            if (event == Event::KeyPress && action.keyCode != keyCode) continue;
            m_stage.script().runActions(*clip, clip->clipActionsMovie(), action.actions);
        }
        if (event == Event::Construct) {
            if (!clip->constructed) m_stage.script().constructClip(*clip);
            clip->constructed = true;
            return;
        }
    }
    const bool key = event == Event::KeyDown || event == Event::KeyUp;
    if (key && m_stage.focus().node() != &node) return;
    if (event != Event::Initialize && event != Event::KeyPress) m_stage.script().dispatch(node, event);
}

bool ActionQueue::runRequest()
{
    if (m_stage.displayList().hasUnloading()) {
        m_stage.displayList().finishUnloading();
        return true;
    }
    if (m_requests.empty() || m_holdRequests) return false;
    const Request request = std::move(m_requests.front());
    m_requests.pop_front();
    m_requestBytes -= request.bytes;
    request.run();
    return true;
}

void ActionQueue::run()
{
    if (m_isRunning) return;
    m_isRunning = true;
    for (;;) {
        guard::check();
        askWhenOverdue();
        int priority = 0;
        while (priority < kPriorities && m_head[priority] == m_queue[priority].size()) {
            m_queue[priority].clear();
            m_head[priority] = 0;
            ++priority;
        }
        if (priority == kPriorities) {
            if (!runRequest()) break;
            continue;
        }
        const Queued item = std::move(m_queue[priority][m_head[priority]++]);
        if (item.node->isRemoved()) continue;
        if (item.kind == Queued::Kind::Event) {
            const bool last = item.event == Event::Load || item.event == Event::Unload;
            if (!last && item.node->isLeaving()) continue;
            runEvent(*item.node, item.event, item.keyCode);
        } else if (!item.node->isLeaving()) {
            m_stage.script().runActions(*item.node, item.movie, item.block);
        }
    }
    m_isRunning = false;
}

void ActionQueue::askWhenOverdue()
{
    guard::Guard* guard = guard::current();
    if (!guard || !guard->isOverdue()) return;
    m_stage.script().stopSlowScripts();
    guard->restartClock();
}

bool ActionQueue::takesRequest(std::size_t bytes) const
{
    if (m_requests.size() < guard::kMaxRequests && m_requestBytes + bytes <= guard::kMaxRequestBytes)
        return true;
    guard::refuse(guard::Bound::Requests,
                  "The movie gives more commands at once than are taken; the rest is dropped");
    return false;
}

void ActionQueue::addRequest(std::function<void()> request, std::size_t bytes)
{
    if (!takesRequest(bytes)) return;
    m_requestBytes += bytes;
    m_requests.push_back({std::move(request), bytes});
}

void ActionQueue::clear()
{
    m_holdRequests = false;
    m_requests.clear();
    m_requestBytes = 0;
    for (int priority = 0; priority < kPriorities; ++priority) {
        m_queue[priority].clear();
        m_head[priority] = 0;
    }
    m_initialized.clear();
}

} // namespace flash::stage
