#pragma once
// Finding, reading and writing `setup_<key>.txt` in a data folder. The name
// has changed shape over the years, so readers try the key as built, then
// without underscores, then (for input, print and export) without blanks.

#include <QString>
#include <optional>

#include "markbook/setup_model.h"

namespace veldo {

QString setup_file_name(const QString& key);
// A directory search that returns exactly the name asked for: a file whose
// name differs in case doesn't count.
bool folder_holds_exactly(const QString& folder, const QString& name);

// The key forms tried in turn: 2 for the setup screen, 3 for the others.
enum class SetupSearch { SetupScreen = 2, Readers = 3 };

// The first key form under which the folder holds exactly that file name;
// nullopt when none does.
std::optional<QString> find_setup_key(const QString& data_folder, const QString& key, SetupSearch search);
// The key the setup screen works under: the built key when its file exists,
// else the key without underscores, whether or not that file exists.
QString setup_screen_key(const QString& data_folder, const QString& key);

// Reads the 200 values; what the file lacks stays blank. nullopt when the
// file can't be read at all.
std::optional<MarkBookSetup> read_setup_file(const QString& path);
// Replaces the file in one step.
bool write_setup_file(const QString& path, const MarkBookSetup& setup, QString* error = nullptr);

}  // namespace veldo
