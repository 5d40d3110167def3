#pragma once
// Runs an external program (a Graphviz layout) and waits for it with a time limit.
//
// The command line has the shape a Windows shell would take: the program and its arguments
// separated by spaces, double quotes grouping text that holds spaces (the quotes themselves
// are dropped, also in the middle of an argument: -o"/tmp/x y" is the one argument
// -o/tmp/x y). A program named without a "/" is looked up on PATH. The program runs in its own
// process group with stdin, stdout and stderr on /dev/null.
//
// The wait runs in slices (500 ms unless the caller picks another length). Only timed-out slices
// count towards the limit, so a limit of L ms gives up after the first slice that brings the
// count above L (41 slices of 500 ms for 20000).
// Between slices the progress callback is called (stage "Waiting for Graphviz", done = ms
// counted so far, total = the limit); when it answers false the wait is abandoned.
//
// A program that outlives the limit, or whose wait is abandoned, is killed with its process
// group and reaped, so that it cannot write its output file after the caller moved on.
//
// Thread-safe (no shared state); it never throws apart from std::bad_alloc.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/progress.h"

namespace sylvora {

// Result codes of ShellAndWait.
inline constexpr std::int32_t kShellEnded = 0;       // ended, or the wait itself failed
inline constexpr std::int32_t kShellNotStarted = 1;  // the program could not be started
inline constexpr std::int32_t kShellTimedOut = 2;    // the limit passed; the program was killed
inline constexpr std::int32_t kShellInvalidArgument = 3;
inline constexpr std::int32_t kShellAbandoned = 4;  // progress answered false; killed

// Length of one wait slice in milliseconds, unless the caller passes another.
inline constexpr std::int32_t kShellWaitSliceMs = 500;

// Runs `commandLine` and waits for it.
//  * timeLimitMs: 0 for no limit; negative is an invalid argument (3).
//  * windowStyle: 0..4 or 6 (6: minimised without focus); accepted for the callers' sake and
//    otherwise without effect here, since the programs run without a window. Anything else: 3.
//  * breakOption: 0, 1 or 2, checked and otherwise not used. Anything else: 3.
//  * sliceMs: the length of one wait slice; below 1 is an invalid argument (3).
// An empty command line (after trimming spaces) is 3. The program's exit status is not part of
// the result: a program that ran and failed gives 0, and its caller finds its output missing.
std::int32_t ShellAndWait(std::string_view commandLine, std::int32_t timeLimitMs,
                          std::int32_t windowStyle, std::int32_t breakOption,
                          const ProgressCallback& progress = {},
                          std::int32_t sliceMs = kShellWaitSliceMs);

// How a program run by ShellAndWait ended, for callers that explain a failure.
struct ShellOutcome {
  // The program's exit code when it ended on its own; -1 otherwise (killed, never started, a
  // failed wait); 128 + the signal number when a signal ended it.
  int exitCode = -1;
};

// ShellAndWait with the program's standard error written to `errorPath` (replaced; /dev/null
// when empty) and its exit code in `outcome`.
std::int32_t ShellAndWait(std::string_view commandLine, std::int32_t timeLimitMs,
                          std::int32_t windowStyle, std::int32_t breakOption,
                          const ProgressCallback& progress, const std::string& errorPath,
                          ShellOutcome& outcome, std::int32_t sliceMs = kShellWaitSliceMs);

// The arguments of a command line, split as ShellAndWait splits them (see above).
std::vector<std::string> SplitCommandLine(std::string_view commandLine);

}  // namespace sylvora
