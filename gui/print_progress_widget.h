#pragma once
// wys_druk_vordering: the small window that shows which job is printing,
// on which printer, and the page now going out.

#include <QLabel>
#include <QWidget>

#include "reports/page_engine.h"

namespace veldo {

class PrintProgressWidget : public QWidget {
    Q_OBJECT
public:
    explicit PrintProgressWidget(QWidget* parent = nullptr);
    // Follows `progress` from now on: shows, refreshes and hides with it.
    void follow(PrintProgress& progress);
    void render(const PrintProgress& progress);

private:
    QLabel* wdv_opskrif_;
    QLabel* wdv_drukker_;
    QLabel* wdv_bladsy_;
};

}  // namespace veldo
