#ifndef TRESK_APPS_EMBEDDEDPICTURES_H
#define TRESK_APPS_EMBEDDEDPICTURES_H

#include <tresk/TreskParser.h>

#include <QByteArray>
#include <QSet>
#include <QString>

namespace tresk::cli {

class Document;

/// An embedded file that is a picture, as a page shows it.
struct EmbeddedPicture {
    QByteArray type; ///< such as "image/png"; empty if the file is no picture
    QByteArray content; ///< empty if it is not to be shown
    QString omission; ///< why, for people
};

/// Reads the pictures among a document's embedded files, as far as they are of a size that
/// browsers can cope with, each for itself and all together.
class EmbeddedPictures {
public:
    /// The document must outlive the object.
    explicit EmbeddedPictures(Document& document);

    /// The file as a picture. Each is read once: when asked for again, it is none.
    EmbeddedPicture take(const FileTag& file);

private:
    EmbeddedPicture read(const FileTag& file);
    QString obstacle(const QByteArray& content) const;

    Document& m_document;
    QSet<int> m_taken; ///< ids of files
    qint64 m_bytesLeft;
    qint64 m_pixelsLeft;
};

} // namespace tresk::cli

#endif
