#ifndef TRESK_APPS_CONTENTCOPY_H
#define TRESK_APPS_CONTENTCOPY_H

#include <tresk/ExtractionQueue.h>
#include <tresk/TreskParser.h>

#include <QString>

#include <functional>

namespace tresk::cli {

class Document;
class TargetFile;

/// Copies the content of embedded files into files on disk and makes sure that it fits what
/// the markers say, as far as that can be told without checksums; these are an extra.
class ContentCopy {
public:
    /// How a copy failed.
    struct Failure {
        enum Reason {
            None,
            Content, ///< the content is damaged, or does not fit its marker
            Checksum, ///< a checksum differs or is missing
            Target, ///< the target cannot be written
            Interrupted
        };
        Reason reason = None;
        QString text;
    };

    /// @p progress is called now and then with the number of bytes of the current file that
    /// have been worked off. The document must outlive the object.
    ContentCopy(Document& document, std::function<void(qint64 done)> progress);

    /// Writes the content of @p file, whose marker is without fault, to @p target.
    Failure copy(const FileTag& file, TargetFile& target);
    /// Reads back what was written to @p target and compares its checksum.
    Failure verify(const FileTag& file, const TargetFile& target);

private:
    Q_DISABLE_COPY(ContentCopy)

    Failure copyThroughQueue(const FileTag& file, TargetFile& target);
    Failure copyThroughReader(const FileTag& file, TargetFile& target);
    Failure failure(const FileTag& file, TargetFile& target);

    Document& m_document;
    std::function<void(qint64)> m_progress;
    ExtractionQueue m_extraction;
    bool m_valid = false; ///< what the queue said of the current file
};

} // namespace tresk::cli

#endif
