#pragma once

#include "flash/net/Amf.h"

// A local shared object as a file: a head with its name, then its members, each a name, a value and a byte
// that closes it; and by what name the store knows it.
namespace flash::net
{

constexpr std::uint8_t kMemberClosing = 0;

/// @param members what an AMF writer made of them
std::vector<std::uint8_t> sharedObjectFile(std::string_view name, AmfVersion version, base::Bytes members);

/// Reads up to the members. @returns how they are written
/// @errors Truncated; Malformed for what is no such file
base::Result<AmfVersion> readSharedObjectHead(AmfSource& source);

/// By what name the store knows the object that a movie asks for.
/// @param folder a folder of the movie's own path, so that movies there can share; none: the movie alone
/// @returns nothing for a name or a folder that the player refuses
std::optional<std::string> sharedObjectKey(std::string_view name, std::optional<std::string_view> folder,
                                           std::string_view movieUrl);
/// The object's own name, without the folder.
std::string_view sharedObjectName(std::string_view key);

} // namespace flash::net
