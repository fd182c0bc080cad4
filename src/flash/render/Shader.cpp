#include "flash/render/Shader.h"

#include <algorithm>
#include <bit>
#include <optional>

namespace flash::render
{

namespace
{

using base::ByteReader;
using base::ErrorCode;
using base::Result;

constexpr std::size_t kMaxSteps = 1U << 16U, kMaxNesting = 64;
constexpr std::uint32_t kMaxRegisters = 1024;
constexpr std::uint8_t kMetadata = 0xA0, kParameter = 0xA1, kParameterMetadata = 0xA2, kTexture = 0xA3,
                       kName = 0xA4, kVersion = 0xA5;
constexpr std::uint16_t kWholeBit = 0x8000;
constexpr std::array<std::uint8_t, 4> kInOrder{0, 1, 2, 3};

bool isMatrix(ShaderType type) { return type >= ShaderType::Matrix2 && type <= ShaderType::Matrix4; }
bool isScalarResult(ShaderOp op)
{
    return op == ShaderOp::Length || op == ShaderOp::Distance || op == ShaderOp::Dot || op == ShaderOp::Any ||
           op == ShaderOp::All || op == ShaderOp::VectorEqual || op == ShaderOp::VectorNotEqual;
}
bool isComparison(ShaderOp op)
{
    return (op >= ShaderOp::Equal && op <= ShaderOp::LessOrEqual) || op == ShaderOp::VectorEqual ||
           op == ShaderOp::VectorNotEqual;
}
bool isMatrixProduct(ShaderOp op) { return op >= ShaderOp::MatrixByMatrix && op <= ShaderOp::MatrixByVector; }

bool isFlow(ShaderOp op)
{
    return op == ShaderOp::If || op == ShaderOp::Else || op == ShaderOp::EndIf || op == ShaderOp::Nop;
}

class Parser
{
public:
    explicit Parser(base::Bytes bytes) : m_reader(bytes) {}

    Result<ShaderProgram> parse()
    {
        bool hasVersion = false;
        while (!m_reader.atEnd()) {
            const std::uint8_t code = TRY_RESULT(m_reader.u8());
            if (!hasVersion && code != kVersion) return malformed("no version");
            hasVersion = true;
            CHECK_RESULT(item(code));
        }
        if (!hasVersion) return malformed("nothing in it");
        if (!m_open.empty()) return malformed("a condition that does not end");
        return std::move(m_made);
    }

private:
    [[nodiscard]] tl::unexpected<base::Error> malformed(const char* what) const
    {
        return base::fail(ErrorCode::Malformed, std::string("shader: ") + what, m_reader.position());
    }
    Result<void> item(std::uint8_t code)
    {
        switch (code) {
        case kVersion: CHECK_RESULT(m_reader.skip(4)); return {};
        case kName: {
            const std::uint16_t length = TRY_RESULT(m_reader.u16());
            const base::Bytes text = TRY_RESULT(m_reader.bytes(length));
            m_made.name.assign(text.begin(), text.end());
            return {};
        }
        case kMetadata: return metadata(m_made.metadata);
        case kParameterMetadata:
            if (!m_lastIsTexture && m_made.parameters.empty()) return malformed("metadata of nothing");
            return metadata(m_lastIsTexture ? m_made.textures.back().metadata
                                            : m_made.parameters.back().metadata);
        case kParameter: return parameter();
        case kTexture: {
            ShaderTexture made;
            made.index = TRY_RESULT(m_reader.u8());
            made.channels = TRY_RESULT(m_reader.u8());
            if (made.channels < 1 || made.channels > 4) return malformed("channels of a texture");
            made.name = std::string(TRY_RESULT(m_reader.cString()));
            m_made.textures.push_back(std::move(made));
            m_lastIsTexture = true;
            return {};
        }
        default:
            if (code >= static_cast<std::uint8_t>(ShaderOp::Count))
                return base::fail(ErrorCode::Unsupported, "shader: unknown instruction", m_reader.position());
            return step(static_cast<ShaderOp>(code));
        }
    }

    Result<float> bigFloat()
    {
        std::uint32_t bits = 0;
        const base::Bytes bytes = TRY_RESULT(m_reader.bytes(4));
        for (const std::uint8_t byte : bytes) bits = bits << 8U | byte;
        return std::bit_cast<float>(bits);
    }
    Result<void> metadata(std::vector<ShaderMetadata>& to)
    {
        ShaderMetadata made;
        made.type = TRY_RESULT(type());
        made.key = std::string(TRY_RESULT(m_reader.cString()));
        if (made.type == ShaderType::String) made.text = std::string(TRY_RESULT(m_reader.cString()));
        for (std::size_t i = 0; i < shaderTypeSize(made.type); ++i) {
            if (isFloat(made.type))
                made.numbers.push_back(static_cast<double>(TRY_RESULT(bigFloat())));
            else
                made.numbers.push_back(TRY_RESULT(m_reader.i16()));
        }
        to.push_back(std::move(made));
        return {};
    }
    Result<ShaderType> type()
    {
        const std::uint8_t code = TRY_RESULT(m_reader.u8());
        if (code < 1 || code > static_cast<std::uint8_t>(ShaderType::Bool4)) return malformed("unknown type");
        return static_cast<ShaderType>(code);
    }
    Result<void> parameter()
    {
        ShaderParameter made;
        const std::uint8_t direction = TRY_RESULT(m_reader.u8());
        made.isOutput = direction == 2;
        made.type = TRY_RESULT(type());
        if (made.type == ShaderType::String) return malformed("a text for a parameter");
        const std::uint16_t reg = TRY_RESULT(m_reader.u16());
        const std::uint8_t mask = TRY_RESULT(m_reader.u8());
        made.name = std::string(TRY_RESULT(m_reader.cString()));
        made.isWhole = (reg & kWholeBit) != 0;
        if (made.isWhole == isFloat(made.type)) return malformed("a parameter in registers of another kind");
        std::uint32_t registers = 1;
        if (isMatrix(made.type)) {
            const auto side = static_cast<std::uint8_t>(2 + static_cast<int>(made.type) -
                                                        static_cast<int>(ShaderType::Matrix2));
            // The smallest is wholly in one register.
            made.width = side == 2 ? 4 : side;
            registers = side == 2 ? 1 : side;
            made.channels = kInOrder;
        } else {
            for (std::uint8_t i = 0; i < 4; ++i)
                if ((mask & 8U >> i) != 0) made.channels[made.width++] = i;
            if (made.width != made.size()) return malformed("a parameter's channels");
        }
        made.reg = TRY_RESULT(registerNumber(reg, registers));
        m_made.parameters.push_back(std::move(made));
        m_lastIsTexture = false;
        return {};
    }
    Result<std::uint16_t> registerNumber(std::uint16_t coded, std::uint32_t count = 1)
    {
        const std::uint32_t number = coded & ~std::uint32_t{kWholeBit};
        if (number + count > kMaxRegisters)
            return base::fail(ErrorCode::LimitReached, "shader: too many registers", m_reader.position());
        auto& used = (coded & kWholeBit) != 0 ? m_made.wholeRegisters : m_made.floatRegisters;
        used = std::max(used, static_cast<std::uint16_t>(number + count));
        return static_cast<std::uint16_t>(number);
    }
    Result<ShaderOperand> source(std::uint32_t count = 1)
    {
        ShaderOperand made;
        const std::uint16_t reg = TRY_RESULT(m_reader.u16());
        const std::uint8_t swizzle = TRY_RESULT(m_reader.u8());
        made.isWhole = (reg & kWholeBit) != 0;
        made.reg = TRY_RESULT(registerNumber(reg, count));
        for (std::uint8_t i = 0; i < 4; ++i)
            made.channels[i] = static_cast<std::uint8_t>(swizzle >> (6 - 2 * i) & 3);
        return made;
    }

    Result<void> step(ShaderOp op)
    {
        ShaderStep made;
        made.op = op;
        const std::uint16_t target = TRY_RESULT(m_reader.u16());
        const std::uint8_t mask = TRY_RESULT(m_reader.u8());
        for (std::uint8_t i = 0; i < 4; ++i)
            if ((mask & 0x80U >> i) != 0) made.target.channels[made.written++] = i;
        made.read = static_cast<std::uint8_t>((mask & 3U) + 1);
        const unsigned matrix = isFlow(op) ? 0 : mask >> 2U & 3U;
        const auto side = static_cast<std::uint8_t>(matrix == 0 ? 0 : matrix + 1);
        const std::uint32_t columns = side > 2 ? side : 1U;
        made.target.isWhole = (target & kWholeBit) != 0;
        const bool isWholeMatrix = side != 0 && made.written == 0;
        made.target.reg = TRY_RESULT(registerNumber(target, isWholeMatrix ? columns : 1));
        if (side != 0 && (made.target.isWhole || op == ShaderOp::Load)) return malformed("a whole matrix");

        if (op == ShaderOp::Load) {
            const base::Bytes four = TRY_RESULT(m_reader.bytes(4));
            // Fractions begin with their highest byte; everything else with the lowest.
            for (std::size_t i = 0; i < 4; ++i)
                made.bits = made.bits << 8U | four[made.target.isWhole ? 3 - i : i];
            return add(made);
        }
        made.source = TRY_RESULT(source(side != 0 ? columns : 1));
        made.texture = TRY_RESULT(m_reader.u8());
        if (op == ShaderOp::SampleNearest || op == ShaderOp::SampleLinear) {
            if (made.source.isWhole || made.target.isWhole) return malformed("a place in whole numbers");
            return add(made);
        }
        if (op == ShaderOp::Select) {
            made.condition = made.source;
            made.source = TRY_RESULT(source());
            CHECK_RESULT(m_reader.skip(1));
            made.other = TRY_RESULT(source());
            CHECK_RESULT(m_reader.skip(1));
            if (!made.condition.isWhole || made.source.isWhole != made.other.isWhole ||
                made.target.isWhole != made.other.isWhole)
                return malformed("a selection among different things");
            return add(made);
        }
        if (op == ShaderOp::If && !made.source.isWhole) return malformed("a condition that is none");
        CHECK_RESULT(nest(op));
        if (side != 0) return matrixStep(made, side);
        if (isMatrixProduct(op)) return malformed("a product without a matrix");
        if (const bool same = made.source.isWhole == made.target.isWhole; !same && !convertsKind(op))
            return malformed("registers of different kinds");
        // The first channel takes what is one number.
        if (isScalarResult(op)) made.written = std::min<std::uint8_t>(made.written, 1);
        if (isComparison(op)) m_made.wholeRegisters = std::max<std::uint16_t>(m_made.wholeRegisters, 1);
        return add(made);
    }
    static bool convertsKind(ShaderOp op)
    {
        return op == ShaderOp::FloatToInt || op == ShaderOp::IntToFloat || op == ShaderOp::FloatToBool ||
               op == ShaderOp::BoolToFloat || isFlow(op);
    }
    Result<void> nest(ShaderOp op)
    {
        if (op == ShaderOp::If) {
            if (m_open.size() == kMaxNesting)
                return base::fail(ErrorCode::LimitReached, "shader: nested too deeply");
            m_open.push_back(op);
        } else if (op == ShaderOp::Else) {
            if (m_open.empty() || m_open.back() == ShaderOp::Else) return malformed("an else without an if");
            m_open.back() = op;
        } else if (op == ShaderOp::EndIf) {
            if (m_open.empty()) return malformed("an end without a condition");
            m_open.pop_back();
        }
        return {};
    }
    /// Whole matrices are worked on column by column, save in products.
    Result<void> matrixStep(ShaderStep made, std::uint8_t side)
    {
        if (made.source.isWhole) return malformed("a matrix of whole numbers");
        if (isMatrixProduct(made.op)) {
            made.read = side;
            if (made.op == ShaderOp::MatrixByMatrix) {
                made.written = 0;
                CHECK_RESULT(
                    registerNumber(made.target.reg, side > 2 ? std::uint32_t{side} : std::uint32_t{1}));
            } else if (made.written != side) {
                return malformed("a vector that does not fit its matrix");
            }
            return add(made);
        }
        if (isScalarResult(made.op) || isComparison(made.op) || made.op == ShaderOp::Normalize ||
            made.op == ShaderOp::Cross || made.written != 0)
            return malformed("an instruction that takes no matrix");
        made.target.channels = made.source.channels = kInOrder;
        made.written = made.read = side == 2 ? 4 : side;
        for (std::uint16_t i = 0; i < (side == 2 ? 1 : side); ++i) {
            CHECK_RESULT(add(made));
            ++made.target.reg;
            ++made.source.reg;
        }
        return {};
    }
    Result<void> add(const ShaderStep& step)
    {
        if (m_made.steps.size() >= kMaxSteps)
            return base::fail(ErrorCode::LimitReached, "shader: too many steps", m_reader.position());
        m_made.steps.push_back(step);
        return {};
    }

    ByteReader m_reader;
    ShaderProgram m_made;
    std::vector<ShaderOp> m_open;
    bool m_lastIsTexture = false;
};

} // namespace

std::size_t shaderTypeSize(ShaderType type)
{
    constexpr std::array<std::uint8_t, 17> kSizes{0, 1, 2, 3, 4, 4, 9, 16, 1, 2, 3, 4, 0, 1, 2, 3, 4};
    return kSizes[static_cast<std::size_t>(type)];
}

const ShaderParameter* ShaderProgram::output() const
{
    const auto found = std::ranges::find_if(parameters, &ShaderParameter::isOutput);
    return found == parameters.end() ? nullptr : &*found;
}

base::Result<ShaderProgram> parseShader(base::Bytes bytes) { return Parser(bytes).parse(); }

} // namespace flash::render
