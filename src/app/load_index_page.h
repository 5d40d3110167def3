#pragma once
// The "Load and Index" tab of the main window: the corpus path with its "Browse" button and
// the load button, the options panel ("Show Advanced Options": load limits, the "Set Paths"
// frame and the options of the secondary indexes), the document viewer with its field list,
// the word index options with "Create Tweet Indexes", and the five term-statistics lists.
//
// The page owns its widgets (their objectName is the control's name: "LoadCorpus",
// "DocViewIndex", "TermLists", ...; the two "Min DF"/"Max DF (%)" boxes are both named "DF"
// and carry their array index in the property "index"). It runs its long work (load,
// short-link expansion, indexing) through the window's JobRunner and tells the window and
// the later tabs what happened through signals; it never reaches into another page.

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QWidget>

#include "app/path_settings.h"
#include "app/short_url_expander.h"
#include "common/progress.h"
#include "session/session.h"

class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPlainTextEdit;
class QPushButton;
class QScrollBar;
class QSlider;
class QSpinBox;
class QTabWidget;
class QTableView;

namespace sylvora {
class Notifier;
class TableLens;
struct LoadReport;
struct LoadOptions;
struct IndexReport;
}  // namespace sylvora

namespace sylvora::app {

class JobRunner;
class Platform;
class TermListModel;

// What the page borrows from the window; everything outlives the page.
struct PageServices {
  Platform& platform;
  Notifier& notifier;  // for core code (may be called from the job's thread)
  JobRunner& jobs;
  Session& session;
};

// The tab order of the term-statistics lists.
inline constexpr std::array<IndexKind, 5> kTermListOrder = {IndexKind::kWords, IndexKind::kHashtags,
                                                            IndexKind::kLinks, IndexKind::kMentions,
                                                            IndexKind::kUsers};

class LoadIndexPage final : public QWidget {
  Q_OBJECT

 public:
  explicit LoadIndexPage(PageServices services, QWidget* parent = nullptr);
  ~LoadIndexPage() override;

  // ---- Settings and start-up ----
  void SetPaths(const PathSettings& paths);
  PathSettings Paths() const;
  // Where "Save" writes the paths.
  void SetSettingsFile(const QString& filePath) { settingsFile_ = filePath; }
  // Base address of the link expansion service; empty when none is configured.
  void SetShortUrlService(const QString& address) { shortUrlService_ = address; }
  // How long each link waits for the service (ShortUrlExpander::kTimeLimitMs unless set).
  void SetShortUrlTimeLimit(int milliseconds) { shortUrlTimeLimitMs_ = milliseconds; }
  // The unit code of the elapsed-time column ("h" until the time line offers another).
  void SetIntervalUnitCode(const QString& code) { unitCode_ = code; }
  // The caption that the load's captions start from ("Sylvora v1.0.0").
  void SetBaseCaption(const QString& caption) { baseCaption_ = caption; }
  // The file name of the open-file dialog (set by "Browse" and by the command line).
  void SetDialogFileName(const QString& fileName) { dialogFileName_ = fileName; }
  void SetCorpusPath(const QString& path);
  void SetRadian(bool radian);

  // ---- The handlers of the page's controls (public so that the window and tests run them) ----
  void GetCorpusFilePath_Click();
  // Starts the load job; false when nothing was started (no such file, a bad number, busy).
  bool LoadCorpus_Click();
  void SavePaths_Click();
  void ShowExpPan_Click();
  // Starts the indexing job; false when nothing was started.
  bool DoIndex_Click();
  void DocViewIndex_Change();
  void DocViewScroll_Change();
  void FieldList_ItemCheck(QListWidgetItem* item);
  // "Map Columns...": the column-mapping dialog for the named-column CSV in the path box; its
  // choice is used by the loads of that file. False when the file is no such CSV or the
  // dialog was cancelled.
  bool MapColumns_Click();

  // The kinds of file "Browse" lists: tab-separated text, JSON and JSON lines, CSV (each also
  // gzip-compressed where the importers take it), and all files.
  static QString CorpusFileFilter();
  // The column map the loads of `path` use (chosen in the mapping dialog); empty for others.
  std::vector<std::pair<std::string, std::string>> ColumnMapFor(const QString& path) const;

  // ---- For the window, the later tabs and tests ----
  TermListModel& TermList(IndexKind kind);
  QTableView* TermListView(IndexKind kind);
  // The word index viewer ("TDMView"); null until the word index is built and while a job runs.
  TableLens* WordIndexViewer() { return tdmView_.get(); }
  // The document viewer's text as the viewer builds it (CR LF lines).
  const QString& DocViewText() const { return docViewText_; }
  // The progress label's text with its CR LF line breaks.
  const QString& LoadProgressText() const { return loadProgressText_; }
  // Adds a line to the progress text of the last load.
  void AppendLoadNote(const QString& note);

 signals:
  // The window caption the load asks for, in the order the workflow sets them.
  void captionChanged(const QString& caption);
  void corpusLoaded(bool loaded);
  void indexesBuilt(bool built);
  void indexingStatusChanged(const QString& status);
  // Every text the progress label shows (CR LF line breaks).
  void loadProgressChanged(const QString& text);
  // A row of a term list was clicked (for the time line and the message list).
  void termClicked(sylvora::IndexKind kind, const QString& term);
  // A word was double-clicked (for the "Related Words" window).
  void wordDoubleClicked(const QString& term);

 private:
  void BuildWidgets();
  QWidget* BuildLoadColumn();
  QWidget* BuildViewerColumn();
  QWidget* BuildIndexColumn();
  QGroupBox* BuildWordIndexViewer();
  // Drops the word index viewer (before a job replaces the index it shows).
  void DropWordIndexViewer();
  // A new table lens over the word index: cell style 4, row i named by term i.
  void ShowWordIndexViewer();
  void TDMViewCols_Change(int columns);
  QGroupBox* BuildExpertPanel();
  QGroupBox* BuildWordIndexOptions();

  // Reads a number box; shows a message naming the box and returns nullopt when it holds no
  // number.
  std::optional<double> NumberIn(QLineEdit* box, const QString& label);
  std::optional<std::int64_t> WholeNumberIn(QLineEdit* box, const QString& label);

  void SetLoadProgress(const QString& text);
  // Says in the progress text, and for a path that names nothing loadable in a box, why
  // "Load Twitter File" did not start.
  void ShowMissingCorpus(const QString& path);
  void SetIndexingStatus(const QString& status);
  void BeginJob();
  void EndJob();
  void DetachTermLists();
  void AttachTermLists();
  void ResetTermListCaptions();
  void ShowNoCorpus();
  bool OfferShortLinks(Session& session, LoadReport& report, const std::string& path);
  void FinishLoad(bool cancelled, const LoadReport& report);
  // JSON and CSV files (load_index_page_import.cpp). Before the job: the column map of a CSV
  // (the dialog opens when its columns cannot be mapped by name); false leaves the corpus.
  bool PrepareImport(LoadOptions& options, const std::string& shape);
  // Runs the dialog; false when cancelled. `why` tells the user what needs choosing.
  bool ChooseColumnMap(const QString& path, const LoadOptions& options, const QString& why);
  // On the job's thread: the load, with the offer to skip bad records when some are bad, and
  // the "Load Error" box naming the import's message.
  LoadReport LoadImport(Session& session, LoadOptions options, const ProgressCallback& progress);
  // The lines that say what was imported and the notes of the load, before the stage lines.
  QString ReportNoteLines(const LoadReport& report) const;
  void ShowImportLoadError(const QString& path, const QString& message);
  void FinishIndexing(bool cancelled, const IndexReport& report);
  void OnJobProgress(const QString& stage);
  void OnTermListDoubleClicked(IndexKind kind, int row);

  PageServices services_;
  QString settingsFile_;
  QString shortUrlService_;
  int shortUrlTimeLimitMs_ = ShortUrlExpander::kTimeLimitMs;
  QString unitCode_ = QStringLiteral("h");
  QString baseCaption_;
  QString dialogFileName_;
  QString loadProgressText_;
  QString docViewText_;
  QString indexingStatus_;
  // The shape of the file being loaded when it is an import ("X / Twitter API v2 JSON lines");
  // empty for tab-separated files.
  QString importShape_;
  // The mapping dialog's choice and the file it was made for.
  QString columnMapPath_;
  std::vector<std::pair<std::string, std::string>> columnMap_;

  // Load
  QLineEdit* corpusFilePath_ = nullptr;
  QPushButton* getCorpusFilePath_ = nullptr;
  QCheckBox* radian_ = nullptr;
  QPushButton* loadCorpus_ = nullptr;
  QLabel* loadProgress_ = nullptr;
  QPushButton* mapColumns_ = nullptr;
  // Options panel
  QPushButton* showExpPan_ = nullptr;
  QGroupBox* expertPanel_ = nullptr;
  QLineEdit* minDocLen_ = nullptr;
  QLineEdit* maxDocCount_ = nullptr;
  QLineEdit* stopPath_ = nullptr;
  QLineEdit* graphVisPath_ = nullptr;
  QPushButton* savePaths_ = nullptr;
  QLineEdit* secDF_ = nullptr;
  // Document viewer
  QGroupBox* docViewFrame_ = nullptr;
  QLineEdit* docViewIndex_ = nullptr;
  QScrollBar* docViewScroll_ = nullptr;
  QLabel* docCountLbl_ = nullptr;
  QPlainTextEdit* docView_ = nullptr;
  QListWidget* fieldList_ = nullptr;
  // Word index
  QGroupBox* tdmFrame_ = nullptr;
  std::array<QLineEdit*, 2> df_{};
  QLineEdit* minChars_ = nullptr;
  QCheckBox* port_ = nullptr;
  QCheckBox* abbrev_ = nullptr;
  QCheckBox* allowNumbers_ = nullptr;
  // "Terms per first letter": the cap of every index, off by default.
  QCheckBox* capTerms_ = nullptr;
  QSpinBox* termsPerLetter_ = nullptr;
  QPushButton* doIndex_ = nullptr;
  QLabel* indexingStatusLabel_ = nullptr;
  QPlainTextEdit* tdmLog_ = nullptr;
  // Term lists and the word index viewer
  QTabWidget* termLists_ = nullptr;
  std::array<QTableView*, 5> termListViews_{};
  std::array<TermListModel*, 5> termListModels_{};
  QGroupBox* tdmViewFrame_ = nullptr;
  QWidget* tdmViewContainer_ = nullptr;
  QScrollBar* tdmViewHScroller_ = nullptr;
  QScrollBar* tdmViewVScroller_ = nullptr;
  QSlider* tdmViewCols_ = nullptr;
  std::unique_ptr<TableLens> tdmView_;
};

}  // namespace sylvora::app
