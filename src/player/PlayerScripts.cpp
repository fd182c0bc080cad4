#include "player/Player.h"

#include "core/Application.h"
#include "core/Version.h"
#include "flash/FlashControl.h"
#include "platform/TerminationSignal.h"
#include "player/SettlingBox.h"
#include "player/Texts.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QPushButton>
#include <QTimer>

// What the player does about scripts that run, and about movies that fail: whoever wants the movie or the
// skin changed meanwhile is put off until it can be.

namespace player
{
namespace
{

constexpr int kRetryMs = 20;
// A script that takes longer than a frame or two lets the window answer meanwhile.
constexpr qint64 kUnansweredMs = 150;
constexpr qint64 kPumpEveryMs = 40;

} // namespace

bool Player::endsScripts()
{
    if (hasEnded() || m_endsScripts || platform::isTerminationRequested()) return true;
    const qint64 busy = control().busyForMs();
    if (busy < m_pumpedAtMs) m_pumpedAtMs = 0; // another script
    if (busy < kUnansweredMs || busy - m_pumpedAtMs < kPumpEveryMs) return false;
    QCoreApplication::processEvents();
    m_pumpedAtMs = control().busyForMs();
    return hasEnded() || m_endsScripts;
}

bool Player::isSlowScriptToEnd()
{
    if (hasEnded() || m_endsScripts) return true;
    SettlingBox box(QMessageBox::Question, core::kProductName, texts::kScriptIsSlow, QMessageBox::NoButton,
                    this);
    box.setObjectName("frmSlowScript");
    QPushButton* end = box.addButton(texts::kScriptEnd, QMessageBox::AcceptRole);
    box.setDefaultButton(end);
    box.setEscapeButton(box.addButton(texts::kScriptGoOn, QMessageBox::RejectRole));
    // Not modal: the window can be closed, and another movie opened, whatever becomes of the question.
    box.setModal(false);
    box.setWindowModality(Qt::NonModal);
    box.show();
    QEventLoop loop;
    connect(&box, &QDialog::finished, &loop, &QEventLoop::quit);
    QTimer look;
    // Another movie may take the place of the one that this is about.
    connect(&look, &QTimer::timeout, &loop, [this, &loop, asker = control().processId()] {
        if (hasEnded() || m_endsScripts || control().processId() != asker) loop.quit();
    });
    look.start(kRetryMs);
    loop.exec();
    return hasEnded() || m_endsScripts || box.clickedButton() == end;
}

bool Player::isPutOff(const std::function<void()>& action)
{
    const bool scriptRuns = control().isBusy();
    if (!scriptRuns && !m_skinWindow.skin().bridge().isRunning()) return false;
    if (scriptRuns)
        m_endsScripts = true;
    else
        m_skinWindow.noteWish();
    QTimer::singleShot(kRetryMs, this, [this, action] {
        if (hasEnded()) return;
        if (!control().isBusy()) m_endsScripts = false;
        handled(texts::kPlaceOpen, action);
    });
    return true;
}

void Player::LoadFlash(const QString& path, const QString& caption)
{
    if (hasEnded() || isPutOff([this, path, caption] { LoadFlash(path, caption); })) return;
    if (!m_health.mayOpen(path)) return;
    m_media.LoadFlash(path, caption);
}

void Player::CloseMedia(const QString& message)
{
    if (hasEnded() || isPutOff([this, message] { CloseMedia(message); })) return;
    m_lifecycle.CloseMedia(message);
}

void Player::CreateSkin()
{
    if (hasEnded() || isPutOff([this] { CreateSkin(); })) return;
    m_skinWindow.CreateSkin();
}

void Player::saveForSuddenEnd()
{
    try {
        m_application.LogLast("<B>The process ends: the display is gone.</B>");
        (void)SaveOpts();
    } catch (const std::exception&) {
        // There is nobody left to be told.
    }
}

MovieHealth::Callbacks Player::healthCallbacks()
{
    return {[this](const QString& message) { handled(texts::kPlaceClose, [&] { CloseMedia(message); }); },
            [this](const QString& line) { logQuietly(core::HtmlEscape(line)); },
            [this](const QString& path) {
                SettlingBox box(QMessageBox::Question, core::kProductName,
                                QString(texts::kOpenAgain).arg(QFileInfo(path).fileName()),
                                QMessageBox::Yes | QMessageBox::No, this);
                box.setObjectName("frmOpenAgain");
                box.setDefaultButton(QMessageBox::No);
                ShowDialog(box);
                return box.result() == QMessageBox::Yes && !hasEnded();
            }};
}

void Player::closeForLackOfMemory()
{
    logQuietly("The memory has come to an end; the movie is closed.");
    (void)control().LoadMovie(0, {});
    handled(texts::kPlaceClose, [this] { CloseMedia(texts::kNoMemory); });
}

} // namespace player
