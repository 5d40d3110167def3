#include "networks/debug_trace.h"

#include "sparse/number_format.h"

namespace sylvora {

void DebugTrace::Append(std::string& line, double number) {
  line += GeneralNumber(static_cast<float>(number));
}

}  // namespace sylvora
