#ifndef TRESK_SUMMARY_H
#define TRESK_SUMMARY_H

#include <tresk/Export.h>

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace tresk {

struct FileTag;
struct SectionTag;

/// One input or output file of a step, as the step's summary describes it.
///
/// Texts are null where the summary does not have them and empty where it has them without
/// content. They are as written: nothing is trimmed, and entities are not decoded.
struct TRESK_EXPORT FileSummary {
    int tagId = -1; ///< id of the embedded file; -1 where none was found for it
    QString filename; ///< name; from a stranger: never a path to write to as it is
    QString filepath; ///< where the file was when the step ran
    QString filetype; ///< the kind of file, free text
    QString description; ///< what is in the file
    QString comment; ///< what else there is to say of it
    QString lastModified; ///< date and time as text
    bool generateMD5 = false; ///< the writer was asked for a checksum
    bool embedded = false; ///< the content is embedded in the document
    bool preview = false; ///< a preview of the file is embedded
    bool previewWS = false; ///< a preview for the step is embedded
    bool thumbnail = false; ///< a thumbnail is embedded
    bool thumbnailOnly = false; ///< only the thumbnail is embedded
    int uncompressedSize = -1; ///< bytes of the content; -1 unknown
    QString uncompressedMD5; ///< MD5 of the content
    QString compressedMethod; ///< "flate" or "none"
    int compressedSize = -1; ///< bytes stored; -1 unknown
    QString compressedMD5; ///< MD5 of the stored bytes
    QHash<QString, QString> userAttributes; ///< values by name
    QHash<QString, QString> userAttributeUnits; ///< units by name, where one was given
    QStringList userAttributeNames; ///< names as read; one that was read twice stands twice
    QString filePurpose = QStringLiteral("Undefined"); ///< "InFile", "OutFile" or "Undefined"
    int state = 1; ///< carried along for the caller; not used by the library
};

/// What a step says of itself: who ran which tool, where and when, with which files.
///
/// Texts are null and empty as in FileSummary.
struct TRESK_EXPORT Workflowstep {
    int tagId = 0; ///< id of the step's section; -1 if read from XML and not yet tied to one
    QString treskRootFile; ///< the document that was the root of the step
    QString timestamp; ///< date and time as text
    QString title; ///< the step's name, one line as a rule
    QString description; ///< what was done
    QString comment; ///< what else there is to say of it
    QString command; ///< the command line that was run
    QString tool; ///< the tool's name
    QString toolPath; ///< where the tool lies
    QString host; ///< the machine on which it ran
    QString user; ///< who ran it
    QString creator; ///< who or what wrote the step
    QString pdfTitle; ///< from here to pdfCreator: the PDF's document information entries
    QString pdfAuthor; ///< "Author"
    QString pdfSubject; ///< "Subject"
    QString pdfKeywords; ///< "Keywords"
    QString pdfProducer; ///< "Producer"
    QString pdfCreator; ///< "Creator"
    QList<FileSummary> files; ///< input and output files, in the order of the summary
    QHash<QString, QString> userAttributes; ///< values by name
    QHash<QString, QString> userAttributeUnits; ///< units by name, where one was given
    QStringList userAttributeNames; ///< names as read; one that was read twice stands twice
};

/// A step with what stands beside it in its summary document.
struct TRESK_EXPORT Summary : Workflowstep {
    QString md5Signature; ///< the signature that the document carries, as text; null without one
    bool fromXml = false; ///< whether a summary document was read; false if made from markers
};

/// What the marker of an embedded file knows: `filePurpose` is "Undefined", all flags are
/// false (`embedded` too), `filepath` and `lastModified` null, and there are no attributes.
TRESK_EXPORT FileSummary makeFileSummaryFromFileTag(const FileTag& tag);

/// What markers know of a step that has no summary document: id, title and creator of
/// @p section, and each of @p files, in this order, as makeFileSummaryFromFileTag() has it.
TRESK_EXPORT Summary makeSummaryFromTags(const SectionTag& section, const QList<FileTag>& files);

} // namespace tresk

#endif
