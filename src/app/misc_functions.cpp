#include "app/misc_functions.h"

#include <algorithm>

namespace sylvora::app {
namespace {

void RemoveAll(std::string& text, std::string_view what) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at)) {
    text.erase(at, what.size());
  }
}

}  // namespace

std::string GetURLDomain(std::string_view url, bool stripFirstLabel) {
  std::string host(url);
  RemoveAll(host, "https://");
  RemoveAll(host, "http://");
  RemoveAll(host, "www.");
  if (const std::size_t slash = host.find('/'); slash != std::string::npos) host.resize(slash);
  if (stripFirstLabel && std::count(host.begin(), host.end(), '.') > 1) {
    host.erase(0, host.find('.') + 1);
  }
  return host;
}

}  // namespace sylvora::app
