#include "platform/MimeAppsList.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace platform
{
namespace
{

constexpr std::string_view kGroup = "[Default Applications]";

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

/// The list as lines with their ends, and where in it the defaults stand.
struct List {
    explicit List(std::string_view text)
    {
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
            lines.emplace_back(text.substr(0, end));
            text.remove_prefix(end);
        }
        const auto isHeading = [](const std::string& line) { return trimmed(line).starts_with('['); };
        const auto heading = std::find_if(lines.begin(), lines.end(),
                                          [](const std::string& line) { return trimmed(line) == kGroup; });
        if (heading == lines.end()) return;
        begin = static_cast<std::size_t>(heading - lines.begin());
        end = static_cast<std::size_t>(std::find_if(heading + 1, lines.end(), isHeading) - lines.begin());
    }
    [[nodiscard]] std::optional<std::size_t> lineOf(std::string_view type) const
    {
        for (std::size_t i = begin + 1; i < end; ++i) {
            const auto equals = lines[i].find('=');
            if (equals != std::string::npos && trimmed(std::string_view(lines[i]).substr(0, equals)) == type)
                return i;
        }
        return std::nullopt;
    }
    [[nodiscard]] std::string text() const
    {
        std::string result;
        for (const std::string& line : lines) result += line;
        return result;
    }

    std::vector<std::string> lines;
    std::size_t begin = 0, end = 0; ///< of the group, heading included; both 0 without one
};

std::vector<std::string> applicationsOf(const std::string& line)
{
    std::string_view rest = trimmed(std::string_view(line).substr(line.find('=') + 1));
    std::vector<std::string> result;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(';'), rest.size());
        if (end > 0) result.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return result;
}

std::string lineFor(std::string_view type, const std::vector<std::string>& applications)
{
    std::string line = std::string(type) + '=';
    for (const std::string& application : applications) line += application + ';';
    return line + '\n';
}

} // namespace

std::string withDefaultApplication(std::string_view text, std::string_view type, std::string_view application)
{
    List list(text);
    if (list.end == 0) {
        if (!list.lines.empty() && !list.lines.back().ends_with('\n')) list.lines.back() += '\n';
        list.lines.push_back(std::string(kGroup) + '\n');
        list.lines.push_back(lineFor(type, {std::string(application)}));
        return list.text();
    }
    const auto found = list.lineOf(type);
    if (!found) {
        if (!list.lines[list.begin].ends_with('\n')) list.lines[list.begin] += '\n';
        list.lines.insert(list.lines.begin() + static_cast<std::ptrdiff_t>(list.begin) + 1,
                          lineFor(type, {std::string(application)}));
        return list.text();
    }
    std::vector<std::string> applications = applicationsOf(list.lines[*found]);
    if (!applications.empty() && applications.front() == application) return std::string(text);
    std::erase(applications, application);
    applications.emplace(applications.begin(), application);
    list.lines[*found] = lineFor(type, applications);
    return list.text();
}

std::string withoutDefaultApplication(std::string_view text, std::string_view type,
                                      std::string_view application)
{
    List list(text);
    const auto found = list.lineOf(type);
    if (!found) return std::string(text);
    std::vector<std::string> applications = applicationsOf(list.lines[*found]);
    if (std::erase(applications, application) == 0) return std::string(text);
    if (!applications.empty()) {
        list.lines[*found] = lineFor(type, applications);
        return list.text();
    }
    const auto group = list.lines.begin() + static_cast<std::ptrdiff_t>(list.begin);
    list.lines.erase(list.lines.begin() + static_cast<std::ptrdiff_t>(*found));
    if (list.end - list.begin == 2) list.lines.erase(group);
    return list.text();
}

bool namesDefaultApplication(std::string_view text, std::string_view type)
{
    return List(text).lineOf(type).has_value();
}

} // namespace platform
