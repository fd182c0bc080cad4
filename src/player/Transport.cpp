#include "player/Transport.h"

#include "flash/FlashControl.h"
#include "player/Menus.h"
#include "player/Texts.h"

#include <algorithm>
#include <iterator>

namespace player
{
namespace
{

/// Often enough not to show more than a frame or two behind the section.
constexpr int kLookMs = 20;

} // namespace

Transport::Transport(flash::FlashControl& control, Menus& menus, Callbacks callbacks)
    : m_control(control), m_menus(menus), m_callbacks(std::move(callbacks))
{
    m_look.setInterval(kLookMs);
    connect(&m_look, &QTimer::timeout, this, &Transport::follow);
    m_menus.setChecked("mnuSpeed100", true);
}

void Transport::goTo(int frame)
{
    const bool playing = m_control.Playing();
    m_control.GotoFrame(frame);
    if (playing) m_control.Play();
}

void Transport::goToTenth(int tenth)
{
    if (m_control.TotalFrames() < 2) return;
    goTo(static_cast<int>(static_cast<qint64>(m_control.TotalFrames()) * tenth / 10));
    tellPlace();
}

void Transport::tellPlace()
{
    m_callbacks.note(
        QString(texts::kPlaceOf)
            .arg(m_callbacks.time(m_control.FrameNum()), m_callbacks.time(m_control.TotalFrames())));
}

void Transport::setSpeed(int percent)
{
    m_speed = percent;
    m_control.setSpeed(percent / 100.0);
    for (const int speed : kSpeeds) m_menus.setChecked(QString("mnuSpeed%1").arg(speed), speed == percent);
    m_callbacks.note(QString(texts::kSpeedIs).arg(percent));
}

void Transport::changeSpeed(int direction)
{
    const auto at = std::find(std::begin(kSpeeds), std::end(kSpeeds), m_speed) - std::begin(kSpeeds);
    const auto last = static_cast<std::ptrdiff_t>(std::size(kSpeeds)) - 1;
    setSpeed(kSpeeds[std::clamp<std::ptrdiff_t>(at + direction, 0, last)]);
}

void Transport::markSection()
{
    const int here = m_control.FrameNum();
    if (!m_first) {
        m_first = here;
        m_callbacks.note(QString(texts::kSectionFrom).arg(m_callbacks.time(here)));
    } else if (!m_last && here > *m_first) {
        m_last = here;
        m_look.start();
        m_callbacks.note(QString(texts::kSectionIs).arg(m_callbacks.time(*m_first), m_callbacks.time(here)));
    } else {
        movieOpened();
        m_callbacks.note(texts::kSectionOff);
    }
    showSection();
}

void Transport::showSection()
{
    QAction& item = m_menus.item("mnuRepeatAB");
    item.setText(!m_first  ? texts::kMenuSectionFrom
                 : !m_last ? texts::kMenuSectionTo
                           : texts::kMenuSectionOff);
    item.setChecked(m_last.has_value());
}

void Transport::movieOpened()
{
    m_first.reset();
    m_last.reset();
    m_look.stop();
    showSection();
}

void Transport::follow()
{
    const int frame = m_control.FrameNum();
    // A movie that came to its end, or jumped, is taken back as well.
    if (!m_control.Playing() && frame + 1 < m_control.TotalFrames()) return;
    if (frame >= *m_first && frame < *m_last) return;
    m_control.GotoFrame(*m_first);
    m_control.Play();
}

} // namespace player
