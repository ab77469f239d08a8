#ifndef TRESK_SAMPLES_STEP_H
#define TRESK_SAMPLES_STEP_H

#include <QByteArray>
#include <QString>
#include <QVector>

#include <cstddef>

namespace samples {

/// A text written as UTF-8.
inline QString operator""_s(const char* text, std::size_t size)
{
    return QString::fromUtf8(text, static_cast<int>(size));
}

/// A free attribute of a step or a file.
struct Attribute {
    QString name;
    QString value;
    QString unit; ///< none if empty
};

enum class Purpose { Input, Output };

/// How a file is kept in the document.
enum class Storage {
    Plain, ///< embedded as it is
    Compressed, ///< embedded as a zlib stream
    NotEmbedded ///< only described
};

/// One file of a step. The content is also needed of a file that is not embedded, for its
/// size and digest.
struct StepFile {
    QString name;
    QByteArray content;
    Purpose purpose = Purpose::Input;
    Storage storage = Storage::Plain;
    QString filetype;
    QString path; ///< in the step's folder if empty
    QString description;
    QString comment;
    QString lastModified;
    bool preview = false;
    bool previewWS = false;
    bool thumbnail = false;
    bool thumbnailOnly = false;
    QVector<Attribute> attributes;
};

/// The entries of a PDF's document information.
struct PdfInfo {
    QString title;
    QString author;
    QString subject;
    QString keywords;
    QString producer;
    QString creator;
};

/// One workflow step: what its section and its summary document say.
struct Step {
    QString rootFile;
    QString folder; ///< where the tool ran
    QString timestamp;
    QString title;
    QString description;
    QString comment;
    QString command;
    QString tool;
    QString toolPath;
    QString host;
    QString user;
    QVector<StepFile> files;
    QVector<Attribute> attributes;
};

} // namespace samples

#endif
