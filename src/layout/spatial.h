#pragma once
// Spatial: node positions of one Graphviz layout of a network, with the drawing's size and the
// network's edge list (for drawing links and sizing nodes by degree).
//
// Numbering. Nodes are 0-based (0..NodeCount()-1). The DOT text names them FirstNode ..
// FirstNode + NodeCount - 1 (FirstNode is 0 or 1): DOT node k is node k - FirstNode here.
// Edges are 0-based and hold 0-based nodes.
//
// One run (GraphVisLayout_CLI):
//   1. the node count becomes NodeCount, every coordinate 0, the edge list empty;
//   2. the DOT text + CR LF replaces "gvin.txt" in the layout folder (any stale "gvout.txt"
//      is removed, so that a run that writes nothing is never read as a success);
//   3. the command line  "GV/sfdp" "F/gvin.txt" -Tplain -o"F/gvout.txt"  (GV = the Graphviz
//      folder, F = the layout folder; "neato" and "fdp" name their program, any other
//      algorithm runs sfdp) goes to ShellAndWait with the time limit (20000 ms), style 6,
//      break option 2;
//   4. a result other than 0 (Graphviz missing: 1, too slow: 2, abandoned: 4) returns false
//      without a message: the caller reports;
//   5. the plain output is read (LoadGVPlain), then the edge list (SetGraphFromDot).
// The program's stderr goes to "gverr.txt" in the layout folder. A failure to write gvin.txt,
// or a missing or malformed gvout.txt (also one with coordinates or a size that are no finite
// number), shows the message
// "Command:" + the command line, titled "Graph layout failed", with the critical icon, and
// returns false. A malformed edge line shows the same message, keeps the coordinates and
// returns true.
//
// Plain output reading. The first line is "graph scale width height": ScaleX = width, ScaleY =
// height. Node k's position is fields 2 and 3 of the line that holds the first occurrence of
// "node " + k + " " in the text. A node missing from the output (nodes without links are not in
// the DOT text) goes on the bottom edge: x = i / NodeCount * ScaleX, y = ScaleY / 1000, for node
// index i. "." is the decimal point.
//
// Owns its data; copies are deep. Not thread-safe; one object per map build. Runs share the
// files of their layout folder, so runs at the same time need folders of their own. Nothing throws
// apart from std::bad_alloc. Memory: O(NodeCount + EdgeCount); GetProximityMatrix is
// O(NodeCount^2).

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "common/notifier.h"
#include "common/progress.h"
#include "sparse/edge_record.h"

namespace sylvora {

// The time limit of a layout run, in milliseconds.
inline constexpr std::int32_t kLayoutTimeLimitMs = 20000;

// The command line of a layout run (step 3 above).
std::string LayoutCommandLine(std::string_view gvPath, std::string_view algorithm,
                              std::string_view folder);

class Spatial {
 public:
  // Messages go to `notifier`, which must outlive the object. The layout folder starts as
  // DefaultLayoutFolder().
  explicit Spatial(Notifier& notifier = DefaultNotifier());

  // Number of edges whose FromNode or ToNode is i (0 when there are none). O(1).
  std::int32_t NodeDegree(std::int32_t i) const;
  std::int32_t EdgeCount() const { return static_cast<std::int32_t>(edges_.size()); }
  // Edge `index` (0-based); a zero record when out of range.
  EdgeRecord Edge(std::int32_t index) const;
  const std::vector<EdgeRecord>& Edges() const { return edges_; }

  // Width and height of the whole drawing.
  float ScaleX() const { return scaleX_; }
  float ScaleY() const { return scaleY_; }

  // Coordinates of node i; 0 when i is out of range.
  float X(std::int32_t i) const;
  float Y(std::int32_t i) const;
  std::int32_t NodeCount() const { return nodeCount_; }

  // Extremes over all nodes. The minimum starts at 100 and the maximum at -100, so values that
  // all lie above 100 report a minimum of 100, and an empty layout reports 100 / -100.
  float MinX() const;
  float MaxX() const;
  float MinY() const;
  float MaxY() const;

  // Rebuilds the edge list from DOT text laid out as Matrix2Dot writes it: after removing every
  // tab and space, lines 0..2 are headers, the last line closes the graph and each line between
  // is "a--b[len=w];" (node numbers counted from `firstNode`). Returns false at the first line
  // that does not read that way; the edges before it are kept.
  bool SetGraphFromDot(std::string_view dotStr, std::int32_t firstNode);

  // The lines of a text file, each followed by CR LF (lines end at CR LF, LF or CR); an empty
  // text when the file cannot be read.
  static std::string GraphFromFile(const std::string& iPath);

  // One line per node in node order: x, a tab, y, CR LF; the text for the clipboard.
  std::string Copy2Clip() const;

  // Lays the network out (see above). `progress` is called between wait slices and while
  // reading nodes; answering false abandons the run (false, no message).
  bool GraphVisLayout_CLI(std::string_view gvPath, std::string_view algorithm,
                          std::string_view dotStr, std::int32_t nodeCount, std::int32_t firstNode,
                          const ProgressCallback& progress = {});

  // Reads Graphviz plain output from `iPath` into the coordinates of `nodeCount` nodes (see
  // above). Returns false, with `error` saying why, when the file cannot be read, its first
  // line is not "graph scale width height", a node line has no numeric x and y, or `progress`
  // answered false (error "Cancelled").
  bool LoadGVPlain(const std::string& iPath, std::int32_t firstNode, std::int32_t nodeCount,
                   std::string& error, const ProgressCallback& progress = {});

  // Euclidean distances between every two nodes, row-major n x n (both halves, 0 on the
  // diagonal); empty when n = 0.
  std::vector<float> GetProximityMatrix() const;

  // Where "gvin.txt" and "gvout.txt" go; DefaultLayoutFolder() unless set.
  const std::string& LayoutFolder() const { return folder_; }
  void SetLayoutFolder(std::string folder) { folder_ = std::move(folder); }

  // The time limit of a run in ms (kLayoutTimeLimitMs unless set; 0 for none).
  std::int32_t TimeLimit() const { return timeLimitMs_; }
  void SetTimeLimit(std::int32_t milliseconds) { timeLimitMs_ = milliseconds; }

  // The ShellAndWait code of the last run (-1 before any run or when it did not get that far).
  std::int32_t LastShellCode() const { return lastShellCode_; }
  // Why the last run failed after the program could be started, in words a user can act on:
  // the layout folder that could not be written, or the output that could not be read with
  // the program's exit code and what it printed on stderr. Empty after a success.
  const std::string& LastFailure() const { return lastFailure_; }

 private:
  void ResetNodes(std::int32_t nodeCount);

  Notifier* notifier_;
  std::string folder_;
  std::int32_t timeLimitMs_ = kLayoutTimeLimitMs;
  std::int32_t lastShellCode_ = -1;
  std::string lastFailure_;
  std::int32_t nodeCount_ = 0;
  std::vector<float> x_;
  std::vector<float> y_;
  float scaleX_ = 0.0f;
  float scaleY_ = 0.0f;
  std::vector<EdgeRecord> edges_;
  // Degrees of the nodes below the node count (or the edge count); the rare node numbers above
  // it, which only a foreign DOT text holds, are counted apart so that one such number cannot
  // make the table huge.
  std::vector<std::int32_t> degrees_;
  std::unordered_map<std::int32_t, std::int32_t> farDegrees_;
};

}  // namespace sylvora
