#include "flash/FlashControl.h"

#include "flash/AudioOutput.h"
#include "flash/Engine.h"
#include "flash/HostQueue.h"
#include "flash/KeyCodes.h"
#include "flash/sound/SoundPlayer.h"
#include "flash/stage/Stage.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QTimer>
#include <QWheelEvent>

#include <cmath>
#include <new>
#include <stdexcept>

namespace flash
{

namespace
{

constexpr int kFlashVersion = 0x00080018;
// A pause longer than this (a suspended machine, a dialog) is not made up for.
constexpr double kLongestStepMs = 1000;
// How often the sound device and the loads of a movie without a next event are looked after.
constexpr double kLongestWaitMs = 1000;
// What a movie says for so long after a click or a key may be what the user wanted with it.
constexpr qint64 kActCountsMs = 1000;

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

// The numbers of Quality.
enum QualityNumber { Low, High, AutoLow, AutoHigh, Medium, Best };

} // namespace

class FlashControl::Private
{
public:
    explicit Private(FlashControl& owner)
        : q(owner), engine(host, {}), audio(new AudioOutput(&owner)), timer(new QTimer(&owner))
    {
        host.setSenderSource([this](Sender& sender) {
            sender.isPage = engine.holdsOnlyTrusted();
            sender.hasRead = engine.hasReadFiles();
            sender.act = sinceAct.isValid() && sinceAct.elapsed() < kActCountsMs ? acts : 0;
        });
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
        QObject::connect(timer, &QTimer::timeout, &q, [this] { tick(); });
        applyQuality();
    }
    ~Private() { audio->release(); }

    /// Runs `work`, which may run scripts, then tells the host what came of it. Does nothing when scripts run
    /// already: the question about a slow script lets events through.
    template <class Work>
    void drive(Work&& work)
    {
        if (busy) return;
        busy = true;
        sinceBusy.start();
        const bool done = enoughMemoryFor(work);
        if (resizedMeanwhile) fitView();
        resizedMeanwhile = false;
        busy = false;
        if (!done) abandon();
        showChanges();
        schedule();
        // Last, because a handler may load another movie or end this control's life.
        host.deliver(q);
    }

    /// @returns false when the memory came to an end on the way
    template <class Work>
    static bool enoughMemoryFor(Work&& work)
    {
        try {
            work();
        } catch (const std::bad_alloc&) {
            return false;
        } catch (const std::length_error&) {
            return false; // more than any memory holds
        }
        return true;
    }

    void abandon()
    {
        engine.abandon();
        audio->release();
        movie.clear();
        host.setMovie({});
        error = QStringLiteral("the memory has come to an end");
        QTimer::singleShot(0, &q, [this] { emit q.ranOutOfMemory(); });
    }

    void userActed()
    {
        ++acts;
        sinceAct.start();
    }

    void tick()
    {
        drive([this] {
            const double elapsed = std::min(static_cast<double>(clock.nsecsElapsed()) / 1e6, kLongestStepMs);
            clock.start();
            QElapsedTimer cost;
            cost.start();
            engine.advance(inStepWithSound(elapsed),
                           audio->isPulling() ? Engine::Hearing::Device : Engine::Hearing::Silent);
            audio->follow(engine.sound().mixer(), elapsed);
            costMs += static_cast<double>(cost.nsecsElapsed()) / 1e6;
            adaptQuality(elapsed);
        });
    }

    /// The device's clock leads where there is one: streams and timeline must not drift apart.
    double inStepWithSound(double elapsed)
    {
        constexpr double kToleratedMs = 60, kShareOfStep = 0.1;
        if (!audio->isPulling()) {
            soundLeadMs = -1;
            return elapsed;
        }
        playedMs += elapsed;
        const double lead = audio->fedMs() - playedMs;
        // The device takes some sound ahead; how much is seen after the first moments.
        if (soundLeadMs < 0 || audio->fedMs() < 500) {
            if (soundLeadMs < 0) playedMs = 0;
            soundLeadMs = std::max(lead, 0.0);
            return elapsed;
        }
        const double drift = lead - soundLeadMs;
        if (std::abs(drift) < kToleratedMs) return elapsed;
        const double correction = std::clamp(drift, -elapsed * kShareOfStep, elapsed * kShareOfStep);
        playedMs += correction;
        return elapsed + correction;
    }

    void schedule()
    {
        if (suspended || !engine.isOpen()) {
            timer->stop();
            return;
        }
        if (!clock.isValid()) clock.start();
        const double since = static_cast<double>(clock.nsecsElapsed()) / 1e6;
        const double wait = std::min(engine.stage().msToNextEvent() - since, kLongestWaitMs);
        timer->start(static_cast<int>(std::ceil(std::max(wait, 0.0))));
    }

    void showChanges()
    {
        const QRect dirty = engine.dirtyRect();
        if (!dirty.isEmpty()) q.update(toWidget(dirty));
        const stage::Cursor wanted = engine.stage().cursor();
        if (wanted != cursor) {
            cursor = wanted;
            q.setCursor(toShape(wanted));
        }
        const stage::Node* focus = engine.stage().focus();
        const bool typing = focus != nullptr && focus->kind() == stage::NodeKind::TextField;
        if (typing != q.testAttribute(Qt::WA_InputMethodEnabled))
            q.setAttribute(Qt::WA_InputMethodEnabled, typing);
    }

    [[nodiscard]] bool isTyping() const { return q.testAttribute(Qt::WA_InputMethodEnabled); }

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
        if (size == image.size() || size.isEmpty()) return;
        image = QImage(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(0);
        unpainted = image.rect();
        engine.setDeviceScale(ratio);
        engine.stage().setViewSize(size.width(), size.height());
    }

    void refreshImage()
    {
        const QRect dirty = (engine.dirtyRect() | unpainted) & image.rect();
        unpainted = QRect();
        if (dirty.isEmpty()) return;
        QElapsedTimer cost;
        cost.start();
        if (!enoughMemoryFor([&] { engine.render(image, dirty); })) abandon();
        costMs += static_cast<double>(cost.nsecsElapsed()) / 1e6;
    }

    void applyQuality()
    {
        stage::Quality wanted = stage::Quality::High;
        switch (quality) {
        case Low: wanted = stage::Quality::Low; break;
        case High: wanted = stage::Quality::High; break;
        case Medium: wanted = stage::Quality::Medium; break;
        case Best: wanted = stage::Quality::Best; break;
        case AutoLow:
        case AutoHigh: wanted = automaticHigh ? stage::Quality::High : stage::Quality::Low; break;
        }
        if (engine.stage().quality() != wanted) engine.stage().setQuality(wanted);
    }

    /// The two automatic qualities: smooth as long as the machine keeps up.
    void adaptQuality(double elapsed)
    {
        if (quality != AutoLow && quality != AutoHigh) return;
        measuredMs += elapsed;
        if (measuredMs < 1000) return;
        const double load = costMs / measuredMs;
        measuredMs = costMs = 0;
        // Smoothing costs some three times as much, so that what goes up does not come down again.
        const bool high = automaticHigh ? load < 0.8 : load < 0.2;
        if (high == automaticHigh) return;
        automaticHigh = high;
        applyQuality();
    }

    void loaded(const QString& url)
    {
        movie = url;
        background.reset();
        clock.start();
        soundLeadMs = -1;
    }

    void mouse(QMouseEvent* event, int clicks)
    {
        if (event->type() != QEvent::MouseMove) userActed();
        const QPointF position = event->position() * q.devicePixelRatioF();
        const auto button = toStage(event->button());
        drive([&] {
            stage::Stage& stage = engine.stage();
            if (event->type() == QEvent::MouseMove)
                stage.mouseMove(position.x(), position.y());
            else if (clicks > 0)
                stage.mouseDown(position.x(), position.y(), button, clicks);
            else
                stage.mouseUp(position.x(), position.y(), button);
        });
    }

    void halt(int frame)
    {
        if (!engine.isOpen()) return;
        drive([&] {
            engine.stage().stop();
            engine.stage().gotoFrame(frame);
            engine.stage().stop();
        });
    }

    FlashControl& q;
    HostQueue host;
    Engine engine;
    AudioOutput* audio; // owned by the widget
    QTimer* timer;      // owned by the widget
    QElapsedTimer clock;
    QImage image; // device pixels
    QRect unpainted;
    stage::Cursor cursor = stage::Cursor::Arrow;
    int quality = High, scaleMode = 0;
    bool loop = true, muted = false, suspended = false, busy = false, automaticHigh = true;
    double volume = 1;
    double costMs = 0, measuredMs = 0;
    double playedMs = 0, soundLeadMs = -1; // since the device was opened; -1: not measured yet
    std::optional<QColor> background;      // as the host set it
    QString movie, error;
    quint64 acts = 0;
    QElapsedTimer sinceAct, sinceBusy;
    bool resizedMeanwhile = false;
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
    if (d->busy) {
        d->error = QStringLiteral("a script of the movie is running");
        return false;
    }
    Engine::Options& options = d->engine.options();
    options.startDateMs = static_cast<double>(QDateTime::currentMSecsSinceEpoch());
    options.language = QLocale().name().left(2).toStdString();
    if (const QScreen* shownOn = screen()) {
        options.screenWidth = shownOn->size().width();
        options.screenHeight = shownOn->size().height();
    }
    d->engine.options().randomSeed = static_cast<std::uint32_t>(QDateTime::currentMSecsSinceEpoch());
    bool done = true; // A handler of what the movie says may end this control's life.
    d->drive([&] {
        if (url.isEmpty()) {
            if (layer == 0)
                d->engine.close();
            else
                d->engine.stage().unloadLevel(layer);
            if (layer == 0) d->loaded(url);
            return;
        }
        // What the user did, he did to the movie before.
        if (layer == 0) d->sinceAct.invalidate();
        done = false; // as long as it is not known better
        // Its first frame's scripts run before the movie is known to be loaded.
        const QString before = d->host.movie();
        if (layer == 0) d->host.setMovie(url);
        const auto opened = d->engine.openLevel(layer, url.toStdString());
        done = opened.has_value();
        if (!opened) {
            d->error = QString::fromStdString(opened.error().what);
            d->host.setMovie(before);
        } else if (layer == 0) {
            d->loaded(url);
        }
    });
    return done;
}

QString FlashControl::Movie() const { return d->movie; }
QString FlashControl::senderMovie() const { return d->host.sender().movie; }
bool FlashControl::senderIsPage() const { return d->host.sender().isPage; }
bool FlashControl::senderHasRead() const { return d->host.sender().hasRead; }
quint64 FlashControl::senderAct() const { return d->host.sender().act; }
bool FlashControl::isBusy() const { return d->busy; }
qint64 FlashControl::busyForMs() const { return d->busy ? d->sinceBusy.elapsed() : 0; }
QString FlashControl::errorText() const { return d->error; }
int FlashControl::ReadyState() const { return d->host.readyState(); }
bool FlashControl::listensToKeys() const { return d->engine.isOpen() && d->engine.stage().listensToKeys(); }

int FlashControl::FlashVersion() const { return kFlashVersion; }

QSize FlashControl::movieSize() const
{
    if (!d->engine.isOpen()) return {};
    const swf::Rect& frame = d->engine.stage().movie()->header.frameSize;
    return {static_cast<int>(std::lround(frame.width() / 20.0)),
            static_cast<int>(std::lround(frame.height() / 20.0))};
}

double FlashControl::frameRate() const { return d->engine.isOpen() ? d->engine.stage().frameRate() : 0; }

// ---- transport --------------------------------------------------------------------------------------------

void FlashControl::Play()
{
    d->drive([&] { d->engine.stage().play(); });
}

void FlashControl::Stop()
{
    d->drive([&] { d->engine.stage().stop(); });
}

void FlashControl::Back() { d->halt(FrameNum() > 0 ? FrameNum() - 1 : TotalFrames() - 1); }
void FlashControl::Forward() { d->halt(FrameNum() + 1 < TotalFrames() ? FrameNum() + 1 : 0); }
void FlashControl::Rewind() { d->halt(0); }
void FlashControl::GotoFrame(int frame) { d->halt(qBound(0, frame, qMax(0, TotalFrames() - 1))); }

bool FlashControl::Playing() const { return d->engine.isOpen() && d->engine.stage().isPlaying(); }
void FlashControl::setPlaying(bool playing) { playing ? Play() : Stop(); }
bool FlashControl::Loop() const { return d->loop; }

void FlashControl::setLoop(bool loop)
{
    d->loop = loop;
    d->engine.stage().setLoop(loop);
}

int FlashControl::FrameNum() const { return d->engine.isOpen() ? d->engine.stage().currentFrame() : -1; }
int FlashControl::TotalFrames() const { return d->engine.isOpen() ? d->engine.stage().totalFrames() : 0; }

void FlashControl::SetVariable(const QString& name, const QString& value)
{
    d->drive([&] { d->engine.setVariable(name.toStdString(), value.toStdString()); });
}

QString FlashControl::GetVariable(const QString& name) const
{
    QString value;
    d->drive([&] { value = QString::fromStdString(d->engine.getVariable(name.toStdString())); });
    return value;
}

void FlashControl::setSuspended(bool suspended)
{
    if (d->suspended == suspended) return;
    d->suspended = suspended;
    if (suspended) d->audio->release();
    d->clock.start();
    d->schedule();
}

// ---- looks and sound --------------------------------------------------------------------------------------

QStringList FlashControl::qualityNames() { return {"Low", "High", "AutoLow", "AutoHigh", "Medium", "Best"}; }
int FlashControl::Quality() const { return d->quality; }

void FlashControl::setQuality(int quality)
{
    if (quality < 0 || quality >= qualityNames().size()) return;
    d->quality = quality;
    d->automaticHigh = quality != AutoLow;
    d->measuredMs = d->costMs = 0;
    d->applyQuality();
    update();
}

QString FlashControl::Quality2() const { return qualityNames().at(d->quality); }

void FlashControl::setQuality2(const QString& name)
{
    const QStringList names = qualityNames();
    for (int i = 0; i < names.size(); ++i) {
        if (names[i].compare(name, Qt::CaseInsensitive) == 0) setQuality(i);
    }
}

int FlashControl::ScaleMode() const { return d->scaleMode; }

void FlashControl::setScaleMode(int mode)
{
    if (mode < 0 || mode > 3) return;
    d->scaleMode = mode;
    d->drive([&] { d->engine.stage().setScaleMode(static_cast<stage::ScaleMode>(mode)); });
}

QString FlashControl::BGColor() const
{
    const swf::Rgba color = d->engine.stage().background();
    const QColor shown = d->background.value_or(QColor(color.r, color.g, color.b));
    return shown.name().mid(1).toUpper();
}

void FlashControl::setBGColor(const QString& color)
{
    const QString digits = color.startsWith('#') ? color.mid(1) : color;
    bool valid = false;
    const uint value = digits.toUInt(&valid, 16);
    if (!valid || digits.size() != 6) return;
    d->background = QColor::fromRgb(value);
    d->engine.stage().setHostBackground({static_cast<std::uint8_t>(value >> 16U),
                                         static_cast<std::uint8_t>(value >> 8U & 255U),
                                         static_cast<std::uint8_t>(value & 255U)});
    update();
}

void FlashControl::setMasterVolume(double volume)
{
    d->volume = qBound(0.0, volume, 1.0);
    d->engine.sound().setMasterVolume(d->volume);
}

double FlashControl::masterVolume() const { return d->volume; }

void FlashControl::setMuted(bool muted)
{
    d->muted = muted;
    d->engine.sound().mixer().setMuted(muted);
}

bool FlashControl::isMuted() const { return d->muted; }

void FlashControl::setStorageFolder(const QString& folder)
{
    d->engine.options().storageFolder = folder.toStdString();
}

void FlashControl::setSharedFolder(const QString& movies, const QString& shared)
{
    d->engine.options().trustedFolder = movies.toStdString();
    d->engine.options().sharedFolder = shared.toStdString();
}

void FlashControl::setScriptTimeoutHandler(std::function<bool()> handler)
{
    d->host.setTimeoutHandler(std::move(handler));
}

void FlashControl::setScriptWatch(std::function<bool()> watch) { d->host.setScriptWatch(std::move(watch)); }

void FlashControl::setClipboardAllowed(bool allowed) { d->host.setClipboardAllowed(allowed); }

void FlashControl::advance(double ms)
{
    d->drive([&] { d->engine.advance(ms); });
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
    if (!d->engine.isOpen()) {
        painter.fillRect(event->rect(), QColor('#' + BGColor()));
        return;
    }
    d->fitView();
    if (!d->busy) d->refreshImage();
    const double ratio = devicePixelRatioF();
    for (const QRect& rect : event->region()) {
        const QRectF source(rect.x() * ratio, rect.y() * ratio, rect.width() * ratio, rect.height() * ratio);
        painter.drawImage(QRectF(rect), d->image, source);
    }
}

void FlashControl::resizeEvent(QResizeEvent*)
{
    d->resizedMeanwhile = d->busy;
    d->drive([this] { d->fitView(); });
}

void FlashControl::showEvent(QShowEvent* event) { QWidget::showEvent(event); }
void FlashControl::hideEvent(QHideEvent* event) { QWidget::hideEvent(event); }

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
    if (lines != 0) d->drive([&] { d->engine.stage().mouseWheel(lines); });
}

void FlashControl::leaveEvent(QEvent*)
{
    d->drive([this] { d->engine.stage().mouseLeave(); });
}

void FlashControl::keyPressEvent(QKeyEvent* event)
{
    const char32_t character = characterOf(*event);
    // Escape is the user's own way out of things.
    if (!event->isAutoRepeat() && event->key() != Qt::Key_Escape) d->userActed();
    d->drive([&] {
        stage::Stage& stage = d->engine.stage();
        stage.keyDown(keyCodeOf(*event), character);
        if (!d->isTyping()) return;
        const auto typed = event->text().toUcs4();
        if (const auto command = textCommandOf(*event))
            stage.textCommand(*command);
        else if (!typed.isEmpty() && typed.front() >= ' ' && typed.front() != 127) {
            for (const char32_t unit : typed) stage.textInput(unit);
        }
    });
}

void FlashControl::keyReleaseEvent(QKeyEvent* event)
{
    // A key that is held down goes down again and again, and up once.
    if (event->isAutoRepeat()) return;
    d->drive([&] { d->engine.stage().keyUp(keyCodeOf(*event), characterOf(*event)); });
}

void FlashControl::inputMethodEvent(QInputMethodEvent* event)
{
    d->drive([&] {
        for (const char32_t unit : event->commitString().toUcs4()) d->engine.stage().textInput(unit);
    });
    event->accept();
}

void FlashControl::focusInEvent(QFocusEvent*)
{
    d->drive([this] { d->engine.stage().focusGained(); });
}

void FlashControl::focusOutEvent(QFocusEvent*)
{
    d->drive([this] { d->engine.stage().focusLost(); });
}

} // namespace flash
