// Writes the empty mark book template `mrk_book.org` that lies beside the
// program.
#include <cstdio>

#include "store/dbf_table.h"
#include "store/table_layouts.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_mrk_book PATH\n");
        return 2;
    }
    veldo::DbfError error;
    if (!veldo::DbfTable::create(QString::fromLocal8Bit(argv[1]), veldo::mark_book_fields(), &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(veldo::dbf_error_message(error, false)));
        return 1;
    }
    return 0;
}
