#ifndef TRESK_TESTS_ALIKEFILES_H
#define TRESK_TESTS_ALIKEFILES_H

#include "SummaryXml.h"

#include <QVector>

namespace tresktest {

/// Puts files together of which many are alike, and what summaries say of them, so that there are
/// several that a description can mean. What is taken follows from @p Choices, whose below(n) is
/// one of the n numbers from 0.
template <typename Choices>
class AlikeFiles {
public:
    explicit AlikeFiles(Choices& choices)
        : m_choices(choices)
    {
    }

    bool oneIn(int count) { return m_choices.below(count) == 1; }
    QByteArray oneOf(const QList<QByteArray>& list)
    {
        return list.at(m_choices.below(static_cast<int>(list.size())));
    }
    QByteArray digest() { return QByteArray(32, oneIn(2) ? 'a' : 'b'); }

    FileSpec file()
    {
        FileSpec file = FileSpec::plain(QStringLiteral("a"), oneOf({"", "x", "y"}));
        if (oneIn(3))
            file.compression = "flate";
        if (oneIn(4))
            file.desc = QStringLiteral("description");
        if (oneIn(4))
            file.comment = QStringLiteral("comment");
        if (oneIn(4))
            file.with("md5cfile", digest());
        if (oneIn(4))
            file.with("filename", oneOf({"b", "a>-<b", "a>-<" + digest(), "ws_summary.xml"}));
        if (oneIn(4))
            file.with("md5file", oneIn(2) ? digest() : QByteArray());
        if (oneIn(8))
            file.with("filesize", oneOf({"", "3", "-1"}));
        return file;
    }

    /// Fewer than @p end files, some of which are the same as the one before.
    QVector<FileSpec> files(int end)
    {
        QVector<FileSpec> files;
        for (int left = m_choices.below(end); left > 0; --left)
            files += files.isEmpty() || oneIn(2) ? file() : files.last();
        return files;
    }

    FileElement descriptionOf(const FileSpec& file)
    {
        FileElement element(file, oneIn(2) ? "InFile" : "OutFile");
        if (oneIn(8))
            element.with("Embedded", "0");
        if (oneIn(4))
            element.with(oneOf({"Description", "Comment", "Filetype"}), "description");
        if (oneIn(4))
            element.with(oneOf({"CompressedSize", "CompressedMD5", "CompressedMethod"}), "1");
        if (oneIn(4))
            element.with("Filename", "a");
        if (oneIn(4))
            element.with("UncompressedMD5", oneOf({digest(), "b>-<" + digest(), digest() + ">-<"}));
        return element;
    }

    /// The summary of a step, in some cases compressed, or said to be in a way that is unknown.
    FileSpec summary(const QByteArray& xml)
    {
        FileSpec summary = summaryFile(xml);
        if (oneIn(3))
            summary.compression = oneIn(3) ? "lzma" : "flate";
        return summary;
    }

private:
    Choices& m_choices;
};

} // namespace tresktest

#endif
