// The one file that asks FreeType: Qt has letters shaped by their fonts in height only.
#include "flash/render/HintedFont.h"

#include <QByteArray>
#include <QtEndian>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_MODULE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

namespace flash::render
{
namespace
{

// FreeType counts in 64ths of a pixel.
constexpr auto kUnitsPerStep = static_cast<std::int32_t>(1 / (64 * FontFace::kShapedUnit));

/// Into how many lines a curve is cut: as few as the recorded letters show.
/// @param bend how far its control point is from where a line would have it, twice, in 64ths of a pixel
int piecesOf(int bend)
{
    constexpr int kFlat = 32;
    int pieces = 2;
    for (int rest = bend / kFlat; rest > 0; rest /= 4) pieces *= 2;
    return pieces;
}

/// What is needed of a font to draw its letters by their numbers, as a file of its own.
/// @returns nothing when it has no instructions
QByteArray fileOf(const QRawFont& font)
{
    constexpr std::array kTables{"OS/2", "cvt ", "fpgm", "glyf", "head",
                                 "hhea", "hmtx", "loca", "maxp", "prep"};
    constexpr qsizetype kHead = 12, kEntry = 16, kAlign = 4;
    QByteArray directory(kHead, '\0'), body;
    const qsizetype start = kHead + kEntry * static_cast<qsizetype>(kTables.size());
    quint16 count = 0;
    for (const char* tag : kTables) {
        const QByteArray table = font.fontTable(tag);
        if (table.isEmpty()) {
            if (std::strcmp(tag, "OS/2") == 0 || std::strcmp(tag, "cvt ") == 0) continue;
            return {};
        }
        std::array<char, kEntry> entry{};
        std::memcpy(entry.data(), tag, 4);
        qToBigEndian<quint32>(static_cast<quint32>(start + body.size()), entry.data() + 8);
        qToBigEndian<quint32>(static_cast<quint32>(table.size()), entry.data() + 12);
        directory.append(entry.data(), kEntry);
        body.append(table);
        body.append((kAlign - body.size() % kAlign) % kAlign, '\0');
        ++count;
    }
    qToBigEndian<quint32>(0x00010000, directory.data());
    qToBigEndian<quint16>(count, directory.data() + 4);
    directory.resize(start, '\0');
    return directory + body;
}

class OutlineReader
{
public:
    static std::shared_ptr<const swf::Shape> read(FT_Outline& outline)
    {
        OutlineReader reader;
        const FT_Outline_Funcs calls{&moveTo, &lineTo, &quadTo, &cubicTo, 0, 0};
        if (FT_Outline_Decompose(&outline, &calls, &reader) != 0) return nullptr;
        reader.close();
        auto shape = std::make_shared<swf::Shape>();
        FT_BBox box;
        FT_Outline_Get_CBox(&outline, &box);
        const FT_Vector least{box.xMin, box.yMin}, most{box.xMax, box.yMax};
        shape->bounds = {x(&least), x(&most), y(&most), y(&least)};
        shape->edgeBounds = shape->bounds;
        reader.m_layer.nonZeroWinding = true; // contours of one letter may overlap
        reader.m_layer.fills.emplace_back();
        shape->layers.push_back(std::move(reader.m_layer));
        return shape;
    }

private:
    static OutlineReader& self(void* user) { return *static_cast<OutlineReader*>(user); }
    static std::int32_t x(const FT_Vector* at) { return static_cast<std::int32_t>(at->x) * kUnitsPerStep; }
    static std::int32_t y(const FT_Vector* at) { return static_cast<std::int32_t>(-at->y) * kUnitsPerStep; }
    static int moveTo(const FT_Vector* to, void* user)
    {
        self(user).close();
        self(user).m_run = {};
        self(user).m_run.fill1 = 1;
        self(user).m_run.startX = x(to);
        self(user).m_run.startY = y(to);
        return 0;
    }
    static int lineTo(const FT_Vector* to, void* user)
    {
        self(user).m_run.edges.push_back({false, 0, 0, x(to), y(to)});
        return 0;
    }
    static int quadTo(const FT_Vector* control, const FT_Vector* to, void* user)
    {
        // So few pixels show how a curve is cut.
        swf::EdgeRun& run = self(user).m_run;
        const bool isFirst = run.edges.empty();
        const double fromX = isFirst ? run.startX : run.edges.back().anchorX;
        const double fromY = isFirst ? run.startY : run.edges.back().anchorY;
        const double bend =
            std::max(std::abs(fromX - 2.0 * x(control) + x(to)), std::abs(fromY - 2.0 * y(control) + y(to)));
        const int pieces = piecesOf(static_cast<int>(bend) / kUnitsPerStep);
        for (int i = 1; i <= pieces; ++i) {
            const double t = static_cast<double>(i) / pieces, u = 1 - t;
            const auto at = [&](double from, double middle, double last) {
                return static_cast<std::int32_t>(
                    std::lround(u * u * from + 2 * u * t * middle + t * t * last));
            };
            run.edges.push_back({false, 0, 0, at(fromX, x(control), x(to)), at(fromY, y(control), y(to))});
        }
        return 0;
    }
    // TrueType has none.
    static int cubicTo(const FT_Vector*, const FT_Vector*, const FT_Vector* to, void* user)
    {
        return lineTo(to, user);
    }
    void close()
    {
        if (m_run.edges.empty()) return;
        const swf::Edge& last = m_run.edges.back();
        if (last.anchorX != m_run.startX || last.anchorY != m_run.startY)
            m_run.edges.push_back({false, 0, 0, m_run.startX, m_run.startY});
        m_layer.runs.push_back(std::move(m_run));
        m_run = {};
    }

    swf::ShapeLayer m_layer;
    swf::EdgeRun m_run;
};

} // namespace

class HintedFont::Engine
{
public:
    explicit Engine(QByteArray file) : m_file(std::move(file))
    {
        if (FT_Init_FreeType(&m_library) != 0) {
            m_library = nullptr;
            return;
        }
        // The interpreter that heeds what instructions say of widths.
        FT_UInt version = 35;
        FT_Property_Set(m_library, "truetype", "interpreter-version", &version);
        if (FT_New_Memory_Face(m_library, reinterpret_cast<const FT_Byte*>(m_file.constData()),
                               static_cast<FT_Long>(m_file.size()), 0, &m_face) != 0)
            m_face = nullptr;
    }
    ~Engine()
    {
        if (m_library != nullptr) FT_Done_FreeType(m_library); // with the face
    }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    std::optional<FaceGlyph> load(quint32 index, int pixels)
    {
        if (m_face == nullptr || FT_Set_Pixel_Sizes(m_face, 0, static_cast<FT_UInt>(pixels)) != 0) return {};
        if (FT_Load_Glyph(m_face, index, FT_LOAD_NO_BITMAP | FT_LOAD_NO_AUTOHINT) != 0) return {};
        FT_GlyphSlot slot = m_face->glyph;
        if (slot->format != FT_GLYPH_FORMAT_OUTLINE) return {};
        return FaceGlyph{OutlineReader::read(slot->outline),
                         static_cast<double>(slot->advance.x) * kUnitsPerStep};
    }

private:
    QByteArray m_file; // which the face reads
    FT_Library m_library = nullptr;
    FT_Face m_face = nullptr;
};

HintedFont::HintedFont(QRawFont font) : m_font(std::move(font)) {}

HintedFont::~HintedFont() = default;

const FaceGlyph* HintedFont::glyph(quint32 index, int pixels)
{
    if (!std::exchange(m_isRead, true) && m_font.isValid()) {
        if (QByteArray file = fileOf(m_font); !file.isEmpty())
            m_engine = std::make_unique<Engine>(std::move(file));
    }
    if (m_engine == nullptr) return nullptr;
    const auto known = m_glyphs.find({index, pixels});
    if (known != m_glyphs.end()) return &known->second;
    std::optional<FaceGlyph> made = m_engine->load(index, pixels);
    if (!made) return nullptr;
    return &m_glyphs.emplace(std::pair(index, pixels), *std::move(made)).first->second;
}

} // namespace flash::render
