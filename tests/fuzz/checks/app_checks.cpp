// Checks of the application's readers of outside bytes: the link expansion service's reply,
// the settings file "paths" and the event time line file.

#include <QString>

#include <string>

#include "app/event_time_line.h"
#include "app/path_settings.h"
#include "app/short_url_expander.h"
#include "checks/target_list.h"
#include "common/date_time.h"
#include "common/text_decoding.h"

namespace sylvora::fuzz {
namespace {

bool IsPartOf(std::string_view part, std::string_view whole) {
  return part.empty() || whole.find(part) != std::string_view::npos;
}

std::string CheckReplyValues(const app::ExpandedURL& values, std::string_view reply) {
  for (const std::string* value : {&values.longURL, &values.title, &values.keywords}) {
    if (value->find(']') != std::string::npos) return "a reply value runs past its ']'";
    if (!IsPartOf(*value, reply)) return "a reply value is not part of the reply";
  }
  return {};
}

// A well-formed reply made of `value` (stripped of the bytes that end or open a tag) must give
// it back unchanged.
std::string CheckWellFormedReply(std::string_view input) {
  std::string value;
  for (char c : input.substr(0, 512)) {
    if (c != ']' && c != '<') value += c;
  }
  const std::string reply = "<?xml version=\"1.0\"?><response><long-url><![CDATA[" + value +
                            "]]></long-url><title><![CDATA[" + value + "]]></title></response>";
  const auto parsed = app::ParseExpandReply(reply);
  if (!parsed) return "a well-formed reply gave no long link";
  if (parsed->longURL != value || parsed->title != value) {
    return "a well-formed reply did not give its values back";
  }
  if (!parsed->keywords.empty()) return "keywords found in a reply without them";
  return {};
}

std::string CheckShortUrlReply(std::string_view input) {
  const auto parsed = app::ParseExpandReply(input);
  const bool hasLongLink = input.find("<long-url>") != std::string_view::npos;
  if (parsed.has_value() != hasLongLink) {
    return hasLongLink ? "a reply with <long-url> was refused" : "a long link made from nothing";
  }
  if (parsed) {
    if (std::string failure = CheckReplyValues(*parsed, input); !failure.empty()) return failure;
  }
  return CheckWellFormedReply(input);
}

bool HasControlCharacters(const QString& text) {
  for (QChar c : text) {
    if (c.unicode() < 0x20 && c != u'\t') return true;
  }
  return false;
}

// Whatever the file holds, the read paths are printable, and saving and reading them again is
// a fixed point with exactly two CR LF lines.
std::string CheckSettingsFile(std::string_view input) {
  const QString path = QString::fromStdString(WriteScratchFile("paths", input));
  const auto read = app::ReadPathSettings(path);
  if (!read) return "an existing settings file was not read";
  if (HasControlCharacters(read->stopPath) || HasControlCharacters(read->graphVisPath)) {
    return "a control character survived in a path";
  }
  QString error;
  if (!app::SavePathSettings(path, *read, error)) return "saving failed: " + error.toStdString();
  const auto again = app::ReadPathSettings(path);
  if (!again) return "a saved settings file was not read";
  if (again->stopPath != read->stopPath || again->graphVisPath != read->graphVisPath) {
    return "saved paths read back differently";
  }
  return {};
}

// Whatever the file holds, every non-blank line is either an event or counted as skipped, each
// kept event has a readable date-time, and its list entry begins with its two fields.
std::string CheckEventFile(std::string_view input) {
  const app::EventTimeLine read = app::ParseEventTimeLine(std::string(input));
  if (read.events.size() != read.listEntries.size()) return "events and list entries differ";
  if (read.events.empty() != !read.error.empty()) return "error text and events disagree";
  std::string text(input);
  DecodeText(text);
  std::size_t lines = 0;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.find_first_not_of(" \t") != std::string_view::npos) ++lines;
  }
  if (read.events.size() + static_cast<std::size_t>(read.skipped) != lines) {
    return "events and skipped lines do not add up to the lines";
  }
  for (std::size_t i = 0; i < read.events.size(); ++i) {
    const TimelineEvent& event = read.events[i];
    if (!DateTime::Parse(event.dateTime)) return "an event without a readable date-time";
    if (event.description.find_first_of("\t\n") != std::string::npos) {
      return "a description runs past its field";
    }
    if (!read.listEntries[i].starts_with(event.dateTime + "-" + event.description)) {
      return "a list entry does not start with its event";
    }
  }
  return {};
}

}  // namespace

std::vector<FuzzTarget> AppTargets() {
  return {
      {"short_url_reply", CheckShortUrlReply},
      {"settings_file", CheckSettingsFile},
      {"event_file", CheckEventFile},
  };
}

}  // namespace sylvora::fuzz
