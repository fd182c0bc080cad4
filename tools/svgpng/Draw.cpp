#include "svgpng/Recipe.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

namespace svgpng
{
namespace
{

using base::ErrorCode;
using base::fail;

base::Result<QString> find(const QString& name, const QStringList& folders)
{
    for (const QString& folder : folders) {
        const QString path = QDir(folder).filePath(name);
        if (QFileInfo(path).isFile()) return path;
    }
    return fail(ErrorCode::NotFound, name.toStdString() + ": no such drawing");
}

/// The layer alone, transparent around it.
base::Result<QImage> drawn(const Layer& layer, QSize canvas, int scale, const QStringList& folders,
                           QStringList& used)
{
    QImage image(canvas * scale, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    if (layer.svg.isEmpty()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(layer.colour);
        painter.drawRoundedRect(layer.place, layer.radius, layer.radius);
        return image;
    }
    const QString path = TRY_RESULT(find(layer.svg, folders));
    if (!used.contains(path)) used += path;
    QSvgRenderer renderer(path);
    if (!renderer.isValid()) return fail(ErrorCode::Malformed, path.toStdString() + ": not a drawing");
    renderer.render(&painter, layer.place);
    painter.end();
    if (layer.colour.isValid()) {
        QPainter tint(&image);
        tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
        tint.fillRect(image.rect(), layer.colour);
    }
    return layer.mirror ? image.mirrored(true, false) : image;
}

/// Makes every pixel opaque or of the key colour. What is more than half there stays, in its full colour.
void applyKey(QImage& image, const QColor& key)
{
    constexpr int kHalf = 128;
    image.convertTo(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* pixels = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb colour = pixels[x] | 0xFF000000U;
            // A part of the drawing that happens to have the key's colour is not cut out.
            const QRgb kept = colour == key.rgb() ? colour ^ 1U : colour;
            pixels[x] = qAlpha(pixels[x]) >= kHalf ? kept : key.rgb();
        }
    }
    image.convertTo(QImage::Format_RGB32);
}

} // namespace

base::Result<void> draw(const Picture& picture, const QString& outputFolder, const QStringList& folders,
                        QStringList& used)
{
    for (const int scale : picture.scales) {
        QImage image(picture.size * scale, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        for (const Layer& layer : picture.layers) {
            const QImage above = TRY_RESULT(drawn(layer, picture.size, scale, folders, used));
            QPainter painter(&image);
            painter.setOpacity(layer.opacity);
            painter.drawImage(0, 0, above);
        }
        if (picture.key.isValid()) applyKey(image, picture.key);
        const QFileInfo target(QDir(outputFolder).filePath(picture.output));
        const QString mark = scale == 1 ? QString() : QString("@%1x").arg(scale);
        const QString path = target.path() + '/' + target.completeBaseName() + mark + '.' + target.suffix();
        if (!QDir().mkpath(target.path()) || !image.save(path))
            return fail(ErrorCode::IoFailure, path.toStdString() + ": cannot be written");
    }
    return {};
}

} // namespace svgpng
