#ifndef TRESK_ARGFILEREADER_H
#define TRESK_ARGFILEREADER_H

#include <tresk/ArgFile.h>
#include <tresk/LogSource.h>

#include <QHash>
#include <QString>
#include <QStringList>

namespace tresk {

/// Reads the options of a run of `treskadd` from the text of an argument file.
///
/// It never fails: what is wrong is logged, and the rest is understood. An unknown option, or one
/// that lacks parameters, ends the reading with an error (type 2); the options before it hold. The
/// long options "--firstpage" and "--readme" are unknown here, other than "-1" and "-r". "-c" and
/// "--sync-cwd" do nothing but log a message of type 0, and what follows "-c" is read as an option,
/// whichever it is. A key that an option does not know is logged as an error that names the value,
/// not the key. Every flag of a file but "thumbnail" is set and also logged as an error. Options of
/// a file without a file before them are passed over.
class TRESK_EXPORT ArgfileReader : public LogSource {
    Q_OBJECT

public:
    ArgfileReader() = default;
    ~ArgfileReader() override;

    /// What @p text says, taken apart by ArgfileParser::parseArgfile() with @p variables, which
    /// may be null. Text that cannot be taken apart gives the default, without a message.
    ArgFile readArgfile(const QString& text, const QHash<QString, QString>* variables);

private:
    QStringList checkOptionSignatures(const QStringList& args);
    ArgFile parseCommandline(const QStringList& args);
};

} // namespace tresk

#endif
