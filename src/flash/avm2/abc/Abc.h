#pragma once

#include "base/Result.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

// A block of compiled ActionScript 3 as immutable data. Every index within has been checked against its pool
// when parseAbc() returns; the code of bodies has not been looked at (that is the verifier's task).
namespace flash::avm2::abc
{

enum class NamespaceKind : std::uint8_t {
    Private = 0x05,
    Namespace = 0x08,
    Package = 0x16,
    PackageInternal = 0x17,
    Protected = 0x18,
    Explicit = 0x19,
    StaticProtected = 0x1A,
};

struct NamespaceInfo {
    NamespaceKind kind = NamespaceKind::Namespace;
    std::uint32_t name = 0;
};

enum class MultinameKind : std::uint8_t {
    QName = 0x07,
    QNameA = 0x0D,
    RtqName = 0x0F,
    RtqNameA = 0x10,
    RtqNameL = 0x11,
    RtqNameLA = 0x12,
    Multiname = 0x09,
    MultinameA = 0x0E,
    MultinameL = 0x1B,
    MultinameLA = 0x1C,
    TypeName = 0x1D,
};

struct MultinameInfo {
    MultinameKind kind = MultinameKind::QName;
    std::uint32_t name = 0; ///< of a string; of the generic's multiname for TypeName. 0: any
    std::uint32_t ns = 0;   ///< namespace, or namespace set
    std::vector<std::uint32_t> parameters;
    [[nodiscard]] bool isAttribute() const
    {
        return kind == MultinameKind::QNameA || kind == MultinameKind::RtqNameA ||
               kind == MultinameKind::RtqNameLA || kind == MultinameKind::MultinameA ||
               kind == MultinameKind::MultinameLA;
    }
    [[nodiscard]] bool hasRuntimeName() const
    {
        return kind == MultinameKind::RtqNameL || kind == MultinameKind::RtqNameLA ||
               kind == MultinameKind::MultinameL || kind == MultinameKind::MultinameLA;
    }
    [[nodiscard]] bool hasRuntimeNamespace() const
    {
        return kind == MultinameKind::RtqName || kind == MultinameKind::RtqNameA ||
               kind == MultinameKind::RtqNameL || kind == MultinameKind::RtqNameLA;
    }
};

/// A constant of a pool: kind as in the file (0: none given).
struct Constant {
    std::uint8_t kind = 0;
    std::uint32_t index = 0;
};

struct MethodInfo {
    enum Flag : std::uint8_t {
        NeedArguments = 0x01,
        NeedActivation = 0x02,
        NeedRest = 0x04,
        HasOptional = 0x08,
        SetDxns = 0x40,
        HasParamNames = 0x80,
    };
    std::uint32_t returnType = 0, name = 0;
    std::vector<std::uint32_t> parameterTypes;
    std::vector<Constant> optionals; ///< of the last parameters
    std::uint8_t flags = 0;
    std::int32_t body = -1;
};

struct Metadata {
    std::uint32_t name = 0;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> items; ///< key (0: none), value
};

struct Trait {
    enum class Kind : std::uint8_t { Slot, Method, Getter, Setter, Class, Function, Const };
    enum Attribute : std::uint8_t { Final = 1, Override = 2, HasMetadata = 4 };
    std::uint32_t name = 0;
    Kind kind = Kind::Slot;
    std::uint8_t attributes = 0;
    std::uint32_t id = 0;    ///< slot or dispatch id; 0: to be assigned
    std::uint32_t type = 0;  ///< of a slot
    std::uint32_t index = 0; ///< method or class
    Constant value;
    std::vector<std::uint32_t> metadata;
};

struct InstanceInfo {
    enum Flag : std::uint8_t { Sealed = 1, Final = 2, Interface = 4, ProtectedNs = 8 };
    std::uint32_t name = 0, superName = 0;
    std::uint8_t flags = 0;
    std::uint32_t protectedNs = 0;
    std::vector<std::uint32_t> interfaces;
    std::uint32_t initializer = 0;
    std::vector<Trait> traits;
};

struct ClassInfo {
    std::uint32_t initializer = 0;
    std::vector<Trait> traits;
};

struct ScriptInfo {
    std::uint32_t initializer = 0;
    std::vector<Trait> traits;
};

struct ExceptionInfo {
    std::uint32_t from = 0, to = 0, target = 0; ///< byte offsets into the code
    std::uint32_t type = 0, name = 0;           ///< multinames; 0: any, none
};

struct Body {
    std::uint32_t method = 0, maxStack = 0, localCount = 0, initScopeDepth = 0, maxScopeDepth = 0;
    std::span<const std::uint8_t> code; ///< of the block's bytes
    std::vector<ExceptionInfo> exceptions;
    std::vector<Trait> traits;
};

struct Abc {
    std::vector<std::uint8_t> bytes;
    // Entry 0 of each pool is the format's default.
    std::vector<std::int32_t> ints;
    std::vector<std::uint32_t> uints;
    std::vector<double> doubles;
    std::vector<std::string> strings; ///< UTF-8 as it stands in the file, checked by nobody
    std::vector<NamespaceInfo> namespaces;
    std::vector<std::vector<std::uint32_t>> namespaceSets;
    std::vector<MultinameInfo> multinames;
    std::vector<MethodInfo> methods;
    std::vector<Metadata> metadata;
    std::vector<InstanceInfo> instances;
    std::vector<ClassInfo> classes; ///< as many as instances
    std::vector<ScriptInfo> scripts;
    std::vector<Body> bodies;
};

/// Reads a block. It keeps a copy of the bytes.
/// @errors Truncated, Malformed
base::Result<std::shared_ptr<const Abc>> parseAbc(std::span<const std::uint8_t> bytes);

} // namespace flash::avm2::abc
