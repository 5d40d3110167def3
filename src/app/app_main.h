#pragma once
// The program: `sylvora [CORPUS] [--screenshot FILE]`.
//
// Without --screenshot it opens the main window (loading CORPUS when given) and runs until
// the window closes. With --screenshot it loads and indexes CORPUS without asking anything
// (messages go to stderr), saves a picture of the main window to FILE, prints where it is, then
// builds the interval models and the three cluster maps and saves the cluster explorer as
// FILE's name + "-clusters" (main.png -> main-clusters.png), and exits: 0 when both pictures
// were saved, 1 when the corpus could not be loaded, indexed or modelled, a map not built or a
// picture not saved, 2 on bad usage.

namespace sylvora::app {

int RunApplication(int argc, char** argv);

}  // namespace sylvora::app
