#ifndef TRESK_APPS_PAGEFILE_H
#define TRESK_APPS_PAGEFILE_H

#include "TargetDirectory.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>

namespace tresk::cli {

class Output;
struct Invocation;

/// Where a page goes that a command makes: to the file that an option names, or to standard output
/// without the option or where its value is "-".
///
/// A file gets its name when it is complete, and replaces what has the name already, but keeps its
/// permissions. A symbolic link to a file stays and leads to the new one. Devices and pipes are
/// written to.
class PageFile {
public:
    /// The invocation must outlive the object.
    PageFile(Invocation& invocation, const char* option);
    ~PageFile();

    /// Reports what is wrong and returns false; so it does for a file that is one of
    /// @p documents, which are not to be written over.
    bool open(const QStringList& documents);
    void write(const QByteArray& bytes);
    /// Whether what is written now is lost: an earlier write has failed, or a signal has come.
    bool isLost() const;
    /// Reports what went wrong since open() and returns false. An unfinished file is removed.
    bool finish();

private:
    Q_DISABLE_COPY(PageFile)

    QString openTarget();
    void flush();
    QString writeOut(const QByteArray& bytes);

    Output& m_output;
    bool m_isFile;
    QString m_path;
    TargetDirectory m_directory;
    std::unique_ptr<TargetFile> m_target; ///< null for standard output, devices and pipes
    QString m_name; ///< of the target in the directory
    int m_device = -1; ///< what else is written to
    QByteArray m_buffer;
    QString m_problem;
};

} // namespace tresk::cli

#endif
