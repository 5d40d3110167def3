#pragma once
// The folder in which a layout run keeps its two files, "gvin.txt" (the DOT text handed to
// Graphviz) and "gvout.txt" (Graphviz's plain output). The program's own folder is often not
// writable, so each process gets a private folder under $TMPDIR (or /tmp), created with
// mode 0700 on first use and removed with its files when the process ends normally.

#include <string>

namespace sylvora {

// The per-process layout folder, created on the first call; an empty text when it cannot be
// created (a layout run then fails at writing "gvin.txt" and says so). Thread-safe.
const std::string& DefaultLayoutFolder();

}  // namespace sylvora

namespace sylvora {

// The Graphviz folder to use when none was chosen: the folder of the first executable "sfdp"
// on PATH, else the program's folder + "/bin".
std::string DefaultGraphvizFolder();

}  // namespace sylvora
