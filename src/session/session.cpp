#include "session/session.h"

namespace sylvora {

std::string_view CorpusFormatName(CorpusFormat format) {
  switch (format) {
    case CorpusFormat::kTwitter: return "Twitter";
    case CorpusFormat::kTwitter11: return "Twitter1.1";
    case CorpusFormat::kRadian6: return "Radian 6";
  }
  return "";
}

}  // namespace sylvora
