#include "player/WelcomePanel.h"

#include "core/Look.h"
#include "core/Version.h"
#include "player/Glyph.h"
#include "player/Texts.h"

#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace player
{
namespace
{

constexpr int kMark = 64;
constexpr int kMessageFrame = 32; // padding and the red edge
constexpr int kMinMessage = 260;
constexpr int kWidestMessage = 420;

class MarkWidget : public QWidget
{
public:
    explicit MarkWidget(QWidget* parent) : QWidget(parent) { setFixedSize(kMark, kMark); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        paintMark(painter, rect());
    }
};

QString panelStyle()
{
    using namespace core::look;
    const auto name = [](QRgb colour) { return QColor(colour).name(); };
    return QString("QLabel { color: %1; }"
                   "#product { font-size: 24px; }"
                   "#subject { font-size: 12px; }"
                   "#version, #hint { color: %2; font-size: 11px; }"
                   "#message { background: %3; border-left: 4px solid %4; border-radius: 3px;"
                   " padding: 8px 12px; font-size: 13px; }"
                   "QPushButton { background: %5; color: white; border: 2px solid %5; border-radius: 6px;"
                   " padding: 0 20px; font-size: 13px; }"
                   "QPushButton:hover { background: #3F67A8; border-color: #3F67A8; }"
                   "QPushButton:pressed { background: %6; border-color: %6; }"
                   "QPushButton:focus { border-color: %2; }")
        .arg(name(kIce), name(kSky), name(kSlate), name(kRed), name(kBlue), name(kSteel));
}

} // namespace

WelcomePanel::WelcomePanel(QWidget* parent) : QWidget(parent), m_message(new QLabel(this))
{
    setStyleSheet(panelStyle());
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(24, 16, 24, 16);
    column->setSpacing(4);
    const auto addLabel = [this, column](const QString& text, const char* name) {
        auto* label = new QLabel(text, this);
        label->setObjectName(name);
        label->setAlignment(Qt::AlignCenter);
        label->setWordWrap(true);
        column->addWidget(label);
    };
    column->addStretch(1);
    column->addWidget(new MarkWidget(this), 0, Qt::AlignHCenter);
    column->addSpacing(8);
    addLabel(core::kProductName, "product");
    addLabel(texts::kWelcomeSubject, "subject");
    addLabel(QString("%1%2.%3.%4")
                 .arg(texts::kWelcomeVersion)
                 .arg(core::kVersionMajor)
                 .arg(core::kVersionMinor)
                 .arg(core::kVersionRevision),
             "version");
    column->addSpacing(12);
    m_message->setObjectName("message");
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_message->hide();
    column->addWidget(m_message, 0, Qt::AlignHCenter);
    column->addSpacing(12);
    auto* open = new QPushButton(texts::kWelcomeOpen, this);
    open->setObjectName("btnWelcomeOpen");
    open->setFixedHeight(36);
    open->setCursor(Qt::PointingHandCursor);
    column->addWidget(open, 0, Qt::AlignHCenter);
    addLabel(texts::kWelcomeHint, "hint");
    column->addStretch(1);
    connect(open, &QPushButton::clicked, this, &WelcomePanel::openClicked);
    setFocusProxy(open);
}

void WelcomePanel::setMessage(const QString& message)
{
    m_message->setText(message);
    m_message->setVisible(!message.isEmpty());
    if (message.isEmpty()) return;
    // A label that wraps is given too little height by a centring layout: its size is reckoned here.
    m_message->ensurePolished();
    const int wanted = m_message->fontMetrics().horizontalAdvance(message) + kMessageFrame;
    m_message->setFixedWidth(std::clamp(wanted, kMinMessage, kWidestMessage));
    m_message->setFixedHeight(m_message->heightForWidth(m_message->width()));
}

QString WelcomePanel::message() const { return m_message->text(); }

void WelcomePanel::paintEvent(QPaintEvent*) { QPainter(this).fillRect(rect(), QColor(core::look::kInk)); }

} // namespace player
