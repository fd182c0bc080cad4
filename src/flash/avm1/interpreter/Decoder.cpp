#include "base/TextCodes.h"
#include "flash/avm1/interpreter/Actions.h"
#include "flash/avm1/interpreter/Code.h"
#include "flash/avm1/interpreter/Vm.h"

#include <algorithm>

namespace flash::avm1
{

namespace
{

enum PushType : std::uint8_t {
    PushString,
    PushFloat,
    PushNull,
    PushUndefined,
    PushRegisterNumber,
    PushBoolean,
    PushDouble,
    PushInteger,
    PushConstant8,
    PushConstant16
};

using swf::ActionPayload;
using swf::kFirstLongAction;

constexpr std::uint8_t kEnd = static_cast<std::uint8_t>(ActionCode::End);

} // namespace

/// Turns the bytes of one body into instructions. Decodes from the start to the end, then from each jump
/// target that lies inside of another action, until the two readings meet: code made to confuse does that.
class Decoder
{
public:
    Decoder(Code& code, Vm& vm, Body& body) : m_code(code), m_vm(vm), m_body(body)
    {
        m_body.indexAt.assign(m_body.end - m_body.start + 1, -1);
        m_isRegionEnd.assign(m_body.end - m_body.start + 1, false);
        decodeFrom(m_body.start);
        while (!m_targets.empty()) {
            const std::uint32_t target = m_targets.back();
            m_targets.pop_back();
            if (m_body.indexAt[target - m_body.start] < 0) decodeFrom(target);
        }
        for (const auto& [instruction, target] : m_jumps) {
            m_body.instructions[instruction].b = m_body.instructionAt(target);
        }
    }

private:
    void decodeFrom(std::uint32_t offset);
    std::uint32_t decodeOne(std::uint32_t offset);
    void payload(std::uint8_t code, base::Bytes bytes, std::uint32_t& next);
    void push(base::ByteReader reader);
    void functionHead(base::ByteReader reader, std::uint8_t code, std::uint32_t& next);
    void tryHead(base::ByteReader reader, std::uint32_t next);
    void constantPool(base::ByteReader reader);
    void emit(std::uint8_t op, std::uint16_t a = 0, std::uint32_t b = 0)
    {
        m_body.instructions.push_back({op, kActionByOp[op].hot, a, b});
        m_body.needsActivation |= kActionByOp[op].needsActivation;
        m_body.offsets.push_back(m_offset);
    }
    void emit(ActionCode code, std::uint16_t a = 0, std::uint32_t b = 0)
    {
        emit(static_cast<std::uint8_t>(code), a, b);
    }
    void emitJump(std::uint8_t op, std::uint16_t a, std::int64_t target)
    {
        m_jumps.emplace_back(m_body.instructions.size(), target);
        if (target >= m_body.start && target < m_body.end)
            m_targets.push_back(static_cast<std::uint32_t>(target));
        emit(op, a);
    }
    std::uint32_t literal(Value value)
    {
        m_code.m_literals.push_back(value);
        return static_cast<std::uint32_t>(m_code.m_literals.size() - 1);
    }
    std::uint32_t cache() { return m_code.addCache(); }
    Name text(base::ByteReader& reader);
    std::int64_t skipActions(std::uint32_t from, int count) const;

    Code& m_code;
    Vm& m_vm;
    Body& m_body;
    std::uint32_t m_offset = 0;                                // of the action being decoded
    std::vector<std::uint32_t> m_targets;                      // still to be decoded, maybe
    std::vector<std::pair<std::size_t, std::int64_t>> m_jumps; // instruction, byte offset it goes to
    std::vector<bool> m_isRegionEnd;                           // by byte offset from the start
};

std::uint32_t Body::instructionAt(std::int64_t offset) const
{
    if (offset >= start && offset <= end) {
        const std::int32_t index = indexAt[static_cast<std::size_t>(offset - start)];
        if (index >= 0) return static_cast<std::uint32_t>(index);
    }
    return indexAt[end - start] >= 0 ? static_cast<std::uint32_t>(indexAt[end - start])
                                     : static_cast<std::uint32_t>(instructions.size() - 1);
}

void Decoder::decodeFrom(std::uint32_t offset)
{
    while (true) {
        m_offset = offset;
        std::int32_t& index = m_body.indexAt[offset - m_body.start];
        if (index >= 0) {
            // This reading has met an earlier one.
            emit(ActionCode::Jump, 0, static_cast<std::uint32_t>(index));
            return;
        }
        index = static_cast<std::int32_t>(m_body.instructions.size());
        if (m_isRegionEnd[offset - m_body.start]) emit(kRegionEnd, 0, offset);
        if (offset >= m_body.end) {
            emit(kEnd);
            return;
        }
        offset = decodeOne(offset);
    }
}

std::uint32_t Decoder::decodeOne(std::uint32_t offset)
{
    const base::Bytes bytes = m_code.m_bytes;
    const std::uint8_t code = bytes[offset];
    std::uint32_t next = offset + 1;
    if (code == 0) {
        emit(kEnd);
        return next;
    }
    if (code == kPushLiteral || code == kPushConstant || code == kPushRegister || code == kRegionEnd) {
        // In a file these codes mean nothing.
        emit(kNothing);
        return next;
    }
    if (code < kFirstLongAction) {
        emit(code, 0, kActionByOp[code].cached ? cache() : 0);
        return next;
    }
    if (m_body.end - next < 2) {
        emit(kEnd);
        return m_body.end;
    }
    const std::uint32_t length = bytes[next] | bytes[next + 1] << 8;
    next += 2;
    // A length beyond the end means what is there.
    const std::uint32_t present = std::min(length, m_body.end - next);
    const base::Bytes body = bytes.subspan(next, present);
    next += present;
    payload(code, body, next);
    return next;
}

void Decoder::payload(std::uint8_t code, base::Bytes bytes, std::uint32_t& next)
{
    base::ByteReader reader(bytes);
    const auto byte = [&] { return reader.u8().value_or(0); };
    const auto word = [&] { return reader.u16().value_or(0); };
    switch (swf::kActionCodeByNumber[code].payload) {
    case ActionPayload::None: emit(code); break;
    case ActionPayload::Frame: emit(code, word()); break;
    case ActionPayload::Register:
    case ActionPayload::Flags: emit(code, byte()); break;
    case ActionPayload::UrlAndWindow: {
        const std::uint32_t url = literal(Value(text(reader).string()));
        literal(Value(text(reader).string()));
        emit(code, 0, url);
        break;
    }
    case ActionPayload::ConstantPool: constantPool(reader); break;
    case ActionPayload::FrameAndSkip: {
        const std::uint16_t frame = word();
        emitJump(code, frame, skipActions(next, byte()));
        break;
    }
    case ActionPayload::Text: emit(code, 0, literal(Value(text(reader).string()))); break;
    case ActionPayload::Skip: emitJump(code, 0, skipActions(next, byte())); break;
    case ActionPayload::Function:
    case ActionPayload::Function2: functionHead(reader, code, next); break;
    case ActionPayload::Try: tryHead(reader, next); break;
    case ActionPayload::Region: {
        const std::uint32_t regionEnd = std::min<std::uint32_t>(next + word(), m_body.end);
        m_isRegionEnd[regionEnd - m_body.start] = true;
        emit(code, 0, regionEnd);
        break;
    }
    case ActionPayload::Push: push(reader); break;
    case ActionPayload::Branch:
        emitJump(code, 0, std::int64_t{next} + static_cast<std::int16_t>(word()));
        break;
    case ActionPayload::FrameFlags: {
        constexpr std::uint8_t kHasBias = 2;
        const std::uint8_t flags = byte();
        emit(code, flags, (flags & kHasBias) != 0 ? word() : 0U);
        break;
    }
    }
}

void Decoder::push(base::ByteReader reader)
{
    while (true) {
        const auto type = reader.u8();
        if (!type) break;
        switch (*type) {
        case PushString: emit(kPushLiteral, 0, literal(Value(text(reader).string()))); break;
        case PushFloat: {
            const auto value = reader.f32();
            if (!value) return;
            emit(kPushLiteral, 0, literal(Value(static_cast<double>(*value))));
            break;
        }
        case PushNull: emit(kPushLiteral, 0, literal(Value::null())); break;
        case PushUndefined: emit(kPushLiteral, 0, literal(Value::undefined())); break;
        case PushRegisterNumber: emit(kPushRegister, 0, reader.u8().value_or(0)); break;
        case PushBoolean: emit(kPushLiteral, 0, literal(Value(reader.u8().value_or(0) != 0))); break;
        case PushDouble: {
            // The two halves are little-endian each, the upper one comes first.
            const auto upper = reader.u32();
            const auto lower = reader.u32();
            if (!upper || !lower) return;
            emit(kPushLiteral, 0,
                 literal(Value(std::bit_cast<double>(std::uint64_t{*upper} << 32 | *lower))));
            break;
        }
        case PushInteger: {
            const auto value = reader.i32();
            if (!value) return;
            emit(kPushLiteral, 0, literal(Value(*value)));
            break;
        }
        case PushConstant8: emit(kPushConstant, 0, reader.u8().value_or(0)); break;
        case PushConstant16: emit(kPushConstant, 0, reader.u16().value_or(0)); break;
        default: break; // a type that means nothing has no value either
        }
    }
}

void Decoder::functionHead(base::ByteReader reader, std::uint8_t code, std::uint32_t& next)
{
    const bool second = swf::kActionCodeByNumber[code].payload == ActionPayload::Function2;
    auto function = std::make_unique<FunctionCode>();
    FunctionHead& head = function->head;
    head.name = text(reader);
    const std::uint16_t count = reader.u16().value_or(0);
    if (second) {
        head.hasRegisters = true;
        head.registerCount = reader.u8().value_or(0);
        head.flags = reader.u16().value_or(0);
    }
    for (std::uint16_t i = 0; i < count && !reader.atEnd(); ++i) {
        FunctionHead::Parameter parameter;
        if (second) parameter.registerNumber = reader.u8().value_or(0);
        parameter.name = text(reader);
        head.parameters.push_back(parameter);
    }
    const std::uint32_t length = reader.u16().value_or(0);
    head.bodyStart = next;
    head.bodyEnd = std::min(next + length, m_body.end);
    next = head.bodyEnd;
    m_code.m_functions.push_back(std::move(function));
    emit(code, 0, static_cast<std::uint32_t>(m_code.m_functions.size() - 1));
}

void Decoder::tryHead(base::ByteReader reader, std::uint32_t next)
{
    TryHead head;
    const std::uint8_t flags = reader.u8().value_or(0);
    head.hasCatch = (flags & 1) != 0;
    head.hasFinally = (flags & 2) != 0;
    head.catchInRegister = (flags & 4) != 0;
    const std::uint32_t tryLength = reader.u16().value_or(0);
    const std::uint32_t catchLength = reader.u16().value_or(0);
    const std::uint32_t finallyLength = reader.u16().value_or(0);
    if (head.catchInRegister)
        head.catchRegister = reader.u8().value_or(0);
    else
        head.catchName = text(reader);
    const std::uint32_t bodyEnd = m_body.end;
    head.tryEnd = std::min(next + tryLength, bodyEnd);
    head.catchEnd = std::min(head.tryEnd + (head.hasCatch ? catchLength : 0), bodyEnd);
    head.finallyEnd = std::min(head.catchEnd + (head.hasFinally ? finallyLength : 0), bodyEnd);
    for (const std::uint32_t end : {head.tryEnd, head.catchEnd, head.finallyEnd})
        m_isRegionEnd[end - m_body.start] = true;
    // The parts are jumped into: make sure that they begin an instruction.
    m_targets.insert(m_targets.end(), {next, head.tryEnd, head.catchEnd, head.finallyEnd});
    m_code.m_tries.push_back(head);
    m_body.needsActivation |= head.hasCatch && !head.catchInRegister;
    emit(ActionCode::Try, 0, static_cast<std::uint32_t>(m_code.m_tries.size() - 1));
}

void Decoder::constantPool(base::ByteReader reader)
{
    auto pool = std::make_unique<ConstantPool>();
    const std::uint16_t count = reader.u16().value_or(0);
    for (std::uint16_t i = 0; i < count && !reader.atEnd(); ++i) pool->emplace_back(text(reader).string());
    m_code.m_pools.push_back(std::move(pool));
    emit(ActionCode::ConstantPool, 0, static_cast<std::uint32_t>(m_code.m_pools.size() - 1));
}

Name Decoder::text(base::ByteReader& reader)
{
    const auto bytes = reader.cString();
    std::string_view view;
    if (bytes) {
        view = *bytes;
    } else {
        // Without its NUL byte the text is what is left.
        const base::Bytes rest = reader.rest();
        view = {reinterpret_cast<const char*>(rest.data()), rest.size()};
        reader = base::ByteReader();
    }
    return m_vm.name(m_code.version() != Code::kCallersVersion && m_code.version() < 6
                         ? m_vm.host().textCode().decode(view)
                         : base::utf16FromLooseUtf8(view));
}

std::int64_t Decoder::skipActions(std::uint32_t from, int count) const
{
    const base::Bytes bytes = m_code.m_bytes;
    std::uint64_t at = from;
    for (int i = 0; i < count && at < m_body.end; ++i) {
        if (bytes[at] < kFirstLongAction)
            at += 1;
        else
            at += m_body.end - at < 3 ? 3 : 3 + (bytes[at + 1] | bytes[at + 2] << 8);
    }
    return static_cast<std::int64_t>(at);
}

// ---- Code ------------------------------------------------------------------------------------------------

Code::Code(Vm& vm, std::shared_ptr<const void> owner, base::Bytes bytes, int version)
    : m_vm(vm), m_owner(std::move(owner)), m_bytes(bytes), m_version(version)
{
    m_body.end = static_cast<std::uint32_t>(bytes.size());
    Decoder(*this, vm, m_body);
}

const Body& Code::decoded(FunctionCode& function)
{
    // Bodies are decoded at their first call: many functions of a library are never called.
    Body body;
    body.start = function.head.bodyStart;
    body.end = function.head.bodyEnd;
    Decoder(*this, m_vm, body);
    // Parameters without a register are variables, too.
    for (const FunctionHead::Parameter& parameter : function.head.parameters)
        body.needsActivation |= parameter.registerNumber == 0;
    function.body = std::move(body);
    return *function.body;
}

std::uint32_t Code::addCache()
{
    if (m_cacheCount % kCachesPerPiece == 0)
        m_caches.push_back(std::make_unique<InlineCache[]>(kCachesPerPiece));
    return m_cacheCount++;
}

void Code::trace(Tracer& tracer)
{
    for (const Value value : m_literals) tracer(value);
    for (const auto& function : m_functions) {
        tracer(function->head.name.cell());
        for (const auto& parameter : function->head.parameters) tracer(parameter.name.cell());
    }
    for (const TryHead& head : m_tries) tracer(head.catchName.cell());
    for (const auto& pool : m_pools) {
        for (const Value value : *pool) tracer(value);
    }
}

void Code::dropDeadCaches()
{
    const auto isLive = [](const Cell* cell) { return cell == nullptr || Heap::isMarked(cell); };
    for (std::uint32_t number = 0; number < m_cacheCount; ++number) {
        InlineCache& cache = this->cache(number);
        if (cache.epoch == 0) continue;
        bool live = isLive(cache.name) && isLive(cache.holder) && isLive(cache.next);
        for (std::size_t i = 0; live && i < cache.count; ++i) {
            const InlineCache::Guard& guard = cache.guards[i];
            live = isLive(guard.shape) && isLive(Value::fromBits(guard.protoBits).asObject());
        }
        if (!live) cache.clear();
    }
}

} // namespace flash::avm1
