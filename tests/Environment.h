#pragma once

#include <QString>

#include <utility>
#include <vector>

namespace tests
{

/// Sets variables of the environment for as long as it lives; a null text takes a variable away.
class Environment
{
public:
    Environment(std::initializer_list<std::pair<const char*, QString>> values)
    {
        for (const auto& [name, value] : values) {
            m_before.emplace_back(name, qgetenv(name));
            value.isNull() ? qunsetenv(name) : qputenv(name, value.toLocal8Bit());
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
    ~Environment()
    {
        for (const auto& [name, value] : m_before) value.isNull() ? qunsetenv(name) : qputenv(name, value);
    }

private:
    std::vector<std::pair<const char*, QByteArray>> m_before;
};

} // namespace tests
