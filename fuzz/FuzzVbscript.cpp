// Compiles and runs arbitrary text as a script, bounded in time and memory.

#include "base/TextCodes.h"
#include "script/ScriptControl.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 4096) return 0;
    const std::u16string code =
        base::utf16FromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    script::ScriptControl control;
    control.setTimeout(std::chrono::milliseconds(500));
    control.setStepLimit(20000);
    control.setHeapLimit(std::size_t{32} << 20);
    const auto sink = script::make<script::HostObject>(u"Object");
    sink->method(u"Echo", [&control](script::Arguments arguments) -> script::Result<script::Value> {
        for (const script::Value& argument : arguments) static_cast<void>(control.textOf(argument));
        return script::Value();
    });
    control.addObject(u"WScript", *sink, true);
    static_cast<void>(control.addCode(code));
    static_cast<void>(control.eval(code));
    control.reset();
    return 0;
}
