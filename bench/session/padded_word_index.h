// The word index of a generated corpus padded to a chosen size, for the map benchmarks: each
// tweet gets five made-up words drawn from topic groups of twenty, so that the words co-occur
// in clusters, and the index keeps terms in at least 20 tweets.
#pragma once

#include <string>

#include "session/session.h"

namespace sylvora::bench {

// Loads `corpusPath` into `session`, adds words from a made-up vocabulary of `madeUpWords`
// (none when 0) and builds the indexes with the source tree's stop list; false with `error`.
bool LoadAndIndexPadded(Session& session, const std::string& corpusPath, int madeUpWords,
                        std::string& error);

// Terms of the word index of `corpusPath` without made-up words (-1 when it fails); found once
// per process.
int BaseTermCount(const std::string& corpusPath);

// The stop list of the source tree.
std::string StopListPath();

}  // namespace sylvora::bench
