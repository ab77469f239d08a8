#include "summary/ElementScanner.h"

#include <algorithm>

namespace tresk {

namespace {

/// The place of the next @p character in @p text from @p from on; -1 without one. Most are near,
/// where calling Qt's search, which is faster from there on, does not pay.
qsizetype find(QStringView text, char16_t character, qsizetype from)
{
    const QStringView::storage_type* const units = text.utf16();
    const qsizetype near = std::min<qsizetype>(text.size(), from + 24);
    for (qsizetype i = from; i < near; ++i) {
        if (units[i] == character)
            return i;
    }
    return text.indexOf(QChar(character), near);
}

bool endsWith(QStringView text, QStringView end)
{
    const qsizetype start = text.size() - end.size();
    return start >= 0 && std::equal(end.utf16(), end.utf16() + end.size(), text.utf16() + start);
}

} // namespace

ElementScanner::ElementScanner(QStringView text)
    : m_text(text)
{
    next();
}

QStringView ElementScanner::next()
{
    m_name = QStringView();
    m_content = QStringView();
    if (m_valid && !(readTag() && readContent())) {
        m_valid = false;
        m_name = QStringView();
    }
    return m_content;
}

/// Reads the opening tag of the next element, into the name, and goes behind it.
bool ElementScanner::readTag()
{
    for (;;) {
        const qsizetype open = find(m_text, u'<', m_pos);
        if (open < 0)
            return false;
        m_pos = open + 1;
        const qsizetype close = find(m_text, u'>', m_pos);
        if (close < 0)
            return false;
        const QChar first = m_text.at(m_pos);
        if (first == u'?' || first == u'!') {
            // A declaration that is not a comment ends at the next comment's end all the same.
            if (!passDeclaration(first == u'?' ? QStringView(u"?>") : QStringView(u"-->")))
                return false;
            continue;
        }
        m_name = m_text.mid(m_pos, close - m_pos);
        m_pos = close + 1;
        return first != u'/';
    }
}

/// Goes to the second character of the next @p end behind the current one.
bool ElementScanner::passDeclaration(QStringView end)
{
    const qsizetype found = m_text.indexOf(end, m_pos + 1);
    m_pos = found + 1;
    return found >= 0;
}

/// Reads the content of the element whose opening tag has just been read, and goes behind its
/// closing tag. An element of the same name inside counts if its opening tag is written in just
/// the same way.
///
/// Every tag ends with the only ">" in it. So each ">" is looked at once, and comparing a tag
/// that may end there does not reach back beyond the ">" before it.
bool ElementScanner::readContent()
{
    const qsizetype begin = m_pos;
    if (m_name.endsWith(u'/')) {
        m_name.chop(1);
        m_content = m_text.mid(begin, 0);
        return true;
    }
    int depth = 1;
    qsizetype runStart = begin;
    while (depth > 0) {
        const qsizetype close = find(m_text, u'>', runStart);
        if (close < 0)
            return false;
        const QStringView run = m_text.mid(runStart, close - runStart);
        runStart = close + 1;
        if (!endsWith(run, m_name))
            continue;
        const QStringView before = run.chopped(m_name.size());
        if (before.endsWith(u'<')) {
            ++depth;
        } else if (endsWith(before, u"</") && --depth == 0) {
            const qsizetype contentEnd = close - m_name.size() - 2;
            m_content = m_text.mid(begin, contentEnd - begin);
        }
    }
    m_pos = runStart;
    return true;
}

} // namespace tresk
