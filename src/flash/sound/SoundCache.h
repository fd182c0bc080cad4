#pragma once

#include "flash/sound/Sources.h"

#include <list>
#include <memory>

namespace flash::sound
{

/// Keeps short sounds decoded, so that a click which is heard a hundred times is decoded once. Decodes no
/// further than was played. Long sounds are decoded anew by everyone who plays them.
class SoundCache
{
public:
    /// @param budgetBytes of decoded samples; what was used longest ago goes first. What plays stays alive.
    explicit SoundCache(std::size_t budgetBytes = std::size_t{32} << 20U) : m_budgetBytes(budgetBytes) {}
    ~SoundCache();
    SoundCache(const SoundCache&) = delete;
    SoundCache& operator=(const SoundCache&) = delete;

    /// @returns as openSound().
    std::unique_ptr<SampleSource> open(const MoviePtr& movie, const swf::Sound& sound);
    void clear();

private:
    struct Decoded;
    class Reader;
    struct Entry {
        const swf::Sound* sound; // a key; the source within `decoded` keeps the movie alive
        std::shared_ptr<Decoded> decoded;
    };
    void trim();

    std::size_t m_budgetBytes;
    std::list<Entry> m_entries; // most recently used first
};

} // namespace flash::sound
