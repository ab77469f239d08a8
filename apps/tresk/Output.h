#ifndef TRESK_APPS_OUTPUT_H
#define TRESK_APPS_OUTPUT_H

#include <QByteArray>
#include <QString>

namespace tresk::cli {

/// Writes all of @p bytes to the descriptor @p fd, however many calls it takes. Returns 0 or
/// the number of the error. An interruption by a signal that is watched for ends it (EINTR).
int writeFully(int fd, const char* bytes, qint64 size);

/// The standard output: buffered, binary, and aware of what goes wrong. After an error
/// nothing more is written.
class Output {
public:
    Output();

    void write(const QByteArray& bytes);
    /// Writes @p text as UTF-8.
    void write(const QString& text);
    void flush();

    /// Number of the first error, 0 without one.
    int error() const { return m_error; }
    bool isTerminal() const { return m_terminal; }

private:
    QByteArray m_buffer;
    int m_error = 0;
    bool m_terminal;
};

} // namespace tresk::cli

#endif
