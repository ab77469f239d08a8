// Takes any bytes for a document and reads all there is in it, by every road that leads
// to it; where two roads lead to the same thing, they must agree.

#include <tresk/FileHash.h>
#include <tresk/TreskParser.h>
#include <tresk/Validator.h>

#include <QLoggingCategory>
#include <QTemporaryFile>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// One file for all inputs: making one for each would take most of the time.
class ScratchFile {
public:
    ScratchFile() { require(m_file.open()); }

    QString path() const { return m_file.fileName(); }

    void setContent(const std::uint8_t* data, std::size_t size)
    {
        const auto length = static_cast<qint64>(size);
        require(m_file.resize(0) && m_file.seek(0));
        require(m_file.write(reinterpret_cast<const char*>(data), length) == length);
        require(m_file.flush());
    }

    QByteArray content() const
    {
        QFile file(path());
        require(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

private:
    QTemporaryFile m_file;
};

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

void readFile(tresk::TreskParser& parser, const tresk::FileTag& file, ScratchFile& output)
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
    require(checksums.first == md5(stored));
    if (!content)
        return;
    require(written);
    if (plain) {
        require(*content == stored);
    } else {
        require(content->size() == file.filesize);
        require(checksums.second == md5(*content));
    }
    // What an empty content is made of may be a stream that is damaged.
    if (file.filesize > 0 && content->size() == file.filesize) {
        require(output.content() == *content);
        validator.reinit(md5(*content), plain ? QString() : md5(stored));
        validator.update(stored);
        require(validator.isValid());
    }
}

void readDocument(tresk::ParseMode mode, const QString& path, ScratchFile& output)
{
    tresk::TreskParser parser(mode);
    if (!parser.open(path)) {
        require(parser.getNumSections() == 0 && parser.getNumFiles() == 0);
        return;
    }
    for (int id = 0; id < parser.getNumSections(); ++id) {
        require(parser.getSection(id)->id == id);
        parser.getFilesInSection(id);
    }
    parser.getSectionlessFiles();
    for (int id = 0; id < parser.getNumFiles(); ++id) {
        const QSharedPointer<tresk::FileTag> file = parser.getFile(id);
        require(file->id == id);
        readFile(parser, *file, output);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    QLoggingCategory::setFilterRules(QStringLiteral("tresk.debug=false"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static ScratchFile document;
    static ScratchFile output;
    document.setContent(data, size);
    readDocument(tresk::ParseTolerant, document.path(), output);
    readDocument(tresk::ParseStrict, document.path(), output);
    return 0;
}
