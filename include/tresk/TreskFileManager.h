#ifndef TRESK_TRESKFILEMANAGER_H
#define TRESK_TRESKFILEMANAGER_H

#include <tresk/LogSource.h>

#include <QHash>
#include <QSharedPointer>
#include <QString>

namespace tresk {

class TreskParser;

/// A document that has been opened, and its file.
class TRESK_EXPORT TempTreskfile {
public:
    /// @p parser has the document at @p path open. If @p temporary, the file is deleted together
    /// with the object.
    TempTreskfile(const QSharedPointer<TreskParser>& parser, const QString& path, bool temporary);
    ~TempTreskfile();

    /// The parser that has the document open.
    QSharedPointer<TreskParser> parser() const { return m_parser; }
    /// The path of the file.
    QString path() const { return m_path; }

private:
    Q_DISABLE_COPY(TempTreskfile)

    QSharedPointer<TreskParser> m_parser;
    QString m_path;
    bool m_temporary;
};

/// Keeps documents open, one parser for each path.
///
/// Copies share the documents; a temporary file goes when the last copy has let go of it. The
/// log of all parsers is relayed.
class TRESK_EXPORT TreskFileManager : public LogSource {
    Q_OBJECT

public:
    /// Keeps nothing yet. A @p listener that is not null is connected to the log.
    explicit TreskFileManager(QObject* listener = nullptr);
    /// @{
    /// Shares the documents of @p other. Listeners are not copied.
    TreskFileManager(const TreskFileManager& other);
    TreskFileManager& operator=(const TreskFileManager& other);
    /// @}
    ~TreskFileManager() override;

    /// The parser of the document at @p path, opened in ParseTolerant mode unless it is known
    /// already. Null if it cannot be opened. If @p temporary, the file of a newly opened document
    /// is deleted when it is no longer kept.
    QSharedPointer<TreskParser> addTreskFile(const QString& path, bool temporary);
    /// Keeps @p parser, which has been opened already, under @p path, and returns it. The file is
    /// not deleted. A null parser is not kept.
    QSharedPointer<TreskParser> addTreskFile(const QSharedPointer<TreskParser>& parser,
                                             const QString& path);
    /// The parser that is kept under @p path; null if there is none.
    QSharedPointer<TreskParser> parser(const QString& path) const;
    /// Lets go of the document that is kept under @p path, if there is one.
    void remove(const QString& path);
    /// Lets go of all documents.
    void clear();

private:
    void relayLogs();

    QHash<QString, QSharedPointer<TempTreskfile>> m_files; ///< by path
};

} // namespace tresk

#endif
