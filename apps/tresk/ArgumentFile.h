#ifndef TRESK_APPS_ARGUMENTFILE_H
#define TRESK_APPS_ARGUMENTFILE_H

#include "CommandLine.h"

#include <tresk/ArgFile.h>
#include <tresk/ArgfileParser.h>

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace tresk::cli {

/// Something that is said about an argument file.
struct ArgumentMessage {
    enum Kind { Information = 0, Warning = 1, Error = 2 };

    int kind;
    QString text;
};

/// The option "define", the values of which ArgumentFile::define() takes.
Option variableOption();

/// An argument file that a command works on.
class ArgumentFile {
public:
    /// Gives variables their values; each of @p definitions is "NAME=VALUE". Returns what is
    /// wrong with them, or nothing. Without any, no variable of the file is replaced.
    QString define(const QStringList& definitions);
    /// Reads the file at @p path. Reports what is wrong and returns false if that cannot be done.
    bool read(const QString& path);

    /// The path as the user gave it.
    const QString& name() const { return m_name; }
    const QString& text() const { return m_text; }
    const QList<ArgumentMessage>& messages() const { return m_messages; }
    bool hasErrors() const;

    /// The tokens of the text. None, and a message, where it cannot be taken apart.
    QList<ArgfileToken> tokens();
    /// Whether it could not, as is known from then on.
    bool isBroken() const { return m_isBroken; }
    /// What the file says; what is wrong with it is added to the messages.
    ArgFile options();
    /// Whether the text says what @p options are from its beginning to its end; the reader stops
    /// where it meets an option that it does not know, or one that lacks its parameters. (Its
    /// messages cannot tell, since it makes errors of much that does not stop it.)
    bool isReadToItsEnd(const ArgFile& options) const;

    /// Tells the user all messages.
    void reportMessages() const;
    /// Tells the user the warnings alone.
    void reportWarnings() const;

private:
    const QHash<QString, QString>* variables() const;
    void setBroken();

    QString m_name;
    QString m_text;
    bool m_isBroken = false;
    bool m_hasVariables = false;
    QHash<QString, QString> m_variables;
    QList<ArgumentMessage> m_messages;
};

} // namespace tresk::cli

#endif
