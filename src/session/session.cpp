#include "session/session.h"

namespace sylvora {

std::string_view CorpusFormatName(CorpusFormat format) {
  switch (format) {
    case CorpusFormat::kTwitter:
      return "Twitter";
    case CorpusFormat::kTwitter11:
      return "Twitter1.1";
    case CorpusFormat::kRadian6:
      return "Radian 6";
  }
  return "";
}

TermDocumentMatrix& Session::Index(IndexKind kind) {
  return const_cast<TermDocumentMatrix&>(static_cast<const Session&>(*this).Index(kind));
}

const TermDocumentMatrix& Session::Index(IndexKind kind) const {
  switch (kind) {
    case IndexKind::kWords:
      return words_;
    case IndexKind::kLinks:
      return links_;
    case IndexKind::kHashtags:
      return hashtags_;
    case IndexKind::kMentions:
      return mentions_;
    case IndexKind::kUsers:
      return users_;
  }
  return words_;
}

void Session::ClearIndexes() {
  for (const IndexKind kind : kIndexKinds) Index(kind) = TermDocumentMatrix();
  indexed_ = false;
  ClearModels();
}

void Session::ClearModels() {
  for (TextStream& model : models_) model = TextStream();
  modelsBuilt_ = false;
  intervalLength_ = 0;
  intervalUnit_.clear();
}

std::string_view IndexKindName(IndexKind kind) {
  switch (kind) {
    case IndexKind::kWords:
      return "words";
    case IndexKind::kLinks:
      return "links";
    case IndexKind::kHashtags:
      return "hashtags";
    case IndexKind::kMentions:
      return "mentions";
    case IndexKind::kUsers:
      return "users";
  }
  return "";
}

}  // namespace sylvora
