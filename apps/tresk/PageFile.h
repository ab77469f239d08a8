#ifndef TRESK_APPS_PAGEFILE_H
#define TRESK_APPS_PAGEFILE_H

#include <QByteArray>
#include <QSaveFile>
#include <QString>
#include <QStringList>

#include <memory>

namespace tresk::cli {

class Output;
struct Invocation;

/// Where a page goes that a command makes: to the file that an option names, which gets its name
/// when it is complete, or to standard output without the option.
class PageFile {
public:
    /// The invocation must outlive the object.
    PageFile(Invocation& invocation, const char* option);

    /// Reports what is wrong and returns false; so it does for a file that is one of
    /// @p documents, which are not to be written over.
    bool open(const QStringList& documents);
    void write(const QByteArray& bytes);
    /// Reports what went wrong since open() and returns false.
    bool finish();

private:
    Output& m_output;
    bool m_toFile;
    QString m_path;
    std::unique_ptr<QSaveFile> m_file; ///< null for standard output
};

} // namespace tresk::cli

#endif
