#pragma once
// The program: `sylvora [CORPUS] [--screenshot FILE]`.
//
// Without --screenshot it opens the main window (loading CORPUS when given) and runs until
// the window closes. With --screenshot it loads and indexes CORPUS without asking anything
// (messages go to stderr), saves a picture of the main window to FILE, prints where it is and
// exits: 0 when the picture was saved, 1 when the corpus could not be loaded or indexed or
// the picture not saved, 2 on bad usage.

namespace sylvora::app {

int RunApplication(int argc, char** argv);

}  // namespace sylvora::app
