#pragma once
// pboek_opstel's window: the subject list, then the 40-row grid with the
// edit panel beside it, the explanation panel and the copy frame. Every
// event goes to SetupScreen.

#include <QWidget>
#include <array>

class QFrame;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QTableWidget;

namespace veldo {

class SetupScreen;

class SetupWidget : public QWidget {
    Q_OBJECT
public:
    SetupWidget(SetupScreen& screen, QWidget* parent = nullptr);

    QTableWidget* series_list() const { return vak_grid_; }
    QTableWidget* setup_grid() const { return pboek_grid_; }
    QLineEdit* box(int i) const { return boxes_[std::size_t(i)]; }
    QFrame* explanation_panel() const { return kb_raam_; }
    QFrame* copy_frame() const { return kopieer_raam_; }
    QListWidget* copy_list(int i) const { return i == 0 ? from_list_ : to_list_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void refresh();
    void fill_grid();
    void load_panel();

    SetupScreen& screen_;
    QLabel* vak_ops_;
    QTableWidget* vak_grid_;
    QWidget* book_;
    QTableWidget* pboek_grid_;
    std::array<QLineEdit*, 6> boxes_{};
    QFrame* kb_raam_;
    QPlainTextEdit* kolom_beskrywings_;
    QFrame* kopieer_raam_;
    QListWidget* from_list_;
    QListWidget* to_list_;
};

}  // namespace veldo
