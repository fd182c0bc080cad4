#include "svgpng/Recipe.h"

#include <QRegularExpression>

namespace svgpng
{
namespace
{

using base::ErrorCode;
using base::fail;

constexpr int kMaxSide = 8192;

// The states of a button, on dark ground.
struct State {
    const char* folder;
    const char* ground; ///< null for none
    double groundOpacity;
    double glyphOpacity;
};
constexpr State kStates[] = {{"up/", nullptr, 0, 1},
                             {"over/", "#7FA6E0", 0.18, 1},
                             {"down/", "#4974BA", 0.6, 1},
                             {"disabled/", nullptr, 0, 0.35}};
constexpr double kButtonRadius = 6;

tl::unexpected<base::Error> unknown(const QString& word)
{
    return fail(ErrorCode::Malformed, "not understood: " + word.toStdString());
}

base::Result<QSize> sizeOf(const QString& word)
{
    static const QRegularExpression shape("^(\\d{1,4})x(\\d{1,4})$");
    const auto match = shape.match(word);
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    if (!match.hasMatch() || size.isEmpty() || size.width() > kMaxSide || size.height() > kMaxSide)
        return fail(ErrorCode::Malformed, "needs a size like 28x28: " + word.toStdString());
    return size;
}

base::Result<double> numberOf(const QString& word, double most)
{
    bool isNumber = false;
    const double value = word.toDouble(&isNumber);
    if (!isNumber || value < 0 || value > most)
        return fail(ErrorCode::Malformed,
                    "needs a number from 0 to " + std::to_string(most) + ": " + word.toStdString());
    return value;
}

base::Result<QColor> colourOf(const QString& word)
{
    const QColor colour = QColor::fromString(word);
    if (!colour.isValid()) return fail(ErrorCode::Malformed, "needs a colour: " + word.toStdString());
    return colour;
}

base::Result<QRectF> placeOf(const QString& word, QSize canvas)
{
    const QString size = word.section('@', 0, 0);
    const QSize extent = TRY_RESULT(sizeOf(size));
    if (!word.contains('@'))
        return QRectF(QPointF(canvas.width() - extent.width(), canvas.height() - extent.height()) / 2,
                      extent);
    const QStringList corner = word.section('@', 1).split(',');
    bool hasLeft = false, hasTop = false;
    const QPointF at(corner.value(0).toDouble(&hasLeft), corner.value(1).toDouble(&hasTop));
    if (!hasLeft || !hasTop || corner.size() != 2) return unknown(word);
    return QRectF(at, extent);
}

base::Result<Layer> readLayer(const QStringList& words, QSize canvas)
{
    if (words.isEmpty()) return fail(ErrorCode::Malformed, "needs a drawing behind +");
    Layer layer;
    layer.place = QRectF(QPointF(0, 0), canvas);
    if (words[0].endsWith(".svg"))
        layer.svg = words[0];
    else if (words[0] != "ground")
        return unknown(words[0]);
    for (const QString& word : words.mid(1)) {
        const QString value = word.section('=', 1);
        if (word.startsWith('#'))
            layer.colour = TRY_RESULT(colourOf(word));
        else if (word.startsWith("opacity="))
            layer.opacity = TRY_RESULT(numberOf(value, 1));
        else if (word.startsWith("radius="))
            layer.radius = TRY_RESULT(numberOf(value, kMaxSide));
        else if (word == "mirror")
            layer.mirror = true;
        else
            layer.place = TRY_RESULT(placeOf(word, canvas));
    }
    if (layer.svg.isEmpty() && !layer.colour.isValid())
        return fail(ErrorCode::Malformed, "needs a colour for the ground");
    return layer;
}

base::Result<bool> readOption(Picture& picture, const QString& word)
{
    const QString value = word.section('=', 1);
    if (word.startsWith("key=")) {
        picture.key = TRY_RESULT(colourOf(value));
        return true;
    }
    if (!word.startsWith("scales=")) return false;
    picture.scales.clear();
    for (const QString& scale : value.split(',')) {
        if (scale.size() != 1 || scale < "1" || scale > "4") return unknown(word);
        picture.scales.push_back(scale.toInt());
    }
    return true;
}

base::Result<Picture> readPicture(const QStringList& words)
{
    Picture picture;
    picture.output = words.value(1);
    picture.size = TRY_RESULT(sizeOf(words.value(2)));
    qsizetype at = 3;
    for (; at < words.size() && words[at] != "+"; ++at)
        if (!TRY_RESULT(readOption(picture, words[at]))) return unknown(words[at]);
    if (at == words.size()) return fail(ErrorCode::Malformed, "needs a layer behind +");
    while (at < words.size()) {
        const qsizetype next = words.indexOf("+", at + 1);
        const qsizetype end = next < 0 ? words.size() : next;
        picture.layers.push_back(TRY_RESULT(readLayer(words.mid(at + 1, end - at - 1), picture.size)));
        at = end;
    }
    return picture;
}

base::Result<std::vector<Picture>> readButton(const QStringList& words)
{
    Picture picture;
    picture.size = TRY_RESULT(sizeOf(words.value(3)));
    const QString side = words.value(4);
    QString colour = "#EEEEFF";
    for (const QString& word : words.mid(5)) {
        if (word.startsWith('#'))
            colour = word;
        else if (!TRY_RESULT(readOption(picture, word)))
            return unknown(word);
    }
    Layer glyph = TRY_RESULT(readLayer({words.value(2), side + 'x' + side, colour}, picture.size));
    std::vector<Picture> states;
    for (const State& state : kStates) {
        Picture drawn = picture;
        drawn.output = state.folder + words[1];
        if (state.ground != nullptr) {
            Layer ground;
            ground.place = QRectF(QPointF(0, 0), picture.size);
            ground.colour = QColor::fromString(QLatin1String(state.ground));
            ground.opacity = state.groundOpacity;
            ground.radius = kButtonRadius;
            drawn.layers.push_back(ground);
        }
        glyph.opacity = state.glyphOpacity;
        drawn.layers.push_back(glyph);
        states.push_back(std::move(drawn));
    }
    return states;
}

base::Result<std::vector<Picture>> readLine(const QStringList& words)
{
    if (words[0] == "button" && words.size() >= 5) return readButton(words);
    if (words[0] != "picture" || words.size() < 3) return unknown(words.join(' '));
    return std::vector{TRY_RESULT(readPicture(words))};
}

} // namespace

base::Result<std::vector<Picture>> readRecipe(const QString& text)
{
    std::vector<Picture> pictures;
    int number = 0;
    for (const QString& line : text.split('\n')) {
        ++number;
        const QStringList words = line.simplified().split(' ', Qt::SkipEmptyParts);
        if (words.isEmpty() || words[0].startsWith('#')) continue;
        auto read = readLine(words);
        if (!read)
            return fail(read.error().code, "line " + std::to_string(number) + ": " + read.error().what);
        std::move(read->begin(), read->end(), std::back_inserter(pictures));
    }
    return pictures;
}

} // namespace svgpng
