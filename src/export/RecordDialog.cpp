#include "export/RecordDialog.h"

#include "export/Texts.h"
#include "flash/FlashControl.h"
#include "flash/InputRecorder.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace exporter
{

namespace
{

constexpr int kMargin = 16, kControlHeight = 28, kTickMs = 200;
// Of the screen; the rest is for the window's own parts.
constexpr double kMaxScreenShare = 0.75;

} // namespace

RecordDialog::RecordDialog(QWidget* parent, const MovieFacts& movie) : QDialog(parent), m_movie(movie)
{
    setObjectName("frmRecord");
    setWindowTitle(texts::kRecordTitle);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(12);
    m_control = new flash::FlashControl(this);
    const QSize most = (QSizeF(screen()->availableSize()) * kMaxScreenShare).toSize();
    const bool fits = movie.size.boundedTo(most) == movie.size;
    m_control->setFixedSize(fits ? movie.size : movie.size.scaled(most, Qt::KeepAspectRatio));
    m_control->setFocusPolicy(Qt::StrongFocus);
    column->addWidget(m_control);
    auto* row = new QHBoxLayout;
    column->addLayout(row);
    m_clock = new QLabel(texts::kRecordHint, this);
    m_clock->setObjectName("lblClock");
    row->addWidget(m_clock);
    row->addStretch(1);
    for (const auto& [caption, name] :
         {std::pair(texts::kRecordDone, "cbOk"), std::pair(texts::kCancel, "cbCancel")}) {
        auto* button = new QPushButton(caption, this);
        button->setObjectName(name);
        button->setFixedHeight(kControlHeight);
        // Return and Space are the movie's.
        button->setAutoDefault(false);
        button->setFocusPolicy(Qt::NoFocus);
        row->addWidget(button);
        connect(button, &QPushButton::clicked, this,
                [this, isDone = button->objectName() == "cbOk"] { isDone ? accept() : reject(); });
    }
    column->setSizeConstraint(QLayout::SetFixedSize);
    connect(&m_ticking, &QTimer::timeout, this, [this] {
        m_clock->setText(
            QString(texts::kRecordClock).arg(static_cast<double>(m_sinceStart.elapsed()) / 1000, 0, 'f', 1));
    });
    QTimer::singleShot(0, this, [this] { begin(); });
}

RecordDialog::~RecordDialog() = default;

void RecordDialog::begin()
{
    m_control->setScaleMode(0);
    if (!m_control->LoadMovie(0, m_movie.address)) {
        m_clock->setText(texts::kCannotPlay);
        return;
    }
    m_control->setFocus();
    m_recorder = std::make_unique<flash::InputRecorder>(*m_control, m_movie.framesPerSecond, m_movie.size);
    m_sinceStart.start();
    m_ticking.start(kTickMs);
}

void RecordDialog::accept()
{
    if (!m_recorder) return reject();
    m_events = m_recorder->events();
    m_seconds = static_cast<double>(m_sinceStart.elapsed()) / 1000;
    m_recorder.reset();
    QDialog::accept();
}

} // namespace exporter
