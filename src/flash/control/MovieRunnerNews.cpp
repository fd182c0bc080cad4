#include "flash/control/MovieRunner.h"

#include "flash/control/OwnPointer.h"
#include "flash/render/Bounds.h"
#include "flash/stage/Stage.h"
#include "flash/stage/TextField.h"

#include <cmath>
#include <utility>

// What a movie tells its window.
namespace flash::control
{

namespace
{

// A movie that traces in an endless loop must not fill the memory before its script is stopped.
constexpr std::size_t kMaxMessagesPerDrive = 100'000;

} // namespace

void MovieRunner::say(FromMovie message)
{
    if (++m_saidInDrive <= kMaxMessagesPerDrive || !m_busy) m_output.say(std::move(message));
}

stage::TextField* MovieRunner::focusedField()
{
    stage::Node* focus = m_engine.stage().focus().node();
    const bool is = focus != nullptr && focus->kind() == stage::NodeKind::TextField;
    return is ? static_cast<stage::TextField*>(focus) : nullptr;
}

void MovieRunner::tellState(Listeners listeners)
{
    State now;
    stage::Stage& stage = m_engine.stage();
    const swf::Rgba ground = stage.view().background();
    now.background =
        static_cast<std::uint32_t>(ground.r) << 16U | static_cast<std::uint32_t>(ground.g) << 8U | ground.b;
    now.cursor = static_cast<std::uint8_t>(stage.pointer().cursor());
    now.silent = mixer().isSilent() ? 1 : 0;
    if (m_engine.isOpen()) {
        const swf::Rect& frame = stage.movie()->header.frameSize;
        now.open = 1;
        now.playing = stage.isPlaying() ? 1 : 0;
        now.listensToKeys = m_state.listensToKeys;
        if (listeners == Listeners::LookedFor) {
            now.listensToKeys = stage.keyboard().isHeard() ? 1 : 0;
            m_sinceLooked.start();
        }
        if (stage::TextField* field = focusedField()) {
            const auto note = [&now](TextFocus what) { now.text |= static_cast<std::uint8_t>(what); };
            note(TextFocus::Held);
            if (field->isInput()) note(TextFocus::Typed);
            if (field->isPassword()) note(TextFocus::Secret);
            const render::IntRect caret = render::deviceBounds(field->caretOnStage(), stage.view().matrix());
            now.caretLeft = caret.left;
            now.caretTop = caret.top;
            now.caretHeight = caret.height();
        }
        now.frame = stage.currentFrame();
        now.totalFrames = stage.totalFrames();
        now.width = static_cast<std::int32_t>(std::lround(frame.width() / 20.0));
        now.height = static_cast<std::int32_t>(std::lround(frame.height() / 20.0));
        now.frameRate = stage.frameRate();
        if (const stage::CursorPicturePtr picture = m_engine.cursorPicture()) showPointer(*picture, now);
    }
    // A movie that plays changes nothing but this, as a rule.
    if (now.frame != m_state.frame && m_output.showsFrame(now.frame)) m_state.frame = now.frame;
    if (now == m_state) return;
    m_state = now;
    m_output.say(now);
}

Standing MovieRunner::standing() const
{
    return {static_cast<std::uint8_t>(m_engine.holdsOnlyTrusted() ? 1 : 0),
            static_cast<std::uint8_t>(m_engine.hasReadFiles() ? 1 : 0)};
}

void MovieRunner::fsCommand(std::string_view command, std::string_view arguments)
{
    say(Command{std::string(command), std::string(arguments), standing()});
}

void MovieRunner::openUrl(std::string_view url, std::string_view window)
{
    say(OpenAddress{std::string(url), std::string(window), standing()});
}

void MovieRunner::traceLine(std::string_view utf8) { say(TraceLine{std::string(utf8)}); }
void MovieRunner::logLine(std::string_view utf8) { say(LogLine{std::string(utf8)}); }

void MovieRunner::readyStateChanged(int state)
{
    if (std::exchange(m_readyState, state) != state) say(ReadyState{state});
}

void MovieRunner::progressed(int percent) { say(Progress{percent}); }
void MovieRunner::setClipboardText(std::string_view utf8) { say(CopyText{std::string(utf8)}); }
std::string MovieRunner::clipboardText() { return m_output.ask(Ask::What::ClipboardText).text; }
bool MovieRunner::abortSlowScript() { return m_output.ask(Ask::What::AbortSlowScript).yes != 0; }
bool MovieRunner::endsScripts() { return m_output.endsScripts(); }

} // namespace flash::control
