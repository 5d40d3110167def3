#include "index_fixtures.h"

#include <stdexcept>

namespace sylvora::testing {
namespace {

constexpr FieldIndex kTextField = 2;

}  // namespace

DocumentSet TextCorpus(const std::vector<std::string>& texts) {
  std::vector<std::vector<std::string>> rows;
  for (const std::string& text : texts) rows.push_back({"", "", text, "", "", ""});
  DocumentSet set;
  set.SetDocuments(rows, 7, static_cast<DocIndex>(rows.size()));
  set.SetFieldExpressionPattern("001");
  return set;
}

DocumentSet TextCorpusFile(const TempDir& dir, const std::string& name,
                           const std::vector<std::string>& texts) {
  std::string file;
  // Records of 16 bytes or fewer are not parsed: the first two columns pad every line.
  for (const std::string& text : texts)
    file += "2011-01-05 10:00:00\tuser\t" + text + "\t1\t-1\t0\n";
  std::string path = dir.WriteFile(name, file);
  DocumentSet set;
  if (!set.LoadDocuments(path, 7, "\n", 0, 0, false)) {
    throw std::runtime_error("test corpus not loaded: " + set.LastError());
  }
  set.SetFieldExpressionPattern("");
  set.SetFieldExpressed(kTextField, true);
  return set;
}

TermDocumentMatrix Assigned(const DocumentSet& corpus, bool links) {
  TermDocumentMatrix index;
  DocIndex count = corpus.DocumentCount();
  index.AssignText(corpus, count, links);
  return index;
}

std::string WriteStopList(const TempDir& dir, const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += word + "\n";
  return dir.WriteFile("stop_words.txt", text);
}

std::vector<std::string> Texts(const TermDocumentMatrix& index) {
  std::vector<std::string> texts;
  for (DocIndex d = 1; d <= index.DocCount(); ++d) texts.push_back(index.Text(d));
  return texts;
}

std::vector<std::string> Terms(const TermDocumentMatrix& index) {
  std::vector<std::string> terms;
  for (std::int32_t t = 1; t <= index.TermCount(); ++t) terms.push_back(index.Term(t));
  return terms;
}

TermDocumentMatrix SpaceIndex(const std::vector<std::string>& texts, std::int32_t maxCharSlotSz,
                              bool build, std::int32_t minDF, std::int32_t maxDF) {
  TermDocumentMatrix index = Assigned(TextCorpus(texts));
  index.Preprocess(true, false, 3, "", false);
  index.BuildVocab(0, maxCharSlotSz);
  if (build) index.BuildTDM(minDF, maxDF);
  return index;
}

}  // namespace sylvora::testing
