// Makes a document of one to three steps: up to the first "~", each byte of the input is a choice;
// behind it, texts of summary documents follow, with a "~" between them. In such a text, "@" and
// any byte become the description of one of the step's files. The summaries must be those that
// their model makes.

#include "AlikeFiles.h"
#include "ByteSource.h"
#include "CreatorModel.h"
#include "DebugLines.h"
#include "FuzzTarget.h"
#include "ScratchFile.h"
#include "SummaryText.h"

#include <tresk/SummaryCreator.h>

#include <QLoggingCategory>

using tresk::Summary;
using tresktest::AlikeFiles;
using tresktest::DocumentWriter;
using tresktest::FileSpec;
using tresktest::MessageCapture;
using tresktest::SectionSpec;
using tresktest::textOf;

namespace {

constexpr int longestText = 2048; // The models take quadratic time.
constexpr int mostDescriptions = 16; // in a text

using Files = QVector<FileSpec>;

/// Makes the document that an input stands for.
class Maker {
public:
    explicit Maker(const QByteArray& input)
        : m_texts(input.split('~'))
        , m_choices(m_texts.takeFirst())
        , m_files(m_choices)
    {
    }

    DocumentWriter document()
    {
        DocumentWriter document("%PDF-1.4\n");
        document.writeHeader();
        int lastStart = document.position();
        for (int left = 1 + m_choices.below(3); left > 0; --left) {
            if (m_files.oneIn(8))
                document.writeFile(m_files.file());
            SectionSpec section;
            section.title = QStringLiteral("step");
            section.creator = QStringLiteral("creator %1").arg(left);
            section.files = filesOfStep();
            if (m_files.oneIn(8))
                section.regionStart = lastStart;
            lastStart = document.position();
            document.writeSection(section);
        }
        if (m_files.oneIn(4))
            document.writeFile(m_files.file());
        return document;
    }

private:
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
            result += m_files.descriptionOf(files.at(uchar(text.at(i)) % int(files.size()))).xml();
        }
        return result;
    }

    Files filesOfStep()
    {
        Files files = m_files.files(6);
        if (m_files.oneIn(8))
            return files;
        FileSpec summary = m_files.summary(summaryText(files));
        if (m_files.oneIn(8))
            summary.stored = QByteArray("x\x9c damaged");
        files += summary;
        return files;
    }

    QList<QByteArray> m_texts;
    tresk_fuzz::ByteSource m_choices;
    AlikeFiles<tresk_fuzz::ByteSource> m_files;
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
