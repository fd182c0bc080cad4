// The file that asks Qt for fonts. What comes out are outlines like those of a movie's own fonts.
#include "flash/render/FontFace.h"
#include "flash/render/HintedFont.h"

#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainterPath>
#include <QRawFont>
#include <QString>
#include <QStringList>
#include <QTextLayout>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <tuple>
#include <unordered_map>

namespace flash::render
{
namespace
{

// Outlines are taken at one pixel to most fonts' own unit, and kept in quarters of it.
constexpr int kPixelSize = 2048;
constexpr int kUnitsPerPixel = 4;
constexpr double kUnitsPerEm = kPixelSize * kUnitsPerPixel;

// What a name means when no font of that name is installed: the first family that is. Metrics are in parts of
// the em, of the font that movies were made with.
struct Kind {
    std::array<const char*, 5> families;
    double ascent, descent;
};
constexpr Kind kSans{
    {"Arial", "Liberation Sans", "Arimo", "DejaVu Sans Condensed", "DejaVu Sans"}, 0.905, 0.212};
constexpr Kind kSerif{
    {"Times New Roman", "Liberation Serif", "Tinos", "DejaVu Serif Condensed", "DejaVu Serif"}, 0.891, 0.216};
constexpr Kind kTypewriter{
    {"Courier New", "Liberation Mono", "Cousine", "DejaVu Sans Mono", "DejaVu Sans Mono"}, 0.833, 0.300};

const Kind& kindOf(const QString& name)
{
    const QString lower = name.toLower();
    const auto has = [&](const char* part) { return lower.contains(QLatin1String(part)); };
    if (has("typewriter") || has("courier") || has("mono") || has("console") || has("consolas"))
        return kTypewriter;
    if (has("sans")) return kSans;
    if (has("serif") || has("times") || has("georgia") || has("garamond") || has("palatino") ||
        has("roman") || has("bodoni") || has("century"))
        return kSerif;
    return kSans;
}

// Whether the metrics of the kind are the named font's own.
bool isKindItself(const QString& name, const Kind& kind)
{
    return name.startsWith(u'_') || name.compare(QLatin1String(kind.families[0]), Qt::CaseInsensitive) == 0;
}

class OutlineMaker
{
public:
    void add(const QPainterPath& path)
    {
        for (int i = 0; i < path.elementCount(); ++i) {
            const QPainterPath::Element e = path.elementAt(i);
            switch (e.type) {
            case QPainterPath::MoveToElement:
                close();
                begin(e);
                break;
            case QPainterPath::LineToElement: lineTo(e); break;
            case QPainterPath::CurveToElement:
                cubicTo(e, path.elementAt(i + 1), path.elementAt(i + 2));
                i += 2;
                break;
            case QPainterPath::CurveToDataElement: break;
            }
        }
        close();
    }

    std::shared_ptr<const swf::Shape> finish()
    {
        auto shape = std::make_shared<swf::Shape>();
        for (const swf::EdgeRun& run : m_layer.runs)
            for (const swf::Edge& edge : run.edges) {
                shape->bounds =
                    unite(shape->bounds, {edge.anchorX, edge.anchorX, edge.anchorY, edge.anchorY});
                if (edge.curved)
                    shape->bounds =
                        unite(shape->bounds, {edge.controlX, edge.controlX, edge.controlY, edge.controlY});
            }
        shape->edgeBounds = shape->bounds;
        // Contours of one glyph may overlap.
        m_layer.nonZeroWinding = true;
        m_layer.fills.emplace_back();
        shape->layers.push_back(std::move(m_layer));
        return shape;
    }

private:
    static int toUnits(double pixels) { return static_cast<int>(std::lround(pixels * kUnitsPerPixel)); }

    void begin(QPointF to)
    {
        m_run = {};
        m_run.fill1 = 1;
        m_run.startX = toUnits(to.x());
        m_run.startY = toUnits(to.y());
        m_start = m_at = to;
    }
    void lineTo(QPointF to)
    {
        m_run.edges.push_back({false, 0, 0, toUnits(to.x()), toUnits(to.y())});
        m_at = to;
    }
    void quadTo(QPointF control, QPointF to)
    {
        m_run.edges.push_back(
            {true, toUnits(control.x()), toUnits(control.y()), toUnits(to.x()), toUnits(to.y())});
        m_at = to;
    }
    // Most fonts' curves are quadratic; as cubics they give back the same control point from either end.
    void cubicTo(QPointF c1, QPointF c2, QPointF to, int depth = 0)
    {
        const QPointF fromStart = (3 * c1 - m_at) / 2, fromEnd = (3 * c2 - to) / 2;
        const QPointF apart = fromStart - fromEnd;
        constexpr int kMaxHalvings = 4;
        if (std::hypot(apart.x(), apart.y()) < 4 || depth == kMaxHalvings) {
            quadTo((fromStart + fromEnd) / 2, to);
            return;
        }
        const QPointF a = (m_at + c1) / 2, b = (c1 + c2) / 2, c = (c2 + to) / 2;
        const QPointF ab = (a + b) / 2, bc = (b + c) / 2;
        cubicTo(a, ab, (ab + bc) / 2, depth + 1);
        cubicTo(bc, c, to, depth + 1);
    }
    void close()
    {
        if (m_run.edges.empty()) return;
        if (m_at != m_start) lineTo(m_start);
        m_layer.runs.push_back(std::move(m_run));
        m_run = {};
    }

    swf::ShapeLayer m_layer;
    swf::EdgeRun m_run;
    QPointF m_start, m_at;
};

QFont fontOf(const QString& family, bool bold, bool italic)
{
    QFont font(family);
    font.setPixelSize(kPixelSize);
    font.setBold(bold);
    font.setItalic(italic);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setKerning(false);
    return font;
}

QRawFont rawFont(const QString& family, bool bold, bool italic)
{
    return QRawFont::fromFont(fontOf(family, bold, italic));
}

class DeviceFace final : public FontFace
{
public:
    DeviceFace(QFont asked, QRawFont substitute, Metrics metrics)
        : m_asked(std::move(asked)), m_font(QRawFont::fromFont(m_asked)), m_substitute(std::move(substitute)),
          m_metrics(metrics), m_hinted(isAsAsked() ? m_font : QRawFont())
    {
    }
    [[nodiscard]] Metrics metrics() const override { return m_metrics; }
    // As the tables OS/2 and post state them, in the font's own units and upwards.
    [[nodiscard]] Extras extras() const override
    {
        Extras extras = FontFace::extras();
        const double own = m_font.unitsPerEm();
        if (!(own > 0)) return extras;
        const QByteArray os2 = m_font.fontTable("OS/2"), post = m_font.fontTable("post");
        const auto number = [&](const QByteArray& table, qsizetype at) {
            return static_cast<double>(qFromBigEndian<qint16>(table.constData() + at));
        };
        const double toUnits = kUnitsPerEm / own;
        constexpr qsizetype kOs2Needed = 30, kPostNeeded = 12;
        if (os2.size() >= kOs2Needed && number(os2, 12) > 0 && number(os2, 20) > 0) {
            extras.subscriptScale = number(os2, 12) / own;
            extras.subscript = number(os2, 16) * toUnits;
            extras.superscriptScale = number(os2, 20) / own;
            extras.superscript = -number(os2, 24) * toUnits;
            extras.strikeThickness = number(os2, 26) * toUnits;
            extras.strike = -number(os2, 28) * toUnits + extras.strikeThickness / 2;
        }
        if (post.size() >= kPostNeeded && number(post, 10) > 0) {
            extras.underlineThickness = number(post, 10) * toUnits;
            extras.underline = -number(post, 8) * toUnits;
        }
        return extras;
    }
    [[nodiscard]] const FaceGlyph* glyph(char32_t character) const override
    {
        const auto known = m_glyphs.find(character);
        if (known != m_glyphs.end()) return &known->second;
        for (const QRawFont* font : {&m_font, &m_substitute})
            if (font->isValid() && font->supportsCharacter(static_cast<uint>(character)))
                return &m_glyphs.emplace(character, load(*font, character)).first->second;
        if (std::optional<FaceGlyph> other = fromAnyFont(character))
            return &m_glyphs.emplace(character, *std::move(other)).first->second;
        // The box that stands for a missing character.
        return &m_glyphs.emplace(character, fromIndex(m_font, 0)).first->second;
    }
    [[nodiscard]] double kerning(char32_t, char32_t) const override { return 0; }
    [[nodiscard]] bool standsOnPixels() const override { return true; }
    [[nodiscard]] const FaceGlyph* shapedAt(char32_t character, int pixels) const override
    {
        if (!m_font.supportsCharacter(static_cast<uint>(character))) return nullptr;
        const auto indexes = m_font.glyphIndexesForString(QString::fromUcs4(&character, 1));
        return indexes.isEmpty() ? nullptr : m_hinted.glyph(indexes[0], pixels);
    }
    [[nodiscard]] bool hasOwn(char32_t character) const override
    {
        return m_font.supportsCharacter(static_cast<uint>(character));
    }

private:
    // A font that has no bold or slanted letters has them made, and its instructions know nothing of that.
    [[nodiscard]] bool isAsAsked() const
    {
        return (!m_asked.bold() || m_font.weight() >= QFont::DemiBold) &&
               (!m_asked.italic() || m_font.style() != QFont::StyleNormal);
    }
    static FaceGlyph load(const QRawFont& font, char32_t character)
    {
        const QString text = QString::fromUcs4(&character, 1);
        const auto indexes = font.glyphIndexesForString(text);
        return indexes.isEmpty() ? FaceGlyph{} : fromIndex(font, indexes[0]);
    }
    // Of whichever of the machine's fonts the system takes for such a character.
    [[nodiscard]] std::optional<FaceGlyph> fromAnyFont(char32_t character) const
    {
        QTextLayout layout(QString::fromUcs4(&character, 1), m_asked);
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        for (const QGlyphRun& run : layout.glyphRuns()) {
            const auto indexes = run.glyphIndexes();
            if (indexes.isEmpty() || indexes[0] == 0) continue;
            QRawFont font = run.rawFont();
            font.setPixelSize(kPixelSize);
            return fromIndex(font, indexes[0]);
        }
        return {};
    }
    static FaceGlyph fromIndex(const QRawFont& font, quint32 index)
    {
        OutlineMaker maker;
        maker.add(font.pathForGlyph(index));
        const auto advances = font.advancesForGlyphIndexes({index}, QRawFont::UseDesignMetrics);
        const double advance = advances.isEmpty() ? 0 : advances[0].x() * kUnitsPerPixel;
        return {maker.finish(), advance};
    }

    QFont m_asked;
    QRawFont m_font, m_substitute;
    Metrics m_metrics;
    mutable HintedFont m_hinted;
    mutable std::unordered_map<char32_t, FaceGlyph> m_glyphs; ///< filled on demand
};

} // namespace

class DeviceFonts::Impl
{
public:
    FontFacePtr face(std::string_view name, bool bold, bool italic)
    {
        const auto key = std::tuple(std::string(name), bold, italic);
        const auto known = m_faces.find(key);
        if (known != m_faces.end()) return known->second;
        // Without an application Qt would end the process; later there may be one.
        if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr) return nullptr;
        FontFacePtr face =
            load(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())), bold, italic);
        m_faces.emplace(key, face);
        return face;
    }

private:
    static FontFacePtr load(const QString& names, bool bold, bool italic)
    {
        QString family, name = names.section(u',', 0, 0).trimmed();
        for (const QString& candidate : names.split(u',', Qt::SkipEmptyParts))
            if (family.isEmpty() && QFontDatabase::hasFamily(candidate.trimmed()))
                family = name = candidate.trimmed();
        // The same letters went on under another name.
        constexpr QLatin1String kOldName("Bitstream Vera "), kNewName("DejaVu ");
        if (family.isEmpty() && name.startsWith(kOldName, Qt::CaseInsensitive)) {
            const QString renamed = kNewName + name.mid(kOldName.size());
            if (QFontDatabase::hasFamily(renamed)) family = renamed;
        }
        const Kind& kind = kindOf(name);
        for (const char* candidate : kind.families)
            if (family.isEmpty() && QFontDatabase::hasFamily(QLatin1String(candidate)))
                family = QLatin1String(candidate);
        const QRawFont font = rawFont(family, bold, italic);
        if (!font.isValid()) return nullptr;
        FontFace::Metrics metrics{kUnitsPerEm, font.ascent() * kUnitsPerPixel,
                                  font.descent() * kUnitsPerPixel, 0};
        if (isKindItself(name, kind)) {
            metrics.ascent = kind.ascent * kUnitsPerEm;
            metrics.descent = kind.descent * kUnitsPerEm;
        }
        return std::make_shared<DeviceFace>(fontOf(family, bold, italic),
                                            rawFont(QStringLiteral("DejaVu Sans"), bold, italic), metrics);
    }

    std::map<std::tuple<std::string, bool, bool>, FontFacePtr> m_faces;
};

DeviceFonts::DeviceFonts() : m_impl(std::make_unique<Impl>()) {}
DeviceFonts::~DeviceFonts() = default;

bool DeviceFonts::has(std::string_view name)
{
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr) return false;
    const QString names = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    const QStringList all = names.split(u',', Qt::SkipEmptyParts);
    return names.startsWith(u'_') || std::ranges::any_of(all, [](const QString& one) {
               return QFontDatabase::hasFamily(one.trimmed());
           });
}

FontFacePtr DeviceFonts::face(std::string_view name, bool bold, bool italic)
{
    return m_impl->face(name, bold, italic);
}

} // namespace flash::render
