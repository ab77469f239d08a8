#include "MarkerText.h"

#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <algorithm>

namespace tresktest {

namespace {

const char sectionStart[] = "%<--! $TRESK_SECTION";
const char fileStart[] = "%<--! $TRESK_EMBEDDEDFILE_BEGIN";

enum Form { Text, Number, Digest };

struct Key {
    const char* name;
    Form form;
};

/// A kind of marker: what it begins with, its keys, and the pattern that follows from them.
class MarkerKind {
public:
    MarkerKind(const char* start, const QVector<Key>& keys)
        : m_keys(keys)
    {
        QString pattern = QRegularExpression::escape(QLatin1String(start)) + QLatin1Char(' ');
        for (const Key& key : keys)
            pattern += QStringLiteral("\\[%1:(%2)\\]").arg(QLatin1String(key.name), form(key.form));
        m_pattern.setPattern(QStringLiteral("\\A") + pattern + QStringLiteral("-->"));
    }

    /// The marker with which the bytes at @p start begin, which are on the line at @p lineStart.
    std::optional<MarkerText> read(const QByteArray& document, int lineStart, int start) const
    {
        MarkerText marker;
        const auto end = document.indexOf('\n', lineStart);
        marker.line = document.mid(lineStart, end < 0 ? -1 : int(end) + 1 - lineStart);
        if (marker.line.contains('\0'))
            return std::nullopt;
        // One character a byte, so that places in the text are places in the document.
        const QByteArray bytes = marker.line.mid(start - lineStart);
        const QRegularExpressionMatch match = m_pattern.match(QString::fromLatin1(bytes));
        if (!match.hasMatch())
            return std::nullopt;
        marker.pos = lineStart + 1;
        marker.tagLength = int(QString::fromUtf8(bytes.left(match.capturedLength())).size()) - 1;
        for (int i = 0; i < int(m_keys.size()); ++i)
            marker.fields.append({m_keys.at(i).name, start + int(match.capturedStart(i + 1)),
                                  match.captured(i + 1).toLatin1()});
        return marker;
    }

private:
    static QString form(Form form)
    {
        switch (form) {
        case Text:
            return QStringLiteral("(?:[^\\]\\\\]++|\\\\[\\\\\\]n])*+");
        case Number:
            return QStringLiteral("[0-9]*");
        default:
            return QStringLiteral("(?:[a-f0-9]{32})?");
        }
    }

    QVector<Key> m_keys;
    QRegularExpression m_pattern;
};

const MarkerKind& sectionKind()
{
    static const MarkerKind kind(sectionStart,
                                 {{"version", Text},
                                  {"creator", Text},
                                  {"title", Text},
                                  {"left", Number},
                                  {"size", Number},
                                  {"index", Number},
                                  {"md5section", Digest},
                                  {"previousmd5", Digest},
                                  {"previousmarker", Number}});
    return kind;
}

const MarkerKind& fileKind()
{
    static const MarkerKind kind(fileStart,
                                 {{"filetype", Text},
                                  {"filename", Text},
                                  {"desc", Text},
                                  {"comment", Text},
                                  {"compression", Text},
                                  {"filesize", Number},
                                  {"cfilesize", Number},
                                  {"blocksize", Number},
                                  {"offset", Number},
                                  {"md5file", Digest},
                                  {"md5cfile", Digest}});
    return kind;
}

template <typename MarkerAt>
QVector<MarkerText> markers(const QByteArray& document, const char* start, MarkerAt markerAt)
{
    QVector<MarkerText> found;
    auto place = document.indexOf(start);
    while (place >= 0) {
        const int lineStart = place == 0 ? 0 : int(document.lastIndexOf('\n', place - 1)) + 1;
        if (const std::optional<MarkerText> marker = markerAt(document, lineStart))
            found.append(*marker);
        const auto lineEnd = document.indexOf('\n', place);
        place = lineEnd < 0 ? -1 : document.indexOf(start, lineEnd);
    }
    return found;
}

} // namespace

const MarkerText::Field& MarkerText::field(const char* key) const
{
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [key](const Field& field) { return field.key == key; });
    if (found == fields.end())
        qFatal("no marker has a field %s", key);
    return *found;
}

int MarkerText::number(const char* key) const
{
    const QByteArray digits = value(key);
    return digits.isEmpty() ? -1 : digits.toInt();
}

QByteArray MarkerText::validationTag() const
{
    QByteArray tag = line;
    return tag
        .replace("[md5section:" + value("md5section") + ']',
                 "[md5section:" + QByteArray(32, '0') + ']')
        .mid(1);
}

std::optional<MarkerText> sectionMarkerAt(const QByteArray& document, int lineStart)
{
    const auto start = document.indexOf(sectionStart, lineStart);
    const auto end = document.indexOf('\n', lineStart);
    if (start < 0 || (end >= 0 && start > end))
        return std::nullopt;
    return sectionKind().read(document, lineStart, int(start));
}

std::optional<MarkerText> fileMarkerAt(const QByteArray& document, int lineStart)
{
    return fileKind().read(document, lineStart, lineStart);
}

QVector<MarkerText> sectionMarkers(const QByteArray& document)
{
    return markers(document, sectionStart, sectionMarkerAt);
}

QVector<MarkerText> fileMarkers(const QByteArray& document)
{
    return markers(document, fileStart, fileMarkerAt);
}

} // namespace tresktest
