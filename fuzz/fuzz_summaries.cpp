// Makes a document of one to three steps: up to the first "~", each byte of the input is a choice;
// behind it, texts of summary documents follow, with a "~" between them. In such a text, "@" and
// any byte become the description of one of the step's files. The summaries must be those that
// their model makes.

#include "ByteSource.h"
#include "CreatorModel.h"
#include "DebugLines.h"
#include "FuzzTarget.h"
#include "ScratchFile.h"
#include "SummaryText.h"
#include "SummaryXml.h"

#include <tresk/SummaryCreator.h>

#include <QLoggingCategory>

using tresk::Summary;
using tresktest::DocumentWriter;
using tresktest::FileElement;
using tresktest::FileSpec;
using tresktest::MessageCapture;
using tresktest::SectionSpec;
using tresktest::textOf;

namespace {

constexpr int longestText = 2048; // The models take quadratic time.
constexpr int mostDescriptions = 16; // in a text

using Files = QVector<FileSpec>;

/// Files of which many are alike, so that there are several that a description can mean.
class Maker {
public:
    explicit Maker(const QByteArray& input)
        : m_texts(input.split('~'))
        , m_choices(m_texts.takeFirst())
    {
    }

    DocumentWriter document()
    {
        DocumentWriter document("%PDF-1.4\n");
        document.writeHeader();
        int lastStart = document.position();
        for (int left = 1 + m_choices.below(3); left > 0; --left) {
            if (oneIn(8))
                document.writeFile(file());
            SectionSpec section;
            section.title = QStringLiteral("step");
            section.creator = QStringLiteral("creator %1").arg(left);
            section.files = filesOfStep();
            if (oneIn(8))
                section.regionStart = lastStart;
            lastStart = document.position();
            document.writeSection(section);
        }
        if (oneIn(4))
            document.writeFile(file());
        return document;
    }

private:
    bool oneIn(int count) { return m_choices.below(count) == 1; }

    QByteArray oneOf(const QList<QByteArray>& list)
    {
        return list.at(m_choices.below(int(list.size())));
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

    QByteArray descriptionOf(const FileSpec& file)
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
        return element.xml();
    }

    /// The next text, with the descriptions that are asked for.
    QByteArray summaryText(const Files& files)
    {
        const QByteArray text = m_texts.isEmpty() ? QByteArray()
                                                  : m_texts.takeFirst().left(longestText);
        QByteArray result;
        int descriptions = 0;
        for (int i = 0; i < text.size(); ++i) {
            const bool isMeant = text.at(i) == '@' && i + 1 < text.size() && !files.isEmpty();
            if (!isMeant || ++descriptions > mostDescriptions) {
                result += text.at(i);
                continue;
            }
            ++i;
            result += descriptionOf(files.at(uchar(text.at(i)) % int(files.size())));
        }
        return result;
    }

    Files filesOfStep()
    {
        Files files;
        for (int left = m_choices.below(6); left > 0; --left)
            files += files.isEmpty() || oneIn(2) ? file() : files.last();
        if (oneIn(8))
            return files;
        FileSpec summary = tresktest::summaryFile(summaryText(files));
        if (oneIn(3))
            summary.compression = oneIn(3) ? "lzma" : "flate";
        if (oneIn(8))
            summary.stored = QByteArray("x\x9c damaged");
        files += summary;
        return files;
    }

    QList<QByteArray> m_texts;
    tresk_fuzz::ByteSource m_choices;
};

void checkPrinting(const Summary& summary)
{
    const MessageCapture capture;
    tresk::printSummary(summary);
    TRESK_REQUIRE(capture.messages().size() == 20 + 20 * summary.files.size());
}

void runSummaries(const QByteArray& input)
{
    QLoggingCategory::setFilterRules(QStringLiteral("tresk.debug=true"));
    static tresk_fuzz::ScratchFile document;
    document.setContent(Maker(input).document().bytes());
    tresk::TreskParser parser;
    TRESK_REQUIRE(parser.open(document.path()));
    tresktest::CreatorModel model;
    const QStringList expected = textOf(model.createSummaries(parser));

    QList<Summary> summaries;
    {
        const MessageCapture capture;
        summaries = tresk::SummaryCreator().createSummaries(parser);
        TRESK_REQUIRE(tresktest::debugLines(capture) == model.debugLines());
    }
    TRESK_REQUIRE(textOf(summaries) == expected);
    checkPrinting(summaries.constLast());
}

const tresk_fuzz::Target target("summaries", runSummaries);

} // namespace
