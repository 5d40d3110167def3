// TableLens on the offscreen platform: layout rules, each cell style's pixels, marking,
// filtering, scrolling and the cell cursor, driven through QTest.

#include "views/table_lens.h"

#include <QDate>
#include <QImage>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

#include <memory>
#include <vector>

#include "support/qt_test_main.h"
#include "support/recording_notifier.h"
#include "view_test_support.h"

namespace sylvora {
namespace {

using testing::CountColour;
using testing::DarkestLevel;
using testing::PixelAt;

const QColor kHeaderBack(180, 225, 245);
const QColor kMarkedHeader(255, 128, 64);

// rows x cols, cell (r, c) = r * 100 + c unless listed in `zeros`.
SparseMatrixSingle NumberedTable(std::int32_t rows, std::int32_t cols) {
  SparseMatrixSingle table;
  table.Reset(rows, cols);
  for (std::int32_t c = 1; c <= cols; ++c) {
    for (std::int32_t r = 1; r <= rows; ++r) table.SetValue(r, c, static_cast<float>(r * 100 + c));
  }
  return table;
}

// rows x cols, empty but for 3 and 4 in rows 1 and 2 of column 1 (normed: 0.6 and 0.8).
SparseMatrixSingle ThreeAndFour(std::int32_t rows, std::int32_t cols) {
  SparseMatrixSingle table;
  table.Reset(rows, cols);
  table.SetValue(1, 1, 3.0f);
  table.SetValue(2, 1, 4.0f);
  return table;
}

// A window with a lens filling it, and optional scroll bars.
struct LensWindow {
  explicit LensWindow(QSize size = QSize(800, 400), bool withBars = false) {
    form = std::make_unique<QWidget>();
    form->resize(size);
    if (withBars) {
      horizontal = new QScrollBar(Qt::Horizontal, form.get());
      vertical = new QScrollBar(Qt::Vertical, form.get());
    }
    lens = std::make_unique<TableLens>(notifier);
    lens->InitializeTLCtl(form.get(), nullptr, horizontal, vertical);
    form->show();
  }
  // Showing NumberedTable(rows, cols).
  LensWindow(std::int32_t rows, std::int32_t cols, bool withBars = false)
      : LensWindow(QSize(800, 400), withBars) {
    table = NumberedTable(rows, cols);
    lens->SetNumDataTable(table);
  }
  QWidget* Surface() const { return lens->TLContainer(); }
  QPoint CellCentre(std::int32_t slot, std::int32_t column) const {
    return lens->CellRect(slot, column).center().toPoint();
  }

  testing::RecordingNotifier notifier;
  std::unique_ptr<QWidget> form;
  QScrollBar* horizontal = nullptr;
  QScrollBar* vertical = nullptr;
  SparseMatrixSingle table;
  std::unique_ptr<TableLens> lens;
};

}  // namespace

class TableLensTest : public QObject {
  Q_OBJECT

 private slots:
  // At most 10 columns and 20 rows at first; default names; the cursor on the first cell.
  void firstVisibleCounts() {
    const int cases[][4] = {{5, 30, 5, 10}, {20, 10, 20, 10}, {500, 3, 20, 3}};
    for (const auto& [rows, cols, visibleRows, visibleColumns] : cases) {
      LensWindow window(rows, cols);
      QCOMPARE(window.lens->VisibleRows(), visibleRows);
      QCOMPARE(window.lens->VisibleColumns(), visibleColumns);
    }
    LensWindow window(5, 30);
    QCOMPARE(window.lens->RowName(5) + window.lens->ColumnName(30), QStringLiteral("R5C30"));
    QCOMPARE(window.lens->CursorRow() + window.lens->CursorColumn(), 2);
  }

  void visibleColumnsPullsLeftColumnBack() {
    LensWindow window(5, 30);
    window.lens->SetVisibleColumns(3);
    window.lens->HorizontalScroll(24);
    QCOMPARE(window.lens->LeftColumn(), 25);
    window.lens->SetVisibleColumns(10);
    QCOMPARE(window.lens->LeftColumn(), 21);
  }

  // Narrower columns: the header widens to seven characters, the decimals drop to 0 (each count
  // printed must fit one column, one more must not), and the style turns from Text to Tile and
  // back, leaving a chosen Line alone.
  void narrowColumnsWidenTheHeaderDropDecimalsAndSwitchStyle() {
    LensWindow window(5, 200);
    QSignalSpy changed(window.lens.get(), &TableLens::CellStyleChanged);
    QCOMPARE(window.lens->HeaderWidth(), 0.0f);  // ten wide columns hold "abcdefg"
    QCOMPARE(window.lens->Decimals(), static_cast<std::int16_t>(5));
    int previous = 5;
    for (int columns : {12, 16, 20, 25, 30, 40, 60, 100}) {
      window.lens->SetVisibleColumns(columns);
      QVERIFY(window.lens->Decimals() <= previous);
      previous = window.lens->Decimals();
    }
    QCOMPARE(previous, 0);
    QVERIFY(window.lens->HeaderWidth() < 0.0f);  // widened
    QCOMPARE(window.lens->CellRect(1, 0).left(), 0.0);
    QCOMPARE(changed.count(), 1);  // not even "1.23" fits at 100
    QCOMPARE(changed.at(0).at(0).toInt(), 1);
    window.lens->SetCellStyle(TableLens::kLine);  // Line stays on narrow columns
    window.lens->SetVisibleColumns(101);
    QCOMPARE(window.lens->CellStyle(), std::uint8_t{TableLens::kLine});
    window.lens->SetVisibleColumns(5);  // wide again: three decimals fit
    QCOMPARE(changed.count(), 2);
    QCOMPARE(changed.at(1).at(0).toInt(), 0);
  }

  // Drawing without a table says so once; an empty table draws headers only, silently.
  void renderWithoutTableReportsErrorAndAnEmptyTableDrawsHeadersOnly() {
    LensWindow window;
    window.lens->SetCellStyle(TableLens::kTile);
    QCOMPARE(window.notifier.Messages().size(), std::size_t{1});
    SparseMatrixSingle table;
    window.lens->SetNumDataTable(table);
    QCOMPARE(window.lens->VisibleRows() + window.lens->VisibleColumns(), 0);
    QTest::mouseClick(window.Surface(), Qt::LeftButton, {}, QPoint(700, 300));
    QTest::keyClick(window.Surface(), Qt::Key_Right);
    QCOMPARE(window.notifier.Messages().size(), std::size_t{1});
  }

  // Column 1 holds 3 and 4 (normed 0.6 and 0.8), column 2 nothing: each graphic style draws
  // these cells its own way, and Tile shades the two values apart.
  void eachGraphicStyleDrawsTheCellsItsOwnWay() {
    LensWindow window(QSize(800, 400));
    const SparseMatrixSingle table = ThreeAndFour(3, 40);
    window.lens->SetNumDataTable(table);
    window.lens->SetVisibleColumns(40);
    const QRect cells =
        window.lens->CellRect(1, 1).united(window.lens->CellRect(3, 2)).toAlignedRect();
    std::vector<QImage> drawn;
    for (const int style :
         {TableLens::kTile, TableLens::kLine, TableLens::kHorizontalBar, TableLens::kVerticalBar}) {
      window.lens->SetCellStyle(static_cast<std::uint8_t>(style));
      const QImage picture = window.lens->Picture().copy(cells);
      for (const QImage& other : drawn)
        QVERIFY2(picture != other, qPrintable(QString::number(style)));
      drawn.push_back(picture);
    }
    window.lens->SetCellStyle(TableLens::kTile);
    const QImage& tile = window.lens->Picture();
    QVERIFY(PixelAt(tile, window.CellCentre(1, 1)) != PixelAt(tile, window.CellCentre(2, 1)));
  }

  void textStyleNumbersAndGreyZeros() {
    LensWindow window(QSize(800, 400));
    const SparseMatrixSingle table = ThreeAndFour(2, 3);
    window.lens->SetNumDataTable(table);
    QCOMPARE(window.lens->CellStyle(), std::uint8_t{TableLens::kText});
    const QImage& picture = window.lens->Picture();
    QVERIFY(DarkestLevel(picture, window.lens->CellRect(1, 1)) < 60);  // black digits
    // Zero cells in grey (150): anti-aliasing only lightens a glyph's edge, so the darkest
    // pixel is near that grey, far from the black digits and the white ground.
    const int zeroDarkest = DarkestLevel(picture, window.lens->CellRect(1, 2));
    QVERIFY2(zeroDarkest >= 145 && zeroDarkest <= 200, qPrintable(QString::number(zeroDarkest)));
    // The column header shows the column's name on the header colour.
    QVERIFY(CountColour(picture, window.lens->CellRect(0, 1), kHeaderBack) > 50);
    // Raw values print otherwise than normed ones ("4.00000" against "0.80000").
    const QImage normed = window.lens->Picture().copy(window.lens->CellRect(2, 1).toAlignedRect());
    window.lens->SetNormedCellValues(false);
    QVERIFY(window.lens->Picture().copy(window.lens->CellRect(2, 1).toAlignedRect()) != normed);
  }

  void namesDefaultUntilGivenAndResetWithANewTable() {
    LensWindow window(4, 50);
    window.lens->SetVisibleColumns(50);  // narrow row headers shorten long names
    QCOMPARE(window.lens->ColumnName(2), QStringLiteral("C2"));
    window.lens->SetColumnName(2, QStringLiteral("02/09"));
    window.lens->SetColumnName(3, QString());  // an empty name is kept as given
    QCOMPARE(window.lens->ColumnName(2), QStringLiteral("02/09"));
    QCOMPARE(window.lens->ColumnName(3), QString());
    window.lens->SetRowName(1, QStringLiteral("abcdefghijklmno"));
    window.lens->SetRowName(2, QStringLiteral("storm"));
    QCOMPARE(window.lens->RowHeaderText(1), QStringLiteral("abcdef.."));
    QCOMPARE(window.lens->RowHeaderText(2), QStringLiteral("storm"));

    SparseMatrixSingle wider;  // the documents of a large word index: empty columns
    wider.Reset(2, 200'000);
    window.lens->SetNumDataTable(wider);
    QCOMPARE(window.lens->ColumnName(200'000), QStringLiteral("C200000"));
    QCOMPARE(window.lens->RowName(3), QString());  // the new table has two rows
    QCOMPARE(window.lens->RowName(2), QStringLiteral("R2"));
  }

  void clickingRowHeaderMarksAndUnmarks() {
    LensWindow window(6, 5);
    const QPoint header = window.CellCentre(2, 0);
    QTest::mouseClick(window.Surface(), Qt::LeftButton, {}, header);
    QCOMPARE(window.lens->MarkedRowCount(), 1);
    QTest::mouseClick(window.Surface(), Qt::LeftButton, {}, header);
    QCOMPARE(window.lens->MarkedRowCount(), 0);
  }

  void filteringShowsOnlyMarkedRows() {
    LensWindow window(30, 5);
    window.lens->VerticalScroll(5);  // the filtered view ignores the top row
    window.lens->SetRowMarked(4, true);
    window.lens->SetRowMarked(17, true);
    window.lens->SetFilterRows(true);
    QCOMPARE(window.lens->SlotRow(1), 4);
    QCOMPARE(window.lens->SlotRow(2), 17);
    QCOMPARE(window.lens->SlotRow(3), 0);
    const QImage& picture = window.lens->Picture();
    QVERIFY(CountColour(picture, window.lens->CellRect(2, 0), kMarkedHeader) > 50);
    QCOMPARE(DarkestLevel(picture, window.lens->CellRect(3, 0)), 255);
    QCOMPARE(DarkestLevel(picture, window.lens->CellRect(3, 2)), 255);
    // A click below the last filled slot is ignored.
    QSignalSpy clicks(window.lens.get(), &TableLens::CellMouseClick);
    QTest::mouseClick(window.Surface(), Qt::LeftButton, {}, window.CellCentre(5, 2));
    QCOMPARE(clicks.count(), 0);
    // A click on a filtered slot reports the data row shown there.
    QTest::mouseClick(window.Surface(), Qt::LeftButton, {}, window.CellCentre(2, 3));
    QCOMPARE(clicks.count(), 1);
    QCOMPARE(clicks.at(0).at(0).toInt(), 17);
    window.lens->SetFilterRows(false);
    QCOMPARE(window.lens->SlotRow(1), 6);
  }

  void scrollBarsMoveTheView() {
    LensWindow window(100, 30, true);
    QCOMPARE(window.vertical->maximum(), 100);
    QCOMPARE(window.horizontal->pageStep(), 10);
    const QImage before = window.lens->Picture();
    window.horizontal->setValue(4);
    QCOMPARE(window.lens->LeftColumn(), 5);
    QVERIFY(window.lens->Picture() != before);
    window.horizontal->setValue(30);  // past the end: the last ten columns
    QCOMPARE(window.lens->LeftColumn(), 21);
    window.vertical->setValue(95);
    QCOMPARE(window.lens->TopRow(), 81);
  }

  void cursorFollowsClicksAndRaisesEvents() {
    LensWindow window(30, 30);
    window.lens->HorizontalScroll(2);  // left column 3
    QSignalSpy clicks(window.lens.get(), &TableLens::CellMouseClick);
    const QImage picture = window.lens->Picture();
    QTest::mouseClick(window.Surface(), Qt::LeftButton, {}, window.CellCentre(4, 2));
    QCOMPARE(clicks.count(), 1);
    QCOMPARE(clicks.at(0).at(0).toInt(), 4);  // row
    QCOMPARE(clicks.at(0).at(1).toInt(), 4);  // column: 2 + 3 - 1
    QCOMPARE(window.lens->CursorRow(), 4);
    QCOMPARE(window.lens->CursorColumn(), 4);
    // The cursor is drawn on the overlay only: the grid picture is untouched.
    QCOMPARE(window.lens->Picture(), picture);
    QVERIFY(window.lens->Snapshot() != picture);
  }

  void hoverReportsCellAndTooltip() {
    LensWindow window(30, 30);
    window.lens->SetRowName(3, QStringLiteral("storm"));
    window.lens->SetColumnName(2, QStringLiteral("02/09"));
    QSignalSpy over(window.lens.get(), &TableLens::CellMouseOver);
    QTest::mouseMove(window.Surface(), window.CellCentre(3, 2));
    QTRY_COMPARE(over.count(), 1);
    QCOMPARE(over.at(0).at(0).toInt(), 2);  // column first
    QCOMPARE(over.at(0).at(1).toInt(), 3);
    QCOMPARE(window.Surface()->toolTip(), QStringLiteral("storm(R3) , 02/09(C2): 302.000"));
    QTest::mouseMove(window.Surface(), window.CellCentre(0, 2));  // header: no event
    QTest::qWait(20);
    QCOMPARE(over.count(), 1);
  }

  void arrowKeysMoveCursorAndScroll() {
    LensWindow window(30, 30);
    QWidget* surface = window.Surface();
    QTest::keyClick(surface, Qt::Key_Left);
    QTest::keyClick(surface, Qt::Key_Up);
    QCOMPARE(window.lens->CursorRow(), 1);  // clamped
    QCOMPARE(window.lens->CursorColumn(), 1);
    for (int i = 0; i < 9; ++i) QTest::keyClick(surface, Qt::Key_Right);
    QCOMPARE(window.lens->LeftColumn(), 1);
    const QImage before = window.lens->Picture();
    QTest::keyClick(surface, Qt::Key_Right);  // off the last visible column: scroll one
    QCOMPARE(window.lens->CursorColumn(), 11);
    QCOMPARE(window.lens->LeftColumn(), 2);
    QVERIFY(window.lens->Picture() != before);
    for (int i = 0; i < 20; ++i) QTest::keyClick(surface, Qt::Key_Down);
    QCOMPARE(window.lens->CursorRow(), 21);
    QCOMPARE(window.lens->TopRow(), 2);
    for (int i = 0; i < 30; ++i) QTest::keyClick(surface, Qt::Key_Down);
    QCOMPARE(window.lens->CursorRow(), 30);  // clamped to RowCount
    QCOMPARE(window.lens->TopRow(), 11);
    // Moving back left of the left column makes it follow.
    for (int i = 0; i < 10; ++i) QTest::keyClick(surface, Qt::Key_Left);
    QCOMPARE(window.lens->CursorColumn(), 1);
    QCOMPARE(window.lens->LeftColumn(), 1);
    // Other keys change nothing.
    QTest::keyClick(surface, Qt::Key_A);
    QCOMPARE(window.lens->CursorColumn(), 1);
  }

  // Thousands of dated columns narrower than a pixel: each header label stays inside its own
  // header box, so no text runs through the white gap before the next box.
  void narrowDatedColumnsKeepTheirLabelsApart() {
    for (const int width : {700, 800, 1000, 1200, 1500}) {
      TableLens lens;
      lens.SetPictureSize(QSize(width, 300));
      SparseMatrixSingle table;
      table.Reset(3, 8000);
      lens.SetNumDataTable(table);
      const QDate first(1999, 1, 1);
      for (std::int32_t c = 1; c <= 8000; ++c) {
        lens.SetColumnName(c, first.addDays(c - 1).toString(QStringLiteral("yyyy-MM-dd")) +
                                  QStringLiteral(" 00:00:00"));
      }
      lens.SetVisibleColumns(8000);
      lens.SetCellStyle(TableLens::kLine);
      const QImage image = lens.Snapshot();
      const QRectF header = lens.CellRect(0, 1);
      // Below the text, the boxes and the gaps between them.
      const int boxRow = static_cast<int>(header.top() + 0.8 * header.height());
      int gaps = 0;
      for (int x = static_cast<int>(header.left()) + 1; x < width; ++x) {
        if (PixelAt(image, {double(x), double(boxRow)}) != QColor(255, 255, 255)) continue;
        ++gaps;
        QVERIFY2(DarkestLevel(image, QRectF(x, header.top(), 1, 0.5 * header.height())) > 128,
                 qPrintable(QStringLiteral("width %1, x %2").arg(width).arg(x)));
      }
      QVERIFY(gaps > 0);
    }
  }

  void resizingTheSurfaceLaysOutAgain() {
    LensWindow window(QSize(200, 300));
    const SparseMatrixSingle table = NumberedTable(5, 10);
    window.lens->SetNumDataTable(table);
    QVERIFY(window.lens->HeaderWidth() < 0.0f);  // 18 pixels a column: seven letters need more
    QCOMPARE(window.lens->CellStyle(), std::uint8_t{TableLens::kTile});
    window.form->resize(1200, 300);
    window.Surface()->resize(1200, 300);
    QCOMPARE(window.lens->HeaderWidth(), 0.0f);
    QCOMPARE(window.lens->CellStyle(), std::uint8_t{TableLens::kText});
  }
};

}  // namespace sylvora

SYLVORA_QT_TEST_MAIN(sylvora::TableLensTest)
#include "table_lens_test.moc"
