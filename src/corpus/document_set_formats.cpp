// The field layouts of the input formats: the one place that knows them.

#include <algorithm>
#include <array>
#include <string>

#include "common/code_points.h"
#include "common/file_io.h"
#include "common/leading_number.h"
#include "common/text_decoding.h"
#include "corpus/document_set.h"

namespace sylvora {
namespace {

constexpr int kMaxFields = 256;

struct FieldDef {
  const char* name;
  const char* start;
  const char* end;
};

// Tagged bibliographic formats mark a field by a line tag: "\nTI " is a line feed followed by
// "TI ", the tag at the start of a line; an end marker "\n" runs to the end of that line.
constexpr std::array<FieldDef, 8> kNewsArticles = {{
    {"Document ID", "<DOCNO>", "</DOCNO>"},
    {"Profile", "<PROFILE>", "</PROFILE>"},
    {"Publication Date", "<DATE>", "</DATE>"},
    {"Headline", "<HEADLINE>", "</HEADLINE>"},
    {"Author", "<BYLINE>", "</BYLINE>"},
    {"Article Text", "<TEXT>", "</TEXT>"},
    {"Publisher", "<PUB>", "</PUB>"},
    {"Page Number", "<PAGE>", "</PAGE>"},
}};

constexpr std::array<FieldDef, 4> kShortBibliographic = {{
    {"Article title", "\nTI ", "\nAU "},
    {"Author(s)", "\nAU ", "\nSO "},
    {"Publication Year", "\nPY ", "\nTC "},
    {"Abstract", "\nAB ", "\nUT "},
}};

constexpr std::array<FieldDef, 5> kCitedBibliographic = {{
    {"Article title", "\nTI ", "\nSO "},
    {"Author(s)", "\nAU ", "\nTI "},
    {"Publication Year", "\nPY ", "\n"},
    {"Abstract", "\nAB ", "\nC1 "},
    {"Times Cited", "\nTC ", "\n"},
}};

constexpr std::array<FieldDef, 9> kFullBibliographic = {{
    {"Author(s)", "\nAU ", "\nTI "},
    {"Publication Year", "\nPY ", "\n"},
    {"Article title", "\nTI ", "\nSO "},
    {"Source", "\nSO ", "\nLA "},
    {"Keywords", "\nDE ", "\nAB "},
    {"Abstract", "\nAB ", "\nC1 "},
    {"Times Cited", "\nTC ", "\n"},
    {"References", "\nCR ", "\nNR "},
    {"Pearl Relations", "\nPR ", "\nPY "},
}};

constexpr std::array<FieldDef, 6> kRis = {{
    {"Publication Type", "\nTY ", "\n"},
    {"Author(s)", "\nAU ", "\n"},
    {"Publication Year", "\nPY ", "\n"},
    {"Title", "\nTI ", "\n"},
    {"Abstract", "\nN2 ", "\n"},
    {"Notes", "\nN1 ", "\n"},
}};

constexpr std::array<const char*, 6> kTwitter = {"DateTime", "User",  "Tweet",
                                                 "Sent+",    "Sent-", "SentSum"};

constexpr std::array<const char*, 16> kTwitter11 = {
    "DateTime",  "UserName",     "Tweet",     "Tweet ID",        "Real Name",   "Followers",
    "Following", "Public Lists", "Time Zone", "Geo coordinates", "User Tweets", "Retweeted",
    "Link URL",  "Sent+",        "Sent-",     "NetSent"};

constexpr std::array<const char*, 7> kMonitoring = {
    "ARTICLE_ID", "HEADLINE", "AUTHOR", "CONTENT", "ARTICLE_URL", "MEDIA_PROVIDER", "PUBLISH_DATE"};

constexpr std::array<const char*, 18> kPublications = {"QERN ID",
                                                       "Name",
                                                       "Publicationtype",
                                                       "Abstract",
                                                       "Authors",
                                                       "DOI",
                                                       "JournalORPublishedproceedings",
                                                       "Keywords",
                                                       "Nameofconference",
                                                       "BooktitleORReporttitle",
                                                       "Publicationdate",
                                                       "Title",
                                                       "CitationcountWebofScience",
                                                       "CitationcountScopus",
                                                       "JCRjournalname",
                                                       "JCRimpactfactor",
                                                       "ARCjournalname",
                                                       "ARCRank"};

constexpr std::array<const char*, 3> kDiscoveredLinks = {"Link", "Discovered", "Content"};

// Splits the items of a comma-separated list: items end at a comma or a line break; an item
// may be enclosed in double quotes (which may then hold commas); spaces around items go.
std::vector<std::string> SplitCsvItems(std::string_view text) {
  std::vector<std::string> items;
  std::size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && text[i] == ' ') ++i;
    std::string item;
    if (i < text.size() && text[i] == '"') {
      const std::size_t close = text.find('"', i + 1);
      const std::size_t end = close == std::string_view::npos ? text.size() : close;
      item.assign(text.substr(i + 1, end - i - 1));
      i = end == text.size() ? end : end + 1;
      while (i < text.size() && text[i] != ',' && text[i] != '\n') ++i;
    } else {
      const std::size_t end = text.find_first_of(",\n", i);
      const std::size_t stop = end == std::string_view::npos ? text.size() : end;
      item.assign(TrimSpaces(text.substr(i, stop - i)));
      i = stop;
    }
    items.push_back(std::move(item));
    if (i < text.size()) ++i;  // the comma or line break
  }
  return items;
}

}  // namespace

struct DocumentSet::FieldLayout {
  std::vector<std::string> names;
  std::vector<std::string> starts;
  std::vector<std::string> ends;

  template <std::size_t N>
  static FieldLayout Tagged(const std::array<FieldDef, N>& defs) {
    FieldLayout layout;
    for (const auto& def : defs) {
      layout.names.emplace_back(def.name);
      layout.starts.emplace_back(def.start);
      layout.ends.emplace_back(def.end);
    }
    return layout;
  }

  template <std::size_t N>
  static FieldLayout Columns(const std::array<const char*, N>& names) {
    FieldLayout layout;
    for (const char* name : names) layout.names.emplace_back(name);
    layout.starts.assign(N, "");
    layout.ends.assign(N, "");
    return layout;
  }
};

void DocumentSet::ApplyLayout(const FieldLayout& layout) {
  fieldNames_ = layout.names;
  startMarkers_ = layout.starts;
  endMarkers_ = layout.ends;
  fieldExpressed_.assign(fieldNames_.size(), true);
}

bool DocumentSet::ReadDefinitionFile(const std::string& path) {
  std::string bytes;
  std::string error;
  if (!ReadWholeFile(path, bytes, error)) {
    ApplyLayout({});
    return Fail("Field definition file: " + error);
  }
  DecodeText(bytes);
  std::erase(bytes, '\r');
  const std::size_t firstBreak = bytes.find('\n');
  const std::string_view countLine = std::string_view(bytes).substr(0, firstBreak);
  const auto declared = LeadingWholeNumber(countLine);
  const int count = static_cast<int>(std::clamp<std::int64_t>(declared, 0, kMaxFields - 1));
  const std::vector<std::string> items = SplitCsvItems(
      firstBreak == std::string::npos ? std::string_view()
                                      : std::string_view(bytes).substr(firstBreak + 1));
  FieldLayout layout;
  for (int i = 0; i < count; ++i) {
    const auto item = [&](int k) {
      const std::size_t at = static_cast<std::size_t>(3 * i + k);
      return at < items.size() ? items[at] : std::string();
    };
    layout.starts.push_back(item(0));
    layout.ends.push_back(item(1));
    layout.names.push_back(item(2));
  }
  ApplyLayout(layout);
  if (items.size() < static_cast<std::size_t>(3 * count)) {
    return Fail("Field definition file '" + path + "' declares " + std::to_string(count) +
                " fields but defines only " + std::to_string(items.size() / 3));
  }
  return true;
}

bool DocumentSet::InitFieldDefs(int fromType, std::string_view delimiter,
                                const std::string& filePath) {
  const auto markers = [&](std::string separator) {
    recordDelimiter_ = std::move(separator);
    parseMode_ = ParseMode::kMarkers;
    hasHeaderRow_ = false;
  };
  const auto columns = [&](bool header) {
    recordDelimiter_ = "\n";
    parseMode_ = ParseMode::kColumns;
    hasHeaderRow_ = header;
  };
  bool ok = true;
  switch (fromType) {
    case 0: {
      FieldLayout layout;
      layout.names = {"All Text"};
      layout.starts = {""};
      layout.ends = {std::string(delimiter)};
      ApplyLayout(layout);
      markers(std::string(delimiter));
      break;
    }
    case 1:
      // The definition file gives only the fields: records are cut at `delimiter` by markers.
      ok = ReadDefinitionFile(filePath);
      recordDelimiter_ = std::string(delimiter);
      parseMode_ = ParseMode::kMarkers;
      break;
    case 2:
      ApplyLayout(FieldLayout::Tagged(kNewsArticles));
      markers("</DOC>");
      break;
    case 3:
      ApplyLayout(FieldLayout::Tagged(kShortBibliographic));
      markers("\nER\n");
      break;
    case 4:
      ApplyLayout(FieldLayout::Tagged(kCitedBibliographic));
      markers("\nER\n");
      break;
    case 5:
      ApplyLayout(FieldLayout::Tagged(kFullBibliographic));
      markers("\nER\n");
      authorField_ = 0, dateTimeField_ = 1, titleField_ = 2, keyWordField_ = 4;
      contentField_ = 5, citedField_ = 6, refListField_ = 7;
      break;
    case 6:
      ApplyLayout(FieldLayout::Tagged(kRis));
      markers("ER - ");
      authorField_ = 1, dateTimeField_ = 2, titleField_ = 3, contentField_ = 4;
      break;
    case 7:
      ApplyLayout(FieldLayout::Columns(kTwitter));
      columns(false);
      break;
    case 8:
      ApplyLayout(FieldLayout::Columns(kTwitter11));
      columns(false);
      break;
    case 9:
      ApplyLayout(FieldLayout::Columns(kMonitoring));
      columns(true);
      break;
    case 10:
      ApplyLayout(FieldLayout::Columns(kPublications));
      columns(true);
      authorField_ = 1, contentField_ = 3, keyWordField_ = 7, dateTimeField_ = 10;
      titleField_ = 11, citedField_ = 12;
      break;
    case 11:
      ApplyLayout(FieldLayout::Columns(kDiscoveredLinks));
      columns(true);
      urlField_ = 0, dateTimeField_ = 1, contentField_ = 2;
      break;
    default:
      break;  // an unknown code keeps the field list
  }
  fieldExpressed_.assign(fieldNames_.size(), true);
  return ok;
}

}  // namespace sylvora
