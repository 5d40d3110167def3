#include "session/map_export.h"

#include <charconv>

#include "common/file_io.h"

namespace sylvora {
namespace {

std::string Number(float value) {
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

std::string CsvField(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted.push_back('"');
    quoted.push_back(c);
  }
  quoted.push_back('"');
  return quoted;
}

// XML text with the five special characters escaped and the control characters XML 1.0 does
// not allow dropped.
std::string XmlText(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&apos;";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r') break;
        escaped.push_back(c);
    }
  }
  return escaped;
}

std::string_view Label(const ClusterMap& map, std::int32_t node) {
  if (node < 0 || static_cast<std::size_t>(node) >= map.labels.size()) return {};
  return map.labels[static_cast<std::size_t>(node)];
}

float Weight(const ClusterMap& map, std::int32_t node) {
  if (node < 0 || static_cast<std::size_t>(node) >= map.weights.size()) return 0.0f;
  return map.weights[static_cast<std::size_t>(node)];
}

bool WriteText(const std::string& path, const std::string& text, std::string& error) {
  FileWriter writer;
  if (!writer.Open(path, error)) return false;
  writer.Write(text);
  return writer.Close(error);
}

}  // namespace

const char* MapKindName(MapKind kind) {
  switch (kind) {
    case MapKind::kWords:
      return "words";
    case MapKind::kIntervals:
      return "intervals";
    case MapKind::kTweets:
      return "tweets";
  }
  return "";
}

std::string MapNodeTable(const ClusterMap& map) {
  std::string text = "index,label,x,y,weight,degree\r\n";
  const Spatial& layout = map.layout;
  for (std::int32_t i = 0; i < layout.NodeCount(); ++i) {
    text.append(std::to_string(i)).append(",").append(CsvField(Label(map, i))).append(",");
    text.append(Number(layout.X(i))).append(",").append(Number(layout.Y(i))).append(",");
    text.append(Number(Weight(map, i))).append(",");
    text.append(std::to_string(layout.NodeDegree(i))).append("\r\n");
  }
  return text;
}

std::string MapEdgeTable(const ClusterMap& map) {
  std::string text = "from,to,from_label,to_label,length\r\n";
  for (const EdgeRecord& edge : map.layout.Edges()) {
    text.append(std::to_string(edge.FromNode)).append(",");
    text.append(std::to_string(edge.ToNode)).append(",");
    text.append(CsvField(Label(map, edge.FromNode))).append(",");
    text.append(CsvField(Label(map, edge.ToNode))).append(",");
    text.append(Number(edge.Weight)).append("\r\n");
  }
  return text;
}

std::string MapGraphMl(const ClusterMap& map) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<graphml xmlns=\"http://graphml.graphdrawing.org/xmlns\"\n"
      "    xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"\n"
      "    xsi:schemaLocation=\"http://graphml.graphdrawing.org/xmlns "
      "http://graphml.graphdrawing.org/xmlns/1.0/graphml.xsd\">\n"
      "  <key id=\"label\" for=\"node\" attr.name=\"label\" attr.type=\"string\"/>\n"
      "  <key id=\"x\" for=\"node\" attr.name=\"x\" attr.type=\"double\"/>\n"
      "  <key id=\"y\" for=\"node\" attr.name=\"y\" attr.type=\"double\"/>\n"
      "  <key id=\"weight\" for=\"node\" attr.name=\"weight\" attr.type=\"double\"/>\n"
      "  <key id=\"degree\" for=\"node\" attr.name=\"degree\" attr.type=\"int\"/>\n"
      "  <key id=\"length\" for=\"edge\" attr.name=\"length\" attr.type=\"double\"/>\n";
  text.append("  <graph id=\"").append(MapKindName(map.kind));
  text.append("\" edgedefault=\"undirected\">\n");
  const Spatial& layout = map.layout;
  for (std::int32_t i = 0; i < layout.NodeCount(); ++i) {
    text.append("    <node id=\"n").append(std::to_string(i)).append("\">");
    text.append("<data key=\"label\">").append(XmlText(Label(map, i))).append("</data>");
    text.append("<data key=\"x\">").append(Number(layout.X(i))).append("</data>");
    text.append("<data key=\"y\">").append(Number(layout.Y(i))).append("</data>");
    text.append("<data key=\"weight\">").append(Number(Weight(map, i))).append("</data>");
    text.append("<data key=\"degree\">").append(std::to_string(layout.NodeDegree(i)));
    text.append("</data></node>\n");
  }
  std::int32_t id = 0;
  for (const EdgeRecord& edge : layout.Edges()) {
    text.append("    <edge id=\"e").append(std::to_string(id++)).append("\" source=\"n");
    text.append(std::to_string(edge.FromNode)).append("\" target=\"n");
    text.append(std::to_string(edge.ToNode)).append("\">");
    text.append("<data key=\"length\">").append(Number(edge.Weight)).append("</data></edge>\n");
  }
  text.append("  </graph>\n</graphml>\n");
  return text;
}

bool WriteMapFiles(const ClusterMap& map, const std::string& prefix, std::string& error) {
  return WriteText(prefix + "_nodes.csv", MapNodeTable(map), error) &&
         WriteText(prefix + "_edges.csv", MapEdgeTable(map), error) &&
         WriteText(prefix + ".graphml", MapGraphMl(map), error);
}

}  // namespace sylvora
