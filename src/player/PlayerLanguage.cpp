#include "player/Console.h"
#include "player/ControlBar.h"
#include "player/Player.h"
#include "player/Texts.h"

#include <QFileInfo>

// Options that change what is on the screen already: the language, and the motion of the program's pages.

namespace player
{

void Player::optionsChanged()
{
    const QString motionBefore = std::exchange(m_shownMotion, options().noAnimation);
    const auto captions = m_menus.knownCaptions();
    if (m_application.language.chooseFor(options().language, m_application.LanguagesPath)) {
        m_menus.translate(captions);
        if (m_application.RunningCompiled) AssignMenus();
        if (m_console != nullptr) m_console->translate();
        m_bar->translate();
        SetStatus(texts::kReady);
        LoadNewSkin();
        showPageAnew();
    } else if (motionBefore != options().noAnimation) {
        showPageAnew();
    }
}

void Player::showPageAnew()
{
    if (!m_isOwnPage || hasEnded()) return;
    if (QFileInfo(mediaInfo().MoviePath).fileName() == "browse.swf")
        ShowBrowsePage();
    else
        CloseMedia({});
}

} // namespace player
