#include "store/record_layout.h"

#include <QtEndian>
#include <cstring>
#include <stdexcept>

#include "util/cp1252.h"
#include "util/legacy_number.h"
#include "util/text_helpers.h"

namespace veldo {
namespace {

int width_of(FieldKind kind, int text_width) {
    switch (kind) {
        case FieldKind::Text: return text_width;
        case FieldKind::Int16: return 2;
        case FieldKind::Single: return 4;
        case FieldKind::Date: return 8;
    }
    return 0;
}

const RecordLayout& empty_layout() {
    static const RecordLayout layout;
    return layout;
}

}  // namespace

RecordLayout::RecordLayout(std::initializer_list<RecordField> fields) {
    for (const auto& f : fields) add(f.name, f.kind, f.width);
}

void RecordLayout::add(const QString& name, FieldKind kind, int width) {
    RecordField f{name, kind, width_of(kind, width), length_};
    length_ += f.width;
    fields_.append(f);
}

int RecordLayout::index_of(const QString& name) const {
    for (int i = 0; i < fields_.size(); ++i)
        if (fields_[i].name.compare(name, Qt::CaseInsensitive) == 0) return i;
    return -1;
}

RecordBuffer::RecordBuffer(const RecordLayout* layout)
    : layout_(layout ? layout : &empty_layout()) {
    clear();
}

void RecordBuffer::clear() {
    bytes_ = QByteArray(layout_->length(), '\0');
    for (const auto& f : layout_->fields())
        if (f.kind == FieldKind::Text) std::memset(bytes_.data() + f.offset, ' ', f.width);
}

void RecordBuffer::set_bytes(const QByteArray& raw) {
    bytes_ = raw.left(layout_->length());
    if (bytes_.size() < layout_->length()) bytes_.append(layout_->length() - bytes_.size(), '\0');
}

const RecordField& RecordBuffer::field(const QString& name) const {
    const int i = layout_->index_of(name);
    if (i < 0) throw std::out_of_range("record field " + name.toStdString());
    return layout_->fields()[i];
}

QString RecordBuffer::text(int index) const {
    const auto& f = layout_->fields()[index];
    return cp1252::decode(bytes_.constData() + f.offset, f.width);
}
QString RecordBuffer::text(const QString& name) const {
    const auto& f = field(name);
    return cp1252::decode(bytes_.constData() + f.offset, f.width);
}

void RecordBuffer::set_text(int index, const QString& value) {
    const auto& f = layout_->fields()[index];
    QByteArray raw = cp1252::encode(value.left(f.width));
    if (raw.size() < f.width) raw.append(f.width - raw.size(), ' ');
    std::memcpy(bytes_.data() + f.offset, raw.constData(), f.width);
}
void RecordBuffer::set_text(const QString& name, const QString& value) {
    field(name);
    set_text(layout_->index_of(name), value);
}

qint16 RecordBuffer::int16(const QString& name) const {
    return qFromLittleEndian<qint16>(bytes_.constData() + field(name).offset);
}
void RecordBuffer::set_int16(const QString& name, qint16 value) {
    qToLittleEndian<qint16>(value, bytes_.data() + field(name).offset);
}
float RecordBuffer::single(const QString& name) const {
    return qFromLittleEndian<float>(bytes_.constData() + field(name).offset);
}
void RecordBuffer::set_single(const QString& name, float value) {
    qToLittleEndian<float>(value, bytes_.data() + field(name).offset);
}
double RecordBuffer::date(const QString& name) const {
    return qFromLittleEndian<double>(bytes_.constData() + field(name).offset);
}
void RecordBuffer::set_date(const QString& name, double days) {
    qToLittleEndian<double>(days, bytes_.data() + field(name).offset);
}

QVariant RecordBuffer::value(int index) const {
    const auto& f = layout_->fields()[index];
    const char* at = bytes_.constData() + f.offset;
    switch (f.kind) {
        case FieldKind::Text: return text(index);
        case FieldKind::Int16: return QVariant::fromValue(qFromLittleEndian<qint16>(at));
        case FieldKind::Single: return QVariant::fromValue(qFromLittleEndian<float>(at));
        case FieldKind::Date: return QVariant::fromValue(OleDate{qFromLittleEndian<double>(at)});
    }
    return {};
}

void RecordBuffer::assign(int index, const QVariant& value) {
    const auto& f = layout_->fields()[index];
    const QString text = toets_null_text(value);
    char* at = bytes_.data() + f.offset;
    switch (f.kind) {
        case FieldKind::Text: set_text(index, text); break;
        case FieldKind::Int16: {
            const double v = Val(text);
            qToLittleEndian<qint16>(qint16(Round(qBound(-32768.0, v, 32767.0))), at);
            break;
        }
        case FieldKind::Single: qToLittleEndian<float>(float(Val(text)), at); break;
        case FieldKind::Date: {
            double days = 0;
            if (value.canConvert<OleDate>() && value.userType() == qMetaTypeId<OleDate>())
                days = value.value<OleDate>().days;
            else if (!text.trimmed().isEmpty())
                days = ctod(text).days;
            qToLittleEndian<double>(days, at);
            break;
        }
    }
}

}  // namespace veldo
