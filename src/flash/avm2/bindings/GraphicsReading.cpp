#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Graphics.h"
#include "flash/avm2/interpreter/Collections.h"
#include "flash/stage/Graphics.h"

#include <algorithm>
#include <limits>
#include <map>

// Graphics.readGraphicsData: what has been drawn as records that draw it again.
namespace flash::avm2
{

namespace
{

constexpr double kTwips = swf::kTwipsPerPixel;
constexpr int kDeepest = 64; // of children within children
constexpr std::size_t kMostRecords = 1U << 18U;

class Reader
{
public:
    explicit Reader(Vm& vm) : m_vm(vm), m_records(vm.heap()), m_pictures(vm.heap()) {}

    void readShape(const swf::Shape& shape, const swf::Matrix& toOwner)
    {
        for (const swf::ShapeLayer& layer : shape.layers) {
            for (std::size_t fill = 1; fill <= layer.fills.size(); ++fill)
                readFill(layer, static_cast<std::uint16_t>(fill), toOwner);
            readLines(layer, toOwner);
        }
    }
    void readObject(DisplayObject& object, const swf::Matrix& toOwner, bool recurses, int depth)
    {
        if (depth > kDeepest || m_records.size() > kMostRecords) return;
        m_vm.check();
        if (object.clip() != nullptr) {
            readShape(*object.clip()->drawing().shape(), toOwner);
        } else if (auto* shape = dynamic_cast<stage::ShapeNode*>(&object.node()); shape != nullptr) {
            if (shape->shape() != nullptr) readShape(*shape->shape(), toOwner);
        }
        if (!recurses) return;
        RootedList<DisplayObject*> children(m_vm.heap(), object.children.begin(), object.children.end());
        for (std::size_t i = 0; i < children.size(); ++i)
            readObject(*children[i], toOwner * children[i]->node().matrix(), true, depth + 1);
    }
    Value take()
    {
        ClassObject* type = m_vm.vectorOf(m_vm.nativeClass("flash.display::IGraphicsData")->instances);
        Root<VectorObject> list(m_vm.heap(), as<VectorObject>(m_vm.construct(Value(type), {})));
        for (std::size_t i = 0; i < m_records.size(); ++i) list->items.push_back((*m_records)[i]);
        return Value(list.get());
    }

private:
    Object& add(std::string_view name)
    {
        Object* made = make(name);
        m_records.push_back(Value(made));
        return *made;
    }
    Object* make(std::string_view name)
    {
        return m_vm.construct(Value(m_vm.nativeClass("flash.display::" + std::string(name))), {}).asObject();
    }
    Value word(std::string_view text) { return Value(m_vm.name(text).string()); }
    static double rgbOf(swf::Rgba color) { return (color.r << 16U) + (color.g << 8U) + color.b; }

    Object* fillRecord(const swf::FillStyle& fill, const swf::Matrix& toOwner)
    {
        using FillKind = swf::FillStyle::Kind;
        if (fill.kind == FillKind::Solid) {
            Object* made = make("GraphicsSolidFill");
            made->setSlot(0, Value(rgbOf(fill.color)));
            made->setSlot(1, Value(fill.color.a / 255.0));
            return made;
        }
        if (fill.kind == FillKind::Bitmap) return bitmapRecord(fill, toOwner);
        Root<Object> made(m_vm.heap(), make("GraphicsGradientFill"));
        Root<Object> colors(m_vm.heap(), m_vm.newArray()), alphas(m_vm.heap(), m_vm.newArray()),
            ratios(m_vm.heap(), m_vm.newArray());
        for (const swf::Gradient::Stop& stop : fill.gradient.stops) {
            static_cast<ArrayObject&>(*colors).push(m_vm, Value(rgbOf(stop.color)));
            static_cast<ArrayObject&>(*alphas).push(m_vm, Value(stop.color.a / 255.0));
            static_cast<ArrayObject&>(*ratios).push(m_vm, Value(static_cast<int>(stop.ratio)));
        }
        using Spread = swf::Gradient::Spread;
        const Spread spread = fill.gradient.spread;
        made->setSlot(0, word(fill.kind == FillKind::LinearGradient ? "linear" : "radial"));
        made->setSlot(1, Value(colors.get()));
        made->setSlot(2, Value(alphas.get()));
        made->setSlot(3, Value(ratios.get()));
        made->setSlot(4, newMatrix(m_vm, toOwner * fill.matrix));
        made->setSlot(5, word(spread == Spread::Reflect  ? "reflect"
                              : spread == Spread::Repeat ? "repeat"
                                                         : "pad"));
        made->setSlot(
            6,
            word(fill.gradient.interpolation == swf::Gradient::Interpolation::Linear ? "linearRGB" : "rgb"));
        made->setSlot(7, Value(fill.gradient.focalPoint));
        return made.get();
    }
    /// The picture is a copy, and the same one wherever it paints: what a script does to it changes no movie.
    Object* bitmapRecord(const swf::FillStyle& fill, const swf::Matrix& toOwner)
    {
        Root<Object> made(m_vm.heap(), make("GraphicsBitmapFill"));
        if (fill.bitmap != nullptr) {
            const auto [known, isNew] = m_places.try_emplace(fill.bitmap.get(), m_pictures.size());
            if (isNew) m_pictures.push_back(newBitmapData(m_vm, std::make_shared<swf::Bitmap>(*fill.bitmap)));
            made->setSlot(0, (*m_pictures)[known->second]);
        }
        const swf::Matrix pixels = fill.matrix * swf::Matrix{1 / kTwips, 0, 0, 1 / kTwips, 0, 0};
        made->setSlot(1, newMatrix(m_vm, toOwner * pixels));
        made->setSlot(2, Value(fill.repeat));
        made->setSlot(3, Value(fill.smooth));
        return made.get();
    }
    void addStroke(const swf::LineStyle* line, const swf::Matrix& toOwner)
    {
        Object& made = add("GraphicsStroke");
        if (line == nullptr) {
            made.setSlot(0, Value(std::numeric_limits<double>::quiet_NaN()));
            return;
        }
        using Cap = swf::LineStyle::Cap;
        using Join = swf::LineStyle::Join;
        made.setSlot(0, Value(line->width / kTwips));
        made.setSlot(1, Value(line->pixelHinting));
        made.setSlot(2, word(line->noHorizontalScale && line->noVerticalScale ? "none"
                             : line->noHorizontalScale                        ? "vertical"
                             : line->noVerticalScale                          ? "horizontal"
                                                                              : "normal"));
        made.setSlot(3, word(line->startCap == Cap::None     ? "none"
                             : line->startCap == Cap::Square ? "square"
                                                             : "round"));
        made.setSlot(4, word(line->join == Join::Bevel   ? "bevel"
                             : line->join == Join::Miter ? "miter"
                                                         : "round"));
        made.setSlot(5, Value(line->miterLimit));
        swf::FillStyle solid;
        solid.color = line->color;
        made.setSlot(6, Value(fillRecord(line->fill ? *line->fill : solid, toOwner)));
    }

    /// One path; it is closed by addPath().
    struct Path {
        explicit Path(Vm& vm) : commands(vm.heap()), data(vm.heap()) {}
        RootedList<Value> commands, data;
        std::optional<swf::Point> pen;
    };
    static void put(Path& path, int command, std::initializer_list<swf::Point> points,
                    const swf::Matrix& toOwner)
    {
        path.commands.push_back(Value(command));
        for (const swf::Point point : points) {
            const swf::Point at = toOwner.map(point);
            path.data.push_back(Value(at.x / kTwips));
            path.data.push_back(Value(at.y / kTwips));
        }
    }
    static void addRun(Path& path, const swf::EdgeRun& run, const swf::Matrix& toOwner)
    {
        constexpr int kMove = 1, kLine = 2, kCurve = 3;
        const swf::Point start{static_cast<double>(run.startX), static_cast<double>(run.startY)};
        if (!path.pen || *path.pen != start) put(path, kMove, {start}, toOwner);
        swf::Point at = start;
        for (const swf::Edge& edge : run.edges) {
            at = {static_cast<double>(edge.anchorX), static_cast<double>(edge.anchorY)};
            const swf::Point control{static_cast<double>(edge.controlX), static_cast<double>(edge.controlY)};
            if (edge.curved)
                put(path, kCurve, {control, at}, toOwner);
            else
                put(path, kLine, {at}, toOwner);
        }
        path.pen = at;
    }
    void addPath(Path& path, bool nonZero)
    {
        if (path.commands.empty()) return;
        Root<Object> made(m_vm.heap(), &add("GraphicsPath"));
        const auto listOf = [&](ClassObject* element, const RootedList<Value>& values) {
            auto* list = as<VectorObject>(m_vm.construct(Value(m_vm.vectorOf(element->instances)), {}));
            list->items.assign(values.begin(), values.end());
            return Value(list);
        };
        made->setSlot(0, listOf(m_vm.classes().integer, path.commands));
        made->setSlot(1, listOf(m_vm.classes().number, path.data));
        made->setSlot(2, word(nonZero ? "nonZero" : "evenOdd"));
        path.commands->clear();
        path.data->clear();
        path.pen.reset();
    }

    /// The runs around a fill, with the lines that belong to them.
    void readFill(const swf::ShapeLayer& layer, std::uint16_t fill, const swf::Matrix& toOwner)
    {
        const auto touches = [&](const swf::EdgeRun& run) { return run.fill0 == fill || run.fill1 == fill; };
        if (m_records.size() > kMostRecords || std::ranges::none_of(layer.runs, touches)) return;
        m_records.push_back(Value(fillRecord(layer.fills[fill - 1U], toOwner)));
        Path path(m_vm);
        std::uint16_t line = 0;
        for (const swf::EdgeRun& run : layer.runs) {
            if (!touches(run) || run.edges.empty()) continue;
            m_vm.check();
            // Between two fills a line is the first one's.
            const bool isOther = run.fill0 != 0 && run.fill1 != 0 && std::min(run.fill0, run.fill1) != fill;
            const std::uint16_t wanted = isOther || run.line > layer.lines.size() ? 0 : run.line;
            if (wanted != line) {
                addPath(path, layer.nonZeroWinding);
                addStroke(wanted != 0 ? &layer.lines[wanted - 1U] : nullptr, toOwner);
                line = wanted;
            }
            addRun(path, run, toOwner);
        }
        addPath(path, layer.nonZeroWinding);
        add("GraphicsEndFill");
        if (line != 0) addStroke(nullptr, toOwner);
    }
    /// The runs that nothing is filled beside.
    void readLines(const swf::ShapeLayer& layer, const swf::Matrix& toOwner)
    {
        Path path(m_vm);
        std::uint16_t line = 0;
        for (const swf::EdgeRun& run : layer.runs) {
            const bool isLine = run.fill0 == 0 && run.fill1 == 0 && run.line != 0 &&
                                run.line <= layer.lines.size() && !run.edges.empty();
            if (!isLine || m_records.size() > kMostRecords) continue;
            m_vm.check();
            if (run.line != line) {
                addPath(path, layer.nonZeroWinding);
                line = run.line;
                addStroke(&layer.lines[line - 1U], toOwner);
            }
            addRun(path, run, toOwner);
        }
        addPath(path, layer.nonZeroWinding);
        if (line != 0) addStroke(nullptr, toOwner);
    }

    Vm& m_vm;
    RootedList<Value> m_records;
    RootedList<Value> m_pictures;
    std::map<const swf::Bitmap*, std::size_t> m_places; ///< in m_pictures
};

} // namespace

Value readGraphicsData(Call& call)
{
    auto& self = graphicsSelf(call);
    const bool recurses = !call.has(0) || call.vm.toBoolean(call.arg(0));
    Reader reader(call.vm);
    if (self.owner != nullptr && self.owner->hasNode()) {
        Root<DisplayObject> keep(call.vm.heap(), self.owner);
        reader.readObject(*self.owner, {}, recurses, 0);
    } else {
        reader.readShape(*self.drawing().shape(), {});
    }
    return reader.take();
}

} // namespace flash::avm2
