#include "player/Console.h"

#include "base/Failure.h"
#include "core/Look.h"
#include "player/ConsoleWords.h"
#include "player/Menus.h"
#include "player/MovieScreen.h"
#include "player/PlayerHost.h"
#include "player/Shortcuts.h"
#include "player/Texts.h"
#include "player/WindowDrag.h"
#include "skin/Bridge.h"
#include "ui/Balloon.h"
#include "ui/Drawing.h"

#include <QApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>

namespace player
{
namespace
{

constexpr int kWidth = 380;
constexpr int kMinWidth = 150;
constexpr int kMargin = 6;
constexpr int kLineHeight = 28;
constexpr int kButton = 24;
constexpr int kHistoryRows = 8;
constexpr const char* kHistoryFile = "console.txt";
constexpr double kOpaque = 0.96;

} // namespace

bool belongsInHistory(const QStringList& history, const QString& statement)
{
    return !statement.isEmpty() && !history.contains(statement, Qt::CaseInsensitive);
}

// ---- the line

ConsoleLine::ConsoleLine(QWidget* parent) : QComboBox(parent)
{
    setObjectName("cmbConsole");
    setEditable(true);
    setInsertPolicy(NoInsert);
    setCompleter(nullptr); // what would be completed by itself would also be run by Enter
    setMaxVisibleItems(kHistoryRows);
    setFixedHeight(kLineHeight);
    setMinimumContentsLength(1);
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    lineEdit()->setPlaceholderText(texts::kConsoleHint);
}

void ConsoleLine::remember(const QString& statement)
{
    if (!belongsInHistory(history(), statement)) return;
    const QSignalBlocker blocker(this);
    const QString shown = currentText();
    insertItem(0, statement);
    setCurrentIndex(-1);
    setEditText(shown);
}

QStringList ConsoleLine::history() const
{
    QStringList statements;
    for (int i = 0; i < count(); ++i) statements += itemText(i);
    return statements;
}

bool ConsoleLine::event(QEvent* event)
{
    // Before the toolkit takes it for a wish to leave the line.
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Tab) {
        emit completionWanted();
        return true;
    }
    // What is typed here must not drive the player.
    if (event->type() == QEvent::ShortcutOverride && belongsToMovie(*static_cast<QKeyEvent*>(event), true)) {
        event->accept();
        return true;
    }
    return QComboBox::event(event);
}

void ConsoleLine::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: emit entered(currentText()); return;
    case Qt::Key_Escape: emit left(); return;
    case Qt::Key_Up:
        // From a line that is in no list, up leads to the last statement, as down does.
        if (currentIndex() < 0 && count() > 0) return setCurrentIndex(0);
        break;
    default: break;
    }
    QComboBox::keyPressEvent(event);
}

// ---- the close button

ConsoleCloseButton::ConsoleCloseButton(QWidget* parent) : QAbstractButton(parent)
{
    setObjectName("chkCloseConsole");
    setAccessibleName(texts::kCloseConsoleTip);
    setCheckable(true);
    setFixedSize(kButton, kButton);
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_Hover);
}

void ConsoleCloseButton::paintEvent(QPaintEvent*)
{
    using namespace core::look;
    QPainter painter(this);
    if (isDown() || underMouse())
        ui::drawPlate(painter, rect(), 3, ui::faded(isDown() ? kBlue : kSky, isDown() ? 0.6 : 0.18), {});
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(kIce), 2, Qt::SolidLine, Qt::RoundCap));
    const QPointF centre = QRectF(rect()).center();
    for (const double side : {-4.0, 4.0})
        painter.drawLine(centre - QPointF(4, side), centre + QPointF(4, side));
}

void ConsoleCloseButton::mousePressEvent(QMouseEvent* event)
{
    m_pressedAt = event->position().toPoint();
    m_dragging = false;
    QAbstractButton::mousePressEvent(event);
}

void ConsoleCloseButton::mouseMoveEvent(QMouseEvent* event)
{
    constexpr int kClickPixels = 3; // what a hand moves while it clicks
    if (!event->buttons().testFlag(Qt::LeftButton)) return QAbstractButton::mouseMoveEvent(event);
    if ((event->position().toPoint() - m_pressedAt).manhattanLength() > kClickPixels) m_dragging = true;
    if (m_dragging) setDown(false);
    emit movedWhileHeld();
}

void ConsoleCloseButton::mouseReleaseEvent(QMouseEvent* event)
{
    if (!m_dragging) return QAbstractButton::mouseReleaseEvent(event);
    m_dragging = false;
    event->accept();
}

// ---- the panel

Console::Console(PlayerHost& host, QWidget& window, QWidget& client, Menus& menus, MovieScreen& movieScreen,
                 WindowDrag& windowDrag, skin::Bridge& bridge)
    : skin::SkinControl("Console", 0, &client, &window), m_host(host), m_client(client), m_menus(menus),
      m_movieScreen(movieScreen), m_drag(windowDrag), m_bridge(bridge),
      m_lblConsole(new QLabel(texts::kConsole, this)), m_cmbConsole(new ConsoleLine(this)),
      m_chkCloseConsole(new ConsoleCloseButton(this)), m_lblAnswer(new QLabel(this))
{
    setObjectName("Console");
    hide();
    m_lblConsole->setObjectName("lblConsole");
    QFont bold = font();
    bold.setBold(true);
    m_lblConsole->setFont(bold);
    QPalette light = palette();
    light.setColor(QPalette::WindowText, QColor(core::look::kIce));
    m_lblConsole->setPalette(light);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(kMargin, kMargin - 2, kMargin, kMargin);
    grid->setSpacing(2);
    grid->addWidget(m_lblConsole, 0, 0);
    grid->addWidget(m_chkCloseConsole, 0, 1);
    grid->addWidget(m_cmbConsole, 1, 0, 1, 2);
    grid->setColumnStretch(0, 1);
    m_lblAnswer->setObjectName("lblAnswer");
    m_lblAnswer->setTextFormat(Qt::PlainText);
    m_lblAnswer->setWordWrap(true);
    m_lblAnswer->setPalette(light);
    m_lblAnswer->hide();
    grid->addWidget(m_lblAnswer, 2, 0, 1, 2);
    m_cmbConsole->setAccessibleName(texts::kConsole);
    m_cmbConsole->addItems(readHistory(m_host.settingsFolder() + kHistoryFile));
    m_cmbConsole->setCurrentIndex(-1);
    m_cmbConsole->clearEditText();

    connect(m_cmbConsole, &ConsoleLine::entered, this, &Console::run);
    connect(m_cmbConsole, &ConsoleLine::completionWanted, this, &Console::completeLine);
    connect(m_cmbConsole, &ConsoleLine::left, this, &Console::HideConsole);
    connect(m_chkCloseConsole, &QAbstractButton::clicked, this, &Console::HideConsole);
    connect(m_chkCloseConsole, &ConsoleCloseButton::movedWhileHeld, this, &Console::drag);
    // The title lets the mouse through to the panel.
    connect(this, &SkinControl::moved, this, [this](bool leftHeld) {
        if (leftHeld) drag();
    });
    client.installEventFilter(this);
}

void Console::ShowConsole()
{
    m_menus.setChecked("mnuConsole", true);
    resize(std::clamp(m_client.width() - 2 * kMargin, kMinWidth, kWidth), sizeHint().height());
    move((m_client.width() - width()) / 2, std::max(0, (m_client.height() - height()) / 3));
    show();
    m_chkCloseConsole->setChecked(true);
    raise();
    m_cmbConsole->setFocus();
}

void Console::HideConsole()
{
    m_menus.setChecked("mnuConsole", false);
    const bool hadFocus = isAncestorOf(QApplication::focusWidget());
    hide();
    if (hadFocus) m_movieScreen.setFocus();
}

void Console::translate()
{
    m_lblConsole->setText(texts::kConsole);
    m_cmbConsole->setAccessibleName(texts::kConsole);
    m_cmbConsole->lineEdit()->setPlaceholderText(texts::kConsoleHint);
    m_chkCloseConsole->setAccessibleName(texts::kCloseConsoleTip);
    SetVisual();
}

void Console::SetVisual() { ui::SetToolTip(m_chkCloseConsole, texts::kCloseConsoleTip); }

void Console::run(const QString& statement)
{
    try {
        m_bridge.ExecuteStatement(statement);
    } catch (const base::Failure& failure) {
        m_host.noteError(failure, texts::kPlaceConsole);
        answer(QString(texts::kConsoleError)
                   .arg(QString::fromStdString(failure.description()))
                   .arg(failure.number()));
        return;
    }
    answer({});
    m_cmbConsole->remember(statement);
    writeHistory(m_host.settingsFolder() + kHistoryFile, m_cmbConsole->history());
}

void Console::completeLine()
{
    QStringList words = scriptNamesOf(*window()->metaObject());
    for (const QAction* item : m_menus.findChildren<QAction*>()) words += item->objectName();
    words += {"Player", "SWF", "Console", "MsgBox", "InputBox"};
    words.removeAll(QString());
    const Completion done =
        complete(m_cmbConsole->currentText(), m_cmbConsole->lineEdit()->cursorPosition(), words);
    m_cmbConsole->setEditText(done.statement);
    m_cmbConsole->lineEdit()->setCursorPosition(done.cursor);
    constexpr int kMaxNamed = 12;
    QString named = done.choices.mid(0, kMaxNamed).join("  ");
    if (done.choices.size() > kMaxNamed) named += QString("  … (%1)").arg(done.choices.size());
    answer(named);
}

void Console::answer(const QString& text)
{
    m_lblAnswer->setText(text);
    m_lblAnswer->setVisible(!text.isEmpty());
    layout()->activate();
    fit();
}

void Console::drag() { m_drag.moveObject(*this); }

void Console::fit()
{
    const int wide = std::clamp(m_client.width() - 2 * kMargin, kMinWidth, kWidth);
    resize(wide, layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(wide) : sizeHint().height());
    move(std::clamp(x(), 0, std::max(0, m_client.width() - width())),
         std::clamp(y(), 0, std::max(0, m_client.height() - height())));
}

bool Console::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &m_client && !isHidden()) {
        if (event->type() == QEvent::Resize) fit();
        // The views of a new skin come in front of what is there.
        if (event->type() == QEvent::ChildAdded)
            QMetaObject::invokeMethod(
                this, [this] { raise(); }, Qt::QueuedConnection);
    }
    return SkinControl::eventFilter(watched, event);
}

void Console::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    ui::drawPlate(painter, rect(), 6, ui::faded(core::look::kSlate, kOpaque), QColor(core::look::kSteel));
}

} // namespace player
