// Takes any bytes for a document and reads all there is in it, by every road that leads
// to it; where two roads lead to the same thing, they must agree, and sections and files must be
// those that the model finds.

#include "ParserComparison.h"
#include "ScratchFile.h"

#include <tresk/FileHash.h>
#include <tresk/TreskParser.h>
#include <tresk/Validator.h>

#include <algorithm>
#include <limits>

using tresk_fuzz::ScratchFile;

namespace {

// A stream may unpack into a thousand times as much, and many files may share it.
constexpr int mostDocument = 16 * 1024;
constexpr int mostStored = 4 * 1024;
constexpr qint64 mostUnpacked = 4 * 1024 * 1024;
// The model's patterns give up on values that are much longer.
constexpr int mostLine = 4000;

bool hasOnlyShortLines(const QByteArray& document)
{
    const QList<QByteArray> lines = document.split('\n');
    return std::all_of(lines.begin(), lines.end(),
                       [](const QByteArray& line) { return line.size() <= mostLine; });
}

/// The stored bytes of @p file as its marker gives their place, which may be nowhere.
QByteArray storedBytes(tresk::TreskParser& parser, const tresk::FileTag& file)
{
    const qint64 start = qint64(file.pos) + file.tagLength + file.offset;
    if (start > std::numeric_limits<int>::max())
        return {};
    return parser.getBytes(static_cast<int>(start), file.cfilesize);
}

QString md5(const QByteArray& bytes)
{
    return tresk::MD5Generator(bytes).getHexDigest();
}

/// Returns how many bytes were written to @p output.
qint64 readFile(tresk::TreskParser& parser, const tresk::FileTag& file, ScratchFile& output)
{
    const QSharedPointer<QByteArray> content = parser.getFileContent(file.id);
    const QPair<QString, QString> checksums = parser.calcChecksumsForFile(file.id);
    const bool written = parser.writeFileToDisk(file.id, output.path());
    tresk::makeFileHash(file, 0);

    const QByteArray stored = storedBytes(parser, file);
    tresk::Validator validator(file.md5file, file.md5cfile);
    validator.update(stored);
    validator.isValid();

    const bool plain = file.compression == QLatin1String("none");
    const qint64 size = written ? output.content().size() : 0;
    TRESK_REQUIRE(checksums.first == md5(stored));
    if (!content)
        return size;
    TRESK_REQUIRE(written);
    if (plain) {
        TRESK_REQUIRE(*content == stored);
    } else {
        TRESK_REQUIRE(content->size() == file.filesize);
        TRESK_REQUIRE(checksums.second == md5(*content));
    }
    // What an empty content is made of may be a stream that is damaged.
    if (file.filesize > 0 && content->size() == file.filesize) {
        TRESK_REQUIRE(output.content() == *content);
        validator.reinit(md5(*content), plain ? QString() : md5(stored));
        validator.update(stored);
        TRESK_REQUIRE(validator.isValid());
    }
    return size;
}

void readDocument(tresk::ParseMode mode, const QString& path, const QByteArray& document,
                  ScratchFile& output)
{
    tresk::TreskParser parser(mode);
    const bool comparable = hasOnlyShortLines(document);
    const bool opened = comparable ? tresk_fuzz::openBoth(parser, mode, path, document)
                                   : parser.open(path);
    if (!opened) {
        TRESK_REQUIRE(parser.getNumSections() == 0 && parser.getNumFiles() == 0);
        return;
    }
    for (int id = 0; id < parser.getNumSections(); ++id) {
        TRESK_REQUIRE(parser.getSection(id)->id == id);
        parser.getFilesInSection(id);
    }
    parser.getSectionlessFiles();
    qint64 unpacked = 0;
    for (int id = 0; id < parser.getNumFiles() && unpacked < mostUnpacked; ++id) {
        const QSharedPointer<tresk::FileTag> file = parser.getFile(id);
        TRESK_REQUIRE(file->id == id);
        if (file->cfilesize > mostStored && file->cfilesize <= mostDocument)
            continue;
        unpacked += readFile(parser, *file, output);
        if (comparable)
            tresk_fuzz::requireSameContent(parser, mode, *file);
    }
}

void runDocument(const QByteArray& input)
{
    if (input.size() > mostDocument)
        return;
    static ScratchFile document;
    static ScratchFile output;
    document.setContent(input);
    readDocument(tresk::ParseTolerant, document.path(), input, output);
    readDocument(tresk::ParseStrict, document.path(), input, output);
}

const tresk_fuzz::Target target("document", runDocument);

} // namespace
