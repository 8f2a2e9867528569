#pragma once
// A screen whose own widget is not part of this build yet: it names itself
// and leads back to its menu, so that the menus' path to it (password,
// folder test) is the one the real screen will use.

#include <QWidget>

namespace veldo {

class Screens;

class PlaceholderScreen : public QWidget {
    Q_OBJECT
public:
    PlaceholderScreen(const QString& name, const QString& caption, const QString& menu, Screens& screens,
                      QWidget* parent = nullptr);
};

}  // namespace veldo
