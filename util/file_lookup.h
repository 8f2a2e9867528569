#pragma once
// File names of the family differ in case from one program to the next
// (`skl_dta_random.txt`, `Skl_Dta_random.txt`). Lookups ignore case; new files
// get the spelling the system uses.

#include <QString>

namespace veldo {

// The existing entry of `folder` whose name equals `name` ignoring case, as a
// full path; the exact spelling wins when it exists. Empty when none.
QString find_ignoring_case(const QString& folder, const QString& name);
// The path to use for `name` in `folder`: the existing spelling if there is
// one, else folder + "/" + name as given.
QString path_ignoring_case(const QString& folder, const QString& name);
bool file_exists_ignoring_case(const QString& folder, const QString& name);
bool folder_exists(const QString& folder);

}  // namespace veldo
