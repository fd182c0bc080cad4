#pragma once

#include "base/ByteReader.h"
#include "flash/stage/Services.h"

#include <string_view>

// Libraries that movies share come signed: a movie in an envelope of its maker's signature. Whoever loads one
// names the digest of the movie, and that alone decides; of the signature nothing is asked.
namespace flash::net
{

/// What a library's file holds: the content of its envelope, or the whole file where there is none.
/// @param digest SHA-256 of the content, 64 hexadecimal digits in either case
/// @returns a part of `file`
/// @errors Malformed when the digest is another, or the envelope ends too early
/// @source RFC 2315 (PKCS #7), signed data around data, in the distinguished encoding of X.690
base::Result<base::Bytes> signedContent(base::Bytes file, std::string_view digest);
/// The same of a file that was fetched. What went wrong with that stays wrong.
base::Result<stage::LoadAnswer> signedAnswer(const base::Result<stage::LoadAnswer>& answer,
                                             std::string_view digest);

} // namespace flash::net
