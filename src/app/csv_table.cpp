#include "app/csv_table.h"

#include <QAbstractItemModel>
#include <QSaveFile>

namespace sylvora::app {

using namespace Qt::StringLiterals;

QString CsvField(const QString& text) {
  const bool quote =
      text.contains(u',') || text.contains(u'"') || text.contains(u'\r') || text.contains(u'\n');
  if (!quote) return text;
  QString quoted = text;
  quoted.replace(u"\""_s, u"\"\""_s);
  return u'"' + quoted + u'"';
}

QString CsvRecord(const QStringList& fields) {
  QString record;
  for (qsizetype i = 0; i < fields.size(); ++i) {
    if (i > 0) record += u',';
    record += CsvField(fields[i]);
  }
  return record;
}

QString CsvText(const QAbstractItemModel& model) {
  const int columns = model.columnCount();
  const int rows = model.rowCount();
  QStringList fields;
  fields.reserve(columns);
  for (int c = 0; c < columns; ++c) {
    fields.push_back(model.headerData(c, Qt::Horizontal, Qt::DisplayRole).toString());
  }
  QString text = CsvRecord(fields) + u"\r\n"_s;
  for (int r = 0; r < rows; ++r) {
    fields.clear();
    for (int c = 0; c < columns; ++c) {
      fields.push_back(model.data(model.index(r, c), Qt::DisplayRole).toString());
    }
    text += CsvRecord(fields);
    text += u"\r\n"_s;
  }
  return text;
}

bool SaveText(const QString& text, const QString& path, QString& error) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) {
    error = u"Cannot write "_s + path + u": "_s + file.errorString();
    return false;
  }
  file.write(text.toUtf8());
  if (!file.commit()) {
    error = u"Cannot write "_s + path + u": "_s + file.errorString();
    return false;
  }
  return true;
}

bool SaveCsv(const QAbstractItemModel& model, const QString& path, QString& error) {
  return SaveText(CsvText(model), path, error);
}

}  // namespace sylvora::app
