#include "boot/DeviceTable.h"

#include <QList>

#include <optional>

namespace Velmora::Daemon::Boot {

namespace {

enum class Form { Uuid, PartUuid, Label, ByUuid, ByPartUuid, ByLabel, Path };

struct Reference
{
    Form form = Form::Path;
    QString value;
    bool quoted = false;
};

struct Prefix
{
    Form form;
    const char* text;
};

constexpr Prefix Prefixes[] = {
    {Form::Uuid, "UUID="},
    {Form::PartUuid, "PARTUUID="},
    {Form::Label, "LABEL="},
    {Form::ByUuid, "/dev/disk/by-uuid/"},
    {Form::ByPartUuid, "/dev/disk/by-partuuid/"},
    {Form::ByLabel, "/dev/disk/by-label/"},
};

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool isTag(Form form)
{
    return form == Form::Uuid || form == Form::PartUuid || form == Form::Label;
}

// The tables write a space in a name as \040 (and a tab, a newline, a backslash likewise).
QString unescaped(const QByteArray& field)
{
    QByteArray plain;
    for (int i = 0; i < field.size(); ++i) {
        auto isOctal = [&](int at) { return field[at] >= '0' && field[at] <= '7'; };
        const bool octal = field[i] == '\\' && i + 3 < field.size() && isOctal(i + 1) && isOctal(i + 2) && isOctal(i + 3);
        if (octal) {
            plain += char(field.mid(i + 1, 3).toInt(nullptr, 8));
            i += 3;
        } else {
            plain += field[i];
        }
    }
    return QString::fromUtf8(plain);
}

QByteArray escaped(const QString& value)
{
    QByteArray out;
    for (char c : value.toUtf8()) {
        if (c == ' ' || c == '\t' || c == '\n' || c == '\\')
            out += '\\' + QByteArray::number(int(static_cast<unsigned char>(c)), 8).rightJustified(3, '0');
        else
            out += c;
    }
    return out;
}

std::optional<Reference> parseReference(const QByteArray& field)
{
    Reference reference;
    QByteArray rest;
    bool prefixed = false;
    for (const Prefix& prefix : Prefixes) {
        if (field.startsWith(prefix.text)) {
            reference.form = prefix.form;
            rest = field.mid(int(qstrlen(prefix.text)));
            prefixed = true;
            break;
        }
    }
    if (!prefixed) {
        if (!field.startsWith("/dev/"))
            return std::nullopt;
        rest = field;
    }
    if (isTag(reference.form) && rest.size() >= 2 && rest.startsWith('"') && rest.endsWith('"')) {
        reference.quoted = true;
        rest = rest.mid(1, rest.size() - 2);
    }
    reference.value = unescaped(rest);
    return reference;
}

bool names(const Reference& reference, const DeviceIdentity& device)
{
    auto same = [&](const QString& known, Qt::CaseSensitivity sensitivity) {
        return !known.isEmpty() && reference.value.compare(known, sensitivity) == 0;
    };
    switch (reference.form) {
    case Form::Uuid:
    case Form::ByUuid: return same(device.uuid, Qt::CaseInsensitive);
    case Form::PartUuid:
    case Form::ByPartUuid: return same(device.partUuid, Qt::CaseInsensitive);
    case Form::Label:
    case Form::ByLabel: return same(device.label, Qt::CaseSensitive);
    case Form::Path: return same(device.devicePath, Qt::CaseSensitive);
    }
    return false;
}

QString valueOf(Form form, const DeviceIdentity& device)
{
    switch (form) {
    case Form::Uuid:
    case Form::ByUuid: return device.uuid;
    case Form::PartUuid:
    case Form::ByPartUuid: return device.partUuid;
    case Form::Label:
    case Form::ByLabel: return device.label;
    case Form::Path: return device.devicePath;
    }
    return {};
}

QByteArray written(Form form, const QString& value, bool quoted)
{
    for (const Prefix& prefix : Prefixes) {
        if (prefix.form != form)
            continue;
        if (isTag(form))
            return prefix.text + (quoted ? '"' + value.toUtf8() + '"' : escaped(value));
        return prefix.text + escaped(value);
    }
    return escaped(value);
}

// The destination's name in the form the entry used; where the destination has no such name
// (a file system without a label), its UUID, and failing that its path.
QByteArray replacement(const Reference& reference, const DeviceIdentity& destination)
{
    for (Form form : {reference.form, Form::Uuid, Form::PartUuid, Form::Path}) {
        const QString value = valueOf(form, destination);
        if (!value.isEmpty())
            return written(form, value, reference.quoted && isTag(form));
    }
    return {};
}

// The byte range of field `index` of a line, or an empty range.
std::pair<int, int> fieldRange(const QByteArray& line, int index)
{
    int position = 0;
    for (int field = 0;; ++field) {
        while (position < line.size() && isBlank(line[position]))
            ++position;
        if (position >= line.size())
            return {0, 0};
        if (field == 0 && line[position] == '#')
            return {0, 0};
        int end = position;
        while (end < line.size() && !isBlank(line[end]) && line[end] != '\r')
            ++end;
        if (field == index)
            return {position, end};
        position = end;
    }
}

QByteArray rewrittenLine(const QByteArray& line, int fieldIndex, const QVector<IdentityPair>& pairs)
{
    const auto [begin, end] = fieldRange(line, fieldIndex);
    if (begin == end)
        return line;
    const QByteArray field = line.mid(begin, end - begin);
    const std::optional<Reference> reference = parseReference(field);
    if (!reference)
        return line;
    for (const IdentityPair& pair : pairs) {
        if (!names(*reference, pair.source))
            continue;
        const QByteArray name = replacement(*reference, pair.destination);
        if (name.isEmpty())
            return line;
        return line.left(begin) + name + line.mid(end);
    }
    return line;
}

} // namespace

TableRewrite rewriteDeviceTable(const QByteArray& text, DeviceTableKind kind, const QVector<IdentityPair>& pairs)
{
    const int fieldIndex = kind == DeviceTableKind::Fstab ? 0 : 1;
    TableRewrite result;
    result.text.reserve(text.size() + 256);
    int start = 0;
    while (start < text.size()) {
        int end = text.indexOf('\n', start);
        const bool lastWithoutNewline = end < 0;
        if (lastWithoutNewline)
            end = text.size();
        const QByteArray line = text.mid(start, end - start);
        const QByteArray rewritten = rewrittenLine(line, fieldIndex, pairs);
        if (rewritten != line)
            ++result.changedLines;
        result.text += rewritten;
        if (!lastWithoutNewline)
            result.text += '\n';
        start = end + 1;
    }
    return result;
}

QVector<DeviceMount> mountsOfDevices(const QByteArray& fstab, const QVector<DeviceIdentity>& devices)
{
    QVector<DeviceMount> mounts;
    for (const QByteArray& line : fstab.split('\n')) {
        const auto [begin, end] = fieldRange(line, 0);
        const auto [pointBegin, pointEnd] = fieldRange(line, 1);
        const auto [typeBegin, typeEnd] = fieldRange(line, 2);
        if (begin == end || pointBegin == pointEnd)
            continue;
        const std::optional<Reference> reference = parseReference(line.mid(begin, end - begin));
        if (!reference)
            continue;
        for (int index = 0; index < devices.size(); ++index) {
            if (names(*reference, devices[index])) {
                mounts.append({index, unescaped(line.mid(pointBegin, pointEnd - pointBegin)),
                    QString::fromUtf8(line.mid(typeBegin, typeEnd - typeBegin))});
                break;
            }
        }
    }
    return mounts;
}

} // namespace Velmora::Daemon::Boot
