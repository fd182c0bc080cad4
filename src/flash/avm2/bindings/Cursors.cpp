#include "flash/avm2/bindings/Cursors.h"

#include "flash/avm2/bindings/BitmapData.h"
#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Input.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/interpreter/Collections.h"

#include <algorithm>
#include <cmath>
#include <optional>

// flash.ui.Mouse: which pointer is seen, of the system's or of the movie's own.
namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

bool Cursors::add(const std::u16string& name, Made made)
{
    std::size_t count = made.pictures.size();
    for (const auto& [known, other] : m_made) count += known == name ? 0 : other.pictures.size();
    if (count > kMostPictures) return false;
    m_made[name] = std::move(made);
    return true;
}

void Cursors::remove(const std::u16string& name)
{
    m_made.erase(name);
    if (m_chosen == name) m_chosen = u"auto";
}

stage::CursorPicturePtr Cursors::picture(double nowMs) const
{
    const auto found = m_made.find(m_chosen);
    if (found == m_made.end()) return nullptr;
    const Made& made = found->second;
    constexpr double kSecond = 1000;
    const double turn = std::floor(nowMs * made.perSecond / kSecond);
    const auto count = static_cast<double>(made.pictures.size());
    const double index = made.perSecond > 0 && std::isfinite(turn) ? std::fmod(turn, count) : 0;
    return made.pictures[static_cast<std::size_t>(std::max(index, 0.0))];
}

namespace
{

struct CursorName {
    std::u16string_view name;
    std::optional<stage::Cursor> cursor;
};
constexpr CursorName kCursorNames[] = {{u"auto", {}},
                                       {u"arrow", stage::Cursor::Arrow},
                                       {u"button", stage::Cursor::Hand},
                                       {u"hand", stage::Cursor::Hand},
                                       {u"ibeam", stage::Cursor::Text}};

Value hideMouse(Call& call)
{
    Player::of(call.vm).stage().pointer().setVisible(false);
    return {};
}
Value showMouse(Call& call)
{
    Player::of(call.vm).stage().pointer().setVisible(true);
    return {};
}
Value cursor(Call& call) { return Value(call.vm.string(Player::of(call.vm).cursors().chosen())); }
Value setCursor(Call& call)
{
    const std::u16string name = textArg(call, 0, "cursor");
    Player& player = Player::of(call.vm);
    const auto* known = std::ranges::find(kCursorNames, name, &CursorName::name);
    const bool isSystems = known != std::end(kCursorNames);
    if (!isSystems && !player.cursors().has(name)) throwNotAccepted(call.vm, "cursor");
    player.cursors().choose(name);
    // Where a picture cannot be shown there is an arrow.
    player.input().setCursor(isSystems ? known->cursor : stage::Cursor::Arrow);
    return {};
}

// ---- pointers of the movie's own ----

struct DataTag {
    static constexpr const char* kClass = "flash.ui.MouseCursorData";
};
enum DataField : std::uint8_t { Data, HotSpot, FrameRate, kDataFields };
using DataObject = FieldsOf<Object, kDataFields, DataTag>;

Value constructData(Call& call)
{
    auto& made = selfAs<DataObject>(call, DataTag::kClass);
    made.fields[Data] = Value::null();
    made.fields[HotSpot] = newPoint(call.vm, 0, 0);
    made.fields[FrameRate] = 0;
    return {};
}
Value setData(Call& call)
{
    Vm& vm = call.vm;
    ClassObject* list = vm.vectorOf(vm.nativeClass("flash.display::BitmapData")->instances);
    const Value given = vm.coerce(call.arg(0), list->instances);
    selfAs<DataObject>(call, DataTag::kClass).fields[Data] = given;
    return {};
}
Value setHotSpot(Call& call)
{
    const Value given(objectArg(call, 0, "flash.geom::Point"));
    if (given.isNull()) throwNullParameter(call.vm, "hotSpot");
    selfAs<DataObject>(call, DataTag::kClass).fields[HotSpot] = given;
    return {};
}

[[noreturn]] void throwInvalid(Vm& vm)
{
    vm.throwError(ErrorClass::Argument, 2004, "One of the parameters is invalid.");
}

stage::CursorPicturePtr pictureOf(Vm& vm, const swf::Bitmap& bitmap, double hotX, double hotY)
{
    constexpr int kMost = stage::CursorPicture::kMostSide;
    if (bitmap.width < 1 || bitmap.height < 1 || bitmap.width > kMost || bitmap.height > kMost)
        throwInvalid(vm);
    const auto within = [](double place, int length) {
        return std::isnan(place) ? 0 : static_cast<int>(std::clamp(place, 0.0, length - 1.0));
    };
    auto made = std::make_shared<stage::CursorPicture>();
    made->width = bitmap.width;
    made->height = bitmap.height;
    made->hotX = within(hotX, bitmap.width);
    made->hotY = within(hotY, bitmap.height);
    made->pixels = bitmap.pixels;
    return made;
}

Value registerCursor(Call& call)
{
    Vm& vm = call.vm;
    const std::u16string name = textArg(call, 0, "name");
    if (call.arg(1).isNullish()) throwNullParameter(vm, "cursor");
    auto* data = as<DataObject>(Value(objectArg(call, 1, "flash.ui::MouseCursorData")));
    if (data == nullptr) throwInvalid(vm);
    const Value spot = data->fields[HotSpot];
    const double x = vm.toNumber(vm.getPublic(spot, "x")), y = vm.toNumber(vm.getPublic(spot, "y"));
    Cursors::Made made;
    made.perSecond = vm.toNumber(data->fields[FrameRate]);
    const auto* list = as<VectorObject>(data->fields[Data]);
    if (list == nullptr) throwNullParameter(vm, "data");
    if (list->items.empty() || list->items.size() > Cursors::kMostPictures) throwInvalid(vm);
    for (const Value item : list->items) {
        const auto* bitmap = as<BitmapDataObject>(item);
        if (bitmap == nullptr) throwInvalid(vm);
        made.pictures.push_back(pictureOf(vm, *picture(vm, *bitmap), x, y));
    }
    if (!Player::of(vm).cursors().add(name, std::move(made))) throwInvalid(vm);
    return {};
}
Value unregisterCursor(Call& call)
{
    const std::u16string name = textArg(call, 0, "name");
    Player& player = Player::of(call.vm);
    const bool wasChosen = player.cursors().has(name) && player.cursors().chosen() == name;
    player.cursors().remove(name);
    if (wasChosen) player.input().setCursor({});
    return {};
}

constexpr NativeMember kMouse[] = {
    {"hide", Kind::Static, &hideMouse, 0, 0},
    {"show", Kind::Static, &showMouse, 0, 0},
    {"cursor", Kind::StaticGetter, &cursor, 0, 0, &setCursor, "String"},
    {"supportsCursor", Kind::StaticGetter, &isAlwaysTrue, 0, 0, nullptr, "Boolean"},
    {"supportsNativeCursor", Kind::StaticGetter, &isAlwaysTrue, 0, 0, nullptr, "Boolean"},
    {"registerCursor", Kind::Static, &registerCursor, 2, 2},
    {"unregisterCursor", Kind::Static, &unregisterCursor, 1, 1},
};
constexpr NativeMember kData[] = {
    {"data", Kind::Getter, &getField<DataObject, Data>, 0, 0, &setData,
     "__AS3__.vec::Vector.<flash.display::BitmapData>"},
    {"hotSpot", Kind::Getter, &getField<DataObject, HotSpot>, 0, 0, &setHotSpot, "flash.geom::Point"},
    {"frameRate", Kind::Getter, &getField<DataObject, FrameRate>, 0, 0,
     &setField<DataObject, FrameRate, FieldType::Number>, "Number"},
};
constexpr NativeConstant kCursors[] = {{"ARROW", 0, "arrow"},
                                       {"AUTO", 0, "auto"},
                                       {"BUTTON", 0, "button"},
                                       {"HAND", 0, "hand"},
                                       {"IBEAM", 0, "ibeam"}};

constexpr NativeClass kClasses[] = {
    staticsOf("flash.ui", "Mouse", kMouse),
    constantsOf("flash.ui", "MouseCursor", kCursors),
    {.package = "flash.ui",
     .name = "MouseCursorData",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &constructData,
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &allocateNative<DataObject>,
     .members = kData},
};

} // namespace

stage::CursorPicturePtr Player::cursorPicture() const
{
    if (m_stage == nullptr || !m_stage->pointer().isVisible()) return nullptr;
    return m_cursors.picture(m_stage->nowMs());
}

NativeLibrary cursorLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
