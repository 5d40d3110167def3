#include "stream_fixtures.h"

#include <stdexcept>

#include "common/date_time.h"

namespace sylvora::testing {

StreamCorpus MakeStreamCorpus(const std::vector<StreamDoc>& docs) {
  const DateTime origin = *DateTime::FromParts(2013, 9, 2);
  std::vector<std::vector<std::string>> rows;
  for (const StreamDoc& doc : docs) {
    rows.push_back({DateAdd(TimeUnit::kHour, doc.time, origin).Format(), doc.link, doc.text,
                    doc.pos, doc.neg, std::to_string(doc.time)});
  }
  StreamCorpus result;
  result.corpus = std::make_unique<DocumentSet>();
  DocumentSet& corpus = *result.corpus;
  corpus.SetDocuments(rows, 7, static_cast<DocIndex>(rows.size()));
  if (corpus.FieldCount() < 6) throw std::runtime_error("six-column layout expected");
  corpus.SetDateTimeField(kDateField);
  corpus.SetURLField(kLinkField);
  corpus.SetContentField(kTextField);
  corpus.SetElapsedTimeField(kElapsedField);
  corpus.SetFieldExpressionPattern("001");

  result.index = std::make_unique<TermDocumentMatrix>();
  TermDocumentMatrix& index = *result.index;
  DocIndex count = corpus.DocumentCount();
  index.AssignText(corpus, count, false);
  index.Preprocess(true, false, 1, "", false);
  index.BuildVocab(0, 999);
  index.BuildTDM(1, 1000000);

  result.stream = std::make_unique<TextStream>();
  result.stream->SetDocumentSet(corpus);
  result.stream->SetTermDocumentMatrix(index);
  return result;
}

StreamCorpus Built(const std::vector<StreamDoc>& docs, std::int32_t length) {
  StreamCorpus c = MakeStreamCorpus(docs);
  if (!c.stream->BuildTermIntervalFrequencyModel(kElapsedField, length)) {
    throw std::runtime_error("test model not built");
  }
  return c;
}

}  // namespace sylvora::testing
