// The load workflow of the "Load and Index" page ("Load Twitter File") and the short-link offer
// inside it.
#include <QApplication>
#include <QCheckBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>

#include "app/job_runner.h"
#include "app/load_index_page.h"
#include "app/note_notifier.h"
#include "app/platform.h"
#include "app/short_url_expander.h"
#include "app/short_url_resolution.h"
#include "session/corpus_load.h"

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view kOfferTitle = "Expanding Short URLs";

std::string OfferText(const std::string& path) {
  return "Sylvora can attempt to resolve Short URLs. This may take several minutes depending on "
         "the size of the file. \r\nThe resolved URLs will be saved to a new file named " +
         path + "_ .\r\nUsing this file in future sessions will result in faster load times.";
}

// Said instead of the offer when no expansion service is configured.
std::string NoServiceText() {
  return "short links are kept as they are; to expand them, name a link expansion service "
         "as service=http://... under [ShortLinks] in sylvora.ini in the settings folder.";
}

}  // namespace

bool LoadIndexPage::OfferShortLinks(Session& session, LoadReport& report, const std::string& path) {
  if (session.Corpus().format != CorpusFormat::kTwitter11 || path.ends_with('_')) return true;
  const DocumentSet& documents = session.Documents();
  if (!HasShortURLs(documents, documents.URLField())) return true;
  Notifier& notifier = services_.notifier;
  if (shortUrlService_.isEmpty()) {
    // Nothing to decide: a note in the progress text, said once per load.
    report.warnings.push_back(std::string(kOfferTitle) + ": " + NoServiceText());
    return true;
  }
  if (notifier.Ask(OfferText(path), kOfferTitle, QuestionButtons::kYesNo, MessageIcon::kQuestion) !=
      Answer::kYes) {
    return true;
  }
  JobRunner& jobs = services_.jobs;
  ShortUrlExpander expander(shortUrlService_, shortUrlTimeLimitMs_);
  const std::function<bool()> stop = [&jobs] { return jobs.CancelRequested(); };
  const ShortURLReport resolved = ResolveShortURLs(
      session, path,
      [&](std::string_view link) { return expander.ExpandShortURL(link, false, false, stop); },
      [this, &jobs](const std::string& text) {
        jobs.Post([this, shown = QString::fromStdString(text)] { SetLoadProgress(shown); });
      },
      [&jobs](std::string_view, std::int64_t, std::int64_t) { return !jobs.CancelRequested(); });
  report.progressText = resolved.progressText;
  if (resolved.cancelled || jobs.CancelRequested()) return false;
  if (!resolved.saved) {
    notifier.ShowMessage("The corpus with its expanded links could not be saved: " +
                             resolved.error + ". The loaded corpus is kept.",
                         kOfferTitle, MessageIcon::kExclamation);
  }
  return true;
}

bool LoadIndexPage::LoadCorpus_Click() {
  if (services_.jobs.Busy()) return false;
  const QString path = corpusFilePath_->text();
  if (!FileExists(path)) {
    ShowMissingCorpus(path);
    return false;
  }
  const auto minDocLen = WholeNumberIn(minDocLen_, u"Min Chars (Load Options)"_s);
  if (!minDocLen) return false;
  maxDocCount_->setText(u"0"_s);

  LoadOptions options;
  options.path = path.toStdString();
  options.radian = radian_->isChecked();
  options.minDocLen = static_cast<int>(std::clamp<std::int64_t>(*minDocLen, INT32_MIN, INT32_MAX));
  options.maxDocCount = 0;
  options.unitCode = unitCode_.toStdString();
  std::string error;
  const auto shape = DetectCorpusShape(options.path, options.radian, error);
  if (!shape) {
    // An import that cannot be read says why; a tab-separated file keeps the plain message.
    if (!options.radian && MayBeImportFile(options.path)) {
      ShowImportLoadError(path, QString::fromStdString(error));
      SetLoadProgress(QString::fromStdString(error));
    } else {
      services_.platform.ShowMessage(u"There was an error loading "_s + path, u"Load Error"_s,
                                     MessageIcon::kCritical);
    }
    return false;
  }
  const bool imported = shape->imported;
  if (imported && !PrepareImport(options, shape->description)) {
    maxDocCount_->setText(QString::number(services_.session.Documents().DocumentCount()));
    return false;
  }
  importShape_ = imported ? QString::fromStdString(shape->description) : QString();

  QApplication::setOverrideCursor(Qt::WaitCursor);
  BeginJob();
  ResetTermListCaptions();
  SetLoadProgress(u"Loading "_s + path + (imported ? u" ("_s + importShape_ + u")"_s : QString()) +
                  u"..."_s);
  auto report = std::make_shared<LoadReport>();
  Session& session = services_.session;
  const bool started = services_.jobs.Start(
      u"Loading"_s,
      [this, &session, options, report, imported](const ProgressCallback& progress) {
        session.ClearIndexes();
        session.SetIndexed(false);
        // Imports carry the platform's own expanded links: no short-link offer.
        if (imported) {
          *report = LoadImport(session, options, progress);
          return;
        }
        // Notes that need no answer (the sort notice) join the progress text.
        std::vector<std::string> notes;
        NoteNotifier notifier(services_.notifier, notes);
        *report = LoadCorpus(session, options, notifier, progress,
                             [this, path = options.path](Session& s, LoadReport& r) {
                               return OfferShortLinks(s, r, path);
                             });
        report->warnings.insert(report->warnings.end(), notes.begin(), notes.end());
      },
      [this, report](bool cancelled) { FinishLoad(cancelled, *report); });
  if (!started) {
    QApplication::restoreOverrideCursor();
    EndJob();
  }
  return started;
}

void LoadIndexPage::ShowMissingCorpus(const QString& path) {
  if (path.trimmed().isEmpty()) {
    SetLoadProgress(u"Type the path of a corpus file or choose one with Browse."_s);
    return;
  }
  const QString reason =
      QFileInfo(path).isDir() ? u"it is a folder, not a file."_s : u"the file does not exist."_s;
  SetLoadProgress(u"Cannot load "_s + path + u": "_s + reason);
  services_.platform.ShowMessage(u"There was an error loading "_s + path + u": "_s + reason,
                                 u"Load Error"_s, MessageIcon::kCritical);
}

void LoadIndexPage::ShowNoCorpus() {
  docViewFrame_->setVisible(false);
  fieldList_->blockSignals(true);
  fieldList_->clear();
  fieldList_->blockSignals(false);
  docViewText_.clear();
  tdmFrame_->setEnabled(false);
  tdmFrame_->setVisible(true);
  doIndex_->setEnabled(false);
  emit captionChanged(baseCaption_);
}

void LoadIndexPage::FinishLoad(bool cancelled, const LoadReport& report) {
  QApplication::restoreOverrideCursor();
  EndJob();
  ResetTermListCaptions();
  const DocumentSet& documents = services_.session.Documents();
  if (cancelled || !report.loaded) {
    ShowNoCorpus();
    SetLoadProgress(cancelled ? u"Loading cancelled: no corpus is loaded."_s
                              : QString::fromStdString(report.error));
    emit corpusLoaded(false);
    return;
  }
  const DocIndex count = documents.DocumentCount();
  const QString countText = QString::number(count);
  emit captionChanged(baseCaption_ + u" ["_s + countText + u" tweets loaded]"_s);

  // The scroll bar covers every document.
  docViewScroll_->blockSignals(true);
  docViewScroll_->setRange(1, std::max<DocIndex>(count, 1));
  docViewScroll_->setPageStep(std::max<int>(1, count / 100));
  docViewScroll_->blockSignals(false);
  docCountLbl_->setText(u"/"_s + countText);
  tdmFrame_->setEnabled(true);
  df_[1]->setText(QString::number(count * 0.5, 'g', 15));

  fieldList_->blockSignals(true);
  fieldList_->clear();
  for (int field = 0; field < documents.FieldCount(); ++field) {
    auto* item = new QListWidgetItem(
        QString::fromStdString(documents.FieldName(static_cast<FieldIndex>(field))));
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    item->setCheckState(Qt::Unchecked);
    fieldList_->addItem(item);
  }
  fieldList_->blockSignals(false);
  maxDocCount_->setText(countText);
  docViewFrame_->setVisible(true);

  if (services_.session.Corpus().elapsedTimeDerived) {
    emit captionChanged(
        baseCaption_ + u" ["_s + countText + u" tweets loaded "_s +
        QString::fromUtf8(documents.Cell(0, documents.DateTimeField())) + u" to "_s +
        QString::fromUtf8(documents.Cell(count - 1, documents.DateTimeField())) + u"]"_s);
  }
  // Checking the content field marks it expressed and shows the word index frame.
  if (QListWidgetItem* content = fieldList_->item(documents.ContentField())) {
    content->setCheckState(Qt::Checked);
  }
  SetLoadProgress(ReportNoteLines(report) + QString::fromStdString(report.progressText));
  DocViewIndex_Change();
  doIndex_->setEnabled(true);
  // A typed path has no dialog file name: the loaded file names itself.
  const QString shownName =
      QFileInfo(QString::fromStdString(services_.session.Corpus().filePath)).fileName();
  emit captionChanged(baseCaption_ + u" ["_s + shownName + u", "_s + countText +
                      u" tweets loaded]"_s);
  df_[0]->setText(QString::number(count / 1000 + 2));
  emit corpusLoaded(true);
}

}  // namespace sylvora::app
