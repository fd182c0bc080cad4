#pragma once

#include "base/TextCodes.h"
#include "flash/avm1/classes/Classes.h"
#include "flash/avm1/interpreter/Vm.h"

#include "Assembler.h"

#include <memory>

namespace flash::avm1::test
{

/// Keeps what scripts trace and what is logged; has one plain object for a main timeline.
class RecordingHost : public NullHost
{
public:
    void trace(std::u16string_view text) override { traced.push_back(base::utf8FromUtf16(text)); }
    void log(std::string_view text) override { logged.emplace_back(text); }
    double timeMs() override { return nowMs; }
    double realTimeMs() override { return realMs += realStepMs; }
    std::vector<std::string> traced, logged;
    double nowMs = 0, realMs = 0, realStepMs = 0;
};

/// A machine with a movie of one version.
class Machine
{
public:
    explicit Machine(int version = 8)
        : vm(host, &classes::installAll), root(vm.heap(), vm.newObject()), m_version(version)
    {
    }

    /// Runs a block and @returns what it traced, lines joined by '|'.
    std::string run(const Assembler& code) { return run(code.bytes()); }
    std::string run(std::vector<std::uint8_t> bytes)
    {
        host.traced.clear();
        auto owner = std::make_shared<std::vector<std::uint8_t>>(std::move(bytes));
        vm.run(owner, swf::ActionBlock{*owner}, m_version, root.get());
        std::string joined;
        for (const std::string& line : host.traced) joined += (joined.empty() ? "" : "|") + line;
        return joined;
    }

    RecordingHost host;
    Vm vm;
    Root<Object> root;

private:
    int m_version;
};

} // namespace flash::avm1::test
