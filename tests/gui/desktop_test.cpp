// Clicking through the real widgets, offscreen: splash, top menu, the mark
// book menu and back.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "gui/desktop.h"
#include "gui/export_widget.h"
#include "gui/mark_book_input_widget.h"
#include "gui/marks_input_widget.h"
#include "gui/marks_grid_view.h"
#include "gui/menu_widget.h"
#include "gui/refused_folder_form.h"
#include "gui/setup_widget.h"
#include "gui/splash_widget.h"
#include "gui/symbol_print_widget.h"
#include "shell/change_folder.h"
#include "shell/demo_school.h"

namespace veldo {
namespace {

struct DesktopWidgets : ::testing::Test {
    QTemporaryDir drive;
    QString program = drive.filePath("Apps/VELDO-TALLY");
    QString school = drive.filePath("school");
    QString start_folder = QDir::currentPath();  // the start moves into the program folder
    // Every box that opens is answered as a teacher would: 50 for an input
    // total, No to a print, Yes or OK to the rest; `said` keeps what each box
    // said.
    QStringList said;
    QTimer answerer;

    // A desktop started and past the splash: language 1 Afrikaans, 2 English.
    static bool started(Desktop& desktop, int language = 2) {
        if (!desktop.start()) return false;
        qobject_cast<SplashWidget*>(desktop.screen_widget("marks_splash"))->language_button(language)->click();
        return true;
    }
    static MenuWidget* menu(Desktop& desktop, const char* name) {
        return qobject_cast<MenuWidget*>(desktop.screen_widget(name));
    }
    // An English desktop on the demo school, shown, at the mark book menu.
    MenuWidget* mark_book_menu(Desktop& desktop, int entry = 2) {
        if (!started(desktop) || !write_demo_school(desktop.context().run, school).ok) return nullptr;
        desktop.context().run.data_folder = school;
        desktop.QMainWindow::show();
        QApplication::setActiveWindow(&desktop);
        menu(desktop, "punte_mnu")->entry_button(entry)->click();
        return menu(desktop, entry == 2 ? "punte_menu2" : "punte_menu1");
    }
    // The screen `name` behind `entry` of the mark book menu `book` (1 the
    // cycle menu), opened there: row `series` of its list picked with Return.
    template <class Screen>
    Screen* open_series(Desktop& desktop, int book, int entry, const char* name, int series = 0) {
        MenuWidget* m = mark_book_menu(desktop, book);
        if (!m) return nullptr;
        m->entry_button(entry)->click();
        auto* screen = qobject_cast<Screen*>(desktop.screen_widget(name));
        if (!screen) return nullptr;
        screen->series_list()->setCurrentCell(series, 0);
        QTest::keyClick(screen->series_list(), Qt::Key_Return);
        return screen;
    }
    // Types `keys` one at a time into the widget with the keyboard (or `to`
    // when none has it), then `end`, and lets the boxes be answered.
    static void type(const QString& keys, Qt::Key end, QWidget* to = nullptr) {
        const auto focus = [to] { return QApplication::focusWidget() ? QApplication::focusWidget() : to; };
        for (const QChar key : keys) QTest::keyClicks(focus(), QString(key));
        QTest::keyClick(focus(), end);
        QTest::qWait(80);
    }
    void answer(QWidget* w) {
        if (auto* box = qobject_cast<QInputDialog*>(w); box && box->isVisible()) {
            said << box->labelText();
            box->setTextValue("50");
            box->accept();
        }
        if (auto* box = qobject_cast<QMessageBox*>(w); box && box->isVisible()) {
            said << box->text();
            QAbstractButton* b = box->button(box->text().contains("PRINT") ? QMessageBox::No : QMessageBox::Yes);
            if (!b) b = box->button(QMessageBox::Ok);
            if (b) b->click();
        }
    }
    void SetUp() override {
        qputenv("KESTRALIN_DRIVE", drive.path().toUtf8());
        QDir().mkpath(program);
        QObject::connect(&answerer, &QTimer::timeout, [this] {
            for (QWidget* w : QApplication::topLevelWidgets()) answer(w);
        });
        answerer.start(20);
    }
    void TearDown() override {
        qunsetenv("KESTRALIN_DRIVE");
        QDir::setCurrent(start_folder);
        // A desktop that ended the program leaves Qt's quit request standing,
        // which would end every later dialog the moment it opens; one turn of
        // the application's own loop clears it.
        QTimer::singleShot(0, [] { QCoreApplication::exit(0); });
        QCoreApplication::exec();
    }
};

// The captions and what the menus do are pinned by the menus' own tests;
// here the widgets carry them. The frame itself never closes.
TEST_F(DesktopWidgets, ALanguageClickLeadsFromTheSplashToTheMenusWhichStay) {
    Desktop desktop(program, [] { return false; });
    ASSERT_TRUE(started(desktop, 1));
    MenuWidget* top = menu(desktop, "punte_mnu");
    ASSERT_TRUE(top && top->isVisible());
    EXPECT_EQ((QStringList{top->entry_button(1)->text(), top->entry_button(2)->toolTip()}),
              (QStringList{"SIKLUS/UGO", "PUNTEBOEK"}));
    top->entry_button(2)->click();
    MenuWidget* book = menu(desktop, "punte_menu2");
    ASSERT_TRUE(book);
    book->exit_button()->click();
    EXPECT_EQ(desktop.loaded(), (QStringList{"startup", "punte_mnu"})) << "no splash, no mark book menu";
    // The frame refuses to close and brings the top menu back.
    desktop.unload("punte_mnu");
    EXPECT_FALSE(desktop.is_loaded("punte_mnu"));
    EXPECT_FALSE(desktop.close());
    EXPECT_TRUE(desktop.isVisible());
    EXPECT_TRUE(menu(desktop, "punte_mnu"));
}

TEST_F(DesktopWidgets, ASecondCopyEndsBeforeAnyMenu) {
    Desktop desktop(program, [] { return true; });
    EXPECT_FALSE(desktop.start());
    EXPECT_EQ(said.size(), 1) << "the refusal's message";
    EXPECT_TRUE(desktop.ended());
    EXPECT_FALSE(desktop.is_loaded("punte_mnu"));
}

bool holds(QWidget* outer, QWidget* inner) { return inner && (inner == outer || outer->isAncestorOf(inner)); }

// The keyboard comes back to the menu a screen was opened from when that
// screen closes; on the menus Enter and Space press the focused entry and
// Escape goes back from a second-level menu.
TEST_F(DesktopWidgets, TheMenusWorkFromTheKeyboardWhichComesBackFromAClosedScreen) {
    Desktop desktop(program, [] { return false; });
    MenuWidget* book = mark_book_menu(desktop);
    ASSERT_TRUE(book);
    EXPECT_TRUE(holds(book, desktop.focusWidget()));
    book->entry_button(1)->click();
    QWidget* setup = desktop.screen_widget("pboek_opstel");
    ASSERT_TRUE(setup);
    EXPECT_TRUE(holds(setup, desktop.focusWidget()));
    auto* exit = setup->findChild<QPushButton*>("pboek_opstel_exit");
    ASSERT_TRUE(exit);
    exit->setFocus();
    exit->click();
    EXPECT_FALSE(desktop.is_loaded("pboek_opstel"));
    EXPECT_TRUE(holds(book, QApplication::focusWidget()));
    // The menu's own keys work again: Escape goes back to the top menu.
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(desktop.is_loaded("punte_menu2"));
    EXPECT_TRUE(holds(desktop.screen_widget("punte_mnu"), QApplication::focusWidget()));
    // Keys go to the entry that would have the keyboard: an offscreen window
    // is not always the active one, so focus can't be relied on here.
    for (const Qt::Key code : {Qt::Key_Return, Qt::Key_Space}) {
        SCOPED_TRACE(code);
        MenuWidget* top = menu(desktop, "punte_mnu");
        ASSERT_TRUE(top);
        QTest::keyClick(top->entry_button(2), code);
        book = menu(desktop, "punte_menu2");
        ASSERT_TRUE(book) << "the key presses the focused entry";
        QTest::keyClick(book->entry_button(1), Qt::Key_Escape);
        EXPECT_FALSE(desktop.is_loaded("punte_menu2")) << "Escape goes back to the top menu";
    }
}

// The form that stays after a refused folder says what it is and what to do.
TEST_F(DesktopWidgets, TheRefusedFolderFormCarriesItsTitleAndWhatToDo) {
    Desktop desktop(program, [] { return false; });
    ASSERT_TRUE(started(desktop, 1));
    desktop.context().run.data_folder = "/skool/ou";
    ChangeFolder folder(desktop.context());
    RefusedFolderForm form(folder, &desktop);
    auto* hint = form.findChild<QLabel*>("hint");
    ASSERT_TRUE(hint);
    EXPECT_EQ((QStringList{form.windowTitle(), hint->text()}), (QStringList{"WYSIG DATA GIDS", folder.refused_hint()}));
    form.show();
    form.findChild<QPushButton*>("exit")->click();
    EXPECT_EQ(form.result(), QDialog::Accepted);
    EXPECT_FALSE(form.isVisible());
}

// A teacher at the keyboard, key by key: the mark book menu, the first book,
// marks with Return, a refused mark (the message, the cursor kept on its
// cell, the keyboard back in the grid), Escape over an edit; every key counts
// as activity. What the screen stores is pinned by its own tests.
TEST_F(DesktopWidgets, MarksAreTypedIntoTheGridKeyByKey) {
    Desktop desktop(program, [] { return false; });
    auto* input = open_series<MarkBookInputWidget>(desktop, 2, 2, "pboek_inlees");
    ASSERT_TRUE(input);
    MarksGridView* grid = input->grid();
    ASSERT_FALSE(grid->isHidden());
    ASSERT_EQ(grid->model()->rowCount(), 32);
    const auto at = [&](int row, int column) { return grid->model()->index(row, column); };
    const auto shown = [&](int row, int column = 2) { return grid->model()->data(at(row, column)).toString(); };
    EXPECT_EQ(grid->currentIndex(), at(0, 2));
    EXPECT_TRUE(grid->isColumnHidden(30));
    // The learner columns stay on the left; a heading is never cut.
    EXPECT_FALSE(grid->frozen_view()->isColumnHidden(1));
    EXPECT_TRUE(grid->frozen_view()->isColumnHidden(2));
    for (int c = 2; c < grid->model()->columnCount(); ++c) {
        const int needs = grid->horizontalHeader()->sectionSizeHint(c);
        EXPECT_TRUE(grid->isColumnHidden(c) || grid->columnWidth(c) >= needs) << c;
    }

    struct Key {
        const char* keys;
        Qt::Key end;
        int row;            // typed into, in column 2
        const char* shows;  // there afterwards; nullptr: what it showed before
        int cursor;         // the cursor's row afterwards, in column 2
    };
    const Key keys[] = {{"7", Qt::Key_Return, 0, "7.0", 1}, {"11", Qt::Key_Return, 1, nullptr, 1},  // refused
                        {"9.5", Qt::Key_Return, 1, "9.5", 2}, {"4", Qt::Key_Escape, 2, nullptr, 2}};
    desktop.context().run.last_activity = 0;
    for (const Key& k : keys) {
        SCOPED_TRACE(k.keys);
        const QString before = shown(k.row);
        type(k.keys, k.end);
        EXPECT_GT(desktop.context().run.last_activity, 0);
        EXPECT_EQ(shown(k.row), k.shows ? QString(k.shows) : before);
        EXPECT_EQ(grid->currentIndex(), at(k.cursor, 2));
        // The keyboard is back in the grid once the frame is active again (the
        // window manager's part when a box closes).
        EXPECT_EQ(desktop.focusWidget(), grid);
        QApplication::setActiveWindow(&desktop);
        EXPECT_EQ(QApplication::focusWidget(), grid);
    }
    ASSERT_EQ(said.size(), 1);
    EXPECT_TRUE(said[0].contains("10")) << said[0].toStdString();

    // Moves land past the learner and total columns, the selection with the
    // cursor; so does a click on a total.
    auto takes_marks = [&](int c) {
        return !grid->isColumnHidden(c) && !grid->model()->data(at(0, c), Qt::BackgroundRole).isValid();
    };
    int last = grid->model()->columnCount() - 1;
    while (!takes_marks(last)) --last;
    QTest::keyClick(grid, Qt::Key_End);
    EXPECT_EQ(grid->currentIndex(), at(2, last));
    EXPECT_EQ(grid->selectionModel()->selectedIndexes(), QModelIndexList{grid->currentIndex()});
    QTest::keyClick(grid, Qt::Key_Home);
    EXPECT_EQ(grid->currentIndex(), at(2, 2));
    int total = 3;
    while (takes_marks(total)) ++total;
    int after = total + 1;
    while (!takes_marks(after)) ++after;
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(at(4, total)).center());
    QTest::qWait(20);
    EXPECT_EQ(grid->currentIndex(), at(4, after));
    EXPECT_EQ(grid->selectionModel()->selectedIndexes(), QModelIndexList{grid->currentIndex()});
    // Keys reach the grid from one mark to the next, and Tab's editor keeps
    // them, even while the window is not the active one (a desktop without a
    // window manager).
    QApplication::setActiveWindow(nullptr);
    type("1", Qt::Key_Return);
    type("2", Qt::Key_Return);
    EXPECT_EQ(shown(5, after), "2.0");
    // Tab over a typed mark stores it and types on in the next column that
    // takes marks.
    grid->setCurrentIndex(at(6, 2));
    type("6", Qt::Key_Tab);
    type("7", Qt::Key_Tab);
    EXPECT_EQ((QStringList{shown(6), shown(6, 3)}), (QStringList{"6.0", "7.0"}));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    QApplication::setActiveWindow(&desktop);
    EXPECT_EQ(shown(1), "9.5");
    input->button("marks_exit")->click();
    EXPECT_FALSE(input->series_list()->isHidden());
}

// Cycle marks at the keyboard: out of 50 with effort keys, the zigzag
// between mark and key, a refused mark, and the exit that saves (what it
// saves is pinned by the screen's own tests).
TEST_F(DesktopWidgets, CycleMarksAreKeyedWithTheirEffortKeys) {
    Desktop desktop(program, [] { return false; });
    auto* input = open_series<MarksInputWidget>(desktop, 1, 1, "punte_inlees");  // 50 for the total, Yes to keys
    ASSERT_TRUE(input);
    EXPECT_EQ(said, (QStringList{"INPUT TOTAL\r\n\r\n[ SUBJECT TOTAL =  100 ]\r\n",
                                 "Busy converting marks from 100 to 50!",
                                 "ARE YOU GOING TO INPUT EFFORT KEYS ALSO ?"}));
    MarksGridView* grid = input->grid();
    ASSERT_FALSE(grid->isHidden());
    ASSERT_EQ(grid->model()->rowCount(), 32);
    EXPECT_EQ(grid->model()->headerData(2, Qt::Horizontal).toString(), "MARK( 50)");
    EXPECT_EQ(grid->currentIndex(), grid->model()->index(0, 2));

    struct Key {
        const char* keys;
        int row, column;  // where the cursor is afterwards
        const char* total;
    };
    const Key keys[] = {{"42", 0, 3, "42.0"}, {"3", 1, 2, "42.0"}, {"51", 1, 2, "42.0"},  // refused
                        {"38.5", 1, 3, "80.5"}, {"", 2, 2, "80.5"}};
    for (const Key& k : keys) {
        SCOPED_TRACE(k.keys);
        said.clear();
        QApplication::setActiveWindow(&desktop);
        type(k.keys, Qt::Key_Return, grid);
        QApplication::setActiveWindow(&desktop);
        EXPECT_EQ(grid->currentIndex(), grid->model()->index(k.row, k.column));
        EXPECT_EQ(input->label("punte_inlees_tot")->text(), k.total);
        const QStringList refused{"Marks can only be ' ', 'A', 'a' or 0- 50"};
        EXPECT_EQ(said, QString(k.keys) == "51" ? refused : QStringList());
    }
    EXPECT_EQ(input->button("punte_inlees_gem")->text(), "80.5");

    said.clear();
    input->button("marks_exit")->click();
    EXPECT_EQ(said, (QStringList{"Busy converting marks from 50 to 100!", "DO YOU WANT TO PRINT A MARK LIST ?"}));
    EXPECT_FALSE(input->series_list()->isHidden());
}

// Entries 3 to 5 of the mark book menu open the print, distribution and
// export screens over it, which answer the mouse and the keyboard (Enter on a
// series shows its grid or its tasks, whose contents are pinned by the
// screens' own tests); EXIT goes back to the menu.
TEST_F(DesktopWidgets, ThePrintSymbolAndExportScreensOpenFromTheMarkBookMenu) {
    Desktop desktop(program, [] { return false; });
    MenuWidget* menu = mark_book_menu(desktop);
    ASSERT_TRUE(menu);
    int rows = -1;
    QString chosen;
    QTimer::singleShot(50, [&] {
        auto* dialog = desktop.findChild<QDialog*>("pboek_druk");
        if (!dialog || !dialog->isVisible()) return;
        auto* list = dialog->findChild<QTableWidget*>();
        rows = list->rowCount();
        list->cellClicked(0, 0);
        chosen = dialog->findChild<QLabel*>("vak_ops")->text();
        dialog->findChild<QPushButton*>("pboek_druk_exit")->click();
    });
    menu->entry_button(3)->click();
    EXPECT_EQ(QString("%1 series, '%2' chosen, %3 said").arg(rows).arg(chosen).arg(said.size()),
              "9 series, '8 AFR 8A' chosen, 0 said");
    const QStringList at_the_menu{"startup", "punte_mnu", "punte_menu2"};
    EXPECT_EQ(desktop.loaded(), at_the_menu);

    menu->entry_button(4)->click();
    auto* symbols = qobject_cast<SymbolPrintWidget*>(desktop.screen_widget("simbole_druk"));
    ASSERT_TRUE(symbols);
    QTest::keyClick(symbols->series_list(), Qt::Key_Return);
    QTableWidget* grid = symbols->distribution();
    ASSERT_EQ(grid->horizontalHeaderItem(1)->text(), "M1");
    EXPECT_TRUE(grid->isColumnHidden(grid->columnCount() - 1));  // past the named tasks
    symbols->findChild<QPushButton*>("pboek_druk_exit")->click();
    EXPECT_EQ(desktop.loaded(), at_the_menu);

    menu->entry_button(5)->click();
    auto* exporter = qobject_cast<ExportWidget*>(desktop.screen_widget("pboek_uitvoer"));
    ASSERT_TRUE(exporter);
    EXPECT_FALSE(exporter->task_list()->isVisible());
    QTest::keyClick(exporter->series_list(), Qt::Key_Return);
    EXPECT_FALSE(exporter->series_list()->isVisible());
    QTableWidget* tasks = exporter->task_list();
    ASSERT_TRUE(tasks->isVisible());
    ASSERT_EQ(tasks->rowCount(), 40);
    EXPECT_EQ(tasks->item(0, 2)->text().trimmed(), "TAAK 1");
    EXPECT_EQ(tasks->item(0, 2)->background().color(), QColor(0xFF, 0xFF, 0xC0));
    exporter->findChild<QPushButton*>("pboek_uitvoer_exit")->click();
    EXPECT_EQ(desktop.loaded(), at_the_menu);
}

// The setup screen from the keyboard: Return on a series, capitals as
// typed in the panel, Shift with "/" for the example, a right click for the
// explanations. Its EXIT is TheMenusWorkFromTheKeyboard...'s.
TEST_F(DesktopWidgets, TheSetupScreenAnswersTheKeyboard) {
    Desktop desktop(program, [] { return false; });
    auto* setup = open_series<SetupWidget>(desktop, 2, 1, "pboek_opstel", 1);  // 8 WISK 8B, without a setup
    ASSERT_TRUE(setup);
    QTableWidget* grid = setup->setup_grid();
    ASSERT_TRUE(grid->isVisible());
    ASSERT_EQ(grid->rowCount(), 40);
    EXPECT_EQ(grid->item(0, 1)->text().trimmed(), "");
    QTest::keyClick(grid, Qt::Key_Question, Qt::ShiftModifier);
    EXPECT_EQ(grid->item(0, 1)->text().trimmed(), "TASK 1");
    // Moving to a row brings the colouring up to date: CLASS WORK is a total.
    grid->setCurrentCell(21, 1);
    EXPECT_EQ(grid->item(4, 1)->background().color(), QColor(0xFF, 0xFF, 0xC0));
    EXPECT_EQ(setup->box(0)->text(), "22");
    QTest::keyClicks(setup->box(1), "exam 3");
    EXPECT_EQ(setup->box(1)->text(), "EXAM 3");
    QTest::keyClicks(setup->box(2), "50");
    setup->findChild<QPushButton*>("pboek_data_ok")->click();
    EXPECT_EQ((QStringList{grid->item(21, 1)->text().trimmed(), grid->item(21, 2)->text().trimmed()}),
              (QStringList{"EXAM 3", "50"}));

    emit grid->customContextMenuRequested(QPoint(5, 5));
    EXPECT_TRUE(setup->explanation_panel()->isVisible());
    setup->findChild<QPushButton*>("kb_ok")->click();
    EXPECT_FALSE(setup->explanation_panel()->isVisible());
}

}  // namespace
}  // namespace veldo
