#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/NetConnection.h"
#include "flash/avm2/bindings/Player.h"

// Files that a user would choose in a dialog: a movie gets none, as if the dialog had been cancelled.
namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

Value askNobody(Call& call)
{
    auto& self = selfAs<DispatcherObject>(call, "flash.net.FileReference");
    Player::of(call.vm).log("A movie asked for a file; it gets none");
    runLater(call.vm, self,
             [](Vm& vm, Object& object) { fire(vm, static_cast<DispatcherObject&>(object), "cancel"); });
    return true;
}

struct FilesTag {
    static constexpr const char* kClass = "flash.net.FileReferenceList";
};
using FilesObject = FieldsOf<DispatcherObject, 1, FilesTag>; ///< what was chosen; null until it is asked for

Value browseFiles(Call& call)
{
    selfAs<FilesObject>(call, FilesTag::kClass).fields[0] = Value(call.vm.newArray());
    return askNobody(call);
}
Value chosenFiles(Call& call)
{
    const Value list = selfAs<FilesObject>(call, FilesTag::kClass).fields[0];
    return list.isObject() ? list : Value::null();
}
Value save(Call& call)
{
    if (call.arg(0).isNullish()) throwNullParameter(call.vm, "data");
    askNobody(call);
    return {};
}
/// What is known of a chosen file only. @throws 2037
Value unchosen(Call& call)
{
    call.vm.throwError(ErrorClass::Error, 2037,
                       "Functions called in incorrect sequence, or earlier call was unsuccessful.");
}
Value constructFilter(Call& call)
{
    call.self.object()->setSlot(2, Value::null());
    return assignSlots(call);
}

constexpr NativeMember kFile[] = {
    {"browse", Kind::Method, &askNobody, 0, 1},
    {"save", Kind::Method, &save, 1, 2},
    {"load", Kind::Method, &unchosen, 0, 0},
    {"download", Kind::Method, &askNobody, 1, 2},
    {"upload", Kind::Method, &unchosen, 1, 3},
    {"cancel", Kind::Method, &doNothing, 0, 0},
    {"creationDate", Kind::Getter, &unchosen, 0, 0, nullptr, "Date"},
    {"creator", Kind::Getter, &isAlwaysNull, 0, 0, nullptr, "String"},
    {"data", Kind::Getter, &isAlwaysNull},
    {"modificationDate", Kind::Getter, &unchosen, 0, 0, nullptr, "Date"},
    {"name", Kind::Getter, &unchosen, 0, 0, nullptr, "String"},
    {"size", Kind::Getter, &unchosen, 0, 0, nullptr, "Number"},
    {"type", Kind::Getter, &unchosen, 0, 0, nullptr, "String"},
};
constexpr NativeMember kList[] = {
    {"browse", Kind::Method, &browseFiles, 0, 1},
    {"fileList", Kind::Getter, &chosenFiles, 0, 0, nullptr, "Array"},
};

constexpr NativeClass kClasses[] = {
    {.package = "flash.net",
     .name = "FileReference",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .minArguments = 0,
     .maxArguments = 0,
     .members = kFile},
    {.package = "flash.net",
     .name = "FileReferenceList",
     .base = "flash.events::EventDispatcher",
     .flags = NativeClass::Sealed,
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &allocateNative<FilesObject>,
     .members = kList},
    {.package = "flash.net",
     .name = "FileFilter",
     .base = {},
     .flags = NativeClass::Sealed | NativeClass::Final,
     .constructor = &constructFilter,
     .minArguments = 2,
     .maxArguments = 3,
     .slots = "description:String extension:String macType:String"},
};

} // namespace

NativeLibrary fileLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
