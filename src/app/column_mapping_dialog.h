#pragma once
// The column-mapping dialog of a named-column CSV file: the header and the first records in a
// table, one combo box per role (date-time, user, text, link, positive and negative
// sentiment) preset with the column the built-in names (or the map in force) give it, and
// OK / Cancel. Its choice is a column map as `sylvora-cli --map role=column` passes it: one
// pair per role that has a column. OK stays disabled until the date-time and the text roles
// have a column, since no document can be made without them.
//
// The combo boxes are named "Role_date", "Role_user", "Role_text", "Role_link",
// "Role_positive" and "Role_negative"; entry 0 is "(none)" and entry c + 1 is column c. The
// table is "MappingPreview", the message line "MappingStatus".

#include <string>
#include <utility>
#include <vector>

#include <QDialog>

#include "corpus/corpus_import.h"

class QComboBox;
class QDialogButtonBox;
class QLabel;
class QStandardItemModel;
class QTableView;

namespace sylvora::app {

class ColumnMappingDialog final : public QDialog {
  Q_OBJECT

 public:
  // The roles the dialog offers, in its order.
  static const std::vector<CsvRole>& Roles();

  // `preview` holds the header (detection.header), the first raw records and the column of
  // each role (csvColumns, -1 for none); `why` is shown above the table (the import's message
  // when the columns could not all be mapped by name), or nothing.
  ColumnMappingDialog(const QString& fileName, const ImportPreview& preview, const QString& why,
                      QWidget* parent = nullptr);

  // The role -> column name pairs chosen.
  std::vector<std::pair<std::string, std::string>> ColumnMap() const;
  // The column (0-based, -1 none) chosen for `role`.
  int ColumnOf(CsvRole role) const;
  void SetColumnOf(CsvRole role, int column);
  QComboBox* RoleBox(CsvRole role) const;
  QTableView* PreviewTable() const { return table_; }
  const QStandardItemModel& PreviewModel() const { return *model_; }

 private:
  void UpdateState();

  std::vector<std::string> header_;
  std::vector<QComboBox*> boxes_;  // in Roles() order
  QStandardItemModel* model_ = nullptr;
  QTableView* table_ = nullptr;
  QLabel* status_ = nullptr;
  QDialogButtonBox* buttons_ = nullptr;
};

}  // namespace sylvora::app
