#include "player/SkinWindow.h"

#include "core/Application.h"
#include "core/ErrorReport.h"
#include "core/Look.h"
#include "core/Version.h"
#include "flash/FlashControl.h"
#include "platform/TerminationSignal.h"
#include "platform/WindowSystem.h"
#include "player/Console.h"
#include "player/Menus.h"
#include "player/MistakesDialog.h"
#include "player/SizingFrame.h"
#include "player/Texts.h"
#include "player/WindowFlags.h"
#include "skin/Catalogue.h"
#include "skin/Texts.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QInputDialog>
#include <QMessageBox>
#include <QPainter>
#include <QScopeGuard>
#include <QTimer>

#include <algorithm>

namespace player
{
namespace
{

/// What a skin may ask for at most, so that its window still fits on a screen.
constexpr int kMaxMinimum = 2048;
constexpr int kRetryMs = 5;
const QRegion kNothing(-1, -1, 1, 1);

} // namespace

MenuItem::MenuItem(QAction& action) : QObject(&action), m_action(action) {}
QString MenuItem::Caption() const { return m_action.text(); }
void MenuItem::setCaption(const QString& caption) { m_action.setText(caption); }
bool MenuItem::Checked() const { return m_action.isChecked(); }
void MenuItem::setChecked(bool checked) { m_action.setChecked(checked); }
bool MenuItem::Enabled() const { return m_action.isEnabled(); }
void MenuItem::setEnabled(bool enabled) { m_action.setEnabled(enabled); }
bool MenuItem::Visible() const { return m_action.isVisible(); }
void MenuItem::setVisible(bool visible) { m_action.setVisible(visible); }
QString MenuItem::Tag() const { return m_action.data().toString(); }
void MenuItem::Click() { m_action.trigger(); }

SkinWindow::SkinWindow(core::Application& application, SkinWindowHost& host, QWidget& window, Menus& menus,
                       QWidget& client, skin::SkinControl& movie, flash::FlashControl& control)
    : m_application(application), m_host(host), m_window(window), m_menus(menus), m_client(client),
      m_movie(movie), m_waitScreen(new skin::WaitScreen(&client)), m_shapeEdge(new skin::ShapeEdge(&client)),
      m_sizing(new SizingFrame(client)), m_skin(*this, this)
{
    // What a window is made of is settled when it is made, so this cannot wait for a skin with a shape.
    window.setAttribute(Qt::WA_TranslucentBackground, platform::hasPerPixelTransparency());
    skin::ScriptObjects& objects = m_skin.bridge().objects();
    objects.add(&movie, &control, {}, "ShockwaveFlash");
    m_skin.bridge().setPlayerObject(objects.add(
        &window, nullptr,
        [this](const QString& name) -> QObject* {
            if (name == "swf") return &m_movie;
            if (name == "console") return &m_host.console();
            if (name == "cmbconsole") return &m_host.console().line();
            if (const auto known = m_items.constFind(name); known != m_items.cend()) return *known;
            QAction* action = m_menus.find(name);
            return action == nullptr ? nullptr : *m_items.insert(name, new MenuItem(*action));
        },
        "Player"));
    connect(qApp, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState state) { m_skin.setActive(state == Qt::ApplicationActive); });
    connect(&m_skin, &skin::Skin::userActed, this, [this] { m_wishes = 0; });
    // A skin that was put into its folder meanwhile is there without a new start.
    connect(m_menus.item("MenuView").menu(), &QMenu::aboutToShow, this, [this] {
        if (!m_skin.isBusy() && !m_isSwitching) EnumSkins();
    });
    m_menus.item("mnuSkin").setVisible(false);
    m_menus.item("mnuSep8").setVisible(false);
}

// ---- the catalogue

QStringList SkinWindow::skinsPaths() const
{
    QStringList paths{m_application.SkinsPath};
    if (!m_application.UserSkinsPath.isEmpty()) paths += m_application.UserSkinsPath;
    return paths;
}

void SkinWindow::EnumSkins()
{
    log({});
    log(" :: Enumerate Skins");
    m_skins = skin::listSkins(skinsPaths());
    m_folder = skin::skinFolder(skinsPaths(), m_selected);
    for (int i = 0; i < m_skins.size(); ++i) {
        const QString name = QString("mnuSkinList%1").arg(i);
        const bool isNew = m_menus.find(name) == nullptr || i == 0;
        QAction& item = m_menus.addCheck("mnuSkin", name);
        item.setText(QString(m_skins[i]).replace('&', "&&"));
        item.setData(m_skins[i]);
        item.setVisible(true);
        item.setChecked(m_skins[i].compare(m_selected, Qt::CaseInsensitive) == 0);
        if (isNew && item.property("connected").isNull()) {
            item.setProperty("connected", true);
            m_menus.connectItem(name, [this, i] { mnuSkinList_Click(i); });
        }
    }
    for (int i = static_cast<int>(m_skins.size());; ++i) {
        QAction* gone = m_menus.find(QString("mnuSkinList%1").arg(i));
        if (gone == nullptr) break;
        gone->setVisible(false);
    }
    m_menus.item("mnuSkin").setVisible(!m_skins.isEmpty());
    m_menus.item("mnuSep8").setVisible(!m_skins.isEmpty());
}

void SkinWindow::mnuSkinList_Click(int index)
{
    if (index < 0 || index >= m_skins.size()) return;
    for (int i = 0; i < m_skins.size(); ++i) m_menus.setChecked(QString("mnuSkinList%1").arg(i), i == index);
    m_selected = m_skins[index];
    m_folder = skin::skinFolder(skinsPaths(), m_selected);
    Reload();
}

void SkinWindow::CreateSkin()
{
    // A folder without any skin is no mistake: the window has its own bar.
    if (m_skins.isEmpty()) return;
    const bool loaded = m_skin.LoadSkin(m_folder + "skin.xml");
    emit shownChanged();
    UpdateRegion(true);
    if (loaded) return;
    QMessageBox::warning(&m_window, core::kProductName,
                         skin::texts::kBrokenStart + ('"' + m_folder + "skin.xml" + '"') +
                             skin::texts::kBrokenEnd);
}

void SkinWindow::LoadNewSkin()
{
    if (m_host.hasEnded()) return;
    if (m_skin.isBusy() || m_isSwitching || m_skin.bridge().isRunning()) {
        // Asked for by the skin while it is built or laid out, or by one of its statements: what runs has to
        // be finished before it can go.
        if (std::exchange(m_isWaitingToSwitch, true)) return;
        noteWish();
        QTimer::singleShot(kRetryMs, this, [this] {
            m_isWaitingToSwitch = false;
            LoadNewSkin();
        });
        return;
    }
    m_isSwitching = true;
    m_mistakes.clear();
    const auto end = qScopeGuard([this] { m_isSwitching = false; });
    ShowWaitScreen();
    QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    m_skin.UnloadSkin();
    setMinimumWindowSize({});
    CreateSkin();
    m_skin.UpdateSkin();
    clientResized();
    HideWaitScreen();
    QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    // The controls of the skin before may go only when the event that asked for the switch is done with. The
    // event loop has looked at them too early just now, and would sleep over them until something happens.
    if (auto* loop = QAbstractEventDispatcher::instance()) loop->wakeUp();
    tellMistakes();
}

void SkinWindow::ShowWaitScreen()
{
    log({});
    log(" :: Wait Screen");
    m_waitScreen->ShowWaitScreen(m_host.usesEffects() ? skin::WaitScreen::Look::Paled
                                                      : skin::WaitScreen::Look::Still);
}

// ---- shape and frame

void SkinWindow::UpdateRegion(bool force)
{
    const auto end = qScopeGuard([this] { m_sizing->refresh(); });
    if (isFullScreen()) return setShape({});
    if (!m_skin.isShown() || m_menus.isChecked("mnuMenuBar")) {
        if (!force && m_skin.isShown()) return;
        setShape({});
        setFrameless(false);
        return;
    }
    setFrameless(true);
    const QSize inner = m_client.size();
    const QRegion shape = skin::windowShape(inner, m_skin.masks());
    if (shape == QRegion(QRect(QPoint(0, 0), inner))) return setShape({});
    setShape(shape.isEmpty() ? kNothing : shape);
}

void SkinWindow::setShape(const QRegion& shape)
{
    const bool soft = m_window.testAttribute(Qt::WA_TranslucentBackground) && !shape.isEmpty() &&
                      platform::hasPerPixelTransparency();
    m_shapeEdge->setShape(soft ? shape : QRegion());
    if (shape == m_client.mask()) return;
    // The window's mask is where it takes the mouse, and on X11 what is seen of it. It does not keep anything
    // from being drawn where the system composes windows by their pixels: the inner area's mask does.
    if (shape.isEmpty()) {
        m_window.clearMask();
        m_client.clearMask();
    } else {
        m_window.setMask(shape.translated(m_client.pos()));
        m_client.setMask(shape);
    }
    m_window.update();
}

void SkinWindow::paintGround(QPainter& painter) const
{
    if (!m_client.mask().isEmpty()) painter.setClipRegion(m_client.mask().translated(m_client.pos()));
    painter.fillRect(m_window.rect(), QColor(core::look::kInk));
}

void SkinWindow::setFrameless(bool frameless)
{
    if (m_frameless == frameless) return;
    m_frameless = frameless;
    setWindowFlagInPlace(m_window, Qt::FramelessWindowHint, frameless);
}

void SkinWindow::clientResized()
{
    if (m_waitScreen->isVisible()) m_waitScreen->setGeometry(m_client.rect());
    if (m_movie.parentWidget() == &m_client) m_movie.setGeometry(m_client.rect());
    m_skin.UpdateSkin();
}

// ---- what skins ask

QWidget& SkinWindow::window() { return m_window; }
bool SkinWindow::isFullScreen() const { return m_menus.isChecked("mnuFullScreen"); }

void SkinWindow::setMinimumWindowSize(QSize pixels)
{
    m_host.setMinimumWindowSize(pixels.expandedTo({0, 0}).boundedTo({kMaxMinimum, kMaxMinimum}));
}

void SkinWindow::ShowPopUp() { m_host.ShowPopUp(); }
void SkinWindow::activateProgram() { m_window.activateWindow(); }
bool SkinWindow::hasEnded() const { return m_host.hasEnded() || platform::isTerminationRequested(); }

void SkinWindow::noteWish()
{
    constexpr int kMaxWishes = 20;
    constexpr qint64 kWithinMs = 10'000;
    if (!m_sinceWish.isValid() || m_sinceWish.elapsed() > kWithinMs) m_wishes = 0;
    if (m_wishes++ == 0) m_sinceWish.start();
    if (m_wishes > kMaxWishes) skinOverran();
}

void SkinWindow::skinOverran()
{
    if (std::exchange(m_isHanging, true)) return;
    QTimer::singleShot(0, this, [this] { putAway(); });
}

void SkinWindow::putAway()
{
    if (m_host.hasEnded()) return;
    if (m_skin.isBusy() || m_isSwitching || m_skin.bridge().isRunning()) {
        QTimer::singleShot(kRetryMs, this, [this] { putAway(); });
        return;
    }
    m_isHanging = false;
    m_wishes = 0;
    const QString name = m_selected;
    log("The skin takes too long and is put away: " + core::HtmlEscape(name));
    m_skin.UnloadSkin();
    setMinimumWindowSize({});
    const QString own = skin::skinFolder({m_application.SkinsPath}, "default");
    if (m_folder == own) {
        // There is none behind it; the window has its own bar.
        emit shownChanged();
        UpdateRegion(true);
        clientResized();
    } else {
        m_selected = "default";
        m_folder = own;
        for (int i = 0; i < m_skins.size(); ++i)
            m_menus.setChecked(QString("mnuSkinList%1").arg(i),
                               m_skins[i].compare(m_selected, Qt::CaseInsensitive) == 0);
        LoadNewSkin();
    }
    // Nothing waits for it: the movie may be on its way in.
    auto* box = new QMessageBox(QMessageBox::Warning, core::kProductName,
                                QString(skin::texts::kOverran).arg(name), QMessageBox::Ok, &m_window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowFlag(Qt::WindowStaysOnTopHint, m_menus.isChecked("mnuTopMost"));
    box->open();
}

bool SkinWindow::isDeveloperMode() const { return !m_application.RunningCompiled; }

void SkinWindow::log(const QString& text)
{
    try {
        m_application.LogEvent(text);
    } catch (const base::Failure&) {
        // A skin goes on without a journal.
    }
}

void SkinWindow::noteMistake(const QString& file, int line, const QString& what)
{
    constexpr qsizetype kMaxMistakes = 200; // an author mends the first ones first
    if (!m_isSwitching || m_mistakes.size() >= kMaxMistakes) return;
    QString where = file;
    if (line > 0) where += (where.isEmpty() ? "" : ":") + QString::number(line);
    const QString mistake = where.isEmpty() ? what : where + ": " + what;
    // One that comes with each layout is still one.
    if (!m_mistakes.contains(mistake)) m_mistakes += mistake;
}

void SkinWindow::Reload()
{
    m_tellsMistakes = true;
    LoadNewSkin();
}

void SkinWindow::tellMistakes()
{
    const QStringList mistakes = std::exchange(m_mistakes, {});
    if (!std::exchange(m_tellsMistakes, false) || mistakes.isEmpty() || m_host.hasEnded()) return;
    // Later: the menu command that asked for the skin is still at work.
    QTimer::singleShot(0, this, [this, mistakes] {
        if (m_host.hasEnded()) return;
        showMistakes(m_window, m_folder, mistakes);
    });
}

void SkinWindow::logError(const base::Failure& error, const QString& place, const QString& detail)
{
    try {
        core::LogError(m_application, error, place, detail);
    } catch (const base::Failure&) {
        // A skin goes on without a journal.
    }
}

int SkinWindow::messageBox(const std::u16string& text, int buttons, const std::u16string& title)
{
    constexpr int kCancel = 2;
    if (hasEnded()) return kCancel;
    struct Answer {
        QMessageBox::StandardButton button;
        int code;
    };
    static constexpr Answer kAnswers[] = {
        {QMessageBox::Ok, 1},     {QMessageBox::Cancel, 2}, {QMessageBox::Abort, 3}, {QMessageBox::Retry, 4},
        {QMessageBox::Ignore, 5}, {QMessageBox::Yes, 6},    {QMessageBox::No, 7}};
    static constexpr QMessageBox::StandardButtons kSets[] = {
        QMessageBox::Ok,
        QMessageBox::Ok | QMessageBox::Cancel,
        QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore,
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
        QMessageBox::Yes | QMessageBox::No,
        QMessageBox::Retry | QMessageBox::Cancel};
    const int set = std::clamp(buttons & 7, 0, static_cast<int>(std::size(kSets)) - 1);
    const int icon = std::clamp(buttons >> 4 & 7, 0, 4);
    constexpr QMessageBox::Icon kIcons[] = {QMessageBox::NoIcon, QMessageBox::Critical, QMessageBox::Question,
                                            QMessageBox::Warning, QMessageBox::Information};
    QMessageBox box(kIcons[icon],
                    title.empty() ? QString(core::kProductName) : QString::fromStdU16String(title),
                    QString::fromStdU16String(text), kSets[set], &m_window);
    for (const Answer& answer : kAnswers)
        if (answer.code == script::defaultButton(buttons)) box.setDefaultButton(answer.button);
    const int pressed = box.exec();
    for (const Answer& answer : kAnswers)
        if (answer.button == pressed) return answer.code;
    return 2;
}

std::optional<std::u16string> SkinWindow::inputBox(const std::u16string& text, const std::u16string& title,
                                                   const std::u16string& preset)
{
    if (hasEnded()) return std::nullopt;
    bool accepted = false;
    const QString answer = QInputDialog::getText(
        &m_window, title.empty() ? QString(core::kProductName) : QString::fromStdU16String(title),
        QString::fromStdU16String(text), QLineEdit::Normal, QString::fromStdU16String(preset), &accepted);
    return accepted ? std::optional(answer.toStdU16String()) : std::nullopt;
}

} // namespace player
