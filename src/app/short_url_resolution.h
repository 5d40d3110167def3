#pragma once
// ResolveShortURLs: expands the short links of the loaded corpus's link column and saves the
// corpus beside the file it was loaded from, with "_" appended to that file's name.
//
// A link index over the link column alone makes each distinct link one term (terms are the
// links with their scheme put back, as the link index writes them). For each term in term
// order: the host (GetURLDomain with the first label stripped) of 8 or more characters means
// the link is not short; otherwise one attempt is counted and the expander is asked; a long
// link whose length differs from the short one is a success and replaces the short link in
// every link cell that contains it (every occurrence). The progress text is refreshed after
// each term, and at the end "Saving updated corpus to " + path + "_" is appended and the set
// is written with ExportTSV (no column headers).
//
// Cost: one pass to index the column, one lookup per distinct link, and one rewrite of each
// cell that holds a replaced link. Runs on a worker thread; the expander is called there.

#include <functional>
#include <string>
#include <string_view>

#include "app/short_url_expander.h"
#include "common/progress.h"
#include "session/session.h"

namespace sylvora::app {

struct ShortURLReport {
  std::int32_t links = 0;      // distinct links (terms of the link index)
  std::int32_t processed = 0;  // terms looked at
  std::int32_t attempts = 0;
  std::int32_t successes = 0;
  bool cancelled = false;
  bool saved = false;
  std::string savedPath;
  // One line a user can act on, when the corpus could not be saved.
  std::string error;
  // The progress label's text at the end.
  std::string progressText;
};

// Expands one short link: (link, want title, want keywords) -> the expander's result.
using ExpandFunction = std::function<ExpandedURL(std::string_view shortURL)>;
// Receives the progress label's text whenever it changes (on the worker thread).
using ProgressTextFunction = std::function<void(const std::string& text)>;

// Whether any link in the column counts as short (host of fewer than 8 characters once its
// first label is stripped), so that expanding the links could change something.
bool HasShortURLs(const DocumentSet& documents, FieldIndex urlField);

// The label text after `processed` of `links` terms.
std::string ShortURLProgressText(std::int32_t processed, std::int32_t links, std::int32_t attempts,
                                 std::int32_t successes);

// `corpusPath` is the path the corpus was loaded from. A cancel stops before the next term and
// saves nothing; the links replaced so far stay replaced.
ShortURLReport ResolveShortURLs(Session& session, const std::string& corpusPath,
                                const ExpandFunction& expand, const ProgressTextFunction& showText,
                                const ProgressCallback& progress = {});

}  // namespace sylvora::app
