#include "player/MovieHealth.h"

#include "core/Look.h"
#include "flash/FlashControl.h"
#include "player/Texts.h"

#include <QBoxLayout>
#include <QFileInfo>
#include <QFrame>
#include <QLabel>
#include <QPushButton>

namespace player
{

namespace
{

QString nameOf(const QString& address) { return QFileInfo(address.section('?', 0, 0)).absoluteFilePath(); }

} // namespace

MovieHealth::MovieHealth(flash::FlashControl& control, Callbacks callbacks)
    : m_control(control), m_callbacks(std::move(callbacks))
{
    m_clock.start();
    connect(&control, &flash::FlashControl::frozen, this, [this](bool frozen) { showNotice(frozen); });
    connect(&control, &flash::FlashControl::crashed, this, [this](const QString& movie) {
        showNotice(false);
        noteEnd(movie);
        m_callbacks.log("The movie's process has ended unexpectedly: " + movie);
        m_callbacks.close(texts::kMovieCrashed);
    });
    connect(&control, &flash::FlashControl::refused, this, [this] {
        showNotice(false);
        m_callbacks.log("Flash: " + m_control.errorText());
        m_callbacks.close(m_control.lacksProcess() ? texts::kMovieWithoutProcess : texts::kMovieDamaged);
    });
}

bool MovieHealth::mayOpen(const QString& path)
{
    showNotice(false); // it was about the movie before
    QList<qint64>& ends = m_ends[nameOf(path)];
    ends.removeIf([this](qint64 at) { return m_clock.elapsed() - at > kForgivenMs; });
    if (ends.size() < kMaxEnds) return true;
    if (!m_callbacks.isToOpenAgain(path)) return false;
    m_ends.remove(nameOf(path));
    return true;
}

void MovieHealth::noteEnd(const QString& path) { m_ends[nameOf(path)].append(m_clock.elapsed()); }

void MovieHealth::showNotice(bool frozen)
{
    delete m_notice;
    m_notice = nullptr;
    if (!frozen) return;
    m_callbacks.log("The movie's process does not answer: " + m_control.Movie());
    m_notice = new QFrame(m_control.parentWidget());
    connect(m_notice, &QObject::destroyed, this, [this] { m_notice = nullptr; });
    m_notice->setObjectName("fraNotAnswering");
    m_notice->setStyleSheet(
        QString("#fraNotAnswering { background: %1; border: 1px solid %2; border-radius: 6px; }"
                " QLabel { color: %3; }")
            .arg(QColor(core::look::kSlate).name(), QColor(core::look::kSteel).name(),
                 QColor(core::look::kIce).name()));
    auto* row = new QBoxLayout(QBoxLayout::LeftToRight, m_notice);
    row->setContentsMargins(16, 8, 8, 8);
    row->setSpacing(8);
    row->addWidget(new QLabel(texts::kNotAnswering, m_notice));
    row->addSpacing(8);
    auto* wait = new QPushButton(texts::kNotAnsweringWait, m_notice);
    auto* close = new QPushButton(texts::kNotAnsweringClose, m_notice);
    row->addWidget(wait);
    row->addWidget(close);
    // Small movies have small windows.
    if (m_notice->sizeHint().width() > m_control.width()) row->setDirection(QBoxLayout::TopToBottom);
    // From the event loop: the notice goes away with the button that was clicked.
    connect(wait, &QPushButton::clicked, m_notice, &QObject::deleteLater);
    connect(close, &QPushButton::clicked, this, &MovieHealth::closeFrozen, Qt::QueuedConnection);
    m_notice->adjustSize();
    constexpr int kFromTop = 12;
    m_notice->move(std::max(0, (m_control.width() - m_notice->width()) / 2), kFromTop);
    m_notice->show();
    m_notice->raise();
}

void MovieHealth::closeFrozen()
{
    showNotice(false);
    m_callbacks.close(texts::kMovieNotAnswering);
}

} // namespace player
