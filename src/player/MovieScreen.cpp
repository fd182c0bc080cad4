#include "player/MovieScreen.h"

#include "base/Failure.h"
#include "core/Application.h"
#include "core/RunTimeErrors.h"
#include "flash/FlashControl.h"
#include "player/PageItems.h"
#include "player/Texts.h"
#include "player/WelcomePanel.h"

#include <QStackedLayout>
#include <QUrl>

namespace player
{

MovieScreen::MovieScreen(QWidget& client, QWidget& window)
    : m_widget(new skin::SkinControl("SWF", 0, &client, &window)),
      m_control(new flash::FlashControl(m_widget)), m_pageItems(new PageItems(*m_control)),
      m_layout(new QStackedLayout(m_widget))
{
    PageItems::installAccessibility();
    m_layout->addWidget(m_control);
    m_widget->show();
}

bool MovieScreen::showsControl() const { return m_layout->currentWidget() == m_control; }

void MovieScreen::LoadMovie(int layer, const QString& url)
{
    if (layer == 0) m_pageItems->clear();
    // A question mark in a file's own name would be taken for a query: such a file goes in as an address.
    const bool marked = url.contains('?') && core::fileExists(url);
    if (!m_control->LoadMovie(layer, marked ? QUrl::fromLocalFile(url).toString(QUrl::FullyEncoded) : url))
        throw base::Failure(
            core::kDeviceError, "Flash",
            (m_control->lacksProcess() ? texts::kMovieWithoutProcess : texts::kMovieDamaged).toStdString());
    if (layer != 0) return;
    m_layout->setCurrentWidget(m_control);
    m_control->setSuspended(false);
    m_control->setFocus();
}

WelcomePanel& MovieScreen::welcome()
{
    if (m_welcome == nullptr) {
        m_welcome = new WelcomePanel(m_widget);
        m_layout->addWidget(m_welcome);
        connect(m_welcome, &WelcomePanel::openClicked, this, &MovieScreen::openWanted);
    }
    return *m_welcome;
}

void MovieScreen::showWelcome(const QString& message)
{
    m_pageItems->clear();
    m_control->LoadMovie(0, {});
    welcome().setMessage(message);
    m_layout->setCurrentWidget(m_welcome);
    m_welcome->setFocus();
}

void MovieScreen::setFocus() { m_layout->currentWidget()->setFocus(); }

} // namespace player
