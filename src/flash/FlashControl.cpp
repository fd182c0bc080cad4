#include "flash/FlashControl.h"

#include "flash/Engine.h"
#include "flash/KeyCodes.h"
#include "flash/control/Inbox.h"
#include "flash/control/LocalMovie.h"
#include "flash/control/RemoteMovie.h"
#include "flash/stage/Stage.h"

#include <QClipboard>
#include <QDateTime>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QHash>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QWheelEvent>

#include <cmath>
#include <filesystem>
#include <optional>

namespace flash
{

namespace
{

constexpr int kFlashVersion = 0x00080018;
// What a movie says for so long after a click or a key may be what the user wanted with it.
constexpr qint64 kActCountsMs = 1000;
// The next movie's process is made ready once this one has had its start.
constexpr int kSpareDelayMs = 1500;

stage::MouseButton toStage(Qt::MouseButton button)
{
    if (button == Qt::MiddleButton) return stage::MouseButton::Middle;
    return button == Qt::RightButton ? stage::MouseButton::Right : stage::MouseButton::Left;
}

Qt::CursorShape toShape(stage::Cursor cursor)
{
    switch (cursor) {
    case stage::Cursor::Arrow: return Qt::ArrowCursor;
    case stage::Cursor::Hand: return Qt::PointingHandCursor;
    case stage::Cursor::Text: return Qt::IBeamCursor;
    case stage::Cursor::Hidden: return Qt::BlankCursor;
    }
    return Qt::ArrowCursor;
}

} // namespace

class FlashControl::Private : public control::MovieListener
{
public:
    /// What a movie was loaded from, as it was at that moment: files change places.
    struct Source {
        QString address;
        bool isPage = false;
    };

    explicit Private(FlashControl& owner) : q(owner) { newLocal(); }

    // ---- the movie
    // ------------------------------------------------------------------------------------------

    void newLocal()
    {
        port = std::make_unique<control::LocalMovie>(*this);
        isRemote = loading = false;
        equip(*port);
    }

    /// A movie that is still to come finds everything as the last one had it.
    void equip(control::MoviePort& fresh)
    {
        fresh.pass(settings);
        if (!viewSize.isEmpty()) fresh.setView(viewSize.width(), viewSize.height(), viewScale);
    }

    /// Says something to the movie that scripts may answer to, then tells the host what came of it. Ignored
    /// while scripts run already: the question about a slow script lets events through.
    void command(const control::ToMovie& message)
    {
        if (port->isBusy()) return;
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
    [[nodiscard]] bool isTyping() const { return state().typing != 0; }

    [[nodiscard]] control::Load loadOf(int layer, const QString& url)
    {
        control::Load load;
        load.id = ++lastLoad;
        load.layer = layer;
        load.address = url.toStdString();
        load.language = QLocale().name().left(2).toStdString();
        load.startDateMs = static_cast<double>(QDateTime::currentMSecsSinceEpoch());
        load.randomSeed = static_cast<std::uint32_t>(QDateTime::currentMSecsSinceEpoch());
        if (const QScreen* shownOn = q.screen()) {
            load.screenWidth = shownOn->size().width();
            load.screenHeight = shownOn->size().height();
        }
        load.storageFolder = storageFolder.toStdString();
        load.trustedFolder = trustedFolder.toStdString();
        load.sharedFolder = sharedFolder.toStdString();
        sources[load.id] = {url, isPage(url)};
        return load;
    }

    /// Layer 0 in a process of its own, where there is a way to one. What played goes on when it fails.
    bool loadMovie(const QString& url)
    {
        auto process = processes.take();
        if (process == nullptr) {
            if (!std::exchange(toldWhere, true))
                heard(control::LogLine{"Movies play inside this process: there is none for them."});
            return loadInto(0, url);
        }
        auto before = std::move(port);
        const bool wasRemote = std::exchange(isRemote, true);
        const std::uint32_t spokeBefore = std::exchange(speaking, 0);
        port = std::make_unique<control::RemoteMovie>(*this, std::move(process));
        equip(*port);
        if (loadInto(0, url)) {
            QTimer::singleShot(kSpareDelayMs, &q, [this] { processes.prepare(); });
            return true;
        }
        port = std::move(before);
        isRemote = wasRemote;
        speaking = spokeBefore;
        return false;
    }

    bool loadInto(int layer, const QString& url)
    {
        using State = control::MoviePort::Loading::State;
        const auto loading = port->load(loadOf(layer, url));
        if (loading.state == State::Failed) {
            error = QString::fromStdString(loading.error);
            return false;
        }
        if (layer == 0) {
            this->loading = loading.state == State::GoesOn;
            sources = {{lastLoad, sources.value(lastLoad)}};
            movie = url;
            background.reset();
        }
        return true;
    }

    /// Another layer over what plays. Pages of the host's and movies from elsewhere do not share a process.
    bool loadLayer(int layer, const QString& url)
    {
        if (isRemote && isPage(url) != sources.value(speaking).isPage) {
            error = QStringLiteral("pages and movies do not share a process");
            return false;
        }
        return loadInto(layer, url);
    }

    /// Whether a file lies in the folder of the host's pages, links resolved.
    [[nodiscard]] bool isPage(const QString& url) const
    {
        std::error_code error;
        const auto file = std::filesystem::canonical(Engine::pathOf(url.toStdString()), error);
        return !error && !trustedFolder.isEmpty() &&
               std::filesystem::equivalent(file.parent_path(), trustedFolder.toStdString(), error);
    }

    // ---- what the movie says
    // --------------------------------------------------------------------------------

    void heard(control::FromMovie message) override
    {
        if (const auto* speaks = std::get_if<control::Speaking>(&message)) {
            speaking = speaks->id;
        } else if (std::get_if<control::State>(&message) != nullptr) {
            showState();
        } else if (const auto* copied = std::get_if<control::CopyText>(&message)) {
            if (clipboardAllowed) QGuiApplication::clipboard()->setText(QString::fromStdString(copied->text));
        } else if (std::get_if<control::RanOutOfMemory>(&message) != nullptr) {
            lost(Loss::OutOfMemory);
        } else if (const auto* loaded = std::get_if<control::Loaded>(&message)) {
            // Only of a movie that took long over its first frame; maybe it could not be loaded after all.
            loading = false;
            if (loaded->done == 0) lost(Loss::Refused);
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

    void showState()
    {
        const auto wanted = static_cast<stage::Cursor>(state().cursor);
        if (wanted != cursor) {
            cursor = wanted;
            q.setCursor(toShape(wanted));
        }
        if (isTyping() != q.testAttribute(Qt::WA_InputMethodEnabled))
            q.setAttribute(Qt::WA_InputMethodEnabled, isTyping());
    }

    void pictureChanged(const QRect& part) override { q.update(toWidget(part)); }

    control::Answer asked(control::Ask::What what) override
    {
        switch (what) {
        case control::Ask::What::AbortSlowScript:
            return {0, static_cast<std::uint8_t>(!timeout || timeout() ? 1 : 0), {}};
        case control::Ask::What::ClipboardText:
            return {0, 1,
                    clipboardAllowed ? QGuiApplication::clipboard()->text().toStdString() : std::string()};
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
        QTimer::singleShot(0, &q, [this, loss, of = port.get()] {
            if (of == port.get()) handleLoss(loss);
        });
    }

    void handleLoss(Loss loss)
    {
        if (loss == Loss::Frozen || loss == Loss::Answers) {
            emit q.frozen(loss == Loss::Frozen);
            return;
        }
        const QString lostMovie = std::exchange(movie, {});
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
        default: error = QStringLiteral("the movie could not be loaded"); emit q.crashed(lostMovie);
        }
    }

    // ---- the widget
    // -----------------------------------------------------------------------------------------

    [[nodiscard]] QRect toWidget(const QRect& device) const
    {
        const double ratio = q.devicePixelRatioF();
        return QRectF(device.x() / ratio, device.y() / ratio, device.width() / ratio, device.height() / ratio)
            .toAlignedRect();
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
    control::SpareProcess processes;
    control::Inbox inbox;
    std::unique_ptr<control::MoviePort> port;
    bool isRemote = false, loading = false;
    control::Settings settings;
    QSize viewSize; // device pixels
    double viewScale = 1;
    stage::Cursor cursor = stage::Cursor::Arrow;
    std::optional<QColor> background; // as the host set it
    QString movie, error;
    QString storageFolder, trustedFolder, sharedFolder;
    QHash<std::uint32_t, Source> sources; // by the loads' ids
    std::uint32_t lastLoad = 0, speaking = 0;
    int readyState = 0;
    std::function<bool()> timeout, watch;
    bool clipboardAllowed = true, toldWhere = false;
    quint64 acts = 0;
    QElapsedTimer sinceAct;
};

FlashControl::FlashControl(QWidget* parent) : QWidget(parent), d(std::make_unique<Private>(*this))
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

FlashControl::~FlashControl() = default;

// ---- loading ----------------------------------------------------------------------------------------------

bool FlashControl::LoadMovie(int layer, const QString& url)
{
    d->error.clear();
    if (d->port->isBusy()) {
        d->error = QStringLiteral("a script of the movie is running");
        return false;
    }
    if (url.isEmpty()) {
        unload(layer);
        return true;
    }
    // What the user did, he did to the movie before.
    if (layer == 0) d->sinceAct.invalidate();
    const bool done = layer == 0 ? d->loadMovie(url) : d->loadLayer(layer, url);
    update();
    // Last, because a handler of what the movie says may end this control's life.
    d->inbox.deliver(*this);
    return done;
}

void FlashControl::unload(int layer)
{
    if (layer == 0) {
        d->movie.clear();
        d->background.reset();
        update();
    }
    if (layer == 0 && d->isRemote) {
        d->newLocal();
        return;
    }
    d->command(control::Unload{layer});
}

QString FlashControl::Movie() const { return d->movie; }
QString FlashControl::senderMovie() const { return d->inbox.sender().movie; }
bool FlashControl::senderIsPage() const { return d->inbox.sender().isPage; }
bool FlashControl::senderHasRead() const { return d->inbox.sender().hasRead; }
quint64 FlashControl::senderAct() const { return d->inbox.sender().act; }
bool FlashControl::isBusy() const { return d->port->isBusy(); }
qint64 FlashControl::busyForMs() const { return d->port->busyForMs(); }
bool FlashControl::isLoading() const { return d->loading; }
bool FlashControl::hasOwnProcess() const { return d->isRemote; }
qint64 FlashControl::processId() const { return d->port->processId(); }
QString FlashControl::errorText() const { return d->error; }
int FlashControl::ReadyState() const { return d->readyState; }
bool FlashControl::listensToKeys() const { return d->state().listensToKeys != 0; }

int FlashControl::FlashVersion() const { return kFlashVersion; }

QSize FlashControl::movieSize() const
{
    const control::State& state = d->state();
    return state.open != 0 ? QSize(state.width, state.height) : QSize();
}

double FlashControl::frameRate() const { return d->state().frameRate; }

// ---- transport --------------------------------------------------------------------------------------------

void FlashControl::Play() { d->command(control::Play{}); }
void FlashControl::Stop() { d->command(control::Stop{}); }
void FlashControl::Back() { d->halt(FrameNum() > 0 ? FrameNum() - 1 : TotalFrames() - 1); }
void FlashControl::Forward() { d->halt(FrameNum() + 1 < TotalFrames() ? FrameNum() + 1 : 0); }
void FlashControl::Rewind() { d->halt(0); }
void FlashControl::GotoFrame(int frame) { d->halt(qBound(0, frame, qMax(0, TotalFrames() - 1))); }

bool FlashControl::Playing() const { return d->state().playing != 0; }
void FlashControl::setPlaying(bool playing) { playing ? Play() : Stop(); }
bool FlashControl::Loop() const { return d->settings.loop != 0; }

void FlashControl::setLoop(bool loop)
{
    d->settings.loop = loop ? 1 : 0;
    d->pass(d->settings);
}

int FlashControl::FrameNum() const { return d->state().frame; }
int FlashControl::TotalFrames() const { return d->state().totalFrames; }

void FlashControl::SetVariable(const QString& name, const QString& value)
{
    d->command(control::SetVariable{name.toStdString(), value.toStdString()});
}

QString FlashControl::GetVariable(const QString& name) const
{
    if (d->port->isBusy()) return {};
    const auto value = d->port->variable(name.toStdString());
    // A getter of the movie may have said something; it waits for the event loop.
    d->settle();
    return value ? QString::fromStdString(*value) : QString();
}

void FlashControl::setSuspended(bool suspended)
{
    if ((d->settings.suspended != 0) == suspended) return;
    d->settings.suspended = suspended ? 1 : 0;
    if (suspended) d->port->releaseSound();
    d->pass(d->settings);
}

// ---- looks and sound --------------------------------------------------------------------------------------

QStringList FlashControl::qualityNames() { return {"Low", "High", "AutoLow", "AutoHigh", "Medium", "Best"}; }
int FlashControl::Quality() const { return d->settings.quality; }

void FlashControl::setQuality(int quality)
{
    if (quality < 0 || quality >= qualityNames().size()) return;
    d->settings.quality = quality;
    d->pass(d->settings);
    update();
}

QString FlashControl::Quality2() const { return qualityNames().at(d->settings.quality); }

void FlashControl::setQuality2(const QString& name)
{
    const QStringList names = qualityNames();
    for (int i = 0; i < names.size(); ++i) {
        if (names[i].compare(name, Qt::CaseInsensitive) == 0) setQuality(i);
    }
}

int FlashControl::ScaleMode() const { return d->settings.scaleMode; }

void FlashControl::setScaleMode(int mode)
{
    if (mode < 0 || mode > 3) return;
    d->settings.scaleMode = mode;
    d->command(d->settings);
}

QString FlashControl::BGColor() const
{
    const QColor shown = d->background.value_or(QColor::fromRgb(d->state().background));
    return shown.name().mid(1).toUpper();
}

void FlashControl::setBGColor(const QString& color)
{
    const QString digits = color.startsWith('#') ? color.mid(1) : color;
    bool valid = false;
    const uint value = digits.toUInt(&valid, 16);
    if (!valid || digits.size() != 6) return;
    d->background = QColor::fromRgb(value);
    d->command(control::Background{value});
    update();
}

void FlashControl::setMasterVolume(double volume)
{
    d->settings.volume = qBound(0.0, volume, 1.0);
    d->pass(d->settings);
}

void FlashControl::setMasterBalance(double balance)
{
    d->settings.balance = qBound(-1.0, balance, 1.0);
    d->pass(d->settings);
}

double FlashControl::masterVolume() const { return d->settings.volume; }

void FlashControl::setMuted(bool muted)
{
    d->settings.muted = muted ? 1 : 0;
    d->pass(d->settings);
}

bool FlashControl::isMuted() const { return d->settings.muted != 0; }

void FlashControl::setStorageFolder(const QString& folder) { d->storageFolder = folder; }

void FlashControl::setSharedFolder(const QString& movies, const QString& shared)
{
    d->trustedFolder = movies;
    d->sharedFolder = shared;
}

void FlashControl::setScriptTimeoutHandler(std::function<bool()> handler) { d->timeout = std::move(handler); }
void FlashControl::setScriptWatch(std::function<bool()> watch) { d->watch = std::move(watch); }
void FlashControl::setClipboardAllowed(bool allowed) { d->clipboardAllowed = allowed; }
void FlashControl::advance(double ms) { d->command(control::Advance{ms}); }

QSize FlashControl::sizeHint() const
{
    const QSize size = movieSize();
    return size.isEmpty() ? QSize(550, 400) : size;
}

// ---- events -----------------------------------------------------------------------------------------------

bool FlashControl::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress: {
        // Tab moves the focus within the movie.
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() != Qt::Key_Tab && key->key() != Qt::Key_Backtab) break;
        keyPressEvent(key);
        return true;
    }
    case QEvent::ShortcutOverride: {
        // While a text field is typed in, the editing keys are its own.
        auto* key = static_cast<QKeyEvent*>(event);
        const bool prints = !key->text().isEmpty() && key->text().at(0).isPrint();
        if (!d->isTyping() || (!prints && !textCommandOf(*key))) break;
        key->accept();
        return true;
    }
    case QEvent::ScreenChangeInternal:
    case QEvent::Show: d->fitView(); break;
    default: break;
    }
    return QWidget::event(event);
}

void FlashControl::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    if (d->state().open == 0) {
        painter.fillRect(event->rect(), QColor('#' + BGColor()));
        return;
    }
    d->fitView();
    d->port->paint(painter, event->region(), devicePixelRatioF());
}

void FlashControl::resizeEvent(QResizeEvent*) { d->fitView(); }

void FlashControl::mousePressEvent(QMouseEvent* event)
{
    // The right button's menu is the host's.
    if (event->button() == Qt::RightButton)
        event->ignore();
    else
        d->mouse(event, 1);
}

void FlashControl::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::RightButton)
        event->ignore();
    else
        d->mouse(event, 2);
}

void FlashControl::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::RightButton)
        event->ignore();
    else
        d->mouse(event, 0);
}

void FlashControl::mouseMoveEvent(QMouseEvent* event) { d->mouse(event, 0); }

void FlashControl::wheelEvent(QWheelEvent* event)
{
    // The genuine player tells scripts three lines for a notch of the wheel.
    constexpr double kLinesPerNotch = 3, kUnitsPerNotch = 120;
    const auto lines =
        static_cast<int>(std::lround(event->angleDelta().y() / kUnitsPerNotch * kLinesPerNotch));
    if (lines == 0) return;
    d->pass(control::Mouse{static_cast<std::uint8_t>(control::Mouse::Kind::Wheel), 0, 0, 0, lines});
}

void FlashControl::leaveEvent(QEvent*)
{
    d->pass(control::Mouse{static_cast<std::uint8_t>(control::Mouse::Kind::Leave), 0, 0, 0, 0});
}

void FlashControl::keyPressEvent(QKeyEvent* event)
{
    // Escape is the user's own way out of things.
    if (!event->isAutoRepeat() && event->key() != Qt::Key_Escape) d->userActed();
    control::Key key{1, keyCodeOf(*event), characterOf(*event), -1, {}};
    if (const auto command = textCommandOf(*event)) {
        key.command = static_cast<std::int32_t>(*command);
    } else if (const auto typed = event->text().toUcs4();
               !typed.isEmpty() && typed.front() >= ' ' && typed.front() != 127) {
        key.typed.assign(typed.begin(), typed.end());
    }
    d->pass(key);
}

void FlashControl::keyReleaseEvent(QKeyEvent* event)
{
    // A key that is held down goes down again and again, and up once.
    if (event->isAutoRepeat()) return;
    d->pass(control::Key{0, keyCodeOf(*event), characterOf(*event), -1, {}});
}

void FlashControl::inputMethodEvent(QInputMethodEvent* event)
{
    const auto typed = event->commitString().toUcs4();
    if (!typed.isEmpty()) d->pass(control::TypedText{std::u32string(typed.begin(), typed.end())});
    event->accept();
}

void FlashControl::focusInEvent(QFocusEvent*) { d->pass(control::FocusChange{1}); }
void FlashControl::focusOutEvent(QFocusEvent*) { d->pass(control::FocusChange{0}); }

} // namespace flash
