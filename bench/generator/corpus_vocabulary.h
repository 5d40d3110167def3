#pragma once
// The words of the synthetic corpus: a made-up storm, Marisol, hitting the made-up coastal town
// of Port Wrenna, which had to cancel its Harbour Lights music festival and then lost power.
//
// Everything here is data. Entries and templates may end in a polarity annotation, "|+3",
// "|-2" or "|+2 -3": the positive and negative strengths (1..4) the text carries, which the
// generator turns into the tweet's sentiment columns. Templates hold slots in braces:
//   {name}        a random entry of the lexicon list `name`;
//   {n:LO-HI}     a whole number from LO to HI;
//   {@user}       "@" and the handle of a random user;
//   {@official}   "@" and the handle of an official account of the tweet's topic.
// Entries of lexicon lists are plain text (no slots). Nothing here holds a tab or a line feed.

#include <span>
#include <string_view>

namespace sylvora::bench::vocabulary {

using WordList = std::span<const std::string_view>;

// The topics a tweet can be about. The three bursts come last.
enum Topic : int {
  kChatter = 0,     // everyday life in town, unrelated to the storm
  kStormWatch = 1,  // forecasts and preparation, before landfall
  kAftermath = 2,   // cleanup and recovery, after landfall
  kFestival = 3,    // burst: the Harbour Lights festival is cancelled
  kLandfall = 4,    // burst: the storm comes ashore at night
  kOutage = 5,      // burst: the town loses power
  kTopicCount = 6,
};

struct NamedList {
  std::string_view name;
  WordList entries;
};

struct TopicText {
  std::string_view name;
  std::string_view subject;  // the monitoring export's SUBJECT column
  WordList templates;
  WordList hashtags;               // without "#"; repeated entries are drawn more often
  WordList linkDomains;            // sites whose articles the topic's tweets link to
  WordList linkSlugs;              // article names on those sites
  std::span<const int> officials;  // indices into Officials()
};

struct OfficialAccount {
  std::string_view handle;
  std::string_view realName;
  int followers;
};

// The lists that template slots name.
std::span<const NamedList> Lexicon();

const TopicText& Topic(int topic);

// Extra templates of the storm-watch topic, used only before the festival is cancelled.
WordList FestivalHype();

// Short closing phrases that may follow a topic's template.
WordList Tails(int topic);

// Emoji, with polarity annotations like every entry.
WordList Emoji();

std::span<const OfficialAccount> Officials();

// Names for the generated users. First names are "Display|handle" pairs where the display form
// has an accent; the others are written once and lower-cased for handles.
WordList FirstNames();
WordList LastNames();
WordList HandleWords();
// Profile time zones; empty entries stand for users who set none.
WordList TimeZones();

}  // namespace sylvora::bench::vocabulary
