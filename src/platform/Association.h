#pragma once

#include <QString>
#include <QStringList>

#include <array>

namespace platform
{

/// A default value below the root of the file classes.
struct AssociationValue {
    QString key;
    QString data;
};

/// Makes a program the one that opens Flash movies, for the user who runs it. Nothing outside the user's own
/// folders is written.
class Association
{
public:
    /// @param product       the program's name and its executable's base name
    /// @param programFolder with its closing separator
    Association(const QString& product, const QString& programFolder);

    enum Value { Description, Extension, Command, Icon };
    /// What is registered, in the order of writing. Command and argument are not quoted on purpose, and the
    /// icon is that of index 1; a system that keeps these values otherwise translates them.
    [[nodiscard]] const std::array<AssociationValue, 4>& values() const { return m_values; }

    /// Registers the program. A second time changes nothing. Each step is taken whatever became of the one
    /// before.
    /// @returns what could not be done, for the log
    QStringList Associate() const;
    /// Takes back what Associate() has registered; what opened movies before does so again.
    /// @returns what could not be done
    QStringList Withdraw() const;

private:
    QString m_product;
    std::array<AssociationValue, 4> m_values;
};

} // namespace platform
