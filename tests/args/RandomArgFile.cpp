#include "RandomArgFile.h"

#include "ArgFileFields.h"
#include "ArgFileText.h"

#include <QStringList>

#include <algorithm>

using tresk::ArgFile;
using tresk::WSFile;

namespace tresktest {

namespace {

bool isSpace(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\r')
        || c == QLatin1Char('\n');
}

/// Whether @p word is left as it is, quoted or not.
bool isKept(const QString& word)
{
    return isQuoted(word) || !(word.contains(QLatin1Char('\'')) || word.contains(QLatin1Char('#')));
}

class Generator {
public:
    explicit Generator(const std::function<int(int)>& below)
        : m_below(below)
    {
    }

    ArgFile options()
    {
        ArgFile options;
        options.setVerbosity(ArgFile::Verbosity(m_below(3)));
        for (const FlagField& field : flagFields)
            (options.*field.set)(oneIn(2));
        for (const TextField& field : textFields) {
            if (field.set != &ArgFile::setFirstpage && field.set != &ArgFile::setReadme)
                (options.*field.set)(anyText());
        }
        for (int i = m_below(4); i > 0; --i)
            options.addOutputTreskfile(word());
        addUserAttributes(options);
        for (int i = m_below(4); i > 0; --i)
            options.addFile(file());
        return options;
    }

private:
    bool oneIn(int count) { return m_below(count) == 0; }

    QString piece()
    {
        static const QStringList pieces{text("a"),
                                        text("Bc"),
                                        text("7"),
                                        text("X"),
                                        text("$"),
                                        text("$$"),
                                        text("$X"),
                                        text("${X}"),
                                        text("${"),
                                        text("}"),
                                        text("\\"),
                                        text("\\\\"),
                                        text("\""),
                                        text("'"),
                                        text("#"),
                                        text("`"),
                                        text(" "),
                                        text("  "),
                                        text("\t"),
                                        text("\n"),
                                        text("\r"),
                                        text("\r\n"),
                                        text("-O"),
                                        text("--"),
                                        text("no-"),
                                        text("title"),
                                        text("="),
                                        text(":"),
                                        text(";"),
                                        text("/"),
                                        text("."),
                                        text("%1"),
                                        text("\xc3\xa4"),
                                        text("\xf0\x9f\x98\x80"),
                                        text("\xc2\xa0"),
                                        text("\x0b\x0c"),
                                        QString(QChar(0xd83d)),
                                        QString(QChar(0xde00)),
                                        QString(QChar(0))};
        const int which = m_below(int(pieces.size()) + 1);
        return which < pieces.size() ? pieces.at(which) : QString(QChar(m_below(0x10000)));
    }

    /// A text that is not empty.
    QString word()
    {
        QString word;
        for (int count = m_below(6); count >= 0; --count)
            word += piece();
        if (!isKept(word))
            word.insert(m_below(int(word.size()) + 1), QLatin1Char(' '));
        return word;
    }

    QString anyText() { return oneIn(4) ? QString() : word(); }

    template <typename Owner>
    void addUserAttributes(Owner& owner)
    {
        for (int i = m_below(5); i > 0; --i) {
            const QStringList keys = owner.userAttributeKeys();
            const bool again = !keys.isEmpty() && oneIn(3);
            const QString key = again ? keys.at(m_below(int(keys.size()))) : anyText();
            owner.addUserAttribute(key, key.isEmpty() ? QString() : anyText());
        }
    }

    QString path()
    {
        static const QStringList starts{QString(),    QString(),  text("/"),  text("//"),
                                        text("./"),   text(".."), text("x/"), text("x//y"),
                                        text("x///"), text("/x/")};
        const QString start = starts.at(m_below(int(starts.size())));
        return start + anyText().remove(QLatin1Char(':'));
    }

    WSFile file()
    {
        WSFile file;
        file.setInputFile(oneIn(2));
        QString name;
        if (!oneIn(8))
            file.setFilepath(path());
        if (!oneIn(8))
            name = path();
        const bool absolute = name.startsWith(QLatin1Char('/'));
        if (!isKept(absolute ? name : file.filepath() + name))
            name += QLatin1Char(' ');
        file.setFilename(name);
        for (const FileTextField& field : fileTextFields)
            (file.*field.set)(anyText());
        for (const FileFlagField& field : fileFlagFields)
            (file.*field.set)(oneIn(2));
        addUserAttributes(file);
        return file;
    }

    const std::function<int(int)>& m_below;
};

} // namespace

bool isQuoted(const QString& word)
{
    return std::any_of(word.begin(), word.end(), isSpace);
}

ArgFile randomArgFile(const std::function<int(int)>& below)
{
    return Generator(below).options();
}

} // namespace tresktest
