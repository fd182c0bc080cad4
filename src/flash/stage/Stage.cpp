#include "flash/stage/Stage.h"

#include "flash/guard/Guard.h"
#include "flash/stage/TextFonts.h"

#include <algorithm>

namespace flash::stage
{

Stage::Stage(Services services, ScriptHost* script)
    : m_services(services), m_script(script ? script : &m_noScript),
      m_textFonts(std::make_unique<TextFonts>(*this))
{
}

Stage::~Stage() { close(); }

void Stage::open(MoviePtr movie, std::string url)
{
    close();
    m_movie = movie;
    m_url = url;
    adoptHeader();
    m_nowMs = 0;
    m_nextFrameMs = frameMs();
    m_frameCounter = 0;
    m_displayList.restartNames();
    m_services.host.readyStateChanged(1);
    m_loads.makeLevel(0, std::move(movie), std::move(url))->begin();
    m_queue.run();
    m_loads.deliver();
    m_displayList.syncTextFields();
    m_script->frameEnded();
    m_services.host.progressed(100);
    m_services.host.readyStateChanged(4);
}

std::shared_ptr<Clip> Stage::replaceMovie(MoviePtr movie, std::string url)
{
    m_script->movieReplaced();
    const DisplayList::Levels levels = m_displayList.takeLevels();
    m_movie = movie;
    m_url = url;
    for (const auto& [number, root] : levels) {
        m_displayList.queueUnload(*root);
        m_queue.run();
        m_displayList.retire(*root);
    }
    adoptHeader();
    return m_loads.makeLevel(0, std::move(movie), std::move(url));
}

void Stage::adoptHeader()
{
    m_frameRate = m_movie->header.frameRate > 0 ? m_movie->header.frameRate : 12;
    m_view.adopt(*m_movie);
}

void Stage::close()
{
    m_services.sound.stopAll();
    m_focus.forgetAll();
    m_pointer.forgetAll();
    m_loads.clear();
    m_queue.clear();
    m_displayList.clear();
    m_linkage.clear();
    m_view.forgetNodes();
    m_keyboard.clear();
    m_movie.reset();
    m_view.invalidateAll();
}

double Stage::frameMs() const { return 1000 / m_frameRate; }

void Stage::advanceFrame()
{
    guard::restartClock();
    ++m_frameCounter;
    // Commands that answers give, such as to quit, wait until the frame has run.
    m_queue.holdRequests(true);
    m_loads.deliver();
    m_displayList.stepClips();
    m_queue.run();
    m_loads.reportInitialized();
    m_queue.holdRequests(false);
    m_queue.run();
    m_loads.deliver();
    m_pointer.frameEnded();
    m_displayList.syncTextFields();
    m_view.forgetGoneNodes();
    m_script->frameEnded();
}

void Stage::runTimersAndQueue()
{
    guard::check();
    m_queue.askWhenOverdue();
    // What timers ask for, such as to quit, is done with the next frame.
    m_queue.holdRequests(true);
    m_script->runTimers(m_nowMs);
    m_queue.run();
    m_queue.holdRequests(false);
}

double Stage::msToNextEvent()
{
    double wait = m_movie ? std::max(0.0, m_nextFrameMs - m_nowMs) : 1000;
    const double timer = m_script->nextTimerMs();
    if (timer >= 0) wait = std::min(wait, timer);
    return wait;
}

void Stage::advance(double ms)
{
    if (!m_movie || !(ms > 0)) return;
    guard::restartClock();
    const double target = m_nowMs + ms;
    int frames = 0, timerRounds = 0;
    // Timers of no interval would otherwise hold the clock for ever.
    constexpr int kMaxTimerRounds = 10'000;
    while (m_movie) {
        const double timer = m_script->nextTimerMs();
        const double timerAt = timer >= 0 && timerRounds < kMaxTimerRounds ? m_nowMs + timer : target + 1;
        if (std::min(timerAt, m_nextFrameMs) > target) break;
        if (timerAt < m_nextFrameMs) {
            m_nowMs = std::max(m_nowMs, timerAt);
            ++timerRounds;
            runTimersAndQueue();
            continue;
        }
        if (frames++ >= kMaxCatchUpFrames) {
            m_nextFrameMs = target + frameMs();
            continue;
        }
        m_nowMs = std::max(m_nowMs, m_nextFrameMs);
        m_nextFrameMs += frameMs();
        advanceFrame();
    }
    m_nowMs = std::max(m_nowMs, target);
}

bool Stage::isPlaying() const
{
    const Clip* clip = root();
    return clip && clip->isPlaying();
}

void Stage::play()
{
    if (Clip* clip = root()) clip->play();
}

void Stage::stop()
{
    if (Clip* clip = root()) clip->stop();
}

void Stage::gotoFrame(int frame)
{
    if (Clip* clip = root()) clip->gotoFrame(frame);
    m_queue.run();
}

int Stage::currentFrame() const
{
    const Clip* clip = root();
    return clip ? clip->currentFrame() : -1;
}

int Stage::totalFrames() const
{
    const Clip* clip = root();
    return clip ? clip->totalFrames() : 0;
}

} // namespace flash::stage
