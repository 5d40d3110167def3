// Checks of the application's readers of outside bytes: the link expansion service's reply and
// the settings file "paths".

#include <QString>

#include <string>

#include "app/path_settings.h"
#include "app/short_url_expander.h"
#include "checks/target_list.h"

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
                            "]]></long-url><title><![CDATA[" + value +
                            "]]></title></response>";
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

}  // namespace

std::vector<FuzzTarget> AppTargets() {
  return {
      {"short_url_reply", CheckShortUrlReply},
      {"settings_file", CheckSettingsFile},
  };
}

}  // namespace sylvora::fuzz
