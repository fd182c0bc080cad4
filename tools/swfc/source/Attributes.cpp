#include "swfc/source/Attributes.h"

#include <charconv>
#include <cmath>

namespace swfc::source
{
namespace
{

std::optional<double> parseNumber(std::string_view text)
{
    double value = 0;
    if (text.starts_with('+')) text.remove_prefix(1);
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size() || !std::isfinite(value))
        return {};
    return value;
}

} // namespace

std::string trimmed(const std::string& text)
{
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    if (start == std::string::npos) return {};
    return text.substr(start, text.find_last_not_of(" \t\r\n") - start + 1);
}

std::optional<output::Rgba> parseColor(const std::string& text)
{
    if (text == "none") return output::Rgba{0, 0, 0, 0};
    const std::size_t digits = text.empty() ? 0 : text.size() - 1;
    if (text.empty() || text[0] != '#' || (digits != 3 && digits != 6 && digits != 8)) return {};
    std::uint32_t value = 0;
    const auto parsed = std::from_chars(text.data() + 1, text.data() + text.size(), value, 16);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size()) return {};
    const auto byte = [&](int shift) { return static_cast<std::uint8_t>(value >> shift); };
    if (digits == 8) return output::Rgba{byte(24), byte(16), byte(8), byte(0)};
    if (digits == 6) return output::Rgba{byte(16), byte(8), byte(0), 255};
    const auto nibble = [&](int shift) { return static_cast<std::uint8_t>(((value >> shift) & 15) * 17); };
    return output::Rgba{nibble(8), nibble(4), nibble(0), 255};
}

Attributes::~Attributes()
{
    for (const Element::Attribute& attribute : m_element.attributes) {
        if (m_known.contains(attribute.name)) continue;
        std::string known;
        for (const std::string& name : m_known) known += (known.empty() ? "" : ", ") + name;
        error("expected an attribute of <" + m_element.name + "> (" + known + "), found '" + attribute.name +
              "'");
    }
}

const std::string* Attributes::find(const std::string& name) const
{
    for (const Element::Attribute& attribute : m_element.attributes) {
        if (attribute.name == name) return &attribute.value;
    }
    return nullptr;
}

const std::string* Attributes::take(const std::string& name)
{
    m_known.insert(name);
    return find(name);
}

void Attributes::wrong(const std::string& name, const std::string& expected)
{
    error("expected " + expected + " in " + name + " of <" + m_element.name + ">, found '" + *find(name) +
          "'");
}

std::optional<std::string> Attributes::text(const std::string& name)
{
    const std::string* value = take(name);
    return value == nullptr ? std::nullopt : std::optional(*value);
}

std::string Attributes::text(const std::string& name, const std::string& otherwise)
{
    return text(name).value_or(otherwise);
}

std::string Attributes::required(const std::string& name)
{
    const std::string* value = take(name);
    if (value != nullptr && !value->empty()) return *value;
    error("expected the attribute " + name + " in <" + m_element.name + ">");
    return {};
}

std::optional<double> Attributes::number(const std::string& name)
{
    const std::string* value = take(name);
    if (value == nullptr) return {};
    const auto number = parseNumber(*value);
    if (!number) wrong(name, "a number");
    return number;
}

double Attributes::number(const std::string& name, double otherwise)
{
    return number(name).value_or(otherwise);
}

int Attributes::integer(const std::string& name, int otherwise, int least, int most)
{
    const auto value = number(name);
    if (!value) return otherwise;
    if (*value >= least && *value <= most && *value == std::floor(*value)) return static_cast<int>(*value);
    wrong(name, "a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    return least;
}

bool Attributes::flag(const std::string& name, bool otherwise)
{
    const std::string* value = take(name);
    if (value == nullptr) return otherwise;
    if (*value == "yes" || *value == "no") return *value == "yes";
    wrong(name, "yes or no");
    return otherwise;
}

std::optional<output::Rgba> Attributes::color(const std::string& name)
{
    const std::string* value = take(name);
    if (value == nullptr) return {};
    const auto color = parseColor(*value);
    if (!color) wrong(name, "a colour such as #4974BA or #4974BA80");
    return color;
}

output::Rgba Attributes::color(const std::string& name, output::Rgba otherwise)
{
    return color(name).value_or(otherwise);
}

std::optional<std::vector<double>> Attributes::numbers(const std::string& name, std::size_t count)
{
    const std::string* value = take(name);
    if (value == nullptr) return {};
    std::vector<double> numbers;
    std::size_t at = 0;
    constexpr const char* kBlanks = " ,\t\r\n";
    while ((at = value->find_first_not_of(kBlanks, at)) != std::string::npos) {
        const std::size_t end = std::min(value->find_first_of(kBlanks, at), value->size());
        const auto number = parseNumber(std::string_view(*value).substr(at, end - at));
        if (!number) {
            wrong(name, "numbers");
            return {};
        }
        numbers.push_back(*number);
        at = end;
    }
    if (count != 0 && numbers.size() != count) {
        wrong(name, std::to_string(count) + " numbers");
        return {};
    }
    return numbers;
}

int Attributes::choice(const std::string& name, std::initializer_list<const char*> words, int otherwise)
{
    const std::string* value = take(name);
    if (value == nullptr) return otherwise;
    int index = 0;
    std::string known;
    for (const char* word : words) {
        if (*value == word) return index;
        known += (known.empty() ? "" : ", ") + std::string(word);
        ++index;
    }
    wrong(name, "one of " + known);
    return otherwise;
}

} // namespace swfc::source
