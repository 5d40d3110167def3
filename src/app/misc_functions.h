#pragma once
// Link helpers of the window's load workflow.

#include <string>
#include <string_view>

namespace sylvora::app {

// The host part of a link: every "http://", "https://" and "www." removed, cut before the first
// "/" (a link without "/" stays whole), and with `stripFirstLabel`, when more than one "."
// remains, everything up to and including the first "." dropped.
// "http://www.ab.cd/xyz" -> "ab.cd"; "http://news.abcdefgh.ij/x" (stripped) -> "abcdefgh.ij".
std::string GetURLDomain(std::string_view url, bool stripFirstLabel);

}  // namespace sylvora::app
