#include "shell/form_header.h"

#include <QFile>
#include <QFileInfo>

#include "shell/screens.h"
#include "store/record_store.h"
#include "util/file_lookup.h"
#include "util/text_helpers.h"

namespace veldo {

const RecordLayout& audit_record_layout() {
    static const RecordLayout layout{{"user", FieldKind::Text, 50},     {"date", FieldKind::Date},
                                     {"time", FieldKind::Text, 10},     {"form", FieldKind::Text, 50},
                                     {"reserved", FieldKind::Text, 50}, {"folder1", FieldKind::Text, 30},
                                     {"folder2", FieldKind::Text, 30},  {"folder3", FieldKind::Text, 30}};
    return layout;
}

FormHeader form_header_texts(const ShellContext& ctx) {
    FormHeader h;
    h.ops_datum = date_to_dotted(QVariant(short_date_text(ctx.clock.today()))).toString();
    h.ops_tyd = ctx.clock.now().toString("HH:mm:ss");
    h.prg_version = upper_afrikaans_text(ctx.run.os_product_name).trimmed() + " (" + ctx.run.os_build_text + ")";
    // No file of the family brings the latest version here, so only the
    // address stands.
    h.internet_version = " (" + kMakerWebAddress + ")";
    return h;
}

bool form_header(ShellContext& ctx, const QString& caption, FormHeader* texts) {
    if (texts) *texts = form_header_texts(ctx);
    const QString found = find_ignoring_case(ctx.run.family_folder, "Audit_Trail.txt");
    const QString path = found.isEmpty() ? ctx.run.in_folder(ctx.run.family_folder, "Audit_Trail.txt") : found;
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite)) {
        ctx.dialogs.message("Path/File access error", MsgIcon::Critical);
        return false;
    }
    // The record number is the rounded count plus one, so a partial last
    // record is written over. The family keeps it in a 16-bit integer.
    const int record = RecordStore::record_count_of(file.size(), 258) + 1;
    if (record > 32767) {
        ctx.dialogs.message("Overflow", MsgIcon::Critical);
        return false;
    }
    RecordBuffer rec(&audit_record_layout());
    rec.set_text("user", get_login_name());
    rec.set_date("date", ole_date_from(ctx.clock.today()).days);
    rec.set_text("time", ctx.clock.now().toString("HH:mm:ss"));
    rec.set_text("form", caption);
    rec.set_text("folder1", ctx.run.admin_folder);
    rec.set_text("folder2", ctx.run.sibling_folder_2);
    rec.set_text("folder3", ctx.run.sibling_folder_3);
    if (!file.seek(qint64(record - 1) * 258) || file.write(rec.bytes()) != 258) {
        ctx.dialogs.message("Path/File access error", MsgIcon::Critical);
        return false;
    }
    return true;
}

}  // namespace veldo
