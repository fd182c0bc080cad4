#pragma once

#include "swfc/output/Records.h"
#include "swfc/source/Xml.h"

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace swfc::source
{

/// Reads an element's attributes with their types. When it goes out of use, whatever was not asked for is
/// reported, so that a misspelled attribute never passes in silence.
class Attributes
{
public:
    Attributes(const Element& element, Diagnostics& diagnostics)
        : m_element(element), m_diagnostics(diagnostics)
    {
    }
    ~Attributes();
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    [[nodiscard]] bool has(const std::string& name) const { return find(name) != nullptr; }
    std::optional<std::string> text(const std::string& name);
    std::string text(const std::string& name, const std::string& otherwise);
    /// Reports when it is missing.
    std::string required(const std::string& name);
    std::optional<double> number(const std::string& name);
    double number(const std::string& name, double otherwise);
    /// Within a range; reports and returns `least` when it is not.
    int integer(const std::string& name, int otherwise, int least, int most);
    bool flag(const std::string& name, bool otherwise = false);
    std::optional<output::Rgba> color(const std::string& name);
    output::Rgba color(const std::string& name, output::Rgba otherwise);
    /// Numbers with blanks or commas between them; `count` of them, or any number when it is 0.
    std::optional<std::vector<double>> numbers(const std::string& name, std::size_t count);
    /// One of several words. @returns the index of the word, 0 when the attribute is missing.
    int choice(const std::string& name, std::initializer_list<const char*> words, int otherwise = 0);

    void error(const std::string& message) { m_diagnostics.error(m_element.where, message); }
    [[nodiscard]] const Element& element() const { return m_element; }

private:
    [[nodiscard]] const std::string* find(const std::string& name) const;
    const std::string* take(const std::string& name);
    void wrong(const std::string& name, const std::string& expected);

    const Element& m_element;
    Diagnostics& m_diagnostics;
    std::set<std::string> m_known;
};

/// "#rgb", "#rrggbb", "#rrggbbaa", or "none" for fully transparent.
std::optional<output::Rgba> parseColor(const std::string& text);

/// Blanks at both ends taken off.
std::string trimmed(const std::string& text);

} // namespace swfc::source
