#pragma once
// Saving a table the user sees as a CSV file: UTF-8 without a byte-order mark, one header row
// (the model's horizontal header texts), then one record per row of display texts, CR LF line
// ends, and a field quoted (its quotes doubled) when it holds a comma, a quote, CR or LF, as
// RFC 4180 writes it. Cost: one pass over the cells, written in one go.

#include <QString>
#include <QStringList>

class QAbstractItemModel;

namespace sylvora::app {

// One field as RFC 4180 writes it.
QString CsvField(const QString& text);
// One record (the fields joined by commas), without the line end.
QString CsvRecord(const QStringList& fields);

// The whole text of `model` as CSV (header row first).
QString CsvText(const QAbstractItemModel& model);

// Writes CsvText(model) to `path`; false with `error` set ("Cannot write <path>: <reason>")
// when the file cannot be written.
bool SaveCsv(const QAbstractItemModel& model, const QString& path, QString& error);
// Writes text that is already CSV.
bool SaveText(const QString& text, const QString& path, QString& error);

}  // namespace sylvora::app
