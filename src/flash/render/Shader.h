#pragma once

#include "base/ByteReader.h"
#include "base/Result.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// Compiled pixel kernels of scripts: what they take, and their instructions in the form that ShaderRun runs.
namespace flash::render
{

enum class ShaderType : std::uint8_t {
    Float = 1,
    Float2,
    Float3,
    Float4,
    Matrix2,
    Matrix3,
    Matrix4,
    Int,
    Int2,
    Int3,
    Int4,
    String,
    Bool,
    Bool2,
    Bool3,
    Bool4
};
/// How many numbers a value of the type has; 0 for a text.
std::size_t shaderTypeSize(ShaderType type);
[[nodiscard]] constexpr bool isFloat(ShaderType type) { return type < ShaderType::Int; }
[[nodiscard]] constexpr bool isBool(ShaderType type) { return type > ShaderType::String; }

struct ShaderMetadata {
    std::string key;
    ShaderType type = ShaderType::Int;
    std::vector<double> numbers; ///< matrices column by column
    std::string text;            ///< of ShaderType::String
};

/// Registers hold four channels. Those of whole numbers and of truth values are a file of their own.
struct ShaderParameter {
    std::string name;
    ShaderType type = ShaderType::Float;
    bool isOutput = false;
    std::uint16_t reg = 0; ///< the first; matrices have one for each column, the smallest is in one
    bool isWhole = false;
    std::array<std::uint8_t, 4> channels{}; ///< of each register of it, the first `width`
    std::uint8_t width = 0;                 ///< channels of a register
    std::vector<ShaderMetadata> metadata;
    [[nodiscard]] std::size_t size() const { return shaderTypeSize(type); }
};

struct ShaderTexture {
    std::string name;
    std::uint8_t index = 0, channels = 0;
    std::vector<ShaderMetadata> metadata;
};

enum class ShaderOp : std::uint8_t {
    Nop,
    Add,
    Subtract,
    Multiply,
    Reciprocal,
    Divide,
    Atan2,
    Power,
    Modulo,
    Min,
    Max,
    Step,
    Sin,
    Cos,
    Tan,
    Asin,
    Acos,
    Atan,
    Exp,
    Exp2,
    Log,
    Log2,
    Sqrt,
    InverseSqrt,
    Abs,
    Sign,
    Floor,
    Ceil,
    Fraction,
    Move,
    FloatToInt,
    IntToFloat,
    MatrixByMatrix,
    VectorByMatrix,
    MatrixByVector,
    Normalize,
    Length,
    Distance,
    Dot,
    Cross,
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Not,
    And,
    Or,
    Xor,
    SampleNearest,
    SampleLinear,
    Load,
    Select,
    If,
    Else,
    EndIf,
    FloatToBool,
    BoolToFloat,
    IntToBool,
    BoolToInt,
    VectorEqual,
    VectorNotEqual,
    Any,
    All,
    Count
};

/// Channels of a register, in the order they are read or written.
struct ShaderOperand {
    std::uint16_t reg = 0;
    bool isWhole = false;
    std::array<std::uint8_t, 4> channels{};
};
struct ShaderStep {
    ShaderOp op = ShaderOp::Nop;
    std::uint8_t written = 0; ///< channels of the target
    std::uint8_t read = 0;    ///< channels of the sources; for matrices, their columns
    std::uint8_t texture = 0;
    ShaderOperand target, source;
    ShaderOperand condition, other; ///< of a selection: `source` where the condition holds, else `other`
    std::uint32_t bits = 0;         ///< what is loaded
};

/// A kernel, checked: every register of a step is below the counts, conditions are nested as they must be.
struct ShaderProgram {
    std::string name;
    std::vector<ShaderMetadata> metadata;
    std::vector<ShaderParameter> parameters; ///< in the order of the file, the place of the pixel too
    std::vector<ShaderTexture> textures;
    std::vector<ShaderStep> steps;
    std::uint16_t floatRegisters = 0, wholeRegisters = 0;

    /// @returns null for one that puts out nothing
    [[nodiscard]] const ShaderParameter* output() const;
};

/// What a parameter is called that holds the middle of the pixel that is computed.
constexpr std::string_view kShaderPlace = "_OutCoord";

/// @errors Truncated, Malformed; LimitReached for more steps or registers than any kernel has; Unsupported
/// for an instruction that there is not.
/// @source the published binary form of compiled kernels (.pbj)
base::Result<ShaderProgram> parseShader(base::Bytes bytes);

} // namespace flash::render
