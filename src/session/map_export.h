#pragma once
// Text forms of a laid-out map for other tools: a node table and an edge table as CSV, and the
// whole map as GraphML.
//
//  * Node table: header "index,label,x,y,weight,degree", then one row per node in node order
//    (index 0-based, as the map numbers its nodes).
//  * Edge table: header "from,to,from_label,to_label,length", one row per edge in the order of
//    the layout's edge list (shortest first, as the DOT text lists them).
//  * GraphML: an undirected graph with node keys label, x, y, weight, degree and an edge key
//    length; node ids "n0", "n1", ...
// CSV follows RFC 4180: CR LF line ends, fields holding a comma, quote or line end quoted, inner
// quotes doubled. Numbers use "." and the shortest text that reads back to the same float.
// Nothing throws apart from std::bad_alloc; file errors come back as false with a message
// naming the file.

#include <string>

#include "session/cluster_map.h"

namespace sylvora {

std::string MapNodeTable(const ClusterMap& map);
std::string MapEdgeTable(const ClusterMap& map);
std::string MapGraphMl(const ClusterMap& map);

// Writes `prefix` + "_nodes.csv", `prefix` + "_edges.csv" and `prefix` + ".graphml".
bool WriteMapFiles(const ClusterMap& map, const std::string& prefix, std::string& error);

}  // namespace sylvora
