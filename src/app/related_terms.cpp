#include "app/related_terms.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QRadioButton>
#include <QTableView>
#include <QVBoxLayout>

#include "app/related_terms_model.h"
#include "session/session.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

RelatedTerms::RelatedTerms(QWidget* parent) : QWidget(parent, Qt::Window) {
  setObjectName(u"RelatedTerms"_s);
  setWindowTitle(u"Related Words"_s);
  auto* layout = new QVBoxLayout(this);
  heading_ = new QLabel;
  heading_->setObjectName(u"Heading"_s);
  QFont bold = heading_->font();
  bold.setBold(true);
  heading_->setFont(bold);
  layout->addWidget(heading_);

  model_ = new RelatedTermsModel(this);
  list_ = new QTableView;
  list_->setObjectName(u"TermList"_s);
  list_->setModel(model_);
  list_->setSelectionBehavior(QAbstractItemView::SelectRows);
  list_->setSelectionMode(QAbstractItemView::SingleSelection);
  list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  list_->verticalHeader()->setVisible(false);
  list_->verticalHeader()->setDefaultSectionSize(list_->fontMetrics().height() + 4);
  list_->horizontalHeader()->setSectionsClickable(true);
  list_->horizontalHeader()->setStretchLastSection(true);
  list_->setColumnWidth(RelatedTermsModel::kTerm, 170);
  list_->setColumnWidth(RelatedTermsModel::kScore, 70);
  heading_->setWordWrap(true);
  layout->addWidget(list_, 1);
  connect(list_->horizontalHeader(), &QHeaderView::sectionClicked, this,
          &RelatedTerms::TermList_ColumnClick);
  connect(list_, &QTableView::clicked, this,
          [this](const QModelIndex& index) { TermList_Click(index.row()); });
  connect(list_, &QTableView::doubleClicked, this,
          [this](const QModelIndex& index) { TermList_DblClick(index.row()); });

  auto* options = new QHBoxLayout;
  const QString captions[2] = {u"Same Interval"_s, u"Same Tweet"_s};
  for (int index = 0; index < 2; ++index) {
    auto* option = new QRadioButton(captions[index]);
    option->setObjectName(u"FeatureType"_s);
    option->setProperty("index", index);
    option->setChecked(index == kSameInterval);
    connect(option, &QRadioButton::clicked, this, [this, index] { FeatureType_Click(index); });
    featureType_[static_cast<std::size_t>(index)] = option;
  }
  // "Same Tweet" first, as the window shows them.
  options->addWidget(featureType_[kSameTweet]);
  options->addWidget(featureType_[kSameInterval]);
  options->addStretch(1);
  layout->addLayout(options);
  // Wide enough for the DF column beside the scroll bar.
  resize(420, 480);
}

RelatedTerms::~RelatedTerms() = default;

QString RelatedTerms::HeadingText() const { return heading_->text(); }

void RelatedTerms::SourcesChanged() {
  for (auto& columns : columns_) columns.reset();
}

const SparseMatrixSingle* RelatedTerms::TermColumns(const Session& owner, Source from) {
  const SparseMatrixSingle& source =
      from == kSameTweet ? owner.WordIndex().Matrix() : owner.WordModel().TIFM();
  std::unique_ptr<SparseMatrixSingle>& kept = columns_[static_cast<std::size_t>(from)];
  // A kept copy of other dimensions comes from an earlier index or model.
  if (kept == nullptr || kept->ColCount() != source.RowCount() ||
      kept->RowCount() != source.ColCount()) {
    kept = std::make_unique<SparseMatrixSingle>();
    kept->SetMatrix(source);
    kept->Transpose();
  }
  return kept.get();
}

bool RelatedTerms::ShowRelatedTerms(const Session& owner, const QString& term) {
  if (readable_ && !readable_()) return false;
  const TermDocumentMatrix& index = owner.WordIndex();
  const std::string text = term.toStdString();
  std::int32_t termIndex = index.TermIndex(text);
  if (termIndex < 1) {
    // The lists show stems, and stemming a stem again does not always give it back: a term
    // the index holds as it is still counts.
    for (std::int32_t t = 1; t <= index.TermCount() && termIndex < 1; ++t) {
      if (index.Term(t) == text) termIndex = t;
    }
  }
  if (termIndex < 1) return false;
  QApplication::setOverrideCursor(Qt::BusyCursor);
  owner_ = &owner;
  term_ = term;
  // Intervals exist once the views are built; until then the tweets answer, and the heading
  // says so.
  const bool intervalsReady = owner.ModelsBuilt() && owner.WordModel().IntervalCount() > 0;
  const Source from = source_ == kSameInterval && !intervalsReady ? kSameTweet : source_;
  const SparseMatrixSingle* columns = TermColumns(owner, from);
  const SparseVectorSingle similar = columns->GetSimilarityVector(termIndex, *columns, 2);
  heading_->setText(
      u"Terms that co-occur with '"_s + term + u"'"_s +
      (from == source_ ? QString() : u" in the same tweets (build the views for intervals)"_s));
  std::vector<RelatedTermsModel::Row> rows;
  const auto terms = similar.ElementIndexes();
  const auto scores = similar.ElementValues();
  rows.reserve(terms.size());
  for (std::size_t k = 0; k < terms.size(); ++k) {
    if (!(scores[k] > 0.0f)) continue;
    rows.push_back({terms[k], scores[k], index.DocFreq(terms[k])});
  }
  model_->SetRows(&index, std::move(rows));
  list_->horizontalHeader()->setSortIndicatorShown(false);
  if (model_->rowCount() > 0) {
    list_->selectRow(0);
    list_->scrollTo(model_->index(0, 0));
  }
  QApplication::restoreOverrideCursor();
  return true;
}

void RelatedTerms::FeatureType_Click(int index) {
  if (index != kSameInterval && index != kSameTweet) return;
  source_ = static_cast<Source>(index);
  featureType_[static_cast<std::size_t>(index)]->setChecked(true);
  if (owner_ != nullptr && !term_.isEmpty()) ShowRelatedTerms(*owner_, term_);
}

void RelatedTerms::TermList_DblClick(int row) {
  if (owner_ == nullptr || row < 0 || row >= model_->rowCount()) return;
  ShowRelatedTerms(*owner_, model_->CellText(row, RelatedTermsModel::kTerm));
}

void RelatedTerms::TermList_Click(int row) {
  if (row < 0 || row >= model_->rowCount()) return;
  emit termSelected(model_->CellText(row, RelatedTermsModel::kTerm));
}

void RelatedTerms::TermList_ColumnClick(int column) {
  model_->HeaderClicked(column);
  list_->horizontalHeader()->setSortIndicatorShown(true);
  list_->horizontalHeader()->setSortIndicator(model_->SortColumn(), model_->SortOrder());
}

}  // namespace sylvora::app
