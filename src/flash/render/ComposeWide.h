#pragma once

#include <cstddef>
#include <cstdint>

// Two versions of some of Compose.h, which picks one; for it and for tests.
namespace flash::render::plain
{

void composeSolid(std::uint32_t* below, std::size_t count, std::uint32_t color);
void composeSolid(std::uint32_t* below, const std::uint8_t* coverage, std::size_t count, std::uint32_t color);
void composePixels(std::uint32_t* below, const std::uint32_t* source, std::size_t count);
void composePixels(std::uint32_t* below, const std::uint32_t* source, const std::uint8_t* coverage,
                   std::size_t count);

} // namespace flash::render::plain

// Only where wide8::hasWide().
namespace flash::render::wide8
{

void composeSolid(std::uint32_t* below, std::size_t count, std::uint32_t color);
void composeSolid(std::uint32_t* below, const std::uint8_t* coverage, std::size_t count, std::uint32_t color);
void composePixels(std::uint32_t* below, const std::uint32_t* source, std::size_t count);
void composePixels(std::uint32_t* below, const std::uint32_t* source, const std::uint8_t* coverage,
                   std::size_t count);

} // namespace flash::render::wide8
