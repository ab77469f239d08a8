#ifndef TRESK_FUZZ_SCRATCHFILE_H
#define TRESK_FUZZ_SCRATCHFILE_H

#include "FuzzTarget.h"

#include <QFile>
#include <QTemporaryFile>

namespace tresk_fuzz {

/// A file for inputs and outputs. Make one for all runs: making one for each would take most of
/// the time.
class ScratchFile {
public:
    ScratchFile() { TRESK_REQUIRE(m_file.open()); }

    QString path() const { return m_file.fileName(); }

    void setContent(const QByteArray& content)
    {
        TRESK_REQUIRE(m_file.resize(0) && m_file.seek(0));
        TRESK_REQUIRE(m_file.write(content) == content.size());
        TRESK_REQUIRE(m_file.flush());
    }

    QByteArray content() const
    {
        QFile file(path());
        TRESK_REQUIRE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

private:
    QTemporaryFile m_file;
};

} // namespace tresk_fuzz

#endif
