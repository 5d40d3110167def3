#include "app/column_mapping_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTableView>
#include <QVBoxLayout>

namespace sylvora::app {

using namespace Qt::StringLiterals;

namespace {

QString RoleLabel(CsvRole role) {
  switch (role) {
    case CsvRole::kDateTime:
      return u"Date-time"_s;
    case CsvRole::kUser:
      return u"User"_s;
    case CsvRole::kText:
      return u"Text"_s;
    case CsvRole::kLink:
      return u"Link"_s;
    case CsvRole::kPositive:
      return u"Positive sentiment"_s;
    case CsvRole::kNegative:
      return u"Negative sentiment"_s;
    default:
      break;
  }
  return QString::fromUtf8(CsvRoleName(role));
}

}  // namespace

const std::vector<CsvRole>& ColumnMappingDialog::Roles() {
  static const std::vector<CsvRole> roles = {CsvRole::kDateTime, CsvRole::kUser,
                                             CsvRole::kText,     CsvRole::kLink,
                                             CsvRole::kPositive, CsvRole::kNegative};
  return roles;
}

ColumnMappingDialog::ColumnMappingDialog(const QString& fileName, const ImportPreview& preview,
                                         const QString& why, QWidget* parent)
    : QDialog(parent), header_(preview.detection.header) {
  setObjectName(u"ColumnMapping"_s);
  setWindowTitle(u"Map Columns - "_s + fileName);
  auto* layout = new QVBoxLayout(this);
  if (!why.isEmpty()) {
    auto* message = new QLabel(why);
    message->setObjectName(u"MappingReason"_s);
    message->setWordWrap(true);
    layout->addWidget(message);
  }

  // Header and first records; short records leave their last cells empty.
  const int columns = static_cast<int>(header_.size());
  model_ = new QStandardItemModel(static_cast<int>(preview.rawRows.size()), columns, this);
  for (int c = 0; c < columns; ++c) {
    model_->setHeaderData(c, Qt::Horizontal,
                          QString::fromStdString(header_[static_cast<std::size_t>(c)]));
  }
  for (std::size_t r = 0; r < preview.rawRows.size(); ++r) {
    const auto& record = preview.rawRows[r];
    for (int c = 0; c < columns && c < static_cast<int>(record.size()); ++c) {
      auto* item = new QStandardItem(QString::fromStdString(record[static_cast<std::size_t>(c)]));
      item->setEditable(false);
      model_->setItem(static_cast<int>(r), c, item);
    }
  }
  table_ = new QTableView;
  table_->setObjectName(u"MappingPreview"_s);
  table_->setModel(model_);
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->horizontalHeader()->setDefaultSectionSize(140);
  table_->setMinimumSize(640, 220);
  layout->addWidget(table_, 1);

  auto* form = new QFormLayout;
  for (const CsvRole role : Roles()) {
    auto* box = new QComboBox;
    box->setObjectName(u"Role_"_s + QString::fromUtf8(CsvRoleName(role)));
    box->addItem(u"(none)"_s);
    for (const std::string& column : header_) box->addItem(QString::fromStdString(column));
    const auto index = static_cast<std::size_t>(role);
    const int preset = index < preview.csvColumns.size() ? preview.csvColumns[index] : -1;
    box->setCurrentIndex(preset >= 0 && preset < columns ? preset + 1 : 0);
    connect(box, &QComboBox::currentIndexChanged, this, [this] { UpdateState(); });
    form->addRow(RoleLabel(role), box);
    boxes_.push_back(box);
  }
  layout->addLayout(form);

  status_ = new QLabel;
  status_->setObjectName(u"MappingStatus"_s);
  layout->addWidget(status_);
  buttons_ = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons_);
  UpdateState();
}

QComboBox* ColumnMappingDialog::RoleBox(CsvRole role) const {
  const auto& roles = Roles();
  for (std::size_t i = 0; i < roles.size(); ++i) {
    if (roles[i] == role) return boxes_[i];
  }
  return nullptr;
}

int ColumnMappingDialog::ColumnOf(CsvRole role) const {
  const QComboBox* box = RoleBox(role);
  return box ? box->currentIndex() - 1 : -1;
}

void ColumnMappingDialog::SetColumnOf(CsvRole role, int column) {
  if (QComboBox* box = RoleBox(role)) box->setCurrentIndex(column + 1);
}

std::vector<std::pair<std::string, std::string>> ColumnMappingDialog::ColumnMap() const {
  std::vector<std::pair<std::string, std::string>> map;
  for (const CsvRole role : Roles()) {
    const int column = ColumnOf(role);
    if (column < 0 || column >= static_cast<int>(header_.size())) continue;
    map.emplace_back(std::string(CsvRoleName(role)), header_[static_cast<std::size_t>(column)]);
  }
  return map;
}

void ColumnMappingDialog::UpdateState() {
  QStringList missing;
  for (const CsvRole role : {CsvRole::kDateTime, CsvRole::kText}) {
    if (ColumnOf(role) < 0) missing.push_back(RoleLabel(role).toLower());
  }
  status_->setText(missing.isEmpty()
                       ? QString()
                       : u"Choose a column for the "_s + missing.join(u" and the "_s) + u"."_s);
  buttons_->button(QDialogButtonBox::Ok)->setEnabled(missing.isEmpty());
}

}  // namespace sylvora::app
