#pragma once
// Packed little-endian records of the family's `*_random.txt` files: fixed
// text in Windows-1252, 16-bit integers, 32-bit reals and dates as 64-bit
// reals of days since 1899-12-30, one after the other with no padding.

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>
#include <cstdint>
#include <initializer_list>

namespace veldo {

enum class FieldKind { Text, Int16, Single, Date };

struct RecordField {
    QString name;
    FieldKind kind = FieldKind::Text;
    int width = 0;  // text only; the others have their own width
    int offset = 0; // filled by the layout
};

class RecordLayout {
public:
    RecordLayout() = default;
    RecordLayout(std::initializer_list<RecordField> fields);
    void add(const QString& name, FieldKind kind, int width = 0);
    void add_text(const QString& name, int width) { add(name, FieldKind::Text, width); }

    int length() const { return length_; }
    const QList<RecordField>& fields() const { return fields_; }
    // Index of a field by name ignoring case; -1 when the layout lacks it.
    int index_of(const QString& name) const;

private:
    QList<RecordField> fields_;
    int length_ = 0;
};

// One record's bytes, read and written through its layout. A text field is
// assigned left-justified, blank-filled and cut at its width.
class RecordBuffer {
public:
    explicit RecordBuffer(const RecordLayout* layout = nullptr);
    const RecordLayout& layout() const { return *layout_; }

    // Blank texts, zero numbers and dates: an empty slot.
    void clear();
    QByteArray& bytes() { return bytes_; }
    const QByteArray& bytes() const { return bytes_; }
    void set_bytes(const QByteArray& raw);  // shorter input is padded with zero bytes

    // Text as stored, untrimmed.
    QString text(const QString& name) const;
    QString text(int index) const;
    void set_text(const QString& name, const QString& value);
    void set_text(int index, const QString& value);
    qint16 int16(const QString& name) const;
    void set_int16(const QString& name, qint16 value);
    float single(const QString& name) const;
    void set_single(const QString& name, float value);
    double date(const QString& name) const;
    void set_date(const QString& name, double days);
    // Typed value: QString, qint16, float, or OleDate.
    QVariant value(int index) const;
    // Assigns a value read from elsewhere: text cut to width, numbers through
    // the number reader.
    void assign(int index, const QVariant& value);

private:
    const RecordField& field(const QString& name) const;
    const RecordLayout* layout_;
    QByteArray bytes_;
};

}  // namespace veldo
