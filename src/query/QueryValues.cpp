#include "query/QueryValues.h"

#include <QStringView>

namespace tresk {

namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

/// Takes text apart from its start.
class Cursor {
public:
    explicit Cursor(QStringView text)
        : m_text(text)
    {
    }

    qsizetype position() const { return m_pos; }
    void goTo(qsizetype pos) { m_pos = pos; }

    bool take(QChar c)
    {
        const bool there = m_pos < m_text.size() && m_text.at(m_pos) == c;
        m_pos += there ? 1 : 0;
        return there;
    }

    /// Takes characters that @p predicate holds for, at most @p most, and says how many.
    template <typename Predicate>
    qsizetype takeRun(Predicate predicate, qsizetype most)
    {
        const qsizetype start = m_pos;
        while (m_pos < m_text.size() && m_pos - start < most && predicate(m_text.at(m_pos)))
            ++m_pos;
        return m_pos - start;
    }

    /// Takes a number of at most @p most digits.
    std::optional<int> takeInt(qsizetype most)
    {
        const qsizetype start = m_pos;
        if (takeRun(isDigit, most) == 0)
            return std::nullopt;
        return m_text.mid(start, m_pos - start).toString().toInt();
    }

private:
    QStringView m_text;
    qsizetype m_pos = 0;
};

/// The length of the number that @p text begins with, not yet whether it is one: "1,5" is taken.
qsizetype numberLength(QStringView text)
{
    Cursor cursor(text);
    if (!cursor.take(u'+'))
        cursor.take(u'-');
    const auto isPart = [](QChar c) { return isDigit(c) || c == u'.' || c == u','; };
    if (cursor.takeRun(isPart, text.size()) == 0)
        return 0;
    const qsizetype end = cursor.position();
    if (cursor.take(u'e')) {
        if (!cursor.take(u'+'))
            cursor.take(u'-');
        if (cursor.takeRun(isDigit, text.size()) > 0)
            return cursor.position();
    }
    return end;
}

/// Takes a date; whether it is in the calendar shows in its validity.
std::optional<QDate> takeDate(Cursor& cursor)
{
    const qsizetype start = cursor.position();
    for (const int yearDigits : {4, 2}) {
        cursor.goTo(start);
        const qsizetype count = cursor.takeRun(isDigit, yearDigits);
        cursor.goTo(start);
        const std::optional<int> year = cursor.takeInt(yearDigits);
        if (count != yearDigits || !cursor.take(u'-'))
            continue;
        const std::optional<int> month = cursor.takeInt(2);
        if (!month || !cursor.take(u'-'))
            continue;
        if (const std::optional<int> day = cursor.takeInt(2))
            return QDate(*year, *month, *day);
    }
    return std::nullopt;
}

/// Takes a time; whether there is such a time shows in its validity.
std::optional<QTime> takeTime(Cursor& cursor)
{
    const std::optional<int> hour = cursor.takeInt(2);
    if (!hour || !cursor.take(u':'))
        return std::nullopt;
    const std::optional<int> minute = cursor.takeInt(2);
    if (!minute)
        return std::nullopt;
    const std::optional<int> second = cursor.take(u':') ? cursor.takeInt(2) : std::nullopt;
    return QTime(*hour, *minute, second.value_or(0));
}

std::optional<QDateTime> dateTime(const QDate& date, const QTime& time)
{
    // In one time zone, whichever it is, so that all can be compared, and no hour is left out.
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    return QDateTime(date, time, Qt::UTC);
}

} // namespace

std::optional<float> readNumber(const QString& text)
{
    QStringView number(text);
    float factor = 1;
    const auto scale = [&](const char16_t* unit, float value) {
        if (factor == 1 && number.endsWith(QStringView(unit, 2), Qt::CaseInsensitive)) {
            number.chop(2);
            factor = value;
        }
    };
    scale(u"kb", 1024.0F);
    scale(u"mb", 1048576.0F);
    scale(u"gb", 1073741824.0F);
    const QString lower = number.toString().toLower();
    bool valid = false;
    const float value = lower.left(int(numberLength(lower))).toFloat(&valid);
    return valid ? std::optional<float>(value * factor) : std::nullopt;
}

std::optional<QDateTime> readDate(const QString& text, const QDate& today)
{
    Cursor cursor(text);
    const std::optional<QDate> date = takeDate(cursor);
    if (!date) {
        Cursor timeCursor(text);
        const std::optional<QTime> time = takeTime(timeCursor);
        return time ? dateTime(today, *time) : std::nullopt;
    }
    const bool blanks = cursor.takeRun([](QChar c) { return c == u' '; }, text.size()) > 0;
    const std::optional<QTime> time = blanks ? takeTime(cursor) : std::nullopt;
    return dateTime(*date, time.value_or(QTime(0, 0)));
}

QDate today()
{
    return QDateTime::currentDateTimeUtc().date();
}

} // namespace tresk
