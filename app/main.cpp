#include <QCoreApplication>
#include <cstdio>

#include "app/cli.h"

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName("VELDO-TALLY");
    QStringList arguments = QCoreApplication::arguments();
    arguments.removeFirst();
    if (arguments.isEmpty()) {
        std::fprintf(stderr,
                     "The desktop screens are not part of this build yet; use a command word.\n\n%s",
                     qPrintable(veldo::usage_text()));
        return 2;
    }
    return veldo::run_command_line(arguments, QCoreApplication::applicationDirPath());
}
