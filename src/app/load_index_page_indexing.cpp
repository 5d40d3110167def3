// The indexing workflow of the "Load and Index" page ("Create Tweet Indexes").
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QSpinBox>

#include "app/job_runner.h"
#include "app/load_index_page.h"
#include "app/platform.h"
#include "session/corpus_index.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

// The status line of each index, from the index name that starts a progress stage.
QString StatusOfStage(const QString& stage) {
  static const std::pair<QString, QString> kStatuses[] = {
      {u"words:"_s, u"Building word index..."_s},
      {u"links:"_s, u"Building link index..."_s},
      {u"hashtags:"_s, u"Building hashtag index..."_s},
      {u"mentions:"_s, u"Building mention index..."_s},
      {u"users:"_s, u"Building user index..."_s}};
  for (const auto& [prefix, status] : kStatuses) {
    if (stage.startsWith(prefix)) return status;
  }
  return {};
}

}  // namespace

void LoadIndexPage::OnJobProgress(const QString& stage) {
  if (services_.jobs.JobName() != u"Indexing"_s) return;
  const QString status = StatusOfStage(stage);
  if (!status.isEmpty()) SetIndexingStatus(status);
}

bool LoadIndexPage::DoIndex_Click() {
  if (services_.jobs.Busy() || services_.session.Documents().DocumentCount() == 0) return false;
  const auto maxDocs = WholeNumberIn(maxDocCount_, u"Max # Docs"_s);
  if (!maxDocs) return false;
  const auto minDF = WholeNumberIn(df_[0], u"Min DF"_s);
  if (!minDF) return false;
  const auto maxDF = NumberIn(df_[1], u"Max DF (%)"_s);
  if (!maxDF) return false;
  const auto minChars = WholeNumberIn(minChars_, u"Min Chars"_s);
  if (!minChars) return false;
  const auto secDF = WholeNumberIn(secDF_, u"Min DF (Tags, Links, Users, Mentions)"_s);
  if (!secDF) return false;
  if (*minChars < 0 || *minChars > 255) {
    services_.platform.ShowMessage(u"Min Chars must be a whole number from 0 to 255."_s,
                                   kProgramTitle, MessageIcon::kExclamation);
    return false;
  }

  IndexOptions options;
  for (int row = 0; row < fieldList_->count(); ++row) {
    if (fieldList_->item(row)->checkState() == Qt::Checked) {
      options.wordFields.push_back(static_cast<FieldIndex>(row));
    }
  }
  const auto clampInt = [](std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, INT32_MIN, INT32_MAX));
  };
  options.wordDocumentCount = std::max<std::int32_t>(0, clampInt(*maxDocs));
  options.minDocFrequency = clampInt(*minDF);
  options.maxDocFrequency = *maxDF;
  options.minChars = static_cast<int>(*minChars);
  options.porter = port_->isChecked();
  options.abbreviations = abbrev_->isChecked();
  options.allowNumbers = allowNumbers_->isChecked();
  options.secondaryMinDocFrequency = clampInt(*secDF);
  options.stopListPath = stopPath_->text().toStdString();
  options.termsPerLetter = capTerms_->isChecked() ? termsPerLetter_->value() : 0;

  BeginJob();
  SetIndexingStatus(u"Building word index..."_s);
  tdmLog_->setPlainText(u"Assigning text for processing..."_s);
  auto report = std::make_shared<IndexReport>();
  Session& session = services_.session;
  const bool started = services_.jobs.Start(
      u"Indexing"_s,
      [&session, options, report](const ProgressCallback& progress) {
        *report = BuildIndexes(session, options, progress);
      },
      [this, report](bool cancelled) { FinishIndexing(cancelled, *report); });
  if (!started) EndJob();
  return started;
}

void LoadIndexPage::FinishIndexing(bool cancelled, const IndexReport& report) {
  EndJob();
  AttachTermLists();
  if (services_.session.Indexed()) ShowWordIndexViewer();
  if (report.indexed) {
    QString log = QString::fromStdString(report.log);
    tdmLog_->setPlainText(log.replace(u"\r\n"_s, u"\n"_s));
    SetIndexingStatus(QString::fromStdString(report.status));
    emit indexesBuilt(true);
    return;
  }
  if (report.cancelled || cancelled) {
    SetIndexingStatus(services_.session.Indexed()
                          ? u"Indexing cancelled: the previous indexes are kept."_s
                          : u"Indexing cancelled: no indexes are built."_s);
  } else {
    const QString error = QString::fromStdString(report.error);
    SetIndexingStatus(u"Indexing stopped: "_s + error);
    services_.platform.ShowMessage(u"The indexes could not be built: "_s + error, kProgramTitle,
                                   MessageIcon::kExclamation);
  }
  emit indexesBuilt(false);
}

}  // namespace sylvora::app
