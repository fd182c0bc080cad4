#pragma once

#include "swfc/Diagnostics.h"
#include "swfc/actionscript/Actions.h"

#include <string>
#include <variant>
#include <vector>

namespace swfc::actionscript
{

/// A place in the code that branches and block lengths refer to.
using Label = std::size_t;

struct Register {
    std::uint8_t number = 0;
};
struct UndefinedValue {
};
struct NullValue {
};
using Value = std::variant<std::string, double, bool, Register, UndefinedValue, NullValue>;

/// Collects actions and turns them into bytes: joins pushes, makes the constant pool, fills in the offsets
/// of branches and the lengths of blocks.
class Assembler
{
public:
    Assembler(int version, Diagnostics& diagnostics) : m_version(version), m_diagnostics(diagnostics) {}

    /// Errors found while laying out name the place set last.
    void at(Position where) { m_where = where; }

    void op(Action action);
    void push(Value value);
    void branch(Action action, Label target);
    Label newLabel();
    void mark(Label label);

    /// An action with a payload. Texts in it are given in UTF-8 through `text`.
    class Payload
    {
    public:
        Payload& u8(int value);
        Payload& u16(int value);
        Payload& text(std::string utf8);
        /// Two bytes: how far `to` lies behind `from`, or behind this action when there is no `from`.
        Payload& length(Label to);
        Payload& length(Label from, Label to);

    private:
        friend class Assembler;
        struct Part {
            enum class Kind : std::uint8_t { Byte, Text, Length };
            Kind kind = Kind::Byte;
            std::uint8_t byte = 0;
            std::string text;
            Label from = kHere, to = 0;
        };
        static constexpr Label kHere = static_cast<Label>(-1);
        std::vector<Part> m_parts;
    };
    void record(Action action, const Payload& payload);

    /// @returns the finished block with its end action. Reports blocks and branches that are too long.
    std::vector<std::uint8_t> finish();

private:
    enum class ItemKind : std::uint8_t { Op, Push, Branch, Mark, Record };
    struct Item {
        ItemKind kind = ItemKind::Op;
        Action action = Action::End;
        Position where;
        Value value = UndefinedValue{};
        Label label = 0;
        std::size_t record = 0; // index into m_records
    };
    class Layout;

    int m_version;
    Diagnostics& m_diagnostics;
    Position m_where;
    std::vector<Item> m_items;
    std::vector<Payload> m_records;
    Label m_labels = 0;
};

/// @returns how a version 4 movie writes a number: the shortest text that reads back as the same.
std::string numberText(double value);

} // namespace swfc::actionscript
