#pragma once
// The foot of every main screen (date, time, operating system and version
// lines) and the audit record each screen leaves in the family's
// `Audit_Trail.txt` when it loads.

#include <QString>

#include "store/record_layout.h"

namespace veldo {

struct ShellContext;

// The maker's web address, shown in the version line and the install
// messages.
inline const QString kMakerWebAddress = QStringLiteral("www.kestralin.co.za");

const RecordLayout& audit_record_layout();  // 258 bytes

struct FormHeader {
    QString ops_datum;         // "2026.11.23"
    QString ops_tyd;           // "14:05:09"
    QString prg_version;       // operating system line
    QString internet_version;  // latest known version and the web address
};

// The texts of the foot labels for the clock of `ctx`.
FormHeader form_header_texts(const ShellContext& ctx);

// Styles nothing (the widget does) but appends the audit record for the
// screen `caption`. False, with the platform's file error shown, when the
// audit file can't be written: the screen's load stops there.
bool form_header(ShellContext& ctx, const QString& caption, FormHeader* texts = nullptr);

}  // namespace veldo
