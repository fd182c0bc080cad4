#include "flash/FlashControl.h"

#include <QPaintEvent>
#include <QPainter>

namespace flash
{

namespace
{

constexpr int kFlashVersion = 0x00080018;

} // namespace

class FlashControl::Private
{
public:
    bool loop = true;
    int quality = 1;
    int scaleMode = 0;
    QColor background = Qt::white;
    double volume = 1;
    bool muted = false;
    bool suspended = false;
    QString movie, error, storageFolder;
    std::function<bool()> scriptTimeout;
};

FlashControl::FlashControl(QWidget* parent) : QWidget(parent), d(std::make_unique<Private>())
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

FlashControl::~FlashControl() = default;

// TODO: playing is not joined up yet; until then every movie is refused.
bool FlashControl::LoadMovie(int, const QString&)
{
    d->error = QStringLiteral("no engine");
    return false;
}
void FlashControl::Play() {}
void FlashControl::Stop() {}
void FlashControl::Back() {}
void FlashControl::Forward() {}
void FlashControl::Rewind() {}
void FlashControl::GotoFrame(int) {}
void FlashControl::SetVariable(const QString&, const QString&) {}
QString FlashControl::GetVariable(const QString&) const { return {}; }
bool FlashControl::Playing() const { return false; }
void FlashControl::setPlaying(bool playing) { playing ? Play() : Stop(); }
bool FlashControl::Loop() const { return d->loop; }
void FlashControl::setLoop(bool loop) { d->loop = loop; }

QStringList FlashControl::qualityNames() { return {"Low", "High", "AutoLow", "AutoHigh", "Medium", "Best"}; }
int FlashControl::Quality() const { return d->quality; }
void FlashControl::setQuality(int quality)
{
    if (quality >= 0 && quality < qualityNames().size()) d->quality = quality;
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
    if (mode >= 0 && mode <= 3) d->scaleMode = mode;
}

QString FlashControl::BGColor() const { return d->background.name().mid(1).toUpper(); }
void FlashControl::setBGColor(const QString& color)
{
    const QString digits = color.startsWith('#') ? color.mid(1) : color;
    bool valid = false;
    const uint value = digits.toUInt(&valid, 16);
    if (!valid || digits.size() != 6) return;
    d->background = QColor::fromRgb(value);
    update();
}

int FlashControl::FrameNum() const { return -1; }
int FlashControl::TotalFrames() const { return 0; }
int FlashControl::ReadyState() const { return 0; }
int FlashControl::FlashVersion() const { return kFlashVersion; }
QString FlashControl::Movie() const { return d->movie; }
QString FlashControl::errorText() const { return d->error; }
QSize FlashControl::movieSize() const { return {}; }
double FlashControl::frameRate() const { return 0; }
void FlashControl::setMasterVolume(double volume) { d->volume = qBound(0.0, volume, 1.0); }
double FlashControl::masterVolume() const { return d->volume; }
void FlashControl::setMuted(bool muted) { d->muted = muted; }
bool FlashControl::isMuted() const { return d->muted; }
void FlashControl::setSuspended(bool suspended) { d->suspended = suspended; }
void FlashControl::setStorageFolder(const QString& folder) { d->storageFolder = folder; }
void FlashControl::setScriptTimeoutHandler(std::function<bool()> handler)
{
    d->scriptTimeout = std::move(handler);
}
QSize FlashControl::sizeHint() const { return {550, 400}; }

bool FlashControl::event(QEvent* event) { return QWidget::event(event); }
void FlashControl::paintEvent(QPaintEvent* event) { QPainter(this).fillRect(event->rect(), d->background); }
void FlashControl::resizeEvent(QResizeEvent* event) { QWidget::resizeEvent(event); }
void FlashControl::showEvent(QShowEvent* event) { QWidget::showEvent(event); }
void FlashControl::hideEvent(QHideEvent* event) { QWidget::hideEvent(event); }
void FlashControl::mousePressEvent(QMouseEvent* event) { QWidget::mousePressEvent(event); }
void FlashControl::mouseReleaseEvent(QMouseEvent* event) { QWidget::mouseReleaseEvent(event); }
void FlashControl::mouseDoubleClickEvent(QMouseEvent* event) { QWidget::mouseDoubleClickEvent(event); }
void FlashControl::mouseMoveEvent(QMouseEvent* event) { QWidget::mouseMoveEvent(event); }
void FlashControl::wheelEvent(QWheelEvent* event) { QWidget::wheelEvent(event); }
void FlashControl::leaveEvent(QEvent* event) { QWidget::leaveEvent(event); }
void FlashControl::keyPressEvent(QKeyEvent* event) { QWidget::keyPressEvent(event); }
void FlashControl::keyReleaseEvent(QKeyEvent* event) { QWidget::keyReleaseEvent(event); }
void FlashControl::inputMethodEvent(QInputMethodEvent* event) { QWidget::inputMethodEvent(event); }
void FlashControl::focusInEvent(QFocusEvent* event) { QWidget::focusInEvent(event); }
void FlashControl::focusOutEvent(QFocusEvent* event) { QWidget::focusOutEvent(event); }

} // namespace flash
