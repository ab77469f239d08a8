#include "ArgumentFile.h"

#include "Messages.h"
#include "RegularFile.h"
#include "SystemText.h"
#include "Text.h"

#include <tresk/ArgfileReader.h>

#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace tresk::cli {

namespace {

constexpr int mebibytes = 4; // the list of tokens takes a hundred times as much
constexpr qint64 largestSize = qint64(mebibytes) << 20;

bool isVariableName(const QString& name)
{
    const auto isAllowed = [](QChar c) {
        return (c >= QLatin1Char('a') && c <= QLatin1Char('z'))
            || (c >= QLatin1Char('A') && c <= QLatin1Char('Z'))
            || (c >= QLatin1Char('0') && c <= QLatin1Char('9'));
    };
    return !name.isEmpty() && std::all_of(name.begin(), name.end(), isAllowed);
}

QString tooLarge()
{
    return QStringLiteral("has more than %1 MiB, which is too much for an argument file")
        .arg(mebibytes);
}

/// Reads all of @p file into @p bytes. Returns what is wrong, or nothing.
QString readBytes(const OpenedFile& file, QByteArray& bytes)
{
    if (!file.problem.isEmpty())
        return file.problem;
    if (file.size > largestSize)
        return tooLarge();
    // It may grow meanwhile, and some files have a size of 0 until they are read.
    char buffer[64 * 1024];
    for (;;) {
        const ssize_t size = ::read(file.fd, buffer, sizeof buffer);
        if (size == 0)
            return {};
        if (size < 0)
            return systemError(errno);
        bytes.append(buffer, static_cast<int>(size));
        if (bytes.size() > largestSize)
            return tooLarge();
    }
}

/// The line and column of the offset @p position in @p text, for people.
QString placeOf(const QString& text, int position)
{
    int line = 1;
    int lineStart = 0;
    for (int i = 0; i < position; ++i) {
        const bool pair = text[i] == QLatin1Char('\r') && text[i + 1] == QLatin1Char('\n');
        if (pair || (text[i] != QLatin1Char('\r') && text[i] != QLatin1Char('\n')))
            continue;
        ++line;
        lineStart = i + 1;
    }
    const auto column = text.mid(lineStart, position - lineStart).toUcs4().size() + 1;
    return QStringLiteral("line %1, column %2").arg(line).arg(column);
}

/// Why @p text, which cannot be taken apart, cannot. With what it lacks behind it, it can, and
/// then the last token is the one in question.
QString reasonWhyBroken(const QString& text)
{
    for (const char* missing : {"'", "\"", "\\\""}) {
        const QList<ArgfileToken> tokens = ArgfileParser().getHighlighterList(
            text + QLatin1String(missing));
        if (tokens.isEmpty())
            continue;
        const int begin = tokens.last().position();
        const QChar first = text[begin];
        if (first == QLatin1Char('\'') || first == QLatin1Char('"'))
            return placeOf(text, begin) + QStringLiteral(": the quote that begins here never ends");
        break;
    }
    return placeOf(text, int(text.size()) - 1)
        + QStringLiteral(": nothing follows the backslash at the end");
}

} // namespace

Option variableOption()
{
    return {'D', "define", "NAME=VALUE", "give variable NAME this value; may be repeated"};
}

QString ArgumentFile::define(const QStringList& definitions)
{
    for (const QString& definition : definitions) {
        const auto equals = definition.indexOf(QLatin1Char('='));
        const QString name = definition.left(equals);
        if (equals < 0 || !isVariableName(name))
            return QStringLiteral("-D takes NAME=VALUE, NAME of ASCII letters and digits, not ")
                + quoted(definition);
        if (isUndecoded(definition))
            return QStringLiteral("the value of %1 is not UTF-8").arg(name);
        m_variables.insert(name, definition.mid(equals + 1));
        m_hasVariables = true;
    }
    return {};
}

bool ArgumentFile::read(const QString& path)
{
    m_name = path;
    QByteArray bytes;
    const OpenedFile file = openRegularFile(path);
    const QString problem = readBytes(file, bytes);
    if (file.fd != -1)
        close(file.fd);
    if (!problem.isEmpty()) {
        reportError(m_name, problem);
        return false;
    }
    // Qt drops one byte-order mark; a second one is a character of the text.
    m_text = QString::fromUtf8(bytes.constData(), int(bytes.size()));
    const QByteArray byteOrderMark = "\xEF\xBB\xBF";
    if (bytes.startsWith(byteOrderMark))
        bytes.remove(0, byteOrderMark.size());
    if (m_text.toUtf8() != bytes) {
        m_messages += {ArgumentMessage::Warning,
                       QStringLiteral("is not UTF-8 throughout; what is not was replaced by "
                                      "U+FFFD")};
    }
    return true;
}

bool ArgumentFile::hasErrors() const
{
    return std::any_of(m_messages.begin(), m_messages.end(), [](const ArgumentMessage& message) {
        return message.kind == ArgumentMessage::Error;
    });
}

QList<ArgfileToken> ArgumentFile::tokens()
{
    const QList<ArgfileToken> tokens = ArgfileParser().getHighlighterList(m_text);
    if (tokens.isEmpty() && !m_text.isEmpty())
        setBroken();
    return tokens;
}

ArgFile ArgumentFile::options()
{
    // With a word in front there are arguments, unless nothing can be taken apart. The tokens would
    // tell as well, but take many times the memory.
    if (ArgfileParser().parseArgfile(QStringLiteral("x ") + m_text, nullptr).isEmpty()) {
        setBroken();
        return {};
    }
    ArgfileReader reader;
    QObject::connect(&reader, &LogSource::log, &reader, [this](const QString& text, int kind) {
        m_messages += {kind, text.trimmed()};
    });
    return reader.readArgfile(m_text, variables());
}

bool ArgumentFile::isReadToItsEnd(const ArgFile& options) const
{
    if (m_isBroken)
        return false;
    // One more document behind the text is found if the reader gets there.
    const QString another = QStringLiteral("another");
    ArgfileReader reader;
    const ArgFile more = reader.readArgfile(m_text + QStringLiteral("\n-O ") + another,
                                            variables());
    const int count = options.numOutputTreskfiles();
    return more.numOutputTreskfiles() == count + 1 && more.outputTreskfile(count) == another;
}

void ArgumentFile::reportMessages() const
{
    for (const ArgumentMessage& message : m_messages) {
        if (message.kind == ArgumentMessage::Error)
            reportError(m_name, message.text);
        else if (message.kind == ArgumentMessage::Warning)
            reportWarning(m_name, message.text);
        else
            reportNote(m_name, message.text);
    }
}

void ArgumentFile::reportWarnings() const
{
    for (const ArgumentMessage& message : m_messages) {
        if (message.kind == ArgumentMessage::Warning)
            reportWarning(m_name, message.text);
    }
}

void ArgumentFile::setBroken()
{
    m_isBroken = true;
    m_messages += {ArgumentMessage::Error, reasonWhyBroken(m_text)};
}

const QHash<QString, QString>* ArgumentFile::variables() const
{
    return m_hasVariables ? &m_variables : nullptr;
}

} // namespace tresk::cli
