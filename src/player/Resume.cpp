#include "player/Resume.h"

#include "base/Files.h"
#include "core/Application.h"
#include "core/Look.h"

#include <QAction>
#include <QTimer>

namespace player
{
namespace
{

constexpr std::uint64_t kMaxBytes = 1 << 20;
constexpr qsizetype kMaxPlaces = 50;
constexpr int kOfferedMs = 9000;

/// One place a line: the frame, a tabulator, the path.
QStringList linesOf(const QString& file)
{
    const auto content = base::readFile(core::filePath(file), kMaxBytes);
    if (!content) return {};
    return QString::fromUtf8(reinterpret_cast<const char*>(content->data()),
                             static_cast<qsizetype>(content->size()))
        .split('\n', Qt::SkipEmptyParts);
}

QString pathIn(const QString& line) { return line.mid(line.indexOf('\t') + 1); }

} // namespace

void Resume::remember(const QString& path, int frame, int totalFrames, double frameRate)
{
    if (m_file.isEmpty() || path.isEmpty() || path.contains('\n') || frameRate <= 0) return;
    if (totalFrames < kShortestFilmSeconds * frameRate) return;
    constexpr double kBeginning = 0.05, kEnd = 0.95;
    const double share = static_cast<double>(frame) / totalFrames;
    const QStringList before = linesOf(m_file);
    QStringList lines = before;
    lines.removeIf([&path](const QString& line) { return pathIn(line) == path; });
    if (share >= kBeginning && share <= kEnd) lines.prepend(QString::number(frame) + '\t' + path);
    if (lines == before) return;
    const QByteArray text = lines.mid(0, kMaxPlaces).join('\n').toUtf8() + '\n';
    // What cannot be kept is no loss that anybody would want to hear of now.
    (void)base::replaceFile(core::filePath(m_file),
                            base::Bytes(reinterpret_cast<const std::uint8_t*>(text.constData()),
                                        static_cast<std::size_t>(text.size())));
}

std::optional<int> Resume::placeOf(const QString& path) const
{
    if (m_file.isEmpty()) return std::nullopt;
    for (const QString& line : linesOf(m_file)) {
        if (pathIn(line) != path) continue;
        bool isNumber = false;
        const int frame = line.left(line.indexOf('\t')).toInt(&isNumber);
        if (isNumber && frame > 0) return frame;
    }
    return std::nullopt;
}

ResumeOffer::ResumeOffer(QWidget& window, const QString& text) : QPushButton(text, &window)
{
    setObjectName("cbResume");
    setFocusPolicy(Qt::NoFocus); // the movie keeps the keyboard
    setCursor(Qt::PointingHandCursor);
    setStyleSheet(QString("QPushButton { background: %1; color: %2; border: 1px solid %3; border-radius: 6px;"
                          " padding: 8px 16px; font-size: 14px; } QPushButton:hover { background: %3; }")
                      .arg(QColor(core::look::kInk).name(), QColor(core::look::kPaper).name(),
                           QColor(core::look::kBlue).name()));
}

void ResumeOffer::show(QWidget& window, const QString& text, QAction& action)
{
    take(window);
    auto* offer = new ResumeOffer(window, text);
    connect(offer, &QPushButton::clicked, &action, [&action, offer] {
        offer->deleteLater();
        action.trigger();
    });
    const auto place = [offer, &window] {
        constexpr int kFromTop = 44;
        offer->adjustSize();
        offer->move((window.width() - offer->width()) / 2, kFromTop);
        offer->raise();
    };
    place();
    offer->QPushButton::show();
    // The window has its new size only when the system has given it one.
    constexpr int kResizedAfterMs[] = {100, 400};
    for (const int after : kResizedAfterMs) QTimer::singleShot(after, offer, place);
    QTimer::singleShot(kOfferedMs, offer, &QObject::deleteLater);
}

void ResumeOffer::take(QWidget& window)
{
    // It may be what was just clicked.
    for (auto* offer : window.findChildren<ResumeOffer*>()) {
        offer->hide();
        offer->deleteLater();
    }
}

} // namespace player
