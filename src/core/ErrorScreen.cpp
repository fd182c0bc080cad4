#include "core/ErrorScreen.h"

#include "core/Look.h"
#include "core/Texts.h"

#include <QFrame>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace core
{
namespace
{

constexpr int kWidth = 460;
constexpr int kMargin = 16;
constexpr int kDetailHeight = 120;
constexpr int kButtonHeight = 28;

QString colour(QRgb value) { return QColor(value).name(); }

QString errorStyle()
{
    return QString("QDialog { background: %1; } QLabel { color: %2; }"
                   "#title { font-size: 20px; color: %2; }"
                   "#mark { background: %3; border-radius: 2px; }"
                   "#cbRevive { background: %4; color: white; border: 1px solid %4; border-radius: 6px;"
                   " padding: 0 16px; }"
                   "#cbExit { background: transparent; color: %2; border: 1px solid %5; border-radius: 6px;"
                   " padding: 0 16px; }"
                   "#cbRevive:hover { background: #3F67A8; } #cbExit:hover { background: #DFE8F5; }"
                   "#cbRevive:focus, #cbExit:focus { border: 2px solid %6; }"
                   "#line { background: %5; }")
        .arg(colour(look::kPaper), colour(look::kInk), colour(look::kRed), colour(look::kBlue),
             colour(look::kSteel), colour(look::kSky));
}

} // namespace

frmError::frmError(QWidget* parent, const ErrorTexts& texts)
    : QDialog(parent), m_extra(new QToolButton(this)), m_txtExtra(new QPlainTextEdit(this))
{
    setObjectName("frmError");
    setWindowTitle(texts::kErrorWindow);
    setStyleSheet(errorStyle());

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(8);

    auto* heading = new QHBoxLayout;
    heading->setSpacing(12);
    auto* mark = new QFrame(this);
    mark->setObjectName("mark");
    mark->setFixedWidth(4);
    auto* title = new QLabel(texts::kErrorTitle, this);
    title->setObjectName("title");
    title->setWordWrap(true);
    heading->addWidget(mark);
    heading->addWidget(title, 1);
    column->addLayout(heading);
    auto* advice = new QLabel(texts::kErrorAdvice, this);
    advice->setWordWrap(true);
    column->addWidget(advice);
    column->addSpacing(4);

    addField(texts::kErrorNumber, QString::number(texts.number))->setObjectName("lblNumber");
    addField(texts::kErrorPlace, texts.place)->setObjectName("lblPlace");
    addField(texts::kErrorSource, texts.source)->setObjectName("lblSource");
    addField(texts::kErrorDescription, texts.description)->setObjectName("lblDescription");

    auto* line = new QFrame(this);
    line->setObjectName("line");
    line->setFixedHeight(1);
    column->addWidget(line);

    const bool hasDetail = !texts.detail.isEmpty();
    m_txtExtra->setObjectName("txtExtra");
    m_txtExtra->setReadOnly(true);
    m_txtExtra->setPlainText(texts.detail);
    m_txtExtra->setFixedHeight(kDetailHeight);
    m_txtExtra->hide();
    column->addWidget(m_txtExtra);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    m_extra->setObjectName("cbExtra");
    m_extra->setArrowType(Qt::RightArrow);
    m_extra->setAutoRaise(true);
    m_extra->setFixedSize(kButtonHeight, kButtonHeight);
    m_extra->setToolTip(texts::kExtraTip);
    m_extra->setAccessibleName(texts::kErrorDetail);
    m_extra->setVisible(hasDetail);
    auto* detailLabel = new QLabel(texts::kErrorDetail, this);
    detailLabel->setObjectName("lblExtra");
    detailLabel->setVisible(hasDetail);
    auto* revive = new QPushButton(texts::kRevive, this);
    revive->setObjectName("cbRevive");
    revive->setToolTip(texts::kReviveTip);
    revive->setFixedHeight(kButtonHeight);
    revive->setDefault(true);
    auto* exit = new QPushButton(texts::kExit, this);
    exit->setObjectName("cbExit");
    exit->setToolTip(texts::kExitTip);
    exit->setFixedHeight(kButtonHeight);
    exit->setAutoDefault(false);
    buttons->addWidget(m_extra);
    buttons->addWidget(detailLabel);
    buttons->addStretch(1);
    buttons->addWidget(revive);
    buttons->addWidget(exit);
    column->addLayout(buttons);

    connect(revive, &QPushButton::clicked, this, [this] { cbRevive_Click(); });
    connect(exit, &QPushButton::clicked, this, [this] { cbExit_Click(); });
    connect(m_extra, &QToolButton::clicked, this, [this] { cbExtra_Click(); });
    revive->setFocus();
    ensurePolished();
    // The line of the buttons is one that cannot wrap.
    const int width = std::max(kWidth, column->minimumSize().width());
    setFixedWidth(width);
    resize(width, column->totalHeightForWidth(width));
}

QLabel* frmError::addField(const QString& title, const QString& value)
{
    auto* label = new QLabel(title + value, this);
    label->setTextFormat(Qt::PlainText); // a description may hold mark-up of its own
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout()->addWidget(label);
    return label;
}

void frmError::cbRevive_Click() { accept(); }

void frmError::cbExit_Click()
{
    emit exitRequested();
    reject();
}

void frmError::cbExtra_Click()
{
    m_unfolded = !m_unfolded;
    m_extra->setArrowType(m_unfolded ? Qt::DownArrow : Qt::RightArrow);
    const int boxHeight = kDetailHeight + layout()->spacing();
    const int newHeight = height() + (m_unfolded ? boxHeight : -boxHeight);
    m_txtExtra->setVisible(m_unfolded);
    // Fixed, because the layout still asks for the room of a box just hidden.
    setFixedHeight(newHeight);
}

} // namespace core
