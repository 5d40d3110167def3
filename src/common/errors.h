#pragma once
// The project's one exception hierarchy. Library operations mostly report failure through
// return values (false, -1, "", a sentinel text) and leave their object usable; exceptions are
// kept for the few places that must raise (the TDM file version error) and for programming
// errors at API boundaries.

#include <stdexcept>
#include <string>

namespace sylvora {

class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// An argument outside the range an operation accepts (for example a row past the end).
class RangeError : public Error {
 public:
  using Error::Error;
};

}  // namespace sylvora
