// The SHA-1 digest, by which consumers recognise a description that they know already.
#pragma once

#include <string>
#include <string_view>

namespace vcam {

// The 20 bytes of the digest.
std::string sha1(std::string_view content);

}  // namespace vcam
