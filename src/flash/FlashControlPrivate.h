#pragma once

#include "flash/Engine.h"
#include "flash/FlashControl.h"
#include "flash/control/DirectPainting.h"
#include "flash/control/Inbox.h"
#include "flash/control/LocalMovie.h"
#include "flash/control/PicturePainting.h"
#include "flash/control/RemoteMovie.h"
#include "flash/control/SleepWatch.h"
#include "flash/stage/ContextMenu.h"
#include "flash/stage/Stage.h"

#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QHash>
#include <QInputMethod>
#include <QMouseEvent>
#include <QPointer>
#include <QScreen>
#include <QStyleHints>
#include <QTimer>
#include <QWindow>

#include <array>
#include <cmath>
#include <optional>

// Included by FlashControl*.cpp alone.
namespace flash
{

inline stage::MouseButton toStage(Qt::MouseButton button)
{
    if (button == Qt::MiddleButton) return stage::MouseButton::Middle;
    return button == Qt::RightButton ? stage::MouseButton::Right : stage::MouseButton::Left;
}

/// Movies end lines with carriage returns, and other programs with both; on the clipboard one is a line feed.
inline QString lineFed(QString text) { return text.replace("\r\n", "\n").replace('\r', '\n'); }

inline Qt::CursorShape toShape(stage::Cursor cursor)
{
    switch (cursor) {
    case stage::Cursor::Arrow: return Qt::ArrowCursor;
    case stage::Cursor::Hand: return Qt::PointingHandCursor;
    case stage::Cursor::Text: return Qt::IBeamCursor;
    case stage::Cursor::Hidden: return Qt::BlankCursor;
    }
    return Qt::ArrowCursor;
}

/// The control's way to its movies: which process plays, what they say and whose word it is.
class FlashControl::Private : public control::MovieListener
{
public:
    // What a movie says for so long after a click or a key may be what the user wanted with it.
    static constexpr qint64 kActCountsMs = 1000;
    // The next movie's process is made ready once this one has had its start.
    static constexpr int kSpareDelayMs = 1500;
    // The spare one may be stopped and the next one be killed; a third that fails tells of the system.
    static constexpr int kMaxStarts = 3;

    /// What a movie was loaded from, as it was at that moment: files change places.
    struct Source {
        QString address;
        bool isPage = false;
    };

    explicit Private(FlashControl& owner) : q(owner) { newLocal(); }
    /// Before the rest: a movie that is taken down still says what it could not keep.
    ~Private() override { port.reset(); }

    // ---- the movie
    // ------------------------------------------------------------------------------------------

    void newLocal()
    {
        port = std::make_unique<control::LocalMovie>(*this);
        isRemote = loading = hasLost = false;
        equip(*port);
    }

    /// A movie that is still to come finds everything as the last one had it.
    void equip(control::MoviePort& fresh)
    {
        fresh.setWaits(waits);
        fresh.pass(settings);
        if (!viewSize.isEmpty()) fresh.setView(viewSize.width(), viewSize.height(), viewScale);
    }

    /// Says something to the movie that scripts may answer to, then tells the host what came of it. Ignored
    /// while scripts run already: the question about a slow script lets events through.
    void command(const control::ToMovie& message)
    {
        if (port->isBusy()) return;
        constexpr std::size_t kMaxEarly = 1000;
        if (loading && early.size() < kMaxEarly) early.push_back(message);
        port->command(message);
        // Last, because a handler may load another movie or end this control's life.
        inbox.deliver(q);
    }

    void pass(const control::ToMovie& message)
    {
        if (port->isBusy()) return;
        port->pass(message);
        inbox.deliver(q);
    }

    void halt(int frame)
    {
        if (state().open != 0) command(control::Halt{frame});
    }

    [[nodiscard]] const control::State& state() const { return port->state(); }
    [[nodiscard]] bool holdsText() const { return state().is(control::TextFocus::Held); }
    [[nodiscard]] bool isTyping() const { return state().is(control::TextFocus::Typed); }

    [[nodiscard]] control::Load loadOf(int layer, const QString& url);
    /// Layer 0 in a process of its own, where there is a way to one. What played goes on when it fails.
    bool loadMovie(const QString& url);
    /// Whether the process of the movie before will do for this one.
    [[nodiscard]] bool mayTakeOver(const QString& url) const;
    /// A process that ends, or does not answer, before it has seen the movie is replaced, some times. Not by
    /// this one: what a movie may do here is what its own process keeps it from.
    bool loadIntoProcess(const QString& url, int patienceMs);
    /// The process ended, after LoadMovie() had returned, before it saw the movie: another one gets it, and
    /// what was said to it meanwhile.
    bool loadAgain(const QString& url);
    control::MoviePort::Loading::State loadInto(int layer, const QString& url, int patienceMs);
    /// Another layer over what plays. Pages of the host's and movies from elsewhere do not share a process.
    bool loadLayer(int layer, const QString& url);
    /// Whether a file lies in the folder of the host's pages, links resolved.
    [[nodiscard]] bool isPage(const QString& url) const;

    // ---- what the movie says
    // --------------------------------------------------------------------------------

    void heard(control::FromMovie message) override
    {
        if (const auto* speaks = std::get_if<control::Speaking>(&message)) {
            speaking = speaks->id;
        } else if (std::get_if<control::State>(&message) != nullptr) {
            showState();
        } else if (const auto* copied = std::get_if<control::CopyText>(&message)) {
            if (clipboardAllowed)
                QGuiApplication::clipboard()->setText(lineFed(QString::fromStdString(copied->text)));
        } else if (std::get_if<control::RanOutOfMemory>(&message) != nullptr) {
            lost(Loss::OutOfMemory);
        } else if (const auto* loaded = std::get_if<control::Loaded>(&message)) {
            // Only of a movie that took long over its first frame; maybe it could not be loaded after all.
            const bool isMovie = loaded->id == movieLoad;
            if (isMovie) {
                loading = false;
                early.clear();
            }
            if (loaded->done == 0 && !isMovie) heard(control::LogLine{"A layer: " + loaded->error});
            if (loaded->done == 0 && isMovie) {
                error = QString::fromStdString(loaded->error);
                lost(Loss::Refused);
            }
            q.update();
        } else {
            if (const auto* ready = std::get_if<control::ReadyState>(&message)) readyState = ready->state;
            auto sender = senderOf(message);
            inbox.put(std::move(message), std::move(sender));
        }
    }

    [[nodiscard]] control::Sender senderOf(const control::FromMovie& message) const
    {
        control::Standing standing;
        if (const auto* command = std::get_if<control::Command>(&message)) standing = command->standing;
        if (const auto* address = std::get_if<control::OpenAddress>(&message)) standing = address->standing;
        control::Sender sender;
        const Source source = sources.value(speaking);
        sender.movie = source.address;
        sender.isPage = standing.onlyTrusted != 0 && source.isPage;
        sender.hasRead = standing.hasRead != 0;
        sender.act = sinceAct.isValid() && sinceAct.elapsed() < kActCountsMs ? acts : 0;
        return sender;
    }

    /// Where an input method shows what it offers.
    [[nodiscard]] QRect caret() const
    {
        const control::State& now = state();
        return toWidget(QRect(now.caretLeft, now.caretTop, 1, now.caretHeight)).boundingRect();
    }

    void showPointer()
    {
        const control::State& now = state();
        const auto wanted = static_cast<stage::Cursor>(now.cursor);
        const std::array shape{now.pointerWidth, now.pointerX, now.pointerY};
        if (wanted == cursor && shape == pointerShape && now.pointerPixels == pointer) return;
        cursor = wanted;
        pointerShape = shape;
        pointer = now.pointerPixels;
        const QImage own = control::ownPointer(now);
        q.setCursor(own.isNull() ? QCursor(toShape(wanted))
                                 : QCursor(QPixmap::fromImage(own), now.pointerX, now.pointerY));
    }

    void showState()
    {
        showPointer();
        if (isTyping() != q.testAttribute(Qt::WA_InputMethodEnabled))
            q.setAttribute(Qt::WA_InputMethodEnabled, isTyping());
        const Qt::InputMethodHints secret =
            Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText;
        const auto hints = isTyping() && state().is(control::TextFocus::Secret) ? secret : Qt::ImhNone;
        if (hints != q.inputMethodHints()) q.setInputMethodHints(hints);
        if (!isTyping()) isComposing = false;
        if (const QRect now = caret(); isTyping() && now != toldCaret) {
            toldCaret = now;
            QGuiApplication::inputMethod()->update(Qt::ImCursorRectangle);
        }
    }

    void pictureChanged(const QRegion& parts, Painting painting) override;
    /// @returns which of the parts are shown; the others are to be painted
    QRegion putDirectly(const QRegion& parts);
    /// Where parts of the picture may be put. @returns nothing when they have to be painted
    std::optional<control::ShownPlace> placeOf(const QRegion& parts);
    void fallAsleep();
    void wakeUp();

    control::Answer asked(control::Ask::What what) override
    {
        switch (what) {
        case control::Ask::What::AbortSlowScript:
            return {0, static_cast<std::uint8_t>(!timeout || timeout() ? 1 : 0), {}};
        case control::Ask::What::ClipboardText:
            return {0, 1,
                    clipboardAllowed ? lineFed(QGuiApplication::clipboard()->text()).toStdString()
                                     : std::string()};
        }
        return {};
    }

    bool endsScripts() override { return watch && watch(); }

    void settle() override
    {
        // From the event loop: a handler may end the movie that is speaking.
        if (!inbox.isEmpty()) QTimer::singleShot(0, &q, [this] { inbox.deliver(q); });
    }

    void lost(Loss loss) override
    {
        hasLost = true;
        QTimer::singleShot(0, &q, [this, loss, of = port.get()] {
            if (of != port.get()) return;
            hasLost = false;
            handleLoss(loss);
        });
    }

    void handleLoss(Loss loss)
    {
        if (loss == Loss::Frozen || loss == Loss::Answers) {
            emit q.frozen(loss == Loss::Frozen);
            return;
        }
        const QString lostMovie = movie;
        forgetMenu();
        if (loss == Loss::NeverBegan && loadAgain(lostMovie)) return;
        movie.clear();
        speaking = 0;
        newLocal();
        q.update();
        switch (loss) {
        case Loss::OutOfMemory:
            error = QStringLiteral("the memory has come to an end");
            emit q.ranOutOfMemory();
            break;
        case Loss::Crashed:
            error = QStringLiteral("the movie's process has ended");
            emit q.crashed(lostMovie);
            break;
        default: emit q.refused(lostMovie);
        }
    }

    // ---- the widget
    // -----------------------------------------------------------------------------------------

    [[nodiscard]] QRegion toWidget(const QRegion& device) const
    {
        const double ratio = q.devicePixelRatioF();
        if (ratio == 1) return device;
        QRegion result;
        for (const QRect& part : device)
            result |= QRectF(part.x() / ratio, part.y() / ratio, part.width() / ratio, part.height() / ratio)
                          .toAlignedRect();
        return result;
    }

    /// A window that is minimised, and a control that is not shown, need no pictures. One that was never
    /// shown may be grabbed all the time.
    void tellWhetherSeen()
    {
        QWindow* const window = q.window()->windowHandle();
        if (window != watched) {
            if (watched) watched->removeEventFilter(&q);
            if (window != nullptr) window->installEventFilter(&q);
            watched = window;
        }
        const bool seen = q.isVisible() && (window == nullptr || window->isExposed());
        wasSeen = wasSeen || seen;
        const std::uint8_t unseen = wasSeen && !seen ? 1 : 0;
        if (std::exchange(settings.unseen, unseen) != unseen) port->pass(settings);
    }

    void fitView()
    {
        const double ratio = q.devicePixelRatioF();
        const QSize size(static_cast<int>(std::round(q.width() * ratio)),
                         static_cast<int>(std::round(q.height() * ratio)));
        if (size == viewSize || size.isEmpty()) return;
        viewSize = size;
        viewScale = ratio;
        port->setView(size.width(), size.height(), ratio);
        inbox.deliver(q);
    }

    void userActed()
    {
        ++acts;
        sinceAct.start();
    }

    void tellFocus(control::FocusChange::Kind kind)
    {
        pass(control::FocusChange{static_cast<std::uint8_t>(kind)});
    }

    // ---- the menu
    // -------------------------------------------------------------------------------------------

    [[nodiscard]] Menu openMenu(std::optional<QPointF> at)
    {
        using Kind = stage::MenuItem::Kind;
        if (port->isBusy() || state().open == 0) return {};
        control::OpenMenu open{++lastMenu, 0, 0, 0};
        if (at) {
            const QPointF device = *at * q.devicePixelRatioF();
            open = {lastMenu, 1, device.x(), device.y()};
        }
        menu = open.id;
        const auto told = port->menu(open);
        Menu shown{open.id, {}};
        // A process that is not what it seems obeys the same rules.
        stage::MenuItems allowed;
        for (const control::MenuEntry& item : told) {
            const auto kind = static_cast<Kind>(item.kind);
            if (kind == Kind::Own)
                allowed.add(QString::fromStdString(item.caption).toStdU16String(), item.separatorBefore != 0,
                            item.enabled != 0, true);
            else
                allowed.add(kind, item.enabled != 0);
        }
        const auto items = allowed.take();
        // What the far end numbers is what stands there: a list that was changed here is none of this
        // movie's.
        if (items.size() != told.size()) return {};
        for (const stage::MenuItem& item : items)
            shown.items.append({static_cast<Menu::Item::Kind>(item.kind),
                                QString::fromStdString(item.caption), item.separatorBefore, item.enabled});
        settle();
        return shown;
    }

    /// Another movie comes, or none.
    void forgetMenu()
    {
        if (std::exchange(menu, 0) != 0) emit q.menuEnded();
    }

    /// How many times in quick succession a button that goes down has been clicked: Qt counts to two.
    int clicksOf(const QMouseEvent& event)
    {
        constexpr int kDouble = 2, kTriple = 3;
        const QPoint at = event.position().toPoint();
        if (event.type() == QEvent::MouseButtonDblClick) {
            doubleClick.start();
            doubleClickAt = at;
            return kDouble;
        }
        const QStyleHints& hints = *QGuiApplication::styleHints();
        const bool follows = doubleClick.isValid() && event.button() == Qt::LeftButton &&
                             doubleClick.elapsed() < hints.mouseDoubleClickInterval() &&
                             (at - doubleClickAt).manhattanLength() < hints.mouseDoubleClickDistance();
        doubleClick.invalidate();
        return follows ? kTriple : 1;
    }

    void mouse(QMouseEvent* event, int clicks)
    {
        using Kind = control::Mouse::Kind;
        const bool moves = event->type() == QEvent::MouseMove;
        if (!moves) userActed();
        const QPointF position = event->position() * q.devicePixelRatioF();
        const Kind kind = moves ? Kind::Move : clicks > 0 ? Kind::Down : Kind::Up;
        pass(control::Mouse{static_cast<std::uint8_t>(kind), position.x(), position.y(),
                            static_cast<std::uint8_t>(toStage(event->button())), clicks});
    }

    FlashControl& q;
    std::shared_ptr<control::SpareProcess> processes = control::SpareProcess::shared();
    control::Inbox inbox;
    std::unique_ptr<control::MoviePort> port;
    bool isRemote = false, loading = false, waits = true;
    bool isComposing = false; // an input method, within the movie
    QElapsedTimer doubleClick;
    QPoint doubleClickAt;
    QRect toldCaret;
    bool hasLost = false; // the movie, and the host is about to be told
    control::Settings settings;
    control::DirectPainting direct{q};
    control::SleepWatch sleep{[this] { fallAsleep(); }, [this] { wakeUp(); }};
    QPointer<QWindow> watched; // the one that the control is in
    bool wasSeen = false;
    QSize viewSize; // device pixels
    double viewScale = 1;
    // What is seen: the movie's own pointer, unless empty, with its width and the pixel that points.
    stage::Cursor cursor = stage::Cursor::Arrow;
    std::string pointer;
    std::array<std::uint8_t, 3> pointerShape{};
    std::optional<QColor> background; // as the host set it
    QString movie, error;
    QString storageFolder, trustedFolder, sharedFolder;
    QString textCode = "automatic";
    QHash<std::uint32_t, Source> sources; // by the loads' ids
    std::uint32_t lastLoad = 0, movieLoad = 0, speaking = 0;
    int readyState = 0;
    std::uint32_t lastMenu = 0, menu = 0; // the one that may be chosen from; 0: none
    std::function<bool()> timeout, watch;
    std::vector<control::ToMovie> early; // of a movie that is still loading
    int startsLeft = 0, takenOver = 0;
    bool keepsProcess = false;
    bool clipboardAllowed = true, toldWhere = false, lacksProcess = false;
    quint64 acts = 0;
    QElapsedTimer sinceAct;
};

} // namespace flash
