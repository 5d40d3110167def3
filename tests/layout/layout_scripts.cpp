#include "layout/layout_scripts.h"

#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace sylvora::testing {

std::string WriteScript(const TempDir& dir, std::string_view name, std::string_view body) {
  const std::string path = dir.WriteFile(name, "#!/bin/sh\n" + std::string(body) + "\n");
  ::chmod(path.c_str(), 0755);
  return path;
}

bool ProcessGone(int pid) {
  // A process descriptor becomes readable when the process ends, zombie or reaped; a killed
  // process gets there at once, a forgotten one (sleeping 30 s) does not within the bound.
  const int fd = static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
  if (fd < 0) return errno == ESRCH;
  pollfd ready{fd, POLLIN, 0};
  const bool ended = ::poll(&ready, 1, 10000) == 1;
  ::close(fd);
  return ended;
}

}  // namespace sylvora::testing
