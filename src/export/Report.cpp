#include "export/Report.h"

#include <QBuffer>
#include <QImageReader>
#include <QList>

#include <cmath>

namespace exporter::report
{

namespace
{

constexpr char kAdvanced[] = "advanced", kShown[] = "shown", kDone[] = "done";
constexpr int kJpegQuality = 80;

QByteArray words(std::initializer_list<QByteArray> list) { return QByteArrayList(list).join(' ') + '\n'; }

std::optional<std::int64_t> count(const QByteArray& word)
{
    bool isNumber = false;
    const qlonglong value = word.toLongLong(&isNumber);
    return isNumber && value >= 0 ? std::optional<std::int64_t>(value) : std::nullopt;
}

} // namespace

QByteArray write(const Line& line)
{
    if (const auto* advanced = std::get_if<Advanced>(&line))
        return words({kAdvanced, QByteArray::number(static_cast<qlonglong>(advanced->pictures)),
                      QByteArray::number(static_cast<qlonglong>(advanced->expected))});
    if (const auto* done = std::get_if<Done>(&line))
        return words({kDone, QByteArray::number(static_cast<qlonglong>(done->pictures)),
                      QByteArray::number(done->ms, 'f', 3), done->isCutShort ? "1" : "0"});
    const QImage& picture = std::get<Shown>(line).picture;
    const QImage small =
        picture.width() > kShownSide || picture.height() > kShownSide
            ? picture.scaled(kShownSide, kShownSide, Qt::KeepAspectRatio, Qt::SmoothTransformation)
            : picture;
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    small.convertToFormat(QImage::Format_RGB32).save(&buffer, "JPEG", kJpegQuality);
    return words({kShown, jpeg.toBase64()});
}

std::optional<Line> read(const QByteArray& line)
{
    if (line.size() > kMaxLineBytes) return std::nullopt;
    const QList<QByteArray> word = line.trimmed().split(' ');
    if (word.size() == 3 && word[0] == kAdvanced) {
        const auto pictures = count(word[1]), expected = count(word[2]);
        if (pictures && expected) return Advanced{*pictures, *expected};
    } else if (word.size() == 4 && word[0] == kDone) {
        bool isNumber = false;
        const auto pictures = count(word[1]);
        const double ms = word[2].toDouble(&isNumber);
        if (pictures && isNumber && std::isfinite(ms) && ms >= 0) return Done{*pictures, ms, word[3] == "1"};
    } else if (word.size() == 2 && word[0] == kShown) {
        QByteArray jpeg = QByteArray::fromBase64(word[1]);
        QBuffer buffer(&jpeg);
        QImageReader reader(&buffer, "JPEG");
        // Asked before it takes any memory.
        const QSize size = reader.size();
        if (size.isEmpty() || size.width() > kShownSide || size.height() > kShownSide) return std::nullopt;
        if (const QImage picture = reader.read(); !picture.isNull()) return Shown{picture};
    }
    return std::nullopt;
}

} // namespace exporter::report
