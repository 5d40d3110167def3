// JSON and named-column CSV files on the "Load and Index" page: the "Browse" filter, the
// column-mapping dialog, the offer to skip bad records, and the texts that name the shape found.
#include <algorithm>

#include <QCheckBox>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>

#include "app/column_mapping_dialog.h"
#include "app/job_runner.h"
#include "app/load_index_page.h"
#include "app/platform.h"
#include "corpus/csv_import.h"
#include "session/corpus_load.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view kLoadErrorTitle = "Load Error";

// Passes every message on except the load workflow's "Load Error" box, which it holds back so
// that the page can first offer to skip bad records and then name the import's message.
class HeldLoadErrorNotifier final : public Notifier {
 public:
  explicit HeldLoadErrorNotifier(Notifier& next) : next_(next) {}
  void ShowMessage(std::string_view text, std::string_view title, MessageIcon icon) override {
    if (title == kLoadErrorTitle) {
      held_ = true;
      return;
    }
    next_.ShowMessage(text, title, icon);
  }
  Answer Ask(std::string_view text, std::string_view title, QuestionButtons buttons,
             MessageIcon icon) override {
    return next_.Ask(text, title, buttons, icon);
  }
  bool Held() const { return held_; }

 private:
  Notifier& next_;
  bool held_ = false;
};

// JSON lines are counted as lines, other layouts as records.
std::string RecordWord(const ImportDetection& detection, std::int64_t count) {
  const bool lines = detection.container == JsonContainer::kLines;
  return std::string(lines ? "line" : "record") + (count == 1 ? "" : "s");
}

bool IsNamedCsv(const ImportPreview& preview) {
  return preview.shapeKnown && preview.detection.shape == ImportShape::kNamedCsv;
}

std::vector<std::string> TrimmedHeader(const std::vector<std::string>& header) {
  std::vector<std::string> trimmed = header;
  for (auto& column : trimmed) {
    while (!column.empty() && column.back() == ' ') column.pop_back();
    while (!column.empty() && column.front() == ' ') column.erase(0, 1);
  }
  return trimmed;
}

}  // namespace

QString LoadIndexPage::CorpusFileFilter() {
  return u"Tweet exports (*.txt *.txt_ *.tsv *.tab *.json *.jsonl *.ndjson *.json.gz *.jsonl.gz "
         u"*.ndjson.gz *.csv *.csv.gz);;"
         u"Tab-separated text (*.txt *.txt_ *.tsv *.tab);;"
         u"JSON / JSON lines (*.json *.jsonl *.ndjson *.json.gz *.jsonl.gz *.ndjson.gz);;"
         u"CSV (*.csv *.csv.gz);;"
         u"All files (*)"_s;
}

std::vector<std::pair<std::string, std::string>> LoadIndexPage::ColumnMapFor(
    const QString& path) const {
  if (path != columnMapPath_) return {};
  return columnMap_;
}

void LoadIndexPage::ShowImportLoadError(const QString& path, const QString& message) {
  services_.platform.ShowMessage(u"There was an error loading "_s + path + u"\r\n"_s + message,
                                 QString::fromUtf8(kLoadErrorTitle), MessageIcon::kCritical);
}

bool LoadIndexPage::ChooseColumnMap(const QString& path, const LoadOptions& options,
                                    const QString& why) {
  ImportPreview preview = PreviewCorpus(options, 20);
  if (!IsNamedCsv(preview)) return false;
  // The presets: the map in force where it names columns of the file, the built-in names
  // elsewhere (the mapping fills them in before it checks the needed roles).
  const auto header = TrimmedHeader(preview.detection.header);
  std::vector<std::pair<std::string, std::string>> known;
  for (const auto& pair : options.columnMap) {
    if (CsvRoleFromName(pair.first) &&
        std::find(header.begin(), header.end(), pair.second) != header.end()) {
      known.push_back(pair);
    }
  }
  std::vector<int> columns;
  std::string error;
  MapCsvColumns(options.path, header, known, columns, error);
  preview.csvColumns = columns;
  preview.detection.header = header;
  ColumnMappingDialog dialog(QFileInfo(path).fileName(), preview, why, window());
  if (services_.platform.ExecDialog(dialog) != QDialog::Accepted) return false;
  columnMapPath_ = path;
  columnMap_ = dialog.ColumnMap();
  return true;
}

bool LoadIndexPage::MapColumns_Click() {
  if (services_.jobs.Busy()) return false;
  const QString path = corpusFilePath_->text();
  if (!FileExists(path)) return false;
  LoadOptions options;
  options.path = path.toStdString();
  options.radian = radian_->isChecked();
  options.columnMap = ColumnMapFor(path);
  const ImportPreview preview = PreviewCorpus(options, 1);
  if (!IsNamedCsv(preview)) {
    std::string error;
    const auto shape = DetectCorpusShape(options.path, options.radian, error);
    services_.platform.ShowMessage(
        u"Columns are mapped for CSV files with a header row only; "_s + path + u" is "_s +
            (shape ? u"a "_s + QString::fromStdString(shape->description)
                   : u"not readable: "_s + QString::fromStdString(error)) +
            u"."_s,
        kProgramTitle, MessageIcon::kInformation);
    return false;
  }
  return ChooseColumnMap(path, options, {});
}

bool LoadIndexPage::PrepareImport(LoadOptions& options, const std::string& shape) {
  const QString path = QString::fromStdString(options.path);
  options.columnMap = ColumnMapFor(path);
  // JSON needs no map (and a JSON array would be read whole once more).
  if (!shape.starts_with(ImportShapeName(ImportShape::kNamedCsv))) return true;
  const ImportPreview preview = PreviewCorpus(options, 1);
  if (!IsNamedCsv(preview)) return true;
  std::vector<int> columns;
  std::string error;
  if (MapCsvColumns(options.path, TrimmedHeader(preview.detection.header), options.columnMap,
                    columns, error)) {
    return true;
  }
  if (!ChooseColumnMap(path, options, QString::fromStdString(error))) return false;
  options.columnMap = columnMap_;
  return true;
}

LoadReport LoadIndexPage::LoadImport(Session& session, LoadOptions options,
                                     const ProgressCallback& progress) {
  Notifier& notifier = services_.notifier;
  HeldLoadErrorNotifier held(notifier);
  LoadReport report = LoadCorpus(session, options, held, progress);
  if (report.loaded || !held.Held() || services_.jobs.CancelRequested()) return report;

  if (!options.skipBad) {
    // A trial that skips tells whether only some records are bad, and how many.
    ImportOptions trialOptions;
    trialOptions.columnMap = options.columnMap;
    trialOptions.skipBad = true;
    DocumentSet trial;
    ImportReport trialReport;
    const DetectionOutcome outcome =
        ImportCorpusFile(options.path, trialOptions, trial, trialReport, progress);
    const DocIndex kept = trial.DocumentCount();
    trial.Clear();
    if (outcome == DetectionOutcome::kImport && trialReport.skipped > 0 && kept > 0 &&
        !services_.jobs.CancelRequested()) {
      const std::string bad = RecordWord(trialReport.detection, trialReport.skipped);
      const std::string question = report.error + "\r\n\r\n" + std::to_string(trialReport.skipped) +
                                   " " + bad + " of the file cannot be read. Skip the bad " +
                                   RecordWord(trialReport.detection, 2) + " and load the other " +
                                   std::to_string(kept) + " posts?";
      if (notifier.Ask(question, "Bad Records", QuestionButtons::kYesNo, MessageIcon::kQuestion) ==
          Answer::kYes) {
        options.skipBad = true;
        HeldLoadErrorNotifier again(notifier);
        report = LoadCorpus(session, options, again, progress);
        if (report.loaded || !again.Held() || services_.jobs.CancelRequested()) return report;
      }
    }
  }
  notifier.ShowMessage("There was an error loading " + options.path + "\r\n" + report.error,
                       kLoadErrorTitle, MessageIcon::kCritical);
  return report;
}

QString LoadIndexPage::ReportNoteLines(const LoadReport& report) const {
  QString lines;
  if (!importShape_.isEmpty())
    lines = u"Read "_s + QString::fromStdString(report.shape) + u"\r\n"_s;
  for (const std::string& warning : report.warnings) {
    lines += QString::fromStdString(warning) + u"\r\n"_s;
  }
  return lines;
}

}  // namespace sylvora::app
