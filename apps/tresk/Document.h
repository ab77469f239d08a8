#ifndef TRESK_APPS_DOCUMENT_H
#define TRESK_APPS_DOCUMENT_H

#include <tresk/TreskParser.h>

#include <QString>

namespace tresk::cli {

/// A document that a command works on.
class Document {
public:
    Document();
    ~Document();

    /// Opens the document at @p path. Reports what is wrong and returns false if there is no
    /// history in it.
    bool open(const QString& path);
    /// The same for commands that are about steps: embedded files alone are no history then.
    bool openWithSteps(const QString& path);
    /// Does what open() does, but reports nothing; see problem().
    bool openQuietly(const QString& path);

    /// What was reported when the document could not be opened, or not be read to its end.
    const QString& problem() const { return m_problem; }
    /// Whether the reason was that the file, a sound one, has no history in it.
    bool lacksHistory() const { return m_lacksHistory; }
    /// Whether the reason was what the file is: a device, a directory, empty or too large.
    bool isUnfit() const { return m_isUnfit; }

    /// The path as the user gave it.
    const QString& name() const { return m_name; }
    /// A path that Qt can encode; good as long as the document lives.
    QString parserPath() const;
    qint64 size() const { return m_size; }
    const TreskParser& parser() const { return m_parser; }
    TreskParser& parser() { return m_parser; }
    /// @p length bytes from offset @p pos, a range inside the document; fewer if they cannot
    /// be read.
    QByteArray bytes(qint64 pos, int length);

    /// Reports an error about this document.
    void report(const QString& problem) const;
    /// Reports an error about an embedded file of this document.
    void report(const FileTag& file, const QString& problem) const;
    /// Reports an error about a step of this document.
    void report(const SectionTag& step, const QString& problem) const;
    /// Reports what is remarkable about the document, an embedded file or a step, but no error.
    void warn(const QString& remark) const;
    void warn(const FileTag& file, const QString& remark) const;
    void warn(const SectionTag& step, const QString& remark) const;

    /// Of a document that has lost its end, how many steps or embedded files reach beyond it;
    /// empty if everything is within.
    QString extentProblem() const { return extentProblem(m_parser, m_size); }
    /// The same of the document of @p size bytes that @p parser has open.
    static QString extentProblem(const TreskParser& parser, qint64 size);
    /// Reports it and returns false if there is such a problem.
    bool checkExtent() const;
    /// Of a history that does not lead back to its first step, where it breaks off; empty else.
    QString chainProblem() const { return chainProblem(m_parser); }
    /// The same of the document that @p parser has open.
    static QString chainProblem(const TreskParser& parser);
    /// Reports it and returns false if there is such a problem.
    bool checkChain() const;
    /// What has kept the document from being read to its end since it was opened; nothing if
    /// all is well.
    QString readingProblem() const;
    /// Reports that.
    bool checkReading();

private:
    Q_DISABLE_COPY(Document)

    QString problemWithFile();
    QString unfit(const QString& problem);
    bool refuse(const QString& problem);

    QString m_name;
    int m_fd = -1;
    qint64 m_size = 0;
    QString m_problem;
    bool m_lacksHistory = false;
    bool m_isUnfit = false;
    TreskParser m_parser;
};

} // namespace tresk::cli

#endif
