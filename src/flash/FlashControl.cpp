#include "flash/FlashControl.h"

#include "flash/FlashControlPrivate.h"
#include "flash/KeyCodes.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QWheelEvent>

namespace flash
{

namespace
{

constexpr int kFlashVersion = 0x00080018;

} // namespace

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
        d->forgetMenu();
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
bool FlashControl::lacksProcess() const { return d->lacksProcess; }
bool FlashControl::hasOwnProcess() const { return d->isRemote; }
qint64 FlashControl::processId() const { return d->port->processId(); }
bool FlashControl::isBehind() const { return d->hasLost || d->port->isBehind(); }
bool FlashControl::givesOwnProcesses() { return !control::MovieProcess::program().isEmpty(); }

std::shared_ptr<void> FlashControl::keepProcessReady()
{
    auto spare = control::SpareProcess::shared();
    spare->prepare();
    return spare;
}

void FlashControl::setWaits(bool waits)
{
    d->waits = waits;
    d->port->setWaits(waits);
}

void FlashControl::setKeepsProcess(bool keeps) { d->keepsProcess = keeps; }

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

double FlashControl::speed() const { return d->settings.speed; }

void FlashControl::setSpeed(double speed)
{
    d->settings.speed = speed;
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
    if (color.isEmpty()) {
        d->background.reset();
        d->command(control::Background{0, 0});
        update();
        return;
    }
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

void FlashControl::setTextCode(const QString& name) { d->textCode = name; }

void FlashControl::setSecondThread(bool may)
{
    d->settings.secondThread = may ? 1 : 0;
    d->pass(d->settings);
}

void FlashControl::setSharedFolder(const QString& movies, const QString& shared)
{
    d->trustedFolder = movies;
    d->sharedFolder = shared;
}

void FlashControl::setScriptTimeoutHandler(std::function<bool()> handler) { d->timeout = std::move(handler); }
void FlashControl::setScriptWatch(std::function<bool()> watch) { d->watch = std::move(watch); }
void FlashControl::setClipboardAllowed(bool allowed) { d->clipboardAllowed = allowed; }
void FlashControl::interrupt() { d->port->interrupt(); }
void FlashControl::advance(double ms) { d->command(control::Advance{ms}); }

FlashControl::Menu FlashControl::openMenu(std::optional<QPointF> at) { return d->openMenu(at); }

void FlashControl::chooseMenuItem(quint32 menu, int item)
{
    if (menu == 0 || menu != d->menu || item < 0) return;
    d->userActed();
    d->pass(control::ChooseMenuItem{menu, static_cast<std::uint32_t>(item)});
}

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
        // While a text field is typed in, the editing keys are its own; of a text that one only reads, those
        // that mark and copy.
        auto* key = static_cast<QKeyEvent*>(event);
        const bool prints = !key->text().isEmpty() && key->text().at(0).isPrint();
        const auto command = textCommandOf(*key);
        const bool isOwn =
            d->isTyping() ? prints || command : command && stage::onlyReads(*command) && d->holdsText();
        if (!isOwn) break;
        key->accept();
        return true;
    }
    case QEvent::ScreenChangeInternal: d->fitView(); break;
    case QEvent::Show:
        d->fitView();
        d->tellWhetherSeen();
        break;
    case QEvent::Hide: d->tellWhetherSeen(); break;
    default: break;
    }
    return QWidget::event(event);
}

bool FlashControl::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Expose && watched == d->watched) d->tellWhetherSeen();
    return QWidget::eventFilter(watched, event);
}

void FlashControl::mousePressEvent(QMouseEvent* event)
{
    // The right button's menu is the host's.
    if (event->button() == Qt::RightButton)
        event->ignore();
    else {
        // What was being composed is typed where it stands, not where the pointer puts the caret.
        if (d->isComposing) QGuiApplication::inputMethod()->commit();
        d->mouse(event, d->clicksOf(*event));
    }
}

void FlashControl::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::RightButton)
        event->ignore();
    else
        d->mouse(event, d->clicksOf(*event));
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
    // What is not committed yet is seen in its place, until it is empty again.
    const QString composed = event->preeditString();
    if (composed.isEmpty() && !d->isComposing) return;
    d->isComposing = !composed.isEmpty();
    int caret = static_cast<int>(composed.size());
    for (const QInputMethodEvent::Attribute& attribute : event->attributes())
        if (attribute.type == QInputMethodEvent::Cursor) caret = attribute.start;
    d->pass(control::Composition{composed.toStdString(), caret});
}

QVariant FlashControl::inputMethodQuery(Qt::InputMethodQuery query) const
{
    if (query == Qt::ImCursorRectangle && d->isTyping()) return d->caret();
    return QWidget::inputMethodQuery(query);
}

void FlashControl::focusInEvent(QFocusEvent*) { d->tellFocus(control::FocusChange::Kind::Gained); }

void FlashControl::focusOutEvent(QFocusEvent* event)
{
    using Kind = control::FocusChange::Kind;
    // Commands of a menu are for what has the focus in the movie.
    const bool isMenu = event->reason() == Qt::PopupFocusReason || event->reason() == Qt::MenuBarFocusReason;
    d->tellFocus(isMenu ? Kind::Paused : Kind::Lost);
}

} // namespace flash
