#pragma once
// Builds `exp_mrk_control.txt` records for tests.

#include <QByteArray>
#include <QDate>

#include "store/record_layout.h"
#include "store/series.h"
#include "util/text_helpers.h"

namespace veldo::testing {

struct SeriesEntry {
    QString grade, subject;
    float total = 100;
    QString klass, klass2, group;
    qint16 number = 0;
    QString code;
    QDate date;
};

inline QByteArray series_record(const SeriesEntry& s) {
    RecordBuffer rec(&series_record_layout());
    rec.set_text("ec_grade", s.grade);
    rec.set_text("ec_subject", s.subject);
    rec.set_single("ec_total", s.total);
    rec.set_text("ec_class", s.klass);
    rec.set_text("ec_class2", s.klass2);
    rec.set_text("ec_group", s.group);
    rec.set_int16("ec_number", s.number);
    rec.set_text("ec_code", s.code);
    rec.set_date("ec_date", s.date.isValid() ? ole_date_from(s.date).days : 0.0);
    return rec.bytes();
}

}  // namespace veldo::testing
